#include "support/JpegInspection.h"

#include <QFile>

#include <cstdlib>

namespace {
bool isFrameMarker(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}
} // namespace

std::optional<JpegInspection> inspectJpeg(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    const auto at = [&](qsizetype i) { return static_cast<unsigned char>(bytes.at(i)); };
    if (bytes.size() < 4 || at(0) != 0xFF || at(1) != 0xD8) {
        return std::nullopt;
    }
    JpegInspection result;
    qsizetype i = 2;
    bool ended = false;
    while (i + 1 < bytes.size()) {
        if (at(i) != 0xFF) {
            return std::nullopt;
        }
        const int marker = at(i + 1);
        if (marker == 0xD9) {
            ended = true;
            break;
        }
        if (i + 3 >= bytes.size()) {
            return std::nullopt;
        }
        const qsizetype length = (at(i + 2) << 8) | at(i + 3);
        if (isFrameMarker(marker)) {
            result.frameMarker = marker;
        }
        i += 2 + length;
        if (marker == 0xDA) {
            ++result.scanCount;
            // Entropy-coded data: a 0xFF in it is followed by a stuffed zero or a restart marker.
            while (i + 1 < bytes.size() &&
                   !(at(i) == 0xFF && at(i + 1) != 0x00 && (at(i + 1) < 0xD0 || at(i + 1) > 0xD7))) {
                ++i;
            }
        }
    }
    if (!ended) {
        return std::nullopt;
    }
    result.image = QImage(path, "JPG");
    if (result.image.isNull()) {
        return std::nullopt;
    }
    return result;
}
