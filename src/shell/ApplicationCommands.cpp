#include "shell/ApplicationCommands.h"

#include "schedule/wMain.h"
#include "shell/DialogWindow.h"
#include "shell/MenuCommands.h"

#include <QApplication>

void _ApplicationAddMenuHandlers() {
    MenuHandlers& handlers = applicationMenuHandlers();
    handlers.AddMenuHandler("ToolsShowMainWindow", _ToolsShowMainWindow_Action);
    handlers.AddMenuHandler("ToolsHideMainWindow", _ToolsHideMainWindow_Action);
    // With the main window hidden, closing any other window must not end the program: only the
    // main window's close does.
    QApplication::setQuitOnLastWindowClosed(false);
}

bool _ToolsShowMainWindow_Action() {
    if (wMain* window = wMain::instance()) {
        bringToFront(window);
    }
    return true;
}

bool _ToolsHideMainWindow_Action() {
    if (wMain* window = wMain::instance()) {
        window->hide();
    }
    return true;
}
