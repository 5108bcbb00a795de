#pragma once

#include "capture/CaptureRun.h"
#include "platform/FolderItem.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/ScreenList.h"
#include "support/RecordingPresenter.h"
#include "support/RootPainter.h"
#include "support/TestClock.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

inline const QDateTime kStart(QDate(2026, 3, 7), QTime(9, 5, 2));

// Settings of a run that takes every screen into `destination` and leaves the camera alone.
inline CaptureRunInput screensInto(const QString& destination, const QList<QRect>& screens) {
    mGeneralSettings::Prefs prefs;
    prefs.pDestination = destination;
    prefs.pQuality = 75;
    prefs.pUseScreen = "TRUE";
    prefs.pPrimaryOnly = "FALSE";
    prefs.pUseCamera = "FALSE";
    return CaptureRunInput{prefs, screens};
}

inline QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

// Three monitors, each showing its own known pattern, the real grabber, and a folder of the test's
// own beside which bare destination names land.
class PaintedMonitorsTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_screens = screenAreas();
        ASSERT_EQ(m_screens.size(), 3);
        ASSERT_TRUE(paintRoot(monitorPattern(rootSize(), m_screens)));
        m_grabber = makeScreenGrabber();
        platform::setApplicationFolder(m_dir.path());
    }

    QString destination() const { return m_dir.filePath("Screen Images"); }

    QTemporaryDir m_dir;
    QList<QRect> m_screens;
    std::unique_ptr<ScreenGrabber> m_grabber;
    TestClock m_clock{kStart, 1};
    RecordingPresenter m_presenter;
};
