#include "platform/screen/XcbScreenGrabber.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/ScreenList.h"
#include "support/RootPainter.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <thread>

namespace {
using Transport = XcbScreenGrabber::Transport;

// The server's padding byte is its own business; only blue, green and red must match.
::testing::AssertionResult samePixels(const Picture& picture, const QImage& painted, const QRect& area) {
    if (picture.width != area.width() || picture.height != area.height()) {
        return ::testing::AssertionFailure() << "size " << picture.width << "x" << picture.height;
    }
    for (int y = 0; y < area.height(); ++y) {
        const auto* grabbed = reinterpret_cast<const std::uint32_t*>(picture.bits + y * picture.strideBytes);
        const auto* expected = reinterpret_cast<const QRgb*>(painted.constScanLine(area.y() + y)) + area.x();
        for (int x = 0; x < area.width(); ++x) {
            if ((grabbed[x] & 0xffffffu) != (expected[x] & 0xffffffu)) {
                return ::testing::AssertionFailure() << "pixel " << x << "," << y;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

class XcbScreenGrabberTest : public ::testing::TestWithParam<Transport> {
protected:
    void SetUp() override {
        m_painted = noisePattern(rootSize());
        ASSERT_TRUE(paintRoot(m_painted));
        m_grabber = XcbScreenGrabber::connect(GetParam());
        ASSERT_TRUE(m_grabber);
    }

    QImage m_painted;
    std::unique_ptr<XcbScreenGrabber> m_grabber;
};

TEST_P(XcbScreenGrabberTest, EachMonitorComesBackExactly) {
    const QList<QRect> monitors = screenAreas();
    ASSERT_EQ(monitors.size(), 3);
    for (const QRect& area : monitors) {
        const std::optional<Picture> picture = m_grabber->grab(area);
        ASSERT_TRUE(picture) << area.x();
        EXPECT_EQ(picture->layout, PixelLayout::Bgrx32);
        EXPECT_TRUE(samePixels(*picture, m_painted, area)) << "monitor at " << area.x();
    }
    EXPECT_EQ(m_grabber->usesSharedMemory(), GetParam() == Transport::SharedMemoryFirst);
}

TEST_P(XcbScreenGrabberTest, ThePictureOutlivesItsGrabber) {
    const QRect area(7, 3, 101, 55);
    std::optional<Picture> picture = m_grabber->grab(area);
    ASSERT_TRUE(picture);
    m_grabber.reset();
    EXPECT_TRUE(samePixels(*picture, m_painted, area));
}

TEST_P(XcbScreenGrabberTest, APictureHeldKeepsItsPixelsThroughLaterGrabs) {
    const QList<QRect> monitors = screenAreas();
    const QRect small(10, 20, 300, 200);
    // The big one is given back first and becomes the spare that the later grabs reuse.
    m_grabber->grab(monitors.at(1));
    const std::optional<Picture> held = m_grabber->grab(small);
    ASSERT_TRUE(held);
    for (const QRect& area : {monitors.at(0), monitors.at(1), small}) {
        const std::optional<Picture> later = m_grabber->grab(area);
        ASSERT_TRUE(later);
        EXPECT_NE(later->bits, held->bits);
        EXPECT_TRUE(samePixels(*later, m_painted, area));
    }
    EXPECT_TRUE(samePixels(*held, m_painted, small));
}

TEST_P(XcbScreenGrabberTest, AnAreaOffTheDisplayGivesNothingAndHarmsNoLaterGrab) {
    const QSize root = rootSize();
    for (const QRect& area : {QRect(root.width() - 10, 0, 20, 20), QRect(-5, 0, 10, 10), QRect(0, 0, 0, 10),
                              QRect(0, root.height(), 10, 10)}) {
        EXPECT_FALSE(m_grabber->grab(area)) << area.x() << "," << area.y();
    }
    const QRect area(0, 0, 64, 64);
    const std::optional<Picture> picture = m_grabber->grab(area);
    ASSERT_TRUE(picture);
    EXPECT_TRUE(samePixels(*picture, m_painted, area));
}

TEST_P(XcbScreenGrabberTest, TwoThreadsGrabAtOnceEachIntoItsOwnPixels) {
    const QList<QRect> monitors = screenAreas();
    ASSERT_GE(monitors.size(), 2);
    const auto grabMany = [&](const QRect& area, bool& allSame) {
        allSame = true;
        for (int i = 0; i < 8; ++i) {
            const std::optional<Picture> picture = m_grabber->grab(area);
            allSame = allSame && picture && samePixels(*picture, m_painted, area);
        }
    };
    bool firstSame = false;
    bool secondSame = false;
    std::thread first(grabMany, monitors.at(0), std::ref(firstSame));
    std::thread second(grabMany, monitors.at(1), std::ref(secondSame));
    first.join();
    second.join();
    EXPECT_TRUE(firstSame);
    EXPECT_TRUE(secondSame);
}

INSTANTIATE_TEST_SUITE_P(Transports, XcbScreenGrabberTest,
                         ::testing::Values(Transport::SharedMemoryFirst, Transport::GetImageOnly),
                         [](const auto& info) {
                             return info.param == Transport::SharedMemoryFirst ? "SharedMemory" : "GetImage";
                         });

TEST(ScreenList, MonitorsComeAsQtReportsThemPrimaryFirst) {
    const QList<QRect> expected{QRect(0, 0, 1280, 1024), QRect(1280, 0, 1920, 1080),
                                QRect(3200, 0, 640, 480)};
    EXPECT_EQ(screenAreas(), expected);
}

TEST(ScreenGrabberLoader, PicksTheXServerOnX11) {
    ASSERT_EQ(QGuiApplication::platformName(), "xcb");
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    const ScreenRunStart start = grabber->beginRun({QRect(0, 0, 32, 16)});
    ASSERT_TRUE(start.run);
    const std::optional<Picture> picture = start.run->grab(QRect(0, 0, 32, 16));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 32);
    EXPECT_EQ(picture->height, 16);
}
} // namespace
