#include "platform/presence/XcbFocusWatcher.h"

#include "platform/screen/XcbReply.h"

#include <cstring>
#include <utility>

namespace {
// Longer class names or titles than this tell nothing more.
constexpr std::uint32_t kMaxPropertyWords = 1024;

void selectPropertyEvents(xcb_connection_t* c, xcb_window_t window, bool on) {
    const std::uint32_t mask = on ? XCB_EVENT_MASK_PROPERTY_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(c, window, XCB_CW_EVENT_MASK, &mask);
}
} // namespace

XcbFocusWatcher::XcbFocusWatcher(XcbConnection connection)
    : m_connection(std::move(connection))
    , m_root(rootWindow(m_connection.get()))
    , m_netActiveWindow(atom("_NET_ACTIVE_WINDOW"))
    , m_netWmName(atom("_NET_WM_NAME"))
    , m_utf8String(atom("UTF8_STRING"))
    , m_notifier(xcb_get_file_descriptor(m_connection.get()), QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &XcbFocusWatcher::readEvents);
    selectPropertyEvents(m_connection.get(), m_root, true);
    follow(activeWindow().value_or(XCB_WINDOW_NONE));
    readEvents();
}

// Replies waited for while handling an event may bring further events into the queue; they are
// all taken here, so that none waits for the next activity on the socket.
void XcbFocusWatcher::readEvents() {
    while (const ReplyPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
            handle(*reinterpret_cast<const xcb_property_notify_event_t*>(event.get()));
        }
    }
    // A display that has gone leaves its socket readable for ever.
    if (xcb_connection_has_error(m_connection.get()) != 0) {
        m_notifier.setEnabled(false);
    }
}

void XcbFocusWatcher::handle(const xcb_property_notify_event_t& event) {
    if (event.window == m_root && event.atom == m_netActiveWindow) {
        follow(activeWindow().value_or(XCB_WINDOW_NONE));
    } else if (event.window == m_active && (event.atom == m_netWmName || event.atom == XCB_ATOM_WM_NAME ||
                                            event.atom == XCB_ATOM_WM_CLASS)) {
        describe();
    }
}

// A window that is gone by now only earns an error event, which is passed over.
void XcbFocusWatcher::follow(xcb_window_t window) {
    if (window != m_active) {
        if (m_active != XCB_WINDOW_NONE) {
            selectPropertyEvents(m_connection.get(), m_active, false);
        }
        m_active = window;
        if (m_active != XCB_WINDOW_NONE) {
            selectPropertyEvents(m_connection.get(), m_active, true);
        }
    }
    describe();
    xcb_flush(m_connection.get());
}

void XcbFocusWatcher::describe() {
    Window now;
    if (m_active != XCB_WINDOW_NONE) {
        // The instance and the class, each ended by a NUL.
        now.windowClass = QString::fromLocal8Bit(property(m_active, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING))
                              .split(QChar(0), Qt::SkipEmptyParts)
                              .join(';');
        now.title = QString::fromUtf8(property(m_active, m_netWmName, m_utf8String));
        if (now.title.isEmpty()) {
            now.title = QString::fromLatin1(property(m_active, XCB_ATOM_WM_NAME, XCB_ATOM_STRING));
        }
    }
    if (now != std::exchange(m_focused, now)) {
        emit focusChanged();
    }
}

xcb_atom_t XcbFocusWatcher::atom(const char* name) const {
    xcb_connection_t* c = m_connection.get();
    const ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::optional<xcb_window_t> XcbFocusWatcher::activeWindow() const {
    const QByteArray value = property(m_root, m_netActiveWindow, XCB_ATOM_WINDOW);
    if (value.size() < qsizetype(sizeof(xcb_window_t))) {
        return std::nullopt;
    }
    xcb_window_t window = XCB_WINDOW_NONE;
    std::memcpy(&window, value.constData(), sizeof(window));
    return window;
}

QByteArray XcbFocusWatcher::property(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const {
    xcb_connection_t* c = m_connection.get();
    const ReplyPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        c, xcb_get_property(c, 0, window, property, type, 0, kMaxPropertyWords), nullptr));
    if (!reply || reply->type != type) {
        return {};
    }
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}
