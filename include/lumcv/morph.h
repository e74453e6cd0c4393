/**
 * @file
 * @brief Morphology: dilation, erosion and what is composed of them.
 */
#ifndef LUMCV_MORPH_H
#define LUMCV_MORPH_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup dilate_erode Dilation and erosion
 * @brief The maximum or the minimum of the pixels under a flat structuring element of any shape.
 *
 * **The element** is a mask of `w` times `h` bytes; the positions whose byte is not zero belong to it. Its anchor is
 * column `w / 2` and row `h / 2`, and where `w` or `h` is even, half a pixel before the centre: a 2x2 element weighs
 * the pixel itself, its right, its lower and its diagonal neighbour. More precisely, with `w` rounded up to an odd
 * number by an empty column on the left, and `h` by an empty row at the top, the anchor is the centre. With `m` the
 * element:
 *
 *     dilation: dst(x, y) = maximum of src(x + i - anchorX, y + j - anchorY) over all (i, j) of m
 *     erosion:  dst(x, y) = minimum of the same pixels
 *
 * The element is not reflected. Channels are taken one by one. An empty element, and one of 1 x 1 pixels, copy the
 * source and look at no pixel outside the ROI. An element larger than the image is allowed.
 *
 * In 32f images each comparison keeps the later of two equal pixels, in the order of the element's rows from the top,
 * and in a row from the left, which decides between 0.0 and -0.0. A result in whose element lies a not-a-number is not
 * defined further than that it is one of the values under the element or a not-a-number, and the same on every
 * processor.
 *
 * **1-bit images.** Pixel `x` of a row is bit `(offset + x) & 7` of the row's byte `(offset + x) >> 3`, the lowest bit
 * first; the offset counts bits and may be 8 and more. Dilation sets the pixels that have a 1 under the element,
 * erosion those that have nothing else. Only the bytes that hold pixels of the ROI are touched, and the other bits of
 * its first and last byte keep their values.
 *
 * **Three steps.** The size query says how large the record and the scratch are; Init analyses the element and lays the
 * record in the caller's block; apply works on images. The record holds pointers into its own block: it must not be
 * moved, needs no release, and apply only reads it. It serves any ROI not above the one queried and any number of
 * calls, several threads at once with a scratch for each. The mask is not needed after Init. Blocks need no alignment.
 * A record of `lumiMorphologyBorderInit` is for the functions with `Border`, one of `lumiDilateInit_L` or
 * `lumiErodeInit_L` for those with `_L`; both serve dilation and erosion alike and, but for the 1-bit form of the
 * first, all element types and channel counts; an `_L` record serves 1-bit images as well.
 *
 * This grows the bright parts of an image by a cross:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus growBright(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     const Lum8u cross[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
 *     const LumiSize crossSize = {3, 3};
 *     Lum32s specSize = 0;
 *     Lum32s bufferSize = 0;
 *     LumStatus status = lumiMorphologyBorderGetSize_8u_C1R(roiSize, crossSize, &specSize, &bufferSize);
 *     if (status != lumOk)
 *         return status;
 *     LumiMorphMaskRecord* spec = malloc((size_t)specSize);
 *     Lum8u* buffer = malloc((size_t)bufferSize);
 *     status = lumiMorphologyBorderInit_8u_C1R(roiSize, cross, crossSize, spec, buffer);
 *     if (status == lumOk)
 *         status = lumiDilateBorder_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, lumBorderReplicate, 0, spec, buffer);
 *     free(buffer);
 *     free(spec);
 *     return status;
 * }
 * @endcode
 *
 * **Border.** The radii are `rx = w / 2` and `ry = h / 2`, rounded down. What lies outside the ROI follows `borderType`
 * (see #LumiBorderType), each side by itself:
 * - A side whose in-memory flag is set, and all four with #lumBorderInMem: the pixels in memory next to the ROI, `rx`
 *   columns or `ry` rows of them. Nothing further is read.
 * - #lumBorderReplicate: the nearest pixel of the edge.
 * - #lumBorderMirror: reflected at the edge pixel, which is not repeated; when the element reaches further than the
 *   image, the reflection bounces back and forth. A single row or column is replicated. Not with 1-bit images.
 * - #lumBorderConstant: the border value, one for each channel. In a corner between a side in memory and another one
 *   the axes are taken by themselves, and the constant of either is what counts.
 * - #lumBorderNeutral: the constant that never wins:
 *
 * | | 8u | 16u | 16s | 32f | 1u |
 * |---|---|---|---|---|---|
 * | dilation | 0 | 0 | -32768 | -3.4028235e38 | 0 |
 * | erosion | 255 | 65535 | 32767 | 3.4028235e38 | 1 |
 *
 * The flags of the first stage (#lumBorderStageInMemTop and its like) count as in-memory flags in the `_L` functions
 * and in lumiDilateBorder_8u_C1R(); the other functions accept and ignore them.
 *
 * **Sizes**, in bytes, with `w`, `h` the mask's size, `mw = w | 1`, `mh = h | 1`, `W`, `H` the ROI's, `ch` channels of
 * `e` bytes, and `alignN` rounding up to a multiple of N:
 *
 * | | Bytes |
 * |---|---|
 * | record | `(5 mw + 4) mh + 136` |
 * | record, 1-bit | `3 align16(w h) + 144` |
 * | record, `_L` | `(5 mw + 4) mh + 176 + bits` |
 * | scratch | `16 e + align32(mw ch e) + mh align32(W ch e) + align32(strip ch) + 64` |
 * | scratch, 1-bit | `bits` |
 * | scratch, `_L` | the larger of the two |
 *
 * - `strip`, if `mw < W` and `mh < H`: `e` times the larger of `(2 ry + bottom) * (2 rx + W)`, 0 when `bottom` is, and
 *   `(2 rx + right) * (2 ry + H)`, left out when `right` is 0, with `bottom = mh - 1 - ry`, `right = mw - 1 - rx`.
 *   Otherwise `e (2 ry + H) (2 rx + W)`.
 * - `bits`: the larger of `align16(4 (W + w)) 2 h + 16` and `align16(16 h + 64) + align16(24 h) + align16(w h) + U`.
 *   `U` is the larger of `align32(h (w - 1 + W)) + align32(W) h + align32(w) + 32` and
 *   `8 + 40 h + (h h + 1) (W + 32) + 32`.
 *
 * **Checks of apply**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst`, `pSpec` or `pBuffer` is null. In the functions of three and four channels with
 *    `Border` also `borderValue`, when the mode is #lumBorderConstant.
 * 2. #lumErrSize: a bit offset is negative (1-bit), the width or the height is below 1.
 * 3. #lumErrSizeTooLarge: the width or the height exceeds 2147483647 (`_L`).
 * 4. #lumErrStep: a stride is smaller than a row in bytes; in the 1-bit functions that is `(W + 7) / 8`, whatever the
 *    offset.
 * 5. #lumErrStepAlignment: a stride is not a multiple of the element size.
 * 6. #lumErrBorder: `borderType` exceeds 4095, or its low four bits are none of the modes, unless it is exactly
 *    #lumBorderInMem. Where first-stage flags count, they may make up #lumBorderInMem.
 * 7. #lumErrInPlace: `pSrc` equals `pDst`, in dilation and erosion of 16s and 1-bit and in erosion of 16u images. The
 *    other functions do not test it, and what they make of overlapping images is not defined.
 * 8. In `_L` functions: the width or the height exceeds 2147483646, then a stride does. In `lumiDilate` of 8u_C1R,
 *    16u_C1R, 16s_C1R and 32f_C1R and in `lumiErode` of 8u_C1R and 8u_C3R this is #lumErrSize for the size and
 *    #lumErrStep for a stride, in all others #lumErrSizeTooLarge for both.
 * 9. #lumErrNullPointer: `pBorderValue` is null and the mode is #lumBorderConstant (`_L`).
 *
 * **Queries and Init** test their pointers (#lumErrNullPointer), then that no width or height is below 1 (#lumErrSize);
 * those with `_L` then that none exceeds 2147483647 (#lumErrSizeTooLarge), then element type (#lumErrDataType) and
 * channels (#lumErrValue); and queries at last that the results fit their type (#lumErrSizeTooLarge).
 *
 * @see @ref compound_morphology
 *
 * @{
 */

/** An analysed 1-bit structuring element, laid in the caller's block by lumiMorphologyBorderInit_1u_C1R(). */
typedef struct LumiMorphBitRecord LumiMorphBitRecord;

/** An analysed structuring element for images of all element types, of lumiDilateInit_L() and lumiErodeInit_L(). */
typedef struct LumiDilateErodeSpec LumiDilateErodeSpec;

/**
 * Sizes of the record and of the scratch for dilation and erosion of 8u images.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param maskSize    size of the structuring element, in pixels
 * @param pSpecSize   where the size of the record in bytes goes
 * @param pBufferSize where the size of the scratch in bytes goes, for Init and for every apply call
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a size exceeds 2147483647
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_8u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                       Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 8u three-channel images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_8u_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                       Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 8u four-channel images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_8u_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                       Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 16u images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_16u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                        Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 16s images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_16s_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                        Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 32f images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_32f_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                        Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 32f three-channel images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_32f_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                        Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 32f four-channel images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_32f_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                        Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for dilation and erosion of 1-bit images.
 * @copydetails lumiMorphologyBorderGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderGetSize_1u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                       Lum32s* pBufferSize);

/**
 * Analyses a structuring element and lays its record, for 8u images.
 *
 * @param roiSize  size of the largest ROI, in pixels
 * @param pMask    `maskSize.width * maskSize.height` bytes, row after row without gaps; what is not zero belongs to the
 *                 element. The array is not needed after the call.
 * @param maskSize size of the structuring element, in pixels
 * @param pSpec    where the record goes: a block of the queried size
 * @param pBuffer  scratch of the queried size; free after the call
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        a width or a height is below 1
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_8u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                    LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 8u three-channel images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_8u_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                    LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 8u four-channel images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_8u_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                    LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 16u images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_16u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                     LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 16s images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_16s_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                     LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 32f images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_32f_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                     LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 32f three-channel images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_32f_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                     LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 32f four-channel images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_32f_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                     LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and lays its record, for 1-bit images.
 * @copydetails lumiMorphologyBorderInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphologyBorderInit_1u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                                    LumiMorphBitRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiDilateBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiDilateBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates an 8u image of four channels.
 * @copydetails lumiDilateBorder_8u_C3R
 */
LUMCV_API LumStatus lumiDilateBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 16u image.
 * @copydetails lumiDilateBorder_8u_C1R
 */
LUMCV_API LumStatus lumiDilateBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                             const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 16s image.
 * @copydetails lumiDilateBorder_8u_C1R
 */
LUMCV_API LumStatus lumiDilateBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                             const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image.
 * @copydetails lumiDilateBorder_8u_C1R
 */
LUMCV_API LumStatus lumiDilateBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                             const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image of three channels.
 * @copydetails lumiDilateBorder_8u_C3R
 */
LUMCV_API LumStatus lumiDilateBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                             const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image of four channels.
 * @copydetails lumiDilateBorder_8u_C3R
 */
LUMCV_API LumStatus lumiDilateBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                             const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`
 */
LUMCV_API LumStatus lumiDilateBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                            Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                            LumiBorderType borderType, Lum8u borderValue,
                                            const LumiMorphBitRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiErodeBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                           const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiErodeBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                           const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image of four channels.
 * @copydetails lumiErodeBorder_8u_C3R
 */
LUMCV_API LumStatus lumiErodeBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                           const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 16u image.
 * @copydetails lumiErodeBorder_8u_C1R
 */
LUMCV_API LumStatus lumiErodeBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 16s image.
 * @copydetails lumiErodeBorder_8u_C1R
 */
LUMCV_API LumStatus lumiErodeBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image.
 * @copydetails lumiErodeBorder_8u_C1R
 */
LUMCV_API LumStatus lumiErodeBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image of three channels.
 * @copydetails lumiErodeBorder_8u_C3R
 */
LUMCV_API LumStatus lumiErodeBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[3],
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image of four channels.
 * @copydetails lumiErodeBorder_8u_C3R
 */
LUMCV_API LumStatus lumiErodeBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiBorderType borderType, const Lum32f borderValue[4],
                                            const LumiMorphMaskRecord* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`
 */
LUMCV_API LumStatus lumiErodeBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                           Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                           LumiBorderType borderType, Lum8u borderValue,
                                           const LumiMorphBitRecord* pSpec, Lum8u* pBuffer);

/**
 * Size of the record for dilation, of all element types; 64-bit geometry.
 *
 * @param roiSize   size of the largest ROI, in pixels
 * @param maskSize  size of the structuring element, in pixels
 * @param pSpecSize where the size of the record in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pSpecSize` is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647, or the size does not fit 64 bits
 */
LUMCV_API LumStatus lumiDilateGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, Lum64s* pSpecSize);

/**
 * Size of the scratch for dilation; 64-bit geometry.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param maskSize    size of the structuring element, in pixels
 * @param dataType    element type of the images: 0 (counted as one byte a pixel, for 1-bit images), #lumType8u,
 * #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pBufferSize where the size of the scratch in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647, or the size does not fit 64 bits
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiDilateGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType,
                                              Lum32s numChannels, Lum64s* pBufferSize);

/**
 * Analyses a structuring element and lays its record for dilation, for images of all element types; 64-bit geometry.
 *
 * @param roiSize  size of the largest ROI, in pixels
 * @param pMask    `maskSize.width * maskSize.height` bytes, row after row without gaps; what is not zero belongs to the
 *                 element. The array is not needed after the call.
 * @param maskSize size of the structuring element, in pixels
 * @param pSpec    where the record goes: a block of the queried size
 * @retval lumOk              the record is ready
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647
 */
LUMCV_API LumStatus lumiDilateInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize,
                                     LumiDilateErodeSpec* pSpec);

