// Chamfer distances compared with plain passes, and the rules of their weights by name.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "distance/chamfer_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::distance {
namespace {

using Outputs = testing::Types<Lum8u, Lum16u, Lum32f>;
TYPE_SUITE(ChamferQuick, Outputs);

TYPE_SUITE(Chamfer, Outputs);

/// Every weight at least every few cases, with other contents each time.
template <class T>
void expectGeometry(const Geometry& geometry, std::size_t weightsPerCase)
{
    const auto& weights = weightsOf<T>();
    Image<Lum8u> source(geometry.layout<Lum8u>(0));
    for (std::size_t i = 0; i < weightsPerCase; ++i) {
        const auto number = static_cast<std::size_t>(geometry.number) * weightsPerCase + i;
        draw(source, contentOf(static_cast<int>(number % 35)), number);
        expectDistances<T>(source, weights[number % weights.size()], geometry.layout<T>(1));
    }
    EXPECT_TRUE(source.gapsIntact());
}

TYPE_TEST(ChamferQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 4); });
}

TYPE_TEST(Chamfer, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 3); });
}

// More rows than those that the last rows' rules concern.
TYPE_TEST(Chamfer, HigherImages)
{
    Geometry geometry;
    for (const int height : {4, 6, 9, 21}) {
        for (const int width : {1, 2, 3, 4, 5, 15, 16, 17, 31, 32, 33, 35, 63, 64, 66, 70}) {
            geometry.width = width;
            geometry.height = height;
            geometry.placement = geometry.number % 3;
            SCOPED_TRACE(geometry);
            expectGeometry<TypeParam>(geometry, 11);
            ASSERT_FALSE(testing::Test::HasFailure());
            ++geometry.number;
        }
    }
}

// Heights around every number of rows that may be worked on at once, and widths below and above what that takes.
TYPE_TEST(Chamfer, BandsOfRows)
{
    Geometry geometry;
    for (const int height : {8, 15, 16, 17, 18, 31, 32, 33, 34, 63, 64, 65, 66, 67, 130}) {
        for (const int width : {1, 2, 4, 6, 19, 40, 65, 97, 130, 200}) {
            geometry.width = width;
            geometry.height = height;
            geometry.placement = geometry.number % 3;
            SCOPED_TRACE(geometry);
            expectGeometry<TypeParam>(geometry, 3);
            ASSERT_FALSE(testing::Test::HasFailure());
            ++geometry.number;
        }
    }
}

