#include "platform/screen/ScreenList.h"

#include <QGuiApplication>
#include <QScreen>

QRect devicePixels(const QScreen& screen) {
    const QRect logical = screen.geometry();
    const qreal ratio = screen.devicePixelRatio();
    return QRect(qRound(logical.x() * ratio), qRound(logical.y() * ratio), qRound(logical.width() * ratio),
                 qRound(logical.height() * ratio));
}

QList<QRect> screenAreas() {
    QList<QRect> areas;
    QScreen* primary = QGuiApplication::primaryScreen();
    if (primary) {
        areas.append(devicePixels(*primary));
    }
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screen != primary) {
            areas.append(devicePixels(*screen));
        }
    }
    return areas;
}
