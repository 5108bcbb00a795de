#pragma once

#include "platform/session/SessionChannel.h"

#include <optional>

// The program itself, as the one instance in the session: its windows, the capture schedule and
// the channel through which later starts reach it. `command` is carried out once it is open.
int runProgram(int& argc, char** argv, std::optional<SessionCommand> command);

// A later start: hands `command` to the running instance and ends.
int handOff(int& argc, char** argv, SessionCommand command);
