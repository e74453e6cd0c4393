/**
 * @file
 * @brief Image statistics: means and standard deviations, extrema with location, norms.
 */
#ifndef LUMCV_STATS_H
#define LUMCV_STATS_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup mean Mean and standard deviation
 * @brief The mean and the standard deviation of the pixels of a ROI, of one channel, with or without a mask.
 *
 * | Function | What it gives |
 * |---|---|
 * | `lumiMean` | `mean = S / n` |
 * | `lumiMean_StdDev` | `mean = S * (1.0 / n)` and `deviation = sqrt(abs(Q * (1.0 / n) - mean * mean))` |
 *
 * `S` is the sum of the pixels that take part, `Q` the sum of their squares, `n` their number; everything from there on
 * is double precision, each operation rounded by itself. The absolute value guards against a difference that rounding
 * has made slightly negative. There is no `lumiMean` without a mask.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 *
 * // how many times the brightness of a surface exceeds its noise; the rectangle shows nothing but the surface
 * LumStatus signalToNoise(const Lum16u* pSrc, Lum32s srcStep, LumiRect surface, Lum64f* pRatio)
 * {
 *     const Lum16u* first = (const Lum16u*)((const Lum8u*)pSrc + (Lum64s)srcStep * surface.y) + surface.x;
 *     LumiSize size = {surface.width, surface.height};
 *     Lum64f mean = 0.0;
 *     Lum64f deviation = 0.0;
 *     LumStatus status = lumiMean_StdDev_16u_C1R(first, srcStep, size, &mean, &deviation);
 *     if (status == lumOk)
 *         *pRatio = deviation > 0.0 ? mean / deviation : 0.0;
 *     return status;
 * }
 * @endcode
 *
 * **Channel of interest.** The `C3C` functions take an image of three interleaved channels and regard one of them:
 * element `3 * x + coi - 1` of a row is pixel `x`. The other channels have no influence, whatever they hold.
 *
 * **Mask.** A mask is an 8u image of the ROI's size. A pixel takes part where its mask byte is not zero. A masked-out
 * pixel has no influence at all, also if it is infinite or not-a-number. If no pixel takes part, all results are 0.0
 * and the status is #lumOk.
 *
 * **8u and 16u.** `S`, `Q` and `n` are exact for every ROI of up to 2 to the 32 pixels, and are converted to double
 * precision, rounded to nearest, before anything else is done with them.
 *
 * **32f.** A pixel is converted to double precision, which is exact, and so is its square. There are 16 partial sums
 * for `S` and 16 for `Q`, which begin with 0.0: pixel `x` of every row is added to partial sum `x mod 16`, row after
 * row, from left to right. At the end partial sum `i + 8` is added to partial sum `i` for `i` from 0 to 7, then `i + 4`
 * for `i` from 0 to 3, then `i + 2` for 0 and 1, and last partial sum 1 is added to partial sum 0. The rule is the same
 * for every size and address, and for both `lumiMean` and `lumiMean_StdDev`, with or without a mask.
 *
 * Where the deviation is asked for and `mean * mean * 0.05` is greater than `deviation * deviation`, the difference
 * above has lost too much, and the deviation is formed anew in a second pass over the pixels that take part: the mean
 * is rounded to single precision and subtracted from each pixel in single precision, the difference is converted to
 * double precision and squared, the squares are summed in 16 partial sums in the same order, and the deviation is the
 * square root of the sum divided by `n`. The mean stays.
 *
 * The `n` of the 32f functions without a mask is `width * height` as a signed 32-bit product. So an image of 2 to the
 * 31 pixels or more, which takes 8 GiB or rows that share memory, has no useful result. Everywhere else `n` has 64
 * bits.
 *
 * **Results.** The results of `lumiMean_StdDev` are optional: where a pointer is null nothing is written, and a call
 * with both null makes its checks and returns #lumOk. The result of `lumiMean` is required.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: an image pointer is null, or the result pointer of `lumiMean`.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of its image in bytes (three elements for each pixel in the `C3C`
 *    functions; one byte for each pixel of a mask).
 * 4. #lumErrStepAlignment: the stride of a 16u image is not a multiple of 2, that of a 32f image not a multiple of 4.
 * 5. #lumErrChannelOfInterest: `coi` is not 1, 2 or 3.
 *
 * lumiMean_16u_C1MR() tests the alignment of the source's stride before it looks at the stride of the mask.
 *
 * @see @ref extrema
 *
 * @{
 */

/**
 * Mean of an 8u image where the mask is not zero.
 *
 * @param pSrc     first pixel of the source's ROI
 * @param srcStep  stride of the source, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param pMean    the mean; 0.0 if no mask byte is set
 * @retval lumOk               the mean has been written
 * @retval lumErrNullPointer   an image pointer or `pMean` is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment the stride of the source is not a multiple of its element size
 */
LUMCV_API LumStatus lumiMean_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                     LumiSize roiSize, Lum64f* pMean);

