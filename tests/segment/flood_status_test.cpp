// The scratch sizes of flood fill and the order of its argument checks.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "segment/flood_fixture.hpp"
#include "support/size_query.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::flood {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

TEST(FloodSizeQuick, Formula)
{
    const LumiSize sizes[] = {{1, 1}, {1, 7}, {2, 2}, {3, 1}, {11, 3}, {640, 480}, {1920, 1080}, {8192, 8192}};
    for (const LumiSize& size : sizes) {
        expectBytes<lumiFloodFillGetSize>(size, scratchBytes(Rule::Plain, size.width, size.height));
        expectBytes<lumiFloodFillGetSize_Grad>(size, scratchBytes(Rule::Grad, size.width, size.height));
    }
    expectBytes<lumiFloodFillGetSize>({100, 30}, 18032);
    expectBytes<lumiFloodFillGetSize_Grad>({100, 30}, 102 * 32 + 48000 + 64);
}

TEST(FloodSizeQuick, TooLarge)
{
    // 6 n + 32 and 17 n + 2 (w + h) + 68 are at most 2147483647
    expectBytes<lumiFloodFillGetSize>({357913935, 1}, 2147483642);
    expectTooLarge<lumiFloodFillGetSize>({357913936, 1});
    expectBytes<lumiFloodFillGetSize>({1, 357913935}, 2147483642);
    expectTooLarge<lumiFloodFillGetSize>({1, 357913936});
    expectBytes<lumiFloodFillGetSize_Grad>({113025451, 1}, 2147483639);
    expectTooLarge<lumiFloodFillGetSize_Grad>({113025452, 1});
    expectBytes<lumiFloodFillGetSize_Grad>({1, 113025451}, 2147483639);
    expectTooLarge<lumiFloodFillGetSize_Grad>({1, 113025452});
    // also where 32 bits would hold what is left of it
    for (const LumiSize& size :
         {LumiSize{65536, 65536}, {kIntMax, kIntMax}, {kIntMax, 1}, {1, kIntMax}, {1 << 30, 4}}) {
        expectTooLarge<lumiFloodFillGetSize>(size);
        expectTooLarge<lumiFloodFillGetSize_Grad>(size);
    }
}

TEST(FloodSizeQuick, ChecksInOrder)
{
    expectSizeQueryChecksInOrder<lumiFloodFillGetSize>();
    expectSizeQueryChecksInOrder<lumiFloodFillGetSize_Grad>();
}

template <class T, int channels>
struct Args
{
    Rule rule;
    bool eight;
    T* pImage;
    Lum32s imageStep;
    LumiSize roiSize = {20, 5};
    LumiPoint seed = {3, 4};
    Argument<T, channels> newVal;
    Argument<T, channels> minDelta;
    Argument<T, channels> maxDelta;
    LumiConnectedComp* pRegion;
    Lum8u* pBuffer;
    const Image<T>* image;
    const PlacedBlock* scratch;
    LumiConnectedComp* region;

    LumStatus call() const
    {
        return flood::call<T, channels>(rule, eight, pImage, imageStep, roiSize, seed, newVal, minDelta, maxDelta,
                                        pRegion, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*image), Output(scratch->data(), scratch->size()), Output(region, sizeof *region)};
    }
};

// What no float may be less than.
template <int channels>
struct NegativeDeltas
{
    Channels<Lum32f, channels> values[static_cast<std::size_t>(channels)];

    NegativeDeltas()
    {
        for (std::size_t c = 0; c < channels; ++c) {
            values[c].fill(1.0f);
            values[c][c] = c == 0 ? -std::numeric_limits<Lum32f>::denorm_min() : -1.0f;
        }
    }
};

