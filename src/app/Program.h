#pragma once

#include "base/MenuHandlers.h"
#include "base/ScheduleSuspension.h"
#include "capture/CameraLink.h"
#include "capture/CaptureRunner.h"
#include "feedback/Speech.h"
#include "history/PictureRetirement.h"
#include "platform/session/SessionChannel.h"
#include "schedule/PresenceRules.h"
#include "search/TextSearch.h"

#include <QPointer>

#include <memory>
#include <optional>

class Clock;
class Menu;
class ScreenGrabber;
class wMain;

// The program's long-lived parts, each handed what it needs. They are made in this order and go
// in the reverse one: the letting go of old pictures (joined), the watchers of the desktop, then
// the windows, then the capture runs (joined), the reader of the pictures' text (joined), the camera
// link's streaming threads, and the speech thread. Needs the application object.
class Program {
public:
    explicit Program(const Clock& clock);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    wMain& mainWindow() { return *m_main; }
    Menu& menu();
    CaptureRunner& runner() { return m_runner; }
    TextSearch& textSearch() { return m_search; }
    const ScheduleSuspension& suspension() const { return m_suspension; }

private:
    ScheduleSuspension m_suspension;
    MenuHandlers m_applicationHandlers;
    ProgramSpeech m_speech;
    CameraLinkOwner m_camera;
    std::unique_ptr<ScreenGrabber> m_grabber;
    TextSearch m_search; // outlives the runs that hand it their pictures
    CaptureRunner m_runner;
    std::unique_ptr<wMain> m_main;
    QPointer<Menu> m_menu;
    std::unique_ptr<PresenceRules> m_presence;
    PictureRetirement m_retirement;
};

// The program itself, as the one instance in the session: its windows, the capture schedule and
// the channel through which later starts reach it. `command` is carried out once it is open.
int runProgram(int& argc, char** argv, std::optional<SessionCommand> command);

// A later start: hands `command` to the running instance and ends.
int handOff(int& argc, char** argv, SessionCommand command);
// A later start: prints the running instance's state in one line and ends.
int printStatus(int& argc, char** argv);
