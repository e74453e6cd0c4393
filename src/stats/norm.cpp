// Norms of an image over a mask.
#include "lumcv/stats.h"

#include "stats/norm.hpp"

using namespace lumcv;

LumStatus lumiNorm_Inf_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum64f* pValue)
{
    return norm<Sense::inf>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::inf>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::inf>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                 LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                 LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                              Lum64f* pValue)
{
    return norm<Sense::l1>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l1>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l1>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                              Lum64f* pValue)
{
    return norm<Sense::l2>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l2>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l2>(image(pSrc, srcStep), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l2>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l2>(channelOfThree(pSrc, srcStep, coi), source(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    // the only one with sums in single precision
    return normBy<Sense::l2, FloatSum<Power::square, Lum32f>>(roiSize, pValue, source(pMask, maskStep),
                                                              channelOfThree(pSrc, srcStep, coi));
}
