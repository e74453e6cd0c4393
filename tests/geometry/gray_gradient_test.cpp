// The gray gradient compared with its formulas: sizes, values, wide rows, and operands that overlap.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "geometry/gray_gradient_forms.hpp"
#include "geometry/gray_gradient_reference.hpp"
#include "support/compare.hpp"
#include "support/max_cache_size.hpp"
#include "support/random.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

TYPE_SUITE(GrayGradientQuick, GrayElements);

TYPE_SUITE(GrayGradient, GrayElements);

template <class T>
void expectNorm(const Image<T>& source, const Layout& layout, LumiDistanceNorm norm)
{
    Image<T> expected(layout);
    grayGradient(source.pixels(), source.step(), expected.pixels(), expected.step(), sizeOf(source), norm);
    Image<T> result(layout);
    ASSERT_EQ(GrayForm<T>::call(source.pixels(), source.step(), result.pixels(), result.step(), sizeOf(source), norm),
              lumOk);
    EXPECT_TRUE(sameImage(expected, result)) << "norm " << norm;
    EXPECT_TRUE(result.gapsIntact()) << "norm " << norm;
}

template <class T>
void expectAllNorms(const Image<T>& source, const Layout& layout)
{
    const Image<T> before = source;
    for (const LumiDistanceNorm norm : kGrayNorms) {
        expectNorm(source, layout, norm);
    }
    EXPECT_TRUE(sameBytes(before, source)) << "the source was written";
}

template <class T>
void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 3);
        Image<T> source(geometry.layout<T>(0, 3));
        const Values kinds[] = {Values::Ordinary, Values::Extreme, Values::NonFinite};
        fill(source, random, kinds[geometry.number % 3]);
        expectAllNorms(source, geometry.layout<T>(1));
    });
}

TYPE_TEST(GrayGradientQuick, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Quick);
}

TYPE_TEST(GrayGradient, Sizes)
{
    sweepAgainstReference<TypeParam>(Sweep::Full);
}

TYPE_TEST(GrayGradient, WideRows)
{
    for (const LumiSize size : {LumiSize{1100, 3}, {4095, 2}, {4097, 2}, {20000, 3}, {70001, 1}}) {
        Random random(static_cast<std::uint64_t>(size.width));
        Image<TypeParam> source({.width = size.width, .height = size.height, .channels = 3});
        fill(source, random, Values::Extreme);
        Layout layout;
        layout.width = size.width;
        layout.height = size.height;
        layout.gap = 3 * static_cast<int>(sizeof(TypeParam));
        expectAllNorms(source, layout);
        layout.gap = 0;
        layout.guard = Guard::Before;
        expectAllNorms(source, layout);
    }
}

TYPE_TEST(GrayGradient, HighImages)
{
    for (const int width : {1, 3, 17}) {
        Random random(static_cast<std::uint64_t>(width));
        Image<TypeParam> source({.width = width, .height = 3000, .channels = 3});
        fill(source, random, Values::Extreme);
        expectAllNorms(source, {.width = width, .height = 3000});
    }
}

TYPE_TEST(GrayGradient, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        for (const int offset : {0, 1, 5}) {
            Random random(8);
            Image<TypeParam> source({.width = 777, .height = 90, .channels = 3});
            fill(source, random);
            expectAllNorms(source, {.width = 777, .height = 90, .offset = offset});
        }
    }
}

// Every sum of three bytes, and a share of their squares.
TEST(GrayGradientValues, Bytes)
{
    Image<Lum8u> source({.width = 256, .height = 256, .channels = 3});
    for (int third = 0; third < 256; third += third < 3 || third >= 252 ? 1 : 13) {
        source.forEach(Area::Roi, [third](Lum8u& element, int x, int y, int c) {
            element = static_cast<Lum8u>(c == 0 ? x : c == 1 ? y : third);
        });
        expectAllNorms(source, {.width = 256, .height = 256});
        ASSERT_FALSE(testing::Test::HasFailure()) << "third channel " << third;
    }
}

TEST(GrayGradientValues, EverySumOfThreeWords)
{
    Image<Lum16u> source({.width = 493, .height = 400, .channels = 3});
    source.forEach(Area::Roi, [](Lum16u& element, int x, int y, int c) {
        const int sum = std::min(y * 493 + x, 3 * 65535);
        const int first = std::min(sum, 65535);
        const int second = std::min(sum - first, 65535);
        const int channels[] = {second, sum - first - second, first};
        element = static_cast<Lum16u>(channels[c]);
    });
    expectNorm(source, {.width = 493, .height = 400}, lumGradNormL1);
}

