// What dilation and erosion with a gray element store, over sizes, elements, anchors and values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "morph/gray_element_fixture.hpp"
#include "support/compare.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gray {
namespace {

TYPE_SUITE(GrayElement, Cases, CaseName);

TYPE_SUITE(GrayElementQuick, Cases, CaseName);

constexpr Entries kEntries[] = {Entries::Small, Entries::Wide, Entries::Extreme, Entries::NonFinite};

template <class C>
void sweepAgainstReference(Sweep sweep)
{
    using T = typename C::T;
    const LumiSize sizes[] = {{3, 3}, {1, 1}, {5, 1}, {4, 2}, {1, 5}, {2, 2}, {7, 3}, {8, 1}, {3, 8}, {9, 2}, {13, 1}};
    forEachGeometry(sweep, [&](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number));
        const Entries entries = kEntries[random.between(0, 3)];
        Image<T> source(geometry.layout<T>(0)), destination(geometry.layout<T>(1));
        fill(source, random, drawValues(random));
        expectReference<C>(drawElement<T>(sizes[random.between(0, 10)], entries, random), source, destination);
    });
}

TYPE_TEST(GrayElement, AgreesWithTheReference)
{
    sweepAgainstReference<TypeParam>(Sweep::Full);
}

TYPE_TEST(GrayElementQuick, AgreesWithTheReference)
{
    sweepAgainstReference<TypeParam>(Sweep::Quick);
}

