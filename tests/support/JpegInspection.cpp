#include "support/JpegInspection.h"

#include "support/Files.h"

#include <memory>

// A marker's two bytes occur nowhere else in a JPEG stream: entropy-coded data stuffs a zero after
// each 0xFF, and no header or table holds a 0xFF followed by a frame or scan marker's code.
std::optional<JpegInspection> inspectJpeg(const QString& path) {
    const QByteArray bytes = readFile(path);
    JpegInspection result{0, int(bytes.count("\xff\xda")), QImage::fromData(bytes, "JPG")};
    for (const char frame : {'\xc0', '\xc1', '\xc2'}) {
        result.frameMarker = bytes.contains(QByteArray("\xff") + frame) ? quint8(frame) : result.frameMarker;
    }
    if (!bytes.startsWith("\xff\xd8") || !bytes.endsWith("\xff\xd9") || result.image.isNull()) {
        return std::nullopt;
    }
    return result;
}

Picture pictureOf(const QImage& image) {
    const auto kept = std::make_shared<const QImage>(image);
    const PixelLayout layout =
        image.format() == QImage::Format_RGB888 ? PixelLayout::Rgb24 : PixelLayout::Bgrx32;
    return Picture{image.width(), image.height(), int(image.bytesPerLine()), layout, kept->constBits(), kept};
}

QImage imageOf(const Picture& picture) {
    const QImage::Format format =
        picture.layout == PixelLayout::Rgb24 ? QImage::Format_RGB888 : QImage::Format_RGB32;
    return QImage(picture.bits, picture.width, picture.height, picture.strideBytes, format);
}