/** Mean of a 16u image where the mask is not zero. @copydetails lumiMean_8u_C1MR */
LUMCV_API LumStatus lumiMean_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      LumiSize roiSize, Lum64f* pMean);

/** Mean of a 32f image where the mask is not zero. @copydetails lumiMean_8u_C1MR */
LUMCV_API LumStatus lumiMean_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      LumiSize roiSize, Lum64f* pMean);

/**
 * Mean of one channel of an 8u image of three channels where the mask is not zero.
 *
 * @param pSrc     first pixel of the source's ROI
 * @param srcStep  stride of the source, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param coi      channel of interest: 1, 2 or 3
 * @param pMean    the mean; 0.0 if no mask byte is set
 * @retval lumOk                   the mean has been written
 * @retval lumErrNullPointer       an image pointer or `pMean` is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row of its image
 * @retval lumErrStepAlignment     the stride of the source is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiMean_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                      LumiSize roiSize, Lum32s coi, Lum64f* pMean);

/** Mean of one channel of a 16u image of three channels where the mask is not zero. @copydetails lumiMean_8u_C3CMR */
LUMCV_API LumStatus lumiMean_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                       LumiSize roiSize, Lum32s coi, Lum64f* pMean);

/** Mean of one channel of a 32f image of three channels where the mask is not zero. @copydetails lumiMean_8u_C3CMR */
LUMCV_API LumStatus lumiMean_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                       LumiSize roiSize, Lum32s coi, Lum64f* pMean);

/**
 * Mean and standard deviation of an 8u image.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes; a multiple of the element size
 * @param roiSize size of the ROI in pixels
 * @param pMean   the mean; null if it is not wanted
 * @param pStdDev the standard deviation; null if it is not wanted
 * @retval lumOk               the results asked for have been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment the stride of the source is not a multiple of its element size
 */
LUMCV_API LumStatus lumiMean_StdDev_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean,
                                           Lum64f* pStdDev);

/** Mean and standard deviation of a 16u image. @copydetails lumiMean_StdDev_8u_C1R */
LUMCV_API LumStatus lumiMean_StdDev_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean,
                                            Lum64f* pStdDev);

/** Mean and standard deviation of a 32f image. @copydetails lumiMean_StdDev_8u_C1R */
LUMCV_API LumStatus lumiMean_StdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum64f* pMean,
                                            Lum64f* pStdDev);

/**
 * Mean and standard deviation of one channel of an 8u image of three channels.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes; a multiple of the element size
 * @param roiSize size of the ROI in pixels
 * @param coi     channel of interest: 1, 2 or 3
 * @param pMean   the mean; null if it is not wanted
 * @param pStdDev the standard deviation; null if it is not wanted
 * @retval lumOk                   the results asked for have been written
 * @retval lumErrNullPointer       an image pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row of its image
 * @retval lumErrStepAlignment     the stride of the source is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiMean_StdDev_8u_C3CR(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                            Lum64f* pMean, Lum64f* pStdDev);

/** Mean and standard deviation of one channel of a 16u image of three channels. @copydetails lumiMean_StdDev_8u_C3CR */
LUMCV_API LumStatus lumiMean_StdDev_16u_C3CR(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pMean, Lum64f* pStdDev);

/** Mean and standard deviation of one channel of a 32f image of three channels. @copydetails lumiMean_StdDev_8u_C3CR */
LUMCV_API LumStatus lumiMean_StdDev_32f_C3CR(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pMean, Lum64f* pStdDev);

/**
 * Mean and standard deviation of an 8u image where the mask is not zero.
 *
 * @param pSrc     first pixel of the source's ROI
 * @param srcStep  stride of the source, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param pMean    the mean; null if it is not wanted
 * @param pStdDev  the standard deviation; null if it is not wanted
 * @retval lumOk               the results asked for have been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment the stride of the source is not a multiple of its element size
 */
