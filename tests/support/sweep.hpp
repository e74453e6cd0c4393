// The geometries over which every operation is compared with its reference: widths around every lane count, a few
// heights, gaps between rows, and images against the unreadable page at their end and at their start.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test {

/// How many geometries a sweep visits.
enum class Sweep
{
    Quick,  ///< a few dozen
    Full    ///< several hundred
};

/// One case of a sweep.
struct Geometry
{
    int width = 1;
    int height = 1;
    int placement = 0;  ///< against the page at the end, at the start, or at varying alignments near one of them
    int number = 0;     ///< of the case; a good seed

    /// The layout of one operand. Operands of one case differ in their gaps and alignments, operands of the same number
    /// agree.
    template <class T>
    Layout layout(int operand, int channels = 1) const
    {
        constexpr int size = static_cast<int>(sizeof(T));
        Random random(static_cast<std::uint64_t>(number * 16 + operand));
        Layout result;
        result.width = width;
        result.height = height;
        result.channels = channels;
        const int gaps[] = {0, size, 3 * size, 64, (64 - width * channels * size % 64) % 64};
        result.gap = gaps[random.between(0, 4)];
        const bool shifted = placement == 2;
        result.guard = placement == 0 || (shifted && random.oneIn(2)) ? Guard::After : Guard::Before;
        result.offset = shifted ? static_cast<int>(random.between(0, 63)) : 0;
        return result;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Geometry& geometry)
{
    const char* const placements[] = {"page after", "page before", "shifted"};
    return stream << "case " << geometry.number << ": " << geometry.width << " x " << geometry.height << ", "
                  << placements[geometry.placement];
}

/// Widths below, at and above every number of lanes and twice that, and a few unrolled ones.
inline std::vector<int> sweepWidths(Sweep sweep = Sweep::Full)
{
    if (sweep == Sweep::Quick) {
        return {1, 3, 7, 16, 33, 64, 129};
    }
    return {1,  2,   3,   4,   5,   6,   7,   8,   9,   10,  11,  12,  13,  14,  15,  16, 17,
            18, 23,  24,  25,  29,  31,  32,  33,  47,  48,  49,  63,  64,  65,  80,  95, 96,
            97, 112, 127, 128, 129, 143, 191, 192, 193, 255, 256, 257, 300, 511, 512, 513};
}

inline std::vector<int> sweepHeights(Sweep sweep = Sweep::Full)
{
    return sweep == Sweep::Quick ? std::vector<int>{1, 3} : std::vector<int>{1, 2, 3, 5};
}

/// Calls f(geometry) for each case and stops after the first case that failed, so that a failure is told once.
template <class F>
void forEachGeometry(Sweep sweep, F f)
{
    Geometry geometry;
    for (const int height : sweepHeights(sweep)) {
        for (const int width : sweepWidths(sweep)) {
            for (int placement = 0; placement < 3; ++placement) {
                geometry.width = width;
                geometry.height = height;
                geometry.placement = placement;
                SCOPED_TRACE(geometry);
                f(static_cast<const Geometry&>(geometry));
                if (testing::Test::HasFailure()) {
                    return;
                }
                ++geometry.number;
            }
        }
    }
}

}  // namespace lumcv::test
