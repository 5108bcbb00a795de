#include "platform/recognizer/GreyPicture.h"

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
} // namespace

GreyPicture greyPicture(const Picture& picture) {
    if (picture.isNull()) {
        return {};
    }
    GreyPicture grey{picture.width, picture.height, {}};
    grey.pixels.resize(std::size_t(grey.width) * std::size_t(grey.height));
    for (int y = 0; y < picture.height; ++y) {
        greyRow(picture, y, grey.pixels.data() + std::size_t(y) * std::size_t(grey.width));
    }
    return grey;
}
