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

/**
 * Lays a layer-down record in the caller's block: 32f, one channel, in 64 bits.
 * @copydetails lumiPyramidLayerDownInit_8u_C1R
 */
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

/**
 * Lays a layer-up record in the caller's block: 32f, one channel, in 64 bits.
 * @copydetails lumiPyramidLayerUpInit_8u_C1R
 */
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
 * `pPyr1` and `pPyr2` are records of @ref pyramids whose `ppLayers` and `pLayerSteps` the caller has filled for the
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
 * @see @ref pyramids, @ref eigen
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
