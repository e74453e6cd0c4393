// Canny edges of an image, with the derivatives formed on the way: those of one row at a time, a stretch of it after
// the other, so that neither they nor the rows' sums ever leave the first-level cache.
#include "feature/canny_edges.hpp"
#include "filter/mask_steps.hpp"
#include "frame/border.hpp"
#include "frame/checks.hpp"
#include "lumcv/feature.h"

namespace lumcv::canny {
namespace {

// Operators: what smooths across a derivative, the derivative, and its greatest value. Words hold all sums.

struct Sobel3
{
    static constexpr Lum32s greatest = 4 * 255;
    using Smooth = Smooth3;
    using Difference = NegatedDifference3;
};

struct Scharr3
{
    static constexpr Lum32s greatest = 16 * 255;
    using Smooth = ScharrSmooth3;
    using Difference = NegatedDifference3;
};

struct Sobel5
{
    static constexpr Lum32s greatest = 48 * 255;
    using Smooth = Smooth5;
    using Difference = NegatedDifference5;
};

constexpr int wordLanes =
    simd::registerLanes < Lum16s >> simd::restLanes ? simd::registerLanes<Lum16s> : simd::restLanes;

/// The steps down the rows, for n columns; rows[j] is row j of the mask.
template <class Operator>
[[gnu::flatten, gnu::noinline]] void acrossRows(const Lum8u* const* rowPointers, int64_t n, Lum16s* smooth,
                                                Lum16s* difference)
{
    constexpr int size = Operator::Smooth::size;
    std::array<const Lum8u*, size> rows;
    for (size_t j = 0; j < size; ++j)
        rows[j] = rowPointers[j];
    simd::eachAtLeastOnce<wordLanes>(0, n, [=](int64_t x, auto lanes) {
        const auto tap = [=](int j) { return simd::loadWords<lanes>(rows[static_cast<size_t>(j)] + x); };
        simd::store(smooth + x, Operator::Smooth::of(tap));
        simd::store(difference + x, Operator::Difference::of(tap));
    });
}

/// The steps along the row, for n pixels of which the first is that of smooth[reach] and difference[reach].
template <class Operator>
[[gnu::flatten, gnu::noinline]] void alongRow(const Lum16s* smooth, const Lum16s* difference, int64_t n, Lum16s* dx,
                                              Lum16s* dy)
{
    simd::eachAtLeastOnce<wordLanes>(0, n, [=](int64_t x, auto lanes) {
        simd::store(dx + x, Operator::Difference::of([=](int i) { return simd::load<lanes>(smooth + x + i); }));
        simd::store(dy + x, Operator::Smooth::of([=](int i) { return simd::load<lanes>(difference + x + i); }));
    });
}

struct Source
{
    Plane<const Lum8u> image;
    LumiSizeL size;
    Border border;
    Lum8u borderValue;
};

template <class Operator>
class Derivatives
{
  public:
    /// The pixels of a stretch.
    static constexpr int64_t stretch = 256;

    explicit Derivatives(const Source& source) : source_(source)
    {
        __builtin_memset(constant_, source.borderValue, sizeof constant_);
    }

    /// Those of the pixels [begin, end) of row y, at most a stretch.
    void form(int64_t y, int64_t begin, int64_t end, Lum16s* dx, Lum16s* dy)
    {
        const int64_t width = source_.size.width;
        const Border& border = source_.border;
        // the columns that are in memory
        const int64_t first = begin < reach && !border.left ? 0 : begin - reach;
        const int64_t last = end + reach > width && !border.right ? width : end + reach;
        const Lum8u* rows[size];
        for (int64_t j = 0; j < size; ++j) {
            const SourceRow row = sourceRow(y + j - reach, source_.size.height, border);
            rows[j] = row.isConstant ? constant_ : source_.image.row(row.index) + first;
        }
        Lum16s smooth[stretch + 2 * reach];
        Lum16s difference[stretch + 2 * reach];
        const int64_t before = first - (begin - reach);
        const int64_t count = last - first;
        acrossRows<Operator>(rows, count, smooth + before, difference + before);
        extend(smooth, before, before + count, end - begin + 2 * reach,
               static_cast<Lum16s>(weight * source_.borderValue));
        extend(difference, before, before + count, end - begin + 2 * reach, 0);
        alongRow<Operator>(smooth, difference, end - begin, dx, dy);
    }

  private:
    static constexpr int size = Operator::Smooth::size;
    static constexpr int64_t reach = size / 2;

    /// The sum of the smoothing weights.
    static constexpr int weight = Operator::Smooth::of([](int) { return 1; });

    /// Continues the elements [first, last) to both ends of n: a column beyond the image is a constant one, or the same
    /// as the last one inside.
    void extend(Lum16s* elements, int64_t first, int64_t last, int64_t n, Lum16s constant) const
    {
        const bool isConstant = source_.border.mode == lumBorderConstant;
        for (int64_t x = first - 1; x >= 0; --x)
            elements[x] = isConstant ? constant : elements[first];
        for (int64_t x = last; x < n; ++x)
            elements[x] = isConstant ? constant : elements[last - 1];
    }

