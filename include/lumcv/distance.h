/**
 * @file
 * @brief Distances to the nearest zero pixel, fast marching, and the repair of masked pixels.
 */
#ifndef LUMCV_DISTANCE_H
#define LUMCV_DISTANCE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup chamfer Chamfer distance
 * @brief The distance of each pixel to the nearest zero pixel, as a sum of weighted steps.
 *
 * Pixels that are 0 keep the distance 0. Every other pixel gets the least sum of step weights over the paths to a zero
 * pixel that two passes over the image find. The caller chooses the weights:
 *
 * | Weight | Step |
 * |---|---|
 * | `m0 = pMetrics[0]` | to an edge neighbour, (1, 0) or (0, 1) |
 * | `m1 = pMetrics[1]` | to a diagonal neighbour, (1, 1) |
 * | `m2 = pMetrics[2]` | a knight's step, (2, 1) or (1, 2); 5x5 only |
 *
 * lumiGetDistanceTransformMask_32s() and its relatives give the usual weights.
 *
 * A distance does not exceed `SAT`: 255 for 8u, 65535 for 16u, and the largest finite number, 3.40282347e38, for 32f;
 * an image without a zero pixel becomes `SAT` everywhere. Integer sums are formed so wide that no weight makes them
 * wrap around. Float distances are running sums, each step rounded by itself: two steps along a row cost `(d + m0) +
 * m0`. `min(a, b)` below is `a < b ? a : b`. Pixels outside the ROI do not exist.
 *
 * **3x3.** A *candidate* is a neighbour's distance plus the weight of the step to it. The forward pass goes through the
 * rows from the first to the last and through each from left to right; a non-zero pixel becomes the least of `SAT` and
 * the candidates (-1, 0) and (0, -1) at `m0`, (-1, -1) and (+1, -1) at `m1`. The backward pass takes the opposite way
 * with the opposite neighbours, and lowers pixels that are above the threshold `t` to their least candidate. `t` is
 * `m0`, or `m1` if the *heavy edge* rule holds.
 *
 * - If `m1 >= 2 * m0`, diagonal neighbours are not looked at. The product does not wrap around; of floats it is
 *   rounded.
 * - Heavy edge: if `m0 > m1` and neither the width nor the height is 1, then in the last row both passes have one
 *   candidate more: the pixel two columns back, (-2, 0) in the forward and (+2, 0) in the backward pass, at `2 *
 *   m1`.
 *
 * **5x5.** With `n1 = min(m1, 2 * m0)`:
 *
 * - If `m2 >= n1 + m0`, the result is that of the 3x3 function with the same weights, `m1` as it was given.
 * - The mask is *regular* if `n1 > m0`, `m2 > 2 * m0` and `2 * m2 > 3 * n1`: it has the steps of the table above,
 *   at `m0`, `n1` and `m2`, and `t = m0`.
 * - Otherwise it is *extended* by steps of length two. With `M0 = min(m0, 3 * m2)` and `M1 = min(n1, 2 * m2)` its
 *   weights are `M0` for edge, `M1` for diagonal and `m2` for knight's steps, `min(2 * M0, 2 * M1, 2 * m2)` for
 *   (2, 0) and (0, 2), `min(2 * M1, M0 + m2)` for (2, 2), and `t = min(m0, M1, m2)`.
 *
 * Float weights are compared in double precision and with a tolerance: for `a >= b` read `a - b > -1e-7 * |b|`. The
 * comparisons are `m2 >= n1 + m0` for the first rule, and for an extended mask `m0 >= n1`, `2 * m0 >= m2` or
 * `1.5 * n1 >= m2`. Weights of the extended mask are single-precision results.
 *
 * Passes are as above, with all neighbours of the mask that come before the pixel: two columns to the left in its row
 * and, within two columns to each side, in the two rows above. The extended mask deviates from this in images of at
 * least four rows and four columns: after the forward pass, the last four rows are gone through column after column,
 * left to right and then right to left, and in a column from top to bottom; each pixel becomes the least of itself and
 * the candidates of the whole mask that lie in those four rows; until such a pair of sweeps changes nothing. The
 * backward pass then begins above these rows. In smaller images, passes of the extended mask are repeated until a pair
 * changes nothing.
 *
 * Weights that are not numbers pass the checks. A call with them ends; its distances mean nothing.
 *
 * **In place.** The `I` forms, and calls with the source as the destination, give the same result. Otherwise source and
 * destination must not overlap.
 *
 * **Checks** of the transforms, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than the width, or `dstStep` smaller than a row of the destination in
 *    bytes.
 * 4. #lumErrStepAlignment: `dstStep` is not a multiple of the size of an element.
 * 5. #lumErrMetric: a weight is not above 0. Two weights are read by the 3x3 functions, three by the 5x5 ones.
 *
 * This gives for each pixel an estimate of its Euclidean distance to the background.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 *
 * LumStatus measureDepth(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     Lum32f metrics[3];
 *     LumStatus status = lumiGetDistanceTransformMask_32f(5, lumDistanceNormL2, metrics);
 *     if (status != lumOk)
 *         return status;
 *     return lumiDistanceTransform_5x5_8u32f_C1R(pSrc, srcStep, pDst, dstStep, roiSize, metrics);
 * }
 * @endcode
 *
 * @see @ref true_distance
 *
 * @{
 */

/**
 * Distance over a 3x3 mask, in bytes.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  stride of the source, in bytes
 * @param pDst     first pixel of the destination
 * @param dstStep  stride of the destination, in bytes
 * @param roiSize  size of the ROI, in pixels
 * @param pMetrics two weights, each above 0
 * @retval lumOk             the distances have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrMetric      a weight is not above 0
 */
LUMCV_API LumStatus lumiDistanceTransform_3x3_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum32s* pMetrics);

