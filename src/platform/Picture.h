#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

// How the bytes of one pixel lie in memory.
enum class PixelLayout {
    Bgrx32, // blue, green, red, padding: the X server's 24-bit depth, QImage::Format_RGB32
    Rgb24,  // red, green, blue
};

// Pixels as a back end hands them over, without a copy: `owner` keeps the memory (an X
// shared-memory segment, a camera buffer) alive for as long as any copy of the Picture lives.
struct Picture {
    int width = 0;
    int height = 0;
    int strideBytes = 0;
    PixelLayout layout = PixelLayout::Bgrx32;
    const std::uint8_t* bits = nullptr;
    std::shared_ptr<const void> owner;

    bool isNull() const { return bits == nullptr || width <= 0 || height <= 0; }

    // Pixels of our own, kept for as long as any copy of the Picture lives.
    static Picture sharing(std::vector<std::uint8_t> pixels, int width, int height, int strideBytes,
                           PixelLayout layout = PixelLayout::Bgrx32) {
        auto owner = std::make_shared<const std::vector<std::uint8_t>>(std::move(pixels));
        return Picture{width, height, strideBytes, layout, owner->data(), std::move(owner)};
    }
};
