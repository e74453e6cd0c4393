// Copies at a fractional offset, written out plainly: weights, values, and the part of a rectangle that the image covers.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "lumcv/lumcv.h"

namespace lumcv::test::geometry {

/// The fraction of an offset whose whole part is the caller's.
inline Lum32f fractionOf(Lum32f offset)
{
    const Lum32f remainder = offset - std::trunc(offset);
    return remainder < 0 ? remainder + 1.0f : remainder;
}

/// A fraction in units of 2^-14.
inline int quantised(Lum32f fraction)
{
    return std::clamp(static_cast<int>(fraction * 16384.0f + 0.5f), 0, 65535);
}

struct Weights
{
    int w00;
    int w10;
    int w01;
    int w11;
};

inline Weights weightsOf(int a, int b)
{
    const int qa = 16384 - a;
    const int qb = 16384 - b;
    Weights w = {(qa * qb + 8192) >> 14, (a * qb + 8192) >> 14, (qa * b + 8192) >> 14, (a * b + 8192) >> 14};
    const int e = 16384 - (w.w00 + w.w01 + w.w10 + w.w11);
    if (e < 0) {
        if (w.w00 >= w.w01 && w.w00 >= w.w10 && w.w00 >= w.w11) {
            w.w00 += e;
        } else if (w.w01 >= w.w00 && w.w01 >= w.w10 && w.w01 >= w.w11) {
            w.w01 += e;
        } else if (w.w10 < w.w00 || w.w10 < w.w01 || w.w10 < w.w11) {
            w.w11 += e;
        } else {
            w.w10 += e;
        }
    }
    return w;
}

/// A sum of products with weights in units of 2^-14, divided by 2 to the power of 14 + scaleFactor, rounded, and
/// brought into the range of T.
template <class T>
T scaled(std::int64_t sum, int scaleFactor)
{
    constexpr std::int64_t most = sizeof(T) == 1 ? 255 : 65535;
    if (scaleFactor > 16) {
        return 0;
    }
    if (scaleFactor >= -13) {
        return static_cast<T>(std::min(most, (sum + (std::int64_t{1} << (scaleFactor + 13))) >> (scaleFactor + 14)));
    }
    // from here on the sum is multiplied
    for (int s = scaleFactor; s < -14 && sum != 0 && sum <= most; ++s) {
        sum *= 2;
    }
    return static_cast<T>(std::min(most, sum));
}

/// How the values of a copy are formed from two columns and two rows: p00 and p10 lie in a row, p01 and p11 below them.
template <class S, class D>
class Mixer
{
  public:
    static constexpr bool isFloat = std::is_same_v<D, Lum32f>;

    Mixer(Lum32f x, Lum32f y, int scaleFactor) : scaleFactor_(scaleFactor)
    {
        if constexpr (isFloat) {
            fx_ = x <= 1e-6f ? 1e-6f : x;
            fy_ = y <= 1e-9f ? 1e-9f : y;
        } else {
            a_ = quantised(x);
            b_ = quantised(y);
            weights_ = weightsOf(a_, b_);
        }
    }

    D inside(S p00, S p10, S p01, S p11) const
    {
        if constexpr (isFloat) {
            return vertical(horizontal(p00, p10), horizontal(p01, p11));
        } else {
            const auto [w00, w10, w01, w11] = weights_;
            return scaled<D>(std::int64_t{w00} * p00 + std::int64_t{w10} * p10 + std::int64_t{w01} * p01 +
                                 std::int64_t{w11} * p11,
                             scaleFactor_);
        }
    }
    /// Above the first or below the last row: only the columns differ.
    D alongRow(S p0, S p1) const
    {
        if constexpr (isFloat) {
            return horizontal(p0, p1);
        } else {
            return scaled<D>(std::int64_t{16384 - a_} * p0 + std::int64_t{a_} * p1, scaleFactor_);
        }
    }
    /// Left of the first or right of the last column: only the rows differ.
    D alongColumn(S p0, S p1) const
    {
        if constexpr (isFloat) {
            return vertical(p0, p1);
        } else {
            return scaled<D>(std::int64_t{16384 - b_} * p0 + std::int64_t{b_} * p1, scaleFactor_);
        }
    }
    D corner(S p) const
    {
        if constexpr (isFloat) {
            return p;
        } else {
            return scaled<D>(std::int64_t{16384} * p, scaleFactor_);
        }
    }

  private:
    Lum32f horizontal(Lum32f p0, Lum32f p1) const
    {
        return (1.0f - fx_) * p0 + fx_ * p1;
    }
    Lum32f vertical(Lum32f current, Lum32f next) const
    {
        return fy_ * (next + ((1.0f - fy_) / fy_) * current);
    }

    int scaleFactor_;
    int a_ = 0;
    int b_ = 0;
    Weights weights_{};
    Lum32f fx_ = 0;
    Lum32f fy_ = 0;
};

/// An axis of a rectangle of D pixels around a point, over an image of S pixels.
struct Axis
{
    int first;      ///< the image's coordinate under the rectangle's first pixel
    Lum32f fraction;
    int pMin;
    int pMax;
};

inline Axis axisOf(Lum32f point, int destinationSize, int sourceSize)
{
    const Lum32f start = point - static_cast<Lum32f>(destinationSize - 1) * 0.5f;
    const int first = static_cast<int>(std::trunc(start + static_cast<Lum32f>(destinationSize))) - destinationSize;
    Axis axis = {first, start - static_cast<Lum32f>(first), 0, destinationSize - 1};
    if (first >= sourceSize) {
        axis.pMax = -1;
        return axis;
    }
    if (first < 0) {
        axis.pMin = std::min(-first, destinationSize);
    }
    if (sourceSize <= first + destinationSize) {
        axis.pMax = sourceSize + destinationSize - 2 - (first + destinationSize);
    }
    return axis;
}

}  // namespace lumcv::test::geometry
