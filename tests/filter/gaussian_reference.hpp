// The Gaussian filter written out plainly: the sizes of its blocks, the layout of its records and the filter itself,
// one scalar at a time. The taps are read from the record, so that the filter can be compared bit for bit whatever
// the last bit of the exponential is.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace lumcv::test::gaussian {

// sizes reach 2^70 before they are judged
__extension__ typedef __int128 Wide;

constexpr Wide kLargestSize = 0x7fffffff;

inline Wide roundUp(Wide value, Wide multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

inline Wide roundDown(Wide value, Wide multiple)
{
    return value / multiple * multiple;
}

// The record that holds the folded taps.
constexpr Wide specSize(Wide kernelSize)
{
    return 2 * kernelSize + 130;
}

constexpr int kInitBufferSize = 64;

// The scratch of the 64-bit entries: a ring of rows of floats, and room for their pointers.
inline Wide ringSize(Wide width, Wide kernelSize, int channels)
{
    return (kernelSize + 1) * roundUp(4 * width * channels, 64) + 12 * kernelSize + 64;
}

// The record that stands first in the block of the ordinary Init.
inline Wide layoutSpecSize(Wide kernelSize, LumDataType dataType)
{
    return dataType == lumType32f ? 32 * kernelSize + 32 : 16 * kernelSize + 36;
}

inline Wide rowPipelineSize(Wide kernelSize, LumDataType dataType, int channels)
{
    const bool gray = channels == 1;
    switch (dataType) {
        case lumType8u:
            return gray ? 36 * kernelSize + 144 : 60 * kernelSize + 144;
        case lumType16u:
            return gray ? 64 * kernelSize + 96 : 128 * kernelSize + 96;
        case lumType16s:
            return gray ? 48 * kernelSize + 112 : 40 * kernelSize + 96;
        default:
            return gray ? 96 * kernelSize + 96 : 288 * kernelSize + 96;
    }
}

inline Wide columnPipelineSize(Wide width, Wide kernelSize, LumDataType dataType, int channels)
{
    switch (dataType) {
        case lumType8u:
        case lumType16s:
            return 12 * channels * roundUp(width, 4) + 64;
        case lumType16u:
            return 32 * kernelSize + 64 + roundDown(8 * channels * width + 24, 32);
        default:
            return 32 * kernelSize + 32;
    }
}

inline Wide layoutBufferSize(Wide width, Wide height, Wide kernelSize, LumDataType dataType, int channels)
{
    const Wide rows = std::min(height, kernelSize);
    const Wide pitch = roundDown((width + kernelSize) * channels + 7, 8);
    const Wide pipelines = rowPipelineSize(kernelSize, dataType, channels) + 32 +
                           columnPipelineSize(width, kernelSize, dataType, channels) + 32;
    if (dataType == lumType32f) {
        return (rows + 2 * kernelSize) * pitch * 4 + 96 + (rows + kernelSize) * 4 * pitch + pipelines +
               (rows + kernelSize) * 8 + 32;
    }
    return pitch * (roundDown(kernelSize, 2) + rows + kernelSize) * 2 + 96 + (rows + kernelSize) * 2 * pitch +
           pipelines + (height + kernelSize) * 8 + 32;
}

// The two results of the ordinary query.
inline Wide bothSpecSizes(Wide kernelSize, LumDataType dataType)
{
    return layoutSpecSize(kernelSize, dataType) + specSize(kernelSize);
}

inline Wide bufferSize(Wide width, Wide height, Wide kernelSize, LumDataType dataType, int channels)
{
    return std::max({layoutBufferSize(width, height, kernelSize, dataType, channels),
                     ringSize(width, kernelSize, channels), Wide{kInitBufferSize}});
}

// What both records begin with.
struct RecordHeader
{
    Lum32s kernelSize;
    Lum32s tableOffset;
    Lum32s dataType;
    Lum32s borderType;
    Lum32s last;
};
static_assert(sizeof(RecordHeader) == 20);

constexpr Lum32s kFirstTableOffset = 20;
constexpr Lum32s kSecondTableOffset = 64;

inline RecordHeader readHeader(const Lum8u* record)
{
    RecordHeader header;
    std::memcpy(&header, record, sizeof header);
    return header;
}

template <typename Tap>
std::vector<Tap> readTable(const Lum8u* record, std::size_t alignment, std::size_t count)
{
    const auto address = reinterpret_cast<std::uintptr_t>(record) + sizeof(RecordHeader);
    const auto table = (address + alignment - 1) / alignment * alignment;
    std::vector<Tap> taps(count);
    std::memcpy(taps.data(), record + (table - reinterpret_cast<std::uintptr_t>(record)), count * sizeof(Tap));
    return taps;
}

// The record with the folded taps in the block of either Init.
inline const Lum8u* foldedRecord(const Lum8u* block)
{
    const RecordHeader header = readHeader(block);
    if (header.tableOffset == kSecondTableOffset) {
        return block;
    }
    return block + static_cast<std::size_t>(layoutSpecSize(header.kernelSize, header.dataType));
}

// taps[h] is the centre, taps[h - d] the weight at distance d.
inline std::vector<Lum32f> foldedTaps(const Lum8u* block)
{
    const Lum8u* record = foldedRecord(block);
    return readTable<Lum32f>(record, 64, static_cast<std::size_t>(readHeader(record).kernelSize / 2 + 1));
}

// Where the pixel at index i of an axis comes from: an index that can be read, or nothing for the border value.
inline std::optional<int> sourceIndex(int i, int length, bool beforeInMemory, bool afterInMemory, int mode)
{
    if (i >= 0 && i < length) {
        return i;
    }
    if (i < 0 ? beforeInMemory : afterInMemory) {
        return i;
    }
    if (mode == lumBorderConstant) {
        return std::nullopt;
    }
    if (mode == lumBorderReplicate || length == 1) {
        return std::clamp(i, 0, length - 1);
    }
    while (i < 0 || i >= length) {
        i = i < 0 ? -i : 2 * (length - 1) - i;
    }
    return i;
}

template <typename T>
T store(Lum32f value)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        return value;
    } else {
        constexpr Lum32f largest = std::numeric_limits<T>::max();
        constexpr Lum32f smallest = std::numeric_limits<T>::min();
        if (value > largest) {
            return std::numeric_limits<T>::max();
        }
        if (value < smallest) {
            return std::numeric_limits<T>::min();
        }
        return static_cast<T>(std::nearbyint(value));  // the default rounding: to nearest, ties to even
    }
}

