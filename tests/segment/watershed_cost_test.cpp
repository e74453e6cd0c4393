// The watershed by cost compared with its sweeps written out plainly, in all norms; its rules by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "segment/watershed_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::watershed {
namespace {

// bits that nobody knows change nothing
constexpr int kFlags[] = {kByCost, kByCost | 64, kByCost | 128, kByCost | 192, kByCost | 0x7fffff3c, kByCost | 256};

using Forms = testing::Types<Watershed8u, Watershed8u16u, Watershed32f16u>;
TYPE_SUITE(WatershedByCost, Forms);
TYPE_SUITE(WatershedByCostQuick, Forms);

TYPE_TEST(WatershedByCostQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 5, 4, kFlags); });
}

TYPE_TEST(WatershedByCost, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 1, 4, kFlags); });
}

TYPE_TEST(WatershedByCost, HigherImages)
{
    expectHigherImages<TypeParam>(4, kFlags);
}

TYPE_TEST(WatershedByCost, EveryTerrainWithEverySeedingInEveryNorm)
{
    Image<typename TypeParam::Height> source(layoutOf(41, 23));
    Image<typename TypeParam::Label> marker(layoutOf(41, 23));
    for (int terrain = 0; terrain < kTerrains; ++terrain) {
        draw(source, static_cast<Terrain>(terrain), 7);
        for (int seeding = 0; seeding < kSeedings; ++seeding) {
            draw(marker, static_cast<Seeding>(seeding), 3);
            for (const unsigned norm : {0u, 1u, 2u, 3u}) {
                Call call;
                call.norm = norm;
                call.flag = kFlags[(terrain + seeding + static_cast<int>(norm)) % 4];
                expectSegments<TypeParam>(source, marker, call);
            }
        }
    }
}

// Corridors that turn back on themselves take many sweeps.
TEST(WatershedByCost, ManySweeps)
{
    int most = 0;
    Image<Lum8u> source(layoutOf(61, 45));
    draw(source, Terrain::Flat, 1);
    for (int seed = 0; seed < 6; ++seed) {
        Image<Lum16u> marker(layoutOf(61, 45));
        Random random(static_cast<std::uint64_t>(seed));
        // walls across, with the gap at alternate ends, or along
        const bool across = seed % 2 == 0;
        marker.forEach(Area::Roi, [&](Lum16u& label, int x, int y, int) {
            const int u = across ? y : x;
            const int v = across ? x : y;
            const int length = across ? 61 : 45;
            label = u % 4 == 3 && v != (u % 8 == 3 ? length - 1 : 0) ? Lum16u{65535} : Lum16u{0};
        });
        marker.at(0, 0) = 50;
        for (int i = 0; i < seed / 2; ++i) {
            marker.at(static_cast<int>(random.between(0, 60)), static_cast<int>(random.between(0, 44))) =
                static_cast<Lum16u>(i + 1);
        }
        for (const unsigned norm : {0u, 1u, 2u, 3u}) {
            most = std::max(most, CostSweep<PackedCost, Lum16u>(source, marker, norm, kByCost).sweeps());
            expectSegments<Watershed8u16u>(source, marker, Call{norm, kByCost});
        }
    }
    EXPECT_GE(most, 10) << "the images give the later sweeps nothing to do";
}

TYPE_TEST(WatershedByCostQuick, NoSeedLeavesTheMarkerAsItIs)
{
    using Label = typename TypeParam::Label;
    Image<typename TypeParam::Height> source(layoutOf(20, 9));
    draw(source, Terrain::Noise, 1);
    for (const Label everywhere : {Label{0}, std::numeric_limits<Label>::max(), Label{9}}) {
        Image<Label> marker(layoutOf(20, 9));
        marker.forEach(Area::Roi, [&](Label& label, int, int, int) { label = everywhere; });
        for (const unsigned norm : {0u, 1u, 2u, 3u}) {
            Image<Label> result = marker;
            segment<TypeParam>(source, result, Call{norm, kByCost | 64});
            EXPECT_TRUE(sameBytes(marker, result)) << everywhere << ", norm " << norm;
        }
    }
}

