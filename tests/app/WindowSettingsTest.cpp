#include "app/WindowSettings.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

namespace {
TEST(WindowSettings, RestoredFrameKeepsTheWindowReachable) {
    const std::pair<mScreenSettings::Geometry, QRect> cases[] = {
        {{0, 0, 0, 0}, {20, 60, 200, 193}}, // first start
        {{193, 200, 20, 59}, {20, 60, 200, 193}},
        {{100, 300, -1200, -1}, {-1200, -1, 300, 193}}, // a screen to the left and above
    };
    for (const auto& [stored, frame] : cases) {
        EXPECT_EQ(restoredFrame(stored, QSize(200, 193)), frame) << stored.pWinLeft << ", " << stored.pWinTop;
    }
}
} // namespace
