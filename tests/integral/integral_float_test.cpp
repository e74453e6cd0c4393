// The integral image of floats: the order of its additions.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "integral/integral_reference.hpp"
#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::integral {
namespace {

testing::AssertionResult agrees(const Image<Lum32f>& source, Image<Lum32f>& table)
{
    const Image<Lum32f> sourceBefore = source;
    const LumStatus status = lumiIntegral_32f_C1R(source.pixels(), source.step(), table.pixels(), table.step(),
                                                  {source.width(), source.height()});
    if (status != lumOk) {
        return testing::AssertionFailure() << "status " << status;
    }
    Image<Lum32f> expected({.width = source.width() + 1, .height = source.height() + 1});
    uprightOfFloats(source, expected);
    if (const auto same = sameImage(expected, table); !same) {
        return same;
    }
    if (const auto intact = table.gapsIntact(); !intact) {
        return intact;
    }
    return sameBytes(sourceBefore, source);
}

testing::AssertionResult agrees(const Image<Lum32f>& source)
{
    Image<Lum32f> table({.width = source.width() + 1, .height = source.height() + 1});
    return agrees(source, table);
}

void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        for (const Values values : {Values::Ordinary, Values::Extreme, Values::NonFinite}) {
            Random random(static_cast<std::uint64_t>(geometry.number) + 300);
            Image<Lum32f> source(geometry.layout<Lum32f>(0));
            fill(source, random, values);
            Geometry larger = geometry;
            ++larger.width;
            ++larger.height;
            Image<Lum32f> table(larger.layout<Lum32f>(1));
            EXPECT_TRUE(agrees(source, table)) << "values " << static_cast<int>(values);
        }
    });
}

TEST(IntegralOfFloats, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Full);
}

TEST(IntegralOfFloatsQuick, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Quick);
}

TEST(IntegralOfFloats, LargerImages)
{
    for (const LumiSize size : {LumiSize{1103, 40}, LumiSize{33, 700}, LumiSize{1, 500}, LumiSize{70002, 2}}) {
        Random random(static_cast<std::uint64_t>(size.height));
        Image<Lum32f> source({.width = size.width, .height = size.height, .gap = 8});
        fill(source, random);
        EXPECT_TRUE(agrees(source)) << size.width << " x " << size.height;
        const ReportedCacheSize cache(0, 1024);
        EXPECT_TRUE(agrees(source)) << size.width << " x " << size.height << ", larger than the cache";
    }
}

TEST(IntegralOfFloatsQuick, FirstRowAndColumnAreZero)
{
    for (const int width : {1, 3, 4, 7, 8, 9, 33}) {
        Image<Lum32f> source({.width = width, .height = 4}), table({.width = width + 1, .height = 5});
        source.forEach(Area::Roi, [](Lum32f& pixel, int, int, int) { pixel = -0.0F; });
        ASSERT_TRUE(agrees(source, table));
        for (int x = 0; x <= width; ++x) {
            EXPECT_TRUE(sameElement(table.at(x, 0), 0.0F)) << "x " << x;
        }
        for (int y = 0; y <= 4; ++y) {
            EXPECT_TRUE(sameElement(table.at(0, y), 0.0F)) << "y " << y;
        }
        // negative zeros add up to a positive one, as all totals start from that
        EXPECT_TRUE(sameElement(table.at(width, 4), 0.0F));
    }
}

// How often the totals of rows of random floats differ from those of another order of additions.
template <class Order>
int countDifferences(int width, Order order)
{
    Random random(13);
    int different = 0;
    for (int row = 0; row < 200; ++row) {
        Image<Lum32f> source({.width = width, .height = 1}), table({.width = width + 1, .height = 2});
        fill(source, random);
        EXPECT_TRUE(agrees(source, table)) << "width " << width;
        const std::vector<Lum32f> totals = order(source.row(0), width);
        for (int x = 0; x < width; ++x) {
            different += totals[static_cast<std::size_t>(x)] != table.at(x + 1, 1);
        }
    }
    return different;
}

std::vector<Lum32f> totalsOneByOne(const Lum32f* pixels, int width)
{
    std::vector<Lum32f> totals;
    Lum32f total = 0;
    for (int x = 0; x < width; ++x) {
        total += pixels[x];
        totals.push_back(total);
    }
    return totals;
}

// A group of four as documented, but with the carry added to the shifted lanes first.
std::vector<Lum32f> totalsWithCarryFirst(const Lum32f* pixels, int width)
{
    std::vector<Lum32f> totals;
    Lum32f carry = 0;
    for (int x = 0; x + 4 <= width; x += 4) {
        const Lum32f* const p = pixels + x;
        const Lum32f a[] = {p[0], p[1] + p[0], p[2] + p[1], p[3] + p[2]};
        totals.insert(totals.end(), {a[0] + carry, a[1] + carry, a[2] + (a[0] + carry), a[3] + (a[1] + carry)});
        carry = totals.back();
    }
    return totals;
}

