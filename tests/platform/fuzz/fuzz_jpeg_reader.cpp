#include "platform/jpeg/JpegReader.h"

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

// Files as the slideshow reads them, from an in-memory file; the input's last byte picks the share
// of the full size that the pixels must cover (nothing: full size).
namespace {
void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Every row readable to its end, so that the sanitizer sees any pixel the reader did not own.
unsigned touchEveryPixel(const Picture& picture) {
    unsigned sum = 0;
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t* row = picture.bits + std::ptrdiff_t(y) * picture.strideBytes;
        for (int x = 0; x < picture.strideBytes; ++x) {
            sum += row[x];
        }
    }
    return sum;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int file = memfd_create("fuzz.jpg", 0);
    static const QString path = "/proc/self/fd/" + QString::number(file);
    require(file >= 0 && ftruncate(file, 0) == 0 &&
            pwrite(file, bytes, size, 0) == static_cast<ssize_t>(size));
    const int eighths = size > 0 ? bytes[size - 1] % 9 : 0;
    const auto covering = [eighths](QSize full) { return eighths == 0 ? QSize() : full * eighths / 8; };
    const std::optional<JpegPicture> read = readJpeg(path, covering);
    if (read) {
        const Picture& pixels = read->pixels;
        const QSize wanted = covering(read->fullSize);
        require(!pixels.isNull() && pixels.strideBytes == pixels.width * 4 && pixels.width <= read->fullSize.width() &&
                pixels.height <= read->fullSize.height() && pixels.width >= wanted.width() &&
                pixels.height >= wanted.height());
        static volatile unsigned sink;
        sink = touchEveryPixel(pixels);
    }
    return 0;
}
