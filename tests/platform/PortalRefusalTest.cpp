// Run on a headless Wayland desktop (support/wayland-session.sh) whose portal has no back end, or,
// for the stall, whose portal never answers.
#include "platform/screen/PortalScreenGrabber.h"

#include <QTest>

#include <future>

#include <gtest/gtest.h>

namespace {
const QList<QRect> kScreens{QRect(0, 0, 1280, 800), QRect(1280, 0, 1024, 768)};

TEST(PortalScreenGrabber, TheLoaderPicksItOnWaylandAndOnlyTheFirstOfRefusalsInARowIsNews) {
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    ASSERT_TRUE(dynamic_cast<PortalScreenGrabber*>(grabber.get()));
    for (const bool news : {true, false, false}) {
        const ScreenRunStart start = grabber->beginRun(kScreens);
        EXPECT_FALSE(start.run);
        EXPECT_EQ(start.refusalIsNew, news);
    }
}

TEST(PortalStall, OneRunAtATimeWaitsForThePortalAndTheGrabbersEndReleasesItAtOnce) {
    std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    std::future<ScreenRunStart> waiting =
        std::async(std::launch::async, [&] { return grabber->beginRun(kScreens); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return grabber->busy(); }, 5000));
    const ScreenRunStart second = grabber->beginRun(kScreens);
    EXPECT_FALSE(second.run || second.refusalIsNew);
    EXPECT_EQ(waiting.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    grabber.reset(); // and with it the portal's answer
    const ScreenRunStart first = waiting.get();
    EXPECT_FALSE(first.run || first.refusalIsNew);
}
} // namespace
