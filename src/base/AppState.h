#pragma once

#include <QString>

#include <atomic>

// The flags and texts that several subsystems share through the application object.
struct AppState {
    // Go flag: the interval timer may be armed. Once true it stays true.
    std::atomic<bool> pActivateSnapShotTimer{false};
    // Busy flag: a window is open that suspends the capture schedule.
    std::atomic<bool> pSpecialWindowOpen{false};
    // Texts for the working message window; GUI thread only.
    QString pWorkingText1;
    QString pWorkingText2;
};

AppState& App();
