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
 * A fill starts at the seed, takes the pixels that are connected with it and pass the family's test, paints them with a
 * new value and reports how many there are and their bounding box. `4Con` connects pixels along rows and columns,
 * `8Con` along diagonals too. Pixels outside the ROI do not exist. The seed itself is always taken.
 *
 * The test of a pixel `c` with `V`, the value of the seed before the fill, and `a`, the value of a neighbour that has
 * been taken:
 *
 * | Family | Elements | `c` passes if |
 * |---|---|---|
 * | plain | all | `c == V` |
 * | `Range` | integers | `max(V - minDelta, 0) <= c <= min(V + maxDelta, greatest value)` |
 * | `Range` | floats | `c >= V - minDelta` and `V + maxDelta >= c` |
 * | `Grad` | integers | `-minDelta <= c - a <= maxDelta` |
 * | `Grad` | floats | `abs(c - a + C) <= R`, `C = (minDelta - maxDelta) * 0.5`, `R = (minDelta + maxDelta) * 0.5` |
 *
 * With three channels each one has to pass, by its own values. Operations on floats are single precision, each rounded
 * by itself, and comparisons are those of IEEE 754: zeros are equal, and what is not a number passes no test.
 *
 * The record at `pRegion` gets the number of pixels, the new value (zeros beyond the first channel of a one-channel
 * image), and the box.
 *
 * **Plain** fills take all pixels of the seed's value that are connected with it. If that is the new value already,
 * in all channels, the call returns #lumOk at once; nothing is painted and the record is not written.
 *
 * **How the others go through an image.** They work in spans: parts of rows. From its first pixel a span is *extended*
 * along the row to the left and then to the right, up to the first pixel that does not pass.
 *
 * 1. The seed is extended to the first span. In an image of one row this is all. The direction of the first span is -1
 *    if the seed is in the last row, otherwise +1.
 * 2. The row `y - direction` of a span, if there is one, is scanned along the columns from `left` to `right`, and the
 *    row `y + direction`, in which the span was found, along those that its parent does not cover: from `left` to
 *    `parentLeft - 1`, then from `parentRight + 1` to `right`. With eight neighbours `left` is one less here and
 *    `right` one more, as far as there are such columns. The first span has a parent without columns, from
 *    `right + 1` to `right`.
 * 3. A pixel that passes in a scan is extended to a new span, and the scan goes on two columns behind its end. The new
 *    span is put on a stack. Its parent is the span of the scan, and its direction the same if it has been found in the
 *    row `y - direction`, otherwise the opposite.
 * 4. The span that was put on the stack last is taken from it and dealt with in the same way, until there is none.
 *
 * **Range** fills paint spans as soon as they are found. The new value may lie in the range; pixels that have been
 * painted are then found again, and `area` counts them again. The stack has room for `N = width * height / 4` spans,
 * rounded down. When it has become full it counts as empty, and what is put there next takes the place of the oldest;
 * the fill ends when the stack is empty, or counts as empty, after a span has been dealt with. So it may end with a
 * part of the region, which no status tells, and the box is that of the spans that have been dealt with. If `N` is 0
 * there is always room. A region that closes around a hole could go on for ever with a new value in the range: the fill
 * also ends once `1048576 + 64 * width * height` spans have been dealt with.
 *
 * **Grad** fills take a pixel once. `a` is, in an extension, the neighbour in the row that was taken before. An
 * extension to the right that comes from a scan takes a pixel also if it passes with the `a` of the span that is being
 * dealt with in the same column, up to that span's last column. In a scan `a` is the pixel of that span in the same
 * column; before its first and behind its last column, of the first or the last one. Floats that are not numbers as
 * deltas pass the checks and no test.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `imageStep` is smaller than a row in bytes.
 * 4. #lumErrStepAlignment: `imageStep` is not a multiple of the size of an element.
 * 5. #lumErrOutOfRange: the seed lies outside the ROI.
 * 6. #lumErrOutOfRange: a delta is below 0; of `Grad` fills of floats only.
 *
 * This paints an object and tells how large it is.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 *
 * LumStatus paintObject(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum8u* pBuffer,
 *                       Lum64f* pPixels)
 * {
 *     LumiConnectedComp region = {0};
 *     const LumStatus status =
 *         lumiFloodFill_Range8Con_8u_C1IR(pImage, imageStep, roiSize, seed, 255, 10, 10, &region, pBuffer);
 *     if (status == lumOk)
 *         *pPixels = region.area;
 *     return status;
 * }
 * @endcode
 *
 * @{
 */

/**
 * Size of the scratch of plain and `Range` fills: `6 * width * height + 32` bytes.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size goes, in bytes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFloodFillGetSize(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Size of the scratch of `Grad` fills: `(width + 2) * (height + 2) + 16 * width * height + 64` bytes.
 * @copydetails lumiFloodFillGetSize
 */
LUMCV_API LumStatus lumiFloodFillGetSize_Grad(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * The connected pixels of the seed's value, with four neighbours, in bytes of one channel.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param newVal    the value that the region gets
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize()
 * @retval lumOk             the region has been painted and reported; or there is nothing to do
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI
 */
LUMCV_API LumStatus lumiFloodFill_4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                               Lum8u newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in words of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum16u newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in signed integers of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_4Con_32s_C1IR(Lum32s* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum32s newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in floats of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum32f newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in bytes of three channels.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param pNewVal   the three values that the region gets
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize()
 * @retval lumOk             the region has been painted and reported; or there is nothing to do
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI
 */
LUMCV_API LumStatus lumiFloodFill_4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                               const Lum8u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in words of three channels.
 * @copydetails lumiFloodFill_4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                const Lum16u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with four neighbours, in floats of three channels.
 * @copydetails lumiFloodFill_4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                const Lum32f* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in bytes of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 */
LUMCV_API LumStatus lumiFloodFill_8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                               Lum8u newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in words of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum16u newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in signed integers of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_8Con_32s_C1IR(Lum32s* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum32s newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in floats of one channel.
 * @copydetails lumiFloodFill_4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                Lum32f newVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in bytes of three channels.
 * @copydetails lumiFloodFill_4Con_8u_C3IR
 */
LUMCV_API LumStatus lumiFloodFill_8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                               const Lum8u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in words of three channels.
 * @copydetails lumiFloodFill_4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                const Lum16u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels of the seed's value, with eight neighbours, in floats of three channels.
 * @copydetails lumiFloodFill_4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                const Lum32f* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in bytes of one
 * channel.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param newVal    the value that the region gets
 * @param minDelta  how far a value may lie below the seed's
 * @param maxDelta  how far a value may lie above the seed's
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize()
 * @retval lumOk             the region has been painted and reported
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in words of one
 * channel.
 * @copydetails lumiFloodFill_Range4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     Lum16u newVal, Lum16u minDelta, Lum16u maxDelta,
                                                     LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in floats of one
 * channel.
 * @copydetails lumiFloodFill_Range4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     Lum32f newVal, Lum32f minDelta, Lum32f maxDelta,
                                                     LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in bytes of three
 * channels.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param pNewVal   the three values that the region gets
 * @param pMinDelta how far a value may lie below the seed's, for each channel
 * @param pMaxDelta how far a value may lie above the seed's, for each channel
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize()
 * @retval lumOk             the region has been painted and reported
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum8u* pNewVal, const Lum8u* pMinDelta,
                                                    const Lum8u* pMaxDelta, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in words of three
 * channels.
 * @copydetails lumiFloodFill_Range4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     const Lum16u* pNewVal, const Lum16u* pMinDelta,
                                                     const Lum16u* pMaxDelta, LumiConnectedComp* pRegion,
                                                     Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with four neighbours, in floats of three
 * channels.
 * @copydetails lumiFloodFill_Range4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Range4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     const Lum32f* pNewVal, const Lum32f* pMinDelta,
                                                     const Lum32f* pMaxDelta, LumiConnectedComp* pRegion,
                                                     Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in bytes of one
 * channel.
 * @copydetails lumiFloodFill_Range4Con_8u_C1IR
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in words of one
 * channel.
 * @copydetails lumiFloodFill_Range4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     Lum16u newVal, Lum16u minDelta, Lum16u maxDelta,
                                                     LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in floats of one
 * channel.
 * @copydetails lumiFloodFill_Range4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     Lum32f newVal, Lum32f minDelta, Lum32f maxDelta,
                                                     LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in bytes of three
 * channels.
 * @copydetails lumiFloodFill_Range4Con_8u_C3IR
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum8u* pNewVal, const Lum8u* pMinDelta,
                                                    const Lum8u* pMaxDelta, LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in words of three
 * channels.
 * @copydetails lumiFloodFill_Range4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     const Lum16u* pNewVal, const Lum16u* pMinDelta,
                                                     const Lum16u* pMaxDelta, LumiConnectedComp* pRegion,
                                                     Lum8u* pBuffer);

/**
 * The connected pixels whose values lie in a range around that of the seed, with eight neighbours, in floats of three
 * channels.
 * @copydetails lumiFloodFill_Range4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Range8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                     const Lum32f* pNewVal, const Lum32f* pMinDelta,
                                                     const Lum32f* pMaxDelta, LumiConnectedComp* pRegion,
                                                     Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in bytes of
 * one channel.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param newVal    the value that the region gets
 * @param minDelta  how far a value may lie below its neighbour's
 * @param maxDelta  how far a value may lie above its neighbour's
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize_Grad()
 * @retval lumOk             the region has been painted and reported
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI; of floats also: a delta is below 0
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                   Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                   LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in words of
 * one channel.
 * @copydetails lumiFloodFill_Grad4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum16u newVal, Lum16u minDelta, Lum16u maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in floats of
 * one channel.
 * @copydetails lumiFloodFill_Grad4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum32f newVal, Lum32f minDelta, Lum32f maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in bytes of
 * three channels.
 *
 * @param pImage    first pixel of the image
 * @param imageStep stride of the image, in bytes
 * @param roiSize   size of the ROI, in pixels
 * @param seed      the pixel to start from
 * @param pNewVal   the three values that the region gets
 * @param pMinDelta how far a value may lie below its neighbour's, for each channel
 * @param pMaxDelta how far a value may lie above its neighbour's, for each channel
 * @param pRegion   where the region is reported
 * @param pBuffer   scratch of the size from lumiFloodFillGetSize_Grad()
 * @retval lumOk             the region has been painted and reported
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        `imageStep` is smaller than a row
 * @retval lumErrOutOfRange  the seed lies outside the ROI; of floats also: a delta is below 0
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                   const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                                   LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in words of
 * three channels.
 * @copydetails lumiFloodFill_Grad4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum16u* pNewVal, const Lum16u* pMinDelta,
                                                    const Lum16u* pMaxDelta, LumiConnectedComp* pRegion,
                                                    Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with four neighbours, in floats of
 * three channels.
 * @copydetails lumiFloodFill_Grad4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Grad4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum32f* pNewVal, const Lum32f* pMinDelta,
                                                    const Lum32f* pMaxDelta, LumiConnectedComp* pRegion,
                                                    Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in bytes of
 * one channel.
 * @copydetails lumiFloodFill_Grad4Con_8u_C1IR
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                   Lum8u newVal, Lum8u minDelta, Lum8u maxDelta,
                                                   LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in words of
 * one channel.
 * @copydetails lumiFloodFill_Grad4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum16u newVal, Lum16u minDelta, Lum16u maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in floats of
 * one channel.
 * @copydetails lumiFloodFill_Grad4Con_8u_C1IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    Lum32f newVal, Lum32f minDelta, Lum32f maxDelta,
                                                    LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in bytes of
 * three channels.
 * @copydetails lumiFloodFill_Grad4Con_8u_C3IR
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                   const Lum8u* pNewVal, const Lum8u* pMinDelta, const Lum8u* pMaxDelta,
                                                   LumiConnectedComp* pRegion, Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in words of
 * three channels.
 * @copydetails lumiFloodFill_Grad4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is odd
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum16u* pNewVal, const Lum16u* pMinDelta,
                                                    const Lum16u* pMaxDelta, LumiConnectedComp* pRegion,
                                                    Lum8u* pBuffer);

/**
 * The connected pixels whose values differ little from those of their neighbours, with eight neighbours, in floats of
 * three channels.
 * @copydetails lumiFloodFill_Grad4Con_8u_C3IR
 * @retval lumErrStepAlignment `imageStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiFloodFill_Grad8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                                    const Lum32f* pNewVal, const Lum32f* pMinDelta,
                                                    const Lum32f* pMaxDelta, LumiConnectedComp* pRegion,
                                                    Lum8u* pBuffer);

/** @} */

/**
 * @defgroup watershed Watershed and gradient segmentation
 * @brief Regions that grow from labelled seeds until they meet.
 *
 * All functions work on a *marker* image, in place:
 *
 * | 8u | 16u | Meaning |
 * |---|---|---|
 * | 0 | 0 | unlabelled; what is not reached from a seed stays so |
 * | 1..254 | 1..65534 | a label: a seed when the call begins |
 * | 255 | 65535 | a barrier when the call begins: it keeps its value and is never a source; a boundary when it ends |
 *
 * The gradient family marks its boundaries with 254 instead, which therefore is no label there. Labels of a caller that
 * have such a value are not noticed.
 *
 * `flag` is a sum of LumiSegmentFlag values. Bits that a family does not know are ignored, and if both boundary bits
 * are set, eight neighbours are looked at. `norm` tells which pixels are neighbours:
 *
 * | `norm` | Gradient, flood by level, lumiBoundSegments_8u_C1IR() | Sweep by cost |
 * |---|---|---|
 * | 0 | 8 neighbours | 8 neighbours, every step counts 1 |
 * | 1 | 4 neighbours | 4 neighbours, every step counts 1 |
 * | 2 | refused | 8 neighbours, edge steps count 11, diagonal steps 15 |
 * | 3 | refused | 4 neighbours, taken in pairs: distances are Euclidean |
 *
 * Pixels outside the ROI do not exist. Neighbours are looked at in the order left, right, up, down, up-left, up-right,
 * down-left, down-right.
 *
 * **Gradient segmentation** floods the image in the order of the differences between adjacent pixels: a pixel is
 * reached over the lowest passes. The cost of two pixels is the magnitude of their difference, of three channels the
 * largest. There is a queue for each cost, first in, first out. The frame of the ROI, its first and last row and
 * column, takes no part: its pixels are barriers.
 *
 * 1. In raster order, each unlabelled pixel that has seeds among its neighbours goes into the queue of the smallest
 * cost to one of them. If there is none, the call ends and the markers are as before, the frame too: so it is if the
 * width or the height is below 3.
 * 2. The first pixel of the lowest queue that is not empty is taken out and labelled: it gets the value of the labelled
 *    neighbour of the smallest cost, the last one of several; a value of 254 is taken only if there is no other of the
 *    same cost.
 * 3. If a boundary bit is set, and a neighbour among the four or eight that it names has another value from 1 to 253,
 *    the pixel becomes 254.
 * 4. Its neighbours that are 0 and in no queue go into the queues of their costs to this pixel, in the order above; and
 *    so on from 2.
 *
 * The frame comes out as 255.
 *
 * **Watershed, flood by level** (#lumSegmentByLevel) floods the image in the order of its heights. There is a queue for
 * each height. The whole ROI takes part.
 *
 * 1. In raster order, each unlabelled pixel with seeds among its neighbours is labelled and goes into the queue of its
 *    height. Only the caller's markers are looked at here, not what this scan has labelled. If a boundary bit is set,
 *    a seed that has a neighbour of another label becomes 255, and so do both of two seeds that touch. If no pixel goes
 *    into a queue, the call ends and the markers are as before.
 * 2. The first pixel of the lowest queue that is not empty is taken out; let its height, or what it was queued at, be
 *    the level. If a boundary bit is set and a neighbour has another label at this moment, the pixel becomes 255 and is
 *    done with.
 * 3. Otherwise each of its unlabelled neighbours, in the order above, is labelled and goes into the queue of its
 * height, but not below the level; and so on from 2.
 *
 * An unlabelled pixel is labelled with the label that all its labelled neighbours have in common; where two differ it
 * becomes 255, goes into no queue and does not spread.
 *
 * **Watershed, sweep by cost** (#lumSegmentByCost) finds for each pixel the path from a seed that climbs least, and
 * among those the shortest since its highest point. The cost of a pixel is a pair of height and steps. A seed has its
 * own height and 0 steps. A step to a pixel of height `I` from one of cost `(h, s)` makes `(I, 0)` if `I > h`, and
 * otherwise
 * `(h, s + n)` with `n` from the table above. Costs are compared by height first.
 *
 * A *visit* of a pixel looks at its neighbours in the row that was swept just before, from left to right, and then at
 * the one in its own row that the scan comes from; one whose step costs less than what the pixel has, and only such a
 * one, gives it that cost and its label. With `norm` 3 a visit looks at the neighbour `a` straight before in the other
 * row and `b` in its own row together: the smaller cost makes the step, `b` if they are equal, but if both have the
 * same height and their steps differ by less than a pixel, the steps become those of a front that has reached both:
 *
 *     8u:   n = 64;  min(a, b) + 64 - T[|a - b|],  T[d] = 64 - (d + sqrt(8192 - d * d)) / 2, rounded,  |a - b| < 64
 *     32f:  n = 256; 0.5 + 0.5 * (a + b + sqrt(131072 - (a - b) * (a - b))), in double, truncated,  |a - b| < 256
 *
 * Unlabelled pixels and barriers count as missing. Sweeps go downwards and upwards by turns over all rows, the first
 * one downwards; in the first row of a sweep there is no row before. Each row is scanned from left to right and then
 * from right to left, in the second scan without its last pixel. The first two sweeps visit every pixel. Later ones
 * visit those that are marked for this direction and this scan, or for which the pixel before in the scan has changed;
 * the visit takes this mark away. A pixel that changes marks, in every sweep: the neighbours in the row above for both
 * scans of upward sweeps, those in the row below for both scans of downward sweeps; and for sweeps of the opposite
 * direction its left neighbour for the scan from right to left and its right neighbour for the other. The second sweep
 * and each later one ends it all if it changes nothing. Boundary bits then do what lumiBoundSegments_8u_C1IR() does
 * with `val` 255, or 65535, and four or eight neighbours.
 *
 * Of 8u images cost is one number, `(h << 23) + s`, in 32 bits, and a path ends where it would reach 0x7FC00000. `I >
 * h` is `I << 23 >= cost + n` there, and with `norm` 3 costs are compared and subtracted instead of steps. Of 32f
 * images steps end at 0x7FFFFFFF. A path does not enter pixels of infinite height, and pixels whose height is not a
 * number count as lower than any other when they are entered; they are useless as seeds.
 *
 * **Checks** of the segmentation functions, in this order; the first that fails decides the status, and nothing has
 * been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: a stride is smaller than a row.
 * 4. #lumErrStepAlignment: a stride is not a multiple of the size of an element.
 * 5. #lumErrMode: #lumSegmentByLevel for 32f heights.
 * 6. #lumErrArgument: a watershed is asked for with neither algorithm; or `norm` is above what the table above gives:
 *    1, for the sweep by cost 3. If both algorithms are asked for, the flood by level is taken.
 *
 * This separates touching objects, given the distance of each pixel from the background, inverted, and a seed in each
 * object.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus separate(const Lum8u* pHeight, Lum32s heightStep, Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize)
 * {
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiSegmentWatershedGetBufferSize_8u_C1R(roiSize, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     status = lumiSegmentWatershed_8u_C1IR(pHeight, heightStep, pMarker, markerStep, roiSize, 0,
 *                                           lumSegmentByLevel | lumSegmentBound8, buffer);
 *     free(buffer);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref labels, @ref chamfer
 *
 * @{
 */

/** What a segmentation does, as a sum of bits. */
typedef Lum32s LumiSegmentFlag;

/** The values of LumiSegmentFlag. */
enum
{
    lumSegmentByLevel = 1, /**< watershed: flood by level; not of 32f heights */
    lumSegmentByCost = 2,  /**< watershed: sweep by cost */
    lumSegmentBound4 = 64, /**< mark pixels that touch another label along their four edges */
    lumSegmentBound8 = 128 /**< mark pixels that touch another label in any of eight directions */
};

/**
 * Size of the scratch of gradient segmentation: `17 * width * height + 115` bytes.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiSegmentGradientGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/** @copydoc lumiSegmentGradientGetBufferSize_8u_C1R */
LUMCV_API LumStatus lumiSegmentGradientGetBufferSize_8u_C3R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Gradient segmentation of an image of one channel.
 *
 * Image and markers must not overlap.
 *
 * @param pSrc       first pixel of the image
 * @param srcStep    stride of the image, in bytes
 * @param pMarker    first pixel of the markers
 * @param markerStep stride of the markers, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param norm       0 for eight neighbours, 1 for four
 * @param flag       a sum of LumiSegmentFlag values
 * @param pBuffer    scratch of the queried size, at any address
 * @retval lumOk             the markers have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrArgument    `norm` is above 1
 */
LUMCV_API LumStatus lumiSegmentGradient_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                                LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer);

/**
 * Gradient segmentation of an image of three channels.
 * @copydetails lumiSegmentGradient_8u_C1IR
 */
LUMCV_API LumStatus lumiSegmentGradient_8u_C3IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                                LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer);

/**
 * Size of the scratch of a watershed with 8u heights and markers: the larger of
 * `height + (6 * height + 2) * W + 66` and `(width + 2) * (height + 2) + 16 * width * height + 48` bytes, with `W` the
 * width rounded up to a multiple of 32.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiSegmentWatershedGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Size of the scratch of a watershed with 8u heights and 16u markers: the larger of
 * `height + (6 * height + 2) * W + 66` and `(2 * width + 4) * (height + 2) + 16 * width * height + 48` bytes, with `W`
 * twice the width, rounded up to a multiple of 32.
 * @copydetails lumiSegmentWatershedGetBufferSize_8u_C1R
 */
LUMCV_API LumStatus lumiSegmentWatershedGetBufferSize_8u16u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Size of the scratch of a watershed with 32f heights and 16u markers: `height + 9 * height * W + 66` bytes, with `W`
 * the width rounded up to a multiple of 4.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiSegmentWatershedGetBufferSize_32f16u_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Watershed of 8u heights with 8u markers.
 *
 * Image and markers must not overlap.
 *
 * @param pSrc       first pixel of the heights
 * @param srcStep    stride of the heights, in bytes
 * @param pMarker    first pixel of the markers
 * @param markerStep stride of the markers, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param norm       0 or 1, for the sweep by cost also 2 or 3
 * @param flag       a sum of LumiSegmentFlag values
 * @param pBuffer    scratch of the queried size, at any address
 * @retval lumOk             the markers have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrArgument    `flag` names no algorithm, or `norm` is not among those listed
 */
LUMCV_API LumStatus lumiSegmentWatershed_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                                 LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer);

