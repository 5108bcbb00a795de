#include "capture/CameraLink.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/UnhandledException.h"
#include "base/mCodeBaseGlv.h"
#include "platform/camera/NullCameraGrabber.h"
#include "settings/CamImgSize.h"
#include "settings/mGeneralSettings.h"

#include <mutex>

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

// One set-up at a time: a set-up under way is also the attempt of whoever asks meanwhile.
std::mutex g_setUpMutex;

// Which grabber the readiness flag speaks for, so that the end of one already replaced lowers
// nothing. Compared by address alone: taking a reference on a streaming thread could make it the
// last one, and the grabber would then try to join the thread it runs on.
std::mutex g_linkMutex;
const CameraGrabber* g_linked = nullptr;
bool g_linkEnded = false;

void linkTo(const CameraGrabber* grabber) {
    std::lock_guard lock(g_linkMutex);
    g_linked = grabber;
    g_linkEnded = false;
    mCodeBaseGlv::pVideoGoodToGo = false;
}

void endLink(const CameraGrabber* grabber) {
    std::lock_guard lock(g_linkMutex);
    if (g_linked == grabber) {
        g_linkEnded = true;
        mCodeBaseGlv::pVideoGoodToGo = false;
    }
}

// A camera that failed while it started has ended already, and is no more ready than one that
// failed a step.
void settleLink(const CameraGrabber* grabber, bool stepsSucceeded) {
    std::lock_guard lock(g_linkMutex);
    mCodeBaseGlv::pVideoGoodToGo = stepsSucceeded && g_linked == grabber && !g_linkEnded;
}

// No step returns early: a failed frame buffer still lets the camera start at its own size, and
// the user hears of each failure once. False when a step failed in a way the user is told of.
bool runSetUpSteps(CameraGrabber& grabber) {
    bool succeeded = true;
    const std::optional<QSize> size = camImgSize(mGeneralSettings::current().pCamImgSize);
    if (size && !grabber.InitFrameBuffer(size->width(), size->height())) {
        mCodeBaseStd::sDisplayWarningMessage("Failed to Create Frame Buffer ...");
        succeeded = false;
    }
    grabber.InitGrabber();
    grabber.InitVideo();
    if (grabber.LastError() == CameraError::NoVideoInputDevice) {
        mCodeBaseStd::sDisplayWarningMessage("No Video Input Device Found ...");
        succeeded = false;
    }
    if (size) {
        grabber.SetVideoChannelSize(0, 0, size->width(), size->height());
    }
    grabber.Prepare();
    grabber.StartPreview();
    return succeeded;
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
    if (m_setUp.joinable()) {
        m_setUp.join();
    }
    linkTo(nullptr);
    mCodeBaseGlv::pQTGrabber.set(nullptr);
    g_services.set(noCamera());
}

void CameraLinkOwner::setUpInBackground() {
    if (!m_setUpDone) {
        return;
    }
    if (m_setUp.joinable()) {
        m_setUp.join();
    }
    m_setUpDone = false;
    m_setUp = std::thread([this] {
        runGuarded(mCodeBaseStd::sSetupVideoForCamera);
        m_setUpDone = true;
    });
}

namespace mCodeBaseStd {
void sSetupVideoForCamera() {
    const std::unique_lock setUp(g_setUpMutex, std::try_to_lock);
    if (!setUp.owns_lock()) {
        return;
    }
    const std::shared_ptr<CameraGrabber> grabber = services().makeGrabber();
    const CameraGrabber* linked = grabber.get();
    grabber->setStreamEndHandler([linked] { endLink(linked); });
    linkTo(linked);
    mCodeBaseGlv::pQTGrabber.set(grabber);
    settleLink(linked, runSetUpSteps(*grabber));
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
