// The row pass with border synthesis: every variant against a plain reference over widths, kernels, anchors, borders
// and divisors, and by hand where a rule is easily got wrong.
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <thread>
#include <vector>

#include "filter/row_pipeline_fixture.hpp"
#include "support/sweep.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

TYPE_SUITE(RowPipelineQuick, RowVariants, VariantName);

TYPE_SUITE(RowPipeline, RowVariants, VariantName);

// Variants with a divisor and negative results.
using SignedRowVariants =
    testing::Types<Row_16s_C1, Row_16s_C3, Row_8u16s_C1, Row_8u16s_C3, Row_Low_16s_C1, Row_Low_16s_C3>;
TYPE_SUITE(SignedRowPipelineQuick, SignedRowVariants, VariantName);

// Variants that sum in single precision and round to integers.
using RoundedRowVariants = testing::Types<Row_16s_C1, Row_16s_C3, Row_16u_C1, Row_16u_C3, Row_8u16s_C1, Row_8u16s_C3>;
TYPE_SUITE(RoundedRowPipelineQuick, RoundedRowVariants, VariantName);

TYPE_TEST(RowPipelineQuick, MatchesReference)
{
    int number = 0;
    for (const int width : {1, 4, 16, 33, 65}) {
        for (const int kernelSize : {1, 2, 3, 5, 8, 33}) {
            RowCase c = drawnRowCase(number++);
            c.width = width;
            c.kernelSize = kernelSize;
            c.xAnchor = kernelSize / 2;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPE_TEST(RowPipeline, MatchesReferenceOverWidthsAndKernels)
{
    int number = 0;
    for (const int width : sweepWidths()) {
        if (width > 193) {
            continue;
        }
        std::vector<int> kernelSizes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 31, 33, 64};
        kernelSizes.insert(kernelSizes.end(), {width, width + 1});
        if (width > 1) {
            kernelSizes.push_back(width - 1);
        }
        for (const int kernelSize : kernelSizes) {
            for (const int xAnchor : {0, kernelSize / 2, kernelSize - 1}) {
                RowCase c = drawnRowCase(number++);
                c.width = width;
                c.kernelSize = kernelSize;
                c.xAnchor = xAnchor;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPE_TEST(RowPipeline, MatchesReferenceOverBordersAndAnchors)
{
    int number = 0;
    for (const int width : {1, 2, 3, 5, 32, 33, 35}) {
        for (const int kernelSize : {1, 2, 3, 4, 5, 6, 9, 33, 36}) {
            const int anchorStep = kernelSize > 9 ? 11 : 1;
            for (int xAnchor = 0; xAnchor < kernelSize; xAnchor += anchorStep) {
                for (const LumiBorderType borderType : borderTypes) {
                    RowCase c = drawnRowCase(number++);
                    c.height = 1;
                    c.width = width;
                    c.kernelSize = kernelSize;
                    c.xAnchor = xAnchor;
                    c.borderType = borderType;
                    ASSERT_TRUE(matchesReference<TypeParam>(c));
                }
            }
        }
    }
}

TYPE_TEST(RowPipeline, MatchesReferenceOverDivisorsAndCoefficients)
{
    int number = 0;
    for (const int divisor :
         {1, -1, 2, 3, 5, 16, -7, 255, 1000, 16384, 16385, -16384, -16385, 32768, 10000019, INT_MAX, INT_MIN}) {
        for (const int kernelSize : {1, 3, 4, 5, 9, 20}) {
            for (const auto coefficients : {Coefficients::Small, Coefficients::Medium, Coefficients::Full}) {
                for (const bool symmetric : {false, true}) {
                    RowCase c = drawnRowCase(number++);
                    c.width = 70;
                    c.kernelSize = kernelSize;
                    c.xAnchor = kernelSize / 2;
                    c.divisor = divisor;
                    c.coefficients = coefficients;
                    c.symmetric = symmetric;
                    ASSERT_TRUE(matchesReference<TypeParam>(c));
                }
            }
        }
    }
}

TYPE_TEST(RowPipeline, MatchesReferenceOnLongRowsAndManyRows)
{
    int number = 0;
    for (const int kernelSize : {1, 3, 5, 7, 24}) {
        RowCase c = drawnRowCase(number++);
        c.kernelSize = kernelSize;
        c.xAnchor = kernelSize - 1;
        c.width = 5003;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
        c.width = 41;
        c.height = 67;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
}

TYPE_TEST(RowPipeline, WorksInScratchOfQueriedSizeAtAnyAddress)
{
    for (int offset = 0; offset < 64; ++offset) {
        for (const Placement placement : {Placement::PageAfter, Placement::PageBefore}) {
            for (const int kernelSize : {1, 2, 3, 5, 17}) {
                for (const int width : {1, 40}) {
                    RowCase c = drawnRowCase(offset);
                    c.width = width;
                    c.kernelSize = kernelSize;
                    c.xAnchor = offset % kernelSize;
                    c.placement = placement;
                    c.scratchOffset = offset;
                    ASSERT_TRUE(matchesReference<TypeParam>(c));
                }
            }
        }
    }
}

TYPE_TEST(RowPipeline, LongKernelOnNarrowRow)
{
    for (const int width : {1, 2, 7, 33}) {
        for (const LumiBorderType borderType : borderTypes) {
            for (const int xAnchor : {150, 999}) {
                RowCase c = drawnRowCase(width);
                c.width = width;
                c.kernelSize = 1000;
                c.xAnchor = xAnchor;
                c.borderType = borderType;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPE_TEST(RowPipeline, ThreadsWorkOnBands)
{
    constexpr int bands = 4;
    RowCase c;
    c.width = 200;
    c.height = 40;
    c.kernelSize = 5;
    c.xAnchor = 2;
    c.borderType = lumBorderMirror;
    RowOperands<TypeParam> operands(c);
    const auto whole = operands.arguments();
    std::vector<LumStatus> statuses(bands, -1);
    std::vector<std::thread> threads;
    for (int band = 0; band < bands; ++band) {
        threads.emplace_back([&, band] {
            const Scratch scratch(static_cast<std::size_t>(TypeParam::bufferSize(5)), Guard::After, 3);
            const int firstRow = band * c.height / bands;
            auto part = whole;
            part.pSrc = operands.source.row(firstRow);
            part.ppDst = whole.ppDst + firstRow;
            part.roiSize.height = c.height / bands;
            part.pBuffer = scratch.data();
            statuses[static_cast<std::size_t>(band)] = TypeParam::call(part);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<LumStatus>(bands, lumOk), statuses);
    EXPECT_TRUE(operands.rowsAsExpected());
}

TYPE_TEST(RowPipelineQuick, OneTapCopiesThroughTheScale)
{
    using Source = typename TypeParam::Source;
    std::vector<Source> row(40 * TypeParam::channels);
    for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = static_cast<Source>(i);
    }
    const auto copied = filterOneRow<TypeParam>(row.data(), 40, {1}, 0, lumBorderReplicate, 1);
    const auto scaled = filterOneRow<TypeParam>(row.data(), 40, {4}, 0, lumBorderReplicate, 2);
    for (std::size_t i = 0; i < row.size(); ++i) {
        ASSERT_EQ(static_cast<double>(i), static_cast<double>(copied[i]));
        ASSERT_EQ(static_cast<double>(i) * (TypeParam::floating ? 4 : 2), static_cast<double>(scaled[i]));
    }
}

TYPE_TEST(SignedRowPipelineQuick, DivisorMinusOneNegates)
{
    std::vector<typename TypeParam::Source> row(40 * TypeParam::channels, 100);
    row[0] = 7;
    const auto negated = filterOneRow<TypeParam>(row.data(), 40, {1}, 0, lumBorderReplicate, -1);
    for (std::size_t i = 0; i < row.size(); ++i) {
        ASSERT_EQ(-row[i], negated[i]);
    }
}

// 1 2 3 with two pixels before and three behind it.
TYPE_TEST(RowPipelineQuick, KernelIsNotReversedAndEachBorderIsItself)
{
    using Source = typename TypeParam::Source;
    constexpr int channels = TypeParam::channels;
    const int inMemory[] = {8, 9, 1, 2, 3, 20, 21, 22};
    std::vector<Source> memory;
    for (const int value : inMemory) {
        memory.insert(memory.end(), channels, static_cast<Source>(value));
    }
    const auto filtered = [&](int taps, int tapAtOne, LumiBorderType borderType) {
        std::vector<typename TypeParam::Kernel> kernel(static_cast<std::size_t>(taps), 0);
        kernel[static_cast<std::size_t>(tapAtOne)] = 1;
        const auto row =
            filterOneRow<TypeParam>(memory.data() + 2 * channels, 3, kernel, 2, borderType, 1, {50, 50, 50});
        return std::vector<int>{static_cast<int>(row[0]), static_cast<int>(row[channels]),
                                static_cast<int>(row[2 * channels + channels - 1])};
    };
    using Three = std::vector<int>;
    EXPECT_EQ((Three{1, 2, 3}), filtered(6, 2, lumBorderReplicate));
    EXPECT_EQ((Three{1, 1, 1}), filtered(6, 0, lumBorderReplicate));
    EXPECT_EQ((Three{3, 3, 3}), filtered(6, 5, lumBorderReplicate));
    EXPECT_EQ((Three{3, 2, 1}), filtered(6, 0, lumBorderMirror));
    EXPECT_EQ((Three{2, 1, 2}), filtered(6, 5, lumBorderMirror));  // 1 2 3 | 2 1 2: bounces off the row's start
    EXPECT_EQ((Three{50, 50, 1}), filtered(6, 0, lumBorderConstant));
    EXPECT_EQ((Three{50, 50, 50}), filtered(6, 5, lumBorderConstant));
    EXPECT_EQ((Three{8, 9, 1}), filtered(6, 0, lumBorderInMem));
    EXPECT_EQ((Three{20, 21, 22}), filtered(6, 5, lumBorderInMem));
    EXPECT_EQ((Three{8, 9, 1}), filtered(6, 0, lumBorderMirror | lumBorderInMemLeft));
    EXPECT_EQ((Three{2, 1, 2}), filtered(6, 5, lumBorderMirror | lumBorderInMemLeft));
    EXPECT_EQ((Three{3, 2, 1}), filtered(6, 0, lumBorderMirror | lumBorderInMemRight));
    EXPECT_EQ((Three{20, 21, 22}), filtered(6, 5, lumBorderConstant | lumBorderInMemRight));
}

TYPE_TEST(RowPipelineQuick, OnePixelMirrorsToItself)
{
    using Source = typename TypeParam::Source;
    std::vector<Source> pixel;
    for (int c = 0; c < TypeParam::channels; ++c) {
        pixel.push_back(static_cast<Source>(10 + c));
    }
    for (const int taps : {2, 3, 5, 8}) {
        const std::vector<typename TypeParam::Kernel> ones(static_cast<std::size_t>(taps), 1);
        const auto filtered = [&](LumiBorderType borderType) {
            return filterOneRow<TypeParam>(pixel.data(), 1, ones, 1, borderType, 1, {90, 90, 90});
        };
        EXPECT_EQ(filtered(lumBorderReplicate), filtered(lumBorderMirror));
        EXPECT_EQ(10 * taps, filtered(lumBorderMirror)[0]);
        EXPECT_EQ(10 + 90 * (taps - 1), filtered(lumBorderConstant)[0]);
    }
}

TYPE_TEST(RoundedRowPipelineQuick, TiesGoToEven)
{
    std::vector<typename TypeParam::Source> row(40 * TypeParam::channels);
    for (std::size_t i = 0; i < row.size(); ++i) {
        row[i] = static_cast<typename TypeParam::Source>(i);
    }
    const auto halves = filterOneRow<TypeParam>(row.data(), 40, {1}, 0, lumBorderReplicate, 2);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::size_t expected = i % 4 == 3 ? i / 2 + 1 : i / 2;
        ASSERT_EQ(static_cast<int>(expected), halves[i]) << "half of " << i;
    }
}

// 64 products of 32767 and the largest element are far above 32 bits.
TYPE_TEST(RoundedRowPipelineQuick, SumsBeyond32BitsSaturateToTheirSide)
{
    using Source = typename TypeParam::Source;
    using Row = typename TypeParam::Row;
    const std::vector<Source> row(80 * TypeParam::channels, std::numeric_limits<Source>::max());
    for (const int taps : {3, 5, 400}) {
        for (const int sign : {1, -1}) {
            const std::vector<Lum16s> kernel(static_cast<std::size_t>(taps), static_cast<Lum16s>(sign * 32767));
            const auto filtered = filterOneRow<TypeParam>(row.data(), 80, kernel, 1, lumBorderReplicate, 1);
            const Row expected = sign > 0 ? std::numeric_limits<Row>::max() : std::numeric_limits<Row>::min();
            ASSERT_EQ(std::vector<Row>(row.size(), expected), filtered) << taps << " taps, sign " << sign;
        }
    }
}

using LowRowVariants = testing::Types<Row_Low_16s_C1, Row_Low_16s_C3>;
TYPE_SUITE(LowRowPipeline, LowRowVariants, VariantName);

// 32767 * 32767 * 5 is above 2^32; its low 32 bits are what is stored with saturation.
TYPE_TEST(LowRowPipeline, SumsWrapAndTheirStoresSaturate)
{
    const std::vector<Lum16s> row(60 * TypeParam::channels, 32767);
    const auto filtered = [&](std::vector<Lum16s> kernel, int divisor) {
        return filterOneRow<TypeParam>(row.data(), 60, kernel, 0, lumBorderReplicate, divisor);
    };
    const auto all = [&](int value) { return std::vector<Lum16s>(row.size(), static_cast<Lum16s>(value)); };
    // 2 * 32767^2 = 2147352578 fits, 3 times is negative modulo 2^32
    EXPECT_EQ(all(32767), filtered({32767, 32767}, 1));
    EXPECT_EQ(all(-32768), filtered({32767, 32767, 32767}, 1));
    // 4 * 32767^2 = 4294705156 = 2^32 - 262140
    EXPECT_EQ(all(-32768), filtered({32767, 32767, 32767, 32767}, 1));
    // 32767 * 32767 * 5 - 2^32 = 1073414149
    EXPECT_EQ(all(32767), filtered({32767, 32767, 32767, 32767, 32767}, 1));
}

TYPE_TEST(LowRowPipeline, ScaleIsTruncatedAndNothingIsRounded)
{
    const std::vector<Lum16s> row(60 * TypeParam::channels, 30);
    const auto filtered = [&](Lum16s coefficient, int divisor) {
        return filterOneRow<TypeParam>(row.data(), 60, {coefficient}, 0, lumBorderReplicate, divisor)[0];
    };
    EXPECT_EQ(9, filtered(1, 3));      // 30 * 5461 >> 14 = 9.9993 without its fraction
    EXPECT_EQ(-10, filtered(-1, 3));   // the shift rounds down
    EXPECT_EQ(-30, filtered(1, -1));   // scale -16384
    EXPECT_EQ(-5, filtered(1, -7));    // 16384 / -7 is cut towards 0: 30 * -2340 >> 14 = -4.28 down to -5
    EXPECT_EQ(0, filtered(1, 16385));  // the scale is 0
    EXPECT_EQ(0, filtered(-1, INT_MAX));
    EXPECT_EQ(15, filtered(1, 2));
    // with divisor 1 there is no product by the scale that could wrap: 30 * 1000 is stored
    EXPECT_EQ(30000, filtered(1000, 1));
    // 30 * 20000 * 8192 = 4915200000 = 620232704 modulo 2^32; shifted by 14 that is 37856
    EXPECT_EQ(32767, filtered(20000, 2));
    // 30 * 10000 * 8192 = 2457600000 is negative in 32 bits: -1837367296 >> 14 = -112144
    EXPECT_EQ(-32768, filtered(10000, 2));
}

// Symmetric five taps around the pixel with divisor 1 have a path of their own; above 0x80000 pixels it writes past the
// cache. The images stand on both sides of that number.
TYPE_TEST(LowRowPipeline, SymmetricFiveTapsOnBothSidesOfTheLargeImage)
{
    const LumiSize sizes[] = {{4096, 128}, {524287, 1}, {524289, 1}, {174763, 3}, {2047, 257}, {35, 14980}};
    int number = 0;
    for (const LumiSize size : sizes) {
        for (const auto coefficients : {Coefficients::Small, Coefficients::Full}) {
            RowCase c = drawnRowCase(number);
            c.placement = static_cast<Placement>(number++ % 3);
            c.width = size.width;
            c.height = size.height;
            c.kernelSize = 5;
            c.xAnchor = 2;
            c.divisor = 1;
            c.symmetric = true;
            c.coefficients = coefficients;
            if (size.height > 1000) {
                c.placement = Placement::PageAfter;
            }
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPE_TEST(LowRowPipeline, FiveTapsNearTheSymmetricOnes)
{
    const std::vector<std::vector<Lum16s>> kernels = {
        {1, 4, 6, 4, 1}, {1, 4, 6, 4, 2}, {1, 4, 6, 5, 1}, {-32768, 32767, -32768, 32767, -32768}, {0, 0, 0, 0, 0}};
    Random random(5);
    std::vector<Lum16s> row(100 * TypeParam::channels);
    for (Lum16s& element : row) {
        element = random.value<Lum16s>(Values::Extreme);
    }
    for (const auto& kernel : kernels) {
        for (int xAnchor = 0; xAnchor < 5; ++xAnchor) {
            for (const int divisor : {1, 2, 16, -1}) {
                const auto expected =
                    rowReference<Lum16s, true>(row.data(), 100, TypeParam::channels, kernel, xAnchor, lumBorderMirror,
                                               static_cast<const Lum16s*>(nullptr), divisor);
                EXPECT_EQ(expected, filterOneRow<TypeParam>(row.data(), 100, kernel, xAnchor, lumBorderMirror, divisor))
                    << "kernel " << testing::PrintToString(kernel) << ", anchor " << xAnchor << ", divisor " << divisor;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test
