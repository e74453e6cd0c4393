// Chamfer distance: the least sum of steps to a zero pixel that a pass down and a pass up find.
#include "distance/chamfer_steps.hpp"
#include "distance/chamfer_wave.hpp"
#include "distance/transform_checks.hpp"
#include "lumcv/distance.h"

namespace lumcv {
namespace {

using chamfer::Mask;
using chamfer::Steps;

template <class T>
void pass(const Steps<T>& steps, const auto& rows)
{
    switch (steps.mask) {
        case Mask::cityBlock:
            return chamfer::pass<Mask::cityBlock>(steps, rows);
        case Mask::square:
            return chamfer::pass<Mask::square>(steps, rows);
        case Mask::heavyEdge:
            return chamfer::pass<Mask::heavyEdge>(steps, rows);
        case Mask::regular:
            return chamfer::pass<Mask::regular>(steps, rows);
        case Mask::extended:
            return chamfer::pass<Mask::extended>(steps, rows);
    }
}

/// Lowers single pixels among the rows from `top` on.
template <class T>
struct Relaxation
{
    Plane<T> image;
    LumiSize size;
    Lum32s top;
    std::array<chamfer::Candidate<T>, 12> candidates;

    /// Whether the candidates of one side, before (1) or behind (-1) the pixel, lower it.
    bool lower(Lum32s x, Lum32s y, int side) const
    {
        T* const pixel = image.row(y) + x;
        const T before = *pixel;
        T least = before;
        for (const auto& candidate : candidates) {
            const Lum32s fromX = x + side * candidate.dx, fromY = y + side * candidate.dy;
            if (fromX < 0 || fromX >= size.width || fromY < top || fromY >= size.height)
                continue;
            using V = simd::Vec<T, 1>;
            least = chamfer::lesser(chamfer::plus(V{image.row(fromY)[fromX]}, V{candidate.weight}).raw, least);
        }
        *pixel = least;
        return least < before;
    }
};

constexpr Lum32s bandRows = 4;

/// The last rows of an extended mask, column after column to and fro until nothing changes.
template <class T>
void settleBand(Plane<T> image, LumiSize size, const Steps<T>& steps)
{
    const Relaxation<T> band{image, size, size.height - bandRows, chamfer::candidates(steps)};
    const auto column = [&](Lum32s x) {
        bool isChanged = false;
        for (Lum32s y = band.top; y < size.height; ++y) {
            isChanged |= band.lower(x, y, 1);
            isChanged |= band.lower(x, y, -1);
        }
        return isChanged;
    };
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (Lum32s x = 0; x < size.width; ++x)
            isChanged |= column(x);
        for (Lum32s x = size.width - 1; x >= 0; --x)
            isChanged |= column(x);
    }
}

/// Passes of an extended mask over an image that is too small for its band, until nothing changes.
template <class T>
void settleSmall(Plane<const Lum8u> src, Plane<T> image, LumiSize size, const Steps<T>& steps)
{
    for (Lum32s y = 0; y < size.height; ++y)
        for (Lum32s x = 0; x < size.width; ++x)
            image.row(y)[x] = src.row(y)[x] ? chamfer::saturation<T> : T{0};
    const Relaxation<T> whole{image, size, 0, chamfer::candidates(steps)};
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (Lum32s y = 0; y < size.height; ++y)
            for (Lum32s x = 0; x < size.width; ++x)
                isChanged |= whole.lower(x, y, 1);
        for (Lum32s y = size.height - 1; y >= 0; --y)
            for (Lum32s x = size.width - 1; x >= 0; --x)
                isChanged |= whole.lower(x, y, -1);
    }
}

template <class T>
void distances(Plane<const Lum8u> src, Plane<T> dst, LumiSize size, const Steps<T>& steps)
{
    const bool isExtended = steps.mask == Mask::extended;
    if (isExtended && (size.width < bandRows || size.height < bandRows))
        return settleSmall(src, dst, size, steps);
    pass(steps, chamfer::Forward<T>{src, dst, size});
    if (isExtended)
        settleBand(dst, size, steps);
    pass(steps, chamfer::Backward<T>{dst, size, isExtended ? bandRows : 0});
}

template <int kernelSize, class T, class Metric>
LumStatus transform(Plane<const Lum8u> src, Plane<T> dst, LumiSize size, const Metric* metrics)
{
    auto checks = transformChecks(src, dst, size, metrics);
    if (checks.failed())
        return checks.status();
    for (int i = 0; i < (kernelSize == 3 ? 2 : 3); ++i)
        checks.require(!(Metric{0} >= metrics[i]), lumErrMetric);
    if (checks.failed())
        return checks.status();
    if constexpr (kernelSize == 3)
        distances(src, dst, size, chamfer::stepsOf3x3<T>(metrics[0], metrics[1], size));
    else
        distances(src, dst, size, chamfer::stepsOf5x5<T>(metrics[0], metrics[1], metrics[2], size));
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiDistanceTransform_3x3_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_3x3_8u16u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_3x3_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, const Lum32f* pMetrics)
{
    return transform<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_3x3_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<3>(source(pSrcDst, srcDstStep), destination(pSrcDst, srcDstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_5x5_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<5>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_5x5_8u16u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<5>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_5x5_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, const Lum32f* pMetrics)
{
    return transform<5>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pMetrics);
}

LumStatus lumiDistanceTransform_5x5_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, const Lum32s* pMetrics)
{
    return transform<5>(source(pSrcDst, srcDstStep), destination(pSrcDst, srcDstStep), roiSize, pMetrics);
}
