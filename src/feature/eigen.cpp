// The eigenvalues of the structure tensor: the smaller one, or both with their vectors.
#include "feature/short_window.hpp"
#include "filter/derivative.hpp"
#include "filter/pipeline_sizes.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/feature.h"

namespace lumcv {
namespace {

struct MinEigenvalue
{
    static constexpr int lanes = 16;
    Plane<Lum32f> dst;
    Lum32f factor;

    MinEigenvalue(Plane<Lum32f> destination, Lum32f scale, Lum32s) : dst(destination), factor(0.5f * scale) {}

    auto row(int64_t y, int64_t begin) const
    {
        return [to = dst.row(y) + begin, factor = factor]<int N>(int64_t x, simd::Vec<Lum32f, N> a,
                                                                 simd::Vec<Lum32f, N> b, simd::Vec<Lum32f, N> c) {
            const auto difference = a - c;
            const auto root = simd::root(difference * difference + simd::broadcast<N>(4.0f) * (b * b));
            simd::store(to + x, (a + c - root) * simd::broadcast<N>(factor));
        };
    }
};

struct EigenvaluesAndVectors
{
    /// More would not fit the registers.
    static constexpr int lanes = simd::registerLanes<Lum32f>;
    Plane<Lum32f> dst;
    Lum32f scale;
    Lum32f sense;

    EigenvaluesAndVectors(Plane<Lum32f> destination, Lum32f tensorScale, Lum32s kernType)
        : dst(destination), scale(tensorScale), sense(kernType == lumKernScharr ? 1.0f : -1.0f)
    {
    }

    auto row(int64_t y, int64_t begin) const
    {
        return [to = dst.row(y) + 6 * begin, scale = scale, sense = sense]<int N>(
                   int64_t x, simd::Vec<Lum32f, N> meanA, simd::Vec<Lum32f, N> meanB, simd::Vec<Lum32f, N> meanC) {
            const auto every = [](Lum32f value) { return simd::broadcast<N>(value); };
            const auto zero = every(0.0f);
            const auto one = every(1.0f);
            const auto a = every(scale) * meanA;
            const auto b = every(scale) * meanB;
            const auto c = every(scale) * meanC;
            const auto t = every(0.001f) * simd::max(a, c);
            const auto difference = a - c;
            const auto root = simd::root(difference * difference + every(4.0f) * (b * b));
            const auto lambda1 = every(0.5f) * (a + c + root);
            const auto lambda2 = every(0.5f) * (a + c - root);

            const auto p = every(sense) * b;
            const auto e1 = lambda1 - a;
            const auto e2 = lambda2 - a;
            const auto inverseLength = [=](auto e) {
                return one / simd::max(simd::root(p * p + e * e), every(1.1920929e-07f));
            };
            const auto n1 = inverseLength(e1);
            const auto n2 = inverseLength(e2);

            // 1 where the pixel carries vectors
            const auto carries = simd::select(simd::less(a * c - b * b, t), zero,
                                              simd::select(simd::less(simd::min(a, c), t), zero, one));
            const auto carried = [=](auto value) { return simd::select(simd::less(zero, carries), value, zero); };
            const auto vector = [=](auto ifFixed, auto value) {
                return carried(simd::select(simd::less(simd::magnitude(b), t), ifFixed, value));
            };
            simd::storeSixes(to + 6 * x, carried(lambda1), carried(lambda2), vector(zero, p * n1), vector(one, e1 * n1),
                             vector(one, p * n2), vector(zero, e2 * n2));
        };
    }
};

template <class S>
struct EigenCall
{
    Plane<const S> src;
    Plane<Lum32f> dst;
    LumiSize roiSize;
    LumiKernelType kernType;
    Lum32s apertureSize, avgWindow;
    LumiBorderType borderType;
    S borderValue;
    Lum8u* buffer;
};

template <class S>
inline constexpr LumDataType dataTypeOf = sizeof(S) == 1 ? lumType8u : lumType32f;

constexpr bool isThreeOrFive(Lum32s n)
{
    return n == 3 || n == 5;
}

/// With all sides in memory no mode is needed; but a mode that filters do not know is refused all the same.
constexpr bool isEigenBorder(LumiBorderType value)
{
    const bool needsNoMode = hasAllSidesInMemory(value) && (value & 15) != lumBorderNeutral;
    return static_cast<Lum32u>(value) <= largestFilterBorder && (isFilterMode(value) || needsNoMode);
}

template <class S>
LumStatus check(const EigenCall<S>& call)
{
    const bool isKernel = call.kernType >= lumKernSobel && call.kernType <= lumKernSobelNeg;
    const bool isAperture = call.apertureSize == 3 || (call.apertureSize == 5 && call.kernType != lumKernScharr);
    return Checks{}
        .notNull(call.src.pixels, call.dst.pixels, call.buffer)
        .size(call.roiSize)
        .step(call.src, call.roiSize.width)
        .step(call.dst, call.roiSize.width)
        .alignment(call.src)
        .alignment(call.dst)
        .require(isKernel, lumErrArgument)
        .require(isAperture, lumErrSize)
        .require(isThreeOrFive(call.avgWindow), lumErrSize)
        .require(isEigenBorder(call.borderType), lumErrBorder)
        .status();
}

template <class S>
Gradient<S> gradient(const EigenCall<S>& call)
{
    using G = Gradients<S>;
    if (call.kernType == lumKernScharr)
        return G::scharr3;
    if (call.kernType == lumKernSobel)
        return call.apertureSize == 3 ? G::sobel3 : G::sobel5;
    return call.apertureSize == 3 ? G::sobelNegated3 : G::sobelNegated5;
}

/// The bytes of the queries.
template <class S>
Bytes eigenScratch(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow)
{
    const Bytes derivatives = derivativeScratch(widened(roiSize), 11 * apertureSize, dataTypeOf<S>);
    const Bytes means = lowpassScratch_32f(roiSize.width, avgWindow);
    const Bytes planes = roundedUp(int64_t{roiSize.width}, 16) * Bytes{sizeof(S) == 1 ? 16 : 20} * roiSize.height;
    return (derivatives > means ? derivatives : means) + planes + 224;
}

template <class S>
LumStatus eigenSize(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow, Lum32s* pBufferSize)
{
    auto checks = Checks{}
                      .notNull(pBufferSize)
                      .size(roiSize)
                      .require(isThreeOrFive(apertureSize), lumErrSize)
                      .require(isThreeOrFive(avgWindow), lumErrSize);
    if (checks.failed())
        return checks.status();
    return storeSize(eigenScratch<S>(roiSize, apertureSize, avgWindow), pBufferSize);
}

template <class Measure, class S>
LumStatus eigen(const EigenCall<S>& call)
{
    const LumStatus status = check(call);
    if (status != lumOk)
        return status;
    Lum32f scale = 1.0f / static_cast<Lum32f>(255 << (2 * call.apertureSize - 2));
    if (call.kernType == lumKernScharr)
        scale = scale * 0.6125f;
    const LumiBorderType mode = isFilterMode(call.borderType) ? call.borderType & 15 : lumBorderMirror;
    const TensorImage<S> image{call.src,
                               widened(call.roiSize),
                               gradient(call),
                               Border(call.borderType),
                               call.borderValue,
                               Border(mode),
                               static_cast<Lum32f>(call.borderValue),
                               call.avgWindow};
    const Measure measure(call.dst, scale, call.kernType);
    LineSpace<Lum8u> space(call.buffer,
                           static_cast<int64_t>(eigenScratch<S>(call.roiSize, call.apertureSize, call.avgWindow)));
    if (call.avgWindow == 3)
        shortWindowMeans<3>(image, measure, 0.11111111f, space);
    else
        shortWindowMeans<5>(image, measure, 0.04f, space);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMinEigenValGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                               Lum32s* pBufferSize)
{
    return eigenSize<Lum32f>(roiSize, apertureSize, avgWindow, pBufferSize);
}

LumStatus lumiMinEigenValGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                 Lum32s* pBufferSize)
{
    return eigenSize<Lum8u>(roiSize, apertureSize, avgWindow, pBufferSize);
}

LumStatus lumiEigenValsVecsGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                 Lum32s* pBufferSize)
{
    return eigenSize<Lum32f>(roiSize, apertureSize, avgWindow, pBufferSize);
}

