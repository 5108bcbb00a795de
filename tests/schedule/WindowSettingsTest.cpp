#include "schedule/WindowSettings.h"

#include <gtest/gtest.h>

namespace {
TEST(WindowSettings, RestoredFrameKeepsTheWindowReachable) {
    const QSize minimum(200, 193);
    struct Case {
        mScreenSettings::Geometry stored;
        QRect expected;
    };
    const Case cases[] = {
        {{0, 0, 0, 0}, QRect(20, 60, 200, 193)}, // first start
        {{193, 200, 19, 59}, QRect(20, 60, 200, 193)},
        {{193, 200, 20, 60}, QRect(20, 60, 200, 193)},
        {{192, 199, 21, 61}, QRect(21, 61, 200, 193)},
        {{400, 300, -1200, -1}, QRect(-1200, -1, 300, 400)}, // a screen to the left and above
        {{-5, -5, 5000, 3000}, QRect(5000, 3000, 200, 193)},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(restoredFrame(c.stored, minimum), c.expected)
            << c.stored.pWinHeight << "," << c.stored.pWinWidth << "," << c.stored.pWinLeft << ","
            << c.stored.pWinTop;
    }
}
} // namespace