// The sum of a pass, for many elements side by side: the centre first, then pair after pair from the inside out, each
// pair added before it is weighted. elements(d) is the first of the elements at distance d.
template <typename ElementsAt>
void fold(const std::vector<Lum32f>& taps, ElementsAt elements, std::size_t count, Lum32f* sum)
{
    const int h = static_cast<int>(taps.size()) - 1;
    const Lum32f* centre = elements(0);
    for (std::size_t i = 0; i < count; ++i) {
        sum[i] = taps[static_cast<std::size_t>(h)] * centre[i];
    }
    for (int d = 1; d <= h; ++d) {
        const Lum32f tap = taps[static_cast<std::size_t>(h - d)];
        const Lum32f* before = elements(-d);
        const Lum32f* after = elements(d);
        for (std::size_t i = 0; i < count; ++i) {
            sum[i] = sum[i] + tap * (before[i] + after[i]);
        }
    }
}

// The filter. at(x, y, channel) gives a source pixel, also outside of the ROI on the sides that lie in memory.
template <typename T, typename PixelAt>
std::vector<T> filter(const std::vector<Lum32f>& taps, int width, int height, int channels, LumiBorderType border,
                      const T* borderValue, PixelAt at)
{
    const int h = static_cast<int>(taps.size()) - 1;
    const int mode = border & 15;
    const bool all = (border & lumBorderInMem) == lumBorderInMem;
    const bool top = all || (border & lumBorderInMemTop) != 0;
    const bool bottom = all || (border & lumBorderInMemBottom) != 0;
    const bool left = all || (border & lumBorderInMemLeft) != 0;
    const bool right = all || (border & lumBorderInMemRight) != 0;
    const auto elements = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);

    // a source row with its two ends, and what the horizontal pass makes of it
    std::vector<Lum32f> padded;
    const auto filterRow = [&](int y, std::vector<Lum32f>& row) {
        padded.clear();
        for (int x = -h; x < width + h; ++x) {
            const std::optional<int> index = sourceIndex(x, width, left, right, mode);
            for (int c = 0; c < channels; ++c) {
                padded.push_back(static_cast<Lum32f>(index ? at(*index, y, c) : borderValue[c]));
            }
        }
        row.resize(elements);
        fold(
            taps, [&](int d) { return padded.data() + (h + d) * channels; }, elements, row.data());
    };

    // rows that have passed the horizontal pass, by their index counted from the first row that may be read
    std::vector<std::vector<Lum32f>> filteredRows(static_cast<std::size_t>(height + 2 * h));
    const auto filteredRow = [&](int y) -> std::vector<Lum32f>& {
        std::vector<Lum32f>& row = filteredRows[static_cast<std::size_t>(y + h)];
        if (row.empty()) {
            filterRow(y, row);
        }
        return row;
    };

    std::vector<Lum32f> constantRow;  // the taps sum to one: the horizontal pass leaves it out
    if (mode == lumBorderConstant && !all) {
        for (std::size_t i = 0; i < elements; ++i) {
            constantRow.push_back(static_cast<Lum32f>(borderValue[i % static_cast<std::size_t>(channels)]));
        }
    }

    std::vector<T> result;
    result.reserve(elements * static_cast<std::size_t>(height));
    std::vector<const Lum32f*> rows(static_cast<std::size_t>(2 * h + 1));
    std::vector<Lum32f> sum(elements);
    for (int y = 0; y < height; ++y) {
        for (int d = -h; d <= h; ++d) {
            const std::optional<int> index = sourceIndex(y + d, height, top, bottom, mode);
            rows[static_cast<std::size_t>(h + d)] = index ? filteredRow(*index).data() : constantRow.data();
        }
        fold(
            taps, [&](int d) { return rows[static_cast<std::size_t>(h + d)]; }, elements, sum.data());
        for (const Lum32f value : sum) {
            result.push_back(store<T>(value));
        }
        // a row that the window has left behind gives its memory back; if a reflection needs it, it is made again
        if (y > h) {
            std::vector<Lum32f>().swap(filteredRows[static_cast<std::size_t>(y - 1)]);
        }
    }
    return result;
}

