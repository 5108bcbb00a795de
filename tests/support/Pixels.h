#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

// The largest difference over the red, green and blue channels.
int channelDistance(const QColor& a, const QColor& b);
// True when each channel of `actual` lies within `tolerance` of `expected`.
bool closeTo(const QColor& actual, const QColor& expected, int tolerance);
// How many pixels of two images of one size differ by more than `tolerance`, inside `area` and
// outside it.
struct PixelDifference {
    int inside = 0;
    int outside = 0;
};
PixelDifference differingPixels(const QImage& a, const QImage& b, int tolerance, const QRect& area = {});
