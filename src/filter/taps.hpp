// The coefficients of a one-dimensional kernel, as a sum of products reads them.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

/// A count that is known when the code is compiled; the coefficients stay in registers.
template <int k>
struct FixedTaps
{
    static constexpr bool isFixed = true;
    Lum32f t[k];

    explicit FixedTaps(const Lum32f* coefficients)
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
struct AnyTaps
{
    static constexpr bool isFixed = false;
    const Lum32f* t;
    int64_t k;

    int64_t count() const
    {
        return k;
    }
};

/// Lanes of a step that yields T: a whole register of results, and enough sums in flight to hide the latency of their
/// additions.
template <class T, class Taps>
constexpr int stepLanes()
{
    constexpr int sums = (Taps::isFixed ? 2 : 8) * simd::registerLanes<Lum32f>;
    return simd::registerLanes<T> > sums ? simd::registerLanes<T> : sums;
}

}  // namespace lumcv
