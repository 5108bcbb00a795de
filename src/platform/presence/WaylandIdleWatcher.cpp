#include "platform/presence/WaylandIdleWatcher.h"

#include "ext-idle-notify-v1-client.h"

#include <wayland-client.h>

#include <cstring>
#include <utility>

void WaylandDestroy::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}
void WaylandDestroy::operator()(wl_registry* registry) const {
    wl_registry_destroy(registry);
}
void WaylandDestroy::operator()(wl_seat* seat) const {
    wl_seat_destroy(seat);
}
void WaylandDestroy::operator()(ext_idle_notifier_v1* notifier) const {
    ext_idle_notifier_v1_destroy(notifier);
}
void WaylandDestroy::operator()(ext_idle_notification_v1* notification) const {
    ext_idle_notification_v1_destroy(notification);
}

namespace {
void global(void* watcher, wl_registry* registry, std::uint32_t name, const char* interface,
            std::uint32_t) noexcept {
    static_cast<WaylandIdleWatcher*>(watcher)->offered(registry, name, interface);
}
void globalRemoved(void*, wl_registry*, std::uint32_t) noexcept {}
constexpr wl_registry_listener kRegistryListener{global, globalRemoved};

void idled(void* watcher, ext_idle_notification_v1*) noexcept {
    static_cast<WaylandIdleWatcher*>(watcher)->setAway(true);
}
void resumed(void* watcher, ext_idle_notification_v1*) noexcept {
    static_cast<WaylandIdleWatcher*>(watcher)->setAway(false);
}
constexpr ext_idle_notification_v1_listener kNotificationListener{idled, resumed};
} // namespace

// One round trip at start tells whether the compositor offers the protocol.
std::unique_ptr<WaylandIdleWatcher> WaylandIdleWatcher::connectToCompositor() {
    WaylandPtr<wl_display> display(wl_display_connect(nullptr));
    if (!display) {
        return nullptr;
    }
    std::unique_ptr<WaylandIdleWatcher> watcher(new WaylandIdleWatcher(std::move(display)));
    if (wl_display_roundtrip(watcher->m_display.get()) < 0 || !watcher->m_seat || !watcher->m_notifier) {
        return nullptr;
    }
    return watcher;
}

WaylandIdleWatcher::WaylandIdleWatcher(WaylandPtr<wl_display> display)
    : m_display(std::move(display))
    , m_registry(wl_display_get_registry(m_display.get()))
    , m_events(std::make_unique<QSocketNotifier>(wl_display_get_fd(m_display.get()), QSocketNotifier::Read)) {
    wl_registry_add_listener(m_registry.get(), &kRegistryListener, this);
    connect(m_events.get(), &QSocketNotifier::activated, this, &WaylandIdleWatcher::readEvents);
}

void WaylandIdleWatcher::offered(wl_registry* registry, std::uint32_t name, const char* interface) {
    if (std::strcmp(interface, wl_seat_interface.name) == 0 && !m_seat) {
        m_seat.reset(static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1)));
    } else if (std::strcmp(interface, ext_idle_notifier_v1_interface.name) == 0) {
        m_notifier.reset(static_cast<ext_idle_notifier_v1*>(
            wl_registry_bind(registry, name, &ext_idle_notifier_v1_interface, 1)));
    }
}

// A new notification starts its count afresh.
void WaylandIdleWatcher::setAwayAfter(std::chrono::seconds after) {
    if (after == std::exchange(m_after, after)) {
        return;
    }
    m_notification.reset();
    setAway(false);
    if (after.count() > 0) {
        const auto timeoutMs = static_cast<std::uint32_t>(std::chrono::milliseconds(after).count());
        m_notification.reset(
            ext_idle_notifier_v1_get_idle_notification(m_notifier.get(), timeoutMs, m_seat.get()));
        ext_idle_notification_v1_add_listener(m_notification.get(), &kNotificationListener, this);
    }
    wl_display_flush(m_display.get());
}

// A compositor that has gone leaves the watcher as it stood, and its socket unwatched.
void WaylandIdleWatcher::readEvents() {
    wl_display* display = m_display.get();
    if (wl_display_prepare_read(display) == 0) {
        wl_display_read_events(display);
    }
    wl_display_dispatch_pending(display);
    wl_display_flush(display);
    if (wl_display_get_error(display) != 0) {
        m_events->setEnabled(false);
    }
}

void WaylandIdleWatcher::setAway(bool away) {
    if (away != std::exchange(m_away, away)) {
        emit awayChanged(away);
    }
}
