#pragma once

#include "platform/screen/ScreenGrabber.h"

#include <QThread>

#include <atomic>
#include <memory>

class PortalScreenshot;

// Reads the desktop through xdg-desktop-portal's Screenshot interface, where a Wayland compositor
// keeps the screens to itself: one PNG of the whole desktop per run, cut into the run's screens.
// The portal's answer arrives on a thread of the grabber's own, so neither the GUI thread nor the
// D-Bus traffic of other requests waits on a run.
class PortalScreenGrabber final : public ScreenGrabber {
public:
    // Empty when there is no session bus.
    static std::unique_ptr<PortalScreenGrabber> connect();
    ~PortalScreenGrabber() override;

    // Waits for the portal's answer. A refusal gives no run.
    ScreenRunStart beginRun(const QList<QRect>& screens) override;

private:
    explicit PortalScreenGrabber(std::unique_ptr<PortalScreenshot> screenshot);

    QThread m_thread;
    std::unique_ptr<PortalScreenshot> m_screenshot; // lives on m_thread
    std::atomic<bool> m_refused{false};
};
