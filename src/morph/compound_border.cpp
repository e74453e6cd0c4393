// Compound operations with a record of lumiMorphAdvInit.
#include "morph/compound.hpp"
#include "morph/compound_record.hpp"
#include "morph/pass_checks.hpp"

namespace lumcv {
namespace {

/// What all of them test before the border.
template <int channels, class T>
Checks argumentChecks(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType,
                      const T* borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const Lum32s elements = rowElements(roiSize.width, channels);
    return Checks{}
        .notNull(src.pixels, dst.pixels, pSpec, pBuffer)
        .require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
        .size(roiSize)
        .step(src, elements)
        .step(dst, elements)
        .alignment(src)
        .alignment(dst);
}

Element elementAt(const void* record)
{
    return Element(*static_cast<const LumiMorphMaskRecord*>(record));
}

template <class Compound, int channels, class T>
LumStatus run(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType, const T* borderValue,
              const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const CompoundBorders borders = ordinaryBorders(borderType, isMorphologyMode(borderType));
    const LumStatus status = argumentChecks<channels>(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer)
                                 .require(borders.isAllowed, lumErrBorder)
                                 .status();
    if (status != lumOk)
        return status;
    const auto& record = *alignedIn<LumiMorphCompoundSpec>(pSpec);
    const Stage first{elementAt(record.pFirst), borders.first};
    const Stage second{elementAt(record.pSecond), borders.second};
    compound<typename Compound::Order>(first, second, channels, src, dst, widened(roiSize), Growth{}, borderValue,
                                       Compound::finish, std::is_same_v<T, Lum32f> ? Negative::zero : Negative::kept,
                                       pBuffer);
    return lumOk;
}

/// Both passes read the source with the same border and the caller's element.
template <int channels, class T>
LumStatus gradientOf(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType,
                     const T* borderValue, const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    const LumStatus status =
        argumentChecks<channels>(src, dst, roiSize, borderType, borderValue, pSpec, pBuffer)
            .require(isGradientBorder(borderType, isMorphologyMode(borderType)), lumErrBorder)
            .require(!PassRules<Maximum, T, channels>::refusesInPlace || src.pixels != dst.pixels, lumErrInPlace)
            .status();
    if (status != lumOk)
        return status;
    const Stage stage{elementAt(alignedIn<LumiMorphCompoundSpec>(pSpec)->pFirst), Border(borderType)};
    gradient(stage, stage, channels, src, dst, widened(roiSize), borderValue,
             std::is_same_v<T, Lum32f> ? Negative::zero : Negative::kept, pBuffer);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphOpenBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, Lum8u borderValue, const LumiMorphCompoundSpec* pSpec,
                                     Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum8u borderValue[3],
                                     const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const Lum8u borderValue[4],
                                     const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphOpenBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Open, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                        pBuffer);
}

LumStatus lumiMorphCloseBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                      LumiBorderType borderType, Lum8u borderValue, const LumiMorphCompoundSpec* pSpec,
                                      Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                      LumiBorderType borderType, const Lum8u borderValue[3],
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                      LumiBorderType borderType, const Lum8u borderValue[4],
                                      const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphCloseBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Close, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphTophatBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                       LumiBorderType borderType, Lum8u borderValue, const LumiMorphCompoundSpec* pSpec,
                                       Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                       LumiBorderType borderType, const Lum8u borderValue[3],
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                       LumiBorderType borderType, const Lum8u borderValue[4],
                                       const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                        const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                        const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                        const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                        const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphTophatBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                        LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                        const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Tophat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                          pBuffer);
}

LumStatus lumiMorphBlackhatBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphBlackhatBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return run<Blackhat, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                            pBuffer);
}

LumStatus lumiMorphGradientBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                         const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}

LumStatus lumiMorphGradientBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                          LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                          const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer)
{
    return gradientOf<4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                         pBuffer);
}
