// Lucas-Kanade optical flow between two pyramids.
//
// Levels go from coarse to fine. On each one the slopes of the whole first image are made once, and then every point
// that is still followed takes its steps: patches of the first image around the point, and in each step one of the
// second image around the estimate.
#include <climits>

#include "filter/derivative.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/pyramid.h"
#include "pyramid/flow_float_patches.hpp"
#include "pyramid/flow_slopes.hpp"
#include "pyramid/flow_word_patches.hpp"

struct LumOptFlowPyrLKState
{
    Lum32s width, height;  ///< of the largest level
    Lum32s elementKind;
    Lum32s reserved;
    Lum32s hint;
    Lum32s winSize;
    Lum8u* scratch;
};

namespace lumcv {

namespace {

constexpr uintptr_t scratchAlignment = 16;

/// The status byte names levels up to this one.
constexpr Lum32s highestLevel = SCHAR_MAX - 1;

// Size query.

Bytes wordStateBytes(Bytes area, Bytes window, Bytes filter)
{
    return 4 * area + 40 * window + 2 * filter + 130;
}

Bytes shortStateBytes(Bytes area, Bytes window, Bytes filter)
{
    return 48 * window + 4 * (3 * area + filter) + 124;
}

Bytes floatStateBytes(Bytes area, Bytes window, Bytes filter)
{
    return 48 * window + 8 * area + 4 * filter + 124;
}

LumStatus stateSize(Lum32s winSize, LumiSize roiSize, LumDataType dataType, Lum32s* pStateSize)
{
    const bool isType = dataType == lumType8u || dataType == lumType16u || dataType == lumType32f;
    const LumStatus status = Checks{}
                                 .require(winSize >= 1, lumErrSize)
                                 .size(roiSize)
                                 .require(isType, lumErrDataType)
                                 .notNull(pStateSize)
                                 .status();
    if (status != lumOk)
        return status;
    const Bytes area = (Bytes{roiSize.width} + 5) * (Bytes{roiSize.height} + 5);
    const Bytes window = (Bytes{winSize} + 3) * (Bytes{winSize} + 3);
    const Bytes filter =
        derivativeScratch(widened(roiSize), lumMask3x3, dataType == lumType8u ? lumType8u : lumType32f);
    return storeSize(dataType == lumType8u    ? wordStateBytes(area, window, filter)
                     : dataType == lumType16u ? shortStateBytes(area, window, filter)
                                              : floatStateBytes(area, window, filter),
                     pStateSize);
}

// Init.

LumStatus initState(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize, Lum32s hint, Lum8u* pStateBuf)
{
    const LumStatus status =
        Checks{}.require(winSize >= 1, lumErrSize).size(roiSize).notNull(ppState, pStateBuf).status();
    if (status != lumOk)
        return status;
    auto* const record = alignedIn<LumOptFlowPyrLKState>(pStateBuf);
    Lum8u* const behind = reinterpret_cast<Lum8u*>(record + 1);
    *record = {roiSize.width, roiSize.height, 1, 1, hint, winSize, alignedUp(behind, scratchAlignment)};
    *ppState = reinterpret_cast<LumOptFlowPyrLKState*>(pStateBuf);
    return lumOk;
}

// Apply.

template <class T>
struct FlowLevel
{
    Plane<const T> image;
    LumiSize size;

    FlowLevel(const LumiPyramidRecord& pyramid, Lum32s level)
        : image{static_cast<const T*>(pyramid.ppLayers[level]), pyramid.pLayerSteps[level]},
          size(pyramid.pLayerSizes[level])
    {
    }
};

struct FlowLimits
{
    Lum32s winSize, maxIter;
    Lum32f threshold;
};

/// What a level does to a point: where it is now, whether it is lost, and if it is not, how well it fits.
struct FlowResult
{
    FlowPoint position;
    bool isLost;
    Lum32f error;
};

/// One level, ready for its points.
template <class Patches>
class PointFlow
{
  public:
    using Pixel = typename Patches::Pixel;
    using Slope = typename Patches::Slope;

    PointFlow(FlowLevel<Pixel> first, FlowLevel<Pixel> second, FlowSlopes<Slope> slopes, FlowLimits limits,
              Lum8u* block)
        : first_(first),
          second_(second),
          slopes_(slopes),
          limits_(limits),
          patches_(block, limits.winSize),
          copy_(reinterpret_cast<Pixel*>(block + Patches::bytes(limits.winSize)))
    {
    }

