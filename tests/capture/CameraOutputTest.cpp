#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "capture/CameraFrameWindow.h"
#include "capture/CameraLink.h"
#include "capture/CaptureRun.h"
#include "capture/ProductCameraServices.h"
#include "capture/wOutputSmall.h"
#include "platform/FolderItem.h"
#include "platform/camera/GstCameraGrabber.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/screen/ScreenGrabber.h"
#include "settings/mGeneralSettings.h"
#include "support/RecordingPresenter.h"
#include "support/TestClock.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <mutex>
#include <vector>

namespace {

// Left half red, right half blue, so that a file written from the window's scaled view, or with
// its halves swapped, shows.
Picture twoColourFrame(int width, int height) {
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(std::size_t(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = pixels->data() + (std::size_t(y) * width + x) * 4;
            const bool left = x < width / 2;
            pixel[0] = left ? 0 : 255; // blue
            pixel[1] = 0;
            pixel[2] = left ? 255 : 0; // red
            pixel[3] = 0;
        }
    }
    Picture picture;
    picture.width = width;
    picture.height = height;
    picture.strideBytes = width * 4;
    picture.bits = pixels->data();
    picture.owner = pixels;
    return picture;
}

QList<CameraFrameWindow*> frameWindows() {
    QList<CameraFrameWindow*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<CameraFrameWindow*>(widget);
        if (window && window->isVisible()) {
            windows.append(window);
        }
    }
    return windows;
}

class CameraOutputTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        platform::setApplicationFolder(m_folder.path());
        mProgramInfo::SetConstants();
        m_clock.set(QDateTime(QDate(2026, 3, 7), QTime(9, 5, 5)));
        setPrefs(destination(), 90, "MEDIUM");
        installProductCameraServices(m_clock);
    }

    void TearDown() override {
        for (CameraFrameWindow* window : frameWindows()) {
            window->close();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        mCodeBaseGlv::pQTGrabber.set(nullptr);
        mCodeBaseGlv::pVideoGoodToGo = false;
    }

    static void setPrefs(const QString& destination, int quality, const QString& camImgSize,
                         const QString& useCamera = "FALSE") {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        prefs.pDestination = destination;
        prefs.pQuality = quality;
        prefs.pCamImgSize = camImgSize;
        prefs.pUseCamera = useCamera;
        prefs.pUseScreen = "FALSE";
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }

    QString destination() const { return m_folder.filePath("Screen Images"); }

    // Opens a window from a frame as the capture thread does, and waits until it shows.
    CameraFrameWindow* open(Picture frame, FrameWindowKind kind) {
        showCameraFrame(std::move(frame), kind, m_clock);
        if (!QTest::qWaitFor([] { return frameWindows().size() == 1; }, 5000)) {
            return nullptr;
        }
        return frameWindows().front();
    }

    // One run of the capture schedule with only the camera wanted.
    static void captureRun() {
        const std::unique_ptr<ScreenGrabber> screens = makeScreenGrabber();
        mCodeBaseStd::sTakePictures(CaptureRunInput{mGeneralSettings::current(), {}}, *screens,
                                    systemClock());
    }

    QTemporaryDir m_folder;
    TestClock m_clock{QDateTime()};
    RecordingPresenter m_presenter;
};

void expectTwoColours(const QImage& image) {
    const QColor left = image.pixelColor(image.width() / 4, image.height() / 2);
    const QColor right = image.pixelColor(image.width() * 3 / 4, image.height() / 2);
    EXPECT_GT(left.red(), 200);
    EXPECT_LT(left.blue(), 60);
    EXPECT_GT(right.blue(), 200);
    EXPECT_LT(right.red(), 60);
}

// What the window covers of the screen, which is what the sizes count where the screen is scaled.
QSize devicePixels(const QWidget* window) {
    return window->size() * window->devicePixelRatio();
}

bool isProgressiveJpeg(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll().contains(QByteArray("\xff\xc2", 2));
}

struct SizeCase {
    QSize frame;
    FrameWindowKind kind;
    QSize window;
};

