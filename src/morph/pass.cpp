// The driver of dilation and erosion: knows the image's edges and picks the kernel.
//
// The image is cut in five areas: bands along its four edges, which are copied together with their border so that the
// kernel never sees an edge, and the centre, which is read where it is. An element at least as large as the image
// leaves no centre; then the whole image is copied with its border, in pieces if need be: the scratch may have been
// queried for a ROI whose bands are smaller than this one's whole.
#include "morph/pass.hpp"

#include <cstring>

#include "filter/extended_row.hpp"

namespace lumcv {
namespace {

/// Columns and rows of the image.
struct Rectangle
{
    int64_t x, y, width, height;
};

template <class Operation, class T>
class Pass
{
  public:
    Pass(const Element& element, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL roi, Border border,
         const T* borderValue, Lum8u* scratch)
        : element_(element),
          channels_(channels),
          src_(src),
          dst_(dst),
          roi_(roi),
          border_(border),
          borderValue_(borderValue)
    {
        left_ = (element.width - 1) >> 1;
        right_ = element.width - 1 - left_;
        top_ = (element.height - 1) >> 1;
        bottom_ = element.height - 1 - top_;
        border_.left = border.left || left_ == 0;
        border_.right = border.right || right_ == 0;
        border_.top = border.top || top_ == 0;
        border_.bottom = border.bottom || bottom_ == 0;

        const PixelType pixel{sizeof(T), channels};
        ring_.begin = alignedUp(scratch, 32);
        ring_.bytes = static_cast<int64_t>(ringBytes(roi.width, {element.width, element.height}, pixel));
        extended_ = reinterpret_cast<T*>(ring_.begin + ring_.bytes);
    }

    void run()
    {
        if (element_.copies())
            return copyImage();
        if (border_.left && border_.right && border_.top && border_.bottom)
            return inPlace({0, 0, roi_.width, roi_.height});
        if (element_.width >= roi_.width || element_.height >= roi_.height)
            return wholeImage();

        Rectangle rest{0, 0, roi_.width, roi_.height};
        if (!border_.top) {
            extendedArea({0, 0, rest.width, top_});
            rest.y += top_;
            rest.height -= top_;
        }
        if (!border_.bottom) {
            rest.height -= bottom_;
            extendedArea({0, rest.y + rest.height, rest.width, bottom_});
        }
        if (!border_.left) {
            extendedArea({0, rest.y, left_, rest.height});
            rest.x += left_;
            rest.width -= left_;
        }
        if (!border_.right) {
            rest.width -= right_;
            extendedArea({rest.x + rest.width, rest.y, right_, rest.height});
        }
        inPlace(rest);
    }

  private:
    T* dstAt(int64_t x, int64_t y) const
    {
        return dst_.row(y) + x * channels_;
    }

    void copyImage() const
    {
        if (src_.pixels == dst_.pixels && src_.step == dst_.step)
            return;
        for (int64_t y = 0; y < roi_.height; ++y)
            convertElements(src_.row(y), roi_.width * channels_, dst_.row(y));
    }

    void inPlace(const Rectangle& area) const
    {
        kernel({src_.row(area.y) + area.x * channels_, src_.step}, {dstAt(area.x, area.y), dst_.step}, area.width,
               area.height, wholeScratch());
    }

    /// Where nothing is extended the ring may take all the scratch. Larger rings make wider bands.
    Scratch wholeScratch() const
    {
        if (element_.width >= roi_.width || element_.height >= roi_.height)
            return ring_;
        const Bytes strip = stripPixels(roi_, {element_.width, element_.height});
        return {ring_.begin, ring_.bytes + byteStep(static_cast<int64_t>(strip) * channels_)};
    }

    /// Computes an area from a copy with its border.
    void extendedArea(const Rectangle& area) const
    {
        if (area.width < 1 || area.height < 1)
            return;
        extend({area.x - left_, area.y - top_, area.width + left_ + right_, area.height + top_ + bottom_});
        const int64_t pitch = (area.width + left_ + right_) * channels_;
        if (isNarrow(area))
            return narrowArea(area, pitch);
        kernel({extended_ + top_ * pitch + left_ * channels_, byteStep(pitch)}, {dstAt(area.x, area.y), dst_.step},
               area.width, area.height, ring_);
    }

    static int64_t byteStep(int64_t elements)
    {
        return elements * static_cast<int64_t>(sizeof(T));
    }

    /// Rows of a narrow area are too short for vectors.
    bool isNarrow(const Rectangle& area) const
    {
        constexpr int64_t narrow = 64;
        return byteStep(area.width * channels_) < narrow && area.height > 1;
    }

