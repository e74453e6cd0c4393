// The layer down, written pixel by pixel from its definition: taps, smoothing of the whole picture, resampling.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "pyramid/layer_geometry.hpp"
#include "support/image.hpp"

namespace lumcv::test::pyramid {

template <class T>
constexpr bool kIsFloat = std::is_same_v<T, Lum32f>;

/// What a caller's kernel consists of.
template <class T>
using Tap = std::conditional_t<kIsFloat<T>, Lum32f, Lum16s>;

/// What a picture consists of between two steps: integers with fractional bits, or floats.
template <class T>
using Value = std::conditional_t<kIsFloat<T>, Lum32f, Lum64s>;

template <class V>
struct Plane
{
    Plane(int planeWidth, int planeHeight, int planeChannels)
        : width(planeWidth),
          height(planeHeight),
          channels(planeChannels),
          values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height * channels))
    {
    }
    /// The pixel, or the nearest one of the plane.
    V& at(Lum64s x, Lum64s y, int channel)
    {
        const Lum64s column = std::clamp<Lum64s>(x, 0, width - 1);
        const Lum64s row = std::clamp<Lum64s>(y, 0, height - 1);
        return values[static_cast<std::size_t>((row * width + column) * channels + channel)];
    }

    int width, height, channels;
    std::vector<V> values;
};

template <class V, class T>
Plane<V> planeOf(const Image<T>& image)
{
    Plane<V> plane(image.width(), image.height(), image.channels());
    for (int y = 0; y < image.height(); ++y) {
        std::copy_n(image.row(y), image.width() * image.channels(),
                    plane.values.begin() + static_cast<std::ptrdiff_t>(y) * image.width() * image.channels());
    }
    return plane;
}

/// The left half of a kernel and its mirror image.
template <class Tap>
std::vector<Tap> mirrored(const std::vector<Tap>& kernel)
{
    std::vector<Tap> result = kernel;
    std::copy(kernel.begin(), kernel.begin() + static_cast<std::ptrdiff_t>(kernel.size() / 2), result.rbegin());
    return result;
}

template <class Tap>
bool isBinomial5(const std::vector<Tap>& kernel)
{
    return kernel == std::vector<Tap>{1, 4, 6, 4, 1};
}

inline Lum64s wrapped32(Lum64s value)
{
    return static_cast<Lum32s>(static_cast<Lum32u>(value));
}

template <class Tap>
Tap tapSum(const std::vector<Tap>& kernel)
{
    const std::size_t centre = kernel.size() / 2;
    Tap half = 0;
    for (std::size_t i = 0; i < centre; ++i) {
        half = half + kernel[i];
    }
    return kernel[centre] + 2 * half;
}

/// The normalised taps of floats, for both ways.
inline std::vector<Lum32f> normalisedTaps(const std::vector<Lum32f>& kernel)
{
    std::vector<Lum32f> taps = mirrored(kernel);
    const Lum32f sum = tapSum(taps);
    if (std::abs(sum) > 1.1754944e-38f) {
        for (std::size_t i = 0; i < taps.size(); ++i) {
            taps[i] = i == taps.size() / 2 ? taps[i] / sum : taps[i] * (1.0f / sum);
        }
    }
    return taps;
}

/// The taps of the way down: 13 fractional bits for integers.
inline std::vector<Lum32f> downTaps(const std::vector<Lum32f>& kernel)
{
    return normalisedTaps(kernel);
}
inline std::vector<Lum64s> downTaps(const std::vector<Lum16s>& kernel)
{
    const std::vector<Lum16s> symmetric = mirrored(kernel);
    std::vector<Lum64s> taps(symmetric.begin(), symmetric.end());
    const Lum64s sum = wrapped32(tapSum(taps));
    for (Lum64s& tap : taps) {
        if (sum != 0) {
            tap = static_cast<Lum16s>((tap * 16384 / sum) >> 1);
        }
    }
    return taps;
}

/// What is made of a sum of taps and pixels.
enum class Rounding
{
    Row,
    Column,
    ColumnOfBinomial  ///< of the direct pass: the pixel at once
};

