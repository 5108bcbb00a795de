#include "platform/launcher/DBusLauncherEntry.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QVariantMap>

bool sessionBusAvailable() {
    return QDBusConnection::sessionBus().isConnected();
}

void DBusLauncherEntry::setUrgent(bool urgent) {
    const QString appUri = QStringLiteral("application://%1.desktop").arg(QGuiApplication::desktopFileName());
    // Listeners match on interface and member; the path only has to be ours and valid.
    const QString path = QStringLiteral("/com/canonical/unity/launcherentry/%1").arg(qHash(appUri));
    QDBusMessage update = QDBusMessage::createSignal(
        path, QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    update << appUri << QVariantMap{{QStringLiteral("urgent"), urgent}};
    QDBusConnection::sessionBus().send(update);
}
