#include "slideshow/MakeCopy.h"

#include "base/NilObjectException.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/jpeg/JpegReader.h"
#include "platform/movie/PictureScaling.h"
#include "slideshow/Letterbox.h"
#include "slideshow/TemporaryFiles.h"

#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include <memory>

namespace {
// The quality that a JPEG gets where nobody chooses one.
constexpr int kDefaultJpegQuality = 75;

// The image's own pixels, kept alive by the Picture.
Picture pictureOf(QImage image) {
    const auto owner = std::make_shared<const QImage>(image.convertToFormat(QImage::Format_RGB32));
    return {owner->width(),      owner->height(),    int(owner->bytesPerLine()),
            PixelLayout::Bgrx32, owner->constBits(), owner};
}

// Decoded no larger than its place in the frame needs: a screen picture of 1920x1080 comes out
// of the decoder at half size. What libjpeg does not read (a PNG under a .jpg name, a CMYK JPEG)
// the toolkit may. Only a plain file is read: a pipe would hold the read for ever.
JpegPicture openAsPicture(const QString& f) {
    if (!QFileInfo(f).isFile()) {
        throw NilObjectException("not a file: " + f.toStdString());
    }
    if (std::optional<JpegPicture> picture =
            readJpeg(f, [](QSize full) { return fLetterboxRect(full).size(); })) {
        return std::move(*picture);
    }
    QImageReader reader(f);
    reader.setDecideFormatFromContent(true); // the name says JPEG, and that is what failed
    const QImage image = reader.read();
    if (image.isNull()) {
        throw NilObjectException("not a picture: " + f.toStdString());
    }
    return {pictureOf(image), image.size()};
}
} // namespace

std::optional<QString> sMakeCopy(const QString& f) {
    QImage frame(kMovieFrame, QImage::Format_RGB32);
    frame.fill(Qt::black);
    {
        const JpegPicture source = openAsPicture(f);
        drawScaled(source.pixels, frame.bits(), int(frame.bytesPerLine()), fLetterboxRect(source.fullSize));
    }
    const std::optional<QString> copy = GetTemporaryFolderItem();
    if (!copy) {
        return std::nullopt;
    }
    writeBaselineJpeg(pictureOf(frame), kDefaultJpegQuality, *copy);
    return copy;
}
