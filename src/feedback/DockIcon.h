#pragma once

#include <QRect>
#include <QSize>
#include <QString>

class QMenu;

namespace mCodeBaseStd {
// Puts the note mark on the application's taskbar icon.
void sDrawNoteIconDock();
// Gives the taskbar icon back its plain look.
void sResetDockIcon();
} // namespace mCodeBaseStd

// Where the note mark goes on an icon of `iconSize`: 15,16 on a 128-pixel tile, scaled, at the
// style's message box icon size.
QRect noteMarkRect(QSize iconSize);

// Gives the tray icon a menu of its own, so that the program stays reachable with its windows
// hidden. Without a tray on the desktop there is nowhere to put it, and nothing happens.
void setDockMenu(QMenu* menu);
// What the tray icon says when the pointer rests on it.
void setDockToolTip(const QString& text);
QString dockToolTip();
