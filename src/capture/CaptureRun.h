#pragma once

#include "platform/Picture.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"

#include <QList>
#include <QRect>

#include <functional>

#include <stop_token>

class ScreenGrabber;
class Clock;
class UnchangedScreens;

// Told of each screen picture that a run has written, with its pixels, on the run's thread.
using ScreenPictureSink = std::function<void(const QString& path, const Picture& picture)>;

// What one capture run works from, taken on the GUI thread when the run starts.
struct CaptureRunInput {
    mGeneralSettings::Prefs prefs;
    QList<QRect> screens; // primary first
    mPolicies::Policies policies{};
    // The program's own main window in the same pixels, left out when screens are compared: it
    // shows white while a run starts. Empty while hidden or where its place is not known.
    QRect ownWindow{};
    ScreenPictureSink written = {};
};

namespace mCodeBaseStd {
// One whole capture run: a progressive JPEG per wanted screen into the destination folder, then
// the camera stage. Runs on a capture thread. Throws NilObjectException when a screen cannot be
// grabbed, the files of earlier screens staying, and when the desktop refuses the screens after it
// had not; a refusal repeated skips the screens in silence, as does a desktop still busy with an
// earlier run.
// A run told to stop, as at quit, writes no further file. With `unchanged`, a screen that shows
// what its last picture showed is skipped as the policies say; the camera's photograph never is.
void sTakePictures(const CaptureRunInput& input, ScreenGrabber& grabber, const Clock& clock,
                   const std::stop_token& stop = {}, UnchangedScreens* unchanged = nullptr);
} // namespace mCodeBaseStd
