#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

// One boolean hint (LockedHint, IdleHint) of this process's login session on the system bus,
// followed by the session's property signals. Where there is no such session the value stays
// false and never changes.
class LogindSession final : public QObject {
    Q_OBJECT

public:
    explicit LogindSession(QString hint, QObject* parent = nullptr);

    bool value() const { return m_value; }

signals:
    void changed(bool value);

private slots:
    void propertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);

private:
    // Asks the manager for a session; `otherwise` runs when it has none to give.
    void askSession(const QString& method, const QVariant& argument, std::function<void()> otherwise);
    void follow(const QString& path);
    void read();
    void set(bool value);

    QDBusConnection m_bus;
    QString m_hint;
    QString m_path;
    bool m_value = false;
};