/**
 * Size of the record for erosion, of all element types; 64-bit geometry.
 * @copydetails lumiDilateGetSpecSize_L
 */
LUMCV_API LumStatus lumiErodeGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, Lum64s* pSpecSize);

/**
 * Size of the scratch for erosion; 64-bit geometry.
 * @copydetails lumiDilateGetBufferSize_L
 */
LUMCV_API LumStatus lumiErodeGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType,
                                             Lum32s numChannels, Lum64s* pBufferSize);

/**
 * Analyses a structuring element and lays its record for erosion, for images of all element types; 64-bit geometry.
 * @copydetails lumiDilateInit_L
 */
LUMCV_API LumStatus lumiErodeInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize,
                                    LumiDilateErodeSpec* pSpec);

/**
 * Dilates an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiDilate_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 16u image; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                         LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                         const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 16s image; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                         LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                         const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                         LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                         const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                         LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                         const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiDilate_8u_C1R_L
 */
LUMCV_API LumStatus lumiDilate_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                         LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                         const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Dilates a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`
 */
LUMCV_API LumStatus lumiDilate_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                        Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                        LumiBorderType borderType, const Lum8u* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiErode_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                       const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                       const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                       LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                       const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 16u image; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 16s image; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiErode_8u_C1R_L
 */
LUMCV_API LumStatus lumiErode_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                        LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                        const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/**
 * Erodes a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`
 */
