// The separable filter written out plainly: the sizes of its blocks, the layout of its record and the filter itself.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

#include "filter/extended_image.hpp"
#include "lumcv/types.h"

namespace lumcv::test::separable {

// sizes reach 2^69 before they are judged
__extension__ typedef __int128 Wide;

constexpr Wide kLargest32 = 0x7fffffff;
constexpr Wide kLargest64 = 0x7fffffffffffffff;

inline int coefficientBytes(LumDataType kernelType)
{
    return kernelType == lumType16s ? 2 : 4;
}

// The record of 64 bytes with both kernels behind it, and 63 bytes to spare.
inline Wide specSize(LumiSize kernel, LumDataType kernelType)
{
    return (Wide{kernel.width} + kernel.height) * coefficientBytes(kernelType) + 127;
}

inline Wide bufferSize(Wide width, LumiSize kernel, LumDataType kernelType, int channels)
{
    const Wide kw = kernel.width;
    const Wide kh = kernel.height;
    return 256 * kw + 8 * kh + 4 * channels * (kw * coefficientBytes(kernelType) + (kw + width - 1) * kh);
}

// What the caller's block begins with.
struct Record
{
    Lum32s kernelType;
    Lum32s kernelWidth;
    Lum32s kernelHeight;
    Lum32s divisor;
    Lum32s scaleFactor;
    Lum32s reserved[3];
    const void* pKernelX;
    const void* reservedPointer;
    const void* pKernelY;
    Lum32s numChannels;
};
static_assert(offsetof(Record, pKernelX) == 32 && offsetof(Record, pKernelY) == 48);
static_assert(offsetof(Record, numChannels) == 56 && sizeof(Record) == 64);

inline Record readRecord(const unsigned char* block)
{
    Record record;
    std::memcpy(&record, block, sizeof record);
    return record;
}

struct Kernel
{
    LumDataType type = lumType16s;
    std::vector<Lum32f> x;  // as floats, which hold every 16s
    std::vector<Lum32f> y;
    Lum32s divisor = 1;
    Lum32s scaleFactor = 0;

    LumiSize size() const
    {
        return {static_cast<Lum32s>(x.size()), static_cast<Lum32s>(y.size())};
    }
    // The centre of an even kernel is the earlier of its two middle coefficients.
    Margins reach() const
    {
        const int ax = (size().width - 1) / 2;
        const int ay = (size().height - 1) / 2;
        return {ay, size().height - 1 - ay, ax, size().width - 1 - ax};
    }
};

// A row after the row pass: unrounded.
inline std::vector<Lum32f> filteredRow(const std::vector<Lum32f>& extended, int channels,
                                       const std::vector<Lum32f>& coefficients)
{
    const std::size_t elements = extended.size() - (coefficients.size() - 1) * static_cast<std::size_t>(channels);
    std::vector<Lum32f> sums(elements);
    for (std::size_t e = 0; e < elements; ++e) {
        sums[e] = floatSum(coefficients, &extended[e], channels);
    }
    return sums;
}

// What stands for a row of the border value: one value for each channel, made without the row pass.
inline std::vector<Lum32f> constantRow(std::size_t elements, int channels, const Kernel& kernel,
                                       const std::vector<Lum32f>& borderValue)
{
    Lum32f sum = kernel.x[0];
    for (std::size_t i = 1; i < kernel.x.size(); ++i) {
        sum = sum + kernel.x[i];
    }
    std::vector<Lum32f> row(elements);
    for (std::size_t e = 0; e < elements; ++e) {
        row[e] = sum * borderValue[e % static_cast<std::size_t>(channels)];
        if (kernel.type == lumType16s) {
            const Lum32f scale = 1.0f / static_cast<Lum32f>(kernel.divisor);
            row[e] = row[e] * scale;
        }
    }
    return row;
}

template <class Destination>
Destination store(Lum32f sum)
{
    if constexpr (std::is_same_v<Destination, Lum32f>) {
        return sum;
    } else {
        return roundAndSaturate<Destination>(sum);
    }
}

// The elements of the destination, row by row.
template <class Destination, class Element, class Source>
std::vector<Destination> filter(const Kernel& kernel, const Source& source, LumiSize size, int channels,
                                LumiBorderType border, const Element* borderValue)
{
    const Margins reach = kernel.reach();
    const ExtendedImage<Element> extended(source, size, channels, reach, border, borderValue);
    const auto elements = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(channels);
    std::vector<Lum32f> scaledX = kernel.x;
    if (kernel.type == lumType16s) {
        const Lum32f scale = 1.0f / static_cast<Lum32f>(kernel.divisor);
        for (Lum32f& k : scaledX) {
            k = k * scale;
        }
    }

    std::vector<std::vector<Lum32f>> rows;
    for (int y = -reach.top; y < size.height + reach.bottom; ++y) {
        if (extended.isConstant(y)) {
            const std::vector<Lum32f> value(borderValue, borderValue + channels);
            rows.push_back(constantRow(elements, channels, kernel, value));
        } else {
            const std::vector<Lum32f> row(extended.row(y).begin(), extended.row(y).end());
            rows.push_back(filteredRow(row, channels, scaledX));
        }
    }

    std::vector<Destination> result;
    std::vector<Lum32f> sums(elements);
    for (std::size_t y = 0; y < static_cast<std::size_t>(size.height); ++y) {
        for (std::size_t e = 0; e < elements; ++e) {
            sums[e] = kernel.y[0] * rows[y][e];
        }
        for (std::size_t j = 1; j < kernel.y.size(); ++j) {
            const Lum32f coefficient = kernel.y[j];
            const Lum32f* const row = rows[y + j].data();
            for (std::size_t e = 0; e < elements; ++e) {
                const Lum32f product = coefficient * row[e];
                sums[e] = sums[e] + product;
            }
        }
        for (const Lum32f sum : sums) {
            result.push_back(store<Destination>(sum));
        }
    }
    return result;
}

}  // namespace lumcv::test::separable