/**
 * Distance over a 3x3 mask, in words.
 * @copydetails lumiDistanceTransform_3x3_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is odd
 */
LUMCV_API LumStatus lumiDistanceTransform_3x3_8u16u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, const Lum32s* pMetrics);

/**
 * Distance over a 3x3 mask, in floats.
 * @copydetails lumiDistanceTransform_3x3_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiDistanceTransform_3x3_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, const Lum32f* pMetrics);

/**
 * Distance over a 3x3 mask, in bytes, in place.
 *
 * @param pSrcDst    first pixel of the image
 * @param srcDstStep stride of the image, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param pMetrics   two weights, each above 0
 * @retval lumOk             the distances have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrMetric      a weight is not above 0
 */
LUMCV_API LumStatus lumiDistanceTransform_3x3_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize,
                                                      const Lum32s* pMetrics);

/**
 * Distance over a 5x5 mask, in bytes.
 *
 * @param pSrc     first pixel of the source
 * @param srcStep  stride of the source, in bytes
 * @param pDst     first pixel of the destination
 * @param dstStep  stride of the destination, in bytes
 * @param roiSize  size of the ROI, in pixels
 * @param pMetrics three weights, each above 0
 * @retval lumOk             the distances have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrMetric      a weight is not above 0
 */
LUMCV_API LumStatus lumiDistanceTransform_5x5_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum32s* pMetrics);

/**
 * Distance over a 5x5 mask, in words.
 * @copydetails lumiDistanceTransform_5x5_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is odd
 */
LUMCV_API LumStatus lumiDistanceTransform_5x5_8u16u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, const Lum32s* pMetrics);

/**
 * Distance over a 5x5 mask, in floats.
 * @copydetails lumiDistanceTransform_5x5_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiDistanceTransform_5x5_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, const Lum32f* pMetrics);

/**
 * Distance over a 5x5 mask, in bytes, in place.
 *
 * @param pSrcDst    first pixel of the image
 * @param srcDstStep stride of the image, in bytes
 * @param roiSize    size of the ROI, in pixels
 * @param pMetrics   three weights, each above 0
 * @retval lumOk             the distances have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrMetric      a weight is not above 0
 */
LUMCV_API LumStatus lumiDistanceTransform_5x5_8u_C1IR(Lum8u* pSrcDst, Lum32s srcDstStep, LumiSize roiSize,
                                                      const Lum32s* pMetrics);

/**
 * The usual weights, as integers.
 *
 * | Size | #lumDistanceNormInf | #lumDistanceNormL1 | #lumDistanceNormL2 |
 * |---|---|---|---|
 * | 3 | 1, 1 | 1, 2 | 2, 3 |
 * | 5 | 1, 1, 2 | 1, 2, 3 | 5, 7, 11 |
 *
 * The integer weights of #lumDistanceNormL2 measure in units of half and of a fifth of a pixel. The checks come in the
 * order of the statuses below.
 *
 * @param kernelSize 3 or 5
 * @param norm       the distance to approximate
 * @param pMetrics   where the weights go: two for size 3, three for size 5
 * @retval lumOk             the weights have been written
 * @retval lumErrNullPointer `pMetrics` is null
 * @retval lumErrSize        `kernelSize` is neither 3 nor 5
 * @retval lumErrArgument    `norm` is not among those listed
 */
