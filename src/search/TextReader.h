#pragma once

#include "platform/Picture.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>

// Reads the text on the screen pictures into the index, one picture at a time on one thread of
// its own at idle priority, so that it takes only time that nothing else wants: each new picture
// first, from its pixels while they are still held, then the pictures already on the disk, the
// newest first. It never holds up a capture run.
class TextReader {
public:
    struct Setup {
        QString indexPath;
        QString languages;                    // as Tesseract names them: "eng", "eng+deu"
        std::function<QString()> destination; // the destination setting, asked at each look
    };

    explicit TextReader(Setup setup);
    // Stops at once and waits for the thread, which at idle priority may take a moment on a busy
    // machine; the picture being read is read again another time.
    ~TextReader();
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;

    // A screen picture just written at `path`. Any thread; returns at once.
    void add(const QString& path, const Picture& picture);
    // Asks the thread to end, without waiting for it.
    void stop();
    // The pictures whose text went into the index since the start.
    int picturesRead() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
