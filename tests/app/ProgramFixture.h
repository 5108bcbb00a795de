#pragma once

#include "capture/CaptureRunner.h"
#include "platform/screen/ScreenGrabber.h"
#include "schedule/wMain.h"
#include "support/Printers.h"
#include "settings/mGeneralSettings.h"
#include "support/RecordingPresenter.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

// The program as it runs, in a folder of its own: the pictures in Resources, a settings file in
// bin, the application's menu handlers, and the main window opened on them.
class ProgramTest : public ::testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    void SetUp() override;
    void TearDown() override;

    // The settings that the main window opens with; write them before openMainWindow().
    void writePrefs(const mGeneralSettings::Prefs& prefs);
    // The defaults, with no update check at start so that nothing waits on the network.
    static mGeneralSettings::Prefs quietPrefs();
    void openMainWindow();

    QString binPath(const QString& name) const;
    QByteArray readBinFile(const QString& name) const;

    QTemporaryDir m_dir;
    RecordingPresenter m_presenter;
    std::unique_ptr<ScreenGrabber> m_grabber;
    std::unique_ptr<CaptureRunner> m_runner;
    std::unique_ptr<wMain> m_main;
};

// Makes `window` the active window and waits until it is; false when it never became so.
bool activate(QWidget* window);
