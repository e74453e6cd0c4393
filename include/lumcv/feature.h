/**
 * @file
 * @brief Features: corner measures, peaks, suppression of lines, Canny edges, FAST corners, Hough lines.
 */
#ifndef LUMCV_FEATURE_H
#define LUMCV_FEATURE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup corners Corner measures
 * @brief Three measures of the structure tensor: the smaller eigenvalue, both eigenvalues with their vectors, and the
 * Harris response.
 *
 * All of them follow one chain: the two first derivatives of the image, their three products `dx * dx`, `dx * dy`,
 * `dy * dy`, the means `A`, `B`, `C` of these products over a window around the pixel, and a formula of the three
 * means. Results are 32f images. Every operation named below is rounded to single precision by itself, in the order
 * written, from left to right; nothing is fused, and all builds give the same bits.
 *
 * **Derivatives.** Each is a step along the row and a step across the rows. With `s` the pixels of a row and `r` the
 * results of the row step, the index counted from the mask's centre:
 *
 * | Derivative | Along the row | Across the rows |
 * |---|---|---|
 * | 3x3 Sobel dx | `s[-1] - s[1]` | `r[-1] + r[1] + 2 * r[0]` |
 * | 3x3 Sobel dx, negated | `s[1] - s[-1]` | `r[-1] + r[1] + 2 * r[0]` |
 * | 3x3 Sobel dy | `s[-1] + s[1] + 2 * s[0]` | `r[1] - r[-1]` |
 * | 3x3 Scharr dx | `s[1] - s[-1]` | `3 * (r[-1] + r[1]) + 10 * r[0]` |
 * | 3x3 Scharr dy | `3 * (s[-1] + s[1]) + 10 * s[0]` | `r[1] - r[-1]` |
 * | 5x5 Sobel dx | `s[-2] + 2 * s[-1] - 2 * s[1] - s[2]` | `r[-2] + r[2] + 6 * r[0] + 4 * (r[-1] + r[1])` |
 * | 5x5 Sobel dx, negated | `s[2] + 2 * s[1] - 2 * s[-1] - s[-2]` | the same |
 * | 5x5 Sobel dy | `s[-2] + s[2] + 6 * s[0] + 4 * (s[-1] + s[1])` | `r[2] + 2 * r[1] - 2 * r[-1] - r[-2]` |
 * | Central difference dx | `s[1] - s[-1]` | `r[0]` |
 * | Central difference dy | `s[0]` | `r[-1] - r[1]` |
 *
 * Derivatives of 8u images are exact integers; they become Lum32f before they are multiplied.
 *
 * **Border.** Outside the ROI, on sides that are not flagged as lying in memory, the image itself is replicated,
 * mirrored (about the edge pixel; bouncing between both edges where the reach is wider than the ROI, also next to a
 * side in memory; a single row or column is repeated) or is `borderValue`; a row above or below a constant border is
 * constant over its whole length. The derivatives read flagged sides from memory. How the windows of the means are
 * continued beyond the ROI is told with each family.
 *
 * Source and destination must not overlap.
 *
 * @see @ref peaks, @ref line_suppression, @ref canny
 */

/**
 * @defgroup eigen Eigenvalues of the structure tensor
 * @ingroup corners
 * @brief The smaller eigenvalue, or both eigenvalues and both eigenvectors.
 *
 * `kernType` chooses the derivatives: #lumKernSobel the Sobel pair, #lumKernSobelNeg the same pair with dx negated, and
 * #lumKernScharr the Scharr pair, which has no aperture but 3.
 *
 * **Means.** The window has `avgWindow` by `avgWindow` pixels. The products exist inside the ROI only; beyond all four
 * of its edges, in memory or not, they are continued by the mode of `borderType` (replicated, mirrored, or
 * `borderValue` itself), by #lumBorderMirror if the value names no mode. The mean is the lowpass of
 * lumiFilterLowpassBorder_32f_C1R(): the products of a row under the window are added from left to right, these row
 * sums from top to bottom, and the total is multiplied by `0.11111111f` (window 3) or `0.04f` (window 5).
 *
 * **Scale.** `s = 1.0f / (255 << (2 * apertureSize - 2))`, for 8u and 32f images alike; #lumKernScharr multiplies it by
 * `0.6125f`.
 *
 * **The smaller eigenvalue** is `(A + C - sqrt((A - C) * (A - C) + 4 * (B * B))) * (0.5f * s)`.
 *
 * **Eigenvalues and vectors.** Six floats for each pixel: `lambda1`, `lambda2`, `x1`, `y1`, `x2`, `y2`, the larger
 * eigenvalue first. With `a = s * A`, `b = s * B`, `c = s * C` and `t = 0.001f * max(a, c)`:
 *
 *     lambda1 = 0.5f * (a + c + r)
 *     lambda2 = 0.5f * (a + c - r)      where r = sqrt((a - c) * (a - c) + 4 * (b * b))
 *
 * - If `a * c - b * b` or `min(a, c)` is below `t`, all six are 0: a flat or edge-like pixel carries no vector.
 * - Otherwise, if `|b|` is below `t`, the vectors are (0, 1) and (1, 0), in this order whichever has the larger
 *   eigenvalue.
 * - Otherwise, with `g` 1 for #lumKernScharr and -1 for both Sobel types, `p = g * b`, `e1 = lambda1 - a`,
 *   `e2 = lambda2 - a`, and for either of them `n = 1 / max(sqrt(p * p + e * e), 1.1920929e-7f)`: the vectors are
 *   `(p * n1, e1 * n1)` and `(p * n2, e2 * n2)`.
 *
 * `max(u, v)` is `u > v ? u : v`, `min(u, v)` is `u < v ? u : v`. Images whose products overflow give infinities or
 * values that are not numbers.
 *
 * **Plain forms** replicate the border; the `Border` forms take it as arguments. A value of `borderType` passes with
 * one of the modes #lumBorderReplicate, #lumBorderMirror, #lumBorderConstant and any flags; with all four flags it
 * needs no mode, and then means what #lumBorderInMem alone means, whatever else stands in its low four bits but
 * #lumBorderNeutral. Anything else, and all above 255, is #lumErrBorder.
 *
 * **Scratch**, in bytes, with `W16` the width rounded up to a multiple of 16: `max(Sd, Sb) + 20 * W16 * height + 224`
 * for 32f images and `max(Sd, Sb) + 16 * W16 * height + 224` for 8u images. `Sb` is what
 * lumiFilterLowpassGetBufferSize_32f_C1R() reports for the window. `Sd` belongs to the derivatives. With `A()` rounding
 * up to a multiple of 32, `M` the larger of width and height, and `d = 3 * (M + 2)` for aperture 3 and `7 * (M + 4)`
 * for aperture 5:
 * - 8u: `A(d) + 32`
 * - 32f: `A(4 * d) + A(4 * width) * 2 * m + A((width + height) * 8 * m) + 32`, with `m` 1 for aperture 3 and 2 for 5
 *
 * The **queries** test `pBufferSize` (#lumErrNullPointer), then width and height, the aperture and the window, 3 or 5
 * each (#lumErrSize), and at last that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * **Checks** of the measures, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `srcStep` is smaller than a row of the source in bytes, or `dstStep` is smaller than four bytes for
 *    each pixel. The six floats of `lumiEigenValsVecs` are tested no further; they need 24 bytes.
 * 4. #lumErrStepAlignment: the stride of a 32f image is not a multiple of 4.
 * 5. #lumErrArgument: `kernType` is not among those listed.
 * 6. #lumErrSize: `apertureSize` is neither 3 nor 5; for #lumKernScharr, it is not 3.
 * 7. #lumErrSize: `avgWindow` is neither 3 nor 5.
 * 8. #lumErrBorder: `borderType` is not allowed.
 *
 * This lists the corners of an image: the peaks of its smaller eigenvalue.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus findCorners(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f threshold, LumiPoint* pCorner,
 *                       Lum32s maxCount, Lum32s* pCount)
 * {
 *     Lum32s measureBytes = 0;
 *     Lum32s peakBytes = 0;
 *     LumStatus status = lumiMinEigenValGetBufferSize_8u32f_C1R(roiSize, 3, 3, &measureBytes);
 *     if (status == lumOk)
 *         status = lumiFindPeaks3x3GetBufferSize_32f_C1R(roiSize.width, &peakBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     Lum32s measureStep = roiSize.width * (Lum32s)sizeof(Lum32f);
 *     Lum32f* measure = malloc((size_t)measureStep * (size_t)roiSize.height);
 *     Lum8u* buffer = malloc((size_t)(measureBytes > peakBytes ? measureBytes : peakBytes));
 *     status = lumErrNullPointer;
 *     if (measure != NULL && buffer != NULL)
 *     {
 *         status = lumiMinEigenVal_8u32f_C1R(pSrc, srcStep, measure, measureStep, roiSize, lumKernSobel, 3, 3, buffer);
 *         if (status == lumOk)
 *             status = lumiFindPeaks3x3_32f_C1R(measure, measureStep, roiSize, threshold, pCorner, maxCount, pCount,
 *                                               lumPeakNormInf, 1, buffer);
 *     }
 *     free(buffer);
 *     free(measure);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref harris, @ref peaks
 *
 * @{
 */

/** The derivatives of the eigenvalue measures. */
typedef Lum32s LumiKernelType;

/** The values of LumiKernelType. */
enum
{
    lumKernSobel = 0,   /**< Sobel; dx is left minus right, dy is bottom minus top */
    lumKernScharr = 1,  /**< Scharr; dx is right minus left, dy is bottom minus top */
    lumKernSobelNeg = 2 /**< Sobel; dx is right minus left, dy is bottom minus top */
};

