#include "overlay/EasyOverlayWindow.h"

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace {
// The pointer as the user moves it, through the X server, the window manager and Qt: motion to
// a point, or a press or release of the first button.
void pointer(std::uint8_t type, QPoint at = {}) {
    static const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    xcb_test_fake_input(connection.get(), type, type == XCB_MOTION_NOTIFY ? 0 : 1, XCB_CURRENT_TIME, root,
                        static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 0);
    xcb_flush(connection.get());
}

// An owner that keeps what it hears.
class Owner final : public EasyOverlayWindow {
public:
    bool takesPress = false;
    std::vector<QPoint> downs, drags, ups;
    std::optional<QPoint> draggedTo;

protected:
    bool MouseDown(int x, int y, int, int, int) override {
        downs.emplace_back(x, y);
        return takesPress;
    }
    void MouseDrag(int x, int y, int, int) override { drags.emplace_back(x, y); }
    void MouseUp(int x, int y, int, int, int) override { ups.emplace_back(x, y); }
    void WindowDragAction(int left, int top) override { draggedTo = QPoint(left, top); }
};

QRgb onScreen(QPoint at) {
    return QGuiApplication::primaryScreen()->grabWindow(0, at.x(), at.y(), 1, 1).toImage().pixel(0, 0);
}

class OverlaySurfaceTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_manager = std::make_unique<QProcess>();
        s_manager->start("openbox", {"--sm-disable"});
        ASSERT_TRUE(s_manager->waitForStarted(5000)) << "openbox keeps the windows in order";
    }
    static void TearDownTestSuite() { s_manager.reset(); }

    // A surface of 120 by 80 whose left half is drawn in red.
    void SetUp() override {
        owner.Init(200, 150, 120, 80);
        owner.setForeColor(0xff0000);
        owner.FillRect(0, 0, 60, 80);
        owner.DrawWindow();
        ASSERT_TRUE(QTest::qWaitFor([&] { return onScreen(start + kDrawn) == kRed; }, 5000));
        ASSERT_EQ(owner.geometry().topLeft(), start);
    }

    // Presses in the drawn half and drags the pointer by each step in turn, waiting until
    // `settled` holds for the distance so far, then lets go where it ends.
    QPoint dragBy(const std::vector<QPoint>& steps, const std::function<bool(QPoint)>& settled) {
        const QPoint pressedAt = start + kDrawn;
        pointer(XCB_MOTION_NOTIFY, pressedAt);
        pointer(XCB_BUTTON_PRESS);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !owner.downs.empty(); }, 5000));
        QPoint moved;
        for (const QPoint step : steps) {
            moved += step;
            pointer(XCB_MOTION_NOTIFY, pressedAt + moved);
            // The next step goes from where this one has put the surface.
            EXPECT_TRUE(QTest::qWaitFor([&] { return settled(moved); }, 5000));
        }
        pointer(XCB_BUTTON_RELEASE);
        return moved;
    }

    static inline std::unique_ptr<QProcess> s_manager;
    static constexpr QPoint kDrawn{30, 40};
    static constexpr QRgb kRed = qRgb(255, 0, 0);
    Owner owner;
    const QPoint start{200, 150};
};
} // namespace

TEST_F(OverlaySurfaceTest, FloatsAboveANormalWindowAndShowsItOnlyWhereDrawn) {
    QWidget cover;
    cover.setStyleSheet("background: white");
    cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
    cover.show();
    cover.raise();
    cover.activateWindow();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return onScreen(start + QPoint(90, 40)) == qRgb(255, 255, 255); }, 5000));
    // The window manager has the last word on the order.
    EXPECT_TRUE(QTest::qWaitFor([&] { return onScreen(start + kDrawn) == kRed; }, 2000));
}

TEST_F(OverlaySurfaceTest, AMoveableSurfaceFollowsAPressTheOwnerDidNotTakeAndTheOwnerHearsNothing) {
    owner.Moveable = true;
    const QPoint moved = dragBy({{10, 0}, {15, 20}},
                                [&](QPoint moved) { return owner.geometry().topLeft() == start + moved; });
    QTest::qWait(200); // the release, which must not reach the owner
    EXPECT_EQ(owner.downs, std::vector<QPoint>{kDrawn});
    EXPECT_TRUE(owner.drags.empty());
    EXPECT_TRUE(owner.ups.empty());
    EXPECT_EQ(owner.draggedTo, start + moved);
}

TEST_F(OverlaySurfaceTest, AnOwnerThatTakesThePressHearsItsDragAndReleaseOnTheSurface) {
    owner.takesPress = true;
    dragBy({{10, 5}, {20, -15}},
           [&](QPoint moved) { return !owner.drags.empty() && owner.drags.back() == kDrawn + moved; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !owner.ups.empty(); }, 5000));
    EXPECT_EQ(owner.ups, std::vector<QPoint>{QPoint(60, 30)});
    EXPECT_EQ(owner.geometry().topLeft(), start);
    EXPECT_FALSE(owner.draggedTo);
}
