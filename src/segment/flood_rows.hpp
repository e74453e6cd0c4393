// Rows of pixels in a flood fill: tests of many pixels at once, the first or last one that a test holds for, and paint.
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv::flood {

/// Pixels that are tested at once. Of each the tests give a bit; that of pixel i is `channels * i` places up.
template <class T, int channels>
inline constexpr int blockPixels = channels == 1 ? 64 / static_cast<int>(sizeof(T)) : 16;

/// Those of a row that is shorter than a block.
inline constexpr int shortBlockPixels = 16;

template <int channels, int N>
inline constexpr uint64_t blockBits = channels == 1 ? ~uint64_t{0} >> (64 - N) : 0x249249249249;

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
        for (int i = 0; i < blockPixels<T, channels> * channels; ++i)
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
    T values_[blockPixels<T, channels> * channels];
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
        return bits & bits >> 1 & bits >> 2 & blockBits<channels, N>;
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
    return (bits | bits << 2) & blockBits<channels, 16>;
}

/// Columns [begin, end), all of which may be read.
struct Columns
{
    int64_t begin, end;
};

/// Calls body(lanes) with the pixels of the blocks in which so many columns are gone through.
template <int N, class Body>
[[gnu::always_inline]] inline int64_t withBlocks(Columns readable, Body body)
{
    const int64_t n = readable.end - readable.begin;
    if (n >= N)
        return body(simd::Lanes<N>{});
    if constexpr (N > shortBlockPixels)
        if (n >= shortBlockPixels)
            return body(simd::Lanes<shortBlockPixels>{});
    return body(simd::Lanes<1>{});
}

/// The first pixel of [x, end) that the test holds for, or does not if `wanted` is false; otherwise `end`. `test(x,
/// lanes)` gives the bits of as many pixels; N is the number of a whole block.
template <int N, int channels, bool wanted, class Test>
[[gnu::always_inline]] inline int64_t firstOf(int64_t x, int64_t end, Columns readable, Test test)
{
    return withBlocks<N>(readable, [=](auto lanes) {
        for (int64_t next = x; next < end;) {
            const int64_t at = std::min<int64_t>(next, readable.end - lanes);
            const uint64_t inverted = wanted ? 0 : lanes == 1 ? 1 : blockBits<channels, lanes>;
            const uint64_t found = (test(at, lanes) ^ inverted) >> (channels * (next - at));
            if (found)
                return std::min<int64_t>(end, next + __builtin_ctzll(found) / channels);
            next = at + lanes;
        }
        return end;
    });
}

/// The last pixel before x that the test does not hold for; otherwise the one before `begin`.
template <int N, int channels, class Test>
[[gnu::always_inline]] inline int64_t lastFailing(int64_t begin, int64_t x, Columns readable, Test test)
{
    return withBlocks<N>(readable, [=](auto lanes) {
        for (int64_t behind = x; behind > begin;) {
            const int64_t at = std::max<int64_t>(behind - lanes, readable.begin);
            const uint64_t all = lanes == 1 ? 1 : blockBits<channels, lanes>;
            const uint64_t known = ~uint64_t{0} >> (64 - channels * (behind - at));
            const uint64_t found = ~test(at, lanes) & all & known;
            if (found)
                return std::max<int64_t>(begin - 1, at + (63 - __builtin_clzll(found)) / channels);
            behind = at;
        }
        return begin - 1;
    });
}

/// Paints `count` pixels at both ends of n pixels; fewer of them if n is less than `count`, which is a power of two.
template <int count, class T, int channels>
[[gnu::always_inline]] inline void paintEnds(T* pixels, int64_t n, const Pattern<T, channels>& pattern)
{
    constexpr size_t bytes = sizeof(T) * channels * count;
    if (n >= count) {
        __builtin_memcpy(pixels, pattern.values(), bytes);
        __builtin_memcpy(pixels + (n - count) * channels, pattern.values(), bytes);
    } else if constexpr (count > 1)
        paintEnds<count / 2>(pixels, n, pattern);
}

/// Paints a block of pixels.
template <class T, int channels>
[[gnu::always_inline]] inline void paintBlock(T* pixels, const Pattern<T, channels>& pattern)
{
    __builtin_memcpy(pixels, pattern.values(), sizeof(T) * channels * blockPixels<T, channels>);
}

/// Paints n pixels.
template <class T, int channels>
[[gnu::always_inline]] inline void paint(T* pixels, int64_t n, const Pattern<T, channels>& pattern)
{
    constexpr int64_t block = blockPixels<T, channels>;
    for (int64_t i = 0; i < n - block; i += block)
        paintBlock(pixels + i * channels, pattern);
    if (n >= block)
        paintBlock(pixels + (n - block) * channels, pattern);
    else
        paintEnds<block / 2>(pixels, n, pattern);
}

}  // namespace lumcv::flood
