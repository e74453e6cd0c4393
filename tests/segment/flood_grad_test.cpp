// Grad fills: each pixel is compared with a neighbour that has been taken, in the order of the spans.
#include <gtest/gtest.h>

#include <limits>

#include "segment/flood_fixture.hpp"
#include "segment/flood_shapes.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::flood {
namespace {

TYPE_SUITE(FloodGrad, RangeKinds, KindName);

TYPE_SUITE(FloodGradQuick, RangeKinds, KindName);

// Levels that wander, or that are drawn anew for each pixel.
template <class T>
void drawSlopes(Image<T>& image, Palette palette, int depth, bool wanders, Random& random)
{
    image.forEach(Area::Roi, [&](T& element, int x, int y, int) {
        const int noise = static_cast<int>(random.between(0, depth));
        const int slope = wanders ? (x * 3 + y * 5) / 7 % 120 : 0;
        element = elementOf<T>(palette, 60 + slope + noise);
    });
}

template <class T, int channels>
Order<T, channels> drawOrder(LumiSize size, Palette palette, int depth, Random& random)
{
    Order<T, channels> order;
    order.rule = Rule::Grad;
    order.eight = random.oneIn(2);
    order.seed = {static_cast<int>(random.between(0, size.width - 1)),
                  static_cast<int>(random.between(0, size.height - 1))};
    for (std::size_t c = 0; c < channels; ++c) {
        order.minDelta[c] = deltaOf<T>(palette, static_cast<int>(random.between(0, depth)));
        order.maxDelta[c] = deltaOf<T>(palette, static_cast<int>(random.between(0, depth)));
        order.newVal[c] = elementOf<T>(palette, random.oneIn(2) ? 3 : 61);
    }
    return order;
}

// The documented order against the library, and against steps in any order where that makes no difference.
template <class T, int channels>
void expectGrad(const Image<T>& image, const Order<T, channels>& order, Scratch place)
{
    expectFill<T, channels>(image, order, place);
    if (!order.eight) {
        Image<T> bySpans = image;
        Image<T> bySteps = image;
        const Outcome spans = fillGrad<T, channels>(bySpans, order);
        const Outcome steps = fillGradReachable<T, channels>(bySteps, order);
        EXPECT_EQ(spans.area, steps.area) << "the references disagree";
        EXPECT_TRUE(sameImage(bySteps, bySpans)) << "the references disagree";
    }
}

template <class T, int channels>
void expectSweep(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 77);
        Image<T> image(geometry.layout<T>(0, channels));
        const auto palette = static_cast<Palette>(random.between(0, 2));
        const int depth = static_cast<int>(random.between(1, 9));
        drawSlopes(image, palette, depth, random.oneIn(2), random);
        const auto order = drawOrder<T, channels>({geometry.width, geometry.height}, palette, depth, random);
        expectGrad<T, channels>(image, order,
                                {random.oneIn(2) ? Guard::After : Guard::Before,
                                 static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 63))});
    });
}

TYPE_TEST(FloodGrad, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Full);
}

TYPE_TEST(FloodGradQuick, Sweep)
{
    expectSweep<typename TypeParam::T, TypeParam::channels>(Sweep::Quick);
}

TYPE_TEST(FloodGrad, HigherImages)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    for (int i = 0; i < 120; ++i) {
        Random random(static_cast<std::uint64_t>(i));
        const LumiSize size = {static_cast<int>(random.between(1, 40)), static_cast<int>(random.between(6, 40))};
        Image<T> image({.width = size.width, .height = size.height, .channels = channels});
        const auto palette = static_cast<Palette>(random.between(0, 2));
        const int depth = static_cast<int>(random.between(1, 6));
        drawSlopes(image, palette, depth, random.oneIn(2), random);
        expectGrad<T, channels>(image, drawOrder<T, channels>(size, palette, depth, random), {});
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

// Every image of three levels of a small size, upwards steps alone allowed: what is taken depends on who asks.
TEST(FloodGradCases, EveryImageOfThreeLevels)
{
    for (const LumiSize size : {LumiSize{3, 3}, {4, 2}, {2, 4}}) {
        const int places = size.width * size.height;
        int images = 1;
        for (int i = 0; i < places; ++i) {
            images *= 3;
        }
        const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(Rule::Grad, size.width, size.height)),
                                  Guard::After, 1);
        Image<Lum8u> actual({.width = size.width, .height = size.height});
        Image<Lum8u> expected = actual;
        for (int number = 0; number < images; ++number) {
            int rest = number;
            Order<Lum8u, 1> order;
            order.rule = Rule::Grad;
            order.seed = {number % size.width, number / 5 % size.height};
            order.eight = true;
            order.newVal = {9};
            order.maxDelta = {1};
            actual.forEach(Area::Roi, [&](Lum8u& element, int, int, int) {
                element = static_cast<Lum8u>(rest % 3);
                rest /= 3;
            });
            expected.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) { element = actual.at(x, y); });
            const Outcome outcome = fillGrad<Lum8u, 1>(expected, order);
            LumiConnectedComp region;
            ASSERT_EQ((call<Lum8u, 1>(Rule::Grad, true, actual.pixels(), actual.step(), size, order.seed, 9, 0, 1,
                                      &region, scratch.data())),
                      lumOk);
            ASSERT_TRUE(sameImage(expected, actual))
                << "image " << number << " of " << size.width << " x " << size.height << ", " << order;
            ASSERT_EQ(region.area, outcome.area);
        }
        EXPECT_TRUE(scratch.intact());
    }
}

