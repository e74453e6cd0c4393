// Straight integral images. An entry is the running total of its row, which begins at 0, added to the entry above. Two
// rows are summed at a time: the second reads the entries above it from registers, and hides the time that the first
// one's total takes from group to group. Meanwhile, the two that come next are asked for.
#include <algorithm>

#include "frame/next_row.hpp"
#include "integral/tables.hpp"
#include "lumcv/integral.h"

namespace lumcv {
namespace {

using simd::ByteSquareSum;
using simd::ByteSum;

/// Pixels of a row whose running total an integer of 32 bits holds, and T without rounding: 65792 bytes are 16776960 at
/// most, which is below 2^24, and 32768 squares 2130739200.
template <class T>
inline constexpr int64_t exactPixels = std::is_same_v<T, Lum32s>   ? INT64_MAX
                                       : std::is_same_v<T, Lum32f> ? 65792
                                                                   : 32768;

template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> converted(simd::Vec<Lum32s, N> totals)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return simd::toFloat(totals);
    else if constexpr (std::is_same_v<T, Lum64f>)
        return simd::toDouble(totals);
    else
        return totals;
}

/// Source rows and the entries that they give, in order; `above` are the entries above the first of them. All begin in
/// column 1.
template <class S, class T, int rows>
struct RowBlock
{
    RowBlock(Plane<const S> src, Plane<T> table, int64_t y, LumiSize roiSize) : above(table.row(y) + 1)
    {
        for (int k = 0; k < rows; ++k) {
            source[k] = src.row(y + k);
            entries[k] = table.row(y + k + 1) + 1;
        }
        const bool asks = y + 2 * rows <= roiSize.height && asksForNextRow(roiSize.width, roiSize.height);
        sourceAhead = asks ? rows * src.step : 0;
        entriesAhead = asks ? rows * table.step : 0;
    }

    const S* source[rows];
    const T* above;
    T* entries[rows];
    int64_t sourceAhead;   ///< bytes from a row to the same one of the next block, or 0
    int64_t entriesAhead;  ///< and from its entries to theirs

    /// The pixels to take from column x on until entries are aligned to a register.
    int64_t unaligned(int64_t x) const
    {
        return static_cast<int64_t>(-reinterpret_cast<uintptr_t>(entries[0] + x) % simd::registerBytes<T> / sizeof(T));
    }

