// The state of a repair: what Init lays in the caller's block.
#pragma once

#include <cstdint>

#include "frame/byte_counts.hpp"
#include "frame/image.hpp"
#include "frame/rounding.hpp"
#include "lumcv/distance.h"
#include "lumcv/morph.h"

namespace lumcv {

/// A place among the neighbours of a pixel p: q is (a, b) before it, that is, p - q.
struct InpaintNeighbour
{
    Lum32s a, b;
    Lum32f weight;      ///< by distance alone
    Lum32s maskOffset;  ///< from p to q, in elements of the state's images
    Lum32s distanceOffset;
    Lum32s gradientOffset;
};

/// What the size query counts for a neighbour.
inline constexpr int inpaintNeighbourBytes = 28;
static_assert(sizeof(InpaintNeighbour) <= inpaintNeighbourBytes);

/// A pixel's distance and its place in the work rectangle: the distance as a double, whose low bits hold the index.
/// Distances are positive, so that these words are in the order of the numbers.
using InpaintEntry = uint64_t;
inline constexpr int inpaintIndexBits = 28;

/// What the sizes depend on.
struct InpaintGeometry
{
    Lum32s x0, y0;  ///< of the work rectangle
    Lum32s width, height;
    Lum32s count;   ///< of masked pixels
    Lum32s reach;   ///< the truncated radius
    LumiSize ring;  ///< the element that makes the ring around the mask

    LumiSize size() const
    {
        return {width, height};
    }

    Bytes side() const
    {
        return 2 * Bytes{reach} + 1;
    }
};

/// Rows of the state's images begin at multiples of this.
inline constexpr int inpaintAlignment = 64;

/// Scans the mask. With nothing masked, `count` is 0 and nothing else matters.
InpaintGeometry inpaintGeometry(Plane<const Lum8u> mask, LumiSize roiSize, Lum32f radius);

/// 1 / (d2 * d) and 1 / ((d2 * d2 + 1) * d), where d2 is the square of the distance d.
inline Lum32f inpaintWeight(LumiInpaintMethod method, Lum32s dx, Lum32s dy)
{
    const auto squared = static_cast<Lum32f>(dx * dx + dy * dy);
    const Lum32f distance = __builtin_sqrtf(squared);
    return method == lumInpaintByFront ? 1 / (squared * distance) : 1 / ((squared * squared + 1) * distance);
}

}  // namespace lumcv

struct LumiInpaintState
{
    Lum8u* pMaskImage;  ///< 255 where the mask is set
    Lum8u* pWorkImage;  ///< 255 where a pixel is not yet known
    Lum16s* pGradient;  ///< of each pixel and channel the x and the y component
    Lum16s* pNormal;    ///< of each pixel the x and the y component, by front
    Lum32f* pDistance;
    lumcv::InpaintEntry* pOrder;
    lumcv::InpaintNeighbour* pNeighbours;
    LumiMorphMaskRecord* pSpecWide;
    LumiMorphMaskRecord* pSpecCross;
    Lum32s width, height;  ///< of the ROI
    Lum32s x0, y0;         ///< of the work rectangle
    Lum32s subWidth, subHeight;
    Lum32s channels;
    LumiInpaintMethod method;
    Lum32s count;       ///< of masked pixels
    Lum32s entryCount;  ///< of pixels in the list
    Lum32s neighbourCount;
    Lum32s reach;
    Lum32s maskStride, distanceStride, gradientStride, normalStride;
};
