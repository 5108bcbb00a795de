#include "platform/WaylandSession.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QtGlobal>

namespace platform {
bool isWaylandSession() {
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland";
}

void preferNativeWindows() {
    if (isWaylandSession() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "wayland;xcb");
    }
}

bool windowPlacesAreKnown() {
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}
} // namespace platform
