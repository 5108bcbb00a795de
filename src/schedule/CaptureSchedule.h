#pragma once

#include <cstdint>

struct AppState;
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

    // 0 or negative while running: the seconds left are the interval plus this.
    std::int32_t pTimCountDownLoop() const { return m_timCountDownLoop; }

private:
    ScheduleTimer& m_timCountDown;
    ScheduleTimer& m_timSnapShot;
    ScheduleHost& m_host;
    AppState& m_app;
    std::int32_t m_timCountDownLoop = 0;
};
