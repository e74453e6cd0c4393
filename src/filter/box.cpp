// The box filter: the sums of the window's columns, a line of them for each output row, and a running sum along each
// line. A running sum waits for its own last addition, so that of several rows are in flight at once.
#include "filter/box.hpp"

#include "filter/extended_row.hpp"
#include "frame/border.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

struct Window
{
    int64_t width, height;

    int64_t before() const  ///< columns before the pixel
    {
        return (width - 1) / 2;
    }

    int64_t above() const
    {
        return (height - 1) / 2;
    }
};

struct BoxImages
{
    Plane<const Lum32f> src;
    Plane<Lum32f> dst;
    LumiSizeL roiSize;
    Window window;
    Border border;
    const Lum32f* borderValue;  ///< read in constant mode only
};

template <class Addend>
[[gnu::flatten]] void fill(Lum32f* line, int64_t n, Addend addend)
{
    simd::eachAtLeastOnce<64>(0, n, [=](int64_t x, auto lanes) { simd::store(line + x, addend(x, lanes)); });
}

/// Each element belongs to one call, for the line is read and written.
template <class Addend>
[[gnu::flatten]] void addTo(Lum32f* line, int64_t n, Addend addend)
{
    simd::eachOnce<64>(
        0, n, [=](int64_t x, auto lanes) { simd::store(line + x, simd::load<lanes>(line + x) + addend(x, lanes)); });
}

/// The column sums of output row y: line[0] is that of the first column under the window of x = 0.
void sumColumns(const BoxImages& images, int64_t y, Lum32f* line)
{
    const int64_t width = images.roiSize.width;
    const int64_t height = images.roiSize.height;
    const int64_t before = images.window.before();
    const int64_t columns = width + images.window.width - 1;
    const Border& border = images.border;
    const bool isConstant = border.mode == lumBorderConstant;
    // what lies in memory, counted from the first column of the line
    const int64_t first = border.left ? 0 : before;
    const int64_t last = border.right ? columns : before + width;

    for (int64_t j = 0; j < images.window.height; ++j) {
        const int64_t r = y - images.window.above() + j;
        const SourceRow source = sourceRow(r, height, border);
        const auto add = [=](auto addend) {
            if (j == 0)
                fill(line + first, last - first, addend);
            else
                addTo(line + first, last - first, addend);
        };
        if (source.isConstant) {
            const Lum32f value = *images.borderValue;
            add([=](int64_t, auto lanes) { return simd::broadcast<lanes>(value); });
        } else {
            const Lum32f* const row = images.src.row(source.index) + first - before;
            add([=](int64_t x, auto lanes) { return simd::load<lanes>(row + x); });
        }
    }

    // beyond the ends of the rows, a column is another one once more, or constant
    Lum32f constant = 0;
    if (isConstant) {
        constant = *images.borderValue;
        for (int64_t j = 1; j < images.window.height; ++j)
            constant = constant + *images.borderValue;
    }
    const auto beyond = [=](int64_t x) {
        return isConstant ? constant : line[before + borderIndex(x - before, width, border.mode)];
    };
    for (int64_t x = 0; x < first; ++x)
        line[x] = beyond(x);
    for (int64_t x = last; x < columns; ++x)
        line[x] = beyond(x);
}

/// The means of `rows` output rows, from y on.
template <int rows>
void averageRows(const BoxImages& images, int64_t y, const Lum32f* lines, int64_t pitch)
{
    const int64_t windowWidth = images.window.width;
    const Lum32f scale = 1.0f / (static_cast<Lum32f>(images.window.height) * static_cast<Lum32f>(windowWidth));
    Lum32f* out[rows];
    Lum32f sum[rows];
    for (int i = 0; i < rows; ++i) {
        out[i] = images.dst.row(y + i);
        const Lum32f* const line = lines + i * pitch;
        sum[i] = line[0];
        for (int64_t x = 1; x < windowWidth; ++x)
            sum[i] = sum[i] + line[x];
        out[i][0] = sum[i] * scale;
    }
    for (int64_t x = 1; x < images.roiSize.width; ++x) {
        const Lum32f* const leaving = lines + x - 1;
        const Lum32f* const entering = leaving + windowWidth;
        for (int i = 0; i < rows; ++i) {
            sum[i] = sum[i] + entering[i * pitch] - leaving[i * pitch];
            out[i][x] = sum[i] * scale;
        }
    }
}

template <int rows>
void filterRows(const BoxImages& images, int64_t y, Lum32f* lines, int64_t pitch)
{
    for (int i = 0; i < rows; ++i)
        sumColumns(images, y + i, lines + i * pitch);
    averageRows<rows>(images, y, lines, pitch);
}

}  // namespace

LumStatus lumBoxFilter_32f(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                           LumiSize maskSize, LumiBorderType borderType, const Lum32f* pBorderValue, Lum8u* pBuffer)
{
    const LumStatus status = Checks{}
                                 .notNull(pSrc, pDst, pBuffer)
                                 .require(srcStep > 0 && dstStep > 0, lumErrStep)
                                 .size(roiSize)
                                 .require(maskSize.width >= 1 && maskSize.height >= 1, lumErrMaskSize)
                                 .require(isFilterBorder(borderType), lumErrBorder)
                                 .require(hasBorderValue(borderType, pBorderValue), lumErrNullPointer)
                                 .status();
    if (status != lumOk)
        return status;
    const BoxImages images{source(pSrc, srcStep), destination(pDst, dstStep),
                           widened(roiSize),      {maskSize.width, maskSize.height},
                           Border(borderType),    pBorderValue};
    if (maskSize.width == 1 && maskSize.height == 1) {
        for (int64_t y = 0; y < images.roiSize.height; ++y)
            convertElements(images.src.row(y), images.roiSize.width, images.dst.row(y));
        return lumOk;
    }
    const auto lines = reinterpret_cast<Lum32f*>(alignedUp(pBuffer, 64));
    const int64_t pitch = boxLinePitch(roiSize.width, maskSize.width);
    int64_t y = 0;
    for (; y + boxRows <= roiSize.height; y += boxRows)
        filterRows<boxRows>(images, y, lines, pitch);
    for (; y < roiSize.height; ++y)
        filterRows<1>(images, y, lines, pitch);
    return lumOk;
}

}  // namespace lumcv
