#pragma once

#include "platform/Picture.h"
#include "search/TextReader.h"

#include <QObject>
#include <QString>

#include <memory>
#include <mutex>
#include <vector>

// The pictures made searchable as the rules say: while "Make pictures searchable" is on, a
// reader takes each new screen picture and those on the disk; switched off, it stops, and the
// user is offered to delete the index.
class TextSearch final : public QObject {
    Q_OBJECT
public:
    explicit TextSearch(QString indexPath);
    ~TextSearch() override;

    // The capture runs' sink: any thread, returns at once.
    void pictureWritten(const QString& path, const Picture& picture);
    // The reader of the moment, if on; for the tests.
    int picturesRead();

public slots:
    // Starts, restarts (other languages) or stops the reader as the rules in force say. GUI thread.
    void applyPolicies();

private:
    void replaceReader(std::unique_ptr<TextReader> reader);

    const QString m_indexPath;
    QString m_languages; // of the reader that runs; GUI thread
    std::mutex m_mutex;
    std::unique_ptr<TextReader> m_reader;
    // Readers told to stop, joined when this goes: the GUI thread never waits for one.
    std::vector<std::unique_ptr<TextReader>> m_stopped;
};
