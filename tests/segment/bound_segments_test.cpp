// Boundaries between labels compared with the raster scan written out plainly; rows alone, and the checks.
#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "segment/watershed_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::watershed {
namespace {

LumStatus bound(Lum8u* marker, Lum32s step, LumiSize size, Lum8u val, Lum32u norm)
{
    return lumiBoundSegments_8u_C1IR(marker, step, size, val, norm);
}
LumStatus bound(Lum16u* marker, Lum32s step, LumiSize size, Lum16u val, Lum32u norm)
{
    return lumiBoundSegments_16u_C1IR(marker, step, size, val, norm);
}

/// Regions, or labels drawn from few values, `val` among them.
template <class Label>
void drawLabels(Image<Label>& marker, Label val, int number)
{
    Random random(static_cast<std::uint64_t>(number));
    const Label labels[4] = {val, static_cast<Label>(val + 1), 0, std::numeric_limits<Label>::max()};
    const int cell = number % 5 + 1;
    const int values = number % 3 + 2;
    marker.forEach(Area::Roi, [&](Label& label, int x, int y, int) {
        Random region(static_cast<std::uint64_t>(x / cell * 1009 + y / cell * 13 + number));
        label = random.oneIn(9) ? labels[random.between(0, 3)] : labels[region.between(0, values - 1)];
    });
}

using Labels = testing::Types<Lum8u, Lum16u>;
TYPE_SUITE(BoundSegments, Labels);
TYPE_SUITE(BoundSegmentsQuick, Labels);

template <class Label>
void expectGeometry(const Geometry& geometry)
{
    const Label vals[] = {static_cast<Label>(255), 0, 1, std::numeric_limits<Label>::max(), 254};
    const Label val = vals[geometry.number % 5];
    Image<Label> marker(geometry.layout<Label>(0));
    drawLabels(marker, val, geometry.number);
    for (const Lum32u norm : {0u, 1u}) {
        Image<Label> expected = marker;
        boundSegments(expected, val, norm == 0);
        Image<Label> result = marker;
        EXPECT_EQ(bound(result.pixels(), result.step(), {geometry.width, geometry.height}, val, norm), lumOk);
        EXPECT_TRUE(sameImage(expected, result)) << "norm " << norm << ", val " << val;
        EXPECT_TRUE(result.gapsIntact());
    }
}

TYPE_TEST(BoundSegmentsQuick, Sizes)
{
    forEachGeometry(Sweep::Quick, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry); });
}

TYPE_TEST(BoundSegments, Sizes)
{
    forEachGeometry(Sweep::Full, [](const Geometry& geometry) { expectGeometry<TypeParam>(geometry); });
    Geometry geometry;
    for (const int height : {8, 19, 40}) {
        for (const int width : {1, 2, 17, 40, 1100}) {
            geometry.width = width;
            geometry.height = height;
            expectGeometry<TypeParam>(geometry);
            ++geometry.number;
        }
    }
}

TYPE_TEST(BoundSegments, RowsAlone)
{
    int number = 0;
    for (const int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100, 129}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Layout layout = layoutOf(width, 5);
            layout.guard = guard;
            Image<TypeParam> expected(layout);
            drawLabels(expected, TypeParam{9}, ++number);
            IsolatedRows<TypeParam> rows(layout);
            rows.forEach([&](TypeParam& label, int x, int y, int) { label = expected.at(x, y); });
            const Lum32u norm = static_cast<Lum32u>(number % 2);
            boundSegments(expected, TypeParam{9}, norm == 0);
            EXPECT_EQ(bound(rows.pixels(), rows.step(), {width, 5}, TypeParam{9}, norm), lumOk);
            for (int y = 0; y < 5; ++y) {
                EXPECT_TRUE(sameElements(expected.row(y), rows.row(y), static_cast<std::size_t>(width)))
                    << "row " << y << ", width " << width;
            }
            EXPECT_TRUE(rows.slackIntact());
        }
    }
}

TYPE_TEST(BoundSegmentsQuick, OneLabelIsLeftAlone)
{
    for (const TypeParam label : {TypeParam{0}, TypeParam{7}, TypeParam{255}}) {
        Image<TypeParam> marker(layoutOf(37, 9));
        marker.forEach(Area::Roi, [&](TypeParam& element, int, int, int) { element = label; });
        const Image<TypeParam> before = marker;
        EXPECT_EQ(bound(marker.pixels(), marker.step(), {37, 9}, TypeParam{255}, 0u), lumOk);
        EXPECT_TRUE(sameBytes(before, marker));
    }
}

