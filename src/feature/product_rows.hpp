// Rows of derivative products, made of the rows of an image and what its border puts around them, and continued beyond
// the edges of the image in their own way.
#pragma once

#include "feature/gradient.hpp"
#include "filter/extended_row.hpp"
#include "filter/line_space.hpp"
#include "frame/border.hpp"
#include "frame/image.hpp"
#include "frame/rounding.hpp"

namespace lumcv {

/// What the means of products are taken of.
template <class S>
struct TensorImage
{
    Plane<const S> src;
    LumiSizeL roiSize;
    Gradient<S> gradient;
    Border border;  ///< of the image
    S borderValue;
    Border productBorder;  ///< products lie in memory where this one says so; the image does there, too
    Lum32f productBorderValue;
    int64_t window;

    int64_t before() const  ///< rows and columns of products before the pixel
    {
        return (window - 1) / 2;
    }

    int64_t after() const
    {
        return window / 2;
    }

    int64_t firstRow() const
    {
        return productBorder.top ? -before() : 0;
    }

    int64_t endRow() const
    {
        return productBorder.bottom ? roiSize.height + after() : roiSize.height;
    }
};

/// The products of the columns [begin, end), which may reach beyond the image. They are asked for row after row, from
/// the first one on.
template <class S>
class ProductRows
{
  public:
    /// What a line of the products needs for each of the three.
    static int64_t pitch(int64_t columns)
    {
        return roundedUp(columns + productLanes, productLanes);
    }

    /// What the lines of the source need, in elements.
    static int64_t sourceElements(int64_t columns, int reach)
    {
        return (2 * reach + 1) * sourcePitch(columns, reach);
    }

    ProductRows(const TensorImage<S>& image, int64_t begin, int64_t end, S* lines)
        : image_(image),
          begin_(begin),
          end_(end),
          first_(image.productBorder.left || begin > 0 ? begin : 0),
          last_(image.productBorder.right || end < image.roiSize.width ? end : image.roiSize.width),
          lines_(lines),
          pitch_(sourcePitch(end - begin, image.gradient.reach)),
          next_(image.firstRow() - image.gradient.reach)
    {
        // what is read behind the lines takes no part in any result, but it has a value
        for (S* p = lines; p < lines + sourceElements(end - begin, image.gradient.reach); ++p)
            *p = S{};
    }

    /// Row r as three lines.
    void planes(int64_t r, Lum32f* out, int64_t pitch)
    {
        const S* rows[largestMask];
        read(r, rows);
        image_.gradient.planes(rows, last_ - first_, out + (first_ - begin_), pitch);
        for (int i = 0; i < 3; ++i)
            continueBeyond<1>(out + i * pitch);
    }

    /// Row r as four floats for each pixel.
    void quads(int64_t r, Lum32f* out)
    {
        const S* rows[largestMask];
        read(r, rows);
        image_.gradient.quads(rows, last_ - first_, out + 4 * (first_ - begin_), 0);
        continueBeyond<4>(out);
    }

  private:
    static constexpr int largestMask = 5;

    static int64_t sourcePitch(int64_t columns, int reach)
    {
        return roundedUp(columns + 2 * reach + 2 * productLanes, 64 / static_cast<int64_t>(sizeof(S)));
    }

    S* line(int64_t r) const
    {
        const int64_t size = 2 * image_.gradient.reach + 1;
        return lines_ + (r + 2 * size) % size * pitch_;
    }

    /// The rows of the mask around row r, at the column first_.
    void read(int64_t r, const S** rows)
    {
        const int64_t reach = image_.gradient.reach;
        for (; next_ <= r + reach; ++next_) {
            const SourceRow source = sourceRow(next_, image_.roiSize.height, image_.border);
            S* const to = line(next_ - image_.firstRow());
            const int64_t n = last_ - first_ + 2 * reach;
            if (source.isConstant) {
                for (int64_t x = 0; x < n; ++x)
                    to[x] = image_.borderValue;
                continue;
            }
            const ExtendedRow<S, 1> row{image_.src.row(source.index), image_.roiSize.width, image_.border,
                                        &image_.borderValue};
            row.read(first_ - reach, last_ + reach, to);
        }
        for (int64_t j = 0; j <= 2 * reach; ++j)
            rows[j] = line(r - reach + j - image_.firstRow()) + reach;
    }

    /// What lies left of first_ and right of last_.
    template <int floats>
    void continueBeyond(Lum32f* out) const
    {
        const auto column = [=, this](int64_t x) { return out + floats * (x - begin_); };
        const auto put = [&](int64_t x) {
            const bool isConstant = image_.productBorder.mode == lumBorderConstant;
            const Lum32f* const from =
                isConstant ? nullptr : column(borderIndex(x, image_.roiSize.width, image_.productBorder.mode));
            for (int i = 0; i < floats; ++i)
                column(x)[i] = isConstant ? image_.productBorderValue : from[i];
        };
        for (int64_t x = begin_; x < first_; ++x)
            put(x);
        for (int64_t x = last_; x < end_; ++x)
            put(x);
    }

    const TensorImage<S>& image_;
    int64_t begin_, end_;
    int64_t first_, last_;  ///< the columns whose products are those of pixels
    S* lines_;
    int64_t pitch_;
    int64_t next_;  ///< the source row that comes in next
};

}  // namespace lumcv
