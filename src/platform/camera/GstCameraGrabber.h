#pragma once

#include "platform/camera/CameraGrabber.h"

#include <QString>

// False when GStreamer cannot start on this machine.
bool gstreamerAvailable();

// The camera through GStreamer: the first video source that the device monitor knows of, turned
// into BGRx frames of the channel's size. Tests give a pipeline description of their own, such as
// "videotestsrc is-live=true", to stand in for the camera.
std::unique_ptr<CameraGrabber> makeGstCameraGrabber(const QString& sourceDescription = {});
