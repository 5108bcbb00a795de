#pragma once

#include "feedback/WindowTransition.h"

#include <functional>

class QCloseEvent;
class QWidget;

// Holds a window's close until its closing effect has played: the first close starts the effect
// and is refused, and once the effect is over the window closes for real. Where the effect is
// refused the first close goes through at once. A member of the window it closes.
class CloseAfterEffect {
public:
    CloseAfterEffect(QWidget& window, TransitionEffect effect, TransitionSide side);

    // From the window's closeEvent: accepts the event once the effect has played. `starting` runs
    // as the effect starts, `ending` when it is over, before the real close.
    void handle(QCloseEvent* event, const std::function<void()>& starting = {},
                std::function<void()> ending = {});
    // Playing or played: the window is on its way out.
    bool started() const { return m_started; }

private:
    QWidget& m_window;
    TransitionEffect m_effect;
    TransitionSide m_side;
    bool m_started = false;
    bool m_played = false;
};
