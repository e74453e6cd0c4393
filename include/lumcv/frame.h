/**
 * @file
 * @brief The version of the library, accumulation of frames, and absolute differences.
 */
#ifndef LUMCV_FRAME_H
#define LUMCV_FRAME_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

LUMCV_API const LumLibraryVersion* lumcvGetLibVersion(void);

LUMCV_API LumStatus lumiAdd_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                       LumiSize roiSize);
LUMCV_API LumStatus lumiAdd_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                        LumiSize roiSize);
LUMCV_API LumStatus lumiAdd_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                        Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAdd_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAdd_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

LUMCV_API LumStatus lumiAddSquare_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize);
LUMCV_API LumStatus lumiAddSquare_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                              LumiSize roiSize);
LUMCV_API LumStatus lumiAddSquare_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                           LumiSize roiSize);
LUMCV_API LumStatus lumiAddSquare_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddSquare_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                               Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddSquare_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

LUMCV_API LumStatus lumiAddProduct_8u32f_C1IR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddProduct_16u32f_C1IR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                               Lum32s src2Step, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddProduct_32f_C1IR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddProduct_8u32f_C1IMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                               const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                               LumiSize roiSize);
LUMCV_API LumStatus lumiAddProduct_16u32f_C1IMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                                Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst,
                                                Lum32s srcDstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAddProduct_32f_C1IMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize);

LUMCV_API LumStatus lumiAddWeighted_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                               LumiSize roiSize, Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                                LumiSize roiSize, Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                                Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask,
                                                 Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize,
                                                 Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha);
LUMCV_API LumStatus lumiAddWeighted_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, Lum32f alpha);

LUMCV_API LumStatus lumiAbsDiff_8u_C1R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                       Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAbsDiff_8u_C3R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                       Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAbsDiff_16u_C1R(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                        Lum16u* pDst, Lum32s dstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAbsDiff_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                        Lum32f* pDst, Lum32s dstStep, LumiSize roiSize);
LUMCV_API LumStatus lumiAbsDiffC_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                        LumiSize roiSize, Lum32s value);
LUMCV_API LumStatus lumiAbsDiffC_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, Lum32s value);
LUMCV_API LumStatus lumiAbsDiffC_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                         LumiSize roiSize, Lum32f value);

#ifdef __cplusplus
}
#endif

#endif
