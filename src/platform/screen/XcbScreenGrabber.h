#pragma once

#include "platform/screen/ScreenGrabber.h"

#include <xcb/xcb.h>

#include <atomic>
#include <memory>

// Reads the root window of the X display straight from the server on a connection of its own,
// through a fresh MIT-SHM segment per grab where the server can attach one, GetImage otherwise.
// The picture is the server's BGRX memory itself; its owner frees the segment or the reply.
class XcbScreenGrabber final : public ScreenGrabber {
public:
    enum class Transport { SharedMemoryFirst, GetImageOnly };

    // Empty when no X server answers or its pixels are not 32-bit BGRX.
    static std::unique_ptr<XcbScreenGrabber> connect(Transport transport = Transport::SharedMemoryFirst);

    std::optional<Picture> grab(const QRect& area) override;
    // False once the server has refused a segment, or when it never offered MIT-SHM.
    bool usesSharedMemory() const { return m_sharedMemory.load(); }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using ConnectionPtr = std::unique_ptr<xcb_connection_t, Disconnect>;

    XcbScreenGrabber(ConnectionPtr connection, xcb_window_t root, int scanlinePadBits, bool sharedMemory);

    std::optional<Picture> grabShared(const QRect& area);
    std::optional<Picture> grabDirect(const QRect& area);
    int strideFor(int width) const;

    ConnectionPtr m_connection;
    xcb_window_t m_root;
    int m_scanlinePadBits;
    std::atomic<bool> m_sharedMemory;
};
