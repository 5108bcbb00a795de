// Starts the real program from a copy of its application folder, as a user would.
#include "CopiedProgram.h"
#include "support/DefaultPreferences.h"
#include "support/XWindows.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>
#include <QScreen>

#include <gtest/gtest.h>

namespace {
const QString kDefaultPreferences = QString::fromUtf8(kDefaultPreferencesFile);

class EndToEnd : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_program.copied()); }

    void start() { ASSERT_TRUE(m_program.start()); }

    std::optional<xtest::Window> mainWindow() {
        std::optional<xtest::Window> window;
        waitFor([&] { return (window = m_x.findWindow("Kestrelview")).has_value(); }, 15000);
        return window;
    }

    // As a window manager does when the user clicks the close box.
    void closeAndWait(const xtest::Window& window) {
        m_x.requestClose(window);
        ASSERT_TRUE(m_program.process().waitForFinished(15000));
        EXPECT_EQ(m_program.process().exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(m_program.process().exitCode(), 0);
    }

    // The window's inside is the menu bar over the logo's area.
    void expectLogoAreaAt(const xtest::Window& window, const QRect& logoArea) {
        const QRect inside = m_x.frame(window);
        EXPECT_EQ(inside.topLeft(), logoArea.topLeft());
        EXPECT_EQ(inside.width(), logoArea.width());
        EXPECT_GT(inside.height(), logoArea.height()) << "no room for the menu bar";
        EXPECT_LT(inside.height(), logoArea.height() + 60);
    }

    QString binPath(const QString& name) const { return m_program.binPath(name); }

    CopiedProgram m_program;
    xtest::Display m_x;
};

TEST_F(EndToEnd, FirstStartWritesDefaultsAndRemembersTheWindow) {
    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value()) << "the main window never came up";
    EXPECT_EQ(readAll(binPath("KestrelviewPreferences.ini")), kDefaultPreferences);
    expectLogoAreaAt(*window, QRect(20, 60, 200, 193));
    EXPECT_FALSE(QFile::exists(binPath("KestrelviewScreen.ini"))) << "written only at close";

    closeAndWait(*window);
    EXPECT_EQ(readAll(binPath("KestrelviewScreen.ini")),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>20</pWinLeft>\n"
              "<pWinTop>60</pWinTop>\n");
}

TEST_F(EndToEnd, CapturesEveryScreenOnScheduleAndRestoresThePlace) {
    m_program.writeQuickPrefs();
    ASSERT_TRUE(writeText(
        binPath("KestrelviewScreen.ini"),
        "<pWinHeight>0</pWinHeight>\n<pWinWidth>0</pWinWidth>\n<pWinLeft>300</pWinLeft>\n<pWinTop>200</"
        "pWinTop>\n"));

    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value());
    expectLogoAreaAt(*window, QRect(300, 200, 200, 193));

    const QList<QScreen*> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2) << "the test display has two monitors";
    EXPECT_TRUE(waitFor([&] { return m_program.pictures().size() >= 4; }, 20000))
        << "two runs of two screens";
    closeAndWait(*window);

    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-([01])\.jpg$)");
    const QStringList files = m_program.pictures();
    ASSERT_GE(files.size(), 4);
    for (const QString& file : files) {
        const auto match = name.match(file);
        ASSERT_TRUE(match.hasMatch()) << file.toStdString();
        const QImage image(m_program.picturePath(file));
        const QScreen* screen = match.captured(1) == "0" ? QGuiApplication::primaryScreen() : screens.last();
        EXPECT_EQ(image.size(), screen->geometry().size()) << file.toStdString();
    }
    EXPECT_TRUE(QDir(binPath("Screen Images")).entryList({".*"}, QDir::Files | QDir::Hidden).isEmpty())
        << "no temporary file is left behind";
    EXPECT_EQ(readAll(binPath("KestrelviewScreen.ini")),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>300</pWinLeft>\n"
              "<pWinTop>200</pWinTop>\n");
}
} // namespace
