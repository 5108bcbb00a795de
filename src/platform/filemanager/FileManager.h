#pragma once

#include <QString>

#include <memory>

// The desktop's file manager, asked to open a file's folder with the file selected.
class FileManager {
public:
    virtual ~FileManager() = default;
    // Asks without waiting for the answer. False where there is nobody to ask; the caller then
    // opens the folder by other means.
    virtual bool showItem(const QString& path) = 0;
};

// org.freedesktop.FileManager1 on the session bus where a file manager offers it, otherwise the
// null one.
std::unique_ptr<FileManager> makeFileManager();
