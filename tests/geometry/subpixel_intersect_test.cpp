// Copies of a rectangle around a point, compared with their formulas for every position of the rectangle: within the
// image, across each edge and corner, and beyond.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "geometry/subpixel_forms.hpp"
#include "geometry/subpixel_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f kNan = std::numeric_limits<Lum32f>::quiet_NaN();

TYPE_SUITE(SubpixelIntersectQuick, SubpixelForms, SubpixelFormName);

TYPE_SUITE(SubpixelIntersect, SubpixelForms, SubpixelFormName);

std::string pointText(LumiPoint p)
{
    return "(" + std::to_string(p.x) + ", " + std::to_string(p.y) + ")";
}

template <class Source>
void fillSource(Source& source, LumiSize size, Random& random, Values values)
{
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            source.at(x, y) = random.value<typename Source::Element>(values);
        }
    }
}

template <class F, class Source>
void expectCopyAround(const Source& source, LumiSize sourceSize, const Layout& layout, LumiPoint32f point,
                      Lum32s scaleFactor)
{
    using D = typename F::Destination;
    Image<D> expected(layout);
    const Covered covered = copyAround<typename F::Source>(source, sourceSize, expected, point, scaleFactor);
    Image<D> result(layout);
    // right against the unreadable page, one and the other
    const GuardedBlock minimum(sizeof(LumiPoint), Guard::After);
    const GuardedBlock maximum(sizeof(LumiPoint), Guard::Before);
    ASSERT_EQ(F::copyAround(source.pixels(), source.step(), sourceSize, result.pixels(), result.step(),
                            {layout.width, layout.height}, point, minimum.as<LumiPoint>(), maximum.as<LumiPoint>(),
                            scaleFactor),
              lumOk);
    EXPECT_EQ(pointText(*minimum.as<LumiPoint>()), pointText(covered.pMin));
    EXPECT_EQ(pointText(*maximum.as<LumiPoint>()), pointText(covered.pMax));
    EXPECT_TRUE(sameImage(expected, result));
    EXPECT_TRUE(result.gapsIntact());
    EXPECT_TRUE(minimum.slackIntact());
    EXPECT_TRUE(maximum.slackIntact());
    if (testing::Test::HasFailure()) {
        ADD_FAILURE() << "source " << sourceSize.width << " x " << sourceSize.height << ", destination " << layout.width
                      << " x " << layout.height << ", point (" << elementText(point.x) << ", " << elementText(point.y)
                      << "), scale factor " << scaleFactor;
    }
}

/// Coordinates from before the image to behind it, on pixels and between them.
std::vector<Lum32f> coordinates(int destinationSize, int sourceSize)
{
    std::vector<Lum32f> result;
    const auto middle = static_cast<Lum32f>(destinationSize - 1) * 0.5f;
    const Lum32f fractions[] = {0.0f, 0.25f, 0.7f, -1e-7f, 0x1.fffffep-1f};
    for (int first = -destinationSize - 2; first <= sourceSize + 2; ++first) {
        const bool isNearAnEdge =
            first <= -destinationSize + 2 || (first >= -2 && first <= 2) ||
            (first >= sourceSize - destinationSize - 2 && first <= sourceSize - destinationSize + 2) ||
            first >= sourceSize - 2;
        if (isNearAnEdge || first % 5 == 0) {
            result.push_back(static_cast<Lum32f>(first) + middle + fractions[(first + 1000) % 5]);
        }
    }
    for (const Lum32f far : {-kInfinity, kInfinity, kNan, -1e30f, 1e30f, -3e9f, 3e9f, -2147483648.0f, 2147483648.0f,
                             4294967296.0f, 16777216.0f, -16777219.0f, -0.0f, 1e-40f}) {
        result.push_back(far);
    }
    return result;
}