TEST_F(CameraOutputTest, WindowTakesTheFrameSizeUnlessItPassesTwoThirdsOfTheScreen) {
    // The main screen is 1024 by 768 pixels: limits 682.67 and 512. Halves stay even, so that
    // they hold at a device pixel ratio of 2 too.
    const SizeCase cases[] = {
        {QSize(800, 600), FrameWindowKind::Output, QSize(400, 300)},
        {QSize(682, 512), FrameWindowKind::Output, QSize(682, 512)},
        {QSize(684, 400), FrameWindowKind::Output, QSize(342, 200)},
        {QSize(400, 513), FrameWindowKind::Output, QSize(200, 256)},
        {QSize(200, 150), FrameWindowKind::OutputSmall, QSize(200, 150)},
        {QSize(40, 30), FrameWindowKind::OutputSmall, QSize(64, 64)}, // the smallest window
    };
    for (const SizeCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.frame.width() << "x" << c.frame.height());
        CameraFrameWindow* window = open(twoColourFrame(c.frame.width(), c.frame.height()), c.kind);
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(devicePixels(window), c.window);
        EXPECT_EQ(window->windowTitle(), "Video Camera Output");
        EXPECT_EQ(dynamic_cast<wOutputSmall*>(window) != nullptr, c.kind == FrameWindowKind::OutputSmall);
        EXPECT_EQ(window->Pic().width, c.frame.width());
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(CameraOutputTest, HalfSizeWindowClosesItselfAndWritesTheFullFrame) {
    QElapsedTimer shown;
    shown.start();
    CameraFrameWindow* window = open(twoColourFrame(800, 600), FrameWindowKind::Output);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(devicePixels(window), QSize(400, 300));
    // What the window paints is the frame stretched to it.
    expectTwoColours(window->grab().toImage());

    ASSERT_TRUE(QTest::qWaitFor([] { return frameWindows().isEmpty(); }, 6000));
    EXPECT_GE(shown.elapsed(), 2500);
    const QString path = QDir(destination()).filePath("2026-03-07-09-05-02-Camera.jpg");
    const QImage written(path);
    ASSERT_FALSE(written.isNull()) << path.toStdString();
    EXPECT_EQ(written.size(), QSize(800, 600));
    expectTwoColours(written);
    EXPECT_TRUE(isProgressiveJpeg(path));
}

TEST_F(CameraOutputTest, WindowClosedEarlyWritesAtOnceWithoutCarryIntoTheMinute) {
    CameraFrameWindow* window = open(twoColourFrame(320, 240), FrameWindowKind::OutputSmall);
    ASSERT_NE(window, nullptr);
    m_clock.set(QDateTime(QDate(2026, 3, 7), QTime(9, 6, 1)));
    window->close();
    EXPECT_EQ(QDir(destination()).entryList(QDir::Files), QStringList{"2026-03-07-09-06--02-Camera.jpg"});
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST_F(CameraOutputTest, EndOfTheProgramWritesTheFrameOnTheScreen) {
    ASSERT_NE(open(twoColourFrame(200, 150), FrameWindowKind::OutputSmall), nullptr);
    // exit(), unlike quit(), closes no window on its way out.
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
    EXPECT_TRUE(QFileInfo::exists(QDir(destination()).filePath("2026-03-07-09-05-02-Camera.jpg")));
}

TEST_F(CameraOutputTest, DestinationAndQualityAreReadAtClose) {
    const Picture frame = twoColourFrame(400, 300);
    CameraFrameWindow* window = open(frame, FrameWindowKind::Output);
    ASSERT_NE(window, nullptr);
    const QString later = m_folder.filePath("Later");
    setPrefs(later, 5, "MEDIUM");
    window->close();

    EXPECT_FALSE(QDir(destination()).exists());
    const QString path = QDir(later).filePath("2026-03-07-09-05-02-Camera.jpg");
    const QString reference = m_folder.filePath("reference.jpg");
    ASSERT_TRUE(writeProgressiveJpeg(frame, 5, reference));
    QFile written(path);
    QFile expected(reference);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    ASSERT_TRUE(expected.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), expected.readAll());
}

TEST_F(CameraOutputTest, UnreachableDestinationLosesTheFrameSilently) {
    QFile plain(m_folder.filePath("plain-file"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.close();
    setPrefs(m_folder.filePath("plain-file/Screen Images"), 75, "MEDIUM");
    CameraFrameWindow* window = open(twoColourFrame(200, 150), FrameWindowKind::OutputSmall);
    ASSERT_NE(window, nullptr);
    window->close();
    EXPECT_TRUE(m_presenter.texts().empty());
    const QStringList left = QDir(m_folder.path()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    EXPECT_EQ(left, QStringList({"KestrelviewPreferences.ini", "plain-file"}));
}

TEST_F(CameraOutputTest, CaptureRunsPhotographThroughTheLinkOnceItIsUp) {
    ASSERT_TRUE(gstreamerAvailable());
    installCameraServices(
        {[] {
             return makeGstCameraGrabber(
                 "videotestsrc is-live=true pattern=solid-color foreground-color=0xff336699");
         },
         {}});
    setPrefs(destination(), 75, "LARGE", "TRUE");

    // The first run only brings the link up, the next one takes the photograph.
    captureRun();
    EXPECT_TRUE(mCodeBaseGlv::pVideoGoodToGo);
    ASSERT_TRUE(
        QTest::qWaitFor([] { return mCodeBaseGlv::pQTGrabber.get()->CurrentFrame().has_value(); }, 10000));
    EXPECT_TRUE(frameWindows().isEmpty());
    captureRun();
    ASSERT_TRUE(QTest::qWaitFor([] { return frameWindows().size() == 1; }, 5000));
    EXPECT_EQ(frameWindows().front()->size(), QSize(400, 300));

    ASSERT_TRUE(QTest::qWaitFor([] { return frameWindows().isEmpty(); }, 6000));
    const QImage written(QDir(destination()).filePath("2026-03-07-09-05-02-Camera.jpg"));
    ASSERT_EQ(written.size(), QSize(800, 600));
    const QColor colour = written.pixelColor(400, 300);
    EXPECT_NEAR(colour.red(), 0x33, 6);
    EXPECT_NEAR(colour.green(), 0x66, 6);
    EXPECT_NEAR(colour.blue(), 0x99, 6);
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST_F(CameraOutputTest, WithoutACameraEverySetUpWarnsAndNoPhotographIsTaken) {
    if (!QDir("/dev").entryList({"video*"}, QDir::System).isEmpty()) {
        GTEST_SKIP() << "this machine has a camera";
    }
    setPrefs(destination(), 75, "MEDIUM", "TRUE");

    mCodeBaseStd::sSetupVideoForCamera();
    EXPECT_FALSE(mCodeBaseGlv::pVideoGoodToGo);
    captureRun();
    captureRun();
    EXPECT_FALSE(mCodeBaseGlv::pVideoGoodToGo);
    const std::vector<QString> warning(3, "No Video Input Device Found ...");
    EXPECT_EQ(m_presenter.texts(), warning);

    QTest::qWait(500);
    EXPECT_TRUE(frameWindows().isEmpty());
    EXPECT_FALSE(QDir(destination()).exists() && !QDir(destination()).isEmpty());
}
} // namespace
