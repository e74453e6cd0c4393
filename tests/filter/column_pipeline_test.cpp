// The column pass: every variant against a plain reference over widths, kernels and divisors; the two arithmetics of a
// row in the 16-bit variants; the sizes of the scratch; the order of the checks.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "filter/pipeline_blocks.hpp"
#include "filter/pipeline_reference.hpp"
#include "lumcv/filter.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/max_cache_size.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/sweep.hpp"

namespace lumcv::test {
namespace {

// The arguments of every variant; 32f variants take no divisor.
template <typename S, typename D, typename K>
struct ColumnArguments
{
    S* const* ppSrc;
    D* pDst;
    Lum32s dstStep;
    LumiSize dstRoiSize;
    const K* pKernel;
    Lum32s kernelSize;
    Lum32s divisor;
    Lum8u* pBuffer;
};

template <typename S, typename D, typename K, int channelCount, bool lowPrecision>
struct ColumnVariant
{
    using Row = S;
    using Destination = D;
    using Kernel = K;
    using Arguments = ColumnArguments<S, D, K>;
    static constexpr int channels = channelCount;
    static constexpr bool low = lowPrecision;
    static constexpr bool floating = std::is_same_v<S, Lum32f>;
    static constexpr int pixelBytes = channelCount * static_cast<int>(sizeof(D));
};

constexpr int roundDown(int value, int multiple)
{
    return value - value % multiple;
}

constexpr int roundUp(int value, int multiple)
{
    return roundDown(value + multiple - 1, multiple);
}

struct Column_32f_C1 : ColumnVariant<Lum32f, Lum32f, Lum32f, 1, false>
{
    static constexpr const char* name = "32f_C1R";
    static int bufferSize(LumiSize /* roiSize */, int kernelSize)
    {
        return 32 * kernelSize + 32;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_32f_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_32f_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.pBuffer);
    }
};

struct Column_32f_C3 : ColumnVariant<Lum32f, Lum32f, Lum32f, 3, false>
{
    static constexpr const char* name = "32f_C3R";
    static int bufferSize(LumiSize /* roiSize */, int kernelSize)
    {
        return 32 * kernelSize + 32;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_32f_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_32f_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.pBuffer);
    }
};

struct Column_16s_C1 : ColumnVariant<Lum16s, Lum16s, Lum16s, 1, false>
{
    static constexpr const char* name = "16s_C1R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 12 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.divisor, a.pBuffer);
    }
};

struct Column_16s_C3 : ColumnVariant<Lum16s, Lum16s, Lum16s, 3, false>
{
    static constexpr const char* name = "16s_C3R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 36 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.divisor, a.pBuffer);
    }
};

struct Column_16s8u_C1 : ColumnVariant<Lum16s, Lum8u, Lum16s, 1, false>
{
    static constexpr const char* name = "16s8u_C1R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 12 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s8u_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                  a.divisor, a.pBuffer);
    }
};

struct Column_16s8u_C3 : ColumnVariant<Lum16s, Lum8u, Lum16s, 3, false>
{
    static constexpr const char* name = "16s8u_C3R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 36 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s8u_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                  a.divisor, a.pBuffer);
    }
};

struct Column_16s8s_C1 : ColumnVariant<Lum16s, Lum8s, Lum16s, 1, false>
{
    static constexpr const char* name = "16s8s_C1R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 12 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s8s_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                  a.divisor, a.pBuffer);
    }
};

struct Column_16s8s_C3 : ColumnVariant<Lum16s, Lum8s, Lum16s, 3, false>
{
    static constexpr const char* name = "16s8s_C3R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 36 * roundUp(roiSize.width, 4) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16s8s_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                  a.divisor, a.pBuffer);
    }
};

struct Column_16u_C1 : ColumnVariant<Lum16u, Lum16u, Lum16s, 1, false>
{
    static constexpr const char* name = "16u_C1R";
    static int bufferSize(LumiSize roiSize, int kernelSize)
    {
        return 32 * kernelSize + 64 + roundDown(8 * roiSize.width + 24, 32);
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16u_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16u_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.divisor, a.pBuffer);
    }
};

