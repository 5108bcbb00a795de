#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <vector>

// What a slideshow movie is made of. Times are in units of 1/timeScale of a second: each picture
// stands still for stillDuration, then the next one wipes over it from left to right within
// effectDuration; the last picture has no wipe after it, so n pictures last
// n * stillDuration + (n - 1) * effectDuration.
struct MovieRequest {
    std::vector<QString> mediaFiles; // JPEG files, all of the movie's frame size
    int timeScale = 0;
    int stillDuration = 0;
    int effectDuration = 0;
    QString target;
};

// Writes slideshow movies. The numbers returned are 0 for success and otherwise a negative
// errno-style number (-EINVAL for a movie without pictures or with a time scale below 1, -EIO for a picture
// that does not decode, -ENOSYS where no back end can write movies) or the library's own error number.
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
