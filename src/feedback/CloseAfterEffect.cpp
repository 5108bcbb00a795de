#include "feedback/CloseAfterEffect.h"

#include <QCloseEvent>
#include <QPointer>
#include <QWidget>

#include <utility>

CloseAfterEffect::CloseAfterEffect(QWidget& window, TransitionEffect effect, TransitionSide side)
    : m_window(window)
    , m_effect(effect)
    , m_side(side) {}

void CloseAfterEffect::handle(QCloseEvent* event, const std::function<void()>& starting,
                              std::function<void()> ending) {
    if (!m_started) {
        m_started = true;
        if (starting) {
            starting();
        }
        // A refused effect ends inside this close event, where a close does nothing: the event
        // below is accepted then.
        fxWindowTransition(&m_window, m_effect, m_side, 1, 0,
                           [this, window = QPointer<QWidget>(&m_window), ending = std::move(ending)] {
                               if (window) {
                                   m_played = true;
                                   if (ending) {
                                       ending();
                                   }
                                   window->close();
                               }
                           });
    }
    event->setAccepted(m_played);
}
