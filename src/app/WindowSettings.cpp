#include "app/WindowSettings.h"

namespace {
constexpr int kMinLeft = 20;
constexpr int kMinTop = 60;

int pushedIn(std::int32_t position, int limit) {
    return position >= 0 && position < limit ? limit : position;
}
} // namespace

QRect restoredFrame(const mScreenSettings::Geometry& stored, QSize minimum) {
    const int height = stored.pWinHeight < minimum.height() ? minimum.height() : stored.pWinHeight;
    const int width = stored.pWinWidth < minimum.width() ? minimum.width() : stored.pWinWidth;
    return QRect(pushedIn(stored.pWinLeft, kMinLeft), pushedIn(stored.pWinTop, kMinTop), width, height);
}
