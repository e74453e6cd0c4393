// What the row and column pipelines compute, written one element at a time: border synthesis, the three arithmetics
// (single precision, integers scaled in single precision, 16-bit integers) and the roundings. Kernels are never
// reversed, and each sum starts with its first product and adds the others in the order of the kernel.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include "lumcv/types.h"

namespace lumcv::test {

// What a border value asks of the two ends of a row.
struct RowBorder
{
    int mode;
    bool leftInMemory;
    bool rightInMemory;
};

inline RowBorder parseRowBorder(LumiBorderType borderType)
{
    return {borderType & 0xF, (borderType & lumBorderInMemLeft) != 0, (borderType & lumBorderInMemRight) != 0};
}

// The pixel inside the row that a reflection about the edge pixels leads to, however often it bounces.
inline int mirrorIndex(int x, int width)
{
    if (width == 1) {
        return 0;
    }
    while (x < 0 || x >= width) {
        x = x < 0 ? -x : 2 * (width - 1) - x;
    }
    return x;
}

// The row with everything that a kernel reaches: padLeft pixels before it, padRight behind it.
template <typename T>
std::vector<T> extendRow(const T* row, int width, int channels, int padLeft, int padRight, RowBorder border,
                         const T* borderValue)
{
    std::vector<T> extended;
    extended.reserve((static_cast<std::size_t>(width) + padLeft + padRight) * channels);
    for (int x = -padLeft; x < width + padRight; ++x) {
        const bool outside = x < 0 || x >= width;
        const bool inMemory = x < 0 ? border.leftInMemory : border.rightInMemory;
        for (int c = 0; c < channels; ++c) {
            T element;
            if (!outside || inMemory) {
                element = row[static_cast<std::ptrdiff_t>(x) * channels + c];
            } else if (border.mode == lumBorderConstant) {
                element = borderValue[c];
            } else {
                const int inside = border.mode == lumBorderMirror ? mirrorIndex(x, width) : std::clamp(x, 0, width - 1);
                element = row[static_cast<std::ptrdiff_t>(inside) * channels + c];
            }
            extended.push_back(element);
        }
    }
    return extended;
}

// Ties to even; what lies beyond the type becomes its nearest value.
template <typename T>
T roundAndSaturate(float sum)
{
    const float lowest = std::numeric_limits<T>::lowest();
    const float highest = std::numeric_limits<T>::max();
    return static_cast<T>(std::nearbyint(std::clamp(sum, lowest, highest)));
}

inline Lum16s saturateTo16s(Lum32s value)
{
    return static_cast<Lum16s>(std::clamp(value, -32768, 32767));
}

// Sum of taps products of single precision; elements stand elementStride apart.
template <typename T>
float floatSum(const std::vector<float>& coefficients, const T* elements, int elementStride)
{
    float sum = coefficients[0] * static_cast<float>(elements[0]);
    for (std::size_t i = 1; i < coefficients.size(); ++i) {
        const float product = coefficients[i] * static_cast<float>(elements[i * elementStride]);
        sum = sum + product;
    }
    return sum;
}

// The same in 32-bit integers, modulo 2^32.
inline Lum32s wrappedSum(const std::vector<Lum16s>& kernel, const Lum16s* elements, int elementStride)
{
    Lum32u sum = 0;
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        sum += static_cast<Lum32u>(kernel[i] * elements[i * elementStride]);
    }
    return static_cast<Lum32s>(sum);
}

// 1 / divisor with 14 fractional bits, without its fraction.
inline Lum16s lowScale(int divisor)
{
    return static_cast<Lum16s>(16384.0f / static_cast<float>(divisor));
}

// (sum * scale) >> 14, with a product modulo 2^32 and no rounding.
inline Lum32s lowScaled(Lum32s sum, int divisor)
{
    const Lum32u product = static_cast<Lum32u>(sum) * static_cast<Lum32u>(Lum32s{lowScale(divisor)});
    return static_cast<Lum32s>(product) >> 14;
}

