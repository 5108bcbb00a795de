// Run on a headless Wayland desktop whose portal has no back end (support/wayland-session.sh).
#include "platform/screen/PortalScreenGrabber.h"

#include <gtest/gtest.h>

namespace {
TEST(PortalScreenGrabber, TheLoaderPicksItOnWaylandAndOnlyTheFirstOfRefusalsInARowIsNews) {
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    ASSERT_TRUE(dynamic_cast<PortalScreenGrabber*>(grabber.get()));
    for (const bool news : {true, false, false}) {
        const ScreenRunStart start = grabber->beginRun({QRect(0, 0, 1280, 800), QRect(1280, 0, 1024, 768)});
        EXPECT_FALSE(start.run);
        EXPECT_EQ(start.refusalIsNew, news);
    }
}
} // namespace