LUMCV_API LumStatus lumiGetDistanceTransformMask_32s(Lum32s kernelSize, LumiDistanceNorm norm, Lum32s* pMetrics);

/**
 * The usual weights, as floats.
 *
 * | Size | #lumDistanceNormInf | #lumDistanceNormL1 | #lumDistanceNormL2 |
 * |---|---|---|---|
 * | 3 | 1, 1 | 1, 2 | 0.955, 1.3693 |
 * | 5 | 1, 1, 2 | 1, 2, 3 | 1, 1.4, 2.1969 |
 *
 * The checks come in the order of the statuses below.
 *
 * @param kernelSize 3 or 5
 * @param norm       the distance to approximate
 * @param pMetrics   where the weights go: two for size 3, three for size 5
 * @retval lumOk             the weights have been written
 * @retval lumErrNullPointer `pMetrics` is null
 * @retval lumErrSize        `kernelSize` is neither 3 nor 5
 * @retval lumErrArgument    `norm` is not among those listed
 */
LUMCV_API LumStatus lumiGetDistanceTransformMask_32f(Lum32s kernelSize, LumiDistanceNorm norm, Lum32f* pMetrics);

/**
 * The weights of lumiGetDistanceTransformMask_32f(), with size and norm in one number.
 *
 * `maskType` is divided by ten, towards zero; so a negative one is an argument error unless it is a multiple of ten,
 * which is a size error. The checks come in the order of the statuses below.
 *
 * @param maskType ten times the size, 3 or 5, plus the norm
 * @param pMetrics where the weights go: two for size 3, three for size 5
 * @retval lumOk             the weights have been written
 * @retval lumErrArgument    the remainder is not a norm
 * @retval lumErrNullPointer `pMetrics` is null
 * @retval lumErrSize        the quotient is neither 3 nor 5
 */
LUMCV_API LumStatus lumiGetDistanceTransformMask(Lum32s maskType, Lum32f* pMetrics);

/** @} */

/**
 * @defgroup true_distance Exact distance
 * @brief The Euclidean distance of each pixel to the nearest zero pixel.
 *
 * The squared distance to the nearest zero pixel of the same column, `f`, is exact. From left to right, each row then
 * gets the lower envelope of the parabolas that stand on these values. The parabola of column `q` takes over from that
 * of column `p < q` at `s = ((f(q) + q * q) - (f(p) + p * p)) * r`, with `r` the single-precision number nearest to
 * `0.5 / (q - p)`; those whose own interval does not begin before `s` are dropped. Column `x` gets `f(p) + (x - p) *
 * (x - p)` of the first parabola whose interval does not end before `x`. The distance is the root of this, correctly
 * rounded.
 *
 * All of it is single precision, each operation rounded by itself. In images of up to 1024 pixels in either direction
 * distances are those of the nearest zero pixel, correctly rounded: the rounding of `s` is too small there to let
 * another one win. In larger images it may let a zero pixel win that is slightly farther away, and squares of distances
 * above 4096 are rounded themselves. A column without a zero pixel counts as 3.40282347e38, and an image without any
 * becomes the root of that, 1.84467435e19, everywhere.
 *
 * **Checks** of lumiTrueDistanceTransform_8u32f_C1R(), in this order; the first that fails decides the status, and
 * nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than the width, or `dstStep` smaller than four bytes for each pixel.
 * 4. #lumErrStepAlignment: `dstStep` is not a multiple of 4.
 *
 * @see @ref chamfer
 *
 * @{
 */

