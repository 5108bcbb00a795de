#include "app/ProgramFixture.h"

#include "app/Menu.h"
#include "app/wAbout.h"
#include "base/AppState.h"
#include "base/mProgramInfo.h"
#include "settings/mScreenSettings.h"
#include "settings/wGeneralSettings.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
const char* const kMainWindowCommands[] = {"QVTPreferences",      "HelpAbout",
                                           "FileCheckForUpdates", "HelpSendFeedback",
                                           "HelpVisitourWebsite", "ToolsCreateSlideshowMovie"};

class MenuTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }

    Menu* bar() const { return Menu::instance(); }
    QAction* item(const char* name) const { return bar()->item(name); }

    // Whether the item is live when its menu opens, as the user would find it.
    bool liveWhenOpened(const char* name) {
        QMenu* menu = nullptr;
        for (QAction* top : bar()->actions()) {
            if (top->menu() != nullptr && top->menu()->actions().contains(item(name))) {
                menu = top->menu();
            }
        }
        EXPECT_NE(menu, nullptr) << name;
        if (menu == nullptr) {
            return false;
        }
        menu->popup(QPoint(0, 0));
        const bool live = item(name)->isEnabled();
        menu->hide();
        return live;
    }

    // Chooses an item as the user does, only if it is live.
    void choose(const char* name) {
        ASSERT_TRUE(liveWhenOpened(name)) << name << " is not live";
        item(name)->trigger();
    }

    // The window of type W on the screen, once the main window's flip has played.
    template <typename W> static W* openedAfterFlip() {
        EXPECT_EQ(shown<W>(), nullptr) << "the window opens only after the flip";
        EXPECT_TRUE(QTest::qWaitFor([] { return shown<W>() != nullptr; }, 10000));
        return shown<W>();
    }
    template <typename W> static W* shown() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<W*>(window); found != nullptr && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }
};

TEST_F(MenuTest, TheBarSitsAboveTheLogoInTheMainWindow) {
    EXPECT_EQ(bar()->window(), m_main.get());
    const QWidget* logo = m_main->findChild<QWidget*>("ImageWell1");
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(logo->size(), QSize(200, 193));
    EXPECT_EQ(logo->y(), bar()->height());
    EXPECT_EQ(m_main->height(), bar()->height() + 193);
    EXPECT_EQ(item("FileQuit")->shortcut(), QKeySequence("Ctrl+Q"));
    EXPECT_EQ(item("HelpSendFeedback")->text(), "Support Forum");
}

TEST_F(MenuTest, CommandsAreLiveOnlyWhileTheMainWindowIsInFront) {
    ASSERT_TRUE(activate(m_main.get()));
    for (const char* name : kMainWindowCommands) {
        EXPECT_TRUE(liveWhenOpened(name)) << name << " with the main window in front";
    }
    for (const char* name : {"ToolsShowMainWindow", "ToolsHideMainWindow", "FileQuit"}) {
        EXPECT_TRUE(liveWhenOpened(name)) << name;
    }
    for (const char* name : {"EditUndo", "EditCut", "EditCopy", "EditPaste", "EditClear"}) {
        EXPECT_FALSE(liveWhenOpened(name)) << name << " has no handler";
    }

    choose("HelpAbout");
    ASSERT_TRUE(QTest::qWaitForWindowActive(openedAfterFlip<wAbout>()));
    QTest::qWait(50); // the queued look at the new active window
    for (const char* name : kMainWindowCommands) {
        EXPECT_FALSE(item(name)->isEnabled()) << name << " with the about window in front";
        EXPECT_FALSE(liveWhenOpened(name)) << name << " with the about window in front";
    }
    EXPECT_TRUE(liveWhenOpened("ToolsHideMainWindow"));
}

