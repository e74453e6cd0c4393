// Applying a stage of Haar classifiers to all windows of a ROI that are candidates.
//
// A row is taken in blocks of 16 windows: one without candidates is passed over, one with several is computed whole,
// and of one with a few the fours that have some. How a window is computed does not depend on that; it depends only on
// whether the documentation counts it to a group or to the tail of the row.
#include <cstring>

#include "frame/checks.hpp"
#include "integral/haar_record.hpp"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

// Orders in which the corners are added.

struct OneByOne
{
    template <class V>
    [[gnu::always_inline]] static V sum(V br, V bl, V tr, V tl)
    {
        return br - bl - tr + tl;
    }
};

struct MiddleFirst
{
    template <class V>
    [[gnu::always_inline]] static V sum(V br, V bl, V tr, V tl)
    {
        return br - (bl + tr) + tl;
    }
};

template <int N>
[[gnu::always_inline]] simd::Vec<Lum32f, N> inline single(simd::Vec<Lum32f, N> v)
{
    return v;
}

template <int N>
[[gnu::always_inline]] simd::Vec<Lum32f, N> inline single(simd::Vec<Lum32s, N> v)
{
    return simd::toFloat(v);
}

// The tables of one row of windows. corners(classifier, i, x) are the corners of rectangle i for the window x.

template <class P>
struct Corners
{
    const P *br, *bl, *tr, *tl;
};

/// One table, with offsets computed for the call.
template <class T, class P>
struct PlainTable
{
    const P* row;
    const HaarOffsets* offsets;

    [[gnu::always_inline]] Corners<P> corners(const HaarClassifier<T>&, int64_t i, int64_t x) const
    {
        const HaarOffsets& o = offsets[i];
        return {row + x + o.br, row + x + o.bl, row + x + o.tr, row + x + o.tl};
    }
};

/// Two tables; a classifier says which one it reads.
template <class T, class P>
struct MixedTables
{
    const P *upright, *tilted;
    int64_t uprightStride, tiltedStride;  ///< in entries
    const HaarRectangle<T>* rectangles;

    [[gnu::always_inline]] Corners<P> corners(const HaarClassifier<T>& classifier, int64_t i, int64_t x) const
    {
        const P* const first = (classifier.isTilted() ? tilted : upright) + x;
        const int64_t stride = classifier.isTilted() ? tiltedStride : uprightStride;
        const auto at = [=](HaarCorner corner) { return first + corner.y * stride + corner.x; };
        const HaarRectangle<T>& r = rectangles[i];
        return {at(r.br), at(r.bl), at(r.tr), at(r.tl)};
    }
};

/// The sums of the votes for N windows from x on.
template <int N, class Order, class Tables>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> votes(const HaarStage<Lum32f>& stage, const Tables& tables,
                                                         const Lum32f* norms, int64_t x)
{
    const auto norm = simd::load<N>(norms + x);
    auto sum = simd::broadcast<N>(0.0f);
    int64_t i = 0;
    for (Lum32s c = 0; c < stage.classifierCount; ++c) {
        const HaarClassifier<Lum32f>& classifier = stage.classifiers[c];
        const auto weighted = [&] {
            const auto corners = tables.corners(classifier, i, x);
            const auto rectangle = Order::sum(simd::load<N>(corners.br), simd::load<N>(corners.bl),
                                              simd::load<N>(corners.tr), simd::load<N>(corners.tl));
            return simd::broadcast<N>(stage.rectangles[i++].weight) * single(rectangle);
        };
        auto feature = weighted();
        for (Lum32s k = 1; k < classifier.rectangles; ++k)
            feature = feature + weighted();
        sum = sum + simd::select(simd::less(feature, simd::broadcast<N>(classifier.threshold) * norm),
                                 simd::broadcast<N>(classifier.ifBelow), simd::broadcast<N>(classifier.otherwise));
    }
    return sum;
}

// What becomes of a candidate, by the sum of its votes. Both give the new mask bytes.

