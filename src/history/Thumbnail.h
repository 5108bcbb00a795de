#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// The box that a large thumbnail of the shared cache fits in.
inline constexpr QSize kThumbnailBox(256, 256);

// The size to decode a picture of `full` at: the largest of libjpeg's eighths that fits the box
// (a 1920x1080 screen at 1/8, 240x135), or the smallest eighth when none does.
QSize thumbnailDecodeSize(QSize full);

// The thumbnail of a JPEG picture, from the shared cache when it holds a fresh one, otherwise
// decoded at a reduced scale and then written to the cache. Null when the picture does not
// decode. Safe on any thread.
QImage loadThumbnail(const QString& picture);
