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
 * 6. #lumErrArgument: a watershed is asked for with neither algorithm; or `norm` is above 1, for the sweep by cost
 * above
 *    3. If both algorithms are asked for, the flood by level is taken.
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
 * @{
 */

/** @} */

/**
 * @defgroup speckles Speckles
 * @brief Small regions of nearly equal pixels, overwritten with one value.
 *
 * @{
 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif
