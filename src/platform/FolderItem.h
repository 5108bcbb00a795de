#pragma once

#include <QString>

#include <optional>

namespace platform {
// The folder that holds the executable.
QString applicationFolder();
// Tests point the program at a folder of their own.
void setApplicationFolder(const QString& folder);
// The Resources folder beside the executable's folder.
QString resourcesFolder();
} // namespace platform

// What a bare name stands for. In an application folder that can be written, both mean a place
// beside the executable; an installed copy keeps its settings in the user's configuration folder
// and its pictures in the user's pictures folder instead.
enum class FolderPlace { Settings, Pictures };

// The absolute path for a path or a bare name, a bare name meaning a place in `place`.
// Empty when the path cannot denote a file here: an empty text, or a parent folder that is not
// there (only the last part of a path is ever created).
std::optional<QString> GetFolderItem(const QString& path, FolderPlace place);

// Makes the folder, readable by its owner alone, where it is missing; true when it stands there
// afterwards.
bool CreateAsFolder(const QString& path);
