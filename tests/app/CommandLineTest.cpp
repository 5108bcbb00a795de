#include "app/CommandLine.h"
#include "app/Autostart.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace {
using Action = CommandLine::Action;

struct Case {
    QStringList arguments;
    Action action;
    std::optional<SessionCommand> command;
    bool autostart = false;
};

TEST(CommandLineTest, EachOptionAsksForOneThing) {
    const Case cases[] = {
        {{}, Action::Run, std::nullopt},
        {{"--show"}, Action::Run, SessionCommand::Show},
        {{"--hide"}, Action::Run, SessionCommand::Hide},
        {{"--capture-now"}, Action::Run, SessionCommand::CaptureNow},
        {{"--pause"}, Action::Run, SessionCommand::Pause},
        {{"--resume"}, Action::Run, SessionCommand::Resume},
        {{"--quit"}, Action::Run, SessionCommand::Quit},
        {{"--autostart", "on"}, Action::Autostart, std::nullopt, true},
        {{"--autostart=off"}, Action::Autostart, std::nullopt, false},
        {{"--help"}, Action::Print, std::nullopt},
        {{"--version"}, Action::Print, std::nullopt},
        {{"--pause", "--resume"}, Action::Error, std::nullopt},
        {{"--autostart", "maybe"}, Action::Error, std::nullopt},
        {{"--autostart", "on", "--quit"}, Action::Error, std::nullopt},
        {{"--frobnicate"}, Action::Error, std::nullopt},
        {{"picture.jpg"}, Action::Error, std::nullopt},
    };
    for (const Case& c : cases) {
        const CommandLine line = parseCommandLine(QStringList{"kestrelview"} + c.arguments);
        const std::string what = c.arguments.join(' ').toStdString();
        EXPECT_EQ(line.action, c.action) << what;
        EXPECT_EQ(line.command, c.command) << what;
        EXPECT_EQ(line.autostart, c.autostart) << what;
        EXPECT_EQ(line.text.isEmpty(), c.action == Action::Run || c.action == Action::Autostart) << what;
    }
    const QString help = parseCommandLine({"/usr/bin/kestrelview", "--help"}).text;
    EXPECT_TRUE(help.startsWith("Usage: kestrelview [options]")) << help.toStdString();
    EXPECT_TRUE(help.contains("--capture-now"));
    EXPECT_EQ(parseCommandLine({"kestrelview", "--version"}).text, "Kestrelview 1.7.0\n");
}

TEST(CommandLineTest, TheAutostartEntryStartsThisProgramWhereverItLies) {
    EXPECT_TRUE(autostartEntry("/usr/lib/kestrelview/bin/kestrelview")
                    .contains("\nExec=/usr/lib/kestrelview/bin/kestrelview\n"));
    EXPECT_TRUE(autostartEntry("/home/me/My $Apps/100%/kestrelview")
                    .contains(R"(Exec="/home/me/My \\$Apps/100%%/kestrelview")"));

    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    ASSERT_TRUE(autostartEntryPath().startsWith(config.path() + "/autostart/"));
    EXPECT_FALSE(autostartEnabled());
    ASSERT_TRUE(setAutostart(true));
    EXPECT_TRUE(autostartEnabled());
    EXPECT_TRUE(setAutostart(false));
    EXPECT_FALSE(autostartEnabled());
    EXPECT_TRUE(setAutostart(false)) << "removing what is not there is no failure";
}
} // namespace