// Groups of eight, with one more step of shifting.
std::vector<Lum32f> totalsInGroupsOfEight(const Lum32f* pixels, int width)
{
    std::vector<Lum32f> totals;
    Lum32f carry = 0;
    for (int x = 0; x + 8 <= width; x += 8) {
        Lum32f lanes[8];
        for (int i = 0; i < 8; ++i) {
            lanes[i] = pixels[x + i];
        }
        for (const int shift : {1, 2, 4}) {
            for (int i = 7; i >= shift; --i) {
                lanes[i] += lanes[i - shift];
            }
        }
        for (const Lum32f lane : lanes) {
            totals.push_back(lane + carry);
        }
        carry = totals.back();
    }
    return totals;
}

// Rows of four and more are summed in groups of four: other orders round differently, so the comparison with the
// reference tells them apart.
TEST(IntegralOfFloats, GroupsOfFour)
{
    EXPECT_GT(countDifferences(4, totalsOneByOne), 20);
    EXPECT_GT(countDifferences(40, totalsOneByOne), 500);
    EXPECT_GT(countDifferences(40, totalsWithCarryFirst), 500);
    EXPECT_GT(countDifferences(40, totalsInGroupsOfEight), 500);
}

// What is left of a row behind its groups is added one by one to the carry, not by a group that is padded with zeros.
TEST(IntegralOfFloats, LastColumnsOneByOne)
{
    const auto padded = [](const Lum32f* pixels, int width) {
        std::vector<Lum32f> row(pixels, pixels + width);
        row.resize(static_cast<std::size_t>(width + 3) / 4 * 4);
        return totalsInGroups(row.data(), static_cast<int>(row.size()));
    };
    EXPECT_EQ(countDifferences(5, padded), 0) << "one column has only one order";
    EXPECT_GT(countDifferences(6, padded), 20);
    EXPECT_GT(countDifferences(7, padded), 20);
    EXPECT_GT(countDifferences(43, padded), 20);
}

// Rows of fewer than four have no groups.
TEST(IntegralOfFloats, RowsBelowFourOneByOne)
{
    EXPECT_EQ(countDifferences(1, totalsOneByOne), 0);
    EXPECT_EQ(countDifferences(2, totalsOneByOne), 0);
    EXPECT_EQ(countDifferences(3, totalsOneByOne), 0);
    const auto padded = [](const Lum32f* pixels, int) {
        const Lum32f row[] = {pixels[0], pixels[1], pixels[2], 0};
        std::vector<Lum32f> totals = totalsInGroups(row, 4);
        totals.pop_back();
        return totals;
    };
    EXPECT_GT(countDifferences(3, padded), 20);
}

// The running total is added to the row above and not the other way round: the row above never enters the carry.
TEST(IntegralOfFloatsQuick, RowAboveStaysOutOfTheTotals)
{
    Image<Lum32f> source({.width = 9, .height = 2}), table({.width = 10, .height = 3});
    source.forEach(Area::Roi,
                   [](Lum32f& pixel, int x, int y, int) { pixel = y == 0 ? (x == 0 ? 16777216.0F : 0.0F) : 1.0F; });
    ASSERT_TRUE(agrees(source, table));
    // 2^24 + 1 rounds to 2^24; if it were the running total, all entries of the row would stay there
    EXPECT_EQ(table.at(1, 2), 16777216.0F);
    EXPECT_EQ(table.at(9, 2), 16777216.0F + 8);
}

TEST(IntegralOfFloatsQuick, InfinityAndNotANumberStayRightOfAndBelowTheirPixel)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    for (const Lum32f special : {infinity, -infinity, std::numeric_limits<Lum32f>::quiet_NaN()}) {
        for (int column = 0; column < 11; ++column) {
            Image<Lum32f> source({.width = 11, .height = 3}), table({.width = 12, .height = 4});
            source.forEach(Area::Roi,
                           [&](Lum32f& pixel, int x, int y, int) { pixel = x == column && y == 1 ? special : 1.0F; });
            ASSERT_TRUE(agrees(source, table));
            for (int y = 1; y <= 3; ++y) {
                for (int x = 1; x <= 11; ++x) {
                    EXPECT_EQ(std::isfinite(table.at(x, y)), y < 2 || x <= column) << "x " << x << ", y " << y;
                }
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::integral
