#include "schedule/CaptureSchedule.h"
#include "base/AppState.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "schedule/ScheduleHost.h"
#include "schedule/ScheduleTimer.h"
#include "settings/mGeneralSettings.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {
class FakeTimer final : public ScheduleTimer {
public:
    bool enabled() const override { return on; }
    void setEnabled(bool value) override { on = value; }
    void setPeriodMs(std::int64_t value) override { periodMs = value; }

    bool on = false;
    std::int64_t periodMs = 1000;
};

class RecordingHost final : public ScheduleHost {
public:
    void setCountDownVisible(bool value) override {
        visible = value;
        events.push_back(value ? "show" : "hide");
    }
    void setCountDownText(const QString& value) override {
        text = value;
        events.push_back("text:" + value.toStdString());
    }
    void refresh() override { events.push_back("refresh"); }
    void showWhitePicture() override { events.push_back("white"); }
    void showLogoPicture() override { events.push_back("logo"); }
    void drawNoteIcon() override { events.push_back("note"); }
    void resetDockIcon() override { events.push_back("reset"); }
    void speak(const QString& phrase) override {
        spoken.push_back(phrase.toStdString());
        events.push_back("speak:" + phrase.toStdString());
    }
    void startCaptureRun() override {
        ++captures;
        events.push_back("capture");
        if (failCapture) {
            throw std::runtime_error("no thread");
        }
    }

    std::vector<std::string> events;
    std::vector<std::string> spoken;
    QString text;
    bool visible = false;
    int captures = 0;
    bool failCapture = false;
};

class CaptureScheduleTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        platform::setApplicationFolder(m_folder.path());
        mProgramInfo::SetConstants();
        App().pActivateSnapShotTimer = true;
        App().pSpecialWindowOpen = false;
        mCodeBaseGlv::pVideoGoodToGo = false;
        setPrefs([](mGeneralSettings::Prefs&) {});
    }

    void setPrefs(const std::function<void(mGeneralSettings::Prefs&)>& change) {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        change(prefs);
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }

    void setInterval(std::int32_t seconds) {
        setPrefs([&](mGeneralSettings::Prefs& prefs) { prefs.pInterval = seconds; });
    }

    // As the main window's open does it.
    void arm() {
        schedule.SetupCountDownTimer();
        schedule.SetupSnapShotTimer();
    }

    void tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            schedule.CountDownAction();
        }
    }

    QTemporaryDir m_folder;
    FakeTimer countDown;
    FakeTimer snapShot;
    RecordingHost host;
    CaptureSchedule schedule{countDown, snapShot, host, App()};
};

TEST_F(CaptureScheduleTest, CountsDownWarnsAtFourAndHidesTheLastThreeSeconds) {
    setInterval(10);
    arm();
    ASSERT_TRUE(snapShot.on);
    EXPECT_EQ(snapShot.periodMs, 10000);
    EXPECT_EQ(host.text, "10");

    const std::vector<std::pair<QString, bool>> expected = {
        {"9", true}, {"8", true},  {"7", true},  {"6", true},  {"5", true},
        {"4", true}, {"4", false}, {"4", false}, {"4", false}, // the text stays as the label goes
    };
    for (const auto& [text, visible] : expected) {
        tick();
        EXPECT_EQ(host.text, text);
        EXPECT_EQ(host.visible, visible) << "at label " << text.toStdString();
    }
    EXPECT_EQ(host.spoken, std::vector<std::string>{"In Three Seconds"});
    EXPECT_EQ(schedule.pTimCountDownLoop(), -9);
}

TEST_F(CaptureScheduleTest, WarningDependsOnIntervalAndSetting) {
    struct Case {
        std::int32_t interval;
        const char* warning;
        std::size_t spoken;
    };
    const Case cases[] = {
        {6, "TRUE", 1}, {5, "TRUE", 1}, // 5: the very first tick already stands at 4
        {4, "TRUE", 0}, {3, "TRUE", 0}, {300, "true", 1}, {10, "FALSE", 0}, {10, "yes", 0}, {10, "", 0},
    };
    for (const Case& c : cases) {
        host.spoken.clear();
        setPrefs([&](mGeneralSettings::Prefs& prefs) {
            prefs.pInterval = c.interval;
            prefs.pThreeSecondWarning = c.warning;
        });
        schedule.SnapShotAction();
        tick(c.interval);
        EXPECT_EQ(host.spoken.size(), c.spoken) << "interval " << c.interval << " warning " << c.warning;
    }
}

TEST_F(CaptureScheduleTest, HiddenCountdownStillCounts) {
    setPrefs([](mGeneralSettings::Prefs& prefs) {
        prefs.pInterval = 20;
        prefs.pShowCountdown = "FALSE";
    });
    arm();
    tick(5);
    EXPECT_FALSE(host.visible);
    EXPECT_EQ(host.text, "15");
}

TEST_F(CaptureScheduleTest, WithoutTheGoFlagNothingCountsAndEveryTickRetries) {
    App().pActivateSnapShotTimer = false;
    setInterval(30);
    arm();
    EXPECT_FALSE(snapShot.on);
    tick(3);
    EXPECT_FALSE(snapShot.on);
    EXPECT_EQ(schedule.pTimCountDownLoop(), 0);
    EXPECT_EQ(host.text, "30");

    App().pActivateSnapShotTimer = true; // the update check has ended
    tick();
    EXPECT_TRUE(snapShot.on);
    EXPECT_EQ(snapShot.periodMs, 30000);
    EXPECT_EQ(schedule.pTimCountDownLoop(), 0) << "the arming tick itself is not counted";
    tick();
    EXPECT_EQ(host.text, "29");
}

