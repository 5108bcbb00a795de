#include "platform/camera/CameraGrabber.h"
#include "platform/camera/GstCameraGrabber.h"
#include "platform/camera/NullCameraGrabber.h"

std::unique_ptr<CameraGrabber> makeCameraGrabber() {
    if (gstreamerAvailable()) {
        return makeGstCameraGrabber();
    }
    return std::make_unique<NullCameraGrabber>();
}
