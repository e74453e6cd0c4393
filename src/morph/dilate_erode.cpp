// Dilation and erosion with a record of lumiMorphologyBorderInit.
#include "morph/pass.hpp"
#include "morph/pass_checks.hpp"

namespace lumcv {
namespace {

template <class Operation, int channels, class T>
LumStatus apply(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType, const T* borderValue,
                const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    using Rules = PassRules<Operation, T, channels>;
    const LumiBorderType effective = Rules::heedsStageFlags ? withStageFlags(borderType) : borderType;
    const Lum32s elements = rowElements(roiSize.width, channels);
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels, pSpec, pBuffer)
                                 .require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
                                 .size(roiSize)
                                 .step(src, elements)
                                 .step(dst, elements)
                                 .alignment(src)
                                 .alignment(dst)
                                 .require(isMorphologyRange(borderType), lumErrBorder)
                                 .require(effective == lumBorderInMem || isMorphologyMode(effective), lumErrBorder)
                                 .require(!Rules::refusesInPlace || src.pixels != dst.pixels, lumErrInPlace)
                                 .status();
    if (status == lumOk)
        pass<Operation>(Element(*alignedIn<LumiMorphMaskRecord>(pSpec)), channels, src, dst, widened(roiSize),
                        Border(effective), borderValue, pBuffer);
    return status;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiDilateBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, Lum8u borderValue, const LumiMorphMaskRecord* pSpec,
                                  Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilateBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, const Lum8u borderValue[3],
                                  const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Maximum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiDilateBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, const Lum8u borderValue[4],
                                  const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Maximum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiDilateBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiBorderType borderType, Lum16u borderValue, const LumiMorphMaskRecord* pSpec,
                                   Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilateBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiBorderType borderType, Lum16s borderValue, const LumiMorphMaskRecord* pSpec,
                                   Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilateBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiBorderType borderType, Lum32f borderValue, const LumiMorphMaskRecord* pSpec,
                                   Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilateBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiBorderType borderType, const Lum32f borderValue[3],
                                   const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Maximum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiDilateBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                   LumiBorderType borderType, const Lum32f borderValue[4],
                                   const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Maximum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiErodeBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                 LumiBorderType borderType, Lum8u borderValue, const LumiMorphMaskRecord* pSpec,
                                 Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErodeBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                 LumiBorderType borderType, const Lum8u borderValue[3],
                                 const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Minimum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiErodeBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                 LumiBorderType borderType, const Lum8u borderValue[4],
                                 const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Minimum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiErodeBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, Lum16u borderValue, const LumiMorphMaskRecord* pSpec,
                                  Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErodeBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, Lum16s borderValue, const LumiMorphMaskRecord* pSpec,
                                  Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErodeBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, Lum32f borderValue, const LumiMorphMaskRecord* pSpec,
                                  Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, &borderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErodeBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, const Lum32f borderValue[3],
                                  const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Minimum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}

LumStatus lumiErodeBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                  LumiBorderType borderType, const Lum32f borderValue[4],
                                  const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer)
{
    return apply<Minimum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, borderValue, pSpec,
                             pBuffer);
}
