// Which pixels pass: the tests of the three families, for a vector of channel values. Vector j of a block of pixels is
// the one that begins N * j channels behind its start.
#pragma once

#include <limits>

#include "segment/flood_rows.hpp"

namespace lumcv::flood {

/// The value of the seed.
template <class T, int channels>
class Equal
{
  public:
    explicit Equal(const T* seed) : value_(seed) {}

    template <int N>
    [[gnu::always_inline]] simd::Mask<T, N> operator()(simd::Vec<T, N> c, int j) const
    {
        return simd::equal(c, value_.template vector<N>(j));
    }

  private:
    Pattern<T, channels> value_;
};

/// For each channel what `form` makes of it.
template <class T, int channels, class Form>
Pattern<T, channels> formed(Form form)
{
    Values<T, channels> values;
    for (int i = 0; i < channels; ++i)
        values.of[i] = form(i);
    return Pattern<T, channels>(values.of);
}

/// A range around the value of the seed.
template <class T, int channels>
class Within
{
  public:
    Within(const T* seed, const T* minDelta, const T* maxDelta)
        : lowest_(formed<T, channels>([=](int i) { return lowest(seed[i], minDelta[i]); })),
          highest_(formed<T, channels>([=](int i) { return highest(seed[i], maxDelta[i]); }))
    {
    }

    template <int N>
    [[gnu::always_inline]] simd::Mask<T, N> operator()(simd::Vec<T, N> c, int j) const
    {
        const auto low = lowest_.template vector<N>(j), high = highest_.template vector<N>(j);
        if constexpr (std::is_floating_point_v<T>)
            return simd::atMost(low, c) & simd::atMost(c, high);
        else
            return simd::equal(simd::min(simd::max(c, low), high), c);
    }

  private:
    static T lowest(T value, T delta)
    {
        return std::is_integral_v<T> && value < delta ? T{0} : static_cast<T>(value - delta);
    }

    static T highest(T value, T delta)
    {
        constexpr T greatest = std::numeric_limits<T>::max();
        return std::is_integral_v<T> && delta > greatest - value ? greatest : static_cast<T>(value + delta);
    }

    Pattern<T, channels> lowest_, highest_;
};

/// A range around the value of a neighbour.
template <class T, int channels>
class Near
{
  public:
    Near(const T* minDelta, const T* maxDelta)
        : first_(formed<T, channels>([=](int i) { return first(minDelta[i], maxDelta[i]); })),
          second_(formed<T, channels>([=](int i) { return second(minDelta[i], maxDelta[i]); }))
    {
    }

    template <int N>
    [[gnu::always_inline]] simd::Mask<T, N> operator()(simd::Vec<T, N> c, simd::Vec<T, N> a, int j) const
    {
        const auto first = first_.template vector<N>(j), second = second_.template vector<N>(j);
        if constexpr (std::is_floating_point_v<T>)
            return simd::atMost(simd::magnitude(c - a + first), second);
        else {
            const auto excess = simd::subtractSaturated(simd::subtractSaturated(a, c), first) |
                                simd::subtractSaturated(simd::subtractSaturated(c, a), second);
            return simd::equal(excess, simd::broadcast<N>(T{0}));
        }
    }

  private:
    /// Integers: how far below and how far above. Floats: what shifts the range to around 0, and how far it reaches.
    static T first(T minDelta, T maxDelta)
    {
        return std::is_integral_v<T> ? minDelta : static_cast<T>((minDelta - maxDelta) * 0.5f);
    }

    static T second(T minDelta, T maxDelta)
    {
        return std::is_integral_v<T> ? maxDelta : static_cast<T>((minDelta + maxDelta) * 0.5f);
    }

    Pattern<T, channels> first_, second_;
};

}  // namespace lumcv::flood
