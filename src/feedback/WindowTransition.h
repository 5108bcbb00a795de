#pragma once

#include <QString>

#include <cstdint>

class QWidget;

// Plays an animated effect on a window and returns when it is over; a window system that cannot
// play it refuses it at no cost, with "CGS Transition Failed ..." only when warnOnFailure is 1.
void fxWindowTransition(QWidget* window, const QString& style, const QString& direction,
                        std::int32_t duration, std::int32_t warnOnFailure);

// The window server's numbers for a style and a direction. A name that matches nothing leaves
// its field as a fresh request holds it.
struct TransitionRequest {
    int type = 0;
    int option = 0;
};
TransitionRequest fTransitionRequest(const QString& style, const QString& direction);
