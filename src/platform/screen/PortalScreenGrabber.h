#pragma once

#include "platform/screen/ScreenGrabber.h"

#include <QThread>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

class PortalScreenshot;

// Reads the desktop through xdg-desktop-portal's Screenshot interface, where a Wayland compositor
// keeps the screens to itself: one PNG of the whole desktop per run, cut into the run's screens.
// The portal's answer arrives on a thread of the grabber's own, so neither the GUI thread nor the
// D-Bus traffic of other requests waits on a run. One run at a time waits for the portal, which
// may take minutes to answer; a run begun meanwhile gets no screens.
class PortalScreenGrabber final : public ScreenGrabber {
public:
    // Empty when there is no session bus.
    static std::unique_ptr<PortalScreenGrabber> connect();
    ~PortalScreenGrabber() override;

    // Waits for the portal's answer, or for the grabber to go. A refusal gives no run.
    ScreenRunStart beginRun(const QList<QRect>& screens) override;
    bool busy() const override { return m_waiting.load(); }

private:
    explicit PortalScreenGrabber(std::unique_ptr<PortalScreenshot> screenshot);
    // Empty when the portal said no or the grabber is going.
    std::optional<QByteArray> waitForShot();

    QThread m_thread;
    std::unique_ptr<PortalScreenshot> m_screenshot; // lives on m_thread
    std::mutex m_mutex;                             // orders requests before the grabber's end
    bool m_closing = false;
    std::atomic<bool> m_refused{false};
    std::atomic<bool> m_waiting{false}; // a run waits for the portal's answer
};
