#include "support/Pixels.h"

#include <algorithm>
#include <cstdlib>

int channelDistance(const QColor& a, const QColor& b) {
    return std::max(
        {std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

bool closeTo(const QColor& actual, const QColor& expected, int tolerance) {
    return channelDistance(actual, expected) <= tolerance;
}

PixelDifference differingPixels(const QImage& a, const QImage& b, int tolerance, const QRect& area) {
    PixelDifference difference;
    const int width = std::min(a.width(), b.width());
    const int height = std::min(a.height(), b.height());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (channelDistance(a.pixelColor(x, y), b.pixelColor(x, y)) > tolerance) {
                ++(area.contains(x, y) ? difference.inside : difference.outside);
            }
        }
    }
    return difference;
}
