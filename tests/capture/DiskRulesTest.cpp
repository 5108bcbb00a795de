#include "capture/ScreenSignature.h"
#include "capture/UnchangedScreens.h"
#include "support/JpegInspection.h"
#include "support/RootPainter.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace {
ScreenSignature signatureOf(const QImage& image) {
    return screenSignature(pictureOf(image));
}

// A 1920x1080 desktop of noise, so that a change anywhere moves a cell, with small and large changes.
TEST(UnchangedScreensTest, ACursorOrAClockIsNoChangeButALineOfTextOrAnotherSizeIs) {
    const QImage desktop = noisePattern({1920, 1080});
    const auto changedBy = [&](const std::vector<QRect>& spots, const QRect& leftOut = {}) {
        QImage changed = desktop.copy();
        QPainter painter(&changed);
        for (const QRect& spot : spots) {
            painter.fillRect(spot, Qt::white);
        }
        return screenSignature(pictureOf(changed), leftOut);
    };
    const ScreenSignature before = signatureOf(desktop);
    const std::tuple<const char*, ScreenSignature, bool> cases[] = {
        {"the same", signatureOf(desktop), true},
        {"a text cursor", changedBy({{700, 400, 2, 18}}), true},
        {"a clock's digits", changedBy({{1850, 5, 40, 14}}), true},
        {"a cursor and a clock", changedBy({{700, 400, 2, 18}, {1850, 5, 40, 14}}), true},
        {"a line of text", changedBy({{100, 500, 400, 16}}), false},
        {"a window", changedBy({{300, 300, 200, 150}}), false},
        {"another size", signatureOf(desktop.copy(0, 0, 1920, 1200)), false},
    };
    for (const auto& [what, after, unchanged] : cases) {
        EXPECT_EQ(looksUnchanged(before, after), unchanged) << what;
    }
    // The program's own window, white while a run starts, is left out on both sides.
    const QRect window(300, 300, 200, 150);
    EXPECT_TRUE(looksUnchanged(screenSignature(pictureOf(desktop), window), changedBy({window}, window)));
}

TEST(UnchangedScreensTest, AFailedWriteOrAKeepOfEveryRunWritesAStillScreenAgain) {
    const ScreenSignature still = signatureOf(noisePattern({320, 200}));
    UnchangedScreens screens;
    EXPECT_TRUE(screens.wanted(0, still, 3));
    EXPECT_FALSE(screens.wanted(0, still, 3));
    screens.notWritten(0);
    EXPECT_TRUE(screens.wanted(0, still, 3));
    EXPECT_TRUE(screens.wanted(0, still, 1));
}
} // namespace
