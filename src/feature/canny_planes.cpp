// Canny edges from planes of derivatives.
#include "feature/canny_edges.hpp"
#include "frame/checks.hpp"
#include "lumcv/feature.h"

namespace lumcv::canny {
namespace {

/// Up to this width and height a pixel's place in the map fits 32 bits.
constexpr int64_t longestShortSide = 65532;

constexpr bool isShort(LumiSizeL size)
{
    return size.width <= longestShortSide && size.height <= longestShortSide;
}

/// Modulo 2^64.
constexpr uint64_t scratchBytes(LumiSizeL size)
{
    const auto width = static_cast<uint64_t>(size.width);
    const auto height = static_cast<uint64_t>(size.height);
    return 16 * width + (isShort(size) ? 5 : 9) * (width + 2) * (height + 2) + 160;
}

/// What the exports hand on.
template <class S>
struct PlaneCall
{
    Plane<const S> dx, dy;
    Plane<Lum8u> dst;
    LumiSizeL size;
    Lum32f low, high;
    LumiNorm norm;
    Lum8u* buffer;
};

template <class Measure, class Directions, class S, class High>
void drawEdgesOf(const PlaneCall<S>& call, Measure measure, Directions directions, High high)
{
    using Magnitude = typename Measure::Magnitude;
    const auto gradient = [&](int64_t y, Magnitude* magnitudes, Lum8u* codes) {
        measureGradients(measure, directions, call.dx.row(y), call.dy.row(y), call.size.width, magnitudes, codes);
    };
    if (isShort(call.size))
        drawEdges<Lum32u, Magnitude>(gradient, high, call.size, call.buffer, call.dst);
    else
        drawEdges<uint64_t, Magnitude>(gradient, high, call.size, call.buffer, call.dst);
}

void draw(const PlaneCall<Lum16s>& call)
{
    const Lum32s low = integerThreshold(call.low);
    const Lum32s high = integerThreshold(call.high);
    if (call.norm == lumNormL2)
        drawEdgesOf(call, IntegerSquares{low}, DoubleTangents{}, high);
    else if (low >= 1 && low <= WordSum::greatestLow) {
        const WordSum sum{static_cast<Lum16u>(low)};
        drawEdgesOf(call, sum, DoubleTangents{}, sum.high(high));
    } else
        drawEdgesOf(call, IntegerSum{low}, DoubleTangents{}, high);
}

void draw(const PlaneCall<Lum32f>& call)
{
    if (call.norm == lumNormL2)
        drawEdgesOf(call, FloatSquares{call.low}, SingleTangents{}, thresholdBits(call.high));
    else
        drawEdgesOf(call, FloatSum{call.low}, SingleTangents{}, thresholdBits(call.high));
}

/// Magnitudes of #lumNormL2 have no root, so its thresholds are squared.
template <class S>
PlaneCall<S> squared(PlaneCall<S> call)
{
    if (call.norm == lumNormL2) {
        call.low = call.low * call.low;
        call.high = call.high * call.high;
    }
    return call;
}

template <class S>
constexpr bool areThresholds(const PlaneCall<S>& call)
{
    return !(call.low < 0 || call.low > call.high);
}

template <class S>
LumStatus edges(const PlaneCall<S>& call)
{
    const auto width = static_cast<Lum32s>(call.size.width);
    const LumStatus status = Checks{}
                                 .notNull(call.dx.pixels, call.dy.pixels, call.dst.pixels, call.buffer)
                                 .size(call.size)
                                 .step(call.dx, width)
                                 .step(call.dy, width)
                                 .step(call.dst, width)
                                 .alignment(call.dx)
                                 .alignment(call.dy)
                                 .require(areThresholds(call), lumErrArgument)
                                 .status();
    if (status == lumOk)
        draw(call);
    return status;
}

template <class S>
LumStatus edges64(const PlaneCall<S>& call)
{
    // as documented, the 16s form tests the thresholds that it works with, the 32f form those given
    constexpr bool testsSquares = std::is_same_v<S, Lum16s>;
    const PlaneCall<S> ready = squared(call);
    const LumStatus status =
        Checks{}
            .notNull(call.dx.pixels, call.dy.pixels, call.dst.pixels, call.buffer)
            .within31Bits(call.size.width, call.size.height, call.dx.step, call.dy.step, call.dst.step)
            .size(call.size)
            .rowFits(call.dx, call.size.width, 1)
            .rowFits(call.dy, call.size.width, 1)
            .rowFits(call.dst, call.size.width, 1)
            .alignment(call.dx)
            .alignment(call.dy)
            .require(areThresholds(testsSquares ? ready : call), lumErrArgument)
            .require(call.norm == lumNormL1 || call.norm == lumNormL2, lumErrNorm)
            .status();
    if (status == lumOk)
        draw(ready);
    return status;
}

}  // namespace
}  // namespace lumcv::canny