// Every pixel that can be reached is labelled; barriers keep their value and what lies behind them stays 0.
TYPE_TEST(WatershedByCostQuick, BarriersEncloseAndNeverSpread)
{
    using Label = typename TypeParam::Label;
    constexpr Label barrier = std::numeric_limits<Label>::max();
    Image<typename TypeParam::Height> source(layoutOf(30, 12));
    draw(source, Terrain::Noise, 4);
    Image<Label> marker(layoutOf(30, 12));
    marker.forEach(Area::Roi, [&](Label& label, int x, int y, int) {
        label = x == 20 ? barrier : x == 3 && y == 5 ? Label{6} : Label{0};
    });
    for (const unsigned norm : {0u, 1u, 2u, 3u}) {
        Image<Label> result = marker;
        segment<TypeParam>(source, result, Call{norm, kByCost});
        result.forEach(Area::Roi, [&](Label& label, int x, int y, int) {
            EXPECT_EQ(label, x < 20 ? Label{6} : x == 20 ? barrier : Label{0}) << "x " << x << ", y " << y;
        });
    }
}

template <class Form>
Image<typename Form::Label> segmented(const Image<typename Form::Height>& source,
                                      const Image<typename Form::Label>& marker, unsigned norm, int flag = kByCost)
{
    Image<typename Form::Label> result = marker;
    segment<Form>(source, result, Call{norm, flag});
    return result;
}

// A far seed over a low pass beats a near one behind a high wall; the wall itself goes to whom comes there first.
TYPE_TEST(WatershedByCostQuick, TheHighestLevelComesBeforeTheLength)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    const Image<Height> source = imageOf<Height>(9, {3, 3, 4, 3, 3, 3, 3, 9, 3});
    const Image<Label> marker = imageOf<Label>(9, {1, 0, 0, 0, 0, 0, 0, 0, 2});
    const Image<Label> expected = imageOf<Label>(9, {1, 1, 1, 1, 1, 1, 1, 1, 2});
    for (const unsigned norm : {0u, 1u, 2u}) {
        EXPECT_TRUE(sameImage(expected, segmented<TypeParam>(source, marker, norm))) << "norm " << norm;
    }
}

// Steps count from the highest point on: a path that climbs late is shorter than its pixels tell.
TYPE_TEST(WatershedByCostQuick, LengthCountsFromTheHighestPoint)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    const Image<Height> source = imageOf<Height>(10, {0, 0, 0, 0, 7, 7, 7, 7, 7, 7});
    const Image<Label> marker = imageOf<Label>(10, {1, 0, 0, 0, 0, 0, 0, 0, 0, 2});
    const Image<Label> expected = imageOf<Label>(10, {1, 1, 1, 1, 1, 1, 1, 2, 2, 2});
    for (const unsigned norm : {0u, 1u}) {
        EXPECT_TRUE(sameImage(expected, segmented<TypeParam>(source, marker, norm))) << "norm " << norm;
    }
}

// From the corner of a square the norms draw a square, a diamond, an octagon and a disc against a straight front: each
// pixel belongs to the seed that is nearer in its measure.
TYPE_TEST(WatershedByCostQuick, MeasuresOfTheNorms)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    constexpr int size = 41;
    Image<Height> source(layoutOf(size, size));
    draw(source, Terrain::Flat, 1);
    Image<Label> marker(layoutOf(size, size));
    marker.forEach(Area::Roi, [](Label& label, int x, int y, int) {
        label = x == 0 && y == 0 ? Label{1} : x == 40 && y == 13 ? Label{2} : Label{0};
    });
    for (const unsigned norm : {0u, 1u, 2u, 3u}) {
        const Image<Label> result = segmented<TypeParam>(source, marker, norm);
        const auto distance = [&](int dx, int dy) {
            const double a = std::abs(dx);
            const double b = std::abs(dy);
            switch (norm) {
                case 0:
                    return std::max(a, b);
                case 1:
                    return a + b;
                case 2:
                    return 11 * std::max(a, b) + 4 * std::min(a, b);
                default:
                    return std::hypot(a, b);
            }
        };
        int judged = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const double first = distance(x, y);
                const double second = distance(x - 40, y - 13);
                // the front that the pairs solve is not exactly round
                const double margin = norm == 3 ? 3 : 0;
                if (std::abs(first - second) > margin) {
                    EXPECT_EQ(result.at(x, y), first < second ? 1 : 2) << "norm " << norm << ", x " << x << ", y " << y;
                    ++judged;
                }
            }
        }
        EXPECT_GT(judged, 1000);
    }
}

