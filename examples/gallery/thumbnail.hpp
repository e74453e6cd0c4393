// Small pictures with few levels, for pages of documentation.
#pragma once

#include "image.hpp"

namespace gallery {

/// The picture, shrunk by the least whole number that makes it at most so wide, in 24 levels; of one channel if it is
/// gray. Each pixel is the mean of those that it stands for; what is left over at the right and at the bottom is
/// dropped.
Picture thumbnail(const Picture& picture, int widest);

}  // namespace gallery
