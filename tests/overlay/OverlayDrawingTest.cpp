#include "base/NilObjectException.h"
#include "overlay/EasyOverlayWindow.h"

#include <QImage>

#include <gtest/gtest.h>

#include <functional>

namespace {
constexpr int kWidth = 100;
constexpr int kHeight = 80;

// Bounds of the pixels whose alpha passes `test`.
QRect pixelsWhere(const QImage& image, const std::function<bool(int)>& test) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (test(qAlpha(image.pixel(x, y)))) {
                bounds |= QRect(x, y, 1, 1);
            }
        }
    }
    return bounds;
}
QRect inked(const QImage& image) {
    return pixelsWhere(image, [](int alpha) { return alpha > 0; });
}
QRect solid(const QImage& image) {
    return pixelsWhere(image, [](int alpha) { return alpha == 255; });
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
        {"oval, line width 3", 3, [](auto& s) { s.DrawOval(10, 10, 30, 20); }, {}, {}},
        {"filled oval", 1, [](auto& s) { s.FillOval(10, 10, 30, 20); }, {10, 10, 30, 20}, {}},
        {"round rectangle, line width 3", 3, [](auto& s) { s.DrawRoundRect(10, 10, 30, 20, 0, 0); }, {}, {}},
    };
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.name);
        surface.Clear();
        surface.setLineWidth(shape.lineWidth);
        shape.draw(surface);
        const QImage image = shown();
        EXPECT_EQ(inked(image), shape.inked);
        EXPECT_EQ(solid(image), shape.solid);
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
