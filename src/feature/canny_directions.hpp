// In which of four directions a gradient points: the codes of the rows between which suppression compares.
#pragma once

#include "simd/simd.hpp"

namespace lumcv::canny {

/// The two pixels that a code compares with stand on the line of the gradient.
enum Direction : Lum8u
{
    horizontal = 1,    ///< left, right
    antiDiagonal = 2,  ///< up and right, down and left
    vertical = 3,      ///< up, down
    mainDiagonal = 4   ///< up and left, down and right
};

/// The codes of N pixels, where `steep` says that the gradient is nearly vertical and `flat` that it is nearly
/// horizontal, which exclude each other.
template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> directionCodes(simd::Mask<Lum32f, N> steep,
                                                                 simd::Mask<Lum32f, N> flat, simd::Vec<Lum32f, N> dx,
                                                                 simd::Vec<Lum32f, N> dy)
{
    const auto code = [](Direction direction) { return simd::broadcast<N>(static_cast<Lum32f>(direction)); };
    const auto zero = simd::broadcast<N>(0.0f);
    // in a diagonal neither derivative is zero
    const auto down = simd::greater(dy, zero);
    const auto diagonal =
        simd::select(simd::greater(dx, zero), simd::select(down, code(mainDiagonal), code(antiDiagonal)),
                     simd::select(down, code(antiDiagonal), code(mainDiagonal)));
    return simd::roundTo<Lum8u>(simd::select(steep, code(vertical), simd::select(flat, code(horizontal), diagonal)));
}

/// Single precision: the products with the tangents of 67.5 and 22.5 degrees.
struct SingleTangents
{
    template <int N, class S>
    [[gnu::always_inline]] static simd::Vec<Lum8u, N> of(const S* pDx, const S* pDy)
    {
        const auto dx = simd::loadFloat<N>(pDx);
        const auto dy = simd::loadFloat<N>(pDy);
        const auto ax = simd::magnitude(dx);
        const auto ay = simd::magnitude(dy);
        return directionCodes(simd::greater(ay, ax * simd::broadcast<N>(2.41421366f)),
                              simd::greater(ax * simd::broadcast<N>(0.414213568f), ay), dx, dy);
    }
};

/// The tangents in double precision, their products with a magnitude of 16 bits rounded to single precision.
struct DoubleTangents
{
    static constexpr double steepest = 2.414213562373095;
    static constexpr double flattest = 0.41421356237309503;

    // The leading bits of a tangent, whose products with 16 bits are exact, and the rest, alike for both. The sum of
    // both products may differ in its last bit from the product rounded, but not where a comparison with an integer
    // would notice it.
    static constexpr Lum32f steepestLead = 2.40625f;
    static constexpr Lum32f flattestLead = 0.40625f;
    static constexpr Lum32f rest = 0.00796356237f;

    static constexpr Lum32f steep(Lum32f ax)
    {
        return ax * steepestLead + ax * rest;
    }
    static constexpr Lum32f flat(Lum32f ax)
    {
        return ax * flattestLead + ax * rest;
    }

    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum8u, N> of(const Lum16s* pDx, const Lum16s* pDy)
    {
        const auto dx = simd::loadFloat<N>(pDx);
        const auto dy = simd::loadFloat<N>(pDy);
        const auto ax = simd::magnitude(dx);
        const auto ay = simd::magnitude(dy);
        const auto small = ax * simd::broadcast<N>(rest);
        return directionCodes(simd::greater(ay, ax * simd::broadcast<N>(steepestLead) + small),
                              simd::greater(ax * simd::broadcast<N>(flattestLead) + small, ay), dx, dy);
    }
};

// An integer is above a number if it is above its integer part, and below it if it is below the next integer.
static_assert([] {
    const auto integerPart = [](Lum32f a) { return static_cast<int>(a); };
    const auto nextInteger = [](Lum32f a) {
        return static_cast<int>(a) + (static_cast<Lum32f>(static_cast<int>(a)) < a);
    };
    for (int a = 0; a <= 32768; ++a) {
        const auto ax = static_cast<Lum32f>(a);
        const auto steep = static_cast<Lum32f>(a * DoubleTangents::steepest);
        const auto flat = static_cast<Lum32f>(a * DoubleTangents::flattest);
        if (integerPart(DoubleTangents::steep(ax)) != integerPart(steep) ||
            nextInteger(DoubleTangents::flat(ax)) != nextInteger(flat))
            return false;
    }
    return true;
}());

/// The rule of low images, which is that of an angle: t is atan2(dy, dx) in single precision, plus pi in single
/// precision if it is negative, and is held against multiples of pi / 8, in single precision too. Rounding moves what
/// separates two directions, and each quadrant its own way. But derivatives are integers up to 12240, and there each
/// border between two directions has a ratio of small integers right at it, on its diagonal side.
struct Angles
{
    struct Ratio
    {
        Lum32s longer, shorter;

        /// Whether the ratio of the two derivatives is above this one. The products fit 28 bits.
        constexpr bool isExceeded(Lum32s a, Lum32s b) const
        {
            return a * shorter > b * longer;
        }
    };

    template <int N>
    static simd::Vec<Lum8u, N> of(const Lum16s* pDx, const Lum16s* pDy)
    {
        static_assert(N == 1);
        const bool isLeft = *pDx < 0;
        const bool isUp = *pDy < 0;
        const Lum32s ax = isLeft ? -*pDx : *pDx;
        const Lum32s ay = isUp ? -*pDy : *pDy;
        if (flattest[isUp][isLeft].isExceeded(ax, ay))
            return {horizontal};
        if (steepest[isLeft].isExceeded(ay, ax))
            return {vertical};
        return {isLeft == isUp ? mainDiagonal : antiDiagonal};
    }

  private:
    static constexpr Ratio flattest[2][2] = {{{8119, 3363}, {12228, 5065}}, {{8288, 3433}, {9104, 3771}}};
    static constexpr Ratio steepest[2] = {{3363, 1393}, {2378, 985}};
};

}  // namespace lumcv::canny
