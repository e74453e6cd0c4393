// When a result is too large to be worth caching.
#include "frame/large_image.hpp"

#include "lumcore.h"

namespace lumcv {

namespace {

bool reachesLargestCache(int64_t pixels, int shift)
{
    int cacheBytes = 0;
    return lumGetMaxCacheSizeB(&cacheBytes) == 0 && cacheBytes > 0 && pixels >= cacheBytes >> shift;
}

}  // namespace

bool isLargeImage(int64_t pixels)
{
    return pixels >= smallestLargeImage && reachesLargestCache(pixels, 0);
}

bool isLargeImage(int64_t pixels, int cacheShift)
{
    return pixels >= smallestCache >> cacheShift && reachesLargestCache(pixels, cacheShift);
}

}  // namespace lumcv
