#pragma once

#include "history/CaptureHistory.h"

#include <QDateTime>
#include <QSize>
#include <QString>

#include <optional>
#include <vector>

inline constexpr int kDefaultTimelapseFps = 10;
// A movie of the screen's own size is made no wider than this.
inline constexpr int kMaxDefaultTimelapseWidth = 1920;

// What a time-lapse is asked to be.
struct TimelapseOptions {
    QString target; // "OUT.mp4" (H.264 in MP4) or "OUT.mov"
    QDateTime from; // invalid: from the first picture
    QDateTime to;   // invalid: to the last picture
    int framesPerSecond = kDefaultTimelapseFps;
    QSize frameSize;           // empty: the screen's own size, at most 1920 wide
    std::optional<int> source; // one screen, or kCameraSource; none: each screen
};

// One movie to make: one source's pictures, in the order of time.
struct TimelapseMovie {
    int source = 0;
    QString target;
    QSize frameSize; // empty until the first picture tells
    std::vector<QString> pictures;
};

// "YYYY-MM-DD" or "YYYY-MM-DD-HH-MM", local time. As the end of a range, the last second of that
// day or minute. Empty for any other text.
std::optional<QDateTime> parseTimelapseBound(const QString& text, bool end);
// "WxH" with even sides of at least 2; empty for any other text.
std::optional<QSize> parseFrameSize(const QString& text);
// Where each screen's movie goes when a movie is made for each screen: "OUT.mp4" gives
// "OUT-screen1.mp4" for screen 1, "OUT-camera.mp4" for the camera.
QString timelapseTargetFor(const QString& target, int source);
// The frame for pictures of this size when none is asked for: their own, at most 1920 wide,
// with even sides.
QSize defaultTimelapseFrame(QSize picture);

// The movies that `runs`, in the order of time, give for these options: the chosen source's, or
// one for each screen that has pictures in the range (the camera only when chosen).
std::vector<TimelapseMovie> planTimelapse(const std::vector<CaptureRun>& runs,
                                          const TimelapseOptions& options);
// Every run of the history in the order of time.
std::vector<CaptureRun> runsInTimeOrder(const CaptureHistory& history);
