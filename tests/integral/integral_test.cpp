// Integral images of bytes: what the tables hold over sizes and values.
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "integral/integral_fixture.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::integral {
namespace {

template <class T>
Layout tableLayout(Geometry geometry, int operand, int border)
{
    geometry.width += border;
    geometry.height += border;
    return geometry.layout<T>(operand);
}

void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 100);
        Image<Lum8u> source(geometry.layout<Lum8u>(0));
        fillPixels(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            Tables<Sum, Square> tables(tableLayout<Sum>(geometry, 1, form.border()),
                                       tableLayout<Square>(geometry, 2, form.border()));
            EXPECT_TRUE(agrees(form, source, tables, drawInitial<Sum>(random), drawInitial<Square>(random)));
        });
    });
}

TEST(Integral, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Full);
}

TEST(IntegralQuick, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Quick);
}

// Tall and wide ones, so that sums run through every row and carries through every group.
TEST(Integral, LargerImages)
{
    for (const LumiSize size :
         {LumiSize{1100, 40}, LumiSize{33, 700}, LumiSize{1, 500}, LumiSize{260, 260}, LumiSize{261, 71}}) {
        Random random(static_cast<std::uint64_t>(size.width));
        Image<Lum8u> source({.width = size.width, .height = size.height, .gap = 5});
        fillPixels(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            EXPECT_TRUE(agrees(form, source, Sum{17}, Square{23})) << size.width << " x " << size.height;
        });
    }
}

TEST(IntegralQuick, OneByOneWithInitialValueFive)
{
    Image<Lum8u> source({});
    source.at(0, 0) = 200;
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        const int size = 1 + form.border();
        Image<Sum> sums({.width = size, .height = size});
        Image<Square> squares({.width = size, .height = size});
        ASSERT_EQ(form.call(source.pixels(), 1, sums.pixels(), sums.step(), squares.pixels(), squares.step(), {1, 1},
                            Sum{5}, Square{7}),
                  lumOk);
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const bool covers = form.isTilted ? y == 2 && x == 1 : y == 1 && x == 1;
                EXPECT_EQ(sums.at(x, y), covers ? Sum{205} : Sum{5}) << "x " << x << ", y " << y;
                if (form.hasSquares) {
                    EXPECT_EQ(squares.at(x, y), covers ? Square{40007} : Square{7}) << "x " << x << ", y " << y;
                }
            }
        }
    });
}

// Each entry is the initial value and the sum of the rectangle above and left of it.
TEST(IntegralQuick, UprightEntriesAreSumsOfRectangles)
{
    Random random(3);
    Image<Lum8u> source({.width = 21, .height = 6});
    fill(source, random);
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if (form.isTilted) {
            return;
        }
        Image<Sum> sums({.width = 22, .height = 7});
        Image<Square> squares({.width = 22, .height = 7});
        ASSERT_EQ(form.call(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                            squares.step(), {21, 6}, Sum{-3}, Square{11}),
                  lumOk);
        for (int y = 0; y <= 6; ++y) {
            for (int x = 0; x <= 21; ++x) {
                int sum = -3, squareSum = 11;
                for (int r = 0; r < y; ++r) {
                    for (int c = 0; c < x; ++c) {
                        sum += source.at(c, r);
                        squareSum += source.at(c, r) * source.at(c, r);
                    }
                }
                ASSERT_EQ(sums.at(x, y), static_cast<Sum>(sum)) << "x " << x << ", y " << y;
                if (form.hasSquares) {
                    ASSERT_EQ(squares.at(x, y), static_cast<Square>(squareSum)) << "x " << x << ", y " << y;
                }
            }
        }
    });
}

// A pixel away from the edges adds to a cone that is two columns wide two rows below it and opens by a column on each
// side with each further row.
TEST(IntegralQuick, TiltedEntriesAreSumsOfCones)
{
    constexpr int width = 24, height = 9, pixelX = 11, pixelY = 2;
    Image<Lum8u> source({.width = width, .height = height});
    source.forEach(Area::Roi,
                   [](Lum8u& pixel, int x, int y, int) { pixel = x == pixelX && y == pixelY ? Lum8u{13} : Lum8u{0}; });
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if (!form.isTilted) {
            return;
        }
        Image<Sum> sums({.width = width + 2, .height = height + 2});
        Image<Square> squares({.width = width + 2, .height = height + 2});
        ASSERT_EQ(form.call(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                            squares.step(), {width, height}, Sum{-3}, Square{11}),
                  lumOk);
        for (int y = 0; y < height + 2; ++y) {
            for (int x = 0; x < width + 2; ++x) {
                const int opening = y - pixelY - 2;
                const bool inCone = opening >= 0 && x >= pixelX - opening && x <= pixelX + 1 + opening;
                ASSERT_EQ(sums.at(x, y), inCone ? Sum{10} : Sum{-3}) << "x " << x << ", y " << y;
                if (form.hasSquares) {
                    ASSERT_EQ(squares.at(x, y), inCone ? Square{180} : Square{11}) << "x " << x << ", y " << y;
                }
            }
        }
    });
}

