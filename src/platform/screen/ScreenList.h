#pragma once

#include <QList>
#include <QRect>

class QScreen;

// The area of one screen in its own pixels; its place holds only where the window system names
// monitors. GUI thread only.
QRect devicePixels(const QScreen& screen);

// Where each screen lies in the pixels that a capture reads, the primary screen first: on X11 the
// root window's, whatever scale Qt gives its windows; elsewhere those of a picture of the whole
// desktop at the scale of its finest screen. GUI thread only.
QList<QRect> screenAreas();
