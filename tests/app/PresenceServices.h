#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>

// The desktop's side of the program's lock watch, as much as it asks of it: a screensaver on the
// session bus, and logind's manager and the caller's session on the system bus.
class TestScreenSaver final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    void setActive(bool active) { emit ActiveChanged(m_active = active); }

public slots:
    bool GetActive() const { return m_active; }

signals:
    void ActiveChanged(bool active);

private:
    bool m_active = false;
};

class TestLogin1 final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public slots:
    QDBusObjectPath GetSessionByPID(uint) const;
};

class TestLogin1Session final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
    Q_PROPERTY(bool LockedHint MEMBER m_locked)

public:
    // Announced as logind does, by the properties' signal.
    void setLocked(bool locked);

private:
    bool m_locked = false;
};

// All three under their well-known names; `registered` says whether the buses took them.
struct PresenceServices {
    PresenceServices(const QString& sessionAddress, const QString& systemAddress);

    QDBusConnection session, system;
    TestScreenSaver screenSaver;
    TestLogin1 manager;
    TestLogin1Session login;
    bool registered = false;
};
