// Means of products over windows of any size, at a cost that does not grow with the window's width: the sums of the
// window's columns, and a running sum along each row. The three products of a pixel stand side by side, so that one
// vector carries the sums of all three; a running sum waits for its own last addition, so those of several rows are in
// flight at once. The sums run along the whole row of the image, which is therefore not cut into bands.
#pragma once

#include "feature/product_rows.hpp"

namespace lumcv {

/// The rows that are added to the column sums at once.
inline constexpr int rowsAtOnce = 4;

/// line + rows[0] + rows[1] + ..., from left to right, or the sum of the rows alone where they are the first.
template <int count, bool isFirst>
[[gnu::flatten, gnu::noinline]] void addRows(Lum32f* line, const Lum32f* const* rows, int64_t n)
{
    const Lum32f* r[count];
    for (int i = 0; i < count; ++i)
        r[i] = rows[i];
    simd::eachOnce<32>(0, n, [=](int64_t x, auto lanes) {
        auto sum = simd::load<lanes>(isFirst ? r[0] + x : line + x);
        for (int i = isFirst ? 1 : 0; i < count; ++i)
            sum = sum + simd::load<lanes>(r[i] + x);
        simd::store(line + x, sum);
    });
}

template <bool isFirst>
void addRows(Lum32f* line, const Lum32f* const* rows, int64_t count, int64_t n)
{
    static_assert(rowsAtOnce == 4);
    if (count == 4)
        addRows<4, isFirst>(line, rows, n);
    else if (count == 3)
        addRows<3, isFirst>(line, rows, n);
    else if (count == 2)
        addRows<2, isFirst>(line, rows, n);
    else
        addRows<1, isFirst>(line, rows, n);
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

/// `last` takes the means: last.row(y, 0) is called with x, A, B and C. Products beyond a constant border are 0.
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
        const Lum32f* rows[rowsAtOnce];
        int64_t count = 0;
        bool isFirst = true;
        for (int64_t j = 0; j < image_.window; ++j) {
            const SourceRow row = sourceRow(y - image_.before() + j, image_.roiSize.height, image_.productBorder);
            // a row beyond a constant border is 0 and adds nothing
            if (!row.isConstant)
                rows[count++] = slotOf(row.index);
            if (count == rowsAtOnce || (count > 0 && j + 1 == image_.window)) {
                isFirst ? addRows<true>(line, rows, count, n) : addRows<false>(line, rows, count, n);
                isFirst = false;
                count = 0;
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
