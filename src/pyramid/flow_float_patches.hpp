// The patches of 16u and 32f images: single precision, and sums in double precision.
#pragma once

#include "pyramid/flow_patches.hpp"

namespace lumcv {

template <class T>
class FloatPatches : public FlowPatchPlanes<Lum32f>
{
  public:
    using Pixel = T;
    using Slope = Lum32f;
    static constexpr Lum64f errorScale = 1;

    using FlowPatchPlanes<Lum32f>::FlowPatchPlanes;

    /// Takes the patches of the first image. The slopes are 0 behind the area, up to the end of the last group.
    [[gnu::flatten, gnu::noinline]] FlowMatrix take(FlowWeights weights, FlowArea area, FlowPixels<T> image,
                                                    FlowPixels<Lum32f> slopeX, FlowPixels<Lum32f> slopeY)
    {
        Sum xx = zero(), xy = zero(), yy = zero();
        eachGroup(area, [&](int64_t x, int64_t y, const Lum8u* mask) {
            const int64_t at = y * pitch_ + x;
            const auto ix = kept(mask, between(slopeX, x, y, weights));
            const auto iy = kept(mask, between(slopeY, x, y, weights));
            simd::store(first_ + at, between(image, x, y, weights));
            simd::store(slopeX_ + at, ix);
            simd::store(slopeY_ + at, iy);
            add(xx, ix, ix);
            add(xy, ix, iy);
            add(yy, iy, iy);
        });
        return {total(xx), total(xy), total(yy)};
    }

    /// Holds the patch of the second image against that of the first.
    [[gnu::flatten, gnu::noinline]] FlowVector compare(FlowWeights weights, FlowArea area, FlowPixels<T> image)
    {
        Sum bx = zero(), by = zero();
        eachGroup(area, [&](int64_t x, int64_t y, const Lum8u* mask) {
            const int64_t at = y * pitch_ + x;
            const auto difference = kept(mask, simd::load<lanes>(first_ + at) - between(image, x, y, weights));
            simd::store(difference_ + at, difference);
            add(bx, difference, simd::load<lanes>(slopeX_ + at));
            add(by, difference, simd::load<lanes>(slopeY_ + at));
        });
        return {total(bx), total(by)};
    }

    /// The sum of the squares of the difference last taken.
    [[gnu::flatten, gnu::noinline]] Lum64f squaredDifference(FlowArea area) const
    {
        Sum sum = zero();
        eachGroup(area, [&](int64_t x, int64_t y, const Lum8u*) {
            const auto difference = simd::load<lanes>(difference_ + y * pitch_ + x);
            add(sum, difference, difference);
        });
        return total(sum);
    }

  private:
    static constexpr int lanes = flowLanes;
    using Samples = simd::Vec<Lum32f, lanes>;
    using Sum = simd::Vec<Lum64f, 4>;  ///< four, whatever the level

    /// A group of samples.
    template <class P>
    [[gnu::always_inline]] static Samples between(const FlowPixels<P>& image, int64_t x, int64_t y,
                                                  const FlowWeights& w)
    {
        const P* const above = image.plane.row(y) + x;
        const P* const below = image.plane.row(y + image.below) + x;
        const auto term = [](const P* p, Lum32f weight) {
            return simd::broadcast<lanes>(weight) * simd::loadFloat<lanes>(p);
        };
        return term(above, w.nearest) + term(above + image.right, w.right) + term(below, w.below) +
               term(below + image.right, w.both);
    }

    /// Products of what was single precision are exact.
    [[gnu::always_inline]] static void add(Sum& sum, Samples a, Samples b)
    {
        sum = sum + simd::toDouble(simd::lowerHalf(a)) * simd::toDouble(simd::lowerHalf(b));
        sum = sum + simd::toDouble(simd::upperHalf(a)) * simd::toDouble(simd::upperHalf(b));
    }

    [[gnu::always_inline]] static Sum zero()
    {
        return simd::broadcast<4>(Lum64f{0});
    }

    [[gnu::always_inline]] static Lum64f total(Sum sum)
    {
        Lum64f parts[4];
        simd::store(parts, sum);
        return (parts[0] + parts[1]) + (parts[2] + parts[3]);
    }

    [[gnu::always_inline]] static Samples kept(const Lum8u* mask, Samples v)
    {
        return mask ? simd::keepWhere(mask, v) : v;
    }

    /// Calls body(x, y, mask) in the order of the sums, with no mask for a group that lies in the area as a whole.
    template <class Body>
    [[gnu::always_inline]] static void eachGroup(const FlowArea& area, Body body)
    {
        for (int64_t y = 0; y < area.height; ++y) {
            int64_t x = 0;
            for (; x + lanes <= area.width; x += lanes)
                body(x, y, nullptr);
            if (x < area.width)
                body(x, y, firstSamples(area.width - x));
        }
    }
};

}  // namespace lumcv
