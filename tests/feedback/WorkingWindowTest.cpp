#include "base/mCodeBaseGlv.h"
#include "feedback/wWorking.h"

#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QThread>
#include <QWindow>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>

namespace {
constexpr int kWidth = 461;
constexpr int kHeight = 96;

template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

xcb_connection_t* qtConnection() {
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

xcb_atom_t atom(const char* name) {
    xcb_connection_t* connection = qtConnection();
    Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, std::strlen(name), name), nullptr),
        &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::vector<quint32> property32(const QWidget& window, const char* name, xcb_atom_t type) {
    xcb_connection_t* connection = qtConnection();
    Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, static_cast<xcb_window_t>(window.winId()),
                                                atom(name), type, 0, 64),
                               nullptr),
        &std::free);
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* values = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {values, values + xcb_get_property_value_length(reply.get()) / 4};
}

// Dark pixels in a part of the screen: text drawn on the window's light background.
int darkPixels(const QImage& image, const QRect& area) {
    int dark = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            dark += qGray(image.pixel(x, y)) < 110 ? 1 : 0;
        }
    }
    return dark;
}

QImage screenArea(const QRect& area) {
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
        .toImage();
}

class WorkingWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        const QRect main = QGuiApplication::primaryScreen()->geometry();
        mCodeBaseGlv::pMainScreenWidth = main.width();
        mCodeBaseGlv::pMainScreenHeight = main.height();
        m_expected = QRect(main.width() - kWidth - 25, main.height() - kHeight - 25, kWidth, kHeight);
    }
    void TearDown() override {
        QPointer<wWorking> open = &wWorking::instance();
        open->close();
        EXPECT_TRUE(QTest::qWaitFor([&] { return open.isNull(); }, 10000));
    }

    // Puts the message up and runs the event loop until the window says that the work may start.
    static void showMessage(
        const QString& text1, const QString& text2, std::function<void()> then = [] {}) {
        auto shown = std::make_shared<bool>(false);
        mCodeBaseStd::sDisplayWorkingMessage(text1, text2, [shown, then] {
            then();
            *shown = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return *shown; }, 10000));
    }

    QRect m_expected;
};
} // namespace

TEST_F(WorkingWindowTest, IsOnTheScreenWithBothLinesWhenTheWorkMayStart) {
    QImage shown;
    bool exposed = false;
    // Nothing may run between the window coming up and these looks: the caller starts long work.
    showMessage("Creating Movie File ...", "Please Be Patient ...", [&] {
        exposed = wWorking::instance().windowHandle()->isExposed();
        shown = screenArea(m_expected);
    });
    wWorking& window = wWorking::instance();
    ASSERT_TRUE(exposed);

    EXPECT_EQ(window.geometry(), m_expected);
    EXPECT_EQ(window.windowTitle(), "Working ...");
    EXPECT_EQ(window.stt1()->text(), "Creating Movie File ...");
    EXPECT_EQ(window.stt2()->text(), "Please Be Patient ...");
    EXPECT_GT(darkPixels(shown, QRect(20, 19, 243, 20)), 30) << "first line not on the screen";
    EXPECT_GT(darkPixels(shown, QRect(20, 51, 421, 20)), 30) << "second line not on the screen";
    EXPECT_EQ(darkPixels(shown, QRect(20, 40, 421, 10)), 0);

    EXPECT_FALSE(window.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_EQ(window.minimumSize(), window.maximumSize());
    const std::vector<quint32> state = property32(window, "_NET_WM_STATE", XCB_ATOM_ATOM);
    EXPECT_NE(std::find(state.begin(), state.end(), atom("_NET_WM_STATE_ABOVE")), state.end());
    const std::vector<quint32> opacity = property32(window, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL);
    ASSERT_EQ(opacity.size(), 1u);
    EXPECT_NEAR(opacity[0] / double(0xffffffffu), 0.8, 0.01);
}

TEST_F(WorkingWindowTest, ASecondMessageWhileOpenChangesNothing) {
    showMessage("Creating Movie File ...", "Please Be Patient ...");
    wWorking* first = &wWorking::instance();
    bool ended = false;
    mCodeBaseStd::sDisplayWorkingMessage("Archiving ...", "Please Be Patient ...", [&] { ended = true; });
    EXPECT_TRUE(ended) << "the window is up already";
    EXPECT_EQ(&wWorking::instance(), first);
    EXPECT_EQ(first->stt1()->text(), "Creating Movie File ...");
}

TEST_F(WorkingWindowTest, NextMessageAfterACloseFollowsTheFlipInTheSamePlace) {
    showMessage("Creating Movie File ...", "Please Be Patient ...");
    QPointer<wWorking> first = &wWorking::instance();
    first->close();
    EXPECT_TRUE(first->isVisible()) << "the flip plays first";

    // At once, as the movie assembly does, without giving the closed window time to go.
    bool firstGone = false;
    showMessage("Archiving ...", "Please Be Patient ...", [&] { firstGone = first.isNull(); });
    EXPECT_TRUE(firstGone);
    wWorking& next = wWorking::instance();
    EXPECT_TRUE(next.isVisible());
    EXPECT_EQ(next.geometry(), m_expected);
    EXPECT_EQ(next.stt1()->text(), "Archiving ...");
}

TEST_F(WorkingWindowTest, ComesUpOnTheGuiThreadWhenAskedFromAnother) {
    std::atomic<bool> shown{false};
    std::atomic<bool> onGuiThread{false};
    std::thread worker([&] {
        mCodeBaseStd::sDisplayWorkingMessage("Creating Movie File ...", "Please Be Patient ...", [&] {
            onGuiThread = QThread::currentThread() == qApp->thread();
            shown = true;
        });
    });
    worker.join();
    EXPECT_TRUE(QTest::qWaitFor([&] { return shown.load(); }, 10000));
    EXPECT_TRUE(onGuiThread);
    EXPECT_TRUE(wWorking::instance().isVisible());
    EXPECT_EQ(wWorking::instance().stt1()->text(), "Creating Movie File ...");
}

TEST_F(WorkingWindowTest, StaysAboveANormalWindowUnderAWindowManager) {
    QProcess manager;
    manager.start("openbox", {"--sm-disable"});
    if (!manager.waitForStarted(5000)) {
        GTEST_SKIP() << "no openbox to keep windows in order";
    }
    QTest::qWait(500);
    showMessage("Creating Movie File ...", "Please Be Patient ...");
    const QRect shownAt = wWorking::instance().geometry();

    QWidget cover;
    cover.setStyleSheet("background: black");
    cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
    cover.show();
    cover.raise();
    cover.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&cover));
    QTest::qWait(500);
    // The working window's light background still shows where the black window lies under it.
    const QImage area = screenArea(shownAt);
    EXPECT_GT(qGray(area.pixel(shownAt.width() - 10, shownAt.height() / 2)), 150);

    cover.close();
    manager.terminate();
    manager.waitForFinished(3000);
}