    /// Follows the point of the first image, beginning at an estimate in the second.
    FlowResult follow(FlowPoint point, FlowPoint estimate)
    {
        constexpr Lum64f smallestDeterminant = 2.220446049250313e-16;
        constexpr Lum64f swing = 0.00034526698300124393;  // the root of 1.1920928955078125e-07
        const Lum64f threshold = limits_.threshold;
        const FlowWindow window = FlowWindow::around(point, limits_.winSize, first_.size);
        FlowPoint position = estimate;
        FlowArea area;
        FlowMatrix g{};
        Lum64f lastX = 0, lastY = 0;
        for (Lum32s i = 0; i < limits_.maxIter; ++i) {
            const FlowWindow other = FlowWindow::around(position, limits_.winSize, second_.size);
            const FlowArea common = commonArea(window, other);
            if (common.isEmpty())
                return {position, true, 0};
            if (common != area) {
                area = common;
                g = patches_.take(FlowWeights::of(window), area, pixels(first_, window, area),
                                  slopes(slopes_.x, window, area), slopes(slopes_.y, window, area));
            }
            const FlowVector b = patches_.compare(FlowWeights::of(other), area, pixels(second_, other, area));
            const Lum64f determinant = g.xx * g.yy - g.xy * g.xy;
            if (!(determinant >= smallestDeterminant))
                return {position, true, 0};
            const Lum64f dx = (g.yy * b.x - g.xy * b.y) / determinant;
            const Lum64f dy = (g.xx * b.y - g.xy * b.x) / determinant;
            position = moved(position, dx, dy);
            if (dx * dx + dy * dy < threshold * threshold)
                break;
            if (__builtin_fabs(dx + lastX) < swing && __builtin_fabs(dy + lastY) < swing) {
                position = moved(position, -0.5 * dx, -0.5 * dy);
                break;
            }
            lastX = dx;
            lastY = dy;
        }
        return {position, false, error(area)};
    }

  private:
    static FlowPoint moved(FlowPoint point, Lum64f dx, Lum64f dy)
    {
        return {static_cast<Lum32f>(point.x + dx), static_cast<Lum32f>(point.y + dy)};
    }

    FlowPixels<Pixel> pixels(const FlowLevel<Pixel>& level, const FlowWindow& window, const FlowArea& area) const
    {
        return pixelsUnder(level.image, level.size.width, window, area, copy_, flowCopyStep(limits_.winSize));
    }

    /// Behind a plane of slopes lies more of the scratch, so that groups may reach beyond it.
    static FlowPixels<Slope> slopes(Plane<Slope> plane, const FlowWindow& window, const FlowArea& area)
    {
        return {{plane.row(window.y.first + area.top) + window.x.first + area.left, plane.step},
                window.x.isBetween(),
                window.y.isBetween()};
    }

    Lum32f error(const FlowArea& area) const
    {
        const Lum64f squares = patches_.squaredDifference(area);
        if (!(squares > 0))
            return 0;
        const auto samples = static_cast<Lum64f>(area.width * area.height);
        return static_cast<Lum32f>(__builtin_sqrt(squares / samples) * Patches::errorScale);
    }

