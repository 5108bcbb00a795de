#include "capture/CaptureRunner.h"
#include "CaptureTestSupport.h"
#include "platform/FolderItem.h"
#include "platform/screen/ScreenList.h"
#include "support/JpegInspection.h"
#include "support/RecordingPresenter.h"
#include "support/RootPainter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

using namespace std::chrono_literals;

namespace {
// The real grabber behind a gate: runs wait to begin until the test opens it, and the test can see
// how many are waiting at once.
class GatedGrabber final : public ScreenGrabber {
public:
    explicit GatedGrabber(ScreenGrabber& inner)
        : m_inner(inner) {}

    ScreenRunStart beginRun(const QList<QRect>& screens) override {
        {
            std::unique_lock lock(m_mutex);
            ++m_waiting;
            m_changed.notify_all();
            m_changed.wait(lock, [&] { return m_open; });
            --m_waiting;
        }
        return m_inner.beginRun(screens);
    }

    bool waitUntilWaiting(int count) {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, 10s, [&] { return m_waiting >= count; });
    }

    void open() {
        std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

private:
    ScreenGrabber& m_inner;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_waiting = 0;
    bool m_open = false;
};

using CaptureRunnerTest = PaintedMonitorsTest;

TEST_F(CaptureRunnerTest, RunReturnsAtOnceAndASecondRunWorksBesideTheFirst) {
    GatedGrabber gated(*m_grabber);
    CaptureRunner runner(gated, m_clock);
    runner.Run(screensInto(destination(), m_screens));
    runner.Run(screensInto(destination(), m_screens));
    // Both runs wait to grab while this thread is free: neither Run waited for its capture.
    ASSERT_TRUE(gated.waitUntilWaiting(2));
    EXPECT_TRUE(filesIn(destination()).isEmpty());
    gated.open();
    runner.waitForRuns();

    const QStringList files = filesIn(destination());
    ASSERT_EQ(files.size(), 6);
    for (const QString& name : files) {
        const std::optional<JpegInspection> jpeg = inspectJpeg(QDir(destination()).filePath(name));
        ASSERT_TRUE(jpeg) << name.toStdString();
        EXPECT_EQ(jpeg->frameMarker, 0xC2);
        EXPECT_EQ(jpeg->image.size(),
                  m_screens.at(name.section('-', 6, 6).section('.', 0, 0).toInt()).size());
    }
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunnerTest, AnExceptionInARunReachesTheUnhandledWarningAndLaterRunsGoOn) {
    CaptureRunner runner(*m_grabber, m_clock);
    QList<QRect> unreachable = m_screens;
    unreachable[0] = QRect(-100, -100, 50, 50);
    runner.Run(screensInto(destination(), unreachable));
    runner.waitForRuns();
    ASSERT_EQ(m_presenter.messages().size(), 1u);
    EXPECT_EQ(m_presenter.messages().at(0).heading, "WARNING:");
    EXPECT_EQ(m_presenter.messages().at(0).text, "Unhandled Exception.  Contact Support ...");
    EXPECT_TRUE(filesIn(destination()).isEmpty());

    runner.Run(screensInto(destination(), m_screens));
    runner.waitForRuns();
    EXPECT_EQ(filesIn(destination()).size(), 3);
    EXPECT_EQ(m_presenter.messages().size(), 1u);
}

TEST_F(CaptureRunnerTest, ManyRunsOneAfterAnotherAllFinish) {
    CaptureRunner runner(*m_grabber, m_clock);
    CaptureRunInput input = screensInto(destination(), m_screens);
    input.prefs.pPrimaryOnly = "TRUE";
    for (int i = 0; i < 12; ++i) {
        runner.Run(input);
    }
    runner.waitForRuns();
    EXPECT_EQ(filesIn(destination()).size(), 12);
}

TEST_F(CaptureRunnerTest, TheRunnerWaitsForARunUnderWayWhenItGoes) {
    {
        CaptureRunner runner(*m_grabber, m_clock);
        runner.Run(screensInto(destination(), m_screens));
    }
    EXPECT_EQ(filesIn(destination()).size(), 3);
}
} // namespace
