// The checks of the row pass: their complete order, each kind of wrong argument, what is accepted, and the sizes that
// the queries report.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <vector>

#include "filter/pipeline_query.hpp"
#include "filter/row_pipeline_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

TYPE_SUITE(RowPipelineChecksQuick, RowVariants, VariantName);

using ThreeChannelRowVariants = testing::Types<Row_32f_C3, Row_16s_C3, Row_16u_C3, Row_8u16s_C3, Row_Low_16s_C3>;
TYPE_SUITE(ThreeChannelRowPipelineQuick, ThreeChannelRowVariants, VariantName);

// Variants with pixels of three bytes or more.
using WidePixelRowVariants =
    testing::Types<Row_32f_C1, Row_32f_C3, Row_16s_C3, Row_16u_C3, Row_8u16s_C3, Row_Low_16s_C3>;
TYPE_SUITE(WidePixelRowPipelineQuick, WidePixelRowVariants, VariantName);

// What a violation changes of a valid call, the same for all variants.
struct RowStatusArguments
{
    LumiSize roiSize;
    Lum32s kernelSize;
    Lum32s xAnchor;
    Lum32s srcStep;
    LumiBorderType borderType;
    Lum32s divisor;
    bool sourceNull = false;
    bool rowsNull = false;
    bool kernelNull = false;
    bool bufferNull = false;
    std::vector<bool> rowNull = {};  // one for each row pointer
    std::vector<Output> rows = {};
    std::function<LumStatus(const RowStatusArguments&)> function = {};

    LumStatus call() const
    {
        return function(*this);
    }
    std::vector<Output> outputs() const
    {
        return rows;
    }
};

template <typename V>
RowStatusArguments statusArguments(const RowOperands<V>& operands)
{
    const typename V::Arguments valid = operands.arguments();
    RowStatusArguments result{valid.roiSize, valid.kernelSize, valid.xAnchor,
                              valid.srcStep, valid.borderType, valid.divisor};
    result.rowNull.resize(operands.rows.size());
    for (const auto& row : operands.rows) {
        result.rows.emplace_back(row.block());
    }
    result.function = [valid](const RowStatusArguments& spoilt) {
        std::vector<typename V::Row*> rows(valid.ppDst, valid.ppDst + valid.roiSize.height);
        for (std::size_t y = 0; y < rows.size(); ++y) {
            rows[y] = spoilt.rowNull[y] ? nullptr : rows[y];
        }
        return V::call(
            {spoilt.sourceNull ? nullptr : valid.pSrc, spoilt.srcStep, spoilt.rowsNull ? nullptr : rows.data(),
             spoilt.roiSize, spoilt.kernelNull ? nullptr : valid.pKernel, spoilt.kernelSize, spoilt.xAnchor,
             spoilt.borderType, valid.pBorderValue, spoilt.divisor, spoilt.bufferNull ? nullptr : valid.pBuffer});
    };
    return result;
}

RowCase statusCase()
{
    RowCase c;
    c.width = 6;
    c.height = 5;
    c.kernelSize = 3;
    c.xAnchor = 1;
    return c;
}

