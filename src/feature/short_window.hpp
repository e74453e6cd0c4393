// Means of products over windows of at most five pixels: a row of products is summed along the row into a ring of as
// many rows as the window has, and the ring is summed across, in bands of columns that stay in the first-level cache.
#pragma once

#include "feature/product_rows.hpp"
#include "filter/bands.hpp"

namespace lumcv {

/// t(0) + t(1) + ..., from left to right.
template <int count, class Term>
[[gnu::always_inline]] inline auto sumOf(Term t)
{
    auto sum = t(0);
    for (int i = 1; i < count; ++i)
        sum = sum + t(i);
    return sum;
}

/// The sums of `window` neighbours in the three lines at `products`; n is a multiple of the lanes.
template <int window>
[[gnu::flatten, gnu::noinline]] void sumAlong(const Lum32f* products, int64_t productPitch, Lum32f* sums,
                                              int64_t sumPitch, int64_t n)
{
    constexpr int lanes = productLanes;
    for (int64_t x = 0; x < n; x += lanes)
        for (int i = 0; i < 3; ++i) {
            const Lum32f* const p = products + i * productPitch + x;
            simd::store(sums + i * sumPitch + x, sumOf<window>([p](int t) { return simd::load<lanes>(p + t); }));
        }
}

/// The row sums of a window's rows, from top to bottom.
template <int window>
struct WindowRows
{
    const Lum32f* rows[window];
    int64_t pitch;  ///< from one of the three products to the next
};

/// Calls put(x, A, B, C) for the pixels [0, n), for some of them twice.
template <int N, int window, class Put>
[[gnu::flatten, gnu::noinline]] void meansAcross(WindowRows<window> rows, Lum32f factor, int64_t n, Put put)
{
    simd::eachAtLeastOnce<N>(0, n, [=](int64_t x, auto lanes) {
        const auto mean = [=](int i) {
            return sumOf<window>([=](int j) { return simd::load<lanes>(rows.rows[j] + i * rows.pitch + x); }) *
                   simd::broadcast<lanes>(factor);
        };
        put(x, mean(0), mean(1), mean(2));
    });
}

/// The columns [begin, end). `last` takes the means: last.row(y, begin) is called with x, A, B and C, Last::lanes of
/// them at a time or one.
template <int window, class S, class Last>
class ShortWindowBand
{
    using Products = ProductRows<S>;

  public:
    static int64_t bytes(int64_t columns, int reach)
    {
        const int64_t extended = columns + window - 1;
        const int64_t floats = 3 * Products::pitch(extended) + (window + 1) * 3 * sumPitch(columns);
        return roundedUp(Products::sourceElements(extended, reach) * static_cast<int64_t>(sizeof(S)), 64) +
               floats * static_cast<int64_t>(sizeof(Lum32f));
    }

    ShortWindowBand(const TensorImage<S>& image, const Last& last, Lum32f factor, int64_t begin, int64_t end,
                    Lum8u* space)
        : image_(image),
          last_(last),
          factor_(factor),
          begin_(begin),
          columns_(end - begin),
          rows_(image, begin - image.before(), end + image.after(), reinterpret_cast<S*>(space)),
          products_(reinterpret_cast<Lum32f*>(
              space + roundedUp(Products::sourceElements(columns_ + window - 1, image.gradient.reach) *
                                    static_cast<int64_t>(sizeof(S)),
                                64))),
          productPitch_(Products::pitch(columns_ + window - 1)),
          sums_(products_ + 3 * productPitch_),
          pitch_(sumPitch(columns_)),
          next_(image.firstRow())
    {
        // the last slot stands for rows beyond a constant border
        if (image.productBorder.mode == lumBorderConstant) {
            const Lum32f sum = sumOf<window>([&image](int) { return image.productBorderValue; });
            for (int64_t x = 0; x < 3 * pitch_; ++x)
                slot(window)[x] = sum;
        }
    }

    void run()
    {
        const int64_t height = image_.roiSize.height;
        for (int64_t y = 0; y < height; ++y) {
            for (; next_ <= y + image_.after() && next_ < image_.endRow(); ++next_)
                enter(next_);
            WindowRows<window> rows;
            rows.pitch = pitch_;
            for (int64_t j = 0; j < window; ++j) {
                const SourceRow row = sourceRow(y - image_.before() + j, height, image_.productBorder);
                rows.rows[j] = row.isConstant ? slot(window) : slotOf(row.index);
            }
            meansAcross<Last::lanes>(rows, factor_, columns_, last_.row(y, begin_));
        }
    }

  private:
    static int64_t sumPitch(int64_t columns)
    {
        return roundedUp(columns, productLanes);
    }

    Lum32f* slot(int64_t i) const
    {
        return sums_ + i * 3 * pitch_;
    }

    Lum32f* slotOf(int64_t r) const
    {
        return slot((r - image_.firstRow()) % window);
    }

    void enter(int64_t r)
    {
        rows_.planes(r, products_, productPitch_);
        sumAlong<window>(products_, productPitch_, slotOf(r), pitch_, pitch_);
    }

    const TensorImage<S>& image_;
    const Last& last_;
    Lum32f factor_;
    int64_t begin_, columns_;
    Products rows_;
    Lum32f* products_;
    int64_t productPitch_;
    Lum32f* sums_;
    int64_t pitch_;
    int64_t next_;  ///< the row of products that comes in next
};

/// The means are the sums over the window times `factor`.
template <int window, class S, class Last>
void shortWindowMeans(const TensorImage<S>& image, const Last& last, Lum32f factor, LineSpace<Lum8u>& space)
{
    using Band = ShortWindowBand<window, S, Last>;
    const int64_t bytes = space.size() < bandBytes ? space.size() : bandBytes;
    const int reach = image.gradient.reach;
    int64_t widest = productLanes;
    while (Band::bytes(widest + productLanes, reach) <= bytes)
        widest += productLanes;
    const int64_t width = image.roiSize.width;
    const int64_t columns = evenBands(width, widest, productLanes);
    for (int64_t begin = 0; begin < width; begin += columns) {
        // a band is wide enough to hold what continues it beyond the edge, so the last one may begin within the one
        // before it
        const int64_t end = begin + columns < width ? begin + columns : width;
        const int64_t from = end - begin < productLanes && end > productLanes ? end - productLanes : begin;
        Band(image, last, factor, from, end, space.data()).run();
    }
}

}  // namespace lumcv
