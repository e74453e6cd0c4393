// The coefficients of a one-dimensional kernel, as a sum of products reads them.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

/// A count that is known when the code is compiled; the coefficients stay in registers.
template <int k, class T = Lum32f>
struct FixedTaps
{
    static constexpr bool isFixed = true;
    T t[k];

    explicit FixedTaps(const T* coefficients)
    {
        for (int i = 0; i < k; ++i)
            t[i] = coefficients[i];
    }

    static constexpr int count()
    {
        return k;
    }
};

/// Any count, read from memory.
template <class T>
struct StoredTaps
{
    static constexpr bool isFixed = false;
    const T* t;
    int64_t k;

    int64_t count() const
    {
        return k;
    }
};

using AnyTaps = StoredTaps<Lum32f>;

/// Calls run(taps): the counts that have code of their own, and all others.
template <class T, class Run>
inline void withTaps(const T* coefficients, int64_t k, Run run)
{
    if (k == 3)
        run(FixedTaps<3, T>(coefficients));
    else if (k == 5)
        run(FixedTaps<5, T>(coefficients));
    else
        run(StoredTaps<T>{coefficients, k});
}

/// The floats of a pixel, as loops over rows want them: a single one is known when they are compiled, which makes them
/// faster; for the others one code serves all counts.
template <int channels>
constexpr auto channelCount()
{
    if constexpr (channels == 1)
        return std::integral_constant<int64_t, 1>{};
    else
        return int64_t{channels};
}

template <int channels>
using ChannelCount = decltype(channelCount<channels>());

/// Lanes of a step that yields T: a whole register of results, and enough sums in flight to hide the latency of their
/// additions.
template <class T, class Taps>
constexpr int stepLanes()
{
    constexpr int sums = (Taps::isFixed ? 2 : 8) * simd::registerLanes<Lum32f>;
    return simd::registerLanes<T> > sums ? simd::registerLanes<T> : sums;
}

}  // namespace lumcv
