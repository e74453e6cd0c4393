// The variants of the column pass as tests see them: one type for each export, and operands of exactly their size for a
// call whose values are drawn from a number.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "filter/pipeline_blocks.hpp"
#include "filter/pipeline_reference.hpp"
#include "lumcv/filter.h"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/random.hpp"

namespace lumcv::test {

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

inline std::ostream& operator<<(std::ostream& stream, const ColumnCase& c)
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
inline ColumnCase drawnColumnCase(int number)
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

}  // namespace lumcv::test