/// Of a group: kept, as 255, only above the threshold.
struct GroupRule
{
    [[gnu::always_inline]] static simd::Vec<Lum8u, 16> apply(simd::Vec<Lum8u, 16> mask, simd::Vec<Lum32f, 16> sums,
                                                             Lum32f threshold)
    {
        const auto above = simd::roundTo<Lum8u>(simd::select(simd::less(simd::broadcast<16>(threshold), sums),
                                                             simd::broadcast<16>(255.0f), simd::broadcast<16>(0.0f)));
        const auto none = simd::broadcast<16>(Lum8u{254});
        const auto candidates = simd::addSaturated(mask, none) - none;  // 1 or 0
        return simd::broadcast<16>(Lum8u{0}) - simd::min(above, candidates);
    }

    [[gnu::always_inline]] static uint64_t clearedBits(simd::Vec<Lum32f, 4> sums, Lum32f threshold)
    {
        return ~simd::laneBits(simd::less(simd::broadcast<4>(threshold), sums));
    }

    static Lum8u kept(Lum8u)
    {
        return 255;
    }
};

/// Elsewhere: cleared only below the threshold, and as it was otherwise.
struct TailRule
{
    [[gnu::always_inline]] static simd::Vec<Lum8u, 16> apply(simd::Vec<Lum8u, 16> mask, simd::Vec<Lum32f, 16> sums,
                                                             Lum32f threshold)
    {
        const auto below = simd::roundTo<Lum8u>(simd::select(simd::less(sums, simd::broadcast<16>(threshold)),
                                                             simd::broadcast<16>(255.0f), simd::broadcast<16>(0.0f)));
        return simd::subtractSaturated(mask, below);
    }

    [[gnu::always_inline]] static uint64_t clearedBits(simd::Vec<Lum32f, 4> sums, Lum32f threshold)
    {
        return simd::laneBits(simd::less(sums, simd::broadcast<4>(threshold)));
    }

    static Lum8u kept(Lum8u mask)
    {
        return mask;
    }
};

