/**
 * @file
 * @brief Flood fill, watershed and gradient segmentation, labels and speckles.
 */
#ifndef LUMCV_SEGMENT_H
#define LUMCV_SEGMENT_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup flood_fill Flood fill
 * @brief A connected region around a seed pixel, painted in place and measured.
 *
 * @{
 */

/** @} */

/**
 * @defgroup watershed Watershed and gradient segmentation
 * @brief Regions that grow from labelled seeds until they meet.
 *
 * @{
 */

/** @} */

/**
 * @defgroup labels Labels
 * @brief A label of its own for each connected set of non-zero pixels.
 *
 * The pixels of the marker image that are not zero fall into components: sets in which each pixel is reached from each
 * other one in steps from neighbour to neighbour. `norm` says who is a neighbour: with #lumDistanceNormL1 the four
 * pixels that share an edge, with #lumDistanceNormInf the diagonal ones as well.
 *
 * Components are taken in raster order of their first pixel, row after row, each from left to right. The first one gets
 * `minLabel`, the next ones `minLabel + 1`, `minLabel + 2` and so on; behind `maxLabel` follows `minLabel` again, so
 * that different components share a label where there are more components than labels. All pixels of a component become
 * its label; pixels that are zero become or remain 0. `*pNumber` is the number of components, however often labels were
 * used again.
 *
 * | Output | Largest `maxLabel` |
 * |---|---|
 * | Lum8u | 254 |
 * | Lum16u | 65534 |
 * | Lum32s | 2147483646 |
 *
 * **Scratch.** `6 * width * height + 32` bytes, at any address. That is enough for every image: any number of
 * components of any shape is labelled completely. The queries test `pBufferSize` (#lumErrNullPointer), then width and
 * height (#lumErrSize), and at last that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * **Checks** of the labelling, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: a stride is smaller than a row in bytes.
 * 4. #lumErrStepAlignment: the stride of a 16u marker is odd, or that of a 32s output not a multiple of 4.
 * 5. #lumErrArgument: `minLabel` is below 1, `maxLabel` above the limit in the table, `minLabel` above `maxLabel`, or
 *    `norm` is neither #lumDistanceNormInf nor #lumDistanceNormL1.
 *
 * This counts the bright objects of an image and gives each of them a label.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus labelObjects(const Lum8u* pObjects, Lum32s objectsStep, Lum32s* pLabels, Lum32s labelsStep,
 *                        LumiSize roiSize, Lum32s* pNumber)
 * {
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiLabelMarkersGetBufferSize_8u32s_C1R(roiSize, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     if (buffer == NULL)
 *         return lumErrNullPointer;
 *     status = lumiLabelMarkers_8u32s_C1R(pObjects, objectsStep, pLabels, labelsStep, roiSize, 1, 0x7FFFFFFE,
 *                                         lumDistanceNormInf, pNumber, buffer);
 *     free(buffer);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref flood_fill, @ref speckles
 *
 * @{
 */

/**
 * Size of the scratch block of lumiLabelMarkers_8u_C1IR().
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize receives the bytes of the scratch block
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiLabelMarkersGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Size of the scratch block of lumiLabelMarkers_16u_C1IR().
 * @copydetails lumiLabelMarkersGetBufferSize_8u_C1R
 */
LUMCV_API LumStatus lumiLabelMarkersGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Size of the scratch block of lumiLabelMarkers_8u32s_C1R().
 * @copydetails lumiLabelMarkersGetBufferSize_8u_C1R
 */
LUMCV_API LumStatus lumiLabelMarkersGetBufferSize_8u32s_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Labels the components of a marker image of bytes in place.
 *
 * @param pMarker    first pixel of the marker image; labels take the place of its non-zero pixels
 * @param markerStep stride of the marker image, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param minLabel   the first label
 * @param maxLabel   the label behind which `minLabel` follows again
 * @param norm       #lumDistanceNormL1 for four neighbours, #lumDistanceNormInf for eight
 * @param pNumber    receives the number of components
 * @param pBuffer    scratch block
 * @retval lumOk             the labels have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrArgument    a label is not allowed, `minLabel` is above `maxLabel`, or the norm is not allowed
 */
LUMCV_API LumStatus lumiLabelMarkers_8u_C1IR(Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum32s minLabel,
                                             Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer);

/**
 * Labels the components of a marker image of words in place.
 * @copydetails lumiLabelMarkers_8u_C1IR
 * @retval lumErrStepAlignment the stride is odd
 */
LUMCV_API LumStatus lumiLabelMarkers_16u_C1IR(Lum16u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum32s minLabel,
                                              Lum32s maxLabel, LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer);

/**
 * Labels the components of an image of bytes in an image of 32-bit numbers. Source and destination must not overlap.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  stride of the source, in bytes
 * @param pDst     first pixel of the destination
 * @param dstStep  stride of the destination, in bytes
 * @param roiSize  size of the ROI, in pixels
 * @param minLabel the first label
 * @param maxLabel the label behind which `minLabel` follows again
 * @param norm     #lumDistanceNormL1 for four neighbours, #lumDistanceNormInf for eight
 * @param pNumber  receives the number of components
 * @param pBuffer  scratch block
 * @retval lumOk               the labels have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 * @retval lumErrArgument      a label is not allowed, `minLabel` is above `maxLabel`, or the norm is not allowed
 */
LUMCV_API LumStatus lumiLabelMarkers_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, Lum32s minLabel, Lum32s maxLabel,
                                               LumiDistanceNorm norm, Lum32s* pNumber, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup speckles Speckles
 * @brief Small regions of nearly equal pixels, overwritten with one value.
 *
 * Two pixels that share an edge are joined if they differ by `maxPixDiff` or less and neither equals `speckleVal`.
 * Pixels that are joined, directly or through others, make a region; its ends may differ by any amount. All pixels of a
 * region of at most `maxSpeckleSize` pixels become `speckleVal`; larger regions stay as they are. A pixel that equals
 * `speckleVal` belongs to no region and keeps its value; it divides those around it. Regions are those of the image as
 * it was given.
 *
 * The difference is the magnitude of the true difference of two elements. For 16s it lies in 0..65535 and is compared
 * with `maxPixDiff` taken as an unsigned 16-bit number, so that a negative `maxPixDiff` stands for one above 32767.
 * Floats are subtracted in single precision; a difference that is not a number joins nothing, nor does any with a
 * `maxPixDiff` that is negative or not a number. `speckleVal` is found by equality: zeros of both signs are equal, and
 * what is not a number equals nothing, so that such a pixel is a region of its own.
 *
 * `norm` is #lumNormInf; other values are refused. Regions always grow over the four pixels that share an edge.
 *
 * **Strides are not tested.** They may be negative, with `pSrcDst` the pixel that is treated as the first one, and need
 * not be multiples of the size of an element. Rows must not overlap; they have no order that matters.
 *
 * **Scratch.** `13 * width * height + 64` bytes, at any address. The query reports the low 32 bits of this number; from
 * 165191045 pixels on they are not the size of the block.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrcDst` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrNorm: `norm` is not #lumNormInf.
 *
 * This blackens what is left of noise in a disparity map.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus dropSpeckles(Lum16s* pDisparity, Lum32s disparityStep, LumiSize roiSize, Lum32s largestSpeckle)
 * {
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiMarkSpecklesGetBufferSize(roiSize, lumType16s, 1, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     if (buffer == NULL)
 *         return lumErrNullPointer;
 *     status = lumiMarkSpeckles_16s_C1IR(pDisparity, disparityStep, roiSize, 0, largestSpeckle, 16, lumNormInf,
 * buffer); free(buffer); return status;
 * }
 * @endcode
 *
 * @see @ref labels
 *
 * @{
 */

/**
 * Size of the scratch block of the speckle functions.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param dataType    #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param channels    1
 * @param pBufferSize receives the bytes of the scratch block
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pBufferSize` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrDataType    the type is not among those listed
 * @retval lumErrChannels    `channels` is not 1
 */
LUMCV_API LumStatus lumiMarkSpecklesGetBufferSize(LumiSize roiSize, LumDataType dataType, Lum32s channels,
                                                  Lum32s* pBufferSize);

/**
 * Overwrites the speckles of an image of bytes.
 *
 * @param pSrcDst        first pixel of the image
 * @param srcDstStep     stride of the image, in bytes; not tested
 * @param roiSize        size of the ROI, in pixels
 * @param speckleVal     what the pixels of speckles become
 * @param maxSpeckleSize the pixels of the largest region that is a speckle; below 1 nothing is
 * @param maxPixDiff     the largest difference between neighbours of one region
 * @param norm           #lumNormInf
 * @param pBuffer        scratch block
 * @retval lumOk             the speckles have been overwritten
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrNorm        the norm is not #lumNormInf
 */
LUMCV_API LumStatus lumiMarkSpeckles_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum8u speckleVal,
                                             Lum32s maxSpeckleSize, Lum8u maxPixDiff, LumiNorm norm, Lum8u* pBuffer);

/**
 * Overwrites the speckles of an image of unsigned words.
 * @copydetails lumiMarkSpeckles_8u_C1IR
 */
LUMCV_API LumStatus lumiMarkSpeckles_16u_C1IR(Lum16u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum16u speckleVal,
                                              Lum32s maxSpeckleSize, Lum16u maxPixDiff, LumiNorm norm, Lum8u* pBuffer);

/**
 * Overwrites the speckles of an image of signed words.
 * @copydetails lumiMarkSpeckles_8u_C1IR
 */
LUMCV_API LumStatus lumiMarkSpeckles_16s_C1IR(Lum16s* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum16s speckleVal,
                                              Lum32s maxSpeckleSize, Lum16s maxPixDiff, LumiNorm norm, Lum8u* pBuffer);

/**
 * Overwrites the speckles of an image of floats.
 * @copydetails lumiMarkSpeckles_8u_C1IR
 */
LUMCV_API LumStatus lumiMarkSpeckles_32f_C1IR(Lum32f* pSrcDst, Lum32s srcDstStep, LumiSize roiSize, Lum32f speckleVal,
                                              Lum32s maxSpeckleSize, Lum32f maxPixDiff, LumiNorm norm, Lum8u* pBuffer);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