LUMCV_API LumStatus lumiMean_StdDev_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev);

/** Mean and standard deviation of a 16u image where the mask is not zero. @copydetails lumiMean_StdDev_8u_C1MR */
LUMCV_API LumStatus lumiMean_StdDev_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                             LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev);

/** Mean and standard deviation of a 32f image where the mask is not zero. @copydetails lumiMean_StdDev_8u_C1MR */
LUMCV_API LumStatus lumiMean_StdDev_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                             LumiSize roiSize, Lum64f* pMean, Lum64f* pStdDev);

/**
 * Mean and standard deviation of one channel of an 8u image of three channels where the mask is not zero.
 *
 * @param pSrc     first pixel of the source's ROI
 * @param srcStep  stride of the source, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param coi      channel of interest: 1, 2 or 3
 * @param pMean    the mean; null if it is not wanted
 * @param pStdDev  the standard deviation; null if it is not wanted
 * @retval lumOk                   the results asked for have been written
 * @retval lumErrNullPointer       an image pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row of its image
 * @retval lumErrStepAlignment     the stride of the source is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiMean_StdDev_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                             LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev);

/**
 * Mean and standard deviation of one channel of a 16u image of three channels where the mask is not zero.
 * @copydetails lumiMean_StdDev_8u_C3CMR
 */
LUMCV_API LumStatus lumiMean_StdDev_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev);

/**
 * Mean and standard deviation of one channel of a 32f image of three channels where the mask is not zero.
 * @copydetails lumiMean_StdDev_8u_C3CMR
 */
LUMCV_API LumStatus lumiMean_StdDev_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                              LumiSize roiSize, Lum32s coi, Lum64f* pMean, Lum64f* pStdDev);

/** @} */

/**
 * @defgroup extrema Extrema with location
 * @brief The smallest and the largest pixel of a ROI, of one channel, and where they stand first.
 *
 * The values come as Lum32f, which holds every 8u and 16u value exactly. A place is the column and the row of a pixel,
 * counted from the first pixel of the ROI; where several pixels are equal it is that of the smallest row and, within
 * it, of the smallest column. All four results are optional: where a pointer is null nothing is written, and the values
 * alone come cheaper than their places.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stddef.h>
 *
 * // the brightest pixel that the detector's map of good pixels allows; x is -1 if there is none
 * LumStatus findBrightest(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pGood, Lum32s goodStep, LumiSize roiSize,
 *                         LumiPoint* pPlace)
 * {
 *     LumStatus status =
 *         lumiMinMaxIndx_32f_C1MR(pSrc, srcStep, pGood, goodStep, roiSize, NULL, NULL, NULL, pPlace);
 *     if (status == lumWrnEmptyMask) {
 *         pPlace->x = -1;
 *         status = lumOk;
 *     }
 *     return status;
 * }
 * @endcode
 *
 * **Channel of interest.** The `C3C` functions take an image of three interleaved channels and regard one of them:
 * element `3 * x + coi - 1` of a row is pixel `x`. The other channels have no influence, whatever they hold.
 *
 * **Mask.** A mask is an 8u image of the ROI's size. A pixel takes part where its mask byte is not zero. A masked-out
 * pixel has no influence at all, also if it is infinite or not-a-number. If the mask has no byte that is set, the
 * values are 0.0, the places (0, 0) and the status is #lumWrnEmptyMask, whichever results are asked for.
 *
 * **32f.** A not-a-number is never chosen, wherever it stands; infinite pixels count like any other. If all pixels that
 * take part are not-a-number, there is no place: both indices are (-1, 0), the smallest value is plus infinity, the
 * largest minus infinity, and the status is #lumOk. Zeros of both signs are equal, and a value of zero is always given
 * as +0.0.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: an image pointer is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of its image in bytes (three elements for each pixel in the `C3C`
 *    functions; one byte for each pixel of a mask).
 * 4. #lumErrStepAlignment: the stride of a 16u image is not a multiple of 2, that of a 32f image not a multiple of 4.
 * 5. #lumErrChannelOfInterest: `coi` is not 1, 2 or 3.
 *
 * @see @ref mean
 *
 * @{
 */

