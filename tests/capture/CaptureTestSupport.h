#pragma once

#include "capture/CaptureRun.h"
#include "platform/Clock.h"
#include "platform/FolderItem.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/ScreenList.h"
#include "support/RecordingPresenter.h"
#include "support/RootPainter.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

// A clock that moves on one second each time it is read, so every name it stamps is its own.
class SteppingClock final : public Clock {
public:
    explicit SteppingClock(QDateTime start)
        : m_start(std::move(start)) {}
    QDateTime now() const override { return m_start.addSecs(m_reads.fetch_add(1)); }
    int reads() const { return m_reads.load(); }

private:
    QDateTime m_start;
    mutable std::atomic<int> m_reads{0};
};

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
    SteppingClock m_clock{kStart};
    RecordingPresenter m_presenter;
};
