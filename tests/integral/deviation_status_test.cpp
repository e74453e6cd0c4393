// The order of the argument checks of rectangle deviation.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "integral/deviation_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::deviation {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr LumiSize kRoiSize = {11, 3};
constexpr LumiRect kRect = {2, 1, 4, 3};

template <class Sum, class Square, class Result>
struct Args
{
    const Form<Sum, Square, Result>* form;
    const Sum* pSrc;
    int srcStep;
    const Square* pSqr;
    int sqrStep;
    Result* pDst;
    int dstStep;
    LumiSize roiSize = kRoiSize;
    LumiRect rect = kRect;
    const Image<Result>* result;

    LumStatus call() const
    {
        return form->call(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, 0);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*result)};
    }
};

template <class Sum, class Square, class Result>
std::vector<Violation<Args<Sum, Square, Result>>> orderOf(const Form<Sum, Square, Result>& form)
{
    using A = Args<Sum, Square, Result>;
    constexpr int squareSize = sizeof(Square);
    const int columns = extentOf(form.isTilted, kRoiSize, kRect).columnsOfStep;
    std::vector<Violation<A>> order;
    const auto add = [&](std::string name, LumStatus status, auto violate) {
        order.push_back({std::move(name), status, violate});
    };
    add("pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; });
    add("pSqr null", lumErrNullPointer, [](A& a) { a.pSqr = nullptr; });
    add("pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; });
    add("ROI width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; });
    add("ROI height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; });
    add("ROI width negative", lumErrSize, [](A& a) { a.roiSize.width = -1; });
    add("ROI height smallest", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; });
    add("srcStep one byte short", lumErrStep, [=](A& a) { a.srcStep = columns * 4 - 1; });
    add("srcStep one column short", lumErrStep, [=](A& a) { a.srcStep = columns * 4 - 4; });
    add("srcStep negative", lumErrStep, [=](A& a) { a.srcStep = -columns * 4; });
    add("sqrStep one byte short", lumErrStep, [=](A& a) { a.sqrStep = columns * squareSize - 1; });
    add("sqrStep one column short", lumErrStep, [=](A& a) { a.sqrStep = (columns - 1) * squareSize; });
    add("sqrStep 0", lumErrStep, [](A& a) { a.sqrStep = 0; });
    add("dstStep one byte short", lumErrStep, [](A& a) { a.dstStep = kRoiSize.width * 4 - 1; });
    add("dstStep one pixel short", lumErrStep, [](A& a) { a.dstStep = kRoiSize.width * 4 - 4; });
    add("dstStep negative", lumErrStep, [](A& a) { a.dstStep = -kRoiSize.width * 4; });
    for (const int off : {1, 2, 3}) {
        const std::string by = std::to_string(off);
        add("srcStep off by " + by, lumErrStepAlignment, [=](A& a) { a.srcStep = columns * 4 + off; });
        add("dstStep off by " + by, lumErrStepAlignment, [=](A& a) { a.dstStep = kRoiSize.width * 4 + off; });
    }
    for (int off = 1; off < squareSize; ++off) {
        add("sqrStep off by " + std::to_string(off), lumErrStepAlignment,
            [=](A& a) { a.sqrStep = columns * squareSize + off; });
    }
    // these make the rectangle smaller: the strides do for them
    add("rect.x negative", lumErrSize, [](A& a) { a.rect.x = -1; });
    add("rect.y negative", lumErrSize, [](A& a) { a.rect.y = -1; });
    add("rect.x far left", lumErrSize, [](A& a) { a.rect.x = -1000; });
    add("rect.width 0", lumErrSize, [](A& a) { a.rect.width = 0; });
    add("rect.height 0", lumErrSize, [](A& a) { a.rect.height = 0; });
    add("rect.width negative", lumErrSize, [](A& a) { a.rect.width = -4; });
    add("rect.height negative", lumErrSize, [](A& a) { a.rect.height = -3; });
    return order;
}

// Strides that are a little short would be long enough for the rectangles that are not valid, so they are not joined.
TEST(RectDeviationStatusQuick, ChecksInDocumentedOrder)
{
    Random random(61);
    forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
        using A = Args<Sum, Square, Result>;
        const Extent extent = extentOf(form.isTilted, kRoiSize, kRect);
        TableImage<Sum> sums(extent, Guard::After, 2);
        TableImage<Square> squares(extent, Guard::After, 1);
        fillTables(Content::Image, random, sums.image(), squares.image());
        Image<Result> result({.width = kRoiSize.width, .height = kRoiSize.height, .gap = 8});
        const A valid{.form = &form,
                      .pSrc = sums.pointer(),
                      .srcStep = sums.step(),
                      .pSqr = squares.pointer(),
                      .sqrStep = squares.step(),
                      .pDst = result.pixels(),
                      .dstStep = result.step(),
                      .result = &result};
        std::vector<Violation<A>> order = orderOf(form);
        for (Violation<A>& violation : order) {
            if (violation.name.starts_with("rect.")) {
                violation.notWith = {"srcStep one byte short", "srcStep one column short", "sqrStep one byte short",
                                     "sqrStep one column short"};
            }
            if (violation.name == "rect.x far left") {
                violation.notWith.insert(violation.notWith.end(), {"srcStep negative", "sqrStep 0"});
            }
        }
        expectStatusOrder(valid, order);
    });
}

// The number of columns that a stride must hold, and a rectangle that would need fewer but is not valid.
TEST(RectDeviationStatusQuick, SmallestStrides)
{
    Random random(62);
    for (const LumiRect rect : {LumiRect{0, 1, 1, 1}, LumiRect{3, 2, 5, 4}, LumiRect{1, 0, 2, 9}}) {
        forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
            const Extent extent = extentOf(form.isTilted, {9, 2}, rect);
            TableImage<Sum> sums(extent, Guard::After);
            TableImage<Square> squares(extent, Guard::After);
            ASSERT_EQ(sums.step(), extent.columnsOfStep * int{sizeof(Sum)});
            fillTables(Content::Image, random, sums.image(), squares.image());
            Image<Result> result({.width = 9, .height = 2});
            EXPECT_TRUE(agrees(form, sums, squares, result, rect));
        });
    }
}

