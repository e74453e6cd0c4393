// The plain flood fill: pixels that equal the seed.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "segment/flood_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::flood {
namespace {

/// What an image of a sweep shows, as levels.
int drawLevel(int content, int x, int y, Random& random)
{
    switch (content) {
        case 0:
            return 7;
        case 1:
            return random.oneIn(3) ? 9 : 7;
        case 2:  // long runs
            return random.oneIn(20) ? 9 : 7;
        case 3:
            return x % 9 == 4 && y % 3 == 1 ? 9 : 7;
        case 4:
            return random.oneIn(200) ? 9 : 7;
        default:
            return static_cast<int>(random.between(6, 9));
    }
}

template <class T, int channels>
void expectSweep(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 1);
        Image<T> image(geometry.layout<T>(0, channels));
        const int content = geometry.number % 6;
        const auto palette = static_cast<Palette>(random.between(0, 2));
        for (int y = 0; y < geometry.height; ++y) {
            for (int x = 0; x < geometry.width; ++x) {
                const int level = drawLevel(content, x, y, random);
                // a pixel differs in one channel alone, or in all
                const auto channel = random.between(-1, channels - 1);
                for (int c = 0; c < channels; ++c) {
                    image.at(x, y, c) = elementOf<T>(palette, channel < 0 || c == channel ? level : 7);
                }
            }
        }
        Order<T, channels> order;
        order.eight = random.oneIn(2);
        order.seed = {static_cast<int>(random.between(0, geometry.width - 1)),
                      static_cast<int>(random.between(0, geometry.height - 1))};
        order.newVal = same<T, channels>(elementOf<T>(palette, random.oneIn(2) ? 200 : 9));
        expectFill<T, channels>(image, order,
                                {random.oneIn(2) ? Guard::After : Guard::Before,
                                 static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 63))});
    });
}

TYPE_SUITE(FloodPlain, AllKinds, KindName);

TYPE_TEST(FloodPlain, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Full);
}

TYPE_SUITE(FloodPlainQuick, AllKinds, KindName);

TYPE_TEST(FloodPlainQuick, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Quick);
}

TYPE_TEST(FloodPlainQuick, SeedThatHasTheNewValueEndsTheCall)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Image<T> image({.width = 20, .height = 5, .channels = channels});
    image.forEach(Area::Roi, [](T& element, int x, int, int) { element = static_cast<T>(x % 7 == 6 ? 3 : 4); });
    Order<T, channels> order;
    order.seed = {2, 3};
    order.newVal = same<T, channels>(4);
    EXPECT_FALSE((fillPlain<T, channels>(image, order).has_value()));
    expectFill<T, channels>(image, order);
    order.eight = true;
    expectFill<T, channels>(image, order);
    // in all channels; one that differs is enough for a fill
    order.newVal[0] = 5;
    Image<T> filled = image;
    EXPECT_TRUE((fillPlain<T, channels>(filled, order).has_value()));
    expectFill<T, channels>(image, order);
}

// With the last value of a channel other than the seed's, as in the last pixel of the row.
TYPE_TEST(FloodPlainQuick, ChannelsAllCount)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    for (int channel = 0; channel < channels; ++channel) {
        for (const int width : {2, 5, 16, 17, 40}) {
            Image<T> image({.width = width, .height = 2, .channels = channels});
            image.forEach(Area::Roi, [](T& element, int, int, int) { element = 11; });
            image.at(width - 1, 0, channel) = 12;
            image.at(width / 2, 1, channel) = 10;
            Order<T, channels> order;
            order.newVal = same<T, channels>(11);
            order.newVal[static_cast<std::size_t>(channel)] = 200;
            for (const bool eight : {false, true}) {
                order.eight = eight;
                expectFill<T, channels>(image, order);
            }
        }
    }
}

TYPE_TEST(FloodPlainQuick, OneValueEverywhere)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    for (const LumiSize size : {LumiSize{1, 1}, {1, 9}, {9, 1}, {37, 11}, {2, 2}, {300, 3}}) {
        for (const bool eight : {false, true}) {
            Image<T> image({.width = size.width, .height = size.height, .channels = channels});
            image.forEach(Area::Roi, [](T& element, int, int, int) { element = 1; });
            Order<T, channels> order;
            order.eight = eight;
            order.seed = {size.width / 2, size.height - 1};
            order.newVal = same<T, channels>(2);
            Image<T> filled = image;
            const auto outcome = fillPlain<T, channels>(filled, order);
            ASSERT_TRUE(outcome.has_value());
            EXPECT_EQ(outcome->area, size.width * size.height);
            expectFill<T, channels>(image, order);
        }
    }
}

