#pragma once

#include "platform/FilePtr.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

// The path of the n-th choice of name for a new file, n from 1, or an empty text when there is no
// further choice. All choices lie in one folder.
using NameChoices = std::function<QString(int choice)>;

// A file written beside its final place under a name that nobody takes for a picture (hidden, and
// not ending in .jpg), and put in place only once it is complete and on the disk: a power cut
// leaves the earlier state, never a file cut short. Removed again unless it is placed.
class PartFile {
public:
    // Empty when the folder of `finalPath` cannot take the file.
    static std::unique_ptr<PartFile> createBeside(const QString& finalPath);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    FILE* stream() const { return m_stream.get(); }

    // Replaces whatever file stands at `path`.
    bool placeOver(const QString& path);
    // Takes the first of the names that no file has, never replacing one, also where another
    // writer takes names in the folder at the same moment. The path taken, or none.
    std::optional<QString> placeAtFreeName(const NameChoices& nameFor);

private:
    PartFile(QByteArray path, FILE* stream)
        : m_path(std::move(path))
        , m_stream(stream) {}
    // Writes out and closes the stream; false when any of it failed.
    bool finish();

    QByteArray m_path;
    FilePtr m_stream;
    bool m_placed = false;
};