LUMCV_API LumStatus lumiErode_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                       Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                       LumiBorderType borderType, const Lum8u* pBorderValue,
                                       const LumiDilateErodeSpec* pSpec, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup compound_morphology Compound morphology
 * @brief Opening, closing, top-hat, black-hat and gradient.
 *
 * Two passes of dilation and erosion (@ref dilate_erode), with an intermediate image in the scratch:
 *
 * | Operation | Result |
 * |---|---|
 * | `lumiMorphOpen` | the erosion, dilated by the rotated element: bright details smaller than the element vanish |
 * | `lumiMorphClose` | the dilation, eroded by the rotated element: the same for dark details |
 * | `lumiMorphTophat` | the source minus its opening: the bright details |
 * | `lumiMorphBlackhat` | the closing minus the source: the dark details |
 * | `lumiMorphGradient` | the dilation minus the erosion: the edges |
 *
 * The second pass uses the element rotated by 180 degrees, so that opening and closing do not shift the image whatever
 * the element's shape; an element of even width or height is rotated as it is and lies on the other side of the pixel.
 * lumiMorphSetMode() can give it the caller's element instead. The erosion of the gradient uses the caller's element in
 * the functions with `Border` and the second pass's in those with `_L`.
 *
 * **Differences.** 8u and 16u: 0 where negative. 16s: saturated to 16 bits; negative ones stay in the functions with
 * `Border` and in `lumiMorphGradient`, and become 0 in `lumiMorphTophat` and `lumiMorphBlackhat` with `_L`. 32f: the
 * difference in single precision, 0 where negative. The `_L` functions of top-hat and black-hat keep negative
 * differences of 16s and 32f images after lumiMorphSetMode_L() with mode 4 or 5. 1-bit: set where the minuend is
 * and the subtrahend is not.
 *
 * The steps, the records and the blocks are those of dilation and erosion. A record of `lumiMorphAdvInit` is for the
 * functions with `Border`, one of lumiMorphInit_L() for those with `_L`. Again all element types but 1-bit share the
 * records of the first, and an `_L` record serves all.
 *
 * This takes away the specks of an image, up to a given size:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 * #include <string.h>
 *
 * LumStatus removeSpecks(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize,
 *                        Lum64s speck)
 * {
 *     const LumiSizeL squareSize = {speck + 1, speck + 1};
 *     Lum64s specSize = 0;
 *     Lum64s bufferSize = 0;
 *     LumStatus status = lumiMorphGetSpecSize_L(roiSize, squareSize, lumType8u, 1, &specSize);
 *     if (status == lumOk)
 *         status = lumiMorphGetBufferSize_L(roiSize, squareSize, lumType8u, 1, &bufferSize);
 *     if (status != lumOk)
 *         return status;
 *     size_t squareBytes = (size_t)(squareSize.width * squareSize.height);
 *     Lum8u* square = malloc(squareBytes);
 *     LumiMorphCompoundSpecL* spec = malloc((size_t)specSize);
 *     Lum8u* buffer = malloc((size_t)bufferSize);
 *     status = lumErrNullPointer;
 *     if (square != NULL)
 *     {
 *         memset(square, 1, squareBytes);
 *         status = lumiMorphInit_L(roiSize, square, squareSize, lumType8u, 1, spec);
 *     }
 *     if (status == lumOk)
 *         status = lumiMorphOpen_8u_C1R_L(pSrc, srcStep, pDst, dstStep, roiSize, lumBorderReplicate, NULL, spec,
 *                                         buffer);
 *     free(buffer);
 *     free(spec);
 *     free(square);
 *     return status;
 * }
 * @endcode
 *
 * **Border.** The modes are those of dilation and erosion; a constant is the same in both passes, while
 * #lumBorderNeutral is the neutral value of each. Which sides lie in memory differs:
 *
 * - Functions with `Border`: the in-memory flags, and the first-stage flags likewise, hold for the first pass, and the
 *   second one synthesises all its sides by the mode. If all four in-memory flags are set, no mode is needed; the
 *   second pass then is neutral. Gradient: `borderType` is at most 255, and exactly #lumBorderInMem or of mode
 *   #lumBorderReplicate, #lumBorderMirror or #lumBorderConstant; it holds for both passes.
 * - `_L` functions: on a side with its in-memory flag the first pass covers as many more rows or columns as the second
 *   one needs, so that the result is that of a larger image; the caller's image must reach twice the element's radius
 *   beyond the ROI there. A first-stage flag alone makes that side real for the first pass only, and once the radius is
 *   enough. If all four in-memory flags are set and no first-stage flag stands alone, no mode is needed. Gradient: both
 *   passes read the source with these flags, first-stage flags count for the dilation only, and once the radius is
 *   enough.
 *
 * **Sizes**, in bytes, with `B` and `S` the sizes of scratch and record for dilation and erosion by the same arguments:
 *
 * | | Bytes |
 * |---|---|
 * | record | `mw mh + 2 S + 64` |
 * | scratch | `(H + 2 ry) align32((W + 2 rx) ch e) + 2 B`, with `ch e = 1` for 1-bit images |
 * | record, `_L` | `mw mh + 2 S + 64` with `S` for a ROI of `W2 = W + 4 rx`, `H2 = H + 4 ry` and a mask of `mw`, `mh` |
 * | scratch, `_L` | `H2 align32(W2 ch e) + 2 B`, `B` the largest for `(W, H)`, `(W + 2 rx, H + 2 ry)`, `(W2, H2)` |
 *
 * **Checks of apply**, in this order; nothing has been written if one of them fails:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst`, `pSpec` or `pBuffer` is null. In the functions of three and four channels with
 *    `Border` and in all `_L` functions also the border value, when the mode is #lumBorderConstant.
 * 2. #lumErrSize: a bit offset is negative (1-bit), the width or the height is below 1.
 * 3. #lumErrSizeTooLarge: the width or the height exceeds 2147483647 (`_L`).
 * 4. #lumErrStep: a stride is smaller than a row in bytes.
 * 5. #lumErrStepAlignment: a stride is not a multiple of the element size.
 * 6. #lumErrBorder: `borderType` exceeds 4095 (255 in `lumiMorphGradientBorder`), or is not allowed as told above.
 * 7. What the two passes test: #lumErrInPlace if `pSrc` equals `pDst`, in gradients of 16s and 1-bit images; and the
 *    upper limits of the `_L` functions, with the status that the pass in question has for them. The other operations
 *    may be called with `pSrc` equal to `pDst`: opening and closing then work in place, and what the others yield is
 *    not defined.
 *
 * Queries and Init test as those of dilation and erosion do; lumiMorphInit_L() tests #lumErrSizeTooLarge before
 * #lumErrSize.
 *
 * @see @ref dilate_erode
 *
 * @{
 */

/**
 * Both elements of a compound operation, laid in the caller's block by the `lumiMorphAdvInit` functions. It is changed
 * by lumiMorphSetMode() and by nothing else.
 */
typedef struct LumiMorphCompoundSpec LumiMorphCompoundSpec;

/** The same of lumiMorphInit_L(), for the `_L` functions; changed by lumiMorphSetMode_L(). */
typedef struct LumiMorphCompoundSpecL LumiMorphCompoundSpecL;

/**
 * Sizes of the record and of the scratch for the compound operations on 8u images.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param maskSize    size of the structuring element, in pixels
 * @param pSpecSize   where the size of the record in bytes goes
 * @param pBufferSize where the size of the scratch in bytes goes, for Init and for every apply call
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a size exceeds 2147483647
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_8u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                               Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 8u three-channel images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_8u_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                               Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 8u four-channel images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_8u_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                               Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 16u images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_16u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 16s images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_16s_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 32f images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_32f_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 32f three-channel images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_32f_C3R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 32f four-channel images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_32f_C4R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                                Lum32s* pBufferSize);

/**
 * Sizes of the record and of the scratch for the compound operations on 1-bit images.
 * @copydetails lumiMorphAdvGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvGetSize_1u_C1R(LumiSize roiSize, LumiSize maskSize, Lum32s* pSpecSize,
                                               Lum32s* pBufferSize);

/**
 * Analyses a structuring element and its rotation and lays their record, for 8u images.
 *
 * @param roiSize  size of the largest ROI, in pixels
 * @param pMask    `maskSize.width * maskSize.height` bytes, row after row without gaps; what is not zero belongs to the
 *                 element. The array is not needed after the call.
 * @param maskSize size of the structuring element, in pixels
 * @param pSpec    where the record goes: a block of the queried size
 * @param pBuffer  scratch of the queried size; free after the call
 * @retval lumOk             the record is ready, in mode 0
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        a width or a height is below 1
 */
LUMCV_API LumStatus lumiMorphAdvInit_8u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                            LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 8u three-channel images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_8u_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                            LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 8u four-channel images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_8u_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                            LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 16u images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_16u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                             LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 16s images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_16s_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                             LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 32f images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_32f_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                             LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 32f three-channel images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_32f_C3R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                             LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 32f four-channel images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_32f_C4R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                             LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Analyses a structuring element and its rotation and lays their record, for 1-bit images.
 * @copydetails lumiMorphAdvInit_8u_C1R
 */
LUMCV_API LumStatus lumiMorphAdvInit_1u_C1R(LumiSize roiSize, const Lum8u* pMask, LumiSize maskSize,
                                            LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Size of the record for the compound operations; 64-bit geometry.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param maskSize    size of the structuring element, in pixels
 * @param dataType    element type of the images: 0 (1-bit images), #lumType8u, #lumType16u, #lumType16s or #lumType32f;
 * it is tested but does not change the size
 * @param numChannels channels of the images: 1, 3 or 4; likewise
 * @param pSpecSize   where the size of the record in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pSpecSize` is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647, or the size does not fit 64 bits
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiMorphGetSpecSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType,
                                           Lum32s numChannels, Lum64s* pSpecSize);

