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

/** A smoothing kernel and room to build a smaller level, laid in the caller's block by the Init functions. */
typedef struct LumiPyramidLayerDownRecord LumiPyramidLayerDownRecord;

/** An interpolation kernel and room to build a larger level, laid in the caller's block by the Init functions. */
typedef struct LumiPyramidLayerUpRecord LumiPyramidLayerUpRecord;

/**
 * @defgroup pyramids Image pyramids
 * @brief Levels of an image, each smaller than the one before by a constant rate.
 *
 * The rate is any number above 1 and not above 10. A pyramid record (LumiPyramidRecord) holds the geometry of the
 * levels: their number, sizes and scales; the images themselves, and where they are noted in the record, are the
 * caller's business. A level is built from the next larger one by `lumiPyramidLayerDown`, which smooths and resamples;
 * `lumiPyramidLayerUp` goes the other way. Both work with a record of their own, which holds the kernel and the room
 * they need; one of each serves all levels.
 *
 * This makes the next smaller level and blows it up again, which leaves the coarse part of an image; both images have
 * the same stride:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus coarsen(const Lum8u* pSrc, Lum8u* pDst, Lum32s step, LumiSize size)
 * {
 *     const Lum16s kernel[5] = {1, 4, 6, 4, 1};
 *     const Lum32f rate = 2;
 *     LumiSize half;
 *     Lum32s downBytes = 0, bufferBytes = 1, upBytes = 0;
 *     LumStatus status = lumiGetPyramidDownROI(size, &half, rate);
 *     if (status == lumOk)
 *         status = lumiPyramidLayerDownGetSize_8u_C1R(size, rate, 5, &downBytes, &bufferBytes);
 *     if (status == lumOk)
 *         status = lumiPyramidLayerUpGetSize_8u_C1R(half, rate, 5, &upBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     Lum8u* downBlock = malloc((size_t)downBytes);
 *     Lum8u* upBlock = malloc((size_t)upBytes);
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     Lum8u* level = malloc((size_t)half.width * (size_t)half.height);
 *     LumiPyramidLayerDownRecord* down = NULL;
 *     LumiPyramidLayerUpRecord* up = NULL;
 *     status = lumErrNullPointer;
 *     if (downBlock != NULL && upBlock != NULL && buffer != NULL && level != NULL)
 *         status = lumiPyramidLayerDownInit_8u_C1R(&down, size, rate, kernel, 5, 2, downBlock, buffer);
 *     if (status == lumOk)
 *         status = lumiPyramidLayerUpInit_8u_C1R(&up, half, rate, kernel, 5, 2, upBlock);
 *     if (status == lumOk)
 *         status = lumiPyramidLayerDown_8u_C1R(pSrc, step, size, level, half.width, half, down);
 *     if (status == lumOk)
 *         status = lumiPyramidLayerUp_8u_C1R(level, half.width, half, pDst, step, size, up);
 *     free(level);
 *     free(buffer);
 *     free(upBlock);
 *     free(downBlock);
 *     return status;
 * }
 * @endcode
 *
 * **Sizes of levels.** A side of s pixels can come, on the way up, from at least min(s) to at most max(s) pixels:
 *
 * - With t = trunc(float(s - 1) * rate): min(s) is 1 if s is 1, `t + 1` if t is not below s, and `s + 1` otherwise.
 * - With t = trunc(float(s) * rate): max(s) is t if t is above s, and `s + 1` otherwise.
 *
 * On the way down, a side of s pixels becomes the d with min(d) <= s <= max(d). It is searched from
 * `max(trunc(float(s) * (1 / rate) + 0.5), 1)` on, downwards while min(d) is above s and upwards while max(d) is below.
 * All of this is computed in single precision; a level of one pixel stays one pixel.
 *
 * **Number of levels.** `levels` is the number of steps down that bring both sides to 1. The index of a pyramid's last
 * level is the smaller of `levels` and the requested `level`.
 *
 * **The pyramid record** stands at the very address of the caller's block, whatever that is; its arrays stand behind it
 * in the order of sizes, pointers, scales and strides, each at the next address that is a multiple of 8. Scale i is
 * `rate^-i`: entry 0 is 1.0, and each one after it that before it times `1.0 / rate`, in double precision from the
 * single-precision rate. Init sets all pointers, strides and `pLayerRecord` to zero, for the caller to fill in. A block
 * that is not aligned to 8 bytes holds a record that is not; the caller then copies it out byte by byte to read it.
 *
 * **Layer records** hold pointers into their own block and must not be moved. The block may stand at any address;
 * `*ppState` becomes the record's place in it, at a multiple of 64. Apply calls write into the record: one thread at a
 * time may use it. A record serves every ROI that is neither wider nor higher than the one of its Init, with the type
 * and the channels of its Init; those with `_L` and those without share their records.
 *
 * **Kernels** are symmetric and have an odd number k of taps, at least 3, of which only tap 0 to the centre c = k / 2
 * count; the others are their mirror image. If the given kernel differs from that (taps of floats: by more than
 * 1.1754944e-38), Init returns the warning #lumWrnKernelNotSymmetric with a record that is ready. Init normalises; with
 * `sum = tap[c] + 2 * (tap[0] + ... + tap[c - 1])`:
 *
 * - 8u and 16u, down: the sum is a 32-bit integer, and every tap becomes `((tap << 14) / sum) >> 1` in 32-bit integers;
 *   the division truncates. A sum of 0 leaves the taps as they are.
 * - 8u and 16u, up: the sum is in single precision, from left to right with the doubled part last, and every tap
 *   becomes `trunc(float(tap) * 16384 / sum + 0.5) >> 1`. A sum of 0 leaves the taps as they are.
 * - 32f, down and up: the sum is in single precision, the taps in brackets from left to right. If its magnitude exceeds
 *   1.1754944e-38, tap c becomes `tap / sum` and each other one `tap * (1 / sum)`; otherwise the taps stay.
 *
 * Of an integer tap the low 16 bits are kept. Such a tap has 13 fractional bits.
 *
 * **Layer down.** The result is that of three steps, for each channel by itself:
 *
 * 1. Each row is convolved with the kernel; the pixels beyond an end of the row are the last one repeated.
 * 2. The columns of this are convolved in the same way; rows beyond the image are its last one repeated.
 * 3. The smoothed image is sampled. If `1.99998 < rate < 2.00002`, in double precision, destination pixel (x, y) is the
 *    smoothed pixel (2 x, 2 y), or the last one of the axis where that lies beyond it. At any other rate it is
 *    interpolated: with the coordinate `a = float(x) * rate`, `i = floor(a)` and `w = a - i` in single precision, a row
 *    has `w * p[i + 1] + (1 - w) * p[i]`, both indices not above the last; and then the column has the same of two such
 *    rows, by y.
 *
 * | | Row | Column | Interpolated value | At the end |
 * |---|---|---|---|---|
 * | 8u | `sum >> 8` | `(sum + 16384) >> 15` | `trunc(... + 0.5)` | `(v + 4) >> 3` |
 * | 16u | `sum >> 11` | `(sum + 16384) >> 15` | `trunc(... + 0.5)` | `v` |
 * | 32f | `sum` | `sum` | as it is | `v` |
 *
 * The values of rows and columns of 8u are saturated to signed 16 bits, and the end saturates to the element type.
 * Sums of integers are taken modulo 2 to the 32 as signed numbers, and shifts keep the sign. Sums of floats begin with
 * the product of tap 0 and go on from left to right and from top to bottom; every product, sum and difference is
 * rounded to single precision by itself, also in the interpolation of integers, whose truncation is towards zero.
 *
 * One case deviates: 8u with `1.99998 < rate < 2.00002`, k = 5, the first three taps given to Init 1, 4 and 6, and a
 * ROI of more than 5 pixels in width and height. There the column yields the pixel at once, `(sum + 131072) >> 18`.
 * This is the sum of the 25 pixels with the weights 1, 4, 6, 4, 1 of both axes, plus 128, shifted right by 8.
 *
 * **Layer up.** The kernel lies around each destination pixel, in destination pixels, and the source pixels that fall
 * under it are weighted with the tap they meet. For destination coordinate d of an axis of s source pixels, in double
 * precision: `f = trunc(d / rate)`, `R = trunc(c / rate + 0.5)`, and for each j from f - R to f + R + 1 the tap
 * `floor(j * rate - d + 0.5) + c`; those below 0 or above k - 1 are left out. The weight of source pixel j, clamped to
 * 0..s - 1, is this tap, as a single-precision number, divided by the sum of all those used, added in ascending j in
 * single precision. Where no tap is used, or their sum is 0, it is source pixel f alone (clamped likewise), with the
 * weight 1. The result is, in single precision, the sum along each row first, and of these rows' sums along the column
 * then: products `weight * value` in ascending j, from the first one on, every product and sum rounded by itself. A tap
 * of 0 has its product like any other. 8u and 16u are rounded at the end, to nearest with ties to even, and saturated.
 *
 * In 8u and 16u, with k = 5, the first three taps given to Init 1, 4 and 6, and `1.99998 < rate < 2.00002` in double
 * precision, the weights of an axis of s pixels p are these instead:
 *
 * | Destination d | Eight times its value |
 * |---|---|
 * | 0, and any other if s is 1 | `6 p[0] + 2 p[1]` if s is above 1, `8 p[0]` if it is 1 |
 * | even, i = d / 2, 0 < i < s - 1 | `p[i - 1] + 6 p[i] + p[i + 1]` |
 * | even, i = s - 1 | `p[s - 2] + 7 p[s - 1]` |
 * | odd, i = d / 2 rounded down, i < s - 1 | `4 p[i] + 4 p[i + 1]` |
 * | 2 s - 1 and above | `8 p[s - 1]` |
 *
 * The weights of both axes are multiplied, and the pixel is `(sum + 32) >> 6`.
 *
 * **Checks.** The first that fails decides the status. The steps marked with `_L` are those of its functions only, and
 * test that width, height and strides do not exceed 2147483647. A rate that is not a number is not within its bounds.
 *
 * - lumiGetPyramidDownROI(), lumiGetPyramidUpROI(): null; size below 1; too large (`_L`); rate; a side of the latter's
 *   result exceeds 2147483647 (#lumErrSizeTooLarge, not `_L`).
 * - lumiPyramidGetSize(): null; size below 1; too large (`_L`); rate and `level`; a result exceeds its type
 *   (#lumErrSizeTooLarge).
 * - lumiPyramidInit(): null; size below 1; too large (`_L`); rate and `level`.
 * - `lumiPyramidLayerDownGetSize`, `lumiPyramidLayerUpGetSize`: size below 1; too large (`_L`); rate; `kernelSize`;
 *   null; a result exceeds its type (#lumErrSizeTooLarge).
 * - `lumiPyramidLayerDownInit`: `mode`; null; size below 1; too large (`_L`); rate; `kernelSize`.
 * - `lumiPyramidLayerUpInit`: size below 1; too large (`_L`); rate; `kernelSize`; null; `mode`.
 * - `lumiPyramidLayerDown`, `lumiPyramidLayerUp`: null; too large (`_L`); stride; alignment; record; `srcRoi`, then
 *   `dstRoi`.
 *
 * The statuses are #lumErrNullPointer, #lumErrSize, #lumErrSizeTooLarge, #lumErrStep (a stride is smaller than a row),
 * #lumErrStepAlignment (a stride is not a multiple of the element size), and #lumErrArgument for rate, level, kernel
 * size, mode and record. The ROIs of an apply call are #lumErrSize: `srcRoi` if a side is below 1 or above the one
 * given to Init, `dstRoi` if it is not what `lumiGetPyramidDownROI` yields for `srcRoi` (down), or a side is not within
 * the minimum and the maximum of `lumiGetPyramidUpROI` (up). A record is refused if no Init has laid it in a block of
 * zeros, or an Init of another element type or channel count. Without `_L`, the row that a stride is compared with is
 * a product of 32 bits that wraps.
 *
 * Nothing has been written if a check fails. Source and destination must not overlap.
 *
 * @{
 */