// Column 0 is a copy along the diagonal and does not see the source: a pixel at the left edge leaves a checkered trace.
TEST(IntegralQuick, TiltedTraceOfTheLeftEdge)
{
    const int trace[8][8] = {{0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0}, {0, 1, 0, 0, 0, 0, 0, 0},
                             {1, 0, 1, 0, 0, 0, 0, 0}, {0, 1, 0, 1, 0, 0, 0, 0}, {1, 0, 1, 0, 1, 0, 0, 0},
                             {0, 1, 0, 1, 0, 1, 0, 0}, {1, 0, 1, 0, 1, 0, 1, 0}};
    Image<Lum8u> source({.width = 6, .height = 6});
    source.forEach(Area::Roi, [](Lum8u& pixel, int x, int y, int) { pixel = x == 0 && y == 0 ? Lum8u{9} : Lum8u{0}; });
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if (!form.isTilted) {
            return;
        }
        Image<Sum> sums({.width = 8, .height = 8});
        Image<Square> squares({.width = 8, .height = 8});
        ASSERT_EQ(form.call(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                            squares.step(), {6, 6}, Sum{0}, Square{0}),
                  lumOk);
        for (int y = 0; y < 8; ++y) {
            for (int x = 0; x < 8; ++x) {
                ASSERT_EQ(sums.at(x, y), static_cast<Sum>(9 * trace[y][x])) << "x " << x << ", y " << y;
                if (form.hasSquares) {
                    ASSERT_EQ(squares.at(x, y), static_cast<Square>(81 * trace[y][x])) << "x " << x << ", y " << y;
                }
            }
        }
    });
}

// The last column is frozen: it holds the initial value in every row and cuts the cones.
TEST(IntegralQuick, TiltedLastColumnStays)
{
    Random random(5);
    for (const int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 40}) {
        Image<Lum8u> source({.width = width, .height = 12});
        fill(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            if (!form.isTilted) {
                return;
            }
            Image<Sum> sums({.width = width + 2, .height = 14});
            Image<Square> squares({.width = width + 2, .height = 14});
            ASSERT_EQ(form.call(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                                squares.step(), {width, 12}, Sum{77}, Square{-5}),
                      lumOk);
            for (int y = 0; y < 14; ++y) {
                EXPECT_EQ(sums.at(width + 1, y), Sum{77}) << "row " << y << " of width " << width;
                if (form.hasSquares) {
                    EXPECT_EQ(squares.at(width + 1, y), Square{-5}) << "row " << y << " of width " << width;
                }
            }
        });
    }
}

// Integers wrap, in the sums by their initial value and in the squares by an image of 2^32 / 255^2 white pixels.
TEST(Integral, IntegersWrap)
{
    Image<Lum8u> source({.width = 270, .height = 290});
    source.forEach(Area::Roi, [](Lum8u& pixel, int, int, int) { pixel = 255; });
    constexpr Lum32s largest = std::numeric_limits<Lum32s>::max();
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if constexpr (std::is_integral_v<Sum>) {
            EXPECT_TRUE(agrees(form, source, largest, Square{1}));
            EXPECT_TRUE(agrees(form, source, Sum{std::numeric_limits<Lum32s>::min()}, Square{1}));
        }
    });
    Image<Lum32s> sums({.width = 271, .height = 291}), squares({.width = 271, .height = 291});
    ASSERT_EQ(lumiSqrIntegral_8u32s_C1R(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                                        squares.step(), {270, 290}, largest, 0),
              lumOk);
    EXPECT_EQ(sums.at(1, 1), std::numeric_limits<Lum32s>::min() + 254) << "the first pixel wraps";
    const Lum64s squareSum = Lum64s{255} * 255 * 270 * 290;
    ASSERT_GT(squareSum, Lum64s{1} << 32);
    EXPECT_EQ(squares.at(270, 290), static_cast<Lum32s>(squareSum - (Lum64s{1} << 32)));
}

