#include "PresenceServices.h"

#include <QDBusMessage>
#include <QVariantMap>

namespace {
const QString kSessionPath = QStringLiteral("/org/freedesktop/login1/session/_31");
const QString kSystemName = QStringLiteral("kv-test-desktop-system");
constexpr auto kExport = QDBusConnection::ExportAllContents;
} // namespace

QDBusObjectPath TestLogin1::GetSessionByPID(uint) const {
    return QDBusObjectPath(kSessionPath);
}

void TestLogin1Session::setLocked(bool locked) {
    m_locked = locked;
    QDBusMessage changed =
        QDBusMessage::createSignal(kSessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    changed << QStringLiteral("org.freedesktop.login1.Session") << QVariantMap{{"LockedHint", locked}}
            << QStringList();
    QDBusConnection(kSystemName).send(changed);
}

PresenceServices::PresenceServices(const QString& sessionAddress, const QString& systemAddress)
    : session(QDBusConnection::connectToBus(sessionAddress, "kv-test-desktop-session"))
    , system(QDBusConnection::connectToBus(systemAddress, kSystemName)) {
    registered = session.registerService("org.freedesktop.ScreenSaver") &&
                 session.registerObject("/org/freedesktop/ScreenSaver", &screenSaver, kExport) &&
                 system.registerService("org.freedesktop.login1") &&
                 system.registerObject("/org/freedesktop/login1", &manager, kExport) &&
                 system.registerObject(kSessionPath, &login, kExport);
}
