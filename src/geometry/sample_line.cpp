// Line sampling: the pixels that an integer midpoint walk meets.
#include <algorithm>
#include <cstdlib>

#include "frame/checks.hpp"
#include "lumcv/geometry.h"

namespace lumcv {
namespace {

bool isInside(LumiPoint point, LumiSize size)
{
    return point.x >= 0 && point.x < size.width && point.y >= 0 && point.y < size.height;
}

/// Copies the pixels of the walk. Steps are in bytes; rows may stand at any byte address.
template <int pixelBytes>
void walk(const void* first, void* samples, int64_t major, int64_t minor, int64_t majorStep, int64_t minorStep)
{
    const auto* pixel = static_cast<const Lum8u*>(first);
    auto* sample = static_cast<Lum8u*>(samples);
    int64_t error = major;
    for (int64_t left = major;; --left) {
        __builtin_memcpy(sample, pixel, pixelBytes);
        if (left == 0)
            return;
        sample += pixelBytes;
        error -= 2 * minor;
        const int64_t ifMinor = error >> 63;  // no branch: where the minor steps come is not to be foretold
        error += 2 * major & ifMinor;
        pixel += majorStep + (minorStep & ifMinor);
    }
}

template <int channels, class T>
LumStatus sampleLine(Plane<const T> src, LumiSize size, T* pDst, LumiPoint begin, LumiPoint end)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, pDst)
                            .size(size)
                            .step(src, rowElements(size.width, channels))
                            .require(isInside(begin, size) && isInside(end, size), lumErrOutOfRange);
    if (checks.failed())
        return checks.status();

    constexpr int pixelBytes = channels * static_cast<int>(sizeof(T));
    const int64_t dx = int64_t{end.x} - begin.x, dy = int64_t{end.y} - begin.y;
    const int64_t columns = std::abs(dx), rows = std::abs(dy);
    const int64_t columnStep = dx < 0 ? -pixelBytes : pixelBytes;
    const int64_t rowStep = dy < 0 ? -src.step : src.step;
    const auto* const first = reinterpret_cast<const Lum8u*>(src.row(begin.y)) + int64_t{begin.x} * pixelBytes;
    if (columns > rows)
        walk<pixelBytes>(first, pDst, columns, rows, columnStep, rowStep);
    else
        walk<pixelBytes>(first, pDst, rows, columns, rowStep, columnStep);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiSampleLine_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst, LumiPoint pt1,
                                LumiPoint pt2)
{
    return sampleLine<1>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}

LumStatus lumiSampleLine_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst, LumiPoint pt1,
                                LumiPoint pt2)
{
    return sampleLine<3>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}

LumStatus lumiSampleLine_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst, LumiPoint pt1,
                                 LumiPoint pt2)
{
    return sampleLine<1>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}

LumStatus lumiSampleLine_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst, LumiPoint pt1,
                                 LumiPoint pt2)
{
    return sampleLine<3>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}

LumStatus lumiSampleLine_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst, LumiPoint pt1,
                                 LumiPoint pt2)
{
    return sampleLine<1>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}

LumStatus lumiSampleLine_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst, LumiPoint pt1,
                                 LumiPoint pt2)
{
    return sampleLine<3>(source(pSrc, srcStep), roiSize, pDst, pt1, pt2);
}