/**
 * Size of the next smaller level.
 *
 * @param srcRoi  size of a level in pixels
 * @param pDstRoi where the size of the next level goes
 * @param rate    the reduction rate, above 1 and not above 10
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pDstRoi` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     the rate is not within its bounds
 * @retval lumErrSizeTooLarge the width or the height exceeds 2147483647 (`_L`)
 */
LUMCV_API LumStatus lumiGetPyramidDownROI(LumiSize srcRoi, LumiSize* pDstRoi, Lum32f rate);

/** Size of the next smaller level, in 64 bits. @copydetails lumiGetPyramidDownROI */
LUMCV_API LumStatus lumiGetPyramidDownROI_L(LumiSizeL srcRoi, LumiSizeL* pDstRoi, Lum32f rate);

/**
 * The sizes that the next larger level may have.
 *
 * @param srcRoi     size of a level in pixels
 * @param pDstRoiMin where the smallest size goes
 * @param pDstRoiMax where the largest size goes
 * @param rate       the reduction rate, above 1 and not above 10
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     the rate is not within its bounds
 * @retval lumErrSizeTooLarge a side of the result exceeds 2147483647; with `_L`, one of `srcRoi`
 */
LUMCV_API LumStatus lumiGetPyramidUpROI(LumiSize srcRoi, LumiSize* pDstRoiMin, LumiSize* pDstRoiMax, Lum32f rate);

