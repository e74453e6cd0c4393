// Compound operations with a record of lumiMorphInit_L.
#include "morph/compound.hpp"
#include "morph/compound_record.hpp"
#include "morph/pass_checks.hpp"

namespace lumcv {
namespace {

CompoundBorders bordersOf(LumiBorderType value)
{
    return largeBorders(value, isMorphologyMode(value));
}

template <int channels, class T>
Checks argumentChecks(Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType,
                      const T* borderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return Checks{}
        .notNull(src.pixels, dst.pixels, pSpec, pBuffer)
        .require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
        .size(roiSize)
        .within31Bits(roiSize.width, roiSize.height)
        .rowFits(src, roiSize.width, channels)
        .rowFits(dst, roiSize.width, channels)
        .alignment(src)
        .alignment(dst)
        .require(bordersOf(borderType).isAllowed, lumErrBorder);
}

Element elementOf(const LumiDilateErodeSpec* pSpec)
{
    return Element(*pSpec->pElement);
}

template <class Compound, int channels, class T>
LumStatus run(Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType, const T* borderValue,
              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    const auto checks = argumentChecks<channels>(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer);
    if (checks.failed())
        return checks.status();
    const auto& record = *alignedIn<LumiMorphCompoundSpecL>(pSpec);
    const CompoundBorders borders = bordersOf(borderType);
    const Stage first{elementOf(record.pFirst), borders.first};
    const Stage second{elementOf(record.pSecond), borders.second};
    const Element& element = second.element;
    Growth growth;
    if (!element.copies())
        growth = Growth{element.anchorX, element.width - 1 - element.anchorX, element.anchorY,
                        element.height - 1 - element.anchorY}
                     .where(second.border);

    const LumiSizeL grown = growth.grown(roiSize);
    const int64_t step = intermediateStep<T>(grown.width, channels);
    const LumStatus status =
        Checks{}
            .then(PassRules<typename Compound::Order::First, T, channels>::limits(grown, src.step, step))
            .then(PassRules<typename Compound::Order::Second, T, channels>::limits(roiSize, step, dst.step))
            .status();
    if (status == lumOk)
        compound<typename Compound::Order>(first, second, channels, src, dst, roiSize, growth, borderValue,
                                           Compound::finish, record.keepNegative ? Negative::kept : Negative::zero,
                                           pBuffer);
    return status;
}

/// Both passes read the source. The record has no say in what becomes of negative differences.
template <int channels, class T>
LumStatus gradientOf(Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType,
                     const T* borderValue, const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    const auto checks = argumentChecks<channels>(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer);
    if (checks.failed())
        return checks.status();
    const int64_t step = intermediateStep<T>(roiSize.width, channels);
    const LumStatus status =
        Checks{}
            .require(!PassRules<Maximum, T, channels>::refusesInPlace || src.pixels != dst.pixels, lumErrInPlace)
            .then(PassRules<Maximum, T, channels>::limits(roiSize, src.step, dst.step))
            .then(PassRules<Minimum, T, channels>::limits(roiSize, src.step, step))
            .status();
    if (status != lumOk)
        return status;
    const auto& record = *alignedIn<LumiMorphCompoundSpecL>(pSpec);
    const CompoundBorders borders = bordersOf(borderType);
    gradient(Stage{elementOf(record.pFirst), borders.first}, Stage{elementOf(record.pSecond), borders.second}, channels,
             src, dst, roiSize, borderValue, std::is_same_v<T, Lum32f> ? Negative::zero : Negative::kept, pBuffer);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphOpen_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                 LumiBorderType borderType, const Lum8u* pBorderValue,
                                 const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                 LumiBorderType borderType, const Lum8u* pBorderValue,
                                 const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                 LumiBorderType borderType, const Lum8u* pBorderValue,
                                 const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum16u* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum16s* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum32f* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum32f* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpen_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum32f* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Open, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphClose_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum8u* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum8u* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                  LumiBorderType borderType, const Lum8u* pBorderValue,
                                  const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum16u* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum16s* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum32f* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum32f* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphClose_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum32f* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Close, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphTophat_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum8u* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum8u* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                   LumiBorderType borderType, const Lum8u* pBorderValue,
                                   const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                    LumiBorderType borderType, const Lum16u* pBorderValue,
                                    const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                    LumiBorderType borderType, const Lum16s* pBorderValue,
                                    const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                    LumiBorderType borderType, const Lum32f* pBorderValue,
                                    const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                    LumiBorderType borderType, const Lum32f* pBorderValue,
                                    const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophat_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                    LumiBorderType borderType, const Lum32f* pBorderValue,
                                    const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphBlackhat_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhat_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphGradient_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                                     LumiBorderType borderType, const Lum8u* pBorderValue,
                                     const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradient_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                      LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                      const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer)
{
    return gradientOf<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue, pSpec,
                         pBuffer);
}
