#include "capture/CaptureRun.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "capture/CameraLink.h"
#include "capture/CaptureFile.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"

namespace {
void takeScreen(const CaptureRunInput& input, int index, ScreenRun& screens, const Clock& clock,
                const std::stop_token& stop) {
    // Only this screen's pixels are held; they go at the end of the pass.
    const std::optional<Picture> picture =
        index < input.screens.size() ? screens.grab(input.screens.at(index)) : std::nullopt;
    if (stop.stop_requested()) {
        return;
    }
    if (!picture || picture->isNull()) {
        throw NilObjectException("screen " + std::to_string(index) + " could not be grabbed");
    }
    writeCaptureFile(*picture, input.prefs.pQuality, input.prefs.pDestination, captureStamp(clock.now()),
                     QString::number(index));
}

void takeScreens(const CaptureRunInput& input, ScreenGrabber& grabber, const Clock& clock,
                 const std::stop_token& stop) {
    const int count = input.prefs.pPrimaryOnly ? 1 : int(input.screens.size());
    if (count == 0) {
        return;
    }
    const ScreenRunStart start = grabber.beginRun(input.screens);
    if (stop.stop_requested()) {
        return;
    }
    if (!start.run) {
        // A desktop that said no says it at every run until someone changes its mind: only the
        // first refusal in a row is a screen that could not be grabbed, the others pass in silence.
        if (start.refusalIsNew) {
            throw NilObjectException("the desktop refused to show its screens");
        }
        return;
    }
    for (int index = 0; index < count && !stop.stop_requested(); ++index) {
        takeScreen(input, index, *start.run, clock, stop);
    }
}

void takeCameraPhoto() {
    if (!mCodeBaseGlv::pVideoGoodToGo.load()) {
        // A link that is not ready costs this run its photograph; the next run can have one.
        mCodeBaseStd::sSetupVideoForCamera();
        return;
    }
    if (!mCodeBaseStd::sTakePhotoViaCamera()) {
        mCodeBaseStd::sDisplayWarningMessage("Could Not Take Photograph ...");
    }
}
} // namespace

namespace mCodeBaseStd {
void sTakePictures(const CaptureRunInput& input, ScreenGrabber& grabber, const Clock& clock,
                   const std::stop_token& stop) {
    if (input.prefs.pUseScreen) {
        takeScreens(input, grabber, clock, stop);
    }
    if (input.prefs.pUseCamera && !stop.stop_requested()) {
        takeCameraPhoto();
    }
}
} // namespace mCodeBaseStd
