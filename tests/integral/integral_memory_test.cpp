// What integral images touch: rows that stand alone, planes that share a block, strides, threads.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "integral/integral_fixture.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::integral {
namespace {

template <class T>
testing::AssertionResult sameRows(const Image<T>& expected, const IsolatedRows<T>& actual)
{
    for (int y = 0; y < expected.height(); ++y) {
        if (const auto same = sameElements(expected.row(y), actual.row(y), static_cast<std::size_t>(expected.width()));
            !same) {
            return testing::AssertionFailure() << "row " << y << ": " << same.message();
        }
    }
    return actual.slackIntact();
}

// The last byte of every row, and the first, stands at an unreadable page; the source cannot be written.
TEST(IntegralMemory, RowsStandAlone)
{
    Random random(21);
    for (int width = 1; width <= 70; width += width < 20 ? 1 : 5) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Image<Lum8u> image({.width = width, .height = 5});
            fillPixels(image, random);
            IsolatedRows<Lum8u> source({.width = width, .height = 5, .guard = guard});
            source.forEach([&](Lum8u& pixel, int x, int y, int) { pixel = image.at(x, y); });
            source.makeReadOnly();
            forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
                const Layout layout{.width = width + form.border(), .height = 5 + form.border(), .guard = guard};
                IsolatedRows<Sum> sums(layout);
                IsolatedRows<Square> squares(layout);
                const Sum val = drawInitial<Sum>(random);
                const Square valSqr = drawInitial<Square>(random);
                ASSERT_EQ(form.call(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                                    squares.step(), {width, 5}, val, valSqr),
                          lumOk);
                const Tables<Sum, Square> expected = expectedTables(form, image, val, valSqr);
                ASSERT_TRUE(sameRows(expected.sums, sums)) << "width " << width;
                if (form.hasSquares) {
                    ASSERT_TRUE(sameRows(expected.squares, squares)) << "squares, width " << width;
                }
            });
            if (HasFailure()) {
                return;
            }
        }
    }
}

TEST(IntegralMemory, RowsOfFloatsStandAlone)
{
    Random random(22);
    for (int width = 1; width <= 70; width += width < 20 ? 1 : 5) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            Image<Lum32f> image({.width = width, .height = 5}), expected({.width = width + 1, .height = 6});
            fill(image, random);
            IsolatedRows<Lum32f> source({.width = width, .height = 5, .guard = guard});
            IsolatedRows<Lum32f> table({.width = width + 1, .height = 6, .guard = guard});
            source.forEach([&](Lum32f& pixel, int x, int y, int) { pixel = image.at(x, y); });
            source.makeReadOnly();
            ASSERT_EQ(lumiIntegral_32f_C1R(source.pixels(), source.step(), table.pixels(), table.step(), {width, 5}),
                      lumOk);
            uprightOfFloats(image, expected);
            ASSERT_TRUE(sameRows(expected, table)) << "width " << width;
        }
    }
}

