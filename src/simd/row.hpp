// Walking a row in vectors: how the last, incomplete vector is dealt with.
#pragma once

#include <cstdint>
#include <type_traits>

namespace lumcv::simd {

/// A lane count that a kernel's body takes as a compile-time argument: `[](int64_t x, auto lanes) { ...
/// load<lanes>(...) }`.
template <int N>
using Lanes = std::integral_constant<int, N>;

/// The vector of the rests: the narrowest that is native for every element type at every level.
inline constexpr int restLanes = 16;

/// The vector that a row is walked in if it is too short for one of N lanes.
template <int N>
inline constexpr int shorterLanes = N / 4 > restLanes ? N / 4 : restLanes;

/// Calls body(x, lanes) so that every element of [begin, end) belongs to exactly one call: for operations in place.
template <int N, class Body>
[[gnu::always_inline]] inline void eachOnce(int64_t begin, int64_t end, Body body)
{
    int64_t x = begin;
    for (; x + N <= end; x += N)
        body(x, Lanes<N>{});
    if constexpr (N > restLanes)
        for (; x + restLanes <= end; x += restLanes)
            body(x, Lanes<restLanes>{});
    for (; x < end; ++x)
        body(x, Lanes<1>{});
}

/// Calls body(x, lanes) so that every element of [begin, end) belongs to some call: the last vector may overlap the one
/// before it.
template <int N, class Body>
[[gnu::always_inline]] inline void eachAtLeastOnce(int64_t begin, int64_t end, Body body)
{
    if (end - begin >= N) {
        int64_t x = begin;
        for (; x + N <= end; x += N)
            body(x, Lanes<N>{});
        if (x < end)
            body(end - N, Lanes<N>{});
    } else if constexpr (N > restLanes)
        eachAtLeastOnce<shorterLanes<N>>(begin, end, body);
    else
        for (int64_t x = begin; x < end; ++x)
            body(x, Lanes<1>{});
}

}  // namespace lumcv::simd
