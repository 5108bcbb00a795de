#include "schedule/CaptureSchedule.h"
#include "base/AppState.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "schedule/QtScheduleTimer.h"
#include "schedule/ScheduleHost.h"
#include "schedule/WindowSettings.h"
#include "settings/mGeneralSettings.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

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
        platform::setApplicationFolder(folder.path());
        mProgramInfo::SetConstants();
        app.pActivateSnapShotTimer = go;
        prefs.pThreeSecondWarning = isFlagSet(warn);
        prefs.pShowCountdown = isFlagSet(shown);
        save(interval);
        schedule.SetupCountDownTimer();
        schedule.SetupSnapShotTimer();
    }
    void save(std::int32_t interval) {
        prefs.pInterval = interval;
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
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
    QTemporaryDir folder;
    mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
    int second = 0;
    std::string text, steps, heard;
    bool visible = false;
    Timer countDown, snapShot;
    AppState app;
    CaptureSchedule schedule{countDown, snapShot, *this, app};
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
    s.app.pActivateSnapShotTimer = true; // the update check has ended
    EXPECT_EQ(s.run(2), "(30) 29") << "the tick that arms the interval timer is not counted";
    s.run(30);
    EXPECT_EQ(s.heard, "In Three Seconds@30 capture@34 ");
    Schedule zero(0);
    EXPECT_EQ(zero.run(3), "(0) (0) (0)");
    zero.save(7);
    zero.schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(zero.run(8), "(7) 6 5 4 (4) (4) (4) 7");
    zero.save(3); // a new interval restarts the running timer
    zero.schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(zero.run(3), "(3) (3) 3");
    Schedule huge(INT32_MAX);
    EXPECT_EQ(huge.run(1), "2147483646");
    EXPECT_EQ(huge.snapShot.periodMs, 2147483647000);
}

TEST(CaptureSchedule, ABusyWindowOrAPauseFreezesTheCountAndLosesTheExpiry) {
    for (const bool paused : {false, true}) {
        Schedule s(60, "TRUE", "FALSE");
        const auto set = [&](bool on) {
            paused ? s.schedule.setPaused(on) : s.app.pSpecialWindowOpen.store(on);
        };
        s.run(10);
        set(true);
        s.steps.clear();
        s.run(55);
        // A pause says so even where the countdown is hidden; the expiry at 60 is lost.
        EXPECT_EQ(s.label() + s.steps + s.heard, paused ? "Paused" : "(50)");
        set(false);
        EXPECT_EQ(s.run(1), "(49)") << "the count goes on from where it stood; pause " << paused;
    }
}

TEST(CaptureSchedule, AnExpiryFlashesAndMarksAroundTheCaptureAndAnnouncesOnlyAReadyCamera) {
    Schedule s(10, "FALSE");
    s.prefs.pUseCamera = true;
    s.save(10);
    s.run(9);
    s.steps.clear();
    mCodeBaseGlv::pVideoGoodToGo = true;
    EXPECT_EQ(s.run(1), "10");
    EXPECT_EQ(s.steps, "refresh white refresh note capture reset logo refresh ");
    mCodeBaseGlv::pVideoGoodToGo = false;
    s.run(10);
    mCodeBaseGlv::pVideoGoodToGo = true;
    s.prefs.pUseCamera = false;
    s.save(10);
    s.run(10);
    EXPECT_EQ(s.heard, "Say Cheese@10 capture@10 capture@20 capture@30 ") << "only for a ready camera in use";
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

TEST(WindowSettings, RestoredFrameKeepsTheWindowReachable) {
    const std::pair<mScreenSettings::Geometry, QRect> cases[] = {
        {{0, 0, 0, 0}, {20, 60, 200, 193}}, // first start
        {{193, 200, 20, 59}, {20, 60, 200, 193}},
        {{100, 300, -1200, -1}, {-1200, -1, 300, 193}}, // a screen to the left and above
        // A damaged file's extremes are held where no edge of the frame overflows.
        {{INT32_MAX, INT32_MAX, INT32_MAX, INT32_MIN}, {16777215, -16777215, 16777215, 16777215}},
    };
    for (const auto& [stored, frame] : cases) {
        EXPECT_EQ(restoredFrame(stored, QSize(200, 193)), frame) << stored.pWinLeft << ", " << stored.pWinTop;
    }
}
} // namespace
