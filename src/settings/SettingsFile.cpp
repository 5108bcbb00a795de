#include "settings/SettingsFile.h"

#include "base/NilObjectException.h"
#include "platform/FolderItem.h"
#include "settings/TagFile.h"

std::optional<QStringList> readSettingsFile(const QString& fileName, int count) {
    const std::optional<QString> path = GetFolderItem(fileName, FolderPlace::Settings);
    return path ? readTagFileLines(*path, count) : std::nullopt;
}

void writeSettingsFile(const QString& fileName, const std::vector<std::pair<QString, QString>>& records) {
    const std::optional<QString> path = GetFolderItem(fileName, FolderPlace::Settings);
    if (!path) {
        throw NilObjectException("no place for " + fileName.toStdString());
    }
    if (!writeTagFile(*path, records)) {
        throw NilObjectException("cannot write " + path->toStdString());
    }
}