LumStatus lumiEigenValsVecsGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                   Lum32s* pBufferSize)
{
    return eigenSize<Lum8u>(roiSize, apertureSize, avgWindow, pBufferSize);
}

LumStatus lumiMinEigenVal_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiKernelType kernType, Lum32s apertureSize, Lum32s avgWindow, Lum8u* pBuffer)
{
    return eigen<MinEigenvalue>(EigenCall<Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, kernType,
                                                  apertureSize, avgWindow, lumBorderReplicate, 0, pBuffer});
}

LumStatus lumiMinEigenVal_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                    LumiKernelType kernType, Lum32s apertureSize, Lum32s avgWindow, Lum8u* pBuffer)
{
    return eigen<MinEigenvalue>(EigenCall<Lum8u>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, kernType,
                                                 apertureSize, avgWindow, lumBorderReplicate, 0, pBuffer});
}

LumStatus lumiMinEigenValBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                        Lum32s avgWindow, LumiBorderType borderType, Lum32f borderValue, Lum8u* pBuffer)
{
    return eigen<MinEigenvalue>(EigenCall<Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, kernType,
                                                  apertureSize, avgWindow, borderType, borderValue, pBuffer});
}

LumStatus lumiMinEigenValBorder_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                          Lum32s avgWindow, LumiBorderType borderType, Lum8u borderValue,
                                          Lum8u* pBuffer)
{
    return eigen<MinEigenvalue>(EigenCall<Lum8u>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize, kernType,
                                                 apertureSize, avgWindow, borderType, borderValue, pBuffer});
}

LumStatus lumiEigenValsVecs_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                    LumiKernelType kernType, Lum32s apertureSize, Lum32s avgWindow, Lum8u* pBuffer)
{
    return eigen<EigenvaluesAndVectors>(EigenCall<Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize,
                                                          kernType, apertureSize, avgWindow, lumBorderReplicate, 0,
                                                          pBuffer});
}

LumStatus lumiEigenValsVecs_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                      LumiKernelType kernType, Lum32s apertureSize, Lum32s avgWindow, Lum8u* pBuffer)
{
    return eigen<EigenvaluesAndVectors>(EigenCall<Lum8u>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize,
                                                         kernType, apertureSize, avgWindow, lumBorderReplicate, 0,
                                                         pBuffer});
}

LumStatus lumiEigenValsVecsBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                          Lum32s avgWindow, LumiBorderType borderType, Lum32f borderValue,
                                          Lum8u* pBuffer)
{
    return eigen<EigenvaluesAndVectors>(EigenCall<Lum32f>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize,
                                                          kernType, apertureSize, avgWindow, borderType, borderValue,
                                                          pBuffer});
}

LumStatus lumiEigenValsVecsBorder_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                            Lum32s avgWindow, LumiBorderType borderType, Lum8u borderValue,
                                            Lum8u* pBuffer)
{
    return eigen<EigenvaluesAndVectors>(EigenCall<Lum8u>{source(pSrc, srcStep), destination(pDst, dstStep), roiSize,
                                                         kernType, apertureSize, avgWindow, borderType, borderValue,
                                                         pBuffer});
}
