#include "app/ApplicationCommands.h"
#include "app/Kestrelview.h"
#include "base/DialogPresenter.h"
#include "capture/CameraLink.h"
#include "capture/CaptureRunner.h"
#include "capture/ProductCameraServices.h"
#include "feedback/Speech.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"
#include "schedule/wMain.h"

// Every thread of the program is joined before main returns: the capture runs by the runner,
// then the camera's streaming threads by the link's owner, then the speech thread.
int main(int argc, char** argv) {
    DialogPresenter presenter; // outlives the capture runs that may still ask for a dialog
    installMessagePresenter(&presenter);
    Kestrelview app(argc, argv);
    if (!app.Event_Open()) {
        return 0;
    }
    ProgramSpeech speech;
    CameraLinkOwner camera;
    installProductCameraServices();
    _ApplicationAddMenuHandlers();
    const auto grabber = makeScreenGrabber();
    CaptureRunner runner(*grabber, systemClock());
    int status = 0;
    {
        wMain window(runner);
        connectMainWindow(window);
        window.Event_Open();
        status = Kestrelview::exec();
        presenter.stopWaiting();
    }
    runner.waitForRuns(); // a run under way finishes its files before the program ends
    return status;
}
