// Range fills: bounds around the seed's value, the stack that wraps, and what finds painted pixels again.
#include <gtest/gtest.h>

#include <limits>

#include "segment/flood_fixture.hpp"
#include "segment/flood_shapes.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::flood {
namespace {

TYPE_SUITE(FloodRange, RangeKinds, KindName);

TYPE_SUITE(FloodRangeQuick, RangeKinds, KindName);

// Whether the fill ends by its stack. One that goes round for ever takes as long as a hundred others, and has a test of
// its own.
template <class T, int channels>
bool endsByItself(const Image<T>& image, const Order<T, channels>& order)
{
    constexpr std::int64_t many = 3000;
    Image<T> filled = image;
    return fillRange<T, channels>(filled, order, many).popped < many;
}

template <class T, int channels>
void expectSweep(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 1);
        Image<T> image(geometry.layout<T>(0, channels));
        const auto palette = static_cast<Palette>(random.between(0, 2));
        const auto depth = random.between(1, 12);
        const int base = random.oneIn(3) ? 0 : random.oneIn(2) ? 255 - static_cast<int>(depth) : 100;
        const bool sparse = random.oneIn(2);
        image.forEach(Area::Roi, [&](T& element, int, int, int) {
            const int off = sparse && !random.oneIn(12) ? 1 : static_cast<int>(random.between(0, depth));
            element = elementOf<T>(palette, base + off);
        });
        Order<T, channels> order;
        order.rule = Rule::Range;
        order.eight = random.oneIn(2);
        order.seed = {static_cast<int>(random.between(0, geometry.width - 1)),
                      static_cast<int>(random.between(0, geometry.height - 1))};
        for (std::size_t c = 0; c < channels; ++c) {
            order.minDelta[c] = deltaOf<T>(palette, static_cast<int>(random.between(0, depth)));
            order.maxDelta[c] = deltaOf<T>(palette, static_cast<int>(random.between(0, depth)));
            order.newVal[c] = elementOf<T>(palette, random.oneIn(2) ? 50 : base + 1);
        }
        if (endsByItself<T, channels>(image, order)) {
            expectFill<T, channels>(image, order,
                                    {random.oneIn(2) ? Guard::After : Guard::Before,
                                     static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 63))});
        }
    });
}

TYPE_TEST(FloodRange, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Full);
}

TYPE_TEST(FloodRangeQuick, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Quick);
}

// Without deltas the rule is the plain one, but the seed's own value as new value does not end the call at once.
TYPE_TEST(FloodRangeQuick, WithoutDeltas)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(3);
    for (const bool eight : {false, true}) {
        for (int i = 0; i < 20; ++i) {
            const Pattern dots = percolation(15, 7, 80, random);
            const Image<T> image = imageOf<T, channels>(Palette::High, dots);
            Order<T, channels> order;
            order.rule = Rule::Range;
            order.eight = eight;
            order.seed = {i % 15, i % 7};
            order.newVal = same<T, channels>(17);
            expectFill<T, channels>(image, order);
            order.newVal = same<T, channels>(image.at(order.seed.x, order.seed.y));
            if (endsByItself<T, channels>(image, order)) {
                expectFill<T, channels>(image, order);
            }
        }
    }
}

// The bounds end at the least and the greatest element.
TYPE_TEST(FloodRangeQuick, BoundsAtTheEndsOfTheType)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    using Limits = std::numeric_limits<T>;
    const T ends[] = {Limits::lowest(), Limits::max(), T{0}, T{1}, static_cast<T>(Limits::max() - 1)};
    for (const T seed : ends) {
        for (const T other : ends) {
            for (const T minDelta : {T{0}, T{1}, Limits::max()}) {
                for (const T maxDelta : {T{0}, T{1}, Limits::max()}) {
                    Image<T> image({.width = 19, .height = 3, .channels = channels});
                    image.forEach(Area::Roi, [&](T& element, int x, int y, int) {
                        element = (x * 3 + y) % 4 == 0 ? other : seed;
                    });
                    Order<T, channels> order;
                    order.rule = Rule::Range;
                    order.seed = {1, 0};
                    order.minDelta = same<T, channels>(minDelta);
                    order.maxDelta = same<T, channels>(maxDelta);
                    order.newVal = same<T, channels>(33);
                    expectFill<T, channels>(image, order);
                }
            }
        }
    }
}

