#include "feedback/TransitionCanvas.h"

#include <QPainter>
#include <QTransform>

namespace {
bool isHorizontal(TransitionSide side) {
    return side == TransitionSide::Left || side == TransitionSide::Right;
}

// +1 when the effect moves toward growing coordinates.
double forward(TransitionSide side) {
    return side == TransitionSide::Right || side == TransitionSide::Down ? 1.0 : -1.0;
}
} // namespace

TransitionCanvas::TransitionCanvas(QWidget* window, TransitionEffect effect, TransitionSide side)
    : QWidget(window)
    , m_picture(window->grab())
    , m_effect(effect)
    , m_side(side) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setGeometry(window->rect());
    show();
    raise();
}

void TransitionCanvas::setProgress(double progress) {
    m_progress = progress;
    repaint();
}

void TransitionCanvas::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    switch (m_effect) {
    case TransitionEffect::WarpFade:
        paintWarpFade(painter);
        break;
    case TransitionEffect::Flip:
        paintFlip(painter);
        break;
    case TransitionEffect::Cube:
        paintCube(painter);
        break;
    }
}

// The old picture shrinks toward the side and fades while the new one fades in.
void TransitionCanvas::paintWarpFade(QPainter& painter) const {
    const double w = width();
    const double h = height();
    QPointF anchor(w / 2, h / 2);
    switch (m_side) {
    case TransitionSide::Up:
        anchor.setY(0);
        break;
    case TransitionSide::Down:
        anchor.setY(h);
        break;
    case TransitionSide::Left:
        anchor.setX(0);
        break;
    case TransitionSide::Right:
        anchor.setX(w);
        break;
    }
    painter.setOpacity(m_progress);
    painter.drawPixmap(0, 0, m_picture);

    const double scale = 1.0 - m_progress;
    QTransform warp;
    warp.translate(anchor.x(), anchor.y());
    warp.scale(scale, scale);
    warp.translate(-anchor.x(), -anchor.y());
    painter.setTransform(warp);
    painter.setOpacity(1.0 - m_progress);
    painter.drawPixmap(0, 0, m_picture);
}

// Folds edge-on about the middle in the first half and opens out again in the second.
void TransitionCanvas::paintFlip(QPainter& painter) const {
    const double length = isHorizontal(m_side) ? width() : height();
    const double turn = m_progress < 0.5 ? m_progress * 2.0 : m_progress * 2.0 - 2.0;
    paintTurned(painter, length / 2, forward(m_side) * turn * 90.0, length / 2);
}

// Two faces of a cube share an edge that sweeps across toward the side: the old face turns
// away on one side of it while the new one turns in on the other.
void TransitionCanvas::paintCube(QPainter& painter) const {
    const double length = isHorizontal(m_side) ? width() : height();
    const double away = m_progress * 90.0;
    const double in = (1.0 - m_progress) * 90.0;
    // The perspective of QTransform shrinks a face lying before its hinge for a positive turn,
    // and one lying behind it for a negative turn.
    if (forward(m_side) < 0) {
        const double edge = length * (1.0 - m_progress);
        paintTurned(painter, edge, away, length);
        paintTurned(painter, edge, -in, 0);
    } else {
        const double edge = length * m_progress;
        paintTurned(painter, edge, -away, 0);
        paintTurned(painter, edge, in, length);
    }
}

void TransitionCanvas::paintTurned(QPainter& painter, double at, double degrees, double hingeOffset) const {
    const double w = width();
    const double h = height();
    QTransform turn;
    if (isHorizontal(m_side)) {
        turn.translate(at, h / 2);
        turn.rotate(degrees, Qt::YAxis);
        turn.translate(-hingeOffset, -h / 2);
    } else {
        turn.translate(w / 2, at);
        turn.rotate(degrees, Qt::XAxis);
        turn.translate(-w / 2, -hingeOffset);
    }
    painter.setTransform(turn);
    painter.drawPixmap(0, 0, m_picture);
    painter.resetTransform();
}
