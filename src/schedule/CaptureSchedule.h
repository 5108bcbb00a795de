#pragma once

#include <QString>

#include <cstdint>

struct AppState;
namespace mGeneralSettings {
struct Prefs;
}
class ScheduleHost;
class ScheduleTimer;

// The countdown and the interval timer of the main window: when to capture, what the countdown
// label says, when the warning is spoken. Settings are read afresh at each action.
class CaptureSchedule {
public:
    CaptureSchedule(ScheduleTimer& timCountDown, ScheduleTimer& timSnapShot, ScheduleHost& host,
                    AppState& app);

    void SetupCountDownTimer();
    void SetupSnapShotTimer();
    // Every tick of the one-second timer.
    void CountDownAction();
    // Every expiry of the interval timer.
    void SnapShotAction();
    // After the settings window saved a new interval.
    void ResetCountsAfterPrefs();
    // Paused, the schedule waits as it does for a busy window, and the countdown label says so.
    void setPaused(bool paused);
    bool paused() const { return m_paused; }

    // 0 or negative while running: the seconds left are the interval plus this.
    std::int32_t pTimCountDownLoop() const { return m_timCountDownLoop; }

private:
    bool waiting() const;
    std::int64_t remainingSec(const mGeneralSettings::Prefs& prefs) const;
    void showRemaining(const mGeneralSettings::Prefs& prefs);

    ScheduleTimer& m_timCountDown;
    ScheduleTimer& m_timSnapShot;
    ScheduleHost& m_host;
    AppState& m_app;
    std::int32_t m_timCountDownLoop = 0;
    bool m_paused = false;
};
