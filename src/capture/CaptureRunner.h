#pragma once

#include "capture/CaptureRun.h"

#include <chrono>
#include <memory>

class ScreenGrabber;
class Clock;
class FreeSpaceWatch;

// Starts capture runs, each on a thread of its own, at most two at a time. An exception that
// leaves a run reaches Event_UnhandledException.
class CaptureRunner {
public:
    // How long quitting waits for the runs under way.
    static constexpr std::chrono::milliseconds kQuitPatience{3000};

    CaptureRunner(ScreenGrabber& grabber, const Clock& clock);
    // Waits for the runs under way as quitting does.
    ~CaptureRunner();
    CaptureRunner(const CaptureRunner&) = delete;
    CaptureRunner& operator=(const CaptureRunner&) = delete;

    // Returns at once. A second run may start while the first is still working; while two are,
    // or while the grabber would keep a new run waiting behind an earlier one, the expiry starts
    // none and is lost, and the user is told once until a run starts again. GUI thread.
    void Run(CaptureRunInput input);
    // Tells when the runs stop and start again for want of room on the disk.
    FreeSpaceWatch& freeSpace();
    // Told of every screen picture that the runs started from now on write. GUI thread.
    void setScreenPictureSink(ScreenPictureSink sink);
    // Blocks until no run is under way.
    void waitForRuns();
    // Waits at most `patience` for the runs under way; those still going are left to end with the
    // process, and write nothing more.
    void finishRuns(std::chrono::milliseconds patience);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
