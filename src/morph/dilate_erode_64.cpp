// Dilation and erosion with a record of lumiDilateInit_L or lumiErodeInit_L.
#include "morph/bit_record.hpp"
#include "morph/pass.hpp"
#include "morph/pass_checks.hpp"

namespace lumcv {
namespace {

template <class Operation, int channels, class T>
LumStatus apply(Plane<const T> src, Plane<T> dst, LumiSizeL roiSize, LumiBorderType borderType, const T* borderValue,
                const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer)
{
    using Rules = PassRules<Operation, T, channels>;
    const LumiBorderType effective = withStageFlags(borderType);
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels, pSpec, pBuffer)
                                 .size(roiSize)
                                 .within31Bits(roiSize.width, roiSize.height)
                                 .rowFits(src, roiSize.width, channels)
                                 .rowFits(dst, roiSize.width, channels)
                                 .alignment(src)
                                 .alignment(dst)
                                 .require(isMorphologyRange(borderType), lumErrBorder)
                                 .require(effective == lumBorderInMem || isMorphologyMode(effective), lumErrBorder)
                                 .require(!Rules::refusesInPlace || src.pixels != dst.pixels, lumErrInPlace)
                                 .then(Rules::limits(roiSize, src.step, dst.step))
                                 .require(hasBorderValue(borderType, borderValue), lumErrNullPointer)
                                 .status();
    if (status == lumOk)
        pass<Operation>(Element(*alignedIn<LumiDilateErodeSpec>(pSpec)->pElement), channels, src, dst, roiSize,
                        Border(effective), borderValue, pBuffer);
    return status;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiDilate_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Maximum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Maximum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                               LumiBorderType borderType, const Lum16u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                               Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep, LumiSizeL roiSize,
                               LumiBorderType borderType, const Lum16s* pBorderValue, const LumiDilateErodeSpec* pSpec,
                               Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                               LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                               Lum8u* pBuffer)
{
    return apply<Maximum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                               LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                               Lum8u* pBuffer)
{
    return apply<Maximum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiDilate_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                               LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                               Lum8u* pBuffer)
{
    return apply<Maximum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                             LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                             Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                             LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                             Lum8u* pBuffer)
{
    return apply<Minimum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                             LumiBorderType borderType, const Lum8u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                             Lum8u* pBuffer)
{
    return apply<Minimum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum16u* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum16s* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Minimum, 1>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Minimum, 3>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}

LumStatus lumiErode_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep, LumiSizeL roiSize,
                              LumiBorderType borderType, const Lum32f* pBorderValue, const LumiDilateErodeSpec* pSpec,
                              Lum8u* pBuffer)
{
    return apply<Minimum, 4>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pBorderValue,
                             pSpec, pBuffer);
}
