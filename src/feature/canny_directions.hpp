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
    const auto diagonal = simd::select(simd::differInSign(dx, dy), code(antiDiagonal), code(mainDiagonal));
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

/// The same for derivatives of bytes, integers up to 12240: there each test is whether a ratio is above that of two
/// small integers, so that products of words decide it, and codes are chosen among bytes.
struct ByteTangents
{
    struct Ratio
    {
        Lum16s longer, shorter;
    };
    static constexpr Lum32s greatest = 12240;
    static constexpr Ratio steepest{9104, 3771};
    static constexpr Ratio flattest{5741, 2378};

    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum8u, N> of(const Lum16s* pDx, const Lum16s* pDy)
    {
        const auto dx = simd::load<N>(pDx);
        const auto dy = simd::load<N>(pDy);
        const auto ax = absolute(dx);
        const auto ay = absolute(dy);
        const auto code = [](Direction direction) { return simd::broadcast<N>(static_cast<Lum8s>(direction)); };
        const auto zero = simd::broadcast<N>(Lum8s{0});
        // above zero in bytes where the sum of products is
        const auto excess = [](auto products) { return simd::narrowOnce<Lum8s>(simd::saturated(products)); };
        const auto steep = excess(simd::products(ax, static_cast<Lum16s>(-steepest.longer), ay, steepest.shorter));
        const auto flat = excess(simd::products(ax, flattest.shorter, ay, static_cast<Lum16s>(-flattest.longer)));
        // the sign bit says that the derivatives' signs differ
        const auto signs = simd::narrowOnce<Lum8s>(dx ^ dy);
        const auto diagonal = simd::select(simd::greater(zero, signs), code(antiDiagonal), code(mainDiagonal));
        const auto codes = simd::select(simd::greater(steep, zero), code(vertical),
                                        simd::select(simd::greater(flat, zero), code(horizontal), diagonal));
        return bytes(codes);
    }

  private:
    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum16s, N> absolute(simd::Vec<Lum16s, N> v)
    {
        if constexpr (N == 1)
            return {static_cast<Lum16s>(v.raw < 0 ? -v.raw : v.raw)};
        else
            return simd::reinterpreted<Lum16s>(simd::magnitude(v));
    }

    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum8u, N> bytes(simd::Vec<Lum8s, N> v)
    {
        if constexpr (N == 1)
            return {static_cast<Lum8u>(v.raw)};
        else
            return simd::reinterpreted<Lum8u>(v);
    }
};

static_assert([] {
    using Tangents = ByteTangents;
    const auto isAbove = [](int longer, int shorter, Tangents::Ratio ratio) {
        return longer * ratio.shorter > shorter * ratio.longer;
    };
    // of the derivatives that go with one that is given, those at the border between two directions
    for (int a = 0; a <= Tangents::greatest; ++a) {
        const auto ax = static_cast<Lum32f>(a);
        const int ay = static_cast<int>(ax * 2.41421366f);
        if (ay < Tangents::greatest)
            for (int d = 0; d < 2; ++d)
                if ((static_cast<Lum32f>(ay + d) > ax * 2.41421366f) != isAbove(ay + d, a, Tangents::steepest))
                    return false;
        const int by = static_cast<int>(ax * 0.414213568f);
        for (int d = -1; d < 2; ++d)
            if (by + d >= 0 &&
                (ax * 0.414213568f > static_cast<Lum32f>(by + d)) != isAbove(a, by + d, Tangents::flattest))
                return false;
    }
    return true;
}());

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
