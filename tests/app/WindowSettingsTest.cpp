#include "app/WindowSettings.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

namespace {
TEST(WindowSettings, RestoredFrameKeepsTheWindowReachable) {
    const std::pair<mScreenSettings::Geometry, QRect> cases[] = {
        {{0, 0, 0, 0}, {20, 60, 200, 193}}, // first start
        {{193, 200, 20, 59}, {20, 60, 200, 193}},
        {{100, 300, -1200, -1}, {-1200, -1, 300, 193}}, // a screen to the left and above
        // A damaged file's extremes are held where no edge of the frame overflows.
        {{INT32_MAX, INT32_MAX, INT32_MAX, INT32_MIN}, {16777215, -16777215, 16777215, 16777215}},
    };
    for (const auto& [stored, frame] : cases) {
        EXPECT_EQ(restoredFrame(stored, QSize(200, 193)), frame) << stored.pWinLeft << ", " << stored.pWinTop;
    }
}
} // namespace
