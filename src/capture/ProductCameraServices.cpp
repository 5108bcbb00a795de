#include "capture/ProductCameraServices.h"

#include "base/GuiThread.h"
#include "base/UnhandledException.h"
#include "capture/wOutput.h"
#include "capture/wOutputSmall.h"

#include <QApplication>

namespace {
void openFrameWindow(Picture frame, FrameWindowKind kind, const Clock& clock) {
    CameraFrameWindow* window = nullptr;
    if (kind == FrameWindowKind::OutputSmall) {
        window = new wOutputSmall(std::move(frame), clock);
    } else {
        window = new wOutput(std::move(frame), clock);
    }
    window->show();
}
} // namespace

// Queued even on the GUI thread, so that a capture run never waits for a window.
void showCameraFrame(Picture frame, FrameWindowKind kind, const Clock& clock) {
    postToGuiThread([frame = std::move(frame), kind, &clock] {
        runGuarded([&] { openFrameWindow(frame, kind, clock); });
    });
}

CameraServices productCameraServices(const Clock& clock) {
    return {
        [] { return makeCameraGrabber(); },
        [&clock](Picture frame, FrameWindowKind kind) { showCameraFrame(std::move(frame), kind, clock); },
    };
}
