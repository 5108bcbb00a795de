#pragma once

namespace mCodeBaseStd {
// Puts the note mark on the application's taskbar icon.
void sDrawNoteIconDock();
// Gives the taskbar icon back its plain look.
void sResetDockIcon();
} // namespace mCodeBaseStd
