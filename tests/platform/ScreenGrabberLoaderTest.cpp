#include "platform/screen/ScreenGrabber.h"

#include <gtest/gtest.h>

namespace {
// Without a display of either kind the loader must still give a grabber, one that grabs nothing.
TEST(ScreenGrabberLoader, GivesAGrabberThatGrabsNothingWithoutADisplay) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE"}) {
        qunsetenv(name);
    }
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    ASSERT_TRUE(grabber);
    const ScreenRunStart start = grabber->beginRun({QRect(0, 0, 32, 32)});
    ASSERT_TRUE(start.run);
    EXPECT_FALSE(start.run->grab(QRect(0, 0, 32, 32)));
}
} // namespace
