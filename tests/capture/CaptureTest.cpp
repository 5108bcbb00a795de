#include "base/DialogPresenter.h"
#include "base/NilObjectException.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "capture/CameraFrameFile.h"
#include "capture/CaptureRunner.h"
#include "capture/ProductCameraServices.h"
#include "capture/wOutputSmall.h"
#include "platform/FolderItem.h"
#include "platform/camera/GstCameraGrabber.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/ScreenList.h"
#include "support/Files.h"
#include "support/JpegInspection.h"
#include "support/Pixels.h"
#include "support/RecordingPresenter.h"
#include "support/RootPainter.h"
#include "support/TestClock.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <thread>

#include <gmock/gmock.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

namespace {
const QDateTime kStart(QDate(2026, 3, 7), QTime(9, 0, 5), Qt::OffsetFromUTC, 5 * 3600);

// The real grabber on three monitors showing the quadrants at their own sizes, and a folder beside
// which the default destination, a bare name, lands. Names take the clock's fields as they stand.
class CaptureRunTest : public ::testing::Test {
protected:
    void SetUp() override {
        platform::setApplicationFolder(m_dir.path());
        ASSERT_EQ(m_screens.size(), 3);
        QImage root(rootSize(), QImage::Format_RGB32);
        QPainter painter(&root);
        for (const QRect& screen : m_screens) {
            painter.drawImage(screen.topLeft(), quadrantPattern(screen.size()));
        }
        ASSERT_TRUE(paintRoot(root));
    }

    CaptureRunInput input(const char* primaryOnly = "FALSE", const char* useScreen = "TRUE") const {
        CaptureRunInput input{mGeneralSettings::defaults(), m_screens};
        input.prefs.pPrimaryOnly = isFlagSet(primaryOnly);
        input.prefs.pUseScreen = isFlagSet(useScreen);
        input.policies.pSkipUnchanged = false; // the same desktop at every run
        return input;
    }
    void run(const CaptureRunInput& input) { mCodeBaseStd::sTakePictures(input, *m_grabber, m_clock); }
    QString destination() const { return m_dir.filePath("Screen Images"); }

    QTemporaryDir m_dir;
    TestClock m_clock{kStart, 1};
    RecordingPresenter m_presenter;
    const QList<QRect> m_screens = screenAreas();
    const std::unique_ptr<ScreenGrabber> m_grabber = makeScreenGrabber();
};

TEST_F(CaptureRunTest, EachWantedScreenGetsAFileStampedAfterItsGrabUntilOneCannotBeGrabbed) {
    const std::tuple<const char*, const char*, QStringList> cases[] = {
        {"FALSE", "TRUE", {"05-0", "06-1", "07-2"}}, {"TRUE", "TRUE", {"05-0"}}, {"FALSE", "FALSE", {}}};
    for (const auto& [primaryOnly, useScreen, stamps] : cases) {
        QDir(destination()).removeRecursively();
        m_clock.set(kStart);
        run(input(primaryOnly, useScreen));
        ASSERT_EQ(entriesIn(destination()).size(), stamps.size());
        for (int index = 0; index < stamps.size(); ++index) {
            const auto jpeg = inspectJpeg(destination() + "/2026-03-07-09-00-" + stamps.at(index) + ".jpg");
            ASSERT_TRUE(jpeg) << stamps.at(index).toStdString();
            EXPECT_EQ(jpeg->frameMarker, 0xC2);
            EXPECT_EQ(jpeg->image.size(), m_screens.at(index).size());
            EXPECT_TRUE(showsQuadrants(jpeg->image, 12)) << index;
        }
    }
    // A screen that cannot be grabbed ends the run; the files of the screens before stay.
    QDir(destination()).removeRecursively();
    CaptureRunInput into = input();
    into.screens[1] = QRect(rootSize().width() + 10, 0, 100, 100);
    EXPECT_THROW(run(into), NilObjectException);
    EXPECT_EQ(entriesIn(destination()).size(), 1);
    // A destination whose parent is not there gives nothing: only the last part is ever made.
    into.prefs.pDestination = m_dir.filePath("missing/Screen Images");
    into.screens = m_screens;
    run(into);
    EXPECT_FALSE(QFile::exists(m_dir.filePath("missing")));
    EXPECT_TRUE(m_presenter.messages().empty());
}

TEST_F(CaptureRunTest, WhenTheClockGoesBackNoPictureReplacesAnotherAndTheFolderMadeForThemIsPrivate) {
    // The same wall-clock time an hour apart, on either side of the autumn change.
    const QDateTime summer(QDate(2026, 10, 25), QTime(2, 30, 5), Qt::OffsetFromUTC, 7200);
    const QDateTime winter = summer.addSecs(3600).toOffsetFromUtc(3600);
    mProgramInfo::SetConstants(); // the camera's frames go where the settings say
    mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(mGeneralSettings::defaults()));
    for (const QDateTime& at : {summer, winter, winter}) {
        m_clock.set(at);
        run(input("TRUE"));
        saveCameraFrame(pictureOf(quadrantPattern({64, 48})), at);
    }
    const QString stamp = "2026-10-25-02-30-";
    EXPECT_THAT(entriesIn(destination()),
                testing::UnorderedElementsAre(stamp + "02-Camera.jpg", stamp + "02-Camera-2.jpg",
                                              stamp + "02-Camera-3.jpg", stamp + "05-0.jpg",
                                              stamp + "05-0-2.jpg", stamp + "05-0-3.jpg"));
    const auto mode = [&] { return QFile::permissions(destination()).toInt() & 0x0777; };
    EXPECT_EQ(mode(), 0x0700);
    ASSERT_TRUE(QFile::setPermissions(destination(), QFile::permissions(destination()) | QFile::ReadOther));
    run(input("TRUE"));
    EXPECT_EQ(mode(), 0x0704); // the user's own choice stays
}

