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

/**
 * @defgroup version Version
 * @brief Which build of the library is loaded.
 *
 * @{
 */

/**
 * Tells which build of the library is loaded.
 *
 * The record is constant and belongs to the library: it stays valid as long as the library is loaded, and the caller
 * neither changes nor frees it. The call cannot fail.
 *
 * @return the version record, never null
 */
LUMCV_API const LumLibraryVersion* lumcvGetLibVersion(void);

/** @} */

/**
 * @defgroup accumulate Accumulation
 * @brief Sums, squares, products and running means of a stream of frames, collected in a 32f image.
 *
 * The accumulator `d` is an image of Lum32f with one channel. The sources `s`, `s1`, `s2` are images of Lum8u, Lum16u
 * or Lum32f of the same size. For each pixel of the ROI, in single precision:
 *
 * | Function | Without a mask | With a mask |
 * |---|---|---|
 * | `lumiAdd` | `d = d + s` | `d = d + s * m` |
 * | `lumiAddSquare` | `d = d + s * s` | `d = d + (s * s) * m` |
 * | `lumiAddProduct` | `d = d + s1 * s2` | `d = d + (s1 * s2) * m` |
 * | `lumiAddWeighted` | `d = d + (s - d) * alpha` | `d = d + (s - d) * (alpha or 0.0)` |
 * | lumiAddWeighted_32f_C1R() | `d = s2 + (s1 - s2) * alpha` | |
 *
 * **Arithmetic.** Integer sources become Lum32f first, which is exact. Every product, sum and difference is rounded to
 * single precision by itself, in the order written: a 16u product above 2 to the 24 is rounded before it is added, and
 * nothing is fused. All builds give the same bits. `alpha` is used as given, inside the range 0 to 1 or not.
 *
 * **Mask.** A mask is an 8u image of the ROI's size. Its byte chooses the factor `m` of the pixel: 0.0 for a zero byte,
 * 1.0 for any other (with `lumiAddWeighted`: 0.0 or `alpha`). The factor is multiplied in and the accumulator is always
 * rewritten. So a masked-out pixel keeps its value if the source is finite, except that a negative zero may become a
 * positive one as the formula has it; an infinite or not-a-number source turns the accumulator pixel into not-a-number
 * under a zero mask byte as well.
 *
 * **Overlap.** The operands may overlap in any way: the result is the one of a plain loop over the pixels, row after
 * row, in which each new value is written before the next pixel is read. On operands that share memory this takes much
 * longer, save where a source is the destination itself.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: an image pointer is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of its image in bytes (a mask row has one byte for each pixel).
 * 4. #lumErrStepAlignment: the stride of a 32f image is not a multiple of 4.
 *
 * The functions of 16u sources go image by image instead, after the first two checks: #lumErrStep for the 16u strides,
 * then #lumErrStepAlignment for one of them that is not a multiple of 2; #lumErrStep for the mask; #lumErrStep and then
 * #lumErrStepAlignment for the 32f image.
 *
 * There is no plain `lumiAdd` of a 32f source without a mask.
 *
 * @see @ref absdiff
 *
 * @{
 */

/**
 * Adds an 8u image to the accumulator: `d = d + s`.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAdd_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                       LumiSize roiSize);

/** Adds a 16u image to the accumulator: `d = d + s`. @copydetails lumiAdd_8u32f_C1IR */
LUMCV_API LumStatus lumiAdd_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                        LumiSize roiSize);

/**
 * Adds an 8u image to the accumulator where the mask is not zero: `d = d + s * m`.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes
 * @param pMask      first byte of the mask's ROI, one byte for each pixel
 * @param maskStep   stride of the mask, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten, masked-out pixels included
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAdd_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                        Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/** Adds a 16u image to the accumulator where the mask is not zero: `d = d + s * m`. @copydetails lumiAdd_8u32f_C1IMR */
LUMCV_API LumStatus lumiAdd_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/** Adds a 32f image to the accumulator where the mask is not zero: `d = d + s * m`. @copydetails lumiAdd_8u32f_C1IMR */
LUMCV_API LumStatus lumiAdd_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/** Adds the squares of an 8u image to the accumulator: `d = d + s * s`. @copydetails lumiAdd_8u32f_C1IR */
LUMCV_API LumStatus lumiAddSquare_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize);

/** Adds the squares of a 16u image to the accumulator: `d = d + s * s`. @copydetails lumiAdd_8u32f_C1IR */
LUMCV_API LumStatus lumiAddSquare_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                              LumiSize roiSize);

