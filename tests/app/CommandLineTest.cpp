#include "app/CommandLine.h"
#include "app/Autostart.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

namespace {
TEST(CommandLine, EachOptionAsksForOneThing) {
    using enum SessionCommand;
    using A = CommandLine::Action;
    const std::tuple<QString, A, std::optional<SessionCommand>> cases[] = {
        {"", A::Run, std::nullopt},
        {"--show", A::Run, Show},
        {"--hide", A::Run, Hide},
        {"--capture-now", A::Run, CaptureNow},
        {"--pause", A::Run, Pause},
        {"--resume", A::Run, Resume},
        {"--quit", A::Run, Quit},
        {"--autostart on", A::Autostart, std::nullopt},
        {"--version", A::Print, std::nullopt},
        {"--pause --resume", A::Error, std::nullopt},
        {"--autostart maybe", A::Error, std::nullopt},
        {"--autostart on --quit", A::Error, std::nullopt},
        {"--frobnicate", A::Error, std::nullopt},
        {"picture.jpg", A::Error, std::nullopt}};
    for (const auto& [arguments, action, command] : cases) {
        const CommandLine line =
            parseCommandLine(("kestrelview " + arguments).split(' ', Qt::SkipEmptyParts));
        EXPECT_TRUE(line.action == action && line.command == command) << arguments.toStdString();
    }
    EXPECT_TRUE(parseCommandLine({"kestrelview", "--autostart", "on"}).autostart);
    EXPECT_FALSE(parseCommandLine({"kestrelview", "--autostart=off"}).autostart);
    EXPECT_EQ(parseCommandLine({"kestrelview", "--version"}).text, "Kestrelview 1.7.0\n");
    const QString help = parseCommandLine({"/usr/bin/kestrelview", "--help"}).text;
    EXPECT_TRUE(help.startsWith("Usage: kestrelview [options]\n") && help.contains("--capture-now"))
        << help.toStdString();
}

TEST(CommandLine, TheAutostartEntryStartsThisProgramWhereverItLies) {
    EXPECT_TRUE(autostartEntry("/usr/lib/kestrelview/bin/kestrelview")
                    .contains("\nExec=/usr/lib/kestrelview/bin/kestrelview\n"));
    EXPECT_TRUE(autostartEntry("/home/me/My $Apps/100%/kestrelview")
                    .contains(R"(Exec="/home/me/My \\$Apps/100%%/kestrelview")"));
}
} // namespace