// A display whose runs wait at their start while the test holds it, as a hung server keeps them.
struct HeldGrabber final : ScreenGrabber {
    explicit HeldGrabber(ScreenGrabber& display)
        : display(display) {}
    ScreenRunStart beginRun(const QList<QRect>& screens) override {
        while (held) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return display.beginRun(screens);
    }
    ScreenGrabber& display;
    std::atomic<bool> held{true};
};

int threadCount() {
    return int(QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

TEST_F(CaptureRunTest, WhileTwoRunsAreStuckExpiriesStartNoneTellingOnceAStallAndQuitWaitsAFewSecondsAtMost) {
    HeldGrabber grabber(*m_grabber);
    const int threads = threadCount();
    auto runner = std::make_unique<CaptureRunner>(grabber, m_clock);
    const auto expire = [&](int times) {
        for (int expiry = 0; expiry < times; ++expiry) {
            runner->Run(input());
        }
        QTest::qWait(50); // the warning is posted to the GUI thread
    };
    expire(20);
    EXPECT_EQ(threadCount(), threads + 3); // two runs and the runner's watch of the disk
    const QString stalled = "Skipping Captures While Earlier Ones Are Still Running ...";
    EXPECT_EQ(m_presenter.texts(), std::vector<QString>{stalled});
    // The stall ends with the runs, and the next one is told anew.
    grabber.held = false;
    runner->waitForRuns();
    EXPECT_EQ(entriesIn(destination()).size(), 6);
    grabber.held = true;
    expire(5);
    EXPECT_EQ(m_presenter.texts(), std::vector<QString>(2, stalled));
    QElapsedTimer quitting;
    quitting.start();
    runner.reset();
    EXPECT_LT(quitting.elapsed(), CaptureRunner::kQuitPatience.count() + 1000);
    // Runs left behind at quit write nothing once their grab comes back.
    grabber.held = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return threadCount() == threads; }));
    EXPECT_EQ(entriesIn(destination()).size(), 6);
}

