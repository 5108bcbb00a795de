#pragma once

#include "platform/presence/Presence.h"

#include <QSocketNotifier>

#include <cstdint>
#include <memory>

struct ext_idle_notification_v1;
struct ext_idle_notifier_v1;
struct wl_display;
struct wl_registry;
struct wl_seat;

struct WaylandDestroy {
    void operator()(wl_display* display) const;
    void operator()(wl_registry* registry) const;
    void operator()(wl_seat* seat) const;
    void operator()(ext_idle_notifier_v1* notifier) const;
    void operator()(ext_idle_notification_v1* notification) const;
};
template <typename T> using WaylandPtr = std::unique_ptr<T, WaylandDestroy>;

// The compositor's own idle notification (ext-idle-notify-v1), on a connection of the watcher's
// own: the compositor tells when the seat has had no input for the time asked, and when it has
// again.
class WaylandIdleWatcher final : public IdleWatcher {
public:
    // Null where the compositor cannot be reached or does not offer the protocol.
    static std::unique_ptr<WaylandIdleWatcher> connectToCompositor();

    void setAwayAfter(std::chrono::seconds after) override;
    bool away() const override { return m_away; }

    // From the compositor's events.
    void offered(wl_registry* registry, std::uint32_t name, const char* interface);
    void setAway(bool away);

private:
    explicit WaylandIdleWatcher(WaylandPtr<wl_display> display);
    void readEvents();

    WaylandPtr<wl_display> m_display;
    WaylandPtr<wl_registry> m_registry;
    WaylandPtr<wl_seat> m_seat;
    WaylandPtr<ext_idle_notifier_v1> m_notifier;
    WaylandPtr<ext_idle_notification_v1> m_notification;
    std::unique_ptr<QSocketNotifier> m_events;
    std::chrono::seconds m_after{0};
    bool m_away = false;
};
