// A row of the source together with what its border puts beyond its two ends.
#pragma once

#include "frame/border.hpp"
#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// Converts n elements, each value kept.
template <class T, class Out>
[[gnu::flatten, gnu::noinline]] inline void convertElements(const T* from, int64_t n, Out* to)
{
    simd::eachAtLeastOnce<64>(0, n, [&](int64_t x, auto lanes) {
        if constexpr (std::is_same_v<T, Out>)
            simd::store(to + x, simd::load<lanes>(from + x));
        else
            simd::store(to + x, simd::loadFloat<lanes>(from + x));
    });
}

template <class T, int channels>
struct ExtendedRow
{
    const T* row;          ///< the first pixel inside the ROI
    int64_t width;         ///< pixels inside the ROI
    Border border;         ///< its left and right sides count here
    const T* borderValue;  ///< one value for each channel; read in constant mode only

    /// The pixels that lie in memory are those of [firstReadable(begin), lastReadable(end)).
    int64_t readableFrom(int64_t begin) const
    {
        return border.left || begin > 0 ? begin : 0;
    }

    int64_t readableTo(int64_t end) const
    {
        return border.right || end < width ? end : width;
    }

    /// Whether the pixels [begin, end) can be read where they are.
    bool isInMemory(int64_t begin, int64_t end) const
    {
        return readableFrom(begin) == begin && readableTo(end) == end;
    }

    /// Copies the pixels [begin, end), converted to Out. The range meets the ROI or a side in memory, or lies beyond
    /// one end.
    template <class Out>
    [[gnu::noinline]] void read(int64_t begin, int64_t end, Out* to) const
    {
        const int64_t first = readableFrom(begin) < end ? readableFrom(begin) : end;
        const int64_t last = readableTo(end) > first ? readableTo(end) : first;
        synthesise(begin, first, to);
        convertElements(row + first * channels, (last - first) * channels, to + (first - begin) * channels);
        synthesise(last, end, to + (last - begin) * channels);
    }

  private:
    template <class Out>
    void synthesise(int64_t begin, int64_t end, Out* to) const
    {
        for (int64_t x = begin; x < end; ++x, to += channels) {
            const T* pixel =
                border.mode == lumBorderConstant ? borderValue : row + borderIndex(x, width, border.mode) * channels;
            for (int c = 0; c < channels; ++c)
                to[c] = static_cast<Out>(pixel[c]);
        }
    }
};

}  // namespace lumcv
