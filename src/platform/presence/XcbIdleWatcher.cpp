#include "platform/presence/XcbIdleWatcher.h"

#include "platform/screen/XcbReply.h"

#include <xcb/screensaver.h>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr auto kLookWhileAway = 1s;
} // namespace

bool hasIdleCounter(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_screensaver_id);
    return extension != nullptr && extension->present != 0;
}

XcbIdleWatcher::XcbIdleWatcher(XcbConnection connection)
    : m_connection(std::move(connection)) {
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &XcbIdleWatcher::check);
}

void XcbIdleWatcher::setAwayAfter(std::chrono::seconds after) {
    if (after != std::exchange(m_after, after)) {
        check();
    }
}

void XcbIdleWatcher::check() {
    const std::optional<std::chrono::milliseconds> idle = idleTime();
    if (!idle || m_after <= 0s) {
        m_timer.stop();
        setAway(false);
        return;
    }
    setAway(*idle >= m_after);
    m_timer.start(m_away ? kLookWhileAway
                         : std::max<std::chrono::milliseconds>(kLookWhileAway, m_after - *idle));
}

std::optional<std::chrono::milliseconds> XcbIdleWatcher::idleTime() const {
    xcb_connection_t* c = m_connection.get();
    const ReplyPtr<xcb_screensaver_query_info_reply_t> info(
        xcb_screensaver_query_info_reply(c, xcb_screensaver_query_info(c, rootWindow(c)), nullptr));
    if (!info) {
        return std::nullopt;
    }
    return std::chrono::milliseconds(info->ms_since_user_input);
}

void XcbIdleWatcher::setAway(bool away) {
    if (away != std::exchange(m_away, away)) {
        emit awayChanged(away);
    }
}
