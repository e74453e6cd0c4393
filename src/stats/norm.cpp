// Norms of an image over a mask.
#include "lumcv/stats.h"

#include "stats/norm.hpp"

using namespace lumcv;

LumStatus lumiNorm_Inf_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum64f* pValue)
{
    return norm<Sense::inf>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::inf>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::inf>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                 LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_Inf_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                 LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::inf>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                              Lum64f* pValue)
{
    return norm<Sense::l1>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l1>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l1>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L1_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l1>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                              Lum64f* pValue)
{
    return norm<Sense::l2>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l2>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                               LumiSize roiSize, Lum64f* pValue)
{
    return norm<Sense::l2>(wholeImage(pSrc, srcStep), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                               Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l2>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return norm<Sense::l2>(channelOfInterest(pSrc, srcStep, coi), wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNorm_L2_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    // the only one with sums in single precision
    return normBy<Sense::l2, FloatSum<true, Lum32f>>(roiSize, pValue, wholeImage(pMask, maskStep),
                                                     channelOfInterest(pSrc, srcStep, coi));
}
