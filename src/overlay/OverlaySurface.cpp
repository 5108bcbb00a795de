#include "overlay/OverlaySurface.h"

#include "overlay/WindowFollower.h"

#include <QBitmap>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QWindow>

#include <algorithm>

namespace {
// Every pixel that is not wholly transparent: those of a premultiplied picture are all zero, and
// the bitmap that marks them leaves the others to the region.
QRegion drawnPixels(const QImage& picture) {
    const QRegion drawn(QBitmap::fromImage(picture.createMaskFromColor(0, Qt::MaskInColor)));
    // An empty mask would mean no mask at all; a pixel outside the window shows nothing.
    return drawn.isEmpty() ? QRegion(-1, -1, 1, 1) : drawn;
}
} // namespace

OverlaySurface::OverlaySurface()
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
}

int OverlaySurface::Create(int left, int top, int width, int height) {
    if (width <= 0 || height <= 0) {
        return -1;
    }
    setGeometry(left, top, width, height);
    winId();
    m_created = windowHandle() != nullptr;
    return m_created ? 0 : -1;
}

void OverlaySurface::InstallEventHandler() {
    m_handlesEvents = true;
    setMouseTracking(true);
}

void OverlaySurface::AttachToWindow(QWidget* target, bool liveResize) {
    new WindowFollower(this, target, liveResize);
}

void OverlaySurface::Show() {
    if (m_created) {
        setMask(drawnPixels(m_shown));
        show();
    }
}

std::unique_ptr<OverlayContext> OverlaySurface::Context() {
    const QSize size = m_created ? this->size() : QSize();
    return std::make_unique<OverlayContext>(size, [surface = QPointer(this)](const QImage& picture) {
        if (surface) {
            surface->present(picture);
        }
    });
}

void OverlaySurface::setTransparency(int transparency) {
    m_transparency = transparency;
    setWindowOpacity(std::clamp(transparency, 0, 255) / 255.0);
}

void OverlaySurface::present(const QImage& picture) {
    m_shown = picture;
    setMask(drawnPixels(m_shown));
    update();
}

void OverlaySurface::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(0, 0, m_shown);
}

void OverlaySurface::press(QMouseEvent* event, int clicks) {
    if (!m_handlesEvents) {
        return;
    }
    m_lastAt = event->globalPosition();
    m_clicks = clicks;
    event->setAccepted(Event_MouseDown(m_lastAt, event->button(), clicks, event->modifiers().toInt()));
}

void OverlaySurface::mousePressEvent(QMouseEvent* event) {
    press(event, 1);
}

void OverlaySurface::mouseDoubleClickEvent(QMouseEvent* event) {
    press(event, 2);
}

void OverlaySurface::mouseMoveEvent(QMouseEvent* event) {
    if (!m_handlesEvents) {
        return;
    }
    const QPointF at = event->globalPosition();
    if (event->buttons() == Qt::NoButton) {
        Event_MouseMoved(at, event->modifiers().toInt());
        return;
    }
    const QPointF moved = at - m_lastAt;
    m_lastAt = at;
    Event_MouseDragged(at, event->buttons().toInt(), moved.x(), moved.y(), event->modifiers().toInt());
}

void OverlaySurface::mouseReleaseEvent(QMouseEvent* event) {
    if (m_handlesEvents) {
        Event_MouseUp(event->globalPosition(), event->button(), m_clicks, event->modifiers().toInt());
    }
}
