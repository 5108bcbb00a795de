#include "capture/CaptureRun.h"

#include "base/Messages.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "capture/CameraLink.h"
#include "capture/CaptureFile.h"
#include "capture/UnchangedScreens.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"

#include <algorithm>
#include <deque>
#include <future>
#include <thread>

namespace {
// Writes one screen's picture unless it shows what the last one written for it showed.
void keepScreen(const CaptureRunInput& input, int index, const Picture& picture, const CaptureStamp& stamp,
                UnchangedScreens* unchanged) {
    const bool compared = unchanged && input.policies.pSkipUnchanged;
    const QRect ownWindow = input.ownWindow.translated(-input.screens.value(index).topLeft());
    if (compared &&
        !unchanged->wanted(index, screenSignature(picture, ownWindow), input.policies.pKeepEveryRuns)) {
        return;
    }
    const std::optional<QString> path = writeCaptureFile(
        picture, input.prefs.pQuality, input.prefs.pDestination, stamp, QString::number(index));
    if (!path && compared) {
        unchanged->notWritten(index);
    }
    if (path && input.written) {
        input.written(*path, picture);
    }
}

// As many pictures are encoded at once as the machine has cores.
std::size_t encodersAtOnce() {
    return std::max(1U, std::thread::hardware_concurrency());
}

// Grabs the screens in their order, each stamped after its grab, and writes them side by side:
// a run costs about its slowest screen. No more pictures are held than are being written.
void grabAndWrite(const CaptureRunInput& input, int count, ScreenRun& screens, const Clock& clock,
                  const std::stop_token& stop, UnchangedScreens* unchanged) {
    std::deque<std::future<void>> writing;
    for (int index = 0; index < count && !stop.stop_requested(); ++index) {
        if (writing.size() >= encodersAtOnce()) {
            writing.front().get();
            writing.pop_front();
        }
        std::optional<Picture> picture =
            index < input.screens.size() ? screens.grab(input.screens.at(index)) : std::nullopt;
        if (stop.stop_requested()) {
            break;
        }
        if (!picture || picture->isNull()) {
            throw NilObjectException("screen " + std::to_string(index) + " could not be grabbed");
        }
        writing.push_back(
            std::async(std::launch::async, [&input, &stop, index, unchanged, picture = std::move(*picture),
                                            stamp = captureStamp(clock.now())] {
                if (!stop.stop_requested()) {
                    keepScreen(input, index, picture, stamp, unchanged);
                }
            }));
    }
    for (std::future<void>& write : writing) {
        write.get();
    }
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
    grabAndWrite(input, count, *start.run, clock, stop, unchanged);
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