TEST_F(MenuTest, WithTheMainWindowHiddenTheTrayMenuStillShowsAndHidesIt) {
    ASSERT_TRUE(activate(m_main.get()));
    QMenu* tray = bar()->trayMenu();
    ASSERT_TRUE(tray->actions().contains(item("ToolsShowMainWindow")));
    ASSERT_TRUE(tray->actions().contains(item("ToolsHideMainWindow")));
    ASSERT_TRUE(tray->actions().contains(item("FileQuit")));

    item("ToolsHideMainWindow")->trigger();
    EXPECT_FALSE(m_main->isVisible());
    item("ToolsHideMainWindow")->trigger(); // a second time changes nothing
    EXPECT_FALSE(m_main->isVisible());
    QTest::qWait(50);
    tray->popup(QPoint(0, 0));
    EXPECT_TRUE(item("ToolsShowMainWindow")->isEnabled());
    for (const char* name : kMainWindowCommands) {
        EXPECT_FALSE(item(name)->isEnabled()) << name << " with the main window hidden";
    }
    tray->hide();

    item("ToolsShowMainWindow")->trigger();
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_main.get()));
    item("ToolsShowMainWindow")->trigger(); // a second time changes nothing
    QTest::qWait(50);
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_main.get()));
    EXPECT_TRUE(liveWhenOpened("HelpAbout"));
}

TEST_F(MenuTest, AboutChosenAgainFromTheMainWindowKeepsTheSameWindowAndFlag) {
    ASSERT_TRUE(activate(m_main.get()));
    EXPECT_FALSE(App().pSpecialWindowOpen);
    choose("HelpAbout");
    wAbout* about = openedAfterFlip<wAbout>();
    EXPECT_TRUE(App().pSpecialWindowOpen);

    ASSERT_TRUE(activate(m_main.get()));
    choose("HelpAbout");
    EXPECT_TRUE(QTest::qWaitForWindowActive(about));
    EXPECT_EQ(wAbout::instance(), about);
    EXPECT_TRUE(App().pSpecialWindowOpen);
}

TEST_F(MenuTest, PreferencesOpensTheSettingsWindowAndSuspendsTheSchedule) {
    ASSERT_TRUE(activate(m_main.get()));
    choose("QVTPreferences");
    EXPECT_FALSE(App().pSpecialWindowOpen);
    EXPECT_TRUE(QTest::qWaitForWindowActive(openedAfterFlip<wGeneralSettings>()));
    EXPECT_TRUE(App().pSpecialWindowOpen);
    EXPECT_TRUE(m_presenter.messages().empty()) << "a transition never warns here";
}

TEST_F(MenuTest, QuitEndsThroughTheMainWindowCloseWhichKeepsItsPlace) {
    m_main->move(300, 240);
    ASSERT_TRUE(activate(m_main.get()));
    QTest::qWait(50);
    const QRect frame = m_main->geometry();
    // From the settings window, as the shortcut works wherever the user is.
    choose("QVTPreferences");
    wGeneralSettings* settings = openedAfterFlip<wGeneralSettings>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(settings));
    QFile::remove(binPath("KestrelviewScreen.ini"));
    QTest::keyClick(settings, Qt::Key_Q, Qt::ControlModifier);

    EXPECT_TRUE(m_main->isVisible()) << "the closing effect plays first";
    EXPECT_TRUE(readBinFile("KestrelviewScreen.ini").isEmpty()) << "the place is kept after the effect";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_main->isVisible(); }, 10000));
    mScreenSettings::LoadPrefs();
    const mScreenSettings::Geometry stored = mScreenSettings::current();
    const int logoHeight = m_main->findChild<QLabel*>("ImageWell1")->height();
    EXPECT_EQ(QRect(stored.pWinLeft, stored.pWinTop, stored.pWinWidth, stored.pWinHeight),
              QRect(frame.topLeft(), QSize(frame.width(), logoHeight)))
        << "the logo's area is kept, the menu bar left out";
}

