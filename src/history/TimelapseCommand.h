#pragma once

#include "history/TimelapsePlan.h"

#include <QString>

#include <optional>
#include <variant>

class QCommandLineParser;

// --make-timelapse and the options that go with it, for the program's command line.
void addTimelapseOptions(QCommandLineParser& parser);
// Nothing when --make-timelapse was not given; the options, or what is wrong with them.
std::variant<std::monostate, TimelapseOptions, QString>
readTimelapseOptions(const QCommandLineParser& parser);

// The destination as the settings file names it, for a command that runs beside the program.
QString destinationSetting();

// Makes the time-lapse from the capture files of the destination that the settings name, in a
// process of its own beside any running instance: no window, no lock, a progress line on the
// terminal. The exit status.
int runTimelapseCommand(int& argc, char** argv, const TimelapseOptions& options);