/**
 * Size of the scratch for the compound operations; 64-bit geometry.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param maskSize    size of the structuring element, in pixels
 * @param dataType    element type of the images: 0 (counted as one byte a pixel, for 1-bit images), #lumType8u,
 * #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pBufferSize where the size of the scratch in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647, or the size does not fit 64 bits
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiMorphGetBufferSize_L(LumiSizeL roiSize, LumiSizeL maskSize, LumDataType dataType,
                                             Lum32s numChannels, Lum64s* pBufferSize);

/**
 * Analyses a structuring element and its rotation and lays their record, for images of all element types; 64-bit
 * geometry.
 *
 * @param roiSize     size of the largest ROI, in pixels
 * @param pMask       `maskSize.width * maskSize.height` bytes, row after row without gaps; what is not zero belongs to
 * the element. The array is not needed after the call.
 * @param maskSize    size of the structuring element, in pixels
 * @param dataType    element type of the images: 0 (1-bit images), #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pSpec       where the record goes: a block of the queried size
 * @retval lumOk              the record is ready, in mode 0
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSizeTooLarge a width or a height exceeds 2147483647
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiMorphInit_L(LumiSizeL roiSize, const Lum8u* pMask, LumiSizeL maskSize, LumDataType dataType,
                                    Lum32s numChannels, LumiMorphCompoundSpecL* pSpec);

/**
 * Chooses the element of the second pass, and what becomes of negative differences.
 *
 * An odd mode makes the second pass use the caller's element, an even one its rotation by 180 degrees, as Init leaves
 * it. From mode 4 on the record says that negative differences are to be kept; only `_L` functions heed that.
 *
 * @param mode  0, 1, 4 or 5
 * @param pSpec record of a `lumiMorphAdvInit` function
 * @retval lumOk             the record has been changed
 * @retval lumErrNullPointer `pSpec` is null
 * @retval lumErrMode        `mode` is not among those listed
 */
