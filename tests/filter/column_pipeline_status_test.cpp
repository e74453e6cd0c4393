// The checks of the column pass: their complete order, each kind of wrong argument, what is accepted, and the sizes
// that the queries report.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <vector>

#include "filter/column_pipeline_fixture.hpp"
#include "filter/pipeline_query.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

TYPE_SUITE(ColumnPipelineChecksQuick, ColumnVariants, VariantName);

// Variants with pixels of three bytes or more.
using WidePixelColumnVariants = testing::Types<Column_32f_C1, Column_32f_C3, Column_16s_C3, Column_16s8u_C3,
                                               Column_16s8s_C3, Column_16u_C3, Column_Low_16s_C3>;
TYPE_SUITE(WidePixelColumnPipelineQuick, WidePixelColumnVariants, VariantName);

// What a violation changes of a valid call, the same for all variants.
struct ColumnStatusArguments
{
    LumiSize dstRoiSize;
    Lum32s kernelSize;
    Lum32s dstStep;
    Lum32s divisor;
    bool rowsNull = false;
    bool destinationNull = false;
    bool kernelNull = false;
    bool bufferNull = false;
    std::vector<bool> rowNull = {};  // one for each row pointer
    std::vector<Output> destination = {};
    std::function<LumStatus(const ColumnStatusArguments&)> function = {};

    LumStatus call() const
    {
        return function(*this);
    }
    std::vector<Output> outputs() const
    {
        return destination;
    }
};

template <typename V>
ColumnStatusArguments statusArguments(ColumnOperands<V>& operands)
{
    const typename V::Arguments valid = operands.arguments();
    ColumnStatusArguments result{valid.dstRoiSize, valid.kernelSize, valid.dstStep, valid.divisor};
    result.rowNull.resize(operands.rows.size());
    result.destination.emplace_back(operands.destination);
    result.function = [valid](const ColumnStatusArguments& spoilt) {
        std::vector<typename V::Row*> rows(valid.ppSrc, valid.ppSrc + spoilt.rowNull.size());
        for (std::size_t y = 0; y < rows.size(); ++y) {
            rows[y] = spoilt.rowNull[y] ? nullptr : rows[y];
        }
        return V::call({spoilt.rowsNull ? nullptr : rows.data(), spoilt.destinationNull ? nullptr : valid.pDst,
                        spoilt.dstStep, spoilt.dstRoiSize, spoilt.kernelNull ? nullptr : valid.pKernel,
                        spoilt.kernelSize, spoilt.divisor, spoilt.bufferNull ? nullptr : valid.pBuffer});
    };
    return result;
}

ColumnCase statusCase()
{
    ColumnCase c;
    c.width = 6;
    c.height = 3;
    c.kernelSize = 5;
    c.divisor = 1;
    return c;
}

// The table for statusCase().
void expectColumnStatusOrder(const ColumnStatusArguments& valid, int pixelBytes, int elementBytes, bool hasDivisor)
{
    using Args = ColumnStatusArguments;
    const int rowBytes = 6 * pixelBytes;
    std::vector<Violation<Args>> table = {
        {"ppSrc null", lumErrNullPointer, [](Args& a) { a.rowsNull = true; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.destinationNull = true; }},
        {"pKernel null", lumErrNullPointer, [](Args& a) { a.kernelNull = true; }},
        {"width 0", lumErrSize, [](Args& a) { a.dstRoiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.dstRoiSize.width = -6; }},
        {"height 0", lumErrSize, [](Args& a) { a.dstRoiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.dstRoiSize.height = INT_MIN; }},
        {"first row null", lumErrNullPointer, [](Args& a) { a.rowNull[0] = true; }},
        {"second row null", lumErrNullPointer, [](Args& a) { a.rowNull[1] = true; }},
        // three rows and a kernel without taps make two pointers, so that the later ones are not looked at
        {"middle row null", lumErrNullPointer, [](Args& a) { a.rowNull[3] = true; }, {"kernelSize 0"}},
        {"odd last row null", lumErrNullPointer, [](Args& a) { a.rowNull[6] = true; }, {"kernelSize 0"}},
        {"kernelSize 0", lumErrSize, [](Args& a) { a.kernelSize = 0; }},
        {"kernelSize negative",
         lumErrSize,
         [](Args& a) { a.kernelSize = -4; },
         {"first row null", "second row null", "middle row null", "odd last row null"}},
        {"dstStep one byte below a row", lumErrStep, [=](Args& a) { a.dstStep = rowBytes - 1; }},
        {"dstStep one element below a row", lumErrStep, [=](Args& a) { a.dstStep = rowBytes - elementBytes; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.dstStep = 0; }},
        {"dstStep negative", lumErrStep, [=](Args& a) { a.dstStep = -rowBytes; }},
    };
    for (int extra = 1; extra < elementBytes; ++extra) {
        table.push_back({"dstStep " + std::to_string(extra) + " bytes above a row", lumErrStepAlignment,
                         [=](Args& a) { a.dstStep = rowBytes + extra; }});
    }
    table.push_back({"pBuffer null", lumErrNullPointer, [](Args& a) { a.bufferNull = true; }});
    if (hasDivisor) {
        table.push_back({"divisor 0", lumErrArgument, [](Args& a) { a.divisor = 0; }});
    }
    expectStatusOrder(valid, table);
}

