// When a result is too large to be worth caching.
#include "frame/large_image.hpp"

#include "lumcore.h"

namespace lumcv {

bool isLargeImage(int64_t pixels)
{
    int cacheBytes = 0;
    return pixels >= smallestLargeImage && lumGetMaxCacheSizeB(&cacheBytes) == 0 && cacheBytes > 0 &&
           pixels >= cacheBytes;
}

}  // namespace lumcv
