#pragma once

#include <QImage>
#include <QString>

#include <optional>

// The desktop's shared thumbnail cache (freedesktop.org): a PNG of at most 256x256 for each
// picture in $XDG_CACHE_HOME/thumbnails/large, named by the MD5 of the picture's file URI and
// tagged with that URI and the picture's modification time, so that file managers and this
// program share the work.

// The file URI that names a picture in the cache.
QString thumbnailUri(const QString& picture);
// Where the cached thumbnail of `picture` lies, whether it is there or not.
QString thumbnailPath(const QString& picture);
// The cached thumbnail, when its tags match the picture as it is now (`mtimeSec`).
std::optional<QImage> readThumbnailFile(const QString& picture, qint64 mtimeSec);
// Writes the thumbnail whole under a temporary name and renames it into place, readable by the
// user alone; false when that failed, and then nothing is left behind.
bool writeThumbnailFile(const QString& picture, qint64 mtimeSec, const QImage& thumbnail);
