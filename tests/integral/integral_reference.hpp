// Integral images one entry at a time, as the documentation writes them.
#pragma once

#include <type_traits>
#include <vector>

#include "lumcv/types.h"
#include "support/image.hpp"

namespace lumcv::test::integral {

/// What is summed of a pixel.
enum class Summand
{
    Value,
    Square
};

inline Lum32s summandOf(Summand summand, Lum8u pixel)
{
    return summand == Summand::Value ? pixel : pixel * pixel;
}

/// A sum; integers wrap.
template <class T>
T sumOf(T a, T b)
{
    if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(static_cast<Lum32u>(a) + static_cast<Lum32u>(b));
    } else {
        return a + b;
    }
}

/// The upright table; it has one column and one row more than the source.
template <class T>
void upright(const Image<Lum8u>& source, Summand summand, T initial, Image<T>& table)
{
    for (int c = 0; c <= source.width(); ++c) {
        table.at(c, 0) = initial;
    }
    for (int r = 0; r < source.height(); ++r) {
        const Lum8u* const pixels = source.row(r);
        const T* const above = table.row(r);
        T* const below = table.row(r + 1);
        below[0] = initial;
        T total = 0;
        for (int c = 0; c < source.width(); ++c) {
            total = sumOf(total, static_cast<T>(summandOf(summand, pixels[c])));
            below[c + 1] = sumOf(total, above[c + 1]);
        }
    }
}

/// The tilted table; it has two columns and two rows more than the source.
template <class T>
void tilted(const Image<Lum8u>& source, Summand summand, T initial, Image<T>& table)
{
    // single precision is widened and rounded once, when an entry is stored
    using Wide = std::conditional_t<std::is_integral_v<T>, Lum32u, Lum64f>;
    const int width = source.width();
    for (int c = 0; c < width + 2; ++c) {
        table.at(c, 0) = initial;
        table.at(c, 1) = initial;
    }
    for (int r = 0; r < source.height(); ++r) {
        const T* const twoAbove = table.row(r);
        const T* const above = table.row(r + 1);
        T* const entries = table.row(r + 2);
        const auto pixel = [&](int x) { return static_cast<Wide>(summandOf(summand, source.row(r)[x])); };
        const auto terms = [&](int c) {
            return static_cast<Wide>(above[c - 1]) - static_cast<Wide>(twoAbove[c]) + static_cast<Wide>(above[c + 1]);
        };
        entries[0] = above[1];
        for (int x = 0; x <= width - 2; ++x) {
            entries[x + 1] = static_cast<T>(terms(x + 1) + pixel(x) + pixel(x + 1));
        }
        entries[width] = static_cast<T>(terms(width) + pixel(width - 1));
        entries[width + 1] = above[width + 1];
    }
}

/// The running totals of a row of floats, in groups of four from four pixels on.
inline std::vector<Lum32f> totalsInGroups(const Lum32f* pixels, int width)
{
    std::vector<Lum32f> totals(static_cast<std::size_t>(width));
    Lum32f carry = 0;
    int x = 0;
    for (; x + 4 <= width; x += 4) {
        Lum32f a[4], b[4];
        for (int i = 0; i < 4; ++i) {
            a[i] = pixels[x + i] + (i >= 1 ? pixels[x + i - 1] : 0.0F);
        }
        for (int i = 0; i < 4; ++i) {
            b[i] = (a[i] + (i >= 2 ? a[i - 2] : 0.0F)) + carry;
            totals[static_cast<std::size_t>(x + i)] = b[i];
        }
        carry = b[3];
    }
    for (; x < width; ++x) {
        carry += pixels[x];
        totals[static_cast<std::size_t>(x)] = carry;
    }
    return totals;
}

/// The upright table of a float image; its first row and column are zero.
inline void uprightOfFloats(const Image<Lum32f>& source, Image<Lum32f>& table)
{
    for (int c = 0; c <= source.width(); ++c) {
        table.at(c, 0) = 0;
    }
    for (int r = 0; r < source.height(); ++r) {
        const std::vector<Lum32f> totals = totalsInGroups(source.row(r), source.width());
        table.at(0, r + 1) = 0;
        for (int c = 0; c < source.width(); ++c) {
            table.at(c + 1, r + 1) = totals[static_cast<std::size_t>(c)] + table.at(c + 1, r);
        }
    }
}

}  // namespace lumcv::test::integral
