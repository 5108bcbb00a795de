#include "app/ApplicationCommands.h"

#include "app/Autostart.h"
#include "app/Menu.h"
#include "app/wMain.h"
#include "base/DialogWindow.h"
#include "base/mProgramInfo.h"
#include "feedback/DockIcon.h"
#include "history/wHistory.h"
#include "platform/filemanager/FileManager.h"
#include "schedule/WaitReason.h"
#include "search/SearchRuns.h"
#include "search/TextIndex.h"
#include "settings/mGeneralSettings.h"

#include <QApplication>
#include <QPointer>

// The handlers outlive the window, which they reach only while it is there.
void _ApplicationAddMenuHandlers(MenuHandlers& handlers, wMain& window) {
    const QPointer<wMain> main(&window);
    handlers.AddMenuHandler("ToolsShowMainWindow",
                            [main] { return main && _ToolsShowMainWindow_Action(*main); });
    handlers.AddMenuHandler("ToolsHideMainWindow",
                            [main] { return main && _ToolsHideMainWindow_Action(*main); });
    handlers.AddMenuHandler("ToolsHistory", _ToolsHistory_Action);
    // With the main window hidden, closing any other window must not end the program: only the
    // main window's close does.
    QApplication::setQuitOnLastWindowClosed(false);
}

bool _ToolsShowMainWindow_Action(wMain& window) {
    bringToFront(&window);
    return true;
}

bool _ToolsHideMainWindow_Action(wMain& window) {
    window.hide();
    return true;
}

bool _ToolsHistory_Action() {
    static QPointer<wHistory> window;
    if (window.isNull()) {
        window = new wHistory([] { return mGeneralSettings::current().pDestination; }, makeFileManager(),
                              [](const QString& query) {
                                  return searchRuns(TextIndex::defaultPath(),
                                                    mGeneralSettings::current().pDestination, query);
                              });
        // Its workers are joined before the program's own threads go.
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, window, [] { delete window.data(); });
    }
    bringToFront(window);
    return true;
}

void connectMainWindow(wMain& window, Menu& menu) {
    window.installMenuBar(&menu);
    setDockMenu(menu.trayMenu());
    // The end of the program is the main window's close, which keeps its place.
    QObject::connect(&menu, &Menu::quitRequested, &window, &QWidget::close);
    QObject::connect(&menu, &Menu::captureNowRequested, &window, &wMain::captureNow);
    QObject::connect(&menu, &Menu::pauseRequested, &window, &wMain::setPaused);
    QObject::connect(&window, &wMain::pausedChanged, &menu, &Menu::setPaused);
    QObject::connect(&menu, &Menu::startAtLoginRequested, &menu, [](bool on) { setAutostart(on); });
    const auto showStatus = [](const QString& status) {
        setDockToolTip(status == kRunningStatus ? mProgramInfo::pProgramName : status);
    };
    QObject::connect(&window, &wMain::statusChanged, &menu, showStatus);
    showStatus(window.statusLine());
}
