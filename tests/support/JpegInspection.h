#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QString>

#include <optional>

// What a test needs to know of a JPEG file, read from its markers rather than trusted from the
// writer: the frame type (0xC2 for progressive), the number of scans and the decoded pixels.
struct JpegInspection {
    int frameMarker = 0;
    int scanCount = 0;
    QImage image;
};

// Empty when the file is missing or is not a complete JPEG stream.
std::optional<JpegInspection> inspectJpeg(const QString& path);
