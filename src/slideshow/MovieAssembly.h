#pragma once

#include <QObject>
#include <QString>

#include <vector>

class Clock;
class MovieWriter;
class TemporaryFiles;

struct MovieAssemblyInput {
    std::vector<QString> files; // the list's rows, first to last
    QString destination;        // pDestination as the settings hold it
};

// Makes a slideshow movie of the listed pictures and moves pictures and movie into a new archive
// folder beside the destination (inside it when the destination ends in a separator). Runs on
// whatever thread calls it and reports to the window only through its signals, which a window
// receives queued.
class MovieAssembly final : public QObject {
    Q_OBJECT

public:
    MovieAssembly(MovieWriter& writer, const Clock& clock, QObject* parent = nullptr);

    // A failure of the movie is warned about and the archiving goes on. Throws
    // NilObjectException, leaving the temporary files and the working window, when a picture does
    // not open or the destination does not resolve where the archive needs it.
    void sCreateMovie(const MovieAssemblyInput& input);

signals:
    void workingMessage(const QString& text1, const QString& text2);
    void workingWindowDone();
    // The movie is made or has failed, and the archiving comes next.
    void movieStageDone();
    void nextFile(int current, int total);

private:
    void makeMovie(const std::vector<QString>& files, const QString& target, TemporaryFiles& temporaries);

    MovieWriter& m_writer;
    const Clock& m_clock;
};