    FlowLevel<Pixel> first_, second_;
    FlowSlopes<Slope> slopes_;
    FlowLimits limits_;
    Patches patches_;
    Pixel* copy_;
};

FlowPoint scaled(FlowPoint point, Lum64f scale)
{
    return {static_cast<Lum32f>(point.x * scale), static_cast<Lum32f>(point.y * scale)};
}

FlowPoint pointAt(const Lum32f* points, Lum32s i)
{
    return {points[2 * int64_t{i}], points[2 * int64_t{i} + 1]};
}

void setPoint(Lum32f* points, Lum32s i, FlowPoint point)
{
    points[2 * int64_t{i}] = point.x;
    points[2 * int64_t{i} + 1] = point.y;
}

bool servesLevels(const LumOptFlowPyrLKState& state, const LumiPyramidRecord& pyramid, Lum32s maxLev)
{
    for (Lum32s level = 0; level <= maxLev; ++level) {
        const LumiSize size = pyramid.pLayerSizes[level];
        if (size.width > state.width || size.height > state.height)
            return false;
    }
    return true;
}

template <class Patches>
LumStatus flow(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2, const Lum32f* pPrev, Lum32f* pNext,
               Lum8s* pStatus, Lum32f* pError, Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter,
               Lum32f threshold, LumOptFlowPyrLKState* pState)
{
    if (Checks{}.notNull(pPyr1, pPyr2, pState, pPrev, pNext, pStatus, pError).failed())
        return lumErrNullPointer;
    const LumOptFlowPyrLKState& state = *alignedIn<LumOptFlowPyrLKState>(static_cast<void*>(pState));
    if (numFeat < 1 || winSize < 1 || winSize != state.winSize)
        return lumErrSize;
    const bool isLevel = maxLev >= 0 && maxLev <= pPyr1->level && maxLev <= pPyr2->level && maxLev <= highestLevel;
    if (!isLevel || maxIter < 1 || threshold < 0)
        return lumErrArgument;
    if (!servesLevels(state, *pPyr1, maxLev))
        return lumErrSize;

    using Pixel = typename Patches::Pixel;
    using Slopes = FlowSlopes<typename Patches::Slope>;
    for (Lum32s i = 0; i < numFeat; ++i) {
        pStatus[i] = static_cast<Lum8s>(maxLev + 1);
        pError[i] = 0;
    }
    for (Lum32s l = maxLev; l >= 0; --l) {
        const FlowLevel<Pixel> first(*pPyr1, l), second(*pPyr2, l);
        const Slopes slopes(state.scratch, first.size);
        const LumStatus status = takeSlopes(first.image, first.size, slopes);
        if (status != lumOk)
            return status;
        Lum8u* const patches = state.scratch + roundedUp(Slopes::bytes(first.size), scratchAlignment);
        PointFlow<Patches> points(first, second, slopes, {winSize, maxIter, threshold}, patches);
        const Lum64f scale = pPyr1->pLayerScales[l];
        for (Lum32s i = 0; i < numFeat; ++i) {
            if (pStatus[i] != l + 1)  // lost on a level before
                continue;
            const FlowPoint point = scaled(pointAt(pPrev, i), scale);
            const FlowResult result = points.follow(point, l == maxLev ? point : scaled(pointAt(pNext, i), scale));
            setPoint(pNext, i, l == 0 ? result.position : scaled(result.position, 1.0 / scale));
            if (result.isLost)
                continue;
            pStatus[i] = static_cast<Lum8s>(l);
            pError[i] = result.error;
        }
    }
    return lumOk;
}

}  // namespace

}  // namespace lumcv

LumStatus lumiOpticalFlowPyrLKGetSize(Lum32s winSize, LumiSize roiSize, LumDataType dataType, Lum32s,
                                      Lum32s* pStateSize)
{
    return lumcv::stateSize(winSize, roiSize, dataType, pStateSize);
}

LumStatus lumiOpticalFlowPyrLKInit_8u_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize, Lum32s hint,
                                          Lum8u* pStateBuf)
{
    return lumcv::initState(ppState, roiSize, winSize, hint, pStateBuf);
}

LumStatus lumiOpticalFlowPyrLKInit_16u_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize,
                                           Lum32s hint, Lum8u* pStateBuf)
{
    return lumcv::initState(ppState, roiSize, winSize, hint, pStateBuf);
}

LumStatus lumiOpticalFlowPyrLKInit_32f_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize,
                                           Lum32s hint, Lum8u* pStateBuf)
{
    return lumcv::initState(ppState, roiSize, winSize, hint, pStateBuf);
}

LumStatus lumiOpticalFlowPyrLK_8u_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                      const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                      Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter, Lum32f threshold,
                                      LumOptFlowPyrLKState* pState)
{
    return lumcv::flow<lumcv::WordPatches>(pPyr1, pPyr2, pPrev, pNext, pStatus, pError, numFeat, winSize, maxLev,
                                           maxIter, threshold, pState);
}

LumStatus lumiOpticalFlowPyrLK_16u_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                       const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                       Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter, Lum32f threshold,
                                       LumOptFlowPyrLKState* pState)
{
    return lumcv::flow<lumcv::FloatPatches<Lum16u>>(pPyr1, pPyr2, pPrev, pNext, pStatus, pError, numFeat, winSize,
                                                    maxLev, maxIter, threshold, pState);
}

LumStatus lumiOpticalFlowPyrLK_32f_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                       const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                       Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter, Lum32f threshold,
                                       LumOptFlowPyrLKState* pState)
{
    return lumcv::flow<lumcv::FloatPatches<Lum32f>>(pPyr1, pPyr2, pPrev, pNext, pStatus, pError, numFeat, winSize,
                                                    maxLev, maxIter, threshold, pState);
}
