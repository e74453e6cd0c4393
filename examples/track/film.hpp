// A film for those who have none.
#pragma once

#include "image.hpp"

namespace track {

/// A camera that moves over a scene, and a ball that rolls through the picture.
class MovingScene
{
  public:
    explicit MovingScene(int frames);

    int frames() const
    {
        return frames_;
    }
    gallery::Picture frame(int index) const;

  private:
    int frames_;
    gallery::Picture scene_;
};

}  // namespace track