TYPE_TEST(ColumnPipelineChecksQuick, StatusOrder)
{
    ColumnOperands<TypeParam> operands(statusCase());
    expectColumnStatusOrder(statusArguments(operands), TypeParam::pixelBytes, sizeof(typename TypeParam::Destination),
                            !TypeParam::floating);
}

// How many rows are looked at follows from the kernel's size even where that is not a size at all: none if the sum is
// not above 0.
TYPE_TEST(ColumnPipelineChecksQuick, NullRowsOfKernelsWithoutTaps)
{
    ColumnOperands<TypeParam> operands(statusCase());
    const auto status = [&](int kernelSize, int nullRow) {
        ColumnStatusArguments arguments = statusArguments(operands);
        arguments.kernelSize = kernelSize;
        arguments.rowNull[static_cast<std::size_t>(nullRow)] = true;
        arguments.dstStep = 0;  // is not reached
        return arguments.call();
    };
    EXPECT_EQ(lumErrNullPointer, status(0, 0));
    EXPECT_EQ(lumErrNullPointer, status(0, 1));
    EXPECT_EQ(lumErrSize, status(0, 2));
    EXPECT_EQ(lumErrNullPointer, status(-1, 0));
    EXPECT_EQ(lumErrSize, status(-1, 1));
    for (const int kernelSize : {-2, -3, -4, -100, INT_MIN + 1, INT_MIN}) {
        EXPECT_EQ(lumErrSize, status(kernelSize, 0)) << "kernelSize " << kernelSize;
    }
}

TYPE_TEST(ColumnPipelineChecksQuick, NullRowAnywhere)
{
    for (const int height : {1, 2, 3, 8}) {
        for (const int kernelSize : {1, 2, 3, 5, 8}) {
            ColumnCase c = statusCase();
            c.height = height;
            c.kernelSize = kernelSize;
            ColumnOperands<TypeParam> operands(c);
            const std::vector<unsigned char> before(operands.destination.bytes(),
                                                    operands.destination.bytes() + operands.destination.byteCount());
            for (int row = 0; row < height + kernelSize - 1; ++row) {
                ColumnStatusArguments arguments = statusArguments(operands);
                arguments.rowNull[static_cast<std::size_t>(row)] = true;
                EXPECT_EQ(lumErrNullPointer, arguments.call())
                    << "row " << row << " of height " << height << " and kernel of " << kernelSize;
            }
            EXPECT_TRUE(std::equal(before.begin(), before.end(), operands.destination.bytes()));
        }
    }
}

TYPE_TEST(ColumnPipelineChecksQuick, StrideEqualToRowIsAccepted)
{
    ColumnCase c = statusCase();
    c.height = 1;
    ColumnOperands<TypeParam> operands(c);
    auto arguments = operands.arguments();
    arguments.dstStep = 6 * TypeParam::pixelBytes;
    EXPECT_EQ(lumOk, TypeParam::call(arguments));
    EXPECT_TRUE(operands.destinationAsExpected());
}

