// The checks of the means and the extrema: an image, perhaps a mask, perhaps a channel of interest.
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

template <class T, int channels, class... Mask>
Checks channelChecks(Channel<T, channels> source, LumiSize roiSize, Plane<const Mask>... mask)
{
    auto checks = Checks{}.notNull(source.image.pixels, mask.pixels...).size(roiSize);
    checks.step(source.image, rowElements(roiSize.width, channels));
    (checks.step(mask, roiSize.width), ...);
    return checks.alignment(source.image).require(source.coi >= 1 && source.coi <= 3, lumErrChannelOfInterest);
}

}  // namespace lumcv
