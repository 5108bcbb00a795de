#pragma once

#include "platform/windowsystem/WindowSystem.h"

struct xcb_connection_t;

// The X server through the toolkit's XCB connection, which it neither opens nor closes.
class XcbWindowSystem final : public WindowSystem {
public:
    explicit XcbWindowSystem(xcb_connection_t* connection)
        : m_connection(connection) {}

    void flush() override;

private:
    xcb_connection_t* m_connection;
};
