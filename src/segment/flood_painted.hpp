// Rows of the fills that paint a span as soon as it is found.
#pragma once

#include "segment/flood_rows.hpp"
#include "segment/flood_spans.hpp"

namespace lumcv::flood {

template <class T, int channels, class Test>
class PaintedRows
{
  public:
    PaintedRows(Plane<T> image, int64_t width, const Test& test, const T* newValue)
        : image_(image), width_(width), test_(test), newValue_(newValue)
    {
    }

    Ends find(const Span&, int64_t y, int64_t x, int64_t end, bool isFirst)
    {
        T* const row = image_.row(y);
        const auto test = testIn(row);
        if (width_ < block) {
            x = firstOf<block, channels, true>(x, end, all(), test);
            return x < end ? taken(row, isFirst ? leftEnd(row, x) : x, x) : Ends::none();
        }
        // mostly one block tells all: it begins a little before x, for the span may go on there
        constexpr int64_t margin = block / 8;
        int64_t at = std::min(std::max<int64_t>(x - (isFirst ? margin : 0), 0), width_ - block);
        int64_t behind = at + block;
        uint64_t passing = test(at, simd::Lanes<block>{});
        uint64_t found = passing & bitsFrom(x - at);
        while (!found) {
            if (behind >= end)
                return Ends::none();
            at = std::min(behind, width_ - block);
            passing = test(at, simd::Lanes<block>{});
            found = passing & bitsFrom(behind - at);
            behind = at + block;
        }
        const int64_t i = __builtin_ctzll(found) / channels;
        if (at + i >= end)
            return Ends::none();
        const uint64_t failing = ~passing & blockBits<channels, block>;
        int64_t left = at + i;
        if (isFirst && left == x) {
            const uint64_t before = failing & ~bitsFrom(i);
            left = before ? at + (63 - __builtin_clzll(before)) / channels + 1 : leftEnd(row, at);
        }
        if (const uint64_t after = failing & bitsFrom(i))
            return painted(row, left, at + __builtin_ctzll(after) / channels);
        return taken(row, left, behind - 1);
    }

    /// The first span: its pixel is taken whether it passes or not.
    Ends takeSeed(int64_t y, int64_t x)
    {
        T* const row = image_.row(y);
        return taken(row, leftEnd(row, x), x);
    }

    void finish(const Span&) {}

    int64_t area() const
    {
        return area_;
    }

  private:
    static constexpr int block = blockPixels<T, channels>;

    Columns all() const
    {
        return {0, width_};
    }

    int64_t leftEnd(const T* row, int64_t x) const
    {
        return lastFailing<block, channels>(0, x, all(), testIn(row)) + 1;
    }

    [[gnu::always_inline]] static uint64_t bitsFrom(int64_t i)
    {
        return ~uint64_t{0} << (channels * i);
    }

    /// Extends pixels [left, right], all of which are to be painted, to the right: block by block as far as all pixels
    /// of a block pass.
    Ends taken(T* row, int64_t left, int64_t right)
    {
        const auto test = testIn(row);
        int64_t end = right + 1;
        paint(row + left * channels, end - left, newValue_);
        for (; end + block <= width_; end += block) {
            const uint64_t failing = test(end, simd::Lanes<block>{}) ^ blockBits<channels, block>;
            if (failing) {
                const int64_t n = __builtin_ctzll(failing) / channels;
                paintEnds<block / 2>(row + end * channels, n, newValue_);
                return counted(left, end + n);
            }
            paintBlock(row + end * channels, newValue_);
        }
        const int64_t rest = end;
        end = firstOf<block, channels, false>(rest, width_, all(), test);
        paintEnds<block / 2>(row + rest * channels, end - rest, newValue_);
        return counted(left, end);
    }

    Ends painted(T* row, int64_t left, int64_t end)
    {
        paint(row + left * channels, end - left, newValue_);
        return counted(left, end);
    }

    Ends counted(int64_t left, int64_t end)
    {
        area_ += end - left;
        return {left, end - 1};
    }

    [[gnu::always_inline]] auto testIn(const T* row) const
    {
        return [this, row](int64_t x, auto lanes) {
            const T* const p = row + x * channels;
            return pixelBits<channels, lanes>([&](int j) { return test_(simd::load<lanes>(p + lanes * j), j); });
        };
    }

    Plane<T> image_;
    int64_t width_;
    Test test_;
    Pattern<T, channels> newValue_;
    int64_t area_ = 0;
};

}  // namespace lumcv::flood
