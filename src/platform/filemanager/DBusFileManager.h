#pragma once

#include "platform/filemanager/FileManager.h"

#include <QDBusConnection>

// The freedesktop.org file manager interface: ShowItems with the file's URI.
class DBusFileManager final : public FileManager {
public:
    // Whether a file manager on `bus` runs or can be started for the interface.
    static bool offeredOn(const QDBusConnection& bus);

    explicit DBusFileManager(QDBusConnection bus);
    bool showItem(const QString& path) override;

private:
    QDBusConnection m_bus;
};
