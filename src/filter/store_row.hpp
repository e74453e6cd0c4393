// Storing a row of results through the caches or past them.
#pragma once

#include <array>
#include <cstring>

#include "simd/simd.hpp"

namespace lumcv {

/// Stores result(x, lanes) for each x of a row of n elements; it may be called more than once for an element. A row of
/// a large image goes past the caches, but for its ends; simd::fence() must follow the last such row.
template <int N, class T, class Result>
[[gnu::always_inline]] inline void storeRow(T* row, int64_t n, bool isLarge, Result result)
{
    const auto cached = [=](int64_t x, auto lanes) { simd::store(row + x, result(x, lanes)); };
    if (n < N) {
        simd::eachAtLeastOnce<simd::shorterLanes<N>>(0, n, cached);
        return;
    }
    // what a streamed store asks for at any level
    constexpr uintptr_t alignment = N * sizeof(T) < 64 ? N * sizeof(T) : 64;
    const auto address = reinterpret_cast<uintptr_t>(row);
    int64_t x = 0;
    if (isLarge && address % sizeof(T) == 0) {
        const auto begin = static_cast<int64_t>(-address % alignment / sizeof(T));
        for (x = begin; x + N <= n; x += N)
            simd::stream(row + x, result(x, simd::Lanes<N>{}));
        // a line that is written both ways costs much, so the ends stop short of what has been streamed
        struct End
        {
            int64_t from, to, at;  ///< where it begins and ends, and where the step is that yields it
        };
        for (const auto [from, to, at] : {End{0, begin, 0}, End{x, n, n - N}}) {
            if (from == to)
                continue;
            std::array<T, N> step;
            simd::store(step.data(), result(at, simd::Lanes<N>{}));
            std::memcpy(row + from, step.data() + (from - at), static_cast<size_t>(to - from) * sizeof(T));
        }
        return;
    }
    for (; x + N <= n; x += N)
        cached(x, simd::Lanes<N>{});
    if (x < n)
        cached(n - N, simd::Lanes<N>{});
}

}  // namespace lumcv
