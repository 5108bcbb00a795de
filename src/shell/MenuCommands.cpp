#include "shell/MenuCommands.h"

#include <array>
#include <utility>

namespace {
using enum MenuItemKind;

// Shortcuts use Ctrl where the design had the command key.
constexpr std::array kMenuBar{
    MenuItemSpec{"UntitledMenu2", nullptr, "File", "", Menu},
    MenuItemSpec{"FileCheckForUpdates", "UntitledMenu2", "Check For Updates ...", "", Command},
    MenuItemSpec{"UntitledSeparator", "UntitledMenu2", "-", "", Separator},
    MenuItemSpec{"FileQuit", "UntitledMenu2", "Quit", "Ctrl+Q", Quit},
    MenuItemSpec{"UntitledMenu0", nullptr, "Edit", "", Menu},
    MenuItemSpec{"EditUndo", "UntitledMenu0", "Undo", "Ctrl+Z", Edit},
    MenuItemSpec{"UntitledMenu1", "UntitledMenu0", "-", "", Separator},
    MenuItemSpec{"EditCut", "UntitledMenu0", "Cut", "Ctrl+X", Edit},
    MenuItemSpec{"EditCopy", "UntitledMenu0", "Copy", "Ctrl+C", Edit},
    MenuItemSpec{"EditPaste", "UntitledMenu0", "Paste", "Ctrl+V", Edit},
    MenuItemSpec{"EditClear", "UntitledMenu0", "Clear", "", Edit},
    MenuItemSpec{"ToolsMenu", nullptr, "Tools", "", Menu},
    MenuItemSpec{"ToolsHideMainWindow", "ToolsMenu", "Hide Main Window", "", Command},
    MenuItemSpec{"ToolsShowMainWindow", "ToolsMenu", "Show Main Window", "", Command},
    MenuItemSpec{"UntitledSeparator1", "ToolsMenu", "-", "", Separator},
    MenuItemSpec{"ToolsCreateSlideshowMovie", "ToolsMenu", "Create Slideshow Movie", "", Command},
    MenuItemSpec{"Help", nullptr, "Help", "", Menu},
    MenuItemSpec{"QVTPreferences", "Help", "Preferences", "", Command},
    MenuItemSpec{"HelpAbout", "Help", "About Kestrelview", "", Command},
    MenuItemSpec{"HelpSendFeedback", "Help", "Support Forum", "", Command},
    MenuItemSpec{"UntitledSeparator0", "Help", "-", "", Separator},
    MenuItemSpec{"HelpVisitourWebsite", "Help", "Visit Our Website", "", Command},
};
} // namespace

std::span<const MenuItemSpec> menuBarItems() {
    return kMenuBar;
}

void MenuHandlers::AddMenuHandler(const QString& name, Handler handler) {
    m_handlers[name] = std::move(handler);
}

bool MenuHandlers::has(const QString& name) const {
    return m_handlers.contains(name);
}

std::optional<bool> MenuHandlers::call(const QString& name) const {
    const auto found = m_handlers.find(name);
    if (found == m_handlers.end()) {
        return std::nullopt;
    }
    return found->second();
}

MenuHandlers& applicationMenuHandlers() {
    static MenuHandlers handlers;
    return handlers;
}

bool fMenuItemLive(const MenuItemSpec& item, const MenuHandlers& application,
                   const MenuHandlers* activeWindow) {
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
