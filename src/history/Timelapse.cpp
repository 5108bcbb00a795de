#include "history/Timelapse.h"

#include "platform/movie/MovieWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTemporaryFile>

#include <cerrno>

namespace {
// The movie is written beside its place first and then copied with its index in front.
int makeMovie(MovieWriter& writer, const TimelapseMovie& movie, MovieRequest request,
              const MovieWriter::NextFile& nextFile) {
    QTemporaryFile draft(QFileInfo(movie.target).dir().filePath(QStringLiteral(".kestrelview-XXXXXX.mov")));
    if (!draft.open()) {
        return -EACCES;
    }
    request.target = draft.fileName();
    request.mediaFiles = movie.pictures;
    request.frameSize = movie.frameSize.isEmpty()
                            ? defaultTimelapseFrame(QImageReader(movie.pictures.front()).size())
                            : movie.frameSize;
    int result = writer.Run(request, nextFile);
    if (result == 0) {
        result = writer.Flatten(draft.fileName(), movie.target);
        if (result != 0) {
            QFile::remove(movie.target);
        }
    }
    return result;
}
} // namespace

int makeTimelapse(MovieWriter& writer, std::vector<TimelapseMovie> movies, int framesPerSecond,
                  const std::atomic<bool>& cancelled, const TimelapseProgress& progress) {
    int total = 0;
    for (const TimelapseMovie& movie : movies) {
        total += int(movie.pictures.size());
    }
    MovieRequest request;
    request.timeScale = framesPerSecond;
    request.stillDuration = 1;
    request.effectDuration = 0;
    request.cancelled = &cancelled;
    int done = 0;
    for (const TimelapseMovie& movie : movies) {
        const int result = makeMovie(writer, movie, request, [&](int current, int) {
            if (progress) {
                progress(done + current, total);
            }
        });
        if (result != 0) {
            return result;
        }
        done += int(movie.pictures.size());
    }
    return 0;
}
