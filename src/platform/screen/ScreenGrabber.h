#pragma once

#include "platform/Picture.h"

#include <QRect>

#include <memory>
#include <optional>

// Reads what a screen shows.
class ScreenGrabber {
public:
    virtual ~ScreenGrabber() = default;
    // The pixels of one area of the display, in root-window coordinates and device pixels.
    // Safe to call from any thread. Empty when the area cannot be read.
    virtual std::optional<Picture> grab(const QRect& area) = 0;
};

// The back end for the running display: XCB on X11, a null one that grabs nothing elsewhere.
std::unique_ptr<ScreenGrabber> makeScreenGrabber();
