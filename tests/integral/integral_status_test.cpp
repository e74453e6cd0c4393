// The order of the argument checks of integral images.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "integral/integral_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::integral {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kWidth = 13, kHeight = 4;

template <class Sum, class Square>
struct Args
{
    const Form<Sum, Square>* form;
    const Lum8u* pSrc;
    int srcStep;
    Sum* pDst;
    int dstStep;
    Square* pSqr;
    int sqrStep;
    LumiSize roiSize = {kWidth, kHeight};
    const Tables<Sum, Square>* tables;

    LumStatus call() const
    {
        return form->call(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, Sum{1}, Square{2});
    }
    std::vector<Output> outputs() const
    {
        return {Output(tables->sums), Output(tables->squares)};
    }
};

template <class Sum, class Square>
std::vector<Violation<Args<Sum, Square>>> orderOf(const Form<Sum, Square>& form)
{
    using A = Args<Sum, Square>;
    constexpr int sumSize = sizeof(Sum), squareSize = sizeof(Square);
    const int sumRow = (kWidth + form.border()) * sumSize;
    const int squareRow = (kWidth + form.border()) * squareSize;
    const bool hasSquares = form.hasSquares;
    std::vector<Violation<A>> order;
    const auto add = [&](const char* name, LumStatus status, auto violate, std::vector<std::string> notWith = {}) {
        order.push_back({name, status, violate, std::move(notWith)});
    };
    add("pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; });
    add("pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; });
    if (hasSquares) {
        add("pSqr null", lumErrNullPointer, [](A& a) { a.pSqr = nullptr; });
    }
    add("width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; });
    add("height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; });
    add("width negative", lumErrSize, [](A& a) { a.roiSize.width = -kWidth; });
    add("height smallest", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; });
    add("srcStep short", lumErrStep, [](A& a) { a.srcStep = kWidth - 1; });
    add("srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; });
    add("srcStep negative", lumErrStep, [](A& a) { a.srcStep = -kWidth; });
    add("dstStep one byte short", lumErrStep, [=](A& a) { a.dstStep = sumRow - 1; });
    add("dstStep one column short", lumErrStep, [=](A& a) { a.dstStep = sumRow - sumSize; });
    add("dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; });
    add("dstStep negative", lumErrStep, [=](A& a) { a.dstStep = -sumRow; });
    if (hasSquares) {
        add("sqrStep one byte short", lumErrStep, [=](A& a) { a.sqrStep = squareRow - 1; });
        add("sqrStep one column short", lumErrStep, [=](A& a) { a.sqrStep = squareRow - squareSize; });
        add("sqrStep negative", lumErrStep, [=](A& a) { a.sqrStep = -squareRow; });
    }
    add("width largest", lumErrStep, [](A& a) { a.roiSize.width = kIntMax; }, {"width 0", "width negative"});
    for (const int off : {1, 2, 3}) {
        add("dstStep misaligned", lumErrStepAlignment, [=](A& a) { a.dstStep = sumRow + off; });
    }
    for (int off = 1; hasSquares && off < squareSize; ++off) {
        add("sqrStep misaligned", lumErrStepAlignment, [=](A& a) { a.sqrStep = squareRow + off; });
    }
    return order;
}

// The step of a byte source is free: 3 bytes of gap.
TEST(IntegralStatusQuick, ChecksInDocumentedOrder)
{
    Random random(31);
    Image<Lum8u> source({.width = kWidth, .height = kHeight, .gap = 3});
    fill(source, random);
    forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
        const Layout layout{.width = kWidth + form.border(), .height = kHeight + form.border(), .gap = 8};
        const Tables<Sum, Square> tables(layout, layout);
        Args<Sum, Square> valid{.form = &form,
                                .pSrc = source.pixels(),
                                .srcStep = source.step(),
                                .pDst = const_cast<Sum*>(tables.sums.pixels()),
                                .dstStep = tables.sums.step(),
                                .pSqr = const_cast<Square*>(tables.squares.pixels()),
                                .sqrStep = tables.squares.step(),
                                .tables = &tables};
        expectStatusOrder(valid, orderOf(form));
    });
}

// The squares of 64f stand on multiples of 8, also where those of the sums do not.
TEST(IntegralStatusQuick, StepsOfExactlyARowAreAccepted)
{
    Random random(32);
    for (const int width : {1, 2, 5, 8}) {
        Image<Lum8u> source({.width = width, .height = 3});
        fill(source, random);
        forEachForm([&]<class Sum, class Square>(const Form<Sum, Square>& form) {
            EXPECT_TRUE(agrees(form, source, Sum{1}, Square{2}));
        });
    }
}

struct FloatArgs
{
    const Lum32f* pSrc;
    int srcStep;
    Lum32f* pDst;
    int dstStep;
    LumiSize roiSize = {kWidth, kHeight};
    const Image<Lum32f>* table;

    LumStatus call() const
    {
        return lumiIntegral_32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*table)};
    }
};

TEST(IntegralStatusQuick, ChecksOfFloatsInDocumentedOrder)
{
    using A = FloatArgs;
    Random random(33);
    Image<Lum32f> source({.width = kWidth, .height = kHeight, .gap = 4});
    Image<Lum32f> table({.width = kWidth + 1, .height = kHeight + 1, .gap = 8});
    fill(source, random);
    constexpr int sourceRow = kWidth * 4, tableRow = kWidth * 4 + 4;
    std::vector<Violation<A>> order = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width smallest", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
        {"srcStep one byte short", lumErrStep, [](A& a) { a.srcStep = sourceRow - 1; }},
        {"srcStep one pixel short", lumErrStep, [](A& a) { a.srcStep = sourceRow - 4; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -sourceRow; }},
        {"dstStep one byte short", lumErrStep, [](A& a) { a.dstStep = tableRow - 1; }},
        {"dstStep one column short", lumErrStep, [](A& a) { a.dstStep = tableRow - 4; }},
        {"dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
    };
    for (const int off : {1, 2, 3}) {
        const std::string by = std::to_string(off);
        order.push_back({"srcStep off by " + by, lumErrStepAlignment, [=](A& a) { a.srcStep = sourceRow + off; }});
        order.push_back({"dstStep off by " + by, lumErrStepAlignment, [=](A& a) { a.dstStep = tableRow + off; }});
    }
    expectStatusOrder(A{.pSrc = source.pixels(),
                        .srcStep = source.step(),
                        .pDst = table.pixels(),
                        .dstStep = table.step(),
                        .table = &table},
                      order);
}

// The bytes of a row are a product of 32 bits: those of a width of 2^30 are none, so that the alignment is looked at.
TEST(IntegralStatusQuick, RowBytesWrapAt32Bits)
{
    Lum32f source = 1, table[4] = {1, 2, 3, 4};
    EXPECT_EQ(lumiIntegral_32f_C1R(&source, 4, table, 6, {1 << 30, 1}), lumErrStepAlignment);
    EXPECT_EQ(lumiIntegral_32f_C1R(&source, 4, table, 3, {1 << 30, 1}), lumErrStep);
    EXPECT_EQ(lumiIntegral_32f_C1R(&source, 4, table, 8, {kIntMax / 4, 1}), lumErrStep);
    EXPECT_EQ(table[0], 1);
}

}  // namespace
}  // namespace lumcv::test::integral
