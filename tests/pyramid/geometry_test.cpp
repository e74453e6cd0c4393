// The sizes of levels and the record of a pyramid's geometry.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "pyramid/layer_geometry.hpp"
#include "support/compare.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::pyramid {
namespace {

constexpr Lum64s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum64s kTooLarge = kIntMax + 1;

const Lum32f kRates[] = {std::nextafter(1.0f, 2.0f),
                         1.001f,
                         1.1f,
                         1.25f,
                         1.5f,
                         1.7320508f,
                         1.99997f,
                         1.99999f,
                         2.0f,
                         2.00001f,
                         2.00003f,
                         2.5f,
                         2.7182817f,
                         3.0f,
                         3.3333333f,
                         4.0f,
                         7.9f,
                         9.999999f,
                         10.0f};

LumiSize downOf(LumiSize size, Lum32f rate)
{
    LumiSize result = {-1, -1};
    EXPECT_EQ(lumiGetPyramidDownROI(size, &result, rate), lumOk);
    LumiSizeL wide = {-1, -1};
    EXPECT_EQ(lumiGetPyramidDownROI_L({size.width, size.height}, &wide, rate), lumOk);
    EXPECT_EQ(wide.width, result.width);
    EXPECT_EQ(wide.height, result.height);
    return result;
}

struct Bounds
{
    LumiSize least = {-1, -1};
    LumiSize most = {-1, -1};
};

Bounds upOf(LumiSize size, Lum32f rate)
{
    Bounds result;
    EXPECT_EQ(lumiGetPyramidUpROI(size, &result.least, &result.most, rate), lumOk);
    LumiSizeL least = {-1, -1}, most = {-1, -1};
    EXPECT_EQ(lumiGetPyramidUpROI_L({size.width, size.height}, &least, &most, rate), lumOk);
    EXPECT_EQ(least.width, result.least.width);
    EXPECT_EQ(least.height, result.least.height);
    EXPECT_EQ(most.width, result.most.width);
    EXPECT_EQ(most.height, result.most.height);
    return result;
}

TEST(PyramidGeometryQuick, SizesOfTheLevelsBelow)
{
    for (const Lum32f rate : kRates) {
        for (int i = 1; i <= 300; ++i) {
            const LumiSize size = {i, 601 - 2 * i};
            const LumiSize down = downOf(size, rate);
            ASSERT_EQ(down.width, downSide(size.width, rate)) << "width " << size.width << ", rate " << rate;
            ASSERT_EQ(down.height, downSide(size.height, rate)) << "height " << size.height << ", rate " << rate;
        }
    }
}

TEST(PyramidGeometryQuick, BoundsOfTheLevelsAbove)
{
    for (const Lum32f rate : kRates) {
        for (int i = 1; i <= 300; ++i) {
            const LumiSize size = {i, 601 - 2 * i};
            const Bounds up = upOf(size, rate);
            ASSERT_EQ(up.least.width, upMinimum(size.width, rate)) << "width " << size.width << ", rate " << rate;
            ASSERT_EQ(up.least.height, upMinimum(size.height, rate)) << "height " << size.height << ", rate " << rate;
            ASSERT_EQ(up.most.width, upMaximum(size.width, rate)) << "width " << size.width << ", rate " << rate;
            ASSERT_EQ(up.most.height, upMaximum(size.height, rate)) << "height " << size.height << ", rate " << rate;
        }
    }
}

// Numbers above 2^24 have no exact place in single precision.
TEST(PyramidGeometryQuick, LargeSizes)
{
    Random random(3);
    for (const Lum32f rate : kRates) {
        for (int i = 0; i < 40; ++i) {
            const int most = static_cast<int>(2147483000.0 / static_cast<double>(rate) / 1.01);
            const LumiSize size = {static_cast<int>(random.between(1, most)),
                                   static_cast<int>(random.between(1, most))};
            const Bounds up = upOf(size, rate);
            ASSERT_EQ(up.least.width, upMinimum(size.width, rate)) << "width " << size.width << ", rate " << rate;
            ASSERT_EQ(up.most.height, upMaximum(size.height, rate)) << "height " << size.height << ", rate " << rate;
            if (size.width < 100'000'000 && size.height < 100'000'000) {
                const LumiSize down = downOf(size, rate);
                ASSERT_EQ(down.width, downSide(size.width, rate)) << "width " << size.width << ", rate " << rate;
                ASSERT_EQ(down.height, downSide(size.height, rate)) << "height " << size.height << ", rate " << rate;
            }
        }
    }
}

TEST(PyramidGeometryQuick, SizesByHand)
{
    const auto expectDown = [](LumiSize size, Lum32f rate, LumiSize expected) {
        const LumiSize down = downOf(size, rate);
        EXPECT_EQ(down.width, expected.width) << size.width << ", rate " << rate;
        EXPECT_EQ(down.height, expected.height) << size.height << ", rate " << rate;
    };
    expectDown({640, 480}, 2, {320, 240});
    expectDown({641, 479}, 2, {321, 240});
    expectDown({1, 2}, 2, {1, 1});
    expectDown({3, 1}, 2, {2, 1});
    expectDown({10, 11}, 10, {1, 2});
    expectDown({20, 21}, 10, {2, 3});
    expectDown({3, 4}, 1.5f, {2, 3});
    // at a rate near 1 a level is one pixel smaller, down to 1
    expectDown({100, 3}, 1.001f, {99, 2});
    expectDown({2, 1}, 1.001f, {1, 1});

    const Bounds two = upOf({1, 4}, 2);
    EXPECT_EQ(two.least.width, 1);
    EXPECT_EQ(two.most.width, 2);
    EXPECT_EQ(two.least.height, 7);
    EXPECT_EQ(two.most.height, 8);
    const Bounds ten = upOf({1, 2}, 10);
    EXPECT_EQ(ten.least.width, 1);
    EXPECT_EQ(ten.most.width, 10);
    EXPECT_EQ(ten.least.height, 11);
    EXPECT_EQ(ten.most.height, 20);
    // a source of 1 goes up to 2 at least, and a larger one grows by at least 1
    const Bounds near = upOf({1, 7}, 1.1f);
    EXPECT_EQ(near.least.width, 1);
    EXPECT_EQ(near.most.width, 2);
    EXPECT_EQ(near.least.height, 8);
    EXPECT_EQ(near.most.height, 8);
}

// Every side belongs to exactly one below it.
TEST(PyramidGeometry, BoundsOfNeighboursMeet)
{
    for (const Lum32f rate : kRates) {
        Bounds last = upOf({1, 1}, rate);
        EXPECT_EQ(last.least.width, 1);
        for (int side = 2; side < 200; ++side) {
            const Bounds next = upOf({side, side}, rate);
            ASSERT_EQ(next.least.width, last.most.width + 1) << "side " << side << ", rate " << rate;
            ASSERT_EQ(downOf(next.least, rate).width, side) << "rate " << rate;
            ASSERT_EQ(downOf(next.most, rate).height, side) << "rate " << rate;
            last = next;
        }
    }
}

constexpr Lum32f kBadRates[] = {1.0f,
                                0.5f,
                                0.0f,
                                -2.0f,
                                10.000001f,
                                std::numeric_limits<Lum32f>::infinity(),
                                std::numeric_limits<Lum32f>::quiet_NaN()};

template <class Args>
void addBadRates(std::vector<Violation<Args>>& table)
{
    for (const Lum32f rate : kBadRates) {
        table.push_back({"rate " + std::to_string(rate), lumErrArgument, [=](Args& a) { a.rate = rate; }});
    }
}

/// Both size functions, in both widths.
template <class Size>
struct StepArgs
{
    bool isUp;
    Size size = {40, 30};
    Size* pResult;
    Size* pSecond;
    Lum32f rate = 2;
    Size* results;

