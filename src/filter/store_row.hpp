// Storing a row of results, rounded to the destination's type, through the caches or past them.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

/// The bytes to which a streamed store must be aligned at any level.
inline constexpr int64_t streamAlignment = 64;

/// Stores result(x, lanes), a vector of floats, for each x of a row of n elements. A row of a large image goes past the
/// caches, but for its ends; simd::fence() must follow the last such row.
template <int N, class T, class Result>
[[gnu::always_inline]] inline void storeRow(T* row, int64_t n, bool isLarge, Result result)
{
    const auto cached = [=](int64_t x, auto lanes) { simd::store(row + x, simd::roundTo<T>(result(x, lanes))); };
    const auto address = reinterpret_cast<uintptr_t>(row);
    if (isLarge && address % sizeof(T) == 0) {
        const auto head = static_cast<int64_t>(-address % streamAlignment / sizeof(T));
        if (head < n) {
            simd::eachAtLeastOnce<N>(0, head, cached);
            int64_t x = head;
            for (; x + N <= n; x += N)
                simd::stream(row + x, simd::roundTo<T>(result(x, simd::Lanes<N>{})));
            simd::eachAtLeastOnce<N>(x, n, cached);
            return;
        }
    }
    simd::eachAtLeastOnce<N>(0, n, cached);
}

}  // namespace lumcv
