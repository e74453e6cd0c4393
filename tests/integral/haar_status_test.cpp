// The order of the argument checks of Haar classifiers.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "integral/haar_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::haar {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

struct QueryArgs
{
    LumDataType dataType = lumType32f;
    LumiSize roiSize = {20, 10};
    std::vector<Lum32s> nums = {2, 3, 1};
    bool numsAreNull = false;
    Lum32s length = 3;
    Lum32s* pSize;
    Lum32s* result;

    LumStatus call() const
    {
        return lumiHaarClassifierGetSize(dataType, roiSize, numsAreNull ? nullptr : nums.data(), length, pSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof *result)};
    }
};

// The type comes last: it is judged after the entries of pNum.
TEST(HaarStatusQuick, QueryChecksInDocumentedOrder)
{
    using A = QueryArgs;
    Lum32s bytes = -1;
    std::vector<Violation<A>> order = {
        {"pNum null", lumErrNullPointer, [](A& a) { a.numsAreNull = true; }},
        {"pSize null", lumErrNullPointer, [](A& a) { a.pSize = nullptr; }},
        {"length 0", lumErrSize, [](A& a) { a.length = 0; }},
        {"length negative", lumErrSize, [](A& a) { a.length = kIntMin; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -20; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
        {"first pNum 0", lumErrSize, [](A& a) { a.nums[0] = 0; }},
        {"last pNum negative", lumErrSize, [](A& a) { a.nums[2] = -1; }},
        {"middle pNum smallest", lumErrSize, [](A& a) { a.nums[1] = kIntMin; }},
    };
    for (const LumDataType type : {0, 1, 5, 7, 10, 12, 14, 19, -1, -13, 13 + 256, 11 + 65536, kIntMax, kIntMin}) {
        order.push_back({"type " + std::to_string(type), lumErrDataType, [=](A& a) { a.dataType = type; }});
    }
    order.push_back({"too large", lumErrSizeTooLarge, [](A& a) { a.roiSize.width = kIntMax; }});
    for (Violation<A>& violation : order) {
        // the width decides the size of a known type only, and is one of the two
        if (violation.name.starts_with("width")) {
            violation.notWith = {"too large"};
        }
    }
    for (const LumDataType type : {lumType32f, lumType32s}) {
        std::vector<Violation<A>> table = order;
        if (type == lumType32s) {
            table.pop_back();
            for (Violation<A>& violation : table) {
                violation.notWith.clear();
            }
        }
        expectStatusOrder(A{.dataType = type, .pSize = &bytes, .result = &bytes}, table);
    }
}

/// What Init takes; null pointers are told by their number.
template <class V>
struct InitArgs
{
    bool tiltedInit;
    Arrays<V> arrays;
    const PlacedBlock* block;
    Lum32s length;
    bool stateIsNull = false, rectsAreNull = false, weightsAreNull = false, thresholdsAreNull = false;
    bool val1IsNull = false, val2IsNull = false, numsAreNull = false;

    LumStatus call() const
    {
        const auto pointer = [](const auto& vector, bool isNull) { return isNull ? nullptr : vector.data(); };
        LumiHaarStageRecord* const pState =
            stateIsNull ? nullptr : reinterpret_cast<LumiHaarStageRecord*>(block->data());
        return (tiltedInit ? RecordExports<V>::tiltedInit : RecordExports<V>::init)(
            pState, pointer(arrays.rects, rectsAreNull), pointer(arrays.weights, weightsAreNull),
            pointer(arrays.thresholds, thresholdsAreNull), pointer(arrays.val1, val1IsNull),
            pointer(arrays.val2, val2IsNull), pointer(arrays.nums, numsAreNull), length);
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

struct WeightName
{
    template <class V>
    static std::string GetName(int)
    {
        return std::is_same_v<V, Lum32f> ? "32f" : "32s";
    }
};
using Weights = testing::Types<Lum32f, Lum32s>;
TYPE_SUITE(HaarStatusQuick, Weights, WeightName);

// A failing Init leaves the block as it was.
TYPE_TEST(HaarStatusQuick, InitChecksInDocumentedOrder)
{
    using A = InitArgs<TypeParam>;
    Random random(141);
    const Stage<TypeParam> stage = {{{{0, 0, 2, 1}, {3, 1, 1, 4}}, {1, 2}, 3, 4, 5},
                                    {{{2, 0, 2, 2}, {1, 1, 1, 1}, {4, 4, 2, 2}}, {1, 2, 3}, 3, 4, 5},
                                    {{{5, 0, 2, 2}}, {1}, 3, 4, 5}};
    const Arrays<TypeParam> arrays(stage);
    const PlacedBlock block(static_cast<std::size_t>(recordBytes<TypeParam>(3, 6, 10)));
    for (const bool tiltedInit : {false, true}) {
        SCOPED_TRACE(tiltedInit ? "tilted" : "upright");
        std::vector<Violation<A>> order = {
            {"pState null", lumErrNullPointer, [](A& a) { a.stateIsNull = true; }},
            {"pFeature null", lumErrNullPointer, [](A& a) { a.rectsAreNull = true; }},
            {"pWeight null", lumErrNullPointer, [](A& a) { a.weightsAreNull = true; }},
            {"pThreshold null", lumErrNullPointer, [](A& a) { a.thresholdsAreNull = true; }},
            {"pVal1 null", lumErrNullPointer, [](A& a) { a.val1IsNull = true; }},
            {"pVal2 null", lumErrNullPointer, [](A& a) { a.val2IsNull = true; }},
            {"pNum null", lumErrNullPointer, [](A& a) { a.numsAreNull = true; }},
            {"length 0", lumErrSize, [](A& a) { a.length = 0; }},
            {"length negative", lumErrSize, [](A& a) { a.length = -3; }},
            {"first pNum 0", lumErrSize, [](A& a) { a.arrays.nums[0] = 0; }},
            {"last pNum negative", lumErrSize, [](A& a) { a.arrays.nums[2] = -1; }},
            {"last pNum smallest", lumErrSize, [](A& a) { a.arrays.nums[2] = kIntMin; }},
        };
        for (const std::size_t i : {std::size_t{0}, std::size_t{4}, std::size_t{5}}) {
            const std::string of = " of rectangle " + std::to_string(i);
            order.push_back({"x" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].x = -1; }});
            order.push_back({"y" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].y = -1; }});
            order.push_back({"width" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].width = 0; }});
            order.push_back({"height" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].height = 0; }});
            order.push_back({"negative width" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].width = -2; }});
            order.push_back(
                {"negative height" + of, lumErrArgument, [=](A& a) { a.arrays.rects[i].height = kIntMin; }});
        }
        if (tiltedInit) {
            order.push_back(
                {"height of x + 2 in the first", lumErrArgument, [](A& a) { a.arrays.rects[0].height = 2; }});
            order.push_back(
                {"height of x + 2 in the last", lumErrArgument, [](A& a) { a.arrays.rects[5].height = 7; }});
        }
        expectStatusOrder(A{.tiltedInit = tiltedInit, .arrays = arrays, .block = &block, .length = 3}, order);
    }
}

