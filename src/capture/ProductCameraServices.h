#pragma once

#include "capture/CameraLink.h"
#include "platform/Clock.h"

// Opens a frame window of this kind with the frame on the GUI thread, sized to the main screen,
// and returns at once.
void showCameraFrame(Picture frame, FrameWindowKind kind, const Clock& clock);

// The system's camera and the frame windows, for the camera link's owner, which must not outlive
// `clock`.
CameraServices productCameraServices(const Clock& clock);
