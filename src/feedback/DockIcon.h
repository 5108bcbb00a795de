#pragma once

#include <QRect>
#include <QSize>

namespace mCodeBaseStd {
// Puts the note mark on the application's taskbar icon.
void sDrawNoteIconDock();
// Gives the taskbar icon back its plain look.
void sResetDockIcon();
} // namespace mCodeBaseStd

// Where the note mark goes on an icon of `iconSize`: 15,16 on a 128-pixel tile, scaled, at the
// style's message box icon size.
QRect noteMarkRect(QSize iconSize);
