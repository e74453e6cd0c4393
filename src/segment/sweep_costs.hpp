// Costs of paths over a relief as single numbers: the highest point above, the steps since then below.
//
// A step to a pixel whose own height costs H, from a neighbour of cost q, costs max(H, q + n): if the pixel is higher
// than all before it, H exceeds whatever steps q has.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>

#include "lumcv/types.h"

namespace lumcv {

/// What a front saves that has reached two neighbours of a pixel whose costs are d apart, in 64ths of a pixel: the
/// nearest integer to 64 - (d + sqrt(8192 - d * d)) / 2.
inline constexpr auto pairSavings = [] {
    std::array<Lum32s, 64> savings{};
    for (int d = 0; d < 64; ++d) {
        // (d + root) / 2 is nearest to 64 - t where root is within 1 of 128 - 2 t - d; it never lies on the edge
        int t = 0;
        while ((127 - 2 * t - d) * (127 - 2 * t - d) > 8192 - d * d)
            ++t;
        savings[static_cast<size_t>(d)] = t;
    }
    return savings;
}();

static_assert(pairSavings[0] == 19 && pairSavings[1] == 18 && pairSavings[2] == 18 && pairSavings[3] == 17 &&
              pairSavings[55] > 0 && pairSavings[56] == 0);

/// Of byte heights: 23 bits of steps.
struct ByteHeightCosts
{
    using Height = Lum8u;
    using Cost = Lum32s;

    /// Of a pixel without a label and of a barrier. No path takes a cost that is not below it.
    static constexpr Cost unlabelled = 0x7FC00000;

    static Cost of(Height height)
    {
        return static_cast<Cost>(height) << 23;
    }

    static Cost ofSeed(Height height)
    {
        return of(height);
    }

    /// The cost of a pixel after a step over a whole pixel's width.
    static Cost afterPixel(Cost from)
    {
        return from + 64;
    }

    /// The same from two neighbours, the second in another row or column; lesser <= greater < unlabelled.
    static Cost afterBoth(Cost lesser, Cost greater)
    {
        const Cost d = greater - lesser;
        return lesser + 64 - (d < 64 ? pairSavings[static_cast<size_t>(d)] : 0);
    }
};

/// Of float heights: 31 bits of steps below the bits of the height, put in the order of integers.
struct FloatHeightCosts
{
    using Height = Lum32f;
    using Cost = Lum64s;

    static constexpr Cost lastStep = 0x7FFFFFFF;
    static constexpr Cost unlabelled = Cost{0x7F7FFFFF} << 32 | lastStep;

    static Cost of(Height height)
    {
        if (height != height)
            return std::numeric_limits<Cost>::min();
        const auto bits = std::bit_cast<Lum32s>(height + 0.0f);  // no minus zero
        return Cost{bits < 0 ? bits ^ 0x7FFFFFFF : bits} << 32;
    }

    /// Infinite seeds and those that are not a number reach nothing.
    static Cost ofSeed(Height height)
    {
        return height <= std::numeric_limits<Lum32f>::max() ? of(height) : unlabelled;
    }

    static Cost afterPixel(Cost from)
    {
        return from + std::min(Cost{256}, lastStep - stepsOf(from));
    }

    static Cost afterBoth(Cost lesser, Cost greater)
    {
        // heights that differ are farther apart, by as much as 64 bits hold without a sign
        const uint64_t apart = static_cast<uint64_t>(greater) - static_cast<uint64_t>(lesser);
        if (apart >= 256)
            return afterPixel(lesser);
        const auto d = static_cast<Cost>(apart);
        const Cost sum = 2 * stepsOf(lesser) + d;
        const auto steps = static_cast<Cost>(
            0.5 + 0.5 * (static_cast<double>(sum) + __builtin_sqrt(static_cast<double>(131072 - d * d))));
        return lesser - stepsOf(lesser) + std::min(steps, lastStep);
    }

  private:
    static Cost stepsOf(Cost cost)
    {
        return cost & lastStep;
    }
};

}  // namespace lumcv
