// Exact distance: squared distances along the columns, then along each row the lower envelope of the parabolas that
// stand on them, and the root.
#include <limits>

#include "distance/transform_checks.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/distance.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

constexpr Lum32f farthest = std::numeric_limits<Lum32f>::max();

/// The count of rows in a column that has met no zero pixel; one more does not wrap.
constexpr Lum32s countless = std::numeric_limits<Lum32s>::max() - 1;

constexpr int countLanes = 16;

/// The first half of the columns' work: the rows to the nearest zero pixel above, or in the row itself. Counts stand in
/// the destination until it gets its distances.
[[gnu::flatten]] void countDown(Plane<const Lum8u> src, Plane<Lum32f> dst, LumiSize size)
{
    for (int64_t y = 0; y < size.height; ++y) {
        const Lum8u* const pixels = src.row(y);
        auto* const counts = reinterpret_cast<Lum32s*>(dst.row(y));
        const auto* const above = reinterpret_cast<const Lum32s*>(dst.row(y - 1));
        simd::eachOnce<countLanes>(0, size.width, [=](int64_t x, auto lanes) {
            auto count = simd::broadcast<lanes>(countless);
            if (y > 0)
                count = simd::min(simd::load<lanes>(above + x) + simd::broadcast<lanes>(1), count);
            simd::store(counts + x, simd::keepWhere(pixels + x, count));
        });
    }
}

/// The work areas of a row, with an entry for each column.
struct RowScratch
{
    Lum32f* squares;      ///< k * k
    Lum32f* reciprocals;  ///< 0.5 / k
    Lum32s* below;        ///< counts of the row below
    Lum32f* heights;      ///< of the parabolas at their own column
    Lum32f* sums;         ///< a height and the square of its column
    Lum32s* owners;       ///< the column of the parabola of each interval
    Lum32f* starts;       ///< the left end of each interval
    Lum32s* takers;       ///< for each pixel the parabola that takes over there, or 0
    Lum32f* vertices;     ///< for each pixel the column of its parabola
    Lum32f* bases;        ///< and the height; before that where neighbouring parabolas meet

    RowScratch(Lum8u* pBuffer, int64_t width)
    {
        Room room(pBuffer);
        squares = room.take<Lum32f>(width);
        reciprocals = room.take<Lum32f>(width);
        below = room.take<Lum32s>(width);
        heights = room.take<Lum32f>(width);
        sums = room.take<Lum32f>(width);
        owners = room.take<Lum32s>(width);
        starts = room.take<Lum32f>(width + 1);
        takers = room.take<Lum32s>(width);
        vertices = room.take<Lum32f>(width);
        bases = room.take<Lum32f>(width);
        for (int64_t k = 0; k < width; ++k) {
            const auto number = static_cast<Lum32f>(k);
            squares[k] = number * number;
            reciprocals[k] = k == 0 ? 0 : static_cast<Lum32f>(0.5 / static_cast<Lum64f>(k));
        }
    }
};

/// The second half of the columns' work, upwards: squares the counts of a row, of which those from below are known.
[[gnu::flatten]] void squareCounts(const Lum32s* counts, bool isLast, const RowScratch& scratch, int64_t width)
{
    constexpr auto infinite = static_cast<Lum32f>(countless);
    simd::eachOnce<countLanes>(0, width, [=](int64_t x, auto lanes) {
        auto count = simd::load<lanes>(counts + x);
        if (!isLast)
            count = simd::min(simd::load<lanes>(scratch.below + x) + simd::broadcast<lanes>(1), count);
        simd::store(scratch.below + x, count);
        const auto number = simd::toFloat(count);
        const auto height = simd::select(simd::less(number, simd::broadcast<lanes>(infinite)), number * number,
                                         simd::broadcast<lanes>(farthest));
        simd::store(scratch.heights + x, height);
        simd::store(scratch.sums + x, height + simd::load<lanes>(scratch.squares + x));
    });
}

