#include "platform/filemanager/DBusFileManager.h"
#include "platform/filemanager/NullFileManager.h"

std::unique_ptr<FileManager> makeFileManager() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (DBusFileManager::offeredOn(bus)) {
        return std::make_unique<DBusFileManager>(bus);
    }
    return std::make_unique<NullFileManager>();
}
