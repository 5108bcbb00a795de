#pragma once

#include <QString>

#include <functional>
#include <optional>

class QWidget;

// The effects, and the side an effect moves toward.
enum class TransitionEffect { WarpFade, Flip, Cube };
enum class TransitionSide { Up, Down, Left, Right };

// Plays an animated effect on a window and returns at once; `then` runs on the GUI thread when
// the effect is over, or when the window went first. A window system that cannot play it
// refuses it at no cost, with "CGS Transition Failed ..." only when warnOnFailure is 1, and
// `then` runs before the call returns.
void fxWindowTransition(QWidget* window, TransitionEffect effect, TransitionSide side, int duration,
                        int warnOnFailure, std::function<void()> then = {});

// The same, named in the program's words ("Flip", "Up"), letter case aside. A style that names no
// effect is refused; a direction that names no side moves down, as a fresh request does.
void fxWindowTransition(QWidget* window, const QString& style, const QString& direction, int duration,
                        int warnOnFailure, std::function<void()> then = {});