/** The sizes that the next larger level may have, in 64 bits. @copydetails lumiGetPyramidUpROI */
LUMCV_API LumStatus lumiGetPyramidUpROI_L(LumiSizeL srcRoi, LumiSizeL* pDstRoiMin, LumiSizeL* pDstRoiMax, Lum32f rate);

/**
 * Sizes of a pyramid record and of the scratch of its Init.
 *
 * The record has `52 * min(levels, level) + 152` bytes, the scratch `max(W, H) * 8`.
 *
 * @param pPyrSize where the size of the record in bytes goes
 * @param pBufSize where the size of the scratch in bytes goes
 * @param level    the largest index of a level, 1 or above
 * @param roiSize  size of level 0 in pixels
 * @param rate     the reduction rate, above 1 and not above 10
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     the rate is not within its bounds, or `level` is below 1
 * @retval lumErrSizeTooLarge a size exceeds 2147483647; with `_L`, the width or the height does
 */
LUMCV_API LumStatus lumiPyramidGetSize(Lum32s* pPyrSize, Lum32s* pBufSize, Lum32s level, LumiSize roiSize, Lum32f rate);

/** Sizes of a pyramid record and of the scratch of its Init, in 64 bits. @copydetails lumiPyramidGetSize */
LUMCV_API LumStatus lumiPyramidGetSize_L(Lum64s* pPyrSize, Lum64s* pBufSize, Lum32s level, LumiSizeL roiSize,
                                         Lum32f rate);

