// Rows of pixels in a flood fill: tests of many pixels at once, the first or last one that a test holds for, and paint.
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv::flood {

/// Pixels that are tested at once. Of each the tests give a bit; those of pixel i are `channels * i` places up.
inline constexpr int blockPixels = 16;

/// Those of a long row, of one channel.
template <class T>
inline constexpr int longBlockPixels = 64 / static_cast<int>(sizeof(T));

template <int channels>
inline constexpr uint64_t blockBits = channels == 1 ? 0xFFFF : 0x249249249249;

/// The values of a pixel.
template <class T, int channels>
struct Values
{
    T of[channels];
};

/// The values of a pixel, repeated over a block.
template <class T, int channels>
class Pattern
{
  public:
    explicit Pattern(const T* pixel)
    {
        for (int i = 0; i < blockPixels * channels; ++i)
            values_[i] = pixel[i % channels];
    }

    const T* values() const
    {
        return values_;
    }

    /// Vector j of a block, or a single channel.
    template <int N>
    [[gnu::always_inline]] simd::Vec<T, N> vector(int j) const
    {
        if constexpr (channels == 1)
            return simd::broadcast<N>(values_[0]);
        else if constexpr (N == 1)
            return {values_[j]};
        else
            return simd::load<N>(values_ + N * j);
    }

  private:
    T values_[blockPixels * channels];
};

/// The bits of a block of N pixels, or of a single pixel: holds(j) is the mask of its vector j.
template <int channels, int N, class Holds>
[[gnu::always_inline]] inline uint64_t pixelBits(Holds holds)
{
    if constexpr (channels == 1)
        return simd::laneBits(holds(0));
    else {
        const uint64_t bits =
            simd::laneBits(holds(0)) | simd::laneBits(holds(1)) << N | simd::laneBits(holds(2)) << (2 * N);
        return bits & bits >> 1 & bits >> 2 & blockBits<channels>;
    }
}

/// A block's bits from a bit for each pixel.
template <int channels>
[[gnu::always_inline]] inline uint64_t spaced(uint64_t bits)
{
    if constexpr (channels == 1)
        return bits;
    bits = (bits | bits << 16) & 0x0000FF0000FF;
    bits = (bits | bits << 8) & 0x00F00F00F00F;
    bits = (bits | bits << 4) & 0x0C30C30C30C3;
    return (bits | bits << 2) & blockBits<channels>;
}

/// Columns [begin, end), all of which may be read.
struct Columns
{
    int64_t begin, end;
};

/// The first pixel of [x, end) that the test holds for, or does not if `wanted` is false; otherwise `end`. `test(x,
/// lanes)` gives the bits of as many pixels.
template <int channels, bool wanted, class Test>
[[gnu::always_inline]] inline int64_t firstOf(int64_t x, int64_t end, Columns readable, Test test)
{
    constexpr uint64_t inverted = wanted ? 0 : blockBits<channels>;
    if (readable.end - readable.begin < blockPixels) {
        while (x < end && test(x, simd::Lanes<1>{}) != wanted)
            ++x;
        return x;
    }
    while (x < end) {
        const int64_t at = std::min(x, readable.end - blockPixels);
        const uint64_t found = (test(at, simd::Lanes<blockPixels>{}) ^ inverted) >> (channels * (x - at));
        if (found)
            return std::min(end, x + __builtin_ctzll(found) / channels);
        x = at + blockPixels;
    }
    return end;
}

/// The last pixel before x that the test does not hold for; otherwise the one before `begin`.
template <int channels, class Test>
[[gnu::always_inline]] inline int64_t lastFailing(int64_t begin, int64_t x, Columns readable, Test test)
{
    if (readable.end - readable.begin < blockPixels) {
        while (x > begin && test(x - 1, simd::Lanes<1>{}))
            --x;
        return x - 1;
    }
    while (x > begin) {
        const int64_t at = std::max(x - blockPixels, readable.begin);
        const uint64_t known = (uint64_t{1} << (channels * (x - at))) - 1;
        const uint64_t found = ~test(at, simd::Lanes<blockPixels>{}) & blockBits<channels> & known;
        if (found)
            return std::max(begin - 1, at + (63 - __builtin_clzll(found)) / channels);
        x = at;
    }
    return begin - 1;
}

/// Paints n pixels.
template <class T, int channels>
[[gnu::always_inline]] inline void paint(T* pixels, int64_t n, const Pattern<T, channels>& pattern)
{
    const auto copy = [&](T* to, auto count) { __builtin_memcpy(to, pattern.values(), count * channels * sizeof(T)); };
    if (n >= blockPixels) {
        for (int64_t i = 0; i < n - blockPixels; i += blockPixels)
            copy(pixels + i * channels, simd::Lanes<blockPixels>{});
        copy(pixels + (n - blockPixels) * channels, simd::Lanes<blockPixels>{});
        return;
    }
    const auto ends = [&](auto count) {
        copy(pixels, count);
        copy(pixels + (n - count) * channels, count);
    };
    if (n >= 8)
        ends(simd::Lanes<8>{});
    else if (n >= 4)
        ends(simd::Lanes<4>{});
    else if (n >= 2)
        ends(simd::Lanes<2>{});
    else
        copy(pixels, simd::Lanes<1>{});
}

}  // namespace lumcv::flood
