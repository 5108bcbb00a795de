#pragma once

#include <QString>

#include <optional>

namespace platform {
// The folder that holds the executable; settings files and bare destination names live here.
QString applicationFolder();
// Tests point the program at a folder of their own.
void setApplicationFolder(const QString& folder);
// The Resources folder beside the executable's folder.
QString resourcesFolder();
} // namespace platform

// The absolute path for a path or a bare name, a bare name meaning a place beside the executable.
// Empty when the path cannot denote a file here: an empty text, or a parent folder that is not
// there (only the last part of a path is ever created).
std::optional<QString> GetFolderItem(const QString& path);
