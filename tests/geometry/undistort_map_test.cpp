// Maps of coordinates compared with the formulas evaluated step by step, in both forms.
#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "geometry/undistort_forms.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::geometry {
namespace {

struct Maps
{
    Maps(const Layout& columnLayout, const Layout& rowLayout) : columns(columnLayout), rows(rowLayout) {}

    LumiSize size() const
    {
        return {columns.width(), columns.height()};
    }
    LumStatus create(const Lens& lens, Lum8u* pBuffer)
    {
        return createMaps(columns.pixels(), columns.step(), rows.pixels(), rows.step(), size(), lens, pBuffer);
    }

    Image<Lum32f> columns;
    Image<Lum32f> rows;
};

void expectMaps(const Layout& columnLayout, const Layout& rowLayout, const Lens& lens, std::size_t scratchDistance = 0)
{
    Maps expected(columnLayout, rowLayout);
    createMaps(expected.columns, expected.rows, lens);
    for (const bool hasScratch : {false, true}) {
        Maps result(columnLayout, rowLayout);
        const PlacedBlock scratch(undistortScratchBytes(columnLayout.width), columnLayout.guard, scratchDistance);
        EXPECT_EQ(result.create(lens, hasScratch ? scratch.data() : nullptr), lumOk);
        EXPECT_TRUE(sameImage(expected.columns, result.columns)) << "columns, scratch " << hasScratch << ", " << lens;
        EXPECT_TRUE(sameImage(expected.rows, result.rows)) << "rows, scratch " << hasScratch << ", " << lens;
        EXPECT_TRUE(result.columns.gapsIntact());
        EXPECT_TRUE(result.rows.gapsIntact());
        EXPECT_TRUE(scratch.intact());
    }
}

/// The same lens with neither, one or both of the tangential coefficients.
Lens withTangential(Lens lens, int number)
{
    const Lum32f none = number % 8 < 4 ? 0.0f : -0.0f;
    lens.p1 = number % 2 == 0 ? none : lens.p1;
    lens.p2 = number / 2 % 2 == 0 ? none : lens.p2;
    return lens;
}

void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        const LumiSize size = {geometry.width, geometry.height};
        Random random(static_cast<std::uint64_t>(geometry.number));
        const auto distance = static_cast<std::size_t>(geometry.number % 67);
        for (int i = 0; i < 4; ++i) {
            const Layout columns = geometry.layout<Lum32f>(0);
            const Layout rows = geometry.layout<Lum32f>(geometry.number / 2 % 2);
            expectMaps(columns, rows, withTangential(ordinaryLens(size, random), geometry.number + i), distance);
        }
    });
}

TEST(UndistortMapQuick, Sizes)
{
    sweepAgainstReference(Sweep::Quick);
}

TEST(UndistortMap, Sizes)
{
    sweepAgainstReference(Sweep::Full);
}

TEST(UndistortMap, ExtremeLenses)
{
    constexpr LumiSize size = {21, 9};
    Random random(15);
    for (int i = 0; i < 3000; ++i) {
        expectMaps({.width = size.width, .height = size.height}, {.width = size.width, .height = size.height},
                   withTangential(extremeLens(size, random), i));
        ASSERT_FALSE(testing::Test::HasFailure()) << "lens " << i;
    }
}

// From 0x20000 elements on the maps may be written past the cache, where they are aligned: around this number, at all
// alignments, with rows that keep the alignment and rows that lose it.
TEST(UndistortMap, LargeMaps)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{512, 255},
                                {512, 256},
                                {513, 256},
                                {1023, 129},
                                {131072, 1},
                                {131073, 1},
                                {131075, 2},
                                {7, 20001},
                                {4, 32768}}) {
        for (const int offset : {0, 1, 4}) {
            const ReportedCacheSize reported(number % 3 == 0 ? -1 : 0, number % 3 == 1 ? 4096 : 1 << 30);
            Random random(static_cast<std::uint64_t>(number));
            Layout columns;
            columns.width = size.width;
            columns.height = size.height;
            columns.guard = number % 2 == 0 ? Guard::Before : Guard::After;
            columns.offset = offset;
            columns.gap = 4 * (number % 4);
            Layout rows = columns;
            rows.offset = number % 5 == 0 ? 0 : offset;
            rows.gap = number % 3 == 0 ? 12 : 0;
            expectMaps(columns, rows, withTangential(ordinaryLens(size, random), number));
            ASSERT_FALSE(testing::Test::HasFailure()) << size.width << " x " << size.height << ", offset " << offset;
            ++number;
        }
    }
}

TEST(UndistortMapQuick, RowsAlone)
{
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 33, 70}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Layout layout;
            layout.width = width;
            layout.height = 4;
            layout.guard = guard;
            for (int i = 0; i < 4; ++i) {
                Random random(static_cast<std::uint64_t>(width));
                const Lens lens = withTangential(ordinaryLens({width, 4}, random), i);
                IsolatedRows<Lum32f> columns(layout);
                IsolatedRows<Lum32f> rows(layout);
                const PlacedBlock scratch(undistortScratchBytes(width), guard);
                ASSERT_EQ(createMaps(columns.pixels(), columns.step(), rows.pixels(), rows.step(), {width, 4}, lens,
                                     i % 2 == 0 ? scratch.data() : nullptr),
                          lumOk);
                Maps expected(layout, layout);
                createMaps(expected.columns, expected.rows, lens);
                for (int y = 0; y < 4; ++y) {
                    const auto count = static_cast<std::size_t>(width);
                    ASSERT_TRUE(sameElements(expected.columns.row(y), columns.row(y), count)) << lens;
                    ASSERT_TRUE(sameElements(expected.rows.row(y), rows.row(y), count)) << lens;
                }
                EXPECT_TRUE(columns.slackIntact());
                EXPECT_TRUE(rows.slackIntact());
                EXPECT_TRUE(scratch.intact());
            }
        }
    }
}