/**
 * Extrema of an 8u image.
 *
 * @param pSrc      first pixel of the source's ROI
 * @param srcStep   stride of the source, in bytes; a multiple of the element size
 * @param roiSize   size of the ROI in pixels
 * @param pMinVal   the smallest pixel; null if it is not wanted
 * @param pMaxVal   the largest pixel; null if it is not wanted
 * @param pMinIndex column and row of the first smallest pixel; null if they are not wanted
 * @param pMaxIndex column and row of the first largest pixel; null if they are not wanted
 * @retval lumOk               the results asked for have been written
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment the stride of the source is not a multiple of its element size
 */
LUMCV_API LumStatus lumiMinMaxIndx_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal,
                                          Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/** Extrema of a 16u image. @copydetails lumiMinMaxIndx_8u_C1R */
LUMCV_API LumStatus lumiMinMaxIndx_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal,
                                           Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/** Extrema of a 32f image. @copydetails lumiMinMaxIndx_8u_C1R */
LUMCV_API LumStatus lumiMinMaxIndx_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f* pMinVal,
                                           Lum32f* pMaxVal, LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/**
 * Extrema of an 8u image where the mask is not zero.
 *
 * @param pSrc      first pixel of the source's ROI
 * @param srcStep   stride of the source, in bytes; a multiple of the element size
 * @param pMask     first byte of the mask's ROI, one byte for each pixel
 * @param maskStep  stride of the mask, in bytes
 * @param roiSize   size of the ROI in pixels
 * @param pMinVal   the smallest pixel; null if it is not wanted
 * @param pMaxVal   the largest pixel; null if it is not wanted
 * @param pMinIndex column and row of the first smallest pixel; null if they are not wanted
 * @param pMaxIndex column and row of the first largest pixel; null if they are not wanted
 * @retval lumOk               the results asked for have been written
 * @retval lumWrnEmptyMask     no mask byte is set; the values are 0.0, the places (0, 0)
 * @retval lumErrNullPointer   an image pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image
 * @retval lumErrStepAlignment the stride of the source is not a multiple of its element size
 */
LUMCV_API LumStatus lumiMinMaxIndx_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                           LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                           LumiPoint* pMaxIndex);

/** Extrema of a 16u image where the mask is not zero. @copydetails lumiMinMaxIndx_8u_C1MR */
LUMCV_API LumStatus lumiMinMaxIndx_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                            LumiPoint* pMaxIndex);

/** Extrema of a 32f image where the mask is not zero. @copydetails lumiMinMaxIndx_8u_C1MR */
LUMCV_API LumStatus lumiMinMaxIndx_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            LumiSize roiSize, Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                            LumiPoint* pMaxIndex);

/**
 * Extrema of one channel of an 8u image of three channels.
 *
 * @param pSrc      first pixel of the source's ROI
 * @param srcStep   stride of the source, in bytes; a multiple of the element size
 * @param roiSize   size of the ROI in pixels
 * @param coi       channel of interest: 1, 2 or 3
 * @param pMinVal   the smallest pixel; null if it is not wanted
 * @param pMaxVal   the largest pixel; null if it is not wanted
 * @param pMinIndex column and row of the first smallest pixel; null if they are not wanted
 * @param pMaxIndex column and row of the first largest pixel; null if they are not wanted
 * @retval lumOk                   the results asked for have been written
 * @retval lumErrNullPointer       an image pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row of its image
 * @retval lumErrStepAlignment     the stride of the source is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiMinMaxIndx_8u_C3CR(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                           Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                           LumiPoint* pMaxIndex);

/** Extrema of one channel of a 16u image of three channels. @copydetails lumiMinMaxIndx_8u_C3CR */
LUMCV_API LumStatus lumiMinMaxIndx_16u_C3CR(const Lum16u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                            Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                            LumiPoint* pMaxIndex);

/** Extrema of one channel of a 32f image of three channels. @copydetails lumiMinMaxIndx_8u_C3CR */
LUMCV_API LumStatus lumiMinMaxIndx_32f_C3CR(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s coi,
                                            Lum32f* pMinVal, Lum32f* pMaxVal, LumiPoint* pMinIndex,
                                            LumiPoint* pMaxIndex);

