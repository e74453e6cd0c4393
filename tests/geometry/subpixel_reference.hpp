// Copies at a fractional offset, written out plainly: weights, values, and the part of a rectangle that the image
// covers.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test::geometry {

/// The fraction of an offset whose whole part is the caller's. An offset that is no finite number has none.
inline Lum32f fractionOf(Lum32f offset)
{
    if (!std::isfinite(offset)) {
        return 0;
    }
    const Lum32f remainder = offset - std::trunc(offset);
    return remainder < 0 ? remainder + 1.0f : remainder;
}

/// A fraction in units of 2^-14; what is no number is 0.
inline int quantised(Lum32f fraction)
{
    const Lum32f units = fraction * 16384.0f + 0.5f;
    return units >= 16384.0f ? 16384 : units >= 0.0f ? static_cast<int>(units) : 0;
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

struct FractionsWithExcess
{
    int a;
    int b;
};

/// Fractions for which all four weights are rounded up, by half a unit each: `a * b` is an odd multiple of 8192. Those
/// of one half, where two weights are equal, among them.
inline std::vector<FractionsWithExcess> fractionsWithExcess()
{
    std::vector<FractionsWithExcess> result;
    Random random(29);
    for (int power = 0; power <= 13; ++power) {
        const int first = 1 << power, second = 8192 >> power;
        for (int i = 0; i < 100; ++i) {
            const auto odd = [&](int unit) {
                return unit * (2 * static_cast<int>(random.between(0, 8192 / unit - 1)) + 1);
            };
            const int a = odd(first);
            result.push_back({a, odd(second)});
        }
    }
    return result;
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
            return scaled<D>(
                std::int64_t{w00} * p00 + std::int64_t{w10} * p10 + std::int64_t{w01} * p01 + std::int64_t{w11} * p11,
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
    Lum32f fraction;
    int pMin;
    int pMax;
    std::vector<int> nearest;  ///< for each pixel, the image's pixel at or before it, or the outermost one
};

inline Axis axisOf(Lum32f point, int destinationSize, int sourceSize)
{
    const auto size = static_cast<Lum32f>(destinationSize);
    const Lum32f begin = std::isnan(point) ? -std::numeric_limits<Lum32f>::infinity()
                                           : point - static_cast<Lum32f>(destinationSize - 1) * 0.5f;
    const Lum32f end = std::trunc(begin + size);
    // beyond these bounds the whole rectangle lies before or behind the image, wherever exactly
    constexpr Lum32f far = 4e9f;
    const std::int64_t first = static_cast<std::int64_t>(std::clamp(end, -far, far)) - destinationSize;
    Axis axis;
    axis.fraction = begin - static_cast<Lum32f>(first);
    axis.pMin = static_cast<int>(std::clamp<std::int64_t>(-first, 0, destinationSize));
    axis.pMax = first >= sourceSize
                    ? -1
                    : static_cast<int>(std::min<std::int64_t>(destinationSize - 1, sourceSize - 2 - first));
    for (int i = 0; i < destinationSize; ++i) {
        axis.nearest.push_back(static_cast<int>(std::clamp<std::int64_t>(first + i, 0, sourceSize - 1)));
    }
    return axis;
}

/// Source: anything with at(x, y) and a column and a row more than the ROI.
template <class S, class D, class Source>
void copySubpixel(const Source& source, Image<D>& destination, Lum32f dx, Lum32f dy, int scaleFactor)
{
    const Mixer<S, D> mixer(fractionOf(dx), fractionOf(dy), scaleFactor);
    for (int y = 0; y < destination.height(); ++y) {
        for (int x = 0; x < destination.width(); ++x) {
            destination.at(x, y) =
                mixer.inside(source.at(x, y), source.at(x + 1, y), source.at(x, y + 1), source.at(x + 1, y + 1));
        }
    }
}

struct Covered
{
    LumiPoint pMin;
    LumiPoint pMax;
};

template <class S, class D, class Source>
Covered copyAround(const Source& source, LumiSize sourceSize, Image<D>& destination, LumiPoint32f point,
                   int scaleFactor)
{
    const Axis columns = axisOf(point.x, destination.width(), sourceSize.width);
    const Axis rows = axisOf(point.y, destination.height(), sourceSize.height);
    const Mixer<S, D> mixer(columns.fraction, rows.fraction, scaleFactor);
    for (int y = 0; y < destination.height(); ++y) {
        const bool rowWithin = y >= rows.pMin && y <= rows.pMax;
        const int sy = rows.nearest[static_cast<std::size_t>(y)];
        for (int x = 0; x < destination.width(); ++x) {
            const bool columnWithin = x >= columns.pMin && x <= columns.pMax;
            const int sx = columns.nearest[static_cast<std::size_t>(x)];
            const S p = source.at(sx, sy);
            destination.at(x, y) =
                columnWithin && rowWithin
                    ? mixer.inside(p, source.at(sx + 1, sy), source.at(sx, sy + 1), source.at(sx + 1, sy + 1))
                : columnWithin ? mixer.alongRow(p, source.at(sx + 1, sy))
                : rowWithin    ? mixer.alongColumn(p, source.at(sx, sy + 1))
                               : mixer.corner(p);
        }
    }
    return {{columns.pMin, rows.pMin}, {columns.pMax, rows.pMax}};
}

}  // namespace lumcv::test::geometry
