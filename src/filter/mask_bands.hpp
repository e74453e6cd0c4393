// The driver of the fixed masks: each source row goes once through the row steps, on its way into a ring of rows, and
// the ring is combined into one destination row at a time. The image is worked through in bands of columns narrow
// enough for the ring to stay in the first-level cache.
//
// A row of a band is a sequence of blocks of `lanes` pixels; the last one ends where the band ends, and overlaps the
// one before it. The ring holds for each block what the row steps made of it, in whatever order suits the arithmetic.
// Source rows are read in place, but for the blocks that need pixels beyond the ends of the row: these are first laid
// out.
//
// A filter comes as a Mask:
//   size            its rows and columns
//   RowSteps        the steps along the row (Steps<...>); the ring keeps a result of each
//   across(r)       combines the results: r(i, j) is that of the row step i in the row j of the mask
// or, where integers are cheaper carried on from row to row, in place of across():
//   hasRing         whether the ring is wanted all the same
//   kept            how many values are carried on for each pixel; they begin as zero
//   advance(k, ...) takes what the row steps make of the row that comes in, in their order, and gives the result of the
//                   row that is now complete (nothing of value while the first rows come in); k.load(i), k.store(i, v)
//                   reach the values, and k.exchange(v) puts v into the ring in place of the row that leaves the mask
#pragma once

#include "filter/bands.hpp"
#include "filter/extended_row.hpp"
#include "filter/line_space.hpp"
#include "filter/mask_steps.hpp"
#include "filter/row_ring.hpp"
#include "filter/store_row.hpp"
#include "frame/rounding.hpp"

namespace lumcv {

template <class... S>
struct Steps
{
    static constexpr int count = sizeof...(S);
};

/// One step along the row and one across the rows.
template <class RowStep, class ColumnStep>
struct MaskProduct
{
    static constexpr int size = ColumnStep::size;
    using RowSteps = Steps<RowStep>;

    template <class Results>
    [[gnu::always_inline]] static auto across(Results r)
    {
        return ColumnStep::of([&](int j) { return r(0, j); });
    }
};

/// What the pixels of a source become between the two steps.
template <class S>
struct MaskArithmetic;

/// Words, exact modulo 2^16.
template <>
struct MaskArithmetic<Lum8u>
{
    using Element = Lum16s;
    static constexpr int lanes = simd::registerLanes<Lum8u>;
    using Value = simd::SplitWords<lanes>;

    template <class Step>
    [[gnu::always_inline]] static Value along(const Lum8u* s)
    {
        return simd::tapSums<weightsOf<Step>, lanes>(s);
    }

    [[gnu::always_inline]] static Value load(const Element* p)
    {
        return {simd::load<lanes / 2>(p), simd::load<lanes / 2>(p + lanes / 2)};
    }

    [[gnu::always_inline]] static void store(Element* p, Value v)
    {
        simd::store(p, v.even);
        simd::store(p + lanes / 2, v.odd);
    }

    template <class D>
    [[gnu::always_inline]] static auto result(Value v)
    {
        if constexpr (sizeof(D) == 1)
            return simd::bytesInOrder(v);
        else
            return simd::inOrder(v);
    }
};

template <>
struct MaskArithmetic<Lum32f>
{
    using Element = Lum32f;
    static constexpr int lanes = 16;
    using Value = simd::Vec<Lum32f, lanes>;

    template <class Step>
    [[gnu::always_inline]] static Value along(const Lum32f* s)
    {
        return Step::of([&](int i) { return simd::load<lanes>(s + i - Step::size / 2); });
    }

    [[gnu::always_inline]] static Value load(const Element* p)
    {
        return simd::load<lanes>(p);
    }

    [[gnu::always_inline]] static void store(Element* p, Value v)
    {
        simd::store(p, v);
    }

