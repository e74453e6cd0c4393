// The row pass with border synthesis: every variant against a plain reference over widths, kernels, anchors, borders
// and divisors; the sizes of the scratch; the order of the checks.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "filter/pipeline_blocks.hpp"
#include "filter/pipeline_reference.hpp"
#include "lumcv/filter.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test {
namespace {

// The arguments of every variant; a one-channel variant takes the first border value, 32f variants take no divisor.
template <typename S, typename R, typename K>
struct RowArguments
{
    const S* pSrc;
    Lum32s srcStep;
    R* const* ppDst;
    LumiSize roiSize;
    const K* pKernel;
    Lum32s kernelSize;
    Lum32s xAnchor;
    LumiBorderType borderType;
    const S* pBorderValue;
    Lum32s divisor;
    Lum8u* pBuffer;
};

template <typename S, typename R, typename K, int channelCount, bool lowPrecision>
struct RowVariant
{
    using Source = S;
    using Row = R;
    using Kernel = K;
    using Arguments = RowArguments<S, R, K>;
    static constexpr int channels = channelCount;
    static constexpr bool low = lowPrecision;
    static constexpr bool floating = std::is_same_v<S, Lum32f>;
    static constexpr int pixelBytes = channelCount * static_cast<int>(sizeof(S));
};

struct Row_32f_C1 : RowVariant<Lum32f, Lum32f, Lum32f, 1, false>
{
    static constexpr const char* name = "32f_C1R";
    static int bufferSize(int kernelSize)
    {
        return 96 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_32f_C1R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, *a.pBorderValue, a.pBuffer);
    }
};

struct Row_32f_C3 : RowVariant<Lum32f, Lum32f, Lum32f, 3, false>
{
    static constexpr const char* name = "32f_C3R";
    static int bufferSize(int kernelSize)
    {
        return 288 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_32f_C3R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, a.pBorderValue, a.pBuffer);
    }
};

