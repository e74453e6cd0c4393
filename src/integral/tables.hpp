// What straight and tilted integral images share: the checks, and filling with the initial value.
#pragma once

#include "frame/checks.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// A table of sums of Term, and its initial value.
template <class Term, class T>
struct Table
{
    Plane<T> entries;
    T initial;
};

template <class Term, class T>
Table<Term, T> tableOf(T* pDst, Lum32s dstStep, T initial)
{
    return {destination(pDst, dstStep), initial};
}

/// The checks of an integral image, whose tables have `extra` columns more than the source.
template <class S, class... T>
LumStatus checkTables(Plane<const S> src, LumiSize roiSize, Lum32s extra, Plane<T>... tables)
{
    const auto columns = static_cast<Lum32s>(static_cast<Lum32u>(roiSize.width) + static_cast<Lum32u>(extra));
    auto checks = Checks{}.notNull(src.pixels, tables.pixels...).size(roiSize).step(src, roiSize.width);
    (checks.step(tables, columns), ...);
    checks.alignment(src);
    (checks.alignment(tables), ...);
    return checks.status();
}

template <class T>
void fill(T* entries, int64_t count, T value)
{
    simd::eachAtLeastOnce<16>(0, count,
                              [=](int64_t x, auto lanes) { simd::store(entries + x, simd::broadcast<lanes>(value)); });
}

}  // namespace lumcv