// The table for statusCase().
void expectRowStatusOrder(const RowStatusArguments& valid, int pixelBytes, int elementBytes, bool hasDivisor)
{
    using Args = RowStatusArguments;
    using Table = std::vector<Violation<Args>>;
    const int rowBytes = 6 * pixelBytes;
    Table table = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.sourceNull = true; }},
        {"ppDst null", lumErrNullPointer, [](Args& a) { a.rowsNull = true; }},
        {"pKernel null", lumErrNullPointer, [](Args& a) { a.kernelNull = true; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.bufferNull = true; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -6; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = INT_MIN; }},
        {"first row null", lumErrNullPointer, [](Args& a) { a.rowNull[0] = true; }},
        {"second row null", lumErrNullPointer, [](Args& a) { a.rowNull[1] = true; }},
        {"middle row null", lumErrNullPointer, [](Args& a) { a.rowNull[2] = true; }},
        {"fourth row null", lumErrNullPointer, [](Args& a) { a.rowNull[3] = true; }},
        {"odd last row null", lumErrNullPointer, [](Args& a) { a.rowNull[4] = true; }},
        {"kernelSize 0", lumErrSize, [](Args& a) { a.kernelSize = 0; }},
        {"kernelSize negative", lumErrSize, [](Args& a) { a.kernelSize = -1; }},
        {"kernelSize most negative", lumErrSize, [](Args& a) { a.kernelSize = INT_MIN; }},
        {"xAnchor equal to kernelSize", lumErrAnchor, [](Args& a) { a.xAnchor = 3; }},
        {"xAnchor -1", lumErrAnchor, [](Args& a) { a.xAnchor = -1; }},
        {"xAnchor most negative", lumErrAnchor, [](Args& a) { a.xAnchor = INT_MIN; }},
        {"xAnchor largest", lumErrAnchor, [](Args& a) { a.xAnchor = INT_MAX; }},
        {"srcStep one byte below a row", lumErrStep, [=](Args& a) { a.srcStep = rowBytes - 1; }},
        {"srcStep one element below a row", lumErrStep, [=](Args& a) { a.srcStep = rowBytes - elementBytes; }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [=](Args& a) { a.srcStep = -rowBytes; }},
    };
    for (int extra = 1; extra < elementBytes; ++extra) {
        table.push_back({"srcStep " + std::to_string(extra) + " bytes above a row", lumErrStepAlignment,
                         [=](Args& a) { a.srcStep = rowBytes + extra; }});
    }
    const Table border = {
        {"border 0", lumErrBorder, [](Args& a) { a.borderType = 0; }},
        {"border 2", lumErrBorder, [](Args& a) { a.borderType = 2; }},
        {"border 4", lumErrBorder, [](Args& a) { a.borderType = 4; }},
        {"border neutral", lumErrBorder, [](Args& a) { a.borderType = lumBorderNeutral; }},
        {"border above 255", lumErrBorder, [](Args& a) { a.borderType = 0x100 | lumBorderReplicate; }},
        {"border negative", lumErrBorder, [](Args& a) { a.borderType = -1; }},
    };
    const Violation<Args> divisor = {"divisor 0", lumErrArgument, [](Args& a) { a.divisor = 0; }};
    // for images of bytes alone the border stands before the divisor
    const bool divisorLast = elementBytes == 1;
    if (hasDivisor && !divisorLast) {
        table.push_back(divisor);
    }
    table.insert(table.end(), border.begin(), border.end());
    if (hasDivisor && divisorLast) {
        table.push_back(divisor);
    }
    expectStatusOrder(valid, table);
}

TYPE_TEST(RowPipelineChecksQuick, StatusOrder)
{
    const RowOperands<TypeParam> operands(statusCase());
    expectRowStatusOrder(statusArguments(operands), TypeParam::pixelBytes, sizeof(typename TypeParam::Source),
                         !TypeParam::floating);
}

TYPE_TEST(RowPipelineChecksQuick, NullRowAnywhere)
{
    for (const int height : {1, 2, 4, 6, 7, 16, 17}) {
        RowCase c;
        c.width = 3;
        c.height = height;
        c.kernelSize = 3;
        const RowOperands<TypeParam> operands(c);
        for (int y = 0; y < height; ++y) {
            RowStatusArguments arguments = statusArguments(operands);
            arguments.rowNull[static_cast<std::size_t>(y)] = true;
            EXPECT_EQ(lumErrNullPointer, arguments.call()) << "row " << y << " of " << height;
        }
        for (const auto& row : operands.rows) {
            const GuardedArray<typename TypeParam::Row> untouched(3 * TypeParam::channels, row.block().guard());
            EXPECT_TRUE(sameElements(untouched.data(), row.data(), 3 * TypeParam::channels));
        }
    }
}

TYPE_TEST(RowPipelineChecksQuick, StrideEqualToRowIsAccepted)
{
    RowCase c;
    c.width = 5;
    c.kernelSize = 3;
    c.xAnchor = 1;
    const RowOperands<TypeParam> operands(c);
    auto arguments = operands.arguments();
    arguments.srcStep = 5 * TypeParam::pixelBytes;
    EXPECT_EQ(lumOk, TypeParam::call(arguments));
    EXPECT_TRUE(operands.rowsAsExpected());
}

// The bytes of a row are a product modulo 2^32: an absurd width gets past the stride and is stopped by the border
// value.
TYPE_TEST(WidePixelRowPipelineQuick, RowBytesWrap)
{
    constexpr unsigned long long modulus = 1ull << 32;
    constexpr unsigned long long width = (modulus + TypeParam::pixelBytes - 1) / TypeParam::pixelBytes;
    constexpr int rowBytes = static_cast<int>(width * TypeParam::pixelBytes - modulus);
    constexpr int elementBytes = sizeof(typename TypeParam::Source);
    RowCase c;
    c.width = 4;
    c.kernelSize = 3;
    const RowOperands<TypeParam> operands(c);
    auto arguments = operands.arguments();
    arguments.roiSize.width = static_cast<int>(width);
    arguments.borderType = 0;
    arguments.srcStep = (rowBytes / elementBytes + 1) * elementBytes;
    EXPECT_EQ(lumErrBorder, TypeParam::call(arguments));
    arguments.srcStep = rowBytes - 1;
    EXPECT_EQ(lumErrStep, TypeParam::call(arguments));
}

