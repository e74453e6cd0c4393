// Row pipelines: one kernel along each row of an image, into rows that the caller holds.
//
// A row is worked through in pieces. A piece whose pixels and neighbours all lie in memory is read in place if it needs
// no conversion; any other is first laid out as a line: converted, with its border synthesised at the ends.
#include "filter/convolution.hpp"
#include "filter/extended_row.hpp"
#include "filter/line_space.hpp"
#include "filter/pipeline_sizes.hpp"
#include "filter/store_row.hpp"
#include "filter/words.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/filter.h"

namespace lumcv {
namespace {

/// The arguments that all row pipelines have, with what T is in their names: the source's element and the row's.
template <class S, class D, int channels>
struct RowCall
{
    Plane<const S> src;
    D* const* ppDst;
    LumiSize roiSize;
    Lum32s kernelSize, xAnchor;
    LumiBorderType borderType;
    const S* borderValue;
    Lum8u* buffer;
    RowScratch scratch;
};

/// The documented order. The divisor (1 where there is none) is tested before the border; 8u sources have it the other
/// way round.
template <class S, class D, int channels>
LumStatus check(const RowCall<S, D, channels>& call, const void* pKernel, Lum32s divisor)
{
    auto checks = Checks{}.notNull(call.src.pixels, call.ppDst, pKernel, call.buffer).size(call.roiSize);
    for (Lum32s y = 0; y < call.roiSize.height && !checks.failed(); ++y)
        checks.notNull(call.ppDst[y]);
    checks.require(call.kernelSize >= 1, lumErrSize)
        .require(static_cast<Lum32u>(call.xAnchor) < static_cast<Lum32u>(call.kernelSize), lumErrAnchor)
        .step(call.src, rowElements(call.roiSize.width, channels))
        .alignment(call.src);
    if constexpr (sizeof(S) == 1)
        checks.require(isFilterBorder(call.borderType), lumErrBorder).require(divisor != 0, lumErrArgument);
    else
        checks.require(divisor != 0, lumErrArgument).require(isFilterBorder(call.borderType), lumErrBorder);
    return checks.require(hasBorderValue(call.borderType, call.borderValue), lumErrNullPointer).status();
}

/// Calls piece(line, dst, n) for each piece of each row: n elements are to be stored at dst, and the first tap of the
/// first of them falls on line[0].
template <class Element, class S, class D, int channels, class Piece>
void eachPiece(const RowCall<S, D, channels>& call, LineSpace<Element>& space, Piece piece)
{
    const int64_t width = call.roiSize.width;
    const int64_t before = call.xAnchor;
    const int64_t neighbours = call.kernelSize - 1;
    const int64_t longest = space.size() / channels - neighbours;
    for (int64_t y = 0; y < call.roiSize.height; ++y) {
        const ExtendedRow<S, channels> row{call.src.row(y), width, Border(call.borderType), call.borderValue};
        for (int64_t x = 0; x < width; x += longest) {
            const int64_t n = width - x < longest ? width - x : longest;
            const int64_t begin = x - before;
            const int64_t end = begin + n + neighbours;
            const Element* line = space.data();
            if (std::is_same_v<Element, S> && row.isInMemory(begin, end))
                line = reinterpret_cast<const Element*>(row.row + begin * channels);
            else
                row.read(begin, end, space.data());
            piece(line, call.ppDst[y] + x * channels, n * channels);
        }
    }
}

// Single precision.

template <class D, class Taps, class Channels>
[[gnu::flatten, gnu::noinline]] void convolve(RowConvolution<Taps, Channels> along, D* dst, int64_t n)
{
    storeRow<stepLanes<D, Taps>()>(dst, n, false,
                                   [=](int64_t x, auto lanes) { return simd::saturateTo<D>(along(x, lanes)); });
}

template <class S, class D, int channels, class K>
LumStatus rowPipeline(const RowCall<S, D, channels>& call, const K* pKernel, Lum32s divisor = 1)
{
    const LumStatus status = check(call, pKernel, divisor);
    if (status != lumOk)
        return status;
    const int64_t k = call.kernelSize;
    auto* const coefficients = alignedIn<Lum32f>(call.buffer);
    const Lum32f scale = 1.0f / static_cast<Lum32f>(divisor);
    for (int64_t i = 0; i < k; ++i)
        coefficients[i] = static_cast<Lum32f>(pKernel[i]) * scale;

    auto* const rest = reinterpret_cast<Lum8u*>(coefficients + k);
    LineSpace<Lum32f> space(rest, call.scratch.bytes(k) - (rest - call.buffer));
    withTaps(coefficients, k, [&](auto taps) {
        eachPiece(call, space, [&](const Lum32f* line, D* dst, int64_t n) {
            convolve(RowConvolution<decltype(taps), ChannelCount<channels>>{taps, line, channelCount<channels>()}, dst,
                     n);
        });
    });
    return lumOk;
}

// 16-bit precision.

/// Sums of products modulo 2^32, two taps at a time.
template <int channels, bool isScaled, class Taps>
[[gnu::flatten, gnu::noinline]] void convolveLow(const Lum16s* line, Taps taps, Lum32s scale, Lum16s* dst, int64_t n,
                                                 bool isLarge)
{
    storeRow<2 * simd::registerLanes<Lum16s>>(dst, n, isLarge, [=](int64_t x, auto lanes) {
        const Lum16s* s = line + x;
        const auto tap = [=](int64_t i) { return simd::load<lanes>(s + i * channels); };
        const int64_t k = taps.count();
        auto sums = simd::product(tap(0), taps.t[0]);
        int64_t i = 1;
        for (; i + 1 < k; i += 2)
            sums = sums + simd::products(tap(i), taps.t[i], tap(i + 1), taps.t[i + 1]);
        if (i < k)
            sums = sums + simd::product(tap(i), taps.t[i]);
        if constexpr (isScaled)
            sums = sums * scale >> lowScalePlaces;
        return simd::saturated(sums);
    });
}

template <int channels>
LumStatus rowPipelineLow(const RowCall<Lum16s, Lum16s, channels>& call, const Lum16s* pKernel, Lum32s divisor)
{
    const LumStatus status = check(call, pKernel, divisor);
    if (status != lumOk)
        return status;
    const int64_t k = call.kernelSize;
    // the smoothing kernel for which rows of a large image bypass the caches
    constexpr int64_t smallestStreamed = 0x80001;
    const bool isLarge = k == 5 && pKernel[0] == pKernel[4] && pKernel[1] == pKernel[3] && call.xAnchor == 2 &&
                         divisor == 1 && int64_t{call.roiSize.width} * call.roiSize.height >= smallestStreamed;
    LineSpace<Lum16s> space(call.buffer, call.scratch.bytes(k));
    withTaps(pKernel, k, [&](auto taps) {
        eachPiece(call, space, [&](const Lum16s* line, Lum16s* dst, int64_t n) {
            if (divisor == 1)
                convolveLow<channels, false>(line, taps, 1, dst, n, isLarge);
            else
                convolveLow<channels, true>(line, taps, lowScale(divisor), dst, n, isLarge);
        });
    });
    if (isLarge)
        simd::fence();
    return lumOk;
}

LumStatus rowPipelineSize(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize, RowScratch scratch)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize).require(kernelSize >= 1, lumErrSize);
    return checks.failed() ? checks.status() : storeSize(scratch.bytes(kernelSize), pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_32f_C1);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_32f_C3);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_16s_C1);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_16s_C3);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_16u_C1);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_16u_C3);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_8u16s_C1);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_8u16s_C3);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_Low_16s_C1);
}

LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize, Lum32s* pBufferSize)
{
    return rowPipelineSize(roiSize, kernelSize, pBufferSize, rowScratch_Low_16s_C3);
}

LumStatus lumiFilterRowBorderPipeline_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                              LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, Lum32f borderValue,
                                              Lum8u* pBuffer)
{
    const RowCall<Lum32f, Lum32f, 1> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        &borderValue,          pBuffer, rowScratch_32f_C1};
    return rowPipeline(call, pKernel);
}

LumStatus lumiFilterRowBorderPipeline_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                              LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, const Lum32f borderValue[3],
                                              Lum8u* pBuffer)
{
    const RowCall<Lum32f, Lum32f, 3> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        borderValue,           pBuffer, rowScratch_32f_C3};
    return rowPipeline(call, pKernel);
}

LumStatus lumiFilterRowBorderPipeline_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                              LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, Lum16s borderValue,
                                              Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16s, Lum16s, 1> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        &borderValue,          pBuffer, rowScratch_16s_C1};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                              LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, const Lum16s borderValue[3],
                                              Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16s, Lum16s, 3> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        borderValue,           pBuffer, rowScratch_16s_C3};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                              LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, Lum16u borderValue,
                                              Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16u, Lum16u, 1> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        &borderValue,          pBuffer, rowScratch_16u_C1};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                              LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                              Lum32s xAnchor, LumiBorderType borderType, const Lum16u borderValue[3],
                                              Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16u, Lum16u, 3> call{
        source(pSrc, srcStep), ppDst,   roiSize,          kernelSize, xAnchor, borderType,
        borderValue,           pBuffer, rowScratch_16u_C3};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                Lum32s xAnchor, LumiBorderType borderType, Lum8u borderValue,
                                                Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum8u, Lum16s, 1> call{
        source(pSrc, srcStep), ppDst, roiSize, kernelSize, xAnchor, borderType, &borderValue, pBuffer,
        rowScratch_8u16s_C1};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_8u16s_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                Lum32s xAnchor, LumiBorderType borderType, const Lum8u borderValue[3],
                                                Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum8u, Lum16s, 3> call{
        source(pSrc, srcStep), ppDst, roiSize, kernelSize, xAnchor, borderType, borderValue, pBuffer,
        rowScratch_8u16s_C3};
    return rowPipeline(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_Low_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                  LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                  Lum32s xAnchor, LumiBorderType borderType, Lum16s borderValue,
                                                  Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16s, Lum16s, 1> call{
        source(pSrc, srcStep), ppDst, roiSize, kernelSize, xAnchor, borderType, &borderValue, pBuffer,
        rowScratch_Low_16s_C1};
    return rowPipelineLow(call, pKernel, divisor);
}

LumStatus lumiFilterRowBorderPipeline_Low_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                  LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                  Lum32s xAnchor, LumiBorderType borderType,
                                                  const Lum16s borderValue[3], Lum32s divisor, Lum8u* pBuffer)
{
    const RowCall<Lum16s, Lum16s, 3> call{
        source(pSrc, srcStep), ppDst, roiSize, kernelSize, xAnchor, borderType, borderValue, pBuffer,
        rowScratch_Low_16s_C3};
    return rowPipelineLow(call, pKernel, divisor);
}
