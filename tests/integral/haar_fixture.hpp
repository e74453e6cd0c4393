// Records of Haar stages in blocks of exactly their size, the apply exports with one argument list, and operands of
// exactly the memory that is read.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <type_traits>
#include <vector>

#include "integral/haar_reference.hpp"
#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::haar {

/// The exports of records with weights of type V.
template <class V>
struct RecordExports;

template <>
struct RecordExports<Lum32f>
{
    static constexpr LumDataType dataType = lumType32f;
    static constexpr auto init = lumiHaarClassifierInit_32f;
    static constexpr auto tiltedInit = lumiTiltedHaarClassifierInit_32f;
    static constexpr auto tiltFeatures = lumiTiltHaarFeatures_32f;
    static constexpr auto windowSize = lumiGetHaarClassifierSize_32f;
};

template <>
struct RecordExports<Lum32s>
{
    static constexpr LumDataType dataType = lumType32s;
    static constexpr auto init = lumiHaarClassifierInit_32s;
    static constexpr auto tiltedInit = lumiTiltedHaarClassifierInit_32s;
    static constexpr auto tiltFeatures = lumiTiltHaarFeatures_32s;
    static constexpr auto windowSize = lumiGetHaarClassifierSize_32s;
};

/// A stage as the arrays that Init takes.
template <class V>
struct Arrays
{
    explicit Arrays(const Stage<V>& stage)
    {
        for (const Classifier<V>& c : stage) {
            rects.insert(rects.end(), c.rects.begin(), c.rects.end());
            weights.insert(weights.end(), c.weights.begin(), c.weights.end());
            thresholds.push_back(c.threshold);
            val1.push_back(c.val1);
            val2.push_back(c.val2);
            nums.push_back(static_cast<Lum32s>(c.rects.size()));
        }
    }
    Lum32s length() const
    {
        return static_cast<Lum32s>(nums.size());
    }

    std::vector<LumiRect> rects;
    std::vector<V> weights, thresholds, val1, val2;
    std::vector<Lum32s> nums;
};

/// The size of a record by its formula.
template <class V>
Lum64s recordBytes(Lum64s length, Lum64s total, Lum64s width)
{
    const Lum64s base = length * 32 + total * 36 + 64;
    return base + total * 16 + 64 + (std::is_same_v<V, Lum32f> ? ((width * 8 + 30) & ~Lum64s{31}) + 16 : 0);
}

/// The place of a record's block.
struct RecordPlace
{
    Guard guard = Guard::After;
    std::size_t distance = 0;  ///< to the unreadable page
};

/// A record in a block of exactly its size. The caller's arrays are gone when it is used.
template <class V>
class Record
{
  public:
    Record(const Stage<V>& stage, LumiSize roiSize, bool tiltedInit = false, RecordPlace place = {})
        : Record(Arrays<V>(stage), roiSize, tiltedInit, place)
    {
    }
    Record(const Arrays<V>& arrays, LumiSize roiSize, bool tiltedInit, RecordPlace place)
    {
        Lum32s bytes = -1;
        EXPECT_EQ(
            lumiHaarClassifierGetSize(RecordExports<V>::dataType, roiSize, arrays.nums.data(), arrays.length(), &bytes),
            lumOk);
        EXPECT_EQ(bytes, recordBytes<V>(arrays.length(), static_cast<Lum64s>(arrays.rects.size()), roiSize.width));
        block_.emplace(static_cast<std::size_t>(bytes), place.guard, place.distance);
        EXPECT_EQ((tiltedInit ? RecordExports<V>::tiltedInit : RecordExports<V>::init)(
                      state(), arrays.rects.data(), arrays.weights.data(), arrays.thresholds.data(), arrays.val1.data(),
                      arrays.val2.data(), arrays.nums.data(), arrays.length()),
                  lumOk);
    }
    LumiHaarStageRecord* state() const
    {
        return reinterpret_cast<LumiHaarStageRecord*>(block_->data());
    }
    const PlacedBlock& block() const
    {
        return *block_;
    }
    std::vector<unsigned char> bytes() const
    {
        return {block_->data(), block_->data() + block_->size()};
    }

