#include "platform/windowsystem/NullWindowSystem.h"
#include "platform/windowsystem/WindowSystem.h"
#include "platform/windowsystem/XcbWindowSystem.h"

#include <QGuiApplication>

std::unique_ptr<WindowSystem> makeWindowSystem() {
    const auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (const auto* x11 =
            app != nullptr ? app->nativeInterface<QNativeInterface::QX11Application>() : nullptr) {
        return std::make_unique<XcbWindowSystem>(x11->connection());
    }
    return std::make_unique<NullWindowSystem>();
}