// Without distortion each place is its own, exactly.
TEST(UndistortMapQuick, WithoutDistortionTheIdentity)
{
    Maps maps({.width = 301, .height = 40}, {.width = 301, .height = 40});
    ASSERT_EQ(maps.create({.fx = 123.4f, .fy = -7, .cx = 1.1f, .cy = 99}, nullptr), lumOk);
    maps.columns.forEach(Area::Roi,
                         [](Lum32f& e, int x, int, int) { EXPECT_TRUE(sameElement(e, static_cast<Lum32f>(x))); });
    maps.rows.forEach(Area::Roi,
                      [](Lum32f& e, int, int y, int) { EXPECT_TRUE(sameElement(e, static_cast<Lum32f>(y))); });
}

// The radial form sums other products than the tangential one; they differ in the last bits, so a tangential
// coefficient too small to matter shows which of them was taken. A negative zero is zero.
TEST(UndistortMapQuick, TheTangentialFormIsTakenForAnyCoefficientButZero)
{
    const Layout layout = {.width = 64, .height = 48};
    Lens lens = {.fx = 53.7f, .fy = 61.3f, .cx = 31.1f, .cy = 22.9f, .k1 = -0.31f, .k2 = 0.07f};
    Maps radial(layout, layout);
    ASSERT_EQ(radial.create(lens, nullptr), lumOk);
    Maps negativeZero(layout, layout);
    lens.p1 = lens.p2 = -0.0f;
    ASSERT_EQ(negativeZero.create(lens, nullptr), lumOk);
    EXPECT_TRUE(sameImage(radial.columns, negativeZero.columns));
    EXPECT_TRUE(sameImage(radial.rows, negativeZero.rows));
    for (const bool first : {false, true}) {
        lens.p1 = first ? 1e-40f : 0.0f;
        lens.p2 = first ? 0.0f : 1e-40f;
        expectMaps(layout, layout, lens);
        Maps tangential(layout, layout);
        ASSERT_EQ(tangential.create(lens, nullptr), lumOk);
        EXPECT_FALSE(sameImage(radial.columns, tangential.columns));
        EXPECT_FALSE(sameImage(radial.rows, tangential.rows));
    }
}

// Each tangential coefficient pulls along its own axis: p2 with the columns, p1 with the rows.
TEST(UndistortMapQuick, TangentialCoefficientsAlongTheirAxes)
{
    Maps maps({.width = 3, .height = 3}, {.width = 3, .height = 3});
    ASSERT_EQ(maps.create({.fx = 1, .fy = 1, .p2 = 1}, nullptr), lumOk);
    EXPECT_EQ(maps.columns.at(2, 0), 2 + 2 * 4.0f + 4.0f);  // u * 2 * p2 * X and p2 * fx * r2
    EXPECT_EQ(maps.rows.at(2, 0), 0.0f);
    EXPECT_EQ(maps.columns.at(0, 2), 4.0f);
    EXPECT_EQ(maps.rows.at(0, 2), 2.0f);
    ASSERT_EQ(maps.create({.fx = 1, .fy = 1, .p1 = 1}, nullptr), lumOk);
    EXPECT_EQ(maps.rows.at(0, 2), 2 + 2 * 4.0f + 4.0f);
    EXPECT_EQ(maps.columns.at(0, 2), 0.0f);
    EXPECT_EQ(maps.rows.at(2, 0), 4.0f);
    EXPECT_EQ(maps.columns.at(2, 0), 2.0f);
}

TEST(UndistortMapQuick, SameBytesWithAnyScratch)
{
    Random random(3);
    const Lens lens = ordinaryLens({45, 10}, random);
    const Layout layout = {.width = 45, .height = 10};
    for (int i = 0; i < 4; ++i) {
        Maps expected(layout, layout);
        createMaps(expected.columns, expected.rows, withTangential(lens, i));
        for (const Lum8u content : {Lum8u{0}, Lum8u{255}}) {
            for (std::size_t distance = 0; distance < 66; distance += 3) {
                const PlacedBlock scratch(undistortScratchBytes(45), Guard::After, distance);
                std::fill_n(scratch.data(), scratch.size(), content);
                Maps result(layout, layout);
                EXPECT_EQ(result.create(withTangential(lens, i), scratch.data()), lumOk);
                EXPECT_TRUE(sameImage(expected.columns, result.columns)) << "distance " << distance;
                EXPECT_TRUE(sameImage(expected.rows, result.rows)) << "distance " << distance;
                EXPECT_TRUE(scratch.intact());
            }
        }
    }
}

TEST(UndistortMapQuick, Threads)
{
    Random random(3);
    const Lens lens = ordinaryLens({300, 40}, random);
    std::thread other([&] { expectMaps({.width = 300, .height = 40}, {.width = 300, .height = 40}, lens); });
    expectMaps({.width = 300, .height = 40}, {.width = 300, .height = 40}, lens);
    other.join();
}

}  // namespace
}  // namespace lumcv::test::geometry