/**
 * Scratch size of lumiMinEigenVal_32f_C1R() and its `Border` form.
 *
 * @param roiSize      size of the ROI in pixels
 * @param apertureSize 3 or 5
 * @param avgWindow    3 or 5
 * @param pBufferSize  where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1, or the aperture or the window is neither 3 nor 5
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiMinEigenValGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                         Lum32s* pBufferSize);

/**
 * Scratch size of lumiMinEigenVal_8u32f_C1R() and its `Border` form.
 * @copydetails lumiMinEigenValGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiMinEigenValGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                           Lum32s* pBufferSize);

/**
 * Scratch size of lumiEigenValsVecs_32f_C1R() and its `Border` form.
 * @copydetails lumiMinEigenValGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiEigenValsVecsGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                           Lum32s* pBufferSize);

/**
 * Scratch size of lumiEigenValsVecs_8u32f_C1R() and its `Border` form.
 * @copydetails lumiMinEigenValGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiEigenValsVecsGetBufferSize_8u32f_C1R(LumiSize roiSize, Lum32s apertureSize, Lum32s avgWindow,
                                                             Lum32s* pBufferSize);

/**
 * Computes the smaller eigenvalue at each pixel of a 32f image; the border is replicated.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of 4
 * @param roiSize      size of the ROI in pixels
 * @param kernType     #lumKernSobel, #lumKernScharr or #lumKernSobelNeg
 * @param apertureSize of the derivatives: 3, or 5 unless they are Scharr's
 * @param avgWindow    of the means: 3 or 5
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the aperture or the window is not allowed
 * @retval lumErrStep          a stride is smaller than a row in bytes (of the destination: four bytes for each pixel)
 * @retval lumErrStepAlignment the stride of a 32f image is not a multiple of 4
 * @retval lumErrArgument      `kernType` is not among those listed
 */
LUMCV_API LumStatus lumiMinEigenVal_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                            LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                            Lum32s avgWindow, Lum8u* pBuffer);

/**
 * Computes the smaller eigenvalue at each pixel of an 8u image; the border is replicated.
 * @copydetails lumiMinEigenVal_32f_C1R
 */
LUMCV_API LumStatus lumiMinEigenVal_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                              Lum32s avgWindow, Lum8u* pBuffer);

/**
 * Computes the smaller eigenvalue at each pixel of a 32f image, with a choice of the border.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes; a multiple of 4
 * @param roiSize      size of the ROI in pixels
 * @param kernType     #lumKernSobel, #lumKernScharr or #lumKernSobelNeg
 * @param apertureSize of the derivatives: 3, or 5 unless they are Scharr's
 * @param avgWindow    of the means: 3 or 5
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, of pixels and of products, for #lumBorderConstant
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the aperture or the window is not allowed
 * @retval lumErrStep          a stride is smaller than a row in bytes (of the destination: four bytes for each pixel)
 * @retval lumErrStepAlignment the stride of a 32f image is not a multiple of 4
 * @retval lumErrArgument      `kernType` is not among those listed
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiMinEigenValBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                                  Lum32s avgWindow, LumiBorderType borderType, Lum32f borderValue,
                                                  Lum8u* pBuffer);

/**
 * Computes the smaller eigenvalue at each pixel of an 8u image, with a choice of the border.
 * @copydetails lumiMinEigenValBorder_32f_C1R
 */
LUMCV_API LumStatus lumiMinEigenValBorder_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                                    Lum32s avgWindow, LumiBorderType borderType, Lum8u borderValue,
                                                    Lum8u* pBuffer);

/**
 * Computes both eigenvalues and eigenvectors at each pixel of a 32f image; the border is replicated.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI; six floats for each pixel
 * @param dstStep      stride of the destination, in bytes; a multiple of 4
 * @param roiSize      size of the ROI in pixels
 * @param kernType     #lumKernSobel, #lumKernScharr or #lumKernSobelNeg
 * @param apertureSize of the derivatives: 3, or 5 unless they are Scharr's
 * @param avgWindow    of the means: 3 or 5
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the aperture or the window is not allowed
 * @retval lumErrStep          a stride is smaller than a row in bytes (of the destination: four bytes for each pixel)
 * @retval lumErrStepAlignment the stride of a 32f image is not a multiple of 4
 * @retval lumErrArgument      `kernType` is not among those listed
 */
LUMCV_API LumStatus lumiEigenValsVecs_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                              Lum32s avgWindow, Lum8u* pBuffer);

/**
 * Computes both eigenvalues and eigenvectors at each pixel of an 8u image; the border is replicated.
 * @copydetails lumiEigenValsVecs_32f_C1R
 */
LUMCV_API LumStatus lumiEigenValsVecs_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                                Lum32s avgWindow, Lum8u* pBuffer);

/**
 * Computes both eigenvalues and eigenvectors at each pixel of a 32f image, with a choice of the border.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI; six floats for each pixel
 * @param dstStep      stride of the destination, in bytes; a multiple of 4
 * @param roiSize      size of the ROI in pixels
 * @param kernType     #lumKernSobel, #lumKernScharr or #lumKernSobelNeg
 * @param apertureSize of the derivatives: 3, or 5 unless they are Scharr's
 * @param avgWindow    of the means: 3 or 5
 * @param borderType   what lies outside the ROI
 * @param borderValue  the value outside, of pixels and of products, for #lumBorderConstant
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the aperture or the window is not allowed
 * @retval lumErrStep          a stride is smaller than a row in bytes (of the destination: four bytes for each pixel)
 * @retval lumErrStepAlignment the stride of a 32f image is not a multiple of 4
 * @retval lumErrArgument      `kernType` is not among those listed
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiEigenValsVecsBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                                    Lum32s avgWindow, LumiBorderType borderType, Lum32f borderValue,
                                                    Lum8u* pBuffer);

/**
 * Computes both eigenvalues and eigenvectors at each pixel of an 8u image, with a choice of the border.
 * @copydetails lumiEigenValsVecsBorder_32f_C1R
 */
LUMCV_API LumStatus lumiEigenValsVecsBorder_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiKernelType kernType, Lum32s apertureSize,
                                                      Lum32s avgWindow, LumiBorderType borderType, Lum8u borderValue,
                                                      Lum8u* pBuffer);

/** @} */

/**
 * @defgroup harris Harris response
 * @ingroup corners
 * @brief The response of Harris' corner detector, with windows of any size.
 *
 * `filterType` chooses the derivatives: #lumFilterSobel (3x3 or 5x5), #lumFilterScharr or #lumFilterCentralDiff (both
 * 3x3 only). They are not scaled.
 *
 * **Means.** The window has `n = avgWindow` columns and rows: `(n - 1) / 2` before the pixel and `n / 2` behind it; an
 * even window reaches one pixel farther to the right and to the bottom. On sides in memory the products beyond the ROI
 * are those of the pixels that are there: with `m` 1 for #lumMask3x3 and 2 for #lumMask5x5, `(n - 1) / 2 + m` columns
 * or rows are read on the left and top, and `n / 2 + m` on the right and bottom, and no more. Beyond the other edges
 * the products are replicated or mirrored by the mode of `borderType`, or 0 for #lumBorderConstant, whatever
 * `borderValue` is; a row of products above or below a constant border is 0 over its whole length. With the products of
 * each column under the window added from top to bottom, `column(x)`:
 *
 *     sum(0) = column(-left) + column(-left + 1) + ...                         from left to right
 *     sum(x) = sum(x - 1) + column(x - left + n - 1) - column(x - left - 1)    from left to right
 *
 * and the mean is `sum(x) * (1.0f / (n * n))`, the product of the sizes taken in single precision. The sums run along
 * the whole row of the ROI. A window of 1 leaves the products as they are.
 *
 * **The response** is `(A * C - (k * ((A + C) * (A + C)) + B * B)) * S`, with `S` the single-precision rounding of
 * `(double)scale * n4`, and `n4` the fourth power of `n` modulo 2 to the 32 (so a window of 256 gives 0 everywhere).
 *
 * **Scratch**, in bytes. `A()` rounds up to a multiple of 32, `L` is 2 for 8u images and 4 for 32f images, `t = n - 1`
 * and `m` as above. For a region of `w` by `h` pixels, extended to `we = w + t` and `he = h + t`:
 * - `Sd` is the size of the derivatives told in @ref eigen, for an image of `we` by `he` pixels, with aperture 3 for
 *   #lumMask3x3 and 5 for #lumMask5x5.
 * - `Sb = 512 * (((w + n + 14) / 16) | 1) + 63`; the division truncates, and `| 1` makes the number odd.
 * - `core(w, h) = A(4 we) * he * 3 + A(L we) * he * 2 + 64 + max(Sd, Sb + A(4 we) * he)`
 * - `tile(w, h) = (A(4 we) * 3 + (2 * L * we + 62) / 64 * 64) * he + max(Sd, Sb) + 64`
 *
 * With `near = (n - 1) / 2 + m` and `far = n / 2 + m`: if `near + far` is at least the width or the height of the ROI,
 * the size is `core(width, height)`. Otherwise it is the largest of `core(width, near)`, `core(near, height)`,
 * `core(far, height)`, `core(width, far)` and `tile(tw, th)`, with `C` 8827 for 8u and 7111 for 32f images and
 *
 *     q  = 93 (8u) or 84 (32f)
 *     u  = max(q - t, 0), rounded up to a multiple of 16
 *     tw = min(max(u, 8 n), width)
 *     th = min(max(C / (t + u) - t, 8 n), height)   the division truncates
 *
 * It serves every border value. The **query** tests, in this order: `pBufferSize` (#lumErrNullPointer), width and
 * height (#lumErrSize), `filterMask` (#lumErrMaskSize), `dataType` (#lumErrDataType), `numChannels`
 * (#lumErrChannels), `avgWindow` (#lumErrSize), and at last that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * **Checks** of the measure, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStepAlignment: the stride of a 32f image is not a multiple of 4.
 * 4. #lumErrFilterType: `filterType` is not among those listed.
 * 5. #lumErrMaskSize: `filterMask` is neither #lumMask3x3 nor #lumMask5x5, or it is #lumMask5x5 and the derivatives are
 *    not Sobel's.
 * 6. #lumErrBorder: `borderType` is neither #lumBorderInMem nor at most 255 with one of the modes #lumBorderReplicate,
 *    #lumBorderMirror and #lumBorderConstant.
 * 7. #lumErrSize: `avgWindow` is below 1.
 * 8. #lumErrStep: a stride is smaller than a row in bytes.
 * 9. #lumErrInPlace: `pSrc` is `pDst` (32f only).
 *
 * @see @ref eigen, @ref line_suppression
 *
 * @{
 */

