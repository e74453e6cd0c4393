// Tilted integral images. An entry depends on the two rows above it alone, so rows are computed in vectors.
#include "integral/tables.hpp"
#include "lumcv/integral.h"

namespace lumcv {
namespace {

/// Integers in 32 bits and modulo 2^32, all else in double precision.
template <class T>
using Sum = std::conditional_t<std::is_same_v<T, Lum32s>, Lum32s, Lum64f>;

template <int N, class T>
[[gnu::always_inline]] inline simd::Vec<Sum<T>, N> loadSum(const T* entries)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        return simd::toDouble(simd::load<N>(entries));
    else
        return simd::load<N>(entries);
}

template <class T, int N>
[[gnu::always_inline]] inline void storeSum(T* entries, simd::Vec<Sum<T>, N> sums)
{
    if constexpr (std::is_same_v<T, Lum32f>)
        simd::store(entries, simd::toSingle(sums));
    else
        simd::store(entries, sums);
}

struct Pixel
{
    template <class T, int N>
    [[gnu::always_inline]] static inline simd::Vec<Sum<T>, N> load(const Lum8u* source)
    {
        const auto pixels = simd::loadWidened<N>(source);
        if constexpr (std::is_same_v<T, Lum32s>)
            return pixels;
        else
            return simd::toDouble(pixels);
    }
};

struct Square
{
    template <class T, int N>
    [[gnu::always_inline]] static inline simd::Vec<Sum<T>, N> load(const Lum8u* source)
    {
        const auto pixels = Pixel::load<T, N>(source);
        return pixels * pixels;
    }
};

/// Row r + 2 of the table from the rows r (far) and r + 1 (near) and row r of the source.
template <class Term, class T>
[[gnu::flatten]] void tiltedRow(const Lum8u* source, const T* far, const T* near, T* row, int64_t width)
{
    row[0] = near[1];
    simd::eachOnce<16>(0, width - 1, [=](int64_t x, auto lanes) {
        const auto before = loadSum<lanes>(near + x) - loadSum<lanes>(far + x + 1) + loadSum<lanes>(near + x + 2);
        storeSum(row + x + 1,
                 before + Term::template load<T, lanes>(source + x) + Term::template load<T, lanes>(source + x + 1));
    });
    storeSum(row + width, loadSum<1>(near + width - 1) - loadSum<1>(far + width) + loadSum<1>(near + width + 1) +
                              Term::template load<T, 1>(source + width - 1));
    row[width + 1] = near[width + 1];
}

template <class... Term, class... T>
LumStatus tiltedIntegral(Plane<const Lum8u> src, LumiSize roiSize, Table<Term, T>... tables)
{
    const LumStatus status = checkTables(src, roiSize, 2, tables.entries...);
    if (status != lumOk)
        return status;
    for (int y = 0; y < 2; ++y)
        (fill(tables.entries.row(y), int64_t{roiSize.width} + 2, tables.initial), ...);
    for (int64_t y = 0; y < roiSize.height; ++y)
        (tiltedRow<Term>(src.row(y), tables.entries.row(y), tables.entries.row(y + 1), tables.entries.row(y + 2),
                         roiSize.width),
         ...);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiTiltedIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                       LumiSize roiSize, Lum32s val)
{
    return tiltedIntegral(source(pSrc, srcStep), roiSize, tableOf<Pixel>(pDst, dstStep, val));
}

LumStatus lumiTiltedIntegral_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                       LumiSize roiSize, Lum32f val)
{
    return tiltedIntegral(source(pSrc, srcStep), roiSize, tableOf<Pixel>(pDst, dstStep, val));
}

LumStatus lumiTiltedSqrIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep, Lum32s* pSqr,
                                          Lum32s sqrStep, LumiSize roiSize, Lum32s val, Lum32s valSqr)
{
    return tiltedIntegral(source(pSrc, srcStep), roiSize, tableOf<Pixel>(pDst, dstStep, val),
                          tableOf<Square>(pSqr, sqrStep, valSqr));
}

LumStatus lumiTiltedSqrIntegral_8u32s64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                             Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32s val, Lum64f valSqr)
{
    return tiltedIntegral(source(pSrc, srcStep), roiSize, tableOf<Pixel>(pDst, dstStep, val),
                          tableOf<Square>(pSqr, sqrStep, valSqr));
}

LumStatus lumiTiltedSqrIntegral_8u32f64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32f val, Lum64f valSqr)
{
    return tiltedIntegral(source(pSrc, srcStep), roiSize, tableOf<Pixel>(pDst, dstStep, val),
                          tableOf<Square>(pSqr, sqrStep, valSqr));
}
