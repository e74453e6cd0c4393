/**
 * @file
 * @brief Image pyramids and the optical flow between two of them.
 */
#ifndef LUMCV_PYRAMID_H
#define LUMCV_PYRAMID_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Room and settings of an optical flow, laid in the caller's block by the Init functions. */
typedef struct LumOptFlowPyrLKState LumOptFlowPyrLKState;

/**
 * @defgroup flow Optical flow
 * @brief Where points of one image went in the next one: Lucas-Kanade steps on a window, level by level of two
 * pyramids.
 *
 * A point is an x and a y, in pixels, with (0, 0) at the centre of the first pixel. For each of the points `pPrev` of
 * the first image the flow finds the position `pNext` in the second image around which the picture looks like that
 * around the point. It begins at level `maxLev` of both pyramids, where the motion is short, and refines the position
 * down to level 0. What `pNext` holds before the call is not used.
 *
 * `pPyr1` and `pPyr2` are records of @ref pyramid whose `ppLayers` and `pLayerSteps` the caller has filled for the
 * levels 0 to `maxLev`. The flow only reads them and the images. Each image has the size and the stride of its own
 * record; the scales are those of `pPyr1`. With `scale(l)` the scale of level l, everything in double precision where
 * nothing else is said, and `single()` rounding to Lum32f:
 *
 * - The estimate begins as `v = single(pPrev * scale(maxLev))`.
 * - On each level l, the point of the first image is `u = single(pPrev * scale(l))`.
 * - After a level l above 0, `v` becomes `pNext = single(v * (1.0 / scale(l)))`, and on the next level
 *   `v = single(pNext * scale(l - 1))`. After level 0 the result is `pNext = v`.
 *
 * **Window.** It has `n = winSize + 2` samples a side, one pixel apart, and is centred on its point. On each axis, in
 * single precision: the corner is `c = p - (winSize + 1) * 0.5f` for a point p; `f = floor(c)`, and the fraction is
 * `r = c - f`. Sample k of 0 to n - 1 lies between the pixels f + k and f + k + 1. It is valid if both lie in the
 * image, or if the pixel f + k does and r is 0. Samples that are not valid on both axes are left out; a window around
 * what is not a number has no valid sample.
 *
 * **Patches.** With the fractions rx and ry, in single precision, `w00 = (1 - rx) * (1 - ry)`, `w01 = rx * (1 - ry)`,
 * `w10 = (1 - rx) * ry`, `w11 = rx * ry`, and the pixels p00, p01 (its right neighbour), p10 (the one below p00) and
 * p11. A neighbour whose fraction is 0 is not read; the nearer pixel stands in its place. There are four patches: I of
 * the first image and its derivatives Ix and Iy around u, J of the second image around v.
 *
 * - 8u, in integers: W00, W01 and W10 are the first three weights times 16384, to the nearest integer, ties to even;
 *   `W11 = 16384 - W00 - W01 - W10`. With `sum = W00 * p00 + W01 * p01 + W10 * p10 + W11 * p11`, I and J are
 *   `(sum + 64) >> 7`. The pixels of Ix and Iy are the 3x3 Scharr derivatives, shifted right by 4 (twice the slope);
 *   the patches are `(sum + 128) >> 8`. So all four have seven fractional bits.
 * - 32f, in single precision: all four are `((w00 * p00 + w01 * p01) + w10 * p10) + w11 * p11`. The pixels of Ix and Iy
 *   are the 3x3 Scharr derivatives, multiplied by 0.03125f (the slope).
 * - 16u as 32f, of the pixels as Lum32f; but those of Ix and Iy are the 3x3 Scharr derivatives of the image multiplied
 *   by 0.03125f.
 *
 * The derivatives are made of the whole level of the first image, with a replicated border, in the order of operations
 * of @ref corners. All four patches of a type have the same scale, so a step is a whole least-squares step.
 *
 * **Iteration**, on each level, at most `maxIter` times, with a last step of (0, 0) to begin with:
 *
 * 1. J is taken around v. The area A is what is valid in both windows, as samples of the same k. If it is empty, the
 *    point is lost.
 * 2. In the first iteration, or if A is not that of the iteration before: `Gxx = sum Ix * Ix`, `Gxy = sum Ix * Iy`,
 *    `Gyy = sum Iy * Iy` over A. Always: `bx = sum (I - J) * Ix`, `by = sum (I - J) * Iy`.
 * 3. `det = Gxx * Gyy - Gxy * Gxy`. Unless it is at least 2.220446049250313e-16, the point is lost.
 * 4. `dx = (Gyy * bx - Gxy * by) / det`, `dy = (Gxx * by - Gxy * bx) / det`; `v = single(v + (dx, dy))`.
 * 5. The iteration ends if `dx * dx + dy * dy` is below `threshold * threshold`.
 * 6. If both `|dx + last dx|` and `|dy + last dy|` are below the root of 1.1920928955078125e-07, which is
 *    0.00034526698300124393, the point swings: `v = single(v - 0.5 * (dx, dy))`, and the iteration ends.
 *
 * So a level whose first step is that short takes half of it back.
 *
 * **Sums** are double precision. Those of 8u are sums of integers and exact; they are rounded once, where they exceed
 * 53 bits. For 16u and 32f the difference I - J is taken in single precision, factors are widened before they are
 * multiplied, and there are four partial sums: rows from the top, columns from the left, the sample in column k of A
 * (counted from its first one) goes to partial sum `k mod 4`. The sum is `(s0 + s1) + (s2 + s3)`.
 *
 * **Error.** When a level is finished, `pError` becomes `single(sqrt(E / m))`, with E the sum of `(I - J) * (I - J)`
 * over the last A, J being the last one taken, and m the samples of A; of 8u, `single(sqrt(E / m) * 0.0078125)`. It is
 * 0 where E is not above 0. So it is the root mean square of what is left of the difference, in units of a pixel's
 * value.
 *
 * **Lost points.** `pStatus` is 0 for a point that has been followed to level 0, and otherwise l + 1 for one lost on
 * level l. A lost point keeps the position reached, `single(v * (1.0 / scale(l)))`, and the error of the last finished
 * level, 0 if there is none. It does not disturb the others. The arrays must not overlap.
 *
 * **Blocks.** With W and H the size of the largest level 0, `a = (W + 5) * (H + 5)`, `w = winSize + 3`, `A()` rounding
 * up to a multiple of 32 and M the larger of W and H, the state needs, in bytes:
 * - 8u: `4 * a + 40 * w * w + 2 * s + 130`, with `s = A(3 * (M + 2)) + 32`
 * - 16u: `48 * w * w + 4 * (3 * a + s) + 124`, with `s = A(12 * (M + 2)) + 2 * A(4 * W) + A(8 * (W + H)) + 32`
 * - 32f: `48 * w * w + 8 * a + 4 * s + 124`, with the same s
 *
 * The block holds the scratch as well: a state serves one call at a time, any number of them in turn. Apply works with
 * the state of its own type.
 *
 * **Checks** of apply, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: `numFeat` or `winSize` is below 1, or `winSize` is not that of the state.
 * 3. #lumErrArgument: `maxLev` is negative, beyond the last level of either pyramid or above 126; `maxIter` is below 1;
 *    `threshold` is negative.
 * 4. #lumErrSize: a level of the first pyramid is wider or higher than the size that the state was made for.
 *
 * The derivatives are a filter, and what it refuses is passed on, with the points as the levels before have left them:
 * #lumErrNullPointer for a level of the first pyramid whose image is null, and #lumErrStepAlignment for one of 16u or
 * 32f whose stride is not a multiple of the element size.
 *
 * This follows points from one gray image to the next without a pyramid, for motions shorter than the window:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus follow(Lum8u* pFirst, Lum8u* pSecond, Lum32s step, LumiSize size, const Lum32f* pPrev, Lum32f* pNext,
 *                  Lum8s* pStatus, Lum32f* pError, Lum32s count)
 * {
 *     const Lum32s winSize = 15;
 *     Lum32s stateBytes = 0;
 *     LumStatus status = lumiOpticalFlowPyrLKGetSize(winSize, size, lumType8u, 0, &stateBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* block = malloc((size_t)stateBytes);
 *     if (block == NULL)
 *         return lumErrNullPointer;
 *
 *     // an image is a pyramid of one level
 *     Lum64f scale = 1.0;
 *     void* images[2] = {pFirst, pSecond};
 *     LumiPyramidRecord pyramid[2];
 *     for (int i = 0; i < 2; ++i)
 *     {
 *         LumiPyramidRecord single = {&images[i], &size, &scale, &step, NULL, 0};
 *         pyramid[i] = single;
 *     }
 *     LumOptFlowPyrLKState* state = NULL;
 *     status = lumiOpticalFlowPyrLKInit_8u_C1R(&state, size, winSize, 0, block);
 *     if (status == lumOk)
 *         status = lumiOpticalFlowPyrLK_8u_C1R(&pyramid[0], &pyramid[1], pPrev, pNext, pStatus, pError, count, winSize,
 *                                              0, 10, 0.01f, state);
 *     free(block);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref pyramid, @ref eigen
 *
 * @{
 */

