// Means of products over windows of any size, at a cost that does not grow with the window's width: the sums of the
// window's columns, and a running sum along each row. The three products of a pixel stand side by side, so that one
// vector carries the sums of all three; a running sum waits for its own last addition, so those of several rows are in
// flight at once. The sums run along the whole row of the image, which is therefore not cut into bands.
#pragma once

#include "feature/product_rows.hpp"

namespace lumcv {

/// line = addend, or line + addend, for n floats.
template <bool isFirst, class Addend>
[[gnu::flatten, gnu::noinline]] void addToLine(Lum32f* line, int64_t n, Addend addend)
{
    simd::eachOnce<64>(0, n, [=](int64_t x, auto lanes) {
        if constexpr (isFirst)
            simd::store(line + x, addend(x, lanes));
        else
            simd::store(line + x, simd::load<lanes>(line + x) + addend(x, lanes));
    });
}

/// Makes means of column sums, four floats for each pixel. lines[i][0] belongs to the first column under the window of
/// x = 0; the means of pixel x go one pixel before the sums of that column, which is not wanted any more.
template <int rows>
[[gnu::flatten, gnu::noinline]] void meansAlong(Lum32f* lines, int64_t pitch, int64_t window, int64_t n, Lum32f factor)
{
    using Sum = simd::Vec<Lum32f, 4>;
    const Sum factors = simd::broadcast<4>(factor);
    Sum sums[rows];
    for (int i = 0; i < rows; ++i) {
        Lum32f* const line = lines + i * pitch;
        sums[i] = simd::load<4>(line);
        for (int64_t x = 1; x < window; ++x)
            sums[i] = sums[i] + simd::load<4>(line + 4 * x);
        simd::store(line - 4, sums[i] * factors);
    }
    for (int64_t x = 1; x < n; ++x) {
        Lum32f* const leaving = lines + 4 * (x - 1);
        const Lum32f* const entering = leaving + 4 * window;
        for (int i = 0; i < rows; ++i) {
            sums[i] = sums[i] + simd::load<4>(entering + i * pitch) - simd::load<4>(leaving + i * pitch);
            simd::store(leaving + i * pitch, sums[i] * factors);
        }
    }
}

/// Calls put(x, A, B, C) for the pixels [0, n), for some of them twice.
template <class Put>
[[gnu::flatten, gnu::noinline]] void eachMean(const Lum32f* means, int64_t n, Put put)
{
    simd::eachAtLeastOnce<productLanes>(0, n, [=](int64_t x, auto lanes) {
        const auto mean = simd::loadQuads<lanes>(means + 4 * x);
        put(x, mean.a, mean.b, mean.c);
    });
}

/// `last` takes the means: last.row(y, 0) is called with x, A, B and C.
template <class S, class Last>
class LongWindow
{
    using Products = ProductRows<S>;

  public:
    /// With `rows` rows in flight.
    static int64_t bytes(const TensorImage<S>& image, int64_t rows)
    {
        return sourceBytes(image) +
               (slots(image, rows) * slotPitch(image) + rows * linePitch(image)) * static_cast<int64_t>(sizeof(Lum32f));
    }

    LongWindow(const TensorImage<S>& image, const Last& last, int64_t rows, Lum8u* space)
        : image_(image),
          last_(last),
          rows_(rows),
          products_(image, -image.before(), image.roiSize.width + image.after(), reinterpret_cast<S*>(space)),
          ring_(reinterpret_cast<Lum32f*>(space + sourceBytes(image))),
          lines_(ring_ + slots(image, rows) * slotPitch(image) + 4),
          next_(image.firstRow())
    {
    }

    void run()
    {
        int64_t y = 0;
        if (rows_ >= 4)
            for (; y + 4 <= image_.roiSize.height; y += 4)
                filter<4>(y);
        if (rows_ >= 2)
            for (; y + 2 <= image_.roiSize.height; y += 2)
                filter<2>(y);
        for (; y < image_.roiSize.height; ++y)
            filter<1>(y);
    }

  private:
    static int64_t extendedWidth(const TensorImage<S>& image)
    {
        return image.roiSize.width + image.window - 1;
    }

    static int64_t sourceBytes(const TensorImage<S>& image)
    {
        return roundedUp(
            Products::sourceElements(extendedWidth(image), image.gradient.reach) * static_cast<int64_t>(sizeof(S)), 64);
    }

    /// The rows of the ring: no more than there are.
    static int64_t slots(const TensorImage<S>& image, int64_t rows)
    {
        const int64_t wanted = image.window + rows - 1;
        const int64_t all = image.endRow() - image.firstRow();
        return wanted < all ? wanted : all;
    }

    static int64_t slotPitch(const TensorImage<S>& image)
    {
        return 4 * extendedWidth(image);
    }

    static int64_t linePitch(const TensorImage<S>& image)
    {
        return 4 * (extendedWidth(image) + 1);
    }

    Lum32f* slotOf(int64_t r) const
    {
        return ring_ + (r - image_.firstRow()) % slots(image_, rows_) * slotPitch(image_);
    }

    template <int rows>
    void filter(int64_t y)
    {
        const int64_t width = image_.roiSize.width;
        for (; next_ <= y + rows - 1 + image_.after() && next_ < image_.endRow(); ++next_)
            products_.quads(next_, slotOf(next_));
        const int64_t pitch = linePitch(image_);
        for (int64_t i = 0; i < rows; ++i)
            sumColumns(y + i, lines_ + i * pitch);
        const auto size = static_cast<Lum32f>(image_.window);
        meansAlong<rows>(lines_, pitch, image_.window, width, 1.0f / (size * size));
        for (int64_t i = 0; i < rows; ++i)
            eachMean(lines_ + i * pitch - 4, width, last_.row(y + i, 0));
    }

    void sumColumns(int64_t y, Lum32f* line) const
    {
        const int64_t n = 4 * extendedWidth(image_);
        for (int64_t j = 0; j < image_.window; ++j) {
            const SourceRow row = sourceRow(y - image_.before() + j, image_.roiSize.height, image_.productBorder);
            const auto add = [=](auto addend) {
                if (j == 0)
                    addToLine<true>(line, n, addend);
                else
                    addToLine<false>(line, n, addend);
            };
            if (row.isConstant) {
                const Lum32f value = image_.productBorderValue;
                add([=](int64_t, auto lanes) { return simd::broadcast<lanes>(value); });
            } else {
                const Lum32f* const products = slotOf(row.index);
                add([=](int64_t x, auto lanes) { return simd::load<lanes>(products + x); });
            }
        }
    }

    const TensorImage<S>& image_;
    const Last& last_;
    int64_t rows_;
    Products products_;
    Lum32f* ring_;
    Lum32f* lines_;
    int64_t next_;  ///< the row of products that comes in next
};

template <class S, class Last>
void longWindowMeans(const TensorImage<S>& image, const Last& last, LineSpace<Lum8u>& space)
{
    int64_t rows = 4;
    while (rows > 1 && LongWindow<S, Last>::bytes(image, rows) > space.size())
        rows /= 2;
    LongWindow<S, Last>(image, last, rows, space.data()).run();
}

}  // namespace lumcv
