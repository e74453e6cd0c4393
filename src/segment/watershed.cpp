// Watersheds: sizes of the scratch, checks, and which algorithm it is.
#include "segment/watershed.hpp"

#include <algorithm>
#include <limits>

#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"
#include "lumcv/segment.h"
#include "segment/boundaries.hpp"

namespace lumcv {
namespace {

template <class Height, class Label>
LumStatus watershed(Relief<Height, Label> relief, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    constexpr bool canFlood = sizeof(Height) == 1;
    const bool isFlood = flag & lumSegmentByLevel;
    const auto checks = Checks{}
                            .notNull(relief.height.pixels, relief.marker.pixels, pBuffer)
                            .size(relief.size)
                            .step(relief.height, relief.size.width)
                            .step(relief.marker, relief.size.width)
                            .alignment(relief.height)
                            .alignment(relief.marker)
                            .require(canFlood || !isFlood, lumErrMode)
                            .require(isFlood ? norm <= 1 : (flag & lumSegmentByCost) && norm <= 3, lumErrArgument);
    if (checks.failed())
        return checks.status();
    const int boundaries = boundaryNeighbours(flag);
    if constexpr (canFlood)
        if (isFlood) {
            floodByLevel(relief, norm == 0 ? 8 : 4, boundaries, pBuffer);
            return lumOk;
        }
    sweepByCost(relief, norm, pBuffer);
    if (boundaries != 0)
        markBoundaries(relief.marker, relief.size, std::numeric_limits<Label>::max(), boundaries == 8);
    return lumOk;
}

/// Of 8u heights and markers of `labelBytes` each.
LumStatus bufferSize(LumiSize size, int labelBytes, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(size);
    if (checks.failed())
        return checks.status();
    const Bytes width = size.width, height = size.height;
    const Bytes sweep = height + (6 * height + 2) * roundedUp(labelBytes * width, 32) + 66;
    const Bytes flood = labelBytes * (width + 2) * (height + 2) + 16 * width * height + 48;
    return storeSize(std::max(sweep, flood), pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiSegmentWatershedGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, 1, pBufferSize);
}

LumStatus lumiSegmentWatershedGetBufferSize_8u16u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, 2, pBufferSize);
}

LumStatus lumiSegmentWatershedGetBufferSize_32f16u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    const Bytes height = roiSize.height;
    return storeSize(height + 9 * height * roundedUp(Bytes{roiSize.width}, 4) + 66, pBufferSize);
}

LumStatus lumiSegmentWatershed_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                       LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return watershed(Relief<Lum8u, Lum8u>{source(pSrc, srcStep), destination(pMarker, markerStep), roiSize}, norm, flag,
                     pBuffer);
}

LumStatus lumiSegmentWatershed_8u16u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pMarker, Lum32s markerStep,
                                          LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return watershed(Relief<Lum8u, Lum16u>{source(pSrc, srcStep), destination(pMarker, markerStep), roiSize}, norm,
                     flag, pBuffer);
}

LumStatus lumiSegmentWatershed_32f16u_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum16u* pMarker, Lum32s markerStep,
                                           LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return watershed(Relief<Lum32f, Lum16u>{source(pSrc, srcStep), destination(pMarker, markerStep), roiSize}, norm,
                     flag, pBuffer);
}
