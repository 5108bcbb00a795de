#pragma once

#include "platform/Picture.h"

#include <QImage>
#include <QString>

#include <optional>

// A JPEG file read from its markers rather than trusted from the writer: the frame type (0xC2 for
// progressive), the number of scans and the decoded pixels. Empty unless it is a whole JPEG stream.
struct JpegInspection {
    int frameMarker = 0;
    int scanCount = 0;
    QImage image;
};
std::optional<JpegInspection> inspectJpeg(const QString& path);

// A Picture over the image's own pixels, as a grabber hands them over, and the other way round.
Picture pictureOf(const QImage& image);
QImage imageOf(const Picture& picture);
