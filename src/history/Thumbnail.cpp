#include "history/Thumbnail.h"

#include "history/ThumbnailFile.h"
#include "platform/jpeg/JpegReader.h"

#include <QFileInfo>

namespace {
constexpr int kEighths = 8;

QSize eighthOf(QSize full, int eighths) {
    // As libjpeg rounds its output up.
    return QSize((full.width() * eighths + kEighths - 1) / kEighths,
                 (full.height() * eighths + kEighths - 1) / kEighths);
}

QImage decodeThumbnail(const QString& picture) {
    const std::optional<JpegPicture> decoded = readJpeg(picture, thumbnailDecodeSize);
    if (!decoded) {
        return {};
    }
    const Picture& pixels = decoded->pixels;
    // Bgrx32 is the layout of Format_RGB32; the copy leaves the decoder's buffer behind.
    QImage image =
        QImage(pixels.bits, pixels.width, pixels.height, pixels.strideBytes, QImage::Format_RGB32).copy();
    if (image.width() > kThumbnailBox.width() || image.height() > kThumbnailBox.height()) {
        image = image.scaled(kThumbnailBox, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    return image;
}
} // namespace

QSize thumbnailDecodeSize(QSize full) {
    for (int eighths = kEighths; eighths > 1; --eighths) {
        const QSize size = eighthOf(full, eighths);
        if (size.width() <= kThumbnailBox.width() && size.height() <= kThumbnailBox.height()) {
            return size;
        }
    }
    return eighthOf(full, 1);
}

QImage loadThumbnail(const QString& picture) {
    const qint64 mtimeSec = QFileInfo(picture).lastModified().toSecsSinceEpoch();
    if (std::optional<QImage> cached = readThumbnailFile(picture, mtimeSec)) {
        return *cached;
    }
    QImage thumbnail = decodeThumbnail(picture);
    if (!thumbnail.isNull()) {
        writeThumbnailFile(picture, mtimeSec, thumbnail);
    }
    return thumbnail;
}
