#include "platform/WaylandSession.h"
#include "platform/presence/DBusLockWatcher.h"
#include "platform/presence/LogindIdleWatcher.h"
#include "platform/presence/NullPresence.h"
#include "platform/presence/Presence.h"
#include "platform/presence/WaylandIdleWatcher.h"
#include "platform/presence/XcbFocusWatcher.h"
#include "platform/presence/XcbIdleWatcher.h"

#include <QDBusConnection>

namespace {
bool anyBus() {
    return QDBusConnection::systemBus().isConnected() || QDBusConnection::sessionBus().isConnected();
}

// The X display's, but not XWayland's, which sees only the input that reaches X clients.
XcbConnection x11Display() {
    return platform::isWaylandSession() ? nullptr : connectToDisplay();
}
} // namespace

std::unique_ptr<LockWatcher> makeLockWatcher() {
    if (anyBus()) {
        return std::make_unique<DBusLockWatcher>();
    }
    return std::make_unique<NullLockWatcher>();
}

std::unique_ptr<IdleWatcher> makeIdleWatcher() {
    if (XcbConnection display = x11Display(); display && hasIdleCounter(display.get())) {
        return std::make_unique<XcbIdleWatcher>(std::move(display));
    }
    if (platform::isWaylandSession()) {
        if (std::unique_ptr<WaylandIdleWatcher> compositor = WaylandIdleWatcher::connectToCompositor()) {
            return compositor;
        }
    }
    if (QDBusConnection::systemBus().isConnected()) {
        return std::make_unique<LogindIdleWatcher>();
    }
    return std::make_unique<NullIdleWatcher>();
}

std::unique_ptr<FocusWatcher> makeFocusWatcher() {
    if (XcbConnection display = x11Display()) {
        return std::make_unique<XcbFocusWatcher>(std::move(display));
    }
    return std::make_unique<NullFocusWatcher>();
}
