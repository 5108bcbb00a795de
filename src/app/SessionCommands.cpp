#include "app/SessionCommands.h"

#include "app/ApplicationCommands.h"
#include "app/wMain.h"

void carryOut(wMain& window, SessionCommand command) {
    switch (command) {
    case SessionCommand::Show:
        _ToolsShowMainWindow_Action(window);
        return;
    case SessionCommand::Hide:
        _ToolsHideMainWindow_Action(window);
        return;
    case SessionCommand::CaptureNow:
        window.captureNow();
        return;
    case SessionCommand::Pause:
    case SessionCommand::Resume:
        window.setPaused(command == SessionCommand::Pause);
        return;
    case SessionCommand::ShowHistory:
        _ToolsHistory_Action();
        return;
    case SessionCommand::Quit:
        // The same road as the close box, whatever the close does on its way.
        window.close();
        return;
    }
}
