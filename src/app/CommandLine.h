#pragma once

#include "history/TimelapsePlan.h"
#include "platform/session/SessionChannel.h"
#include "search/SearchCommand.h"

#include <QString>
#include <QStringList>

#include <optional>

// What the command line asks for.
struct CommandLine {
    enum class Action {
        Run,           // start, or hand `command` to the instance that runs
        Print,         // print `text` (help, version) and end
        Error,         // print `text` to the error output and end with a failure
        Autostart,     // write or remove the autostart entry and end
        Status,        // print the running instance's state and end
        MakeTimelapse, // make `timelapse` in this process, beside any running instance, and end
        Search,        // print the pictures that `search` finds, beside any running instance, and end
    };
    Action action = Action::Run;
    // For the running instance; a plain start asks it to show itself.
    std::optional<SessionCommand> command;
    bool autostart = false;
    std::optional<TimelapseOptions> timelapse;
    std::optional<SearchOptions> search;
    QString text;
};

// `arguments` starts with the program's own name.
CommandLine parseCommandLine(const QStringList& arguments);
