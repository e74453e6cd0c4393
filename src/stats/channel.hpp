// The operands of the statistics: an image or two, perhaps a channel of interest, perhaps a mask, and their checks.
#pragma once

#include "frame/checks.hpp"

namespace lumcv {

/// An image of `channels` channels of which one is regarded: coi, counted from 1.
template <class T, int channels>
struct Channel
{
    Plane<const T> image;
    Lum32s coi;

    /// Where that channel begins; coi has been checked.
    Plane<const T> plane() const
    {
        return {image.pixels + (coi - 1), image.step};
    }
};

template <class T>
Channel<T, 1> wholeImage(const T* pixels, Lum32s step)
{
    return {source(pixels, step), 1};
}

template <class T>
Channel<T, 3> channelOfInterest(const T* pixels, Lum32s step, Lum32s coi)
{
    return {source(pixels, step), coi};
}

/// The checks that most members share, in their documented order, of the images and then the mask if there is one: all
/// strides before all alignments.
template <class... T, int... channels>
Checks channelChecks(LumiSize roiSize, Channel<T, channels>... operands)
{
    auto checks = Checks{}.notNull(operands.image.pixels...).size(roiSize);
    (checks.step(operands.image, rowElements(roiSize.width, channels)), ...);
    (checks.alignment(operands.image), ...);
    return checks.require(((operands.coi >= 1 && operands.coi <= channels) && ...), lumErrChannelOfInterest);
}

}  // namespace lumcv
