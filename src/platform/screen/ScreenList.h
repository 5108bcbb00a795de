#pragma once

#include <QList>
#include <QRect>

class QScreen;

// The area of one screen in device pixels.
QRect devicePixels(const QScreen& screen);

// The areas of the screens as the window system reports them, in device pixels, the primary
// screen first. GUI thread only.
QList<QRect> screenAreas();