    /// The rows of the copy lie behind one another, so that a kernel can take them as one long row, and what it
    /// computes between the rows' ends is left alone.
    void narrowArea(const Rectangle& area, int64_t pitch) const
    {
        const int64_t elements = area.width * channels_;
        if (element_.is(shapeRectangle)) {
            // windows along all rows and then across, each window over the block's elements from its own on
            int64_t n = pitch * (area.height + element_.height - 1);
            if (element_.width > 1) {
                n -= (element_.width - 1) * channels_;
                growWindows<Operation>(extended_, 1, extended_, extended_, element_.width, channels_, n);
            }
            if (element_.height > 1) {
                n -= (element_.height - 1) * pitch;
                growWindows<Operation>(extended_, 1, extended_, extended_, element_.height, pitch, n);
            }
            for (int64_t y = 0; y < area.height; ++y) {
                askFor(dst_, area.x * channels_, area.y + y, roi_.height);
                simd::copyFew(dstAt(area.x, area.y + y), extended_ + y * pitch, byteStep(elements));
            }
            return;
        }
        constexpr int64_t lineElements = 4096 / static_cast<int64_t>(sizeof(T));
        alignas(64) T line[lineElements];
        const int64_t most = (lineElements - elements) / pitch + 1;
        for (int64_t y = 0; y < area.height; y += most) {
            const int64_t rows = y + most < area.height ? most : area.height - y;
            const Area<T> along{{extended_ + (y + top_) * pitch + left_ * channels_, byteStep(pitch)},
                                {line, 0},
                                (rows - 1) * pitch + elements,
                                1,
                                channels_};
            if (!element_.is(shapeRowRuns) || !rowRunsAlong<Operation>(along, pitch, element_, ring_))
                anyShape<Operation>(along, element_);
            for (int64_t i = 0; i < rows; ++i) {
                askFor(dst_, area.x * channels_, area.y + y + i, roi_.height);
                simd::copyFew(dstAt(area.x, area.y + y + i), line + i * pitch, byteStep(elements));
            }
        }
    }

    /// Columns of an image are far apart: each row is a cache line of its own, to be asked for in time.
    static constexpr int64_t rowsAhead = 12;

    template <class Pixel>
    static void askFor(Plane<Pixel> image, int64_t x, int64_t y, int64_t height)
    {
        if (y + rowsAhead < height)
            simd::prefetch<1>(static_cast<const T*>(image.row(y + rowsAhead) + x));
    }

    /// The whole image from copies of pieces that fit into the scratch: rows of full width or, where the element is a
    /// single row that is wider than what fits, pieces of rows.
    void wholeImage() const
    {
        const LumiSizeL mask{element_.width, element_.height};
        const LumiSizeL larger{roi_.width > element_.width ? roi_.width : element_.width + 1,
                               roi_.height > element_.height ? roi_.height : element_.height + 1};
        const Bytes available = stripPixels(larger, mask);
        const int64_t besideX = element_.width - 1, besideY = element_.height - 1;
        const Bytes rows = available / (roi_.width + besideX) - besideY;
        if (Bytes{roi_.width + besideX} * (roi_.height + besideY) <= available)
            return extendedArea({0, 0, roi_.width, roi_.height});
        if (rows >= 1) {
            const auto most = static_cast<int64_t>(rows);
            for (int64_t y = 0; y < roi_.height; y += most)
                extendedArea({0, y, roi_.width, y + most < roi_.height ? most : roi_.height - y});
            return;
        }
        const auto most = static_cast<int64_t>(available / (roi_.height + besideY) - besideX);
        for (int64_t x = 0; x < roi_.width; x += most)
            extendedArea({x, 0, x + most < roi_.width ? most : roi_.width - x, roi_.height});
    }

    /// Copies a part of the image with its border into the extended block, row behind row.
    void extend(const Rectangle& part) const
    {
        switch (channels_) {
            case 1:
                return extendPixels<1>(part);
            case 3:
                return extendPixels<3>(part);
            default:
                return extendPixels<4>(part);
        }
    }