// The rows of both tables take turns in one block: the gap of one is the row of the other.
TEST(IntegralMemory, TablesTakeTurnsInOneBlock)
{
    Random random(23);
    for (const int width : {1, 7, 8, 19, 40}) {
        Image<Lum8u> source({.width = width, .height = 6});
        fillPixels(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            if (!form.hasSquares) {
                return;
            }
            // an even number of columns keeps the squares on multiples of their size
            const int columns = (width + form.border() + 1) / 2 * 2, rows = 6 + form.border();
            const int sumBytes = columns * int{sizeof(Sum)};
            const int step = sumBytes + (width + form.border()) * int{sizeof(Square)};
            const int evenStep = (step + 7) / 8 * 8;
            const GuardedBlock block(static_cast<std::size_t>(evenStep * rows), Guard::Before);
            Sum* const pDst = block.as<Sum>();
            Square* const pSqr = reinterpret_cast<Square*>(block.data() + sumBytes);
            ASSERT_EQ(form.call(source.pixels(), source.step(), pDst, evenStep, pSqr, evenStep, {width, 6}, Sum{9},
                                Square{-2}),
                      lumOk);
            const Tables<Sum, Square> expected = expectedTables(form, source, Sum{9}, Square{-2});
            const auto elements = static_cast<std::size_t>(width + form.border());
            for (int y = 0; y < rows; ++y) {
                const unsigned char* const row = block.data() + y * evenStep;
                EXPECT_TRUE(sameElements(expected.sums.row(y), reinterpret_cast<const Sum*>(row), elements))
                    << "sums, row " << y << ", width " << width;
                EXPECT_TRUE(
                    sameElements(expected.squares.row(y), reinterpret_cast<const Square*>(row + sumBytes), elements))
                    << "squares, row " << y << ", width " << width;
                for (std::size_t i = elements * sizeof(Sum); i < static_cast<std::size_t>(sumBytes); ++i) {
                    const auto index = static_cast<std::size_t>(y * evenStep) + i;
                    EXPECT_EQ(block.data()[index], block.original(index)) << "beside the sums, row " << y;
                }
            }
            EXPECT_TRUE(block.slackIntact());
        });
    }
}

// Strides of exactly a row of the table do, also where the rows of the source are tight; the stride of a source of one
// row leads nowhere.
TEST(IntegralMemoryQuick, SmallestAndLargestStrides)
{
    Random random(24);
    for (const int width : {1, 2, 3, 7, 8, 9, 31}) {
        for (const int sourceStep : {width, width + 1, std::numeric_limits<int>::max()}) {
            Image<Lum8u> source({.width = width, .height = 1});
            fillPixels(source, random);
            forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
                const Layout layout{.width = width + form.border(), .height = 1 + form.border()};
                Tables<Sum, Square> tables(layout, layout);
                ASSERT_EQ(form.call(source.pixels(), sourceStep, tables.sums.pixels(), layout.width * int{sizeof(Sum)},
                                    tables.squares.pixels(), layout.width * int{sizeof(Square)}, {width, 1}, Sum{1},
                                    Square{2}),
                          lumOk);
                const Tables<Sum, Square> expected = expectedTables(form, source, Sum{1}, Square{2});
                EXPECT_TRUE(sameImage(expected.sums, tables.sums)) << "width " << width;
                if (form.hasSquares) {
                    EXPECT_TRUE(sameImage(expected.squares, tables.squares)) << "width " << width;
                }
            });
        }
    }
}

// Threads with a source in common, each with its own tables: every call gives the same bytes.
TEST(IntegralMemory, ThreadsShareASource)
{
    Random random(25);
    Image<Lum8u> source({.width = 67, .height = 31});
    fill(source, random);
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        const Layout layout{.width = 67 + form.border(), .height = 31 + form.border()};
        const Tables<Sum, Square> expected = expectedTables(form, source, Sum{6}, Square{8});
        constexpr std::size_t threadCount = 3;
        std::vector<Tables<Sum, Square>> tables(threadCount, Tables<Sum, Square>(layout, layout));
        std::array<LumStatus, threadCount> statuses{};
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < threadCount; ++i) {
            threads.emplace_back([&, i] {
                for (int repetition = 0; repetition < 5; ++repetition) {
                    std::memset(tables[i].sums.bytes(), repetition, tables[i].sums.byteCount());
                    statuses[i] =
                        form.call(source.pixels(), source.step(), tables[i].sums.pixels(), tables[i].sums.step(),
                                  tables[i].squares.pixels(), tables[i].squares.step(), {67, 31}, Sum{6}, Square{8});
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t i = 0; i < threadCount; ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameImage(expected.sums, tables[i].sums));
            if (form.hasSquares) {
                EXPECT_TRUE(sameImage(expected.squares, tables[i].squares));
            }
        }
    });
}

}  // namespace
}  // namespace lumcv::test::integral