TEST_F(CaptureScheduleTest, IntervalOfZeroNeverArmsUntilAPositiveOneIsSaved) {
    setInterval(0);
    arm();
    tick(5);
    EXPECT_FALSE(snapShot.on);
    EXPECT_EQ(host.text, "0");

    setInterval(7);
    schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(snapShot.periodMs, 7000);
    EXPECT_EQ(host.text, "7");
    EXPECT_FALSE(snapShot.on);
    tick();
    EXPECT_TRUE(snapShot.on);
}

TEST_F(CaptureScheduleTest, BusyFlagFreezesTheCountdownAndLosesExpiries) {
    setInterval(60);
    arm();
    tick(10);
    const std::size_t before = host.events.size();

    App().pSpecialWindowOpen = true;
    tick(5);
    schedule.SnapShotAction();
    EXPECT_EQ(host.events.size(), before) << "nothing happens while a special window is open";
    EXPECT_EQ(host.captures, 0);

    App().pSpecialWindowOpen = false;
    tick();
    EXPECT_EQ(host.text, "49") << "the count goes on from where it stood";
}

TEST_F(CaptureScheduleTest, PauseFreezesTheCountdownUnderItsOwnWordUntilResumed) {
    setPrefs([](mGeneralSettings::Prefs& prefs) {
        prefs.pInterval = 60;
        prefs.pShowCountdown = "FALSE";
    });
    arm();
    tick(10);

    schedule.setPaused(true);
    EXPECT_EQ(host.text, "Paused");
    EXPECT_TRUE(host.visible) << "the label says so even where the countdown is hidden";
    tick(5);
    schedule.SnapShotAction();
    EXPECT_EQ(host.text, "Paused");
    EXPECT_EQ(host.captures, 0);
    EXPECT_TRUE(snapShot.on) << "the interval timer keeps its rhythm";

    schedule.setPaused(false);
    EXPECT_EQ(host.text, "50");
    EXPECT_FALSE(host.visible);
    tick();
    EXPECT_EQ(host.text, "49") << "the count goes on from where it stood";
    schedule.SnapShotAction();
    EXPECT_EQ(host.captures, 1);
}

TEST_F(CaptureScheduleTest, ExpiryMarksStartsTheRunAndRestartsTheCountdown) {
    setInterval(12);
    arm();
    tick(4);
    host.events.clear();

    schedule.SnapShotAction();
    const std::vector<std::string> expected = {"white", "refresh", "note",    "capture", "reset",
                                               "logo",  "refresh", "text:12", "show"};
    EXPECT_EQ(host.events, expected);
    EXPECT_TRUE(countDown.on);
    EXPECT_EQ(countDown.periodMs, 1000);
    EXPECT_EQ(schedule.pTimCountDownLoop(), 0);
    EXPECT_TRUE(snapShot.on) << "the interval timer keeps its rhythm";
}

TEST_F(CaptureScheduleTest, PhraseOnlyForACameraThatIsReady) {
    struct Case {
        const char* useCamera;
        bool ready;
        bool spoken;
    };
    for (const Case c : {Case{"TRUE", true, true}, Case{"true", true, true}, Case{"TRUE", false, false},
                         Case{"FALSE", true, false}}) {
        host.spoken.clear();
        setPrefs([&](mGeneralSettings::Prefs& prefs) {
            prefs.pUseCamera = c.useCamera;
            prefs.pTextToSpeak = "Smile";
        });
        mCodeBaseGlv::pVideoGoodToGo = c.ready;
        schedule.SnapShotAction();
        EXPECT_EQ(host.spoken == std::vector<std::string>{"Smile"}, c.spoken)
            << c.useCamera << " ready " << c.ready;
    }
}

TEST_F(CaptureScheduleTest, ShorterIntervalHidesTheLabelUntilTheNextCapture) {
    setInterval(300);
    arm();
    tick(100);
    setInterval(60);
    schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(host.text, "60");
    EXPECT_EQ(snapShot.periodMs, 60000);
    host.spoken.clear();
    tick();
    EXPECT_FALSE(host.visible);
    tick(60);
    EXPECT_TRUE(host.spoken.empty()) << "no warning for this capture";
    EXPECT_EQ(schedule.pTimCountDownLoop(), -161);
}

TEST_F(CaptureScheduleTest, LongerIntervalJumpsTheCount) {
    setInterval(60);
    arm();
    tick(50);
    setInterval(300);
    schedule.ResetCountsAfterPrefs();
    EXPECT_EQ(host.text, "300");
    tick();
    EXPECT_EQ(host.text, "249");
    EXPECT_TRUE(host.visible);
}

TEST_F(CaptureScheduleTest, FailedRunStartIsSilentAndLeavesTheCountdownOff) {
    setInterval(10);
    arm();
    host.failCapture = true;
    EXPECT_NO_THROW(schedule.SnapShotAction());
    EXPECT_FALSE(countDown.on);
    EXPECT_EQ(host.events.back(), "capture") << "the remaining steps are skipped";

    host.failCapture = false;
    schedule.SnapShotAction();
    EXPECT_TRUE(countDown.on) << "the next expiry gets through";
}

TEST_F(CaptureScheduleTest, HugeIntervalDoesNotOverflow) {
    setInterval(2147483647);
    arm();
    EXPECT_EQ(snapShot.periodMs, 2147483647000LL);
    tick();
    EXPECT_EQ(host.text, "2147483646");
}
} // namespace