/**
 * Extrema of one channel of an 8u image of three channels where the mask is not zero.
 *
 * @param pSrc      first pixel of the source's ROI
 * @param srcStep   stride of the source, in bytes; a multiple of the element size
 * @param pMask     first byte of the mask's ROI, one byte for each pixel
 * @param maskStep  stride of the mask, in bytes
 * @param roiSize   size of the ROI in pixels
 * @param coi       channel of interest: 1, 2 or 3
 * @param pMinVal   the smallest pixel; null if it is not wanted
 * @param pMaxVal   the largest pixel; null if it is not wanted
 * @param pMinIndex column and row of the first smallest pixel; null if they are not wanted
 * @param pMaxIndex column and row of the first largest pixel; null if they are not wanted
 * @retval lumOk                   the results asked for have been written
 * @retval lumWrnEmptyMask         no mask byte is set; the values are 0.0, the places (0, 0)
 * @retval lumErrNullPointer       an image pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row of its image
 * @retval lumErrStepAlignment     the stride of the source is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiMinMaxIndx_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                            LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal,
                                            LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/**
 * Extrema of one channel of a 16u image of three channels where the mask is not zero.
 * @copydetails lumiMinMaxIndx_8u_C3CMR
 */
LUMCV_API LumStatus lumiMinMaxIndx_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                             LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal,
                                             LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/**
 * Extrema of one channel of a 32f image of three channels where the mask is not zero.
 * @copydetails lumiMinMaxIndx_8u_C3CMR
 */
LUMCV_API LumStatus lumiMinMaxIndx_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                             LumiSize roiSize, Lum32s coi, Lum32f* pMinVal, Lum32f* pMaxVal,
                                             LumiPoint* pMinIndex, LumiPoint* pMaxIndex);

/** @} */

/**
 * @defgroup norm Norms
 * @brief Norms of an image, of the difference of two images, and of that difference in relation to the second image,
 * over a mask.
 *
 * Only pixels whose mask byte is not zero count. With `x` the pixel in `lumiNorm` and `s1 - s2` in the others:
 *
 * | Sense | `lumiNorm`, `lumiNormDiff` | `lumiNormRel` |
 * |---|---|---|
 * | `Inf` | largest `abs(x)` | (largest `abs(s1 - s2)`) / (largest `abs(s2)`) |
 * | `L1` | sum of `abs(x)` | (sum of `abs(s1 - s2)`) / (sum of `abs(s2)`) |
 * | `L2` | root of the sum of `x * x` | root of ((sum of `(s1 - s2) * (s1 - s2)`) / (sum of `s2 * s2`)) |
 *
 * An empty mask gives maxima and sums of 0. The functions with `C3CMR` in their names take the channel `coi` of images
 * of three channels; the other two have no part in the result. Images and mask may overlap.
 *
 * **Integers.** Maxima and sums of 8u and 16u images are exact and are rounded to Lum64f once, at their end. A sum is
 * an unsigned 64-bit integer, which only the squares of a 16u image of more than 2 to the 32 pixels can exceed. The
 * division and the root of `lumiNormRel` are each rounded to Lum64f.
 *
 * **32f, Inf.** Differences are rounded to single precision. Not-a-number pixels, and differences, do not count;
 * infinite ones do. What is masked out takes no part, whatever its value.
 *
 * **32f, L1 and L2.** The order of the additions is fixed, so that all builds give the same bits:
 *
 * 1. `v = x * m` in single precision, where the factor `m` is 1.0 for a mask byte that is not zero and 0.0 for one that
 *    is. So an infinite or not-a-number pixel spoils the sum under a zero mask byte as well. `s1 - s2` is rounded to
 *    single precision before.
 * 2. Each row has eight lanes `l0` to `l7`, in double precision, which start at 0.0. Column `i` of the ROI adds
 *    `abs(v)` (L1) or `v * v` (L2) to lane `i mod 8`, from left to right.
 * 3. At its end the sum of the row is `((l0 + l4) + (l2 + l6)) + ((l1 + l5) + (l3 + l7))`.
 * 4. A Lum64f total starts at 0.0 and takes the sums of the rows, from the first row to the last.
 *
 * There is one exception: lumiNorm_L2_32f_C3CMR() has `v * v`, its lanes and the sum of the row in single precision;
 * only the total of step 4 is double. Both sums of lumiNormRel_L2_32f_C3CMR() follow the rule, not the exception.
 *
 * **Zero divisor.** Where the sum or maximum of `s2` is zero, `lumiNormRel` returns #lumWrnZeroDivisor and writes plus
 * infinity if that of the difference is above zero, minus infinity if it is not-a-number, and not-a-number if it is
 * zero too.
 *
 * **Not-a-number** as a result, this one or any other, always has the bits 0xFFF8000000000000.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: the pointer to an image, to the mask or to the value is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of its image in bytes (a mask row has one byte for each pixel).
 * 4. #lumErrStepAlignment: the stride of a 16u or a 32f image is not a multiple of its element size.
 * 5. #lumErrChannelOfInterest: `coi` is not 1, 2 or 3 (`C3CMR`).
 *
 * @see @ref absdiff
 *
 * @{
 */

