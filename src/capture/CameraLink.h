#pragma once

#include "base/Guarded.h"
#include "platform/Picture.h"
#include "platform/camera/CameraGrabber.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

enum class FrameWindowKind {
    Output,      // wOutput
    OutputSmall, // wOutputSmall
};

// What the camera link is built from. The program installs its camera and frame windows at
// start; until then the link finds no camera and shows nothing.
struct CameraServices {
    std::function<std::unique_ptr<CameraGrabber>()> makeGrabber;
    // Shows a frame in a new frame window, which writes it when it closes. Called from any
    // thread, it returns without waiting for the window.
    std::function<void(Picture frame, FrameWindowKind kind)> showFrame;
};
// An empty member keeps what was there before.
void installCameraServices(CameraServices services);

// Owns the camera link for the program: the link is built from `services` for as long as the owner
// lives, and when it goes, the set-up it started is waited for, and the link that the set-ups
// opened is stopped and its streaming threads joined. Made before the capture runner, so that it
// goes after the last capture run, which may still set the link up again.
class CameraLinkOwner {
public:
    explicit CameraLinkOwner(CameraServices services = {});
    ~CameraLinkOwner();
    CameraLinkOwner(const CameraLinkOwner&) = delete;
    CameraLinkOwner& operator=(const CameraLinkOwner&) = delete;

    // Sets the link up on a thread of the owner's and returns at once, since finding the camera
    // can take a while. Nothing new starts while a set-up is still under way.
    void setUpInBackground();

private:
    std::thread m_setUp;
    std::atomic<bool> m_setUpDone{true};
};

namespace mCodeBaseGlv {
// The one camera grabber, empty before the first set-up. A set-up on one thread may replace it
// while a photograph on another still reads the old one, which goes when both have let it go.
extern Guarded<std::shared_ptr<CameraGrabber>> pQTGrabber;
} // namespace mCodeBaseGlv

namespace mCodeBaseStd {
// Opens or reopens the camera link, and raises mCodeBaseGlv::pVideoGoodToGo once it has
// succeeded; the flag goes down again when the camera stops delivering, so that the next capture
// run sets the link up anew. Does nothing while another set-up is under way.
void sSetupVideoForCamera();
// Shows the newest camera frame in a frame window, which writes it when it closes. Always true.
bool sTakePhotoViaCamera();
// Open a wOutputSmall or a wOutput with the newest frame; nothing when there is no frame.
// Throw NilObjectException before the first set-up.
void sP_SMALLPhoto();
void sP_OTHERPhoto();
} // namespace mCodeBaseStd
