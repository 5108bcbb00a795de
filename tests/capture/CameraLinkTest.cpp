#include "capture/CameraLink.h"
#include "base/mCodeBaseGlv.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "platform/camera/GstCameraGrabber.h"
#include "settings/mGeneralSettings.h"
#include "support/RecordingPresenter.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

using namespace std::chrono_literals;

namespace {
// Solid ARGB 0xff336699: in BGRx memory order 0x99, 0x66, 0x33.
constexpr auto kSolidSource = "videotestsrc is-live=true pattern=solid-color foreground-color=0xff336699";

struct ShownFrame {
    Picture frame;
    FrameWindowKind kind;
};

class CameraLinkTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(gstreamerAvailable());
        ASSERT_TRUE(m_folder.isValid());
        platform::setApplicationFolder(m_folder.path());
        mProgramInfo::SetConstants();
        useSource(kSolidSource);
        installCameraServices({{}, [this](Picture frame, FrameWindowKind kind) {
                                   std::lock_guard lock(m_shownMutex);
                                   m_shown.push_back({std::move(frame), kind});
                               }});
    }

    void TearDown() override {
        mCodeBaseGlv::pQTGrabber.set(nullptr);
        mCodeBaseGlv::pVideoGoodToGo = false;
    }

    static void useSource(const QString& description) {
        installCameraServices({[description] { return makeGstCameraGrabber(description); }, {}});
    }

    static void setCamImgSize(const QString& word) {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        prefs.pCamImgSize = word;
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }

    static std::optional<Picture> waitForFrame(std::chrono::milliseconds timeout = 10s) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (std::chrono::steady_clock::now() < deadline) {
            if (auto frame = mCodeBaseGlv::pQTGrabber.get()->CurrentFrame()) {
                return frame;
            }
            std::this_thread::sleep_for(20ms);
        }
        return std::nullopt;
    }

    std::vector<ShownFrame> shown() {
        std::lock_guard lock(m_shownMutex);
        return m_shown;
    }

    QTemporaryDir m_folder;
    RecordingPresenter m_presenter;
    std::mutex m_shownMutex;
    std::vector<ShownFrame> m_shown;
};

std::vector<std::uint8_t> bytesOf(const Picture& picture) {
    std::vector<std::uint8_t> bytes;
    for (int row = 0; row < picture.height; ++row) {
        const std::uint8_t* line = picture.bits + static_cast<std::ptrdiff_t>(row) * picture.strideBytes;
        bytes.insert(bytes.end(), line, line + picture.width * 4);
    }
    return bytes;
}

void expectSolidColour(const Picture& picture) {
    for (const auto& [x, y] : {std::pair{0, 0}, std::pair{picture.width - 1, picture.height - 1},
                               std::pair{picture.width / 2, picture.height / 3}}) {
        const std::uint8_t* pixel =
            picture.bits + static_cast<std::ptrdiff_t>(y) * picture.strideBytes + x * 4;
        EXPECT_NEAR(pixel[0], 0x99, 2) << x << "," << y;
        EXPECT_NEAR(pixel[1], 0x66, 2) << x << "," << y;
        EXPECT_NEAR(pixel[2], 0x33, 2) << x << "," << y;
    }
}

struct SizeCase {
    const char* word;
    int width;
    int height;
};

TEST_F(CameraLinkTest, FramesTakeTheSizeThatCamImgSizeSelects) {
    // videotestsrc's own size is 320 by 240, so an unknown word shows in the frame.
    const SizeCase cases[] = {
        {"SMALL", 200, 150}, {"MEDIUM", 400, 300}, {"LARGE", 800, 600}, {"", 400, 300}, {"HUGE", 320, 240},
    };
    for (const SizeCase& c : cases) {
        SCOPED_TRACE(c.word);
        setCamImgSize(c.word);
        mCodeBaseStd::sSetupVideoForCamera();
        EXPECT_TRUE(mCodeBaseGlv::pVideoGoodToGo);
        const std::optional<Picture> frame = waitForFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->width, c.width);
        EXPECT_EQ(frame->height, c.height);
        EXPECT_EQ(frame->layout, PixelLayout::Bgrx32);
        expectSolidColour(*frame);
    }
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST_F(CameraLinkTest, PhotographGoesToTheWindowKindOfTheSetting) {
    setCamImgSize("MEDIUM");
    mCodeBaseStd::sSetupVideoForCamera();
    ASSERT_TRUE(waitForFrame());
    const std::pair<const char*, FrameWindowKind> cases[] = {
        {"small", FrameWindowKind::OutputSmall},
        {"", FrameWindowKind::Output},
        {"LARGE", FrameWindowKind::Output},
        {"HUGE", FrameWindowKind::Output},
    };
    for (const auto& [word, kind] : cases) {
        setCamImgSize(word);
        EXPECT_TRUE(mCodeBaseStd::sTakePhotoViaCamera());
        ASSERT_FALSE(shown().empty());
        EXPECT_EQ(shown().back().kind, kind) << word;
        // A setting changed while the link runs reaches the window, not the running link.
        EXPECT_EQ(shown().back().frame.width, 400) << word;
    }
}

