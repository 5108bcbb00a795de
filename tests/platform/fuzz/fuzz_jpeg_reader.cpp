#include "platform/jpeg/JpegReader.h"

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <numeric>

// Files as the slideshow reads them, from a file in memory. The input's last byte picks the share
// of the full size, in eighths, that the pixels must cover (0: full size).
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int file = memfd_create("fuzz.jpg", 0);
    static const QString path = "/proc/self/fd/" + QString::number(file);
    if (ftruncate(file, 0) != 0 || pwrite(file, bytes, size, 0) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    const int eighths = size > 0 ? bytes[size - 1] % 9 : 0;
    const auto covering = [eighths](QSize full) { return eighths == 0 ? QSize() : full * eighths / 8; };
    const std::optional<JpegPicture> read = readJpeg(path, covering);
    if (read) {
        const Picture& p = read->pixels;
        const QSize wanted = covering(read->fullSize);
        if (p.isNull() || p.strideBytes != p.width * 4 || p.width > read->fullSize.width() ||
            p.height > read->fullSize.height() || p.width < wanted.width() || p.height < wanted.height()) {
            std::abort();
        }
        // Every byte read, so that the sanitizer sees any the reader does not own.
        volatile unsigned sink = std::accumulate(p.bits, p.bits + std::size_t(p.strideBytes) * p.height, 0u);
        (void)sink;
    }
    return 0;
}
