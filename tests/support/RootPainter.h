#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

// Puts known pixels on the X display: the image becomes the root window's background, so that it
// stays there whatever else is drawn or exposed. False when no X server answers.
bool paintRoot(const QImage& image);
// The root window's size in pixels; empty without an X server.
QSize rootSize();

// Four flat quadrants whose colours differ in every channel, so that a swap of channels or sides
// shows; the colour of each, left to right and top to bottom; and whether an image shows them,
// each channel within `tolerance`.
QImage quadrantPattern(const QSize& size);
QColor patternColour(int quadrant);
bool showsQuadrants(const QImage& image, int tolerance = 10);
// Pixels that differ everywhere, for comparisons that must be exact.
QImage noisePattern(const QSize& size);
