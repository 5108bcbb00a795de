#pragma once

#include "platform/launcher/LauncherEntry.h"

// Where no launcher can hear the program: the flag goes nowhere.
class NullLauncherEntry final : public LauncherEntry {
public:
    void setUrgent(bool) override {}
};
