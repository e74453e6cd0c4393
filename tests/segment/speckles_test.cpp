// Speckles: small regions of nearly equal pixels are overwritten.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "segment/flood_shapes.hpp"
#include "segment/speckles_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::speckles {
namespace {

TYPE_SUITE(Speckles, Elements, ElementName);

TYPE_SUITE(SpecklesQuick, Elements, ElementName);

// Levels from 0 to 255 as elements; differences of floats are rounded, those of 16s cross zero.
template <class T>
T elementOf(int level, bool isHigh)
{
    if constexpr (std::floating_point<T>) {
        return isHigh ? 100.0f + static_cast<T>(level) * 0.1f : static_cast<T>(level - 128);
    } else if constexpr (std::is_same_v<T, Lum16s>) {
        return static_cast<T>(isHigh ? std::numeric_limits<T>::max() - 255 + level : level - 4);
    } else {
        return static_cast<T>(isHigh ? std::numeric_limits<T>::max() - 255 + level : level);
    }
}

template <class T>
T deltaOf(int levels, bool isHigh)
{
    return static_cast<T>(std::floating_point<T> && isHigh ? static_cast<T>(levels) * static_cast<T>(0.1f)
                                                           : static_cast<T>(levels));
}

template <class T>
void draw(Image<T>& image, int content, bool isHigh, Random& random)
{
    image.forEach(Area::Roi, [&](T& element, int x, int y, int) {
        int level = 0;
        switch (content) {
            case 0:  // few levels
                level = static_cast<int>(random.between(0, 3));
                break;
            case 1:  // a plane with specks
                level = random.oneIn(9) ? static_cast<int>(random.between(0, 255)) : 20;
                break;
            case 2:  // a slope with noise
                level = (x + 2 * y) % 200 + static_cast<int>(random.between(0, 4));
                break;
            case 3:
                level = 20;
                break;
            default:
                level = static_cast<int>(random.between(0, 255));
        }
        element = elementOf<T>(level, isHigh);
    });
}

template <class T>
Order<T> drawOrder(const Image<T>& image, bool isHigh, Random& random)
{
    const Lum32s sizes[] = {0,
                            1,
                            2,
                            3,
                            5,
                            10,
                            40,
                            image.width() * image.height(),
                            image.width() * image.height() - 1,
                            std::numeric_limits<Lum32s>::max(),
                            -1,
                            std::numeric_limits<Lum32s>::min()};
    const int levels[] = {0, 1, 2, 3, 20, 21, 255, static_cast<int>(random.between(0, 255))};
    Order<T> order;
    order.speckleVal = elementOf<T>(levels[random.between(0, 7)], isHigh);
    order.maxSpeckleSize = sizes[random.oneIn(3) ? random.between(0, 11) : random.between(1, 6)];
    order.maxPixDiff =
        deltaOf<T>(static_cast<int>(random.oneIn(3) ? random.between(0, 40) : random.between(0, 2)), isHigh);
    return order;
}

template <class T>
void expectSweep(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 9);
        Layout layout = geometry.layout<T>(0);
        layout.bottomUp = random.oneIn(3);
        Image<T> image(layout);
        const bool isHigh = random.oneIn(2);
        draw(image, geometry.number % 5, isHigh, random);
        expectSpeckles(image, drawOrder(image, isHigh, random), random.oneIn(2) ? Guard::After : Guard::Before,
                       static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 63)));
    });
}

TYPE_TEST(Speckles, Sweep)
{
    expectSweep<TypeParam>(Sweep::Full);
}

TYPE_TEST(SpecklesQuick, Sweep)
{
    expectSweep<TypeParam>(Sweep::Quick);
}

