#include "platform/WaylandSession.h"
#include "platform/screen/NullScreenGrabber.h"
#include "platform/screen/PortalScreenGrabber.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/XcbScreenGrabber.h"

#include <QGuiApplication>

std::unique_ptr<ScreenGrabber> makeScreenGrabber() {
    // Under XWayland too: the X server there holds only the windows of X programs.
    if (platform::isWaylandSession()) {
        if (std::unique_ptr<ScreenGrabber> grabber = PortalScreenGrabber::connect()) {
            return grabber;
        }
    } else if (QGuiApplication::platformName() == QLatin1String("xcb") ||
               qEnvironmentVariableIsSet("DISPLAY")) {
        if (std::unique_ptr<ScreenGrabber> grabber = XcbScreenGrabber::connect()) {
            return grabber;
        }
    }
    return std::make_unique<NullScreenGrabber>();
}