// The running total of a row is single precision: it rounds from 2^24 on, column after column.
TEST(Integral, FloatTotalsRoundAbove24Bits)
{
    constexpr int width = 70001, white = 65793;  // 65793 * 255 is the last sum of whites below 2^24
    static_assert(white * 255 < (1 << 24) && (white + 1) * 255 > (1 << 24));
    Random random(6);
    Image<Lum8u> source({.width = width, .height = 3});
    source.forEach(Area::Roi, [&](Lum8u& pixel, int x, int y, int) {
        pixel = y == 0 || x < white ? Lum8u{255} : random.value<Lum8u>(Values::Ordinary);
    });
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if constexpr (std::is_floating_point_v<Sum>) {
            EXPECT_TRUE(agrees(form, source, Sum{0}, Square{0}));
            const Tables<Sum, Square> tables = expectedTables(form, source, Sum{0}, Square{0});
            if (!form.isTilted) {
                Lum64s exact = 0;
                int rounded = 0;
                for (int x = 0; x < width; ++x) {
                    exact += source.at(x, 0);
                    rounded += tables.sums.at(x + 1, 1) != static_cast<Lum32f>(exact);
                }
                EXPECT_GT(rounded, 1000) << "sums that are rounded once would do as well";
            }
        }
    });
}

// The entries of a tilted float table are added in double precision and rounded once. Where they need more than 24
// bits, sums in single precision would differ.
TEST(Integral, TiltedFloatEntriesRoundOnce)
{
    constexpr Lum32f initial = 16777216.0F * 3;
    Random random(7);
    Image<Lum8u> source({.width = 90, .height = 80});
    fill(source, random);
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        if constexpr (std::is_floating_point_v<Sum>) {
            EXPECT_TRUE(agrees(form, source, initial, Square{1}));
            if (form.isTilted) {
                const Tables<Sum, Square> tables = expectedTables(form, source, initial, Square{1});
                int different = 0;
                for (int r = 0; r < 80; ++r) {
                    for (int x = 0; x + 1 < 90; ++x) {
                        const Lum32f single = tables.sums.at(x, r + 1) - tables.sums.at(x + 1, r) +
                                              tables.sums.at(x + 2, r + 1) + source.at(x, r) + source.at(x + 1, r);
                        different += single != tables.sums.at(x + 1, r + 2);
                    }
                }
                EXPECT_GT(different, 100) << "single precision would do as well";
            }
        }
    });
}

// With initial values that leave no digit free, the order of additions shows in double precision as well.
TEST(Integral, InitialValuesWithAllDigits)
{
    Random random(8);
    for (const int width : {1, 2, 3, 8, 9, 21, 40}) {
        Image<Lum8u> source({.width = width, .height = 9});
        fill(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            for (const double magnitude : {1.0 / 3, 1.0e6 / 7, 1.0e15 / 3, 1.0e30 / 7}) {
                if constexpr (std::is_floating_point_v<Sum>) {
                    EXPECT_TRUE(agrees(form, source, static_cast<Sum>(-magnitude), static_cast<Square>(magnitude)))
                        << "magnitude " << magnitude << ", width " << width;
                } else if constexpr (std::is_floating_point_v<Square>) {
                    EXPECT_TRUE(agrees(form, source, Sum{0}, static_cast<Square>(magnitude)))
                        << "magnitude " << magnitude << ", width " << width;
                }
            }
        });
    }
}

// Initial values that are no numbers spread as their additions say.
TEST(Integral, InitialValuesThatAreNotFinite)
{
    Random random(9);
    for (const int width : {1, 5, 8, 19}) {
        Image<Lum8u> source({.width = width, .height = 5});
        fill(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            if constexpr (std::is_floating_point_v<Sum>) {
                using SumLimits = std::numeric_limits<Sum>;
                using SquareLimits = std::numeric_limits<Square>;
                EXPECT_TRUE(agrees(form, source, SumLimits::infinity(), -SquareLimits::infinity()));
                EXPECT_TRUE(agrees(form, source, SumLimits::quiet_NaN(), SquareLimits::quiet_NaN()));
                EXPECT_TRUE(agrees(form, source, SumLimits::max(), SquareLimits::max()));
                EXPECT_TRUE(agrees(form, source, Sum{-0.0F}, Square{-0.0}));
            }
        });
    }
}

// Whatever the cache, above and below the image: the same tables.
TEST(Integral, ImagesLargerThanTheCache)
{
    Random random(10);
    Image<Lum8u> source({.width = 131, .height = 9, .gap = 3});
    fill(source, random);
    for (const int bytes : {1, 4096, 1 << 30}) {
        const ReportedCacheSize cache(0, bytes);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            for (const int gap : {0, 8, 40}) {
                for (const int offset : {0, 1, 5}) {
                    const Layout layout{.width = 131 + form.border(),
                                        .height = 9 + form.border(),
                                        .gap = gap,
                                        .guard = offset % 2 == 0 ? Guard::After : Guard::Before,
                                        .offset = offset};
                    Tables<Sum, Square> tables(layout, layout);
                    EXPECT_TRUE(agrees(form, source, tables, Sum{3}, Square{4})) << "cache of " << bytes << " bytes";
                }
            }
        });
    }
}

}  // namespace
}  // namespace lumcv::test::integral
