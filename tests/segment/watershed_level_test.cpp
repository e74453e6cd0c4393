// The watershed by level compared with its flood written out plainly; its asymmetries by name.
#include <gtest/gtest.h>

#include "segment/watershed_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::watershed {
namespace {

// bits that nobody knows, and the bit of the other method, change nothing
constexpr int kFlags[] = {kByLevel,
                          kByLevel | 64,
                          kByLevel | 128,
                          kByLevel | 192,
                          kByLevel | 256,
                          kByLevel | 2,
                          kByLevel | 64 | 0x7fff03C,
                          kByLevel | 0x2000000};

using Forms = testing::Types<Watershed8u, Watershed8u16u>;
TYPE_SUITE(WatershedByLevel, Forms);
TYPE_SUITE(WatershedByLevelQuick, Forms);

TYPE_TEST(WatershedByLevelQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 5, 2, kFlags); });
}

TYPE_TEST(WatershedByLevel, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 1, 2, kFlags); });
}

TYPE_TEST(WatershedByLevel, HigherImages)
{
    expectHigherImages<TypeParam>(2, kFlags);
}

TYPE_TEST(WatershedByLevel, EveryTerrainWithEverySeeding)
{
    Image<Lum8u> source(layoutOf(41, 23));
    Image<typename TypeParam::Label> marker(layoutOf(41, 23));
    for (int terrain = 0; terrain < kTerrains; ++terrain) {
        draw(source, static_cast<Terrain>(terrain), 7);
        for (int seeding = 0; seeding < kSeedings; ++seeding) {
            draw(marker, static_cast<Seeding>(seeding), 3);
            for (const unsigned norm : {0u, 1u}) {
                Call call;
                call.norm = norm;
                call.flag = kFlags[(terrain + seeding + static_cast<int>(norm)) % 4];
                expectSegments<TypeParam>(source, marker, call);
            }
        }
    }
}

TYPE_TEST(WatershedByLevelQuick, NoSeedLeavesTheMarkerAsItIs)
{
    using Label = typename TypeParam::Label;
    Image<Lum8u> source(layoutOf(20, 9));
    draw(source, Terrain::Noise, 1);
    for (const Label everywhere : {Label{0}, std::numeric_limits<Label>::max(), Label{9}}) {
        Image<Label> marker(layoutOf(20, 9));
        marker.forEach(Area::Roi, [&](Label& label, int, int, int) { label = everywhere; });
        Image<Label> result = marker;
        segment<TypeParam>(source, result, Call{0, kByLevel | 64});
        EXPECT_TRUE(sameBytes(marker, result)) << everywhere;
    }
}

Image<Lum8u> segmented(const Image<Lum8u>& source, const Image<Lum8u>& marker, unsigned norm, int flag)
{
    Image<Lum8u> result = marker;
    segment<Watershed8u>(source, result, Call{norm, flag});
    return result;
}

// A row: both floods climb to the ridge, which belongs to neither.
TEST(WatershedByLevelCasesQuick, RidgeBetweenTwoBasins)
{
    const Image<Lum8u> source = imageOf<Lum8u>(9, {1, 2, 3, 4, 9, 4, 3, 2, 1});
    const Image<Lum8u> marker = imageOf<Lum8u>(9, {5, 0, 0, 0, 0, 0, 0, 0, 8});
    for (const int flag : {kByLevel, kByLevel | 64, kByLevel | 128}) {
        const Image<Lum8u> result = segmented(source, marker, 0, flag);
        Image<Lum8u> expected = marker;
        Watershed8u::simulate(source, expected, 0, flag);
        EXPECT_TRUE(sameImage(expected, result));
        const Lum8u row[4] = {5, 5, 5, 5};
        EXPECT_TRUE(sameElements(row, result.row(0), 4));
    }
}

// A pixel between two labels takes 255 when it is pushed, and nothing spreads from there.
TEST(WatershedByLevelCasesQuick, DisagreementIsABarrier)
{
    const Image<Lum8u> source = imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 9, 9, 9, 9, 9});
    const Image<Lum8u> marker = imageOf<Lum8u>(5, {1, 0, 2, 0, 0, 255, 0, 255, 0, 0});
    const Image<Lum8u> expected = imageOf<Lum8u>(5, {1, 255, 2, 2, 2, 255, 0, 255, 2, 2});
    EXPECT_TRUE(sameImage(expected, segmented(source, marker, 1, kByLevel)));
}

// If there is nowhere to go nothing is written, not even where seeds touch or a pixel lies between them.
TEST(WatershedByLevelCasesQuick, NothingQueuedLeavesTheMarkerAsItIs)
{
    const Image<Lum8u> source = imageOf<Lum8u>(6, {0, 0, 0, 0, 0, 0});
    const Image<Lum8u> marker = imageOf<Lum8u>(6, {1, 0, 2, 3, 255, 0});
    for (const int flag : {kByLevel, kByLevel | 64, kByLevel | 128}) {
        EXPECT_TRUE(sameBytes(marker, segmented(source, marker, 1, flag))) << flag;
    }
}

// Both of two seeds that touch become boundaries, and the pixels beside them still take their labels.
TEST(WatershedByLevelCasesQuick, SeedsThatTouch)
{
    const Image<Lum8u> source = imageOf<Lum8u>(6, {0, 0, 0, 0, 0, 0});
    const Image<Lum8u> marker = imageOf<Lum8u>(6, {0, 0, 2, 3, 0, 0});
    EXPECT_TRUE(sameImage(imageOf<Lum8u>(6, {2, 2, 2, 3, 3, 3}), segmented(source, marker, 1, kByLevel)));
    EXPECT_TRUE(sameImage(imageOf<Lum8u>(6, {2, 2, 255, 255, 3, 3}), segmented(source, marker, 1, kByLevel | 64)));
}

// What the first scan has labelled is no seed for the pixel beside it in the same scan.
TEST(WatershedByLevelCasesQuick, FirstScanReadsTheCallersSeeds)
{
    const Image<Lum8u> source = imageOf<Lum8u>(4, {9, 1, 9, 9});
    const Image<Lum8u> marker = imageOf<Lum8u>(4, {1, 0, 0, 2});
    const Image<Lum8u> expected = imageOf<Lum8u>(4, {1, 1, 2, 2});
    EXPECT_TRUE(sameImage(expected, segmented(source, marker, 1, kByLevel)));
}

// The level never falls: a hollow behind a hill is flooded at the height of the hill, behind what waits there.
TEST(WatershedByLevelCasesQuick, HollowsFillAtTheLevelOfTheirRim)
{
    const Image<Lum8u> source = imageOf<Lum8u>(7, {0, 6, 0, 0, 6, 6, 6});
    const Image<Lum8u> marker = imageOf<Lum8u>(7, {1, 0, 0, 0, 0, 0, 2});
    const Image<Lum8u> expected = imageOf<Lum8u>(7, {1, 1, 1, 255, 2, 2, 2});
    Image<Lum8u> simulated = marker;
    Watershed8u::simulate(source, simulated, 1, kByLevel);
    EXPECT_TRUE(sameImage(simulated, segmented(source, marker, 1, kByLevel)));
    EXPECT_TRUE(sameImage(expected, simulated));
}

TEST(WatershedByLevelCasesQuick, SeedsAtTheEdgeTakePart)
{
    const Image<Lum8u> source = imageOf<Lum8u>(3, {1, 1, 1, 1, 1, 1, 1, 1, 1});
    for (int at = 0; at < 9; ++at) {
        Image<Lum8u> marker = imageOf<Lum8u>(3, {0, 0, 0, 0, 0, 0, 0, 0, 0});
        marker.at(at % 3, at / 3) = 254;
        Image<Lum8u> result = segmented(source, marker, 1, kByLevel);
        result.forEach(Area::Roi, [](Lum8u& label, int, int, int) { EXPECT_EQ(label, 254); });
    }
}

}  // namespace
}  // namespace lumcv::test::watershed
