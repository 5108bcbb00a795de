#pragma once

#include "platform/screen/ScreenGrabber.h"

#include <memory>

// Reads the root window of the X display straight from the server on a connection of its own,
// through MIT-SHM where the server can attach our memory, GetImage otherwise. The picture is the
// server's BGRX memory itself; its owner gives the segment back, or frees the reply.
//
// Two spare segments, the largest given back, stay attached between grabs, one for each screen
// of a run whose screens are written side by side: a fresh one costs page faults on both sides of
// the socket that take longer than the copy itself.
class XcbScreenGrabber final : public ScreenGrabber {
public:
    enum class Transport { SharedMemoryFirst, GetImageOnly };

    // Empty when no X server answers or its pixels are not 32-bit BGRX.
    static std::unique_ptr<XcbScreenGrabber> connect(Transport transport = Transport::SharedMemoryFirst);
    ~XcbScreenGrabber() override;

    // Every screen of the run is read from the server when it is asked for.
    ScreenRunStart beginRun(const QList<QRect>& screens) override;
    // The pixels of one area, in root-window coordinates. Safe to call from any thread.
    std::optional<Picture> grab(const QRect& area);
    // False once the server has refused a segment, or when it never offered MIT-SHM.
    bool usesSharedMemory() const;

private:
    struct Server;
    explicit XcbScreenGrabber(std::shared_ptr<Server> server);

    std::optional<Picture> grabShared(const QRect& area, int stride);
    std::optional<Picture> grabDirect(const QRect& area, int stride);

    // Shared with the pictures that hold its segments, so that one outliving the grabber can
    // still be given back safely.
    std::shared_ptr<Server> m_server;
};