// A tilted Init takes a height of x + 1, and an upright one any.
TYPE_TEST(HaarStatusQuick, HeightOfATiltedRectangle)
{
    for (int x = 0; x < 6; ++x) {
        const auto status = [&](bool tiltedInit, int height) {
            const Stage<TypeParam> stage = {{{{x, 0, 2, height}}, {1}, 0, 0, 0}};
            const PlacedBlock block(static_cast<std::size_t>(recordBytes<TypeParam>(1, 1, 1)));
            return InitArgs<TypeParam>{
                .tiltedInit = tiltedInit, .arrays = Arrays<TypeParam>(stage), .block = &block, .length = 1}
                .call();
        };
        EXPECT_EQ(status(true, x + 1), lumOk);
        EXPECT_EQ(status(true, x + 2), lumErrArgument);
        EXPECT_EQ(status(false, x + 2), lumOk);
    }
}

TYPE_TEST(HaarStatusQuick, WindowSizeChecksItsPointers)
{
    Random random(142);
    const Record<TypeParam> record(drawStage<TypeParam>(random, 3, {5, 5}), {4, 4});
    LumiSize size = {-1, -2};
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(nullptr, &size), lumErrNullPointer);
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(record.state(), nullptr), lumErrNullPointer);
    EXPECT_EQ(RecordExports<TypeParam>::windowSize(nullptr, nullptr), lumErrNullPointer);
    EXPECT_EQ(size.width, -1);
    EXPECT_EQ(size.height, -2);
}

