// Images put their pixels where the layout says and notice every byte that is no pixel.
#include "support/image.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "support/compare.hpp"
#include "support/random.hpp"
#include "support/sweep.hpp"

namespace lumcv::test {

static const Layout layouts[] = {
    {.width = 5, .height = 3},
    {.width = 5, .height = 3, .channels = 3, .gap = 8},
    {.width = 5, .height = 3, .gap = 4, .guard = Guard::Before},
    {.width = 5, .height = 3, .gap = 4, .margins = {1, 2, 3, 4}},
    {.width = 5, .height = 3, .gap = 4, .margins = {1, 2, 3, 4}, .bottomUp = true},
    {.width = 5, .height = 3, .channels = 4, .gap = 4, .offset = 7},
    {.width = 5, .height = 3, .channels = 4, .guard = Guard::Before, .margins = {0, 2, 0, 1}, .offset = 7},
};

// The places of all elements, found by the pointer and the stride that a call would get.
static std::set<const unsigned char*> pixelBytes(const Image<std::int16_t>& image, const Margins& margins)
{
    std::set<const unsigned char*> result;
    for (int y = -margins.top; y < image.height() + margins.bottom; ++y) {
        const unsigned char* const row = reinterpret_cast<const unsigned char*>(image.pixels()) + y * image.step();
        for (int b = -margins.left * image.channels() * 2; b < (image.width() + margins.right) * image.channels() * 2;
             ++b) {
            result.insert(row + b);
        }
    }
    return result;
}

TEST(Image, GapCheckFiresForEveryByteThatIsNoPixelAndForNoOther)
{
    for (const Layout& layout : layouts) {
        for (const Area area : {Area::Roi, Area::WithMargins}) {
            Image<std::int16_t> image(layout);
            Random random;
            fill(image, random, Values::Ordinary, area);
            ASSERT_TRUE(image.gapsIntact());
            const auto pixels = pixelBytes(image, area == Area::Roi ? Margins{} : layout.margins);
            const std::ptrdiff_t around = layout.offset * 2 + 1;
            for (std::ptrdiff_t i = -around; i < static_cast<std::ptrdiff_t>(image.byteCount()) + around; ++i) {
                const bool unreadable = (i < -layout.offset * 2 && layout.guard == Guard::Before) ||
                                        (i >= static_cast<std::ptrdiff_t>(image.byteCount()) + layout.offset * 2 &&
                                         layout.guard == Guard::After);
                if (unreadable) {
                    continue;
                }
                unsigned char* const byte = image.bytes() + i;
                *byte ^= 0x10;
                EXPECT_EQ(static_cast<bool>(image.gapsIntact()), pixels.count(byte) == 1) << "byte " << i;
                *byte ^= 0x10;
            }
        }
    }
}

TEST(Image, StandsAgainstThePage)
{
    const Image<std::int16_t> after({.width = 5, .height = 3, .gap = 6, .margins = {1, 2, 3, 4}});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(after.row(4) + 5 + 4) % 4096, 0u);
    const Image<std::int16_t> before({.width = 5, .height = 3, .guard = Guard::Before, .margins = {1, 2, 3, 4}});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(before.row(-1) - 3) % 4096, 0u);
    const Image<std::int16_t> bottomUp({.width = 5, .height = 3, .guard = Guard::Before, .bottomUp = true});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bottomUp.row(2)) % 4096, 0u);
    EXPECT_EQ(bottomUp.step(), -10);
}

TEST(Image, AddressesMarginsByCoordinatesOutsideTheRoi)
{
    Image<std::int16_t> image({.width = 4, .height = 2, .channels = 3, .gap = 2, .margins = Margins::all(2)});
    image.forEach(Area::WithMargins, [](std::int16_t& element, int x, int y, int c) {
        element = static_cast<std::int16_t>(100 * y + 10 * x + c);
    });
    EXPECT_EQ(image.at(-2, -1, 2), -118);
    EXPECT_EQ(image.at(5, 3, 1), 351);
    EXPECT_EQ(*(image.pixels() + image.step() / 2 + 3), 110);
    EXPECT_EQ(&image.at(-1, 0, 0), image.pixels() - 3);
}

