#include "platform/screen/NullScreenGrabber.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/XcbScreenGrabber.h"

#include <QGuiApplication>

std::unique_ptr<ScreenGrabber> makeScreenGrabber() {
    if (QGuiApplication::platformName() == QLatin1String("xcb") || qEnvironmentVariableIsSet("DISPLAY")) {
        if (std::unique_ptr<ScreenGrabber> grabber = XcbScreenGrabber::connect()) {
            return grabber;
        }
    }
    return std::make_unique<NullScreenGrabber>();
}
