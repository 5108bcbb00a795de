#include "platform/screen/ScreenList.h"
#include "platform/screen/XcbScreenGrabber.h"
#include "support/JpegInspection.h"
#include "support/RootPainter.h"

#include <gtest/gtest.h>

namespace {
using Transport = XcbScreenGrabber::Transport;

// RGB32 images compare without the padding byte, which is the server's own business.
bool samePixels(const std::optional<Picture>& picture, const QImage& painted, const QRect& area) {
    return picture && imageOf(*picture) == painted.copy(area);
}

class XcbScreenGrabberTest : public ::testing::TestWithParam<Transport> {
protected:
    void SetUp() override {
        ASSERT_TRUE(paintRoot(m_painted));
        ASSERT_TRUE(m_grabber);
    }

    const QImage m_painted = noisePattern(rootSize());
    const QList<QRect> m_monitors = screenAreas();
    std::unique_ptr<XcbScreenGrabber> m_grabber = XcbScreenGrabber::connect(GetParam());
};

TEST_P(XcbScreenGrabberTest, EachAreaComesBackExactlyAndStaysSoWhateverComesAfter) {
    ASSERT_EQ(m_monitors.size(), 3);
    for (const QRect& area : m_monitors) {
        EXPECT_TRUE(samePixels(m_grabber->grab(area), m_painted, area)) << "monitor at " << area.x();
    }
    EXPECT_EQ(m_grabber->usesSharedMemory(), GetParam() == Transport::SharedMemoryFirst);

    const QSize root = rootSize();
    for (const QRect& area : {QRect(root.width() - 10, 0, 20, 20), QRect(-5, 0, 10, 10), QRect(0, 0, 0, 10),
                              QRect(0, root.height(), 10, 10)}) {
        EXPECT_FALSE(m_grabber->grab(area)) << area.x() << "," << area.y();
    }
    const QRect small(7, 3, 101, 55);
    // The big one is given back first and becomes the spare that later grabs reuse.
    m_grabber->grab(m_monitors.at(1));
    const std::optional<Picture> held = m_grabber->grab(small);
    for (const QRect& area : {m_monitors.at(0), m_monitors.at(1), small}) {
        EXPECT_TRUE(samePixels(m_grabber->grab(area), m_painted, area)) << area.x();
    }
    m_grabber.reset();
    EXPECT_TRUE(samePixels(held, m_painted, small));
}

INSTANTIATE_TEST_SUITE_P(Transports, XcbScreenGrabberTest,
                         ::testing::Values(Transport::SharedMemoryFirst, Transport::GetImageOnly));

TEST(ScreenList, MonitorsComeInDevicePixelsPrimaryFirst) {
    EXPECT_EQ(screenAreas(), (QList<QRect>{{1280, 0, 1920, 1080}, {0, 0, 1280, 1024}, {3200, 0, 640, 480}}));
}

TEST(ScreenGrabberLoader, PicksTheXServerOnX11AndAGrabberOfNothingWithoutADisplay) {
    const QRect area(0, 0, 32, 16);
    const std::unique_ptr<ScreenGrabber> onX11 = makeScreenGrabber();
    const std::optional<Picture> picture = onX11->beginRun({area}).run->grab(area);
    EXPECT_TRUE(picture && imageOf(*picture).size() == area.size());

    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    const std::unique_ptr<ScreenGrabber> none = makeScreenGrabber();
    qputenv("DISPLAY", display);
    const ScreenRunStart start = none->beginRun({area});
    ASSERT_TRUE(start.run);
    EXPECT_FALSE(start.run->grab(area));
}
} // namespace
