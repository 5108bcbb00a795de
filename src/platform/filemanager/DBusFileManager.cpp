#include "platform/filemanager/DBusFileManager.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QUrl>

namespace {
const QString kService = QStringLiteral("org.freedesktop.FileManager1");
} // namespace

bool DBusFileManager::offeredOn(const QDBusConnection& bus) {
    const QDBusConnectionInterface* names = bus.isConnected() ? bus.interface() : nullptr;
    if (names == nullptr) {
        return false;
    }
    return names->isServiceRegistered(kService).value() ||
           names->activatableServiceNames().value().contains(kService);
}

DBusFileManager::DBusFileManager(QDBusConnection bus)
    : m_bus(std::move(bus)) {}

bool DBusFileManager::showItem(const QString& path) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, QStringLiteral("/org/freedesktop/FileManager1"), kService, QStringLiteral("ShowItems"));
    call << QStringList{QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << QString();
    return m_bus.send(call);
}
