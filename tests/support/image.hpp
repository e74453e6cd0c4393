// Images for tests: a ROI with margins around it if wanted, any row stride, right against an unreadable page, and
// with a pattern in all bytes that are no pixels.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/guarded_block.hpp"

namespace lumcv::test {

/// Pixels around a ROI.
struct Margins
{
    int top = 0;
    int bottom = 0;
    int left = 0;
    int right = 0;

    static Margins all(int pixels)
    {
        return {pixels, pixels, pixels, pixels};
    }
    bool any() const
    {
        return top > 0 || bottom > 0 || left > 0 || right > 0;
    }
};

/// The geometry of an image and its place in memory.
struct Layout
{
    int width = 1;                ///< of the ROI, in pixels
    int height = 1;               ///< of the ROI
    int channels = 1;             ///< interleaved
    int gap = 0;                  ///< bytes between the end of a row (with its margins) and the next row
    Guard guard = Guard::After;   ///< the end that stands against the unreadable page
    Margins margins = Margins{};  ///< pixels around the ROI
    int offset = 0;               ///< elements between the page's edge and the image, to reach other alignments
    bool bottomUp = false;        ///< the first row stands last in memory: the row stride is negative
};

/// Which pixels of an image are meant.
enum class Area
{
    Roi,
    WithMargins
};

template <class T>
class Image
{
  public:
    using Element = T;

    explicit Image(const Layout& layout)
        : layout_(layout), block_(blockBytes() + static_cast<std::size_t>(layout.offset) * sizeof(T), layout.guard)
    {
        require(layout.width > 0 && layout.height > 0 && layout.channels > 0, "the ROI is empty");
        require(layout.gap >= 0 && layout.gap % static_cast<int>(sizeof(T)) == 0, "the gap misaligns the rows");
    }

    int width() const
    {
        return layout_.width;
    }
    int height() const
    {
        return layout_.height;
    }
    int channels() const
    {
        return layout_.channels;
    }
    const Layout& layout() const
    {
        return layout_;
    }

    /// The row stride in bytes.
    int step() const
    {
        return layout_.bottomUp ? -pitch() : pitch();
    }
    /// The first pixel of the ROI.
    T* pixels()
    {
        return row(0);
    }
    const T* pixels() const
    {
        return row(0);
    }
    /// The first pixel of a row of the ROI, or of a row of the margins above and below.
    T* row(int y)
    {
        return const_cast<T*>(static_cast<const Image*>(this)->row(y));
    }
    const T* row(int y) const
    {
        require(y >= -layout_.margins.top && y < layout_.height + layout_.margins.bottom, "no such row");
        return rowStart(memoryRow(y)) + layout_.margins.left * layout_.channels;
    }
    /// An element of the ROI, or of its margins with coordinates below 0 or beyond the ROI.
    T& at(int x, int y, int channel = 0)
    {
        return const_cast<T&>(static_cast<const Image*>(this)->at(x, y, channel));
    }
    const T& at(int x, int y, int channel = 0) const
    {
        require(x >= -layout_.margins.left && x < layout_.width + layout_.margins.right, "no such column");
        require(channel >= 0 && channel < layout_.channels, "no such channel");
        return row(y)[x * layout_.channels + channel];
    }

    /// All bytes from the first to the last pixel, margins and gaps included.
    unsigned char* bytes() const
    {
        return layout_.guard == Guard::Before ? block_.data() + static_cast<std::size_t>(layout_.offset) * sizeof(T)
                                              : block_.data();
    }
    std::size_t byteCount() const
    {
        return blockBytes();
    }

    /// Calls f(element, x, y, channel) for each element of the area. Margins that are visited are pixels from then on
    /// and no longer part of what must survive.
    template <class F>
    void forEach(Area area, F f)
    {
        const Margins m = area == Area::WithMargins ? layout_.margins : Margins{};
        marginsArePixels_ = marginsArePixels_ || area == Area::WithMargins;
        for (int y = -m.top; y < layout_.height + m.bottom; ++y) {
            T* const elements = row(y);
            for (int x = -m.left; x < layout_.width + m.right; ++x) {
                for (int c = 0; c < layout_.channels; ++c) {
                    f(elements[x * layout_.channels + c], x, y, c);
                }
            }
        }
    }

