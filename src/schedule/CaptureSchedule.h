#pragma once

#include "schedule/WaitReason.h"

#include <QString>

#include <cstdint>

namespace mGeneralSettings {
struct Prefs;
}
class ScheduleHost;
class ScheduleTimer;

// The countdown and the interval timer of the main window: when to capture, what the countdown
// label says, when the warning is spoken, and why it waits.
class CaptureSchedule final : public WaitReasonSink {
public:
    CaptureSchedule(ScheduleTimer& timCountDown, ScheduleTimer& timSnapShot, ScheduleHost& host);

    void SetupCountDownTimer();
    void SetupSnapShotTimer();
    // Every tick of the one-second timer.
    void CountDownAction();
    // Every expiry of the interval timer.
    void SnapShotAction();
    // After the settings window saved a new interval.
    void ResetCountsAfterPrefs();
    // The go flag: the interval timer may be armed from the next tick on. Once set it stays.
    void ActivateSnapShotTimer() { m_pActivateSnapShotTimer = true; }

    // While any reason holds the schedule waits, and the countdown label says why.
    void setWaiting(WaitReason reason, bool on) override;
    bool waiting(WaitReason reason) const;
    QString statusLine() const { return m_waiting.statusLine(); }

    // 0 or negative while running: the seconds left are the interval plus this.
    std::int32_t pTimCountDownLoop() const { return m_timCountDownLoop; }

private:
    std::int64_t remainingSec(const mGeneralSettings::Prefs& prefs) const;
    void showState(const mGeneralSettings::Prefs& prefs);
    void showRemaining(const mGeneralSettings::Prefs& prefs);

    ScheduleTimer& m_timCountDown;
    ScheduleTimer& m_timSnapShot;
    ScheduleHost& m_host;
    WaitReasons m_waiting;
    std::int32_t m_timCountDownLoop = 0;
    bool m_pActivateSnapShotTimer = false;
};