struct Column_16u_C3 : ColumnVariant<Lum16u, Lum16u, Lum16s, 3, false>
{
    static constexpr const char* name = "16u_C3R";
    static int bufferSize(LumiSize roiSize, int kernelSize)
    {
        return 32 * kernelSize + 64 + roundDown(24 * roiSize.width + 24, 32);
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_16u_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_16u_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                a.divisor, a.pBuffer);
    }
};

struct Column_Low_16s_C1 : ColumnVariant<Lum16s, Lum16s, Lum16s, 1, true>
{
    static constexpr const char* name = "Low_16s_C1R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 6 * roundUp(roiSize.width, 8) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_Low_16s_C1R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                    a.divisor, a.pBuffer);
    }
};

struct Column_Low_16s_C3 : ColumnVariant<Lum16s, Lum16s, Lum16s, 3, true>
{
    static constexpr const char* name = "Low_16s_C3R";
    static int bufferSize(LumiSize roiSize, int /* kernelSize */)
    {
        return 18 * roundUp(roiSize.width, 8) + 64;
    }
    static LumStatus query(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
    {
        return lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(roiSize, kernelSize, pBufferSize);
    }
    static LumStatus call(const Arguments& a)
    {
        return lumiFilterColumnPipeline_Low_16s_C3R(a.ppSrc, a.pDst, a.dstStep, a.dstRoiSize, a.pKernel, a.kernelSize,
                                                    a.divisor, a.pBuffer);
    }
};

struct ColumnCase
{
    int width = 1;
    int height = 1;
    int kernelSize = 1;
    Placement placement = Placement::PageAfter;
    Values values = Values::Extreme;
    Coefficients coefficients = Coefficients::Small;
    bool symmetric = false;
    bool aligned = false;    // rows, destination and kernel all at multiples of 64 bytes
    int divisor = 0;         // 0: drawn
    int scratchOffset = -1;  // -1: drawn
    int seed = 1;
};

std::ostream& operator<<(std::ostream& stream, const ColumnCase& c)
{
    return stream << c.width << " x " << c.height << ", kernel of " << c.kernelSize << ", placement "
                  << static_cast<int>(c.placement) << ", coefficients " << static_cast<int>(c.coefficients)
                  << (c.symmetric ? ", symmetric" : "") << (c.aligned ? ", aligned" : "") << ", seed " << c.seed;
}

// All operands of one call, each in a block of exactly its size.
template <typename V>
class ColumnOperands
{
  public:
    using Row = typename V::Row;
    using Destination = typename V::Destination;
    using Kernel = typename V::Kernel;

    explicit ColumnOperands(const ColumnCase& c) : ColumnOperands(c, Random(static_cast<std::uint64_t>(c.seed))) {}

    typename V::Arguments arguments()
    {
        return {rowPointers.data(),
                destination.pixels(),
                destination.step(),
                {case_.width, case_.height},
                kernel.data(),
                static_cast<Lum32s>(kernelValues.size()),
                divisor,
                scratch.data()};
    }

    testing::AssertionResult destinationAsExpected() const
    {
        for (int y = 0; y < case_.height; ++y) {
            const std::vector<Destination> expected = columnReference<Destination, V::low, Row>(
                rowPointers.data() + y, case_.width, V::channels, kernelValues, divisor);
            if (const auto same = sameElements(expected.data(), destination.row(y), expected.size()); !same) {
                return testing::AssertionFailure() << "row " << y << ", " << same.message();
            }
        }
        if (const auto gaps = destination.gapsIntact(); !gaps) {
            return gaps;
        }
        return scratch.surroundingsIntact();
    }

    testing::AssertionResult callGivesReference()
    {
        const LumStatus status = V::call(arguments());
        if (status != lumOk) {
            return testing::AssertionFailure() << "status " << status << "; divisor " << divisor;
        }
        const testing::AssertionResult result = destinationAsExpected();
        return result ? result : testing::AssertionFailure() << result.message() << "; divisor " << divisor;
    }

  private:
    ColumnOperands(const ColumnCase& c, Random random)
        : case_(c),
          rows(makeRows(c, random)),
          rowPointers(pointersTo(rows), guardFor(c.placement, random)),
          destination(destinationLayout(c, random)),
          kernelValues(drawKernel<Kernel>(c.kernelSize, c.coefficients, c.symmetric, random)),
          kernel(kernelValues, guardFor(c.placement, random)),
          divisor(c.divisor != 0 ? c.divisor : drawDivisor(kernelValues, random)),
          scratch(static_cast<std::size_t>(V::bufferSize({c.width, c.height}, c.kernelSize)),
                  guardFor(c.placement, random), scratchOffset(c, random))
    {
    }

