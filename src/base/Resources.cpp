#include "base/Resources.h"

#include "platform/FolderItem.h"

#include <QImage>

namespace {
QPixmap load(QPixmap& cache, const char* fileName) {
    if (cache.isNull()) {
        cache.load(platform::resourcesFolder() + '/' + fileName);
    }
    return cache;
}

// The mask is black where the logo shows and white where the desktop shows through.
QPixmap masked(const QPixmap& logo, const QPixmap& mask) {
    if (mask.isNull()) {
        return logo;
    }
    QImage alpha = mask.toImage().convertToFormat(QImage::Format_Grayscale8).scaled(logo.size());
    alpha.invertPixels();
    QImage image = logo.toImage().convertToFormat(QImage::Format_ARGB32);
    image.setAlphaChannel(alpha);
    return QPixmap::fromImage(image);
}
} // namespace

QPixmap NewKestrelviewLogo() {
    static QPixmap logo;
    if (logo.isNull()) {
        QPixmap plain;
        load(plain, "NewKestrelviewLogo.png");
        if (!plain.isNull()) {
            logo = masked(plain, NewKestrelviewLogoMask());
        }
    }
    return logo;
}

QPixmap NewKestrelviewLogoMask() {
    static QPixmap mask;
    return load(mask, "NewKestrelviewLogoMask.png");
}

QPixmap white() {
    static QPixmap picture;
    return load(picture, "white.jpg");
}
