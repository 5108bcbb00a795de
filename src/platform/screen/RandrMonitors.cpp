#include "platform/screen/RandrMonitors.h"

#include "platform/screen/XcbReply.h"

#include <QGuiApplication>

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <utility>
#include <vector>

namespace {
xcb_connection_t* applicationConnection() {
    const auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 = app != nullptr ? app->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 != nullptr ? x11->connection() : nullptr;
}

// The root of the screen that DISPLAY names, as Qt took it.
std::optional<xcb_window_t> defaultRoot(xcb_connection_t* connection) {
    char* host = nullptr;
    int display = 0;
    int screenNumber = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screenNumber) == 0) {
        screenNumber = 0;
    }
    std::free(host);
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 0; xcb_screen_next(&screens), --screenNumber) {
        if (screenNumber == 0) {
            return screens.data->root;
        }
    }
    return std::nullopt;
}

ReplyPtr<xcb_randr_get_monitors_reply_t> queryMonitors(xcb_connection_t* connection) {
    // A request to an extension the server lacks would close the connection under Qt.
    const xcb_query_extension_reply_t* randr = xcb_get_extension_data(connection, &xcb_randr_id);
    const std::optional<xcb_window_t> root = defaultRoot(connection);
    if (randr == nullptr || !randr->present || !root) {
        return nullptr;
    }
    return ReplyPtr<xcb_randr_get_monitors_reply_t>(
        xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, *root, 1), nullptr));
}
} // namespace

QHash<QString, QRect> randrMonitors() {
    xcb_connection_t* const connection = applicationConnection();
    const ReplyPtr<xcb_randr_get_monitors_reply_t> reply =
        connection != nullptr ? queryMonitors(connection) : nullptr;
    if (!reply) {
        return {};
    }
    // All names asked for at once: one round trip, not one a monitor.
    std::vector<std::pair<xcb_get_atom_name_cookie_t, QRect>> asked;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
        asked.emplace_back(xcb_get_atom_name(connection, it.data->name),
                           QRect(it.data->x, it.data->y, it.data->width, it.data->height));
    }
    QHash<QString, QRect> monitors;
    for (const auto& [cookie, area] : asked) {
        const ReplyPtr<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(connection, cookie, nullptr));
        if (name) {
            monitors.insert(QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                                              xcb_get_atom_name_name_length(name.get())),
                            area);
        }
    }
    return monitors;
}