// One element type and channel count with its exports.
template <typename T, int channelCount>
struct Format;

template <>
struct Format<Lum8u, 1>
{
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u_C1R";
    static constexpr auto apply = lumiFilterGaussian_8u_C1R;
    static constexpr auto applyL = lumiFilterGaussian_8u_C1R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_8u_C1R;
};

template <>
struct Format<Lum8u, 3>
{
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u_C3R";
    static constexpr auto apply = lumiFilterGaussian_8u_C3R;
    static constexpr auto applyL = lumiFilterGaussian_8u_C3R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_8u_C3R;
};

template <>
struct Format<Lum16u, 1>
{
    static constexpr LumDataType dataType = lumType16u;
    static constexpr const char* name = "16u_C1R";
    static constexpr auto apply = lumiFilterGaussian_16u_C1R;
    static constexpr auto applyL = lumiFilterGaussian_16u_C1R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_16u_C1R;
};

template <>
struct Format<Lum16u, 3>
{
    static constexpr LumDataType dataType = lumType16u;
    static constexpr const char* name = "16u_C3R";
    static constexpr auto apply = lumiFilterGaussian_16u_C3R;
    static constexpr auto applyL = lumiFilterGaussian_16u_C3R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_16u_C3R;
};

template <>
struct Format<Lum16s, 1>
{
    static constexpr LumDataType dataType = lumType16s;
    static constexpr const char* name = "16s_C1R";
    static constexpr auto apply = lumiFilterGaussian_16s_C1R;
    static constexpr auto applyL = lumiFilterGaussian_16s_C1R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_16s_C1R;
};

template <>
struct Format<Lum16s, 3>
{
    static constexpr LumDataType dataType = lumType16s;
    static constexpr const char* name = "16s_C3R";
    static constexpr auto apply = lumiFilterGaussian_16s_C3R;
    static constexpr auto applyL = lumiFilterGaussian_16s_C3R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_16s_C3R;
};

template <>
struct Format<Lum32f, 1>
{
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f_C1R";
    static constexpr auto apply = lumiFilterGaussian_32f_C1R;
    static constexpr auto applyL = lumiFilterGaussian_32f_C1R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_32f_C1R;
};

template <>
struct Format<Lum32f, 3>
{
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f_C3R";
    static constexpr auto apply = lumiFilterGaussian_32f_C3R;
    static constexpr auto applyL = lumiFilterGaussian_32f_C3R_L;
    static constexpr auto applyBorder = lumiFilterGaussianBorder_32f_C3R;
};

// A format as the parameter of a typed test.
template <typename T, int channelCount>
struct Case : Format<T, channelCount>
{
    using Element = T;
    static constexpr int channels = channelCount;

    // the two signatures of the family that takes the border from the record, as one
    static LumStatus callBorder(const T* pSrc, Lum32s srcStep, T* pDst, Lum32s dstStep, LumiSize roiSize,
                                const T* pBorderValue, const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
    {
        if constexpr (channelCount == 1) {
            const T value = pBorderValue == nullptr ? T{} : *pBorderValue;
            return Case::applyBorder(pSrc, srcStep, pDst, dstStep, roiSize, value, pSpec, pBuffer);
        } else {
            return Case::applyBorder(pSrc, srcStep, pDst, dstStep, roiSize, pBorderValue, pSpec, pBuffer);
        }
    }
};

using AllFormats = ::testing::Types<Case<Lum8u, 1>, Case<Lum8u, 3>, Case<Lum16u, 1>, Case<Lum16u, 3>, Case<Lum16s, 1>,
                                    Case<Lum16s, 3>, Case<Lum32f, 1>, Case<Lum32f, 3>>;

struct FormatName
{
    template <typename Format>
    static std::string GetName(int)
    {
        return Format::name;
    }
};

}  // namespace lumcv::test::gaussian
