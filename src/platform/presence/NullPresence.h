#pragma once

#include "platform/presence/Presence.h"

// Where the desktop tells nothing: never locked, never away, no window known.
class NullLockWatcher final : public LockWatcher {
public:
    bool locked() const override { return false; }
};

class NullIdleWatcher final : public IdleWatcher {
public:
    void setAwayAfter(std::chrono::seconds) override {}
    bool away() const override { return false; }
};

class NullFocusWatcher final : public FocusWatcher {
public:
    Window focused() const override { return {}; }
};
