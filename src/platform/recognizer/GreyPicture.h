#pragma once

#include "platform/Picture.h"

#include <cstdint>
#include <vector>

// A picture's brightness, one byte a pixel, rows packed.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

GreyPicture greyPicture(const Picture& picture);