// Each channel has bounds of its own.
TYPE_TEST(FloodRangeQuick, BoundsOfEachChannel)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    for (int channel = 0; channel < channels; ++channel) {
        for (int step = -3; step <= 3; ++step) {
            Image<T> image({.width = 35, .height = 2, .channels = channels});
            image.forEach(Area::Roi, [&](T& element, int x, int, int c) {
                element = static_cast<T>(100 + 20 * c + (c == channel && x == 20 ? step : 0));
            });
            Order<T, channels> order;
            order.rule = Rule::Range;
            order.newVal = same<T, channels>(7);
            for (std::size_t c = 0; c < channels; ++c) {
                order.minDelta[c] = static_cast<T>(c);
                order.maxDelta[c] = static_cast<T>(channels - c);
            }
            expectFill<T, channels>(image, order);
        }
    }
}

// Every image of few pixels has a stack of no or few entries.
TEST(FloodRangeWrapQuick, StacksOfFewEntries)
{
    for (int width = 1; width <= 9; ++width) {
        for (int height = 1; height <= 9; ++height) {
            if (width * height > 40) {
                continue;
            }
            for (int i = 0; i < 30; ++i) {
                Random random(static_cast<std::uint64_t>(width * 1000 + height * 100 + i));
                const Pattern dots = percolation(width, height, i % 3 == 0 ? 100 : 75, random);
                const Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, dots);
                Order<Lum8u, 1> order;
                order.rule = Rule::Range;
                order.eight = random.oneIn(2);
                order.seed = {static_cast<int>(random.between(0, width - 1)),
                              static_cast<int>(random.between(0, height - 1))};
                order.minDelta = {2};
                order.maxDelta = {2};
                // the seed's own value, one in the range, one beside it
                const auto value = image.at(order.seed.x, order.seed.y);
                order.newVal = {static_cast<Lum8u>(value + i % 4)};
                if (!endsByItself<Lum8u, 1>(image, order)) {
                    continue;
                }
                expectFill<Lum8u, 1>(image, order);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Combs need more entries than there are: the oldest are lost, and with them parts of the region.
TEST(FloodRangeWrapQuick, CombsLoseTheirTeeth)
{
    bool wasPartial = false;
    for (int width = 3; width < 45; width += 2) {
        for (const int height : {3, 4, 5, 7}) {
            for (const Pattern& pattern : {doubleComb(width, height), comb(width, height), combs(width, height)}) {
                for (const Pattern& way : everyWay(pattern)) {
                    Order<Lum16u, 1> order;
                    order.newVal = {9};
                    order.minDelta = {1};
                    order.maxDelta = {1};
                    for (const bool eight : {false, true}) {
                        for (const LumiPoint seed : {LumiPoint{way.width / 2, way.height / 2}, LumiPoint{0, 0}}) {
                            order.eight = eight;
                            order.seed = seed;
                            order.rule = Rule::Range;
                            const Image<Lum16u> image = imageOf<Lum16u, 1>(Palette::Low, way);
                            expectFill<Lum16u, 1>(image, order);
                            Image<Lum16u> partial = image;
                            Image<Lum16u> whole = image;
                            const Outcome range = fillRange<Lum16u, 1>(partial, order);
                            const auto plain = fillPlain<Lum16u, 1>(whole, order);
                            wasPartial = wasPartial || (plain && range.area < plain->area);
                        }
                    }
                }
            }
        }
    }
    EXPECT_TRUE(wasPartial);
}

TEST(FloodRangeWrap, TangledShapes)
{
    Random random(9);
    for (const LumiSize size : {LumiSize{11, 3}, {21, 13}, {33, 29}, {101, 33}}) {
        for (const Pattern& shape : tangledShapes(size.width, size.height, random)) {
            for (const Pattern& pattern : everyWay(shape)) {
                for (const LumiPoint& seed : seedsOn(pattern, 3, random)) {
                    Order<Lum8u, 1> order;
                    order.rule = Rule::Range;
                    order.eight = random.oneIn(2);
                    order.seed = seed;
                    order.newVal = {3};
                    order.minDelta = {5};
                    order.maxDelta = {1};
                    expectFill<Lum8u, 1>(imageOf<Lum8u, 1>(Palette::Low, pattern), order);
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

// A new value within the range: painted pixels pass again, and count again.
TEST(FloodRangeWrapQuick, NewValueWithinTheRange)
{
    Random random(10);
    bool countedTwice = false;
    for (const LumiSize size : {LumiSize{8, 2}, {2, 8}, {5, 5}, {30, 7}, {7, 30}, {64, 20}, {1, 40}, {4, 1}}) {
        for (int i = 0; i < 24; ++i) {
            const int percent[] = {100, 95, 80, 60};
            const Pattern dots = percolation(size.width, size.height, percent[i % 4], random);
            Order<Lum8u, 1> order;
            order.rule = Rule::Range;
            order.eight = i % 8 < 4;
            order.seed = {static_cast<int>(random.between(0, size.width - 1)),
                          static_cast<int>(random.between(0, size.height - 1))};
            const Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, dots);
            order.newVal = {static_cast<Lum8u>(image.at(order.seed.x, order.seed.y) + 1)};
            order.minDelta = {3};
            order.maxDelta = {3};
            if (!endsByItself<Lum8u, 1>(image, order)) {
                continue;
            }
            expectFill<Lum8u, 1>(image, order);
            Image<Lum8u> filled = image;
            countedTwice = countedTwice || fillRange<Lum8u, 1>(filled, order).area > size.width * size.height;
        }
    }
    EXPECT_TRUE(countedTwice);
}

// Around a hole a fill would go on for ever; a count of spans ends it.
TEST(FloodRangeWrap, RingsEnd)
{
    struct Case
    {
        LumiSize size;
        LumiPoint seed;
        bool eight;
    };
    for (const Case& c : {Case{{5, 5}, {0, 0}, false}, {{5, 5}, {4, 2}, true}, {{40, 9}, {39, 4}, false}}) {
        Pattern ring{"ring", c.size.width, c.size.height};
        for (int y = 0; y < ring.height; ++y) {
            for (int x = 0; x < ring.width; ++x) {
                const bool inside = x > 0 && x < ring.width - 1 && y > 0 && y < ring.height - 1;
                ring.at(x, y) = inside ? 0 : kWay;
            }
        }
        Order<Lum8u, 1> order;
        order.rule = Rule::Range;
        order.eight = c.eight;
        order.seed = c.seed;
        order.newVal = {kWay + 1};
        order.minDelta = {1};
        order.maxDelta = {1};
        const Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, ring);
        EXPECT_FALSE((endsByItself<Lum8u, 1>(image, order)));
        expectFill<Lum8u, 1>(image, order);
    }
}

// Differences and sums are rounded to single precision; negative deltas are allowed and let nothing pass but the seed.
TEST(FloodRangeFloatsQuick, SpecialValues)
{
    constexpr Lum32f inf = std::numeric_limits<Lum32f>::infinity(), nan = std::numeric_limits<Lum32f>::quiet_NaN();
    const Lum32f values[] = {0.0f, -0.0f, inf, -inf, nan, 1.0f, 16777216.0f, 3.4e38f};
    const Lum32f deltas[] = {0.0f, 1.0f, -1.0f, inf, nan, 3.4e38f};
    Random random(11);
    for (const Lum32f seed : values) {
        for (const Lum32f minDelta : deltas) {
            for (const Lum32f maxDelta : deltas) {
                for (const bool eight : {false, true}) {
                    Image<Lum32f> image({.width = 21, .height = 5});
                    image.forEach(Area::Roi, [&](Lum32f& element, int, int, int) {
                        element = random.oneIn(3) ? values[random.between(0, 7)] : seed;
                    });
                    image.at(4, 2) = seed;
                    Order<Lum32f, 1> order;
                    order.rule = Rule::Range;
                    order.eight = eight;
                    order.seed = {4, 2};
                    order.minDelta = {minDelta};
                    order.maxDelta = {maxDelta};
                    order.newVal = {random.oneIn(2) ? 123.0f : nan};
                    if (endsByItself<Lum32f, 1>(image, order)) {
                        expectFill<Lum32f, 1>(image, order);
                    }
                    Image<Lum32f> colour({.width = 21, .height = 5, .channels = 3});
                    colour.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int c) {
                        element = c == x % 3 ? image.at(x, y) : 5.0f;
                    });
                    Order<Lum32f, 3> order3;
                    order3.rule = Rule::Range;
                    order3.eight = eight;
                    order3.seed = {4, 2};
                    order3.minDelta = {minDelta, 9, minDelta};
                    order3.maxDelta = {9, maxDelta, maxDelta};
                    order3.newVal = {-8, -9, -10};
                    if (endsByItself<Lum32f, 3>(colour, order3)) {
                        expectFill<Lum32f, 3>(colour, order3);
                    }
                }
            }
        }
    }
    // 16777216 + 1 is 16777216 in single precision
    Image<Lum32f> image({.width = 3, .height = 1});
    image.at(0, 0) = 16777216.0f;
    image.at(1, 0) = 16777218.0f;
    image.at(2, 0) = 16777216.0f;
    Order<Lum32f, 1> order;
    order.rule = Rule::Range;
    order.maxDelta = {1.0f};
    expectFill<Lum32f, 1>(image, order);
    EXPECT_EQ((fillRange<Lum32f, 1>(image, order).area), 1);
}

}  // namespace
}  // namespace lumcv::test::flood