/**
 * Lays a pyramid record in the caller's block.
 *
 * @param ppPyr   where the address of the record goes: `pPyrMem`
 * @param level   the largest index of a level, 1 or above
 * @param roiSize size of level 0 in pixels
 * @param rate    the reduction rate, above 1 and not above 10
 * @param pPyrMem where the record goes: a block of the queried size
 * @param pBuffer scratch of the queried size; it may be freed after the call
 * @retval lumOk              the record is ready
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     the rate is not within its bounds, or `level` is below 1
 * @retval lumErrSizeTooLarge the width or the height exceeds 2147483647 (`_L`)
 */
LUMCV_API LumStatus lumiPyramidInit(LumiPyramidRecord** ppPyr, Lum32s level, LumiSize roiSize, Lum32f rate,
                                    Lum8u* pPyrMem, Lum8u* pBuffer);

/** Lays a pyramid record in the caller's block, for a size in 64 bits. @copydetails lumiPyramidInit */
LUMCV_API LumStatus lumiPyramidInit_L(LumiPyramidRecord** ppPyr, Lum32s level, LumiSizeL roiSize, Lum32f rate,
                                      Lum8u* pPyrMem, Lum8u* pBuffer);

/**
 * Size of a layer-down record: 8u, one channel.
 *
 * With k = `kernelSize`, C the number of channels, and the bytes e of a sample of the smoothed image and t of a tap:
 * 2 and 2 for 8u, 4 and 2 for 16u, 4 and 4 for 32f; all quotients rounded down, `levels` as told for the group:
 *
 * - W <= k or H <= k, with A = W * C rounded up to a multiple of 8:
 *   `((3 * k & ~1) * (t / 2) + 4 * A + 72) * k + k * t + (max(A, H) + (A + k * C) * (H + k)) * 4 + 272`.
 *   No scratch is needed, and `*pBufSize` is left alone.
 * - Otherwise, with w = max(2 * k, W) * C and h = max(2 * k, H):
 *   `(k / 2) * 96 + ((k + k / 2) * t + ((w + 3) / 4) * 16 + 176) * k + ((w + 7) / 8) * h * 8 * e`
 *   `+ max((w + 3) & ~3, h) * 4 + 408 + 8 * levels`. The scratch of Init has `max(W, H) * 8` bytes.
 *
 * @param srcRoi     size of the largest level to go down from, in pixels
 * @param rate       the reduction rate, above 1 and not above 10
 * @param kernelSize the number of taps, odd and not below 3
 * @param pStateSize where the size of the record in bytes goes
 * @param pBufSize   where the size of the scratch of Init in bytes goes
 * @retval lumOk              the sizes have been written
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge a size exceeds 2147483647; with `_L`, the width or the height does, or a size exceeds 64
 *                            bits
 * @retval lumErrArgument     the rate is not within its bounds, or `kernelSize` is below 3 or even
 * @retval lumErrNullPointer  a pointer is null
 */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_8u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                       Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 8u, three channels. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_8u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                       Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 16u, one channel. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_16u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                        Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 16u, three channels. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_16u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                        Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 32f, one channel. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_32f_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                        Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 32f, three channels. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_32f_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                        Lum32s* pStateSize, Lum32s* pBufSize);