TEST_F(MenuTest, TheTrayPausesResumesCapturesNowAndStartsAtLogin) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    QMenu* tray = bar()->trayMenu();
    ASSERT_TRUE(tray->actions().contains(item("TrayCaptureNow")));
    QLabel* countDown = m_main->sttCountDown();
    const QString count = countDown->text();

    item("TrayPause")->trigger();
    EXPECT_TRUE(m_main->paused());
    EXPECT_EQ(countDown->text(), "Paused");
    EXPECT_EQ(item("TrayPause")->text(), "Resume");
    item("TrayCaptureNow")->trigger();
    m_runner->waitForRuns();
    EXPECT_TRUE(QDir(binPath("Screen Images")).isEmpty()) << "no capture while paused";
    item("TrayPause")->trigger();
    EXPECT_FALSE(m_main->paused());
    EXPECT_EQ(item("TrayPause")->text(), "Pause");
    EXPECT_EQ(countDown->text(), count) << "the count goes on from where it stood";

    item("TrayCaptureNow")->trigger();
    m_runner->waitForRuns();
    EXPECT_FALSE(QDir(binPath("Screen Images")).isEmpty());

    const QString entry = config.path() + "/autostart/com.kestrelview.Kestrelview.desktop";
    item("TrayStartAtLogin")->trigger();
    EXPECT_TRUE(QFile::exists(entry));
    tray->popup(QPoint(0, 0));
    EXPECT_TRUE(item("TrayStartAtLogin")->isChecked());
    tray->hide();
    item("TrayStartAtLogin")->trigger();
    EXPECT_FALSE(QFile::exists(entry));
}

TEST_F(MenuTest, QuitFromTheTrayWithTheMainWindowHidden) {
    item("ToolsHideMainWindow")->trigger();
    QFile::remove(binPath("KestrelviewScreen.ini"));
    item("FileQuit")->trigger();
    EXPECT_FALSE(readBinFile("KestrelviewScreen.ini").isEmpty()) << "the close ran and kept the place";
}

TEST_F(ProgramTest, NoCaptureStartsWhileTheMainWindowCloses) {
    QTemporaryDir pictures;
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pInterval = 1;
    prefs.pDestination = pictures.path();
    writePrefs(prefs);
    openMainWindow();
    const QDir folder(pictures.path());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !folder.isEmpty(); }, 10000)) << "the schedule captures";

    m_main->close();
    m_runner->waitForRuns();
    const QStringList before = folder.entryList(QDir::Files);
    // The effect lasts longer than the interval.
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_main->isVisible(); }, 10000));
    m_runner->waitForRuns();
    EXPECT_EQ(folder.entryList(QDir::Files), before);
}

// The pages go to the desktop's URL handler; a stand-in for it on PATH notes what it was given.
class WebPageTest : public MenuTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_handlerDir.isValid());
        QFile script(m_handlerDir.filePath("xdg-open"));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write(QString("#!/bin/sh\necho \"$1\" >> '%1'\n").arg(logPath()).toUtf8());
        script.close();
        script.setPermissions(script.permissions() | QFileDevice::ExeOwner);
        qputenv("PATH", (m_handlerDir.path() + ':' + qEnvironmentVariable("PATH")).toLocal8Bit());
        MenuTest::SetUp();
    }

    QString logPath() const { return m_handlerDir.filePath("opened.txt"); }
    QStringList opened() const {
        QFile log(logPath());
        return log.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(log.readAll()).split('\n', Qt::SkipEmptyParts)
                   : QStringList();
    }

    QTemporaryDir m_handlerDir;
};

TEST_F(WebPageTest, SupportForumAndWebSiteOpenInTheUsersBrowser) {
    ASSERT_TRUE(activate(m_main.get()));
    choose("HelpSendFeedback");
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened().size() == 1; }, 5000));
    choose("HelpVisitourWebsite");
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened().size() == 2; }, 5000));
    EXPECT_EQ(opened(), QStringList({mProgramInfo::kSupportForumUrl, mProgramInfo::kWebSiteUrl}));
}
} // namespace
