#include "app/Autostart.h"
#include "app/CommandLine.h"
#include "app/Program.h"
#include "history/TimelapseCommand.h"
#include "platform/session/InstanceLock.h"

#include <QCoreApplication>

#include <cstdio>

namespace {
// What --status gives when no instance runs.
constexpr int kNoneRuns = 3;
} // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    const CommandLine line = parseCommandLine(arguments);
    switch (line.action) {
    case CommandLine::Action::Print:
        std::fputs(qPrintable(line.text), stdout);
        return 0;
    case CommandLine::Action::Error:
        std::fprintf(stderr, "%s\n", qPrintable(line.text));
        return 2;
    case CommandLine::Action::Autostart: {
        const QCoreApplication app(argc, argv);
        return setAutostart(line.autostart) ? 0 : 1;
    }
    case CommandLine::Action::MakeTimelapse:
        return runTimelapseCommand(argc, argv, *line.timelapse);
    case CommandLine::Action::Search:
        return runSearchCommand(argc, argv, *line.search);
    case CommandLine::Action::Status:
    case CommandLine::Action::Run:
        break;
    }
    const InstanceLock instance;
    if (line.action == CommandLine::Action::Status) {
        if (!instance.heldElsewhere()) {
            std::fputs("Kestrelview is not running.\n", stderr);
            return kNoneRuns;
        }
        return printStatus(argc, argv);
    }
    if (instance.heldElsewhere()) {
        return handOff(argc, argv, line.command.value_or(SessionCommand::Show));
    }
    if (line.command == SessionCommand::Quit) {
        return 0; // nothing runs that could be closed
    }
    return runProgram(argc, argv, line.command);
}
