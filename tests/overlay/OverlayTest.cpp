#include "base/NilObjectException.h"
#include "overlay/EasyOverlayWindow.h"

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <functional>
#include <optional>

namespace {
// Bounds of the pixels at least as opaque as `alpha`.
QRect bounds(const QImage& image, int alpha = 1) {
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            bounds |= qAlpha(image.pixel(x, y)) >= alpha ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return bounds;
}

// An owner that keeps what it hears.
class Owner final : public EasyOverlayWindow {
public:
    bool takesPress = false;
    std::vector<QPoint> downs, drags, ups;
    std::optional<QPoint> draggedTo;

    // What the window shows: flushed and painted by the window itself.
    QImage shown() {
        DrawWindow();
        return grab().toImage().convertToFormat(QImage::Format_ARGB32);
    }

protected:
    bool MouseDown(int x, int y, int, int, int) override {
        downs.emplace_back(x, y);
        return takesPress;
    }
    void MouseDrag(int x, int y, int, int) override { drags.emplace_back(x, y); }
    void MouseUp(int x, int y, int, int, int) override { ups.emplace_back(x, y); }
    void WindowDragAction(int left, int top) override { draggedTo = QPoint(left, top); }
};

// The pointer as the user moves it, through the X server, the window manager and Qt: to a point,
// then with the first button pressed or released if asked.
void pointer(QPoint at, std::uint8_t button = 0) {
    static const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> x(xcb_connect(nullptr, nullptr),
                                                                                &xcb_disconnect);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x.get())).data->root;
    xcb_test_fake_input(x.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, std::int16_t(at.x()),
                        std::int16_t(at.y()), 0);
    if (button != 0) {
        xcb_test_fake_input(x.get(), button, 1, XCB_CURRENT_TIME, root, 0, 0, 0);
    }
    xcb_flush(x.get());
}

QRgb onScreen(QPoint at) {
    return QGuiApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage().pixel(0, 0);
}
} // namespace

TEST(OverlayDrawing, ShapesLandWhereTheirArithmeticPutsThem) {
    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    const std::tuple<const char*, int, std::function<void(Owner&)>, QRect, QRect> shapes[] = {
        {"line along the top row", 1, [](Owner& s) { s.DrawLine(0, 0, 30, 0); }, {0, 0, 30, 1}, {}},
        {"line downwards", 1, [](Owner& s) { s.DrawLine(10, 5, 10, 25); }, {9, 5, 2, 20}, {}},
        {"filled rectangle",
         1,
         [](Owner& s) { s.FillRect(10, 20, 30, 40); },
         {10, 20, 30, 40},
         {10, 20, 30, 40}},
        {"rectangle", 3, [](Owner& s) { s.DrawRect(10, 10, 30, 20); }, {10, 9, 31, 21}, {11, 10, 29, 19}},
        {"oval", 3, [](Owner& s) { s.DrawOval(10, 10, 30, 20); }, {9, 9, 34, 24}, {10, 10, 32, 22}},
        {"filled oval", 1, [](Owner& s) { s.FillOval(10, 10, 30, 20); }, {10, 10, 30, 20}, {11, 11, 28, 18}},
        {"round rectangle",
         3,
         [](Owner& s) { s.DrawRoundRect(10, 10, 30, 20, 0, 0); },
         {9, 9, 31, 21},
         {10, 10, 29, 19}},
        {"picture", 1, [&](Owner& s) { s.DrawPicture(picture, 60, 5); }, {60, 5, 3, 2}, {60, 5, 3, 2}},
    };
    Owner surface;
    surface.Init(40, 30, 100, 80);
    for (const auto& [name, lineWidth, draw, inked, solid] : shapes) {
        surface.Clear();
        surface.setLineWidth(lineWidth);
        draw(surface);
        const QImage image = surface.shown();
        EXPECT_EQ(bounds(image), inked) << name;
        EXPECT_EQ(bounds(image, 255), solid) << name;
    }
}

