#include "schedule/PresenceRules.h"

#include "platform/Clock.h"
#include "schedule/CaptureHours.h"
#include "schedule/PrivateWindows.h"

#include <algorithm>
#include <chrono>

namespace {
constexpr int kMinuteMs = 60'000;
constexpr int kShortestWaitMs = 1000;
} // namespace

PresenceWatchers desktopPresenceWatchers() {
    return {makeLockWatcher(), makeIdleWatcher(), makeFocusWatcher()};
}

PresenceRules::PresenceRules(PresenceWatchers watchers, Inputs inputs, const Clock& clock,
                             WaitReasonSink& sink)
    : m_watchers(std::move(watchers))
    , m_inputs(std::move(inputs))
    , m_clock(clock)
    , m_sink(sink) {
    connect(m_watchers.lock.get(), &LockWatcher::lockedChanged, this, &PresenceRules::apply);
    connect(m_watchers.idle.get(), &IdleWatcher::awayChanged, this, &PresenceRules::apply);
    connect(m_watchers.focus.get(), &FocusWatcher::focusChanged, this, &PresenceRules::apply);
    m_minute.setSingleShot(true);
    connect(&m_minute, &QTimer::timeout, this, [this] {
        apply();
        waitForNextMinute();
    });
    m_minute.start(0);
}

void PresenceRules::apply() {
    const mPolicies::Policies rules = m_inputs.policies();
    const int idleMinutes = std::max(0, rules.pIdleMinutes);
    m_watchers.idle->setAwayAfter(std::chrono::minutes(idleMinutes));
    m_sink.setWaiting(WaitReason::Locked, rules.pPauseWhenLocked && m_watchers.lock->locked());
    m_sink.setWaiting(WaitReason::Away, idleMinutes > 0 && m_watchers.idle->away());
    m_sink.setWaiting(WaitReason::OffHours,
                      !withinCaptureHours(rules.pCaptureDays, rules.pCaptureHours, m_clock.now()));
    applyPrivate(rules);
}

// With the camera still wanted the runs go on for its photograph alone.
void PresenceRules::applyPrivate(const mPolicies::Policies& rules) {
    const FocusWatcher::Window window = m_watchers.focus->focused();
    const bool focused = isPrivateWindow(rules.pPrivateWindows, window.windowClass, window.title);
    const bool cameraGoesOn = !rules.pPrivateCamera && m_inputs.cameraWanted();
    m_sink.setWaiting(WaitReason::Private, focused && !cameraGoesOn);
    m_sink.setWaiting(WaitReason::PrivateScreens, focused && cameraGoesOn);
}

void PresenceRules::waitForNextMinute() {
    const QTime now = m_clock.now().time();
    m_minute.start(std::max(kShortestWaitMs, kMinuteMs - (now.second() * 1000 + now.msec())));
}
