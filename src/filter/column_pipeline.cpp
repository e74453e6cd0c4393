// Column pipelines: one kernel down the rows that the caller holds, into an image.
#include "filter/convolution.hpp"
#include "filter/pipeline_sizes.hpp"
#include "filter/store_row.hpp"
#include "filter/words.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/large_image.hpp"
#include "lumcv/filter.h"

namespace lumcv {
namespace {

/// The arguments that all column pipelines have: S is the element of the rows, D that of the image.
template <class S, class D>
struct ColumnCall
{
    S* const* ppSrc;
    Plane<D> dst;
    LumiSize roiSize;
    int channels;
    Lum32s kernelSize;
    Lum8u* buffer;
};

/// The documented order; the divisor is 1 where there is none. The buffer comes late, and a kernel size that leaves no
/// row is found after them.
template <class S, class D>
LumStatus check(const ColumnCall<S, D>& call, const void* pKernel, Lum32s divisor)
{
    auto checks = Checks{}.notNull(call.ppSrc, call.dst.pixels, pKernel).size(call.roiSize);
    const int64_t rows = int64_t{call.roiSize.height} + call.kernelSize - 1;
    for (int64_t r = 0; r < rows && !checks.failed(); ++r)
        checks.notNull(call.ppSrc[r]);
    return checks.require(call.kernelSize >= 1, lumErrSize)
        .step(call.dst, rowElements(call.roiSize.width, call.channels))
        .alignment(call.dst)
        .notNull(call.buffer)
        .require(divisor != 0, lumErrArgument)
        .status();
}

// Single precision. A word counts as it is: 65536 times the word under a coefficient 65536 times smaller is the same
// product to the last bit.

/// Coefficients of an integer kernel, each computed when it is used: for kernels with more taps than there is room for.
struct ComputedCoefficients
{
    const Lum16s* pKernel;
    Lum32f divisor;

    Lum32f operator[](int64_t j) const
    {
        return static_cast<Lum32f>(pKernel[j]) / divisor;
    }
};

struct ComputedTaps
{
    static constexpr bool isFixed = false;
    ComputedCoefficients t;
    int64_t k;

    int64_t count() const
    {
        return k;
    }
};

/// The rows under the taps: copied for a fixed count, so that their addresses stay in registers.
template <class S, class Taps>
struct RowsUnderTaps
{
    S* const* rows;

    explicit RowsUnderTaps(S* const* first) : rows(first) {}
};

template <class S, int k, class T>
struct RowsUnderTaps<S, FixedTaps<k, T>>
{
    const S* rows[k];

