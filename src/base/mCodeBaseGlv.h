#pragma once

#include <atomic>
#include <cstdint>

// Values that more than one routine shares. Written on one thread and read on others.
namespace mCodeBaseGlv {
// True when the camera link is ready.
inline std::atomic<bool> pVideoGoodToGo{false};
// Size of the main screen, read once at start.
inline std::atomic<std::int32_t> pMainScreenHeight{0};
inline std::atomic<std::int32_t> pMainScreenWidth{0};
} // namespace mCodeBaseGlv
