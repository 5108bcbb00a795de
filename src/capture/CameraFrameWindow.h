#pragma once

#include "platform/Picture.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

class Clock;

// A dialog's or a tool window's frame has only a close box of its own.
inline constexpr Qt::WindowFlags kFrameWindowButtons =
    Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint;

// Shows one camera frame for three seconds and writes it, at full size, when it closes, however
// that comes about: its timer, the user's close button, or the end of the program.
class CameraFrameWindow : public QWidget {
    Q_OBJECT

public:
    // GUI thread. The window sizes itself to the frame and the main screen, and deletes itself
    // once closed.
    CameraFrameWindow(Picture frame, Qt::WindowFlags kind, const Clock& clock);

    const Picture& Pic() const { return m_Pic; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void sizeToFrame();
    void timTimer1_Action();

    const Clock& m_clock;
    Picture m_Pic;
    QImage m_view; // m_Pic's pixels, for painting without a copy
    QTimer m_timTimer1;
    bool m_saved = false;
};
