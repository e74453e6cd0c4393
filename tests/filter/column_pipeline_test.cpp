// The column pass: every variant against a plain reference over widths, kernels and divisors, and by hand where a rule
// is easily got wrong, as the two arithmetics within a row of the 16-bit variants are.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

#include "filter/column_pipeline_fixture.hpp"
#include "support/max_cache_size.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

TYPE_SUITE(ColumnPipelineQuick, ColumnVariants, VariantName);

TYPE_SUITE(ColumnPipeline, ColumnVariants, VariantName);

// Variants with a divisor and negative results.
using SignedColumnVariants = testing::Types<Column_16s_C1, Column_16s_C3, Column_16s8s_C1, Column_16s8s_C3,
                                            Column_Low_16s_C1, Column_Low_16s_C3>;
TYPE_SUITE(SignedColumnPipelineQuick, SignedColumnVariants, VariantName);

// Variants that sum in single precision and round to integers.
using RoundedColumnVariants = testing::Types<Column_16s_C1, Column_16s_C3, Column_16s8u_C1, Column_16s8u_C3,
                                             Column_16s8s_C1, Column_16s8s_C3, Column_16u_C1, Column_16u_C3>;
TYPE_SUITE(RoundedColumnPipelineQuick, RoundedColumnVariants, VariantName);