LUMCV_API LumStatus lumiMorphSetMode(Lum32s mode, LumiMorphCompoundSpec* pSpec);

/**
 * Chooses the element of the second pass, and what becomes of negative differences; 64-bit geometry.
 *
 * An odd mode makes the second pass use the caller's element, an even one its rotation by 180 degrees, as Init leaves
 * it. From mode 4 on, `lumiMorphTophat` and `lumiMorphBlackhat` of 16s and 32f images keep negative differences.
 *
 * @param mode  0, 1, 4 or 5
 * @param pSpec record of lumiMorphInit_L()
 * @retval lumOk             the record has been changed
 * @retval lumErrNullPointer `pSpec` is null
 * @retval lumErrMode        `mode` is not among those listed
 */
LUMCV_API LumStatus lumiMorphSetMode_L(Lum32s mode, LumiMorphCompoundSpecL* pSpec);

/**
 * Opens an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphOpenBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                               const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphOpenBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                               const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens an 8u image of four channels.
 * @copydetails lumiMorphOpenBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                               const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens a 16u image.
 * @copydetails lumiMorphOpenBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens a 16s image.
 * @copydetails lumiMorphOpenBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens a 32f image.
 * @copydetails lumiMorphOpenBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens a 32f image of three channels.
 * @copydetails lumiMorphOpenBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum32f borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Opens a 32f image of four channels.
 * @copydetails lumiMorphOpenBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphOpenBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum32f borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Opens a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphOpenBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                               Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                               LumiBorderType borderType, Lum8u borderValue,
                                               const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphCloseBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphCloseBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image of four channels.
 * @copydetails lumiMorphCloseBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes a 16u image.
 * @copydetails lumiMorphCloseBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                 const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes a 16s image.
 * @copydetails lumiMorphCloseBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                 const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes a 32f image.
 * @copydetails lumiMorphCloseBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                 const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Closes a 32f image of three channels.
 * @copydetails lumiMorphCloseBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType,
                                                 const Lum32f borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Closes a 32f image of four channels.
 * @copydetails lumiMorphCloseBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphCloseBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType,
                                                 const Lum32f borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Closes a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphCloseBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                                Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                                LumiBorderType borderType, Lum8u borderValue,
                                                const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphTophatBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                 const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphTophatBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType,
                                                 const Lum8u borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image of four channels.
 * @copydetails lumiMorphTophatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType,
                                                 const Lum8u borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Takes the top-hat of a 16u image.
 * @copydetails lumiMorphTophatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                  const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 16s image.
 * @copydetails lumiMorphTophatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                  const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image.
 * @copydetails lumiMorphTophatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                  const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image of three channels.
 * @copydetails lumiMorphTophatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType,
                                                  const Lum32f borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image of four channels.
 * @copydetails lumiMorphTophatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphTophatBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType,
                                                  const Lum32f borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Takes the top-hat of a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphTophatBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                                 Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                                 LumiBorderType borderType, Lum8u borderValue,
                                                 const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                   const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType,
                                                   const Lum8u borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                   Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image of four channels.
 * @copydetails lumiMorphBlackhatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType,
                                                   const Lum8u borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                   Lum8u* pBuffer);

/**
 * Takes the black-hat of a 16u image.
 * @copydetails lumiMorphBlackhatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of a 16s image.
 * @copydetails lumiMorphBlackhatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image.
 * @copydetails lumiMorphBlackhatBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image of three channels.
 * @copydetails lumiMorphBlackhatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType,
                                                    const Lum32f borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image of four channels.
 * @copydetails lumiMorphBlackhatBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType,
                                                    const Lum32f borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Takes the black-hat of a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphBlackhatBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                                   Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                                   LumiBorderType borderType, Lum8u borderValue,
                                                   const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, with #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphGradientBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                   const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image of three channels.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside of each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphGradientBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType,
                                                   const Lum8u borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                   Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image of four channels.
 * @copydetails lumiMorphGradientBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiBorderType borderType,
                                                   const Lum8u borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                   Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 16u image.
 * @copydetails lumiMorphGradientBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 16s image.
 * @copydetails lumiMorphGradientBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image.
 * @copydetails lumiMorphGradientBorder_8u_C1R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                    const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image of three channels.
 * @copydetails lumiMorphGradientBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType,
                                                    const Lum32f borderValue[3], const LumiMorphCompoundSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image of four channels.
 * @copydetails lumiMorphGradientBorder_8u_C3R
 */
