#pragma once

#include <functional>

// True on the thread that runs the windows of a widget application.
bool onGuiThread();

// Runs `work` on the GUI thread at its next turn, from any thread, the GUI thread included, and
// returns at once. Dropped when there is no application, or when its event loop ends first.
void postToGuiThread(std::function<void()> work);