    template <class D>
    [[gnu::always_inline]] static Value result(Value v)
    {
        return v;
    }
};

template <class Mask>
inline constexpr bool isCarriedOn = requires
{
    Mask::kept;
};

template <class Mask>
constexpr int keptValues()
{
    if constexpr (isCarriedOn<Mask>)
        return Mask::kept;
    else
        return 0;
}

template <class Mask>
constexpr bool hasRing()
{
    if constexpr (isCarriedOn<Mask>)
        return Mask::hasRing;
    else
        return true;
}

/// The steps of a mask at one block of a row, with the rows of the ring in the order of the image: the last one takes
/// what the row steps make of the row that comes in.
template <class Mask, class S, class D>
struct MaskBlock
{
    using Arithmetic = MaskArithmetic<S>;
    using Element = typename Arithmetic::Element;
    using Value = typename Arithmetic::Value;
    static constexpr int lanes = Arithmetic::lanes;
    static constexpr int steps = hasRing<Mask>() ? Mask::RowSteps::count : 1;  ///< values of a block in a row
    static constexpr int blockElements = lanes * steps;

    Element* rows[Mask::size];
    Element* kept;
    int64_t pitch;  ///< from one kept row to the next

    /// For a row that completes no row of the destination.
    [[gnu::always_inline]] void enter(const S* s, int64_t block) const
    {
        if constexpr (isCarriedOn<Mask>)
            advance(s, block * blockElements, typename Mask::RowSteps{});
        else
            along(s, block * blockElements, typename Mask::RowSteps{});
    }

    /// What goes to the destination.
    [[gnu::always_inline]] auto through(const S* s, int64_t block) const
    {
        const int64_t at = block * blockElements;
        if constexpr (isCarriedOn<Mask>)
            return Arithmetic::template result<D>(advance(s, at, typename Mask::RowSteps{}));
        else {
            along(s, at, typename Mask::RowSteps{});
            return Arithmetic::template result<D>(
                Mask::across([&](int i, int j) { return Arithmetic::load(rows[j] + at + i * lanes); }));
        }
    }

  private:
    struct Kept
    {
        const MaskBlock& block;
        int64_t at;

        [[gnu::always_inline]] Value load(int i) const
        {
            return Arithmetic::load(block.kept + i * block.pitch + at);
        }

        [[gnu::always_inline]] void store(int i, Value v) const
        {
            Arithmetic::store(block.kept + i * block.pitch + at, v);
        }

        [[gnu::always_inline]] Value exchange(Value v) const
        {
            Element* const slot = block.rows[Mask::size - 1] + at;
            const Value leaving = Arithmetic::load(slot);
            Arithmetic::store(slot, v);
            return leaving;
        }
    };

    template <class... RowSteps>
    [[gnu::always_inline]] void along(const S* s, int64_t at, Steps<RowSteps...>) const
    {
        int i = 0;
        (Arithmetic::store(rows[Mask::size - 1] + at + i++ * lanes, Arithmetic::template along<RowSteps>(s)), ...);
    }

    template <class... RowSteps>
    [[gnu::always_inline]] Value advance(const S* s, int64_t at, Steps<RowSteps...>) const
    {
        return Mask::advance(Kept{*this, at}, Arithmetic::template along<RowSteps>(s)...);
    }
};

/// Where a run of blocks is read, and the row that will be wanted next.
template <class S>
struct MaskSource
{
    const S* first;  ///< the first pixel of the first block
    int64_t step;    ///< from block to block: `lanes`, or 0 if all are alike
    const S* ahead;
};

/// Where a run of blocks is written, and the row that will be wanted next.
template <class D>
struct MaskDestination
{
    D* first;
    const D* ahead;
};

template <class Block, class S>
[[gnu::flatten, gnu::noinline]] void maskIn(Block steps, MaskSource<S> src, int64_t block, int64_t end)
{
    for (const S* s = src.first; block < end; ++block, s += src.step)
        steps.enter(s, block);
}

/// The column step of each block follows its row steps, so that the loads of the one overlap with the arithmetic of the
/// other.
template <class Block, class S, class D>
[[gnu::flatten, gnu::noinline]] void maskThrough(Block steps, MaskSource<S> src, MaskDestination<D> dst, int64_t block,
                                                 int64_t end)
{
    constexpr int64_t lineBytes = 64;
    constexpr int64_t blocksOfLine = lineBytes / (Block::lanes * static_cast<int64_t>(sizeof(S)));
    const S* s = src.first;
    const auto one = [&] {
        simd::store(dst.first, steps.through(s, block));
        s += src.step;
        dst.first += Block::lanes;
        ++block;
    };
    while (block + blocksOfLine <= end) {
        simd::prefetch<blocksOfLine * Block::lanes>(src.ahead);
        simd::prefetch<blocksOfLine * Block::lanes>(dst.ahead);
        src.ahead += blocksOfLine * Block::lanes;
        dst.ahead += blocksOfLine * Block::lanes;
        for (int i = 0; i < blocksOfLine; ++i)
            one();
    }
    while (block < end)
        one();
}

template <class S, class D>
struct MaskImages
{
    Plane<const S> src;
    Plane<D> dst;
    LumiSizeL roiSize;
    Border border;
    S borderValue;
    bool isLarge;  ///< the destination is written past the caches
};

/// The columns [begin, end) of an image. A band of fewer columns than a block has is the whole image.
template <class Mask, class S, class D>
class MaskBand
{
    using Block = MaskBlock<Mask, S, D>;
    using Element = typename Block::Element;
    static constexpr int64_t lanes = Block::lanes;
    static constexpr int64_t reach = Mask::size / 2;