/** Adds the squares of a 32f image to the accumulator: `d = d + s * s`. @copydetails lumiAdd_8u32f_C1IR */
LUMCV_API LumStatus lumiAddSquare_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                           LumiSize roiSize);

/**
 * Adds the squares of an 8u image to the accumulator where the mask is not zero: `d = d + (s * s) * m`.
 * @copydetails lumiAdd_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddSquare_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/**
 * Adds the squares of a 16u image to the accumulator where the mask is not zero: `d = d + (s * s) * m`.
 * @copydetails lumiAdd_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddSquare_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                               Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/**
 * Adds the squares of a 32f image to the accumulator where the mask is not zero: `d = d + (s * s) * m`.
 * @copydetails lumiAdd_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddSquare_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/**
 * Adds the product of two 8u images to the accumulator: `d = d + s1 * s2`.
 *
 * @param pSrc1      first pixel of the first source's ROI
 * @param src1Step   stride of the first source, in bytes
 * @param pSrc2      first pixel of the second source's ROI
 * @param src2Step   stride of the second source, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAddProduct_8u32f_C1IR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/** Adds the product of two 16u images to the accumulator: `d = d + s1 * s2`. @copydetails lumiAddProduct_8u32f_C1IR */
LUMCV_API LumStatus lumiAddProduct_16u32f_C1IR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                               Lum32s src2Step, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/** Adds the product of two 32f images to the accumulator: `d = d + s1 * s2`. @copydetails lumiAddProduct_8u32f_C1IR */
LUMCV_API LumStatus lumiAddProduct_32f_C1IR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize);

/**
 * Adds the product of two 8u images to the accumulator where the mask is not zero: `d = d + (s1 * s2) * m`.
 *
 * @param pSrc1      first pixel of the first source's ROI
 * @param src1Step   stride of the first source, in bytes
 * @param pSrc2      first pixel of the second source's ROI
 * @param src2Step   stride of the second source, in bytes
 * @param pMask      first byte of the mask's ROI, one byte for each pixel
 * @param maskStep   stride of the mask, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten, masked-out pixels included
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAddProduct_8u32f_C1IMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                               const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                               LumiSize roiSize);

/**
 * Adds the product of two 16u images to the accumulator where the mask is not zero: `d = d + (s1 * s2) * m`.
 * @copydetails lumiAddProduct_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddProduct_16u32f_C1IMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                                Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst,
                                                Lum32s srcDstStep, LumiSize roiSize);

/**
 * Adds the product of two 32f images to the accumulator where the mask is not zero: `d = d + (s1 * s2) * m`.
 * @copydetails lumiAddProduct_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddProduct_32f_C1IMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize);

/**
 * Moves the accumulator towards an 8u image, which makes it a running mean: `d = d + (s - d) * alpha`.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @param alpha      weight of the new frame: 0 keeps the accumulator, 1 replaces it up to rounding; any value is taken
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAddWeighted_8u32f_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                               LumiSize roiSize, Lum32f alpha);

/** Moves the accumulator towards a 16u image: `d = d + (s - d) * alpha`. @copydetails lumiAddWeighted_8u32f_C1IR */
LUMCV_API LumStatus lumiAddWeighted_16u32f_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                                LumiSize roiSize, Lum32f alpha);

/** Moves the accumulator towards a 32f image: `d = d + (s - d) * alpha`. @copydetails lumiAddWeighted_8u32f_C1IR */
LUMCV_API LumStatus lumiAddWeighted_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst, Lum32s srcDstStep,
                                             LumiSize roiSize, Lum32f alpha);

/**
 * Moves the accumulator towards an 8u image where the mask is not zero: `d = d + (s - d) * (alpha or 0.0)`.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes
 * @param pMask      first byte of the mask's ROI, one byte for each pixel
 * @param maskStep   stride of the mask, in bytes
 * @param pSrcDst    first pixel of the accumulator's ROI; read and rewritten, masked-out pixels included
 * @param srcDstStep stride of the accumulator, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels
 * @param alpha      weight of the new frame where the mask is not zero; any value is taken
 * @retval lumOk               the accumulator has been updated
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of its image's element size
 */
LUMCV_API LumStatus lumiAddWeighted_8u32f_C1IMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                                Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha);

