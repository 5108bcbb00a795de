#include "app/CommandLine.h"
#include "app/Autostart.h"

#include <gtest/gtest.h>

#include <optional>
#include <tuple>

namespace {
using Action = CommandLine::Action;

TEST(CommandLineTest, EachOptionAsksForOneThing) {
    const std::tuple<QStringList, Action, std::optional<SessionCommand>> cases[] = {
        {{}, Action::Run, std::nullopt},
        {{"--show"}, Action::Run, SessionCommand::Show},
        {{"--hide"}, Action::Run, SessionCommand::Hide},
        {{"--capture-now"}, Action::Run, SessionCommand::CaptureNow},
        {{"--pause"}, Action::Run, SessionCommand::Pause},
        {{"--resume"}, Action::Run, SessionCommand::Resume},
        {{"--quit"}, Action::Run, SessionCommand::Quit},
        {{"--autostart", "on"}, Action::Autostart, std::nullopt},
        {{"--version"}, Action::Print, std::nullopt},
        {{"--pause", "--resume"}, Action::Error, std::nullopt},
        {{"--autostart", "maybe"}, Action::Error, std::nullopt},
        {{"--autostart", "on", "--quit"}, Action::Error, std::nullopt},
        {{"--frobnicate"}, Action::Error, std::nullopt},
        {{"picture.jpg"}, Action::Error, std::nullopt},
    };
    for (const auto& [arguments, action, command] : cases) {
        const CommandLine line = parseCommandLine(QStringList{"kestrelview"} + arguments);
        EXPECT_EQ(line.action, action) << arguments.join(' ').toStdString();
        EXPECT_EQ(line.command, command) << arguments.join(' ').toStdString();
    }
    EXPECT_TRUE(parseCommandLine({"kestrelview", "--autostart", "on"}).autostart);
    EXPECT_FALSE(parseCommandLine({"kestrelview", "--autostart=off"}).autostart);
    EXPECT_EQ(parseCommandLine({"kestrelview", "--version"}).text, "Kestrelview 1.7.0\n");
    const QString help = parseCommandLine({"/usr/bin/kestrelview", "--help"}).text;
    EXPECT_TRUE(help.startsWith("Usage: kestrelview [options]\n")) << help.toStdString();
    EXPECT_TRUE(help.contains("--capture-now"));
}

TEST(CommandLineTest, TheAutostartEntryStartsThisProgramWhereverItLies) {
    EXPECT_TRUE(autostartEntry("/usr/lib/kestrelview/bin/kestrelview")
                    .contains("\nExec=/usr/lib/kestrelview/bin/kestrelview\n"));
    EXPECT_TRUE(autostartEntry("/home/me/My $Apps/100%/kestrelview")
                    .contains(R"(Exec="/home/me/My \\$Apps/100%%/kestrelview")"));
}
} // namespace
