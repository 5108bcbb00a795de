#pragma once

#include "capture/CaptureRun.h"

#include <memory>

class ScreenGrabber;
class Clock;

// Starts capture runs, each on a thread of its own, and waits for those under way when it goes.
// An exception that leaves a run reaches Event_UnhandledException.
class CaptureRunner {
public:
    CaptureRunner(ScreenGrabber& grabber, const Clock& clock);
    ~CaptureRunner();
    CaptureRunner(const CaptureRunner&) = delete;
    CaptureRunner& operator=(const CaptureRunner&) = delete;

    // Returns at once; a second run may start while the first is still working.
    void Run(CaptureRunInput input);
    // Blocks until no run is under way.
    void waitForRuns();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
