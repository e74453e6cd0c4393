/**
 * @file
 * @brief Features: corner measures, peaks, suppression of lines, Canny edges.
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
 * and `m` as above. For a region of `w` by `h` pixels, extended to `w' = w + t` and `h' = h + t`:
 * - `Sd` is the size of the derivatives told in @ref eigen, for an image of `w'` by `h'` pixels, with aperture 3 for
 *   #lumMask3x3 and 5 for #lumMask5x5.
 * - `Sb = 512 * (((w + n + 14) / 16) | 1) + 63`; the division truncates, and `| 1` makes the number odd.
 * - `core(w, h) = A(4 w') * h' * 3 + A(L w') * h' * 2 + 64 + max(Sd, Sb + A(4 w') * h')`
 * - `tile(w, h) = (A(4 w') * 3 + (2 * L * w' + 62) / 64 * 64) * h' + max(Sd, Sb) + 64`
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

#ifdef __cplusplus
}
#endif

#endif
