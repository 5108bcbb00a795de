#pragma once

#include <QString>

#include <functional>
#include <map>
#include <optional>
#include <span>

// What an item of the menu bar is, which decides who can make it live.
enum class MenuItemKind {
    Menu,      // a top-level menu
    Separator, // a line between items
    Command,   // live only while a handler for its name is bound
    Quit,      // handled by the toolkit itself, so always live
    Edit,      // acts only through the toolkit's own text fields, never through a handler
};

struct MenuItemSpec {
    const char* name;   // what handlers are bound by
    const char* parent; // the top-level menu's name; nullptr for a top-level menu
    const char* text;
    const char* shortcut; // in portable key text; empty for none
    MenuItemKind kind;
};

// The whole bar in display order, each item after its menu.
std::span<const MenuItemSpec> menuBarItems();

inline const QString kSupportForumUrl = QStringLiteral("http://www.kestrelview.com/forum/");
inline const QString kWebSiteUrl = QStringLiteral("http://www.kestrelview.com/");

// Commands bound by item name on the application or on one window. A handler's result says
// whether it took the command; false lets the application's handler have a turn.
class MenuHandlers {
public:
    using Handler = std::function<bool()>;

    void AddMenuHandler(const QString& name, Handler handler);
    bool has(const QString& name) const;
    // Empty when nothing is bound; otherwise the handler's own result.
    std::optional<bool> call(const QString& name) const;

private:
    std::map<QString, Handler> m_handlers;
};

// A window that binds menu commands while it is the active window.
class MenuHandlerHost {
public:
    virtual const MenuHandlers& menuHandlers() const = 0;

protected:
    ~MenuHandlerHost() = default;
};

// The handlers bound on the application object; GUI thread only.
MenuHandlers& applicationMenuHandlers();

// An item is live when a handler for it is bound on the application or on the active window.
bool fMenuItemLive(const MenuItemSpec& item, const MenuHandlers& application,
                   const MenuHandlers* activeWindow);

// Runs the command of an item: the active window's handler first, then, unless that one took
// it, the application's. False when nobody took it.
bool fDispatchMenuItem(const QString& name, const MenuHandlers& application,
                       const MenuHandlers* activeWindow);