LUMCV_API LumStatus lumiMorphGradientBorder_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiBorderType borderType,
                                                    const Lum32f borderValue[4], const LumiMorphCompoundSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 1-bit image.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside with #lumBorderConstant: 1 where it is not zero
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrStep          a stride is below a row in bytes
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphGradientBorder_1u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                                   Lum32s dstStep, Lum32s dstBitOffset, LumiSize roiSize,
                                                   LumiBorderType borderType, Lum8u borderValue,
                                                   const LumiMorphCompoundSpec* pSpec, Lum8u* pBuffer);

/**
 * Opens an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphOpen_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                           LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                           const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                           LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                           const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                           LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                           const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 16u image; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 16s image; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 32f image; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiMorphOpen_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphOpen_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Opens a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphOpen_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                           Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                           LumiBorderType borderType, const Lum8u* pBorderValue,
                                           const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphClose_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                            LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 16u image; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 16s image; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 32f image; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiMorphClose_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphClose_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Closes a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphClose_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                            Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                            LumiBorderType borderType, const Lum8u* pBorderValue,
                                            const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphTophat_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                             LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 16u image; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                              LumiSizeL roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 16s image; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                              LumiSizeL roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                              LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                              LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiMorphTophat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphTophat_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                              LumiSizeL roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                              const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the top-hat of a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphTophat_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                             Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                             LumiBorderType borderType, const Lum8u* pBorderValue,
                                             const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphBlackhat_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the black-hat of a 16u image; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum16u* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the black-hat of a 16s image; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum16s* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the black-hat of a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiMorphBlackhat_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphBlackhat_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the black-hat of a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphBlackhat_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                               Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                               LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes; a multiple of the element size
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of the element size
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, one for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphGradient_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                               LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 16u image; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum16u* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 16s image; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum16s* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiMorphGradient_8u_C1R_L
 */
LUMCV_API LumStatus lumiMorphGradient_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType,
                                                const Lum32f* pBorderValue, const LumiMorphCompoundSpecL* pSpec,
                                                Lum8u* pBuffer);

/**
 * Takes the morphological gradient of a 1-bit image; 64-bit geometry.
 *
 * @param pSrc         byte from which the bits of the source's first row are counted
 * @param srcStep      stride of the source, in bytes
 * @param srcBitOffset bits before the first pixel of each source row, 0 or more
 * @param pDst         byte from which the bits of the destination's first row are counted
 * @param dstStep      stride of the destination, in bytes
 * @param dstBitOffset bits before the first pixel of each destination row, 0 or more
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside, 1 where it is not zero; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or the border value where it is needed
 * @retval lumErrSize          the width or the height is below 1; or a bit offset is negative
 * @retval lumErrSizeTooLarge  the width or the height exceeds the limit
 * @retval lumErrStep          a stride is below a row in bytes, or exceeds the limit
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrInPlace       `pSrc` equals `pDst`, in the functions that test it
 */
LUMCV_API LumStatus lumiMorphGradient_1u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum32s srcBitOffset, Lum8u* pDst,
                                               Lum64s dstStep, Lum32s dstBitOffset, LumiSizeL roiSize,
                                               LumiBorderType borderType, const Lum8u* pBorderValue,
                                               const LumiMorphCompoundSpecL* pSpec, Lum8u* pBuffer);

/** @} */

/** The element of a gray-element operation, laid in the caller's block by lumiMorphGrayInit_8u_C1R() and
 * lumiMorphGrayInit_32f_C1R(). */
typedef struct LumiMorphGrayRecord LumiMorphGrayRecord;

