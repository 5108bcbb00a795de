#include "app/CommandLine.h"

#include "base/mProgramInfo.h"
#include "history/TimelapseCommand.h"

#include <QCommandLineParser>
#include <QFileInfo>

#include <array>
#include <utility>

namespace {
struct CommandOption {
    const char* name;
    const char* description;
    SessionCommand command;
};

constexpr std::array kCommandOptions{
    CommandOption{"show", "Show and raise the main window of the running program.", SessionCommand::Show},
    CommandOption{"hide", "Hide the main window of the running program.", SessionCommand::Hide},
    CommandOption{"capture-now", "Take one set of pictures now.", SessionCommand::CaptureNow},
    CommandOption{"pause", "Pause the capture schedule.", SessionCommand::Pause},
    CommandOption{"resume", "Resume the capture schedule.", SessionCommand::Resume},
    CommandOption{"history", "Open the history window of the running program, or start the program with it.",
                  SessionCommand::ShowHistory},
    CommandOption{"quit", "Close the running program as its main window's close does.", SessionCommand::Quit},
};

CommandLine ending(CommandLine::Action action, const QString& text) {
    CommandLine line;
    line.action = action;
    line.text = text;
    return line;
}

CommandLine failure(const QString& text) {
    return ending(CommandLine::Action::Error, text);
}

CommandLine forRunningProgram(const QCommandLineParser& parser, const QCommandLineOption& autostart);

CommandLine searchLine(const std::variant<std::monostate, SearchOptions, QString>& search, bool timelapse) {
    if (const auto* error = std::get_if<QString>(&search)) {
        return failure(*error);
    }
    if (timelapse) {
        return failure("Give --search or --make-timelapse, not both.");
    }
    CommandLine line = ending(CommandLine::Action::Search, {});
    line.search = std::get<SearchOptions>(search);
    return line;
}
} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(mProgramInfo::pProgramName + " - " + mProgramInfo::pSubName);
    const QCommandLineOption help(QStringList{"h", "help"}, "Show this help and end.");
    const QCommandLineOption version("version", "Show the version and end.");
    const QCommandLineOption autostart("autostart", "Start the program at login, or no longer.", "on|off");
    const QCommandLineOption status("status", "Print the state of the running program in one line: exit "
                                              "status 3 when none runs.");
    parser.addOption(help);
    parser.addOption(version);
    parser.addOption(status);
    for (const CommandOption& option : kCommandOptions) {
        parser.addOption(QCommandLineOption(option.name, option.description));
    }
    parser.addOption(autostart);
    addTimelapseOptions(parser);
    addSearchOptions(parser);
    if (!parser.parse(arguments)) {
        return failure(parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty()) {
        return failure("Unexpected argument: " + parser.positionalArguments().constFirst());
    }
    if (parser.isSet(help)) {
        // The parser names the program after the application object, which need not exist yet.
        const QString options = parser.helpText();
        return ending(CommandLine::Action::Print, "Usage: " + QFileInfo(arguments.value(0)).fileName() +
                                                      " [options]" + options.mid(options.indexOf('\n')));
    }
    if (parser.isSet(status)) {
        return ending(CommandLine::Action::Status, {});
    }
    if (parser.isSet(version)) {
        return ending(CommandLine::Action::Print,
                      mProgramInfo::pProgramName + ' ' + mProgramInfo::pProgramVersion + '\n');
    }
    const auto search = readSearchOptions(parser);
    if (!std::holds_alternative<std::monostate>(search)) {
        return searchLine(search, parser.isSet(QStringLiteral("make-timelapse")));
    }
    const auto timelapse = readTimelapseOptions(parser);
    if (const auto* error = std::get_if<QString>(&timelapse)) {
        return failure(*error);
    }
    if (const auto* options = std::get_if<TimelapseOptions>(&timelapse)) {
        CommandLine line = ending(CommandLine::Action::MakeTimelapse, {});
        line.timelapse = *options;
        return line;
    }
    return forRunningProgram(parser, autostart);
}

namespace {
// What a start asks of the running program, or of the login: one option at a time.
CommandLine forRunningProgram(const QCommandLineParser& parser, const QCommandLineOption& autostart) {
    CommandLine line;
    for (const CommandOption& option : kCommandOptions) {
        if (parser.isSet(option.name)) {
            if (line.command) {
                return failure("Give one of the options for the running program at a time.");
            }
            line.command = option.command;
        }
    }
    if (parser.isSet(autostart)) {
        const QString value = parser.value(autostart);
        if (line.command || (value != "on" && value != "off")) {
            return failure("--autostart takes on or off, and no other option.");
        }
        line.action = CommandLine::Action::Autostart;
        line.autostart = value == "on";
    }
    return line;
}
} // namespace
