// The steps that the fixed masks are made of, along a row or across rows. A step says how its taps, counted from the
// first one, are combined; in single precision that is the order in which it rounds.
#pragma once

#include <array>

#include "simd/simd.hpp"

namespace lumcv {

// factor * tap, for all that a tap can be: a number, the words of pixels, words in order, floats.

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
[[gnu::always_inline]] inline auto times(simd::Vec<Lum16s, N> tap)
{
    if constexpr (factor == 2)
        return tap + tap;
    else
        return tap * simd::broadcast<N>(Lum16s{factor});
}

template <int factor, int N>
[[gnu::always_inline]] inline auto times(simd::Vec<Lum32f, N> tap)
{
    return tap * simd::broadcast<N>(Lum32f{factor});
}

template <int count>
struct StepOf
{
    static constexpr int size = count;
};

struct Difference3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) - t(2);
    }
};

struct Difference5 : StepOf<5>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + times<2>(t(1)) - times<2>(t(3)) - t(4);
    }
};

/// The opposite sense: right minus left, bottom minus top.
struct NegatedDifference3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(2) - t(0);
    }
};

struct NegatedDifference5 : StepOf<5>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(4) + times<2>(t(3)) - times<2>(t(1)) - t(0);
    }
};

struct SecondDifference5 : StepOf<5>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(4) - times<2>(t(2));
    }
};

struct Smooth3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(2) + times<2>(t(1));
    }
};

struct Smooth5 : StepOf<5>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(4) + times<6>(t(2)) + times<4>(t(1) + t(3));
    }
};

struct ScharrSmooth3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return times<3>(t(0) + t(2)) + times<10>(t(1));
    }
};

struct Sum3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(1) + t(2);
    }
};

struct Sum5 : StepOf<5>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(1) + t(2) + t(3) + t(4);
    }
};

/// What the 3x3 Laplacian keeps of a row.
struct Neighbours3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return t(0) + t(2);
    }
};

struct TwofoldNeighbours3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return times<2>(t(0) + t(2));
    }
};

struct EightfoldCentre3 : StepOf<3>
{
    template <class Tap>
    [[gnu::always_inline]] static constexpr auto of(Tap t)
    {
        return times<8>(t(1));
    }
};

/// A step as a kernel: what it makes of a single 1 at each tap.
template <class Step>
inline constexpr auto weightsOf = [] {
    std::array<int, Step::size> weights{};
    for (int i = 0; i < Step::size; ++i)
        weights[static_cast<size_t>(i)] = Step::of([i](int tap) { return tap == i ? 1 : 0; });
    return weights;
}();

}  // namespace lumcv
