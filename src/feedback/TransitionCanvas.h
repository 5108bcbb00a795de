#pragma once

#include "feedback/WindowTransition.h"

#include <QPixmap>
#include <QWidget>

// Covers a window for the length of a transition and paints the window's own picture through
// the effect, from the whole window (progress 0) through the effect and back to the whole
// window (progress 1), which is the window's new state.
class TransitionCanvas final : public QWidget {
public:
    TransitionCanvas(QWidget* window, TransitionEffect effect, TransitionSide side);

    void setProgress(double progress);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintWarpFade(QPainter& painter) const;
    void paintFlip(QPainter& painter) const;
    void paintCube(QPainter& painter) const;
    // Turns the picture by `degrees` about the line `at` pixels along the effect's axis.
    void paintTurned(QPainter& painter, double at, double degrees, double hingeOffset) const;

    QPixmap m_picture;
    TransitionEffect m_effect;
    TransitionSide m_side;
    double m_progress = 0.0;
};