/// Finds the intervals of the lower envelope. Each parabola is the last one when it has come, so that the next one
/// meets the one right before it first: these meetings are known before.
[[gnu::flatten]] int64_t buildEnvelope(const RowScratch& scratch, int64_t width)
{
    const Lum32f* const sums = scratch.sums;
    Lum32f* const meetings = scratch.bases;
    simd::eachOnce<countLanes>(1, width, [=](int64_t q, auto lanes) {
        const auto half = simd::broadcast<lanes>(0.5f);
        simd::store(meetings + q, (simd::load<lanes>(sums + q) - simd::load<lanes>(sums + q - 1)) * half);
    });
    Lum32s* const owners = scratch.owners;
    Lum32f* const starts = scratch.starts;
    const Lum32f* const reciprocals = scratch.reciprocals;
    int64_t top = 0;
    Lum32f last = -farthest;
    owners[0] = 0;
    starts[0] = last;
    for (int64_t q = 1; q < width; ++q) {
        Lum32f start = meetings[q];
        if (!(start > last))
            do {  // the first interval begins before every meeting, so it is never dropped
                --top;
                const int64_t p = owners[top];
                start = (sums[q] - sums[p]) * reciprocals[q - p];
            } while (!(start > starts[top]));
        ++top;
        owners[top] = static_cast<Lum32s>(q);
        starts[top] = start;
        last = start;
    }
    return top + 1;
}

/// Finds the parabola of each pixel and calculates its distance.
[[gnu::flatten]] void fillRow(const RowScratch& scratch, int64_t intervals, Lum32f* row, int64_t width)
{
    // where a parabola takes over: the first pixel behind the start of its interval. The last one of a pixel wins.
    Lum32s* const takers = scratch.takers;
    simd::eachOnce<countLanes>(0, width,
                               [=](int64_t x, auto lanes) { simd::store(takers + x, simd::broadcast<lanes>(0)); });
    const auto end = static_cast<Lum32f>(width - 1);
    for (int64_t i = 1; i < intervals; ++i) {
        const Lum32f start = scratch.starts[i];
        if (start >= end)
            break;  // this one begins behind the row, as do all after it
        takers[start < 0 ? 0 : static_cast<int64_t>(start) + 1] = scratch.owners[i];
    }
    Lum32s owner = 0;
    for (int64_t q = 0; q < width; ++q) {
        owner = takers[q] > owner ? takers[q] : owner;
        scratch.vertices[q] = static_cast<Lum32f>(q - owner);
        scratch.bases[q] = scratch.heights[owner];
    }
    simd::eachOnce<countLanes>(0, width, [=](int64_t x, auto lanes) {
        const auto across = simd::load<lanes>(scratch.vertices + x);
        simd::store(row + x, simd::root(simd::load<lanes>(scratch.bases + x) + across * across));
    });
}

LumStatus trueDistance(Plane<const Lum8u> src, Plane<Lum32f> dst, LumiSize size, Lum8u* pBuffer)
{
    const auto checks = transformChecks(src, dst, size, pBuffer);
    if (checks.failed())
        return checks.status();
    countDown(src, dst, size);
    const RowScratch scratch(pBuffer, size.width);
    for (int64_t y = size.height - 1; y >= 0; --y) {
        Lum32f* const row = dst.row(y);
        squareCounts(reinterpret_cast<const Lum32s*>(row), y == size.height - 1, scratch, size.width);
        fillRow(scratch, buildEnvelope(scratch, size.width), row, size.width);
    }
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    const Bytes longer = roiSize.width > roiSize.height ? roiSize.width : roiSize.height;
    return storeSize(roundedUp(longer, 4) * 52 + 84, pBufferSize);
}

LumStatus lumiTrueDistanceTransform_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, Lum8u* pBuffer)
{
    return trueDistance(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pBuffer);
}
