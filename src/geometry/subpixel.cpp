// Subpixel copies of rectangles that lie in the source with all their neighbours.
#include "frame/checks.hpp"
#include "geometry/subpixel_kernels.hpp"
#include "lumcv/geometry.h"

namespace lumcv {
namespace {

template <class S, class D, class... Parameters>
LumStatus copySubpix(Plane<const S> src, Plane<D> dst, LumiSize size, Lum32f dx, Lum32f dy, Parameters... parameters)
{
    const LumStatus status = Checks{}
                                 .notNull(src.pixels, dst.pixels)
                                 .size(size)
                                 .step(src, size.width)
                                 .step(dst, size.width)
                                 .alignment(src)
                                 .alignment(dst)
                                 .status();
    if (status != lumOk)
        return status;
    const auto kernel = subpixel::kernelOf<S, D>(subpixel::fractionOf(dx), subpixel::fractionOf(dy), parameters...);
    subpixel::copy(kernel, src, dst, size.width, size.height);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiCopySubpix_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                Lum32f dx, Lum32f dy)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy);
}

LumStatus lumiCopySubpix_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep, LumiSize roiSize,
                                 Lum32f dx, Lum32f dy)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy);
}

LumStatus lumiCopySubpix_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                 Lum32f dx, Lum32f dy)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy);
}

LumStatus lumiCopySubpix_8u16u_C1R_Sfs(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                       LumiSize roiSize, Lum32f dx, Lum32f dy, Lum32s scaleFactor)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy, scaleFactor);
}

LumStatus lumiCopySubpix_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                   Lum32f dx, Lum32f dy)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy);
}

LumStatus lumiCopySubpix_16u32f_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                    Lum32f dx, Lum32f dy)
{
    return copySubpix(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, dx, dy);
}