    /// Whether every byte that is no pixel still holds the pattern: the gaps between rows, the margins unless they
    /// were filled as pixels, and what lies around the image in its pages.
    testing::AssertionResult gapsIntact() const
    {
        if (const testing::AssertionResult slack = block_.slackIntact(); !slack) {
            return slack;
        }
        const std::size_t imageBegin = static_cast<std::size_t>(bytes() - block_.data());
        std::size_t gapBegin = 0;
        for (int i = 0; i < memoryRows(); ++i) {
            const std::size_t rowBegin = imageBegin + static_cast<std::size_t>(i) * static_cast<std::size_t>(pitch());
            const int y = (layout_.bottomUp ? memoryRows() - 1 - i : i) - layout_.margins.top;
            const bool inRoi = y >= 0 && y < layout_.height;
            if (!inRoi && !marginsArePixels_) {
                continue;
            }
            const std::size_t pixelsBegin = rowBegin + (marginsArePixels_ ? 0 : pixelBytes(layout_.margins.left));
            if (const auto intact = rangeIntact(gapBegin, pixelsBegin); !intact) {
                return testing::AssertionFailure() << intact.message() << " before the pixels of row " << y;
            }
            gapBegin = pixelsBegin + (marginsArePixels_ ? rowBytes() : pixelBytes(layout_.width));
        }
        if (const auto intact = rangeIntact(gapBegin, block_.size()); !intact) {
            return testing::AssertionFailure() << intact.message() << " after the pixels of the last row in memory";
        }
        return testing::AssertionSuccess();
    }

  private:
    static void require(bool condition, const char* complaint)
    {
        if (!condition) {
            std::fprintf(stderr, "test image: %s\n", complaint);
            std::abort();
        }
    }
    std::size_t pixelBytes(int pixels) const
    {
        return static_cast<std::size_t>(pixels) * static_cast<std::size_t>(layout_.channels) * sizeof(T);
    }
    // Offsets count from the start of the block.
    testing::AssertionResult rangeIntact(std::size_t begin, std::size_t end) const
    {
        for (std::size_t i = begin; i < end; ++i) {
            if (block_.data()[i] != block_.original(i)) {
                return testing::AssertionFailure()
                       << "a byte that is no pixel was written: got " << int{block_.data()[i]} << ", expected "
                       << int{block_.original(i)} << ", " << i - begin
                       << " bytes behind the pixels of the row before and " << end - i << " bytes";
            }
        }
        return testing::AssertionSuccess();
    }
    std::size_t rowBytes() const
    {
        return pixelBytes(layout_.margins.left + layout_.width + layout_.margins.right);
    }
    int pitch() const
    {
        return static_cast<int>(rowBytes()) + layout_.gap;
    }
    // The last row has no gap behind it: the pixel that ends it stands against the unreadable page.
    std::size_t blockBytes() const
    {
        return static_cast<std::size_t>(memoryRows() - 1) * static_cast<std::size_t>(pitch()) + rowBytes();
    }
    int memoryRows() const
    {
        return layout_.height + layout_.margins.top + layout_.margins.bottom;
    }
    int memoryRow(int y) const
    {
        return layout_.bottomUp ? layout_.height - 1 - y + layout_.margins.bottom : y + layout_.margins.top;
    }
    const T* rowStart(int memoryRow) const
    {
        return reinterpret_cast<const T*>(bytes() + static_cast<std::ptrdiff_t>(memoryRow) * pitch());
    }

    Layout layout_;
    GuardedBlock block_;
    bool marginsArePixels_ = false;
};

}  // namespace lumcv::test