    static constexpr int64_t shortRow = 256 / static_cast<int64_t>(sizeof(S));
    static_assert(shortRow >= lanes);

    static constexpr int64_t slots = hasRing<Mask>() ? Mask::size : 0;
    static constexpr int64_t ringRows = slots + keptValues<Mask>();

  public:
    /// Bytes of space for each block of the band.
    static constexpr int64_t blockBytes =
        lanes * static_cast<int64_t>(ringRows * Block::steps * sizeof(Element) + sizeof(D));

    /// Bytes of space beside the blocks.
    static constexpr int64_t edgeBytes = roundedUp((shortRow + 2 * reach) * static_cast<int64_t>(sizeof(S)), 64);

    MaskBand(const MaskImages<S, D>& images, int64_t begin, int64_t end, Lum8u* space)
        : images_(images),
          begin_(begin),
          end_(end),
          blocks_((end - begin + lanes - 1) / lanes),
          edge_(reinterpret_cast<S*>(space)),
          ring_{reinterpret_cast<Element*>(space + edgeBytes), blocks_ * Block::blockElements, Mask::size},
          line_(reinterpret_cast<D*>(ring_.slot(ringRows)))
    {
        if constexpr (isCarriedOn<Mask>)
            for (Element* p = ring_.rows; p < ring_.slot(ringRows); p += lanes)
                simd::store(p, simd::broadcast<lanes>(Element{0}));
    }

    void run()
    {
        walkRows(Mask::size, images_.roiSize.height, reach, images_.border, [this](const RingStep& step) {
            Block block;
            for (int64_t j = 0; j < Mask::size; ++j)
                block.rows[j] = ring_.rowBehind(step.firstSlot, j);
            block.kept = ring_.slot(slots);
            block.pitch = ring_.pitch;
            if (step.output < 0) {
                eachRun(step, [&](MaskSource<S> src, int64_t first, int64_t last, int64_t) {
                    maskIn(block, src, first, last);
                });
                return;
            }
            D* const row = images_.dst.row(step.output) + begin_;
            const bool isAside = images_.isLarge || end_ - begin_ < lanes;
            D* const out = isAside ? line_ : row;
            const int64_t next = step.output + 1 < images_.roiSize.height ? step.output + 1 : step.output;
            const D* const ahead = isShort() ? line_ : images_.dst.row(next) + begin_;
            eachRun(step, [&](MaskSource<S> src, int64_t first, int64_t last, int64_t x) {
                maskThrough(block, src, MaskDestination<D>{out + x, ahead + x}, first, last);
            });
            if (isAside)
                storeRow<lanes>(row, end_ - begin_, images_.isLarge,
                                [this](int64_t x, auto n) { return simd::load<n>(line_ + x); });
        });
    }

  private:
    /// Whether rows are laid out as a whole: they are short, and may have less than a block. There is no point in
    /// asking for the next one.
    bool isShort() const
    {
        return end_ - begin_ <= shortRow;
    }

