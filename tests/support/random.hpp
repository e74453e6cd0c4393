// Pixel values for tests: the same on every run, ordinary ones or a mix with the extremes of the type.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

#include "support/image.hpp"

namespace lumcv::test {

/// Which values are drawn.
enum class Values
{
    Ordinary,  ///< integers of the whole range; floats between -1000 and 1000 with all bits of the mantissa in use
    Extreme,   ///< the ends and the middle of the range among them; floats up to the largest, denormals and both zeros
    NonFinite  ///< for floats also infinities and not-a-numbers of both signs
};

/// A small generator with a fixed seed.
class Random
{
  public:
    explicit Random(std::uint64_t seed = 1) : state_(seed) {}

    std::uint64_t bits()
    {
        state_ += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// A number from first to last, both included.
    std::int64_t between(std::int64_t first, std::int64_t last)
    {
        const std::uint64_t count = static_cast<std::uint64_t>(last) - static_cast<std::uint64_t>(first) + 1;
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(first) + (count == 0 ? bits() : bits() % count));
    }

    bool oneIn(int n)
    {
        return between(1, n) == 1;
    }

    template <class T>
    T value(Values values)
    {
        const bool special = values != Values::Ordinary && oneIn(4);
        if constexpr (std::floating_point<T>) {
            return special ? specialFloat<T>(values) : static_cast<T>((unit<T>() * 2 - 1) * 1000);
        } else {
            return special ? specialInteger<T>() : static_cast<T>(bits());
        }
    }

    /// A number in [0, 1).
    template <std::floating_point T>
    T unit()
    {
        constexpr int digits = std::numeric_limits<T>::digits;
        return std::ldexp(static_cast<T>(bits() >> (64 - digits)), -digits);
    }

  private:
    template <class T>
    T specialInteger()
    {
        using Limits = std::numeric_limits<T>;
        const T middle = static_cast<T>(Limits::min() / 2 + Limits::max() / 2);
        const T choices[] = {Limits::min(),
                             static_cast<T>(Limits::min() + 1),
                             middle,
                             static_cast<T>(middle + 1),
                             static_cast<T>(Limits::max() - 1),
                             Limits::max(),
                             T{0},
                             T{1}};
        return choices[between(0, 7)];
    }

    template <class T>
    T specialFloat(Values values)
    {
        using Limits = std::numeric_limits<T>;
        const T finite[] = {T{0},          Limits::min(),     Limits::denorm_min(), Limits::min() * unit<T>(),
                            Limits::max(), Limits::epsilon(), Limits::max() / 3,    T{1}};
        const T nonFinite[] = {Limits::infinity(), Limits::quiet_NaN()};
        const T magnitude = values == Values::NonFinite && oneIn(2) ? nonFinite[between(0, 1)] : finite[between(0, 7)];
        return oneIn(2) ? -magnitude : magnitude;
    }

    std::uint64_t state_;
};

/// Fills the ROI, or the ROI with its margins, with values drawn one after the other.
template <class T>
void fill(Image<T>& image, Random& random, Values values = Values::Ordinary, Area area = Area::Roi)
{
    image.forEach(area, [&](T& element, int, int, int) { element = random.value<T>(values); });
}

/// Fills a mask: the given share of percent is zero, the others hold any non-zero byte.
inline void fillMask(Image<std::uint8_t>& mask, Random& random, int percentZero = 50)
{
    mask.forEach(Area::Roi, [&](std::uint8_t& element, int, int, int) {
        element =
            random.between(1, 100) <= percentZero ? std::uint8_t{0} : static_cast<std::uint8_t>(random.between(1, 255));
    });
}

}  // namespace lumcv::test