    /// Asks for N columns of the next block, entries too: what is only written would otherwise be waited for.
    template <int N>
    [[gnu::always_inline]] void prefetchNext(int64_t x) const
    {
        if (entriesAhead == 0)
            return;
        for (int k = 0; k < rows; ++k) {
            simd::prefetch<N>(rowAt(source[k] + x, sourceAhead, 1));
            simd::prefetch<N>(static_cast<const T*>(rowAt(entries[k] + x, entriesAhead, 1)));
        }
    }
};

/// Sums the columns from `begin` to `end`, which are no more than exactPixels. The running totals begin at `start`, and
/// are left there; it is 0 unless T is Lum64f.
template <class Term, class T, int rows>
[[gnu::flatten]] void sumColumns(const RowBlock<Lum8u, T, rows>& block, int64_t begin, int64_t end, T (&start)[rows])
{
    Lum32s totals[rows] = {};
    const auto walk = [&](auto lanes, int64_t x, int64_t until) {
        if (x + lanes > until)
            return x;
        simd::Total<lanes> total[rows];
        const Lum8u* source[rows];
        T* entries[rows];
        for (int k = 0; k < rows; ++k) {
            total[k] = simd::broadcast<simd::totalLanes<lanes>>(totals[k]);
            source[k] = block.source[k];
            entries[k] = block.entries[k];
        }
        for (; x + lanes <= until; x += lanes) {
            auto sums = simd::load<lanes>(block.above + x);
#pragma GCC unroll 2
            for (int k = 0; k < rows; ++k) {
                auto ofRow = converted<T>(simd::runningTotals<Term, lanes>(source[k] + x, total[k]));
                if constexpr (std::is_same_v<T, Lum64f>)
                    ofRow = ofRow + simd::broadcast<lanes>(start[k]);
                sums = ofRow + sums;
                simd::store(entries[k] + x, sums);
            }
            if constexpr (lanes == 16)
                block.template prefetchNext<lanes>(x);
        }
        for (int k = 0; k < rows; ++k)
            totals[k] = simd::valueOf(total[k]);
        return x;
    };
    const int64_t aligned = std::min(begin + block.unaligned(begin), end);
    int64_t x = walk(simd::Lanes<1>{}, begin, begin + (aligned - begin) % 4);
    x = walk(simd::Lanes<4>{}, x, aligned);
    x = walk(simd::Lanes<16>{}, x, end);
    x = walk(simd::Lanes<4>{}, x, end);
    walk(simd::Lanes<1>{}, x, end);
    for (int k = 0; k < rows; ++k)
        start[k] = start[k] + static_cast<T>(totals[k]);
}

/// The sums of a block's rows.
template <class Term, class T, int rows>
void sumRows(const RowBlock<Lum8u, T, rows>& block, int64_t width)
{
    T totals[rows] = {};
    if constexpr (std::is_same_v<T, Lum64f>) {
        for (int64_t x = 0; x < width; x += exactPixels<T>)
            sumColumns<Term>(block, x, std::min(x + exactPixels<T>, width), totals);
    } else {
        const int64_t exact = std::min(exactPixels<T>, width);
        sumColumns<Term>(block, 0, exact, totals);
        for (int k = 0; k < rows; ++k) {
            const T* above = k == 0 ? block.above : block.entries[k - 1];
            T total = totals[k];
            for (int64_t x = exact; x < width; ++x) {
                total += static_cast<T>(Term::of(block.source[k][x]));
                block.entries[k][x] = total + above[x];
            }
        }
    }
}

/// The sums of a block's rows of floats.
template <int rows>
[[gnu::flatten]] void sumFloatRows(const RowBlock<Lum32f, Lum32f, rows>& block, int64_t width)
{
    simd::Vec<Lum32f, 4> total[rows];
    for (int k = 0; k < rows; ++k)
        total[k] = simd::broadcast<4>(0.0f);
    int64_t x = 0;
    for (; x + 4 <= width; x += 4) {
        block.template prefetchNext<4>(x);
        auto sums = simd::load<4>(block.above + x);
#pragma GCC unroll 4
        for (int k = 0; k < rows; ++k) {
            sums = simd::runningSums(simd::load<4>(block.source[k] + x), total[k]) + sums;
            simd::store(block.entries[k] + x, sums);
        }
    }
    for (int k = 0; k < rows; ++k) {
        const Lum32f* above = k == 0 ? block.above : block.entries[k - 1];
        Lum32f rest = total[k].raw[0];
        for (int64_t i = x; i < width; ++i) {
            rest += block.source[k][i];
            block.entries[k][i] = rest + above[i];
        }
    }
}

/// Sums `rows` rows into a table.
template <int rows, class S, class Term, class T>
void integrateRows(Plane<const S> src, Table<Term, T> table, int64_t y, LumiSize roiSize)
{
    const RowBlock<S, T, rows> block(src, table.entries, y, roiSize);
    for (int k = 0; k < rows; ++k)
        block.entries[k][-1] = table.initial;
    if constexpr (std::is_same_v<S, Lum32f>)
        sumFloatRows(block, roiSize.width);
    else
        sumRows<Term>(block, roiSize.width);
}

template <class S, class... Term, class... T>
LumStatus integral(Plane<const S> src, LumiSize roiSize, Table<Term, T>... tables)
{
    const LumStatus status = checkTables(src, roiSize, 1, tables.entries...);
    if (status != lumOk)
        return status;
    constexpr int rows = 2;
    (fill(tables.entries.pixels, int64_t{roiSize.width} + 1, tables.initial), ...);
    int64_t y = 0;
    for (; y + rows <= roiSize.height; y += rows)
        (integrateRows<rows>(src, tables, y, roiSize), ...);
    for (; y < roiSize.height; ++y)
        (integrateRows<1>(src, tables, y, roiSize), ...);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep, LumiSize roiSize,
                                 Lum32s val)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<ByteSum>(pDst, dstStep, val));
}

LumStatus lumiIntegral_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                 Lum32f val)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<ByteSum>(pDst, dstStep, val));
}

LumStatus lumiIntegral_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<Lum32f>(pDst, dstStep, 0.0f));
}

LumStatus lumiSqrIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep, Lum32s* pSqr,
                                    Lum32s sqrStep, LumiSize roiSize, Lum32s val, Lum32s valSqr)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<ByteSum>(pDst, dstStep, val),
                    tableOf<ByteSquareSum>(pSqr, sqrStep, valSqr));
}

LumStatus lumiSqrIntegral_8u32s64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep, Lum64f* pSqr,
                                       Lum32s sqrStep, LumiSize roiSize, Lum32s val, Lum64f valSqr)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<ByteSum>(pDst, dstStep, val),
                    tableOf<ByteSquareSum>(pSqr, sqrStep, valSqr));
}

LumStatus lumiSqrIntegral_8u32f64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, Lum64f* pSqr,
                                       Lum32s sqrStep, LumiSize roiSize, Lum32f val, Lum64f valSqr)
{
    return integral(source(pSrc, srcStep), roiSize, tableOf<ByteSum>(pDst, dstStep, val),
                    tableOf<ByteSquareSum>(pSqr, sqrStep, valSqr));
}
