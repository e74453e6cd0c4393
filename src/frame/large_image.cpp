// When a result is too large to be worth caching.
#include "frame/large_image.hpp"

#include "lumcore.h"

namespace lumcv {

bool isLargeImage(int64_t pixels)
{
    return pixels >= smallestLargeImage && isLargeImage(pixels, 0);
}

bool isLargeImage(int64_t pixels, int cacheShift)
{
    int cacheBytes = 0;
    return lumGetMaxCacheSizeB(&cacheBytes) == 0 && cacheBytes > 0 && pixels >= cacheBytes >> cacheShift;
}

}  // namespace lumcv