template <typename Kernel>
std::vector<float> rowCoefficients(const std::vector<Kernel>& kernel, int divisor)
{
    if constexpr (std::is_same_v<Kernel, float>) {
        return kernel;
    } else {
        const float scale = 1.0f / static_cast<float>(divisor);
        std::vector<float> coefficients;
        for (const Kernel k : kernel) {
            coefficients.push_back(static_cast<float>(k) * scale);
        }
        return coefficients;
    }
}

// 65536 times too small, as the elements of a column are taken 65536 times too large.
template <typename Kernel>
std::vector<float> columnCoefficients(const std::vector<Kernel>& kernel, int divisor)
{
    if constexpr (std::is_same_v<Kernel, float>) {
        return kernel;
    } else {
        std::vector<float> coefficients;
        for (const Kernel k : kernel) {
            const float scaled = static_cast<float>(k) * 0x1p-16f;
            coefficients.push_back(scaled / static_cast<float>(divisor));
        }
        return coefficients;
    }
}

// One row of the row pass. `row` points to the ROI's first element; only sides in memory are read beyond the ROI.
template <typename Row, bool low, typename Source, typename Kernel>
std::vector<Row> rowReference(const Source* row, int width, int channels, const std::vector<Kernel>& kernel,
                              int xAnchor, LumiBorderType borderType, const Source* borderValue, int divisor)
{
    const int taps = static_cast<int>(kernel.size());
    const std::vector<Source> extended =
        extendRow(row, width, channels, xAnchor, taps - 1 - xAnchor, parseRowBorder(borderType), borderValue);
    std::vector<Row> result(static_cast<std::size_t>(width) * channels);
    if constexpr (low) {
        for (std::size_t e = 0; e < result.size(); ++e) {
            const Lum32s sum = wrappedSum(kernel, &extended[e], channels);
            result[e] = saturateTo16s(divisor == 1 ? sum : lowScaled(sum, divisor));
        }
    } else {
        const std::vector<float> coefficients = rowCoefficients(kernel, divisor);
        for (std::size_t e = 0; e < result.size(); ++e) {
            const float sum = floatSum(coefficients, &extended[e], channels);
            if constexpr (std::is_same_v<Row, float>) {
                result[e] = sum;
            } else {
                result[e] = roundAndSaturate<Row>(sum);
            }
        }
    }
    return result;
}

// One row of the column pass, from the rows that start at `rows`, one for each coefficient.
template <typename Destination, bool low, typename Row, typename Kernel>
std::vector<Destination> columnReference(const Row* const* rows, int width, int channels,
                                         const std::vector<Kernel>& kernel, int divisor)
{
    const std::size_t taps = kernel.size();
    const int elements = width * channels;
    const int bodyElements = channels * (width - width % 16);
    const std::vector<float> coefficients = columnCoefficients(kernel, divisor);
    std::vector<Destination> result(static_cast<std::size_t>(elements));
    std::vector<std::conditional_t<low, Lum16s, float>> column(taps);
    for (int e = 0; e < elements; ++e) {
        if constexpr (low) {
            for (std::size_t j = 0; j < taps; ++j) {
                column[j] = rows[j][e];
            }
            const Lum32s sum = wrappedSum(kernel, column.data(), 1);
            if (e < bodyElements) {
                // the lanes hold 16 bits: what the sum has above them is lost before it is scaled
                const auto laneSum = static_cast<Lum16s>(sum);
                result[e] = divisor == 1 ? laneSum : saturateTo16s(lowScaled(laneSum, divisor));
            } else {
                result[e] = static_cast<Lum16s>(divisor == 1 ? sum : lowScaled(sum, divisor));
            }
        } else {
            for (std::size_t j = 0; j < taps; ++j) {
                const float scale = std::is_same_v<Row, float> ? 1.0f : 65536.0f;
                column[j] = static_cast<float>(rows[j][e]) * scale;
            }
            const float sum = floatSum(coefficients, column.data(), 1);
            if constexpr (std::is_same_v<Destination, float>) {
                result[e] = sum;
            } else {
                result[e] = roundAndSaturate<Destination>(sum);
            }
        }
    }
    return result;
}

}  // namespace lumcv::test
