// The patches of 8u images: words with seven fractional bits, and exact sums.
#pragma once

#include "pyramid/flow_patches.hpp"

namespace lumcv {

class WordPatches : public FlowPatchPlanes<Lum16s>
{
  public:
    using Pixel = Lum8u;
    using Slope = Lum16s;
    static constexpr Lum64f errorScale = 0.0078125;

    using FlowPatchPlanes<Lum16s>::FlowPatchPlanes;

    /// Takes the patches of the first image. The slopes are 0 behind the area, up to the end of the last group.
    [[gnu::flatten, gnu::noinline]] FlowMatrix take(FlowWeights weights, FlowArea area, FlowPixels<Lum8u> image,
                                                    FlowPixels<Lum16s> slopeX, FlowPixels<Lum16s> slopeY) const
    {
        const Weights w(weights, image.below);
        Lum64s xx = 0, xy = 0, yy = 0;
        eachStrip(area, [&](int64_t x, int64_t begin, int64_t end, auto lanes, const Lum8u* mask) {
            Strip<lanes, 7, Lum8u> images(image, x, begin);
            Strip<lanes, 8, Lum16s> slopesX(slopeX, x, begin), slopesY(slopeY, x, begin);
            Sum<lanes> sumXX = zero<lanes>(), sumXY = zero<lanes>(), sumYY = zero<lanes>();
            for (int64_t y = begin, at = begin * pitch_ + x; y < end; ++y, at += pitch_) {
                const bool isLast = y + 1 == area.height;
                const auto ix = kept(mask, slopesX.next(w, isLast));
                const auto iy = kept(mask, slopesY.next(w, isLast));
                simd::store(first_ + at, images.next(w, isLast));
                simd::store(slopeX_ + at, ix);
                simd::store(slopeY_ + at, iy);
                sumXX = sumXX + products(ix, ix);
                sumXY = sumXY + products(ix, iy);
                sumYY = sumYY + products(iy, iy);
            }
            xx += whole(sumXX);
            xy += whole(sumXY);
            yy += whole(sumYY);
        });
        return {static_cast<Lum64f>(xx), static_cast<Lum64f>(xy), static_cast<Lum64f>(yy)};
    }

    /// Holds the patch of the second image against that of the first.
    [[gnu::flatten, gnu::noinline]] FlowVector compare(FlowWeights weights, FlowArea area,
                                                       FlowPixels<Lum8u> image) const
    {
        const Weights w(weights, image.below);
        Lum64s bx = 0, by = 0;
        eachStrip(area, [&](int64_t x, int64_t begin, int64_t end, auto lanes, const Lum8u*) {
            Strip<lanes, 7, Lum8u> images(image, x, begin);
            Sum<lanes> sumX = zero<lanes>(), sumY = zero<lanes>();
            for (int64_t y = begin, at = begin * pitch_ + x; y < end; ++y, at += pitch_) {
                const auto difference = simd::load<lanes>(first_ + at) - images.next(w, y + 1 == area.height);
                simd::store(difference_ + at, difference);
                sumX = sumX + products(difference, simd::load<lanes>(slopeX_ + at));
                sumY = sumY + products(difference, simd::load<lanes>(slopeY_ + at));
            }
            bx += whole(sumX);
            by += whole(sumY);
        });
        return {static_cast<Lum64f>(bx), static_cast<Lum64f>(by)};
    }

    /// The sum of the squares of the difference last taken.
    [[gnu::flatten, gnu::noinline]] Lum64f squaredDifference(FlowArea area) const
    {
        Lum64s total = 0;
        eachStrip(area, [&](int64_t x, int64_t begin, int64_t end, auto lanes, const Lum8u* mask) {
            Sum<lanes> sum = zero<lanes>();
            for (int64_t y = begin; y < end; ++y) {
                const auto difference = kept(mask, simd::load<lanes>(difference_ + y * pitch_ + x));
                sum = sum + products(difference, difference);
            }
            total += whole(sum);
        });
        return static_cast<Lum64f>(total);
    }

  private:
    template <int N>
    using Words = simd::Vec<Lum16s, N>;
    template <int N>
    using Sum = simd::Vec<Lum64f, N / 2>;

