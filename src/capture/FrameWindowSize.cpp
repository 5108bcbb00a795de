#include "capture/FrameWindowSize.h"

QSize frameWindowSize(QSize frame, QSize mainScreen) {
    // Fractions kept: a frame exactly at the limit still fits.
    const double limitWidth = mainScreen.width() * 2.0 / 3.0;
    const double limitHeight = mainScreen.height() * 2.0 / 3.0;
    const bool tooBig = limitWidth < frame.width() || limitHeight < frame.height();
    if (!tooBig) {
        return frame;
    }
    return QSize(static_cast<int>(frame.width() / 2.0), static_cast<int>(frame.height() / 2.0));
}