template <class Word>
Word wordAt(const Lum8u* bytes)
{
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

int candidatesIn16(const Lum8u* mask)
{
    int count = 0;
    for (int half = 0; half < 16; half += 8) {
        const auto word = wordAt<uint64_t>(mask + half);
        constexpr uint64_t low = 0x7f7f7f7f7f7f7f7f;
        count += __builtin_popcountll((((word & low) + low) | word) & ~low);
    }
    return count;
}

/// Four windows that have a candidate. Returns how many are kept.
template <class Rule, class Order, class Tables>
[[gnu::always_inline]] inline Lum32s applyToFour(const HaarStage<Lum32f>& stage, const Tables& tables,
                                                 const Lum32f* norms, Lum8u* mask, int64_t x, Lum32f threshold)
{
    const uint64_t cleared = Rule::clearedBits(votes<4, Order>(stage, tables, norms, x), threshold);
    Lum32s kept = 0;
    for (int k = 0; k < 4; ++k) {
        const bool isKept = mask[x + k] && !(cleared >> k & 1);
        mask[x + k] = isKept ? Rule::kept(mask[x + k]) : 0;
        kept += isKept;
    }
    return kept;
}

/// Windows from 0 to `end`, a multiple of four. Returns how many are kept.
template <class Rule, class Order, class Tables>
[[gnu::flatten]] Lum32s applyToGroups(const HaarStage<Lum32f>& stage, const Tables& tables, const Lum32f* norms,
                                      Lum8u* mask, int64_t end, Lum32f threshold)
{
    Lum32s kept = 0;
    int64_t x = 0;
    for (; x + 16 <= end; x += 16) {
        int fours = 0;
        for (int k = 0; k < 16; k += 4)
            fours += wordAt<Lum32u>(mask + x + k) != 0;
        if (fours >= 2) {
            const auto sums = votes<16, Order>(stage, tables, norms, x);
            simd::store(mask + x, Rule::apply(simd::load<16>(mask + x), sums, threshold));
            kept += candidatesIn16(mask + x);
        } else if (fours) {
            for (int k = 0; k < 16; k += 4)
                if (wordAt<Lum32u>(mask + x + k))
                    kept += applyToFour<Rule, Order>(stage, tables, norms, mask, x + k, threshold);
        }
    }
    for (; x < end; x += 4)
        if (wordAt<Lum32u>(mask + x))
            kept += applyToFour<Rule, Order>(stage, tables, norms, mask, x, threshold);
    return kept;
}

/// Windows from `begin` to `end`, one by one. Returns how many are kept.
template <class Order, class Tables>
[[gnu::flatten]] Lum32s applyToTail(const HaarStage<Lum32f>& stage, const Tables& tables, const Lum32f* norms,
                                    Lum8u* mask, int64_t begin, int64_t end, Lum32f threshold)
{
    Lum32s kept = 0;
    for (int64_t x = begin; x < end; ++x) {
        if (!mask[x])
            continue;
        if (threshold > votes<1, Order>(stage, tables, norms, x).raw)
            mask[x] = 0;
        else
            ++kept;
    }
    return kept;
}

/// The windows that make a group, by the caller's estimate of the candidates. What is left of a row is its tail.
int groupOf(int64_t windows, int64_t estimate)
{
    if (estimate >= windows >> 2)
        return 16;
    if (estimate >= windows >> 3)
        return 4;
    if (estimate >= windows >> 4)
        return 8;
    return 16;
}

/// The sum of a classifier's votes for one window, in integers: products and sums have 64 bits, votes 32.
template <class Tables>
[[gnu::always_inline]] inline Lum32s integerVotes(const HaarStage<Lum32s>& stage, const Tables& tables, Lum32s norm,
                                                  int64_t x, int places)
{
    Lum32u sum = 0;
    int64_t i = 0;
    for (Lum32s c = 0; c < stage.classifierCount; ++c) {
        const HaarClassifier<Lum32s>& classifier = stage.classifiers[c];
        uint64_t feature = 0;
        for (Lum32s k = 0; k < classifier.rectangles; ++k, ++i) {
            const auto corners = tables.corners(classifier, i, x);
            const auto word = [](const Lum32s* p) { return static_cast<Lum32u>(*p); };
            const auto difference = static_cast<Lum32s>(word(corners.br) - (word(corners.bl) + word(corners.tr)));
            feature += static_cast<uint64_t>(stage.rectangles[i].weight) *
                       static_cast<uint64_t>(int64_t{difference} + *corners.tl);
        }
        const bool isBelow = static_cast<int64_t>(feature << places) < int64_t{classifier.threshold} * norm;
        sum += static_cast<Lum32u>(isBelow ? classifier.ifBelow : classifier.otherwise);
    }
    return static_cast<Lum32s>(sum);
}

template <class Tables>
[[gnu::flatten]] Lum32s applyIntegers(const HaarStage<Lum32s>& stage, const Tables& tables, const Lum32s* norms,
                                      Lum8u* mask, int64_t width, Lum32s threshold, int places)
{
    Lum32s kept = 0;
    for (int64_t x = 0; x < width; ++x) {
        if (!mask[x])
            continue;
        if (integerVotes(stage, tables, norms[x], x, places) < threshold)
            mask[x] = 0;
        else
            ++kept;
    }
    return kept;
}

template <class T, class P>
HaarOffsets* offsetsFor(const LumiHaarStageRecord& record, Plane<const P> table)
{
    const HaarStage<T> stage(record);
    const int64_t stride = table.step / static_cast<int64_t>(sizeof(P));
    const auto offset = [=](HaarCorner corner) { return static_cast<Lum32s>(corner.y * stride + corner.x); };
    for (Lum32s i = 0; i < stage.rectangleCount; ++i) {
        const HaarRectangle<T>& r = stage.rectangles[i];
        record.pWorkspace[i] = {offset(r.br), offset(r.bl), offset(r.tr), offset(r.tl)};
    }
    return record.pWorkspace;
}

template <class T, class P>
MixedTables<T, P> mixedTables(const HaarStage<T>& stage, Plane<const P> src, Plane<const P> tilt, int64_t y)
{
    // a tilted table has a row and a column more ahead of the source
    return {src.row(y), tilt.row(y + 1) + 1, src.step / static_cast<int64_t>(sizeof(P)),
            tilt.step / static_cast<int64_t>(sizeof(P)), stage.rectangles};
}

/// The strides and their alignment; tables are one or two.
template <class N, class... P>
Checks& strides(Checks& checks, LumiSize roiSize, Plane<const N> norm, Plane<Lum8u> mask, Plane<const P>... tables)
{
    checks.size(roiSize);
    (checks.step(tables, roiSize.width), ...);
    checks.step(norm, roiSize.width).step(mask, roiSize.width);
    (checks.alignment(tables), ...);
    return checks.alignment(norm);
}

template <class P>
LumStatus applyPlain(Plane<const P> src, Plane<const Lum32f> norm, Plane<Lum8u> mask, LumiSize roiSize,
                     Lum32s* pPositive, Lum32f threshold, LumiHaarStageRecord* pState)
{
    auto checks = Checks{}.notNull(src.pixels, norm.pixels, mask.pixels, pPositive, pState);
    if (strides(checks, roiSize, norm, mask, src).failed())
        return checks.status();
    const LumiHaarStageRecord& record = *alignedIn<LumiHaarStageRecord>(pState);
    if (checks.notNull(record.pWorkspace).failed())
        return checks.status();

    constexpr bool isFloat = std::is_same_v<P, Lum32f>;
    using Rule = std::conditional_t<isFloat, GroupRule, TailRule>;
    const int64_t windows = int64_t{roiSize.width} * roiSize.height;
    const int group = isFloat ? groupOf(windows, *pPositive) : 4;
    const int64_t groupsEnd = roiSize.width - roiSize.width % group;
    const HaarStage<Lum32f> stage(record);
    const HaarOffsets* const offsets = offsetsFor<Lum32f>(record, src);
    Lum32s kept = 0;
    for (int64_t y = 0; y < roiSize.height; ++y) {
        const PlainTable<Lum32f, P> table{src.row(y), offsets};
        kept += applyToGroups<Rule, OneByOne>(stage, table, norm.row(y), mask.row(y), groupsEnd, threshold);
        kept += applyToTail<MiddleFirst>(stage, table, norm.row(y), mask.row(y), groupsEnd, roiSize.width, threshold);
    }
    *pPositive = kept;
    return lumOk;
}

template <class P>
LumStatus applyMixed(Plane<const P> src, Plane<const P> tilt, Plane<const Lum32f> norm, Plane<Lum8u> mask,
                     LumiSize roiSize, Lum32s* pPositive, Lum32f threshold, const LumiHaarStageRecord* pState)
{
    auto checks = Checks{}.notNull(src.pixels, tilt.pixels, norm.pixels, mask.pixels, pPositive, pState);
    if (strides(checks, roiSize, norm, mask, src, tilt).failed())
        return checks.status();
    const HaarStage<Lum32f> stage(*alignedIn<LumiHaarStageRecord>(pState));
    const int64_t groupsEnd = roiSize.width - roiSize.width % 4;
    Lum32s kept = 0;
    for (int64_t y = 0; y < roiSize.height; ++y) {
        const auto tables = mixedTables(stage, src, tilt, y);
        kept += applyToGroups<TailRule, OneByOne>(stage, tables, norm.row(y), mask.row(y), groupsEnd, threshold);
        kept += applyToTail<OneByOne>(stage, tables, norm.row(y), mask.row(y), groupsEnd, roiSize.width, threshold);
    }
    *pPositive = kept;
    return lumOk;
}

/// The places by which features are shifted; a count of 64 and more begins again at 0.
int shiftOf(Lum32s scaleFactor)
{
    return static_cast<int>(-static_cast<int64_t>(scaleFactor) % 64);
}

LumStatus applyPlainIntegers(Plane<const Lum32s> src, Plane<const Lum32s> norm, Plane<Lum8u> mask, LumiSize roiSize,
                             Lum32s* pPositive, Lum32s threshold, LumiHaarStageRecord* pState, Lum32s scaleFactor)
{
    auto checks = Checks{}.notNull(src.pixels, norm.pixels, mask.pixels, pPositive, pState);
    if (strides(checks, roiSize, norm, mask, src).require(scaleFactor <= 0, lumErrArgument).failed())
        return checks.status();
    const LumiHaarStageRecord& record = *alignedIn<LumiHaarStageRecord>(pState);
    if (checks.notNull(record.pWorkspace).failed())
        return checks.status();
    const HaarStage<Lum32s> stage(record);
    const HaarOffsets* const offsets = offsetsFor<Lum32s>(record, src);
    Lum32s kept = 0;
    for (int64_t y = 0; y < roiSize.height; ++y)
        kept += applyIntegers(stage, PlainTable<Lum32s, Lum32s>{src.row(y), offsets}, norm.row(y), mask.row(y),
                              roiSize.width, threshold, shiftOf(scaleFactor));
    *pPositive = kept;
    return lumOk;
}

LumStatus applyMixedIntegers(Plane<const Lum32s> src, Plane<const Lum32s> tilt, Plane<const Lum32s> norm,
                             Plane<Lum8u> mask, LumiSize roiSize, Lum32s* pPositive, Lum32s threshold,
                             const LumiHaarStageRecord* pState, Lum32s scaleFactor)
{
    auto checks = Checks{}.notNull(src.pixels, tilt.pixels, norm.pixels, mask.pixels, pPositive, pState);
    if (strides(checks, roiSize, norm, mask, src, tilt).require(scaleFactor <= 0, lumErrArgument).failed())
        return checks.status();
    const HaarStage<Lum32s> stage(*alignedIn<LumiHaarStageRecord>(pState));
    Lum32s kept = 0;
    for (int64_t y = 0; y < roiSize.height; ++y)
        kept += applyIntegers(stage, mixedTables(stage, src, tilt, y), norm.row(y), mask.row(y), roiSize.width,
                              threshold, shiftOf(scaleFactor));
    *pPositive = kept;
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiApplyHaarClassifier_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum32f* pNorm, Lum32s normStep,
                                          Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s* pPositive,
                                          Lum32f threshold, LumiHaarStageRecord* pState)
{
    return applyPlain(source(pSrc, srcStep), source(pNorm, normStep), destination(pMask, maskStep), roiSize, pPositive,
                      threshold, pState);
}

LumStatus lumiApplyHaarClassifier_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum32f* pNorm, Lum32s normStep,
                                             Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s* pPositive,
                                             Lum32f threshold, LumiHaarStageRecord* pState)
{
    return applyPlain(source(pSrc, srcStep), source(pNorm, normStep), destination(pMask, maskStep), roiSize, pPositive,
                      threshold, pState);
}

