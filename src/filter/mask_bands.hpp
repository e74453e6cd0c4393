// The driver of the fixed masks, and of small kernels over bytes: each source row goes once through the row steps, on
// its way into a ring of rows, and the ring is combined into one destination row at a time. The image is worked through
// in bands of columns narrow enough for the ring to stay in the first-level cache.
//
// A row of a band is a sequence of blocks of `lanes` pixels; the last one ends where the band ends, and overlaps the
// one before it. The ring holds for each block what the row steps made of it, in whatever order suits the arithmetic.
// Source rows are read in place, but for the blocks that need pixels beyond the ends of the row, which are laid out
// before.
//
// A filter comes as a Mask:
//   size            its rows and columns
//   RowSteps        the steps along the row (Steps<...>); the ring keeps a result of each
//   across(r)       combines the results: r(i, j) is that of the row step i in the row j of the mask
// or, where integers are cheaper carried on from row to row, in place of across():
//   rows            how many rows come in at a time: 1 or 2
//   hasRing         whether the ring is wanted all the same
//   kept            how many values are carried on for each pixel; they begin as zero
//   advance(k, ...) takes what the row steps make of the rows that come in, in their order, and gives the results of
//                   the rows that are now complete (nothing of value while the first rows come in); k.load(i),
//                   k.store(i, v) reach the values, and k.exchange(v) puts v into the ring in place of the row that
//                   leaves the mask
// A kernel whose weights come at run time works in single precision. It has
//   RowSteps        Steps<WeightedStep>
//   along(at)       what a row becomes; at(i) are the pixels at the distance i from the centre
//   constant        what becomes of a row that is constant
// Fixed masks of three rows take two at a time: what they keep is then read and written once for both.
#pragma once

#include <algorithm>
#include <array>

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
    static constexpr int64_t beyond = 0;  ///< what along() reads behind the last tap of the last pixel
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

/// Floats stand in the ring as they are.
template <int n>
struct FloatsInRing
{
    using Element = Lum32f;
    static constexpr int lanes = n;
    using Value = simd::Vec<Lum32f, n>;

    [[gnu::always_inline]] static Value load(const Element* p)
    {
        return simd::load<n>(p);
    }

    [[gnu::always_inline]] static void store(Element* p, Value v)
    {
        simd::store(p, v);
    }
};

template <>
struct MaskArithmetic<Lum32f> : FloatsInRing<16>
{
    static constexpr int64_t beyond = 0;

    template <class Step>
    [[gnu::always_inline]] static Value along(const Lum32f* s)
    {
        return Step::of([&](int i) { return simd::load<lanes>(s + i - Step::size / 2); });
    }

    template <class D>
    [[gnu::always_inline]] static Value result(Value v)
    {
        return v;
    }
};

/// Bytes in single precision and in phases, for weights that come at run time.
struct WeightedBytes : FloatsInRing<simd::phasedLanes>
{
    static constexpr int64_t beyond = 3;

    template <class Mask>
    [[gnu::always_inline]] static Value along(const Mask& mask, const Lum8u* s)
    {
        return mask.along([s](int i) { return simd::loadPhases<lanes>(s + i); });
    }

    template <class D>
    [[gnu::always_inline]] static auto result(Value v)
    {
        return simd::roundPhasesTo<D>(v);
    }
};

/// The row step of a weighted mask.
struct WeightedStep;

template <class Mask>
inline constexpr bool isWeighted = std::is_same_v<typename Mask::RowSteps, Steps<WeightedStep>>;

template <class Mask, class S>
using ArithmeticOf = std::conditional_t<isWeighted<Mask>, WeightedBytes, MaskArithmetic<S>>;

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

/// The rows that come in at a time.
template <class Mask>
constexpr int rowsOf()
{
    if constexpr (isCarriedOn<Mask>)
        return Mask::rows;
    else
        return 1;
}

/// A mask of three rows, two of which come in at a time: the results of the two rows before them are carried on.
template <class Mask>
struct InPairs : Mask
{
    static_assert(Mask::size == 3);
    static constexpr int rows = 2;
    static constexpr bool hasRing = false;
    static constexpr int steps = Mask::RowSteps::count;
    static constexpr int kept = 2 * steps;

