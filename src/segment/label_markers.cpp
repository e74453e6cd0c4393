// Labels: connected components of non-zero pixels, numbered in raster order of their first pixels.
//
// The first walk over the image joins the runs of non-zero pixels that touch, the second one paints them. Between them
// each run's place in the forest becomes its label.
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/segment.h"
#include "segment/run_forest.hpp"

namespace lumcv {
namespace {

/// The non-zero pixels from x on.
template <class T>
[[gnu::always_inline]] inline uint64_t markedPixels(const T* row, int64_t x, int64_t width)
{
    constexpr int lanes = simd::registerLanes<T> < 16 ? 16 : simd::registerLanes<T>;
    return simd::bitWord<lanes>(
        x, width, [row](int64_t at, auto count) { return simd::nonZeroBits(simd::load<count>(row + at)); });
}

/// A word and the one whose bits stand one place before.
struct Shifted
{
    uint64_t before = 0;  ///< the word before

    [[gnu::always_inline]] uint64_t operator()(uint64_t word)
    {
        const uint64_t shifted = word << 1 | before >> (wordBits - 1);
        before = word;
        return shifted;
    }
};

/// Joins the runs that touch. `above` holds the bits of a row.
template <bool diagonals, class T>
[[gnu::flatten]] Lum32u joinRuns(Plane<const T> image, LumiSizeL size, uint64_t* above, Lum32u* parents)
{
    const int64_t words = wordsOf(size.width);
    __builtin_memset(above, 0, static_cast<size_t>(words) * sizeof *above);
    RunForest forest(parents);
    for (int64_t y = 0; y < size.height; ++y) {
        const T* const row = image.row(y);
        Shifted shift, shiftAbove;
        forest.beginRow();
        for (int64_t i = 0; i < words; ++i) {
            const uint64_t a = above[i], b = markedPixels(row, i * wordBits, size.width);
            above[i] = b;
            const uint64_t beforeA = shiftAbove(a), beforeB = shift(b);
            // two runs that overlap are told once, where the overlap begins
            uint64_t touching = a & b & ~(beforeA & beforeB);
            if constexpr (diagonals)  // one ends where the other one begins
                touching |= (a ^ b) & (beforeA ^ beforeB) & (a ^ beforeA);
            forest.addWord(b & ~beforeB, a & ~beforeA, touching, [](Lum32u, Lum32u) {});
        }
    }
    return forest.runs();
}

/// The labels of the runs take the place of their parents, which come before their children. Returns the number of
/// components.
template <class Label>
Lum32s numberComponents(Lum32u* parents, Lum32u runs, Lum32s minLabel, Lum32s maxLabel)
{
    auto* const labels = reinterpret_cast<Lum8u*>(parents);
    const auto placeOf = [=](Lum32u run) { return labels + int64_t{run} * static_cast<int64_t>(sizeof(Label)); };
    Lum32s count = 0;
    Lum32s next = minLabel;
    for (Lum32u run = 0; run < runs; ++run) {
        const Lum32u parent = parents[run];
        Label label;
        if (parent == run) {
            label = static_cast<Label>(next);
            next = next >= maxLabel ? minLabel : next + 1;
            ++count;
        } else
            __builtin_memcpy(&label, placeOf(parent), sizeof label);
        __builtin_memcpy(placeOf(run), &label, sizeof label);
    }
    return count;
}

/// Paints the places of a word; `last` is the label of the run that started last before it.
template <class Label>
[[gnu::always_inline]] inline void paintWord(Label* to, int places, uint64_t starts, uint64_t inside, const Label* last)
{
    constexpr int lanes = simd::spreadLanes<Label>;
    constexpr auto all = static_cast<Lum32u>((1 << lanes) - 1);
    int i = 0;
    for (; i + lanes <= places; i += lanes) {
        const auto startsHere = static_cast<Lum32u>(starts >> i) & all;
        simd::store(to + i, simd::spreadOverRuns(last, startsHere, static_cast<Lum32u>(inside >> i) & all));
        last += __builtin_popcount(startsHere);
    }
    for (; i < places; ++i) {
        last += starts >> i & 1;
        to[i] = inside >> i & 1 ? *last : Label{0};
    }
}

/// `labels` begins with that of the first run of the image.
template <class T, class Label>
[[gnu::flatten]] void paintRuns(Plane<const T> src, Plane<Label> dst, LumiSizeL size, const Label* labels)
{
    constexpr int lanes = simd::registerLanes<Label>;
    const Label* last = labels - 1;  // the label of the run that started last
    for (int64_t y = 0; y < size.height; ++y) {
        const T* const from = src.row(y);
        Label* const to = dst.row(y);
        Shifted shift;
        for (int64_t x = 0; x < size.width; x += wordBits) {
            const uint64_t inside = markedPixels(from, x, size.width);
            const uint64_t starts = inside & ~shift(inside);
            if (size.width - x < wordBits) {
                paintWord(to + x, static_cast<int>(size.width - x), starts, inside, last);
            } else if (starts == 0 && (inside == 0 || ~inside == 0)) {
                const auto label = simd::broadcast<lanes>(inside == 0 ? Label{0} : *last);
                for (int i = 0; i < wordBits; i += lanes)
                    simd::store(to + x + i, label);
            } else
                paintWord(to + x, wordBits, starts, inside, last);
            last += __builtin_popcountll(starts);
        }
    }
}

/// A block of 6 * width * height + 32 bytes has room for it, at any address: up to 7 bytes before the first word, at
/// most width / 8 + 8 of words, 16 of vectors that read labels before the first and behind the last one, and 4 for each
/// of at most (width + 1) / 2 runs in a row. For a single pixel these are 35 bytes of 38, for one column 4 * height +
/// 31; for each further column a row needs 2 bytes more and gets 6.
template <class T, class Label>
Lum32s label(Plane<const T> src, Plane<Label> dst, LumiSizeL size, Lum32s minLabel, Lum32s maxLabel, bool diagonals,
             Lum8u* pBuffer)
{
    Room room(pBuffer);
    auto* const above = room.take<uint64_t>(wordsOf(size.width));
    auto* const parents = room.take<Lum32u>(1) + 1;
    const Lum32u runs =
        diagonals ? joinRuns<true>(src, size, above, parents) : joinRuns<false>(src, size, above, parents);
    const Lum32s count = numberComponents<Label>(parents, runs, minLabel, maxLabel);
    paintRuns(src, dst, size, reinterpret_cast<const Label*>(parents));
    return count;
}

/// What no label may be: the greatest value of a destination.
template <class Label>
constexpr Lum32s labelLimit = std::is_same_v<Label, Lum32s> ? std::numeric_limits<Lum32s>::max()
                                                            : static_cast<Lum32s>(static_cast<Label>(-1));

template <class T, class Label>
LumStatus labelMarkers(Plane<const T> src, Plane<Label> dst, LumiSize size, Lum32s minLabel, Lum32s maxLabel,
                       LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer)
{
    auto checks = Checks{}.notNull(src.pixels, dst.pixels, pNumber, pBuffer).size(size).step(src, size.width);
    if constexpr (std::is_same_v<T, Label>)
        checks.alignment(src);
    else
        checks.rowFits(dst, size.width, 1).alignment(dst);
    checks.require(minLabel >= 1 && maxLabel < labelLimit<Label> && minLabel <= maxLabel, lumErrArgument)
        .require(norm == lumDistanceNormInf || norm == lumDistanceNormL1, lumErrArgument);
    if (checks.failed())
        return checks.status();
    *pNumber = label(src, dst, widened(size), minLabel, maxLabel, norm == lumDistanceNormInf, pBuffer);
    return lumOk;
}

LumStatus bufferSize(LumiSize size, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(size);
    if (checks.failed())
        return checks.status();
    return storeSize(Bytes{6} * size.width * size.height + 32, pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiLabelMarkersGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiLabelMarkersGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiLabelMarkersGetBufferSize_8u32s_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiLabelMarkers_8u_C1IR(Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum32s minLabel,
                                   Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer)
{
    return labelMarkers(source(pMarker, markerStep), destination(pMarker, markerStep), roiSize, minLabel, maxLabel,
                        norm, pNumber, pBuffer);
}

LumStatus lumiLabelMarkers_16u_C1IR(Lum16u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum32s minLabel,
                                    Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer)
{
    return labelMarkers(source(pMarker, markerStep), destination(pMarker, markerStep), roiSize, minLabel, maxLabel,
                        norm, pNumber, pBuffer);
}

LumStatus lumiLabelMarkers_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep, LumiSize roiSize,
                                     Lum32s minLabel, Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber,
                                     Lum8u* pBuffer)
{
    return labelMarkers(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, minLabel, maxLabel, norm, pNumber,
                        pBuffer);
}