TEST_F(CaptureRunTest, AFailedRunsWarningIsNotShownAgainWhileOnScreenSoFailingRunsPileUpNothing) {
    DialogPresenter presenter;
    installMessagePresenter(&presenter);
    CaptureRunInput failing = input();
    failing.screens[0] = QRect(-100, -100, 50, 50);
    CaptureRunner runner(*m_grabber, m_clock);
    const int threads = threadCount();
    int expiries = 0, dialogs = 0, mostDialogs = 0, mostThreads = 0;
    // Expiries come from a timer, as the schedule's do, and go on while the warning is open; it is
    // answered every fifteenth.
    QTimer timSnapShot;
    // A slow machine may also see two runs under way, and the stall's own warning beside it.
    const auto failureWarnings = [] {
        return std::ranges::count_if(QApplication::topLevelWidgets(), [](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            return box && box->isVisible() &&
                   box->informativeText() == "Unhandled Exception.  Contact Support ...";
        });
    };
    QObject::connect(&timSnapShot, &QTimer::timeout, [&] {
        dialogs = int(failureWarnings());
        mostDialogs = std::max(mostDialogs, dialogs);
        mostThreads = std::max(mostThreads, threadCount());
        if (++expiries % 15 == 0) {
            for (QWidget* w : QApplication::topLevelWidgets()) {
                if (auto* box = qobject_cast<QMessageBox*>(w); box && box->isVisible()) {
                    box->close();
                }
            }
        }
        expiries < 45 ? runner.Run(failing) : timSnapShot.stop();
    });
    timSnapShot.start(20);
    EXPECT_TRUE(QTest::qWaitFor([&] { return expiries == 45; }, 30000));
    installMessagePresenter(&m_presenter);
    EXPECT_EQ(mostDialogs, 1);
    EXPECT_LE(mostThreads, threads + 3); // two runs, and the bus thread a first dialog may start
    EXPECT_EQ(dialogs, 1);               // shown again once answered
}

// The frame window on the screen, once there is one: all windows here are frame windows.
CameraFrameWindow* shownWindow(int timeoutMs = 5000) {
    const bool shown = QTest::qWaitFor([] { return !QApplication::topLevelWidgets().isEmpty(); }, timeoutMs);
    return shown ? qobject_cast<CameraFrameWindow*>(QApplication::topLevelWidgets().value(0)) : nullptr;
}

