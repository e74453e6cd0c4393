// A film from a camera that stands: noise, a flicker of leaves, and two balls that roll by and throw shadows.
#pragma once

#include "image.hpp"

namespace watch {

/// What a pixel of a frame shows.
enum class Shown : Lum8u
{
    Background,
    Shadow,
    Ball
};

class BusyScene
{
  public:
    /// The backdrop is RGB.
    explicit BusyScene(gallery::Picture backdrop) : backdrop_(std::move(backdrop)) {}

    LumiSize size() const
    {
        return backdrop_.size();
    }

    /// The balls come in after the first `still` frames.
    static constexpr int still = 20;

    gallery::Picture frame(int index) const;
    Shown shown(int index, int x, int y) const;

  private:
    gallery::Picture backdrop_;
};

/// The middle of an RGB picture, at most so large.
gallery::Picture middleOf(const gallery::Picture& picture, int mostWidth, int mostHeight);

}  // namespace watch