using namespace lumcv;
using canny::PlaneCall;

LumStatus lumiCannyGetSize(LumiSize roiSize, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (!checks.failed())
        *pBufferSize = static_cast<Lum32s>(canny::scratchBytes(widened(roiSize)));
    return checks.status();
}

LumStatus lumiCannyGetSize_L(LumiSizeL roiSize, Lum64s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).within31Bits(roiSize.width, roiSize.height).size(roiSize);
    if (!checks.failed())
        *pBufferSize = static_cast<Lum64s>(canny::scratchBytes(roiSize));
    return checks.status();
}

LumStatus lumiCanny_16s8u_C1R(const Lum16s* pSrcDx, Lum32s srcDxStep, const Lum16s* pSrcDy, Lum32s srcDyStep,
                              Lum8u* pDstEdges, Lum32s dstEdgesStep, LumiSize roiSize, Lum32f lowThreshold,
                              Lum32f highThreshold, Lum8u* pBuffer)
{
    return canny::edges(PlaneCall<Lum16s>{source(pSrcDx, srcDxStep), source(pSrcDy, srcDyStep),
                                          destination(pDstEdges, dstEdgesStep), widened(roiSize), lowThreshold,
                                          highThreshold, lumNormL1, pBuffer});
}

LumStatus lumiCanny_32f8u_C1R(const Lum32f* pSrcDx, Lum32s srcDxStep, const Lum32f* pSrcDy, Lum32s srcDyStep,
                              Lum8u* pDstEdges, Lum32s dstEdgesStep, LumiSize roiSize, Lum32f lowThreshold,
                              Lum32f highThreshold, Lum8u* pBuffer)
{
    return canny::edges(PlaneCall<Lum32f>{source(pSrcDx, srcDxStep), source(pSrcDy, srcDyStep),
                                          destination(pDstEdges, dstEdgesStep), widened(roiSize), lowThreshold,
                                          highThreshold, lumNormL1, pBuffer});
}

LumStatus lumiCanny_16s8u_C1R_L(const Lum16s* pSrcDx, Lum64s srcDxStep, const Lum16s* pSrcDy, Lum64s srcDyStep,
                                Lum8u* pDstEdges, Lum64s dstEdgesStep, LumiSizeL roiSize, Lum32f lowThreshold,
                                Lum32f highThreshold, LumiNorm norm, Lum8u* pBuffer)
{
    return canny::edges64(PlaneCall<Lum16s>{source(pSrcDx, srcDxStep), source(pSrcDy, srcDyStep),
                                            destination(pDstEdges, dstEdgesStep), roiSize, lowThreshold, highThreshold,
                                            norm, pBuffer});
}

LumStatus lumiCanny_32f8u_C1R_L(const Lum32f* pSrcDx, Lum64s srcDxStep, const Lum32f* pSrcDy, Lum64s srcDyStep,
                                Lum8u* pDstEdges, Lum64s dstEdgesStep, LumiSizeL roiSize, Lum32f lowThreshold,
                                Lum32f highThreshold, LumiNorm norm, Lum8u* pBuffer)
{
    return canny::edges64(PlaneCall<Lum32f>{source(pSrcDx, srcDxStep), source(pSrcDy, srcDyStep),
                                            destination(pDstEdges, dstEdgesStep), roiSize, lowThreshold, highThreshold,
                                            norm, pBuffer});
}
