// The scratch sizes of labelling, the order of its checks, and what it may touch.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "segment/labels_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/size_query.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::labels {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

TYPE_SUITE(LabelStatusQuick, Labels, LabelName);

TYPE_TEST(LabelStatusQuick, Sizes)
{
    constexpr auto query = Exports<TypeParam>::bufferSize;
    expectBytes<query>({1, 1}, 38);
    expectBytes<query>({100, 30}, 18032);
    expectBytes<query>({1920, 1080}, 12441632);
    expectBytes<query>({357913935, 1}, 2147483642);
    expectBytes<query>({5, 71582787}, 2147483642);
    expectTooLarge<query>({357913936, 1});
    expectTooLarge<query>({1, 357913936});
    expectTooLarge<query>({65536, 65536});
    expectTooLarge<query>({kIntMax, kIntMax});
    expectSizeQueryChecksInOrder<query>();
}

template <class Label>
struct Args
{
    Marker<Label>* pSrc;
    Lum32s srcStep;
    Label* pDst;
    Lum32s dstStep;
    LumiSize roiSize = {20, 5};
    Lum32s minLabel = 3;
    Lum32s maxLabel = 200;
    LumiDistanceNorm norm = lumDistanceNormL1;
    Lum32s* pNumber;
    Lum8u* pBuffer;
    const Image<Marker<Label>>* source;
    const Image<Label>* destination;
    const PlacedBlock* scratch;
    Lum32s* number;

    LumStatus call() const
    {
        return labels::call<Label>(pSrc, srcStep, pDst, dstStep, roiSize, minLabel, maxLabel, norm, pNumber, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*source), Output(*destination), Output(scratch->data(), scratch->size()),
                Output(number, sizeof *number)};
    }
};

