#pragma once

#include "platform/launcher/LauncherEntry.h"

// The launcher entry signal on the session bus, which docks and task managers listen to.
class DBusLauncherEntry final : public LauncherEntry {
public:
    void setUrgent(bool urgent) override;
};

// True when the session bus can be reached.
bool sessionBusAvailable();