/** Size of a layer-down record: 32f, one channel, in 64 bits. @copydetails lumiPyramidLayerDownGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownGetSize_32f_C1R_L(LumiSizeL srcRoi, Lum32f rate, Lum32s kernelSize,
                                                          Lum64s* pStateSize, Lum64s* pBufSize);

/**
 * Lays a layer-down record in the caller's block: 8u, one channel.
 *
 * @param ppState    where the address of the record goes
 * @param srcRoi     size of the largest level to go down from, in pixels
 * @param rate       the reduction rate, above 1 and not above 10
 * @param pKernel    the taps; they are normalised
 * @param kernelSize the number of taps, odd and not below 3
 * @param mode       2
 * @param pStateMem  where the record goes: a block of the queried size
 * @param pBuffer    scratch of the queried size, which may be freed after the call; may be null if the ROI's width or
 *                   height is not above `kernelSize`
 * @retval lumOk                    the record is ready
 * @retval lumWrnKernelNotSymmetric the record is ready and works with the left half of the kernel and its mirror image
 * @retval lumErrArgument           `mode` is not 2, the rate is not within its bounds, or `kernelSize` is below 3 or
 *                                  even
 * @retval lumErrNullPointer        a pointer is null
 * @retval lumErrSize               the width or the height is below 1
 * @retval lumErrSizeTooLarge       the width or the height exceeds 2147483647 (`_L`)
 */