    /// Of 16384.
    struct Weights
    {
        /// If the row below does not count, the row above stands for it, so that the other one's weights are 0.
        Weights(const FlowWeights& w, bool isBetweenRows)
            : nearest(ofWhole(w.nearest)),
              right(ofWhole(w.right)),
              below(ofWhole(w.below)),
              both(static_cast<Lum16s>(16384 - nearest - right - below))
        {
            if (isBetweenRows)
                return;
            nearest = static_cast<Lum16s>(nearest + below);
            right = static_cast<Lum16s>(right + both);
            below = both = 0;
        }

        static Lum16s ofWhole(Lum32f weight)
        {
            return static_cast<Lum16s>(simd::toNearest(simd::Vec<Lum32f, 1>{weight * 16384}).raw);
        }

        Lum16s nearest, right, below, both;
    };

    /// N columns of samples, from one row to the next.
    template <int N, int shift, class T>
    class Strip
    {
      public:
        [[gnu::always_inline]] Strip(const FlowPixels<T>& image, int64_t x, int64_t y)
            : pixel_(image.plane.row(y) + x),
              step_(image.plane.step),
              right_(image.right),
              below_(image.below),
              above_(neighbours())
        {
        }

        /// Weights of 14 bits and pixels of 9 make sums that fit 32 bits, and all samples fit words. Behind the last
        /// row of samples there need not be one of pixels.
        [[gnu::always_inline]] Words<N> next(const Weights& w, bool isLast)
        {
            pixel_ = rowAt(pixel_, isLast ? step_ * below_ : step_, 1);
            const auto below = neighbours();
            const auto sum = simd::products(above_, w.nearest, w.right) + simd::products(below, w.below, w.both);
            above_ = below;
            return simd::saturated((sum + (1 << (shift - 1))) >> shift);
        }

      private:
        [[gnu::always_inline]] simd::WordPairs<N> neighbours() const
        {
            return simd::pairs(words(pixel_), words(pixel_ + right_));
        }

        [[gnu::always_inline]] static Words<N> words(const T* p)
        {
            if constexpr (sizeof(T) == 1)
                return simd::loadWords<N>(p);
            else
                return simd::load<N>(p);
        }

        const T* pixel_;
        int64_t step_, right_, below_;
        simd::WordPairs<N> above_;
    };

    /// Differences lie within 32643 and slopes within 16321, so two products fit 32 bits.
    template <int N>
    [[gnu::always_inline]] static Sum<N> products(Words<N> a, Words<N> b)
    {
        return simd::toDouble(simd::neighbourProducts(a, b));
    }

    template <int N>
    [[gnu::always_inline]] static Sum<N> zero()
    {
        return simd::broadcast<N / 2>(Lum64f{0});
    }

    template <int M>
    [[gnu::always_inline]] static Lum64s whole(simd::Vec<Lum64f, M> sum)
    {
        return static_cast<Lum64s>(simd::total(sum));
    }

    template <int N>
    [[gnu::always_inline]] static Words<N> kept(const Lum8u* mask, Words<N> v)
    {
        return mask ? simd::keepWhere(mask, v) : v;
    }

    /// Calls body(x, begin, end, lanes, mask) for columns from x on and rows from begin to end, with no mask where all
    /// of the columns lie in the area. The rows are so few that a sum in double precision stays exact: 512 times less
    /// than 2^13 samples, each less than 2^31.
    template <class Body>
    [[gnu::always_inline]] static void eachStrip(const FlowArea& area, Body body)
    {
        constexpr int64_t rows = 512;
        constexpr int few = flowLanes, many = simd::registerLanes < Lum16s >> few ? 2 * few : few;
        for (int64_t begin = 0; begin < area.height; begin += rows) {
            const int64_t end = area.height - begin < rows ? area.height : begin + rows;
            int64_t x = 0;
            for (; x + many <= area.width; x += many)
                body(x, begin, end, simd::Lanes<many>{}, nullptr);
            if constexpr (many > few)
                for (; x + few <= area.width; x += few)
                    body(x, begin, end, simd::Lanes<few>{}, nullptr);
            if (x < area.width)
                body(x, begin, end, simd::Lanes<few>{}, firstSamples(area.width - x));
        }
    }
};

}  // namespace lumcv