/** The derivatives of the Harris response, of line suppression and of Canny edges. */
typedef Lum32s LumiFilterType;

/** The values of LumiFilterType. */
enum
{
    lumFilterSobel = 2,      /**< Sobel, 3x3 or 5x5 */
    lumFilterScharr = 5,     /**< Scharr, 3x3 */
    lumFilterCentralDiff = 8 /**< difference of the two neighbours, 3x3 */
};

/**
 * Scratch size of lumiHarrisCorner_32f_C1R() and lumiHarrisCorner_8u32f_C1R().
 *
 * @param roiSize     size of the ROI in pixels
 * @param filterMask  #lumMask3x3 or #lumMask5x5
 * @param avgWindow   columns and rows of the window; at least 1
 * @param dataType    of the source: #lumType8u or #lumType32f
 * @param numChannels 1
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width, the height or the window is below 1
 * @retval lumErrMaskSize     `filterMask` is not among those listed
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrChannels     `numChannels` is not 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiHarrisCornerGetBufferSize(LumiSize roiSize, LumiMaskSize filterMask, Lum32s avgWindow,
                                                  LumDataType dataType, Lum32s numChannels, Lum32s* pBufferSize);

/**
 * Computes the Harris response at each pixel of a 32f image.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes; a multiple of 4
 * @param roiSize     size of the ROI in pixels
 * @param filterType  #lumFilterSobel, #lumFilterScharr or #lumFilterCentralDiff
 * @param filterMask  #lumMask3x3, or #lumMask5x5 for #lumFilterSobel
 * @param avgWindow   columns and rows of the window; at least 1
 * @param k           weight of the squared trace, usually 0.04 to 0.06
 * @param scale       factor of the response; it is multiplied by the fourth power of the window's size
 * @param borderType  what lies outside the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width, the height or the window is below 1
 * @retval lumErrStepAlignment the stride of a 32f image is not a multiple of 4
 * @retval lumErrFilterType    `filterType` is not among those listed
 * @retval lumErrMaskSize      `filterMask` is not allowed, or not with these derivatives
 * @retval lumErrBorder        `borderType` is not allowed
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrInPlace       `pSrc` is `pDst` (32f only)
 */
LUMCV_API LumStatus lumiHarrisCorner_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                             LumiSize roiSize, LumiFilterType filterType, LumiMaskSize filterMask,
                                             Lum32s avgWindow, Lum32f k, Lum32f scale, LumiBorderType borderType,
                                             Lum32f borderValue, Lum8u* pBuffer);

