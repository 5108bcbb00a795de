#pragma once

#include <memory>

// The program's entry in the desktop's launcher, which docks and task managers show.
class LauncherEntry {
public:
    virtual ~LauncherEntry() = default;
    // Raises or clears the entry's urgent flag.
    virtual void setUrgent(bool urgent) = 0;
};

// The entry on the session bus, or a null one where there is no session bus. Needs the
// application object, whose desktop file name the entry is known by.
std::unique_ptr<LauncherEntry> makeLauncherEntry();
