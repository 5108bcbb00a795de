#pragma once

#include <QString>

#include <optional>
#include <vector>

// A new, empty file in the system's temporary folder, which the caller owns; empty when none can
// be made.
std::optional<QString> GetTemporaryFolderItem();

// The temporary files of one movie, in the order they were made. They stay on the disk until
// deleteAll(), also when the work ends early.
class TemporaryFiles {
public:
    void add(const QString& path) { m_paths.push_back(path); }
    // A new temporary file, kept in the list; an empty path when none can be made.
    QString make();
    // Deletes them from the last to the first.
    void deleteAll();

private:
    std::vector<QString> m_paths;
};
