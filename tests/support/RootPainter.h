#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QRect>

// Puts known pixels on the X display: the image becomes the root window's background, so that it
// stays there whatever else is drawn or exposed. Returns false when no X server answers.
bool paintRoot(const QImage& image);

// Each monitor filled with its own colour, a white square at its top-left corner and a black one
// at its bottom-right, so that a wrong area, size or channel order shows in the samples below.
QImage monitorPattern(const QSize& rootSize, const QList<QRect>& monitors);
QColor monitorColour(int index);
inline constexpr int kMarkSize = 64;

// Pixels that differ everywhere, for comparisons that must be exact.
QImage noisePattern(const QSize& size);

// The root window's size in pixels; empty without an X server.
QSize rootSize();
