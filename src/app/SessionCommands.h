#pragma once

#include "platform/session/SessionChannel.h"

class wMain;

// Carries out what a later start asked of this instance, as the menu's commands would.
void carryOut(wMain& window, SessionCommand command);
