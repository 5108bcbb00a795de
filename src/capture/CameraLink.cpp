#include "capture/CameraLink.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "platform/camera/NullCameraGrabber.h"
#include "settings/CamImgSize.h"
#include "settings/mGeneralSettings.h"

namespace {
CameraServices noCamera() {
    return {[] { return std::make_unique<NullCameraGrabber>(); }, [](Picture, FrameWindowKind) {}};
}

Guarded<CameraServices> g_services(noCamera());

CameraServices services() {
    return g_services.get();
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
    CameraServices installed = services();
    if (replacement.makeGrabber) {
        installed.makeGrabber = std::move(replacement.makeGrabber);
    }
    if (replacement.showFrame) {
        installed.showFrame = std::move(replacement.showFrame);
    }
    g_services.set(std::move(installed));
}

namespace mCodeBaseGlv {
Guarded<std::shared_ptr<CameraGrabber>> pQTGrabber;
} // namespace mCodeBaseGlv

CameraLinkOwner::CameraLinkOwner(CameraServices services) {
    installCameraServices(std::move(services));
}

// What the services hold, a clock for one, may go with the owner's owner.
CameraLinkOwner::~CameraLinkOwner() {
    mCodeBaseGlv::pQTGrabber.set(nullptr);
    g_services.set(noCamera());
}

namespace mCodeBaseStd {
// No step returns early: a failed frame buffer still lets the camera start at its own size, and
// the user hears of each failure once.
void sSetupVideoForCamera() {
    using mCodeBaseGlv::pVideoGoodToGo;
    pVideoGoodToGo = true;
    const std::shared_ptr<CameraGrabber> grabber = services().makeGrabber();
    mCodeBaseGlv::pQTGrabber.set(grabber);
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
