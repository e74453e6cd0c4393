// Where the pixels of a corrected image come from: the two forms of the lens. Their arithmetic is documented to the
// last bit; what uses them sets the rounding.
#pragma once

#include <array>

#include "lumcv/types.h"
#include "simd/simd.hpp"

namespace lumcv::lens {

struct Lens
{
    Lum32f fx, fy, cx, cy, k1, k2, p1, p2;
};

/// The column numbers x, x + 1, and so on. Multiples of 128 are exact to the end of 32 bits, and an exact sum is
/// rounded as the integer is.
template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> columnNumbers(int64_t x)
{
    constexpr int64_t period = 128;
    static constexpr auto offsets = [] {
        std::array<Lum32f, period + 64> numbers{};
        for (size_t i = 0; i < numbers.size(); ++i)
            numbers[i] = static_cast<Lum32f>(i);
        return numbers;
    }();
    static_assert(period + N <= static_cast<int64_t>(offsets.size()));
    const int64_t first = x & (period - 1);
    return simd::broadcast<N>(static_cast<Lum32f>(x - first)) + simd::load<N>(offsets.data() + first);
}

template <int N>
struct Places
{
    simd::Vec<Lum32f, N> x, y;
};

/// Without tangential terms.
class RadialForm
{
  public:
    struct Row
    {
        Lum32f y, v, a, b;
    };

    explicit RadialForm(const Lens& lens)
        : cx_(lens.cx),
          cy_(lens.cy),
          cu_(1 / (lens.fx * lens.fx)),
          cv_(1 / (lens.fy * lens.fy)),
          k1_(lens.k1),
          k2_(lens.k2)
    {
    }

    Row row(Lum32s y) const
    {
        const auto number = static_cast<Lum32f>(y);
        const Lum32f v = number - cy_;
        const Lum32f y2 = v * v * cv_;
        return {number, v, (k2_ * y2 + k1_) * y2, 2 * k2_ * y2};
    }

    template <int N>
    [[gnu::always_inline]] Places<N> places(const Row& row, simd::Vec<Lum32f, N> x) const
    {
        const auto all = [](Lum32f value) { return simd::broadcast<N>(value); };
        const auto u = x - all(cx_);
        const auto x2 = u * u * all(cu_);
        const auto c = (all(k2_) * x2 + all(k1_)) * x2;
        const auto f = x2 * all(row.b) + c + all(row.a);
        return {x + u * f, all(row.y) + all(row.v) * f};
    }

  private:
    Lum32f cx_, cy_, cu_, cv_, k1_, k2_;
};

class TangentialForm
{
  public:
    struct Row
    {
        Lum32f y, v, squareY, p1Y;
    };

    explicit TangentialForm(const Lens& lens)
        : cx_(lens.cx),
          cy_(lens.cy),
          iu_(1 / lens.fx),
          iv_(1 / lens.fy),
          k1_(lens.k1),
          k2_(lens.k2),
          twiceP1_(2 * lens.p1),
          twiceP2_(2 * lens.p2),
          shiftX_(lens.p2 * lens.fx),
          shiftY_(lens.p1 * lens.fy)
    {
    }

    Row row(Lum32s y) const
    {
        const auto number = static_cast<Lum32f>(y);
        const Lum32f v = number - cy_;
        const Lum32f Y = v * iv_;
        return {number, v, Y * Y, twiceP1_ * Y};
    }

    template <int N>
    [[gnu::always_inline]] Places<N> places(const Row& row, simd::Vec<Lum32f, N> x) const
    {
        const auto all = [](Lum32f value) { return simd::broadcast<N>(value); };
        const auto u = x - all(cx_);
        const auto X = u * all(iu_);
        const auto r2 = X * X + all(row.squareY);
        const auto f = all(k1_) * r2 + all(k2_) * r2 * r2;
        const auto g = f + all(row.p1Y) + all(twiceP2_) * X;
        return {x + u * g + all(shiftX_) * r2, all(row.y) + all(row.v) * g + all(shiftY_) * r2};
    }

  private:
    Lum32f cx_, cy_, iu_, iv_, k1_, k2_, twiceP1_, twiceP2_, shiftX_, shiftY_;
};

}  // namespace lumcv::lens