void closeWindow(CameraFrameWindow* window) {
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::optional<Picture> newestFrame(int timeoutMs = 10000) {
    std::optional<Picture> frame;
    const auto arrived = [&] { return (frame = mCodeBaseGlv::pQTGrabber.get()->CurrentFrame()).has_value(); };
    return QTest::qWaitFor(arrived, timeoutMs) ? frame : std::nullopt;
}

// A camera that GStreamer's device monitor finds, backed by videotestsrc. Pulling it out ends the
// stream of the source made from it, by an error or by its end, as unplugging a webcam does.
namespace testcamera {
std::mutex g_mutex;
bool g_plugged = false;
GstElement* g_source = nullptr; // the latest one made, with a reference of ours
std::thread::id g_probedOn;
bool g_readyWhenProbed = false;

GstElement* createSource(GstDevice*, const gchar* name) {
    GstElement* source = gst_element_factory_make("videotestsrc", name);
    g_object_set(source, "is-live", TRUE, nullptr);
    const std::lock_guard lock(g_mutex);
    if (g_source) {
        gst_object_unref(g_source);
    }
    return g_source = GST_ELEMENT(gst_object_ref(source));
}

GList* probe(GstDeviceProvider*) {
    static const GType type = g_type_register_static_simple(
        GST_TYPE_DEVICE, "KvTestCamera", sizeof(GstDeviceClass),
        [](gpointer klass, gpointer) { GST_DEVICE_CLASS(klass)->create_element = createSource; },
        sizeof(GstDevice), nullptr, GTypeFlags(0));
    const std::lock_guard lock(g_mutex);
    std::tie(g_probedOn, g_readyWhenProbed) =
        std::pair(std::this_thread::get_id(), mCodeBaseGlv::pVideoGoodToGo.load());
    if (!g_plugged) {
        return nullptr;
    }
    GstCaps* caps = gst_caps_new_empty_simple("video/x-raw");
    gpointer camera = g_object_new(type, "display-name", "Test camera", "device-class", "Video/Source",
                                   "caps", caps, nullptr);
    gst_caps_unref(caps);
    return g_list_append(nullptr, camera);
}

gboolean registerProvider(GstPlugin* plugin) {
    const GType type = g_type_register_static_simple(
        GST_TYPE_DEVICE_PROVIDER, "KvTestCameraProvider", sizeof(GstDeviceProviderClass),
        [](gpointer klass, gpointer) {
            GST_DEVICE_PROVIDER_CLASS(klass)->probe = probe;
            gst_device_provider_class_set_static_metadata(GST_DEVICE_PROVIDER_CLASS(klass), "Test camera",
                                                          "Source/Video", "Comes and goes", "tests");
        },
        sizeof(GstDeviceProvider), nullptr, GTypeFlags(0));
    return gst_device_provider_register(plugin, "kvtestcamera", GST_RANK_PRIMARY, type);
}

void plugIn() {
    static const bool registered =
        gst_plugin_register_static(GST_VERSION_MAJOR, GST_VERSION_MINOR, "kvtestcamera", "tests",
                                   registerProvider, "1", "LGPL", "tests", "tests", "tests");
    const std::lock_guard lock(g_mutex);
    g_plugged = registered;
}

void pullOut(bool byError) {
    const std::lock_guard lock(g_mutex);
    g_plugged = false;
    GError* error = g_error_new_literal(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_READ, "The camera went away");
    byError ? gst_element_post_message(g_source, gst_message_new_error(GST_OBJECT(g_source), error, nullptr))
            : gst_element_send_event(g_source, gst_event_new_eos());
    g_error_free(error);
}
} // namespace testcamera

// The camera link on GStreamer's synthetic source, and frame windows on a 1200 by 900 primary monitor.
class CameraTest : public CaptureRunTest {
protected:
    void SetUp() override {
        CaptureRunTest::SetUp();
        ASSERT_TRUE(gstreamerAvailable());
        mProgramInfo::SetConstants();
        setPrefs("MEDIUM");
        useSource("videotestsrc is-live=true pattern=solid-color foreground-color=0xff336699");
    }

    void TearDown() override { qDeleteAll(QApplication::topLevelWidgets()); }

    static void useSource(const QString& description) {
        installCameraServices({[description] { return makeGstCameraGrabber(description); }, {}});
    }

    void setPrefs(const QString& camImgSize, const QString& folder = "Screen Images", int quality = 75,
                  const QString& useCamera = "FALSE") const {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        std::tie(prefs.pCamImgSize, prefs.pDestination, prefs.pQuality, prefs.pUseCamera) =
            std::tuple(camImgSize, m_dir.filePath(folder), quality, isFlagSet(useCamera));
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }

    // Opens a window from a frame as the capture thread does, and waits until it shows.
    CameraFrameWindow* open(const QSize& frame, FrameWindowKind kind) {
        showCameraFrame(pictureOf(quadrantPattern(frame)), kind, m_clock);
        return shownWindow();
    }

    // One run of the capture schedule with only the camera wanted.
    static void captureRun() {
        mCodeBaseStd::sTakePictures({mGeneralSettings::current(), {}}, *makeScreenGrabber(), systemClock());
    }

    CameraLinkOwner m_camera{productCameraServices(m_clock)};
};

TEST_F(CameraTest, EachSetUpReplacesTheLinkWithOneOfTheSizeThatCamImgSizeSelects) {
    // videotestsrc's own size, 320 by 240, stays for a word that names no size.
    const std::pair<QString, QSize> cases[] = {
        {"SMALL", {200, 150}}, {"LARGE", {800, 600}}, {"HUGE", {320, 240}}};
    for (const auto& [word, size] : cases) {
        setPrefs(word);
        mCodeBaseStd::sSetupVideoForCamera();
        EXPECT_TRUE(mCodeBaseGlv::pVideoGoodToGo);
        const std::optional<Picture> frame = newestFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(imageOf(*frame).size(), size) << word.toStdString();
        EXPECT_TRUE(closeTo(imageOf(*frame).pixelColor(0, size.height() - 1), QColor(0x33, 0x66, 0x99), 2));
    }
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST_F(CameraTest, ACameraThatGoesIsSetUpAgainByTheNextRunsAndUsedOnceItIsBack) {
    setPrefs("SMALL", "Screen Images", 75, "TRUE");
    installCameraServices(productCameraServices(m_clock)); // the cameras of GStreamer's device monitor
    testcamera::plugIn();
    // The start's search for the camera is off the GUI thread, the link counts as ready only once
    // it runs, and its first second, dark on a webcam, gives no photograph.
    QElapsedTimer started;
    started.start();
    m_camera.setUpInBackground();
    ASSERT_TRUE(QTest::qWaitFor([] { return mCodeBaseGlv::pVideoGoodToGo.load(); }, 10000));
    EXPECT_NE(testcamera::g_probedOn, std::this_thread::get_id());
    EXPECT_FALSE(testcamera::g_readyWhenProbed);
    ASSERT_TRUE(newestFrame());
    EXPECT_GE(started.elapsed(), 1000);
    for (const bool byError : {true, false}) {
        testcamera::pullOut(byError);
        ASSERT_TRUE(QTest::qWaitFor([] { return !mCodeBaseGlv::pVideoGoodToGo; }, 10000));
        EXPECT_FALSE(mCodeBaseGlv::pQTGrabber.get()->CurrentFrame());
        captureRun(); // finds no camera, and says so
        testcamera::plugIn();
        captureRun(); // sets the link up again, and shows nothing yet
        ASSERT_TRUE(mCodeBaseGlv::pVideoGoodToGo && newestFrame());
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
        captureRun();
        CameraFrameWindow* window = shownWindow();
        ASSERT_TRUE(dynamic_cast<wOutputSmall*>(window) && window->Pic().width == 200);
        closeWindow(window);
    }
    EXPECT_EQ(m_presenter.texts(), std::vector<QString>(2, "No Video Input Device Found ..."));
}

TEST_F(CameraTest, FrameWindowsTakeTheFrameSizeInScreenPixelsAndCloseThemselvesAfterThreeSeconds) {
    // Limits 800 and 600. The sizes are even, so that they hold at a device pixel ratio of 2 too.
    const std::pair<QSize, QSize> cases[] = {
        {{800, 600}, {800, 600}}, {{801, 600}, {400, 300}}, {{800, 601}, {400, 300}}, {{40, 30}, {64, 64}}};
    for (const auto& [frame, size] : cases) {
        CameraFrameWindow* window = open(frame, FrameWindowKind::Output);
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->size() * window->devicePixelRatio(), size)
            << frame.width() << "x" << frame.height();
        EXPECT_TRUE(window->windowHandle()->flags().testFlags(Qt::WindowMinMaxButtonsHint));
        closeWindow(window);
    }
    QElapsedTimer shown;
    shown.start();
    CameraFrameWindow* window = open({804, 600}, FrameWindowKind::OutputSmall);
    ASSERT_TRUE(window && showsQuadrants(window->grab().toImage())); // the frame stretched to the window
    EXPECT_TRUE(window->windowHandle()->flags().testFlags(Qt::WindowMinMaxButtonsHint));
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::topLevelWidgets().isEmpty(); }, 6000));
    EXPECT_GE(shown.elapsed(), 2500);
}