/**
 * Size of the state of an optical flow, scratch included.
 *
 * @param winSize    side of the window in pixels
 * @param roiSize    size of level 0, or of the largest one that the state is to serve
 * @param dataType   #lumType8u, #lumType16u or #lumType32f
 * @param hint       not used
 * @param pStateSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrSize         `winSize`, the width or the height is below 1
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrNullPointer  `pStateSize` is null
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiOpticalFlowPyrLKGetSize(Lum32s winSize, LumiSize roiSize, LumDataType dataType, Lum32s hint,
                                                Lum32s* pStateSize);

/**
 * Lays the state of an 8u flow in the caller's block.
 *
 * @param ppState   where the state's address goes: `pStateBuf` itself
 * @param roiSize   the size that was queried
 * @param winSize   side of the window in pixels
 * @param hint      kept in the state, and not used
 * @param pStateBuf the block, of the queried size
 * @retval lumOk             the state is ready
 * @retval lumErrSize        `winSize`, the width or the height is below 1
 * @retval lumErrNullPointer a pointer is null
 */
LUMCV_API LumStatus lumiOpticalFlowPyrLKInit_8u_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize,
                                                    Lum32s hint, Lum8u* pStateBuf);

/** Lays the state of a 16u flow in the caller's block. @copydetails lumiOpticalFlowPyrLKInit_8u_C1R */
LUMCV_API LumStatus lumiOpticalFlowPyrLKInit_16u_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize,
                                                     Lum32s hint, Lum8u* pStateBuf);