// The new value makes no difference to what is taken: spans are painted when they have been dealt with.
TYPE_TEST(FloodGradQuick, NewValueMakesNoDifference)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    Random random(5);
    Image<T> image({.width = 40, .height = 12, .channels = channels});
    drawSlopes(image, Palette::Low, 3, true, random);
    for (const bool eight : {false, true}) {
        Order<T, channels> order;
        order.rule = Rule::Grad;
        order.eight = eight;
        order.seed = {20, 6};
        order.minDelta = same<T, channels>(2);
        order.maxDelta = same<T, channels>(2);
        double area = -1;
        for (int level = 58; level < 70; ++level) {
            order.newVal = same<T, channels>(static_cast<T>(level));
            expectFill<T, channels>(image, order);
            Image<T> filled = image;
            const double found = fillGrad<T, channels>(filled, order).area;
            EXPECT_TRUE(area < 0 || found == area);
            area = found;
        }
        // the seed's own value as well
        for (int c = 0; c < channels; ++c) {
            order.newVal[static_cast<std::size_t>(c)] = image.at(20, 6, c);
        }
        expectFill<T, channels>(image, order);
    }
}

TYPE_TEST(FloodGradQuick, OneRowIsPaintedAndCounted)
{
    using T = typename TypeParam::T;
    constexpr int channels = TypeParam::channels;
    for (const int width : {1, 2, 17, 100, 300}) {
        Image<T> image({.width = width, .height = 1, .channels = channels});
        image.forEach(Area::Roi, [&](T& element, int x, int, int) {
            element = static_cast<T>(10 + x % 100 + (x == width - 3 ? 50 : 0));
        });
        Order<T, channels> order;
        order.rule = Rule::Grad;
        order.seed = {width / 2, 0};
        order.minDelta = same<T, channels>(1);
        order.maxDelta = same<T, channels>(1);
        order.newVal = same<T, channels>(5);
        for (const bool eight : {false, true}) {
            order.eight = eight;
            expectFill<T, channels>(image, order);
        }
    }
}

// A step up of 2 passes where the steps down are 1 at most, and the other way round.
TEST(FloodGradCasesQuick, UpIsNotDown)
{
    Image<Lum8u> image({.width = 9, .height = 2});
    image.forEach(Area::Roi, [](Lum8u& element, int x, int, int) { element = static_cast<Lum8u>(100 + 2 * x); });
    Order<Lum8u, 1> order;
    order.rule = Rule::Grad;
    order.seed = {4, 1};
    order.minDelta = {1};
    order.maxDelta = {2};
    Image<Lum8u> filled = image;
    EXPECT_EQ((fillGrad<Lum8u, 1>(filled, order).area), 10);
    expectFill<Lum8u, 1>(image, order);
    order.minDelta = {2};
    order.maxDelta = {1};
    filled = image;
    EXPECT_EQ((fillGrad<Lum8u, 1>(filled, order).area), 10);
    EXPECT_EQ(filled.at(0, 0), 0);
    EXPECT_EQ(filled.at(8, 1), 116);
    expectFill<Lum8u, 1>(image, order);
}

// The pixel to the right of a new span fails against its left neighbour and passes against the one of the span that is
// dealt with: the extension goes on. To the left it would not.
TEST(FloodGradCasesQuick, RightHandExtensionLooksAcross)
{
    for (const int width : {3, 20}) {
        Image<Lum8u> image({.width = width, .height = 2});
        image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
            element = static_cast<Lum8u>(y == 1 ? 100 + 4 * x : x % 2 == 0 ? 98 + 4 * x : 102 + 4 * x);
        });
        for (int x = 0; x < width; ++x) {
            for (const bool eight : {false, true}) {
                for (int minDelta = 0; minDelta < 9; ++minDelta) {
                    for (int maxDelta = 0; maxDelta < 9; ++maxDelta) {
                        Order<Lum8u, 1> order;
                        order.rule = Rule::Grad;
                        order.eight = eight;
                        order.seed = {x, 1};
                        order.minDelta = {static_cast<Lum8u>(minDelta)};
                        order.maxDelta = {static_cast<Lum8u>(maxDelta)};
                        order.newVal = {1};
                        expectFill<Lum8u, 1>(image, order);
                    }
                }
            }
        }
    }
}

