#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

// A movie file as FFmpeg's demuxer and decoder read it, without trusting the writer.
struct MovieInspection {
    QString codec;       // "h264"
    QString pixelFormat; // "yuv420p"
    QSize size;
    double durationSec = 0;
    int packets = 0;
    bool indexInFront = false; // the moov atom before the mdat atom
};

// Empty when the file does not open as a movie with a picture track.
std::optional<MovieInspection> inspectMovie(const QString& path);

// What the movie shows at `seconds`: the last frame that starts at or before it. Null when the
// movie does not decode.
QImage movieFrameAt(const QString& path, double seconds);
