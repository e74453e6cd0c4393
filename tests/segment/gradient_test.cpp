// Segmentation by the gradient compared with its flood written out plainly; its asymmetries by name.
#include <gtest/gtest.h>

#include "segment/watershed_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::watershed {
namespace {

constexpr int kFlags[] = {0, 64, 128, 192, 64 | 1, -1 & ~192};

using Forms = testing::Types<Gradient8uC1, Gradient8uC3>;
TYPE_SUITE(Gradient, Forms);
TYPE_SUITE(GradientQuick, Forms);

TYPE_TEST(GradientQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 5, 2, kFlags); });
}

TYPE_TEST(Gradient, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry, 1, 2, kFlags); });
}

TYPE_TEST(Gradient, HigherImages)
{
    expectHigherImages<TypeParam>(2, kFlags);
}

TYPE_TEST(Gradient, EveryTerrainWithEverySeeding)
{
    Image<Lum8u> source(layoutOf(41, 23, TypeParam::channels));
    Image<Lum8u> marker(layoutOf(41, 23));
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

Image<Lum8u> segmented(const Image<Lum8u>& source, const Image<Lum8u>& marker, unsigned norm, int flag)
{
    Image<Lum8u> result = marker;
    Call call;
    call.norm = norm;
    call.flag = flag;
    segment<Gradient8uC1>(source, result, call);
    return result;
}

TEST(GradientCasesQuick, NoSeedLeavesTheMarkerAsItIs)
{
    Image<Lum8u> source(layoutOf(20, 9));
    draw(source, Terrain::Noise, 1);
    for (const Lum8u everywhere : {Lum8u{0}, Lum8u{255}, Lum8u{9}}) {
        Image<Lum8u> marker(layoutOf(20, 9));
        marker.forEach(Area::Roi, [&](Lum8u& label, int, int, int) { label = everywhere; });
        EXPECT_TRUE(sameBytes(marker, segmented(source, marker, 0, 64))) << int{everywhere};
    }
}

// Nothing but the frame is labelled: it takes no part, and is not rewritten either.
TEST(GradientCasesQuick, SeedsInTheFrameAreNone)
{
    Image<Lum8u> source(layoutOf(20, 9));
    draw(source, Terrain::Noise, 1);
    Image<Lum8u> marker(layoutOf(20, 9));
    marker.forEach(Area::Roi, [](Lum8u& label, int x, int y, int) {
        label = x == 0 || y == 0 || x == 19 || y == 8 ? static_cast<Lum8u>(1 + x + y) : Lum8u{0};
    });
    EXPECT_TRUE(sameBytes(marker, segmented(source, marker, 0, 0)));
}

TEST(GradientCasesQuick, TheFrameComesOutAsBarrier)
{
    const Image<Lum8u> source = imageOf<Lum8u>(4, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const Image<Lum8u> marker = imageOf<Lum8u>(4, {9, 9, 9, 9, 9, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3});
    const Image<Lum8u> expected =
        imageOf<Lum8u>(4, {255, 255, 255, 255, 255, 7, 7, 255, 255, 7, 7, 255, 255, 255, 255, 255});
    for (const unsigned norm : {0u, 1u}) {
        EXPECT_TRUE(sameImage(expected, segmented(source, marker, norm, 0)));
    }
}

TEST(GradientCasesQuick, ImagesBelowThreePixelsStay)
{
    for (const LumiSize size : {LumiSize{1, 1}, {2, 2}, {2, 9}, {9, 2}, {1, 30}, {30, 1}}) {
        Image<Lum8u> source(layoutOf(size.width, size.height));
        Image<Lum8u> marker(layoutOf(size.width, size.height));
        draw(source, Terrain::Noise, 5);
        draw(marker, Seeding::Dense, 5);
        EXPECT_TRUE(sameBytes(marker, segmented(source, marker, 0, 64)));
    }
}

// Between two seeds on a flat image both fronts advance by one pixel in turn.
TEST(GradientCasesQuick, EqualCostsComeFirstInFirstOut)
{
    const Image<Lum8u> source =
        imageOf<Lum8u>(9, {5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5});
    const Image<Lum8u> marker =
        imageOf<Lum8u>(9, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    const Image<Lum8u> expected = segmented(source, marker, 1, 0);
    const Lum8u row[9] = {255, 1, 1, 1, 2, 2, 2, 2, 255};
    Image<Lum8u> simulated = marker;
    Gradient8uC1::simulate(source, simulated, 1, 0);
    EXPECT_TRUE(sameImage(simulated, expected));
    EXPECT_EQ(expected.at(1, 1), row[1]);
    EXPECT_EQ(expected.at(3, 1), row[3]);
    EXPECT_EQ(expected.at(5, 1), row[5]);
    EXPECT_EQ(expected.at(7, 1), row[7]);
}

// Of neighbours at the same cost the last one decides, unless it holds 254.
TEST(GradientCasesQuick, TheLastOfEqualNeighboursWins)
{
    const Image<Lum8u> source = imageOf<Lum8u>(5, {8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8});
    EXPECT_EQ(segmented(source, imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 3, 0, 9, 0, 0, 0, 0, 0, 0}), 1, 0).at(2, 1), 9);
    EXPECT_EQ(segmented(source, imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 9, 0, 3, 0, 0, 0, 0, 0, 0}), 1, 0).at(2, 1), 3);
    EXPECT_EQ(segmented(source, imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 3, 0, 254, 0, 0, 0, 0, 0, 0}), 1, 0).at(2, 1), 3);
    EXPECT_EQ(segmented(source, imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 254, 0, 3, 0, 0, 0, 0, 0, 0}), 1, 0).at(2, 1), 3);
}

