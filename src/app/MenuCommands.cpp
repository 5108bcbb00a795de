#include "app/MenuCommands.h"

#include <array>

namespace {
using enum MenuItemKind;

// Shortcuts are written with Ctrl, the command key of the desktops the program runs on.
constexpr std::array kMenuBar{
    MenuEntry{"UntitledMenu2", nullptr, "File", "", Menu},
    MenuEntry{"FileCheckForUpdates", "UntitledMenu2", "Check For Updates ...", "", Command},
    MenuEntry{"UntitledSeparator", "UntitledMenu2", "-", "", Separator},
    MenuEntry{"FileQuit", "UntitledMenu2", "Quit", "Ctrl+Q", Quit},
    MenuEntry{"UntitledMenu0", nullptr, "Edit", "", Menu},
    MenuEntry{"EditUndo", "UntitledMenu0", "Undo", "Ctrl+Z", Edit},
    MenuEntry{"UntitledMenu1", "UntitledMenu0", "-", "", Separator},
    MenuEntry{"EditCut", "UntitledMenu0", "Cut", "Ctrl+X", Edit},
    MenuEntry{"EditCopy", "UntitledMenu0", "Copy", "Ctrl+C", Edit},
    MenuEntry{"EditPaste", "UntitledMenu0", "Paste", "Ctrl+V", Edit},
    MenuEntry{"EditClear", "UntitledMenu0", "Clear", "", Edit},
    MenuEntry{"ToolsMenu", nullptr, "Tools", "", Menu},
    MenuEntry{"ToolsHideMainWindow", "ToolsMenu", "Hide Main Window", "", Command},
    MenuEntry{"ToolsShowMainWindow", "ToolsMenu", "Show Main Window", "", Command},
    MenuEntry{"UntitledSeparator1", "ToolsMenu", "-", "", Separator},
    MenuEntry{"ToolsCreateSlideshowMovie", "ToolsMenu", "Create Slideshow Movie", "", Command},
    MenuEntry{"ToolsHistory", "ToolsMenu", "History ...", "", Command},
    MenuEntry{"Help", nullptr, "Help", "", Menu},
    MenuEntry{"QVTPreferences", "Help", "Preferences", "", Command},
    MenuEntry{"HelpAbout", "Help", "About Kestrelview", "", Command},
    MenuEntry{"HelpSendFeedback", "Help", "Support Forum", "", Command},
    MenuEntry{"UntitledSeparator0", "Help", "-", "", Separator},
    MenuEntry{"HelpVisitourWebsite", "Help", "Visit Our Website", "", Command},
};
} // namespace

std::span<const MenuEntry> menuBarItems() {
    return kMenuBar;
}

bool fMenuItemLive(const MenuEntry& item, const MenuHandlers& application, const MenuHandlers* activeWindow) {
    switch (item.kind) {
    case Menu:
    case Quit:
        return true;
    case Separator:
        return false;
    case Edit:
        // The bar lives in the main window, which has no text field; the settings window's
        // fields take these keys themselves.
        return false;
    case Command:
        break;
    }
    const QString name = QString::fromLatin1(item.name);
    return application.has(name) || (activeWindow != nullptr && activeWindow->has(name));
}

bool fDispatchMenuItem(const QString& name, const MenuHandlers& application,
                       const MenuHandlers* activeWindow) {
    if (activeWindow != nullptr && activeWindow->call(name).value_or(false)) {
        return true;
    }
    return application.call(name).value_or(false);
}