    /// Where block i begins within the band.
    int64_t offset(int64_t i) const
    {
        const int64_t last = end_ - begin_ - lanes;
        return i * lanes <= last || last < 0 ? i * lanes : last;
    }

    /// Calls run(source, first, last, x) for the blocks [first, last) of the row that comes in; x is where the first of
    /// them begins within the band.
    template <class Run>
    void eachRun(const RingStep& step, Run run)
    {
        const int64_t height = images_.roiSize.height;
        const int64_t next = step.row.index + 1 < 0 ? 0 : step.row.index + 1 < height ? step.row.index + 1 : height - 1;
        const S* const ahead = isShort() ? edge_ : images_.src.row(next) + begin_;
        if (step.row.isConstant) {
            for (int64_t x = 0; x < lanes + 2 * reach; ++x)
                edge_[x] = images_.borderValue;
            const MaskSource<S> constant{edge_ + reach, 0, ahead};
            if (blocks_ > 1)
                run(constant, 0, blocks_ - 1, 0);
            run(constant, blocks_ - 1, blocks_, offset(blocks_ - 1));
            return;
        }
        const ExtendedRow<S, 1> row{images_.src.row(step.row.index), images_.roiSize.width, images_.border,
                                    &images_.borderValue};
        const auto single = [&](int64_t i) {
            const int64_t x = begin_ + offset(i);
            if (row.isInMemory(x - reach, x + lanes + reach)) {
                run(MaskSource<S>{row.row + x, lanes, ahead + offset(i)}, i, i + 1, offset(i));
                return;
            }
            row.read(x - reach, x + lanes + reach, edge_);
            run(MaskSource<S>{edge_ + reach, lanes, ahead + offset(i)}, i, i + 1, offset(i));
        };
        if (isShort()) {
            const int64_t n = end_ - begin_;
            row.read(begin_ - reach, end_ + reach, edge_);
            for (int64_t x = n + 2 * reach; x < lanes + 2 * reach; ++x)
                edge_[x] = S{};
            const int64_t full = n < lanes ? 1 : n / lanes;
            run(MaskSource<S>{edge_ + reach, lanes, ahead}, 0, full, 0);
            if (full < blocks_)
                run(MaskSource<S>{edge_ + reach + offset(full), lanes, ahead}, full, blocks_, offset(full));
            return;
        }
        // the blocks [first, last) can be read in place
        const int64_t first = row.readableFrom(begin_ - reach) == begin_ - reach ? 0 : 1;
        const int64_t readable = row.readableTo(end_ + reach) - reach - begin_;
        const int64_t last = readable < 0 ? 0 : readable / lanes;
        if (first == 1)
            single(0);
        if (first < last)
            run(MaskSource<S>{row.row + begin_ + first * lanes, lanes, ahead + first * lanes}, first, last,
                first * lanes);
        for (int64_t i = first < last ? last : first; i < blocks_; ++i)
            single(i);
    }

    const MaskImages<S, D>& images_;
    int64_t begin_, end_;
    int64_t blocks_;
    S* edge_;  ///< a block and its neighbours, laid out, or a short row
    RingOf<Element> ring_;
    D* line_;  ///< a row of results that is not stored at once
};

/// `space` has room for a block at least.
template <class Mask, class S, class D>
void filterByMask(const MaskImages<S, D>& images, LineSpace<Lum8u>& space)
{
    using Band = MaskBand<Mask, S, D>;
    constexpr int64_t lanes = MaskArithmetic<S>::lanes;
    const int64_t bytes = space.size() < bandBytes ? space.size() : bandBytes;
    const int64_t widest = (bytes - Band::edgeBytes) / Band::blockBytes * lanes;
    const int64_t width = images.roiSize.width;
    const int64_t columns = width <= widest ? width : roundedUp(evenBands(width, widest), lanes);
    for (int64_t begin = 0; begin < width; begin += columns) {
        // a band has a block at least, so the last one may begin within the one before it
        const int64_t end = begin + columns < width ? begin + columns : width;
        Band(images, end - begin < lanes && end > lanes ? end - lanes : begin, end, space.data()).run();
    }
    if (images.isLarge)
        simd::fence();
}

}  // namespace lumcv
