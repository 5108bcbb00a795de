#pragma once

#include <xcb/xcb.h>

#include <memory>

// A connection of the watcher's own to the X display, so that what it selects and reads never
// mixes with the toolkit's.
struct XcbDisconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbDisconnect>;

// The display of $DISPLAY, or null when it cannot be reached.
inline XcbConnection connectToDisplay() {
    XcbConnection connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get()) != 0) {
        return nullptr;
    }
    return connection;
}

inline xcb_window_t rootWindow(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}
