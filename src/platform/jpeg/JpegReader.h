#pragma once

#include "platform/Picture.h"

#include <QSize>
#include <QString>

#include <functional>
#include <optional>

struct JpegPicture {
    Picture pixels;
    QSize fullSize; // as the file holds it, before any scaling
};

// Reads a JPEG file as Bgrx32 pixels. `covering` tells, from the file's own size, what size the
// pixels must cover; libjpeg then decodes at the smallest of its scales 1/8 ... 8/8 whose result
// still covers it, so that a large picture bound for a small frame never exists at full size.
// Without it, full size. Empty when the file cannot be read, is no JPEG that libjpeg decodes to
// colour, or needs more memory or more progressive scans than any real picture does.
std::optional<JpegPicture> readJpeg(const QString& path, const std::function<QSize(QSize)>& covering = {});
