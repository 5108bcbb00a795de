#pragma once

#include "base/MenuHandlers.h"
#include "base/SingleWindow.h"
#include "feedback/CloseAfterEffect.h"
#include "schedule/CaptureSchedule.h"
#include "schedule/QtScheduleTimer.h"
#include "schedule/ScheduleHost.h"

#include <QWidget>

class CameraLinkOwner;
class CaptureRunner;
class ProgramSpeech;
class QLabel;
class QMenuBar;
class ScheduleSuspension;
class wAbout;
class wGeneralSettings;
class wMovie;

// The one window that lives as long as the program: the menu bar, the logo, the countdown and
// the two timers of the capture schedule, and the windows it opens. Closing it ends the program.
class wMain final : public QWidget, public MenuHandlerHost, private ScheduleHost {
    Q_OBJECT

public:
    // The window's parts outlive it; the windows that it opens hold `suspension`.
    wMain(CaptureRunner& runner, ProgramSpeech& speech, ScheduleSuspension& suspension,
          CameraLinkOwner& camera);
    ~wMain() override;

    // The real start of the program: settings, geometry, camera, update check, timers.
    void Event_Open();
    void ResetCountsAfterPrefs();
    // The settings window in front, its Save heard by this window.
    wGeneralSettings* showSettingsWindow();
    // The about and movie windows, made and filled in if there is none.
    wAbout* aboutWindow();
    wMovie* movieWindow();
    // The menu bar sits inside the window, above the logo's area.
    void installMenuBar(QMenuBar* bar);
    // One capture run now, under the rules of an expiry of the interval timer.
    void captureNow();
    void setPaused(bool paused);
    bool paused() const { return m_schedule.waiting(WaitReason::Paused); }
    // Where the sources outside the window say why the schedule waits.
    WaitReasonSink& waitReasons() { return m_schedule; }
    // "Running", or why the schedule waits.
    QString statusLine() const { return m_schedule.statusLine(); }

    QLabel* sttCountDown() const { return m_sttCountDown; }
    const MenuHandlers& menuHandlers() const override { return m_menuHandlers; }
    // Where the program binds the commands that open its own windows.
    MenuHandlers& menuHandlers() { return m_menuHandlers; }

signals:
    void pausedChanged(bool paused);
    void statusChanged(const QString& status);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Keeps the window's place and ends the program, once the closing effect has played.
    void finishClosing();
    void AddMenuHandlers();
    bool _QVTPreferences_Action();
    bool _HelpAbout_Action();
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
    void suspensionChanged();
    void diskFullChanged(bool full);

    // ScheduleHost
    mGeneralSettings::Prefs settings() const override;
    bool cameraReady() const override;
    void setCountDownVisible(bool visible) override;
    void setCountDownText(const QString& text) override;
    void refresh() override;
    void showWhitePicture() override;
    void showLogoPicture() override;
    void drawNoteIcon() override;
    void resetDockIcon() override;
    void speak(const QString& text) override;
    void startCaptureRun() override;
    void waitingChanged(const QString& status) override;

    CaptureRunner& m_runner;
    ProgramSpeech& m_speech;
    ScheduleSuspension& m_suspension;
    CameraLinkOwner& m_camera;
    QLabel* m_ImageWell1;
    QLabel* m_sttCountDown;
    QtScheduleTimer m_timCountDown;
    QtScheduleTimer m_timSnapShot;
    CaptureSchedule m_schedule;
    MenuHandlers m_menuHandlers;
    SingleWindow<wAbout> m_about;
    SingleWindow<wGeneralSettings> m_settings;
    SingleWindow<wMovie> m_movie;
    CloseAfterEffect m_closing{*this, TransitionEffect::WarpFade, TransitionSide::Right};
};
