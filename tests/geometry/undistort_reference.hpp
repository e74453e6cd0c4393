// Lens undistortion, written out step by step: each sum, product and quotient by itself, in the rounding mode that is
// set where it is reached.
#pragma once

#include <cfenv>
#include <cmath>
#include <optional>
#include <type_traits>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::geometry {

/// While it lives, this thread rounds in the given way.
class RoundingMode
{
  public:
    explicit RoundingMode(int mode) : before_(std::fegetround())
    {
        std::fesetround(mode);
    }
    ~RoundingMode()
    {
        std::fesetround(before_);
    }
    RoundingMode(const RoundingMode&) = delete;
    RoundingMode& operator=(const RoundingMode&) = delete;

  private:
    int before_;
};

/// A float whose operations the compiler can neither evaluate beforehand nor move past a change of the rounding mode:
/// all operands and results are volatile on their way.
class Stepwise
{
  public:
    Stepwise(Lum32f value) : value_(value) {}
    static Stepwise ofInteger(int value)
    {
        const volatile int integer = value;
        const volatile auto result = static_cast<Lum32f>(integer);
        return result;
    }
    Lum32f value() const
    {
        return value_;
    }
    friend Stepwise operator+(Stepwise a, Stepwise b)
    {
        const volatile Lum32f x = a.value_, y = b.value_;
        const volatile Lum32f result = x + y;
        return result;
    }
    friend Stepwise operator-(Stepwise a, Stepwise b)
    {
        const volatile Lum32f x = a.value_, y = b.value_;
        const volatile Lum32f result = x - y;
        return result;
    }
    friend Stepwise operator*(Stepwise a, Stepwise b)
    {
        const volatile Lum32f x = a.value_, y = b.value_;
        const volatile Lum32f result = x * y;
        return result;
    }
    friend Stepwise operator/(Stepwise a, Stepwise b)
    {
        const volatile Lum32f x = a.value_, y = b.value_;
        const volatile Lum32f result = x / y;
        return result;
    }

  private:
    Lum32f value_;
};

struct Lens
{
    Lum32f fx = 100;
    Lum32f fy = 100;
    Lum32f cx = 0;
    Lum32f cy = 0;
    Lum32f k1 = 0;
    Lum32f k2 = 0;
    Lum32f p1 = 0;
    Lum32f p2 = 0;
};

struct Position
{
    Lum32f x;
    Lum32f y;
};

inline Position radialPosition(const Lens& lens, int column, int row)
{
    const Stepwise fx = lens.fx, fy = lens.fy, cx = lens.cx, cy = lens.cy, k1 = lens.k1, k2 = lens.k2;
    const Stepwise x = Stepwise::ofInteger(column), y = Stepwise::ofInteger(row);
    const Stepwise cu = 1.0f / (fx * fx);
    const Stepwise cv = 1.0f / (fy * fy);
    const Stepwise u = x - cx;
    const Stepwise v = y - cy;
    const Stepwise x2 = (u * u) * cu;
    const Stepwise y2 = (v * v) * cv;
    const Stepwise a = ((k2 * y2) + k1) * y2;
    const Stepwise b = (2.0f * k2) * y2;
    const Stepwise c = ((k2 * x2) + k1) * x2;
    const Stepwise f = ((x2 * b) + c) + a;
    return {(x + (u * f)).value(), (y + (v * f)).value()};
}

