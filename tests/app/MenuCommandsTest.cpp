#include "app/MenuCommands.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {
const MenuEntry& itemNamed(const char* name) {
    for (const MenuEntry& item : menuBarItems()) {
        if (std::string(item.name) == name) {
            return item;
        }
    }
    throw std::out_of_range(name);
}

// A handler that notes that it ran and answers as told.
MenuHandlers::Handler noting(std::vector<std::string>& calls, std::string who, bool answer) {
    return [&calls, who, answer] {
        calls.push_back(who);
        return answer;
    };
}

TEST(MenuBarTable, EveryItemHangsFromAnEarlierMenuAndNamesAreUnique) {
    std::set<std::string> menus;
    std::set<std::string> names;
    for (const MenuEntry& item : menuBarItems()) {
        EXPECT_TRUE(names.insert(item.name).second) << item.name;
        if (item.kind == MenuItemKind::Menu) {
            EXPECT_EQ(item.parent, nullptr) << item.name;
            menus.insert(item.name);
        } else {
            ASSERT_NE(item.parent, nullptr) << item.name;
            EXPECT_TRUE(menus.contains(item.parent)) << item.name << " comes before its menu " << item.parent;
        }
    }
    EXPECT_EQ(menus.size(), 4u);
}

TEST(MenuItemLive, FollowsTheHandlersOfTheApplicationAndTheActiveWindow) {
    MenuHandlers application;
    application.AddMenuHandler("ToolsShowMainWindow", [] { return true; });
    MenuHandlers mainWindow;
    mainWindow.AddMenuHandler("HelpAbout", [] { return false; });
    const MenuHandlers otherWindow;

    struct Case {
        const char* item;
        const MenuHandlers* active;
        bool live;
    };
    const Case cases[] = {
        {"ToolsShowMainWindow", nullptr, true},            // bound on the application: live with no window
        {"ToolsShowMainWindow", &otherWindow, true},       // ... and behind any window
        {"HelpAbout", &mainWindow, true},                  // bound on the window in front
        {"HelpAbout", &otherWindow, false},                // another window in front
        {"HelpAbout", nullptr, false},                     // the window hidden: nothing active
        {"ToolsCreateSlideshowMovie", &mainWindow, false}, // bound nowhere
        {"FileQuit", nullptr, true},                       // the toolkit's own item
        {"EditCopy", &mainWindow, false},                  // only text fields act on it
        {"UntitledSeparator", &mainWindow, false},
        {"Help", nullptr, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(fMenuItemLive(itemNamed(c.item), application, c.active), c.live)
            << c.item << (c.active == &mainWindow ? " with the main window" : " with another or no window");
    }
}

TEST(DispatchMenuItem, TheWindowGoesFirstAndFalseLetsTheApplicationHaveItsTurn) {
    struct Case {
        const char* title;
        bool windowBinds;
        bool windowAnswer;
        bool applicationBinds;
        std::vector<std::string> calls;
        bool taken;
    };
    const Case cases[] = {
        {"window takes it", true, true, true, {"window"}, true},
        {"window declines", true, false, true, {"window", "application"}, true},
        {"window declines, nobody else", true, false, false, {"window"}, false},
        {"only the application", false, false, true, {"application"}, true},
        {"nobody", false, false, false, {}, false},
    };
    for (const Case& c : cases) {
        std::vector<std::string> calls;
        MenuHandlers window;
        MenuHandlers application;
        if (c.windowBinds) {
            window.AddMenuHandler("HelpAbout", noting(calls, "window", c.windowAnswer));
        }
        if (c.applicationBinds) {
            application.AddMenuHandler("HelpAbout", noting(calls, "application", true));
        }
        EXPECT_EQ(fDispatchMenuItem("HelpAbout", application, &window), c.taken) << c.title;
        EXPECT_EQ(calls, c.calls) << c.title;
    }
}

TEST(DispatchMenuItem, WithNoActiveWindowOnlyTheApplicationIsAsked) {
    std::vector<std::string> calls;
    MenuHandlers application;
    application.AddMenuHandler("ToolsHideMainWindow", noting(calls, "application", true));
    EXPECT_TRUE(fDispatchMenuItem("ToolsHideMainWindow", application, nullptr));
    EXPECT_FALSE(fDispatchMenuItem("HelpAbout", application, nullptr));
    EXPECT_EQ(calls, std::vector<std::string>{"application"});
}
} // namespace
