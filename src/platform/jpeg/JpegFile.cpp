#include "platform/jpeg/JpegFile.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <memory>

#include <malloc.h>

#include "platform/PartFile.h"
#include "platform/jpeg/JpegErrors.h"

namespace {
// Progressive by spectral selection alone: the DC of all components first, so that a reader has
// a blurred whole picture at once, then each component's AC in one scan. Progressive files always
// get optimised Huffman tables, which costs a pass over the coefficients per scan; four scans
// instead of the usual ten with successive approximation make the encode faster than a plain
// progressive one at nearly the same size.
constexpr jpeg_scan_info kScanScript[] = {
    {3, {0, 1, 2, 0}, 0, 0, 0, 0},
    {1, {0, 0, 0, 0}, 1, 63, 0, 0},
    {1, {1, 0, 0, 0}, 1, 63, 0, 0},
    {1, {2, 0, 0, 0}, 1, 63, 0, 0},
};

int bytesPerPixel(PixelLayout layout) {
    return layout == PixelLayout::Bgrx32 ? 4 : 3;
}

// Kept on the heap so that nothing the longjmp lands beside is a local changed after setjmp.
struct Compressor {
    jpeg_compress_struct info{};
    JpegErrorManager errors{};
    // Safe also when creation never ran or failed half-way: info starts zeroed.
    ~Compressor() { jpeg_destroy_compress(&info); }
};

bool encode(const Picture& picture, int quality, bool progressive, FILE* out) {
    const auto compressor = std::make_unique<Compressor>();
    jpeg_compress_struct* info = &compressor->info;
    info->err = jpegQuietErrors(compressor->errors);
    if (setjmp(compressor->errors.jump) != 0) {
        return false;
    }
    jpeg_create_compress(info);
    jpeg_stdio_dest(info, out);
    info->image_width = static_cast<JDIMENSION>(picture.width);
    info->image_height = static_cast<JDIMENSION>(picture.height);
    // The server's own byte order goes in as it is, so no conversion pass runs before the encode.
    info->in_color_space = picture.layout == PixelLayout::Bgrx32 ? JCS_EXT_BGRX : JCS_RGB;
    info->input_components = bytesPerPixel(picture.layout);
    jpeg_set_defaults(info);
    jpeg_set_quality(info, std::clamp(quality, 1, 100), TRUE);
    if (progressive) {
        info->scan_info = kScanScript;
        info->num_scans = static_cast<int>(std::size(kScanScript));
    }
    jpeg_start_compress(info, TRUE);
    while (info->next_scanline < info->image_height) {
        // libjpeg never writes through its input rows.
        JSAMPROW row =
            const_cast<JSAMPROW>(picture.bits + std::size_t(info->next_scanline) * picture.strideBytes);
        jpeg_write_scanlines(info, &row, 1);
    }
    jpeg_finish_compress(info);
    return true;
}

// The encoded picture in a part file beside `path`, or none.
std::unique_ptr<PartFile> encodeBeside(const Picture& picture, int quality, bool progressive,
                                       const QString& path) {
    if (picture.isNull() || picture.strideBytes < picture.width * bytesPerPixel(picture.layout)) {
        return nullptr;
    }
    std::unique_ptr<PartFile> part = PartFile::createBeside(path);
    const bool encoded = part && encode(picture, quality, progressive, part->stream());
    // The coefficient buffers of a progressive encode are tens of megabytes; malloc would keep
    // them for the next capture, minutes away.
    ::malloc_trim(0);
    return encoded ? std::move(part) : nullptr;
}

bool writeJpeg(const Picture& picture, int quality, bool progressive, const QString& path) {
    const std::unique_ptr<PartFile> part = encodeBeside(picture, quality, progressive, path);
    return part && part->placeOver(path);
}
} // namespace

bool writeProgressiveJpeg(const Picture& picture, int quality, const QString& path) {
    return writeJpeg(picture, quality, true, path);
}

bool writeBaselineJpeg(const Picture& picture, int quality, const QString& path) {
    return writeJpeg(picture, quality, false, path);
}

std::optional<QString> writeNewProgressiveJpeg(const Picture& picture, int quality,
                                               const NameChoices& nameFor) {
    const std::unique_ptr<PartFile> part = encodeBeside(picture, quality, true, nameFor(1));
    return part ? part->placeAtFreeName(nameFor) : std::nullopt;
}