/**
 * Size of the scratch of the exact distance: `52 * L + 84` bytes, with `L` the larger of width and height, rounded up
 * to a multiple of 4.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Euclidean distance to the nearest zero pixel.
 *
 * Source and destination must not overlap.
 *
 * @param pSrc    first pixel of the source
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination
 * @param dstStep stride of the destination, in bytes; a multiple of 4
 * @param roiSize size of the ROI, in pixels
 * @param pBuffer scratch of the queried size, at any address
 * @retval lumOk               the distances have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiTrueDistanceTransform_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup fast_marching Fast marching
 * @brief The distance of each non-zero pixel from the edge of its region, as the arrival time of a front that moves at
 * unit speed; on demand also, negative, in a band around the region.
 *
 * Non-zero pixels are *inside*, zero pixels *outside*. With `radius` 0 inside pixels get their distance and outside
 * pixels 0. With a positive `radius` outside pixels within that distance of the region get a negative value:
 *
 * | Value | Meaning |
 * |---|---|
 * | above 0 | inside: distance from the edge of the region |
 * | 999999 and above | inside a region that never meets the outside |
 * | -1e-10 | outside, and an edge neighbour of an inside pixel |
 * | less than that | outside, within the band: minus the distance |
 * | 0 | outside, beyond the band |
 *
 * **Solvers**, in single precision, each operation rounded by itself, with `min(a, b)` being `a < b ? a : b` and
 * `max(a, b)` being `a > b ? a : b`:
 *
 *     inner(a, b) = |a - b| >= 1 ? min(a, b) + 1 : ((a + b) + sqrt(2 - (a - b) * (a - b))) * 0.5
 *     outer(a, b) = a == 0 || b == 0 ? min(a, b) - 1
 *                 : |a - b| >= 1     ? max(a, b) - 1 : ((a + b) - sqrt(2 - (a - b) * (a - b))) * 0.5
 *
 * **A visit** of a pixel of value `c` has a neighbour `a` in the row that was swept before, and a neighbour `b` in its
 * own row on the side that the scan comes from; pixel 0 of a scan from left to right has no `b`. `L` is `-(radius +
 * 1e-5)`.
 *
 * - Inside: the new value is `inner(a, b)`, or `a + 1` without a `b`; with a positive `radius` negative neighbours
 *   count as 0. It is taken if it is less than `c`.
 * - Outside, with a positive `radius`: if `a` or `b` is above 0, the pixel becomes -1e-10. Otherwise, if `a` or
 *   `b` is below 0, the new value is `outer(a, b)`, or `a - 1` without a `b`, and is taken if it is not below `L`
 *   and `c` is 0 or less than it.
 *
 * **The sweeps.** Each goes through rows downwards or upwards, and through a row from left to right over all pixels and
 * then from right to left over all but the last.
 *
 * 1. Row 0: the first pixel is 999999 if it is inside, otherwise 0. From left to right, a pixel inside becomes the
 *    value before it plus 1, negative ones counting as 0; a pixel outside becomes 0, or with a positive `radius`
 *    -1e-10 after a value above 0, and after a negative one that value minus 1 if that is not below `L`. From
 *    right to left, pixels are visited with the right neighbour alone.
 * 2. Downwards over the other rows: from left to right pixels take their new value whatever was there before,
 *    outside pixels that get none 0; from right to left they are visited.
 * 3. Upwards over all rows but the last: all pixels of a *dirty* row are visited. All rows are dirty at first. A
 *    pixel that changes marks its neighbours for downward sweeps: the left one for the scan from right to left,
 *    the right one for the other, and the pixel below for both; one that becomes -1e-10 because `a` or `b` is
 *    above 0 does so too, even if it had that value. A row is dirty afterwards if a pixel of it has changed, and
 *    then makes both neighbouring rows dirty.
 * 4. Downwards over all rows but the first and upwards over all but the last, by turns: pixels of dirty rows are
 *    visited if they are marked for this direction and this scan, or if the pixel before them in the scan has
 *    changed; the mark is cleared. A pixel that changes marks its neighbours in the row as in step 3, but for
 *    sweeps of the opposite direction, the pixel above for both scans of upward and the one below for both of
 *    downward sweeps. From this step on, a pixel that becomes -1e-10 because `a` or `b` is above 0 does not count
 *    as changed, and marks nothing.
 *
 * The call ends after the first sweep of the steps 3 and 4 that changes nothing. What the destination held before does
 * not matter.
 *
 * A `radius` of minus zero is 0; one that is not a number counts as positive.
 *
 * **Checks** of lumiFastMarching_8u32f_C1R(), in this order; the first that fails decides the status, and nothing has
 * been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than the width, or `dstStep` smaller than four bytes for each pixel.
 * 4. #lumErrStepAlignment: `dstStep` is not a multiple of 4.
 * 5. #lumErrArgument: `radius` is below 0.
 *
 * @see @ref inpaint
 *
 * @{
 */

