#pragma once

#include "platform/presence/Presence.h"
#include "schedule/WaitReason.h"
#include "settings/mPolicies.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class Clock;

struct PresenceWatchers {
    std::unique_ptr<LockWatcher> lock;
    std::unique_ptr<IdleWatcher> idle;
    std::unique_ptr<FocusWatcher> focus;
};
// The watchers this desktop offers. On the GUI thread, after the application object.
PresenceWatchers desktopPresenceWatchers();

// Which of the reasons for the person's sake hold (locked, away, off hours, a private window),
// from the desktop's watchers, the rules in force and the clock. A watcher's change is applied at
// once; the rules and the clock are read again at every whole minute, so a changed rule or a
// boundary of the capture hours takes effect within one.
class PresenceRules final : public QObject {
public:
    struct Inputs {
        std::function<mPolicies::Policies()> policies;
        std::function<bool()> cameraWanted;
    };
    // The first look comes from the event loop, once the rules are loaded.
    PresenceRules(PresenceWatchers watchers, Inputs inputs, const Clock& clock, WaitReasonSink& sink);

    void apply();

private:
    void applyPrivate(const mPolicies::Policies& rules);
    void waitForNextMinute();

    PresenceWatchers m_watchers;
    Inputs m_inputs;
    const Clock& m_clock;
    WaitReasonSink& m_sink;
    QTimer m_minute;
};
