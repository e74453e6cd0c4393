// Sizes of the next smaller and of the next larger level.
#include "pyramid/level_sizes.hpp"

#include <algorithm>

#include "frame/checks.hpp"
#include "lumcv/pyramid.h"

namespace lumcv {
namespace {

int64_t scaled(int64_t side, Lum32f rate)
{
    return static_cast<int64_t>(static_cast<Lum32f>(side) * rate);
}

}  // namespace

SideRange sidesAbove(int64_t side, Lum32f rate)
{
    const int64_t below = scaled(side - 1, rate);
    const int64_t above = scaled(side, rate);
    return {side == 1 ? 1 : below < side ? side + 1 : below + 1, side < above ? above : side + 1};
}

int64_t sideBelow(int64_t side, Lum32f rate)
{
    int64_t below = std::max<int64_t>(static_cast<int64_t>(static_cast<Lum32f>(side) * (1.0f / rate) + 0.5f), 1);
    while (sidesAbove(below, rate).min > side)
        --below;
    while (sidesAbove(below, rate).max < side)
        ++below;
    return below;
}

int64_t levelsBelow(LumiSizeL size, Lum32f rate, int64_t most)
{
    int64_t levels = 0;
    for (; levels < most && (size.width > 1 || size.height > 1); ++levels)
        size = sizeBelow(size, rate);
    return levels;
}

namespace {

template <class Size>
LumStatus downSize(Size srcRoi, Size* pDstRoi, Lum32f rate)
{
    const auto checks = Checks{}
                            .notNull(pDstRoi)
                            .size(srcRoi)
                            .within31Bits(srcRoi.width, srcRoi.height)
                            .require(isRate(rate), lumErrArgument);
    if (checks.failed())
        return checks.status();
    pDstRoi->width = static_cast<decltype(Size::width)>(sideBelow(srcRoi.width, rate));
    pDstRoi->height = static_cast<decltype(Size::height)>(sideBelow(srcRoi.height, rate));
    return lumOk;
}

template <class Size>
LumStatus upSizes(Size srcRoi, Size* pDstRoiMin, Size* pDstRoiMax, Lum32f rate)
{
    using Side = decltype(Size::width);
    auto checks = Checks{}
                      .notNull(pDstRoiMin, pDstRoiMax)
                      .size(srcRoi)
                      .within31Bits(srcRoi.width, srcRoi.height)
                      .require(isRate(rate), lumErrArgument);
    if (checks.failed())
        return checks.status();
    const SideRange width = sidesAbove(srcRoi.width, rate);
    const SideRange height = sidesAbove(srcRoi.height, rate);
    if (sizeof(Side) == sizeof(Lum32s) && checks.within31Bits(width.min, width.max, height.min, height.max).failed())
        return checks.status();
    *pDstRoiMin = {static_cast<Side>(width.min), static_cast<Side>(height.min)};
    *pDstRoiMax = {static_cast<Side>(width.max), static_cast<Side>(height.max)};
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiGetPyramidDownROI(LumiSize srcRoi, LumiSize* pDstRoi, Lum32f rate)
{
    return downSize(srcRoi, pDstRoi, rate);
}

LumStatus lumiGetPyramidDownROI_L(LumiSizeL srcRoi, LumiSizeL* pDstRoi, Lum32f rate)
{
    return downSize(srcRoi, pDstRoi, rate);
}

LumStatus lumiGetPyramidUpROI(LumiSize srcRoi, LumiSize* pDstRoiMin, LumiSize* pDstRoiMax, Lum32f rate)
{
    return upSizes(srcRoi, pDstRoiMin, pDstRoiMax, rate);
}

LumStatus lumiGetPyramidUpROI_L(LumiSizeL srcRoi, LumiSizeL* pDstRoiMin, LumiSizeL* pDstRoiMax, Lum32f rate)
{
    return upSizes(srcRoi, pDstRoiMin, pDstRoiMax, rate);
}