    static std::vector<GuardedArray<Row>> makeRows(const ColumnCase& c, Random& random)
    {
        std::vector<GuardedArray<Row>> result;
        std::vector<Row> values(static_cast<std::size_t>(c.width) * V::channels);
        for (int y = 0; y < c.height + c.kernelSize - 1; ++y) {
            for (Row& value : values) {
                value = random.value<Row>(c.values);
            }
            result.emplace_back(values, guardFor(c.placement, random));
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

    static Layout destinationLayout(const ColumnCase& c, Random& random)
    {
        constexpr int elementBytes = static_cast<int>(sizeof(Destination));
        Layout layout;
        layout.width = c.width;
        layout.height = c.height;
        layout.channels = V::channels;
        layout.guard = guardFor(c.placement, random);
        layout.gap = random.oneIn(2) ? 0 : static_cast<int>(random.between(1, 24)) * elementBytes;
        layout.offset = c.placement == Placement::Mixed ? static_cast<int>(random.between(0, 40)) : 0;
        if (c.aligned) {
            layout.gap = roundUp(c.width * V::pixelBytes, 64) - c.width * V::pixelBytes;
        }
        return layout;
    }

    static std::size_t scratchOffset(const ColumnCase& c, Random& random)
    {
        return static_cast<std::size_t>(c.scratchOffset >= 0 ? c.scratchOffset : random.between(0, 63));
    }

    ColumnCase case_;

  public:
    std::vector<GuardedArray<Row>> rows;
    GuardedArray<Row*> rowPointers;
    Image<Destination> destination;
    std::vector<Kernel> kernelValues;
    GuardedArray<Kernel> kernel;
    int divisor;
    Scratch scratch;
};

template <typename V>
testing::AssertionResult matchesReference(const ColumnCase& c)
{
    const testing::AssertionResult result = ColumnOperands<V>(c).callGivesReference();
    return result ? result : testing::AssertionFailure() << V::name << ": " << c << ": " << result.message();
}

// One destination row from rows of one value each.
template <typename V>
std::vector<typename V::Destination> filterFlatRows(const std::vector<typename V::Row>& rowValues, int width,
                                                    const std::vector<typename V::Kernel>& kernel, int divisor)
{
    const std::size_t elements = static_cast<std::size_t>(width) * V::channels;
    std::vector<std::vector<typename V::Row>> rows;
    std::vector<typename V::Row*> pointers;
    for (const auto value : rowValues) {
        rows.emplace_back(elements, value);
    }
    for (auto& row : rows) {
        pointers.push_back(row.data());
    }
    std::vector<typename V::Destination> result(elements);
    const int taps = static_cast<int>(kernel.size());
    const Scratch scratch(static_cast<std::size_t>(V::bufferSize({width, 1}, taps)), Guard::After, 1);
    EXPECT_EQ(kernel.size(), rowValues.size());
    EXPECT_EQ(lumOk, V::call({pointers.data(),
                              result.data(),
                              width * V::pixelBytes,
                              {width, 1},
                              kernel.data(),
                              taps,
                              divisor,
                              scratch.data()}));
    return result;
}

// A case with everything that is not told drawn from the number.
ColumnCase drawnCase(int number)
{
    Random random(static_cast<std::uint64_t>(number) + 99);
    ColumnCase c;
    c.seed = number;
    c.height = static_cast<int>(random.between(1, 3));
    c.placement = static_cast<Placement>(number % 3);
    c.aligned = c.placement == Placement::PageBefore && random.oneIn(2);
    c.values = random.oneIn(3) ? Values::Ordinary : random.oneIn(4) ? Values::NonFinite : Values::Extreme;
    c.coefficients = static_cast<Coefficients>(random.between(0, 2));
    c.symmetric = random.oneIn(3);
    return c;
}

using ColumnVariants = testing::Types<Column_32f_C1, Column_32f_C3, Column_16s_C1, Column_16s_C3, Column_16s8u_C1,
                                      Column_16s8u_C3, Column_16s8s_C1, Column_16s8s_C3, Column_16u_C1, Column_16u_C3,
                                      Column_Low_16s_C1, Column_Low_16s_C3>;

struct VariantName
{
    template <typename V>
    static std::string GetName(int)
    {
        return V::name;
    }
};

template <typename V>
class ColumnPipelineQuick : public testing::Test
{
};
TYPED_TEST_SUITE(ColumnPipelineQuick, ColumnVariants, VariantName);

template <typename V>
class ColumnPipeline : public testing::Test
{
};
TYPED_TEST_SUITE(ColumnPipeline, ColumnVariants, VariantName);

// Variants with pixels of three bytes or more.
template <typename V>
class WidePixelColumnPipelineQuick : public testing::Test
{
};
using WidePixelColumnVariants = testing::Types<Column_32f_C1, Column_32f_C3, Column_16s_C3, Column_16s8u_C3,
                                               Column_16s8s_C3, Column_16u_C3, Column_Low_16s_C3>;
TYPED_TEST_SUITE(WidePixelColumnPipelineQuick, WidePixelColumnVariants, VariantName);

// Variants with a divisor and negative results.
template <typename V>
class SignedColumnPipelineQuick : public testing::Test
{
};
using SignedColumnVariants = testing::Types<Column_16s_C1, Column_16s_C3, Column_16s8s_C1, Column_16s8s_C3,
                                            Column_Low_16s_C1, Column_Low_16s_C3>;
TYPED_TEST_SUITE(SignedColumnPipelineQuick, SignedColumnVariants, VariantName);

// Variants that sum in single precision and round to integers.
template <typename V>
class RoundedColumnPipelineQuick : public testing::Test
{
};
using RoundedColumnVariants = testing::Types<Column_16s_C1, Column_16s_C3, Column_16s8u_C1, Column_16s8u_C3,
                                             Column_16s8s_C1, Column_16s8s_C3, Column_16u_C1, Column_16u_C3>;
TYPED_TEST_SUITE(RoundedColumnPipelineQuick, RoundedColumnVariants, VariantName);

TYPED_TEST(ColumnPipelineQuick, MatchesReference)
{
    int number = 0;
    for (const int width : {1, 4, 15, 16, 33, 67}) {
        for (const int kernelSize : {1, 2, 3, 5, 8, 17}) {
            ColumnCase c = drawnCase(number++);
            c.width = width;
            c.kernelSize = kernelSize;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPED_TEST(ColumnPipeline, MatchesReferenceOverWidthsAndKernels)
{
    int number = 0;
    for (const int width : sweepWidths()) {
        if (width > 300) {
            continue;
        }
        for (const int kernelSize : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 31, 33, 64}) {
            const int repetitions = kernelSize <= 9 ? 4 : 1;
            for (int i = 0; i < repetitions; ++i) {
                ColumnCase c = drawnCase(number++);
                c.width = width;
                c.kernelSize = kernelSize;
                ASSERT_TRUE(matchesReference<TypeParam>(c));
            }
        }
    }
}

TYPED_TEST(ColumnPipeline, MatchesReferenceOverDivisorsAndCoefficients)
{
    int number = 0;
    for (const int divisor :
         {1, -1, 2, 3, 5, 16, -7, 255, 1000, 16384, 16385, -16384, -16385, 32768, 10000019, INT_MAX, INT_MIN}) {
        for (const int kernelSize : {1, 3, 4, 5, 9, 20}) {
            for (const auto coefficients : {Coefficients::Small, Coefficients::Medium, Coefficients::Full}) {
                for (const bool symmetric : {false, true}) {
                    ColumnCase c = drawnCase(number++);
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

TYPED_TEST(ColumnPipeline, MatchesReferenceWhereEverythingIsAligned)
{
    int number = 0;
    for (const int width : {16, 32, 48, 64, 65, 79, 128, 160, 320}) {
        for (const int kernelSize : {1, 2, 3, 4, 5, 7, 8, 11}) {
            ColumnCase c = drawnCase(number++);
            c.width = width;
            c.height = 4;
            c.kernelSize = kernelSize;
            c.placement = Placement::PageBefore;
            c.aligned = true;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

TYPED_TEST(ColumnPipeline, MatchesReferenceOnTallAndWideImages)
{
    int number = 0;
    for (const int kernelSize : {1, 3, 5, 7, 24}) {
        ColumnCase c = drawnCase(number++);
        c.kernelSize = kernelSize;
        c.width = 5003;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
        c.width = 41;
        c.height = 67;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
}

// Images of half a million and a million pixels, whose rows may be stored past the cache.
TYPED_TEST(ColumnPipeline, MatchesReferenceOnLargeImages)
{
    const ReportedCacheSize reported(0, 0x10000);
    for (const int kernelSize : {3, 4, 5}) {
        ColumnCase c = drawnCase(kernelSize);
        c.kernelSize = kernelSize;
        c.width = 4111;
        c.height = 131;
        c.aligned = false;
        c.placement = kernelSize == 4 ? Placement::PageBefore : Placement::PageAfter;
        ASSERT_TRUE(matchesReference<TypeParam>(c));
    }
    ColumnCase c = drawnCase(5);
    c.kernelSize = 3;
    c.width = 4096;
    c.height = 260;
    c.placement = Placement::PageBefore;
    c.aligned = true;
    ASSERT_TRUE(matchesReference<TypeParam>(c));
}

TYPED_TEST(ColumnPipeline, WorksInScratchOfQueriedSizeAtAnyAddress)
{
    for (int offset = 0; offset < 64; ++offset) {
        for (const Placement placement : {Placement::PageAfter, Placement::PageBefore}) {
            for (const int kernelSize : {1, 2, 3, 5, 17}) {
                for (const int width : {1, 8, 40}) {
                    ColumnCase c = drawnCase(offset);
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
TYPED_TEST(ColumnPipeline, ThousandTapsOverNarrowRows)
{
    for (const int width : {1, 2, 15, 16, 17}) {
        for (const int scratchOffset : {0, 63}) {
            ColumnCase c = drawnCase(width);
            c.width = width;
            c.kernelSize = 1000;
            c.scratchOffset = scratchOffset;
            c.placement = scratchOffset == 0 ? Placement::PageAfter : Placement::PageBefore;
            ASSERT_TRUE(matchesReference<TypeParam>(c));
        }
    }
}

// Pointers to the same row again and again are how a caller gets its borders above and below.
TYPED_TEST(ColumnPipelineQuick, RowsMayRepeat)
{
    for (const int kernelSize : {3, 4, 5, 9}) {
        ColumnCase c = drawnCase(kernelSize);
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

TYPED_TEST(ColumnPipeline, BandsMayRunAtOnce)
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

TYPED_TEST(ColumnPipelineQuick, BufferSizes)
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

TYPED_TEST(ColumnPipelineQuick, QueryStatusOrder)
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
struct ColumnStatusArguments
{
    typename V::Arguments plain;
    std::vector<typename V::Row*> rows;
    bool rowsNull = false;
    ColumnOperands<V>* operands;

    explicit ColumnStatusArguments(ColumnOperands<V>& o)
        : plain(o.arguments()),
          rows(plain.ppSrc, plain.ppSrc + plain.dstRoiSize.height + plain.kernelSize - 1),
          operands(&o)
    {
    }
    LumStatus call() const
    {
        typename V::Arguments arguments = plain;
        arguments.ppSrc = rowsNull ? nullptr : rows.data();
        return V::call(arguments);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination)};
    }
};

ColumnCase statusCase()
{
    ColumnCase c;
    c.width = 6;
    c.height = 3;
    c.kernelSize = 5;
    c.divisor = 1;
    return c;
}

TYPED_TEST(ColumnPipelineQuick, StatusOrder)
{
    using Args = ColumnStatusArguments<TypeParam>;
    ColumnOperands<TypeParam> operands(statusCase());

    constexpr int rowBytes = 6 * TypeParam::pixelBytes;
    constexpr int elementBytes = sizeof(typename TypeParam::Destination);
    std::vector<Violation<Args>> table = {
        {"ppSrc null", lumErrNullPointer, [](Args& a) { a.rowsNull = true; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.plain.pDst = nullptr; }},
        {"pKernel null", lumErrNullPointer, [](Args& a) { a.plain.pKernel = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.plain.dstRoiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.plain.dstRoiSize.width = -6; }},
        {"height 0", lumErrSize, [](Args& a) { a.plain.dstRoiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.plain.dstRoiSize.height = INT_MIN; }},
        {"first row null", lumErrNullPointer, [](Args& a) { a.rows[0] = nullptr; }},
        {"second row null", lumErrNullPointer, [](Args& a) { a.rows[1] = nullptr; }},
        // three rows and a kernel without taps make two pointers, so that the later ones are not looked at
        {"middle row null", lumErrNullPointer, [](Args& a) { a.rows[3] = nullptr; }, {"kernelSize 0"}},
        {"odd last row null", lumErrNullPointer, [](Args& a) { a.rows[6] = nullptr; }, {"kernelSize 0"}},
        {"kernelSize 0", lumErrSize, [](Args& a) { a.plain.kernelSize = 0; }},
        {"kernelSize negative",
         lumErrSize,
         [](Args& a) { a.plain.kernelSize = -4; },
         {"first row null", "second row null", "middle row null", "odd last row null"}},
        {"dstStep one byte below a row", lumErrStep, [](Args& a) { a.plain.dstStep = rowBytes - 1; }},
        {"dstStep one element below a row", lumErrStep, [](Args& a) { a.plain.dstStep = rowBytes - elementBytes; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.plain.dstStep = 0; }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.plain.dstStep = -rowBytes; }},
    };
    if constexpr (elementBytes > 1) {
        table.push_back(
            {"dstStep one byte above a row", lumErrStepAlignment, [](Args& a) { a.plain.dstStep = rowBytes + 1; }});
    }
    if constexpr (elementBytes > 2) {
        table.push_back(
            {"dstStep two bytes above a row", lumErrStepAlignment, [](Args& a) { a.plain.dstStep = rowBytes + 2; }});
    }
    table.push_back({"pBuffer null", lumErrNullPointer, [](Args& a) { a.plain.pBuffer = nullptr; }});
    if (!TypeParam::floating) {
        table.push_back({"divisor 0", lumErrArgument, [](Args& a) { a.plain.divisor = 0; }});
    }
    expectStatusOrder(Args(operands), table);
}

// How many rows are looked at follows from the kernel's size even where that is not a size at all: none if the sum is
// not above 0.
TYPED_TEST(ColumnPipelineQuick, NullRowsOfKernelsWithoutTaps)
{
    using Args = ColumnStatusArguments<TypeParam>;
    ColumnOperands<TypeParam> operands(statusCase());
    const auto status = [&](int kernelSize, int nullRow) {
        Args arguments(operands);
        arguments.plain.kernelSize = kernelSize;
        arguments.rows[static_cast<std::size_t>(nullRow)] = nullptr;
        arguments.plain.dstStep = 0;  // is not reached
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

TYPED_TEST(ColumnPipelineQuick, NullRowAnywhere)
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
                ColumnStatusArguments<TypeParam> arguments(operands);
                arguments.rows[static_cast<std::size_t>(row)] = nullptr;
                EXPECT_EQ(lumErrNullPointer, arguments.call())
                    << "row " << row << " of height " << height << " and kernel of " << kernelSize;
            }
            EXPECT_TRUE(std::equal(before.begin(), before.end(), operands.destination.bytes()));
        }
    }
}

TYPED_TEST(ColumnPipelineQuick, StrideEqualToRowIsAccepted)
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
TYPED_TEST(WidePixelColumnPipelineQuick, RowBytesWrap)
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

TYPED_TEST(ColumnPipelineQuick, KernelIsNotReversed)
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

TYPED_TEST(ColumnPipelineQuick, OneTapCopiesThroughTheScale)
{
    for (const auto value : filterFlatRows<TypeParam>({77}, 37, {1}, 1)) {
        ASSERT_EQ(77, value);
    }
    for (const auto value : filterFlatRows<TypeParam>({21}, 37, {4}, 2)) {
        ASSERT_EQ(TypeParam::floating ? 84 : 42, value);
    }
}

TYPED_TEST(SignedColumnPipelineQuick, DivisorMinusOneNegates)
{
    for (const auto value : filterFlatRows<TypeParam>({55, 20}, 37, {1, 3}, -1)) {
        ASSERT_EQ(-115, value);
    }
}

TYPED_TEST(RoundedColumnPipelineQuick, TiesGoToEven)
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

TYPED_TEST(RoundedColumnPipelineQuick, SumsBeyond32BitsSaturateToTheirSide)
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
