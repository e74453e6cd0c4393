// When to ask for the next row of an image along with the present one: processors fetch ahead within a page only, and
// the rows of a large image lie pages apart.
#pragma once

#include <cstdint>

namespace lumcv {

/// Whether an image has so many pixels that they are likely not to be in a cache. Where they are, asking costs time.
inline bool asksForNextRow(int64_t width, int64_t height)
{
    return width * height > 1 << 14;
}

}  // namespace lumcv
