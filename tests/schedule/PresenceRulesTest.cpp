#include "schedule/PresenceRules.h"
#include "platform/presence/NullPresence.h"
#include "schedule/CaptureHours.h"
#include "schedule/PrivateWindows.h"
#include "support/TestClock.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {
QDateTime at(const char* text) {
    return QDateTime::fromString(QString::fromLatin1(text), "yyyy-MM-dd hh:mm");
}

TEST(CaptureHours, DaysAndADailyWindowThatMayRunOverMidnight) {
    const std::tuple<const char*, const char*, const char*, bool> cases[] = {
        // 2026-11-23 is a Monday
        {"Mon,Tue,Wed,Thu,Fri", "", "2026-11-28 12:00", false},
        {" mon , SUN", "", "2026-11-23 12:00", true},
        {"", "08:00-18:30", "2026-11-23 07:59", false},
        {"", "08:00-18:30", "2026-11-23 08:00", true},
        {"", "08:00-18:30", "2026-11-23 18:30", false},
        {"Fri", "22:00-06:00", "2026-11-28 05:59", true}, // Friday's night
        {"Fri", "22:00-06:00", "2026-11-28 22:00", false},
        {"Fri", "22:00-06:00", "2026-11-27 23:00", true},
        {"", "00:00-24:00", "2026-11-23 23:59", true},
        {"Caturday", "8-18:99", "2026-11-23 03:00", true}, // unreadable: no restriction
    };
    for (const auto& [days, hours, now, within] : cases) {
        EXPECT_EQ(withinCaptureHours(days, hours, at(now)), within) << days << ' ' << hours << ' ' << now;
    }
}

TEST(PrivateWindows, AClassMatchesWholeAndATitleWordAnywhere) {
    const std::tuple<const char*, const char*, const char*, bool> cases[] = {
        {"Vaultkeeper", "vault;VaultKeeper", "Unlock", true},
        {"vault keeper;Vault", "vaultkeeper;Vaultkeeper", "Unlock", false},
        {"x;PRIVATE", "browser;Browser", "Shopping - Private Browsing", true},
        {" ; ;", "browser;Browser", "Shopping", false},
    };
    for (const auto& [list, windowClass, title, matches] : cases) {
        EXPECT_EQ(isPrivateWindow(list, windowClass, title), matches) << list << ' ' << title;
    }
}

struct Reasons final : WaitReasonSink {
    void setWaiting(WaitReason reason, bool on) override { held.set(reason, on); }
    WaitReasons held;
};

TEST(PresenceRules, OffHoursFollowsTheClockAndTheRulesInForce) {
    TestClock clock(at("2026-11-28 10:00"));
    mPolicies::Policies rules;
    rules.pCaptureDays = "Mon,Tue,Wed,Thu,Fri";
    Reasons reasons;
    PresenceRules presence({std::make_unique<NullLockWatcher>(), std::make_unique<NullIdleWatcher>(),
                            std::make_unique<NullFocusWatcher>()},
                           {[&] { return rules; }, [] { return false; }}, clock, reasons);
    EXPECT_TRUE(QTest::qWaitFor([&] { return reasons.held.statusLine() == "Off Hours"; }, 5000))
        << "the first look comes by itself";
    clock.set(at("2026-11-30 10:00"));
    presence.apply();
    EXPECT_FALSE(reasons.held.any());
    rules.pCaptureHours = "12:00-13:00";
    presence.apply();
    EXPECT_TRUE(reasons.held.has(WaitReason::OffHours));
}
} // namespace
