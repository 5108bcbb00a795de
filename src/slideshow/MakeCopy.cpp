#include "slideshow/MakeCopy.h"

#include "base/NilObjectException.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/jpeg/JpegReader.h"
#include "platform/movie/PictureScaling.h"
#include "slideshow/Letterbox.h"
#include "slideshow/TemporaryFiles.h"

#include <QImage>

namespace {
// The quality that a JPEG gets where nobody chooses one.
constexpr int kDefaultJpegQuality = 75;

// Decoded no larger than its place in the frame needs: a screen picture of 1920x1080 comes out
// of the decoder at half size.
JpegPicture openAsPicture(const QString& f) {
    std::optional<JpegPicture> picture = readJpeg(f, [](QSize full) { return fLetterboxRect(full).size(); });
    if (!picture) {
        throw NilObjectException("not a picture: " + f.toStdString());
    }
    return std::move(*picture);
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
    const Picture pixels{frame.width(),       frame.height(),    int(frame.bytesPerLine()),
                         PixelLayout::Bgrx32, frame.constBits(), nullptr};
    writeBaselineJpeg(pixels, kDefaultJpegQuality, *copy);
    return copy;
}
