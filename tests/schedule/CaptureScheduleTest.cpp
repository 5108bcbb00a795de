#include "schedule/CaptureSchedule.h"
#include "base/ScheduleSuspension.h"
#include "schedule/QtScheduleTimer.h"
#include "schedule/ScheduleHost.h"
#include "settings/mGeneralSettings.h"

#include <gtest/gtest.h>

#include <optional>

#include <string>

namespace {
// A timer counted in whole seconds, restarted wherever QtScheduleTimer restarts its QTimer.
struct Timer final : ScheduleTimer {
    bool enabled() const override { return on; }
    void setEnabled(bool value) override { on = value, left = periodMs / 1000; }
    void setPeriodMs(std::int64_t v) override { left = std::exchange(periodMs, v) == v ? left : v / 1000; }
    // Counts off a second; true when that ends the period.
    bool fires() { return on && periodMs > 0 && --left == 0 && (left = periodMs / 1000) > 0; }
    bool on = false;
    std::int64_t periodMs = 1000, left = 0;
};

// The schedule as the main window starts it, and what the user sees and hears of it: the countdown
// label, the window's pictures and marks in order, and the second of each phrase and capture.
struct Schedule final : ScheduleHost {
    explicit Schedule(int interval, const char* warn = "TRUE", const char* shown = "TRUE", bool go = true) {
        if (go) {
            schedule.ActivateSnapShotTimer();
        }
        prefs.pThreeSecondWarning = isFlagSet(warn);
        prefs.pShowCountdown = isFlagSet(shown);
        prefs.pInterval = interval;
        schedule.SetupCountDownTimer();
        schedule.SetupSnapShotTimer();
    }
    // Runs the clock on by whole seconds; what the label showed after each.
    std::string run(int seconds) {
        std::string labels;
        for (int i = 0; i < seconds; ++i) {
            ++second;
            // A timer armed during this second's tick is not due in it.
            const bool tick = countDown.fires(), expiry = snapShot.fires();
            if (tick) {
                schedule.CountDownAction();
            }
            if (expiry) {
                schedule.SnapShotAction();
            }
            labels += (i ? " " : "") + label();
        }
        return labels;
    }
    std::string label() const { return visible ? text : "(" + text + ")"; }
    mGeneralSettings::Prefs settings() const override { return prefs; }
    bool cameraReady() const override { return ready; }
    void waitingChanged(const QString& line) override { status = line.toStdString(); }
    void setCountDownVisible(bool value) override { visible = value; }
    void setCountDownText(const QString& value) override { text = value.toStdString(); }
    void refresh() override { steps += "refresh "; }
    void showWhitePicture() override { steps += "white "; }
    void showLogoPicture() override { steps += "logo "; }
    void drawNoteIcon() override { steps += "note "; }
    void resetDockIcon() override { steps += "reset "; }
    void speak(const QString& what) override {
        heard += what.toStdString() + '@' + std::to_string(second) + ' ';
    }
    void startCaptureRun() override {
        steps += "capture ";
        speak("capture");
    }
    mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
    int second = 0;
    std::string text, steps, heard, status;
    bool visible = false, ready = false;
    Timer countDown, snapShot;
    CaptureSchedule schedule{countDown, snapShot, *this};
};

TEST(CaptureSchedule, CountsDownWarnsAtFourAndCapturesAtTheInterval) {
    const std::tuple<std::int32_t, const char*, const char*, int, const char*, const char*> cases[] = {
        // interval, warning, shown, seconds run, the label after each second, what was heard when
        {10, "TRUE", "TRUE", 20, "9 8 7 6 5 4 (4) (4) (4) 10 9 8 7 6 5 4 (4) (4) (4) 10",
         "In Three Seconds@6 capture@10 In Three Seconds@16 capture@20 "},
        {5, "TRUE", "TRUE", 5, "4 (4) (4) (4) 5", "In Three Seconds@1 capture@5 "},
        {4, "TRUE", "TRUE", 4, "(4) (4) (4) 4", "capture@4 "},
        {6, "FALSE", "FALSE", 7, "(5) (4) (4) (4) (4) (6) (5)", "capture@6 "}, // hidden, it still counts
    };
    for (const auto& [interval, warning, shown, seconds, labels, heard] : cases) {
        Schedule s(interval, warning, shown);
        EXPECT_EQ(s.run(seconds), labels);
        EXPECT_EQ(s.heard, heard) << "interval " << interval;
    }
}

TEST(CaptureSchedule, TheIntervalTimerArmsOnlyWithTheGoFlagAndAnIntervalAboveZero) {
    Schedule s(30, "TRUE", "TRUE", false);
    EXPECT_EQ(s.run(3), "(30) (30) (30)");
    s.schedule.ActivateSnapShotTimer(); // the update check has ended
    EXPECT_EQ(s.run(2), "(30) 29") << "the tick that arms the interval timer is not counted";
    s.run(30);
    EXPECT_EQ(s.heard, "In Three Seconds@30 capture@34 ");
    Schedule zero(0);
    EXPECT_EQ(zero.run(3), "(0) (0) (0)");
    zero.prefs.pInterval = 7;
    zero.schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(zero.run(8), "(7) 6 5 4 (4) (4) (4) 7");
    zero.prefs.pInterval = 3; // a new interval restarts the running timer
    zero.schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(zero.run(3), "(3) (3) 3");
    Schedule huge(INT32_MAX);
    EXPECT_EQ(huge.run(1), "2147483646");
    EXPECT_EQ(huge.snapShot.periodMs, 2147483647000);
}

TEST(CaptureSchedule, AnyReasonToWaitFreezesTheCountLosesTheExpiryAndSaysWhy) {
    using enum WaitReason;
    const std::tuple<WaitReason, std::string, std::string> cases[] = {
        {Paused, "Paused", "Paused"},
        {Suspended, "Paused", "Paused"},
        {LeftSuspended, "Paused", "Paused: open Preferences and leave it with Save or Cancel"},
        {Locked, "Locked", "Locked"},
        {Private, "Private", "Private"}};
    for (const auto& [reason, word, status] : cases) {
        Schedule s(60, "TRUE", "FALSE");
        s.run(10);
        s.schedule.setWaiting(reason, true);
        s.schedule.setWaiting(Suspended, true); // a second reason, over before the first
        s.schedule.setWaiting(Suspended, reason == Suspended);
        s.steps.clear();
        s.run(55);
        // Said even where the countdown is hidden; the expiry at 60 is lost.
        EXPECT_EQ(s.label() + s.steps + s.heard + '|' + s.status, word + '|' + status);
        s.schedule.setWaiting(reason, false);
        EXPECT_EQ(s.run(1) + '|' + s.status, "(49)|Running") << "the count goes on from where it stood";
    }
}

TEST(CaptureSchedule, APrivateWindowBeforeAWantedCameraSaysSoWhileTheCountAndTheRunsGoOn) {
    Schedule s(6, "FALSE");
    s.schedule.setWaiting(WaitReason::PrivateScreens, true);
    EXPECT_EQ(s.run(7) + '|' + s.heard + s.status, "Private Private Private Private Private Private Private"
                                                   "|capture@6 Private");
    s.schedule.setWaiting(WaitReason::PrivateScreens, false);
    EXPECT_EQ(s.label(), "5");
}

TEST(CaptureSchedule, AnExpiryFlashesAndMarksAroundTheCaptureAndAnnouncesOnlyAReadyCamera) {
    Schedule s(10, "FALSE");
    s.prefs.pUseCamera = true;
    s.run(9);
    s.steps.clear();
    s.ready = true;
    EXPECT_EQ(s.run(1), "10");
    EXPECT_EQ(s.steps, "refresh white refresh note capture reset logo refresh ");
    s.ready = false;
    s.run(10);
    s.ready = true;
    s.prefs.pUseCamera = false;
    s.run(10);
    EXPECT_EQ(s.heard, "Say Cheese@10 capture@10 capture@20 capture@30 ") << "only for a ready camera in use";
}

TEST(ScheduleSuspension, HeldWhileAnyWindowHoldsItAndLeftSuspendedByOneThatGoesUnreleased) {
    ScheduleSuspension suspension;
    std::optional<ScheduleSuspension::Token> settings(suspension.hold()), about(suspension.hold());
    about->release();
    EXPECT_TRUE(suspension.pSpecialWindowOpen() && !suspension.stranded()) << "the settings window holds it";
    settings.reset(); // closed by its close box
    EXPECT_TRUE(suspension.pSpecialWindowOpen() && suspension.stranded());
    suspension.hold().release(); // any window's way out ends it
    EXPECT_FALSE(suspension.pSpecialWindowOpen());
}

TEST(QtScheduleTimer, RunsOnlyWhileEnabledWithAPeriodAboveZero) {
    QtScheduleTimer timer;
    timer.setPeriodMs(20);
    const bool beforeEnabled = timer.isFiring();
    timer.setEnabled(true);
    const bool enabled = timer.isFiring();
    timer.setPeriodMs(0); // a zero period would fire without pause
    EXPECT_EQ(std::tuple(beforeEnabled, enabled, timer.enabled(), timer.isFiring()),
              std::tuple(false, true, true, false));
    timer.setPeriodMs(std::int64_t{1} << 40);
    EXPECT_EQ(timer.timer().interval(), INT32_MAX);
}
} // namespace
