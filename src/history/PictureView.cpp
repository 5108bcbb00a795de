#include "history/PictureView.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPixmap>

PictureView::PictureView(QWidget* parent)
    : QScrollArea(parent)
    , m_canvas(new QLabel) {
    setObjectName("PictureView");
    m_canvas->setAlignment(Qt::AlignCenter);
    m_canvas->setBackgroundRole(QPalette::Dark);
    setBackgroundRole(QPalette::Dark);
    setAlignment(Qt::AlignCenter);
    setWidget(m_canvas);
    setFocusPolicy(Qt::StrongFocus);
}

void PictureView::showPicture(const QImage& picture) {
    m_picture = picture;
    render();
}

void PictureView::setFit(bool fit) {
    m_fit = fit;
    render();
}

void PictureView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        emit stepRun(event->key() == Qt::Key_Left ? -1 : 1);
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
        emit stepPicture(event->key() == Qt::Key_Up ? -1 : 1);
        return;
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit leave();
        return;
    case Qt::Key_1:
        setFit(false);
        return;
    case Qt::Key_0:
        setFit(true);
        return;
    default:
        QScrollArea::keyPressEvent(event);
    }
}

void PictureView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    if (m_fit) {
        render();
    }
}

void PictureView::render() {
    setWidgetResizable(m_fit);
    if (m_picture.isNull()) {
        m_canvas->clear();
        return;
    }
    if (m_fit) {
        // Down to the view's size; a smaller picture stays as it is.
        const QSize room = viewport()->size();
        const bool larger = m_picture.width() > room.width() || m_picture.height() > room.height();
        m_canvas->setPixmap(QPixmap::fromImage(
            larger ? m_picture.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation) : m_picture));
    } else {
        m_canvas->setPixmap(QPixmap::fromImage(m_picture));
        m_canvas->adjustSize();
    }
}
