/**
 * @file
 * @brief Lens undistortion, subpixel copies, samples of a line, and the gray gradient.
 */
#ifndef LUMCV_GEOMETRY_H
#define LUMCV_GEOMETRY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup undistort Lens undistortion
 * @brief Images, or maps of coordinates, without the distortion of the lens.
 *
 * A lens is told by its focal lengths `fx` and `fy`, its centre `(cx, cy)`, both in pixels, its radial coefficients
 * `k1` and `k2` and, for the maps, its tangential coefficients `p1` and `p2`. A pixel `(x, y)` of the corrected image
 * comes from the place `(sx, sy)` of the distorted one:
 *
 *     u = x - cx          X = u / fx          r2 = X * X + Y * Y
 *     v = y - cy          Y = v / fy          f  = k1 * r2 + k2 * r2 * r2
 *
 *     g  = f + 2 * p1 * Y + 2 * p2 * X
 *     sx = x + u * g + p2 * fx * r2
 *     sy = y + v * g + p1 * fy * r2
 *
 * lumiUndistortRadial_8u_C1R() and its relatives resample an image by the radial coefficients alone.
 * lumiCreateMapCameraUndistort_32f_C1R() writes `sx` and `sy` into two maps.
 *
 * **Arithmetic.** Every sum, product and quotient below is rounded by itself to single precision, in the order of the
 * parentheses; `x` and `y` are the column and the row as numbers of this precision, and so are `W - 1` and `H - 1`. The
 * maps are rounded to nearest, ties to even. The resampled images are rounded towards zero in every step, the
 * conversions to single precision included. Neither depends on the rounding mode of the caller nor on how the caller
 * has denormal numbers treated; all control words are as they were after every return.
 *
 * *Radial form*, of the resampled images, and of maps whose `p1` and `p2` both equal 0:
 *
 *     cu = 1 / (fx * fx)                  cv = 1 / (fy * fy)
 *     u  = x - cx                         v  = y - cy
 *     X2 = (u * u) * cu                   Y2 = (v * v) * cv
 *     C  = ((k2 * X2) + k1) * X2          A  = ((k2 * Y2) + k1) * Y2          B = (2 * k2) * Y2
 *     f  = ((X2 * B) + C) + A
 *     sx = x + (u * f)                    sy = y + (v * f)
 *
 * *Tangential form*, of all other maps:
 *
 *     iu = 1 / fx                         iv = 1 / fy
 *     u  = x - cx                         v  = y - cy
 *     X  = u * iu                         Y  = v * iv
 *     r2 = (X * X) + (Y * Y)
 *     f  = (k1 * r2) + ((k2 * r2) * r2)
 *     g  = (f + ((2 * p1) * Y)) + ((2 * p2) * X)
 *     sx = (x + (u * g)) + ((p2 * fx) * r2)
 *     sy = (y + (v * g)) + ((p1 * fy) * r2)
 *
 * **Resampling.** A pixel of the destination is valid if `sx >= 0`, `sy >= 0`, `sx < W - 1` and `sy < H - 1`, where `W`
 * and `H` are the width and the height. A place that is infinite or not a number is not valid. A pixel that is not
 * valid keeps its value: what surrounds the corrected image is the caller's choice. With `ix`, `iy` the integers in
 * `(sx, sy)`, `p00`, `p10`, `p01`, `p11` the source's pixels `(ix, iy)`, `(ix + 1, iy)`, `(ix, iy + 1)`, `(ix + 1, iy +
 * 1)`, `tx = sx - ix` and `ty = sy - iy`, each channel of a valid pixel becomes
 *
 *     w00 = (1 - tx) * (1 - ty)       w10 = tx * (1 - ty)       w01 = (1 - tx) * ty       w11 = tx * ty
 *     value = ((w00 * p00) + (w10 * p10)) + ((w01 * p01) + (w11 * p11))
 *
 * Integer images store the integer part of `value + 0.5`, float images `value`. Source and destination must not
 * overlap.
 *
 * **Scratch.** `pBuffer` is a block of the size that lumiUndistortGetSize() tells, at any address, or null. It does not
 * change a bit of the result, and today it saves no time either: nothing is stored in it.
 *
 * This corrects a stream of gray frames, and keeps black what lies beyond the lens:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 * #include <string.h>
 *
 * LumStatus straighten(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     Lum32s bufferSize = 0;
 *     LumStatus status = lumiUndistortGetSize(roiSize, &bufferSize);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* pBuffer = malloc((size_t)bufferSize);  // may be null
 *     for (Lum32s y = 0; y < roiSize.height; ++y)
 *         memset(pDst + (size_t)y * (size_t)dstStep, 0, (size_t)roiSize.width);
 *     const Lum32f focalLength = 0.8f * (Lum32f)roiSize.width;
 *     status = lumiUndistortRadial_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, focalLength, focalLength,
 *                                         0.5f * (Lum32f)roiSize.width, 0.5f * (Lum32f)roiSize.height, 0.12f, -0.03f,
 *                                         pBuffer);
 *     free(pBuffer);
 *     return status;
 * }
 * @endcode
 *
 * @{
 */

/**
 * The size of the scratch block of this family: `((W + 3) / 4 * 4) * 24 + 32` bytes for a width `W`.
 *
 * @param roiSize     size of the ROI, in pixels
 * @param pBufferSize receives the size in bytes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647 bytes
 */
LUMCV_API LumStatus lumiUndistortGetSize(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Frees an image of bytes from radial distortion.
 *
 * @param pSrc    first pixel of the source
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI, in pixels
 * @param fx      horizontal focal length, in pixels
 * @param fy      vertical focal length, in pixels
 * @param cx      column of the centre
 * @param cy      row of the centre
 * @param k1      first radial coefficient
 * @param k2      second radial coefficient
 * @param pBuffer scratch of the size told by lumiUndistortGetSize(), or null
 * @retval lumOk             the valid pixels have been written
 * @retval lumErrNullPointer `pSrc` or `pDst` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrArgument    `fx` or `fy` is 0; tested last
 */
LUMCV_API LumStatus lumiUndistortRadial_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                               Lum32f k2, Lum8u* pBuffer);

/**
 * Frees an image of three bytes a pixel from radial distortion.
 * @copydetails lumiUndistortRadial_8u_C1R
 */
LUMCV_API LumStatus lumiUndistortRadial_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                               Lum32f k2, Lum8u* pBuffer);

/**
 * Frees an image of words from radial distortion.
 * @copydetails lumiUndistortRadial_8u_C1R
 * @retval lumErrStepAlignment a stride is odd; tested before the focal lengths
 */
LUMCV_API LumStatus lumiUndistortRadial_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                                Lum32f k2, Lum8u* pBuffer);

/**
 * Frees an image of three words a pixel from radial distortion.
 * @copydetails lumiUndistortRadial_16u_C1R
 */
LUMCV_API LumStatus lumiUndistortRadial_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                                Lum32f k2, Lum8u* pBuffer);

/**
 * Frees an image of floats from radial distortion.
 * @copydetails lumiUndistortRadial_8u_C1R
 * @retval lumErrStepAlignment a stride is not a multiple of 4; tested before the focal lengths
 */
LUMCV_API LumStatus lumiUndistortRadial_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                                Lum32f k2, Lum8u* pBuffer);

/**
 * Frees an image of three floats a pixel from radial distortion.
 * @copydetails lumiUndistortRadial_32f_C1R
 */
LUMCV_API LumStatus lumiUndistortRadial_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy, Lum32f k1,
                                                Lum32f k2, Lum8u* pBuffer);

/**
 * Writes where each pixel of the corrected image comes from.
 *
 * @param pxMap   first element of the map of columns `sx`
 * @param xStep   stride of this map, in bytes
 * @param pyMap   first element of the map of rows `sy`
 * @param yStep   stride of this map, in bytes
 * @param roiSize size of both maps, in elements
 * @param fx      horizontal focal length, in pixels
 * @param fy      vertical focal length, in pixels
 * @param cx      column of the centre
 * @param cy      row of the centre
 * @param k1      first radial coefficient
 * @param k2      second radial coefficient
 * @param p1      first tangential coefficient
 * @param p2      second tangential coefficient
 * @param pBuffer scratch of the size told by lumiUndistortGetSize(), or null
 * @retval lumOk               both maps have been written
 * @retval lumErrNullPointer   `pxMap` or `pyMap` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 * @retval lumErrArgument      `fx` or `fy` is 0
 */
LUMCV_API LumStatus lumiCreateMapCameraUndistort_32f_C1R(Lum32f* pxMap, Lum32s xStep, Lum32f* pyMap, Lum32s yStep,
                                                         LumiSize roiSize, Lum32f fx, Lum32f fy, Lum32f cx, Lum32f cy,
                                                         Lum32f k1, Lum32f k2, Lum32f p1, Lum32f p2, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup subpixel Subpixel copy
 * @brief Rectangles at a fractional offset.
 *
 * lumiCopySubpix_8u_C1R() and its relatives copy a rectangle that is shifted by a fraction of a pixel, by bilinear
 * interpolation. lumiCopySubpixIntersect_8u_C1R() and its relatives copy a rectangle centred on a point between pixels
 * of a whole image; they continue the image beyond its edges by its outermost pixels, and report which part of the
 * rectangle needed none of that. Source and destination must not overlap.
 *
 * **Plain copies.** A pixel `(x, y)` of the destination is interpolated between `p00`, `p10`, `p01`, `p11`, the pixels
 * `(x, y)`, `(x + 1, y)`, `(x, y + 1)`, `(x + 1, y + 1)` of the source. So one column and one row more than the ROI are
 * read of the source, to the right and below, and nothing else; its stride need not be larger than a row of the ROI.
 *
 * Only the fractions of `dx` and `dy` count, `pSrc` stands at the integer position already: from each the integer
 * between it and 0 is subtracted, and 1 is added to a negative remainder, in single precision. So -0.25 acts as 0.75,
 * and a tiny negative remainder as 1. An offset that is infinite or not a number acts as 0.
 *
 * *Integers.* The fractions `s` of `dx` and `t` of `dy` become weights in units of 1 / 16384:
 *
 *     a = integer part of (s * 16384 + 0.5)       qa = 16384 - a
 *     b = integer part of (t * 16384 + 0.5)       qb = 16384 - b
 *     w00 = (qa * qb + 8192) >> 14                w10 = (a * qb + 8192) >> 14
 *     w01 = (qa * b + 8192) >> 14                 w11 = (a * b + 8192) >> 14
 *
 * `s * 16384 + 0.5` is computed in single precision; `a` and `b` are held within 0..16384. The weights' sum is never
 * below 16384. If it exceeds that, the excess is taken from one of them: from `w00` if it is not below any other;
 * otherwise from `w01` if it is not below any other; otherwise from `w11` if `w10` is below any other, else from `w10`.
 * Then
 *
 *     sum = w00 * p00 + w10 * p10 + w01 * p01 + w11 * p11
 *     value = (sum + 8192) >> 14
 *
 * The `_Sfs` forms scale by a power of two, value = sum / 2^(14 + `scaleFactor`): for a `scaleFactor` of -13 or more it
 * is `(sum + 2^(scaleFactor + 13)) >> (scaleFactor + 14)`, for a lower one `sum << -(scaleFactor + 14)`, in both cases
 * without a limit of width, and a value above 65535 becomes 65535. Above 16 the result is 0.
 *
 * *Floats.* With `s` and `t` as above, where an `s` that is not above 1e-6f becomes 1e-6f and a `t` that is not above
 * 1e-9f becomes 1e-9f,
 *
 *     r(p, q) = ((1 - s) * p) + (s * q)
 *     value = t * (r(p01, p11) + (((1 - t) / t) * r(p00, p10)))
 *
 * every step rounded to single precision. So at fractions of 0 a value is reproduced only up to rounding, and values
 * above about 3e29 may overflow.
 *
 * **Copies around a point.** `S` is the size of the source and `D` the size of the destination. Shown for the columns;
 * the rows are alike:
 *
 *     begin = point.x - (D - 1) * 0.5f
 *     ix = integer part of (begin + D), less D
 *     s = begin - ix
 *
 * `begin`, `begin + D` and `s` are computed in single precision, to which `D - 1`, `D` and `ix` are converted. The
 * integers have no limit: points may lie however far away. A coordinate that is not a number is taken as minus
 * infinity. Weights come from `s` as above; a negative `s`, or one that is not a number, gives `a = 0`.
 *
 * The columns from `pMin->x` to `pMax->x` have both their neighbours in the source:
 *
 *     pMin->x = max(0, min(-ix, D))
 *     pMax->x = min(D - 1, S - 2 - ix), or -1 if ix >= S
 *
 * There may be none: a rectangle wholly before the source has `pMin->x = D` and `pMax->x = D - 1`, one wholly behind it
 * 0 and -1. Columns before `pMin->x` take the source's first column for both neighbours, those behind `pMax->x` its
 * last one, and rows likewise. All of the destination is written. A pixel within both ranges has the value of the plain
 * copies. Elsewhere, with `p` the nearest pixel of the source, `q` the next one along the edge, and for the `_Sfs` form
 * its own rounding and shift:
 *
 * | Column | Row | Integers | Floats |
 * |---|---|---|---|
 * | within | not within | `(qa * p + a * q + 8192) >> 14` | `r(p, q)` |
 * | not within | within | `(qb * p + b * q + 8192) >> 14` | `t * (q + (((1 - t) / t) * p))` |
 * | not within | not within | `((qa + a) * p + 8192) >> 14`, which is `p` | `p` |
 *
 * **Checks** of all functions, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height of a ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of its own ROI.
 * 4. #lumErrStepAlignment: a stride is not a multiple of the size of its image's elements.
 *
 * This cuts the surroundings of a feature out of a gray image, and tells whether all of them were there:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 *
 * LumStatus cutPatch(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcSize, LumiPoint32f feature, Lum8u patch[31][32],
 *                    int* pIsWhole)
 * {
 *     const LumiSize patchSize = {31, 31};
 *     LumiPoint first, last;
 *     const LumStatus status = lumiCopySubpixIntersect_8u_C1R(pSrc, srcStep, srcSize, patch[0], 32, patchSize, feature,
 *                                                             &first, &last);
 *     *pIsWhole = status == lumOk && first.x == 0 && first.y == 0 && last.x == 30 && last.y == 30;
 *     return status;
 * }
 * @endcode
 *
 * @{
 */

/**
 * Copies bytes at a fractional offset.
 *
 * @param pSrc    first pixel of the source, at the integer part of the offset
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI, in pixels; the source has a column and a row more
 * @param dx      horizontal offset, of which the fraction counts
 * @param dy      vertical offset, of which the fraction counts
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row of the ROI
 */
LUMCV_API LumStatus lumiCopySubpix_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                          LumiSize roiSize, Lum32f dx, Lum32f dy);

/**
 * Copies words at a fractional offset.
 * @copydetails lumiCopySubpix_8u_C1R
 * @retval lumErrStepAlignment a stride is odd
 */
LUMCV_API LumStatus lumiCopySubpix_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum32f dx, Lum32f dy);

/**
 * Copies floats at a fractional offset.
 * @copydetails lumiCopySubpix_8u_C1R
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpix_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum32f dx, Lum32f dy);

/**
 * Copies bytes as words, scaled by a power of two at a fractional offset.
 * @copydetails lumiCopySubpix_8u_C1R
 * @param scaleFactor the power of two by which the values are divided; negative ones multiply
 * @retval lumErrStepAlignment `dstStep` is odd
 */
LUMCV_API LumStatus lumiCopySubpix_8u16u_C1R_Sfs(const Lum8u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, Lum32f dx, Lum32f dy, Lum32s scaleFactor);

/**
 * Copies bytes as floats at a fractional offset.
 * @copydetails lumiCopySubpix_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpix_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, Lum32f dx, Lum32f dy);

/**
 * Copies words as floats at a fractional offset.
 * @copydetails lumiCopySubpix_8u_C1R
 * @retval lumErrStepAlignment `srcStep` is odd, or `dstStep` not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpix_16u32f_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, Lum32f dx, Lum32f dy);

/**
 * Copies bytes around a point, beyond the edges of the source too.
 *
 * @param pSrc       first pixel of the source
 * @param srcStep    stride of the source, in bytes
 * @param srcRoiSize size of the source, in pixels
 * @param pDst       first pixel of the destination
 * @param dstStep    stride of the destination, in bytes
 * @param dstRoiSize size of the destination, in pixels
 * @param point      the centre of the rectangle, in the source's coordinates
 * @param pMin       receives the first column and row that need nothing beyond the source
 * @param pMax       receives the last column and row that need nothing beyond the source
 * @retval lumOk             the destination, `pMin` and `pMax` have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        a width or a height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize, Lum8u* pDst,
                                                   Lum32s dstStep, LumiSize dstRoiSize, LumiPoint32f point,
                                                   LumiPoint* pMin, LumiPoint* pMax);

/**
 * Copies words around a point, beyond the edges of the source too.
 * @copydetails lumiCopySubpixIntersect_8u_C1R
 * @retval lumErrStepAlignment a stride is odd
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoiSize,
                                                    Lum16u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                                    LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax);

/**
 * Copies floats around a point, beyond the edges of the source too.
 * @copydetails lumiCopySubpixIntersect_8u_C1R
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize srcRoiSize,
                                                    Lum32f* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                                    LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax);

/**
 * Copies bytes as words, scaled by a power of two around a point, beyond the edges of the source too.
 * @copydetails lumiCopySubpixIntersect_8u_C1R
 * @param scaleFactor the power of two by which the values are divided; negative ones multiply
 * @retval lumErrStepAlignment `dstStep` is odd
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_8u16u_C1R_Sfs(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize,
                                                          Lum16u* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                                          LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax,
                                                          Lum32s scaleFactor);

/**
 * Copies bytes as floats around a point, beyond the edges of the source too.
 * @copydetails lumiCopySubpixIntersect_8u_C1R
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcRoiSize,
                                                      Lum32f* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                                      LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax);

/**
 * Copies words as floats around a point, beyond the edges of the source too.
 * @copydetails lumiCopySubpixIntersect_8u_C1R
 * @retval lumErrStepAlignment `srcStep` is odd, or `dstStep` not a multiple of 4
 */
LUMCV_API LumStatus lumiCopySubpixIntersect_16u32f_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize srcRoiSize,
                                                       Lum32f* pDst, Lum32s dstStep, LumiSize dstRoiSize,
                                                       LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax);

/** @} */

/**
 * @defgroup sample_line Line sampling
 * @brief The pixels of a straight line.
 *
 * The pixels from `pt1` to `pt2`, both included, are copied one behind the other to `pDst`. With `ax` and `ay` the
 * distances of the points in x and in y, the longer one is `major` and the shorter `minor`; the major axis is x if
 * `ax > ay`, otherwise y. There are `major + 1` samples, one at each step of the major axis towards `pt2`. Between two
 * samples the minor axis is stepped as well wherever the integer error falls below zero:
 *
 *     e = major
 *     before each step:  e = e - 2 * minor;  if e < 0 { step the minor axis;  e = e + 2 * major }
 *
 * The result does not depend on the width of any number; all points of a ROI may be ends. Pixels of three channels are
 * copied whole. The destination must not overlap the source.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than a row in bytes. It need not be a multiple of the size of an element.
 * 4. #lumErrOutOfRange: a point is not a pixel of the ROI.
 *
 * @{
 */

/**
 * Copies the pixels of a line, of one channel of bytes.
 *
 * @param pSrc    first pixel of the source
 * @param srcStep stride of the source, in bytes
 * @param roiSize size of the ROI, in pixels
 * @param pDst    receives `max(|pt2.x - pt1.x|, |pt2.y - pt1.y|) + 1` pixels
 * @param pt1     the first pixel of the line
 * @param pt2     the last pixel of the line
 * @retval lumOk             the samples have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        the stride is smaller than a row
 * @retval lumErrOutOfRange  a point is not a pixel of the ROI
 */
LUMCV_API LumStatus lumiSampleLine_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst,
                                          LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of bytes.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum8u* pDst,
                                          LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of one channel of words.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of words.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum16u* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of one channel of floats.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/**
 * Copies the pixels of a line, of three channels of floats.
 * @copydetails lumiSampleLine_8u_C1R
 */
LUMCV_API LumStatus lumiSampleLine_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pDst,
                                           LumiPoint pt1, LumiPoint pt2);

/** @} */

/**
 * @defgroup gray_gradient Gray gradient
 * @brief A gradient of three channels, folded into one by a norm.
 *
 * With `a`, `b`, `c` the three channels of a pixel, the result is:
 *
 * | Norm | 8u | 16u | 32f |
 * |---|---|---|---|
 * | #lumGradNormInf | `max(a, b, c)` | `max(a, b, c)` | `max(abs(a), abs(b), abs(c))` |
 * | #lumGradNormL1 | `(s * 1365 + 2048) >> 12` | `(s * 5461 + 8192) >> 14` | `abs(a) + abs(b) + abs(c)` |
 * | #lumGradNormL2 | `sqrt(q * 0.33333334f)` | `sqrt(q * 0.33333334f)` | `sqrt(q * 0.33333334f)` |
 *
 * where `s = a + b + c` and `q = a * a + b * b + c * c`.
 *
 * Of the integer types, #lumGradNormL1 is about a third of the sum (the largest pixel gives 255 of bytes and 65531 of
 * words); of floats it is the sum. #lumGradNormL2 is a root of a mean for all types. For integers the sum of squares is
 * exact, becomes the nearest Lum32f, is multiplied and its root taken in single precision; the result is rounded to the
 * nearest integer, ties to even. For floats every product and sum is rounded to single precision, from left to right,
 * and nothing is fused. `max(x, y, z)` of floats is `max(max(x, y), z)`, with `max(x, y)` being `x > y ? x : y`.
 *
 * **Overlap.** Source and destination may overlap in any way: the result is the one of a plain loop over the pixels,
 * row after row, each from left to right. With `pDst` at `pSrc` the image is folded in place.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than three elements for each pixel, or `dstStep` smaller than one.
 * 4. #lumErrStepAlignment: a stride is not a multiple of the size of an element.
 * 5. #lumErrArgument: `norm` is none of those in the table.
 *
 * @{
 */

/** The norms of the gray gradient, values of LumiDistanceNorm. */
enum
{
    lumGradNormInf = 0, /**< the largest magnitude */
    lumGradNormL1 = 1,  /**< the sum of magnitudes, or a third of it */
    lumGradNormL2 = 2   /**< the root of the mean square */
};

/**
 * Folds three channels of bytes into one.
 *
 * @param pSrc    first pixel of the source, of three channels
 * @param srcStep stride of the source, in bytes
 * @param pDst    first pixel of the destination, of one channel
 * @param dstStep stride of the destination, in bytes
 * @param roiSize size of the ROI, in pixels
 * @param norm    #lumGradNormInf, #lumGradNormL1 or #lumGradNormL2
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row
 * @retval lumErrArgument    the norm is not allowed
 */
LUMCV_API LumStatus lumiGradientColorToGray_8u_C3C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, LumiDistanceNorm norm);

/**
 * Folds three channels of words into one.
 * @copydetails lumiGradientColorToGray_8u_C3C1R
 * @retval lumErrStepAlignment a stride is odd
 */
LUMCV_API LumStatus lumiGradientColorToGray_16u_C3C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiDistanceNorm norm);

/**
 * Folds three channels of floats into one.
 * @copydetails lumiGradientColorToGray_8u_C3C1R
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiGradientColorToGray_32f_C3C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiDistanceNorm norm);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