struct Row_16s_C1 : RowVariant<Lum16s, Lum16s, Lum16s, 1, false>
{
    static constexpr const char* name = "16s_C1R";
    static int bufferSize(int kernelSize)
    {
        return 48 * kernelSize + 112;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_16s_C1R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, *a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_16s_C3 : RowVariant<Lum16s, Lum16s, Lum16s, 3, false>
{
    static constexpr const char* name = "16s_C3R";
    static int bufferSize(int kernelSize)
    {
        return 40 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_16s_C3R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_16u_C1 : RowVariant<Lum16u, Lum16u, Lum16s, 1, false>
{
    static constexpr const char* name = "16u_C1R";
    static int bufferSize(int kernelSize)
    {
        return 64 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_16u_C1R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, *a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_16u_C3 : RowVariant<Lum16u, Lum16u, Lum16s, 3, false>
{
    static constexpr const char* name = "16u_C3R";
    static int bufferSize(int kernelSize)
    {
        return 128 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_16u_C3R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                   a.xAnchor, a.borderType, a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_8u16s_C1 : RowVariant<Lum8u, Lum16s, Lum16s, 1, false>
{
    static constexpr const char* name = "8u16s_C1R";
    static int bufferSize(int kernelSize)
    {
        return 36 * kernelSize + 144;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_8u16s_C1R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                     a.xAnchor, a.borderType, *a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_8u16s_C3 : RowVariant<Lum8u, Lum16s, Lum16s, 3, false>
{
    static constexpr const char* name = "8u16s_C3R";
    static int bufferSize(int kernelSize)
    {
        return 60 * kernelSize + 144;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_8u16s_C3R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                     a.xAnchor, a.borderType, a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_Low_16s_C1 : RowVariant<Lum16s, Lum16s, Lum16s, 1, true>
{
    static constexpr const char* name = "Low_16s_C1R";
    static int bufferSize(int kernelSize)
    {
        return 24 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_Low_16s_C1R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                       a.xAnchor, a.borderType, *a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct Row_Low_16s_C3 : RowVariant<Lum16s, Lum16s, Lum16s, 3, true>
{
    static constexpr const char* name = "Low_16s_C3R";
    static int bufferSize(int kernelSize)
    {
        return 208 * kernelSize + 96;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterRowBorderPipeline_Low_16s_C3R(a.pSrc, a.srcStep, a.ppDst, a.roiSize, a.pKernel, a.kernelSize,
                                                       a.xAnchor, a.borderType, a.pBorderValue, a.divisor, a.pBuffer);
    }
};

struct RowCase
{
    int width = 1;
    int height = 1;
    int kernelSize = 1;
    int xAnchor = 0;
    LumiBorderType borderType = lumBorderReplicate;
    Placement placement = Placement::PageAfter;
    Values values = Values::Extreme;
    Coefficients coefficients = Coefficients::Small;
    bool symmetric = false;
    int divisor = 0;         // 0: drawn
    int scratchOffset = -1;  // -1: drawn
    int seed = 1;
};

std::ostream& operator<<(std::ostream& stream, const RowCase& c)
{
    return stream << c.width << " x " << c.height << ", kernel of " << c.kernelSize << ", anchor " << c.xAnchor
                  << ", border " << c.borderType << ", placement " << static_cast<int>(c.placement) << ", coefficients "
                  << static_cast<int>(c.coefficients) << (c.symmetric ? ", symmetric" : "") << ", seed " << c.seed;
}

// All operands of one call, each in a block of exactly its size.
template <typename V>
class RowOperands
{
  public:
    using Source = typename V::Source;
    using Row = typename V::Row;
    using Kernel = typename V::Kernel;

    explicit RowOperands(const RowCase& c) : RowOperands(c, Random(static_cast<std::uint64_t>(c.seed))) {}

    typename V::Arguments arguments() const
    {
        return {source.pixels(),    source.step(),
                rowPointers.data(), {case_.width, case_.height},
                kernel.data(),      static_cast<Lum32s>(kernelValues.size()),
                case_.xAnchor,      case_.borderType,
                borderValue.data(), divisor,
                scratch.data()};
    }

    std::vector<Row> expectedRow(int y) const
    {
        return rowReference<Row, V::low>(source.row(y), case_.width, V::channels, kernelValues, case_.xAnchor,
                                         case_.borderType, borderValue.data(), divisor);
    }

    testing::AssertionResult rowsAsExpected() const
    {
        for (int y = 0; y < case_.height; ++y) {
            const std::vector<Row> expected = expectedRow(y);
            const auto& row = rows[static_cast<std::size_t>(y)];
            if (const auto same = sameElements(expected.data(), row.data(), expected.size()); !same) {
                return testing::AssertionFailure() << "row " << y << ", " << same.message();
            }
            if (const auto slack = row.block().slackIntact(); !slack) {
                return testing::AssertionFailure() << "row " << y << ", " << slack.message();
            }
        }
        return scratch.surroundingsIntact();
    }

    testing::AssertionResult callGivesReference() const
    {
        const LumStatus status = V::call(arguments());
        if (status != lumOk) {
            return testing::AssertionFailure() << "status " << status << "; divisor " << divisor;
        }
        const testing::AssertionResult result = rowsAsExpected();
        return result ? result : testing::AssertionFailure() << result.message() << "; divisor " << divisor;
    }

  private:
    RowOperands(const RowCase& c, Random random)
        : case_(c),
          source(sourceLayout(c, random)),
          kernelValues(drawKernel<Kernel>(c.kernelSize, c.coefficients, c.symmetric, random)),
          kernel(kernelValues, guardFor(c.placement, random)),
          divisor(c.divisor != 0 ? c.divisor : drawDivisor(kernelValues, random)),
          borderValue(borderValues(random), guardFor(c.placement, random)),
          rows(makeRows(c, random)),
          rowPointers(pointersTo(rows), guardFor(c.placement, random)),
          scratch(static_cast<std::size_t>(V::bufferSize(c.kernelSize)), guardFor(c.placement, random),
                  scratchOffset(c, random))
    {
        fill(source, random, c.values, Area::WithMargins);
    }

    // Sides in memory have exactly the pixels that the kernel reaches, others none.
    static Layout sourceLayout(const RowCase& c, Random& random)
    {
        const RowBorder border = parseRowBorder(c.borderType);
        constexpr int elementBytes = static_cast<int>(sizeof(Source));
        Layout layout;
        layout.width = c.width;
        layout.height = c.height;
        layout.channels = V::channels;
        layout.margins.left = border.leftInMemory ? c.xAnchor : 0;
        layout.margins.right = border.rightInMemory ? c.kernelSize - 1 - c.xAnchor : 0;
        layout.guard = guardFor(c.placement, random);
        layout.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(1, 24)) * elementBytes;
        layout.offset = c.placement == Placement::Mixed ? static_cast<int>(random.between(0, 40)) : 0;
        return layout;
    }

    static std::vector<Source> borderValues(Random& random)
    {
        std::vector<Source> values(V::channels);
        for (Source& value : values) {
            value = random.value<Source>(Values::Extreme);
        }
        return values;
    }

    static std::vector<GuardedArray<Row>> makeRows(const RowCase& c, Random& random)
    {
        std::vector<GuardedArray<Row>> result;
        for (int y = 0; y < c.height; ++y) {
            result.emplace_back(static_cast<std::size_t>(c.width) * V::channels, guardFor(c.placement, random));
        }
        return result;
    }

    static std::vector<Row*> pointersTo(const std::vector<GuardedArray<Row>>& rows)
    {
        std::vector<Row*> pointers;
        for (const GuardedArray<Row>& row : rows) {
            pointers.push_back(row.data());
        }
        return pointers;
    }

    static std::size_t scratchOffset(const RowCase& c, Random& random)
    {
        return static_cast<std::size_t>(c.scratchOffset >= 0 ? c.scratchOffset : random.between(0, 63));
    }

    RowCase case_;

  public:
    Image<Source> source;
    std::vector<Kernel> kernelValues;
    GuardedArray<Kernel> kernel;
    int divisor;
    GuardedArray<Source> borderValue;
    std::vector<GuardedArray<Row>> rows;
    GuardedArray<Row*> rowPointers;
    Scratch scratch;
};

template <typename V>
testing::AssertionResult matchesReference(const RowCase& c)
{
    const testing::AssertionResult result = RowOperands<V>(c).callGivesReference();
    return result ? result : testing::AssertionFailure() << V::name << ": " << c << ": " << result.message();
}

// A call on rows of the test's own making: one image row, one destination row.
template <typename V>
std::vector<typename V::Row> filterOneRow(const typename V::Source* row, int width,
                                          const std::vector<typename V::Kernel>& kernel, int xAnchor,
                                          LumiBorderType borderType, int divisor,
                                          const std::vector<typename V::Source>& borderValue = {0, 0, 0})
{
    std::vector<typename V::Row> result(static_cast<std::size_t>(width) * V::channels);
    typename V::Row* const rows[] = {result.data()};
    const int taps = static_cast<int>(kernel.size());
    const Scratch scratch(static_cast<std::size_t>(V::bufferSize(taps)), Guard::After, 1);
    EXPECT_EQ(lumOk, V::call({row,
                              width * V::pixelBytes,
                              rows,
                              {width, 1},
                              kernel.data(),
                              taps,
                              xAnchor,
                              borderType,
                              borderValue.data(),
                              divisor,
                              scratch.data()}));
    return result;
}

const std::vector<LumiBorderType> borderTypes = {
    lumBorderReplicate,
    lumBorderMirror,
    lumBorderConstant,
    lumBorderInMem,
    lumBorderReplicate | lumBorderInMemLeft,
    lumBorderMirror | lumBorderInMemLeft,
    lumBorderConstant | lumBorderInMemLeft,
    lumBorderReplicate | lumBorderInMemRight,
    lumBorderMirror | lumBorderInMemRight,
    lumBorderConstant | lumBorderInMemRight,
    lumBorderReplicate | lumBorderInMemLeft | lumBorderInMemRight,
    lumBorderMirror | lumBorderInMemTop | lumBorderInMemBottom,
    lumBorderConstant | lumBorderInMemTop | lumBorderInMemRight,
    lumBorderMirror | lumBorderInMem,
};

// A case with everything that is not told drawn from the number.
RowCase drawnCase(int number)
{
    Random random(static_cast<std::uint64_t>(number) + 77);
    RowCase c;
    c.seed = number;
    c.height = static_cast<int>(random.between(1, 3));
    c.placement = static_cast<Placement>(number % 3);
    c.borderType = borderTypes[static_cast<std::size_t>(number) % borderTypes.size()];
    c.values = random.oneIn(3) ? Values::Ordinary : random.oneIn(4) ? Values::NonFinite : Values::Extreme;
    c.coefficients = static_cast<Coefficients>(random.between(0, 2));
    c.symmetric = random.oneIn(3);
    return c;
}

using RowVariants = testing::Types<Row_32f_C1, Row_32f_C3, Row_16s_C1, Row_16s_C3, Row_16u_C1, Row_16u_C3, Row_8u16s_C1,
                                   Row_8u16s_C3, Row_Low_16s_C1, Row_Low_16s_C3>;

struct VariantName
{
    template <typename V>
    static std::string GetName(int)
    {
        return V::name;
    }
};

template <typename V>
class RowPipelineQuick : public testing::Test
{
};
TYPED_TEST_SUITE(RowPipelineQuick, RowVariants, VariantName);

template <typename V>
class RowPipeline : public testing::Test
{
};
TYPED_TEST_SUITE(RowPipeline, RowVariants, VariantName);

template <typename V>
class ThreeChannelRowPipelineQuick : public testing::Test
{
};
using ThreeChannelRowVariants = testing::Types<Row_32f_C3, Row_16s_C3, Row_16u_C3, Row_8u16s_C3, Row_Low_16s_C3>;
TYPED_TEST_SUITE(ThreeChannelRowPipelineQuick, ThreeChannelRowVariants, VariantName);

// Variants with pixels of three bytes or more.
template <typename V>
class WidePixelRowPipelineQuick : public testing::Test
{
};
using WidePixelRowVariants =
    testing::Types<Row_32f_C1, Row_32f_C3, Row_16s_C3, Row_16u_C3, Row_8u16s_C3, Row_Low_16s_C3>;
TYPED_TEST_SUITE(WidePixelRowPipelineQuick, WidePixelRowVariants, VariantName);

// Variants with a divisor and negative results.
template <typename V>
class SignedRowPipelineQuick : public testing::Test
{
};
using SignedRowVariants =
    testing::Types<Row_16s_C1, Row_16s_C3, Row_8u16s_C1, Row_8u16s_C3, Row_Low_16s_C1, Row_Low_16s_C3>;
TYPED_TEST_SUITE(SignedRowPipelineQuick, SignedRowVariants, VariantName);

// Variants that sum in single precision and round to integers.
template <typename V>
class RoundedRowPipelineQuick : public testing::Test
{
};
using RoundedRowVariants = testing::Types<Row_16s_C1, Row_16s_C3, Row_16u_C1, Row_16u_C3, Row_8u16s_C1, Row_8u16s_C3>;
TYPED_TEST_SUITE(RoundedRowPipelineQuick, RoundedRowVariants, VariantName);

TYPED_TEST(RowPipelineQuick, MatchesReference)
{
    int number = 0;
    for (const int width : {1, 4, 16, 33, 65}) {
        for (const int kernelSize : {1, 2, 3, 5, 8, 33}) {
            RowCase c = drawnCase(number++);
            c.width = width;
            c.kernelSize = kernelSize;
            c.xAnchor = kernelSize / 2;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPED_TEST(RowPipeline, MatchesReferenceOverWidthsAndKernels)
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
                RowCase c = drawnCase(number++);
                c.width = width;
                c.kernelSize = kernelSize;
                c.xAnchor = xAnchor;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPED_TEST(RowPipeline, MatchesReferenceOverBordersAndAnchors)
{
    int number = 0;
    for (const int width : {1, 2, 3, 5, 32, 33, 35}) {
        for (const int kernelSize : {1, 2, 3, 4, 5, 6, 9, 33, 36}) {
            const int anchorStep = kernelSize > 9 ? 11 : 1;
            for (int xAnchor = 0; xAnchor < kernelSize; xAnchor += anchorStep) {
                for (const LumiBorderType borderType : borderTypes) {
                    RowCase c = drawnCase(number++);
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

TYPED_TEST(RowPipeline, MatchesReferenceOverDivisorsAndCoefficients)
{
    int number = 0;
    for (const int divisor :
         {1, -1, 2, 3, 5, 16, -7, 255, 1000, 16384, 16385, -16384, -16385, 32768, 10000019, INT_MAX, INT_MIN}) {
        for (const int kernelSize : {1, 3, 4, 5, 9, 20}) {
            for (const auto coefficients : {Coefficients::Small, Coefficients::Medium, Coefficients::Full}) {
                for (const bool symmetric : {false, true}) {
                    RowCase c = drawnCase(number++);
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

TYPED_TEST(RowPipeline, MatchesReferenceOnLongRowsAndManyRows)
{
    int number = 0;
    for (const int kernelSize : {1, 3, 5, 7, 24}) {
        RowCase c = drawnCase(number++);
        c.kernelSize = kernelSize;
        c.xAnchor = kernelSize - 1;
        c.width = 5003;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
        c.width = 41;
        c.height = 67;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
}

TYPED_TEST(RowPipeline, WorksInScratchOfQueriedSizeAtAnyAddress)
{
    for (int offset = 0; offset < 64; ++offset) {
        for (const Placement placement : {Placement::PageAfter, Placement::PageBefore}) {
            for (const int kernelSize : {1, 2, 3, 5, 17}) {
                for (const int width : {1, 40}) {
                    RowCase c = drawnCase(offset);
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

TYPED_TEST(RowPipeline, LongKernelOnNarrowRow)
{
    for (const int width : {1, 2, 7, 33}) {
        for (const LumiBorderType borderType : borderTypes) {
            for (const int xAnchor : {150, 999}) {
                RowCase c = drawnCase(width);
                c.width = width;
                c.kernelSize = 1000;
                c.xAnchor = xAnchor;
                c.borderType = borderType;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPED_TEST(RowPipeline, BandsMayRunAtOnce)
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

// Every value from 0 to 255 and some beyond: accepted are 240 and whatever holds mode 1, 3 or 6 in its low four bits.
TYPED_TEST(RowPipeline, AcceptsBorderValues)
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

TYPED_TEST(ThreeChannelRowPipelineQuick, NeedsNoBorderValuesUnlessConstant)
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

TYPED_TEST(RowPipelineQuick, BufferSizes)
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

template <typename V>
struct QueryArguments
{
    LumiSize roiSize;
    Lum32s kernelSize;
    Lum32s* pBufferSize;

    LumStatus call() const
    {
        return V::query(roiSize, kernelSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(pBufferSize, sizeof *pBufferSize)};
    }
};

TYPED_TEST(RowPipelineQuick, QueryStatusOrder)
{
    using Args = QueryArguments<TypeParam>;
    Lum32s size = -1;
    expectStatusOrder(Args{{5, 4}, 3, &size},
                      {
                          {"pBufferSize null", lumErrNullPointer, [](Args& a) { a.pBufferSize = nullptr; }},
                          {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
                          {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = INT_MIN; }},
                          {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
                          {"kernelSize 0", lumErrSize, [](Args& a) { a.kernelSize = 0; }},
                          {"kernelSize negative", lumErrSize, [](Args& a) { a.kernelSize = -3; }},
                      });
}

// The arguments of a call whose row pointers can be spoilt one by one.
template <typename V>
struct RowStatusArguments
{
    typename V::Arguments plain;
    std::vector<typename V::Row*> rows;
    bool rowsNull = false;
    const RowOperands<V>* operands;

    explicit RowStatusArguments(const RowOperands<V>& o)
        : plain(o.arguments()), rows(plain.ppDst, plain.ppDst + plain.roiSize.height), operands(&o)
    {
    }
    LumStatus call() const
    {
        typename V::Arguments arguments = plain;
        arguments.ppDst = rowsNull ? nullptr : rows.data();
        return V::call(arguments);
    }
    std::vector<Output> outputs() const
    {
        std::vector<Output> result;
        for (const auto& row : operands->rows) {
            result.emplace_back(row.block());
        }
        return result;
    }
};

TYPED_TEST(RowPipelineQuick, StatusOrder)
{
    using Args = RowStatusArguments<TypeParam>;
    using Table = std::vector<Violation<Args>>;
    RowCase c;
    c.width = 6;
    c.height = 5;
    c.kernelSize = 3;
    c.xAnchor = 1;
    const RowOperands<TypeParam> operands(c);

    constexpr int rowBytes = 6 * TypeParam::pixelBytes;
    constexpr int elementBytes = sizeof(typename TypeParam::Source);
    Table table = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.plain.pSrc = nullptr; }},
        {"ppDst null", lumErrNullPointer, [](Args& a) { a.rowsNull = true; }},
        {"pKernel null", lumErrNullPointer, [](Args& a) { a.plain.pKernel = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.plain.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.plain.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.plain.roiSize.width = -6; }},
        {"height 0", lumErrSize, [](Args& a) { a.plain.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.plain.roiSize.height = INT_MIN; }},
        {"first row null", lumErrNullPointer, [](Args& a) { a.rows[0] = nullptr; }},
        {"second row null", lumErrNullPointer, [](Args& a) { a.rows[1] = nullptr; }},
        {"middle row null", lumErrNullPointer, [](Args& a) { a.rows[2] = nullptr; }},
        {"fourth row null", lumErrNullPointer, [](Args& a) { a.rows[3] = nullptr; }},
        {"odd last row null", lumErrNullPointer, [](Args& a) { a.rows[4] = nullptr; }},
        {"kernelSize 0", lumErrSize, [](Args& a) { a.plain.kernelSize = 0; }},
        {"kernelSize negative", lumErrSize, [](Args& a) { a.plain.kernelSize = -1; }},
        {"kernelSize most negative", lumErrSize, [](Args& a) { a.plain.kernelSize = INT_MIN; }},
        {"xAnchor equal to kernelSize", lumErrAnchor, [](Args& a) { a.plain.xAnchor = 3; }},
        {"xAnchor -1", lumErrAnchor, [](Args& a) { a.plain.xAnchor = -1; }},
        {"xAnchor most negative", lumErrAnchor, [](Args& a) { a.plain.xAnchor = INT_MIN; }},
        {"xAnchor largest", lumErrAnchor, [](Args& a) { a.plain.xAnchor = INT_MAX; }},
        {"srcStep one byte below a row", lumErrStep, [](Args& a) { a.plain.srcStep = rowBytes - 1; }},
        {"srcStep one element below a row", lumErrStep, [](Args& a) { a.plain.srcStep = rowBytes - elementBytes; }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.plain.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [](Args& a) { a.plain.srcStep = -rowBytes; }},
    };
    if constexpr (elementBytes > 1) {
        table.push_back(
            {"srcStep one byte above a row", lumErrStepAlignment, [](Args& a) { a.plain.srcStep = rowBytes + 1; }});
    }
    if constexpr (elementBytes > 2) {
        table.push_back(
            {"srcStep two bytes above a row", lumErrStepAlignment, [](Args& a) { a.plain.srcStep = rowBytes + 2; }});
    }
    const Table border = {
        {"border 0", lumErrBorder, [](Args& a) { a.plain.borderType = 0; }},
        {"border 2", lumErrBorder, [](Args& a) { a.plain.borderType = 2; }},
        {"border 4", lumErrBorder, [](Args& a) { a.plain.borderType = 4; }},
        {"border neutral", lumErrBorder, [](Args& a) { a.plain.borderType = lumBorderNeutral; }},
        {"border above 255", lumErrBorder, [](Args& a) { a.plain.borderType = 0x100 | lumBorderReplicate; }},
        {"border negative", lumErrBorder, [](Args& a) { a.plain.borderType = -1; }},
    };
    const Violation<Args> divisor = {"divisor 0", lumErrArgument, [](Args& a) { a.plain.divisor = 0; }};
    // bytes alone look at the border before the divisor
    const bool divisorLast = elementBytes == 1;
    if (!TypeParam::floating && !divisorLast) {
        table.push_back(divisor);
    }
    table.insert(table.end(), border.begin(), border.end());
    if (!TypeParam::floating && divisorLast) {
        table.push_back(divisor);
    }
    expectStatusOrder(Args(operands), table);
}

TYPED_TEST(RowPipeline, NullRowOfEvenHeight)
{
    for (const int height : {1, 2, 4, 6, 7, 16, 17}) {
        RowCase c;
        c.width = 3;
        c.height = height;
        c.kernelSize = 3;
        const RowOperands<TypeParam> operands(c);
        for (int y = 0; y < height; ++y) {
            RowStatusArguments<TypeParam> arguments(operands);
            arguments.rows[static_cast<std::size_t>(y)] = nullptr;
            EXPECT_EQ(lumErrNullPointer, arguments.call()) << "row " << y << " of " << height;
        }
        for (const auto& row : operands.rows) {
            const GuardedArray<typename TypeParam::Row> untouched(3 * TypeParam::channels, row.block().guard());
            EXPECT_TRUE(sameElements(untouched.data(), row.data(), 3 * TypeParam::channels));
        }
    }
}

TYPED_TEST(RowPipelineQuick, StrideEqualToRowIsAccepted)
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
TYPED_TEST(WidePixelRowPipelineQuick, RowBytesWrap)
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

TYPED_TEST(RowPipelineQuick, OneTapCopiesThroughTheScale)
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

TYPED_TEST(SignedRowPipelineQuick, DivisorMinusOneNegates)
{
    std::vector<typename TypeParam::Source> row(40 * TypeParam::channels, 100);
    row[0] = 7;
    const auto negated = filterOneRow<TypeParam>(row.data(), 40, {1}, 0, lumBorderReplicate, -1);
    for (std::size_t i = 0; i < row.size(); ++i) {
        ASSERT_EQ(-row[i], negated[i]);
    }
}

// 1 2 3 with two pixels before and three behind it.
TYPED_TEST(RowPipelineQuick, KernelIsNotReversedAndEachBorderIsItself)
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

TYPED_TEST(RowPipelineQuick, OnePixelMirrorsToItself)
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

TYPED_TEST(RoundedRowPipelineQuick, TiesGoToEven)
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
TYPED_TEST(RoundedRowPipelineQuick, SumsBeyond32BitsSaturateToTheirSide)
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

template <typename V>
class LowRowPipeline : public testing::Test
{
};
using LowRowVariants = testing::Types<Row_Low_16s_C1, Row_Low_16s_C3>;
TYPED_TEST_SUITE(LowRowPipeline, LowRowVariants, VariantName);

// 32767 * 32767 * 5 is above 2^32; its low 32 bits are what is stored with saturation.
TYPED_TEST(LowRowPipeline, SumsWrapAndTheirStoresSaturate)
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

TYPED_TEST(LowRowPipeline, ScaleIsTruncatedAndNothingIsRounded)
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
TYPED_TEST(LowRowPipeline, SymmetricFiveTapsOnBothSidesOfTheLargeImage)
{
    const LumiSize sizes[] = {{4096, 128}, {524287, 1}, {524289, 1}, {174763, 3}, {2047, 257}, {35, 14980}};
    int number = 0;
    for (const LumiSize size : sizes) {
        for (const auto coefficients : {Coefficients::Small, Coefficients::Full}) {
            RowCase c = drawnCase(number);
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

TYPED_TEST(LowRowPipeline, FiveTapsNearTheSymmetricOnes)
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