// Four neighbours leave a diagonal gap alone; eight take the whole board.
TEST(FloodPlainCasesQuick, DiagonalGaps)
{
    const Pattern board = checkerboard(13, 8);
    const Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, board);
    Order<Lum8u, 1> order;
    order.seed = {4, 2};
    order.newVal = {5};
    Image<Lum8u> filled = image;
    EXPECT_EQ((fillPlain<Lum8u, 1>(filled, order)->area), 1);
    expectFill<Lum8u, 1>(image, order);
    order.eight = true;
    filled = image;
    EXPECT_EQ((fillPlain<Lum8u, 1>(filled, order)->area), 52);
    expectFill<Lum8u, 1>(image, order);
}

// One value in two regions that touch at a corner; the seed's row is first, last and between.
TEST(FloodPlainCasesQuick, SeedInEveryPixel)
{
    Random random(7);
    const Pattern dots = percolation(17, 9, 55, random);
    for (const bool eight : {false, true}) {
        for (int y = 0; y < dots.height; ++y) {
            for (int x = 0; x < dots.width; ++x) {
                Order<Lum8u, 1> order;
                order.eight = eight;
                order.seed = {x, y};
                order.newVal = {100};
                expectFill<Lum8u, 1>(imageOf<Lum8u, 1>(Palette::Low, dots), order);
                Order<Lum32f, 3> colour;
                colour.eight = eight;
                colour.seed = {x, y};
                colour.newVal = {100, 3, 7};
                expectFill<Lum32f, 3>(imageOf<Lum32f, 3>(Palette::Fine, dots), colour);
            }
        }
    }
}

TEST(FloodPlainCasesQuick, ExtremesOf32s)
{
    constexpr Lum32s least = std::numeric_limits<Lum32s>::min(), largest = std::numeric_limits<Lum32s>::max();
    for (const Lum32s value : {least, largest, -1, 0}) {
        for (const Lum32s newVal : {least, largest, -1, 0}) {
            Image<Lum32s> image({.width = 21, .height = 4});
            image.forEach(Area::Roi, [&](Lum32s& element, int x, int y, int) {
                element =
                    (x * 5 + y * 3) % 17 == 0 ? static_cast<Lum32s>(static_cast<Lum32u>(value) ^ 0x01000000u) : value;
            });
            Order<Lum32s, 1> order;
            order.seed = {1, 0};
            order.newVal = {newVal};
            expectFill<Lum32s, 1>(image, order);
        }
    }
}

// Zeros of both signs are one value; a not-a-number equals nothing, but as seed it is taken.
TEST(FloodPlainCasesQuick, FloatSpecials)
{
    constexpr Lum32f inf = std::numeric_limits<Lum32f>::infinity(), nan = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum32f denormal = std::numeric_limits<Lum32f>::denorm_min();
    const Lum32f values[] = {0.0f, -0.0f, inf, -inf, nan, denormal, 1.0f};
    for (const Lum32f first : values) {
        for (const Lum32f second : values) {
            for (const Lum32f newVal : values) {
                for (const bool eight : {false, true}) {
                    Image<Lum32f> image({.width = 19, .height = 3});
                    image.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
                        element = (x + y) % 5 == 0 ? second : first;
                    });
                    Order<Lum32f, 1> order;
                    order.eight = eight;
                    order.seed = {2, 1};
                    order.newVal = {newVal};
                    expectFill<Lum32f, 1>(image, order);
                    Image<Lum32f> colour({.width = 19, .height = 3, .channels = 3});
                    colour.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int c) {
                        element = (x + y) % 5 == 0 && c == x % 3 ? second : c == 1 ? 1.0f : first;
                    });
                    Order<Lum32f, 3> order3;
                    order3.eight = eight;
                    order3.seed = {2, 1};
                    order3.newVal = {newVal, 1.0f, newVal};
                    expectFill<Lum32f, 3>(colour, order3);
                }
            }
        }
    }
    Image<Lum32f> image({.width = 3, .height = 3});
    image.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = nan; });
    Order<Lum32f, 1> order;
    order.seed = {1, 1};
    order.newVal = {nan};
    EXPECT_EQ((fillPlain<Lum32f, 1>(image, order)->area), 1);
}

}  // namespace
}  // namespace lumcv::test::flood
