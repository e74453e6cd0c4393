// Speckles: regions of neighbouring pixels that differ little, overwritten where they are small.
//
// Whether two neighbours are joined does not depend on which of them is asked, nor on when: pixels change only after
// all of their region has been found. So the regions are the connected components of a graph. The first walk joins the
// runs of its rows, the second one overwrites.
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/segment.h"
#include "segment/run_forest.hpp"

namespace lumcv {
namespace {

using simd::Mask;
using simd::Vec;

/// What decides about two neighbours.
template <class T>
struct Rule
{
    T speckleVal, maxPixDiff;

    /// Bits of the lanes that may belong to a region.
    template <int N>
    [[gnu::always_inline]] uint64_t valid(Vec<T, N> v) const
    {
        constexpr uint64_t all = ~uint64_t{0} >> (wordBits - N);
        return ~simd::laneBits(simd::equal(v, simd::broadcast<N>(speckleVal))) & all;
    }

    /// Bits of the lanes that differ little.
    template <int N>
    [[gnu::always_inline]] uint64_t near(Vec<T, N> a, Vec<T, N> b) const
    {
        if constexpr (std::is_same_v<T, Lum32f>)
            return simd::laneBits(simd::atMost(simd::absoluteDifference(a, b), simd::broadcast<N>(maxPixDiff)));
        else if constexpr (std::is_same_v<T, Lum16s>)
            return withinLimit(simd::absoluteDifference(simd::decentred(a), simd::decentred(b)));
        else
            return withinLimit(simd::absoluteDifference(a, b));
    }

  private:
    template <class U, int N>
    [[gnu::always_inline]] uint64_t withinLimit(Vec<U, N> difference) const
    {
        const auto limit = simd::broadcast<N>(static_cast<U>(maxPixDiff));
        return simd::laneBits(simd::equal(simd::subtractSaturated(difference, limit), simd::broadcast<N>(U{0})));
    }
};

/// A row in the words of which the runs are made. Rows may stand at any byte address.
template <class T>
struct RowBits
{
    const T* pixels;
    int64_t width;
    Rule<T> rule;

    static constexpr int lanes = simd::registerLanes<T> < 16 ? 16 : simd::registerLanes<T>;

    [[gnu::always_inline]] uint64_t valid(int64_t x) const
    {
        const auto row = *this;
        return simd::bitWord<lanes>(
            x, width, [row](int64_t at, auto count) { return row.rule.valid(simd::load<count>(row.pixels + at)); });
    }

    /// Pixels that differ little from the one to their right, whatever their values.
    [[gnu::always_inline]] uint64_t nearRight(int64_t x) const
    {
        const auto row = *this;
        return simd::bitWord<lanes>(x, width - 1, [row](int64_t at, auto count) {
            return row.rule.near(simd::load<count>(row.pixels + at), simd::load<count>(row.pixels + at + 1));
        });
    }

    /// Pixels that differ little from the one above.
    [[gnu::always_inline]] uint64_t nearAbove(const T* above, int64_t x) const
    {
        const auto row = *this;
        return simd::bitWord<lanes>(x, width, [row, above](int64_t at, auto count) {
            return row.rule.near(simd::load<count>(row.pixels + at), simd::load<count>(above + at));
        });
    }
};

/// One word of a row's runs.
struct RunWord
{
    uint64_t starts;  ///< first pixels
    uint64_t joined;  ///< pixels that belong to the run of the one to their left

    uint64_t valid() const
    {
        return starts | joined;
    }
};

/// Goes along the words of a row.
template <class T>
class RunWords
{
  public:
    [[gnu::always_inline]] explicit RunWords(RowBits<T> row) : row_(row) {}

    [[gnu::always_inline]] RunWord next(int64_t x)
    {
        const uint64_t valid = row_.valid(x);
        const uint64_t near = valid & row_.nearRight(x);
        const uint64_t joined = valid & (near << 1 | nearBefore_ >> (wordBits - 1));
        nearBefore_ = near;
        return {valid & ~joined, joined};
    }

