#pragma once

#include "platform/presence/LogindSession.h"
#include "platform/presence/Presence.h"

// Locked while any of the desktop's sources says so: logind's LockedHint for the session on the
// system bus, and the screensaver services on the session bus (the freedesktop one of KDE, XFCE
// and others, and GNOME's own). All announce their changes; nothing here asks again.
class DBusLockWatcher final : public LockWatcher {
    Q_OBJECT

public:
    DBusLockWatcher();

    bool locked() const override { return m_sources != 0; }

private slots:
    void freedesktopActiveChanged(bool active);
    void gnomeActiveChanged(bool active);

private:
    enum Source : unsigned { Logind = 1U, Freedesktop = 2U, Gnome = 4U };
    void watchScreenSaver(const QString& service, const QString& path, const char* slot, Source source);
    void set(Source source, bool on);

    LogindSession m_session{QStringLiteral("LockedHint")};
    unsigned m_sources = 0;
};
