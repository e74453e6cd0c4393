// How fractions of a pixel weigh the four pixels around a place.
#pragma once

#include "lumcv/types.h"
#include "simd/simd.hpp"

namespace lumcv::subpixel {

/// The part of an offset that lies behind the integer below it; 0 of what is not finite.
inline Lum32f fractionOf(Lum32f offset)
{
    constexpr Lum32f allIntegers = 0x800000;  // from here on, numbers have no fraction
    if (!(-allIntegers < offset && offset < allIntegers))
        return 0;
    const Lum32f remainder = offset - static_cast<Lum32f>(static_cast<Lum32s>(offset));
    return remainder < 0 ? remainder + 1 : remainder;
}

/// A weight of 1.
inline constexpr Lum32s one = 16384;
inline constexpr int fractionBits = 14;

/// A fraction in units of 1 / 16384, and what it lacks to 1.
struct Share
{
    Lum32s taken, left;
};

inline Share shareOf(Lum32f fraction)
{
    const Lum32f units = fraction * one + 0.5f;
    // not a number, too, gives 0
    const Lum32s taken = !(units >= 1) ? 0 : units >= one ? one : static_cast<Lum32s>(units);
    return {taken, one - taken};
}

/// Of the pixel itself, its right neighbour, the one below it and the one right of that. They fit signed words.
struct Weights
{
    Lum16s w00, w10, w01, w11;
};

inline Weights weightsOf(Share x, Share y)
{
    const auto product = [](Lum32s a, Lum32s b) { return (a * b + one / 2) >> fractionBits; };
    Lum32s w00 = product(x.left, y.left), w10 = product(x.taken, y.left);
    Lum32s w01 = product(x.left, y.taken), w11 = product(x.taken, y.taken);
    // The exact products of a row sum to a whole number, so that their fractions are rounded to 0 and 1, or both to 1.
    // So the sum is 1 in the end.
    const Lum32s lack = one - (w00 + w01 + w10 + w11);
    if (lack < 0) {
        if (w00 >= w01 && w00 >= w10 && w00 >= w11)
            w00 += lack;
        else if (w01 >= w00 && w01 >= w10 && w01 >= w11)
            w01 += lack;
        else if (w10 < w00 || w10 < w01 || w10 < w11)
            w11 += lack;
        else
            w10 += lack;
    }
    return {static_cast<Lum16s>(w00), static_cast<Lum16s>(w10), static_cast<Lum16s>(w01), static_cast<Lum16s>(w11)};
}

/// The fractions of float images, bounded from below so that the ratio of rows is finite.
inline Lum32f boundedX(Lum32f fraction)
{
    return fraction > 1e-6f ? fraction : 1e-6f;
}

inline Lum32f boundedY(Lum32f fraction)
{
    return fraction > 1e-9f ? fraction : 1e-9f;
}

}  // namespace lumcv::subpixel