template <class T, int channels>
std::vector<Violation<Args<T, channels>>> violations(Rule rule)
{
    using A = Args<T, channels>;
    constexpr int size = sizeof(T);
    constexpr int row = 20 * size * channels;
    std::vector<Violation<A>> table = {
        {"pImage null", lumErrNullPointer, [](A& a) { a.pImage = nullptr; }},
        {"pRegion null", lumErrNullPointer, [](A& a) { a.pRegion = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
    };
    if constexpr (channels == 3) {
        table.push_back({"pNewVal null", lumErrNullPointer, [](A& a) { a.newVal = nullptr; }});
        if (rule != Rule::Plain) {
            table.push_back({"pMinDelta null", lumErrNullPointer, [](A& a) { a.minDelta = nullptr; }});
            table.push_back({"pMaxDelta null", lumErrNullPointer, [](A& a) { a.maxDelta = nullptr; }});
        }
    }
    table.insert(table.end(),
                 {{"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                  {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -20; }},
                  {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                  {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
                  {"imageStep one byte short", lumErrStep, [](A& a) { a.imageStep = row - 1; }},
                  {"imageStep one pixel short", lumErrStep, [](A& a) { a.imageStep = row - size * channels; }},
                  {"imageStep 0", lumErrStep, [](A& a) { a.imageStep = 0; }},
                  {"imageStep negative", lumErrStep, [](A& a) { a.imageStep = -row; }},
                  {"imageStep least", lumErrStep, [](A& a) { a.imageStep = kIntMin; }}});
    for (int off = 1; off < size; ++off) {
        table.push_back(
            {"imageStep off by " + std::to_string(off), lumErrStepAlignment, [=](A& a) { a.imageStep = row + off; }});
    }
    table.insert(table.end(), {{"seed left of the ROI", lumErrOutOfRange, [](A& a) { a.seed.x = -1; }},
                               {"seed right of the ROI", lumErrOutOfRange, [](A& a) { a.seed.x = 20; }},
                               {"seed far right", lumErrOutOfRange, [](A& a) { a.seed.x = kIntMax; }},
                               {"seed above the ROI", lumErrOutOfRange, [](A& a) { a.seed.y = kIntMin; }},
                               {"seed below the ROI", lumErrOutOfRange, [](A& a) { a.seed.y = 5; }}});
    if constexpr (std::is_same_v<T, Lum32f>) {
        if (rule == Rule::Grad) {
            static const NegativeDeltas<channels> negative;
            for (std::size_t c = 0; c < channels; ++c) {
                table.push_back({"minDelta " + std::to_string(c) + " negative", lumErrOutOfRange,
                                 [=](A& a) { a.minDelta = argumentOf<T, channels>(negative.values[c]); }});
                table.push_back({"maxDelta " + std::to_string(c) + " negative", lumErrOutOfRange,
                                 [=](A& a) { a.maxDelta = argumentOf<T, channels>(negative.values[c]); }});
            }
        }
    }
    return table;
}

TYPE_SUITE(FloodStatusQuick, AllKinds, KindName);

TYPE_TEST(FloodStatusQuick, ChecksInOrder)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    const auto values = same<T, channels>(3);
    for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
        if (!hasRule<T, channels>(rule)) {
            continue;
        }
        for (const bool eight : {false, true}) {
            SCOPED_TRACE(testing::Message() << nameOf(rule) << " of " << (eight ? 8 : 4));
            Image<T> image({.width = 20, .height = 5, .channels = channels, .gap = 2 * sizeof(T)});
            image.forEach(Area::Roi, [](T& element, int, int, int) { element = 1; });
            const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(rule, 20, 5)));
            LumiConnectedComp region = {-1, {-1, -1, -1}, {-1, -1, -1, -1}};
            expectStatusOrder(Args<T, channels>{.rule = rule,
                                                .eight = eight,
                                                .pImage = image.pixels(),
                                                .imageStep = image.step(),
                                                .newVal = argumentOf<T, channels>(values),
                                                .minDelta = argumentOf<T, channels>(values),
                                                .maxDelta = argumentOf<T, channels>(values),
                                                .pRegion = &region,
                                                .pBuffer = scratch.data(),
                                                .image = &image,
                                                .scratch = &scratch,
                                                .region = &region},
                              violations<T, channels>(rule));
        }
    }
}

// Deltas below zero are refused by Grad fills of floats alone; zeros of either sign and not-a-numbers are not below it.
TEST(FloodStatusQuickFloats, DeltasThatPass)
{
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    Image<Lum32f> image({.width = 5, .height = 5});
    image.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = 1; });
    for (const Lum32f delta : {-0.0f, 0.0f, nan}) {
        Order<Lum32f, 1> order;
        order.rule = Rule::Grad;
        order.newVal = {2};
        order.minDelta = {delta};
        expectFill<Lum32f, 1>(image, order);
        order.minDelta = {0};
        order.maxDelta = {delta};
        expectFill<Lum32f, 1>(image, order);
    }
    for (const Lum32f delta : {-1.0f, -1e-30f}) {
        Order<Lum32f, 1> order;
        order.rule = Rule::Range;
        order.newVal = {2};
        order.minDelta = {delta};
        order.maxDelta = {3};
        expectFill<Lum32f, 1>(image, order);
    }
}

// A stride of exactly one row.
TYPE_TEST(FloodStatusQuick, TightRows)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Image<T> image({.width = 7, .height = 3, .channels = channels});
    image.forEach(Area::Roi, [](T& element, int x, int, int) { element = static_cast<T>(x == 5); });
    for (const Rule rule : {Rule::Plain, Rule::Range, Rule::Grad}) {
        if (hasRule<T, channels>(rule)) {
            Order<T, channels> order;
            order.rule = rule;
            order.newVal = same<T, channels>(9);
            order.seed = {6, 2};
            expectFill<T, channels>(image, order);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::flood
