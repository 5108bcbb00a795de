#pragma once

#include "platform/camera/CameraGrabber.h"

#include <memory>
#include <mutex>
#include <utility>

// Holds the one camera grabber. A set-up on one thread may replace it while a photograph on
// another still reads the old one; the old one goes when the last of them lets it go.
class GrabberSlot {
public:
    std::shared_ptr<CameraGrabber> get() const {
        std::lock_guard lock(m_mutex);
        return m_grabber;
    }

    // Returns the new grabber; the old one is released outside the lock, since stopping a
    // pipeline waits for its streaming thread.
    std::shared_ptr<CameraGrabber> replace(std::shared_ptr<CameraGrabber> grabber) {
        std::shared_ptr<CameraGrabber> old;
        {
            std::lock_guard lock(m_mutex);
            old = std::exchange(m_grabber, grabber);
        }
        return grabber;
    }

private:
    mutable std::mutex m_mutex;
    std::shared_ptr<CameraGrabber> m_grabber;
};
