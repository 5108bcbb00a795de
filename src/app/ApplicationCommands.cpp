#include "app/ApplicationCommands.h"

#include "app/Autostart.h"
#include "app/Menu.h"
#include "app/wAbout.h"
#include "base/DialogWindow.h"
#include "feedback/DockIcon.h"
#include "feedback/WindowTransition.h"
#include "schedule/wMain.h"

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

void connectMainWindow(wMain& window) {
    Menu* menu = Menu::instance();
    window.installMenuBar(menu);
    setDockMenu(menu->trayMenu());
    // The end of the program is the main window's close, which keeps its place.
    QObject::connect(menu, &Menu::quitRequested, &window, &QWidget::close);
    QObject::connect(menu, &Menu::captureNowRequested, &window, &wMain::captureNow);
    QObject::connect(menu, &Menu::pauseRequested, &window, &wMain::setPaused);
    QObject::connect(&window, &wMain::pausedChanged, menu, &Menu::setPaused);
    QObject::connect(menu, &Menu::startAtLoginRequested, menu, [](bool on) { setAutostart(on); });
    // The about window suspends the schedule, so it answers false and lets an application
    // handler have its turn.
    window.menuHandlers().AddMenuHandler("HelpAbout", [&window] {
        fxWindowTransition(&window, "Flip", "Left", 1, 0, [] { bringToFront(wAbout::instance()); });
        return false;
    });
}
