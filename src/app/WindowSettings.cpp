#include "app/WindowSettings.h"

#include <algorithm>

namespace {
constexpr int kMinLeft = 20;
constexpr int kMinTop = 60;
// The largest size a window can have; stored values are held within it, far beyond any desktop,
// so that no edge of the frame overflows, however large a damaged file's numbers are.
constexpr std::int32_t kFarthest = (1 << 24) - 1;

int pushedIn(std::int32_t position, int limit) {
    position = std::clamp(position, -kFarthest, kFarthest);
    return position >= 0 && position < limit ? limit : position;
}
} // namespace

QRect restoredFrame(const mScreenSettings::Geometry& stored, QSize minimum) {
    const int height = std::clamp(stored.pWinHeight, minimum.height(), kFarthest);
    const int width = std::clamp(stored.pWinWidth, minimum.width(), kFarthest);
    return QRect(pushedIn(stored.pWinLeft, kMinLeft), pushedIn(stored.pWinTop, kMinTop), width, height);
}