inline Lum32f rounded(Lum32f sum, Rounding, bool)
{
    return sum;
}
inline Lum64s rounded(Lum64s sum, Rounding rounding, bool isByte)
{
    const auto saturated = [&](Lum64s value) { return isByte ? std::clamp<Lum64s>(value, -32768, 32767) : value; };
    switch (rounding) {
        case Rounding::Row:
            return saturated(wrapped32(sum) >> (isByte ? 8 : 11));
        case Rounding::Column:
            return saturated(wrapped32(sum + 16384) >> 15);
        default:
            return wrapped32(sum + 131072) >> 18;
    }
}

/// Convolves along one axis.
template <class V>
Plane<V> smoothed(Plane<V>& source, const std::vector<V>& taps, Rounding rounding, bool isByte)
{
    Plane<V> result(source.width, source.height, source.channels);
    const int centre = static_cast<int>(taps.size() / 2);
    for (int y = 0; y < source.height; ++y) {
        for (int x = 0; x < source.width; ++x) {
            for (int c = 0; c < source.channels; ++c) {
                V sum = 0;
                for (int i = 0; i < static_cast<int>(taps.size()); ++i) {
                    const V pixel =
                        rounding == Rounding::Row ? source.at(x + i - centre, y, c) : source.at(x, y + i - centre, c);
                    const V product = taps[static_cast<std::size_t>(i)] * pixel;
                    sum = i == 0 ? product : sum + product;
                }
                result.at(x, y, c) = rounded(sum, rounding, isByte);
            }
        }
    }
    return result;
}

/// Between two values, as the weight says.
inline Lum32f between(Lum32f first, Lum32f second, Lum32f weight)
{
    const Lum32f a = weight * second;
    const Lum32f b = (1 - weight) * first;
    return a + b;
}
inline Lum64s between(Lum64s first, Lum64s second, Lum32f weight)
{
    return truncated(between(static_cast<Lum32f>(first), static_cast<Lum32f>(second), weight) + 0.5f);
}

struct Position
{
    Position(int d, Lum32f rate)
    {
        const Lum32f coordinate = static_cast<Lum32f>(d) * rate;
        index = static_cast<Lum64s>(std::floor(coordinate));
        weight = coordinate - std::floor(coordinate);
    }
    Lum64s index;
    Lum32f weight;
};

/// The layer below. The size of the destination is the right one.
template <class T>
void layerDown(const Image<T>& source, Image<T>& destination, const std::vector<Tap<T>>& kernel, Lum32f rate)
{
    using V = Value<T>;
    constexpr bool isByte = std::is_same_v<T, Lum8u>;
    const std::vector<V> taps = downTaps(kernel);
    const int size = static_cast<int>(kernel.size());
    const bool isDirect = isByte && isNearTwo(rate) && size == 5 && kernel[0] == 1 && kernel[1] == 4 &&
                          kernel[2] == 6 && source.width() > size && source.height() > size;
    Plane<V> pixels = planeOf<V>(source);
    Plane<V> rows = smoothed(pixels, taps, Rounding::Row, isByte);
    Plane<V> picture = smoothed(rows, taps, isDirect ? Rounding::ColumnOfBinomial : Rounding::Column, isByte);
    destination.forEach(Area::Roi, [&](T& element, int x, int y, int c) {
        V value;
        if (isNearTwo(rate)) {
            value = picture.at(2 * x, 2 * y, c);
        } else {
            const Position column(x, rate), row(y, rate);
            V ends[2];
            for (int i = 0; i < 2; ++i) {
                ends[i] = between(picture.at(column.index, row.index + i, c),
                                  picture.at(column.index + 1, row.index + i, c), column.weight);
            }
            value = between(ends[0], ends[1], row.weight);
        }
        if constexpr (isByte) {
            element = static_cast<T>(std::clamp<V>(isDirect ? value : (value + 4) >> 3, 0, 255));
        } else if constexpr (!kIsFloat<T>) {
            element = static_cast<T>(std::clamp<V>(value, 0, 65535));
        } else {
            element = value;
        }
    });
}

}  // namespace lumcv::test::pyramid
