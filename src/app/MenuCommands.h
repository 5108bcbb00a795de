#pragma once

#include "base/MenuHandlers.h"

#include <QString>

#include <span>

// What an item of the menu bar is, which decides who can make it live.
enum class MenuItemKind {
    Menu,      // a top-level menu
    Separator, // a line between items
    Command,   // live only while a handler for its name is bound
    Quit,      // handled by the toolkit itself, so always live
    Edit,      // acts only through the toolkit's own text fields, never through a handler
};

struct MenuEntry {
    const char* name;   // what handlers are bound by
    const char* parent; // the top-level menu's name; nullptr for a top-level menu
    const char* text;
    const char* shortcut; // in portable key text; empty for none
    MenuItemKind kind;
};

// The whole bar in display order, each item after its menu.
std::span<const MenuEntry> menuBarItems();

// An item is live when a handler for it is bound on the application or on the active window.
bool fMenuItemLive(const MenuEntry& item, const MenuHandlers& application, const MenuHandlers* activeWindow);

// Runs the command of an item: the active window's handler first, then, unless that one took
// it, the application's. False when nobody took it.
bool fDispatchMenuItem(const QString& name, const MenuHandlers& application,
                       const MenuHandlers* activeWindow);
