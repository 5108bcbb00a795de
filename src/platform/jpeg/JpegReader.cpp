#include "platform/jpeg/JpegReader.h"

#include "platform/FilePtr.h"
#include "platform/jpeg/JpegErrors.h"

#include <QFile>

#include <cstdint>
#include <memory>
#include <vector>

namespace {
// A damaged or hostile header can claim gigapixels; the decoder's working memory and the
// decoded pixels stay below these bounds, far above the largest screen or camera picture.
constexpr long kMaxDecoderMemoryBytes = 512L << 20;
constexpr std::uint64_t kMaxOutputPixels = std::uint64_t{1} << 26;
constexpr int kBytesPerPixel = 4;
// Each scan of a progressive file is a pass over the whole picture, and a file may hold any
// number of them; writers make about ten.
constexpr int kMaxScans = 100;

// Kept on the heap, with the pixels, so that nothing the longjmp lands beside is a local changed
// after setjmp.
struct Decompressor {
    jpeg_decompress_struct info{};
    JpegErrorManager errors{};
    jpeg_progress_mgr progress{};
    std::vector<std::uint8_t> pixels;
    // Safe also when creation never ran or failed half-way: info starts zeroed.
    ~Decompressor() { jpeg_destroy_decompress(&info); }
};

void stopAtScanLimit(j_common_ptr common) noexcept {
    if (reinterpret_cast<j_decompress_ptr>(common)->input_scan_number > kMaxScans) {
        jpegJumpOut(common);
    }
}

void chooseScale(jpeg_decompress_struct* info, const std::function<QSize(QSize)>& coveringFor) {
    const QSize covering =
        coveringFor ? coveringFor(QSize(int(info->image_width), int(info->image_height))) : QSize();
    info->scale_denom = 8;
    // Without a size to cover, the loop starts and ends at full size.
    for (unsigned eighths = covering.isEmpty() ? 8 : 1; eighths <= 8; ++eighths) {
        info->scale_num = eighths;
        jpeg_calc_output_dimensions(info);
        if (int(info->output_width) >= covering.width() && int(info->output_height) >= covering.height()) {
            return;
        }
    }
}

bool decode(Decompressor& d, FILE* in, const std::function<QSize(QSize)>& covering) {
    jpeg_decompress_struct* info = &d.info;
    info->err = jpegQuietErrors(d.errors);
    if (setjmp(d.errors.jump) != 0) {
        return false;
    }
    jpeg_create_decompress(info);
    info->mem->max_memory_to_use = kMaxDecoderMemoryBytes;
    d.progress.progress_monitor = stopAtScanLimit;
    info->progress = &d.progress;
    jpeg_stdio_src(info, in);
    jpeg_read_header(info, TRUE);
    info->out_color_space = JCS_EXT_BGRX;
    chooseScale(info, covering);
    if (std::uint64_t{info->output_width} * info->output_height > kMaxOutputPixels) {
        return false;
    }
    jpeg_start_decompress(info);
    const std::size_t stride = std::size_t{info->output_width} * kBytesPerPixel;
    d.pixels.resize(stride * info->output_height);
    while (info->output_scanline < info->output_height) {
        JSAMPROW row = d.pixels.data() + stride * info->output_scanline;
        jpeg_read_scanlines(info, &row, 1);
    }
    jpeg_finish_decompress(info);
    return true;
}
} // namespace

std::optional<JpegPicture> readJpeg(const QString& path, const std::function<QSize(QSize)>& covering) {
    const FilePtr in(std::fopen(QFile::encodeName(path).constData(), "rb"));
    if (!in) {
        return std::nullopt;
    }
    const auto d = std::make_unique<Decompressor>();
    if (!decode(*d, in.get(), covering)) {
        return std::nullopt;
    }
    const int width = int(d->info.output_width);
    const Picture picture =
        Picture::sharing(std::move(d->pixels), width, int(d->info.output_height), width * kBytesPerPixel);
    return JpegPicture{picture, QSize(int(d->info.image_width), int(d->info.image_height))};
}
