#include "capture/CaptureRun.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "capture/CameraLink.h"
#include "capture/CaptureFile.h"
#include "capture/UnchangedScreens.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"

namespace {
// Writes one screen's picture unless it shows what the last one written for it showed.
void keepScreen(const CaptureRunInput& input, int index, const Picture& picture, const CaptureStamp& stamp,
                UnchangedScreens* unchanged) {
    const bool compared = unchanged && input.policies.pSkipUnchanged;
    if (compared && !unchanged->wanted(index, screenSignature(picture), input.policies.pKeepEveryRuns)) {
        return;
    }
    if (!writeCaptureFile(picture, input.prefs.pQuality, input.prefs.pDestination, stamp,
                          QString::number(index)) &&
        compared) {
        unchanged->notWritten(index);
    }
}

void takeScreen(const CaptureRunInput& input, int index, ScreenRun& screens, const Clock& clock,
                const std::stop_token& stop, UnchangedScreens* unchanged) {
    // Only this screen's pixels are held; they go at the end of the pass.
    const std::optional<Picture> picture =
        index < input.screens.size() ? screens.grab(input.screens.at(index)) : std::nullopt;
    if (stop.stop_requested()) {
        return;
    }
    if (!picture || picture->isNull()) {
        throw NilObjectException("screen " + std::to_string(index) + " could not be grabbed");
    }
    keepScreen(input, index, *picture, captureStamp(clock.now()), unchanged);
}

void takeScreens(const CaptureRunInput& input, ScreenGrabber& grabber, const Clock& clock,
                 const std::stop_token& stop, UnchangedScreens* unchanged) {
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
        takeScreen(input, index, *start.run, clock, stop, unchanged);
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
                   const std::stop_token& stop, UnchangedScreens* unchanged) {
    if (input.prefs.pUseScreen) {
        takeScreens(input, grabber, clock, stop, unchanged);
    }
    if (input.prefs.pUseCamera && !stop.stop_requested()) {
        takeCameraPhoto();
    }
}
} // namespace mCodeBaseStd
