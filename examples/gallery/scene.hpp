// The pictures that the operations work on when the user brings none, and what is made of the user's own.
#pragma once

#include <cstdint>

#include "image.hpp"

namespace gallery {

/// A small generator of the same numbers on every machine (xorshift).
class Random
{
  public:
    explicit Random(std::uint32_t seed) : state_((seed * 2654435761u) | 1u) {}
    std::uint32_t next()
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }
    /// A number of 0..bound-1.
    int below(int bound)
    {
        return static_cast<int>((next() >> 8) % static_cast<std::uint32_t>(bound));
    }

  private:
    std::uint32_t state_;
};

/// Draws shapes, coins, strokes that look like writing, gradients and noise; RGB, the same on every run.
Picture drawScene();

/// Repeats a picture like tiles until it is at least this wide and high, so that every operation has room to work.
Picture tiledUpTo(const Picture& picture, int least);

/// The brightness of an RGB picture.
Picture grayOf(const Picture& colour);

/// Frame number `index` of a film: the picture with noise, and a bright ball that rolls over it.
Picture filmFrame(const Picture& gray, int index, int frameCount);

}  // namespace gallery
