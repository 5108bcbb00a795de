#pragma once

#include <QSize>

// The content size of a camera frame window: the frame's own size, or half of it when the frame
// is wider or taller than two thirds of the main screen. All in device pixels.
QSize frameWindowSize(QSize frame, QSize mainScreen);
