// The patches of 8u images: words with seven fractional bits, and exact sums.
#pragma once

#include "pyramid/flow_patches.hpp"

namespace lumcv {

class WordPatches
{
  public:
    using Pixel = Lum8u;
    using Slope = Lum16s;
    static constexpr Lum64f errorScale = 0.0078125;

    /// Bytes of the patches.
    static constexpr int64_t bytes(Lum32s winSize)
    {
        return 4 * patchElements(winSize) * static_cast<int64_t>(sizeof(Lum16s));
    }

    WordPatches(Lum8u* block, Lum32s winSize)
        : pitch_(roundedUp(int64_t{winSize} + 2, flowLanes)),
          first_(reinterpret_cast<Lum16s*>(block)),
          slopeX_(first_ + patchElements(winSize)),
          slopeY_(slopeX_ + patchElements(winSize)),
          difference_(slopeY_ + patchElements(winSize))
    {
    }

    /// Takes the patches of the first image. The slopes are 0 behind the area, up to the end of the last group.
    [[gnu::flatten]] FlowMatrix take(const FlowWeights& weights, const FlowArea& area, FlowPixels<Lum8u> image,
                                     FlowPixels<Lum16s> slopeX, FlowPixels<Lum16s> slopeY)
    {
        const Weights w(weights);
        Lum64s xx = 0, xy = 0, yy = 0;
        eachBlock(area, [&](int64_t begin, int64_t end) {
            Sum sumXX = zero(), sumXY = zero(), sumYY = zero();
            eachGroup(area, [&](int64_t x, const Lum8u* mask) {
                for (int64_t y = begin; y < end; ++y) {
                    const int64_t at = y * pitch_ + x;
                    const auto ix = kept(mask, between<8>(slopeX, x, y, w));
                    const auto iy = kept(mask, between<8>(slopeY, x, y, w));
                    simd::store(first_ + at, between<7>(image, x, y, w));
                    simd::store(slopeX_ + at, ix);
                    simd::store(slopeY_ + at, iy);
                    add(sumXX, ix, ix);
                    add(sumXY, ix, iy);
                    add(sumYY, iy, iy);
                }
            });
            xx += whole(sumXX);
            xy += whole(sumXY);
            yy += whole(sumYY);
        });
        return {static_cast<Lum64f>(xx), static_cast<Lum64f>(xy), static_cast<Lum64f>(yy)};
    }

    /// Holds the patch of the second image against that of the first.
    [[gnu::flatten]] FlowVector compare(const FlowWeights& weights, const FlowArea& area, FlowPixels<Lum8u> image)
    {
        const Weights w(weights);
        Lum64s bx = 0, by = 0;
        eachBlock(area, [&](int64_t begin, int64_t end) {
            Sum sumX = zero(), sumY = zero();
            eachGroup(area, [&](int64_t x, const Lum8u*) {
                for (int64_t y = begin; y < end; ++y) {
                    const int64_t at = y * pitch_ + x;
                    const auto difference = simd::load<lanes>(first_ + at) - between<7>(image, x, y, w);
                    simd::store(difference_ + at, difference);
                    add(sumX, difference, simd::load<lanes>(slopeX_ + at));
                    add(sumY, difference, simd::load<lanes>(slopeY_ + at));
                }
            });
            bx += whole(sumX);
            by += whole(sumY);
        });
        return {static_cast<Lum64f>(bx), static_cast<Lum64f>(by)};
    }

    /// The sum of the squares of the difference last taken.
    [[gnu::flatten]] Lum64f squaredDifference(const FlowArea& area) const
    {
        Lum64s total = 0;
        eachBlock(area, [&](int64_t begin, int64_t end) {
            Sum sum = zero();
            eachGroup(area, [&](int64_t x, const Lum8u* mask) {
                for (int64_t y = begin; y < end; ++y) {
                    const auto difference = kept(mask, simd::load<lanes>(difference_ + y * pitch_ + x));
                    add(sum, difference, difference);
                }
            });
            total += whole(sum);
        });
        return static_cast<Lum64f>(total);
    }

  private:
    static constexpr int lanes = flowLanes;
    using Words = simd::Vec<Lum16s, lanes>;
    using Sum = simd::Vec<Lum64f, lanes / 2>;

    /// Of 16384.
    struct Weights
    {
        explicit Weights(const FlowWeights& w)
            : nearest(ofWhole(w.nearest)),
              right(ofWhole(w.right)),
              below(ofWhole(w.below)),
              both(static_cast<Lum16s>(16384 - nearest - right - below))
        {
        }

        static Lum16s ofWhole(Lum32f weight)
        {
            return static_cast<Lum16s>(simd::toNearest(simd::Vec<Lum32f, 1>{weight * 16384}).raw);
        }

        Lum16s nearest, right, below, both;
    };

    static constexpr int64_t patchElements(Lum32s winSize)
    {
        return (int64_t{winSize} + 2) * roundedUp(int64_t{winSize} + 2, flowLanes);
    }

    [[gnu::always_inline]] static Words words(const Lum8u* p)
    {
        return simd::loadWords<lanes>(p);
    }

    [[gnu::always_inline]] static Words words(const Lum16s* p)
    {
        return simd::load<lanes>(p);
    }

    /// A group of samples. Weights of 14 bits and pixels of 9 make sums that fit 32 bits, and all samples fit words.
    template <int shift, class T>
    [[gnu::always_inline]] static Words between(const FlowPixels<T>& image, int64_t x, int64_t y, const Weights& w)
    {
        const T* const above = image.plane.row(y) + x;
        const T* const below = image.plane.row(y + image.below) + x;
        const auto sum = simd::products(words(above), w.nearest, words(above + image.right), w.right) +
                         simd::products(words(below), w.below, words(below + image.right), w.both);
        return simd::saturated(simd::eachSum(
            []<int N>(simd::Vec<Lum32s, N> s) { return (s + simd::broadcast<N>(1 << (shift - 1))) >> shift; }, sum));
    }

    /// Differences lie within 32643 and slopes within 16321, so two products fit 32 bits.
    [[gnu::always_inline]] static void add(Sum& sum, Words a, Words b)
    {
        sum = sum + simd::toDouble(simd::neighbourProducts(a, b));
    }

    [[gnu::always_inline]] static Sum zero()
    {
        return simd::broadcast<lanes / 2>(Lum64f{0});
    }

    [[gnu::always_inline]] static Lum64s whole(Sum sum)
    {
        return static_cast<Lum64s>(simd::total(sum));
    }

    [[gnu::always_inline]] static Words kept(const Lum8u* mask, Words v)
    {
        return mask ? simd::keepWhere(mask, v) : v;
    }

    /// Rows at a time, so few that a sum in double precision stays exact: 512 rows of less than 2^13 samples, each less
    /// than 2^31.
    template <class Body>
    [[gnu::always_inline]] static void eachBlock(const FlowArea& area, Body body)
    {
        constexpr int64_t rows = 512;
        for (int64_t y = 0; y < area.height; y += rows)
            body(y, area.height - y < rows ? area.height : y + rows);
    }

    /// Calls body(x, mask) with no mask for a group that lies in the area as a whole.
    template <class Body>
    [[gnu::always_inline]] static void eachGroup(const FlowArea& area, Body body)
    {
        int64_t x = 0;
        for (; x + lanes <= area.width; x += lanes)
            body(x, nullptr);
        if (x < area.width)
            body(x, firstSamples(area.width - x));
    }

    int64_t pitch_;
    Lum16s* first_;
    Lum16s* slopeX_;
    Lum16s* slopeY_;
    Lum16s* difference_;
};

}  // namespace lumcv
