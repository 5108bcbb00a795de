// The program in-process: its menus and commands, its windows beside the main one, and how they look.
#include "app/Menu.h"
#include "app/ProgramFixture.h"
#include "app/wAbout.h"
#include "feedback/DockIcon.h"
#include "settings/wGeneralSettings.h"
#include "slideshow/wMovie.h"
#include "support/Files.h"
#include "support/Must.h"
#include "support/Pixels.h"

#include <QLabel>
#include <QMenu>

namespace {
// A few pixels that differ are glyph edges that another rasteriser puts elsewhere; a moved or cut
// control changes far more. KV_UPDATE_REFERENCES=1 rewrites the references and the screenshots in
// docs/ instead.
void expectLooksLikeReference(QWidget* window, const QString& name) {
    const QImage actual = window->grab().toImage();
    const QString reference = QString(KV_REFERENCE_DIR) + '/' + name + ".png";
    if (qEnvironmentVariableIsSet("KV_UPDATE_REFERENCES")) {
        EXPECT_TRUE(actual.save(reference) && actual.save(QString(KV_SCREENSHOT_DIR) + '/' + name + ".png"));
        return;
    }
    const QImage expected(reference);
    EXPECT_TRUE(expected.size() == actual.size() &&
                differingPixels(actual, expected, 48).outside <= actual.width() * actual.height() / 250)
        << name.toStdString() << " differs from its reference; see "
        << (actual.save(name + "-actual.png"), QDir::current().filePath(name + "-actual.png").toStdString());
}

class MenuTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
    }

    QAction* item(const char* name) { return menu().item(name); }

    // Opening a menu works out again which items are live.
    bool live(const char* name) {
        menu().trayMenu()->popup(QPoint(0, 0));
        menu().trayMenu()->hide();
        return item(name)->isEnabled();
    }

    void choose(const char* name) {
        ASSERT_TRUE(live(name)) << name;
        item(name)->trigger();
    }

    template <typename W> static W* activeAfterFlip() {
        EXPECT_EQ(qobject_cast<W*>(QApplication::activeWindow()), nullptr) << "only after the flip";
        EXPECT_TRUE(QTest::qWaitFor([] { return qobject_cast<W*>(QApplication::activeWindow()); }, 10000));
        return &must(qobject_cast<W*>(QApplication::activeWindow()), "the window after the flip");
    }
};

TEST_F(MenuTest, ItemsAreLiveWhereTheirHandlersAreBoundAndQuitKeepsThePlaceAfterTheEffect) {
    // Live with the main window in front, and with another window in front.
    const std::tuple<const char*, bool, bool> cases[] = {{"QVTPreferences", true, false},
                                                         {"HelpAbout", true, false},
                                                         {"FileCheckForUpdates", true, false},
                                                         {"ToolsCreateSlideshowMovie", true, false},
                                                         {"HelpSendFeedback", true, false},
                                                         {"HelpVisitourWebsite", true, false},
                                                         {"ToolsShowMainWindow", true, true},
                                                         {"ToolsHideMainWindow", true, true},
                                                         {"ToolsHistory", true, true},
                                                         {"FileQuit", true, true},
                                                         {"Help", true, true},
                                                         {"EditCopy", false, false},
                                                         {"UntitledSeparator", false, false}};
    openMainWindow();
    m_main->move(300, 240);
    ASSERT_TRUE(activate(m_main));
    for (const auto& [name, withMain, withOther] : cases) {
        EXPECT_EQ(live(name), withMain) << name << " with the main window in front";
    }
    choose("HelpAbout");
    wAbout* about = activeAfterFlip<wAbout>();
    for (const auto& [name, withMain, withOther] : cases) {
        EXPECT_EQ(live(name), withOther) << name << " with the about window in front";
    }
    // Chosen again from the main window: the same about window, which still suspends the schedule.
    ASSERT_TRUE(activate(m_main));
    choose("HelpAbout");
    EXPECT_TRUE(QTest::qWaitForWindowActive(about) && m_main->aboutWindow() == about && suspended());
    ASSERT_TRUE(activate(m_main));

    // The pages go to the desktop's URL handler; a stand-in for it notes what it was given.
    const QString log = m_dir.filePath("opened");
    ASSERT_TRUE(writeFile(m_dir.filePath("xdg-open"), "#!/bin/sh\necho \"$1\" >>'" + log.toUtf8() + "'\n"));
    QFile::setPermissions(m_dir.filePath("xdg-open"), QFile::ReadOwner | QFile::ExeOwner);
    qputenv("PATH", (m_dir.path() + ':' + qEnvironmentVariable("PATH")).toLocal8Bit());
    choose("HelpSendFeedback");
    choose("HelpVisitourWebsite");
    EXPECT_TRUE(QTest::qWaitFor([&] { return readFile(log).count('\n') == 2; }, 5000));
    EXPECT_EQ(readFile(log), mProgramInfo::kSupportForumUrl + '\n' + mProgramInfo::kWebSiteUrl + '\n');

    // Quit works from any window, through the main window's close, which plays its effect first,
    // then keeps the logo's area as the window's place.
    const QPoint corner = m_main->pos();
    choose("QVTPreferences");
    QTest::keyClick(activeAfterFlip<wGeneralSettings>(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(m_main->isVisible() && readBinFile("KestrelviewScreen.ini").isEmpty()) << "the effect first";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_main->isVisible(); }, 10000));
    EXPECT_EQ(readBinFile("KestrelviewScreen.ini"),
              QString("<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>%1</pWinLeft>\n"
                      "<pWinTop>%2</pWinTop>\n")
                  .arg(corner.x())
                  .arg(corner.y()));
}

