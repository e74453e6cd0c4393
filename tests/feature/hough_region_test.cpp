// Hough lines of a region of the polar plane against the reference.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "feature/hough_fixture.hpp"

namespace lumcv::test::hough {
namespace {

constexpr Lum32f kInfinite = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f kLargest = std::numeric_limits<Lum32f>::max();
constexpr LumiPointPolar kAll[2] = {{-10000, -1}, {10000, 10}};

Content contentOf(int number)
{
    return static_cast<Content>(number % static_cast<int>(Content::Count));
}

TEST(HoughRegion, Sweep)
{
    Random random(1);
    long lines = 0;
    for (int number = 0; number < 260; ++number) {
        const LumiSize size = {number < 70 ? 1 + number : static_cast<int>(random.between(5, 130)),
                               static_cast<int>(random.between(1, 40))};
        const Lum32f reach = static_cast<Lum32f>(size.width + size.height);
        const auto between = [&](Lum32f first, Lum32f last) { return first + random.unit<Lum32f>() * (last - first); };
        LumiPointPolar region[2] = {{between(-reach, reach), between(-0.5f, 3.5f)},
                                    {between(-reach, reach), between(-0.5f, 3.5f)}};
        if (region[0].rho > region[1].rho) {
            std::swap(region[0].rho, region[1].rho);
        }
        if (region[0].theta > region[1].theta) {
            std::swap(region[0].theta, region[1].theta);
        }
        const Lum32f rhos[] = {1, 0.5f, 1.25f, 2, 0.3f};
        const Lum32f thetas[] = {kDegree, 0.05f, 0.1f, 0.31f};
        PolarCall call;
        call.delta = {std::min(rhos[number % 5], reach), thetas[number % 4]};
        call.threshold = 1 + number % 6;
        call.maxLineCount = number % 3 == 0 ? 1 + number % 7 : 500;
        call.region = region;
        const Placement place = drawPlacement(random);
        lines += expectLines(drawn(size, contentOf(number), number, place), call, place);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(lines, 2000);
}

// A region of the whole plane is the standard form where no product needs more than the 24 bits of a float.
TEST(HoughRegionQuick, WholePlane)
{
    for (const Content content : {Content::Lines, Content::Grid, Content::Dense}) {
        const Image<Lum8u> image = drawn({60, 40}, content, 3);
        const std::vector<LumiPointPolar> standard = standardLines(image, {60, 40}, {1, 0.05f}, 4, 50);
        const std::vector<LumiPointPolar> region = regionLines(image, {60, 40}, kAll, {1, 0.05f}, 4, 50);
        ASSERT_EQ(standard.size(), region.size());
        for (std::size_t i = 0; i < standard.size(); ++i) {
            EXPECT_EQ(standard[i].rho, region[i].rho);
            EXPECT_EQ(standard[i].theta, region[i].theta);
        }
        EXPECT_GT(expectLines(image, {{1, 0.05f}, 4, 50, kAll}), 10);
    }
}

// Far from the origin and with fine cells the products of the standard form are rounded to single precision, those of
// the region form are not: the two disagree, and both are as documented.
TEST(HoughRegion, IntegersAreNotRounded)
{
    const LumiPointPolar delta = {0.1f, 0.4f};
    constexpr int kRoom = 4000;
    Image<Lum8u> image(Placement{}.layout({3000, 4}));
    image.forEach(Area::Roi,
                  [](Lum8u& element, int x, int y, int) { element = x > 1000 && (x * 7 + y * 3) % 5 != 0 ? 1 : 0; });
    const std::vector<LumiPointPolar> standard = standardLines(image, {3000, 4}, delta, 2, kRoom);
    const std::vector<LumiPointPolar> region = regionLines(image, {3000, 4}, kAll, delta, 2, kRoom);
    const bool isSame = standard.size() == region.size() &&
                        std::equal(standard.begin(), standard.end(), region.begin(),
                                   [](const LumiPointPolar& a, const LumiPointPolar& b) { return a.rho == b.rho; });
    EXPECT_FALSE(isSame);
    expectLines(image, {delta, 2, kRoom});
    expectLines(image, {delta, 2, kRoom, kAll});
}

// The bounds of theta as they come and as they are left behind.
TEST(HoughRegionQuick, ClampsTheta)
{
    const Image<Lum8u> image = drawn({40, 30}, Content::Lines, 1);
    const Lum32f below = std::nextafter(kAngleLimit, 0.0f);
    const Lum32f above = std::nextafter(kAngleLimit, 4.0f);
    const Lum32f bounds[] = {-kInfinite, -5,          -1e-30f, 0,          1e-30f, 1,
                             below,      kAngleLimit, above,   3.1415927f, 7,      kInfinite};
    for (std::size_t low = 0; low < std::size(bounds); ++low) {
        for (std::size_t high = low; high < std::size(bounds); ++high) {
            const LumiPointPolar region[2] = {{-80, bounds[low]}, {80, bounds[high]}};
            expectLines(image, {{1, 0.0654f}, 2, 30, region});
            expectLines(image, {{1, kAngleLimit}, 2, 30, region});
        }
    }
    EXPECT_EQ(clampedAngle(-5), 0);
    EXPECT_EQ(clampedAngle(below), below);
    EXPECT_EQ(clampedAngle(7), 3.1415901f);
}

// The first and the last angle of the region belong to it, compared in single precision, and a maximum beyond it does
// not count: its slope comes out as a line at the region's edge.
TEST(HoughRegionQuick, AnglesAreInclusive)
{
    Image<Lum8u> image(Placement{}.layout({40, 30}));
    image.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) { element = x == y ? 1 : 0; });
    constexpr Lum32f kStep = 0.05f;
    for (int first = 0; first < 62; ++first) {
        for (const int count : {0, 1, 5}) {
            const Lum32f low = kStep * static_cast<Lum32f>(first);
            const Lum32f high = kStep * static_cast<Lum32f>(first + count);
            for (const Lum32f from : {std::nextafter(low, -1.0f), low, std::nextafter(low, 4.0f)}) {
                for (const Lum32f to : {std::nextafter(high, -1.0f), high, std::nextafter(high, 4.0f)}) {
                    if (from <= to) {
                        const LumiPointPolar region[2] = {{-80, from}, {80, to}};
                        expectLines(image, {{1, kStep}, 1, 50, region});
                    }
                }
            }
            ASSERT_FALSE(HasFailure());
        }
    }
    const LumiPointPolar slope[2] = {{-80, 0.5f}, {80, 2.2f}};
    EXPECT_FALSE(regionLines(image, {40, 30}, slope, {1, kStep}, 3, 5).empty());
}

// The cells of both rho bounds belong to the region; neighbours beyond them count.
TEST(HoughRegionQuick, CellsAreInclusive)
{
    Image<Lum8u> image(Placement{}.layout({30, 12}));
    image.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) {
        element = x == 10 || x == 11 || x == 12 || (x == 20 && y < 9) || (x == 21 && y < 10) ? 1 : 0;
    });
    long lines = 0;
    for (Lum32f low = -3; low < 30; low += 0.5f) {
        for (const Lum32f length : {0.0f, 0.25f, 0.5f, 1.0f, 1.5f, 3.0f, 40.0f}) {
            const LumiPointPolar region[2] = {{low, 0}, {low + length, 0.5f}};
            lines += expectLines(image, {{1, 1.6f}, 5, 50, region});
            expectLines(image, {{0.5f, 1.6f}, 5, 50, region});
            expectLines(image, {{1.7f, 1.6f}, 5, 50, region});
            ASSERT_FALSE(HasFailure());
        }
    }
    EXPECT_GT(lines, 50);
    // exactly the cell of a line, and those to both sides of it
    for (const auto& [rho, count] : {std::pair{9.0f, 0}, {10.0f, 1}, {11.0f, 0}, {12.0f, 0}, {20.0f, 0}, {21.0f, 1}}) {
        const LumiPointPolar region[2] = {{rho, 0}, {rho, 0}};
        EXPECT_EQ(expectLines(image, {{1, 1.6f}, 5, 50, region}), count) << rho;
    }
}

