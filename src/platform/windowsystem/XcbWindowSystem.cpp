#include "platform/windowsystem/XcbWindowSystem.h"

#include <xcb/xcb.h>

void XcbWindowSystem::flush() {
    xcb_flush(m_connection);
}
