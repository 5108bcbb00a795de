#pragma once

#include "platform/Picture.h"

#include <functional>
#include <memory>
#include <optional>

enum class CameraError {
    None,
    NoVideoInputDevice, // the one failure the user is told about
    Other,
};

// A live camera preview that keeps the newest frame on hand. Set up by calling, in this order,
// InitFrameBuffer (optional), InitGrabber, InitVideo, SetVideoChannelSize (optional), Prepare and
// StartPreview; every step is harmless after an earlier one failed. Safe to use from any thread.
class CameraGrabber {
public:
    virtual ~CameraGrabber() = default;

    // Called from a thread of the camera's when it stops delivering for good: an error (a camera
    // pulled out, taken by another program) or the end of its stream. Given before InitGrabber.
    virtual void setStreamEndHandler(std::function<void()> ended) = 0;

    // Makes the buffer that receives frames of this size; false when it cannot be made.
    virtual bool InitFrameBuffer(int width, int height) = 0;
    virtual void InitGrabber() = 0;
    // Finds the camera.
    virtual void InitVideo() = 0;
    // The outcome of the latest step.
    virtual CameraError LastError() const = 0;
    virtual void SetVideoChannelSize(int left, int top, int width, int height) = 0;
    virtual void Prepare() = 0;
    // Frames flow from here on, with no further calls, until the grabber goes.
    virtual void StartPreview() = 0;
    // A copy of the newest frame, which stays valid after the grabber goes. Empty in the first
    // second after StartPreview, whose dark frames a camera gives while it adjusts, and once the
    // camera has stopped delivering.
    virtual std::optional<Picture> CurrentFrame() const = 0;
};

// The system's camera back end, or the null one where it cannot start.
std::unique_ptr<CameraGrabber> makeCameraGrabber();
