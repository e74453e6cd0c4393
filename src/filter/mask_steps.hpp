// The steps that the fixed masks are made of, along a row or across rows. A step says how its taps, counted from the
// first one, are combined; in single precision that is the order in which it rounds.
#pragma once

#include <array>

#include "simd/simd.hpp"

namespace lumcv {

// factor * tap, for all that a tap can be: a number, the words of pixels, floats.

template <int factor>
constexpr int times(int tap)
{
    return factor * tap;
}

template <int factor, int N>
[[gnu::always_inline]] inline auto times(simd::SplitWords<N> tap)
{
    if constexpr (factor == 2)
        return tap + tap;
    else
        return tap * Lum16s{factor};
}

template <int factor, int N>
[[gnu::always_inline]] inline auto times(simd::Vec<Lum32f, N> tap)
{
    return tap * simd::broadcast<N>(Lum32f{factor});
}

/// A rule over `count` taps.
template <int count, auto rule>
struct Step
{
    static constexpr int size = count;

    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return rule(t);
    }

    /// The rule as a kernel: what it makes of a single 1 at each tap.
    static constexpr std::array<int, count> weights = [] {
        std::array<int, count> result{};
        for (int i = 0; i < count; ++i)
            result[static_cast<size_t>(i)] = rule([i](int tap) { return tap == i ? 1 : 0; });
        return result;
    }();
};

using Difference3 = Step<3, [](auto t) { return t(0) - t(2); }>;
using Difference5 = Step<5, [](auto t) { return t(0) + times<2>(t(1)) - times<2>(t(3)) - t(4); }>;

/// The opposite sense: right minus left, bottom minus top.
using NegatedDifference3 = Step<3, [](auto t) { return t(2) - t(0); }>;
using NegatedDifference5 = Step<5, [](auto t) { return t(4) + times<2>(t(3)) - times<2>(t(1)) - t(0); }>;

using SecondDifference5 = Step<5, [](auto t) { return t(0) + t(4) - times<2>(t(2)); }>;

using Smooth3 = Step<3, [](auto t) { return t(0) + t(2) + times<2>(t(1)); }>;
using Smooth5 = Step<5, [](auto t) { return t(0) + t(4) + times<6>(t(2)) + times<4>(t(1) + t(3)); }>;
using ScharrSmooth3 = Step<3, [](auto t) { return times<3>(t(0) + t(2)) + times<10>(t(1)); }>;

using Sum3 = Step<3, [](auto t) { return t(0) + t(1) + t(2); }>;
using Sum5 = Step<5, [](auto t) { return t(0) + t(1) + t(2) + t(3) + t(4); }>;

// What the 3x3 Laplacian keeps of a row.
using Neighbours3 = Step<3, [](auto t) { return t(0) + t(2); }>;
using EightfoldCentre3 = Step<3, [](auto t) { return times<8>(t(1)); }>;

}  // namespace lumcv
