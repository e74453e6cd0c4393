// Where the frames come from: a folder of PNG files, or a moving scene.
#pragma once

#include <filesystem>
#include <vector>

#include "image.hpp"

namespace track {

/// The PNG files of a folder in the order of their names.
std::vector<std::filesystem::path> framesOf(const std::filesystem::path& folder);

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
