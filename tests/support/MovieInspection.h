#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

// A movie file as ffprobe reads it, without trusting the writer; empty without a picture track.
struct MovieInspection {
    QString codec;
    QString pixelFormat;
    QSize size;
    double durationSec = 0;
    int packets = 0;
    bool indexInFront = false; // the moov atom before the mdat atom
    double framesPerSecond = 0;
};
std::optional<MovieInspection> inspectMovie(const QString& path);
// What ffmpeg shows at `seconds`: the last frame that starts at or before it; null on failure.
QImage movieFrameAt(const QString& path, double seconds);
