// What moves in a film: the background model tells it for each frame, and the motion history keeps it for a while.
#pragma once

#include "image.hpp"

namespace watch {

using gallery::Image;
using gallery::Picture;

constexpr Lum8u shadowClass = 127;
constexpr Lum8u foregroundClass = 255;

/// The parameters of the model.
LumFGMMModel usualModel();

/// 255 where the classes say that something is in front of the background; shadows are left out.
Picture silhouetteOf(const Picture& classes);

/// A frame in dim gray, and in it what has moved: white now, then yellow to red to violet, the older the darker.
Picture historyPicture(const Picture& frame, const Image<Lum32f>& history, float now, float duration);

class Watcher
{
  public:
    /// How many frames a motion is remembered.
    static constexpr float duration = 16.0f;

    explicit Watcher(LumiSize size);

    /// Takes the next RGB frame.
    void take(const Picture& frame);

    /// Of the last frame: 0 for the background, shadowClass, foregroundClass.
    const Picture& classes() const
    {
        return classes_;
    }

    /// The time of each pixel's last motion; the time of a frame is its number, beginning with 1.
    const Image<Lum32f>& history() const
    {
        return history_;
    }

    float now() const
    {
        return static_cast<float>(frames_);
    }

    Picture background() const;

  private:
    LumiSize size_;
    lumcv::Record<LumFGMMState> state_;
    Picture classes_;
    Image<Lum32f> history_;
    int frames_ = 0;
};

}  // namespace watch