// The bytes of a row are a product modulo 2^32: an absurd width gets past the stride and is stopped by the scratch.
TYPE_TEST(WidePixelColumnPipelineQuick, RowBytesWrap)
{
    constexpr unsigned long long modulus = 1ull << 32;
    constexpr unsigned long long width = (modulus + TypeParam::pixelBytes - 1) / TypeParam::pixelBytes;
    constexpr int rowBytes = static_cast<int>(width * TypeParam::pixelBytes - modulus);
    constexpr int elementBytes = sizeof(typename TypeParam::Destination);
    ColumnOperands<TypeParam> operands(statusCase());
    auto arguments = operands.arguments();
    arguments.dstRoiSize.width = static_cast<int>(width);
    arguments.pBuffer = nullptr;
    arguments.dstStep = (rowBytes / elementBytes + 1) * elementBytes;
    EXPECT_EQ(lumErrNullPointer, TypeParam::call(arguments));
    arguments.dstStep = rowBytes - 1;
    EXPECT_EQ(lumErrStep, TypeParam::call(arguments));
}

TYPE_TEST(ColumnPipelineChecksQuick, BufferSizes)
{
    for (const int kernelSize : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 64, 100, 1000, 100000}) {
        for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 640, 1919, 1920, 1921, 1000000}) {
            for (const int height : {1, 5, INT_MAX}) {
                Lum32s size = -1;
                EXPECT_EQ(lumOk, TypeParam::query({width, height}, kernelSize, &size));
                EXPECT_EQ(TypeParam::bufferSize({width, height}, kernelSize), size)
                    << "width " << width << ", kernel of " << kernelSize;
            }
        }
    }
}

TEST(ColumnPipelineBufferSize, KnownValues)
{
    const auto size = [](LumStatus (*query)(LumiSize, Lum32s, Lum32s*), int width, int kernelSize) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumOk, query({width, 9}, kernelSize, &bytes));
        return bytes;
    };
    EXPECT_EQ(192, size(lumiFilterColumnPipelineGetBufferSize_32f_C1R, 1000, 5));
    EXPECT_EQ(192, size(lumiFilterColumnPipelineGetBufferSize_32f_C3R, 1, 5));
    EXPECT_EQ(112, size(lumiFilterColumnPipelineGetBufferSize_16s_C1R, 1, 1000));
    EXPECT_EQ(160, size(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, 5, 1));
    EXPECT_EQ(208, size(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, 4, 7));
    EXPECT_EQ(32 * 3 + 64 + 32, size(lumiFilterColumnPipelineGetBufferSize_16u_C1R, 1, 3));
    EXPECT_EQ(32 * 3 + 64 + 32, size(lumiFilterColumnPipelineGetBufferSize_16u_C1R, 4, 3));
    EXPECT_EQ(32 * 3 + 64 + 64, size(lumiFilterColumnPipelineGetBufferSize_16u_C1R, 5, 3));
    EXPECT_EQ(32 * 3 + 64 + 32, size(lumiFilterColumnPipelineGetBufferSize_16u_C3R, 1, 3));
    EXPECT_EQ(32 * 3 + 64 + 64, size(lumiFilterColumnPipelineGetBufferSize_16u_C3R, 2, 3));
    EXPECT_EQ(112, size(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 8, 3));
    EXPECT_EQ(352, size(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, 9, 3));
}

// Each query has either the width or the kernel in its formula.
TYPE_TEST(ColumnPipelineChecksQuick, BufferSizeBeyond32Bits)
{
    Lum32s size = -1;
    EXPECT_EQ(lumErrSizeTooLarge, TypeParam::query({INT_MAX, 4}, INT_MAX, &size));
    EXPECT_EQ(-1, size);
}

TYPE_TEST(ColumnPipelineChecksQuick, QueryStatusOrder)
{
    expectQueryStatusOrder(TypeParam::query);
}

}  // namespace
}  // namespace lumcv::test
