#include "support/XWindows.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace xtest {
namespace {
template <typename Reply> using ReplyPtr = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply> ReplyPtr<Reply> owned(Reply* reply) {
    return ReplyPtr<Reply>(reply, &std::free);
}
} // namespace

Display::Display()
    : m_connection(xcb_connect(nullptr, nullptr)) {
    if (!xcb_connection_has_error(m_connection)) {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    }
}

Display::~Display() {
    xcb_disconnect(m_connection);
}

std::uint32_t Display::atom(const char* name) {
    const auto reply = owned(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

QString Display::title(std::uint32_t window) {
    for (const std::uint32_t property : {atom("_NET_WM_NAME"), std::uint32_t{XCB_ATOM_WM_NAME}}) {
        const auto reply = owned(xcb_get_property_reply(
            m_connection,
            xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
            nullptr));
        if (reply && xcb_get_property_value_length(reply.get()) > 0) {
            return QString::fromUtf8(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                     xcb_get_property_value_length(reply.get()));
        }
    }
    return {};
}

std::optional<Window> Display::findWindow(const QString& wanted) {
    if (m_root == 0) {
        return std::nullopt;
    }
    const auto tree =
        owned(xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, m_root), nullptr));
    if (!tree) {
        return std::nullopt;
    }
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto attributes = owned(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, children[i]), nullptr));
        if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE && title(children[i]) == wanted) {
            return Window{children[i]};
        }
    }
    return std::nullopt;
}

QRect Display::frame(const Window& window) {
    const auto geometry =
        owned(xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window.id), nullptr));
    const auto origin = owned(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window.id, m_root, 0, 0), nullptr));
    if (!geometry || !origin) {
        return {};
    }
    return QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
}

void Display::requestClose(const Window& window) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window.id;
    event.type = atom("WM_PROTOCOLS");
    event.data.data32[0] = atom("WM_DELETE_WINDOW");
    event.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(m_connection, 0, window.id, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(m_connection);
}
} // namespace xtest