  private:
    std::optional<PlacedBlock> block_;
};

/// One apply export. Operands that it does not have are dropped.
template <class TableElement, class Weight>
struct Form
{
    using T = TableElement;
    using V = Weight;
    using Call = LumStatus (*)(const T* pSrc, int srcStep, const T* pTilt, int tiltStep, const V* pNorm, int normStep,
                               Lum8u* pMask, int maskStep, LumiSize roiSize, Lum32s* pPositive, V threshold,
                               LumiHaarStageRecord* pState, int scaleFactor);

    const char* name;
    bool isMixed;
    Call call;
};

template <class T, LumStatus (*f)(const T*, int, const Lum32f*, int, Lum8u*, int, LumiSize, Lum32s*, Lum32f,
                                  LumiHaarStageRecord*)>
LumStatus plain(const T* pSrc, int srcStep, const T*, int, const Lum32f* pNorm, int normStep, Lum8u* pMask,
                int maskStep, LumiSize roiSize, Lum32s* pPositive, Lum32f threshold, LumiHaarStageRecord* pState, int)
{
    return f(pSrc, srcStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold, pState);
}

template <class T, LumStatus (*f)(const T*, int, const T*, int, const Lum32f*, int, Lum8u*, int, LumiSize, Lum32s*,
                                  Lum32f, const LumiHaarStageRecord*)>
LumStatus mixed(const T* pSrc, int srcStep, const T* pTilt, int tiltStep, const Lum32f* pNorm, int normStep,
                Lum8u* pMask, int maskStep, LumiSize roiSize, Lum32s* pPositive, Lum32f threshold,
                LumiHaarStageRecord* pState, int)
{
    return f(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold, pState);
}

inline LumStatus plain32s(const Lum32s* pSrc, int srcStep, const Lum32s*, int, const Lum32s* pNorm, int normStep,
                          Lum8u* pMask, int maskStep, LumiSize roiSize, Lum32s* pPositive, Lum32s threshold,
                          LumiHaarStageRecord* pState, int scaleFactor)
{
    return lumiApplyHaarClassifier_32s_C1RSfs(pSrc, srcStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                                              threshold, pState, scaleFactor);
}

inline LumStatus mixed32s(const Lum32s* pSrc, int srcStep, const Lum32s* pTilt, int tiltStep, const Lum32s* pNorm,
                          int normStep, Lum8u* pMask, int maskStep, LumiSize roiSize, Lum32s* pPositive,
                          Lum32s threshold, LumiHaarStageRecord* pState, int scaleFactor)
{
    return lumiApplyMixedHaarClassifier_32s_C1RSfs(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep,
                                                   roiSize, pPositive, threshold, pState, scaleFactor);
}

using Floats = Form<Lum32f, Lum32f>;
using FloatsOfIntegers = Form<Lum32s, Lum32f>;
using Integers = Form<Lum32s, Lum32s>;

constexpr Floats kPlain32f = {"Apply_32f", false, plain<Lum32f, lumiApplyHaarClassifier_32f_C1R>};
constexpr Floats kMixed32f = {"ApplyMixed_32f", true, mixed<Lum32f, lumiApplyMixedHaarClassifier_32f_C1R>};
constexpr FloatsOfIntegers kPlain32s32f = {"Apply_32s32f", false, plain<Lum32s, lumiApplyHaarClassifier_32s32f_C1R>};
constexpr FloatsOfIntegers kMixed32s32f = {"ApplyMixed_32s32f", true,
                                           mixed<Lum32s, lumiApplyMixedHaarClassifier_32s32f_C1R>};
constexpr Integers kPlain32s = {"Apply_32s", false, plain32s};
constexpr Integers kMixed32s = {"ApplyMixed_32s", true, mixed32s};

/// Calls f with each form in turn.
template <class F>
void forEachForm(F f)
{
    const auto visit = [&](const auto& form) {
        SCOPED_TRACE(form.name);
        f(form);
    };
    visit(kPlain32f);
    visit(kMixed32f);
    visit(kPlain32s32f);
    visit(kMixed32s32f);
    visit(kPlain32s);
    visit(kMixed32s);
}

