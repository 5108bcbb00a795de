#include "slideshow/Letterbox.h"

#include <algorithm>

QRect fLetterboxRect(QSize picture) {
    const double w = picture.width();
    const double h = picture.height();
    const double scale = std::min(kMovieFrame.height() / h, kMovieFrame.width() / w);
    // Conversions to integers cut off the fraction.
    const int newWidth = static_cast<int>(w * scale);
    const int newHeight = static_cast<int>(h * scale);
    const int left = static_cast<int>((kMovieFrame.width() - newWidth) / 2.0);
    const int top = static_cast<int>((kMovieFrame.height() - newHeight) / 2.0);
    return QRect(left, top, newWidth, newHeight);
}
