#pragma once

#include "settings/mScreenSettings.h"

#include <QRect>
#include <QSize>

// The main window's frame from the stored geometry: never below its minimum size, and pushed
// off the strip along the left and top edges. A negative position stays: it can be a screen to
// the left or above.
QRect restoredFrame(const mScreenSettings::Geometry& stored, QSize minimum);
