// The X server's own accounts of the person at the machine: its idle counter, fed by real input
// through XTest, and the window that the window manager's root property names as active.
#include "platform/presence/XcbFocusWatcher.h"
#include "platform/presence/XcbIdleWatcher.h"
#include "platform/screen/XcbReply.h"

#include <QSignalSpy>
#include <QTest>

#include <xcb/xtest.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace std::chrono_literals;

namespace {
TEST(XcbIdleWatcher, AwayAfterTheTimeWithoutInputAndBackAtTheFirstMotion) {
    XcbConnection display = connectToDisplay(), input = connectToDisplay();
    ASSERT_TRUE(display && input && hasIdleCounter(display.get()));
    XcbIdleWatcher watcher(std::move(display));
    const QSignalSpy changes(&watcher, &IdleWatcher::awayChanged);
    watcher.setAwayAfter(2s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return watcher.away(); }, 10000));
    xcb_test_fake_input(input.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, rootWindow(input.get()), 5, 5,
                        0);
    xcb_flush(input.get());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !watcher.away(); }, 5000)) << "seen within a second or two";
    watcher.setAwayAfter(0s);
    EXPECT_EQ(changes.count(), 2);
}

// What a window manager does: names a window as active on the root, and the window's properties.
struct Desktop {
    void set(xcb_window_t window, const char* name, const char* type, const QByteArray& value,
             int format = 8) {
        xcb_change_property(c.get(), XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), format,
                            value.size() * 8 / format, value.constData());
        xcb_flush(c.get());
    }
    xcb_atom_t atom(const char* name) const {
        const ReplyPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(c.get(), xcb_intern_atom(c.get(), 0, std::strlen(name), name), nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    void activate(xcb_window_t window) {
        set(rootWindow(c.get()), "_NET_ACTIVE_WINDOW", "WINDOW",
            QByteArray(reinterpret_cast<char*>(&window), 4), 32);
    }
    XcbConnection c = connectToDisplay();
};

TEST(XcbFocusWatcher, FollowsTheActiveWindowItsClassAndItsTitle) {
    Desktop desktop;
    ASSERT_TRUE(desktop.c);
    const xcb_window_t window = xcb_generate_id(desktop.c.get());
    const xcb_window_t root = rootWindow(desktop.c.get());
    xcb_create_window(desktop.c.get(), 0, window, root, 0, 0, 10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, 0, 0,
                      nullptr);
    desktop.set(window, "WM_CLASS", "STRING", QByteArray("vault\0Vaultkeeper\0", 18));
    desktop.set(window, "WM_NAME", "STRING", "Unlock");
    XcbFocusWatcher watcher(connectToDisplay());
    desktop.activate(window);
    const auto focused = [&](const char* windowClass, const char* title) {
        return QTest::qWaitFor(
            [&] {
                return watcher.focused() == FocusWatcher::Window{windowClass, title};
            },
            5000);
    };
    EXPECT_TRUE(focused("vault;Vaultkeeper", "Unlock"));
    desktop.set(window, "_NET_WM_NAME", "UTF8_STRING", "Entry – Bank");
    EXPECT_TRUE(focused("vault;Vaultkeeper", "Entry – Bank")) << "the UTF-8 title before the old one";
    desktop.activate(XCB_WINDOW_NONE);
    EXPECT_TRUE(focused("", ""));
}
} // namespace