TEST(OverlayDrawing, ColourCornersAndTextStandTheRightWayUpAndNothingIsDrawnBeforeInit) {
    Owner surface;
    EXPECT_THROW(surface.FillRect(0, 0, 1, 1), NilObjectException);
    surface.Init(40, 30, 100, 80);
    surface.setForeColor(0x3366cc);
    surface.FillRoundRect(10, 20, 40, 30, 12, 4);
    surface.setForeColorTransparency(0);
    surface.FillRect(0, 0, 10, 10);
    const QImage image = surface.shown();
    EXPECT_EQ(image.pixel(30, 30), qRgba(0x33, 0x66, 0xcc, 255));
    EXPECT_EQ(qAlpha(image.pixel(5, 5)), 0);
    // Corners 12 across and 4 high.
    EXPECT_EQ(qAlpha(image.pixel(10, 20)) + qAlpha(image.pixel(12, 20)), 0);
    EXPECT_GT(qAlpha(image.pixel(10, 23)), 128);
    EXPECT_EQ(qAlpha(image.pixel(30, 20)), 255);

    surface.Clear();
    surface.setForeColorTransparency(255);
    surface.DrawString("Hg", 10, 20);
    const QRect text = bounds(surface.shown());
    EXPECT_GE(text.top(), 20);
    EXPECT_GT(text.bottom(), 20 + surface.TextSize()) << "the descender hangs below the baseline";
    EXPECT_NEAR(text.right() + 1 - 10, surface.StringWidth("Hg"), 3);

    Owner failed;
    failed.Init(10, 10, 0, 50);
    EXPECT_NO_THROW(failed.DrawLine(0, 0, 5, 5)) << "a surface that could not be made draws on nothing";
    EXPECT_FALSE(failed.isVisible());
}

TEST(OverlayDrawing, AnAttachedSurfaceMovesAndGrowsWithItsWindow) {
    QWidget target;
    target.setGeometry(300, 300, 200, 100);
    target.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&target));
    Owner attached;
    attached.Init(320, 320, 50, 40, &target);
    target.setGeometry(340, 310, 230, 100);
    EXPECT_TRUE(QTest::qWaitFor([&] { return attached.geometry() == QRect(360, 330, 80, 40); }));
}

// Runs last: it starts a window manager.
TEST(OverlaySurface, FloatsAboveOthersShowingOnlyWhatIsDrawnAndTakesRealPointerDrags) {
    QProcess manager;
    manager.start("openbox", {"--sm-disable"});
    ASSERT_TRUE(manager.waitForStarted(5000));
    const QPoint start(200, 150);
    const QPoint drawn = start + QPoint(30, 40);
    Owner owner;
    owner.Init(200, 150, 120, 80);
    owner.setForeColor(0xff0000);
    owner.FillRect(0, 0, 60, 80);
    owner.DrawWindow();
    QWidget cover;
    cover.setStyleSheet("background: white");
    cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
    cover.show();
    cover.activateWindow();
    // The window manager has the last word on the order.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return onScreen(drawn) == qRgb(255, 0, 0) && onScreen(start + QPoint(90, 40)) == qRgb(255, 255, 255);
    }));

    // Each step waits until the last one has landed on the surface or with its owner.
    const auto drag = [&](const std::vector<QPoint>& path) {
        pointer(drawn, XCB_BUTTON_PRESS);
        for (const QPoint to : path) {
            pointer(drawn + to);
            EXPECT_TRUE(QTest::qWaitFor([&] {
                return owner.geometry().topLeft() == start + to ||
                       (!owner.drags.empty() && owner.drags.back() == to + QPoint(30, 40));
            }));
        }
        pointer(drawn + path.back(), XCB_BUTTON_RELEASE);
    };
    owner.takesPress = true;
    drag({{10, 5}, {30, -10}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !owner.ups.empty(); }));
    EXPECT_EQ(owner.drags, (std::vector<QPoint>{{40, 45}, {60, 30}}));
    EXPECT_EQ(owner.ups, (std::vector<QPoint>{{60, 30}}));
    EXPECT_EQ(owner.geometry().topLeft(), start);
    EXPECT_FALSE(owner.draggedTo);

    // A press the owner leaves moves a moveable surface, along one axis too, and the owner hears no more.
    owner.takesPress = false;
    owner.Moveable = true;
    drag({{15, 20}, {25, 20}});
    QTest::qWait(200); // the release, which must not reach the owner
    EXPECT_EQ(owner.downs, (std::vector<QPoint>{{30, 40}, {30, 40}}));
    EXPECT_EQ(std::tuple(owner.drags.size(), owner.ups.size()), std::tuple(2u, 1u));
    EXPECT_EQ(owner.draggedTo, start + QPoint(25, 20));
}