// A boundary loses ties only: where it is nearer it spreads.
TEST(GradientCasesQuick, BoundaryLabelsSpreadWhereTheyAreNearer)
{
    const Image<Lum8u> source = imageOf<Lum8u>(5, {8, 8, 8, 8, 8, 8, 50, 8, 8, 8, 8, 8, 8, 8, 8});
    EXPECT_EQ(segmented(source, imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 3, 0, 254, 0, 0, 0, 0, 0, 0}), 1, 0).at(2, 1),
              254);
}

TEST(GradientCasesQuick, BarriersNeitherSpreadNorFall)
{
    const Image<Lum8u> source = imageOf<Lum8u>(6, {8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8});
    const Image<Lum8u> marker = imageOf<Lum8u>(6, {0, 0, 0, 0, 0, 0, 0, 3, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_TRUE(sameBytes(marker, segmented(source, marker, 0, 0)));
    const Image<Lum8u> open = imageOf<Lum8u>(6, {0, 0, 0, 0, 0, 0, 0, 3, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0});
    const Image<Lum8u> expected =
        imageOf<Lum8u>(6, {255, 255, 255, 255, 255, 255, 255, 3, 3, 255, 0, 255, 255, 255, 255, 255, 255, 255});
    EXPECT_TRUE(sameImage(expected, segmented(source, open, 0, 0)));
}

// Where two labels meet the pixel that is labelled later becomes 254; with bit 128, and with both bits, diagonal
// neighbours count: the earlier pixel sees a seed there, and the later one the other seed.
TEST(GradientCasesQuick, BoundaryBits)
{
    const Image<Lum8u> source = imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    const Image<Lum8u> marker = imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 1, 0, 255, 0, 0, 255, 0, 2, 0, 0, 0, 0, 0, 0});
    for (const int flag : {64, 128, 192}) {
        Image<Lum8u> expected = marker;
        Gradient8uC1::simulate(source, expected, 1, flag);
        const Image<Lum8u> result = segmented(source, marker, 1, flag);
        EXPECT_TRUE(sameImage(expected, result)) << flag;
        EXPECT_EQ(result.at(2, 1), flag == 64 ? 1 : 254) << flag;
        EXPECT_EQ(result.at(2, 2), 254) << flag;
    }
}

// Three channels cost what the largest of their differences costs.
TEST(GradientCasesQuick, TheLargestChannelDecides)
{
    Image<Lum8u> source(layoutOf(5, 3, 3));
    source.forEach(Area::Roi, [](Lum8u& element, int x, int, int c) {
        const int left[3] = {10, 10, 10};
        const int middle[3] = {13, 13, 13};
        const int right[3] = {13, 13, 17};
        element = static_cast<Lum8u>(x == 1 ? left[c] : x == 2 ? middle[c] : right[c]);
    });
    Image<Lum8u> marker = imageOf<Lum8u>(5, {0, 0, 0, 0, 0, 0, 3, 0, 9, 0, 0, 0, 0, 0, 0});
    segment<Gradient8uC3>(source, marker, Call{1, 0});
    EXPECT_EQ(marker.at(2, 1), 3);
}

}  // namespace
}  // namespace lumcv::test::watershed