    template <class Kept, class Value, class... More>
    [[gnu::always_inline]] std::array<Value, 2> advance(Kept k, Value first, More... more) const
    {
        const Value entering[kept] = {first, more...};
        Value leaving[kept];
        for (int i = 0; i < kept; ++i) {
            leaving[i] = k.load(i);
            k.store(i, entering[i]);
        }
        const auto from = [&](int row) {
            return Mask::across([&](int i, int j) {
                const int at = (row + j) * steps + i;
                return at < kept ? leaving[at] : entering[at - kept];
            });
        };
        return {from(0), from(1)};
    }
};

/// The steps of a mask at one block of a row, with the rows of the ring in the order of the image: the last one takes
/// what the row steps make of the row that comes in.
template <class Mask, class S, class D>
struct MaskBlock
{
    using Arithmetic = ArithmeticOf<Mask, S>;
    using Element = typename Arithmetic::Element;
    using Value = typename Arithmetic::Value;
    static constexpr int lanes = Arithmetic::lanes;
    static constexpr int rowsIn = rowsOf<Mask>();
    static constexpr int steps = hasRing<Mask>() ? Mask::RowSteps::count : 1;  ///< values of a block in a row
    static constexpr int blockElements = lanes * steps;

    [[no_unique_address]] Mask mask;
    Element* rows[Mask::size];
    Element* kept;
    int64_t pitch;  ///< from one kept row to the next

    /// For rows that complete no row of the destination.
    [[gnu::always_inline]] void enter(const S* const (&s)[rowsIn], int64_t block) const
    {
        if constexpr (isCarriedOn<Mask>)
            advance(s, block * blockElements, typename Mask::RowSteps{});
        else
            along(s[0], block * blockElements, typename Mask::RowSteps{});
    }