TYPE_TEST(ColumnPipelineQuick, MatchesReference)
{
    int number = 0;
    for (const int width : {1, 4, 15, 16, 33, 67}) {
        for (const int kernelSize : {1, 2, 3, 5, 8, 17}) {
            ColumnCase c = drawnColumnCase(number++);
            c.width = width;
            c.kernelSize = kernelSize;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPE_TEST(ColumnPipeline, MatchesReferenceOverWidthsAndKernels)
{
    int number = 0;
    for (const int width : sweepWidths()) {
        if (width > 300) {
            continue;
        }
        for (const int kernelSize : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 31, 33, 64}) {
            const int repetitions = kernelSize <= 9 ? 4 : 1;
            for (int i = 0; i < repetitions; ++i) {
                ColumnCase c = drawnColumnCase(number++);
                c.width = width;
                c.kernelSize = kernelSize;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPE_TEST(ColumnPipeline, MatchesReferenceOverDivisorsAndCoefficients)
{
    int number = 0;
    for (const int divisor :
         {1, -1, 2, 3, 5, 16, -7, 255, 1000, 16384, 16385, -16384, -16385, 32768, 10000019, INT_MAX, INT_MIN}) {
        for (const int kernelSize : {1, 3, 4, 5, 9, 20}) {
            for (const auto coefficients : {Coefficients::Small, Coefficients::Medium, Coefficients::Full}) {
                for (const bool symmetric : {false, true}) {
                    ColumnCase c = drawnColumnCase(number++);
                    c.width = 93;
                    c.kernelSize = kernelSize;
                    c.divisor = divisor;
                    c.coefficients = coefficients;
                    c.symmetric = symmetric;
                    ASSERT_TRUE(matchesReference<TypeParam>(c));
                }
            }
        }
    }
}

TYPE_TEST(ColumnPipeline, MatchesReferenceWhereEverythingIsAligned)
{
    int number = 0;
    for (const int width : {16, 32, 48, 64, 65, 79, 128, 160, 320}) {
        for (const int kernelSize : {1, 2, 3, 4, 5, 7, 8, 11}) {
            ColumnCase c = drawnColumnCase(number++);
            c.width = width;
            c.height = 4;
            c.kernelSize = kernelSize;
            c.placement = Placement::PageBefore;
            c.aligned = true;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPE_TEST(ColumnPipeline, MatchesReferenceOnTallAndWideImages)
{
    int number = 0;
    for (const int kernelSize : {1, 3, 5, 7, 24}) {
        ColumnCase c = drawnColumnCase(number++);
        c.kernelSize = kernelSize;
        c.width = 5003;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
        c.width = 41;
        c.height = 67;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
}

// Images of half a million and a million pixels, whose rows may be stored past the cache.
TYPE_TEST(ColumnPipeline, MatchesReferenceOnLargeImages)
{
    const ReportedCacheSize reported(0, 0x10000);
    for (const int kernelSize : {3, 4, 5}) {
        ColumnCase c = drawnColumnCase(kernelSize);
        c.kernelSize = kernelSize;
        c.width = 4111;
        c.height = 131;
        c.aligned = false;
        c.placement = kernelSize == 4 ? Placement::PageBefore : Placement::PageAfter;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
    ColumnCase c = drawnColumnCase(5);
    c.kernelSize = 3;
    c.width = 4096;
    c.height = 260;
    c.placement = Placement::PageBefore;
    c.aligned = true;
    ASSERT_TRUE(matchesReference<TypeParam>(c));
}

TYPE_TEST(ColumnPipeline, WorksInScratchOfQueriedSizeAtAnyAddress)
{
    for (int offset = 0; offset < 64; ++offset) {
        for (const Placement placement : {Placement::PageAfter, Placement::PageBefore}) {
            for (const int kernelSize : {1, 2, 3, 5, 17}) {
                for (const int width : {1, 8, 40}) {
                    ColumnCase c = drawnColumnCase(offset);
                    c.width = width;
                    c.kernelSize = kernelSize;
                    c.placement = placement;
                    c.scratchOffset = offset;
                    ASSERT_TRUE(matchesReference<TypeParam>(c));
                }
            }
        }
    }
}

// The scratch of most integer variants does not grow with the kernel.
TYPE_TEST(ColumnPipeline, ThousandTapsOverNarrowRows)
{
    for (const int width : {1, 2, 15, 16, 17}) {
        for (const int scratchOffset : {0, 63}) {
            ColumnCase c = drawnColumnCase(width);
            c.width = width;
            c.kernelSize = 1000;
            c.scratchOffset = scratchOffset;
            c.placement = scratchOffset == 0 ? Placement::PageAfter : Placement::PageBefore;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

// Pointers to the same row again and again are how a caller gets its borders above and below.
TYPE_TEST(ColumnPipelineQuick, RowsMayRepeat)
{
    for (const int kernelSize : {3, 4, 5, 9}) {
        ColumnCase c = drawnColumnCase(kernelSize);
        c.width = 37;
        c.height = 6;
        c.kernelSize = kernelSize;
        ColumnOperands<TypeParam> operands(c);
        for (int i = 0; i < kernelSize / 2; ++i) {
            operands.rowPointers.data()[i] = operands.rows[static_cast<std::size_t>(kernelSize / 2)].data();
        }
        ASSERT_TRUE(operands.callGivesReference());
    }
}

TYPE_TEST(ColumnPipeline, ThreadsWorkOnBands)
{
    constexpr int bands = 4;
    ColumnCase c;
    c.width = 200;
    c.height = 40;
    c.kernelSize = 5;
    ColumnOperands<TypeParam> operands(c);
    const auto whole = operands.arguments();
    std::vector<LumStatus> statuses(bands, -1);
    std::vector<std::thread> threads;
    for (int band = 0; band < bands; ++band) {
        threads.emplace_back([&, band] {
            const int firstRow = band * c.height / bands;
            auto part = whole;
            part.ppSrc = whole.ppSrc + firstRow;
            part.pDst = operands.destination.row(firstRow);
            part.dstRoiSize.height = c.height / bands;
            const Scratch scratch(static_cast<std::size_t>(TypeParam::bufferSize(part.dstRoiSize, 5)), Guard::After, 3);
            part.pBuffer = scratch.data();
            statuses[static_cast<std::size_t>(band)] = TypeParam::call(part);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<LumStatus>(bands, lumOk), statuses);
    EXPECT_TRUE(operands.destinationAsExpected());
}

TYPE_TEST(ColumnPipelineQuick, KernelIsNotReversed)
{
    for (const auto value : filterFlatRows<TypeParam>({1, 2, 3}, 37, {20, 5, 1}, 1)) {
        ASSERT_EQ(1 * 20 + 2 * 5 + 3 * 1, value);
    }
    for (const auto value : filterFlatRows<TypeParam>({1, 2, 3, 4}, 37, {20, 9, 5, 1}, 1)) {
        ASSERT_EQ(1 * 20 + 2 * 9 + 3 * 5 + 4 * 1, value);
    }
    for (const auto value : filterFlatRows<TypeParam>({1, 2, 3, 4, 5}, 37, {20, 9, 5, 0, 1}, 1)) {
        ASSERT_EQ(1 * 20 + 2 * 9 + 3 * 5 + 5 * 1, value);
    }
}

TYPE_TEST(ColumnPipelineQuick, OneTapCopiesThroughTheScale)
{
    for (const auto value : filterFlatRows<TypeParam>({77}, 37, {1}, 1)) {
        ASSERT_EQ(77, value);
    }
    for (const auto value : filterFlatRows<TypeParam>({21}, 37, {4}, 2)) {
        ASSERT_EQ(TypeParam::floating ? 84 : 42, value);
    }
}

TYPE_TEST(SignedColumnPipelineQuick, DivisorMinusOneNegates)
{
    for (const auto value : filterFlatRows<TypeParam>({55, 20}, 37, {1, 3}, -1)) {
        ASSERT_EQ(-115, value);
    }
}

TYPE_TEST(RoundedColumnPipelineQuick, TiesGoToEven)
{
    const int halves[][2] = {{1, 0}, {2, 1}, {3, 2}, {5, 2}, {7, 4}, {249, 124}, {251, 126}};
    for (const auto& half : halves) {
        if (half[1] > std::numeric_limits<typename TypeParam::Destination>::max()) {
            continue;
        }
        for (const auto value :
             filterFlatRows<TypeParam>({static_cast<typename TypeParam::Row>(half[0])}, 37, {1}, 2)) {
            ASSERT_EQ(half[1], value) << "half of " << half[0];
        }
    }
}

TYPE_TEST(RoundedColumnPipelineQuick, SumsBeyond32BitsSaturateToTheirSide)
{
    using Row = typename TypeParam::Row;
    using Destination = typename TypeParam::Destination;
    for (const int taps : {3, 5, 64}) {
        for (const int sign : {1, -1}) {
            const std::vector<Row> rowValues(static_cast<std::size_t>(taps), std::numeric_limits<Row>::max());
            const std::vector<Lum16s> kernel(static_cast<std::size_t>(taps), static_cast<Lum16s>(sign * 32767));
            const auto filtered = filterFlatRows<TypeParam>(rowValues, 37, kernel, 1);
            using Limits = std::numeric_limits<Destination>;
            const Destination expected = sign > 0 ? Limits::max() : Limits::min();
            ASSERT_EQ(std::vector<Destination>(filtered.size(), expected), filtered) << taps << " taps, sign " << sign;
        }
    }
}

TEST(ColumnPipelineElements, Unsigned16BitsAreUnsigned)
{
    EXPECT_EQ(std::vector<Lum16u>(20, 65535), filterFlatRows<Column_16u_C1>({65535}, 20, {1}, 1));
    EXPECT_EQ(std::vector<Lum16u>(20, 40000), filterFlatRows<Column_16u_C1>({40000, 40000}, 20, {1, 1}, 2));
    EXPECT_EQ(std::vector<Lum16u>(60, 50000), filterFlatRows<Column_16u_C3>({60000, 10000}, 20, {1, -1}, 1));
    EXPECT_EQ(std::vector<Lum16u>(60, 0), filterFlatRows<Column_16u_C3>({10000, 60000}, 20, {1, -1}, 1));
}

template <typename V>
class LowColumnPipeline : public testing::Test
{
  public:
    // Width 37: pixels 0..31 stand in whole groups of 16, the last 5 do not.
    static void expectParts(const std::vector<Lum16s>& filtered, int body, int tail)
    {
        for (int i = 0; i < 37 * V::channels; ++i) {
            ASSERT_EQ(i < 32 * V::channels ? body : tail, filtered[static_cast<std::size_t>(i)]) << "element " << i;
        }
    }
};
using LowColumnVariants = testing::Types<Column_Low_16s_C1, Column_Low_16s_C3>;
TYPED_TEST_SUITE(LowColumnPipeline, LowColumnVariants, VariantName);

TYPED_TEST(LowColumnPipeline, PartsAgreeWithin16Bits)
{
    this->expectParts(filterFlatRows<TypeParam>({100, 200, 50}, 37, {3, 4, 5}, 1), 1350, 1350);
    this->expectParts(filterFlatRows<TypeParam>({100, 200, 50}, 37, {3, 4, 5}, 16), 84, 84);
    this->expectParts(filterFlatRows<TypeParam>({-100, -200, -50}, 37, {3, 4, 5}, 16), -85, -85);
    // 90 * 5461 >> 14: the scale of 3 is cut
    this->expectParts(filterFlatRows<TypeParam>({90}, 37, {1}, 3), 29, 29);
}

TYPED_TEST(LowColumnPipeline, WithoutScaleBothPartsKeepTheLow16Bits)
{
    // 40000 is -25536 in 16 bits
    this->expectParts(filterFlatRows<TypeParam>({20000, 20000}, 37, {1, 1}, 1), -25536, -25536);
    // 32767 * 32767 = 0x3FFF0001
    this->expectParts(filterFlatRows<TypeParam>({32767}, 37, {32767}, 1), 1, 1);
}

TYPED_TEST(LowColumnPipeline, WithScaleTheBodyLosesWhatTheTailKeeps)
{
    // body: -25536 * 8192 >> 14 = -12768; tail: 40000 * 8192 >> 14 = 20000
    this->expectParts(filterFlatRows<TypeParam>({20000, 20000}, 37, {1, 1}, 2), -12768, 20000);
    // body: 0x3FFF0001 is 1 in 16 bits, and 1 * 1024 >> 14 = 0;
    // tail: 1073676289 * 1024 = 0xFFFC000400 is -67107840 modulo 2^32; >> 14 gives -4096
    this->expectParts(filterFlatRows<TypeParam>({32767}, 37, {32767}, 16), 0, -4096);
}

TYPED_TEST(LowColumnPipeline, BodyClampsAndTailDoesNot)
{
    // -32768 * -16384 >> 14 = 32768
    this->expectParts(filterFlatRows<TypeParam>({-32768}, 37, {1}, -1), 32767, -32768);
    // tail: 60000 * -16384 >> 14 = -60000, which is 5536 in 16 bits; body: -5536 * -16384 >> 14 = 5536
    this->expectParts(filterFlatRows<TypeParam>({30000, 30000}, 37, {1, 1}, -1), 5536, 5536);
}

TYPED_TEST(LowColumnPipeline, NarrowRowsAreAllTail)
{
    for (int width = 1; width <= 48; ++width) {
        const auto filtered = filterFlatRows<TypeParam>({20000, 20000}, width, {1, 1}, 2);
        for (int i = 0; i < width * TypeParam::channels; ++i) {
            const bool body = i / TypeParam::channels < width / 16 * 16;
            ASSERT_EQ(body ? -12768 : 20000, filtered[static_cast<std::size_t>(i)]) << "width " << width << ", " << i;
        }
    }
}

}  // namespace
}  // namespace lumcv::test