// With eight neighbours a diagonal step is tried at the ends of a span alone, against its first and its last pixel.
TEST(FloodGradCasesQuick, DiagonalStepsAtTheEndsOfSpans)
{
    // 3 3 3 of the seed's row; below, 3 stands beside the span's right end, and 9 everywhere else
    Image<Lum8u> image({.width = 6, .height = 2});
    image.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) {
        element = y == 0 ? (x >= 1 && x <= 3 ? 3 : 9) : (x == 0 || x == 4 ? 4 : 9);
    });
    Order<Lum8u, 1> order;
    order.rule = Rule::Grad;
    order.seed = {2, 0};
    order.newVal = {0};
    order.minDelta = {1};
    order.maxDelta = {1};
    for (const bool eight : {false, true}) {
        order.eight = eight;
        Image<Lum8u> filled = image;
        EXPECT_EQ((fillGrad<Lum8u, 1>(filled, order).area), eight ? 5 : 3);
        expectFill<Lum8u, 1>(image, order);
    }
    // within the span a diagonal neighbour does not count: 5 lies diagonally below 5, and beside and below others
    image.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) {
        element = y == 0 ? static_cast<Lum8u>(3 + x) : x == 3 ? Lum8u{4} : Lum8u{20};
    });
    Image<Lum8u> filled = image;
    EXPECT_EQ((fillGrad<Lum8u, 1>(filled, order).area), 6);
    expectFill<Lum8u, 1>(image, order);
}

TEST(FloodGradFloatsQuick, SpecialValues)
{
    constexpr Lum32f inf = std::numeric_limits<Lum32f>::infinity(), nan = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum32f denormal = std::numeric_limits<Lum32f>::denorm_min();
    const Lum32f values[] = {0.0f, -0.0f, inf, -inf, nan, 1.0f, 16777216.0f, 3.4e38f, -3.4e38f, denormal};
    const Lum32f deltas[] = {0.0f, -0.0f, 1.0f, inf, nan, 3.4e38f, denormal};
    Random random(12);
    for (const Lum32f seed : values) {
        for (const Lum32f minDelta : deltas) {
            for (const Lum32f maxDelta : deltas) {
                for (const bool eight : {false, true}) {
                    Image<Lum32f> image({.width = 21, .height = 5});
                    image.forEach(Area::Roi, [&](Lum32f& element, int, int, int) {
                        element = random.oneIn(3) ? values[random.between(0, 9)] : seed;
                    });
                    image.at(4, 2) = seed;
                    Order<Lum32f, 1> order;
                    order.rule = Rule::Grad;
                    order.eight = eight;
                    order.seed = {4, 2};
                    order.minDelta = {minDelta};
                    order.maxDelta = {maxDelta};
                    order.newVal = {random.oneIn(2) ? 123.0f : nan};
                    expectFill<Lum32f, 1>(image, order);
                    Image<Lum32f> colour({.width = 21, .height = 5, .channels = 3});
                    colour.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int c) {
                        element = c == x % 3 ? image.at(x, y) : 5.0f;
                    });
                    Order<Lum32f, 3> order3;
                    order3.rule = Rule::Grad;
                    order3.eight = eight;
                    order3.seed = {4, 2};
                    order3.minDelta = {minDelta, 9, minDelta};
                    order3.maxDelta = {9, maxDelta, maxDelta};
                    order3.newVal = {-8, -9, -10};
                    expectFill<Lum32f, 3>(colour, order3);
                }
            }
        }
    }
}

// The centre and the radius of the two deltas are rounded, and so is each difference.
TEST(FloodGradFloatsQuick, Rounding)
{
    Random random(13);
    for (int i = 0; i < 300; ++i) {
        Image<Lum32f> image({.width = 30, .height = 4});
        image.forEach(Area::Roi, [&](Lum32f& element, int, int, int) {
            element = 10.0f + static_cast<Lum32f>(random.between(0, 5)) * 0.1f;
        });
        Order<Lum32f, 1> order;
        order.rule = Rule::Grad;
        order.eight = i % 2 == 0;
        order.seed = {10, i % 4};
        order.minDelta = {static_cast<Lum32f>(random.between(0, 4)) * 0.1f};
        order.maxDelta = {static_cast<Lum32f>(random.between(0, 4)) * 0.1f};
        expectGrad<Lum32f, 1>(image, order, {});
    }
}

}  // namespace
}  // namespace lumcv::test::flood