TEST_F(CameraTest, AWindowWritesTheWholeFrameWhereAndHowTheSettingsSayWhenItClosesHoweverItCloses) {
    CameraFrameWindow* window = open({804, 600}, FrameWindowKind::Output);
    ASSERT_NE(window, nullptr);
    setPrefs("MEDIUM", "Later", 5);
    m_clock.set(QDateTime(QDate(2026, 3, 7), QTime(9, 6, 1)));
    closeWindow(window);
    // Not the window's half-size view, and no carry from the seconds into the minute.
    const QString reference = m_dir.filePath("reference.jpg");
    ASSERT_TRUE(writeProgressiveJpeg(pictureOf(quadrantPattern({804, 600})), 5, reference));
    EXPECT_EQ(readFile(m_dir.filePath("Later/2026-03-07-09-06--02-Camera.jpg")), readFile(reference));
    // The end of the program writes the frame on the screen: exit(), unlike quit(), closes no window.
    setPrefs("MEDIUM", "Later");
    ASSERT_NE(open({200, 150}, FrameWindowKind::OutputSmall), nullptr);
    QTimer::singleShot(100, qApp, [] { QCoreApplication::exit(0); });
    QCoreApplication::exec();
    EXPECT_EQ(entriesIn(m_dir.filePath("Later")).size(), 2);
}
} // namespace
