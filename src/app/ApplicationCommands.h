#pragma once

class Menu;
class MenuHandlers;
class wMain;

// The two commands that the application holds rather than the main window, so that they work
// while that window is hidden.
void _ApplicationAddMenuHandlers(MenuHandlers& handlers, wMain& window);
bool _ToolsShowMainWindow_Action(wMain& window);
bool _ToolsHideMainWindow_Action(wMain& window);
// Opens the history window, or brings it to the front; it does not pause the schedule.
bool _ToolsHistory_Action();

// Hangs the program's own parts on the main window: the menu bar and tray menu, Quit, the tray's
// own commands and its tooltip.
void connectMainWindow(wMain& window, Menu& menu);