/**
 * Watershed of 8u heights with 16u markers.
 * @copydetails lumiSegmentWatershed_8u_C1IR
 * @retval lumErrStepAlignment `markerStep` is odd
 */
LUMCV_API LumStatus lumiSegmentWatershed_8u16u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pMarker,
                                                    Lum32s markerStep, LumiSize roiSize, Lum32u norm,
                                                    LumiSegmentFlag flag, Lum8u* pBuffer);

/**
 * Watershed of 32f heights with 16u markers, by #lumSegmentByCost alone.
 *
 * Image and markers must not overlap.
 *
 * @param pSrc       first pixel of the heights
 * @param srcStep    stride of the heights, in bytes; a multiple of 4
 * @param pMarker    first pixel of the markers
 * @param markerStep stride of the markers, in bytes; even
 * @param roiSize    size of the ROI, in pixels
 * @param norm       0 to 3
 * @param flag       a sum of LumiSegmentFlag values
 * @param pBuffer    scratch of the queried size, at any address
 * @retval lumOk               the markers have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment `srcStep` is not a multiple of 4, or `markerStep` is odd
 * @retval lumErrMode          `flag` has #lumSegmentByLevel
 * @retval lumErrArgument      `flag` has not #lumSegmentByCost, or `norm` is above 3
 */
