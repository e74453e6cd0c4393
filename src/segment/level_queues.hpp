// 256 queues of pixels, first in, first out, one for each level.
#pragma once

#include <algorithm>

#include "lumcv/types.h"

namespace lumcv {

/// A pixel is a number that tells its place, and is in one queue at most; so one link for each pixel is all it takes.
class LevelQueues
{
  public:
    static constexpr int levels = 256;

    /// `links` has room for every pixel.
    explicit LevelQueues(Lum32u* links) : links_(links)
    {
        std::fill_n(first_, levels, none);
    }

    void push(int level, Lum32u pixel)
    {
        links_[pixel] = none;
        if (first_[level] == none)
            first_[level] = pixel;
        else
            links_[last_[level]] = pixel;
        last_[level] = pixel;
    }

    bool isEmpty(int level) const
    {
        return first_[level] == none;
    }

    /// The oldest pixel of a queue that is not empty.
    Lum32u pop(int level)
    {
        const Lum32u pixel = first_[level];
        first_[level] = links_[pixel];
        return pixel;
    }

    /// The first level from this one on whose queue is not empty; `levels` if there is none.
    int nextLevel(int level) const
    {
        while (level < levels && isEmpty(level))
            ++level;
        return level;
    }

  private:
    static constexpr Lum32u none = ~Lum32u{0};

    Lum32u* links_;
    Lum32u first_[levels];
    Lum32u last_[levels];
};

}  // namespace lumcv
