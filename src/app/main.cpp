#include "app/ApplicationCommands.h"
#include "app/Kestrelview.h"
#include "base/DialogPresenter.h"
#include "capture/CaptureRunner.h"
#include "capture/ProductCameraServices.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"
#include "schedule/wMain.h"
#include "slideshow/wMovie.h"

int main(int argc, char** argv) {
    DialogPresenter presenter; // outlives the capture runs that may still ask for a dialog
    installMessagePresenter(&presenter);
    Kestrelview app(argc, argv);
    if (!app.Event_Open()) {
        return 0;
    }
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
        waitForMovieAssembly();
    }
    runner.waitForRuns(); // a run under way finishes its files before the program ends
    return status;
}
