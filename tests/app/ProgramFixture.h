#pragma once

#include "app/ApplicationCommands.h"
#include "app/Kestrelview.h"
#include "base/AppState.h"
#include "base/DialogWindow.h"
#include "base/mProgramInfo.h"
#include "capture/CaptureRunner.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"
#include "platform/screen/ScreenGrabber.h"
#include "schedule/wMain.h"
#include "settings/mGeneralSettings.h"
#include "support/Printers.h"
#include "support/RecordingPresenter.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

// The program as it runs, in a folder of its own: its pictures in Resources, a settings file in
// bin, the application's menu handlers, and the main window opened on them.
class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(m_dir.path()).mkdir("bin") &&
                    QFile::link(KV_RESOURCES_DIR, m_dir.filePath("Resources")));
        platform::setApplicationFolder(m_dir.filePath("bin"));
        mCodeBaseStd::sGetMainScreenResolution();
        mProgramInfo::SetConstants();
        App().pActivateSnapShotTimer = false;
        App().pSpecialWindowOpen = false;
        _ApplicationAddMenuHandlers();
    }

    void TearDown() override {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            delete qobject_cast<DialogWindow*>(window);
        }
        m_main.reset();
        m_runner.waitForRuns();
        platform::setApplicationFolder(QString());
    }

    // The settings that the main window opens with; write them before openMainWindow().
    static void writePrefs(const mGeneralSettings::Prefs& prefs) {
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }
    // The defaults, with nothing that waits on the network or speaks.
    static mGeneralSettings::Prefs quietPrefs() {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        prefs.pUpdateAtStartup = prefs.pUseSpeech = prefs.pThreeSecondWarning = false;
        return prefs;
    }

    void openMainWindow() {
        m_main = std::make_unique<wMain>(m_runner);
        connectMainWindow(*m_main);
        m_main->Event_Open();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_main.get()));
    }

    QString binPath(const QString& name) const { return m_dir.filePath("bin/" + name); }
    QByteArray readBinFile(const QString& name) const {
        QFile file(binPath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
    RecordingPresenter m_presenter;
    std::unique_ptr<ScreenGrabber> m_grabber = makeScreenGrabber();
    CaptureRunner m_runner{*m_grabber, systemClock()};
    std::unique_ptr<wMain> m_main;
};

// Makes `window` the active window; false when it never became so.
inline bool activate(QWidget* window) {
    bringToFront(window);
    return QTest::qWaitForWindowActive(window);
}