/// What the classifiers of one kind read of a table; a kind without classifiers reads nothing and gets one entry.
template <class V, class Accepts>
Extent extentOf(const std::vector<StoredClassifier<V>>& classifiers, LumiSize roiSize, int ahead, Accepts accepts)
{
    bool any = false;
    Corner first{}, last{};
    for (const StoredClassifier<V>& c : classifiers) {
        for (const StoredRect<V>& r : c.rects) {
            for (const Corner corner : {r.tl, r.tr, r.bl, r.br}) {
                if (accepts(c)) {
                    first = any ? Corner{std::min(first.x, corner.x), std::min(first.y, corner.y)} : corner;
                    last = any ? Corner{std::max(last.x, corner.x), std::max(last.y, corner.y)} : corner;
                    any = true;
                }
            }
        }
    }
    if (!any) {
        return {0, 0, 1, 1, roiSize.width};
    }
    return {first.y + ahead, first.x + ahead, last.x - first.x + roiSize.width, last.y - first.y + roiSize.height,
            roiSize.width};
}

/// All that an apply call takes, with tables of exactly what its rectangles reach.
template <class T, class V>
struct Scene
{
    Scene(const Form<T, V>& f, const Stage<V>& stage, const std::vector<Turn>& turns, const Layout& normLayout,
          const Layout& maskLayout, Guard guard = Guard::After, int moreGap = 0)
        : form(f),
          roiSize{maskLayout.width, maskLayout.height},
          classifiers(stored(stage, turns)),
          upright(extentOf(classifiers, roiSize, 0,
                           [&](const StoredClassifier<V>& c) { return !f.isMixed || !c.isTilted; }),
                  guard, moreGap),
          tilted(
              extentOf(classifiers, roiSize, 1, [&](const StoredClassifier<V>& c) { return f.isMixed && c.isTilted; }),
              guard, 2 * moreGap),
          norms(normLayout),
          mask(maskLayout)
    {
    }

    Job<T, V> job() const
    {
        return {classifiers, form.isMixed, upright.table(), tilted.table(), threshold, scaleFactor, positive};
    }
    /// The sum of a window's votes by the rule of its place.
    V sumAt(int i, int j) const
    {
        const Job<T, V> all = job();
        return stageSum(all, norms.at(i, j), i, j, orderOf(all, placeOf(all, roiSize, i)));
    }
    LumStatus call(LumiHaarStageRecord* pState, Image<Lum8u>& candidates, Lum32s& count) const
    {
        return form.call(upright.pointer(), upright.step(), tilted.pointer(), tilted.step(), norms.pixels(),
                         norms.step(), candidates.pixels(), candidates.step(), roiSize, &count, threshold, pState,
                         scaleFactor);
    }

    Form<T, V> form;
    LumiSize roiSize;
    std::vector<StoredClassifier<V>> classifiers;
    TableImage<T> upright, tilted;
    Image<V> norms;
    Image<Lum8u> mask;
    V threshold = 0;
    int scaleFactor = 0;
    Lum32s positive = 0;
};

/// Applies the stage to a copy of the mask and compares.
template <class T, class V>
testing::AssertionResult agrees(const Scene<T, V>& scene, const Record<V>& record)
{
    Image<Lum8u> expected = scene.mask, actual = scene.mask;
    const Lum32s expectedCount = apply(scene.job(), scene.norms, expected);
    Lum32s count = scene.positive;
    const LumStatus status = scene.call(record.state(), actual, count);
    if (status != lumOk) {
        return testing::AssertionFailure() << "status " << status;
    }
    if (const auto same = sameImage(expected, actual); !same) {
        return testing::AssertionFailure() << "mask: " << same.message();
    }
    if (count != expectedCount) {
        return testing::AssertionFailure() << "counted " << count << ", expected " << expectedCount;
    }
    if (const auto intact = actual.gapsIntact(); !intact) {
        return testing::AssertionFailure() << "mask: " << intact.message();
    }
    if (const auto intact = record.block().intact(); !intact) {
        return testing::AssertionFailure() << "beside the record: " << intact.message();
    }
    return testing::AssertionSuccess();
}