template <class Label>
Image<Label> bounded(Image<Label> marker, Label val, Lum32u norm)
{
    EXPECT_EQ(bound(marker.pixels(), marker.step(), {marker.width(), marker.height()}, val, norm), lumOk);
    return marker;
}

// Of two labels the later pixel in raster order is marked, and what is marked marks nothing.
TYPE_TEST(BoundSegmentsQuick, TheLaterPixelIsMarked)
{
    const auto image = [](std::initializer_list<int> values) { return imageOf<TypeParam>(4, values); };
    EXPECT_TRUE(sameImage(image({1, 9, 2, 9}), bounded(image({1, 2, 2, 1}), TypeParam{9}, 0)));
    EXPECT_TRUE(sameImage(image({1, 9, 3, 9}), bounded(image({1, 2, 3, 4}), TypeParam{9}, 0)));
    EXPECT_TRUE(sameImage(image({9, 2, 9, 4}), bounded(image({9, 2, 3, 4}), TypeParam{9}, 0)));
    EXPECT_TRUE(sameImage(image({1, 1, 1, 1, 9, 9, 9, 9}), bounded(image({1, 1, 1, 1, 2, 2, 2, 2}), TypeParam{9}, 0)));
}

// Above to the left and above to the right count with eight neighbours alone.
TYPE_TEST(BoundSegmentsQuick, Diagonals)
{
    const auto image = [](std::initializer_list<int> values) { return imageOf<TypeParam>(3, values); };
    // the pixels straight above and to the left are marks
    EXPECT_TRUE(sameImage(image({1, 9, 9, 9, 2, 2}), bounded(image({1, 9, 9, 9, 2, 2}), TypeParam{9}, 1)));
    EXPECT_TRUE(sameImage(image({1, 9, 9, 9, 9, 2}), bounded(image({1, 9, 9, 9, 2, 2}), TypeParam{9}, 0)));
    EXPECT_TRUE(sameImage(image({9, 9, 1, 2, 2, 9}), bounded(image({9, 9, 1, 2, 2, 9}), TypeParam{9}, 1)));
    EXPECT_TRUE(sameImage(image({9, 9, 1, 2, 9, 9}), bounded(image({9, 9, 1, 2, 2, 9}), TypeParam{9}, 0)));
}

// An unlabelled pixel differs from a label as any other.
TYPE_TEST(BoundSegmentsQuick, ZeroIsALabel)
{
    const Image<TypeParam> marker = imageOf<TypeParam>(3, {0, 4, 4, 4, 4, 0});
    EXPECT_TRUE(sameImage(imageOf<TypeParam>(3, {0, 9, 4, 9, 4, 9}), bounded(marker, TypeParam{9}, 1)));
}

template <class Label>
struct BoundArgs
{
    const Image<Label>* image;
    Label* pMarker;
    Lum32s markerStep;
    LumiSize roiSize;
    Lum32u norm;

    LumStatus call() const
    {
        return bound(pMarker, markerStep, roiSize, Label{9}, norm);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*image)};
    }
};

TYPE_TEST(BoundSegmentsQuick, ChecksInOrder)
{
    using A = BoundArgs<TypeParam>;
    constexpr int size = static_cast<int>(sizeof(TypeParam));
    Layout layout = layoutOf(10, 5);
    layout.gap = 4 * size;
    Image<TypeParam> marker(layout);
    drawLabels(marker, TypeParam{9}, 2);
    std::vector<Violation<A>> table = {
        {"pMarker null", lumErrNullPointer, [](A& a) { a.pMarker = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -3; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -3; }},
        {"markerStep below a row", lumErrStep, [](A& a) { a.markerStep = 10 * size - 1; }},
        {"markerStep 0", lumErrStep, [](A& a) { a.markerStep = 0; }},
        {"markerStep negative", lumErrStep, [](A& a) { a.markerStep = -14 * size; }},
    };
    if (size == 2) {
        table.emplace_back("markerStep odd", lumErrStepAlignment, [](A& a) { a.markerStep = 21; });
    }
    table.emplace_back("norm 2", lumErrArgument, [](A& a) { a.norm = 2; });
    table.emplace_back("norm 0xFFFFFFFF", lumErrArgument, [](A& a) { a.norm = 0xFFFFFFFFu; });
    expectStatusOrder(A{&marker, marker.pixels(), marker.step(), {10, 5}, 1}, table);
}

}  // namespace
}  // namespace lumcv::test::watershed
