// Sines and cosines that are the same everywhere: those of a C library differ in the last bit from one processor to
// the next, since it has variants that fuse products and sums.
#pragma once

#include "lumcv/types.h"

namespace lumcv {

struct SineCosine
{
    Lum64f sine, cosine;
};

/// Of an angle that is not negative and a few turns at most, to one and a half units in the last place.
inline SineCosine sineCosine(Lum64f angle)
{
    // less the nearest number of quarter turns, where products with the first part of pi / 2 are exact
    constexpr Lum64f quarterTurn = 0x1.921fb544p+0, restOfQuarterTurn = 0x1.0b4611a626331p-34;
    const auto quarters = static_cast<int>(angle / (quarterTurn + restOfQuarterTurn) + 0.5);
    const Lum64f r = (angle - quarters * quarterTurn) - quarters * restOfQuarterTurn;

    // the power series 1 - z / (k (k + 1)) (1 - z / ((k + 2) (k + 3)) (1 - ...)): z is at most 0.62, and what is left
    // out less than 2^-60 of it
    const Lum64f z = r * r;
    const auto series = [z](int k) {
        Lum64f sum = 1;
        for (int i = k + 14; i >= k; i -= 2)
            sum = 1 - sum * z / (i * (i + 1));
        return sum;
    };
    const Lum64f sine = r - r * (z / 6 * series(4)), cosine = 1 - z / 2 * series(3);
    switch (quarters % 4) {
        case 1:
            return {cosine, -sine};
        case 2:
            return {-sine, -cosine};
        case 3:
            return {-cosine, sine};
        default:
            return {sine, cosine};
    }
}

}  // namespace lumcv
