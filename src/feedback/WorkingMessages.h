#pragma once

#include <QString>

#include <functional>

// The working window's messages and closes take their turns in the order they were asked for,
// each once the one before has finished: a message waits for a window flipping shut, and a close
// takes down the message asked for before it, also one that is not on the screen yet. Both return
// at once, from any thread.
namespace mCodeBaseStd {
// Puts up the working window with two lines; `then` runs on the GUI thread when the window is on
// the screen and painted, which is when the long work may start. While a window is up, only the
// taskbar mark shows the call.
void sDisplayWorkingMessage(const QString& text1, const QString& text2, std::function<void()> then = {});
} // namespace mCodeBaseStd

// Takes the working window down, whether it is open or not; `then` runs on the GUI thread once no
// working window is left.
void closeWorkingWindow(std::function<void()> then = {});
