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
// An owner that keeps what it hears.
class Owner final : public EasyOverlayWindow {
public:
    std::vector<QPoint> downs, drags, ups;
    std::optional<QPoint> draggedTo;

    // The part of the window that shows at all: its shape on the screen.
    QRect drawn() {
        DrawWindow();
        return mask().boundingRect();
    }

protected:
    bool MouseDown(int x, int y, int, int, int) override {
        downs.emplace_back(x, y);
        return true;
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

TEST(OverlayDrawing, ShapesColoursAndCornersLandWhereTheirArithmeticPutsThem) {
    EXPECT_THROW(Owner().FillRect(0, 0, 1, 1), NilObjectException) << "drawing before Init";
    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    const std::tuple<const char*, int, std::function<void(Owner&)>, QRect> shapes[] = {
        {"line along the top row", 1, [](Owner& s) { s.DrawLine(0, 0, 30, 0); }, {0, 0, 30, 1}},
        {"line downwards", 1, [](Owner& s) { s.DrawLine(10, 5, 10, 25); }, {9, 5, 2, 20}},
        {"filled rectangle", 1, [](Owner& s) { s.FillRect(10, 20, 30, 40); }, {10, 20, 30, 40}},
        {"rectangle", 3, [](Owner& s) { s.DrawRect(10, 10, 30, 20); }, {10, 9, 31, 21}},
        {"oval", 3, [](Owner& s) { s.DrawOval(10, 10, 30, 20); }, {9, 9, 34, 24}},
        {"filled oval", 1, [](Owner& s) { s.FillOval(10, 10, 30, 20); }, {10, 10, 30, 20}},
        {"round rectangle", 3, [](Owner& s) { s.DrawRoundRect(10, 10, 30, 20, 0, 0); }, {9, 9, 31, 21}},
        {"picture", 1, [&](Owner& s) { s.DrawPicture(picture, 60, 5); }, {60, 5, 3, 2}},
    };
    Owner surface;
    surface.Init(40, 30, 100, 80);
    for (const auto& [name, lineWidth, draw, drawn] : shapes) {
        surface.Clear();
        surface.setLineWidth(lineWidth);
        draw(surface);
        EXPECT_EQ(surface.drawn(), drawn) << name;
    }

    surface.Clear();
    surface.setForeColor(0x3366cc);
    surface.FillRoundRect(10, 20, 40, 30, 12, 4);
    surface.setForeColorTransparency(0);
    surface.FillRect(0, 0, 10, 10);
    surface.DrawWindow();
    const QImage image = surface.grab().toImage().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(image.pixel(30, 30), qRgba(0x33, 0x66, 0xcc, 255));
    EXPECT_EQ(qAlpha(image.pixel(5, 5)), 0);
    // Corners 12 across and 4 high.
    EXPECT_EQ(
        std::tuple(qAlpha(image.pixel(10, 20)), qAlpha(image.pixel(12, 20)), qAlpha(image.pixel(30, 20))),
        std::tuple(0, 0, 255));
    EXPECT_GT(qAlpha(image.pixel(10, 23)), 128);
}

TEST(OverlayDrawing, AnAttachedSurfaceMovesAndGrowsWithItsWindow) {
    QWidget target;
    target.setGeometry(300, 300, 200, 100);
    target.show();
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

    // An owner that takes the press of a moveable surface hears its drag and release where they
    // happen on the surface, which goes along. Each step waits until the last has landed; the last
    // goes along one axis, which is a move too.
    owner.Moveable = true;
    pointer(drawn, XCB_BUTTON_PRESS);
    for (const QPoint to : {QPoint(15, 20), QPoint(25, 20)}) {
        pointer(drawn + to);
        EXPECT_TRUE(QTest::qWaitFor([&] { return owner.geometry().topLeft() == start + to; }));
    }
    pointer(drawn + QPoint(25, 20), XCB_BUTTON_RELEASE);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !owner.ups.empty(); }));
    const std::vector<QPoint> once{{30, 40}};
    EXPECT_EQ(std::tuple(owner.downs, owner.drags, owner.ups),
              std::tuple(once, std::vector<QPoint>(2, {30, 40}), once));
    EXPECT_EQ(owner.draggedTo, start + QPoint(25, 20));
}