// Ties: what is there first stays. A downward sweep from left to right meets the row above before the left neighbour.
TYPE_TEST(WatershedByCostQuick, OnlyAStrictlySmallerCostReplaces)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    const Image<Height> source = imageOf<Height>(2, {5, 5, 5, 5});
    EXPECT_EQ(segmented<TypeParam>(source, imageOf<Label>(2, {0, 3, 9, 0}), 1).at(1, 1), 3);
    EXPECT_EQ(segmented<TypeParam>(source, imageOf<Label>(2, {0, 3, 9, 0}), 1).at(0, 0), 3);
    // of three above the leftmost
    const Image<Height> wide = imageOf<Height>(3, {5, 5, 5, 5, 5, 5});
    EXPECT_EQ(segmented<TypeParam>(wide, imageOf<Label>(3, {7, 8, 9, 255, 0, 255}), 0).at(1, 1), 7);
    // of two that are equal in the pair the one along the scan
    EXPECT_EQ(segmented<TypeParam>(source, imageOf<Label>(2, {0, 3, 9, 0}), 3).at(1, 1), 9);
}

// With bits for both, eight neighbours; the first pixel of a pair keeps its label.
TYPE_TEST(WatershedByCostQuick, BoundaryBits)
{
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    constexpr Label val = std::numeric_limits<Label>::max();
    Image<Height> source(layoutOf(21, 15));
    draw(source, Terrain::Coarse, 1);
    Image<Label> marker(layoutOf(21, 15));
    draw(marker, Seeding::Sparse, 3);
    const Image<Label> plain = segmented<TypeParam>(source, marker, 0);
    for (const int bits : {64, 128, 192}) {
        Image<Label> expected = plain;
        boundSegments(expected, val, bits != 64);
        EXPECT_TRUE(sameImage(expected, segmented<TypeParam>(source, marker, 0, kByCost | bits))) << bits;
        EXPECT_FALSE(sameImage(expected, plain));
    }
}

// The heights of 32f images are not rounded: two passes that differ by one unit in the last place differ.
TEST(WatershedFloatQuick, HeightsKeepAllTheirBits)
{
    Image<Lum32f> source(layoutOf(5, 1));
    const Lum32f pass = 1000.5f;
    const Lum32f heights[5] = {0, pass, 0, std::nextafter(pass, 2000.0f), 0};
    std::copy_n(heights, 5, source.pixels());
    EXPECT_EQ(segmented<Watershed32f16u>(source, imageOf<Lum16u>(5, {1, 0, 0, 0, 2}), 0).at(2, 0), 1);
    std::swap(source.at(1, 0), source.at(3, 0));
    EXPECT_EQ(segmented<Watershed32f16u>(source, imageOf<Lum16u>(5, {1, 0, 0, 0, 2}), 0).at(2, 0), 2);
}

// No path enters an infinite height; a height that is no number is entered as if it were the lowest, and is no seed
// that anything could come from.
TEST(WatershedFloatQuick, HeightsThatAreNotFinite)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
    Image<Lum32f> source(layoutOf(8, 1));
    const Lum32f heights[8] = {0, -infinity, nan, 3, infinity, 0, nan, 0};
    for (const unsigned norm : {0u, 1u, 2u, 3u}) {
        std::copy_n(heights, 8, source.pixels());
        EXPECT_TRUE(sameImage(imageOf<Lum16u>(8, {5, 5, 5, 5, 0, 0, 6, 0}),
                              segmented<Watershed32f16u>(source, imageOf<Lum16u>(8, {5, 0, 0, 0, 0, 0, 6, 0}), norm)))
            << norm;
    }
}

// The largest finite height can be entered: an unlabelled pixel has more steps than any path.
TEST(WatershedFloatQuick, LargestHeight)
{
    Image<Lum32f> source(layoutOf(5, 2));
    source.forEach(Area::Roi, [](Lum32f& height, int, int, int) { height = std::numeric_limits<Lum32f>::max(); });
    for (const unsigned norm : {0u, 1u, 2u, 3u}) {
        Image<Lum16u> result =
            segmented<Watershed32f16u>(source, imageOf<Lum16u>(5, {0, 0, 0, 0, 0, 0, 0, 8, 0, 0}), norm);
        result.forEach(Area::Roi, [&](Lum16u& label, int, int, int) { EXPECT_EQ(label, 8) << norm; });
    }
}

// The table of the integer solver begins and ends as it is told.
TEST(WatershedReferenceQuick, TableOfThePairs)
{
    const auto t = [](std::int64_t d) { return 64 + 1000 - (PackedCost::stepFromBoth(1000, 1000 + d, 0)); };
    const std::int64_t begin[4] = {19, 18, 18, 17};
    for (int d = 0; d < 4; ++d) {
        EXPECT_EQ(t(d), begin[d]);
    }
    EXPECT_EQ(t(55), 1);
    EXPECT_EQ(t(56), 0);
    EXPECT_EQ(t(63), 0);
    EXPECT_EQ(t(64), 0);
}

}  // namespace
}  // namespace lumcv::test::watershed