// Every value from 0 to 255 and some beyond: accepted are 240 and whatever holds mode 1, 3 or 6 in its low four bits.
TYPE_TEST(RowPipelineChecksQuick, AcceptsBorderValues)
{
    RowCase c;
    c.width = 6;
    c.height = 1;
    c.kernelSize = 3;
    c.xAnchor = 1;
    c.borderType = lumBorderInMem;  // gives the source its margins
    const RowOperands<TypeParam> operands(c);
    auto arguments = operands.arguments();
    for (int value = -1; value < 300; ++value) {
        arguments.borderType = value;
        const int mode = value & 15;
        const bool accepted = value == 240 || (value >= 0 && value <= 255 && (mode == 1 || mode == 3 || mode == 6));
        EXPECT_EQ(accepted ? lumOk : lumErrBorder, TypeParam::call(arguments)) << "border value " << value;
    }
    for (const int value : {INT_MIN, INT_MIN + lumBorderReplicate, INT_MAX, 0x101, 0x1F0, 0x10006, -253}) {
        arguments.borderType = value;
        EXPECT_EQ(lumErrBorder, TypeParam::call(arguments)) << "border value " << value;
    }
}

TYPE_TEST(ThreeChannelRowPipelineQuick, NeedsNoBorderValuesUnlessConstant)
{
    RowCase c;
    c.width = 9;
    c.kernelSize = 5;
    c.xAnchor = 2;
    for (const LumiBorderType borderType :
         {LumiBorderType{lumBorderReplicate}, LumiBorderType{lumBorderMirror}, LumiBorderType{lumBorderInMem}}) {
        c.borderType = borderType;
        const RowOperands<TypeParam> operands(c);
        auto arguments = operands.arguments();
        arguments.pBorderValue = nullptr;
        EXPECT_EQ(lumOk, TypeParam::call(arguments));
        EXPECT_TRUE(operands.rowsAsExpected());
    }
}

TYPE_TEST(ThreeChannelRowPipelineQuick, ConstantNeedsBorderValuesAndSaysSoLast)
{
    RowCase c;
    c.width = 9;
    c.kernelSize = 5;
    c.xAnchor = 2;
    c.borderType = lumBorderConstant;
    const RowOperands<TypeParam> operands(c);
    auto arguments = operands.arguments();
    arguments.pBorderValue = nullptr;
    EXPECT_EQ(lumErrNullPointer, TypeParam::call(arguments));
    arguments.borderType = lumBorderConstant | 0x100;
    EXPECT_EQ(lumErrBorder, TypeParam::call(arguments));
}

TYPE_TEST(RowPipelineChecksQuick, BufferSizeBeyond32Bits)
{
    const Lum64s one = TypeParam::bufferSize(1);
    const Lum64s scale = TypeParam::bufferSize(2) - one;
    const auto largest = static_cast<Lum32s>((INT_MAX - one) / scale + 1);
    Lum32s size = -1;
    EXPECT_EQ(lumOk, TypeParam::query({5, 4}, largest, &size));
    EXPECT_EQ(one + scale * (largest - 1), size);
    size = -1;
    EXPECT_EQ(lumErrSizeTooLarge, TypeParam::query({5, 4}, largest + 1, &size));
    EXPECT_EQ(lumErrSizeTooLarge, TypeParam::query({5, 4}, INT_MAX, &size));
    EXPECT_EQ(-1, size);
}

TYPE_TEST(RowPipelineChecksQuick, BufferSizes)
{
    for (const int kernelSize : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 64, 100, 1000, 100000}) {
        for (const LumiSize roiSize :
             {LumiSize{1, 1}, LumiSize{33, 7}, LumiSize{100000, 1}, LumiSize{INT_MAX, INT_MAX}}) {
            Lum32s size = -1;
            EXPECT_EQ(lumOk, TypeParam::query(roiSize, kernelSize, &size));
            EXPECT_EQ(TypeParam::bufferSize(kernelSize), size) << "kernel of " << kernelSize;
        }
    }
}

TYPE_TEST(RowPipelineChecksQuick, QueryStatusOrder)
{
    expectQueryStatusOrder(TypeParam::query);
}

}  // namespace
}  // namespace lumcv::test