    const Source& source_;
    Lum8u constant_[stretch + 2 * reach];
};

/// What the export hands on.
struct BorderCall
{
    Source source;
    Plane<Lum8u> dst;
    Lum32f low, high;
    LumiNorm norm;
    Lum8u* buffer;
};

template <class Operator, class Measure, class Directions, class High>
void drawEdgesOf(const BorderCall& call, Measure measure, Directions directions, High high)
{
    using Magnitude = typename Measure::Magnitude;
    Derivatives<Operator> derivatives(call.source);
    const int64_t width = call.source.size.width;
    const auto gradient = [&](int64_t y, Magnitude* magnitudes, Lum8u* codes) {
        constexpr int64_t stretch = Derivatives<Operator>::stretch;
        Lum16s dx[stretch];
        Lum16s dy[stretch];
        for (int64_t begin = 0; begin < width; begin += stretch) {
            const int64_t end = begin + stretch < width ? begin + stretch : width;
            derivatives.form(y, begin, end, dx, dy);
            measureGradients(measure, directions, dx, dy, end - begin, magnitudes + begin, codes + begin);
        }
    };
    drawEdges<Lum32u, Magnitude>(gradient, high, call.source.size, call.buffer, call.dst);
}

/// Below this height directions are those of angles.
constexpr int64_t leastHeight = 4;

template <class Operator>
void draw(const BorderCall& call)
{
    static_assert(Operator::greatest <= ByteTangents::greatest);
    const bool isLow = call.source.size.height < leastHeight;
    if (call.norm == lumNormL1) {
        const Lum32s low = integerThreshold(call.low);
        const WordSum sum{static_cast<Lum16u>(low < WordSum::greatestLow ? low : WordSum::greatestLow)};
        const Lum16u high = sum.high(integerThreshold(call.high));
        if (isLow)
            drawEdgesOf<Operator>(call, sum, Angles{}, high);
        else
            drawEdgesOf<Operator>(call, sum, ByteTangents{}, high);
    } else if (isLow)
        drawEdgesOf<Operator>(call, RootOfFloatSquares{call.low}, Angles{}, thresholdBits(call.high));
    else if constexpr (2 * Operator::greatest * Operator::greatest < greatestSumForRoot)
        drawEdgesOf<Operator>(call, IntegerSquares{squareThreshold(call.low)}, ByteTangents{},
                              squareThreshold(call.high));
    else
        drawEdgesOf<Operator>(call, RootOfSquares{squareThreshold(call.low)}, ByteTangents{}, thresholdBits(call.high));
}

/// Modulo 2^64.
constexpr uint64_t scratchBytes(LumiSize roiSize, LumiMaskSize mask)
{
    const int k = mask == lumMask3x3 ? 3 : 5;
    const auto width = static_cast<uint64_t>(int64_t{roiSize.width} + k - 1);
    const auto height = static_cast<uint64_t>(int64_t{roiSize.height} + k - 1);
    const bool isThin = roiSize.width < k || roiSize.height < k;
    return roundedUp(16 * width, 32) + (isThin ? 2 : 1) * roundedUp(width * height, 32) +
           roundedUp(4 * width * height, 32) + 64;
}

LumStatus edges(const BorderCall& call, LumiFilterType filterType, LumiMaskSize mask, LumiBorderType borderType)
{
    const bool isScharr = filterType == lumFilterScharr;
    const LumStatus status = Checks{}
                                 .require(isMask(mask) && !(isScharr && mask == lumMask5x5), lumErrMaskSize)
                                 .notNull(call.source.image.pixels, call.dst.pixels, call.buffer)
                                 .size(call.source.size)
                                 .require(isScharr || filterType == lumFilterSobel, lumErrArgument)
                                 .require(call.norm == lumNormL1 || call.norm == lumNormL2, lumErrArgument)
                                 .require(!(call.low < 0 || call.low > call.high), lumErrArgument)
                                 .require(isUnmirroredBorder(borderType), lumErrBorder)
                                 .status();
    if (status != lumOk)
        return status;
    if (isScharr)
        draw<Scharr3>(call);
    else if (mask == lumMask3x3)
        draw<Sobel3>(call);
    else
        draw<Sobel5>(call);
    return lumOk;
}

}  // namespace
}  // namespace lumcv::canny

using namespace lumcv;

LumStatus lumiCannyBorderGetSize(LumiSize roiSize, LumiFilterType, LumiMaskSize maskSize, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).size(roiSize).require(isMask(maskSize), lumErrMaskSize);
    if (!checks.failed())
        *pBufferSize = static_cast<Lum32s>(canny::scratchBytes(roiSize, maskSize));
    return checks.status();
}

LumStatus lumiCannyBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                 LumiFilterType filterType, LumiMaskSize maskSize, LumiBorderType borderType,
                                 Lum8u borderValue, Lum32f lowThreshold, Lum32f highThreshold, LumiNorm norm,
                                 Lum8u* pBuffer)
{
    return canny::edges({{source(pSrc, srcStep), widened(roiSize), Border(borderType), borderValue},
                         destination(pDst, dstStep),
                         lowThreshold,
                         highThreshold,
                         norm,
                         pBuffer},
                        filterType, maskSize, borderType);
}