TYPE_TEST(Speckles, HigherImages)
{
    for (int i = 0; i < 200; ++i) {
        Random random(static_cast<std::uint64_t>(i));
        const int width = static_cast<int>(random.between(1, 50)), height = static_cast<int>(random.between(6, 50));
        Image<TypeParam> image({.width = width, .height = height, .bottomUp = i % 3 == 0});
        const bool isHigh = random.oneIn(2);
        draw(image, i % 5, isHigh, random);
        expectSpeckles(image, drawOrder(image, isHigh, random));
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

// Regions of all shapes, and between them regions of the other level.
TYPE_TEST(Speckles, TangledShapes)
{
    Random random(51);
    for (const LumiSize size : {LumiSize{1, 1}, {2, 3}, {11, 3}, {21, 13}, {33, 29}, {101, 40}}) {
        for (const Pattern& shape : flood::tangledShapes(size.width, size.height, random)) {
            for (const Pattern& pattern : flood::everyWay(shape)) {
                Image<TypeParam> image({.width = pattern.width, .height = pattern.height});
                image.forEach(Area::Roi, [&](TypeParam& element, int x, int y, int) {
                    element = static_cast<TypeParam>(pattern.at(x, y) > 0 ? 100 : 50);
                });
                SCOPED_TRACE(testing::Message() << pattern);
                for (const Lum32s most : {1, 4, size.width * size.height / 3}) {
                    const int values[] = {50, 100, 7};
                    expectSpeckles<TypeParam>(image, {static_cast<TypeParam>(values[random.between(0, 2)]), most,
                                                      static_cast<TypeParam>(random.oneIn(3) ? 50 : 3)});
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TYPE_TEST(SpecklesQuick, SizesAtTheirLimits)
{
    Random random(52);
    Image<TypeParam> image({.width = 23, .height = 9});
    draw(image, 0, false, random);
    const TypeParam value = elementOf<TypeParam>(1, false);
    for (const Lum32s size : {0, -1, 23 * 9, 23 * 9 + 1, std::numeric_limits<Lum32s>::max()}) {
        Image<TypeParam> marked = image;
        mark<TypeParam>(marked, {value, size, 0});
        if (size <= 0) {
            EXPECT_TRUE(sameImage(image, marked)) << "nothing is a speckle";
        } else {
            marked.forEach(Area::Roi, [&](const TypeParam& element, int, int, int) { EXPECT_EQ(element, value); });
        }
        expectSpeckles<TypeParam>(image, {value, size, 0});
    }
}

// A region of exactly the largest size is a speckle, one of a pixel more is not.
TYPE_TEST(SpecklesQuick, RegionsAroundTheLargestSize)
{
    for (int length = 1; length < 12; ++length) {
        Image<TypeParam> image({.width = 14, .height = 5});
        image.forEach(Area::Roi, [&](TypeParam& element, int x, int y, int) {
            element = static_cast<TypeParam>(y == 2 && x >= 1 && x <= length ? 90 : 30);
        });
        for (Lum32s most = length - 1; most <= length + 1; ++most) {
            expectSpeckles<TypeParam>(image, {0, most, 5});
            Image<TypeParam> marked = image;
            mark<TypeParam>(marked, {0, most, 5});
            EXPECT_EQ(marked.at(1, 2), most >= length ? 0 : 90);
            EXPECT_EQ(marked.at(0, 2), 30);
        }
    }
}

// The ends of a region may differ by any amount: it grows from pixel to pixel.
TYPE_TEST(SpecklesQuick, SlopesAreOneRegion)
{
    Image<TypeParam> image({.width = 60, .height = 4});
    image.forEach(Area::Roi,
                  [](TypeParam& element, int x, int y, int) { element = static_cast<TypeParam>(2 * x + y); });
    for (const int step : {0, 1, 2, 3}) {
        expectSpeckles<TypeParam>(image, {125, 100, static_cast<TypeParam>(step)});
    }
    Image<TypeParam> marked = image;
    mark<TypeParam>(marked, {125, 239, 2});
    EXPECT_TRUE(sameImage(image, marked)) << "240 pixels are one region";
    expectSpeckles<TypeParam>(image, {125, 239, 2});
}

// Pixels of the speckle value divide what lies on their two sides, whatever the difference allows.
TYPE_TEST(SpecklesQuick, SpeckleValueDivides)
{
    Image<TypeParam> image({.width = 21, .height = 7});
    image.forEach(Area::Roi, [](TypeParam& element, int x, int, int) {
        element = static_cast<TypeParam>(x == 10 ? 50 : x < 10 ? 49 : 51);
    });
    expectSpeckles<TypeParam>(image, {50, 70, 100});
    expectSpeckles<TypeParam>(image, {50, 69, 100});
    Image<TypeParam> marked = image;
    mark<TypeParam>(marked, {50, 69, 100});
    EXPECT_TRUE(sameImage(image, marked));
    mark<TypeParam>(marked, {50, 70, 100});
    EXPECT_EQ(marked.at(0, 0), 50);
    // were it not for the value, all would be one region
    expectSpeckles<TypeParam>(image, {0, 70, 100});
}

// What has been painted above does not join what is searched below, though its new value would.
TYPE_TEST(SpecklesQuick, PaintedPixelsJoinNothing)
{
    Image<TypeParam> image({.width = 9, .height = 6});
    image.forEach(Area::Roi, [](TypeParam& element, int, int y, int) {
        element = static_cast<TypeParam>(y == 0 ? 10 : y == 1 ? 80 : 101);
    });
    for (const Lum32s most : {8, 9, 10, 35, 36}) {
        expectSpeckles<TypeParam>(image, {100, most, 2});
    }
}

TYPE_TEST(SpecklesQuick, WithoutDifference)
{
    Random random(53);
    Image<TypeParam> image({.width = 37, .height = 11});
    for (int i = 0; i < 8; ++i) {
        draw(image, 0, i % 2 == 0, random);
        expectSpeckles<TypeParam>(image, {elementOf<TypeParam>(i, i % 2 == 0), i, 0});
    }
}

// The rows of a negative stride; those of bytes that are no whole number of elements.
TYPE_TEST(SpecklesQuick, StridesAreNotTested)
{
    Random random(54);
    for (const int width : {1, 7, 16, 33}) {
        Image<TypeParam> image({.width = width, .height = 8, .gap = 3 * sizeof(TypeParam), .bottomUp = true});
        draw(image, 1, false, random);
        expectSpeckles<TypeParam>(image, {3, 2, 4});

        Image<TypeParam> expected = image;
        mark<TypeParam>(expected, {3, 2, 4});
        const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(TypeParam);
        const int height = 8;
        // rows that go up or down, a whole number of elements apart or not
        for (const std::size_t gap : {sizeof(TypeParam), std::size_t{1}}) {
            for (const bool isUp : {false, true}) {
                const std::size_t stride = rowBytes + gap;
                std::vector<unsigned char> bytes(stride * 8, 0xEE);
                const auto rowAt = [&](int y) {
                    return bytes.data() + stride * static_cast<std::size_t>(isUp ? height - 1 - y : y);
                };
                for (int y = 0; y < height; ++y) {
                    std::memcpy(rowAt(y), image.row(y), rowBytes);
                }
                const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes(width, height)));
                const auto step = isUp ? -static_cast<Lum32s>(stride) : static_cast<Lum32s>(stride);
                ASSERT_EQ(Exports<TypeParam>::mark(reinterpret_cast<TypeParam*>(rowAt(0)), step, {width, height}, 3, 2,
                                                   4, lumNormInf, scratch.data()),
                          lumOk);
                for (int y = 0; y < height; ++y) {
                    ASSERT_EQ(std::memcmp(rowAt(y), expected.row(y), rowBytes), 0) << "row " << y << ", gap " << gap;
                    for (std::size_t i = rowBytes; i < stride; ++i) {
                        ASSERT_EQ(rowAt(y)[i], 0xEE) << "behind row " << y;
                    }
                }
            }
        }
    }
}

// 16s: a difference is a magnitude up to 65535, and so is what it is compared with.
TEST(SpecklesCasesQuick, DifferencesOf16s)
{
    const Lum16s values[] = {-32768, -32767, -1, 0, 1, 16384, 32766, 32767};
    Random random(55);
    for (const Lum16s maxPixDiff : values) {
        for (int i = 0; i < 20; ++i) {
            Image<Lum16s> image({.width = 35, .height = 7});
            image.forEach(Area::Roi, [&](Lum16s& element, int, int, int) { element = values[random.between(0, 7)]; });
            expectSpeckles<Lum16s>(image, {values[i % 8], 1 + i % 5, maxPixDiff});
        }
    }
    Image<Lum16s> image({.width = 2, .height = 1});
    image.at(0, 0) = -32768;
    image.at(1, 0) = 32767;
    for (const Lum16s maxPixDiff : {Lum16s{-1}, Lum16s{-2}, Lum16s{1}}) {
        Image<Lum16s> marked = image;
        mark<Lum16s>(marked, {5, 1, maxPixDiff});
        EXPECT_EQ(marked.at(0, 0), maxPixDiff == -1 ? -32768 : 5);
        expectSpeckles<Lum16s>(image, {5, 1, maxPixDiff});
    }
}

TEST(SpecklesCasesQuick, ExtremesOfUnsigned)
{
    Random random(56);
    for (int i = 0; i < 60; ++i) {
        Image<Lum16u> words({.width = 40, .height = 6});
        fill(words, random, Values::Extreme);
        Image<Lum8u> bytes({.width = 40, .height = 6});
        fill(bytes, random, Values::Extreme);
        const auto difference = random.value<Lum16u>(Values::Extreme);
        expectSpeckles<Lum16u>(words, {random.value<Lum16u>(Values::Extreme), 1 + i % 7, difference});
        expectSpeckles<Lum8u>(bytes, {random.value<Lum8u>(Values::Extreme), 1 + i % 7, static_cast<Lum8u>(difference)});
    }
}

// Zeros are equal; what is not a number equals nothing and joins nothing, also as speckle value and as difference.
TEST(SpecklesCasesQuick, FloatSpecials)
{
    constexpr Lum32f inf = std::numeric_limits<Lum32f>::infinity(), nan = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum32f denormal = std::numeric_limits<Lum32f>::denorm_min();
    const Lum32f values[] = {0.0f, -0.0f, inf, -inf, nan, denormal, 1.0f, 3.4e38f, -3.4e38f, 1e-3f};
    Random random(57);
    for (const Lum32f speckleVal : values) {
        for (const Lum32f maxPixDiff : values) {
            for (const Lum32s most : {1, 2, 5, 1000}) {
                Image<Lum32f> image({.width = 19, .height = 5});
                image.forEach(Area::Roi,
                              [&](Lum32f& element, int, int, int) { element = values[random.between(0, 9)]; });
                expectSpeckles<Lum32f>(image, {speckleVal, most, maxPixDiff});
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::speckles
