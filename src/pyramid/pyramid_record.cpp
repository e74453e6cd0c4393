// The record that holds the geometry of a pyramid. It stands at the very address of the caller's block, which may be
// any, so its header is copied there; the arrays behind it are aligned.
#include <algorithm>
#include <cstring>

#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/pyramid.h"
#include "pyramid/level_sizes.hpp"

namespace lumcv {
namespace {

template <class Size>
Checks& geometryChecks(Checks& checks, Size roiSize, Lum32f rate, Lum32s level)
{
    return checks.size(roiSize)
        .within31Bits(roiSize.width, roiSize.height)
        .require(isRate(rate) && level >= 1, lumErrArgument);
}

template <class Count, class Size>
LumStatus pyramidSizes(Count* pPyrSize, Count* pBufSize, Lum32s level, Size roiSize, Lum32f rate)
{
    auto checks = Checks{}.notNull(pPyrSize, pBufSize);
    if (geometryChecks(checks, roiSize, rate, level).failed())
        return checks.status();
    const LumiSizeL size{roiSize.width, roiSize.height};
    return storeSizes(Bytes{52} * levelsBelow(size, rate, level) + 152, pPyrSize,
                      Bytes{8} * std::max(size.width, size.height), pBufSize);
}

template <class Size>
LumStatus layPyramid(LumiPyramidRecord** ppPyr, Lum32s level, Size roiSize, Lum32f rate, Lum8u* pPyrMem,
                     const Lum8u* pBuffer)
{
    auto checks = Checks{}.notNull(ppPyr, pPyrMem, pBuffer);
    if (geometryChecks(checks, roiSize, rate, level).failed())
        return checks.status();
    LumiSizeL size{roiSize.width, roiSize.height};

    LumiPyramidRecord record{};
    record.level = static_cast<Lum32s>(levelsBelow(size, rate, level));
    const int64_t count = int64_t{record.level} + 1;
    Room room(pPyrMem + sizeof record, 8);
    record.pLayerSizes = room.take<LumiSize>(count);
    record.ppLayers = room.take<void*>(count);
    record.pLayerScales = room.take<Lum64f>(count);
    record.pLayerSteps = room.take<Lum32s>(count);

    const Lum64f reduction = 1.0 / static_cast<Lum64f>(rate);
    Lum64f scale = 1.0;
    for (int64_t i = 0; i < count; ++i) {
        record.pLayerSizes[i] = {static_cast<Lum32s>(size.width), static_cast<Lum32s>(size.height)};
        record.ppLayers[i] = nullptr;
        record.pLayerScales[i] = scale;
        record.pLayerSteps[i] = 0;
        size = sizeBelow(size, rate);
        scale *= reduction;
    }
    std::memcpy(pPyrMem, &record, sizeof record);
    *ppPyr = reinterpret_cast<LumiPyramidRecord*>(pPyrMem);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiPyramidGetSize(Lum32s* pPyrSize, Lum32s* pBufSize, Lum32s level, LumiSize roiSize, Lum32f rate)
{
    return pyramidSizes(pPyrSize, pBufSize, level, roiSize, rate);
}

LumStatus lumiPyramidGetSize_L(Lum64s* pPyrSize, Lum64s* pBufSize, Lum32s level, LumiSizeL roiSize, Lum32f rate)
{
    return pyramidSizes(pPyrSize, pBufSize, level, roiSize, rate);
}

LumStatus lumiPyramidInit(LumiPyramidRecord** ppPyr, Lum32s level, LumiSize roiSize, Lum32f rate, Lum8u* pPyrMem,
                          Lum8u* pBuffer)
{
    return layPyramid(ppPyr, level, roiSize, rate, pPyrMem, pBuffer);
}

LumStatus lumiPyramidInit_L(LumiPyramidRecord** ppPyr, Lum32s level, LumiSizeL roiSize, Lum32f rate, Lum8u* pPyrMem,
                            Lum8u* pBuffer)
{
    return layPyramid(ppPyr, level, roiSize, rate, pPyrMem, pBuffer);
}
