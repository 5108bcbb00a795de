#pragma once

#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

// What a movie is made of. Times are in units of 1/timeScale of a second: each picture stands
// still for stillDuration, then the next one wipes over it from left to right within
// effectDuration; the last picture has no wipe after it, so n pictures last
// n * stillDuration + (n - 1) * effectDuration. Without wipes (a time-lapse: a picture a frame,
// stillDuration 1 at timeScale frames a second) the encoder places the key frames itself.
struct MovieRequest {
    std::vector<QString> mediaFiles; // JPEG files
    int timeScale = 0;
    int stillDuration = 0;
    int effectDuration = 0;
    // A name ending in ".mp4" gets an MP4 file, any other a QuickTime one.
    QString target;
    // Empty: every picture comes at the movie's size, which the first one gives, and fills it.
    // Otherwise each picture is scaled to fit this frame and centred on black.
    QSize frameSize;
    // Looked at after each picture; once set, the movie stops with -ECANCELED.
    const std::atomic<bool>* cancelled = nullptr;
};

// Writes slideshow movies. The numbers returned are 0 for success and otherwise a negative
// errno-style number (-EINVAL for a movie without pictures or with a time scale below 1, -EIO for a picture
// that does not decode, -ECANCELED when stopped, -ENOSYS where no back end can write movies) or the
// library's own error number.
class MovieWriter {
public:
    // Told after each picture is in the movie: how many are, and of how many.
    using NextFile = std::function<void(int current, int total)>;

    virtual ~MovieWriter() = default;

    // Writes the movie to request.target, replacing what is there; blocks until it is done.
    virtual int Run(const MovieRequest& request, const NextFile& nextFile) = 0;
    // Whether the file opens as a movie with a picture track.
    virtual bool OpenAsMovie(const QString& path) = 0;
    // Writes a copy of the movie with its index in front, so that a player can start before the
    // whole file is there.
    virtual int Flatten(const QString& movie, const QString& target) = 0;
};

// The libraries' back end where they can write H.264 into QuickTime files, the null one elsewhere.
std::unique_ptr<MovieWriter> makeMovieWriter();