LUMCV_API LumStatus lumiPyramidLayerDownInit_8u_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                    const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                    Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 8u, three channels. @copydetails lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_8u_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                    const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                    Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 16u, one channel. @copydetails lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_16u_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                     const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                     Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 16u, three channels. @copydetails lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_16u_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                     const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                     Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 32f, one channel. @copydetails lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_32f_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                     const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode,
                                                     Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 32f, three channels. @copydetails lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_32f_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                     const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode,
                                                     Lum8u* pStateMem, Lum8u* pBuffer);

/** Lays a layer-down record in the caller's block: 32f, one channel, in 64 bits. @copydetails
 * lumiPyramidLayerDownInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDownInit_32f_C1R_L(LumiPyramidLayerDownRecord** ppState, LumiSizeL srcRoi,
                                                       Lum32f rate, const Lum32f* pKernel, Lum32s kernelSize,
                                                       Lum32s mode, Lum8u* pStateMem, Lum8u* pBuffer);

/**
 * Builds the next smaller level: 8u, one channel.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes; a multiple of the element size
 * @param srcRoi  size of the source's ROI in pixels, not above the one given to Init
 * @param pDst    first pixel of the destination's ROI
 * @param dstStep stride of the destination, in bytes; a multiple of the element size
 * @param dstRoi  size of the destination's ROI in pixels: what lumiGetPyramidDownROI() yields for `srcRoi`
 * @param pState  the record of an Init for this element type and channel count
 * @retval lumOk               the level has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSizeTooLarge  a width, a height or a stride exceeds 2147483647 (`_L`)
 * @retval lumErrStep          a stride is too small
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrArgument      `pState` is not such a record
 * @retval lumErrSize          a side of `srcRoi` is below 1 or above that of Init, or `dstRoi` does not match `srcRoi`
 */
LUMCV_API LumStatus lumiPyramidLayerDown_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst,
                                                Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 8u, three channels. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst,
                                                Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 16u, one channel. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                                 Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 16u, three channels. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                                 Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 32f, one channel. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                                 Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 32f, three channels. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                                 Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerDownRecord* pState);

/** Builds the next smaller level: 32f, one channel, in 64 bits. @copydetails lumiPyramidLayerDown_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerDown_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, LumiSizeL srcRoi, Lum32f* pDst,
                                                   Lum64s dstStep, LumiSizeL dstRoi,
                                                   LumiPyramidLayerDownRecord* pState);

/**
 * Size of a layer-up record: 8u, one channel.
 *
 * In all types: with k = `kernelSize`, C the number of channels, n = `2 * trunc((k / 2) / rate + 0.5) + 2` in double
 * precision (`k / 2` rounded down), and Wu and Hu the sides of the largest size of lumiGetPyramidUpROI() for W and H:
 * `512 + 4 * k + max(Wu, Hu) * (4 * n + 8) + (n + 1) * (4 * C * Wu + 32) + 4 * C * (W + 2 * n)`.
 *
 * @param srcRoi     size of the largest level to go up from, in pixels
 * @param rate       the reduction rate, above 1 and not above 10
 * @param kernelSize the number of taps, odd and not below 3
 * @param pStateSize where the size of the record in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647; with `_L`, the width or the height does, or the size exceeds
 *                            64 bits
 * @retval lumErrArgument     the rate is not within its bounds, or `kernelSize` is below 3 or even
 * @retval lumErrNullPointer  `pStateSize` is null
 */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_8u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                     Lum32s* pStateSize);