/** Computes the Harris response at each pixel of an 8u image. @copydetails lumiHarrisCorner_32f_C1R */
LUMCV_API LumStatus lumiHarrisCorner_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiFilterType filterType, LumiMaskSize filterMask,
                                               Lum32s avgWindow, Lum32f k, Lum32f scale, LumiBorderType borderType,
                                               Lum8u borderValue, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup peaks Peaks
 * @brief The local extremes of a map whose magnitude lies above a threshold.
 *
 * The pixels at least `border` columns and rows away from the edges of the ROI are tested, row by row from the top,
 * each row from the left. A pixel with the value `v` is a peak if
 *
 * - `|v|` is strictly greater than `threshold`, and
 * - it is positive and equals the largest value of its neighbourhood, or it is not positive and equals the smallest
 * one.
 *
 * So positive pixels are peaks only as maxima, all others only as minima; every pixel of a plateau counts. The
 * neighbourhood is the pixel itself and its eight neighbours (#lumPeakNormInf) or its four neighbours on the left,
 * right, above and below (#lumPeakNormL1); it never leaves the ROI.
 *
 * - 32f: `v` equals an extreme `e` if `|v - e|`, in single precision, is at most 1.1754944e-38, the smallest normal
 *   number; so an infinite pixel is no peak. A pixel that is not a number is no peak, and its neighbours are judged
 *   without it.
 * - 32s: values are compared as integers. The magnitude of the smallest integer is 2147483648.
 *
 * A negative threshold lets all pixels through, zeros included.
 *
 * Peaks are stored in the order of the test, in the coordinates of the ROI, and counted. When the count reaches
 * `maxPeakCount` the search ends with #lumOk; this says nothing of the pixels that were not reached. Entries of the
 * list beyond the count keep their values. If `border` leaves no pixel to test, the count is 0.
 *
 * **Scratch**, in bytes, for both types: `((width * 32 + 160) & ~127) + 32`. The **queries** test `pBufferSize`
 * (#lumErrNullPointer), then the width (#lumErrSize), and at last that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pPeak`, `pPeakCount` or `pBuffer` is null.
 * 2. #lumErrSize: the width, the height, `maxPeakCount` or `border` is below 1, or `border` is above half of the width
 * or of the height. `border` is compared in single precision; of a width of 3, half is 1.5.
 * 3. #lumErrStep: `srcStep / 4`, truncated, is below the width.
 * 4. #lumErrStepAlignment: `srcStep` is not a multiple of 4.
 * 5. #lumErrArgument: `norm` is not among those listed.
 *
 * @see @ref corners
 *
 * @{
 */

/** The neighbourhood of a peak. */
typedef Lum32s LumiPeakNorm;

/** The values of LumiPeakNorm. */
enum
{
    lumPeakNormInf = 0, /**< eight neighbours */
    lumPeakNormL1 = 1   /**< four neighbours */
};

/**
 * Scratch size of lumiFindPeaks3x3_32f_C1R().
 *
 * @param roiWidth    width of the ROI in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width is below 1
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFindPeaks3x3GetBufferSize_32f_C1R(Lum32s roiWidth, Lum32s* pBufferSize);

/** Scratch size of lumiFindPeaks3x3_32s_C1R(). @copydetails lumiFindPeaks3x3GetBufferSize_32f_C1R */
LUMCV_API LumStatus lumiFindPeaks3x3GetBufferSize_32s_C1R(Lum32s roiWidth, Lum32s* pBufferSize);

/**
 * Lists the peaks of a 32f map.
 *
 * @param pSrc         first pixel of the map's ROI
 * @param srcStep      stride of the map, in bytes; a multiple of 4
 * @param roiSize      size of the ROI in pixels
 * @param threshold    what the magnitude of a peak exceeds
 * @param pPeak        the list, with room for `maxPeakCount` points
 * @param maxPeakCount where the search ends; at least 1
 * @param pPeakCount   where the number of peaks in the list goes
 * @param norm         #lumPeakNormInf or #lumPeakNormL1
 * @param border       columns and rows at each edge that are not tested; at least 1
 * @param pBuffer      scratch of the queried size
 * @retval lumOk               the list and the count have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          a size, `maxPeakCount` or `border` is below 1, or `border` is too large
 * @retval lumErrStep          the stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride is not a multiple of 4
 * @retval lumErrArgument      `norm` is not among those listed
 */
LUMCV_API LumStatus lumiFindPeaks3x3_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f threshold,
                                             LumiPoint* pPeak, Lum32s maxPeakCount, Lum32s* pPeakCount,
                                             LumiPeakNorm norm, Lum32s border, Lum8u* pBuffer);

/** Lists the peaks of a 32s map. @copydetails lumiFindPeaks3x3_32f_C1R */
LUMCV_API LumStatus lumiFindPeaks3x3_32s_C1R(const Lum32s* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s threshold,
                                             LumiPoint* pPeak, Lum32s maxPeakCount, Lum32s* pPeakCount,
                                             LumiPeakNorm norm, Lum32s border, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup line_suppression Line suppression
 * @brief Clears the features that lie on a line instead of a corner.
 *
 * The image `pSrc` gives the means `A`, `B`, `C` of @ref harris, with the same derivatives, windows, borders and
 * arithmetic. A pixel of the destination is 0 if `(A + C) * (A + C)` is strictly greater than
 * `(A * C - B * B) * threshold`, in single precision and the order written, and the pixel of `pFeature` otherwise. So
 * `threshold` bounds the ratio of the squared trace to the determinant of the structure tensor: it is 4 where both
 * eigenvalues are equal and grows without limit towards a line.
 *
 * **Scratch**: as for lumiHarrisCorner_8u32f_C1R(), with the same checks of the query.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pFeature`, `pDst` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrFilterType: `filterType` is not among those listed.
 * 4. #lumErrMaskSize: `filterMask` is neither #lumMask3x3 nor #lumMask5x5, or it is #lumMask5x5 and the derivatives are
 *    not Sobel's.
 * 5. #lumErrBorder: `borderType` is neither #lumBorderInMem nor at most 255 with one of the modes #lumBorderReplicate
 *    and #lumBorderConstant; unlike the measures, this one does not mirror.
 * 6. #lumErrSize: `avgWindow` is below 1.
 * 7. #lumErrStep: a stride is negative. Strides are not held against the width.
 * 8. #lumErrInPlace: `pFeature` is `pDst`.
 *
 * The destination overlaps neither the image nor the features, and its rows do not overlap each other.
 *
 * @see @ref harris
 *
 * @{
 */

/**
 * Scratch size of lumiLineSuppression_8u_C1R(): what lumiHarrisCornerGetBufferSize() reports.
 * @copydetails lumiHarrisCornerGetBufferSize
 */
LUMCV_API LumStatus lumiLineSuppressionGetBufferSize(LumiSize roiSize, LumiMaskSize filterMask, Lum32s avgWindow,
                                                     LumDataType dataType, Lum32s numChannels, Lum32s* pBufferSize);

/**
 * Copies a map of features, but for those on lines of the image.
 *
 * @param pSrc        first pixel of the image's ROI
 * @param srcStep     stride of the image, in bytes
 * @param pFeature    first pixel of the map's ROI
 * @param featureStep stride of the map, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels
 * @param filterType  #lumFilterSobel, #lumFilterScharr or #lumFilterCentralDiff
 * @param filterMask  #lumMask3x3, or #lumMask5x5 for #lumFilterSobel
 * @param avgWindow   columns and rows of the window; at least 1
 * @param threshold   the largest ratio of squared trace to determinant that is no line
 * @param borderType  what lies outside the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width, the height or the window is below 1
 * @retval lumErrFilterType  `filterType` is not among those listed
 * @retval lumErrMaskSize    `filterMask` is not allowed, or not with these derivatives
 * @retval lumErrBorder      `borderType` is not allowed
 * @retval lumErrStep        a stride is negative
 * @retval lumErrInPlace     `pFeature` is `pDst`
 */
LUMCV_API LumStatus lumiLineSuppression_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pFeature,
                                               Lum32s featureStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                               LumiFilterType filterType, LumiMaskSize filterMask, Lum32s avgWindow,
                                               Lum32f threshold, LumiBorderType borderType, Lum8u borderValue,
                                               Lum8u* pBuffer);

/** @} */

/**
 * @defgroup canny Canny edges
 * @brief The edges of an image, one pixel wide: from its two first derivatives, or from the image itself.
 *
 * The result is an 8u image: 255 where an edge runs, 0 elsewhere. It comes about in three stages.
 *
 * **Magnitude.** With the derivatives `dx` (right minus left) and `dy` (bottom minus top) of a pixel, `m` is
 * `|dx| + |dy|` for #lumNormL1, and for #lumNormL2 the square or the root of `dx * dx + dy * dy` as told below. A pixel
 * is a candidate if `m` is strictly greater than the low threshold; all others, and all pixels outside the ROI, count
 * as 0 from here on, also beyond sides that lie in memory.
 *
 * **Suppression.** Each candidate is compared with the two neighbours that lie in the direction of its gradient, given
 * here as (row, column) from the pixel:
 *
 * | Direction | Gradient | First neighbour | Second neighbour |
 * |---|---|---|---|
 * | 1 | nearly horizontal | (0, -1) | (0, +1) |
 * | 2 | `dx` and `dy` differ in sign | (-1, +1) | (+1, -1) |
 * | 3 | nearly vertical | (-1, 0) | (+1, 0) |
 * | 4 | `dx` and `dy` agree in sign | (-1, -1) | (+1, +1) |
 *
 * It survives if `m` is strictly greater than that of both; in the directions 1 and 3 also if it is strictly greater
 * than the first and equal to the second. So of a horizontal or vertical run of equal magnitudes the first pixel, the
 * leftmost or topmost, stays, and of a diagonal run none.
 *
 * With `ax = |dx|` and `ay = |dy|` the direction is
 *
 *     3             if ay > ax * 2.41421356
 *     1 otherwise   if ax * 0.41421356 > ay
 *     2 otherwise   if the sign bits of dx and dy differ
 *     4 otherwise
 *
 * **Hysteresis.** A survivor is strong if `m` is strictly greater than the high threshold, and weak otherwise. Edges
 * are the strong pixels, and the weak ones that a chain of weak pixels, each one of the eight neighbours of the one
 * before it, connects with a strong pixel.
 *
 * A pixel exactly at the low threshold is no candidate, and one exactly at the high threshold is weak; with both
 * thresholds the same, no pixel is weak. A threshold that is not a number is above every magnitude.
 *
 * @see @ref corners
 */

/**
 * @defgroup canny_planes Edges from derivatives
 * @ingroup canny
 * @brief Canny edges from two planes of derivatives that the caller has computed.
 *
 * The forms without `_L` have 32-bit geometry and know #lumNormL1 only.
 *
 * **16s planes.** Everything is exact in integers.
 * - #lumNormL1: `m = |dx| + |dy|`, where -32768 counts as 32768. The thresholds are truncated towards zero.
 * - #lumNormL2: `m = dx * dx + dy * dy`, without a root. The thresholds are squared in single precision and then
 *   truncated. With both derivatives -32768, `m` exceeds 31 bits and the pixel is no candidate.
 * - A threshold beyond 31 bits is 2147483647.
 * - Direction: `ax` and `ay` as above; the products with 2.414213562373095 and 0.41421356237309503 are formed in double
 *   precision and rounded to single precision before they are compared.
 *
 * **32f planes.** Single precision, each operation rounded by itself.
 * - #lumNormL1: `m = |dx| + |dy|`.
 * - #lumNormL2: `m = dx * dx + dy * dy`, without a root. The thresholds are squared.
 * - A magnitude that is not a number is no candidate; infinity is one, unless the low threshold is infinite too.
 * - Direction: the factors are 2.41421366f (0x401A827A) and 0.414213568f (0x3ED413CD).
 *
 * The destination may be neither of the planes, nor overlap them.
 *
 * **Scratch**, in bytes: `16 * width + p * (width + 2) * (height + 2) + 160`, with `p` 5 if width and height are both
 * below 65533, and 9 otherwise. lumiCannyGetSize() stores the low 32 bits of it, lumiCannyGetSize_L() the low 64 bits.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrcDx`, `pSrcDy`, `pDstEdges` or `pBuffer` is null.
 * 2. #lumErrSizeTooLarge (`_L` only): the width, the height or a stride exceeds 2147483647.
 * 3. #lumErrSize: the width or the height is below 1.
 * 4. #lumErrStep: a stride is smaller than a row of its image in bytes.
 * 5. #lumErrStepAlignment: the stride of a plane is not a multiple of its element size.
 * 6. #lumErrArgument: `lowThreshold` is negative or above `highThreshold`. lumiCanny_16s8u_C1R_L() with #lumNormL2
 *    tests the squares instead, so there a negative threshold counts like its magnitude.
 * 7. #lumErrNorm (`_L` only): `norm` is neither #lumNormL1 nor #lumNormL2.
 *
 * @see @ref canny_border
 *
 * @{
 */

/**
 * Scratch size of lumiCanny_16s8u_C1R() and lumiCanny_32f8u_C1R().
 *
 * @param roiSize     size of the ROI in pixels
 * @param pBufferSize where the size in bytes goes; the low 32 bits of a larger one
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pBufferSize` is null
 * @retval lumErrSize        the width or the height is below 1
 */
LUMCV_API LumStatus lumiCannyGetSize(LumiSize roiSize, Lum32s* pBufferSize);

/**
 * Scratch size of lumiCanny_16s8u_C1R_L() and lumiCanny_32f8u_C1R_L().
 *
 * @param roiSize     size of the ROI in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSizeTooLarge the width or the height exceeds 2147483647
 * @retval lumErrSize         the width or the height is below 1
 */
LUMCV_API LumStatus lumiCannyGetSize_L(LumiSizeL roiSize, Lum64s* pBufferSize);

/**
 * Finds edges in 16s planes of derivatives, with the magnitudes of #lumNormL1.
 *
 * @param pSrcDx        first pixel of the ROI of the derivatives along the row, right minus left
 * @param srcDxStep     stride of that plane, in bytes; a multiple of the element size
 * @param pSrcDy        first pixel of the ROI of the derivatives down the rows, bottom minus top
 * @param srcDyStep     stride of that plane, in bytes; a multiple of the element size
 * @param pDstEdges     first pixel of the destination's ROI
 * @param dstEdgesStep  stride of the destination, in bytes
 * @param roiSize       size of the ROI in pixels
 * @param lowThreshold  what the magnitude of an edge pixel exceeds; at least 0
 * @param highThreshold what the magnitude of some pixel of each edge exceeds; at least `lowThreshold`
 * @param pBuffer       scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride of a plane is not a multiple of its element size
 * @retval lumErrArgument      `lowThreshold` is negative or above `highThreshold`
 */
LUMCV_API LumStatus lumiCanny_16s8u_C1R(const Lum16s* pSrcDx, Lum32s srcDxStep, const Lum16s* pSrcDy, Lum32s srcDyStep,
                                        Lum8u* pDstEdges, Lum32s dstEdgesStep, LumiSize roiSize, Lum32f lowThreshold,
                                        Lum32f highThreshold, Lum8u* pBuffer);

/** Finds edges in 32f planes of derivatives, with the magnitudes of #lumNormL1. @copydetails lumiCanny_16s8u_C1R */
LUMCV_API LumStatus lumiCanny_32f8u_C1R(const Lum32f* pSrcDx, Lum32s srcDxStep, const Lum32f* pSrcDy, Lum32s srcDyStep,
                                        Lum8u* pDstEdges, Lum32s dstEdgesStep, LumiSize roiSize, Lum32f lowThreshold,
                                        Lum32f highThreshold, Lum8u* pBuffer);

/**
 * Finds edges in 16s planes of derivatives; 64-bit entry point.
 *
 * @param pSrcDx        first pixel of the ROI of the derivatives along the row, right minus left
 * @param srcDxStep     stride of that plane, in bytes; a multiple of the element size
 * @param pSrcDy        first pixel of the ROI of the derivatives down the rows, bottom minus top
 * @param srcDyStep     stride of that plane, in bytes; a multiple of the element size
 * @param pDstEdges     first pixel of the destination's ROI
 * @param dstEdgesStep  stride of the destination, in bytes
 * @param roiSize       size of the ROI in pixels
 * @param lowThreshold  what the magnitude of an edge pixel exceeds; at least 0
 * @param highThreshold what the magnitude of some pixel of each edge exceeds; at least `lowThreshold`
 * @param norm          #lumNormL1 or #lumNormL2
 * @param pBuffer       scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSizeTooLarge  the width, the height or a stride exceeds 2147483647
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride of a plane is not a multiple of its element size
 * @retval lumErrArgument      the thresholds are refused, as told in @ref canny_planes
 * @retval lumErrNorm          `norm` is neither #lumNormL1 nor #lumNormL2
 */
LUMCV_API LumStatus lumiCanny_16s8u_C1R_L(const Lum16s* pSrcDx, Lum64s srcDxStep, const Lum16s* pSrcDy,
                                          Lum64s srcDyStep, Lum8u* pDstEdges, Lum64s dstEdgesStep, LumiSizeL roiSize,
                                          Lum32f lowThreshold, Lum32f highThreshold, LumiNorm norm, Lum8u* pBuffer);

/** Finds edges in 32f planes of derivatives; 64-bit entry point. @copydetails lumiCanny_16s8u_C1R_L */
LUMCV_API LumStatus lumiCanny_32f8u_C1R_L(const Lum32f* pSrcDx, Lum64s srcDxStep, const Lum32f* pSrcDy,
                                          Lum64s srcDyStep, Lum8u* pDstEdges, Lum64s dstEdgesStep, LumiSizeL roiSize,
                                          Lum32f lowThreshold, Lum32f highThreshold, LumiNorm norm, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup canny_border Edges of an image
 * @ingroup canny
 * @brief Canny edges of an 8u image in one call; the derivatives are formed on the way.
 *
 * **Derivatives.** `filterType` and `maskSize` choose them; the matrices give the weights of the pixels around:
 *
 * | Filter | Mask | dx | dy |
 * |---|---|---|---|
 * | #lumFilterSobel | 3x3 | -1 0 1 / -2 0 2 / -1 0 1 | -1 -2 -1 / 0 0 0 / 1 2 1 |
 * | #lumFilterScharr | 3x3 | -3 0 3 / -10 0 10 / -3 0 3 | -3 -10 -3 / 0 0 0 / 3 10 3 |
 * | #lumFilterSobel | 5x5 | -1 -2 0 2 1 along the row, 1 4 6 4 1 down the rows | the same, transposed |
 *
 * They are exact integers. Outside the ROI, on sides that are not flagged as lying in memory, the image is replicated
 * or is `borderValue`; a row above or below a constant border is constant over its whole length. Flagged sides are read
 * as far as the mask reaches, and no further. #lumBorderMirror is refused.
 *
 * **Magnitude**, in single precision, against the thresholds as they are given:
 * - #lumNormL1: `m = |dx| + |dy|`.
 * - #lumNormL2: `m = sqrt(dx * dx + dy * dy)`; the sum is an exact integer that is rounded to single precision before
 *   the root.
 *
 * **Direction**: `ax` and `ay` are single-precision numbers and the factors 2.41421366f (0x401A827A) and 0.414213568f
 * (0x3ED413CD), with the products rounded to single precision.
 *
 * **Low images.** With a height below 4 two things differ in their rounding. For #lumNormL2 `dx * dx` and `dy * dy` are
 * rounded to single precision each, and again their sum, before the root. And the direction is that of an angle: with
 * `t` the single-precision rounding of `atan2(dy, dx)`, to which 3.14159274f is added in single precision if it is
 * negative, it is
 *
 *     1             if t < 0.3926991f
 *     4 otherwise   if t <= 1.1780972f
 *     3 otherwise   if t < 1.9634955f
 *     2 otherwise   if t <= 2.7488937f
 *     1 otherwise
 *
 * **Strides** are not tested: rows may lie in any order and distance. The destination is written after all of the
 * source has been read, and may overlap it.
 *
 * **Scratch**, in bytes, with `k` 3 for #lumMask3x3 and 5 for #lumMask5x5, `w = width + k - 1`, `h = height + k - 1`,
 * and `A()` rounding up to a multiple of 32: `A(16 * w) + A(w * h) + A(4 * w * h) + 64`, and another `A(w * h)` if the
 * smaller of width and height is below `k`. The query stores the low 32 bits of it. The filter takes no part.
 * ROIs of 2^32 pixels and more are beyond this function.
 *
 * The **query** tests `pBufferSize` (#lumErrNullPointer), then width and height (#lumErrSize), then `maskSize`
 * (#lumErrMaskSize).
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrMaskSize: `maskSize` is neither #lumMask3x3 nor #lumMask5x5, or it is #lumMask5x5 and `filterType` is
 *    #lumFilterScharr.
 * 2. #lumErrNullPointer: `pSrc`, `pDst` or `pBuffer` is null.
 * 3. #lumErrSize: the width or the height is below 1.
 * 4. #lumErrArgument: `filterType` is neither #lumFilterSobel nor #lumFilterScharr, `norm` is neither #lumNormL1 nor
 *    #lumNormL2, or `lowThreshold` is negative or above `highThreshold`.
 * 5. #lumErrBorder: `borderType` is neither #lumBorderInMem nor at most 255 with one of the modes #lumBorderReplicate
 *    and #lumBorderConstant.
 *
 * This draws the edges of an image:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus drawEdges(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiCannyBorderGetSize(roiSize, lumFilterSobel, lumMask3x3, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     // an edge begins where the gradient exceeds 120, and is followed as long as it exceeds 50
 *     status = lumiCannyBorder_8u_C1R(pSrc, srcStep, pDst, dstStep, roiSize, lumFilterSobel, lumMask3x3,
 *                                     lumBorderReplicate, 0, 50, 120, lumNormL2, buffer);
 *     free(buffer);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref canny_planes
 *
 * @{
 */

/**
 * Scratch size of lumiCannyBorder_8u_C1R().
 *
 * @param roiSize     size of the ROI in pixels
 * @param filterType  takes no part
 * @param maskSize    #lumMask3x3 or #lumMask5x5
 * @param pBufferSize where the size in bytes goes; the low 32 bits of a larger one
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pBufferSize` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrMaskSize    `maskSize` is not among those listed
 */
LUMCV_API LumStatus lumiCannyBorderGetSize(LumiSize roiSize, LumiFilterType filterType, LumiMaskSize maskSize,
                                           Lum32s* pBufferSize);

/**
 * Finds the edges of an 8u image.
 *
 * @param pSrc          first pixel of the source's ROI
 * @param srcStep       stride of the source, in bytes
 * @param pDst          first pixel of the destination's ROI
 * @param dstStep       stride of the destination, in bytes
 * @param roiSize       size of the ROI in pixels
 * @param filterType    #lumFilterSobel or #lumFilterScharr
 * @param maskSize      #lumMask3x3, or #lumMask5x5 for #lumFilterSobel
 * @param borderType    what lies outside the ROI
 * @param borderValue   the pixel value outside, for #lumBorderConstant
 * @param lowThreshold  what the magnitude of an edge pixel exceeds; at least 0
 * @param highThreshold what the magnitude of some pixel of each edge exceeds; at least `lowThreshold`
 * @param norm          #lumNormL1 or #lumNormL2
 * @param pBuffer       scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrMaskSize    `maskSize` is not allowed, or not with this filter
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrArgument    the filter, the norm or a threshold is not allowed
 * @retval lumErrBorder      `borderType` is not allowed
 */
LUMCV_API LumStatus lumiCannyBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                           LumiSize roiSize, LumiFilterType filterType, LumiMaskSize maskSize,
                                           LumiBorderType borderType, Lum8u borderValue, Lum32f lowThreshold,
                                           Lum32f highThreshold, LumiNorm norm, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup fast FAST corners
 * @brief Corners by a ring of pixels: a contiguous arc that is all brighter, or all darker, than the middle.
 *
 * A pixel of value `c` is a corner if `N` consecutive points of the ring around it are all above `c + t`, or all below
 * `c - t`; `t` is the threshold, truncated to an integer. `N` exceeds half of the ring, so that only one of both can be
 * the case. A corner's **score** is the greatest threshold that it would pass, plus 1: the largest over all arcs of `N`
 * points of the smallest difference within the arc, from `t + 1` to 255. Its **orientation** tells where the ring is
 * bright.
 *
 * lumiFastN_8u_C1R() marks the corners of an image in a map, lumiFastN2DToVec_8u() makes a list of such a map. The
 * first takes a record that lumiFastNInit() lays in the caller's block, and scratch:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * // The map has the size of the image.
 * LumStatus listCorners(const Lum8u* pSrc, Lum32s srcStep, LumiSize size, Lum8u* pMap, Lum8u* pScore, Lum32s mapStep,
 *                       LumCornerFastN* pCorners, Lum32s maxCount, Lum32s* pCount)
 * {
 *     // nine of the sixteen points of the ring of radius 3 differ by more than 20; of corners side by side, the best
 *     const Lum32s mode = lumFastNCorners | lumFastNScore | lumFastNNonMaxSuppression;
 *     Lum32s specBytes = 0, bufferBytes = 0;
 *     LumStatus status = lumiFastNGetSize(size, 3, 9, 0, mode, lumType8u, 1, &specBytes);
 *     if (status != lumOk)
 *         return status;
 *     LumFastNSpec* spec = malloc((size_t)specBytes);
 *     lumiFastNInit(size, 3, 9, 0, mode, 20.0f, lumType8u, 1, spec);
 *     lumiFastNGetBufferSize(spec, size, &bufferBytes);
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     const LumiPoint offset = {0, 0};
 *     status = lumiFastN_8u_C1R(pSrc, srcStep, pMap, mapStep, pScore, mapStep, pCount, offset, size, spec, buffer);
 *     if (status == lumOk)
 *         status = lumiFastN2DToVec_8u(pMap, mapStep, pScore, mapStep, pCorners, size, maxCount, pCount, spec);
 *     free(buffer);
 *     free(spec);
 *     return status;
 * }
 * @endcode
 *
 * **Rings.** The radius is one of six. The points run from straight below the middle towards the left, and so on
 * around. This is the first quarter of each ring:
 *
 *     radius  points  N         dx, dy
 *     1       8       5 to 8    0,1 -1,1
 *     2       12      7 to 12   0,2 -1,2 -2,1
 *     3       16      9 to 16   0,3 -1,3 -2,2 -3,1
 *     5       28      15 to 28  0,5 -1,5 -2,5 -3,4 -4,3 -5,2 -5,1
 *     7       40      21 to 40  0,7 -1,7 -2,7 -3,6 -4,6 -5,5 -6,4 -6,3 -7,2 -7,1
 *     9       52      27 to 52  0,9 -1,9 -2,9 -3,9 -4,8 -5,8 -6,7 -7,6 -8,5 -8,4 -9,3 -9,2 -9,1
 *
 * The other three quarters are the first one turned by 90 degrees each, a point (dx, dy) becoming (-dy, dx). Of radius
 * 9, the last point of the first quarter itself, though not its turns, is (-9, -1) and not (-9, 1), so that this point
 * comes twice.
 *
 * **Orientation.** With `d[i]` the difference of ring point `i` to the middle, all of them, whatever the threshold, and
 * `T[i] = i * 2 * pi / points`, rounded to single precision, the sums `S` of `d[i] * sin(T[i])` and `C` of
 * `d[i] * cos(T[i])` are formed from zero on in the order of the points; the sines and cosines are the double-precision
 * ones of `T[i]`, rounded to single precision. With radius 3 and `N` 9, and `e[i] = d[i] - d[i + 8]`, they are instead,
 * from left to right,
 *
 *     S = 0.70710677 * (e[2] + e[6]) + 0.38268343 * (e[1] + e[7]) + 0.9238795 * (e[3] + e[5]) + e[4] + 0.00001
 *     C = e[0] + 0.9238795 * (e[1] - e[7]) + 0.70710677 * (e[2] - e[6]) + 0.38268343 * (e[3] - e[5])
 *
 * The angle is `atan2(C, S)`, rounded to single precision, plus 6.2831855 if it is negative. Multiplied by the bins per
 * radian, which are `bins * 0.15915494309189535` rounded to single precision, and truncated, it is the orientation; a
 * product of `bins` or more gives 0. All products and sums are of single precision; the arctangent is exact but for a
 * millionth of that precision's unit before it is rounded, and gives the same bytes in all builds.
 *
 * **Thresholds** of 255 and more find nothing. A negative one, -0.5 too, and what is not a number is refused.
 *
 * **The ROI** lies at `srcRoiOffset` in the whole image, whose size is that of the record; the maps begin with the
 * ROI's first pixel. What lies beyond the image is cut off: the parts of the maps there stay as they were, and the
 * status is #lumWrnRoiClipped, with a result for the rest. If nothing is left, nothing is written, the count included.
 * Of the rest, pixels nearer than `circleRadius` to an edge of the image are no corners.
 *
 * **Maps.** A byte of the corner map is 0, or 0x40 for a bright arc and 0x80 for a dark one, plus the orientation; a
 * byte of the score map is 0 or the score. Maps must not overlap the image or each other.
 *
 * **Suppression** leaves a corner only if its score is not less than those of its eight neighbours; of equal ones all
 * stay. Pixels outside the ROI and those that are no corners count as 0.
 *
 * **The mode** is #lumFastNCorners with any of the others; #lumFastNNonMaxSuppression demands #lumFastNScore.
 *
 * **The record** is, in bytes, `8 * points + 68` long. The first byte of its block is the distance to where it begins,
 * the next address that is a multiple of 8: the identity (64 bits, 0x14B617390), then 32 bits each the element type,
 * the number of channels, the width and the height of the image, the radius, `N`, the number of bins, the mode, the
 * threshold as a float and as an integer; a pointer to the ring; the sines and the cosines, which are only filled for
 * #lumFastNOrientation; the bins per radian. It must not be moved.
 *
 * **Scratch**, in bytes: `6 * width + 636`, with the width of the ROI.
 *
 * **Checks of the queries and of Init**, in this order:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrThreshold, of Init: the threshold is negative or not a number.
 * 4. #lumErrDataType: `dataType` is not #lumType8u.
 * 5. #lumErrChannels: `numChannels` is not 1.
 * 6. #lumErrArgument: the mode has no #lumFastNCorners, a bit that is no mode, or #lumFastNNonMaxSuppression without
 *    #lumFastNScore.
 * 7. #lumErrOutOfRange: with #lumFastNOrientation, `orientationBins` is not within 1 to 64.
 * 8. #lumErrArgument: `circleRadius` is not among those listed.
 * 9. #lumErrOutOfRange: `N` is not among those listed.
 *
 * lumiFastNGetBufferSize() tests its pointers (#lumErrNullPointer), then the record's identity (#lumErrContext), then
 * the size (#lumErrSize).
 *
 * **Checks of the others** stand with them. After an error nothing has been written.
 *
 * @see @ref corners, @ref peaks
 *
 * @{
 */

/** What lumiFastN_8u_C1R() writes and how. */
enum
{
    lumFastNOrientation = 0x01,       /**< the low six bits of a corner's byte are its orientation */
    lumFastNNonMaxSuppression = 0x02, /**< only corners whose neighbours have no higher score */
    lumFastNCorners = 0x04,           /**< the corner map; always set */
    lumFastNScore = 0x20              /**< the score map */
};

/** What lumiFastNInit() lays in the caller's block. */
typedef struct LumFastNSpec LumFastNSpec;

/** A corner of the list that lumiFastN2DToVec_8u() makes. */
typedef struct LumCornerFastN
{
    Lum32s x;           /**< column in the map */
    Lum32s y;           /**< row in the map */
    Lum32s cornerType;  /**< 0 for a bright arc, 1 for a dark one */
    Lum32s orientation; /**< number of the bin, or -1 without #lumFastNOrientation */
    Lum32f angle;       /**< `orientation * (360 / bins)`, in degrees, or -1 without #lumFastNOrientation */
    Lum32f score;       /**< the score, or -1 without #lumFastNScore */
} LumCornerFastN;

/**
 * Size of the record.
 *
 * @param srcSize         size of the whole image in pixels
 * @param circleRadius    1, 2, 3, 5, 7 or 9
 * @param N               points of an arc
 * @param orientationBins 1 to 64, with #lumFastNOrientation
 * @param mode            sum of #lumFastNCorners and others
 * @param dataType        #lumType8u
 * @param numChannels     1
 * @param pSpecSize       where the size in bytes goes
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pSpecSize` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrDataType    `dataType` is not #lumType8u
 * @retval lumErrChannels    `numChannels` is not 1
 * @retval lumErrArgument    the mode or the radius is not allowed
 * @retval lumErrOutOfRange  the number of bins or of an arc's points is not allowed
 */
LUMCV_API LumStatus lumiFastNGetSize(LumiSize srcSize, Lum32s circleRadius, Lum32s N, Lum32s orientationBins,
                                     Lum32s mode, LumDataType dataType, Lum32s numChannels, Lum32s* pSpecSize);

/**
 * Lays the record.
 *
 * @param srcSize         size of the whole image in pixels
 * @param circleRadius    1, 2, 3, 5, 7 or 9
 * @param N               points of an arc
 * @param orientationBins 1 to 64, with #lumFastNOrientation
 * @param mode            sum of #lumFastNCorners and others
 * @param threshold       what a difference exceeds; at least 0
 * @param dataType        #lumType8u
 * @param numChannels     1
 * @param pSpec           block of the queried size
 * @retval lumOk             the record has been laid
 * @retval lumErrNullPointer `pSpec` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrThreshold   `threshold` is negative or not a number
 * @retval lumErrDataType    `dataType` is not #lumType8u
 * @retval lumErrChannels    `numChannels` is not 1
 * @retval lumErrArgument    the mode or the radius is not allowed
 * @retval lumErrOutOfRange  the number of bins or of an arc's points is not allowed
 */
LUMCV_API LumStatus lumiFastNInit(LumiSize srcSize, Lum32s circleRadius, Lum32s N, Lum32s orientationBins, Lum32s mode,
                                  Lum32f threshold, LumDataType dataType, Lum32s numChannels, LumFastNSpec* pSpec);

/**
 * Scratch size of lumiFastN_8u_C1R().
 *
 * @param pSpec       the record
 * @param dstRoiSize  size of the ROI in pixels
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrContext      the record is not one of lumiFastNInit()
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrSizeTooLarge the size exceeds 0x7fffffff
 */
LUMCV_API LumStatus lumiFastNGetBufferSize(const LumFastNSpec* pSpec, LumiSize dstRoiSize, Lum32s* pBufferSize);

/**
 * Marks the corners of an 8u image.
 *
 * Checks, in this order: null pointers; the size of the ROI; of the record its identity, element type, channels and
 * image size; the strides; of the record the mode and the bins; a null `pDstScore`; of the record the radius and `N`.
 *
 * @param pSrc          first pixel of the whole image
 * @param srcStep       stride of the image, in bytes
 * @param pDstCorner    the corner map: its pixel for the ROI's first one
 * @param dstCornerStep stride of the corner map, in bytes
 * @param pDstScore     the score map: its pixel for the ROI's first one; not touched without #lumFastNScore
 * @param dstScoreStep  stride of the score map, in bytes
 * @param pNumCorner    where the number of corners in the map goes
 * @param srcRoiOffset  first pixel of the ROI in the image
 * @param dstRoiSize    size of the ROI in pixels
 * @param pSpec         the record
 * @param pBuffer       scratch of the queried size
 * @retval lumOk             the maps and the count have been written
 * @retval lumWrnRoiClipped  the ROI was cut at the image, or lies outside it
 * @retval lumErrNullPointer a pointer is null; `pDstScore` matters with #lumFastNScore only
 * @retval lumErrSize        the width or the height of the ROI or of the record's image is below 1
 * @retval lumErrContext     the record is not one of lumiFastNInit()
 * @retval lumErrDataType    the record's element type is not #lumType8u
 * @retval lumErrChannels    the record's number of channels is not 1
 * @retval lumErrStep        the stride of the image is below its width, or that of a map below the ROI's width;
 *                           `dstScoreStep` matters with #lumFastNScore only
 * @retval lumErrArgument    the record's mode or radius is not allowed
 * @retval lumErrOutOfRange  the record's number of bins or of an arc's points is not allowed
 */
LUMCV_API LumStatus lumiFastN_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDstCorner, Lum32s dstCornerStep,
                                     Lum8u* pDstScore, Lum32s dstScoreStep, Lum32s* pNumCorner, LumiPoint srcRoiOffset,
                                     LumiSize dstRoiSize, const LumFastNSpec* pSpec, Lum8u* pBuffer);

/**
 * Makes a list of a corner map.
 *
 * The corners come in the order of rows. The count goes on where the list is full.
 *
 * Checks, in this order: null pointers; the size and `maxLen`; of the record its identity, element type and channels;
 * the strides; of the record the mode and the bins; a null `pSrcScore`.
 *
 * @param pSrcCorner    first pixel of the corner map
 * @param srcCornerStep stride of the corner map, in bytes
 * @param pSrcScore     first pixel of the score map; not read without #lumFastNScore
 * @param srcScoreStep  stride of the score map, in bytes
 * @param pDst          the list, of `maxLen` corners
 * @param roiSize       size of the maps in pixels
 * @param maxLen        corners that the list has room for; may be 0
 * @param pNumCorners   where the number of nonzero bytes in the map goes, which may exceed `maxLen`
 * @param pSpec         the record
 * @retval lumOk             the list and the count have been written
 * @retval lumErrNullPointer a pointer is null; `pSrcScore` matters with #lumFastNScore only
 * @retval lumErrSize        the width or the height is below 1, or `maxLen` is negative
 * @retval lumErrContext     the record is not one of lumiFastNInit()
 * @retval lumErrDataType    the record's element type is not #lumType8u
 * @retval lumErrChannels    the record's number of channels is not 1
 * @retval lumErrStep        the stride of a map is below its width; `srcScoreStep` matters with #lumFastNScore only
 * @retval lumErrArgument    the record's mode is not allowed
 * @retval lumErrOutOfRange  the record's number of bins is not allowed
 */
LUMCV_API LumStatus lumiFastN2DToVec_8u(const Lum8u* pSrcCorner, Lum32s srcCornerStep, const Lum8u* pSrcScore,
                                        Lum32s srcScoreStep, LumCornerFastN* pDst, LumiSize roiSize, Lum32s maxLen,
                                        Lum32s* pNumCorners, const LumFastNSpec* pSpec);

/** @} */

/**
 * @defgroup hough Hough lines
 * @brief Straight lines through the points of a binary image: whole lines in polar form, or segments with their ends.
 *
 * Any nonzero pixel of an 8u image is a point, such as those that @ref canny draws. A line is told by the angle `theta`
 * of its normal and its distance `rho` from the first pixel: `x * cos(theta) + y * sin(theta) = rho`. The plane of both
 * is divided into cells by `delta`, in pixels and radians, and each point votes, for each angle, for the line through
 * it. For a ROI of `W` times `H` pixels:
 *
 * - The **angles** are those with the indices 0 to `A` inclusive; `A` is `3.14159f / delta.theta`, the quotient of both
 *   in double precision, truncated. It is the number nearest to 3.14159 in single precision, not pi, that limits the
 *   angles.
 * - There are `R` **cells** for each angle; `R` is `(2 * (W + H) + 1) / delta.rho` in single precision, truncated. The
 *   cell of `rho` 0 is `centre = (R - 1) / 2`, truncated. A vote that falls outside the cells, which can only happen
 *   with a coarse `delta.rho`, is dropped.
 *
 * `A` and `R` are limited to 0x7fffffff.
 *
 * @see @ref canny
 */

/**
 * @defgroup hough_lines Lines in polar form
 * @ingroup hough
 * @brief The lines with the most votes of all of the plane, or of a rectangle in it.
 *
 * **Votes** are counted in fixed point with 10 fractional bits. With `f = 1.0f / delta.rho` and `t` the angle,
 * accumulated from 0 by adding `delta.theta` in single precision, `cosQ` is the double-precision product `f * 1024 *
 * cos(t)`, truncated to an integer, and `sinQ` likewise. The point (x, y) votes for the cell
 *
 *     ((rint(x * cosQ + y * sinQ) + 512) >> 10) + centre
 *
 * where products and sum are of single precision, and the shift is arithmetic. lumiHoughLine_Region_8u32f_C1R() works
 * in 32-bit integers throughout, which wrap, and needs no `rint`.
 *
 * **Peaks.** A cell with `a` votes is a line if `a` is above `threshold`, above the votes of the cell before it and of
 * the same cell of the angle before it, and at least those of the cell behind it and of the same cell of the angle
 * behind it. Beyond the first and the last cell and angle there are no votes.
 *
 * **The list** holds the `maxLineCount` lines with the most votes, those with more first; of equal ones the one of the
 * lower angle, and of the lower cell, stands first and stays. `rho` is `delta.rho * (cell - centre)`, `theta` is
 * `delta.theta * index`, both in single precision. It is no warning that lines found no place.
 *
 * **The query** gives, in bytes, with 4-byte numbers:
 * `(4 * W + 64) * H + 16 * maxLineCount + 8 * A + 8 + 16 * (R + 4) + 224`; the low 32 bits of it. It returns
 * #lumWrnBufferTooLarge if
 * `((W + 12) * 4 + 16) * H + (16 * maxLineCount + 224) + 16 * (R + 4) + 4 * (2 * A + 2)` exceeds 2147483647. It tests
 * `pBufferSize` (#lumErrNullPointer), then width and height (#lumErrSize), then that both components of `delta` are
 * above 0 (#lumErrArgument).
 *
 * **Checks of the two others**, in this order; after an error nothing has been written, but for the region:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrStep: `srcStep` is below 1; rows may overlap.
 * 3. #lumErrSize: the width, the height or `maxLineCount` is below 1.
 * 4. #lumErrArgument: `delta.rho` is not above 0, or above `W + H` in single precision; or `delta.theta` is not above
 *    0, or above 3.14159f; or `threshold` is below 1.
 * 5. #lumErrHoughRegion, of lumiHoughLine_Region_8u32f_C1R(): the region's high corner is not at least the low one, or
 *    a corner is not a number. `*pLineCount` is 0 then.
 *
 * This finds the ten most prominent lines among edges:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus findLines(const Lum8u* pEdges, Lum32s step, LumiSize size, LumiPointPolar lines[10], Lum32s* pCount)
 * {
 *     const LumiPointPolar delta = {1.0f, 0.0174532925f};  // one pixel, one degree
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiHoughLineGetSize_8u_C1R(size, delta, 10, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     status = lumiHoughLine_8u32f_C1R(pEdges, step, size, delta, 50, lines, 10, pCount, buffer);
 *     free(buffer);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref hough_segments
 *
 * @{
 */

/**
 * Scratch size of lumiHoughLine_8u32f_C1R() and lumiHoughLine_Region_8u32f_C1R().
 *
 * @param roiSize      size of the ROI in pixels
 * @param delta        size of a cell in the plane of lines
 * @param maxLineCount room in the list of lines
 * @param pBufferSize  where the size in bytes goes; the low 32 bits of a larger one
 * @retval lumOk                the size has been written
 * @retval lumWrnBufferTooLarge the size exceeds 2147483647; its low 32 bits have been written
 * @retval lumErrNullPointer    `pBufferSize` is null
 * @retval lumErrSize           the width or the height is below 1
 * @retval lumErrArgument       a component of `delta` is not above 0
 */
LUMCV_API LumStatus lumiHoughLineGetSize_8u_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s maxLineCount,
                                                Lum32s* pBufferSize);

/**
 * Finds the lines of a binary image.
 *
 * @param pSrc         first pixel of the ROI
 * @param srcStep      stride of the image, in bytes
 * @param roiSize      size of the ROI in pixels
 * @param delta        size of a cell in the plane of lines
 * @param threshold    what the votes of a line exceed; at least 1
 * @param pLine        the list, with room for `maxLineCount` lines
 * @param maxLineCount room in the list; at least 1
 * @param pLineCount   where the number of lines in the list goes
 * @param pBuffer      scratch of the queried size
 * @retval lumOk             the list and the count have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrStep        `srcStep` is below 1
 * @retval lumErrSize        the width, the height or `maxLineCount` is below 1
 * @retval lumErrArgument    `delta` or `threshold` is out of its range
 */
LUMCV_API LumStatus lumiHoughLine_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, LumiPointPolar delta,
                                            Lum32s threshold, LumiPointPolar* pLine, Lum32s maxLineCount,
                                            Lum32s* pLineCount, Lum8u* pBuffer);

/**
 * Finds the lines of a binary image that lie in a rectangle of the plane of lines.
 *
 * Angles take part whose `delta.theta * index`, in single precision, is from `dstRoi[0].theta` to `dstRoi[1].theta`;
 * the others have no votes. Both limits are changed in the caller's array first: one below 3.14159f to the larger of
 * itself and 0, any other to 3.14159f. Lines are those among the cells `f * dstRoi[0].rho + centre` to `f *
 * dstRoi[1].rho + centre` inclusive, in single precision, truncated, as far as there are such cells; their neighbours
 * may lie outside. `dstRoi[0].rho` and `dstRoi[1].rho` stay as they are.
 *
 * @param pSrc         first pixel of the ROI
 * @param srcStep      stride of the image, in bytes
 * @param roiSize      size of the ROI in pixels
 * @param pLine        the list, with room for `maxLineCount` lines
 * @param dstRoi       two corners of the rectangle, the low one and the high one
 * @param maxLineCount room in the list; at least 1
 * @param pLineCount   where the number of lines in the list goes
 * @param delta        size of a cell in the plane of lines
 * @param threshold    what the votes of a line exceed; at least 1
 * @param pBuffer      scratch of the queried size
 * @retval lumOk             the list and the count have been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrStep        `srcStep` is below 1
 * @retval lumErrSize        the width, the height or `maxLineCount` is below 1
 * @retval lumErrArgument    `delta` or `threshold` is out of its range
 * @retval lumErrHoughRegion the high corner is not at least the low one; the count is 0
 */
LUMCV_API LumStatus lumiHoughLine_Region_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize,
                                                   LumiPointPolar* pLine, LumiPointPolar dstRoi[2], Lum32s maxLineCount,
                                                   Lum32s* pLineCount, LumiPointPolar delta, Lum32s threshold,
                                                   Lum8u* pBuffer);

/** @} */

/**
 * @defgroup hough_segments Line segments
 * @ingroup hough
 * @brief Segments with their ends, by a progressive transform: points vote in random order, and a line that has enough
 * votes is followed in the image at once.
 *
 * **Order.** The points, row by row, make a list. Of those that remain, the one with the index `s mod remaining` is
 * drawn and the last one moves into its place; `s` is the low half of a 64-bit state that begins with all bits set in
 * each call and becomes `low * 0xF83F630A + high` of its halves before each draw. So a call always gives the same
 * lines. A point that an earlier line has consumed is dropped.
 *
 * **Votes.** For each angle, the point votes for the cell `x * c + y * s`, truncated, plus `centre`; `c` and `s` are
 * the angle's cosine and sine from the record, and the products and their sum are of single precision, rounded towards
 * zero. The angle whose cell now has the most votes is the point's line, the first one of equal ones. With less than
 * `threshold` votes it is no line; the votes stay.
 *
 * **Following.** If `|s| > |c|`, x goes by 1, which is positive if `s` is negative, and negative otherwise, and y by
 * `c * 65536 / |s|` in fixed point with 16 fractional bits, truncated, from the middle of the pixel on. Otherwise y
 * goes by 1, positive if `c` is positive, and x by `s * -65536 / |c|`. From the point on, the line is followed this
 * way, and then the opposite way, as far as set pixels have no more than `lineGap` clear ones between them.
 *
 * **Segments.** A segment reaches from the last set pixel of the first way to that of the second. If both its width and
 * its height, as differences of coordinates, are below `lineLength`, its pixels are cleared and nothing else.
 * Otherwise its pixels take back their votes, whether they were drawn already or not, and are cleared; counts may
 * become negative. Then the segment is stored, or the call ends with #lumWrnLineListFull if `maxLineCount` segments
 * have been.
 *
 * The rounding mode of the processor is changed during the call and is the caller's own after it.
 *
 * **The record** is `8 * A + 20` bytes long: `delta.rho`, `delta.theta` and `hint`, 4 bytes each, and for each angle
 * its cosine and its sine, multiplied by `1.0f / delta.rho` in double precision and rounded to single precision. The
 * angle is accumulated from 0 by adding `delta.theta` in single precision. It may be at any address and be moved, and
 * serves images of any size.
 *
 * **Scratch**, in bytes: `(W / 8 + 1) * H + 4 * (W * H + R * (A + 1))`. The query stores the low 32 bits of both sizes.
 *
 * **The query and Init** test their pointers (#lumErrNullPointer), then width and height (#lumErrSize), then that both
 * components of `delta` are above 0 (#lumErrArgument).
 *
 * **Checks** of lumiHoughProbLine_8u32f_C1R(), in this order; after an error nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1 or above 65536.
 * 3. #lumErrArgument: `threshold` is below 1, or `lineLength` or `lineGap` is negative.
 *
 * The stride is not tested: rows may lie in any order and distance.
 *
 * This finds segments of at least 30 pixels among edges:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus findSegments(const Lum8u* pEdges, Lum32s step, LumiSize size, Lum32s (*segments)[4], Lum32s maxCount,
 *                        Lum32s* pCount)
 * {
 *     const LumiPointPolar delta = {1.0f, 0.0174532925f};  // one pixel, one degree
 *     Lum32s specBytes = 0, bufferBytes = 0;
 *     LumStatus status = lumiHoughProbLineGetSize_8u_C1R(size, delta, &specBytes, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *     LumHoughProbSpec* spec = malloc((size_t)specBytes);
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     lumiHoughProbLineInit_8u32f_C1R(size, delta, 0, spec);
 *     // lines of 25 votes and more, with gaps of up to 3 pixels
 *     status = lumiHoughProbLine_8u32f_C1R(pEdges, step, size, 25, 30, 3, segments[0], maxCount, pCount, buffer, spec);
 *     free(buffer);
 *     free(spec);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref hough_lines
 *
 * @{
 */

/** What lumiHoughProbLineInit_8u32f_C1R() lays in the caller's block. */
typedef struct LumHoughProbSpec LumHoughProbSpec;

/**
 * Sizes of the record and of scratch.
 *
 * @param roiSize     size of the ROI in pixels
 * @param delta       size of a cell in the plane of lines
 * @param pSpecSize   where the size of the record in bytes goes; the low 32 bits of a larger one
 * @param pBufferSize where the size of scratch in bytes goes; the low 32 bits of a larger one
 * @retval lumOk             the sizes have been written
 * @retval lumErrNullPointer `pSpecSize` or `pBufferSize` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrArgument    a component of `delta` is not above 0
 */
LUMCV_API LumStatus lumiHoughProbLineGetSize_8u_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s* pSpecSize,
                                                    Lum32s* pBufferSize);

/**
 * Lays the record.
 *
 * @param roiSize size of the ROI in pixels; only tested
 * @param delta   size of a cell in the plane of lines
 * @param hint    kept in the record, and otherwise without effect
 * @param pSpec   block of the queried size
 * @retval lumOk             the record has been laid
 * @retval lumErrNullPointer `pSpec` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrArgument    a component of `delta` is not above 0
 */
LUMCV_API LumStatus lumiHoughProbLineInit_8u32f_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s hint,
                                                    LumHoughProbSpec* pSpec);

/**
 * Finds the line segments of a binary image.
 *
 * @param pSrc         first pixel of the ROI
 * @param srcStep      stride of the image, in bytes
 * @param roiSize      size of the ROI in pixels
 * @param threshold    votes that a line has at least; at least 1
 * @param lineLength   width or height that a segment has at least; at least 0
 * @param lineGap      clear pixels that may lie between two of a segment; at least 0
 * @param pLine        the list, of four numbers for each of `maxLineCount` segments: start x, start y, end x, end y
 * @param maxLineCount room in the list
 * @param pLineCount   where the number of segments in the list goes
 * @param pBuffer      scratch of the queried size
 * @param pSpec        the record
 * @retval lumOk              the list and the count have been written
 * @retval lumWrnLineListFull there was one more segment than the list has room for; it is complete
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1 or above 65536
 * @retval lumErrArgument     `threshold`, `lineLength` or `lineGap` is below its least value
 */
LUMCV_API LumStatus lumiHoughProbLine_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s threshold,
                                                Lum32s lineLength, Lum32s lineGap, Lum32s* pLine, Lum32s maxLineCount,
                                                Lum32s* pLineCount, Lum8u* pBuffer, const LumHoughProbSpec* pSpec);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