/**
 * @defgroup gray_element Gray-element morphology
 * @brief Dilation and erosion with a structuring element that has a height at each position.
 *
 * The element is a small image of heights `m` of `maskSize`; its anchor is the position that falls on the output pixel.
 * With `i` and `j` over the columns and rows of the element:
 *
 *     dilation  dst[y][x] = max of src[y + j - anchor.y][x + i - anchor.x] + m[j][i]
 *     erosion   dst[y][x] = min of src[y + j - anchor.y][x + i - anchor.x] - m[j][i]
 *
 * The element is not reflected, in neither operation, and every position takes part; heights may be negative. Pixels
 * outside the ROI repeat the nearest pixel of the ROI. No other border can be chosen, and no side can be read from
 * memory.
 *
 * **Arithmetic.**
 * - 8u: the heights are 32-bit integers. Sums and differences are exact for every height, and the result saturates to 0
 *   and 255.
 * - 32f: the heights are floats. Each sum or difference is rounded to single precision. The positions are compared in
 *   the order of the element, row by row: a later one takes the place of the best so far if it is greater (smaller in
 *   erosion). So infinite heights are legal, the first of equal zeros is kept, and a not-a-number is the result if it
 *   comes first and is passed over otherwise.
 *
 * **Record.** Init copies the element into a block of the size that the query tells, `4 * width * height + 32` bytes of
 * the element's width and height, at any address; the caller's element may be freed after it. The record must not be
 * moved. It serves any number of calls, of threads as well, for a ROI of at most the size given to Init, and there is
 * no scratch.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * // the height to which a dome of 5x5 pixels can be lifted below the image, at each place of its middle
 * LumStatus liftDome(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     const Lum32s dome[25] = {0, 1, 2, 1, 0, 1, 3, 4, 3, 1, 2, 4, 5, 4, 2, 1, 3, 4, 3, 1, 0, 1, 2, 1, 0};
 *     const LumiSize domeSize = {5, 5};
 *     const LumiPoint centre = {2, 2};
 *     Lum32s recordBytes = 0;
 *     LumStatus status = lumiMorphGrayGetSize_8u_C1R(roiSize, dome, domeSize, &recordBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     LumiMorphGrayRecord* record = malloc((size_t)recordBytes);
 *     if (record == NULL)
 *         return lumErrNullPointer;
 *     status = lumiMorphGrayInit_8u_C1R(record, roiSize, dome, domeSize, centre);
 *     if (status == lumOk)
 *         status = lumiGrayErodeBorder_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, lumBorderReplicate, record);
 *     free(record);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref reconstruct
 *
 * @{
 */

/**
 * Size of the record for an element of 32-bit integers: `4 * maskSize.width * maskSize.height + 32` bytes.
 *
 * @param roiSize  largest ROI that the record will be used for; it must be valid but does not change the result
 * @param pMask    the element; it must not be null but is not read
 * @param maskSize size of the element
 * @param pSize    where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pMask` or `pSize` is null
 * @retval lumErrSize         a width or a height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiMorphGrayGetSize_8u_C1R(LumiSize roiSize, const Lum32s* pMask, LumiSize maskSize,
                                                Lum32s* pSize);

/**
 * Size of the record for an element of floats: `4 * maskSize.width * maskSize.height + 32` bytes.
 * @copydetails lumiMorphGrayGetSize_8u_C1R
 */
LUMCV_API LumStatus lumiMorphGrayGetSize_32f_C1R(LumiSize roiSize, const Lum32f* pMask, LumiSize maskSize,
                                                 Lum32s* pSize);

/**
 * Lays the record of an element for 8u images.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pState   block of the queried size
 * @param roiSize  largest ROI that the record will be used for
 * @param pMask    the heights of the element, row by row without gaps
 * @param maskSize size of the element
 * @param anchor   the element's position that falls on the output pixel, within the element
 * @retval lumOk             the record has been laid
 * @retval lumErrNullPointer `pMask` or `pState` is null
 * @retval lumErrSize        a width or a height is below 1
 * @retval lumErrAnchor      `anchor` lies outside the element
 */
LUMCV_API LumStatus lumiMorphGrayInit_8u_C1R(LumiMorphGrayRecord* pState, LumiSize roiSize, const Lum32s* pMask,
                                             LumiSize maskSize, LumiPoint anchor);

/** Lays the record of an element for 32f images. @copydetails lumiMorphGrayInit_8u_C1R */
LUMCV_API LumStatus lumiMorphGrayInit_32f_C1R(LumiMorphGrayRecord* pState, LumiSize roiSize, const Lum32f* pMask,
                                              LumiSize maskSize, LumiPoint anchor);

/**
 * Dilates an 8u image by a gray element.
 *
 * The checks come in the order of the statuses below; the ROI is held against the record's at last. Source and
 * destination must not overlap.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes
 * @param roiSize    size of the ROI in pixels, neither side above that given to Init
 * @param borderType #lumBorderReplicate
 * @param pState     record of lumiMorphGrayInit_8u_C1R()
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1, or above the record's
 * @retval lumErrStep        a stride is smaller than a row in bytes
 * @retval lumErrArgument    `borderType` is anything but #lumBorderReplicate
 */
LUMCV_API LumStatus lumiGrayDilateBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const LumiMorphGrayRecord* pState);

/** Erodes an 8u image by a gray element. @copydetails lumiGrayDilateBorder_8u_C1R */
LUMCV_API LumStatus lumiGrayErodeBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType,
                                               const LumiMorphGrayRecord* pState);

/**
 * Dilates a 32f image by a gray element.
 *
 * The checks come in the order of the statuses below; the ROI is held against the record's at last. Source and
 * destination must not overlap.
 *
 * @param pSrc       first pixel of the source's ROI
 * @param srcStep    stride of the source, in bytes; a multiple of 4
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes; a multiple of 4
 * @param roiSize    size of the ROI in pixels, neither side above that given to Init
 * @param borderType #lumBorderReplicate
 * @param pState     record of lumiMorphGrayInit_32f_C1R()
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or above the record's
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 * @retval lumErrArgument      `borderType` is anything but #lumBorderReplicate
 */
LUMCV_API LumStatus lumiGrayDilateBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, LumiBorderType borderType,
                                                 const LumiMorphGrayRecord* pState);

/** Erodes a 32f image by a gray element. @copydetails lumiGrayDilateBorder_32f_C1R */
LUMCV_API LumStatus lumiGrayErodeBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const LumiMorphGrayRecord* pState);

/** @} */