    /// Calls put(row, vector) for what goes to each row of the destination.
    template <class Put>
    [[gnu::always_inline]] void through(const S* const (&s)[rowsIn], int64_t block, Put put) const
    {
        const int64_t at = block * blockElements;
        if constexpr (isCarriedOn<Mask>) {
            const std::array<Value, rowsIn> results = advance(s, at, typename Mask::RowSteps{});
            for (int i = 0; i < rowsIn; ++i)
                put(i, Arithmetic::template result<D>(results[static_cast<size_t>(i)]));
        } else {
            along(s[0], at, typename Mask::RowSteps{});
            put(0, Arithmetic::template result<D>(
                       mask.across([&](int i, int j) { return Arithmetic::load(rows[j] + at + i * lanes); })));
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

    template <class RowStep>
    [[gnu::always_inline]] Value step(const S* s) const
    {
        if constexpr (!isWeighted<Mask>)
            return Arithmetic::template along<RowStep>(s);
        else
            return s ? Arithmetic::along(mask, s) : simd::broadcast<lanes>(mask.constant);
    }

    template <class... RowSteps>
    [[gnu::always_inline]] void along(const S* s, int64_t at, Steps<RowSteps...>) const
    {
        int i = 0;
        (Arithmetic::store(rows[Mask::size - 1] + at + i++ * lanes, step<RowSteps>(s)), ...);
    }

    template <class... RowSteps>
    [[gnu::always_inline]] auto advance(const S* const (&s)[rowsIn], int64_t at, Steps<RowSteps...>) const
    {
        if constexpr (rowsIn == 1)
            return mask.advance(Kept{*this, at}, step<RowSteps>(s[0])...);
        else
            return mask.advance(Kept{*this, at}, step<RowSteps>(s[0])..., step<RowSteps>(s[1])...);
    }
};

/// The blocks [first, last) of a row.
struct MaskRun
{
    int64_t first, last;
    bool isLaidOut;  ///< whether they are read where the row is laid out, not in the row itself
    int64_t from;    ///< the first of their pixels, there
    int64_t to;      ///< the same within the band
};

/// The runs of all rows of a band, in the order in which they are worked on.
struct MaskRuns
{
    static constexpr int most = 4;
    MaskRun run[most];
    int count = 0;

    void add(const MaskRun& next)
    {
        run[count++] = next;
    }
};

/// Where a row is read.
template <class S>
struct MaskSource
{
    const S* inRow;    ///< the band's first pixel
    const S* laidOut;  ///< the first pixel that is laid out; null for constant rows of weighted masks
    int64_t step;      ///< from block to block: `lanes`, or 0 where all are alike, which are laid out
    const S* ahead;    ///< the row that will be wanted next

    const S* first(const MaskRun& run) const
    {
        return step == 0 ? laidOut : (run.isLaidOut ? laidOut : inRow) + run.from;
    }
};

/// Where a row is written, and the row that will be wanted in the caches next.
template <class D>
struct MaskDestination
{
    D* first;
    const D* ahead;
};

/// One for each of the rows that come in at a time.
template <class Place, int rows>
struct MaskRows
{
    Place row[rows];
};

// Arguments come by reference: copies that are passed in memory would be made of wider loads than what they consist of
// was stored by. Copied here, they are in registers, whatever the stores of pixels may alias.

template <class Block, class S, int rows>
[[gnu::flatten, gnu::noinline]] void maskIn(const Block& block, const MaskRuns& runs,
                                            const MaskRows<MaskSource<S>, rows>& src)
{
    const Block steps = block;
    for (int r = 0; r < runs.count; ++r) {
        const S* s[rows];
        int64_t step[rows];
        for (int i = 0; i < rows; ++i) {
            s[i] = src.row[i].first(runs.run[r]);
            step[i] = src.row[i].step;
        }
        for (int64_t at = runs.run[r].first; at < runs.run[r].last; ++at) {
            steps.enter(s, at);
            for (int i = 0; i < rows; ++i)
                s[i] += step[i];
        }
    }
}

/// The column step of each block follows its row steps, so that the loads of the one overlap with the arithmetic of the
/// other.
template <class Block, class S, class D, int rows>
[[gnu::flatten, gnu::noinline]] void maskThrough(const Block& block, const MaskRuns& runs,
                                                 const MaskRows<MaskSource<S>, rows>& src,
                                                 const MaskRows<MaskDestination<D>, rows>& dst)
{
    constexpr int64_t lineBytes = 64;
    constexpr int64_t blocksOfLine = lineBytes / (Block::lanes * static_cast<int64_t>(sizeof(S)));
    const Block steps = block;
    const int count = runs.count;
    for (int r = 0; r < count; ++r) {
        const MaskRun& run = runs.run[r];
        const S* s[rows];
        const S* srcAhead[rows];
        int64_t step[rows];
        D* d[rows];
        const D* dstAhead[rows];
        for (int i = 0; i < rows; ++i) {
            s[i] = src.row[i].first(run);
            step[i] = src.row[i].step;
            srcAhead[i] = src.row[i].ahead + run.to;
            d[i] = dst.row[i].first + run.to;
            dstAhead[i] = dst.row[i].ahead + run.to;
        }
        int64_t at = run.first;
        const int64_t last = run.last;
        const auto one = [&] {
            steps.through(s, at, [&](int i, auto vector) { simd::store(d[i], vector); });
            for (int i = 0; i < rows; ++i) {
                s[i] += step[i];
                d[i] += Block::lanes;
            }
            ++at;
        };
        while (at + blocksOfLine <= last) {
            for (int i = 0; i < rows; ++i) {
                simd::prefetch<blocksOfLine * Block::lanes>(srcAhead[i]);
                simd::prefetch<blocksOfLine * Block::lanes>(dstAhead[i]);
                srcAhead[i] += blocksOfLine * Block::lanes;
                dstAhead[i] += blocksOfLine * Block::lanes;
            }
            for (int i = 0; i < blocksOfLine; ++i)
                one();
        }
        while (at < last)
            one();
    }
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
    static_assert(shortRow >= 4 * lanes);

    static constexpr int64_t slots = hasRing<Mask>() ? Mask::size : 0;
    static constexpr int64_t ringRows = slots + keptValues<Mask>();

    static constexpr int rowsIn = Block::rowsIn;
    static constexpr int64_t beyond = Block::Arithmetic::beyond;

    /// What is laid out of a row: the whole of it, or the first block, and up to two blocks from here on, the last
    /// ones.
    static constexpr int64_t laidRight = lanes + 2 * reach + beyond;
    static constexpr int64_t edgeElements =
        roundedUp((shortRow + 2 * reach + beyond) * static_cast<int64_t>(sizeof(S)), 64) /
        static_cast<int64_t>(sizeof(S));
    static_assert(laidRight + 2 * lanes + 2 * reach + beyond <= edgeElements);

  public:
    /// Bytes of space for each block of the band.
    static constexpr int64_t blockBytes =
        lanes * static_cast<int64_t>(ringRows * Block::steps * sizeof(Element) + rowsIn * sizeof(D));

    /// Bytes of space beside the blocks.
    static constexpr int64_t edgeBytes = rowsIn * edgeElements * static_cast<int64_t>(sizeof(S));

    MaskBand(const Mask& mask, const MaskImages<S, D>& images, int64_t begin, int64_t end, Lum8u* space)
        : mask_(mask),
          images_(images),
          begin_(begin),
          end_(end),
          blocks_((end - begin + lanes - 1) / lanes),
          edges_(reinterpret_cast<S*>(space)),
          ring_{reinterpret_cast<Element*>(space + edgeBytes), blocks_ * Block::blockElements, Mask::size},
          lines_(reinterpret_cast<D*>(ring_.slot(ringRows)))
    {
        layRuns();
        if constexpr (isCarriedOn<Mask>)
            for (Element* p = ring_.rows; p < ring_.slot(ringRows); p += lanes)
                simd::store(p, simd::broadcast<lanes>(Element{0}));
    }

    void run()
    {
        RingStep steps[rowsIn];
        int count = 0;
        walkRows(Mask::size, images_.roiSize.height, reach, images_.border, [&](const RingStep& step) {
            steps[count++] = step;
            if (count == rowsIn) {
                advance(steps);
                count = 0;
            }
        });
        if (count > 0) {
            // one row is left, which comes twice
            steps[rowsIn - 1] = steps[0];
            steps[rowsIn - 1].output = -1;
            advance(steps);
        }
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

    D* line(int i) const
    {
        return lines_ + i * blocks_ * lanes;
    }

    ExtendedRow<S, 1> extended(const S* row) const
    {
        return {row, images_.roiSize.width, images_.border, &images_.borderValue};
    }

    /// What can be read in place is worked on first: loads of what has just been laid out span several stores, and
    /// would wait until these have left the core.
    void layRuns()
    {
        const int64_t n = end_ - begin_;
        if (isShort()) {
            const int64_t full = n < lanes ? 1 : n / lanes;
            runs_.add({0, full, true, 0, 0});
            if (full < blocks_)
                runs_.add({full, blocks_, true, offset(full), offset(full)});
            return;
        }
        const ExtendedRow<S, 1> any = extended(nullptr);
        const int64_t readable = any.readableTo(images_.roiSize.width + reach) - beyond;
        const int64_t first = any.readableFrom(begin_ - reach) == begin_ - reach ? 0 : 1;
        const int64_t last = (std::min(readable, end_ + reach) - reach - begin_) / lanes;
        runs_.add({first, last, false, first * lanes, first * lanes});
        if (first > 0)
            runs_.add({0, first, true, 0, 0});
        // no more than two are left, as what is read beyond the end is less than a block
        for (const int64_t i : {last, last + 1})
            if (i < blocks_)
                runs_.add({i, i + 1, true, laidRight + offset(i) - offset(last), offset(i)});
    }

    MaskSource<S> entering(const SourceRow& source, int i) const
    {
        const int64_t next = std::clamp<int64_t>(source.index + rowsIn, 0, images_.roiSize.height - 1);
        S* const edge = edges_ + i * edgeElements;
        const S* const ahead = isShort() ? edge : images_.src.row(next) + begin_;
        if (source.isConstant) {
            if (isWeighted<Mask>)
                return {nullptr, nullptr, 0, ahead};
            for (int64_t x = 0; x < lanes + 2 * reach; ++x)
                edge[x] = images_.borderValue;
            return {nullptr, edge + reach, 0, ahead};
        }
        const S* const row = images_.src.row(source.index);
        if (isShort()) {
            const int64_t n = end_ - begin_;
            extended(row).read(begin_ - reach, end_ + reach, edge);
            for (int64_t x = n + 2 * reach; x < lanes + 2 * reach; ++x)
                edge[x] = S{};
        } else {
            const MaskRun& inPlace = runs_.run[0];
            if (inPlace.first > 0)
                extended(row).read(begin_ - reach, begin_ + lanes + reach, edge);
            if (inPlace.last < blocks_)
                extended(row).read(begin_ + offset(inPlace.last) - reach, end_ + reach, edge + laidRight);
        }
        return {row + begin_, edge + reach, lanes, ahead};
    }

    void advance(const RingStep (&steps)[rowsIn])
    {
        Block block{mask_, {}, ring_.slot(slots), ring_.pitch};
        for (int64_t j = 0; j < Mask::size; ++j)
            block.rows[j] = ring_.rowBehind(steps[0].firstSlot, j);
        const bool isAside = images_.isLarge || end_ - begin_ < lanes;
        MaskRows<MaskSource<S>, rowsIn> src;
        MaskRows<MaskDestination<D>, rowsIn> dst;
        for (int i = 0; i < rowsIn; ++i) {
            src.row[i] = entering(steps[i].row, i);
            const int64_t y = steps[i].output;
            const int64_t next = y + rowsIn < images_.roiSize.height ? y + rowsIn : y;
            dst.row[i].first = isAside || y < 0 ? line(i) : images_.dst.row(y) + begin_;
            dst.row[i].ahead = isAside || isShort() || y < 0 ? line(i) : images_.dst.row(next) + begin_;
        }
        if (steps[0].output < 0)
            maskIn(block, runs_, src);
        else
            maskThrough(block, runs_, src, dst);
        for (int i = 0; isAside && i < rowsIn; ++i)
            if (steps[i].output >= 0)
                storeRow<lanes>(images_.dst.row(steps[i].output) + begin_, end_ - begin_, images_.isLarge,
                                [from = line(i)](int64_t x, auto n) { return simd::load<n>(from + x); });
    }

    [[no_unique_address]] Mask mask_;
    const MaskImages<S, D>& images_;
    int64_t begin_, end_;
    int64_t blocks_;
    S* edges_;  ///< for each row that comes in, what is laid out of it
    RingOf<Element> ring_;
    D* lines_;  ///< rows of results that are not stored at once
    MaskRuns runs_;
};

/// `space` has room for a block at least.
template <class Mask, class S, class D>
void filterByMask(const MaskImages<S, D>& images, LineSpace<Lum8u>& space, const Mask& mask = {})
{
    using BandMask =
        std::conditional_t<Mask::size == 3 && !isCarriedOn<Mask> && !isWeighted<Mask>, InPairs<Mask>, Mask>;
    using Band = MaskBand<BandMask, S, D>;
    constexpr int64_t lanes = ArithmeticOf<Mask, S>::lanes;
    const int64_t bytes = space.size() < bandBytes ? space.size() : bandBytes;
    const int64_t widest = (bytes - Band::edgeBytes) / Band::blockBytes * lanes;
    const int64_t width = images.roiSize.width;
    const int64_t columns = evenBands(width, widest, lanes);
    for (int64_t begin = 0; begin < width; begin += columns) {
        // a band has a block at least, so the last one may begin within the one before it
        const int64_t end = begin + columns < width ? begin + columns : width;
        Band(BandMask{mask}, images, end - begin < lanes && end > lanes ? end - lanes : begin, end, space.data()).run();
    }
    if (images.isLarge)
        simd::fence();
}

}  // namespace lumcv
