#include "capture/CameraLink.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "capture/CamImgSize.h"
#include "platform/camera/NullCameraGrabber.h"
#include "settings/mGeneralSettings.h"

#include <mutex>

namespace {
std::mutex g_servicesMutex;
CameraServices g_services{
    [] { return std::make_unique<NullCameraGrabber>(); },
    [](Picture, FrameWindowKind) {},
};

CameraServices services() {
    std::lock_guard lock(g_servicesMutex);
    return g_services;
}

void showNewestFrame(FrameWindowKind kind) {
    const std::shared_ptr<CameraGrabber> grabber = mCodeBaseGlv::pQTGrabber.get();
    if (!grabber) {
        throw NilObjectException("The camera link was never set up");
    }
    std::optional<Picture> frame = grabber->CurrentFrame();
    if (!frame) {
        return;
    }
    services().showFrame(std::move(*frame), kind);
}
} // namespace

void installCameraServices(CameraServices replacement) {
    std::lock_guard lock(g_servicesMutex);
    if (replacement.makeGrabber) {
        g_services.makeGrabber = std::move(replacement.makeGrabber);
    }
    if (replacement.showFrame) {
        g_services.showFrame = std::move(replacement.showFrame);
    }
}

namespace mCodeBaseGlv {
GrabberSlot pQTGrabber;
} // namespace mCodeBaseGlv

CameraLinkOwner::~CameraLinkOwner() {
    mCodeBaseGlv::pQTGrabber.replace(nullptr);
}

namespace mCodeBaseStd {
// No step returns early: a failed frame buffer still lets the camera start at its own size, and
// the user hears of each failure once.
void sSetupVideoForCamera() {
    using mCodeBaseGlv::pVideoGoodToGo;
    pVideoGoodToGo = true;
    const std::shared_ptr<CameraGrabber> grabber = mCodeBaseGlv::pQTGrabber.replace(services().makeGrabber());
    const std::optional<QSize> size = camImgSize(mGeneralSettings::current().pCamImgSize);

    if (size && !grabber->InitFrameBuffer(size->width(), size->height())) {
        sDisplayWarningMessage("Failed to Create Frame Buffer ...");
        pVideoGoodToGo = false;
    }
    grabber->InitGrabber();
    grabber->InitVideo();
    if (grabber->LastError() == CameraError::NoVideoInputDevice) {
        sDisplayWarningMessage("No Video Input Device Found ...");
        pVideoGoodToGo = false;
    }
    if (size) {
        grabber->SetVideoChannelSize(0, 0, size->width(), size->height());
    }
    grabber->Prepare();
    grabber->StartPreview();
}

bool sTakePhotoViaCamera() {
    if (isSmallCamImgSize(mGeneralSettings::current().pCamImgSize)) {
        sP_SMALLPhoto();
    } else {
        sP_OTHERPhoto();
    }
    return true;
}

void sP_SMALLPhoto() {
    showNewestFrame(FrameWindowKind::OutputSmall);
}

void sP_OTHERPhoto() {
    showNewestFrame(FrameWindowKind::Output);
}
} // namespace mCodeBaseStd