/**
 * Size of the scratch of fast marching: `((W + 5) * (height + 34)) + 40` bytes, with `W` the width rounded up to a
 * multiple of 32.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFastMarchingGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Distance from the edge of a region by fast marching.
 *
 * Source and destination must not overlap.
 *
 * @param pSrc    first pixel of the source: the region is what is not 0
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination
 * @param dstStep stride of the destination, in bytes; a multiple of 4
 * @param roiSize size of the ROI, in pixels
 * @param radius  width of the band around the region, in pixels; 0 for none
 * @param pBuffer scratch of the queried size, at any address
 * @retval lumOk               the distances have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 * @retval lumErrArgument      `radius` is below 0
 */
LUMCV_API LumStatus lumiFastMarching_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, Lum32f radius, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup inpaint Inpainting
 * @brief Fills the pixels that a mask marks as unknown from the known pixels around them.
 *
 * Unknown pixels are filled one after the other, in the order of a distance image: nearest to the known pixels first,
 * row by row where distances are equal. lumiFastMarching_8u32f_C1R() of the mask gives the distances that are expected.
 * A pixel that has been filled is known to those after it.
 *
 * lumiInpaintGetSize() tells the sizes of the state and of the scratch for a mask, Init lays the state in the caller's
 * block, and any number of `lumiInpaint` calls repair images of the same ROI with it. The block may stand at any
 * address, and must not be moved afterwards. Mask and distances are not needed after Init. Repairing writes into the
 * state: one thread at a time may use it. The result depends on the image and on the state's Init alone; strides may
 * change between calls.
 *
 * **Work rectangle.** All work is done on the bounding box of the non-zero mask pixels, extended by `r + 1` pixels to
 * each side and clipped to the ROI, with `r` the truncated `radius`. What is said to lie outside below is outside this
 * rectangle.
 *
 * **Order.** The list has the pixels of the work rectangle whose distance is above 0, row by row, up to the number of
 * non-zero mask pixels, sorted by distance. So masked pixels of distance 0 keep their value, and pixels that are not
 * masked are filled anew if their distance is above 0.
 *
 * **Gradient.** Each pixel and channel has a gradient of 16-bit integers, 0 at first. It is formed on the ring around
 * the mask: pixels that are not masked but have a masked one in the `k` by `k` square around them, `k = 2 * radius + 1`
 * truncated, from `-((k - 1) / 2)` to `k / 2` columns and rows away. Along each axis:
 *
 * | Neighbours | #lumInpaintByFront | #lumInpaintByIsophote |
 * |---|---|---|
 * | both are known | `(I(+1) - I(-1)) * 2` | `abs(I(+1) - I(0)) + abs(I(0) - I(-1))` |
 * | one is known | the difference towards it: `I(+1) - I(0)` or `I(0) - I(-1)` | twice its magnitude |
 * | none is known | 0 | 0 |
 *
 * Neighbours outside are unknown. After a pixel p has been filled, its gradient is formed by the same table from the
 * destination, but a component that has no known neighbour stays as it was. Then the y components of the pixels above
 * and below p and the x components of those left and right of it are formed anew: by the first line of the table if the
 * pixel beyond is known, otherwise by the second one, from p, if the pixel itself is known; else they stay.
 *
 * **Neighbours.** A pixel p is filled from the known pixels q of the square of side `2 * r + 1` around it, row by row,
 * p itself left out. If the square lies inside, q counts if its squared distance `d2` from p is not above `radius *
 * radius`, in single precision; a clipped square takes those of `d2 <= r * r`. Below, `(a, b)` is p - q, `d` is the
 * root of `d2`, and all operations are in single precision, rounded one by one, in the order written.
 *
 * **By front.** The normal (nx, ny) of a masked pixel is the gradient of the distance D in units of 1/4096: `(D(+1) -
 * D(-1)) * 4096 * 0.5` for each axis, or `(D(+1) - D(0)) * 4096` and `(D(0) - D(-1)) * 4096` in the first and last
 * column or row of the work rectangle, truncated, of which integer the low 16 bits are kept; a work rectangle of one
 * column or row has 0 along this axis, and pixels that are not masked have (0, 0). With `Wt` starting at 1e-30:
 *
 *     t = b * ny + a * nx, an integer made a float; 2.5e-25 if |t| < 2.5e-25
 *     w = |((1 / 4096) / (|D(q) - D(p)| + 1)) * (1 / (d2 * d)) * t|
 *     S += w * I(q),  Gx -= w * (G(q).x * a),  Gy -= w * (G(q).y * b),  Wt += w
 *
 * The new value is `(S / Wt + 0.5) + (Gx + Gy) / (1e-20 + sqrt(Gx * Gx + Gy * Gy))`: what is in parentheses and the
 * root in single precision, the sum with 1e-20, the last quotient and the sum with it in double; it is limited to
 * 0..255 and truncated. Of three channels all take `Gx + Gy` of the first one, over a root of their own.
 *
 * **By isophote.** With (gx, gy) the gradient of q and `Wt` starting at 1e-30, for each channel by itself:
 *
 *     c = |b * gx - a * gy|, an integer
 *     u = c == 0 ? 1e-6 : c / sqrt(gx * gx + gy * gy)
 *     w = u * (1 / ((d2 * d2 + 1) * d))
 *     S += w * I(q),  Wt += w
 *
 * The new value is `S / Wt + 0.5`, truncated.
 *
 * **Fallback.** If `Wt` is below 0.0001, S and Wt are the sum and the number of the known pixels among the four edge
 * neighbours, and Gx and Gy are 0. If none of them is known, the new value is 0.
 *
 * **Checks** come in the order told with each function; the first that fails decides the status, and nothing has been
 * written.
 *
 * This repairs a picture where its mask is not zero.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus repair(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, Lum8u* pDst, Lum32s dstStep,
 *                  LumiSize roiSize, Lum32f radius)
 * {
 *     Lum32s marchingBytes = 0;
 *     Lum32s specBytes = 0;
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiFastMarchingGetBufferSize_8u32f_C1R(roiSize, &marchingBytes);
 *     if (status == lumOk)
 *         status =
 *             lumiInpaintGetSize(pMask, maskStep, roiSize, radius, lumInpaintByFront, 1, &specBytes, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     Lum32s distStep = roiSize.width * (Lum32s)sizeof(Lum32f);
 *     Lum32f* dist = malloc((size_t)distStep * (size_t)roiSize.height);
 *     Lum8u* spec = malloc((size_t)specBytes);
 *     Lum8u* buffer = malloc((size_t)(bufferBytes > marchingBytes ? bufferBytes : marchingBytes));
 *     LumiInpaintState* state = NULL;
 *     status = lumErrNullPointer;
 *     if (dist != NULL && spec != NULL && buffer != NULL)
 *     {
 *         status = lumiFastMarching_8u32f_C1R(pMask, maskStep, dist, distStep, roiSize, 0.0f, buffer);
 *         if (status == lumOk)
 *             status = lumiInpaintInit_8u_C1R(&state, dist, distStep, pMask, maskStep, roiSize, radius,
 *                                             lumInpaintByFront, spec, buffer);
 *         if (status == lumOk)
 *             status = lumiInpaint_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, state, buffer);
 *     }
 *     free(buffer);
 *     free(spec);
 *     free(dist);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref fast_marching
 *
 * @{
 */

/** The state of a repair, laid in the caller's block by Init. */
typedef struct LumiInpaintState LumiInpaintState;

/** How unknown pixels are estimated. */
typedef Lum32u LumiInpaintMethod;

/** The values of LumiInpaintMethod. */
enum
{
    lumInpaintByFront = 0,   /**< along the front of filling, continued by the gradient */
    lumInpaintByIsophote = 1 /**< along lines of equal level */
};

/**
 * Sizes of the state and of the scratch.
 *
 * If no mask pixel is set, they are 192 and 0. Otherwise, with `n = 2 * r + 1`, `count` the number of non-zero mask
 * pixels, `w` and `h` the size of the work rectangle, `A()` rounding up to a multiple of 64, `D = A(4 * w) * h`, and
 * `s1`, `b1` and `s2`, `b2` what lumiMorphologyBorderGetSize_8u_C1R() reports for the work rectangle and masks of `k`
 * by `k`, with `k = 2 * radius + 1` truncated, and 3 by 3:
 *
 *     buffer = b1 + b2 + n * n
 *     state  = A(8 * count) + A(28 * n * n) + D + 2 * h * A(w) + (D if method is lumInpaintByFront)
 *            + ((S1 + S2 + 207) & ~63) + A(4 * channels * w) * h + 64
 *
 * where `S1` and `S2` are `s1` and `s2` rounded up to a multiple of 16.
 *
 * The checks come in this order: `pMask` is null, the stride, the size, `pSpecSize` or `pBufferSize` is null, `radius`
 * and `method`, `channels`, the sizes.
 *
 * @param pMask       first pixel of the mask: what is not 0 is unknown
 * @param maskStep    stride of the mask, in bytes
 * @param roiSize     size of the ROI, in pixels
 * @param radius      how far known pixels are looked for, in pixels; 1 at least
 * @param method      one of LumiInpaintMethod
 * @param channels    channels of the image: 1 or 3
 * @param pSpecSize   where the size of the state goes, in bytes
 * @param pBufferSize where the size of the scratch goes, in bytes
 * @retval lumOk              the sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrStep         `maskStep` is smaller than the width
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `radius` is not 1 or more, or `method` is not among those listed
 * @retval lumErrValue        `channels` is neither 1 nor 3
 * @retval lumErrSizeTooLarge a size exceeds 2147483647, or the work rectangle has 2 to the 28 pixels or more
 */
LUMCV_API LumStatus lumiInpaintGetSize(const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32f radius,
                                       LumiInpaintMethod method, Lum32s channels, Lum32s* pSpecSize,
                                       Lum32s* pBufferSize);

/**
 * Lays the state for the repair of one-channel images.
 *
 * The checks come in this order: `pMask` is null, the size, `maskStep`, `pDist` or `ppState` is null, `distStep`, its
 * alignment, `pSpec` or `pBuffer` is null, `radius` and `method`, the sizes.
 *
 * @param ppState  where the pointer to the state goes, which lies in `pSpec`
 * @param pDist    first pixel of the distances, which are above 0 where pixels are to be filled
 * @param distStep stride of the distances, in bytes; a multiple of 4
 * @param pMask    first pixel of the mask, the same as in lumiInpaintGetSize()
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI, in pixels
 * @param radius   how far known pixels are looked for, as in lumiInpaintGetSize()
 * @param method   one of LumiInpaintMethod, as in lumiInpaintGetSize()
 * @param pSpec    block of the queried size for the state
 * @param pBuffer  scratch of the queried size; may be null if no mask pixel is set
 * @retval lumOk               the state is ready
 * @retval lumErrNullPointer   a pointer is null; `pBuffer` only if a mask pixel is set
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          `maskStep` is smaller than the width, or `distStep` than four bytes for each pixel
 * @retval lumErrStepAlignment `distStep` is not a multiple of 4
 * @retval lumErrArgument      `radius` is not 1 or more, or `method` is not among those listed
 * @retval lumErrSizeTooLarge  lumiInpaintGetSize() reports no size for this work rectangle
 */
LUMCV_API LumStatus lumiInpaintInit_8u_C1R(LumiInpaintState** ppState, const Lum32f* pDist, Lum32s distStep,
                                           const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32f radius,
                                           LumiInpaintMethod method, Lum8u* pSpec, Lum8u* pBuffer);

/**
 * Lays the state for the repair of three-channel images.
 * @copydetails lumiInpaintInit_8u_C1R
 */
LUMCV_API LumStatus lumiInpaintInit_8u_C3R(LumiInpaintState** ppState, const Lum32f* pDist, Lum32s distStep,
                                           const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32f radius,
                                           LumiInpaintMethod method, Lum8u* pSpec, Lum8u* pBuffer);

/**
 * Repairs an image of one channel.
 *
 * All pixels of the ROI are written: those that are not filled are copied. Source and destination must not overlap,
 * unless they are the same image.
 *
 * The checks come in this order: `pSrc`, `pDst` or `pState` is null, the size, the strides, `pBuffer` is null.
 *
 * @param pSrc    first pixel of the source
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI, the same as that of Init
 * @param pState  state of an Init for as many channels; written to
 * @param pBuffer scratch of the queried size; may be null if no mask pixel was set
 * @retval lumOk             the image has been written
 * @retval lumErrNullPointer a pointer is null; `pBuffer` only if a mask pixel was set
 * @retval lumErrSize        the width or the height is below 1, or not that of Init
 * @retval lumErrStep        a stride is smaller than a row
 */
LUMCV_API LumStatus lumiInpaint_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                       LumiInpaintState* pState, Lum8u* pBuffer);

/**
 * Repairs an image of three channels.
 * @copydetails lumiInpaint_8u_C1R
 */
LUMCV_API LumStatus lumiInpaint_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                       LumiInpaintState* pState, Lum8u* pBuffer);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
