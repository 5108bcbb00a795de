#include "overlay/WindowFollower.h"

#include <QMoveEvent>
#include <QResizeEvent>

WindowFollower::WindowFollower(QWidget* follower, QWidget* target, bool followSize)
    : QObject(follower)
    , m_follower(follower)
    , m_target(target)
    , m_followSize(followSize) {
    target->installEventFilter(this);
}

bool WindowFollower::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_target && event->type() == QEvent::Move) {
        const auto* move = static_cast<QMoveEvent*>(event);
        m_follower->move(m_follower->pos() + move->pos() - move->oldPos());
    } else if (watched == m_target && event->type() == QEvent::Resize && m_followSize) {
        const auto* resize = static_cast<QResizeEvent*>(event);
        // The first resize of a window that was never shown has no old size to go by.
        if (resize->oldSize().isValid()) {
            m_follower->resize(m_follower->size() + resize->size() - resize->oldSize());
        }
    }
    return false;
}
