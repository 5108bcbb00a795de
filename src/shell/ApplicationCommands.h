#pragma once

// The two commands that the application holds rather than the main window, so that they work
// while that window is hidden.
void _ApplicationAddMenuHandlers();
bool _ToolsShowMainWindow_Action();
bool _ToolsHideMainWindow_Action();
