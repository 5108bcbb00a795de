#pragma once

#include "capture/ScreenSignature.h"

#include <map>
#include <mutex>

// What each screen showed in its last written picture, across capture runs, so that a screen that
// still shows it is not written again but once in so many runs. Shared by the runs under way.
class UnchangedScreens {
public:
    // Whether screen `index`, showing `now`, is to be written in this run: when it has changed,
    // when none of it was written yet, or when `keepEveryRuns` runs have gone by since its last
    // picture. A run that skips it counts. A wanted picture counts as written from here on, so
    // that a run beside this one decides from it.
    bool wanted(int index, const ScreenSignature& now, int keepEveryRuns);
    // The wanted picture could not be written: the next run writes the screen whatever it shows.
    void notWritten(int index);

private:
    struct LastWritten {
        ScreenSignature shown;
        int runsSkipped = 0;
    };
    std::mutex m_mutex;
    std::map<int, LastWritten> m_screens;
};