/**
 * Inf norm of an 8u image, over a mask.
 *
 * @param pSrc     first pixel of the image's ROI
 * @param srcStep  stride of the image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param pValue   where the norm goes
 * @retval lumOk               the norm has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride of an image is not a multiple of its element size
 */
LUMCV_API LumStatus lumiNorm_Inf_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum64f* pValue);

/** Inf norm of a 16u image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_Inf_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum64f* pValue);

/** Inf norm of a 32f image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_Inf_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum64f* pValue);

/**
 * Inf norm of one channel of an 8u image of three channels, over a mask.
 *
 * @param pSrc     first pixel of the image's ROI
 * @param srcStep  stride of the image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param coi      channel of interest: 1, 2 or 3
 * @param pValue   where the norm goes
 * @retval lumOk                   the norm has been written
 * @retval lumErrNullPointer       a pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment     the stride of an image is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiNorm_Inf_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** Inf norm of one channel of a 16u image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_Inf_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                           LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** Inf norm of one channel of a 32f image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_Inf_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                           LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** L1 norm of an 8u image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L1_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                        LumiSize roiSize, Lum64f* pValue);

/** L1 norm of a 16u image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L1_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum64f* pValue);

/** L1 norm of a 32f image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L1_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum64f* pValue);

/** L1 norm of one channel of an 8u image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_L1_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** L1 norm of one channel of a 16u image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_L1_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** L1 norm of one channel of a 32f image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_L1_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** L2 norm of an 8u image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L2_8u_C1MR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                        LumiSize roiSize, Lum64f* pValue);

/** L2 norm of a 16u image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L2_16u_C1MR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum64f* pValue);

/** L2 norm of a 32f image, over a mask. @copydetails lumiNorm_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNorm_L2_32f_C1MR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum64f* pValue);

/** L2 norm of one channel of an 8u image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_L2_8u_C3CMR(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                         LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/** L2 norm of one channel of a 16u image of three channels, over a mask. @copydetails lumiNorm_Inf_8u_C3CMR */
LUMCV_API LumStatus lumiNorm_L2_16u_C3CMR(const Lum16u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/**
 * L2 norm of one channel of a 32f image of three channels, over a mask; the only one with sums in single precision.
 * @copydetails lumiNorm_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNorm_L2_32f_C3CMR(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep,
                                          LumiSize roiSize, Lum32s coi, Lum64f* pValue);

/**
 * Inf norm of the difference of two 8u images, over a mask.
 *
 * @param pSrc1    first pixel of the first image's ROI
 * @param src1Step stride of the first image, in bytes; a multiple of the element size
 * @param pSrc2    first pixel of the second image's ROI
 * @param src2Step stride of the second image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param pValue   where the norm goes
 * @retval lumOk               the norm has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride of an image is not a multiple of its element size
 */
LUMCV_API LumStatus lumiNormDiff_Inf_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Inf norm of the difference of two 16u images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_Inf_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum64f* pValue);