// Every position along one axis with a few along the other, rows of the source alone between unreadable pages.
template <class F>
void expectEveryPosition(LumiSize sourceSize, LumiSize size, int everyOther)
{
    Layout sourceLayout;
    sourceLayout.width = sourceSize.width;
    sourceLayout.height = sourceSize.height;
    const std::vector<Lum32f> xs = coordinates(size.width, sourceSize.width);
    const std::vector<Lum32f> ys = coordinates(size.height, sourceSize.height);
    int number = 0;
    for (const Guard guard : {Guard::After, Guard::Before}) {
        sourceLayout.guard = guard;
        IsolatedRows<typename F::Source> source(sourceLayout);
        Random random(static_cast<std::uint64_t>(sourceSize.width));
        fillSource(source, sourceSize, random, guard == Guard::After ? Values::Ordinary : Values::Extreme);
        source.makeReadOnly();
        for (const Lum32f x : xs) {
            for (const Lum32f y : ys) {
                if (++number % everyOther != 0) {
                    continue;
                }
                Layout layout;
                layout.width = size.width;
                layout.height = size.height;
                layout.gap = number % 3 * static_cast<int>(sizeof(typename F::Destination));
                layout.guard = guard;
                expectCopyAround<F>(source, sourceSize, layout, {x, y}, scaleFactorOf<F>(number % 5 == 0 ? number : 0));
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(SubpixelIntersectQuick, EveryPositionOfASmallRectangle)
{
    expectEveryPosition<TypeParam>({9, 7}, {4, 3}, 3);
    expectEveryPosition<TypeParam>({5, 5}, {5, 5}, 7);
    expectEveryPosition<TypeParam>({3, 2}, {7, 8}, 7);
    expectEveryPosition<TypeParam>({1, 1}, {3, 2}, 3);
    expectEveryPosition<TypeParam>({2, 1}, {1, 1}, 3);
    expectEveryPosition<TypeParam>({1, 9}, {2, 2}, 7);
}

TYPE_TEST(SubpixelIntersect, EveryPosition)
{
    for (const LumiSize sourceSize : {LumiSize{70, 20}, {33, 5}, {17, 40}, {4, 4}}) {
        for (const LumiSize size : {LumiSize{33, 9}, {16, 16}, {71, 3}, {8, 30}, {64, 6}}) {
            expectEveryPosition<TypeParam>(sourceSize, size, 11);
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(SubpixelIntersect, RectanglesOfAllWidths)
{
    constexpr LumiSize sourceSize = {60, 12};
    Image<typename TypeParam::Source> source({.width = sourceSize.width, .height = sourceSize.height});
    Random random(2);
    fillSource(source, sourceSize, random, Values::NonFinite);
    for (int width = 1; width <= 140; ++width) {
        for (int i = 0; i < 12; ++i) {
            const int height = static_cast<int>(random.between(1, 6));
            const LumiPoint32f point = {
                random.unit<Lum32f>() * static_cast<Lum32f>(60 + width + 8) - static_cast<Lum32f>(width / 2 + 4),
                random.unit<Lum32f>() * 20.0f - 4.0f};
            expectCopyAround<TypeParam>(source, sourceSize, {.width = width, .height = height}, point,
                                        scaleFactorOf<TypeParam>(i % 4 == 0 ? width : 0));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

TYPE_TEST(SubpixelIntersect, LargeImages)
{
    const ReportedCacheSize reported(0, 1024);
    constexpr LumiSize sourceSize = {3000, 50};
    Image<typename TypeParam::Source> source({.width = sourceSize.width, .height = sourceSize.height});
    Random random(2);
    fillSource(source, sourceSize, random, Values::Ordinary);
    for (const LumiPoint32f point : {LumiPoint32f{1499.7f, 24.1f}, {20.3f, 1.2f}, {2950.6f, 45.9f}}) {
        expectCopyAround<TypeParam>(source, sourceSize, {.width = 2500, .height = 40}, point, 0);
        expectCopyAround<TypeParam>(source, sourceSize, {.width = 5000, .height = 70}, point, 0);
    }
    // float has no room for the fractions of coordinates in such a rectangle
    expectCopyAround<TypeParam>(source, sourceSize, {.width = 100000, .height = 2}, {1234.56f, 7.7f}, 0);
}

struct Ranges
{
    LumiPoint pMin;
    LumiPoint pMax;
    std::vector<int> pixels;
};

/// A rectangle of bytes out of an image that holds 10 * y + x.
Ranges around(LumiSize sourceSize, LumiSize size, LumiPoint32f point)
{
    Image<Lum8u> source({.width = sourceSize.width, .height = sourceSize.height});
    source.forEach(Area::Roi, [](Lum8u& pixel, int x, int y, int) { pixel = static_cast<Lum8u>(10 * y + x); });
    Image<Lum8u> result({.width = size.width, .height = size.height});
    Ranges ranges{{-7, -7}, {-7, -7}, {}};
    EXPECT_EQ(lumiCopySubpixIntersect_8u_C1R(source.pixels(), source.step(), sourceSize, result.pixels(), result.step(),
                                             size, point, &ranges.pMin, &ranges.pMax),
              lumOk);
    result.forEach(Area::Roi, [&](Lum8u& pixel, int, int, int) { ranges.pixels.push_back(pixel); });
    return ranges;
}

void expectRanges(LumiPoint pMin, LumiPoint pMax, const Ranges& actual)
{
    EXPECT_EQ(pointText(actual.pMin), pointText(pMin)) << "first";
    EXPECT_EQ(pointText(actual.pMax), pointText(pMax)) << "last";
}

TEST(SubpixelRangesQuick, WithinTheImage)
{
    const Ranges ranges = around({9, 9}, {3, 3}, {4.0f, 5.0f});
    expectRanges({0, 0}, {2, 2}, ranges);
    EXPECT_EQ(ranges.pixels, std::vector<int>({43, 44, 45, 53, 54, 55, 63, 64, 65}));
}

// The centre of a rectangle as large as the image: the last column has no neighbour to its right.
TEST(SubpixelRangesQuick, AsLargeAsTheImage)
{
    const Ranges ranges = around({4, 3}, {4, 3}, {1.5f, 1.0f});
    expectRanges({0, 0}, {2, 1}, ranges);
    EXPECT_EQ(ranges.pixels, std::vector<int>({0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23}));
}

TEST(SubpixelRangesQuick, AcrossTheFirstCorner)
{
    const Ranges ranges = around({9, 9}, {3, 2}, {0.0f, -0.5f});
    expectRanges({1, 1}, {2, 1}, ranges);
    EXPECT_EQ(ranges.pixels, std::vector<int>({0, 0, 1, 0, 0, 1}));
}

// Behind the image the ranges are empty by 0 and -1.
TEST(SubpixelRangesQuick, WhollyBehindTheImage)
{
    for (const Lum32f far : {10.0f, 100.0f, 3e9f, 1e30f, kInfinity}) {
        const Ranges ranges = around({9, 8}, {3, 3}, {far, far});
        expectRanges({0, 0}, {-1, -1}, ranges);
        EXPECT_EQ(ranges.pixels, std::vector<int>(9, 78)) << far;
    }
}

// Before it, by the size of the rectangle and one less.
TEST(SubpixelRangesQuick, WhollyBeforeTheImage)
{
    for (const Lum32f far : {-3.0f, -100.0f, -3e9f, -1e30f, -kInfinity, kNan}) {
        const Ranges ranges = around({9, 8}, {3, 2}, {far, far});
        expectRanges({3, 2}, {2, 1}, ranges);
        EXPECT_EQ(ranges.pixels, std::vector<int>(6, 0)) << far;
    }
}

TEST(SubpixelRangesQuick, AxesAreIndependent)
{
    expectRanges({3, 0}, {2, -1}, around({9, 8}, {3, 3}, {-50.0f, 50.0f}));
    expectRanges({0, 3}, {-1, 2}, around({9, 8}, {3, 3}, {50.0f, -50.0f}));
    expectRanges({3, 0}, {2, 2}, around({9, 8}, {3, 3}, {kNan, 4.0f}));
}

// The last column that is half within: its begin is S - 1, one less than that of a rectangle wholly behind.
TEST(SubpixelRangesQuick, TheLastColumnHasNoNeighbour)
{
    const Ranges ranges = around({9, 8}, {1, 1}, {8.0f, 3.0f});
    expectRanges({0, 0}, {-1, 0}, ranges);
    EXPECT_EQ(ranges.pixels, std::vector<int>({38}));
}

// Along an edge only one axis has weights, and their pair is exact: no excess is taken from one of four rounded ones.
TEST(SubpixelRangesQuick, EdgesTakeThePairOfTheirAxis)
{
    const Lum16u source[2] = {0, 65535};
    int different = 0;
    for (const FractionsWithExcess f : fractionsWithExcess()) {
        const Lum32f s = static_cast<Lum32f>(f.a) / 16384.0f, t = static_cast<Lum32f>(f.b) / 16384.0f;
        Lum16u below = 0, beside = 0;
        LumiPoint pMin, pMax;
        ASSERT_EQ(lumiCopySubpixIntersect_16u_C1R(source, 4, {2, 1}, &below, 2, {1, 1}, {s, 5 + t}, &pMin, &pMax),
                  lumOk);
        ASSERT_EQ(lumiCopySubpixIntersect_16u_C1R(source, 2, {1, 2}, &beside, 2, {1, 1}, {t - 3, s}, &pMin, &pMax),
                  lumOk);
        EXPECT_EQ(below, (f.a * 65535 + 8192) >> 14) << "a " << f.a << ", b " << f.b;
        EXPECT_EQ(beside, (f.a * 65535 + 8192) >> 14) << "a " << f.a << ", b " << f.b;
        const Weights w = weightsOf(f.a, f.b);
        different += w.w10 + w.w11 != f.a;
    }
    EXPECT_GT(different, 100) << "of these, four weights would give another value";
}

TYPE_TEST(SubpixelIntersectQuick, ThreadsShareASource)
{
    constexpr LumiSize sourceSize = {90, 40};
    Image<typename TypeParam::Source> source({.width = sourceSize.width, .height = sourceSize.height});
    Random random(2);
    fillSource(source, sourceSize, random, Values::Ordinary);
    const auto copyOften = [&] {
        for (int i = 0; i < 20; ++i) {
            expectCopyAround<TypeParam>(source, sourceSize, {.width = 31, .height = 31},
                                        {static_cast<Lum32f>(i) * 5.3f, static_cast<Lum32f>(i) * 2.1f}, 0);
        }
    };
    std::thread other(copyOften);
    copyOften();
    other.join();
}

template <class F>
struct AroundArgs
{
    const Image<typename F::Destination>* destination;
    LumiPoint* ranges;
    const typename F::Source* pSrc;
    Lum32s srcStep;
    LumiSize srcRoiSize;
    typename F::Destination* pDst;
    Lum32s dstStep;
    LumiSize dstRoiSize;
    LumiPoint* pMin;
    LumiPoint* pMax;

    LumStatus call() const
    {
        return F::copyAround(pSrc, srcStep, srcRoiSize, pDst, dstStep, dstRoiSize, {4, 3}, pMin, pMax, 0);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination), Output(ranges, 2 * sizeof *ranges)};
    }
};

TYPE_TEST(SubpixelIntersectQuick, ChecksInOrder)
{
    using A = AroundArgs<TypeParam>;
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    constexpr int sourceRow = 12 * static_cast<int>(sizeof(S));
    constexpr int destinationRow = 9 * static_cast<int>(sizeof(D));
    Image<S> source({.width = 12, .height = 5, .gap = 8});
    Random random(2);
    fillSource(source, {12, 5}, random, Values::Ordinary);
    Image<D> destination({.width = 9, .height = 4, .gap = 4});
    LumiPoint ranges[2] = {{-9, -9}, {-9, -9}};
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"pMin null", lumErrNullPointer, [](A& a) { a.pMin = nullptr; }},
        {"pMax null", lumErrNullPointer, [](A& a) { a.pMax = nullptr; }},
        {"source width 0", lumErrSize, [](A& a) { a.srcRoiSize.width = 0; }},
        {"source height 0", lumErrSize, [](A& a) { a.srcRoiSize.height = 0; }},
        {"source height negative", lumErrSize, [](A& a) { a.srcRoiSize.height = -5; }},
        {"destination width 0", lumErrSize, [](A& a) { a.dstRoiSize.width = 0; }},
        {"destination width negative", lumErrSize, [](A& a) { a.dstRoiSize.width = -9; }},
        {"destination height 0", lumErrSize, [](A& a) { a.dstRoiSize.height = 0; }},
        {"srcStep one byte below a row", lumErrStep, [](A& a) { a.srcStep = sourceRow - 1; }},
        {"srcStep of the destination's width", lumErrStep, [](A& a) { a.srcStep = 9 * static_cast<int>(sizeof(S)); }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -sourceRow; }},
        {"dstStep one byte below a row", lumErrStep, [](A& a) { a.dstStep = destinationRow - 1; }},
        {"dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
    };
    for (int off = 1; off < static_cast<int>(sizeof(S)); ++off) {
        table.push_back(
            {"srcStep off by " + std::to_string(off), lumErrStepAlignment, [=](A& a) { a.srcStep = sourceRow + off; }});
    }
    for (int off = 1; off < static_cast<int>(sizeof(D)); ++off) {
        table.push_back({"dstStep off by " + std::to_string(off), lumErrStepAlignment,
                         [=](A& a) { a.dstStep = destinationRow + off; }});
    }
    const A valid = {&destination,       ranges, source.pixels(), source.step(), {12, 5}, destination.pixels(),
                     destination.step(), {9, 4}, &ranges[0],      &ranges[1]};
    expectStatusOrder(valid, table);
}

// The stride of the destination is held against the destination's width and not the source's.
TYPE_TEST(SubpixelIntersectQuick, EachStrideForItsOwnWidth)
{
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    const S source[5 * 20] = {};
    D destination[3 * 2];
    LumiPoint pMin, pMax;
    EXPECT_EQ(TypeParam::copyAround(source, 20 * sizeof(S), {20, 5}, destination, 3 * sizeof(D), {3, 2}, {4, 3}, &pMin,
                                    &pMax, 0),
              lumOk);
    const S small[2] = {};
    D wide[40];
    EXPECT_EQ(
        TypeParam::copyAround(small, 2 * sizeof(S), {2, 1}, wide, 40 * sizeof(D), {40, 1}, {4, 3}, &pMin, &pMax, 0),
        lumOk);
}

}  // namespace
}  // namespace lumcv::test::geometry
