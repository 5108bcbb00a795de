#pragma once

#include "platform/Picture.h"

#include <QList>
#include <QRect>

#include <functional>
#include <memory>
#include <optional>

// One capture run's reading of the screens.
class ScreenRun {
public:
    virtual ~ScreenRun() = default;
    // The pixels of one area of the desktop, in device pixels. Empty when the area cannot be read.
    virtual std::optional<Picture> grab(const QRect& area) = 0;
};

// A run that reads each area from the display at the moment it is asked for.
class LiveScreenRun final : public ScreenRun {
public:
    using Grab = std::function<std::optional<Picture>(const QRect&)>;
    explicit LiveScreenRun(Grab grab)
        : m_grab(std::move(grab)) {}
    std::optional<Picture> grab(const QRect& area) override { return m_grab(area); }

private:
    Grab m_grab;
};

// What the display said when a run began.
struct ScreenRunStart {
    std::unique_ptr<ScreenRun> run; // empty when the display refused its pixels
    bool refusalIsNew = false;      // refused, and the display had not refused the run before
};

// Reads what the screens show.
class ScreenGrabber {
public:
    virtual ~ScreenGrabber() = default;
    // Begins one capture run over `screens` (device pixels, primary first). A display that hands
    // out the whole desktop at once is asked here, once per run. Safe to call from any thread.
    virtual ScreenRunStart beginRun(const QList<QRect>& screens) = 0;
    // True while a run begun now would wait behind an earlier one's request; such a run gets
    // no screens.
    virtual bool busy() const { return false; }
};

// The back end for the running session: the desktop portal on Wayland, XCB on X11, and a null one
// that grabs nothing elsewhere.
std::unique_ptr<ScreenGrabber> makeScreenGrabber();
