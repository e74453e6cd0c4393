// The deviation scaled to integers: scale factors, rounding, results beyond 32 bits.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "integral/deviation_fixture.hpp"

namespace lumcv::test::deviation {
namespace {

constexpr Lum32s kSmallest = std::numeric_limits<Lum32s>::min();

template <class F>
void forEachScaledForm(F f)
{
    for (const Scaled& form : {kUpright32s, kTilted32s}) {
        SCOPED_TRACE(form.name);
        f(form);
    }
}

// One row of results: pixel i has a rectangle of area 1 upright and 2 tilted, the sum 0, and the given variance.
std::vector<Lum32s> resultsOfVariances(const Scaled& form, const std::vector<Lum32s>& variances, int scaleFactor)
{
    const int width = static_cast<int>(variances.size());
    const LumiRect rect = {0, 0, 1, 1};
    const Extent extent = extentOf(form.isTilted, {width, 1}, rect);
    TableImage<Lum32s> sums(extent, Guard::After, 1), squares(extent, Guard::After, 1);
    sums.image().forEach(Area::Roi, [](Lum32s& entry, int, int, int) { entry = 0; });
    squares.image().forEach(Area::Roi, [&](Lum32s& entry, int x, int y, int) {
        entry = 0;
        if (form.isTilted && y == 0 && x >= 1 && x <= width) {
            entry = 2 * variances[static_cast<std::size_t>(x - 1)];  // the top corner
        }
        if (!form.isTilted && y == 1 && x >= 1) {
            // the right ones of the lower corners: differences of this row
            entry = squares.image().at(x - 1, 1) + variances[static_cast<std::size_t>(x - 1)];
        }
    });
    Image<Lum32s> result({.width = width, .height = 1});
    EXPECT_TRUE(agrees(form, sums, squares, result, rect, scaleFactor));
    return {result.row(0), result.row(0) + width};
}

// Half of 1 rounds up, half of 2 is exact, half of 3 rounds up; -1 doubles.
TEST(RectDeviationScaledQuick, HalvesRoundUp)
{
    const std::vector<Lum32s> variances = {0, 1, 4, 9, 16, 25, 2, 3, 5, 7, 49, 36};
    forEachScaledForm([&](const Scaled& form) {
        EXPECT_EQ(resultsOfVariances(form, variances, 0), (std::vector<Lum32s>{0, 1, 2, 3, 4, 5, 1, 2, 2, 3, 7, 6}));
        EXPECT_EQ(resultsOfVariances(form, variances, 1), (std::vector<Lum32s>{0, 1, 1, 2, 2, 3, 1, 1, 1, 1, 4, 3}));
        EXPECT_EQ(resultsOfVariances(form, variances, -1),
                  (std::vector<Lum32s>{0, 2, 4, 6, 8, 10, 3, 3, 4, 5, 14, 12}));
    });
}

TEST(RectDeviationScaledQuick, EveryScaleFactor)
{
    const std::vector<Lum32s> variances = {0, 1, 2, 3, 4, 100, 40000, 65025, 1, 1000000};
    forEachScaledForm([&](const Scaled& form) {
        for (int scaleFactor = -40; scaleFactor <= 40; ++scaleFactor) {
            SCOPED_TRACE(scaleFactor);
            const std::vector<Lum32s> results = resultsOfVariances(form, variances, scaleFactor);
            EXPECT_EQ(results[0], 0);
            // the factor's magnitude counts modulo 32
            const int power = scaleFactor < 0 ? -scaleFactor % 32 : -(scaleFactor % 32);
            EXPECT_EQ(results[1], power == 31 ? kSmallest : power < -1 ? 0 : power == -1 ? 1 : 1 << power);
        }
        EXPECT_EQ(resultsOfVariances(form, variances, -33), resultsOfVariances(form, variances, -1));
        EXPECT_EQ(resultsOfVariances(form, variances, 33), resultsOfVariances(form, variances, 1));
        EXPECT_EQ(resultsOfVariances(form, variances, -32), resultsOfVariances(form, variances, 0));
        EXPECT_EQ(resultsOfVariances(form, variances, 32), resultsOfVariances(form, variances, 0));
        EXPECT_EQ(resultsOfVariances(form, variances, kSmallest), resultsOfVariances(form, variances, 0));
        EXPECT_EQ(resultsOfVariances(form, variances, std::numeric_limits<Lum32s>::max()),
                  resultsOfVariances(form, variances, 31));
    });
}

// The root is scaled in double precision by the upright form, and rounded to single precision first by the tilted one.
TEST(RectDeviationScaledQuick, RootIsDoubleUprightAndSingleTilted)
{
    const std::vector<Lum32s> variances = {2, 3, 5, 6, 7, 8, 10, 11, 12};
    for (std::size_t i = 0; i < variances.size(); ++i) {
        const double root = std::sqrt(static_cast<double>(variances[i])) * (1 << 28);
        const double single = static_cast<double>(std::sqrt(static_cast<float>(variances[i]))) * (1 << 28);
        ASSERT_NE(static_cast<Lum32s>(root + 0.5), static_cast<Lum32s>(single + 0.5));
        EXPECT_EQ(resultsOfVariances(kUpright32s, variances, -28)[i], static_cast<Lum32s>(root + 0.5));
        EXPECT_EQ(resultsOfVariances(kTilted32s, variances, -28)[i], static_cast<Lum32s>(single + 0.5));
    }
}

// There is no saturation: what exceeds 32 bits is the smallest number.
TEST(RectDeviationScaledQuick, BeyondThirtyTwoBits)
{
    const std::vector<Lum32s> variances = {1, 3, 4, 5, 16, 1000000, 1, 1, 1, 100};
    forEachScaledForm([&](const Scaled& form) {
        const std::vector<Lum32s> results = resultsOfVariances(form, variances, -30);
        EXPECT_EQ(results[0], 1 << 30);
        EXPECT_EQ(results[1], scaled(form.isTilted ? static_cast<double>(std::sqrt(3.0F)) : std::sqrt(3.0), -30));
        EXPECT_EQ(results[2], kSmallest);
        EXPECT_EQ(results[5], kSmallest);
        EXPECT_EQ(resultsOfVariances(form, variances, -31)[0], kSmallest);
    });
}

// A negative variance counts as zero; a sum that wraps to a negative number of squares is one.
TEST(RectDeviationScaledQuick, NegativeVariance)
{
    forEachScaledForm([&](const Scaled& form) {
        const std::vector<Lum32s> results = resultsOfVariances(form, {-1, -4, 4, -100, 1, 0, -7, -8, -9, 9}, 0);
        EXPECT_EQ(results, (std::vector<Lum32s>{0, 0, 2, 0, 1, 0, 0, 0, 0, 3}));
    });
}

// The mean and the mean of the squares are products with a reciprocal in single precision, and not quotients.
TEST(RectDeviationScaled, MeansAreProductsWithAReciprocal)
{
    Random random(51);
    int different = 0;
    for (int repetition = 0; repetition < 60; ++repetition) {
        const LumiRect rect = {0, 0, 3, 7};
        const Extent extent = extentOf(false, {29, 2}, rect);
        TableImage<Lum32s> sums(extent, Guard::After), squares(extent, Guard::After);
        fillTables(Content::Random, random, sums.image(), squares.image());
        Image<Lum32s> result({.width = 29, .height = 2});
        ASSERT_TRUE(agrees(kUpright32s, sums, squares, result, rect, -16));
        for (int i = 0; i < 29; ++i) {
            const Lum32f mean = static_cast<Lum32f>(integerSum(uprightCorners(sums.table(), rect, i, 0))) / 21.0F;
            const Lum32f square = static_cast<Lum32f>(integerSum(uprightCorners(squares.table(), rect, i, 0))) / 21.0F;
            const Lum32f variance = floored(square - mean * mean);
            different += result.at(i, 0) != scaled(std::sqrt(static_cast<Lum64f>(variance)), -16);
        }
    }
    EXPECT_GT(different, 50) << "quotients would do as well";
}

}  // namespace
}  // namespace lumcv::test::deviation