/// Estimates at and below every limit between the density paths.
inline std::vector<Lum32s> estimates(LumiSize roiSize)
{
    const Lum32s windows = roiSize.width * roiSize.height;
    return {windows, windows / 4, windows / 4 - 1, windows / 8, windows / 8 - 1, windows / 16, windows / 16 - 1, 0, -1};
}

/// What the numbers of a scene are like.
enum class Numbers
{
    Ordinary,
    Extreme
};

template <class V>
V drawNumber(Random& random, Numbers numbers, int magnitude)
{
    if (numbers == Numbers::Extreme) {
        return random.value<V>(Values::NonFinite);
    }
    if constexpr (std::is_integral_v<V>) {
        return static_cast<V>(random.between(-magnitude, magnitude));
    } else {
        return random.value<V>(Values::Ordinary) / 1000 * static_cast<V>(magnitude);
    }
}

/// A rectangle within a window; one for a tilted Init is not higher than its column allows.
inline LumiRect drawRect(Random& random, LumiSize window, bool forTiltedInit)
{
    LumiRect r;
    r.x = static_cast<int>(random.between(0, window.width - 1));
    r.y = static_cast<int>(random.between(0, window.height - 1));
    r.width = static_cast<int>(random.between(1, window.width - r.x));
    const int highest = forTiltedInit ? std::min(window.height, r.x + 1) : window.height;
    r.height = static_cast<int>(random.between(1, highest));
    return r;
}

/// A stage of classifiers with one to five rectangles, mostly two or three.
template <class V>
Stage<V> drawStage(Random& random, int length, LumiSize window, bool forTiltedInit = false,
                   Numbers numbers = Numbers::Ordinary)
{
    const int rectCounts[] = {2, 2, 2, 3, 3, 1, 4, 5};
    Stage<V> stage(static_cast<std::size_t>(length));
    for (Classifier<V>& c : stage) {
        for (int k = rectCounts[random.between(0, 7)]; k > 0; --k) {
            c.rects.push_back(drawRect(random, window, forTiltedInit));
            c.weights.push_back(drawNumber<V>(random, numbers, 3));
        }
        c.threshold = drawNumber<V>(random, numbers, 50);
        c.val1 = drawNumber<V>(random, numbers, 10);
        c.val2 = drawNumber<V>(random, numbers, 10);
    }
    return stage;
}

/// Fills tables, norms and mask, and draws the stage's threshold: mostly exactly the sum of some window, so that sums
/// meet it.
template <class T, class V>
void fillScene(Scene<T, V>& scene, Random& random, Numbers numbers = Numbers::Ordinary, int percentZero = -1)
{
    for (TableImage<T>* const table : {&scene.upright, &scene.tilted}) {
        table->image().forEach(Area::Roi,
                               [&](T& entry, int, int, int) { entry = drawNumber<T>(random, numbers, 1000); });
    }
    scene.norms.forEach(Area::Roi, [&](V& norm, int, int, int) { norm = drawNumber<V>(random, numbers, 60); });
    const int percentages[] = {0, 10, 50, 80, 95};
    fillMask(scene.mask, random, percentZero >= 0 ? percentZero : percentages[random.between(0, 4)]);
    if (random.oneIn(2)) {
        // runs of zeros, so that whole groups are passed over
        scene.mask.forEach(Area::Roi,
                           [](Lum8u& byte, int x, int y, int) { byte = (x / 7 + y) % 3 == 0 ? byte : Lum8u{0}; });
    }
    const int i = static_cast<int>(random.between(0, scene.roiSize.width - 1));
    const int j = static_cast<int>(random.between(0, scene.roiSize.height - 1));
    scene.threshold = random.oneIn(4) ? drawNumber<V>(random, numbers, 10) : scene.sumAt(i, j);
}

/// One turn for each classifier.
inline std::vector<Turn> allTurned(std::size_t count, Turn turn)
{
    return std::vector<Turn>(count, turn);
}

}  // namespace lumcv::test::haar
