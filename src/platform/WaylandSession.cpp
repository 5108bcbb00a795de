#include "platform/WaylandSession.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QtGlobal>

namespace platform {
bool isWaylandSession() {
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland";
}

void preferNativeWindows() {
    if (!isWaylandSession()) {
        return;
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "wayland;xcb");
    }
    // The windows paint in shared memory; the OpenGL client buffers, loaded by default, would
    // double the program's resident memory for nothing.
    if (!qEnvironmentVariableIsSet("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION")) {
        qputenv("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "none");
    }
    // The plugin's notes on what the compositor does not allow (a window's place, opacity,
    // raising) would otherwise come at every start and for every window.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.wayland.warning=false"));
}

bool windowPlacesAreKnown() {
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

bool privateWindowsAvailable() {
    return !isWaylandSession();
}
} // namespace platform
