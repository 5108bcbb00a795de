#include "feedback/DockIcon.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace {
xcb_connection_t* qtConnection() {
    return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// The largest picture in the window's _NET_WM_ICON, which is what taskbars show. Read on Qt's own
// connection so that the request comes after everything Qt has sent.
QImage taskbarIcon(const QWidget& window) {
    xcb_connection_t* connection = qtConnection();
    const char name[] = "_NET_WM_ICON";
    std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr),
        &std::free);
    if (!atom) {
        return {};
    }
    std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, static_cast<xcb_window_t>(window.winId()),
                                                atom->atom, XCB_ATOM_CARDINAL, 0, 1u << 22),
                               nullptr),
        &std::free);
    if (!reply) {
        return {};
    }
    const auto* data = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    const int count = xcb_get_property_value_length(reply.get()) / 4;
    QImage largest;
    for (int at = 0; at + 2 <= count;) {
        const int w = int(data[at]);
        const int h = int(data[at + 1]);
        if (w <= 0 || h <= 0 || at + 2 + w * h > count) {
            break;
        }
        if (w * h > largest.width() * largest.height()) {
            largest = QImage(w, h, QImage::Format_ARGB32);
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    largest.setPixel(x, y, data[at + 2 + y * w + x]);
                }
            }
        }
        at += 2 + w * h;
    }
    return largest;
}

QIcon plainIcon() {
    QPixmap pixmap(128, 128);
    pixmap.fill(QColor(30, 120, 60));
    QPainter painter(&pixmap);
    painter.fillRect(64, 64, 64, 64, QColor(200, 40, 40));
    return QIcon(pixmap);
}

struct PixelDifference {
    int inside = 0;
    int outside = 0;
};

PixelDifference compare(const QImage& a, const QImage& b, const QRect& mark) {
    PixelDifference difference;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) {
                ++(mark.contains(x, y) ? difference.inside : difference.outside);
            }
        }
    }
    return difference;
}

class DockIconTest : public ::testing::Test {
protected:
    void SetUp() override {
        QApplication::setWindowIcon(plainIcon());
        m_window.resize(200, 193);
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        m_plain = taskbarIcon(m_window);
        ASSERT_FALSE(m_plain.isNull());
    }
    void TearDown() override { mCodeBaseStd::sResetDockIcon(); }

    QWidget m_window;
    QImage m_plain;
};
} // namespace

TEST_F(DockIconTest, MarkCoversOnlyItsPlaceAndResetGivesThePlainIconBack) {
    const QRect mark = noteMarkRect(m_plain.size());
    EXPECT_EQ(mark.topLeft(), QPoint(15, 16));

    mCodeBaseStd::sDrawNoteIconDock();
    const QImage marked = taskbarIcon(m_window);
    ASSERT_EQ(marked.size(), m_plain.size());
    const PixelDifference difference = compare(m_plain, marked, mark);
    EXPECT_GT(difference.inside, mark.width() * mark.height() / 4) << "no note icon where the mark goes";
    EXPECT_EQ(difference.outside, 0);

    // Twice looks like once, and the reset still finds the plain icon under both.
    mCodeBaseStd::sDrawNoteIconDock();
    EXPECT_EQ(taskbarIcon(m_window), marked);
    mCodeBaseStd::sResetDockIcon();
    EXPECT_EQ(taskbarIcon(m_window), m_plain);
}

TEST_F(DockIconTest, ResetWithoutMarkLeavesTheIconAlone) {
    mCodeBaseStd::sResetDockIcon();
    EXPECT_EQ(taskbarIcon(m_window), m_plain);
}
