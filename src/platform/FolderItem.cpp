#include "platform/FolderItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <mutex>

#include <sys/stat.h>

namespace {
std::mutex g_mutex;
QString g_applicationFolder;
// Decided once per folder, so that the files do not move about while the program runs.
std::optional<bool> g_applicationFolderWritable;

// The user's own place for this program's files of one kind, made on first use.
QString userFolder(QStandardPaths::StandardLocation location) {
    const QString parent = QStandardPaths::writableLocation(location);
    QDir().mkpath(parent);
    const QString folder = parent + QStringLiteral("/Kestrelview");
    CreateAsFolder(folder);
    return folder;
}

// Only a folder that is there and refuses writing sends the files to the user's folders; a
// folder that is not there at all stays the place, and writing into it fails.
bool applicationFolderWritable() {
    const QFileInfo folder(platform::applicationFolder());
    std::lock_guard lock(g_mutex);
    if (!g_applicationFolderWritable) {
        g_applicationFolderWritable = !folder.exists() || folder.isWritable();
    }
    return *g_applicationFolderWritable;
}

QString baseFolder(FolderPlace place) {
    if (applicationFolderWritable()) {
        return platform::applicationFolder();
    }
    return userFolder(place == FolderPlace::Settings ? QStandardPaths::GenericConfigLocation
                                                     : QStandardPaths::PicturesLocation);
}
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
    g_applicationFolderWritable.reset();
}

QString resourcesFolder() {
    return QDir::cleanPath(applicationFolder() + "/../Resources");
}
} // namespace platform

std::optional<QString> GetFolderItem(const QString& path, FolderPlace place) {
    if (path.isEmpty()) {
        return std::nullopt;
    }
    const QString absolute =
        QDir::isAbsolutePath(path) ? QDir::cleanPath(path) : QDir::cleanPath(baseFolder(place) + '/' + path);
    if (!QFileInfo(absolute).dir().exists()) {
        return std::nullopt;
    }
    return absolute;
}

// Private, since the pictures show whatever was on the screen; a folder that stands there
// already keeps its mode.
bool CreateAsFolder(const QString& path) {
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || QFileInfo(path).isDir();
}
