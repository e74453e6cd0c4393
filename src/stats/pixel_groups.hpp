// How the statistics walk a row: in groups of pixels of a fixed number, the last one made up to that number.
#pragma once

#include "frame/image.hpp"
#include "frame/next_row.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// One channel of a row of pixels, or the row of a mask (which has one channel).
template <class T, int channels>
struct PixelRow
{
    const T* first;     ///< the first pixel's element of the channel
    T fill;             ///< what the missing pixels of the last group hold
    int64_t ahead = 0;  ///< bytes to the next row, or 0

    const T* at(int64_t x) const
    {
        return first + x * channels;
    }

    /// Asks for N pixels of the next row.
    template <int N>
    void prefetchNext(int64_t x) const
    {
        simd::prefetch<N * channels>(rowAt(at(x), ahead, 1));
    }
};

/// The last pixels of a row, fewer than N, as N readable ones with the same distance.
template <int N, class T, int channels>
class LastGroup
{
  public:
    [[gnu::always_inline]] LastGroup(PixelRow<T, channels> row, int64_t x, int64_t width)
    {
        constexpr int lanes = elements % simd::registerLanes<T> == 0 ? simd::registerLanes<T> : simd::groupLanes<T>;
        for (int i = 0; i < elements; i += lanes)
            simd::store(elements_ + i, simd::broadcast<lanes>(row.fill));
        // the elements between are copied along; behind the last pixel's element nothing may be read
        simd::copyFew(elements_, row.at(x), ((width - x - 1) * channels + 1) * static_cast<int64_t>(sizeof(T)));
    }

    const T* first() const
    {
        return elements_;
    }

  private:
    /// Whole groups of 16 bytes, for the sake of filling them.
    static constexpr int elements =
        (N * channels + simd::groupLanes<T> - 1) / simd::groupLanes<T> * simd::groupLanes<T>;

    alignas(64) T elements_[elements];
};

/// Whether the pixels of the next row are asked for along with those of the present one.
enum class NextRow
{
    Left,
    Asked
};

/// Calls body(y, nextRow, ahead) for each row of an image of that size: nextRow is the choice for it, as a constant,
/// and ahead(plane) tells the bytes from this row to the next one, or 0.
template <class Body>
[[gnu::always_inline]] inline void eachRow(LumiSize size, Body body)
{
    const auto all = [=](auto nextRow) {
        for (int64_t y = 0; y < size.height; ++y)
            body(y, nextRow, [=](const auto& plane) { return y + 1 < size.height ? plane.step : 0; });
    };
    if (asksForNextRow(size.width, size.height))
        all(std::integral_constant<NextRow, NextRow::Asked>{});
    else
        all(std::integral_constant<NextRow, NextRow::Left>{});
}

/// Calls body(const T* of each row) for each group of N of the pixels x of [begin, width); it reads N pixels of each
/// row. Pixel begin + i is always in lane i mod N.
template <int N, NextRow nextRow = NextRow::Left, class Body, class... Rows>
[[gnu::always_inline]] inline void eachGroup(int64_t begin, int64_t width, Body body, Rows... rows)
{
    int64_t x = begin;
    for (; x + N <= width; x += N) {
        if constexpr (nextRow == NextRow::Asked)
            (rows.template prefetchNext<N>(x), ...);
        body(rows.at(x)...);
    }
    if (x < width) {
        const auto last = [&]<class T, int channels>(PixelRow<T, channels> row) {
            return LastGroup<N, T, channels>(row, x, width);
        };
        [&](const auto&... groups) { body(groups.first()...); }(last(rows)...);
    }
}

/// Pixels of a row after which partial sums in narrow lanes are added to wide ones.
inline constexpr int64_t pixelsPerSettlement = 1 << 17;

/// Adds a row of any width to sums that have to be settled: sums.settle() comes after every pixelsPerSettlement pixels
/// and at the end of the row. The body adds a group to the same sums.
template <int N, NextRow nextRow, class Sums, class Body, class... Rows>
[[gnu::always_inline]] inline void addSettled(Sums& sums, int64_t width, Body body, Rows... rows)
{
    static_assert(pixelsPerSettlement % N == 0);
    for (int64_t x = 0; x < width; x += pixelsPerSettlement) {
        eachGroup<N, nextRow>(x, width - x < pixelsPerSettlement ? width : x + pixelsPerSettlement, body, rows...);
        sums.settle();
    }
}

}  // namespace lumcv