// Every number of entries in a row, with the anchor at every corner and in the middle.
TYPE_TEST(GrayElement, ElementsOfEverySize)
{
    using T = typename TypeParam::T;
    Random random(7);
    for (int elementHeight = 1; elementHeight <= 5; elementHeight += elementHeight == 3 ? 2 : 1) {
        for (int elementWidth = 1; elementWidth <= 19; ++elementWidth) {
            const LumiSize size = {elementWidth, elementHeight};
            for (const LumiPoint anchor : outermostAnchors(size)) {
                const Entries entries = kEntries[random.between(0, 3)];
                Image<T> source({.width = 37, .height = 5}), destination({.width = 37, .height = 5});
                fill(source, random, drawValues(random));
                expectReference<TypeParam>(drawElement<T>(size, anchor, entries, random), source, destination);
                if (testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TYPE_TEST(GrayElement, LargeElements)
{
    using T = typename TypeParam::T;
    Random random(8);
    for (const LumiSize size : {LumiSize{15, 15}, LumiSize{31, 8}, LumiSize{9, 33}, LumiSize{65, 2}, LumiSize{2, 65}}) {
        for (const LumiPoint anchor : outermostAnchors(size)) {
            const Entries entries = kEntries[random.between(0, 3)];
            Image<T> source({.width = 70, .height = 11}), destination({.width = 70, .height = 11});
            fill(source, random, drawValues(random));
            expectReference<TypeParam>(drawElement<T>(size, anchor, entries, random), source, destination);
        }
    }
}

TYPE_TEST(GrayElementQuick, AnchorAtEveryPlace)
{
    using T = typename TypeParam::T;
    Random random(9);
    for (const LumiSize roiSize : {LumiSize{1, 1}, LumiSize{3, 2}, LumiSize{6, 5}, LumiSize{21, 4}}) {
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 5; ++x) {
                Image<T> source({.width = roiSize.width, .height = roiSize.height});
                Image<T> destination({.width = roiSize.width, .height = roiSize.height});
                fill(source, random);
                expectReference<TypeParam>(drawElement<T>({5, 4}, {x, y}, Entries::Small, random), source, destination);
            }
        }
    }
}

// The window reaches beyond both sides of the ROI at once.
TYPE_TEST(GrayElementQuick, ElementLargerThanTheImage)
{
    using T = typename TypeParam::T;
    Random random(10);
    for (const LumiSize roiSize :
         {LumiSize{1, 1}, LumiSize{2, 1}, LumiSize{1, 2}, LumiSize{3, 5}, LumiSize{18, 2}, LumiSize{2, 9}}) {
        for (const LumiSize size : {LumiSize{23, 11}, LumiSize{19, 1}, LumiSize{1, 12}, LumiSize{20, 10}}) {
            for (const LumiPoint anchor : outermostAnchors(size)) {
                const Entries entries = kEntries[random.between(0, 3)];
                Image<T> source({.width = roiSize.width, .height = roiSize.height});
                Image<T> destination({.width = roiSize.width, .height = roiSize.height});
                fill(source, random, drawValues(random));
                expectReference<TypeParam>(drawElement<T>(size, anchor, entries, random), source, destination);
            }
        }
    }
}

// Where no other entry can win, position (i, j) of the element sees the pixel at (x + i - anchorX, y + j - anchorY) in
// both operations, and beyond the ROI its nearest pixel.
TYPE_TEST(GrayElementQuick, ElementIsNotReflectedAndEdgesAreReplicated)
{
    using T = typename TypeParam::T;
    constexpr int sign = TypeParam::form == Form::Dilate ? 1 : -1;
    Image<T> source({.width = 9, .height = 7}), destination({.width = 9, .height = 7});
    source.forEach(Area::Roi, [](T& pixel, int x, int y, int) { pixel = static_cast<T>(100 + x + 10 * y); });
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 4; ++i) {
            Element<T> element{{4, 3}, {1, 2}, std::vector<Entry<T>>(12, -1000)};
            element.entries[static_cast<std::size_t>(j * 4 + i)] = 5;
            ASSERT_TRUE(applied<TypeParam>(element, source, destination));
            for (int y = 0; y < 7; ++y) {
                for (int x = 0; x < 9; ++x) {
                    const T seen = source.at(std::clamp(x + i - 1, 0, 8), std::clamp(y + j - 2, 0, 6));
                    ASSERT_EQ(destination.at(x, y), seen + sign * 5)
                        << "entry " << i << ", " << j << " at x " << x << ", y " << y;
                }
            }
        }
    }
}

TYPE_TEST(GrayElementQuick, OneByOneOfZeroCopies)
{
    using T = typename TypeParam::T;
    Random random(11);
    for (const int width : {1, 5, 16, 67}) {
        Image<T> source({.width = width, .height = 3}), destination({.width = width, .height = 3, .gap = 8});
        fill(source, random, Values::Extreme);
        ASSERT_TRUE(applied<TypeParam>(Element<T>{}, source, destination));
        // a negative zero and the entry add up to a positive one
        const auto positiveZero = [](T& pixel, int, int, int) { pixel = pixel == 0 ? T{0} : pixel; };
        if (TypeParam::form == Form::Dilate) {
            source.forEach(Area::Roi, positiveZero);
        }
        EXPECT_TRUE(sameImage(source, destination));
        EXPECT_TRUE(destination.gapsIntact());
    }
}

// One position and one pixel: the sum or difference itself, in its last bit and in the sign of its zero.
TYPE_TEST(GrayElementQuick, OneByOneOfAnyValue)
{
    using T = typename TypeParam::T;
    Random random(12);
    std::vector<Entry<T>> entries = {0, 10, -10, 1, -1, 255, -255, 256, -256, 127, 128, -128, 1000, -1000};
    if constexpr (std::is_same_v<T, Lum32f>) {
        for (const Lum32f value : {-0.0f, 0.1f, 1e-40f, -1e-40f, 3e38f, -3e38f}) {
            entries.push_back(value);
        }
    } else {
        for (int i = 0; i < 40; ++i) {
            entries.push_back(drawEntry<T>(Entries::Extreme, random));
        }
    }
    for (const Entry<T> entry : entries) {
        const Element<T> element{{1, 1}, {0, 0}, {entry}};
        Image<T> source({.width = 256}), destination({.width = 256});
        fill(source, random, Values::Extreme);
        if constexpr (std::is_same_v<T, Lum8u>) {
            source.forEach(Area::Roi, [](T& pixel, int x, int, int) { pixel = static_cast<T>(x); });
        }
        ASSERT_TRUE(applied<TypeParam>(element, source, destination));
        EXPECT_TRUE(sameImage(reference<T>(TypeParam::form, element, source, {256, 1}), destination))
            << "entry " << entry;
    }
}

TEST(GrayElementBytesQuick, TenSaturates)
{
    const Element<Lum8u> ten{{1, 1}, {0, 0}, {10}};
    Image<Lum8u> source({.width = 5}), destination({.width = 5});
    const auto expect = [&](std::vector<Lum8u> expected) {
        EXPECT_TRUE(sameElements(expected.data(), destination.pixels(), 5));
    };
    const Lum8u values[] = {0, 5, 10, 245, 250};
    source.forEach(Area::Roi, [&](Lum8u& pixel, int x, int, int) { pixel = values[x]; });
    ASSERT_TRUE((applied<Case<Lum8u, Form::Dilate>>(ten, source, destination)));
    expect({10, 15, 20, 255, 255});
    ASSERT_TRUE((applied<Case<Lum8u, Form::Erode>>(ten, source, destination)));
    expect({0, 0, 0, 235, 240});
}

// A negative entry lowers in the dilation, down to 0, and raises in the erosion, up to 255.
TEST(GrayElementBytesQuick, NegativeEntries)
{
    const Element<Lum8u> element{{3, 1}, {1, 0}, {-20, -7, -20}};
    Image<Lum8u> source({.width = 5}), destination({.width = 5});
    const auto expect = [&](std::vector<Lum8u> expected) {
        EXPECT_TRUE(sameElements(expected.data(), destination.pixels(), 5));
    };
    const Lum8u values[] = {3, 6, 100, 250, 252};
    source.forEach(Area::Roi, [&](Lum8u& pixel, int x, int, int) { pixel = values[x]; });
    ASSERT_TRUE((applied<Case<Lum8u, Form::Dilate>>(element, source, destination)));
    expect({0, 80, 230, 243, 245});
    ASSERT_TRUE((applied<Case<Lum8u, Form::Erode>>(element, source, destination)));
    expect({10, 13, 26, 120, 255});
}

// No sum wraps: an entry that can never win stays out, whatever the pixel, and one that always wins saturates.
TYPE_TEST(GrayElementQuick, EndsOfTheRangeOfEntries)
{
    using T = typename TypeParam::T;
    constexpr bool dilate = TypeParam::form == Form::Dilate;
    using Limits = std::numeric_limits<Entry<T>>;
    const Entry<T> least = std::is_same_v<T, Lum32f> ? -Limits::infinity() : Limits::min();
    const Entry<T> most = std::is_same_v<T, Lum32f> ? Limits::infinity() : Limits::max();
    constexpr T lowest = std::is_same_v<T, Lum32f> ? -std::numeric_limits<T>::infinity() : T{0};
    constexpr T highest = std::is_same_v<T, Lum32f> ? std::numeric_limits<T>::infinity() : T{255};
    Random random(13);
    for (const int width : {1, 4, 33, 70}) {
        Image<T> source({.width = width, .height = 4}), destination({.width = width, .height = 4});
        fill(source, random);
        const LumiSize roiSize = {width, 4};

        Element<T> onlyCentre{{5, 3}, {2, 1}, std::vector<Entry<T>>(15, least)};
        onlyCentre.entries[7] = 0;
        ASSERT_TRUE(applied<TypeParam>(onlyCentre, source, destination));
        EXPECT_TRUE(sameImage(source, destination)) << "the least value everywhere but at the anchor";

        const Element<T> nowhere{{5, 3}, {2, 1}, std::vector<Entry<T>>(15, least)};
        ASSERT_TRUE(applied<TypeParam>(nowhere, source, destination));
        Image<T> expected({.width = width, .height = 4});
        expected.forEach(Area::Roi, [&](T& pixel, int, int, int) { pixel = dilate ? lowest : highest; });
        EXPECT_TRUE(sameImage(expected, destination)) << "the least value everywhere";

        Element<T> oneWins{{5, 3}, {2, 1}, std::vector<Entry<T>>(15, 3)};
        oneWins.entries[14] = most;
        ASSERT_TRUE(applied<TypeParam>(oneWins, source, destination));
        expected.forEach(Area::Roi, [&](T& pixel, int, int, int) { pixel = dilate ? highest : lowest; });
        EXPECT_TRUE(sameImage(expected, destination)) << "the greatest value at one position";
        EXPECT_TRUE(sameImage(reference<T>(TypeParam::form, oneWins, source, roiSize), destination));
    }
}

// Infinite pixels among finite ones, and rows of nothing else; of the sign that wins, of the one that loses, of both.
template <class C>
void expectInfinitePixels(int percentInfinite)
{
    Random random(static_cast<std::uint64_t>(14 + percentInfinite));
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    for (const int width : {1, 3, 8, 41}) {
        for (const int percentNegative : {0, 50, 100}) {
            Image<Lum32f> source({.width = width, .height = 6}), destination({.width = width, .height = 6});
            source.forEach(Area::Roi, [&](Lum32f& pixel, int, int, int) {
                const bool infinite = random.between(1, 100) <= percentInfinite;
                const bool negative = random.between(1, 100) <= percentNegative;
                pixel = !infinite ? random.value<Lum32f>(Values::Extreme) : negative ? -infinity : infinity;
            });
            expectReference<C>(drawElement<Lum32f>({4, 3}, Entries::Wide, random), source, destination);
        }
    }
}

TEST(GrayElementFloatsQuick, InfinitePixels)
{
    for (const int percent : {20, 70, 100}) {
        expectInfinitePixels<Case<Lum32f, Form::Dilate>>(percent);
        expectInfinitePixels<Case<Lum32f, Form::Erode>>(percent);
    }
}

// Candidates are compared in the order of the element: a not-a-number stays where it comes first, and is passed over
// elsewhere.
template <class C>
void expectNotANumberByPlace()
{
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    constexpr Lum32f sign = C::form == Form::Dilate ? 1 : -1;
    Image<Lum32f> source({.width = 35, .height = 3}), destination({.width = 35, .height = 3});
    source.forEach(Area::Roi, [](Lum32f& pixel, int, int, int) { pixel = 8; });
    for (int place = 0; place < 15; ++place) {
        Element<Lum32f> element{{5, 3}, {2, 1}, std::vector<Lum32f>(15, 1.5f)};
        element.entries[static_cast<std::size_t>(place)] = nan;
        ASSERT_TRUE(applied<C>(element, source, destination));
        destination.forEach(Area::Roi, [&](Lum32f& pixel, int x, int y, int) {
            EXPECT_TRUE(sameElement(pixel, place == 0 ? nan : 8 + sign * 1.5f))
                << "entry " << place << ", x " << x << ", y " << y << ": " << elementText(pixel);
        });
    }
}

TEST(GrayElementFloatsQuick, NotANumberByPlace)
{
    expectNotANumberByPlace<Case<Lum32f, Form::Dilate>>();
    expectNotANumberByPlace<Case<Lum32f, Form::Erode>>();
}

// Of zeros of both signs the first in the order of the element is kept.
template <class C>
void expectFirstZero()
{
    Image<Lum32f> source({.width = 35, .height = 3}), destination({.width = 35, .height = 3});
    source.forEach(Area::Roi, [](Lum32f& pixel, int, int, int) { pixel = -0.0f; });
    const Lum32f negative = C::form == Form::Dilate ? -0.0f : 0.0f;  // the entry that leaves a negative zero
    for (int firstOther = 0; firstOther < 15; ++firstOther) {
        Element<Lum32f> element{{5, 3}, {2, 1}, std::vector<Lum32f>(15, -negative)};
        std::fill_n(element.entries.begin(), firstOther, negative);
        ASSERT_TRUE(applied<C>(element, source, destination));
        destination.forEach(Area::Roi, [&](Lum32f& pixel, int x, int y, int) {
            EXPECT_TRUE(sameElement(pixel, firstOther == 0 ? 0.0f : -0.0f))
                << firstOther << " negative zeros, x " << x << ", y " << y << ": " << elementText(pixel);
        });
    }
}

TEST(GrayElementFloatsQuick, FirstOfEqualZeros)
{
    expectFirstZero<Case<Lum32f, Form::Dilate>>();
    expectFirstZero<Case<Lum32f, Form::Erode>>();
}

// Sums are neither clamped nor stopped at the largest finite number.
TEST(GrayElementFloatsQuick, SumsOverflowToInfinity)
{
    constexpr Lum32f largest = std::numeric_limits<Lum32f>::max();
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    Image<Lum32f> source({.width = 13, .height = 2}), destination({.width = 13, .height = 2});
    for (const Lum32f value : {largest, -largest}) {
        source.forEach(Area::Roi, [&](Lum32f& pixel, int, int, int) { pixel = value; });
        for (const Lum32f entry : {largest, -largest}) {
            const Element<Lum32f> element{{3, 3}, {1, 1}, std::vector<Lum32f>(9, entry)};
            ASSERT_TRUE((applied<Case<Lum32f, Form::Dilate>>(element, source, destination)));
            EXPECT_EQ(destination.at(6, 1), value == entry ? std::copysign(infinity, value) : 0.0f);
            ASSERT_TRUE((applied<Case<Lum32f, Form::Erode>>(element, source, destination)));
            EXPECT_EQ(destination.at(6, 1), value == entry ? 0.0f : std::copysign(infinity, value));
        }
    }
}

// A fraction of the last bit decides, and denormal results are kept.
TEST(GrayElementFloatsQuick, LastBitAndDenormals)
{
    constexpr Lum32f smallest = std::numeric_limits<Lum32f>::denorm_min();
    Image<Lum32f> source({.width = 11}), destination({.width = 11});
    source.forEach(Area::Roi, [](Lum32f& pixel, int x, int, int) { pixel = static_cast<Lum32f>(x) * 1e-42f; });
    const Element<Lum32f> element{{2, 1}, {0, 0}, {smallest, 2 * smallest}};
    expectReference<Case<Lum32f, Form::Dilate>>(element, source, destination);
    EXPECT_GT(destination.at(0, 0), 0.0f);
    expectReference<Case<Lum32f, Form::Erode>>(element, source, destination);
    EXPECT_LT(destination.at(0, 0), 0.0f);
    source.forEach(Area::Roi, [](Lum32f& pixel, int, int, int) { pixel = 1.0f; });
    const Element<Lum32f> lastBit{{2, 1}, {0, 0}, {1.0f, 1.0f + std::numeric_limits<Lum32f>::epsilon() * 2}};
    expectReference<Case<Lum32f, Form::Dilate>>(lastBit, source, destination);
    EXPECT_EQ(destination.at(5, 0), 2.0f + std::numeric_limits<Lum32f>::epsilon() * 2);
}

// An image far above the reported size of the cache.
TYPE_TEST(GrayElement, LargeImage)
{
    using T = typename TypeParam::T;
    Random random(15);
    constexpr int width = 1037;
    constexpr int height = 509;
    Image<T> source({.width = width, .height = height, .gap = 4});
    Image<T> destination({.width = width, .height = height, .gap = 12});
    fill(source, random);
    const ReportedCacheSize reported(lumOk, 1);
    expectReference<TypeParam>(drawElement<T>({2, 2}, Entries::Small, random), source, destination);
}

TYPE_TEST(GrayElement, WideRows)
{
    using T = typename TypeParam::T;
    Random random(16);
    for (const int width : {1023, 1100, 4099}) {
        Image<T> source({.width = width, .height = 4}), destination({.width = width, .height = 4});
        fill(source, random, Values::Extreme);
        expectReference<TypeParam>(drawElement<T>({5, 3}, Entries::Wide, random), source, destination);
    }
}

}  // namespace
}  // namespace lumcv::test::gray
