#include "platform/FolderItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <mutex>

namespace {
std::mutex g_mutex;
QString g_applicationFolder;
} // namespace

namespace platform {
QString applicationFolder() {
    std::lock_guard lock(g_mutex);
    if (g_applicationFolder.isEmpty()) {
        g_applicationFolder = QCoreApplication::applicationDirPath();
    }
    return g_applicationFolder;
}

void setApplicationFolder(const QString& folder) {
    std::lock_guard lock(g_mutex);
    g_applicationFolder = folder;
}

QString resourcesFolder() {
    return QDir::cleanPath(applicationFolder() + "/../Resources");
}
} // namespace platform

std::optional<QString> GetFolderItem(const QString& path) {
    if (path.isEmpty()) {
        return std::nullopt;
    }
    const QString absolute = QDir::cleanPath(QDir(platform::applicationFolder()).absoluteFilePath(path));
    if (!QFileInfo(absolute).dir().exists()) {
        return std::nullopt;
    }
    return absolute;
}
