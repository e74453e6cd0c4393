// The orientation of FAST corners, four at a time.
#pragma once

#include <array>

#include "feature/fast_record.hpp"
#include "simd/simd.hpp"

namespace lumcv::fast {

inline constexpr int angleLanes = 4;

/// (atan(r) / r) as a polynomial of r * r, for r from 0 to 1: the Chebyshev approximation, off by at most 5e-14.
inline constexpr std::array<Lum64f, 16> arctangent{
    0.9999999999999531,   -0.33333333330931053,   0.19999999793953496,   -0.14285707246678706,
    0.11110983774962185,  -0.0908950250900279,    0.07681984916045911,   -0.06613494495894422,
    0.056826465091119466, -0.047005235904944216,  0.0354478304883713,    -0.02279206378279654,
    0.011594726016119614, -0.0042695010966784085, 0.0009961348991062624, -0.00010950133737292665};

/// atan2(y, x), from -pi to pi, rounded to single precision. Neither operand is a negative zero.
[[gnu::always_inline]] inline simd::Vec<Lum32f, angleLanes> arctangents(simd::Vec<Lum32f, angleLanes> y,
                                                                        simd::Vec<Lum32f, angleLanes> x)
{
    const auto all = [](Lum64f value) { return simd::broadcast<angleLanes>(value); };
    const auto zero = all(0);
    const auto wideX = simd::toDouble(x);
    const auto wideY = simd::toDouble(y);
    const auto ax = simd::max(wideX, zero - wideX);
    const auto ay = simd::max(wideY, zero - wideY);
    const auto ratio = simd::min(ax, ay) / simd::max(simd::max(ax, ay), all(1e-300));
    // even and odd powers of the square by themselves: two short chains instead of a long one
    const auto square = ratio * ratio;
    const auto step = square * square;
    auto even = all(arctangent[14]);
    auto odd = all(arctangent[15]);
    for (size_t i = 14; i > 0; i -= 2) {
        even = even * step + all(arctangent[i - 2]);
        odd = odd * step + all(arctangent[i - 1]);
    }
    auto angle = (odd * square + even) * ratio;
    constexpr Lum64f pi = 3.14159265358979323846;
    angle = simd::select(simd::less(ax, ay), all(pi / 2) - angle, angle);
    angle = simd::select(simd::less(wideX, zero), all(pi) - angle, angle);
    return simd::toSingle(simd::select(simd::less(wideY, zero), zero - angle, angle));
}

/// The two sums whose arctangent is the angle.
struct Direction
{
    Lum32f alongSines, alongCosines;
};

/// Of a ring of which opposite points are taken together.
struct OppositePoints
{
    const int64_t* offsets;

    Direction of(const Lum8u* p) const
    {
        std::array<Lum32s, 8> e;
        for (size_t i = 0; i < 8; ++i)
            e[i] = p[offsets[i]] - p[offsets[i + 8]];
        const auto product = [](Lum32f factor, Lum32s value) { return factor * static_cast<Lum32f>(value); };
        constexpr Lum32f sin1 = 0.38268343f, sin2 = 0.70710677f, sin3 = 0.9238795f;
        const Lum32f sines = product(sin2, e[2] + e[6]) + product(sin1, e[1] + e[7]) + product(sin3, e[3] + e[5]) +
                             static_cast<Lum32f>(e[4]) + 0.00001f;
        const Lum32f cosines = static_cast<Lum32f>(e[0]) + product(sin3, e[1] - e[7]) + product(sin2, e[2] - e[6]) +
                               product(sin1, e[3] - e[5]);
        return {sines, cosines};
    }
};

/// Of any ring, by the tables of the record.
struct AllPoints
{
    const int64_t* offsets;
    int points;
    const Lum32f* sines;
    const Lum32f* cosines;

    Direction of(const Lum8u* p) const
    {
        Direction direction{0, 0};
        for (int i = 0; i < points; ++i) {
            const auto difference = static_cast<Lum32f>(p[offsets[i]] - *p);
            direction.alongSines += difference * sines[i];
            direction.alongCosines += difference * cosines[i];
        }
        return direction;
    }
};

/// Without orientation, corners have no bin.
struct NoOrientation
{
    void add(const Lum8u*, Lum8u*) {}
    void finish() {}
};

/// Collects corners until an arctangent serves four of them.
template <class Directions>
class Orientation
{
  public:
    Orientation(Directions directions, Lum32s bins, Lum32f binsPerRadian)
        : directions_(directions), bins_(bins), binsPerRadian_(binsPerRadian)
    {
    }

    /// The pixel at p is a corner, whose byte in the map will have the bin.
    void add(const Lum8u* p, Lum8u* corner)
    {
        const Direction direction = directions_.of(p);
        sines_[count_] = direction.alongSines;
        cosines_[count_] = direction.alongCosines;
        corners_[count_] = corner;
        if (++count_ == angleLanes)
            finish();
    }

    /// No corner waits any longer.
    void finish()
    {
        const auto angle = arctangents(simd::load<angleLanes>(cosines_), simd::load<angleLanes>(sines_));
        const auto positive = simd::select(simd::less(angle, simd::broadcast<angleLanes>(0.0f)),
                                           angle + simd::broadcast<angleLanes>(6.2831855f), angle);
        Lum32s bins[angleLanes];
        simd::store(bins, simd::truncated(positive * simd::broadcast<angleLanes>(binsPerRadian_)));
        for (int i = 0; i < count_; ++i)
            if (bins[i] < bins_)  // the first bin begins where the last one ends
                *corners_[i] = static_cast<Lum8u>(*corners_[i] | bins[i]);
        count_ = 0;
    }

  private:
    Directions directions_;
    Lum32s bins_;
    Lum32f binsPerRadian_;
    int count_ = 0;
    Lum32f sines_[angleLanes] = {};
    Lum32f cosines_[angleLanes] = {};
    Lum8u* corners_[angleLanes];
};

}  // namespace lumcv::fast
