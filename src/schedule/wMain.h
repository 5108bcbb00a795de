#pragma once

#include "base/MenuHandlers.h"
#include "schedule/CaptureSchedule.h"
#include "schedule/QtScheduleTimer.h"
#include "schedule/ScheduleHost.h"

#include <QWidget>

class CaptureRunner;
class QLabel;
class QMenuBar;
class wGeneralSettings;

// The one window that lives as long as the program: the menu bar, the logo, the countdown and
// the two timers of the capture schedule. Closing it ends the program.
class wMain final : public QWidget, public MenuHandlerHost, private ScheduleHost {
    Q_OBJECT

public:
    explicit wMain(CaptureRunner& runner);
    ~wMain() override;

    // The one instance, or nullptr before it is made and after it is gone.
    static wMain* instance();

    // The real start of the program: settings, geometry, camera, update check, timers.
    void Event_Open();
    void ResetCountsAfterPrefs();
    // The settings window in front, its Save heard by this window.
    wGeneralSettings* showSettingsWindow();
    // The menu bar sits inside the window, above the logo's area.
    void installMenuBar(QMenuBar* bar);
    // One capture run now, under the rules of an expiry of the interval timer.
    void captureNow();
    void setPaused(bool paused);
    bool paused() const { return m_schedule.paused(); }

    QLabel* sttCountDown() const { return m_sttCountDown; }
    const MenuHandlers& menuHandlers() const override { return m_menuHandlers; }
    // Where the program binds the commands that open its own windows.
    MenuHandlers& menuHandlers() { return m_menuHandlers; }

signals:
    void pausedChanged(bool paused);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Keeps the window's place and ends the program, once the closing effect has played.
    void finishClosing();
    void AddMenuHandlers();
    bool _QVTPreferences_Action();
    bool _FileCheckForUpdates_Action();
    bool _ToolsCreateSlideshowMovie_Action();
    bool _HelpSendFeedback_Action();
    bool _HelpVisitourWebsite_Action();
    QSize minimumFrameSize() const;
    int menuBarHeight() const;
    void CheckForUpdates(bool interactive);
    void sGetWindowSettings();
    void timCountDown_Action();
    void timSnapShot_Action();

    // ScheduleHost
    void setCountDownVisible(bool visible) override;
    void setCountDownText(const QString& text) override;
    void refresh() override;
    void showWhitePicture() override;
    void showLogoPicture() override;
    void drawNoteIcon() override;
    void resetDockIcon() override;
    void speak(const QString& text) override;
    void startCaptureRun() override;

    CaptureRunner& m_runner;
    QLabel* m_ImageWell1;
    QLabel* m_sttCountDown;
    QtScheduleTimer m_timCountDown;
    QtScheduleTimer m_timSnapShot;
    CaptureSchedule m_schedule;
    MenuHandlers m_menuHandlers;
    bool m_closing = false;
    bool m_closed = false;
};
