// Norms of the difference of two images over a mask, in relation to those of the second image.
#include "lumcv/stats.h"

#include "stats/norm.hpp"

using namespace lumcv;

LumStatus lumiNormRel_Inf_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_Inf_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_Inf_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_Inf_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_Inf_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                    const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_Inf_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                    const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::inf>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                    wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                 const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L1_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l1>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                 const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(wholeImage(pSrc1, src1Step), wholeImage(pSrc2, src2Step),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                  const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}

LumStatus lumiNormRel_L2_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                   const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi, Lum64f* pValue)
{
    return relativeNorm<Sense::l2>(channelOfInterest(pSrc1, src1Step, coi), channelOfInterest(pSrc2, src2Step, coi),
                                   wholeImage(pMask, maskStep), roiSize, pValue);
}
