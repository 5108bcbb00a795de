#pragma once

#include "capture/CameraLink.h"
#include "platform/Clock.h"

// Opens a frame window of this kind with the frame on the GUI thread, sized to the main screen,
// and returns at once.
void showCameraFrame(Picture frame, FrameWindowKind kind, const Clock& clock);

// The system's camera and the frame windows, for the camera link. Called once at start, before
// the first set-up.
void installProductCameraServices(const Clock& clock = systemClock());