    template <int channels>
    void extendPixels(const Rectangle& part) const
    {
        T neutral[channels];
        for (T& value : neutral)
            value = neutralValue<Operation, T>;
        Border border = border_;
        const T* outside = borderValue_;
        if (border.mode == lumBorderNeutral) {
            border.mode = lumBorderConstant;
            outside = neutral;
        }

        // of a few columns, what each one shows is the same in every row: synthesised pixels, pixels of the image, and
        // again synthesised ones; where there is no mirror, those of a side are all alike
        constexpr int64_t fewPixels = 64;
        constexpr int pixelBytes = channels * static_cast<int>(sizeof(T));
        const bool isFew = part.width <= fewPixels;
        ExtendedRow<T, channels> row{nullptr, roi_.width, border, outside};
        const int64_t partEnd = part.x + part.width;
        const int64_t first = row.readableFrom(part.x) < partEnd ? row.readableFrom(part.x) : partEnd;
        const int64_t last = row.readableTo(partEnd) > first ? row.readableTo(partEnd) : first;
        int64_t column[fewPixels];
        for (int64_t i = 0; isFew && i < part.width; ++i)
            column[i] =
                border.mode == lumBorderConstant ? 0 : borderIndex(part.x + i, roi_.width, border.mode) * channels;

        T* to = extended_;
        for (int64_t i = 0; i < part.height; ++i, to += part.width * channels) {
            const int64_t y = part.y + i;
            const SourceRow source = sourceRow(y, roi_.height, border);
            if (source.isConstant) {
                for (int64_t x = 0; x < part.width * channels; x += channels)
                    std::memcpy(to + x, outside, pixelBytes);
                continue;
            }
            row.row = src_.row(source.index);
            if (!isFew) {
                row.read(part.x, partEnd, to);
                continue;
            }
            askFor(src_, first * channels, y, roi_.height);
            const T* const shown = border.mode == lumBorderConstant ? outside : row.row;
            const auto synthesise = [&](int64_t begin, int64_t end) {
                T* const at = to + (begin - part.x) * channels;
                const int64_t* const from = column + (begin - part.x);
                if (border.mode != lumBorderMirror)
                    return simd::fillFew<pixelBytes>(at, shown + from[0], end - begin);
                for (int64_t j = 0; j < end - begin; ++j)
                    std::memcpy(at + j * channels, shown + from[j], pixelBytes);
            };
            if (part.x < first)
                synthesise(part.x, first);
            simd::copyFew(to + (first - part.x) * channels, row.row + first * channels,
                          byteStep((last - first) * channels));
            if (last < partEnd)
                synthesise(last, partEnd);
        }
    }

    /// The kernel for the element's shape; all give the same image.
    void kernel(Plane<const T> src, Plane<T> dst, int64_t width, int64_t height, Scratch ring) const
    {
        if (width < 1 || height < 1)
            return;
        const Area<T> area{src, dst, width * channels_, height, channels_};
        if (element_.is(shapeRectangle))
            rectangle<Operation>(area, element_.width, element_.height, ring);
        else if ((element_.flags & (shapeDisc | shapeDisc5x5 | shapeDisc7x7)) == shapeDisc)
            smallCross<Operation>(area);
        else if (!element_.is(shapeRowRuns) || !rowRuns<Operation>(area, element_, ring))
            anyShape<Operation>(area, element_);
    }

    const Element& element_;
    int64_t channels_;
    Plane<const T> src_;
    Plane<T> dst_;
    LumiSizeL roi_;
    Border border_;
    const T* borderValue_;
    int64_t left_, right_, top_, bottom_;
    Scratch ring_;
    T* extended_;
};

}  // namespace

template <class Operation, class T>
void pass(const Element& element, int channels, Plane<const T> src, Plane<T> dst, LumiSizeL roi, Border border,
          const T* borderValue, Lum8u* scratch)
{
    Pass<Operation, T>(element, channels, src, dst, roi, border, borderValue, scratch).run();
}

template void pass<Maximum>(const Element&, int, Plane<const Lum8u>, Plane<Lum8u>, LumiSizeL, Border, const Lum8u*,
                            Lum8u*);
template void pass<Maximum>(const Element&, int, Plane<const Lum16u>, Plane<Lum16u>, LumiSizeL, Border, const Lum16u*,
                            Lum8u*);
template void pass<Maximum>(const Element&, int, Plane<const Lum16s>, Plane<Lum16s>, LumiSizeL, Border, const Lum16s*,
                            Lum8u*);
template void pass<Maximum>(const Element&, int, Plane<const Lum32f>, Plane<Lum32f>, LumiSizeL, Border, const Lum32f*,
                            Lum8u*);
template void pass<Minimum>(const Element&, int, Plane<const Lum8u>, Plane<Lum8u>, LumiSizeL, Border, const Lum8u*,
                            Lum8u*);
template void pass<Minimum>(const Element&, int, Plane<const Lum16u>, Plane<Lum16u>, LumiSizeL, Border, const Lum16u*,
                            Lum8u*);
template void pass<Minimum>(const Element&, int, Plane<const Lum16s>, Plane<Lum16s>, LumiSizeL, Border, const Lum16s*,
                            Lum8u*);
template void pass<Minimum>(const Element&, int, Plane<const Lum32f>, Plane<Lum32f>, LumiSizeL, Border, const Lum32f*,
                            Lum8u*);

}  // namespace lumcv