constexpr LumiSize kRoiSize = {19, 3};

template <class T, class V>
struct ApplyArgs
{
    typename Form<T, V>::Call function;
    const T* pSrc;
    int srcStep;
    const T* pTilt;
    int tiltStep;
    const V* pNorm;
    int normStep;
    Lum8u* pMask;
    int maskStep;
    LumiSize roiSize = kRoiSize;
    Lum32s* pPositive;
    V threshold;
    LumiHaarStageRecord* pState;
    int scaleFactor = 0;
    LumiHaarStageRecord* zeros;  ///< a block that no Init has seen
    const Image<Lum8u>* mask;
    Lum32s* count;
    const PlacedBlock* block;

    LumStatus call() const
    {
        return function(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold,
                        pState, scaleFactor);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*mask), Output(count, sizeof *count), Output(block->data(), block->size())};
    }
};

template <class T, class V>
std::vector<Violation<ApplyArgs<T, V>>> orderOf(const Form<T, V>& form)
{
    using A = ApplyArgs<T, V>;
    constexpr int row = kRoiSize.width * 4;
    std::vector<Violation<A>> order;
    const auto add = [&](std::string name, LumStatus status, auto violate) {
        order.push_back({std::move(name), status, violate});
    };
    add("pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; });
    if (form.isMixed) {
        add("pTilt null", lumErrNullPointer, [](A& a) { a.pTilt = nullptr; });
    }
    add("pNorm null", lumErrNullPointer, [](A& a) { a.pNorm = nullptr; });
    add("pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; });
    add("pPositive null", lumErrNullPointer, [](A& a) { a.pPositive = nullptr; });
    add("pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; });
    add("width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; });
    add("height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; });
    add("width smallest", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; });
    add("height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; });
    add("srcStep one byte short", lumErrStep, [](A& a) { a.srcStep = row - 1; });
    add("srcStep one entry short", lumErrStep, [](A& a) { a.srcStep = row - 4; });
    add("srcStep negative", lumErrStep, [](A& a) { a.srcStep = -row; });
    if (form.isMixed) {
        add("tiltStep one byte short", lumErrStep, [](A& a) { a.tiltStep = row - 1; });
        add("tiltStep 0", lumErrStep, [](A& a) { a.tiltStep = 0; });
    }
    add("normStep one byte short", lumErrStep, [](A& a) { a.normStep = row - 1; });
    add("normStep negative", lumErrStep, [](A& a) { a.normStep = -row; });
    add("maskStep short", lumErrStep, [](A& a) { a.maskStep = kRoiSize.width - 1; });
    add("maskStep 0", lumErrStep, [](A& a) { a.maskStep = 0; });
    add("maskStep negative", lumErrStep, [](A& a) { a.maskStep = -kRoiSize.width; });
    for (const int off : {1, 2, 3}) {
        const std::string by = std::to_string(off);
        add("srcStep off by " + by, lumErrStepAlignment, [=](A& a) { a.srcStep = row + 40 + off; });
        if (form.isMixed) {
            add("tiltStep off by " + by, lumErrStepAlignment, [=](A& a) { a.tiltStep = row + 40 + off; });
        }
        add("normStep off by " + by, lumErrStepAlignment, [=](A& a) { a.normStep = row + off; });
    }
    if (std::is_same_v<V, Lum32s>) {
        add("scaleFactor 1", lumErrArgument, [](A& a) { a.scaleFactor = 1; });
        add("scaleFactor largest", lumErrArgument, [](A& a) { a.scaleFactor = kIntMax; });
    }
    if (!form.isMixed) {
        add("no Init", lumErrNullPointer, [](A& a) { a.pState = a.pState == nullptr ? nullptr : a.zeros; });
    }
    return order;
}

// Neither mask, count nor record is written on an error. A block without a record is found out last.
TEST(HaarStatusQuickApply, ChecksInDocumentedOrder)
{
    Random random(143);
    forEachForm([&]<class T, class V>(const Form<T, V>& form) {
        const Stage<V> stage = drawStage<V>(random, 5, {6, 6});
        const Record<V> record(stage, kRoiSize);
        std::vector<Lum8u> turned(stage.size(), 0);
        turned[1] = 1;
        std::vector<Turn> turns = allTurned(stage.size(), Turn::Upright);
        if (form.isMixed) {
            turns[1] = Turn::Tilted;
            ASSERT_EQ(RecordExports<V>::tiltFeatures(turned.data(), 1, record.state()), lumOk);
        }
        const PlacedBlock zeros(record.block().size());
        std::fill_n(zeros.data(), zeros.size(), static_cast<unsigned char>(0));
        Scene<T, V> scene(form, stage, turns, {.width = kRoiSize.width, .height = kRoiSize.height, .gap = 8},
                          {.width = kRoiSize.width, .height = kRoiSize.height, .gap = 5});
        fillScene(scene, random, Numbers::Ordinary, 0);
        // some window goes
        scene.threshold = std::max(scene.sumAt(0, 0), scene.sumAt(1, 1)) + V{1};
        Lum32s count = 1000;
        expectStatusOrder(ApplyArgs<T, V>{.function = form.call,
                                          .pSrc = scene.upright.pointer(),
                                          .srcStep = scene.upright.step(),
                                          .pTilt = scene.tilted.pointer(),
                                          .tiltStep = scene.tilted.step(),
                                          .pNorm = scene.norms.pixels(),
                                          .normStep = scene.norms.step(),
                                          .pMask = scene.mask.pixels(),
                                          .maskStep = scene.mask.step(),
                                          .pPositive = &count,
                                          .threshold = scene.threshold,
                                          .pState = record.state(),
                                          .zeros = reinterpret_cast<LumiHaarStageRecord*>(zeros.data()),
                                          .mask = &scene.mask,
                                          .count = &count,
                                          .block = &record.block()},
                          orderOf(form));
        for (std::size_t i = 0; i < zeros.size(); ++i) {
            EXPECT_EQ(zeros.data()[i], 0) << "the block without a record was written";
        }
    });
}

// Scale factors of 0 and below pass, and a mask's rows may be tight.
TEST(HaarStatusQuickApply, ScaleFactorsThatPass)
{
    Random random(144);
    const Stage<Lum32s> stage = drawStage<Lum32s>(random, 4, {6, 6});
    const Record<Lum32s> record(stage, kRoiSize);
    const Layout layout{.width = kRoiSize.width, .height = kRoiSize.height};
    for (const Form<Lum32s, Lum32s>& form : {kPlain32s, kMixed32s}) {
        Scene<Lum32s, Lum32s> scene(form, stage, allTurned(stage.size(), Turn::Upright), layout, layout);
        for (const int scaleFactor : {0, -1, -31, -32, -33, -63, -64, -65, kIntMin}) {
            scene.scaleFactor = scaleFactor;
            fillScene(scene, random);
            EXPECT_TRUE(agrees(scene, record)) << "scale factor " << scaleFactor;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::haar
