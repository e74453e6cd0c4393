// When a result is too large to be worth caching.
#pragma once

#include <cstdint>

namespace lumcv {

/// From this many pixels on an image may be a large one; for smaller ones the cache is not asked for.
inline constexpr int64_t smallestLargeImage = 0x80000;

/// Whether an image of so many pixels is written past the caches: its pixel count is not below the size in bytes of the
/// largest cache. Where that size is not known, it is not.
bool isLargeImage(int64_t pixels);

/// The rule of the fixed masks: the pixel count is not below the bytes of the largest cache, shifted right.
bool isLargeImage(int64_t pixels, int cacheShift);

}  // namespace lumcv
