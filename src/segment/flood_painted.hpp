// Rows of the fills that paint a span as soon as it is found.
#pragma once

#include <utility>

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

    int64_t next(const Span&, int64_t y, int64_t x, int64_t end) const
    {
        return firstOf<channels, true>(x, end, {0, width_}, testIn(image_.row(y)));
    }

    std::pair<int64_t, int64_t> take(const Span&, int64_t y, int64_t x)
    {
        T* const row = image_.row(y);
        const auto test = testIn(row);
        const int64_t left = lastFailing<channels>(0, x, {0, width_}, test) + 1;
        const int64_t end = firstOf<channels, false>(x + 1, width_, {0, width_}, test);
        paint(row + left * channels, end - left, newValue_);
        area_ += end - left;
        return {left, end - 1};
    }

    void finish(const Span&) {}

    int64_t area() const
    {
        return area_;
    }

  private:
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