  private:
    RowBits<T> row_;
    uint64_t nearBefore_ = 0;
};

/// The pixels of a run in a word, from its first one on.
[[gnu::always_inline]] inline int piece(RunWord word, int start)
{
    return 1 + __builtin_ctzll(~(word.joined >> start >> 1));
}

/// The pixels that a word adds to the run before it.
[[gnu::always_inline]] inline int firstPiece(RunWord word)
{
    return ~word.joined == 0 ? wordBits : __builtin_ctzll(~word.joined);
}

/// The runs' forest and for each root the number of pixels of its tree.
struct Runs
{
    Lum32u* parents;
    Lum32u* pixels;
};

/// Joins the runs of which any pixels are joined. `above` holds the words of a row.
template <class T>
[[gnu::flatten]] void joinRuns(Plane<const T> image, LumiSizeL size, Rule<T> rule, RunWord* above, Runs runs)
{
    const int64_t words = wordsOf(size.width);
    __builtin_memset(above, 0, static_cast<size_t>(words) * sizeof *above);
    RunForest forest(runs.parents);
    for (int64_t y = 0; y < size.height; ++y) {
        const RowBits<T> row{image.row(y), size.width, rule};
        RunWords<T> runWords(row);
        uint64_t belowBefore = 0;  // pixels joined to the one above, in the word before
        forest.beginRow();
        for (int64_t i = 0; i < words; ++i) {
            const RunWord a = above[i], b = runWords.next(i * wordBits);
            above[i] = b;
            if (b.joined & 1)
                runs.pixels[forest.lastRoot()] += static_cast<Lum32u>(firstPiece(b));
            Lum32u run = forest.runs();
            for (uint64_t starts = b.starts; starts != 0; starts &= starts - 1)
                runs.pixels[run++] = static_cast<Lum32u>(piece(b, __builtin_ctzll(starts)));

            const uint64_t below = y == 0 ? 0 : row.nearAbove(image.row(y - 1), i * wordBits) & a.valid() & b.valid();
            // the two runs that have met one pixel before need not meet again
            const uint64_t again = (below << 1 | belowBefore >> (wordBits - 1)) & a.joined & b.joined;
            belowBefore = below;
            forest.addWord(b.starts, a.starts, below & ~again, [=](Lum32u first, Lum32u second) {
                // no branch: every other meeting is one of two trees
                runs.pixels[first] += runs.pixels[second] & -static_cast<Lum32u>(first != second);
            });
        }
    }
}

/// Overwrites the pixels of which the bits are set.
template <class T>
[[gnu::always_inline]] inline void paintPixels(T* pixels, int64_t places, uint64_t bits, T value)
{
    constexpr int lanes = simd::groupLanes<T>;
    int i = 0;
    for (; i + lanes <= places; i += lanes) {
        const auto mask = simd::laneMask<T, lanes>(static_cast<Lum32u>(bits >> i));
        simd::store(pixels + i, simd::select(mask, simd::broadcast<lanes>(value), simd::load<lanes>(pixels + i)));
    }
    for (; i < places; ++i)
        if (bits >> i & 1)
            __builtin_memcpy(pixels + i, &value, sizeof value);
}

/// `words` holds those of a row: all of them are there before the first pixel changes.
template <class T>
[[gnu::flatten]] void paintSpeckles(Plane<T> image, LumiSizeL size, Rule<T> rule, Lum32u maxSpeckleSize, RunWord* words,
                                    Runs runs)
{
    const int64_t count = wordsOf(size.width);
    Lum32u run = 0;
    uint64_t isSpeckle = 0;  // whether the run that started last is one
    for (int64_t y = 0; y < size.height; ++y) {
        T* const pixels = image.row(y);
        RunWords<T> runWords(RowBits<T>{pixels, size.width, rule});
        for (int64_t i = 0; i < count; ++i)
            words[i] = runWords.next(i * wordBits);
        for (int64_t i = 0; i < count; ++i) {
            const RunWord word = words[i];
            const uint64_t before = isSpeckle;
            uint64_t first = 0;  // the first pixels of speckles
            for (uint64_t starts = word.starts; starts != 0; starts &= starts - 1) {
                // parents come before their children, so that a parent's parent is a root by now
                const Lum32u root = runs.parents[runs.parents[run]];
                runs.parents[run++] = root;
                isSpeckle = runs.pixels[root] <= maxSpeckleSize;
                first |= isSpeckle << __builtin_ctzll(starts);
            }
            // a carry runs from each of them, and from the word before, through the pixels that are joined
            const uint64_t carried = word.joined & ~((word.joined | first) + first + before);
            if (const uint64_t paint = first | carried; paint != 0) {
                const int64_t x = i * wordBits;
                paintPixels(pixels + x, size.width - x < wordBits ? size.width - x : wordBits, paint, rule.speckleVal);
            }
        }
    }
}

/// A block of 13 * width * height + 64 bytes has room for it, at any address: up to 7 bytes before the words, at most
/// width / 4 + 16 of words, and 8 for each of at most width * height runs and 12 behind their forest.
template <class T>
LumStatus markSpeckles(Plane<T> image, LumiSize size, T speckleVal, Lum32s maxSpeckleSize, T maxPixDiff, LumiNorm norm,
                       Lum8u* pBuffer)
{
    const auto checks = Checks{}.notNull(image.pixels, pBuffer).size(size).require(norm == lumNormInf, lumErrNorm);
    if (checks.failed())
        return checks.status();
    if (maxSpeckleSize < 1)
        return lumOk;

    const LumiSizeL area = widened(size);
    const Rule<T> rule{speckleVal, maxPixDiff};
    Room room(pBuffer);
    auto* const words = room.take<RunWord>(wordsOf(area.width));
    auto* const pixels = room.take<Lum32u>(area.width * area.height);
    const Runs runs{room.take<Lum32u>(0), pixels};
    joinRuns(source<T>(image.pixels, image.step), area, rule, words, runs);
    paintSpeckles(image, area, rule, static_cast<Lum32u>(maxSpeckleSize), words, runs);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMarkSpecklesGetBufferSize(LumiSize roiSize, LumDataType dataType, Lum32s channels, Lum32s* pBufferSize)
{
    const auto checks = Checks{}
                            .notNull(pBufferSize)
                            .size(roiSize)
                            .require(dataType == lumType8u || dataType == lumType16u || dataType == lumType16s ||
                                         dataType == lumType32f,
                                     lumErrDataType)
                            .require(channels == 1, lumErrChannels);
    if (checks.failed())
        return checks.status();
    const Lum32u pixels = static_cast<Lum32u>(roiSize.width) * static_cast<Lum32u>(roiSize.height);
    *pBufferSize = static_cast<Lum32s>(13 * pixels + 64);
    return lumOk;
}

LumStatus lumiMarkSpeckles_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum8u speckleVal,
                                   Lum32s maxSpeckleSize, Lum8u maxPixDiff, LumiNorm norm, Lum8u* pBuffer)
{
    return markSpeckles(destination(pSrcDst, srcDstStep), roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm,
                        pBuffer);
}

LumStatus lumiMarkSpeckles_16u_C1IR(Lum16u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum16u speckleVal,
                                    Lum32s maxSpeckleSize, Lum16u maxPixDiff, LumiNorm norm, Lum8u* pBuffer)
{
    return markSpeckles(destination(pSrcDst, srcDstStep), roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm,
                        pBuffer);
}

LumStatus lumiMarkSpeckles_16s_C1IR(Lum16s* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum16s speckleVal,
                                    Lum32s maxSpeckleSize, Lum16s maxPixDiff, LumiNorm norm, Lum8u* pBuffer)
{
    return markSpeckles(destination(pSrcDst, srcDstStep), roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm,
                        pBuffer);
}

LumStatus lumiMarkSpeckles_32f_C1IR(Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f speckleVal,
                                    Lum32s maxSpeckleSize, Lum32f maxPixDiff, LumiNorm norm, Lum8u* pBuffer)
{
    return markSpeckles(destination(pSrcDst, srcDstStep), roiSize, speckleVal, maxSpeckleSize, maxPixDiff, norm,
                        pBuffer);
}
