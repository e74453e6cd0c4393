// What the patches of all element types share.
#pragma once

#include "pyramid/flow_window.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// The sums of the products of both slopes.
struct FlowMatrix
{
    Lum64f xx, xy, yy;
};

/// The sums of the difference of both images, times each of the slopes.
struct FlowVector
{
    Lum64f x, y;
};

/// The four weights of an interpolation, of the pixel itself, its right neighbour, the one below, and that one's right
/// neighbour.
struct FlowWeights
{
    Lum32f nearest, right, below, both;

    static FlowWeights of(const FlowWindow& window)
    {
        const Lum32f x = window.x.fraction, y = window.y.fraction;
        return {(1 - x) * (1 - y), x * (1 - y), (1 - x) * y, x * y};
    }
};

/// Mask bytes for a group of which the first `count` samples belong to the area.
inline const Lum8u* firstSamples(int64_t count)
{
    static constexpr Lum8u bytes[2 * flowLanes] = {1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    return bytes + flowLanes - count;
}

}  // namespace lumcv
