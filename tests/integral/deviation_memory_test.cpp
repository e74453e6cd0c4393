// What rectangle deviation touches: tables whose rows stand alone, of exactly the columns that are read.
#include <gtest/gtest.h>

#include "integral/deviation_fixture.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::deviation {
namespace {

// Behind (or in front of) each row lies an unreadable page; the tables cannot be written.
TEST(RectDeviationMemory, RowsStandAlone)
{
    Random random(71);
    for (int width = 1; width <= 41; width += width < 20 ? 1 : 3) {
        for (const LumiRect rect : {LumiRect{0, 0, 1, 1}, LumiRect{1, 2, 3, 2}}) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
                    const Extent extent = extentOf(form.isTilted, {width, 2}, rect);
                    const Layout layout{.width = extent.width, .height = extent.height, .guard = guard};
                    IsolatedRows<Sum> sums(layout);
                    IsolatedRows<Square> squares(layout);
                    IsolatedRows<Result> result({.width = width, .height = 2, .guard = guard});
                    Image<Sum> sumImage({.width = extent.width, .height = extent.height});
                    Image<Square> squareImage({.width = extent.width, .height = extent.height});
                    fillTables(Content::Random, random, sumImage, squareImage);
                    sums.forEach([&](Sum& entry, int x, int y, int) { entry = sumImage.at(x, y); });
                    squares.forEach([&](Square& entry, int x, int y, int) { entry = squareImage.at(x, y); });
                    sums.makeReadOnly();
                    squares.makeReadOnly();
                    const Table<Sum> sumTable = tableAt<Sum>(sums.pixels(), sums.step(), extent);
                    const Table<Square> squareTable = tableAt<Square>(squares.pixels(), squares.step(), extent);
                    ASSERT_EQ(form.call(sumTable.origin, sumTable.step, squareTable.origin, squareTable.step,
                                        result.pixels(), result.step(), {width, 2}, rect, 1),
                              lumOk);
                    const Image<Result> expected = expectedResult(form, sumTable, squareTable, {width, 2}, rect, 1);
                    for (int y = 0; y < 2; ++y) {
                        ASSERT_TRUE(sameElements(expected.row(y), result.row(y), static_cast<std::size_t>(width)))
                            << "row " << y << " of width " << width;
                    }
                    EXPECT_TRUE(result.slackIntact());
                });
                if (HasFailure()) {
                    return;
                }
            }
        }
    }
}

// One row of tables far apart: the stride of a single row of results leads nowhere.
TEST(RectDeviationMemoryQuick, StrideOfASingleRowOfResults)
{
    Random random(72);
    const LumiRect rect = {0, 0, 2, 3};
    forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
        const Extent extent = extentOf(form.isTilted, {19, 1}, rect);
        TableImage<Sum> sums(extent, Guard::After, 1);
        TableImage<Square> squares(extent, Guard::Before, 1);
        fillTables(Content::Random, random, sums.image(), squares.image());
        Image<Result> result({.width = 19, .height = 1});
        ASSERT_EQ(form.call(sums.pointer(), sums.step(), squares.pointer(), squares.step(), result.pixels(), 0x7ffffffc,
                            {19, 1}, rect, 0),
                  lumOk);
        EXPECT_TRUE(sameImage(expectedResult(form, sums.table(), squares.table(), {19, 1}, rect), result));
    });
}

}  // namespace
}  // namespace lumcv::test::deviation