// All contents with all weights.
TYPE_TEST(Chamfer, EveryContentWithEveryWeight)
{
    for (const auto& weights : weightsOf<TypeParam>()) {
        for (int content = 0; content < static_cast<int>(Content::Count); ++content) {
            Image<Lum8u> source(layoutOf(37, 11));
            draw(source, contentOf(content), static_cast<std::uint64_t>(content));
            expectDistances<TypeParam>(source, weights, layoutOf(37, 11));
        }
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TYPE_TEST(ChamferQuick, WithoutZeroEverythingIsSaturated)
{
    for (const auto& weights : weightsOf<TypeParam>()) {
        for (const LumiSize size : {LumiSize{1, 1}, {2, 2}, {3, 9}, {9, 3}, {40, 5}}) {
            Image<Lum8u> source(layoutOf(size.width, size.height));
            draw(source, Content::NoZero, 1);
            Image<TypeParam> result(layoutOf(size.width, size.height));
            EXPECT_EQ(
                transform<TypeParam>(source.pixels(), source.step(), result.pixels(), result.step(), size, weights),
                lumOk);
            result.forEach(Area::Roi, [&](TypeParam& element, int x, int y, int) {
                EXPECT_EQ(element, static_cast<TypeParam>(Forms<TypeParam>::sat))
                    << weights << ", x " << x << ", y " << y;
            });
        }
    }
}

TYPE_TEST(ChamferQuick, SinglePixel)
{
    for (const auto& weights : weightsOf<TypeParam>()) {
        for (const int value : {0, 1, 255}) {
            Image<Lum8u> source(layoutOf(1, 1));
            source.at(0, 0) = static_cast<Lum8u>(value);
            Image<TypeParam> result(layoutOf(1, 1));
            EXPECT_EQ(transform<TypeParam>(source.pixels(), 1, result.pixels(), sizeof(TypeParam), {1, 1}, weights),
                      lumOk);
            EXPECT_EQ(result.at(0, 0), value == 0 ? TypeParam{0} : static_cast<TypeParam>(Forms<TypeParam>::sat));
        }
    }
}

/// The distances from a single zero, as an image without gaps.
template <class T>
Image<T> fromOneZero(int width, int height, int x, int y, const Weights<typename Forms<T>::Metric>& weights)
{
    Image<Lum8u> source(layoutOf(width, height));
    source.forEach(Area::Roi, [&](Lum8u& element, int i, int j, int) { element = i == x && j == y ? 0 : 200; });
    Image<T> result(layoutOf(width, height));
    EXPECT_EQ(transform<T>(source.pixels(), source.step(), result.pixels(), result.step(), {width, height}, weights),
              lumOk);
    return result;
}

// m1 >= 2 * m0: the city-block distance.
TYPE_TEST(ChamferQuick, DiagonalThatNeverWins)
{
    using Metric = typename Forms<TypeParam>::Metric;
    for (const Metric m1 : {Metric{4}, Metric{5}, Metric{100}}) {
        const Image<TypeParam> result = fromOneZero<TypeParam>(19, 9, 7, 3, {3, {2, m1, 0}});
        for (int y = 0; y < 9; ++y) {
            for (int x = 0; x < 19; ++x) {
                EXPECT_EQ(result.at(x, y), static_cast<TypeParam>(2 * (std::abs(x - 7) + std::abs(y - 3))))
                    << "x " << x << ", y " << y;
            }
        }
    }
}

// The step over two columns that only the last row knows. In the other rows a pixel takes a diagonal to the row before
// and one back, where there is one that has been treated.
TYPE_TEST(ChamferQuick, HeavyEdgeInTheLastRow)
{
    for (const int height : {2, 3, 6}) {
        const Image<TypeParam> result = fromOneZero<TypeParam>(20, height, 9, height - 1, {3, {10, 1, 0}});
        for (const int x : {1, 3, 5, 7, 11, 13, 15, 17, 19}) {
            EXPECT_EQ(result.at(x, height - 1), static_cast<TypeParam>(std::abs(x - 9))) << "x " << x;
        }
        EXPECT_EQ(result.at(8, height - 1), TypeParam{10});
    }
    // the first row of two has no such step: two columns away it costs two edge steps, as no row is above it; the
    // backward pass then finds the way over the row below
    const Image<TypeParam> first = fromOneZero<TypeParam>(9, 2, 4, 0, {3, {10, 1, 0}});
    EXPECT_EQ(first.at(5, 1), TypeParam{1});
    EXPECT_EQ(first.at(6, 0), TypeParam{2});
    // nor has an image of one row, or of one column
    const Image<TypeParam> row = fromOneZero<TypeParam>(9, 1, 4, 0, {3, {10, 1, 0}});
    EXPECT_EQ(row.at(6, 0), TypeParam{20});
    EXPECT_EQ(row.at(2, 0), TypeParam{20});
    const Image<TypeParam> column = fromOneZero<TypeParam>(1, 9, 0, 4, {3, {10, 1, 0}});
    EXPECT_EQ(column.at(0, 6), TypeParam{20});
    // column W - 2 of the last row has no pixel two columns behind it
    const Image<TypeParam> end = fromOneZero<TypeParam>(9, 2, 8, 1, {3, {10, 1, 0}});
    EXPECT_EQ(end.at(7, 1), TypeParam{10});
    EXPECT_EQ(end.at(6, 1), TypeParam{2});
}

// A knight's step as long as what it is made of leaves the 3x3 result, with the diagonal as it was given.
TYPE_TEST(ChamferQuick, HandedOver)
{
    using Metric = typename Forms<TypeParam>::Metric;
    for (const Weights<Metric>& weights :
         {Weights<Metric>{5, {5, 7, 12}}, {5, {5, 7, 90}}, {5, {5, 99, 15}}, {5, {1, 1, 2}}, {5, {7, 2, 9}}}) {
        Image<Lum8u> source(layoutOf(45, 13));
        draw(source, Content::Sparse, 3);
        Image<TypeParam> handedOver(layoutOf(45, 13));
        Image<TypeParam> direct(layoutOf(45, 13));
        EXPECT_EQ(transform<TypeParam>(source.pixels(), source.step(), handedOver.pixels(), handedOver.step(), {45, 13},
                                       weights),
                  lumOk);
        EXPECT_EQ(transform<TypeParam>(source.pixels(), source.step(), direct.pixels(), direct.step(), {45, 13},
                                       {3, {weights.m[0], weights.m[1], 0}}),
                  lumOk);
        EXPECT_TRUE(sameImage(direct, handedOver)) << weights;
    }
}

// All offsets of a regular mask within two pixels.
TYPE_TEST(ChamferQuick, RegularMask)
{
    const Image<TypeParam> result = fromOneZero<TypeParam>(9, 9, 4, 4, {5, {5, 7, 11}});
    const int expected[3][3] = {{0, 5, 10}, {5, 7, 11}, {10, 11, 14}};
    for (int y = 2; y <= 6; ++y) {
        for (int x = 2; x <= 6; ++x) {
            EXPECT_EQ(result.at(x, y), static_cast<TypeParam>(expected[std::abs(y - 4)][std::abs(x - 4)]))
                << "x " << x << ", y " << y;
        }
    }
}

// Two knight's steps are shorter than two edge steps or two diagonals; the lengths are those of the extended mask.
TYPE_TEST(ChamferQuick, ExtendedMask)
{
    const Image<TypeParam> result = fromOneZero<TypeParam>(11, 11, 5, 5, {5, {9, 8, 5}});
    EXPECT_EQ(result.at(6, 5), TypeParam{9});
    EXPECT_EQ(result.at(5, 4), TypeParam{9});
    EXPECT_EQ(result.at(6, 6), TypeParam{8});
    EXPECT_EQ(result.at(7, 6), TypeParam{5});
    EXPECT_EQ(result.at(4, 3), TypeParam{5});
    EXPECT_EQ(result.at(7, 5), TypeParam{10});
    EXPECT_EQ(result.at(5, 7), TypeParam{10});
    EXPECT_EQ(result.at(7, 7), TypeParam{14});
}

// Distances stop at the largest value, and what lies behind a nearer zero falls again on the way back.
TEST(ChamferBytesQuick, SaturationIsLoweredAgain)
{
    for (const Weights<Lum32s>& weights : {Weights<Lum32s>{3, {60, 80, 0}}, {5, {60, 84, 132}}, {3, {1, 2, 0}}}) {
        Image<Lum8u> source(layoutOf(700, 3));
        draw(source, Content::NoZero, 1);
        source.at(0, 1) = 0;
        source.at(699, 1) = 0;
        Image<Lum8u> result(layoutOf(700, 3));
        EXPECT_EQ(transform<Lum8u>(source.pixels(), source.step(), result.pixels(), result.step(), {700, 3}, weights),
                  lumOk);
        const int m0 = weights.m[0];
        for (int x = 0; x < 700; ++x) {
            EXPECT_EQ(int{result.at(x, 1)}, std::min(255, m0 * std::min(x, 699 - x))) << "x " << x;
        }
    }
}

// A sum of steps is rounded after each, so that it is no product.
TEST(ChamferFloatsQuick, RunningSums)
{
    for (const Weights<Lum32f>& weights : {Weights<Lum32f>{3, {0.1f, 0.1f, 0}},
                                           {3, {0.1f, 0.15f, 0}},
                                           {3, {0.1f, 0.9f, 0}},
                                           {5, {0.1f, 0.14f, 0.22f}}}) {
        const Image<Lum32f> result = fromOneZero<Lum32f>(90, 5, 0, 2, weights);
        Lum32f sum = 0;
        for (int x = 1; x < 90; ++x) {
            sum += 0.1f;
            EXPECT_EQ(result.at(x, 2), sum) << weights << ", x " << x;
        }
    }
}

// Weights within the tolerance of a rule count as if they met it.
TEST(ChamferFloatsQuick, ToleranceOfTheRules)
{
    // the knight's step is shorter by 5e-8 of itself than an edge and a diagonal step, and not taken all the same
    const Image<Lum32f> near = fromOneZero<Lum32f>(9, 9, 4, 4, {5, {1, 1.4f, 2.3999998f}});
    EXPECT_EQ(near.at(6, 5), 1 + 1.4f);
    // by 4e-7 of itself it is
    const Image<Lum32f> far = fromOneZero<Lum32f>(9, 9, 4, 4, {5, {1, 1.4f, 2.399999f}});
    EXPECT_EQ(far.at(6, 5), 2.399999f);
}

// No comparison of not-a-numbers holds, and the passes end.
TEST(ChamferFloatsQuick, NotANumberEnds)
{
    const Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    const Lum32f inf = std::numeric_limits<Lum32f>::infinity();
    for (int bits = 1; bits < 27; ++bits) {
        const auto weight = [&](int digit, Lum32f ordinary) { return digit == 0 ? ordinary : digit == 1 ? nan : inf; };
        for (const int maskSize : {3, 5}) {
            for (const LumiSize size : {LumiSize{1, 1}, {3, 20}, {33, 3}, {40, 9}}) {
                Image<Lum8u> source(layoutOf(size.width, size.height));
                draw(source, Content::Sparse, 5);
                Image<Lum32f> result(layoutOf(size.width, size.height, 4));
                EXPECT_EQ(transform<Lum32f>(
                              source.pixels(), source.step(), result.pixels(), result.step(), size,
                              {maskSize, {weight(bits % 3, 1), weight(bits / 3 % 3, 1.2f), weight(bits / 9, 1.1f)}}),
                          lumOk);
                EXPECT_TRUE(result.gapsIntact());
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::distance