    LumStatus call() const
    {
        if constexpr (sizeof(Size) == sizeof(LumiSize)) {
            return isUp ? lumiGetPyramidUpROI(size, pResult, pSecond, rate)
                        : lumiGetPyramidDownROI(size, pResult, rate);
        } else {
            return isUp ? lumiGetPyramidUpROI_L(size, pResult, pSecond, rate)
                        : lumiGetPyramidDownROI_L(size, pResult, rate);
        }
    }
    std::vector<Output> outputs() const
    {
        return {Output(results, 2 * sizeof *results)};
    }
};

template <class Size>
void expectStepStatusOrder()
{
    using A = StepArgs<Size>;
    Size results[2] = {{-5, -6}, {-7, -8}};
    for (const bool isUp : {false, true}) {
        std::vector<Violation<A>> table = {{"result null", lumErrNullPointer, [](A& a) { a.pResult = nullptr; }},
                                           {"width 0", lumErrSize, [](A& a) { a.size.width = 0; }},
                                           {"height 0", lumErrSize, [](A& a) { a.size.height = 0; }},
                                           {"width negative", lumErrSize, [](A& a) { a.size.width = -40; }},
                                           {"height negative", lumErrSize, [](A& a) { a.size.height = -1; }}};
        if (isUp) {
            table.insert(table.begin() + 1, {"largest null", lumErrNullPointer, [](A& a) { a.pSecond = nullptr; }});
        }
        if constexpr (std::is_same_v<Size, LumiSizeL>) {
            table.push_back({"width too large", lumErrSizeTooLarge, [](A& a) { a.size.width = kTooLarge; }});
            table.push_back({"height too large", lumErrSizeTooLarge, [](A& a) { a.size.height = kTooLarge; }});
        }
        addBadRates(table);
        if (isUp && std::is_same_v<Size, LumiSize>) {
            table.push_back({"result too large", lumErrSizeTooLarge, [](A& a) { a.size = {1, 1 << 30}; }});
        }
        expectStatusOrder(A{.isUp = isUp, .pResult = &results[0], .pSecond = &results[1], .results = results}, table);
    }
}

TEST(PyramidGeometryQuick, SizeFunctionsCheckInOrder)
{
    expectStepStatusOrder<LumiSize>();
    expectStepStatusOrder<LumiSizeL>();
}

// A rate of exactly 1.0 is refused; its successor and 10.0 are accepted.
TEST(PyramidGeometryQuick, RatesAtTheirBounds)
{
    LumiSize result = {};
    EXPECT_EQ(lumiGetPyramidDownROI({30, 20}, &result, 1.0f), lumErrArgument);
    EXPECT_EQ(lumiGetPyramidDownROI({30, 20}, &result, std::nextafter(1.0f, 2.0f)), lumOk);
    EXPECT_EQ(lumiGetPyramidDownROI({30, 20}, &result, 10.0f), lumOk);
    EXPECT_EQ(lumiGetPyramidDownROI({30, 20}, &result, std::nextafter(10.0f, 11.0f)), lumErrArgument);
}

// The largest side whose bounds have 31 bits, by each rate; the 64-bit form goes on.
TEST(PyramidGeometryQuick, BoundsBeyond31Bits)
{
    Bounds up;
    EXPECT_EQ(lumiGetPyramidUpROI({10, 1 << 30}, &up.least, &up.most, 2), lumErrSizeTooLarge);
    EXPECT_EQ(up.least.width, -1);
    EXPECT_EQ(up.most.height, -1);
    // in single precision 2^30 - 32 is 2^30 as well
    EXPECT_EQ(lumiGetPyramidUpROI({(1 << 30) - 32, 10}, &up.least, &up.most, 2), lumErrSizeTooLarge);
    EXPECT_EQ(lumiGetPyramidUpROI({(1 << 30) - 64, 10}, &up.least, &up.most, 2), lumOk);
    EXPECT_EQ(up.most.width, kIntMax - 127);
    LumiSizeL least = {}, most = {};
    EXPECT_EQ(lumiGetPyramidUpROI_L({kIntMax, 1}, &least, &most, 10), lumOk);
    EXPECT_EQ(least.width, upMinimum(kIntMax, 10));
    EXPECT_EQ(most.width, upMaximum(kIntMax, 10));
    EXPECT_EQ(most.height, 10);
}

// The largest sides go down as well.
TEST(PyramidGeometryQuick, LargestSides)
{
    for (const Lum32f rate : {1.5f, 2.0f, 7.9f, 10.0f}) {
        const LumiSize down = downOf({static_cast<int>(kIntMax), static_cast<int>(kIntMax) - 1000}, rate);
        EXPECT_EQ(down.width, downSide(kIntMax, rate)) << "rate " << rate;
        EXPECT_EQ(down.height, downSide(kIntMax - 1000, rate)) << "rate " << rate;
    }
}

}  // namespace
}  // namespace lumcv::test::pyramid
