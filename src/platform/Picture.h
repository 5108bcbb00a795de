#pragma once

#include <cstdint>
#include <memory>

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
};