LumStatus lumiApplyHaarClassifier_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pNorm, Lum32s normStep,
                                             Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s* pPositive,
                                             Lum32s threshold, LumiHaarStageRecord* pState, Lum32s scaleFactor)
{
    return applyPlainIntegers(source(pSrc, srcStep), source(pNorm, normStep), destination(pMask, maskStep), roiSize,
                              pPositive, threshold, pState, scaleFactor);
}

LumStatus lumiApplyMixedHaarClassifier_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum32f* pTilt, Lum32s tiltStep,
                                               const Lum32f* pNorm, Lum32s normStep, Lum8u* pMask, Lum32s maskStep,
                                               LumiSize roiSize, Lum32s* pPositive, Lum32f threshold,
                                               const LumiHaarStageRecord* pState)
{
    return applyMixed(source(pSrc, srcStep), source(pTilt, tiltStep), source(pNorm, normStep),
                      destination(pMask, maskStep), roiSize, pPositive, threshold, pState);
}

LumStatus lumiApplyMixedHaarClassifier_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pTilt,
                                                  Lum32s tiltStep, const Lum32f* pNorm, Lum32s normStep, Lum8u* pMask,
                                                  Lum32s maskStep, LumiSize roiSize, Lum32s* pPositive,
                                                  Lum32f threshold, const LumiHaarStageRecord* pState)
{
    return applyMixed(source(pSrc, srcStep), source(pTilt, tiltStep), source(pNorm, normStep),
                      destination(pMask, maskStep), roiSize, pPositive, threshold, pState);
}

LumStatus lumiApplyMixedHaarClassifier_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pTilt,
                                                  Lum32s tiltStep, const Lum32s* pNorm, Lum32s normStep, Lum8u* pMask,
                                                  Lum32s maskStep, LumiSize roiSize, Lum32s* pPositive,
                                                  Lum32s threshold, const LumiHaarStageRecord* pState,
                                                  Lum32s scaleFactor)
{
    return applyMixedIntegers(source(pSrc, srcStep), source(pTilt, tiltStep), source(pNorm, normStep),
                              destination(pMask, maskStep), roiSize, pPositive, threshold, pState, scaleFactor);
}
