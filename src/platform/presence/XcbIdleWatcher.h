#pragma once

#include "platform/presence/Presence.h"
#include "platform/presence/XcbConnection.h"

#include <QTimer>

#include <chrono>
#include <optional>

// The X server's own count of the time since the last input (the MIT-SCREEN-SAVER extension).
// It is read when the threshold could first be crossed, and once a second while away, to see the
// person come back.
class XcbIdleWatcher final : public IdleWatcher {
public:
    // `connection` has the extension.
    explicit XcbIdleWatcher(XcbConnection connection);

    void setAwayAfter(std::chrono::seconds after) override;
    bool away() const override { return m_away; }

private:
    void check();
    std::optional<std::chrono::milliseconds> idleTime() const;
    void setAway(bool away);

    XcbConnection m_connection;
    QTimer m_timer;
    std::chrono::seconds m_after{0};
    bool m_away = false;
};

// Whether the display behind `connection` counts idle time.
bool hasIdleCounter(xcb_connection_t* connection);
