#include "capture/CaptureRun.h"
#include "CaptureTestSupport.h"
#include "base/NilObjectException.h"
#include "platform/FolderItem.h"
#include "platform/screen/ScreenList.h"
#include "platform/screen/XcbScreenGrabber.h"
#include "support/JpegInspection.h"
#include "support/Pixels.h"
#include "support/RecordingPresenter.h"
#include "support/RootPainter.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {
class CaptureRunTest : public PaintedMonitorsTest {
protected:
    void run(const CaptureRunInput& input) { mCodeBaseStd::sTakePictures(input, *m_grabber, m_clock); }

    // Name, size, progressive frame and the pixels of monitor `index`.
    void expectScreenFile(const QString& name, int index) {
        SCOPED_TRACE(name.toStdString());
        const std::optional<JpegInspection> jpeg = inspectJpeg(QDir(destination()).filePath(name));
        ASSERT_TRUE(jpeg);
        EXPECT_EQ(jpeg->frameMarker, 0xC2);
        const QRect area = m_screens.at(index);
        ASSERT_EQ(jpeg->image.size(), area.size());
        const int inset = kMarkSize / 2;
        EXPECT_TRUE(closeTo(jpeg->image.pixelColor(inset, inset), Qt::white, 12));
        EXPECT_TRUE(
            closeTo(jpeg->image.pixelColor(area.width() - inset, area.height() - inset), Qt::black, 12));
        EXPECT_TRUE(
            closeTo(jpeg->image.pixelColor(area.width() / 2, area.height() / 2), monitorColour(index), 12));
    }
};

TEST_F(CaptureRunTest, EveryScreenGetsItsFileStampedAfterItsGrab) {
    run(screensInto("Screen Images", m_screens));
    EXPECT_EQ(filesIn(destination()), (QStringList{"2026-03-07-09-05-02-0.jpg", "2026-03-07-09-05-03-1.jpg",
                                                   "2026-03-07-09-05-04-2.jpg"}));
    for (int index = 0; index < 3; ++index) {
        expectScreenFile(filesIn(destination()).value(index), index);
    }
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, PrimaryOnlyTakesTheFirstScreenAsNumberZero) {
    CaptureRunInput input = screensInto(destination(), m_screens);
    input.prefs.pPrimaryOnly = "true";
    run(input);
    EXPECT_EQ(filesIn(destination()), QStringList{"2026-03-07-09-05-02-0.jpg"});
    expectScreenFile("2026-03-07-09-05-02-0.jpg", 0);
}

TEST_F(CaptureRunTest, TheScreenStageRunsOnlyWhenItsFlagReadsTrue) {
    struct Case {
        const char* useScreen;
        bool taken;
    };
    for (const Case& c : {Case{"true", true}, Case{"yes", false}}) {
        QDir(destination()).removeRecursively();
        CaptureRunInput input = screensInto(destination(), m_screens);
        input.prefs.pUseScreen = c.useScreen;
        run(input);
        EXPECT_EQ(filesIn(destination()).size(), c.taken ? 3 : 0) << c.useScreen;
    }
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, ADestinationThatCannotBeResolvedGivesNothingAndSaysNothing) {
    const QString unresolvable = m_dir.filePath("missing/Screen Images");
    run(screensInto(unresolvable, m_screens));
    run(screensInto(unresolvable, m_screens));
    EXPECT_FALSE(QFile::exists(m_dir.filePath("missing")));
    EXPECT_EQ(m_clock.reads(), 6) << "every screen is still grabbed and stamped";
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, ADestinationDeletedBetweenRunsIsMadeAgain) {
    run(screensInto(destination(), m_screens));
    ASSERT_TRUE(QDir(destination()).removeRecursively());
    run(screensInto(destination(), m_screens));
    EXPECT_EQ(filesIn(destination()), (QStringList{"2026-03-07-09-05-05-0.jpg", "2026-03-07-09-05-06-1.jpg",
                                                   "2026-03-07-09-05-07-2.jpg"}));
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, AnUnwritableDestinationLeavesNothingAndTheRunGoesOn) {
    // A regular file where the folder should be: it resolves, but nothing can go into it.
    QFile blocker(destination());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.write("in the way");
    blocker.close();

    run(screensInto(destination(), m_screens));
    EXPECT_EQ(m_clock.reads(), 3);
    EXPECT_EQ(filesIn(m_dir.path()), QStringList{"Screen Images"});
    QFile kept(destination());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "in the way");
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, AScreenThatCannotBeGrabbedEndsTheRunAndKeepsEarlierFiles) {
    QList<QRect> screens = m_screens;
    screens[1] = QRect(rootSize().width() + 10, 0, 100, 100);
    EXPECT_THROW(run(screensInto(destination(), screens)), NilObjectException);
    EXPECT_EQ(filesIn(destination()), QStringList{"2026-03-07-09-05-02-0.jpg"});
    expectScreenFile("2026-03-07-09-05-02-0.jpg", 0);
}

TEST_F(CaptureRunTest, PrimaryOnlyWithNoScreenReportedIsAFailedGrab) {
    CaptureRunInput input = screensInto(destination(), {});
    input.prefs.pPrimaryOnly = "TRUE";
    EXPECT_THROW(run(input), NilObjectException);
    input.prefs.pPrimaryOnly = "FALSE";
    EXPECT_NO_THROW(run(input));
    EXPECT_TRUE(filesIn(destination()).isEmpty());
}
} // namespace