// A tilted rectangle without an offset reads one column more than the stride has to hold; its rows overlap.
TEST(RectDeviationStatusQuick, SmallestStrideOfATiltedRectangleWithoutOffset)
{
    Random random(63);
    const LumiRect rect = {0, 0, 3, 3};
    const Extent extent = extentOf(true, {10, 3}, rect);
    ASSERT_EQ(extent.columnsOfStep, extent.width - 1);
    const auto entries = static_cast<std::size_t>((extent.height - 1) * extent.columnsOfStep + extent.width);
    const GuardedBlock sums(entries * 4, Guard::After), squares(entries * 8, Guard::After);
    for (std::size_t i = 0; i < entries; ++i) {
        sums.as<Lum32s>()[i] = static_cast<Lum32s>(random.between(-1000, 1000));
        squares.as<Lum64f>()[i] = static_cast<Lum64f>(random.between(-1000000, 1000000));
    }
    const Table<Lum32s> sumTable{sums.as<Lum32s>() + rect.height, extent.columnsOfStep * 4};
    const Table<Lum64f> squareTable{squares.as<Lum64f>() + rect.height, extent.columnsOfStep * 8};
    Image<Lum32f> result({.width = 10, .height = 3});
    ASSERT_EQ(lumiTiltedRectStdDev_32s32f_C1R(sumTable.origin, sumTable.step, squareTable.origin, squareTable.step,
                                              result.pixels(), result.step(), {10, 3}, rect),
              lumOk);
    EXPECT_TRUE(sameImage(expectedResult(kTilted32s32f, sumTable, squareTable, {10, 3}, rect), result));
    EXPECT_EQ(lumiTiltedRectStdDev_32s32f_C1R(sumTable.origin, sumTable.step - 4, squareTable.origin, squareTable.step,
                                              result.pixels(), result.step(), {10, 3}, rect),
              lumErrStep);
}

// The columns that the strides are tested for are counted in 32 bits: an offset near the end of them wraps to a small
// number and is found by nothing, a negative one is found by the test of the rectangle.
TEST(RectDeviationStatusQuick, ColumnsAreCountedIn32Bits)
{
    forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
        Sum sum[8] = {};
        Square square[8] = {};
        Result result[2] = {Result{7}, Result{7}};
        const auto status = [&](LumiRect rect) { return form.call(sum, 32, square, 64, result, 8, {1, 1}, rect, 0); };
        EXPECT_EQ(status({1 << 20, 0, 1, 1}), lumErrStep);
        EXPECT_EQ(status({-(1 << 20), 0, 1, 1}), lumErrSize);
        EXPECT_EQ(status({kIntMin, 0, 1, 1}), lumErrSize) << "times four this wraps to nothing";
        EXPECT_EQ(status({kIntMax, 0, 1, 0}), lumErrSize) << "the sum of the columns wraps to something negative";
        EXPECT_EQ(status({0, 1 << 20, 1, 0}), form.isTilted ? lumErrStep : lumErrSize);
        EXPECT_EQ(result[0], Result{7});
    });
}

}  // namespace
}  // namespace lumcv::test::deviation
