// Pictures without the noise of their pixels.
#pragma once

#include "image.hpp"

namespace gallery {

/// A picture of one channel after a Gaussian filter of so many taps, an odd number.
Picture smoothed(const Picture& gray, int taps, Lum32f sigma);

}  // namespace gallery
