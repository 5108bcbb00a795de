#pragma once

#include "platform/windowsystem/WindowSystem.h"

// Where the toolkit's connection cannot be reached: requests go out at the next turn of the event
// loop, as the toolkit sends them.
class NullWindowSystem final : public WindowSystem {
public:
    void flush() override {}
};