TEST(Compare, NamesTheFirstPixelThatDiffers)
{
    Image<std::uint8_t> expected({.width = 4, .height = 3, .channels = 3, .gap = 2});
    Random random;
    fill(expected, random);
    Image<std::uint8_t> actual({.width = 4, .height = 3, .channels = 3, .guard = Guard::Before});
    actual.forEach(Area::Roi, [&](std::uint8_t& element, int x, int y, int c) { element = expected.at(x, y, c); });
    EXPECT_TRUE(sameImage(expected, actual));
    expected.at(2, 1, 1) = 7;
    actual.at(2, 1, 1) = 9;
    actual.at(0, 2, 0) ^= 1;
    const auto result = sameImage(expected, actual);
    ASSERT_FALSE(result);
    EXPECT_STREQ(result.message(), "pixel x 2, y 1, channel 1: got 9, expected 7; 2 of 36 elements differ");
}

TEST(Compare, TellsZerosApartAndTakesAllNotANumbersForOne)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(sameElement(nan, -nan));
    EXPECT_FALSE(sameElement(nan, 1.0f));
    EXPECT_FALSE(sameElement(1.0f, nan));
    EXPECT_FALSE(sameElement(0.0f, -0.0f));
    EXPECT_TRUE(sameElement(-0.0f, -0.0f));
    EXPECT_FALSE(sameElement(1.0f, std::nextafter(1.0f, 2.0f)));
    const float a[] = {1, 2, 3};
    const float b[] = {1, 2, 4};
    EXPECT_TRUE(sameElements(a, b, 2));
    EXPECT_FALSE(sameElements(a, b, 3));
}

TEST(Compare, SameBytesSeesGapsToo)
{
    Image<std::uint8_t> image({.width = 4, .height = 3, .gap = 2});
    Image<std::uint8_t> copy = image;
    EXPECT_TRUE(sameBytes(image, copy));
    image.bytes()[4] ^= 1;
    EXPECT_FALSE(sameBytes(image, copy));
}

TEST(Random, DrawsTheSameEveryTimeAndReachesTheExtremes)
{
    Random a(3), b(3);
    bool smallest = false, largest = false, infinite = false, notANumber = false, negativeZero = false,
         denormal = false;
    for (int i = 0; i < 10000; ++i) {
        const auto integer = a.value<std::int16_t>(Values::Extreme);
        EXPECT_EQ(integer, b.value<std::int16_t>(Values::Extreme));
        smallest = smallest || integer == -32768;
        largest = largest || integer == 32767;
        const float number = a.value<float>(Values::NonFinite);
        EXPECT_TRUE(sameElement(number, b.value<float>(Values::NonFinite)));
        infinite = infinite || std::isinf(number);
        notANumber = notANumber || std::isnan(number);
        negativeZero = negativeZero || sameElement(number, -0.0f);
        denormal = denormal || std::fpclassify(number) == FP_SUBNORMAL;
        EXPECT_TRUE(std::isfinite(a.value<float>(Values::Extreme)));
        b.value<float>(Values::Extreme);
        EXPECT_LE(std::abs(a.value<float>(Values::Ordinary)), 1000.0f);
        b.value<float>(Values::Ordinary);
    }
    EXPECT_TRUE(smallest && largest && infinite && notANumber && negativeZero && denormal);
}

TEST(Sweep, ReachesBothPagesAndEveryAlignment)
{
    std::set<std::uintptr_t> alignments;
    int atEnd = 0, atStart = 0, tight = 0;
    forEachGeometry(Sweep::Full, [&](const Geometry& geometry) {
        const Image<std::uint8_t> image(geometry.layout<std::uint8_t>(1));
        EXPECT_EQ(image.width(), geometry.width);
        EXPECT_EQ(image.height(), geometry.height);
        const auto begin = reinterpret_cast<std::uintptr_t>(image.bytes());
        alignments.insert(begin % 64);
        atStart += begin % 4096 == 0;
        atEnd += (begin + image.byteCount()) % 4096 == 0;
        tight += image.step() == geometry.width;
    });
    EXPECT_EQ(alignments.size(), 64u);
    EXPECT_GT(atStart, 100);
    EXPECT_GT(atEnd, 100);
    EXPECT_GT(tight, 100);
}

}  // namespace lumcv::test