// Around every power of two and at both ends: there the squares leave the 24 bits of a float and the 32 of a word.
TEST(GrayGradientValues, SquaresOfWords)
{
    std::vector<Lum16u> levels = {0, 1, 2, 3, 37837, 37838, 46340, 46341, 53509, 53510};
    for (int power = 4; power <= 65536; power *= 2) {
        for (const int level : {power - 1, power, power + 1, power + power / 2}) {
            levels.push_back(static_cast<Lum16u>(std::min(level, 65535)));
        }
    }
    const auto count = static_cast<int>(levels.size());
    for (const Lum16u third : levels) {
        Image<Lum16u> source({.width = count, .height = count, .channels = 3});
        source.forEach(Area::Roi, [&](Lum16u& element, int x, int y, int c) {
            element = c == 0   ? levels[static_cast<std::size_t>(x)]
                      : c == 1 ? levels[static_cast<std::size_t>(y)]
                               : third;
        });
        expectNorm(source, {.width = count, .height = count}, lumGradNormL2);
        ASSERT_FALSE(testing::Test::HasFailure()) << "third channel " << third;
    }
}

template <class T>
T ofOnePixel(T a, T b, T c, LumiDistanceNorm norm)
{
    const T source[3] = {a, b, c};
    T result = 77;
    EXPECT_EQ(GrayForm<T>::call(source, sizeof source, &result, sizeof result, {1, 1}, norm), lumOk);
    return result;
}

// The multipliers of the integer means are thirds cut short: of bytes it does not show, of words it does.
TEST(GrayGradientValuesQuick, EqualChannels)
{
    for (int level = 0; level <= 255; ++level) {
        const auto value = static_cast<Lum8u>(level);
        EXPECT_EQ(ofOnePixel(value, value, value, lumGradNormInf), value);
        EXPECT_EQ(ofOnePixel(value, value, value, lumGradNormL1), value);
        EXPECT_EQ(ofOnePixel(value, value, value, lumGradNormL2), value);
    }
    constexpr Lum16u most = 65535;
    EXPECT_EQ(ofOnePixel(most, most, most, lumGradNormInf), most);
    EXPECT_EQ(ofOnePixel(most, most, most, lumGradNormL1), 65531);
    EXPECT_EQ(ofOnePixel(most, most, most, lumGradNormL2), most);
}

// A sum, where the integer forms have a mean.
TEST(GrayGradientValuesQuick, FloatSumIsNotDivided)
{
    EXPECT_EQ(ofOnePixel(-1.0f, 1.0f, 0.0f, lumGradNormL1), 2.0f);
    EXPECT_EQ(ofOnePixel(3.0f, 3.0f, -3.0f, lumGradNormL1), 9.0f);
    EXPECT_EQ(ofOnePixel(3.0f, 3.0f, -3.0f, lumGradNormL2), 3.0f);
    EXPECT_EQ(ofOnePixel(-4.0f, 1.0f, 2.0f, lumGradNormInf), 4.0f);
}

// A comparison with a not-a-number is false, and the later value is taken.
TEST(GrayGradientValuesQuick, LargestOfUnorderedFloats)
{
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    EXPECT_EQ(ofOnePixel(nan, 1.0f, -2.0f, lumGradNormInf), 2.0f);
    EXPECT_EQ(ofOnePixel(5.0f, nan, -2.0f, lumGradNormInf), 2.0f);
    EXPECT_TRUE(std::isnan(ofOnePixel(5.0f, 7.0f, nan, lumGradNormInf)));
    EXPECT_TRUE(std::isnan(ofOnePixel(nan, 7.0f, 1.0f, lumGradNormL1)));
    EXPECT_TRUE(std::isnan(ofOnePixel(7.0f, 1.0f, nan, lumGradNormL2)));
}

TEST(GrayGradientValuesQuick, FloatsBeyondTheRange)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f most = std::numeric_limits<Lum32f>::max();
    EXPECT_EQ(ofOnePixel(most, most, 0.0f, lumGradNormL1), infinity);
    EXPECT_EQ(ofOnePixel(1e30f, 0.0f, 0.0f, lumGradNormL2), infinity);
    EXPECT_EQ(ofOnePixel(1e-30f, 1e-30f, 0.0f, lumGradNormL2), 0.0f);
    EXPECT_EQ(ofOnePixel(-infinity, 0.0f, 0.0f, lumGradNormInf), infinity);
    for (const LumiDistanceNorm norm : kGrayNorms) {
        EXPECT_TRUE(sameElement(ofOnePixel(-0.0f, -0.0f, -0.0f, norm), 0.0f)) << "norm " << norm;
    }
}

TYPE_TEST(GrayGradientQuick, ThreadsShareASource)
{
    Random random(4);
    Image<TypeParam> source({.width = 301, .height = 20, .channels = 3});
    fill(source, random);
    std::thread other([&] { expectAllNorms(source, {.width = 301, .height = 20}); });
    expectAllNorms(source, {.width = 301, .height = 20});
    other.join();
}

}  // namespace
}  // namespace lumcv::test::geometry
