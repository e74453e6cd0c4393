// The number, the sum and the sum of squares of the pixels that take part: exact for integers, in 16 partial sums of
// doubles for floats. Sums are carried in vectors over all rows and folded once.
#pragma once

#include "frame/image.hpp"
#include "stats/pixel_groups.hpp"

namespace lumcv {

/// Of the pixels that the mask keeps, or of all of them.
template <class Value>
struct Moments
{
    uint64_t count;
    Value sum;
    Value squares;
};

template <class T, bool withSquares>
struct MomentSums;

template <bool withSquares>
struct MomentSums<Lum8u, withSquares>
{
    static constexpr int lanes = 64;
    static constexpr Lum8u fill = 0;
    using Count = simd::Sums<uint64_t, lanes, 1>;
    using Recent = simd::Sums<Lum32s, lanes, 1>;

    Count keptPixels, sum, squares;
    Recent recentSquares;  ///< at most 16 squares of 255 for each 64 pixels: 2048 times that is below 2^31

    template <int channels, class... Mask>
    [[gnu::always_inline]] void add(const Lum8u* p, const Mask*... mask)
    {
        auto v = simd::loadPixels<lanes, channels>(p);
        ((v = simd::keepWhere(mask, v)), ...);
        ((keptPixels = keptPixels + simd::countsOf<lanes>(mask)), ...);
        sum = sum + simd::sumsOf(v);
        if constexpr (withSquares)
            recentSquares = recentSquares + simd::squareSumsOf(v);
    }

    [[gnu::always_inline]] void settle()
    {
        if constexpr (withSquares) {
            squares = squares + simd::widenedUnsigned(recentSquares);
            recentSquares = Recent{};
        }
    }

    Moments<uint64_t> total(uint64_t count) const
    {
        return {count, simd::total(sum), simd::total(squares)};
    }
};

/// Words are regarded as their distance from 32768, which is signed and so can be multiplied in pairs.
template <bool withSquares>
struct MomentSums<Lum16u, withSquares>
{
    static constexpr int lanes = 32;
    static constexpr Lum16u centre = 0x8000;
    static constexpr Lum16u fill = centre;
    using Count = simd::Sums<uint64_t, lanes, 1>;
    using Sum = simd::Sums<uint64_t, lanes, 2>;
    using Recent = simd::Sums<Lum32s, lanes, 2>;

    Count keptPixels;
    Sum sum, squares;
    Recent recentSum;  ///< at most 8 distances of 32768 for each 32 pixels: 4096 times that is 2^30

    template <int channels, class... Mask>
    [[gnu::always_inline]] void add(const Lum16u* p, const Mask*... mask)
    {
        auto distance =
            simd::reinterpreted<Lum16s>(simd::loadPixels<lanes, channels>(p) - simd::broadcast<lanes>(centre));
        ((distance = simd::keepWhere(mask, distance)), ...);
        ((keptPixels = keptPixels + simd::countsOf<lanes>(mask)), ...);
        recentSum = recentSum + simd::sumsOf(distance);
        if constexpr (withSquares)
            squares = squares + simd::squareSumsOf(distance);
    }

    [[gnu::always_inline]] void settle()
    {
        sum = sum + simd::widenedSigned(recentSum);
        recentSum = Recent{};
    }

    /// Modulo 2^64, so that a negative sum of distances does no harm.
    Moments<uint64_t> total(uint64_t count) const
    {
        const uint64_t distances = simd::total(sum);
        return {count, distances + (count << 15), simd::total(squares) + (distances << 16) + (count << 30)};
    }
};

/// A partial sum that begins with +0.0 never becomes -0.0, so adding the +0.0 of a missing pixel leaves it as it is.
template <bool withSquares>
struct MomentSums<Lum32f, withSquares>
{
    static constexpr int lanes = 16;
    static constexpr Lum32f fill = 0.0f;

    simd::Sums<uint64_t, lanes, 1> keptPixels;
    simd::Vec<Lum64f, lanes> sum, squares;

    template <int channels, class... Mask>
    [[gnu::always_inline]] void add(const Lum32f* p, const Mask*... mask)
    {
        const auto v = [&] {
            if constexpr (sizeof...(mask) == 0)
                return simd::loadDoubles<lanes, channels>(p);
            else
                return simd::toDouble(simd::keepWhere(mask..., simd::loadPixels<lanes, channels>(p)));
        }();
        ((keptPixels = keptPixels + simd::countsOf<lanes>(mask)), ...);
        sum = sum + v;
        if constexpr (withSquares)
            squares = simd::addExactSquare(squares, v);
    }

    [[gnu::always_inline]] void settle() {}

    Moments<Lum64f> total(uint64_t count) const
    {
        return {count, simd::total(sum), simd::total(squares)};
    }
};

/// The moments of the pixels that the mask (if any) keeps, of one channel.
template <int channels, bool withSquares, class T, class... Mask>
[[gnu::flatten]] auto momentsOf(LumiSize size, Plane<const T> src, Plane<const Mask>... mask)
{
    using Sums = MomentSums<T, withSquares>;
    Sums sums{};
    const auto add = [&sums](const T* p, const Mask*... m) { sums.template add<channels>(p, m...); };
    eachRow(size, [&](int64_t y, auto nextRow, auto ahead) {
        addSettled<Sums::lanes, nextRow>(sums, size.width, add,
                                         PixelRow<T, channels>{src.row(y), Sums::fill, ahead(src)},
                                         PixelRow<Mask, 1>{mask.row(y), 0, ahead(mask)}...);
    });
    const auto pixels = static_cast<uint64_t>(size.width) * static_cast<uint64_t>(size.height);
    return sums.total(sizeof...(mask) == 0 ? pixels : simd::total(sums.keptPixels));
}

/// The sum of the squares of (pixel - centre), the difference in single precision, over the same pixels and in the same
/// 16 partial sums.
template <int channels, class... Mask>
[[gnu::flatten]] Lum64f squaredDistances(LumiSize size, Lum32f centre, Plane<const Lum32f> src,
                                         Plane<const Mask>... mask)
{
    constexpr int lanes = MomentSums<Lum32f, true>::lanes;
    using Sum = simd::Vec<Lum64f, lanes>;
    Sum sum{};
    const auto add = [&sum, centre](const Lum32f* p, const Mask*... m) {
        auto distance = simd::loadPixels<lanes, channels>(p) - simd::broadcast<lanes>(centre);
        ((distance = simd::keepWhere(m, distance)), ...);
        sum = simd::addExactSquare(sum, simd::toDouble(distance));
    };
    eachRow(size, [&](int64_t y, auto nextRow, auto ahead) {
        eachGroup<lanes, nextRow>(0, size.width, add, PixelRow<Lum32f, channels>{src.row(y), centre, ahead(src)},
                                  PixelRow<Mask, 1>{mask.row(y), 0, ahead(mask)}...);
    });
    return simd::total(sum);
}

}  // namespace lumcv
