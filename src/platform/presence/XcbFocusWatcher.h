#pragma once

#include "platform/presence/Presence.h"
#include "platform/presence/XcbConnection.h"

#include <QSocketNotifier>

#include <optional>

// The window that the window manager names in _NET_ACTIVE_WINDOW on the root, with its class and
// title. Property events on the root and on that window tell every change; nothing is polled.
class XcbFocusWatcher final : public FocusWatcher {
public:
    explicit XcbFocusWatcher(XcbConnection connection);

    Window focused() const override { return m_focused; }

private:
    void readEvents();
    void handle(const xcb_property_notify_event_t& event);
    void follow(xcb_window_t window);
    void describe();
    xcb_atom_t atom(const char* name) const;
    std::optional<xcb_window_t> activeWindow() const;
    QByteArray property(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const;

    XcbConnection m_connection;
    xcb_window_t m_root;
    xcb_atom_t m_netActiveWindow;
    xcb_atom_t m_netWmName;
    xcb_atom_t m_utf8String;
    xcb_window_t m_active = XCB_WINDOW_NONE;
    Window m_focused;
    QSocketNotifier m_notifier;
};