LUMCV_API LumStatus lumiSegmentWatershed_32f16u_C1IR(const Lum32f* pSrc, Lum32s srcStep, Lum16u* pMarker,
                                                     Lum32s markerStep, LumiSize roiSize, Lum32u norm,
                                                     LumiSegmentFlag flag, Lum8u* pBuffer);

/**
 * Marks the pixels at which labels meet.
 *
 * In raster order, a pixel becomes `val` if a neighbour before it, left or above, with `norm` 0 also above to the left
 * or to the right, is not `val` and differs from it, as they stand at that moment. So of two labels that meet the later
 * pixel is marked, and a line is one pixel wide. 0 is a label as any other here. In an image of one column four
 * neighbours are looked at, whatever the norm.
 *
 * @param pMarker    first pixel of the markers
 * @param markerStep stride of the markers, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param val        what marks a boundary
 * @param norm       0 for eight neighbours, 1 for four
 * @retval lumOk             the markers have been written
 * @retval lumErrNullPointer `pMarker` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrArgument    `norm` is above 1
 */
LUMCV_API LumStatus lumiBoundSegments_8u_C1IR(Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum8u val,
                                              Lum32u norm);

/**
 * Marks the pixels at which labels meet, of 16u markers.
 * @copydetails lumiBoundSegments_8u_C1IR
 * @retval lumErrStepAlignment `markerStep` is odd
 */
LUMCV_API LumStatus lumiBoundSegments_16u_C1IR(Lum16u* pMarker, Lum32s markerStep, LumiSize roiSize, Lum16u val,
                                               Lum32u norm);

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
 *     status =
 *         lumiMarkSpeckles_16s_C1IR(pDisparity, disparityStep, roiSize, 0, largestSpeckle, 16, lumNormInf, buffer);
 *     free(buffer);
 *     return status;
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
