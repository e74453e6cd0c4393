// The steps of a chamfer distance: which neighbours a pixel looks at, and what each step costs.
#pragma once

#include <array>
#include <limits>
#include <type_traits>

#include "simd/simd.hpp"

namespace lumcv::chamfer {

/// The distance of pixels that no zero pixel reaches.
template <class T>
inline constexpr T saturation = std::numeric_limits<T>::max();

/// What stands outside the image: no step from there is taken.
template <class T>
inline constexpr T outside = std::is_floating_point_v<T> ? std::numeric_limits<T>::infinity() : saturation<T>;

/// A distance and a step, or the greatest integer.
template <class T, int N>
[[gnu::always_inline]] inline simd::Vec<T, N> plus(simd::Vec<T, N> distance, simd::Vec<T, N> weight)
{
    if constexpr (std::is_floating_point_v<T>)
        return distance + weight;
    else
        return simd::addSaturated(distance, weight);
}

enum class Mask
{
    cityBlock,  ///< edge neighbours
    square,     ///< and diagonal ones
    heavyEdge,  ///< and, in the last row, straight steps of length two
    regular,    ///< edge, diagonal and knight's steps
    extended    ///< and straight and diagonal steps of length two
};

/// Weights above the saturation are lowered to it, which no distance can tell.
template <class T>
struct Steps
{
    Mask mask;
    T edge, diagonal, knight, straight, slant;
};

/// Weights of integer distances are calculated in 64 bits, where neither three times a weight nor the sum of two wraps.
template <class T>
using Weight = std::conditional_t<std::is_floating_point_v<T>, Lum32f, Lum64s>;

template <class T>
T limited(Weight<T> weight)
{
    if constexpr (std::is_floating_point_v<T>)
        return weight;
    else
        return static_cast<T>(weight < saturation<T> ? weight : saturation<T>);
}

template <class Number>
constexpr Number lesser(Number a, Number b)
{
    return a < b ? a : b;
}

/// a >= b, of floats with a tolerance.
inline bool reaches(Lum64s a, Lum64s b)
{
    return a >= b;
}

inline bool reaches(Lum64f a, Lum64f b)
{
    return a - b > -1e-7 * __builtin_fabs(b);
}

template <class T>
Steps<T> stepsOf3x3(Weight<T> m0, Weight<T> m1, LumiSize size)
{
    if (m1 >= 2 * m0)
        return {Mask::cityBlock, limited<T>(m0), 0, 0, 0, 0};
    const bool isHeavy = m0 > m1 && size.width > 1 && size.height > 1;
    return {isHeavy ? Mask::heavyEdge : Mask::square, limited<T>(m0), limited<T>(m1), 0, limited<T>(2 * m1), 0};
}

template <class T>
Steps<T> stepsOf5x5(Weight<T> m0, Weight<T> m1, Weight<T> m2, LumiSize size)
{
    using Exact = std::conditional_t<std::is_floating_point_v<T>, Lum64f, Lum64s>;
    const Weight<T> diagonal = lesser(m1, 2 * m0);
    const Exact e0 = m0, e1 = diagonal, e2 = m2;
    if (reaches(e2, e1 + e0))
        return stepsOf3x3<T>(m0, m1, size);
    const bool isKnightLong =
        std::is_floating_point_v<T> ? !reaches(static_cast<Exact>(1.5) * e1, e2) : !reaches(3 * e1, 2 * e2);
    if (!reaches(e0, e1) && !reaches(2 * e0, e2) && isKnightLong)
        return {Mask::regular, limited<T>(m0), limited<T>(diagonal), limited<T>(m2), 0, 0};
    const Weight<T> M0 = lesser(m0, 3 * m2);
    const Weight<T> M1 = lesser(diagonal, 2 * m2);
    const Weight<T> straight = lesser(lesser(2 * M0, 2 * M1), 2 * m2);
    const Weight<T> slant = lesser(2 * M1, M0 + m2);
    return {Mask::extended, limited<T>(M0), limited<T>(M1), limited<T>(m2), limited<T>(straight), limited<T>(slant)};
}

/// A neighbour that comes before the pixel, and what the step from there costs. The backward pass has the same
/// neighbours on the opposite side.
template <class T>
struct Candidate
{
    int dx, dy;
    T weight;
};

/// The neighbours of a 5x5 mask, as a list for where speed does not matter. A regular mask has the first eight.
template <class T>
std::array<Candidate<T>, 12> candidates(const Steps<T>& steps)
{
    return {{{-1, 0, steps.edge},
             {-2, -1, steps.knight},
             {-1, -1, steps.diagonal},
             {0, -1, steps.edge},
             {1, -1, steps.diagonal},
             {2, -1, steps.knight},
             {-1, -2, steps.knight},
             {1, -2, steps.knight},
             {-2, 0, steps.straight},
             {-2, -2, steps.slant},
             {0, -2, steps.straight},
             {2, -2, steps.slant}}};
}

}  // namespace lumcv::chamfer
