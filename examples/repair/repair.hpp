// Fills what is damaged in a picture from what is around it. A mask tells what is damaged: a picture of one channel
// that is not 0 there.
#pragma once

#include <cstdint>

#include "image.hpp"

namespace repair {

using gallery::Image;
using gallery::Picture;

/// Long strokes three pixels wide, and a few blots: a mask of 0 and 255. The same on every machine.
Picture drawScratches(LumiSize size, std::uint32_t seed);

/// The picture, of one channel or three, with one gray level where the mask is not 0.
Picture painted(const Picture& picture, const Picture& mask, Lum8u level);

/// How far each masked pixel is from the nearest one that is not, 0 outside the mask: the order of the repair. Where
/// everything is masked, nothing is far from anything; then the distances are 999999 and more.
Image<Lum32f> depths(const Picture& mask);

/// Everything that a mask and a method decide, once for any number of pictures of its size.
class Repairer
{
  public:
    /// Known pixels are looked for as far as `radius` around an unknown one; it is 1 or more.
    Repairer(const Picture& mask, const Image<Lum32f>& depths, float radius, LumiInpaintMethod method, int channels);

    /// A picture of the mask's size, repaired.
    Picture repaired(const Picture& picture);

  private:
    int channels_;
    lumcv::Record<LumiInpaintState> state_;
    lumcv::Block scratch_;
};

/// The absolute differences of two pictures of the same size and channels.
Picture difference(const Picture& a, const Picture& b);

/// The mean of a picture's levels, all channels, over the pixels whose mask is not 0; 0 if there is none.
double meanWhereMasked(const Picture& picture, const Picture& mask);

int countMasked(const Picture& mask);

}  // namespace repair