/**
 * @defgroup reconstruct Reconstruction
 * @brief A marker grows below a mask, or shrinks above it, until nothing changes.
 *
 * The dilation form spreads each pixel of the marker to its neighbours, never above the mask; what is connected to a
 * marked pixel is rebuilt, and peaks of the mask without a mark are levelled. With `f` the marker and `g` the mask, it
 * repeats
 *
 *     f[x] = min(max of f over x and its neighbours, g[x])
 *
 * for all pixels until nothing changes. The erosion form is the same with min and max exchanged. The result is the one
 * fixed point that the marker leads to, whatever the order of the pixels, and is written over the marker. A marker that
 * lies above the mask at a pixel (below, in erosion) is cut to the mask there first.
 *
 * `norm` chooses the neighbours: with #lumDistanceNormL1 the four at the sides, with #lumDistanceNormInf the corners
 * as well. There are no neighbours outside the ROI, and nothing outside it is read.
 *
 * Values are only compared, never computed; so float images hold values of the marker or the mask in the end, zeros of
 * either sign being equal. Not-a-numbers compare with nothing: the call ends, but what stands at and behind such pixels
 * is not specified.
 *
 * The time depends on the images: each sweep over the rows carries values any distance along a row and down, or up, the
 * image, and only rows near a change are looked at again. A spiral takes a sweep for each of its turns.
 *
 * **Scratch**, in bytes, for a ROI of `W` columns and `H` rows: `4 W + H + 161` for 8u, `8 W + 2 H + 322` for 16u,
 * `16 W + H + 164` for 32f, `32 W + H + 168` for 64f.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: a stride is smaller than a row in bytes.
 * 4. #lumErrStepAlignment: a stride is not a multiple of the element size.
 * 5. #lumErrArgument: `norm` is neither #lumDistanceNormInf nor #lumDistanceNormL1.
 *
 * This keeps of an image what is connected to a pixel given by its place:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 * #include <string.h>
 *
 * LumStatus keepObject(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
 *                      LumiPoint seed)
 * {
 *     Lum32s bytes = 0;
 *     LumStatus status = lumiMorphReconstructGetBufferSize(roiSize, lumType8u, 1, &bytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bytes);
 *     if (buffer == NULL)
 *         return lumErrNullPointer;
 *
 *     for (Lum32s y = 0; y < roiSize.height; y++)
 *         memset(pDst + (size_t)y * (size_t)dstStep, 0, (size_t)roiSize.width);
 *     pDst[(size_t)seed.y * (size_t)dstStep + (size_t)seed.x] = 255;
 *     status = lumiMorphReconstructDilate_8u_C1IR(pSrc, srcStep, pDst, dstStep, roiSize, buffer, lumDistanceNormInf);
 *     free(buffer);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref gray_element
 *
 * @{
 */

/**
 * Scratch size of the reconstructions.
 *
 * The checks come in the order of the statuses below.
 *
 * @param roiSize     size of the ROI in pixels
 * @param dataType    #lumType8u, #lumType16u, #lumType32f or #lumType64f
 * @param numChannels 1
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrDataType     `dataType` is not among those above
 * @retval lumErrChannels     `numChannels` is not 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiMorphReconstructGetBufferSize(LumiSize roiSize, LumDataType dataType, Lum32s numChannels,
                                                      Lum32s* pBufferSize);

/**
 * Lets an 8u marker grow below the mask.
 *
 * @param pSrc       first pixel of the mask's ROI
 * @param srcStep    stride of the mask, in bytes
 * @param pSrcDst    first pixel of the marker's ROI; the result is written over it
 * @param srcDstStep stride of the marker, in bytes
 * @param roiSize    size of the ROI in pixels
 * @param pBuffer    scratch of the queried size
 * @param norm       #lumDistanceNormL1 for four neighbours, #lumDistanceNormInf for eight
 * @retval lumOk             the marker has become the result
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row in bytes
 * @retval lumErrArgument    `norm` is anything else
 */
LUMCV_API LumStatus lumiMorphReconstructDilate_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pSrcDst,
                                                       Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                       LumiDistanceNorm norm);

/** Lets an 8u marker shrink above the mask. @copydetails lumiMorphReconstructDilate_8u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructErode_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pSrcDst,
                                                      Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                      LumiDistanceNorm norm);

/**
 * Lets a 16u marker grow below the mask.
 *
 * @param pSrc       first pixel of the mask's ROI
 * @param srcStep    stride of the mask, in bytes; a multiple of the element size
 * @param pSrcDst    first pixel of the marker's ROI; the result is written over it
 * @param srcDstStep stride of the marker, in bytes; a multiple of the element size
 * @param roiSize    size of the ROI in pixels
 * @param pBuffer    scratch of the queried size
 * @param norm       #lumDistanceNormL1 for four neighbours, #lumDistanceNormInf for eight
 * @retval lumOk               the marker has become the result
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrArgument      `norm` is anything else
 */
LUMCV_API LumStatus lumiMorphReconstructDilate_16u_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pSrcDst,
                                                        Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                        LumiDistanceNorm norm);

/** Lets a 16u marker shrink above the mask. @copydetails lumiMorphReconstructDilate_16u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructErode_16u_C1IR(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pSrcDst,
                                                       Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                       LumiDistanceNorm norm);

/** Lets a 32f marker grow below the mask. @copydetails lumiMorphReconstructDilate_16u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructDilate_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst,
                                                        Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                        LumiDistanceNorm norm);

/** Lets a 32f marker shrink above the mask. @copydetails lumiMorphReconstructDilate_16u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructErode_32f_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pSrcDst,
                                                       Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                       LumiDistanceNorm norm);

/** Lets a 64f marker grow below the mask. @copydetails lumiMorphReconstructDilate_16u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructDilate_64f_C1IR(const Lum64f* pSrc, Lum32s srcStep, Lum64f* pSrcDst,
                                                        Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                        LumiDistanceNorm norm);

/** Lets a 64f marker shrink above the mask. @copydetails lumiMorphReconstructDilate_16u_C1IR */
LUMCV_API LumStatus lumiMorphReconstructErode_64f_C1IR(const Lum64f* pSrc, Lum32s srcStep, Lum64f* pSrcDst,
                                                       Lum32s srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                                                       LumiDistanceNorm norm);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
