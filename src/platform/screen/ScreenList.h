#pragma once

#include <QList>
#include <QRect>

// The areas of the screens as the window system reports them, in device pixels, the primary
// screen first. GUI thread only.
QList<QRect> screenAreas();
