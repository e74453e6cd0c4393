/**
 * @file
 * @brief Morphology: operations under a structuring element, and reconstruction.
 */
#ifndef LUMCV_MORPH_H
#define LUMCV_MORPH_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

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
 * // the background below bright spots smaller than five pixels
 * LumStatus background(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
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
 * The checks come in the order of the statuses below; size comes twice. Source and destination must not overlap.
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
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row in bytes
 * @retval lumErrArgument    `borderType` is anything but #lumBorderReplicate
 * @retval lumErrSize        the ROI is wider or higher than the record's
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
 * The checks come in the order of the statuses below; size comes twice. Source and destination must not overlap.
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
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 * @retval lumErrArgument      `borderType` is anything but #lumBorderReplicate
 * @retval lumErrSize          the ROI is wider or higher than the record's
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
 * LumStatus keepObject(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize, LumiPoint
 * seed)
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
