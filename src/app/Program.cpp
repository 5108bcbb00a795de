#include "app/Program.h"

#include "app/ApplicationCommands.h"
#include "app/Kestrelview.h"
#include "app/SessionCommands.h"
#include "base/DialogPresenter.h"
#include "capture/CameraLink.h"
#include "capture/CaptureRunner.h"
#include "capture/ProductCameraServices.h"
#include "feedback/Speech.h"
#include "platform/Clock.h"
#include "platform/WaylandSession.h"
#include "platform/screen/ScreenGrabber.h"
#include "schedule/wMain.h"
#include "slideshow/wMovie.h"

#include <QCoreApplication>

#include <cstdio>

// Every thread of the program is joined before this returns: the capture runs by the runner,
// then the camera's streaming threads by the link's owner, then the speech thread.
int runProgram(int& argc, char** argv, std::optional<SessionCommand> command) {
    DialogPresenter presenter; // outlives the capture runs that may still ask for a dialog
    installMessagePresenter(&presenter);
    platform::preferNativeWindows();
    Kestrelview app(argc, argv);
    // Published as early as can be, so that a later start finds somebody to answer; what it asks
    // is carried out once the event loop runs, and the main window is there by then.
    const auto channel = makeSessionChannel();
    channel->publish([](SessionCommand asked) {
        if (wMain* window = wMain::instance()) {
            carryOut(*window, asked);
        }
    });
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
        if (command) {
            carryOut(window, *command);
        }
        status = Kestrelview::exec();
        presenter.stopWaiting();
        waitForMovieAssembly();
    }
    // A run under way may finish its files; one stuck in a grab or a write is left behind.
    runner.finishRuns(CaptureRunner::kQuitPatience);
    return status;
}

// Needs no display: the running instance does all the work.
int handOff(int& argc, char** argv, SessionCommand command) {
    QCoreApplication app(argc, argv);
    const auto channel = makeSessionChannel();
    if (!channel->available()) {
        std::fputs("Kestrelview is already running, and without a session bus this start cannot reach it.\n",
                   stderr);
        return 1;
    }
    if (!channel->send(command)) {
        std::fputs("Kestrelview is already running but did not answer on the session bus.\n", stderr);
        return 1;
    }
    return 0;
}
