#pragma once

#include "app/Kestrelview.h"
#include "app/Menu.h"
#include "app/Program.h"
#include "app/wMain.h"
#include "base/DialogWindow.h"
#include "base/mProgramInfo.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"
#include "settings/mGeneralSettings.h"
#include "support/Printers.h"
#include "support/RecordingPresenter.h"

#include <QApplication>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

// The program as it runs, in a folder of its own: its pictures in Resources, a settings file in
// bin, and the program's parts with the main window opened on them.
class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(m_dir.path()).mkdir("bin") &&
                    QFile::link(KV_RESOURCES_DIR, m_dir.filePath("Resources")));
        platform::setApplicationFolder(m_dir.filePath("bin"));
        mCodeBaseStd::sGetMainScreenResolution();
        mProgramInfo::SetConstants();
    }

    void TearDown() override {
        // A window may take the windows it owns with it, so each is held by a guard first.
        std::vector<QPointer<DialogWindow>> windows;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            windows.emplace_back(qobject_cast<DialogWindow*>(window));
        }
        for (const QPointer<DialogWindow>& window : windows) {
            delete window.data();
        }
        m_program.reset();
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
        m_program = std::make_unique<Program>(systemClock());
        m_main = &m_program->mainWindow();
        m_main->Event_Open();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_main));
    }
    CaptureRunner& runner() { return m_program->runner(); }
    Menu& menu() { return m_program->menu(); }
    bool suspended() const { return m_program->suspension().pSpecialWindowOpen(); }

    QString binPath(const QString& name) const { return m_dir.filePath("bin/" + name); }
    QByteArray readBinFile(const QString& name) const {
        QFile file(binPath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir m_dir;
    RecordingPresenter m_presenter;
    std::unique_ptr<Program> m_program;
    wMain* m_main = nullptr;
};

// Makes `window` the active window; false when it never became so.
inline bool activate(QWidget* window) {
    bringToFront(window);
    return QTest::qWaitForWindowActive(window);
}
