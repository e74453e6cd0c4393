// The driver of the separable filters: each source row is filtered once along itself, on its way into a ring of rows of
// floats, and the ring is combined into one destination row at a time. The image is worked through in bands of columns
// narrow enough for the ring to stay in the first-level cache.
//
// A filter comes as a Kernel:
//   Taps               what its loops are compiled for
//   width(), height()  the taps along and across; before the centre lie (n - 1) / 2 of n
//   along(line)        yields the sums of a row at (x, lanes); line[0] is the first tap of x = 0
//   across(ring, slot) yields the sums of the ring's rows at (x, lanes); `slot` holds the first tap. Its newest() is
//                      the last tap's row, by the pointer that it is read by: compilers see then that what has just
//                      been stored there need not be loaded again
//   constant(value)    what along() would yield where all pixels are `value`
//   stored<D>(sums)    the elements that go to the destination
#pragma once

#include "filter/bands.hpp"
#include "filter/extended_row.hpp"
#include "filter/row_ring.hpp"
#include "filter/store_row.hpp"
#include "filter/taps.hpp"
#include "frame/large_image.hpp"

namespace lumcv {

template <class S, class D, int channels>
struct SeparableImages
{
    Plane<const S> src;
    Plane<D> dst;
    LumiSizeL roiSize;
    Border border;
    const S* borderValue;  ///< one value for each channel; read in constant mode only
};

/// Where a band is worked on.
struct BandSpace
{
    RowRing ring;
    Lum32f* line;     ///< room for a row of the band and its neighbours on both sides
    int64_t columns;  ///< the widest band
};

/// Columns of a band for which the ring of so many rows and the line fit a band.
inline int64_t cachedColumns(int64_t rows, int channels)
{
    constexpr int64_t narrowest = 128;
    const int64_t widest = bandBytes / ((rows + 1) * channels * static_cast<int64_t>(sizeof(Lum32f)));
    return widest < narrowest ? narrowest : widest;
}

template <class Kernel, class D>
constexpr int bandLanes = stepLanes<D, typename Kernel::Taps>();

/// The width of bands, in whole steps of the widest loops.
inline int64_t separableBands(int64_t width, int64_t widest)
{
    return evenBands(width, widest, 128);
}

/// Along the row alone, while the ring fills.
template <class Kernel, class D, class Along>
[[gnu::flatten, gnu::noinline]] void filterIn(Along along, Lum32f* slot, int64_t n)
{
    simd::eachAtLeastOnce<bandLanes<Kernel, D>>(0, n,
                                                [=](int64_t x, auto lanes) { simd::store(slot + x, along(x, lanes)); });
}

/// Across the ring alone, where a constant row has come in.
template <class Kernel, class D, class Across>
[[gnu::flatten, gnu::noinline]] void filterOut(Across across, D* dst, int64_t n, bool isLarge)
{
    storeRow<bandLanes<Kernel, D>>(dst, n, isLarge,
                                   [=](int64_t x, auto lanes) { return Kernel::template stored<D>(across(x, lanes)); });
}

/// Rows of source and destination that will be wanted soon. The bands are too narrow for the processor to see them
/// coming. A destination that is written past the caches is not wanted there.
template <class S, class D>
struct Upcoming
{
    const S* src;
    const D* dst;
};

/// Both for each step, so that the loads of the one overlap with the arithmetic of the other.
template <class Kernel, class S, class D, class Along, class Across>
[[gnu::flatten, gnu::noinline]] void filterThrough(Along along, Across across, D* dst, int64_t n, bool isLarge,
                                                   Upcoming<S, D> upcoming)
{
    Lum32f* const slot = across.newest();
    storeRow<bandLanes<Kernel, D>>(dst, n, isLarge, [=](int64_t x, auto lanes) {
        simd::prefetch<lanes>(upcoming.src + x);
        if (!isLarge)
            simd::prefetch<lanes>(upcoming.dst + x);
        simd::store(slot + x, along(x, lanes));
        return Kernel::template stored<D>(across(x, lanes));
    });
}

/// The columns [begin, end).
template <class Kernel, class S, class D, int channels>
void filterBand(const SeparableImages<S, D, channels>& images, const Kernel& kernel, RowRing ring, Lum32f* space,
                int64_t begin, int64_t end, bool isLarge)
{
    const int64_t height = images.roiSize.height;
    const int64_t first = begin - (kernel.width() - 1) / 2;
    const int64_t last = end + kernel.width() / 2;
    const int64_t n = (end - begin) * channels;
    const auto ahead = [&](auto image, int64_t y) {
        constexpr int64_t rowsAhead = 1;
        return image.row(y + rowsAhead < height ? y + rowsAhead : y) + begin * channels;
    };
    walkRows(ring.slots, height, (ring.slots - 1) / 2, images.border, [&](const RingStep& step) {
        Lum32f* const slot = ring.slot(step.slot);
        D* const out = images.dst.row(step.output) + begin * channels;
        const auto across = kernel.across(ring, step.firstSlot);
        if (step.row.isConstant) {
            for (int64_t x = 0; x < n; ++x)
                slot[x] = kernel.constant(static_cast<Lum32f>(images.borderValue[x % channels]));
            if (step.output >= 0)
                filterOut<Kernel>(across, out, n, isLarge);
            return;
        }
        const ExtendedRow<S, channels> row{images.src.row(step.row.index), images.roiSize.width, images.border,
                                           images.borderValue};
        const Lum32f* line = space;
        if (std::is_same_v<S, Lum32f> && row.isInMemory(first, last))
            line = reinterpret_cast<const Lum32f*>(row.row + first * channels);
        else
            row.read(first, last, space);
        if (step.output >= 0)
            filterThrough<Kernel, S, D>(kernel.along(line), across, out, n, isLarge,
                                        {ahead(images.src, step.row.index), ahead(images.dst, step.output)});
        else
            filterIn<Kernel, D>(kernel.along(line), slot, n);
    });
}

template <class Kernel, class S, class D, int channels>
void filterBands(const SeparableImages<S, D, channels>& images, const Kernel& kernel, const BandSpace& space)
{
    const int64_t width = images.roiSize.width;
    const bool isLarge = isLargeImage(width * images.roiSize.height);
    for (int64_t begin = 0; begin < width; begin += space.columns) {
        const int64_t end = begin + space.columns < width ? begin + space.columns : width;
        filterBand(images, kernel, space.ring, space.line, begin, end, isLarge);
    }
    if (isLarge)
        simd::fence();
}

}  // namespace lumcv
