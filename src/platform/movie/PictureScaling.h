#pragma once

#include "platform/Picture.h"

#include <QRect>
#include <QSize>

#include <cstdint>

// Draws a Bgrx32 picture, scaled with a bicubic filter, into `area` of Bgrx32 pixels at `target`
// with `targetStride` bytes a row; the rest of the target stays as it is. False when the area
// does not take a picture. One thread, and no memory kept after it returns.
bool drawScaled(const Picture& source, std::uint8_t* target, int targetStride, QRect area);

// Where a picture of this size lands in `frame`: scaled, up or down, until it touches two
// opposite sides, and centred; the rest of the frame stays black. Conversions to integers cut
// off the fraction.
QRect letterboxRect(QSize picture, QSize frame);
