#include "capture/ScreenSignature.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {
constexpr int kRowStep = 4;

// Brightness weighted 1:2:1 for red, green and blue, four times over; in 32-bit lanes, so that the
// compiler turns the loop into vector code.
std::uint32_t sumBgrx(const std::uint8_t* bytes, int pixels) {
    std::uint32_t sum = 0;
    for (int x = 0; x < pixels; ++x) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, bytes + std::size_t(x) * 4, 4);
        sum += (pixel & 0xffU) + ((pixel >> 7U) & 0x1feU) + ((pixel >> 16U) & 0xffU);
    }
    return sum;
}

std::uint32_t sumRgb(const std::uint8_t* bytes, int pixels) {
    std::uint32_t sum = 0;
    for (int x = 0; x < pixels; ++x) {
        const std::uint8_t* pixel = bytes + std::size_t(x) * 3;
        sum += pixel[0] + 2U * pixel[1] + pixel[2];
    }
    return sum;
}

// The first pixel of grid line `line` of `lines` over `length` pixels; a line is at least one wide.
int gridStart(int line, int lines, int length) {
    return std::min(line * length / lines, length - 1);
}

int gridEnd(int line, int lines, int length) {
    return std::max((line + 1) * length / lines, gridStart(line, lines, length) + 1);
}
} // namespace

ScreenSignature screenSignature(const Picture& picture, const QRect& leftOut) {
    ScreenSignature signature{picture.width, picture.height, {}};
    if (picture.isNull()) {
        return signature;
    }
    const bool bgrx = picture.layout == PixelLayout::Bgrx32;
    const int bytesPerPixel = bgrx ? 4 : 3;
    constexpr int kColumns = ScreenSignature::kColumns;
    for (int row = 0; row < ScreenSignature::kRows; ++row) {
        std::array<std::uint64_t, kColumns> sums{};
        const int top = gridStart(row, ScreenSignature::kRows, picture.height);
        const int bottom = gridEnd(row, ScreenSignature::kRows, picture.height);
        int rowsRead = 0;
        for (int y = top; y < bottom; y += kRowStep, ++rowsRead) {
            const std::uint8_t* line = picture.bits + std::size_t(y) * std::size_t(picture.strideBytes);
            for (int column = 0; column < kColumns; ++column) {
                const int left = gridStart(column, kColumns, picture.width);
                const int pixels = gridEnd(column, kColumns, picture.width) - left;
                const std::uint8_t* start = line + std::size_t(left) * std::size_t(bytesPerPixel);
                sums[std::size_t(column)] += bgrx ? sumBgrx(start, pixels) : sumRgb(start, pixels);
            }
        }
        for (int column = 0; column < kColumns; ++column) {
            const QRect cell(QPoint(gridStart(column, kColumns, picture.width), top),
                             QPoint(gridEnd(column, kColumns, picture.width) - 1, bottom - 1));
            if (cell.intersects(leftOut)) {
                continue;
            }
            const int pixels =
                gridEnd(column, kColumns, picture.width) - gridStart(column, kColumns, picture.width);
            signature.cells[std::size_t(row * kColumns + column)] = std::uint8_t(
                sums[std::size_t(column)] / (4U * std::uint64_t(pixels) * std::uint64_t(rowsRead)));
        }
    }
    return signature;
}

bool looksUnchanged(const ScreenSignature& a, const ScreenSignature& b) {
    if (a.width != b.width || a.height != b.height) {
        return false;
    }
    int spots = 0;
    for (std::size_t cell = 0; cell < a.cells.size(); ++cell) {
        if (std::abs(int(a.cells[cell]) - int(b.cells[cell])) > kCellTolerance && ++spots > kSpotsAllowed) {
            return false;
        }
    }
    return true;
}