/** Inf norm of the difference of two 32f images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_Inf_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum64f* pValue);

/**
 * Inf norm of the difference of one channel of two 8u images of three channels, over a mask.
 *
 * @param pSrc1    first pixel of the first image's ROI
 * @param src1Step stride of the first image, in bytes; a multiple of the element size
 * @param pSrc2    first pixel of the second image's ROI
 * @param src2Step stride of the second image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param coi      channel of interest: 1, 2 or 3
 * @param pValue   where the norm goes
 * @retval lumOk                   the norm has been written
 * @retval lumErrNullPointer       a pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment     the stride of an image is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiNormDiff_Inf_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                              const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                              Lum64f* pValue);

/**
 * Inf norm of the difference of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_Inf_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                               Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                               Lum32s coi, Lum64f* pValue);

/**
 * Inf norm of the difference of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_Inf_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2,
                                               Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                               Lum32s coi, Lum64f* pValue);

/** L1 norm of the difference of two 8u images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L1_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** L1 norm of the difference of two 16u images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L1_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** L1 norm of the difference of two 32f images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L1_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/**
 * L1 norm of the difference of one channel of two 8u images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L1_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/**
 * L1 norm of the difference of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L1_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/**
 * L1 norm of the difference of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L1_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/** L2 norm of the difference of two 8u images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L2_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** L2 norm of the difference of two 16u images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L2_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** L2 norm of the difference of two 32f images, over a mask. @copydetails lumiNormDiff_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormDiff_L2_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/**
 * L2 norm of the difference of one channel of two 8u images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L2_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/**
 * L2 norm of the difference of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L2_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/**
 * L2 norm of the difference of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormDiff_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormDiff_L2_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/**
 * Relative Inf norm of two 8u images, over a mask.
 *
 * @param pSrc1    first pixel of the first image's ROI
 * @param src1Step stride of the first image, in bytes; a multiple of the element size
 * @param pSrc2    first pixel of the second image's ROI; the reference
 * @param src2Step stride of the second image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param pValue   where the norm goes
 * @retval lumOk               the norm has been written
 * @retval lumWrnZeroDivisor   the norm of the second image is zero; an infinity or a not-a-number has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment the stride of an image is not a multiple of its element size
 */
LUMCV_API LumStatus lumiNormRel_Inf_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative Inf norm of two 16u images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_Inf_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative Inf norm of two 32f images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_Inf_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/**
 * Relative Inf norm of one channel of two 8u images of three channels, over a mask.
 *
 * @param pSrc1    first pixel of the first image's ROI
 * @param src1Step stride of the first image, in bytes; a multiple of the element size
 * @param pSrc2    first pixel of the second image's ROI; the reference
 * @param src2Step stride of the second image, in bytes; a multiple of the element size
 * @param pMask    first byte of the mask's ROI, one byte for each pixel
 * @param maskStep stride of the mask, in bytes
 * @param roiSize  size of the ROI in pixels
 * @param coi      channel of interest: 1, 2 or 3
 * @param pValue   where the norm goes
 * @retval lumOk                   the norm has been written
 * @retval lumWrnZeroDivisor       the norm of the second image is zero; an infinity or a not-a-number has been written
 * @retval lumErrNullPointer       a pointer is null
 * @retval lumErrSize              the width or the height is below 1
 * @retval lumErrStep              a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment     the stride of an image is not a multiple of its element size
 * @retval lumErrChannelOfInterest `coi` is not 1, 2 or 3
 */
LUMCV_API LumStatus lumiNormRel_Inf_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/**
 * Relative Inf norm of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_Inf_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/**
 * Relative Inf norm of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_Inf_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2,
                                              Lum32s src2Step, const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                              Lum32s coi, Lum64f* pValue);

/** Relative L1 norm of two 8u images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L1_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                           const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative L1 norm of two 16u images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L1_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative L1 norm of two 32f images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L1_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/**
 * Relative L1 norm of one channel of two 8u images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L1_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                            Lum64f* pValue);

/**
 * Relative L1 norm of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L1_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/**
 * Relative L1 norm of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L1_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/** Relative L2 norm of two 8u images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L2_8u_C1MR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                           const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative L2 norm of two 16u images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L2_16u_C1MR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/** Relative L2 norm of two 32f images, over a mask. @copydetails lumiNormRel_Inf_8u_C1MR */
LUMCV_API LumStatus lumiNormRel_L2_32f_C1MR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum64f* pValue);

/**
 * Relative L2 norm of one channel of two 8u images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L2_8u_C3CMR(const Lum8u* pSrc1, Lum32s src1Step, const Lum8u* pSrc2, Lum32s src2Step,
                                            const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                            Lum64f* pValue);

/**
 * Relative L2 norm of one channel of two 16u images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L2_16u_C3CMR(const Lum16u* pSrc1, Lum32s src1Step, const Lum16u* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/**
 * Relative L2 norm of one channel of two 32f images of three channels, over a mask.
 * @copydetails lumiNormRel_Inf_8u_C3CMR
 */
LUMCV_API LumStatus lumiNormRel_L2_32f_C3CMR(const Lum32f* pSrc1, Lum32s src1Step, const Lum32f* pSrc2, Lum32s src2Step,
                                             const Lum8u* pMask, Lum32s maskStep, LumiSize roiSize, Lum32s coi,
                                             Lum64f* pValue);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
