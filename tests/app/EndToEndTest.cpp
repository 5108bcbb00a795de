// Starts the real program from a copy of its application folder, as a user would.
#include "app/RealProgram.h"
#include "support/DefaultPreferences.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRegularExpression>
#include <QScreen>

#include <gtest/gtest.h>

namespace {
const QString kDefaultPreferences = QString::fromUtf8(kDefaultPreferencesFile);

class EndToEnd : public RealProgramTest {
protected:
    // The window's inside is the menu bar over the logo's area.
    void expectLogoAreaAt(const xtest::Window& window, const QRect& logoArea) {
        const QRect inside = m_x.frame(window);
        EXPECT_EQ(inside.topLeft(), logoArea.topLeft());
        EXPECT_EQ(inside.width(), logoArea.width());
        EXPECT_GT(inside.height(), logoArea.height()) << "no room for the menu bar";
        EXPECT_LT(inside.height(), logoArea.height() + 60);
    }

    QStringList pictures() const { return RealProgramTest::pictures(m_bin + "/Screen Images"); }
};

TEST_F(EndToEnd, FirstStartWritesDefaultsAndRemembersTheWindow) {
    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value()) << "the main window never came up";
    EXPECT_EQ(readAll(m_bin + "/KestrelviewPreferences.ini"), kDefaultPreferences);
    expectLogoAreaAt(*window, QRect(20, 60, 200, 193));
    EXPECT_FALSE(QFile::exists(m_bin + "/KestrelviewScreen.ini")) << "written only at close";

    closeAndWait(*window);
    EXPECT_EQ(readAll(m_bin + "/KestrelviewScreen.ini"),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>20</pWinLeft>\n"
              "<pWinTop>60</pWinTop>\n");
}

TEST_F(EndToEnd, CapturesEveryScreenOnScheduleAndRestoresThePlace) {
    QString prefs = kDefaultPreferences;
    prefs.replace("<pInterval>300<", "<pInterval>2<")
        .replace("<pUpdateAtStartup>TRUE<", "<pUpdateAtStartup>FALSE<");
    writeText(m_bin + "/KestrelviewPreferences.ini", prefs);
    writeText(m_bin + "/KestrelviewScreen.ini",
              "<pWinHeight>0</pWinHeight>\n<pWinWidth>0</pWinWidth>\n<pWinLeft>300</pWinLeft>\n<pWinTop>200</"
              "pWinTop>\n");

    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value());
    expectLogoAreaAt(*window, QRect(300, 200, 200, 193));

    const QList<QScreen*> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2) << "the test display has two monitors";
    EXPECT_TRUE(waitFor([&] { return pictures().size() >= 4; }, 20000)) << "two runs of two screens";
    closeAndWait(*window);

    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-([01])\.jpg$)");
    const QStringList files = pictures();
    ASSERT_GE(files.size(), 4);
    for (const QString& file : files) {
        const auto match = name.match(file);
        ASSERT_TRUE(match.hasMatch()) << file.toStdString();
        const QImage image(m_bin + "/Screen Images/" + file);
        const QScreen* screen = match.captured(1) == "0" ? QGuiApplication::primaryScreen() : screens.last();
        EXPECT_EQ(image.size(), screen->geometry().size()) << file.toStdString();
    }
    EXPECT_TRUE(QDir(m_bin + "/Screen Images").entryList({".*"}, QDir::Files | QDir::Hidden).isEmpty())
        << "no temporary file is left behind";
    EXPECT_EQ(readAll(m_bin + "/KestrelviewScreen.ini"),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>300</pWinLeft>\n"
              "<pWinTop>200</pWinTop>\n");
}
} // namespace