    explicit RowsUnderTaps(S* const* first)
    {
        for (int j = 0; j < k; ++j)
            rows[j] = first[j];
    }
};

template <class S, class D, class Taps>
[[gnu::flatten, gnu::noinline]] void convolve(RowsUnderTaps<S, Taps> under, Taps taps, D* dst, int64_t n, bool isLarge)
{
    storeRow<stepLanes<D, Taps>()>(dst, n, isLarge, [=](int64_t x, auto lanes) {
        return simd::saturateTo<D>(
            sumOfProducts<lanes>(taps, [=](int64_t j) { return simd::loadFloat<lanes>(under.rows[j] + x); }));
    });
}

template <class S, class D, class Taps>
void eachRow(const ColumnCall<S, D>& call, const Taps& taps)
{
    const bool isLarge = !std::is_same_v<D, Lum32f> && isLargeImage(int64_t{call.roiSize.width} * call.roiSize.height);
    const int64_t n = int64_t{call.roiSize.width} * call.channels;
    for (int64_t y = 0; y < call.roiSize.height; ++y)
        convolve(RowsUnderTaps<S, Taps>(call.ppSrc + y), taps, call.dst.row(y), n, isLarge);
    if (isLarge)
        simd::fence();
}

template <class S, class D>
LumStatus columnPipeline(const ColumnCall<S, D>& call, const Lum16s* pKernel, Lum32s divisor)
{
    const LumStatus status = check(call, pKernel, divisor);
    if (status != lumOk)
        return status;
    constexpr Lum32s mostStored = 256;
    const ComputedCoefficients computed{pKernel, static_cast<Lum32f>(divisor)};
    if (call.kernelSize > mostStored) {
        eachRow(call, ComputedTaps{computed, call.kernelSize});
        return lumOk;
    }
    Lum32f coefficients[mostStored];
    for (Lum32s j = 0; j < call.kernelSize; ++j)
        coefficients[j] = computed[j];
    withTaps(coefficients, call.kernelSize, [&](auto taps) { eachRow(call, taps); });
    return lumOk;
}

LumStatus columnPipeline(const ColumnCall<Lum32f, Lum32f>& call, const Lum32f* pKernel)
{
    const LumStatus status = check(call, pKernel, 1);
    if (status == lumOk)
        withTaps(pKernel, call.kernelSize, [&](auto taps) { eachRow(call, taps); });
    return status;
}

// 16-bit precision.

/// The whole groups of 16 pixels: each product keeps its low 16 bits, and the sums wrap around in them.
template <bool isScaled, class Taps>
[[gnu::flatten, gnu::noinline]] void convolveLowBody(RowsUnderTaps<Lum16s, Taps> under, Taps taps, Lum16s scale,
                                                     Lum16s* dst, int64_t n, bool isLarge)
{
    storeRow<2 * simd::registerLanes<Lum16s>>(dst, n, isLarge, [=](int64_t x, auto lanes) {
        auto sum = simd::load<lanes>(under.rows[0] + x) * simd::broadcast<lanes>(taps.t[0]);
        for (int64_t j = 1; j < taps.count(); ++j)
            sum = sum + simd::load<lanes>(under.rows[j] + x) * simd::broadcast<lanes>(taps.t[j]);
        if constexpr (isScaled)
            return simd::saturated(simd::product(sum, scale) >> lowScalePlaces);
        else
            return sum;
    });
}

/// The last pixels of a row: sums in 32 bits, of which the low 16 are stored, scaled or not.
void convolveLowTail(Lum16s* const* rows, const Lum16s* taps, int64_t k, Lum32s divisor, Lum32u scale, Lum16s* dst,
                     int64_t begin, int64_t end)
{
    for (int64_t x = begin; x < end; ++x) {
        Lum32u sum = 0;
        for (int64_t j = 0; j < k; ++j)
            sum += static_cast<Lum32u>(Lum32s{rows[j][x]} * Lum32s{taps[j]});
        const Lum32s result =
            divisor == 1 ? static_cast<Lum32s>(sum) : static_cast<Lum32s>(sum * scale) >> lowScalePlaces;
        dst[x] = static_cast<Lum16s>(static_cast<Lum16u>(result));
    }
}

LumStatus columnPipelineLow(const ColumnCall<Lum16s, Lum16s>& call, const Lum16s* pKernel, Lum32s divisor)
{
    const LumStatus status = check(call, pKernel, divisor);
    if (status != lumOk)
        return status;
    constexpr int64_t bodyPixels = 16;
    const int64_t width = call.roiSize.width;
    const int64_t body = call.channels * (width - width % bodyPixels);
    const Lum16s scale = lowScale(divisor);
    const bool isLarge = isLargeImage(width * call.roiSize.height);
    withTaps(pKernel, call.kernelSize, [&](auto taps) {
        for (int64_t y = 0; y < call.roiSize.height; ++y) {
            Lum16s* const* rows = call.ppSrc + y;
            Lum16s* const dst = call.dst.row(y);
            const RowsUnderTaps<Lum16s, decltype(taps)> under(rows);
            if (divisor == 1)
                convolveLowBody<false>(under, taps, 1, dst, body, isLarge);
            else
                convolveLowBody<true>(under, taps, scale, dst, body, isLarge);
            convolveLowTail(rows, pKernel, call.kernelSize, divisor, static_cast<Lum32u>(Lum32s{scale}), dst, body,
                            width * call.channels);
        }
    });
    if (isLarge)
        simd::fence();
    return lumOk;
}

template <class Scratch>
LumStatus columnPipelineSize(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize, int channels, Scratch scratch)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize).require(kernelSize >= 1, lumErrSize);
    return checks.failed() ? checks.status() : storeSize(scratch(roiSize.width, kernelSize, channels), pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_32f);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_32f);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_16u);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_16u);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 1, columnScratch_Low_16s);
}

LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return columnPipelineSize(roiSize, kernelSize, pBufferSize, 3, columnScratch_Low_16s);
}

LumStatus lumiFilterColumnPipeline_32f_C1R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum32f* pKernel, Lum32s kernelSize, Lum8u* pBuffer)
{
    const ColumnCall<Lum32f, Lum32f> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipeline(call, pKernel);
}

LumStatus lumiFilterColumnPipeline_32f_C3R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum32f* pKernel, Lum32s kernelSize, Lum8u* pBuffer)
{
    const ColumnCall<Lum32f, Lum32f> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipeline(call, pKernel);
}

LumStatus lumiFilterColumnPipeline_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum16s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum16s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16s8u_C1R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                             const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum8u> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16s8u_C3R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                             const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum8u> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16s8s_C1R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                             const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum8s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16s8s_C3R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                             const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum8s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16u_C1R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16u, Lum16u> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_16u_C3R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16u, Lum16u> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_Low_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                               const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum16s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 1, kernelSize, pBuffer};
    return columnPipelineLow(call, pKernel, divisor);
}

LumStatus lumiFilterColumnPipeline_Low_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                               const Lum16s* pKernel, Lum32s kernelSize, Lum32s divisor, Lum8u* pBuffer)
{
    const ColumnCall<Lum16s, Lum16s> call{ppSrc, destination(pDst, dstStep), dstRoiSize, 3, kernelSize, pBuffer};
    return columnPipelineLow(call, pKernel, divisor);
}
