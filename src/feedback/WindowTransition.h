#pragma once

#include <QString>

#include <functional>

class QWidget;

// Plays an animated effect on a window and returns at once; `then` runs on the GUI thread when
// the effect is over, or when the window went first. A window system that cannot play it
// refuses it at no cost, with "CGS Transition Failed ..." only when warnOnFailure is 1, and
// `then` runs before the call returns.
void fxWindowTransition(QWidget* window, const QString& style, const QString& direction, int duration,
                        int warnOnFailure, std::function<void()> then = {});

// A transition request's numbers for a style and a direction. A name that matches nothing leaves
// its field as a fresh request holds it.
struct TransitionRequest {
    int type = 0;
    int option = 0;
};
TransitionRequest fTransitionRequest(const QString& style, const QString& direction);
