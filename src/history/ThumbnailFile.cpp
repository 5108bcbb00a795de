#include "history/ThumbnailFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QUrl>

#include <cstdio>

namespace {
const QString kUriKey = QStringLiteral("Thumb::URI");
const QString kMTimeKey = QStringLiteral("Thumb::MTime");
// Qt's PNG quality of 80 is zlib's level 1: a few kilobytes more a thumbnail for a write several
// times quicker than the default level's.
constexpr int kPngQuality = 80;

QString largeFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/thumbnails/large");
}

// The cache is private to the user: its folders 0700, its files 0600.
bool makePrivateFolder(const QString& path) {
    if (!QDir().mkpath(path)) {
        return false;
    }
    return QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
} // namespace

QString thumbnailUri(const QString& picture) {
    return QString::fromLatin1(QUrl::fromLocalFile(QFileInfo(picture).absoluteFilePath()).toEncoded());
}

QString thumbnailPath(const QString& picture) {
    const QByteArray md5 = QCryptographicHash::hash(thumbnailUri(picture).toUtf8(), QCryptographicHash::Md5);
    return largeFolder() + '/' + QString::fromLatin1(md5.toHex()) + QStringLiteral(".png");
}

std::optional<QImage> readThumbnailFile(const QString& picture, qint64 mtimeSec) {
    // The reader's own text() splits keys at their first colon, so the tags are read off the image.
    QImage image(thumbnailPath(picture), "png");
    if (image.isNull() || image.text(kUriKey) != thumbnailUri(picture) ||
        image.text(kMTimeKey) != QString::number(mtimeSec)) {
        return std::nullopt;
    }
    return image;
}

bool writeThumbnailFile(const QString& picture, qint64 mtimeSec, const QImage& thumbnail) {
    const QString path = thumbnailPath(picture);
    if (!makePrivateFolder(QFileInfo(path).path())) {
        return false;
    }
    QImage tagged = thumbnail;
    tagged.setText(kUriKey, thumbnailUri(picture));
    tagged.setText(kMTimeKey, QString::number(mtimeSec));
    tagged.setText(QStringLiteral("Software"), QStringLiteral("Kestrelview"));
    // Made 0600 beside its place; rename(2) puts it there in one step, over a stale one too. A
    // cache needs no wait for the disk.
    QTemporaryFile file(path + QStringLiteral(".XXXXXX"));
    if (!file.open() || !tagged.save(&file, "png", kPngQuality) || !file.flush() ||
        std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path).constData()) !=
            0) {
        return false;
    }
    file.setAutoRemove(false);
    return true;
}