inline Position tangentialPosition(const Lens& lens, int column, int row)
{
    const Stepwise fx = lens.fx, fy = lens.fy, cx = lens.cx, cy = lens.cy, k1 = lens.k1, k2 = lens.k2, p1 = lens.p1,
                   p2 = lens.p2;
    const Stepwise x = Stepwise::ofInteger(column), y = Stepwise::ofInteger(row);
    const Stepwise iu = 1.0f / fx;
    const Stepwise iv = 1.0f / fy;
    const Stepwise u = x - cx;
    const Stepwise v = y - cy;
    const Stepwise normalX = u * iu;
    const Stepwise normalY = v * iv;
    const Stepwise r2 = (normalX * normalX) + (normalY * normalY);
    const Stepwise f = (k1 * r2) + ((k2 * r2) * r2);
    const Stepwise g = (f + ((2.0f * p1) * normalY)) + ((2.0f * p2) * normalX);
    const Stepwise sx = (x + (u * g)) + ((p2 * fx) * r2);
    const Stepwise sy = (y + (v * g)) + ((p1 * fy) * r2);
    return {sx.value(), sy.value()};
}

/// What the maps hold: rounded to nearest.
inline Position mapPosition(const Lens& lens, int column, int row)
{
    const RoundingMode nearest(FE_TONEAREST);
    return lens.p1 == 0 && lens.p2 == 0 ? radialPosition(lens, column, row) : tangentialPosition(lens, column, row);
}

inline void createMaps(Image<Lum32f>& columns, Image<Lum32f>& rows, const Lens& lens)
{
    for (int y = 0; y < columns.height(); ++y) {
        for (int x = 0; x < columns.width(); ++x) {
            const Position position = mapPosition(lens, x, y);
            columns.at(x, y) = position.x;
            rows.at(x, y) = position.y;
        }
    }
}

/// How a valid position lies between the pixels.
struct Sample
{
    int ix;
    int iy;
    Stepwise w00;
    Stepwise w10;
    Stepwise w01;
    Stepwise w11;
};

/// To be called while rounding towards zero.
inline std::optional<Sample> sampleOf(const Lens& lens, int column, int row, LumiSize size)
{
    const auto [sx, sy] = radialPosition(lens, column, row);
    const bool isValid = sx >= 0 && sy >= 0 && sx < Stepwise::ofInteger(size.width - 1).value() &&
                         sy < Stepwise::ofInteger(size.height - 1).value();
    if (!isValid) {
        return std::nullopt;
    }
    const int ix = static_cast<int>(sx);
    const int iy = static_cast<int>(sy);
    const Stepwise tx = Stepwise(sx) - Stepwise::ofInteger(ix);
    const Stepwise ty = Stepwise(sy) - Stepwise::ofInteger(iy);
    return Sample{ix, iy, (1.0f - tx) * (1.0f - ty), tx * (1.0f - ty), (1.0f - tx) * ty, tx * ty};
}

template <class T>
T mixed(const Sample& s, Stepwise p00, Stepwise p10, Stepwise p01, Stepwise p11)
{
    const Stepwise value = ((s.w00 * p00) + (s.w10 * p10)) + ((s.w01 * p01) + (s.w11 * p11));
    if constexpr (std::is_same_v<T, Lum32f>) {
        return value.value();
    } else {
        return static_cast<T>((value + 0.5f).value());
    }
}

/// Source: anything with at(x, y, channel). Gives how many pixels were valid.
template <class Source, class T>
int undistort(const Source& source, Image<T>& destination, const Lens& lens)
{
    const RoundingMode towardsZero(FE_TOWARDZERO);
    const LumiSize size = {destination.width(), destination.height()};
    int valid = 0;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const std::optional<Sample> sample = sampleOf(lens, x, y, size);
            if (!sample) {
                continue;
            }
            ++valid;
            const int ix = sample->ix;
            const int iy = sample->iy;
            for (int c = 0; c < destination.channels(); ++c) {
                const auto pixel = [&](int column, int row) {
                    return Stepwise(static_cast<Lum32f>(source.at(column, row, c)));  // exact for every type
                };
                destination.at(x, y, c) =
                    mixed<T>(*sample, pixel(ix, iy), pixel(ix + 1, iy), pixel(ix, iy + 1), pixel(ix + 1, iy + 1));
            }
        }
    }
    return valid;
}

}  // namespace lumcv::test::geometry
