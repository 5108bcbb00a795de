#include "platform/screen/ScreenGrabber.h"

#include <gtest/gtest.h>

namespace {
// Without an X display the loader must still give a grabber, one that grabs nothing.
TEST(ScreenGrabberLoader, GivesAGrabberThatGrabsNothingWithoutX11) {
    qunsetenv("DISPLAY");
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    ASSERT_TRUE(grabber);
    EXPECT_FALSE(grabber->grab(QRect(0, 0, 32, 32)));
}
} // namespace
