#pragma once

#include "platform/Picture.h"

#include <cstdint>
#include <vector>

// A picture's brightness, one byte a pixel, `scale` times its size in each direction.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

// Small screen text reads far better at twice its size; each pixel is spread over a square of
// `scale` by `scale`, between 1 and 4.
GreyPicture greyPicture(const Picture& picture, int scale);
