#pragma once

class wMain;

// The two commands that the application holds rather than the main window, so that they work
// while that window is hidden.
void _ApplicationAddMenuHandlers();
bool _ToolsShowMainWindow_Action();
bool _ToolsHideMainWindow_Action();

// Hangs the program's own parts on the main window: the menu bar and tray menu, Quit, the tray's
// own commands, and the about window's command.
void connectMainWindow(wMain& window);
