#pragma once

#include <QHash>
#include <QRect>
#include <QString>

// The RandR monitors of the X display that the application's windows are on, by name, in the
// root window's pixels: what a screen really covers whatever scale Qt gives its windows. Empty off
// X11, and where the server has no RandR 1.5. GUI thread only.
QHash<QString, QRect> randrMonitors();