TEST_F(CameraLinkTest, FrameIsACopyThatOutlivesTheLink) {
    useSource("videotestsrc is-live=true pattern=ball");
    setCamImgSize("SMALL");
    mCodeBaseStd::sSetupVideoForCamera();
    const std::optional<Picture> first = waitForFrame();
    ASSERT_TRUE(first);
    const std::vector<std::uint8_t> firstBytes = bytesOf(*first);

    // The ball moves, so a later frame differs; the first copy must not follow it.
    std::optional<Picture> later;
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (std::chrono::steady_clock::now() < deadline) {
        later = mCodeBaseGlv::pQTGrabber.get()->CurrentFrame();
        if (later && bytesOf(*later) != firstBytes) {
            break;
        }
        std::this_thread::sleep_for(20ms);
    }
    ASSERT_TRUE(later);
    EXPECT_NE(bytesOf(*later), firstBytes);
    EXPECT_NE(later->bits, first->bits);

    mCodeBaseGlv::pQTGrabber.set(nullptr);
    EXPECT_EQ(bytesOf(*first), firstBytes);
}

int threadCount() {
    return int(QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

TEST_F(CameraLinkTest, NewSetUpReleasesTheOldLinkAndItsPipeline) {
    setCamImgSize("MEDIUM");
    mCodeBaseStd::sSetupVideoForCamera();
    ASSERT_TRUE(waitForFrame());
    const int threadsWithOneLink = threadCount();

    for (int round = 0; round < 6; ++round) {
        const std::weak_ptr<CameraGrabber> old = mCodeBaseGlv::pQTGrabber.get();
        setCamImgSize(round % 2 ? "SMALL" : "LARGE");
        mCodeBaseStd::sSetupVideoForCamera();
        EXPECT_TRUE(old.expired());
        const std::optional<Picture> frame = waitForFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->width, round % 2 ? 200 : 800);
    }
    // A pipeline left running would keep a streaming thread each.
    EXPECT_LE(threadCount(), threadsWithOneLink + 2);
}

TEST_F(CameraLinkTest, CameraThatStopsDeliveringGivesNoPhotograph) {
    // The stream ends after half a second, as when the camera is pulled out.
    useSource("videotestsrc is-live=true num-buffers=15");
    setCamImgSize("MEDIUM");
    mCodeBaseStd::sSetupVideoForCamera();
    ASSERT_TRUE(waitForFrame());

    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (mCodeBaseGlv::pQTGrabber.get()->CurrentFrame() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_FALSE(mCodeBaseGlv::pQTGrabber.get()->CurrentFrame());
    EXPECT_TRUE(mCodeBaseGlv::pVideoGoodToGo);
    EXPECT_TRUE(mCodeBaseStd::sTakePhotoViaCamera());
    EXPECT_TRUE(shown().empty());
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST_F(CameraLinkTest, SourceThatNeverRunsIsSilentAndCountsAsReady) {
    for (const char* source : {"filesrc location=/nonexistent/camera", "no-such-element-anywhere"}) {
        SCOPED_TRACE(source);
        useSource(source);
        setCamImgSize("MEDIUM");
        mCodeBaseStd::sSetupVideoForCamera();
        EXPECT_TRUE(mCodeBaseGlv::pVideoGoodToGo);
        EXPECT_FALSE(waitForFrame(500ms));
        EXPECT_TRUE(mCodeBaseStd::sTakePhotoViaCamera());
    }
    EXPECT_TRUE(shown().empty());
    EXPECT_TRUE(m_presenter.texts().empty());
}

TEST(GstCameraGrabber, FrameBufferOfNoSizeCannotBeMade) {
    const auto grabber = makeGstCameraGrabber("videotestsrc");
    EXPECT_FALSE(grabber->InitFrameBuffer(0, 150));
    EXPECT_FALSE(grabber->InitFrameBuffer(200, -1));
    EXPECT_TRUE(grabber->InitFrameBuffer(200, 150));
}
} // namespace
