#include "platform/screen/ScreenList.h"

#include "platform/screen/RandrMonitors.h"

#include <QGuiApplication>
#include <QScreen>

namespace {
// Where the window system names no monitor, as on Wayland, Qt's geometry is the desktop's layout:
// a screen of scale 2 covers twice its size in pixels.
QRect atScale(const QScreen& screen, qreal ratio) {
    const QRectF logical = screen.geometry();
    return QRectF(logical.topLeft() * ratio, logical.size() * ratio).toRect();
}

QList<QScreen*> primaryFirst() {
    QList<QScreen*> screens = QGuiApplication::screens();
    if (QScreen* primary = QGuiApplication::primaryScreen(); screens.removeOne(primary)) {
        screens.prepend(primary);
    }
    return screens;
}
} // namespace

QRect devicePixels(const QScreen& screen) {
    return randrMonitors().value(screen.name(), atScale(screen, screen.devicePixelRatio()));
}

QList<QRect> screenAreas() {
    const QList<QScreen*> screens = primaryFirst();
    // A picture of the whole desktop is as fine as its finest screen.
    qreal finest = 1;
    for (const QScreen* screen : screens) {
        finest = std::max(finest, screen->devicePixelRatio());
    }
    const QHash<QString, QRect> monitors = randrMonitors();
    QList<QRect> areas;
    for (const QScreen* screen : screens) {
        areas.append(monitors.value(screen->name(), atScale(*screen, finest)));
    }
    return areas;
}