/**
 * Moves the accumulator towards a 16u image where the mask is not zero: `d = d + (s - d) * (alpha or 0.0)`.
 * @copydetails lumiAddWeighted_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddWeighted_16u32f_C1IMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask,
                                                 Lum32s maskStep, Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize,
                                                 Lum32f alpha);

/**
 * Moves the accumulator towards a 32f image where the mask is not zero: `d = d + (s - d) * (alpha or 0.0)`.
 * @copydetails lumiAddWeighted_8u32f_C1IMR
 */
LUMCV_API LumStatus lumiAddWeighted_32f_C1IMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f alpha);

/**
 * Blends two 32f images into a third: `d = s2 + (s1 - s2) * alpha`.
 *
 * @param pSrc1    first pixel of the first source's ROI
 * @param src1Step stride of the first source, in bytes; a multiple of 4
 * @param pSrc2    first pixel of the second source's ROI
 * @param src2Step stride of the second source, in bytes; a multiple of 4
 * @param pDst     first pixel of the destination's ROI
 * @param dstStep  stride of the destination, in bytes; a multiple of 4
 * @param roiSize  size of the ROI in pixels
 * @param alpha    weight of the first source; any value is taken
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiAddWeighted_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, Lum32f alpha);

/** @} */

/**
 * @defgroup absdiff Absolute difference
 * @brief How far apart two images are, or an image and a constant, pixel by pixel.
 *
 * | Function | 8u, 16u | 32f |
 * |---|---|---|
 * | `lumiAbsDiff` | the exact difference without its sign | `s1 - s2` in single precision, sign bit cleared |
 * | `lumiAbsDiffC` | the same, against `value` clamped to the element's range | `s - value`, sign bit cleared |
 *
 * Source and destination have the same element type. In 32f the sign bit of a not-a-number is cleared too. In 8u and
 * 16u the constant is clamped silently to 0..255 or 0..65535; in 32f it is used as given. Each channel of a
 * three-channel image is treated alike.
 *
 * **Overlap.** A difference may be formed in place: the destination may be one of the sources, with the same pointer
 * and the same stride. 32f images may overlap in any other way as well, with the result of a plain loop over the
 * pixels, row after row, in which each result is written before the next pixel is read. 8u and 16u images must not.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: an image pointer is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row in bytes.
 * 4. #lumErrStepAlignment: the stride of a 16u image is not a multiple of 2, that of a 32f image not a multiple of 4.
 *
 * @see @ref accumulate
 *
 * @{
 */

/**
 * Absolute difference of two 8u images.
 *
 * @param pSrc1    first pixel of the first source's ROI
 * @param src1Step stride of the first source, in bytes
 * @param pSrc2    first pixel of the second source's ROI
 * @param src2Step stride of the second source, in bytes
 * @param pDst     first pixel of the destination's ROI
 * @param dstStep  stride of the destination, in bytes
 * @param roiSize  size of the ROI in pixels
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 */
LUMCV_API LumStatus lumiAbsDiff_8u_C1R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                       Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

/** Absolute difference of two 8u images of three channels, channel by channel. @copydetails lumiAbsDiff_8u_C1R */
LUMCV_API LumStatus lumiAbsDiff_8u_C3R(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                       Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

/** Absolute difference of two 16u images. @copydetails lumiAbsDiff_8u_C1R */
LUMCV_API LumStatus lumiAbsDiff_16u_C1R(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                        Lum16u* pDst, Lum32s dstStep, LumiSize roiSize);

/** Absolute difference of two 32f images. @copydetails lumiAbsDiff_8u_C1R */
LUMCV_API LumStatus lumiAbsDiff_32f_C1R(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                        Lum32f* pDst, Lum32s dstStep, LumiSize roiSize);

/**
 * Absolute difference of an 8u image and a constant.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination's ROI
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI in pixels
 * @param value   the constant; for 8u and 16u clamped to 0..255 or 0..65535
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 */
LUMCV_API LumStatus lumiAbsDiffC_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                        LumiSize roiSize, Lum32s value);

/** Absolute difference of a 16u image and a constant. @copydetails lumiAbsDiffC_8u_C1R */
LUMCV_API LumStatus lumiAbsDiffC_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                         LumiSize roiSize, Lum32s value);

/** Absolute difference of a 32f image and a constant. @copydetails lumiAbsDiffC_8u_C1R */
LUMCV_API LumStatus lumiAbsDiffC_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                         LumiSize roiSize, Lum32f value);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
