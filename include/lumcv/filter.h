/**
 * @file
 * @brief Linear filters: row and column pipelines, Gaussian.
 */
#ifndef LUMCV_FILTER_H
#define LUMCV_FILTER_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A Gaussian filter, laid in the caller's block by lumiFilterGaussianInit or lumiFilterGaussianInit_L. */
typedef struct LumFilterGaussianSpec LumFilterGaussianSpec;

LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                       Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                       Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                         Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                         Lum32s* pBufferSize);

LUMCV_API LumStatus lumiFilterRowBorderPipeline_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                                        LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum32f borderValue,
                                                        Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                                        LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum32f borderValue[3], Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum16s borderValue,
                                                        Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum16s borderValue[3], Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum16u borderValue,
                                                        Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum16u borderValue[3], Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                          LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                          Lum32s xAnchor, LumiBorderType borderType, Lum8u borderValue,
                                                          Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_8u16s_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                          LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                          Lum32s xAnchor, LumiBorderType borderType,
                                                          const Lum8u borderValue[3], Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                            LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                            Lum32s xAnchor, LumiBorderType borderType,
                                                            Lum16s borderValue, Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                            LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                            Lum32s xAnchor, LumiBorderType borderType,
                                                            const Lum16s borderValue[3], Lum32s divisor,
                                                            Lum8u* pBuffer);

LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                      Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                      Lum32s* pBufferSize);

LUMCV_API LumStatus lumiFilterColumnPipeline_32f_C1R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                     Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_32f_C3R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                     Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8u_C1R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8u_C3R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8s_C1R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8s_C3R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16u_C1R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_16u_C3R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_Low_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                         LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                         Lum32s divisor, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterColumnPipeline_Low_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                         LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                         Lum32s divisor, Lum8u* pBuffer);

LUMCV_API LumStatus lumiFilterGaussianGetSpecSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                                  Lum32s* pSpecSize, Lum32s* pInitBufferSize);
LUMCV_API LumStatus lumiFilterGaussianGetSpecSize_L(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                                    Lum64s* pSpecSize, Lum64s* pInitBufferSize);
LUMCV_API LumStatus lumiFilterGaussianGetBufferSize(LumiSize roiSize, Lum32s kernelSize, LumDataType dataType,
                                                    Lum32s numChannels, Lum32s* pSpecSize, Lum32s* pBufferSize);
LUMCV_API LumStatus lumiFilterGaussianGetBufferSize_L(LumiSizeL roiSize, Lum32s kernelSize, LumDataType dataType,
                                                      LumiBorderType borderType, Lum32s numChannels,
                                                      Lum64s* pBufferSize);

LUMCV_API LumStatus lumiFilterGaussianInit(LumiSize roiSize, Lum32s kernelSize, Lum32f sigma, LumiBorderType borderType,
                                           LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* pSpec,
                                           Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianInit_L(LumiSizeL roiSize, Lum32s kernelSize, Lum32f sigma,
                                             LumiBorderType borderType, LumDataType dataType, Lum32s numChannels,
                                             LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

LUMCV_API LumStatus lumiFilterGaussian_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                              const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                              const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                                const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                                const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16u* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16u_C3R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16u* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16s* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_16s_C3R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16s* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum32f* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussian_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum32f* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

LUMCV_API LumStatus lumiFilterGaussianBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, Lum8u borderValue,
                                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, const Lum8u* pBorderValue,
                                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum16u borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum16u* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum16s borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum16s* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum32f borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);
LUMCV_API LumStatus lumiFilterGaussianBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum32f* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

#ifdef __cplusplus
}
#endif

#endif