// Bounds of rho beyond all cells, on either side or on both, however far.
TEST(HoughRegionQuick, FarRhoBounds)
{
    const Image<Lum8u> image = drawn({40, 30}, Content::Lines, 1);
    const Lum32f bounds[] = {
        -kInfinite, -kLargest, -3e9f, -2147483648.0f, -1e5f, -142, -71,  -70.5f,        -70,           -69,  0,
        68,         69,        70,    70.5f,          71,    72,   1e5f, 2147483520.0f, 2147483648.0f, 3e9f, kLargest,
        kInfinite};
    for (std::size_t low = 0; low < std::size(bounds); ++low) {
        for (std::size_t high = low; high < std::size(bounds); ++high) {
            const LumiPointPolar region[2] = {{bounds[low], 0}, {bounds[high], 3}};
            expectLines(image, {{1, 0.0654f}, 2, 30, region});
            expectLines(image, {{0.01f, 0.9f}, 1, 30, region});
        }
        ASSERT_FALSE(HasFailure());
    }
}

TEST(HoughRegionQuick, BlankImage)
{
    Image<Lum8u> image(Placement{}.layout({50, 30}));
    image.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
    EXPECT_EQ(expectLines(image, {{1, kDegree}, 1, 10, kAll}), 0);
}

// A region whose corners are the wrong way round: the count is 0, and the bounds stay as they were.
TEST(HoughRegionQuick, UnusableRegion)
{
    constexpr Lum32f kNaN = std::numeric_limits<Lum32f>::quiet_NaN();
    const Image<Lum8u> image = drawn({20, 10}, Content::Lines, 1);
    const PlacedBlock scratch(standardBytes({20, 10}, {1, 0.1f}, 5));
    for (const LumiPointPolar corner : {LumiPointPolar{5.1f, -1}, {3, 5}, {kNaN, 0}, {0, kNaN}, {6, 6}}) {
        LumiPointPolar region[2] = {corner, {5, 4}};
        LumiPointPolar lines[5] = {};
        Lum32s count = 99;
        EXPECT_EQ(lumiHoughLine_Region_8u32f_C1R(image.pixels(), image.step(), {20, 10}, lines, region, 5, &count,
                                                 {1, 0.1f}, 2, scratch.data()),
                  lumErrHoughRegion);
        EXPECT_EQ(count, 0);
        EXPECT_TRUE(sameElement(region[0].theta, corner.theta));
        EXPECT_TRUE(sameElement(region[0].rho, corner.rho));
        EXPECT_EQ(region[1].theta, 4);
        EXPECT_EQ(lines[0].rho, 0);
    }
}

}  // namespace
}  // namespace lumcv::test::hough
