#pragma once

#include "platform/Picture.h"

#include <QRect>

#include <array>
#include <cstdint>

// A screen's picture shrunk to a grid of mean brightness, enough to tell whether it changed since
// the last one written. Made from the grabbed pixels in memory; every fourth row is read, which
// keeps the cost a few percent of the encode's, and still meets every line of text.
struct ScreenSignature {
    static constexpr int kColumns = 64;
    static constexpr int kRows = 36;

    int width = 0;
    int height = 0;
    std::array<std::uint8_t, kColumns * kRows> cells{};
};

// The cells that meet `leftOut` (in the picture's pixels) stay 0, so that it is not compared.
ScreenSignature screenSignature(const Picture& picture, const QRect& leftOut = {});

// True when `a` and `b` show the same screen but for a few small spots, such as a blinking cursor
// or a ticking clock: at most kSpotsAllowed cells whose brightness moved by more than
// kCellTolerance of 255. Pictures of different sizes always differ.
bool looksUnchanged(const ScreenSignature& a, const ScreenSignature& b);

inline constexpr int kCellTolerance = 10;
inline constexpr int kSpotsAllowed = 6;
