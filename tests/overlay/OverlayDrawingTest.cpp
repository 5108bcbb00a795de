#include "base/NilObjectException.h"
#include "overlay/EasyOverlayWindow.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

namespace {
constexpr int kWidth = 100;
constexpr int kHeight = 80;

// Bounds of the pixels at least as opaque as `alpha`.
QRect bounds(const QImage& image, int alpha) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            bounds |= qAlpha(image.pixel(x, y)) >= alpha ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return bounds;
}
QRect inked(const QImage& image) {
    return bounds(image, 1);
}

class Surface final : public EasyOverlayWindow {
public:
    int painted = 0;

protected:
    void Paint() override {
        ++painted;
        FillRect(0, 0, 4, 4);
    }
};

class OverlayDrawingTest : public ::testing::Test {
protected:
    void SetUp() override { surface.Init(40, 30, kWidth, kHeight); }
    // What the window shows: flushed and painted by the window itself.
    QImage shown() {
        surface.DrawWindow();
        return surface.grab().toImage().convertToFormat(QImage::Format_ARGB32);
    }

    Surface surface;
};

struct Shape {
    const char* name;
    int lineWidth;
    std::function<void(EasyOverlayWindow&)> draw;
    QRect inked;
    QRect solid;
};
} // namespace

TEST_F(OverlayDrawingTest, ShapesLandWhereTheirArithmeticPutsThem) {
    const Shape shapes[] = {
        {"line from 0,0 along the top row", 1, [](auto& s) { s.DrawLine(0, 0, 30, 0); }, {0, 0, 30, 1}, {}},
        {"line downwards", 1, [](auto& s) { s.DrawLine(10, 5, 10, 25); }, {9, 5, 2, 20}, {}},
        {"filled rectangle",
         1,
         [](auto& s) { s.FillRect(10, 20, 30, 40); },
         {10, 20, 30, 40},
         {10, 20, 30, 40}},
        {"rectangle, line width 3",
         3,
         [](auto& s) { s.DrawRect(10, 10, 30, 20); },
         {10, 9, 31, 21},
         {11, 10, 29, 19}},
        {"oval, line width 3",
         3,
         [](auto& s) { s.DrawOval(10, 10, 30, 20); },
         {9, 9, 34, 24},
         {10, 10, 32, 22}},
        {"filled oval", 1, [](auto& s) { s.FillOval(10, 10, 30, 20); }, {10, 10, 30, 20}, {11, 11, 28, 18}},
        {"round rectangle, line width 3",
         3,
         [](auto& s) { s.DrawRoundRect(10, 10, 30, 20, 0, 0); },
         {9, 9, 31, 21},
         {10, 10, 29, 19}},
    };
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        surface.Clear();
        surface.setLineWidth(shape.lineWidth);
        shape.draw(surface);
        const QImage image = shown();
        EXPECT_EQ(inked(image), shape.inked);
        EXPECT_EQ(bounds(image, 255), shape.solid);
    }
}

TEST_F(OverlayDrawingTest, ColourAndItsTransparency) {
    surface.setForeColor(0x3366cc);
    surface.FillRect(0, 0, 10, 10);
    EXPECT_EQ(shown().pixel(5, 5), qRgba(0x33, 0x66, 0xcc, 255));
    surface.setForeColorTransparency(0);
    surface.FillRect(20, 0, 10, 10);
    EXPECT_EQ(qAlpha(shown().pixel(25, 5)), 0);
}

TEST_F(OverlayDrawingTest, CornersTextAndPicturesStandTheRightWayUp) {
    surface.FillRoundRect(10, 10, 40, 30, 12, 4);
    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    picture.setPixel(0, 0, qRgb(0, 255, 0));
    surface.DrawPicture(picture, 60, 5);
    QImage image = shown();
    // Corners 12 across and 4 high.
    EXPECT_EQ(qAlpha(image.pixel(10, 10)) + qAlpha(image.pixel(12, 10)), 0);
    EXPECT_GT(qAlpha(image.pixel(10, 13)), 128);
    EXPECT_EQ(qAlpha(image.pixel(30, 10)), 255);
    EXPECT_EQ(image.pixel(60, 5), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(60, 6), qRgb(0, 0, 255));

    surface.Clear();
    surface.DrawString("Hg", 10, 20);
    const QRect text = inked(shown());
    EXPECT_GE(text.top(), 20);
    EXPECT_GT(text.bottom(), 20 + surface.TextSize()) << "the descender hangs below the baseline";
    EXPECT_NEAR(text.right() + 1 - 10, surface.StringWidth("Hg"), 3);
}

TEST_F(OverlayDrawingTest, CallsThatBorrowTheStateGiveItBack) {
    EXPECT_EQ(std::tuple(surface.ForeColor(), surface.ForeColorTransparency(), surface.LineWidth(),
                         surface.TextFont(), surface.TextSize()),
              std::tuple(0u, 255, 1, QString("Helvetica"), 36));
    surface.setForeColor(0x123456);
    surface.setForeColorTransparency(200);
    surface.DrawStringWithShadow("Hi", 5, 5, 2, 128, 0xff0000);
    EXPECT_EQ(std::tuple(surface.ForeColor(), surface.ForeColorTransparency(), surface.Transparency()),
              std::tuple(0x123456u, 200, 128));

    surface.Clear();
    surface.setLineWidth(0);
    surface.DrawBevelFrame(10, 10, 30, 20, 0xffffff, 0xff0000);
    EXPECT_TRUE(inked(shown()).isNull());
    EXPECT_EQ(surface.LineWidth(), 0);
    surface.setLineWidth(2);
    surface.DrawBevelFrame(10, 10, 30, 20, 0xffffff, 0xff0000);
    const QImage frame = shown();
    EXPECT_GT(qAlpha(frame.pixel(20, 11)), 0);
    EXPECT_EQ(qRed(frame.pixel(20, 11)), qGreen(frame.pixel(20, 11))) << "top edge in the first colour";
    EXPECT_EQ(qGreen(frame.pixel(38, 20)), 0) << "right edge in the second colour";
    EXPECT_EQ(std::tuple(surface.LineWidth(), surface.ForeColor()), std::tuple(2, 0x123456u));
}

TEST_F(OverlayDrawingTest, UpdateTakesTheNewSizeAndHasTheOwnerPaint) {
    surface.setWidth(130);
    surface.Update();
    EXPECT_EQ(surface.painted, 1);
    const QImage image = shown();
    EXPECT_EQ(std::tuple(image.width(), inked(image)), std::tuple(130, QRect(0, 0, 4, 4)));
}

TEST(OverlayWithoutContext, DrawingThrowsRefreshWaitsAndAFailedCreationDrawsOnNothing) {
    Surface fresh;
    EXPECT_THROW(fresh.FillRect(0, 0, 1, 1), NilObjectException);
    EXPECT_THROW(fresh.setForeColor(0), NilObjectException);
    EXPECT_NO_THROW(fresh.Refresh());
    EXPECT_EQ(fresh.painted, 0);
    fresh.Init(10, 10, 0, 50);
    EXPECT_NO_THROW(fresh.DrawLine(0, 0, 5, 5));
    EXPECT_FALSE(fresh.isVisible());
}

TEST(OverlayAttached, MovesAndGrowsWithItsWindow) {
    QWidget target;
    target.setGeometry(300, 300, 200, 100);
    target.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&target));
    Surface attached;
    attached.Init(320, 320, 50, 40, &target);
    target.setGeometry(340, 310, 230, 100);
    EXPECT_TRUE(QTest::qWaitFor([&] { return attached.geometry() == QRect(360, 330, 80, 40); }, 5000));
}
