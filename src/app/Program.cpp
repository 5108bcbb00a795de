#include "app/Program.h"

#include "app/ApplicationCommands.h"
#include "app/Kestrelview.h"
#include "app/Menu.h"
#include "app/SessionCommands.h"
#include "app/wMain.h"
#include "base/DialogPresenter.h"
#include "capture/ProductCameraServices.h"
#include "platform/Clock.h"
#include "platform/WaylandSession.h"
#include "platform/screen/ScreenGrabber.h"
#include "search/TextIndex.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"
#include "slideshow/wMovie.h"

#include <QCoreApplication>

#include <cstdio>

namespace {
const char* const kNoAnswer = "Kestrelview is already running but did not answer on the session bus.\n";
} // namespace

Program::Program(const Clock& clock)
    : m_camera(productCameraServices(clock))
    , m_grabber(makeScreenGrabber())
    , m_search(TextIndex::defaultPath())
    , m_runner(*m_grabber, clock)
    , m_main(std::make_unique<wMain>(m_runner, m_speech, m_suspension, m_camera))
    , m_menu(new Menu(m_applicationHandlers))
    , m_presence(std::make_unique<PresenceRules>(
          desktopPresenceWatchers(),
          PresenceRules::Inputs{mPolicies::current, [] { return mGeneralSettings::current().pUseCamera; }},
          clock, m_main->waitReasons())) {
    m_runner.setScreenPictureSink(
        [this](const QString& path, const Picture& picture) { m_search.pictureWritten(path, picture); });
    _ApplicationAddMenuHandlers(m_applicationHandlers, *m_main);
    connectMainWindow(*m_main, *m_menu);
}

// The runner, as it goes, lets a run under way finish its files; one stuck in a grab or a write
// is left behind after a few seconds.
Program::~Program() = default;

Menu& Program::menu() {
    return *m_menu;
}

// Every thread of the program is joined before this returns: the capture runs, then the camera's
// streaming threads, then the speech thread, as the program lets its parts go.
int runProgram(int& argc, char** argv, std::optional<SessionCommand> command) {
    DialogPresenter presenter; // outlives the capture runs that may still ask for a dialog
    installMessagePresenter(&presenter);
    platform::preferNativeWindows();
    Kestrelview app(argc, argv);
    std::unique_ptr<Program> program;
    // Published as early as can be, so that a later start finds somebody to answer; what it asks
    // is carried out once the event loop runs, and the program is there by then.
    const auto channel = makeSessionChannel();
    channel->publish(
        [&program](SessionCommand asked) {
            if (program) {
                carryOut(program->mainWindow(), asked);
            }
        },
        [&program] { return program ? program->mainWindow().statusLine() : QStringLiteral("Starting"); });
    if (!app.Event_Open()) {
        return 0;
    }
    program = std::make_unique<Program>(systemClock());
    program->mainWindow().Event_Open();
    if (command) {
        carryOut(program->mainWindow(), *command);
    }
    const int status = Kestrelview::exec();
    presenter.stopWaiting();
    waitForMovieAssembly();
    program.reset();
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
        std::fputs(kNoAnswer, stderr);
        return 1;
    }
    return 0;
}

int printStatus(int& argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const std::optional<QString> status = makeSessionChannel()->status();
    if (!status) {
        std::fputs(kNoAnswer, stderr);
        return 1;
    }
    std::printf("%s\n", qPrintable(*status));
    return 0;
}
