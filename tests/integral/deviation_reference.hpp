// Rectangle deviation one pixel at a time, as the documentation writes it.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "integral/table.hpp"
#include "lumcv/types.h"

namespace lumcv::test::deviation {

/// The four entries of a rectangle: upright in the order of the rows, tilted top, left, right, bottom.
template <class T>
struct Corners
{
    T first, second, third, fourth;
};

template <class T>
Corners<T> uprightCorners(Table<T> p, LumiRect r, int i, int j)
{
    return {p.at(r.y + j, r.x + i), p.at(r.y + j, r.x + r.width + i), p.at(r.y + r.height + j, r.x + i),
            p.at(r.y + r.height + j, r.x + r.width + i)};
}

template <class T>
Corners<T> tiltedCorners(Table<T> p, LumiRect r, int i, int j)
{
    return {p.at(r.x + r.y + j, r.x - r.y + i), p.at(r.x + r.y + j + r.height, r.x - r.y + i - r.height),
            p.at(r.x + r.y + j + r.width, r.x - r.y + i + r.width),
            p.at(r.x + r.y + j + r.width + r.height, r.x - r.y + i + r.width - r.height)};
}

/// Whether a pixel is in a group of eight or in what is left of its row.
enum class Place
{
    Body,
    Tail
};

inline Place placeOf(int i, int width)
{
    return i < width / 8 * 8 ? Place::Body : Place::Tail;
}

inline Lum32s wrapping(Lum64s value)
{
    return static_cast<Lum32s>(static_cast<Lum32u>(static_cast<std::uint64_t>(value)));
}

inline Lum32s integerSum(const Corners<Lum32s>& c)
{
    return wrapping(Lum64s{c.first} - c.second - c.third + c.fourth);
}

template <class T>
T inOneRun(const Corners<T>& c)
{
    return ((c.first - c.second) - c.third) + c.fourth;
}

template <class T>
T inPairs(const Corners<T>& c)
{
    return (c.first - c.second) + (c.fourth - c.third);
}

template <class T>
T middleFirst(const Corners<T>& c)
{
    return (c.first - (c.second + c.third)) + c.fourth;
}

template <class From>
Corners<Lum64f> widened(const Corners<From>& c)
{
    return {static_cast<Lum64f>(c.first), static_cast<Lum64f>(c.second), static_cast<Lum64f>(c.third),
            static_cast<Lum64f>(c.fourth)};
}

inline Corners<Lum32f> narrowed(const Corners<Lum64f>& c)
{
    return {static_cast<Lum32f>(c.first), static_cast<Lum32f>(c.second), static_cast<Lum32f>(c.third),
            static_cast<Lum32f>(c.fourth)};
}

/// What is not above zero becomes zero, not-a-number included.
template <class T>
T floored(T variance)
{
    return variance > 0 ? variance : T{0};
}

inline Lum32f upright32f(const Corners<Lum32f>& sums, const Corners<Lum64f>& squares, LumiRect rect, Place place)
{
    const Lum64f inverse = 1.0 / static_cast<Lum64f>(static_cast<Lum32f>(rect.width * rect.height));
    const Lum32f sum = place == Place::Body ? inOneRun(sums) : inPairs(sums);
    const Lum64f squareSum = place == Place::Body ? inOneRun(squares) : inPairs(squares);
    const Lum64f mean = static_cast<Lum64f>(sum) * inverse;
    const Lum64f meanSquare = squareSum * inverse;
    return std::sqrt(floored(static_cast<Lum32f>(meanSquare - mean * mean)));
}

inline Lum32f upright32s32f(const Corners<Lum32s>& sums, const Corners<Lum64f>& squares, LumiRect rect, Place place)
{
    const Lum32f area = static_cast<Lum32f>(rect.width * rect.height);
    const Lum32f mean = static_cast<Lum32f>(integerSum(sums)) / area;
    const Lum32f meanSquare = place == Place::Body
                                  ? inOneRun(narrowed(squares)) / area
                                  : static_cast<Lum32f>(inOneRun(squares) / (rect.width * rect.height));
    const Lum32f variance = meanSquare - mean * mean;
    return std::sqrt(variance < 0 ? 0.0F : variance);  // a not-a-number stays one
}

/// Two to the power of minus the factor, whose magnitude is taken modulo 32.
inline Lum64f scaleOf(int scaleFactor)
{
    const Lum64s factor = scaleFactor;
    return std::ldexp(1.0, factor < 0 ? static_cast<int>(-factor % 32) : -static_cast<int>(factor % 32));
}

/// Rounds half up; what is beyond 32 bits becomes the smallest number.
inline Lum32s scaled(Lum64f root, int scaleFactor)
{
    const Lum64f result = std::trunc(root * scaleOf(scaleFactor) + 0.5);
    return result < 2147483648.0 ? static_cast<Lum32s>(result) : std::numeric_limits<Lum32s>::min();
}

inline Lum32s upright32sSfs(const Corners<Lum32s>& sums, const Corners<Lum32s>& squares, LumiRect rect, int scaleFactor)
{
    const Lum32f inverse = 1.0F / static_cast<Lum32f>(rect.width * rect.height);
    const Lum32f mean = static_cast<Lum32f>(integerSum(sums)) * inverse;
    const Lum32f meanSquare = static_cast<Lum32f>(integerSum(squares)) * inverse;
    const Lum32f variance = floored(meanSquare - mean * mean);
    return scaled(std::sqrt(static_cast<Lum64f>(variance)), scaleFactor);
}

inline Lum32f tilted32f(const Corners<Lum32f>& sums, const Corners<Lum64f>& squares, LumiRect rect)
{
    const Lum64f inverse = 1.0 / static_cast<Lum64f>(2 * rect.width * rect.height);
    const Lum64f mean = middleFirst(widened(sums)) * inverse;
    const Lum64f meanSquare = middleFirst(squares) * inverse;
    return std::sqrt(static_cast<Lum32f>(floored(meanSquare - mean * mean)));
}

inline Lum32f tilted32s32f(const Corners<Lum32s>& sums, const Corners<Lum64f>& squares, LumiRect rect)
{
    const int area = 2 * rect.width * rect.height;
    const Lum32f mean = static_cast<Lum32f>(integerSum(sums)) * (1.0F / static_cast<Lum32f>(area));
    const Lum64f meanSquare = middleFirst(squares) * (1.0 / static_cast<Lum64f>(area));
    return std::sqrt(static_cast<Lum32f>(floored(meanSquare - static_cast<Lum64f>(mean) * static_cast<Lum64f>(mean))));
}

inline Lum32s tilted32sSfs(const Corners<Lum32s>& sums, const Corners<Lum32s>& squares, LumiRect rect, int scaleFactor)
{
    const Lum32f inverse = 1.0F / static_cast<Lum32f>(2 * rect.width * rect.height);
    const Lum64f mean = static_cast<Lum32f>(integerSum(sums)) * inverse;
    const Lum64f meanSquare = static_cast<Lum32f>(integerSum(squares)) * inverse;
    const Lum32f variance = static_cast<Lum32f>(floored(meanSquare - mean * mean));
    const Lum32f root = static_cast<Lum32f>(std::sqrt(static_cast<Lum64f>(variance)));
    return scaled(static_cast<Lum64f>(root), scaleFactor);
}

}  // namespace lumcv::test::deviation