/** Size of a layer-up record: 8u, three channels. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_8u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                     Lum32s* pStateSize);

/** Size of a layer-up record: 16u, one channel. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_16u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                      Lum32s* pStateSize);

/** Size of a layer-up record: 16u, three channels. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_16u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                      Lum32s* pStateSize);

/** Size of a layer-up record: 32f, one channel. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_32f_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                      Lum32s* pStateSize);

/** Size of a layer-up record: 32f, three channels. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_32f_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize,
                                                      Lum32s* pStateSize);

/** Size of a layer-up record: 32f, one channel, in 64 bits. @copydetails lumiPyramidLayerUpGetSize_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpGetSize_32f_C1R_L(LumiSizeL srcRoi, Lum32f rate, Lum32s kernelSize,
                                                        Lum64s* pStateSize);

/**
 * Lays a layer-up record in the caller's block: 8u, one channel.
 *
 * @param ppState    where the address of the record goes
 * @param srcRoi     size of the largest level to go up from, in pixels
 * @param rate       the reduction rate, above 1 and not above 10
 * @param pKernel    the taps; they are normalised
 * @param kernelSize the number of taps, odd and not below 3
 * @param mode       2
 * @param pStateMem  where the record goes: a block of the queried size
 * @retval lumOk                    the record is ready
 * @retval lumWrnKernelNotSymmetric the record is ready and works with the left half of the kernel and its mirror image
 * @retval lumErrSize               the width or the height is below 1
 * @retval lumErrSizeTooLarge       the width or the height exceeds 2147483647 (`_L`)
 * @retval lumErrArgument           the rate is not within its bounds, `kernelSize` is below 3 or even, or `mode` is not
 *                                  2
 * @retval lumErrNullPointer        a pointer is null
 */
LUMCV_API LumStatus lumiPyramidLayerUpInit_8u_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                  const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                  Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 8u, three channels. @copydetails lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_8u_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                  const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                  Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 16u, one channel. @copydetails lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_16u_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                   const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                   Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 16u, three channels. @copydetails lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_16u_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                   const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode,
                                                   Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 32f, one channel. @copydetails lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_32f_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                   const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode,
                                                   Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 32f, three channels. @copydetails lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_32f_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                                   const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode,
                                                   Lum8u* pStateMem);

/** Lays a layer-up record in the caller's block: 32f, one channel, in 64 bits. @copydetails
 * lumiPyramidLayerUpInit_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUpInit_32f_C1R_L(LumiPyramidLayerUpRecord** ppState, LumiSizeL srcRoi, Lum32f rate,
                                                     const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode,
                                                     Lum8u* pStateMem);

/**
 * Builds the next larger level: 8u, one channel.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes; a multiple of the element size
 * @param srcRoi  size of the source's ROI in pixels, not above the one given to Init
 * @param pDst    first pixel of the destination's ROI
 * @param dstStep stride of the destination, in bytes; a multiple of the element size
 * @param dstRoi  size of the destination's ROI in pixels: each side within what lumiGetPyramidUpROI() yields
 * @param pState  the record of an Init for this element type and channel count
 * @retval lumOk               the level has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSizeTooLarge  a width, a height or a stride exceeds 2147483647 (`_L`)
 * @retval lumErrStep          a stride is too small
 * @retval lumErrStepAlignment a stride is not a multiple of the element size
 * @retval lumErrArgument      `pState` is not such a record
 * @retval lumErrSize          a side of `srcRoi` is below 1 or above that of Init, or one of `dstRoi` is out of range
 */
LUMCV_API LumStatus lumiPyramidLayerUp_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst,
                                              Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 8u, three channels. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum8u* pDst,
                                              Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 16u, one channel. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                               Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 16u, three channels. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum16u* pDst,
                                               Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 32f, one channel. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                               Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 32f, three channels. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoi, Lum32f* pDst,
                                               Lum32s dstStep, LumiSize dstRoi, LumiPyramidLayerUpRecord* pState);

/** Builds the next larger level: 32f, one channel, in 64 bits. @copydetails lumiPyramidLayerUp_8u_C1R */
LUMCV_API LumStatus lumiPyramidLayerUp_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, LumiSizeL srcRoi, Lum32f* pDst,
                                                 Lum64s dstStep, LumiSizeL dstRoi, LumiPyramidLayerUpRecord* pState);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