/** Lays the state of a 32f flow in the caller's block. @copydetails lumiOpticalFlowPyrLKInit_8u_C1R */
LUMCV_API LumStatus lumiOpticalFlowPyrLKInit_32f_C1R(LumOptFlowPyrLKState** ppState, LumiSize roiSize, Lum32s winSize,
                                                     Lum32s hint, Lum8u* pStateBuf);

/**
 * Follows points from one 8u pyramid to another.
 *
 * @param pPyr1     the pyramid in which the points are known
 * @param pPyr2     the pyramid in which they are looked for
 * @param pPrev     x and y of each point in level 0 of `pPyr1`
 * @param pNext     where x and y of each point in level 0 of `pPyr2` go
 * @param pStatus   where a byte for each point goes: 0, or one more than the level on which it was lost
 * @param pError    where the root mean square of the difference of each point's windows goes
 * @param numFeat   number of points
 * @param winSize   side of the window in pixels: that of the state
 * @param maxLev    the level to begin with
 * @param maxIter   the most steps that a point takes on a level
 * @param threshold a step shorter than this is the last one of its level, in pixels of the level
 * @param pState    the state
 * @retval lumOk               all points have been followed or lost
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          `numFeat` or `winSize` is below 1, `winSize` is not that of the state, or a level is
 *                             larger than the state serves
 * @retval lumErrArgument      `maxLev` is not a level of both pyramids or above 126, `maxIter` is below 1 or
 *                             `threshold` negative
 * @retval lumErrStepAlignment the stride of a 16u or 32f level is not a multiple of the element size
 */
LUMCV_API LumStatus lumiOpticalFlowPyrLK_8u_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                                const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                                Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter,
                                                Lum32f threshold, LumOptFlowPyrLKState* pState);

/** Follows points from one 16u pyramid to another. @copydetails lumiOpticalFlowPyrLK_8u_C1R */
LUMCV_API LumStatus lumiOpticalFlowPyrLK_16u_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                                 const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                                 Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter,
                                                 Lum32f threshold, LumOptFlowPyrLKState* pState);

/** Follows points from one 32f pyramid to another. @copydetails lumiOpticalFlowPyrLK_8u_C1R */
LUMCV_API LumStatus lumiOpticalFlowPyrLK_32f_C1R(const LumiPyramidRecord* pPyr1, const LumiPyramidRecord* pPyr2,
                                                 const Lum32f* pPrev, Lum32f* pNext, Lum8s* pStatus, Lum32f* pError,
                                                 Lum32s numFeat, Lum32s winSize, Lum32s maxLev, Lum32s maxIter,
                                                 Lum32f threshold, LumOptFlowPyrLKState* pState);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