template <class Label>
std::vector<Violation<Args<Label>>> violations()
{
    using A = Args<Label>;
    constexpr bool isInPlace = std::is_same_v<Marker<Label>, Label>;
    constexpr int size = sizeof(Marker<Label>);
    constexpr int row = 20 * size;
    constexpr Lum32s largest = Exports<Label>::largest;
    std::vector<Violation<A>> table = {{"marker null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                                       {"pNumber null", lumErrNullPointer, [](A& a) { a.pNumber = nullptr; }},
                                       {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }}};
    if (!isInPlace) {
        table.push_back({"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }});
    }
    table.insert(table.end(), {{"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                               {"width negative", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; }},
                               {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                               {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
                               {"srcStep one byte short", lumErrStep, [=](A& a) { a.srcStep = row - 1; }},
                               {"srcStep one element short", lumErrStep, [=](A& a) { a.srcStep = row - size; }},
                               {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
                               {"srcStep negative", lumErrStep, [=](A& a) { a.srcStep = -row; }}});
    if (!isInPlace) {
        table.insert(table.end(), {{"dstStep one byte short", lumErrStep, [](A& a) { a.dstStep = 79; }},
                                   {"dstStep one element short", lumErrStep, [](A& a) { a.dstStep = 76; }},
                                   {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -80; }},
                                   {"dstStep least", lumErrStep, [](A& a) { a.dstStep = kIntMin; }},
                                   {"dstStep off by 1", lumErrStepAlignment, [](A& a) { a.dstStep = 81; }},
                                   {"dstStep off by 2", lumErrStepAlignment, [](A& a) { a.dstStep = 82; }},
                                   {"dstStep off by 3", lumErrStepAlignment, [](A& a) { a.dstStep = 83; }}});
    }
    if (size == 2) {
        table.push_back({"srcStep odd", lumErrStepAlignment, [=](A& a) { a.srcStep = row + 1; }});
    }
    table.insert(table.end(), {{"minLabel 0", lumErrArgument, [](A& a) { a.minLabel = 0; }},
                               {"minLabel negative", lumErrArgument, [](A& a) { a.minLabel = -1; }},
                               {"minLabel least", lumErrArgument, [](A& a) { a.minLabel = kIntMin; }},
                               {"maxLabel too large", lumErrArgument, [=](A& a) { a.maxLabel = largest + 1; }},
                               {"maxLabel largest", lumErrArgument, [](A& a) { a.maxLabel = kIntMax; }},
                               {"minLabel above maxLabel", lumErrArgument,
                                [](A& a) { a.minLabel = a.maxLabel == kIntMax ? 1 : 201; }},
                               {"maxLabel below minLabel",
                                lumErrArgument,
                                [](A& a) { a.maxLabel = 2; },
                                {"minLabel 0", "minLabel negative", "minLabel least"}},
                               {"norm 2", lumErrArgument, [](A& a) { a.norm = 2; }},
                               {"norm 256", lumErrArgument, [](A& a) { a.norm = 256; }},
                               {"norm -1", lumErrArgument, [](A& a) { a.norm = -1; }},
                               {"norm least", lumErrArgument, [](A& a) { a.norm = kIntMin; }}});
    return table;
}

TYPE_TEST(LabelStatusQuick, ChecksInOrder)
{
    Random random(36);
    Image<Marker<TypeParam>> markers =
        markersOf<TypeParam>(percolation(20, 5, 50, random), random, {.gap = 2 * sizeof(Marker<TypeParam>)});
    const Image<TypeParam> labels({.width = 20, .height = 5, .gap = 3 * sizeof(TypeParam)});
    Image<TypeParam> destination = labels;
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(20, 5)));
    Lum32s number = -1;
    expectStatusOrder(Args<TypeParam>{.pSrc = markers.pixels(),
                                      .srcStep = markers.step(),
                                      .pDst = destination.pixels(),
                                      .dstStep = destination.step(),
                                      .pNumber = &number,
                                      .pBuffer = scratch.data(),
                                      .source = &markers,
                                      .destination = &destination,
                                      .scratch = &scratch,
                                      .number = &number},
                      violations<TypeParam>());
}

// The largest labels, one label, and rows without a gap pass.
TYPE_TEST(LabelStatusQuick, LimitsPass)
{
    Random random(37);
    const auto markers = markersOf<TypeParam>(percolation(9, 5, 50, random), random);
    const Lum32s largest = Exports<TypeParam>::largest;
    for (const Order& order :
         {Order{1, largest, lumDistanceNormInf}, {largest, largest, lumDistanceNormL1}, {1, 1, lumDistanceNormInf}}) {
        expectLabels<TypeParam>(markers, order);
    }
}

TYPE_SUITE(LabelMemory, Labels, LabelName);

// Each row stands alone before or behind an unreadable page; the source of 32s labels is not written.
TYPE_TEST(LabelMemory, RowsAlone)
{
    using M = Marker<TypeParam>;
    Random random(38);
    for (const int width : {1, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 129}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const int percent : {50, 100}) {
                const LumiSize size = {width, 5};
                const Layout layout = {.width = width, .height = 5, .guard = guard};
                const Image<M> markers = markersOf<TypeParam>(percolation(width, 5, percent, random), random);
                const Order order = {1, 254, width % 2};
                IsolatedRows<M> source(layout);
                IsolatedRows<TypeParam> destination(layout);
                for (int y = 0; y < 5; ++y) {
                    std::copy_n(markers.row(y), width, source.row(y));
                }
                constexpr bool isInPlace = std::is_same_v<M, TypeParam>;
                if (!isInPlace) {
                    source.makeReadOnly();
                }
                const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(width, 5)), guard);
                Lum32s number = -1;
                ASSERT_EQ(call<TypeParam>(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                          size, order.minLabel, order.maxLabel, order.norm, &number, scratch.data()),
                          lumOk);
                Image<TypeParam> expected({.width = width, .height = 5});
                EXPECT_EQ(number, label<TypeParam>(markers, expected, order));
                for (int y = 0; y < 5; ++y) {
                    const TypeParam* row = destination.row(y);
                    if constexpr (isInPlace) {
                        row = source.row(y);
                    }
                    ASSERT_TRUE(sameElements(expected.row(y), row, static_cast<std::size_t>(width)))
                        << "row " << y << ", width " << width;
                }
                EXPECT_TRUE(source.slackIntact());
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

TYPE_TEST(LabelMemory, ScratchAtAnyAddressAndOfAnyContent)
{
    Random random(39);
    for (std::size_t distance = 0; distance < 70; ++distance) {
        const auto markers = markersOf<TypeParam>(percolation(29, 11, 60, random), random);
        const Order order = {1, 254, distance % 2 == 0 ? lumDistanceNormInf : lumDistanceNormL1};
        expectLabels<TypeParam>(markers, order, distance % 3 == 0 ? Guard::Before : Guard::After, distance,
                                static_cast<int>(distance % 4));
    }
}

TEST(LabelMemoryQuick, ThreadsWithAnImageEach)
{
    Random random(40);
    const auto markers = markersOf<Lum32s>(percolation(90, 70, 55, random), random);
    Image<Lum32s> expected({.width = 90, .height = 70});
    const Order order = {1, 1000, lumDistanceNormInf};
    const Lum32s number = label<Lum32s>(markers, expected, order);
    Image<Lum32s> results[2] = {expected, expected};
    Lum32s numbers[2] = {-1, -1};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        results[i].forEach(Area::Roi, [](Lum32s& element, int, int, int) { element = 5; });
        threads.emplace_back([&, i] {
            const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(90, 70)));
            lumiLabelMarkers_8u32s_C1R(markers.pixels(), markers.step(), results[i].pixels(), results[i].step(),
                                       {90, 70}, order.minLabel, order.maxLabel, order.norm, &numbers[i],
                                       scratch.data());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(numbers[i], number);
        EXPECT_TRUE(sameImage(expected, results[i]));
    }
}

}  // namespace
}  // namespace lumcv::test::labels
