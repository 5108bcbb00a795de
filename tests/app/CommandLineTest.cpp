#include "app/CommandLine.h"
#include "app/Autostart.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

namespace {
CommandLine parse(const QString& arguments) {
    return parseCommandLine(("kestrelview " + arguments).split(' ', Qt::SkipEmptyParts));
}

TEST(CommandLine, EachOptionAsksForOneThing) {
    using enum SessionCommand;
    const std::pair<const char*, std::optional<SessionCommand>> runs[] = {
        {"", std::nullopt}, {"--show", Show},     {"--hide", Hide}, {"--capture-now", CaptureNow},
        {"--pause", Pause}, {"--resume", Resume}, {"--quit", Quit}, {"--history", ShowHistory}};
    for (const auto& [arguments, command] : runs) {
        EXPECT_TRUE(parse(arguments).action == CommandLine::Action::Run &&
                    parse(arguments).command == command)
            << arguments;
    }
    for (const char* wrong :
         {"--pause --resume", "--autostart maybe", "--autostart on --quit", "picture.jpg"}) {
        EXPECT_EQ(parse(wrong).action, CommandLine::Action::Error) << wrong;
    }
    EXPECT_TRUE(parse("--autostart on").action == CommandLine::Action::Autostart &&
                parse("--autostart on").autostart);
    EXPECT_FALSE(parse("--autostart=off").autostart);
    EXPECT_EQ(parse("--status").action, CommandLine::Action::Status);
    EXPECT_TRUE(parse("--version").action == CommandLine::Action::Print &&
                parse("--version").text == "Kestrelview 1.7.0\n");
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