TEST_F(MenuTest, TheTrayShowsHidesPausesResumesCapturesNowAndStartsAtLogin) {
    qputenv("XDG_CONFIG_HOME", m_dir.path().toUtf8());
    openMainWindow();
    // No window has handlers for these, so the application's take them; twice is once.
    ASSERT_TRUE(activate(m_main));
    for (const char* name : {"ToolsHideMainWindow", "ToolsHideMainWindow", "ToolsShowMainWindow"}) {
        choose(name);
        EXPECT_EQ(m_main->isVisible(), QByteArray(name).contains("Show")) << name;
    }
    choose("ToolsShowMainWindow");
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_main));
    for (const bool paused : {true, false}) {
        item("TrayPause")->trigger();
        EXPECT_EQ(m_main->sttCountDown()->text() == "Paused", paused);
        EXPECT_EQ(item("TrayPause")->text(), paused ? "Resume" : "Pause");
        item("TrayCaptureNow")->trigger();
        runner().waitForRuns();
        EXPECT_EQ(entriesIn(binPath("Screen Images")).isEmpty(), paused);
    }
    for (const bool on : {true, false}) {
        item("TrayStartAtLogin")->trigger();
        EXPECT_EQ(QFile::exists(m_dir.filePath("autostart/com.kestrelview.Kestrelview.desktop")), on);
        EXPECT_EQ(live("TrayStartAtLogin") && item("TrayStartAtLogin")->isChecked(), on);
    }
}

TEST_F(MenuTest, QuitFromTheTrayWithTheMainWindowHiddenStartsNoCaptureWhileItCloses) {
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pInterval = 1;
    writePrefs(prefs);
    openMainWindow();
    const QString pictures = binPath("Screen Images");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !entriesIn(pictures).isEmpty(); }, 10000))
        << "the schedule runs";
    item("ToolsHideMainWindow")->trigger();
    item("FileQuit")->trigger();
    runner().waitForRuns();
    const QStringList before = entriesIn(pictures);
    item("TrayCaptureNow")->trigger();
    // The effect lasts longer than the interval.
    EXPECT_TRUE(QTest::qWaitFor([&] { return !readBinFile("KestrelviewScreen.ini").isEmpty(); }, 10000));
    runner().waitForRuns();
    EXPECT_EQ(entriesIn(pictures), before);
}

// The way out of a window that suspends the schedule is a button that ends the suspension, not
// Escape, and for the movie window also the close box. A window left by its close box leaves the
// schedule suspended, which the tray says, until some window's way out ends it.
TEST_F(MenuTest, EscapeNeverClosesOnlyButtonsEndTheSuspensionAndTheWindowsLookAsTheirReferences) {
    const std::tuple<const char*, std::function<QWidget*()>, bool, bool> dialogs[] = {
        // the default button closes it, still suspended after the close box
        {"about", [this] { return m_main->aboutWindow(); }, true, true},
        {"settings", [this] { return m_main->showSettingsWindow(); }, true, true},
        {"movie", [this] { return m_main->movieWindow(); }, false, false}};
    openMainWindow();
    for (const auto& [name, open, enterCloses, suspendedAfterCloseBox] : dialogs) {
        SCOPED_TRACE(name);
        QPointer<QWidget> window = open();
        ASSERT_TRUE(activate(window));
        EXPECT_TRUE(suspended());
        QTest::keyClick(window, Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible());
        if (enterCloses) { // from the keypad too
            QTest::keyClick(window, Qt::Key_Enter, Qt::KeypadModifier);
            EXPECT_TRUE((window.isNull() || !window->isVisible()) && !suspended());
            ASSERT_TRUE(activate(window = open()));
        }
        window->close(); // the close box
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 10000)) << "closed and gone";
        EXPECT_EQ(suspended(), suspendedAfterCloseBox);
        EXPECT_EQ(std::pair(dockToolTip(), m_main->sttCountDown()->text()),
                  suspendedAfterCloseBox
                      ? std::pair(QString("Paused: open Preferences and leave it with Save or Cancel"),
                                  QString("Paused"))
                      : std::pair(QString("Kestrelview"), m_main->sttCountDown()->text()));
    }
    // Fresh windows, filled in again.
    QWidget* about = m_main->aboutWindow();
    QWidget* settings = m_main->showSettingsWindow();
    EXPECT_EQ(must(about->findChild<QLabel*>("sttVersion"), "sttVersion").text(),
              "1.7.0 - Linux - 15072010_1800");
    m_main->sttCountDown()->setText("300"); // whatever the countdown had reached before the pause
    for (const auto& [window, name] : {std::pair<QWidget*, const char*>{m_main, "main-window"},
                                       {about, "about-window"},
                                       {settings, "settings-window"}}) {
        expectLooksLikeReference(window, name);
    }
}
} // namespace
