// The variants of the row pass as tests see them: one type for each export, and operands of exactly their size for a
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

inline std::ostream& operator<<(std::ostream& stream, const RowCase& c)
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

inline const std::vector<LumiBorderType> borderTypes = {
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
inline RowCase drawnRowCase(int number)
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

}  // namespace lumcv::test
