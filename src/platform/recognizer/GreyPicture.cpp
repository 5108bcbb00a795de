#include "platform/recognizer/GreyPicture.h"

#include <algorithm>

namespace {
// ITU-R BT.601 weights in 1/256ths, as the reader's own conversion uses.
std::uint8_t brightness(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return std::uint8_t((77 * red + 150 * green + 29 * blue) >> 8);
}

void greyRow(const Picture& picture, int y, std::uint8_t* out) {
    const std::uint8_t* in = picture.bits + std::size_t(y) * std::size_t(picture.strideBytes);
    if (picture.layout == PixelLayout::Bgrx32) {
        for (int x = 0; x < picture.width; ++x, in += 4) {
            out[x] = brightness(in[2], in[1], in[0]);
        }
    } else {
        for (int x = 0; x < picture.width; ++x, in += 3) {
            out[x] = brightness(in[0], in[1], in[2]);
        }
    }
}

// Linear between neighbours, so that the reader sees strokes, not steps.
void widenRow(const std::uint8_t* row, int width, int scale, std::uint8_t* out) {
    for (int x = 0; x < width * scale; ++x) {
        const int from = x / scale;
        const int to = std::min(from + 1, width - 1);
        const int part = x % scale;
        out[x] = std::uint8_t((row[from] * (scale - part) + row[to] * part) / scale);
    }
}
} // namespace

GreyPicture greyPicture(const Picture& picture, int scale) {
    scale = std::clamp(scale, 1, 4);
    GreyPicture grey{picture.width * scale, picture.height * scale, {}};
    if (picture.isNull()) {
        return {};
    }
    grey.pixels.resize(std::size_t(grey.width) * std::size_t(grey.height));
    std::vector<std::uint8_t> row(std::size_t(picture.width));
    for (int y = 0; y < picture.height; ++y) {
        greyRow(picture, y, row.data());
        std::uint8_t* first = grey.pixels.data() + std::size_t(y * scale) * std::size_t(grey.width);
        widenRow(row.data(), picture.width, scale, first);
        for (int copy = 1; copy < scale; ++copy) {
            std::copy_n(first, grey.width, first + std::size_t(copy) * std::size_t(grey.width));
        }
    }
    return grey;
}
