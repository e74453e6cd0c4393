// Labelling: each connected set of non-zero pixels gets its label.
#include <gtest/gtest.h>

#include "segment/flood_shapes.hpp"
#include "segment/labels_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::labels {
namespace {

constexpr LumiDistanceNorm kNorms[] = {lumDistanceNormInf, lumDistanceNormL1};

TYPE_SUITE(LabelMarkers, Labels, LabelName);

TYPE_SUITE(LabelMarkersQuick, Labels, LabelName);

template <class Label>
void expectSweep(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 5);
        constexpr int percents[] = {0, 100, 3, 30, 50, 60, 80, 97};
        const Pattern dots = percolation(geometry.width, geometry.height, percents[geometry.number % 8], random);
        Order order;
        order.norm = kNorms[random.between(0, 1)];
        const Lum32s limits[] = {1, 2, 10, Exports<Label>::largest};
        order.maxLabel = limits[random.between(0, 3)];
        order.minLabel = random.oneIn(2) ? 1 : random.oneIn(2) ? order.maxLabel : order.maxLabel / 2 + 1;
        expectLabels<Label>(markersOf<Label>(dots, random, geometry.layout<Marker<Label>>(0)), order,
                            random.oneIn(2) ? Guard::After : Guard::Before,
                            static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 63)),
                            static_cast<int>(random.between(0, 3)));
    });
}

TYPE_TEST(LabelMarkers, Sweep)
{
    expectSweep<TypeParam>(Sweep::Full);
}

TYPE_TEST(LabelMarkersQuick, Sweep)
{
    expectSweep<TypeParam>(Sweep::Quick);
}

// Whatever the components are like: scratch of exactly its size is enough.
TYPE_TEST(LabelMarkers, TangledShapes)
{
    Random random(31);
    Order order;
    order.maxLabel = Exports<TypeParam>::largest;
    for (const LumiSize size : {LumiSize{1, 1}, {2, 3}, {5, 4}, {11, 3}, {21, 13}, {33, 29}, {131, 40}}) {
        for (const Pattern& shape : flood::tangledShapes(size.width, size.height, random)) {
            for (const Pattern& pattern : flood::everyWay(shape)) {
                for (const LumiDistanceNorm norm : kNorms) {
                    SCOPED_TRACE(testing::Message() << pattern);
                    order.norm = norm;
                    expectLabels<TypeParam>(markersOf<TypeParam>(pattern, random), order,
                                            random.oneIn(2) ? Guard::After : Guard::Before,
                                            static_cast<std::size_t>(random.between(0, 9)));
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TYPE_TEST(LabelMarkers, CombsOfAllLengths)
{
    Random random(32);
    Order order;
    for (int width = 1; width < 40; ++width) {
        for (int height = 2; height < 8; ++height) {
            for (const Pattern& shape : {comb(width, height), flood::doubleComb(width, height)}) {
                for (const Pattern& pattern : flood::everyWay(shape)) {
                    order.norm = kNorms[random.between(0, 1)];
                    expectLabels<TypeParam>(markersOf<TypeParam>(pattern, random), order);
                }
            }
        }
    }
}

TYPE_TEST(LabelMarkersQuick, NothingMarked)
{
    Image<Marker<TypeParam>> markers({.width = 45, .height = 6, .gap = 4});
    markers.forEach(Area::Roi, [](auto& element, int, int, int) { element = 0; });
    for (const LumiDistanceNorm norm : kNorms) {
        expectLabels<TypeParam>(markers, {1, 254, norm});
    }
}

// 300 components of 8u, 16u and 32s: behind the largest label follows the least again, and all are counted.
TYPE_TEST(LabelMarkersQuick, LabelsWrap)
{
    Image<Marker<TypeParam>> markers({.width = 60, .height = 20});
    markers.forEach(Area::Roi, [](auto& element, int x, int y, int) {
        element = x % 2 == 0 && y % 2 == 0 ? Marker<TypeParam>{255} : Marker<TypeParam>{0};
    });
    const Lum32s largest = Exports<TypeParam>::largest;
    for (const LumiDistanceNorm norm : kNorms) {
        for (const Order& order : {Order{1, 254, norm},
                                   {1, 300, norm},
                                   {1, 299, norm},
                                   {1, 1, norm},
                                   {254, 254, norm},
                                   {200, 254, norm},
                                   {1, 2, norm},
                                   {largest, largest, norm},
                                   {largest - 1, largest, norm}}) {
            if (order.maxLabel > largest) {
                continue;
            }
            Image<TypeParam> labels({.width = 60, .height = 20});
            EXPECT_EQ(label<TypeParam>(markers, labels, order), 300);
            expectLabels<TypeParam>(markers, order);
        }
    }
}

// A label of the marker's own greatest value is not among the labels, so that none is taken for a pixel to come.
TYPE_TEST(LabelMarkersQuick, LargestLabels)
{
    Random random(33);
    const Lum32s largest = Exports<TypeParam>::largest;
    for (int i = 0; i < 20; ++i) {
        const Pattern dots = percolation(25, 10, 45, random);
        expectLabels<TypeParam>(markersOf<TypeParam>(dots, random), {largest - i % 4, largest, kNorms[i % 2]});
    }
}

TYPE_TEST(LabelMarkersQuick, DiagonalNeighbours)
{
    Random random(34);
    const Pattern board = checkerboard(9, 6);
    const auto markers = markersOf<TypeParam>(board, random);
    Image<TypeParam> labels({.width = 9, .height = 6});
    EXPECT_EQ(label<TypeParam>(markers, labels, {1, 254, lumDistanceNormInf}), 1);
    EXPECT_EQ(label<TypeParam>(markers, labels, {1, 254, lumDistanceNormL1}), 27);
    expectLabels<TypeParam>(markers, {1, 254, lumDistanceNormInf});
    expectLabels<TypeParam>(markers, {1, 254, lumDistanceNormL1});
}

// Arms that meet far below their tips are one component, in the order of the tip that comes first.
TYPE_TEST(LabelMarkersQuick, ArmsThatMeetBelow)
{
    Random random(35);
    for (int height = 2; height < 30; height += 3) {
        const Pattern arms = turned(comb(31, height));
        for (const LumiDistanceNorm norm : kNorms) {
            const auto markers = markersOf<TypeParam>(arms, random);
            Image<TypeParam> labels({.width = 31, .height = height});
            EXPECT_EQ(label<TypeParam>(markers, labels, {7, 200, norm}), 1);
            expectLabels<TypeParam>(markers, {7, 200, norm});
        }
    }
}

Pattern patternOfBits(int width, int height, unsigned bits)
{
    Pattern p{"bits " + std::to_string(bits), width, height};
    for (int& level : p.levels) {
        level = (bits & 1) != 0 ? kWay : 0;
        bits >>= 1;
    }
    return p;
}

TYPE_TEST(LabelMarkers, EveryPatternOfSmallSizes)
{
    for (const LumiSize size : {LumiSize{5, 2}, {2, 5}, {3, 3}, {10, 1}, {1, 10}}) {
        for (unsigned bits = 0; bits < 1u << (size.width * size.height); ++bits) {
            Random random(bits);
            const auto markers = markersOf<TypeParam>(patternOfBits(size.width, size.height, bits), random);
            SCOPED_TRACE(bits);
            expectLabels<TypeParam>(markers, {1, 254, kNorms[bits % 2]});
            expectLabels<TypeParam>(markers, {1, 254, kNorms[1 - bits % 2]});
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::labels
