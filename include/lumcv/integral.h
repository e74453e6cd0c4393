/**
 * @file
 * @brief Integral images, the deviation under a rectangle, and Haar classifiers.
 */
#ifndef LUMCV_INTEGRAL_H
#define LUMCV_INTEGRAL_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup integral Integral images
 * @brief Tables of sums from which the sum under any rectangle, upright or tilted by 45 degrees, is four reads.
 *
 * The source is an image of one channel, W times H pixels (`roiSize`). The table is larger:
 *
 * | Kind | Columns | Rows | Filled with the initial value |
 * |---|---|---|---|
 * | straight | W + 1 | H + 1 | row 0 and column 0 |
 * | tilted | W + 2 | H + 2 | rows 0 and 1 |
 *
 * `lumiSqrIntegral` and `lumiTiltedSqrIntegral` write a second table of the same shape, of the squares of the pixels,
 * with an initial value of its own.
 *
 * **Straight sums.** `D[y][x]` is the initial value plus the sum of the source rows 0 to y - 1 in the columns 0 to
 * x - 1. For each source row r there is a running total t, 0 to begin with, and for each column c in order:
 *
 *     t = t + s[r][c]
 *     D[r + 1][c + 1] = t + D[r][c + 1]
 *
 * The sum under a rectangle is `D[y][x] - D[y][x + width] - D[y + height][x] + D[y + height][x + width]`.
 *
 * **Tilted sums.** The rows 0 and 1 of T are the initial value. Each source row r gives row r + 2:
 *
 *     T[r + 2][0]     = T[r + 1][1]
 *     T[r + 2][x + 1] = T[r + 1][x]     - T[r][x + 1] + T[r + 1][x + 2] + s[r][x] + s[r][x + 1]    x = 0 .. W - 2
 *     T[r + 2][W]     = T[r + 1][W - 1] - T[r][W]     + T[r + 1][W + 1] + s[r][W - 1]
 *     T[r + 2][W + 1] = T[r + 1][W + 1]
 *
 * So a pixel (r, c) adds to a cone that opens downwards by a column on each side with each row, and starts in row r + 2
 * with the two columns c and c + 1. The last column always has the initial value and cuts the cone on the right. Column
 * 0 takes over its right neighbour of the row before and adds no pixel, so a pixel of the source's first column leaves
 * a checkered trace along the left edge. Rectangles whose corners keep away from both edges are exact.
 *
 * **Arithmetic.** The types are those of the tables.
 * - 32s: integers modulo 2 to the 32, sums and squares. What overflows wraps around and is no error; squares of a large
 *   image are better held in 64f.
 * - 32f, straight: the running total t is single precision and its additions are rounded one by one. Of bytes it is
 *   exact up to 2 to the 24.
 * - 64f, straight: t is double precision, and exact. The square is an integer before it is added.
 * - 32f and 64f, tilted: the terms are added in double precision, in the order written, from the left to the right; a
 *   32f table's terms are widened before, and the result is rounded once to single precision.
 *
 * lumiIntegral_32f_C1R() has the initial value 0 and an order of additions of its own, in single precision. If W is at
 * least 4, a row is taken in groups of four pixels g, with a carry of 0 to begin with; each line is four lanes:
 *
 *     a = g + (0, g0, g1, g2)
 *     b = (a + (0, 0, a0, a1)) + carry
 *     D[r + 1][...] = b + D[r][...]
 *     carry = b3
 *
 * The last `W mod 4` pixels are added one at a time, as above, with t beginning at the carry; of rows narrower than
 * four, all are, with t beginning at 0.
 *
 * **Memory.** Nothing but the pixels of the source is read, and nothing but the tables is written. Tables must overlap
 * neither each other nor the source.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst` or `pSqr` is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of the source, or of W + 1 (straight) or W + 2 (tilted) entries of a
 *    table.
 * 4. #lumErrStepAlignment: the stride of a table, or of a 32f source, is not a multiple of its element size.
 *
 * @see @ref rect_std_dev, @ref haar
 *
 * @{
 */

/**
 * Sums of an 8u image in 32-bit integers.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes
 * @param pDst    first entry of the table, which has `roiSize.width + 1` columns and `roiSize.height + 1` rows
 * @param dstStep stride of the table, in bytes; a multiple of 4
 * @param roiSize size of the source's ROI in pixels
 * @param val     initial value, added to every entry
 * @retval lumOk               the table has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image or table
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum32s val);

/** Sums of an 8u image in floats. @copydetails lumiIntegral_8u32s_C1R */
LUMCV_API LumStatus lumiIntegral_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                           LumiSize roiSize, Lum32f val);

/**
 * Sums of a 32f image in floats. The initial value is 0.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes; a multiple of 4
 * @param pDst    first entry of the table, which has `roiSize.width + 1` columns and `roiSize.height + 1` rows
 * @param dstStep stride of the table, in bytes; a multiple of 4
 * @param roiSize size of the source's ROI in pixels
 * @retval lumOk               the table has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image or table
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 */
LUMCV_API LumStatus lumiIntegral_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                         LumiSize roiSize);

/**
 * Sums of an 8u image, and sums of its squares, in 32-bit integers.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes
 * @param pDst    first entry of the table of sums, which has `roiSize.width + 1` columns and `roiSize.height + 1` rows
 * @param dstStep stride of the table of sums, in bytes; a multiple of 4
 * @param pSqr    first entry of the table of squares, of the same shape
 * @param sqrStep stride of the table of squares, in bytes; a multiple of its element size
 * @param roiSize size of the source's ROI in pixels
 * @param val     initial value of the sums
 * @param valSqr  initial value of the squares
 * @retval lumOk               both tables have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image or table
 * @retval lumErrStepAlignment the stride of a table is not a multiple of its element size
 */
LUMCV_API LumStatus lumiSqrIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                              Lum32s* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32s val,
                                              Lum32s valSqr);

/** Sums of an 8u image in 32-bit integers, and sums of its squares in doubles. @copydetails lumiSqrIntegral_8u32s_C1R
 */
LUMCV_API LumStatus lumiSqrIntegral_8u32s64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                                 Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32s val,
                                                 Lum64f valSqr);

/** Sums of an 8u image in floats, and sums of its squares in doubles. @copydetails lumiSqrIntegral_8u32s_C1R */
LUMCV_API LumStatus lumiSqrIntegral_8u32f64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32f val,
                                                 Lum64f valSqr);

/**
 * Tilted sums of an 8u image in 32-bit integers.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes
 * @param pDst    first entry of the table, which has `roiSize.width + 2` columns and `roiSize.height + 2` rows
 * @param dstStep stride of the table, in bytes; a multiple of 4
 * @param roiSize size of the source's ROI in pixels
 * @param val     initial value
 * @retval lumOk               the table has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image or table
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 4
 */
LUMCV_API LumStatus lumiTiltedIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, Lum32s val);

/** Tilted sums of an 8u image in floats. @copydetails lumiTiltedIntegral_8u32s_C1R */
LUMCV_API LumStatus lumiTiltedIntegral_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                 LumiSize roiSize, Lum32f val);

/**
 * Tilted sums of an 8u image, and tilted sums of its squares, in 32-bit integers.
 *
 * @param pSrc    first pixel of the source's ROI
 * @param srcStep stride of the source, in bytes
 * @param pDst    first entry of the table of sums, which has `roiSize.width + 2` columns and `roiSize.height + 2` rows
 * @param dstStep stride of the table of sums, in bytes; a multiple of 4
 * @param pSqr    first entry of the table of squares, of the same shape
 * @param sqrStep stride of the table of squares, in bytes; a multiple of its element size
 * @param roiSize size of the source's ROI in pixels
 * @param val     initial value of the sums
 * @param valSqr  initial value of the squares
 * @retval lumOk               both tables have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row of its image or table
 * @retval lumErrStepAlignment the stride of a table is not a multiple of its element size
 */
LUMCV_API LumStatus lumiTiltedSqrIntegral_8u32s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                                    Lum32s* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32s val,
                                                    Lum32s valSqr);

/**
 * Tilted sums of an 8u image in 32-bit integers, and tilted sums of its squares in doubles.
 * @copydetails lumiTiltedSqrIntegral_8u32s_C1R
 */
LUMCV_API LumStatus lumiTiltedSqrIntegral_8u32s64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32s* pDst, Lum32s dstStep,
                                                       Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32s val,
                                                       Lum64f valSqr);

/**
 * Tilted sums of an 8u image in floats, and tilted sums of its squares in doubles.
 * @copydetails lumiTiltedSqrIntegral_8u32s_C1R
 */
LUMCV_API LumStatus lumiTiltedSqrIntegral_8u32f64f_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                       Lum64f* pSqr, Lum32s sqrStep, LumiSize roiSize, Lum32f val,
                                                       Lum64f valSqr);

/** @} */

/**
 * @defgroup rect_std_dev Rectangle deviation
 * @brief The standard deviation of an image under a rectangle at each pixel, from its integral images.
 *
 * `pSrc` is a table of sums P and `pSqr` one of squares Q, as lumiSqrIntegral_8u32f64f_C1R() and its like write them;
 * the tilted functions take tilted ones. For each pixel (i, j) of the ROI the rectangle lies `rect.x` columns and
 * `rect.y` rows from the table's entry at (i, j). With x, y, width, height of `rect`, as row and column from that
 * entry:
 *
 * | Corner | Upright | Tilted |
 * |---|---|---|
 * | first | y, x | x + y, x - y |
 * | second | y, x + width | x + y + height, x - y - height |
 * | third | y + height, x | x + y + width, x - y + width |
 * | fourth | y + height, x + width | x + y + width + height, x - y + width - height |
 *
 * The area is `width * height`, and tilted `2 * width * height`. In words: the mean of the squares minus the square of
 * the mean is the variance, which is 0 at least, and the result is its root.
 *
 * **Arithmetic.** Every operation is rounded by itself; "single" and "double" name the precision. Roots are exactly
 * rounded.
 *
 * lumiRectStdDev_32f_C1R(): the pixels of a row are taken in groups of 8, from the first one; what is left at the end
 * of the row is the tail.
 * 1. `inv = 1 / area`, double, of the area rounded to single.
 * 2. The sum of P, single, and of Q, double: `((first - second) - third) + fourth` in groups,
 *    `(first - second) + (fourth - third)` in the tail.
 * 3. `mean = sum * inv` and `meanSqr = sumSqr * inv`, double.
 * 4. `variance = meanSqr - mean * mean`, double, rounded to single; what is not above 0, not-a-number included, becomes
 *    0.
 * 5. The single root.
 *
 * lumiRectStdDev_32s32f_C1R(): groups of 8 and a tail as above.
 * 1. The sum of P in integers modulo 2 to the 32, converted to single; `mean = sum / area`, single.
 * 2. `((first - second) - third) + fourth` of Q. In groups the four corners are rounded to single first, the sum and
 *    `meanSqr = sumSqr / area` are single. In the tail both are double, and `meanSqr` is rounded to single then.
 * 3. `variance = meanSqr - mean * mean`, single; what is below 0 becomes 0, and a not-a-number stays one.
 * 4. The single root.
 *
 * lumiRectStdDev_32s_C1RSfs(): all pixels alike.
 * 1. Both sums in integers modulo 2 to the 32, converted to single and multiplied by `1 / area`, a single quotient.
 * 2. `variance = meanSqr - mean * mean`, single; below 0 it becomes 0.
 * 3. `root * scale + 0.5`, double, with the double root of the variance; truncated to an integer. What exceeds 32 bits
 *    gives -2147483648.
 *
 * The tilted functions, all pixels alike; sums are `(first - (second + third)) + fourth`:
 * - lumiTiltedRectStdDev_32f_C1R(): both sums in double, of entries widened before, times `1 / area`, double.
 * - lumiTiltedRectStdDev_32s32f_C1R(): the sum of P in integers modulo 2 to the 32, converted to single, times
 *   `1 / area`, single, and widened; the sum of Q in double, times `1 / area`, double.
 * - lumiTiltedRectStdDev_32s_C1RSfs(): both sums as that of P in the function before.
 *
 * and then `variance = meanSqr - mean * mean`, double; what is not above 0, not-a-number included, becomes 0; the
 * variance is rounded to single. The float results are its single root. The integer result is `root * scale + 0.5`,
 * double, with the root rounded to single before, truncated as above.
 *
 * `scale` is 2 to the power of `-scaleFactor`. The magnitude of the scale factor counts modulo 32.
 *
 * **Memory.** The tables' rows are not known to the function: the caller sees to it that the rectangle lies in the
 * tables for every pixel. In a tilted rectangle columns are negative where y, or y + height, exceeds x + i: `pSrc` and
 * `pSqr` must then point far enough into the tables' rows. The destination must not overlap the tables.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pSqr` or `pDst` is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: the stride of a table is smaller than `x + width + W` entries, or tilted
 *    `x + y + width + height + W - 1` entries, with W the ROI's width; `dstStep` is smaller than W entries. Counted in
 * 32 bits.
 * 4. #lumErrStepAlignment: a stride is not a multiple of its element size.
 * 5. #lumErrSize: `rect.x` or `rect.y` is negative, or `rect.width` or `rect.height` below 1.
 *
 * @see @ref integral, @ref haar
 *
 * @{
 */

/**
 * Deviation under an upright rectangle, from float sums and double squares.
 *
 * @param pSrc    table of sums: the entry of the ROI's first pixel
 * @param srcStep stride of the table of sums, in bytes; a multiple of 4
 * @param pSqr    table of squares: the entry of the ROI's first pixel
 * @param sqrStep stride of the table of squares, in bytes; a multiple of 8
 * @param pDst    first pixel of the destination's ROI
 * @param dstStep stride of the destination, in bytes; a multiple of 4
 * @param roiSize size of the ROI in pixels
 * @param rect    the rectangle, relative to a pixel's entry in the tables
 * @retval lumOk               the deviations have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the rectangle is not valid
 * @retval lumErrStep          a stride is too small
 * @retval lumErrStepAlignment a stride is not a multiple of its element size
 */
LUMCV_API LumStatus lumiRectStdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                           Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect);

/** Deviation under an upright rectangle, from integer sums and double squares. @copydetails lumiRectStdDev_32f_C1R */
LUMCV_API LumStatus lumiRectStdDev_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                              Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect);

/**
 * Deviation under an upright rectangle, from integer sums and squares, scaled to integers.
 *
 * @param pSrc        table of sums: the entry of the ROI's first pixel
 * @param srcStep     stride of the table of sums, in bytes; a multiple of 4
 * @param pSqr        table of squares: the entry of the ROI's first pixel
 * @param sqrStep     stride of the table of squares, in bytes; a multiple of 4
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes; a multiple of 4
 * @param roiSize     size of the ROI in pixels
 * @param rect        the rectangle, relative to a pixel's entry in the tables
 * @param scaleFactor the result is multiplied by 2 to the power of minus this and rounded, half up
 * @retval lumOk               the deviations have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1, or the rectangle is not valid
 * @retval lumErrStep          a stride is too small
 * @retval lumErrStepAlignment a stride is not a multiple of its element size
 */
LUMCV_API LumStatus lumiRectStdDev_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pSqr, Lum32s sqrStep,
                                              Lum32s* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect,
                                              Lum32s scaleFactor);

/** Deviation under a tilted rectangle, from float sums and double squares. @copydetails lumiRectStdDev_32f_C1R */
LUMCV_API LumStatus lumiTiltedRectStdDev_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum64f* pSqr, Lum32s sqrStep,
                                                 Lum32f* pDst, Lum32s dstStep, LumiSize roiSize, LumiRect rect);

/** Deviation under a tilted rectangle, from integer sums and double squares. @copydetails lumiRectStdDev_32f_C1R */
LUMCV_API LumStatus lumiTiltedRectStdDev_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum64f* pSqr,
                                                    Lum32s sqrStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize,
                                                    LumiRect rect);

/**
 * Deviation under a tilted rectangle, from integer sums and squares, scaled to integers.
 * @copydetails lumiRectStdDev_32s_C1RSfs
 */
LUMCV_API LumStatus lumiTiltedRectStdDev_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pSqr,
                                                    Lum32s sqrStep, Lum32s* pDst, Lum32s dstStep, LumiSize roiSize,
                                                    LumiRect rect, Lum32s scaleFactor);

/** @} */

/** One stage of a boosted cascade, laid in the caller's block by the Init functions of Haar classifiers. */
typedef struct LumiHaarStageRecord LumiHaarStageRecord;

/**
 * @defgroup haar Haar classifiers
 * @brief One stage of a boosted cascade of Haar-like features, for each window that a mask still marks as a candidate.
 *
 * A stage is a list of weak classifiers. Each weighs a few rectangles of an integral image, compares the weighted sum
 * with a threshold times the window's norm, and votes for one of two values. Windows whose votes add up to less than
 * the stage's threshold are cleared from the mask, and the others are counted. A cascade is a chain of apply calls over
 * one mask, each with its stage's record and with the count that the call before it left in `*pPositive`.
 *
 * A window (i, j) is named by its first pixel; the ROI is the places of the window, not the image. `pSrc` points to the
 * entry of the window (0, 0) in a table of @ref integral, `pNorm` to its norm, usually of @ref rect_std_dev, and
 * `pMask` to its byte: the window is a candidate where that is not zero.
 *
 * This keeps the places of an 8x8 window that is dark on the left and bright on the right:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus keepEdges(const Lum8u* pSrc, Lum32s srcStep, LumiSize imageSize, Lum8u* pMask, Lum32s maskStep,
 *                     Lum32s* pCount)
 * {
 *     const LumiRect rects[2] = {{0, 0, 8, 8}, {4, 0, 4, 8}};
 *     const Lum32f weights[2] = {1, -2};  // all minus twice the right half: left minus right
 *     const Lum32f threshold = -56;       // in deviations; a clean edge in the middle has -64
 *     const Lum32f ifBelow = 1;
 *     const Lum32f otherwise = 0;
 *     const Lum32s rectsOfClassifier = 2;
 *     const LumiSize places = {imageSize.width - 7, imageSize.height - 7};
 *     Lum32s recordBytes = 0;
 *     LumStatus status = lumiHaarClassifierGetSize(lumType32f, places, &rectsOfClassifier, 1, &recordBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     const Lum32s columns = imageSize.width + 1;
 *     const size_t entries = (size_t)columns * (size_t)(imageSize.height + 1);
 *     Lum32f* sums = malloc(entries * sizeof *sums);
 *     Lum64f* squares = malloc(entries * sizeof *squares);
 *     Lum32f* norms = malloc(entries * sizeof *norms);
 *     LumiHaarStageRecord* stage = malloc((size_t)recordBytes);
 *     status = lumErrNullPointer;
 *     if (sums != NULL && squares != NULL && norms != NULL && stage != NULL)
 *         status = lumiSqrIntegral_8u32f64f_C1R(pSrc, srcStep, sums, columns * 4, squares, columns * 8, imageSize,
 *                                               0, 0);
 *     if (status == lumOk)
 *         status = lumiRectStdDev_32f_C1R(sums, columns * 4, squares, columns * 8, norms, columns * 4, places,
 *                                         rects[0]);
 *     if (status == lumOk)
 *         status = lumiHaarClassifierInit_32f(stage, rects, weights, &threshold, &ifBelow, &otherwise,
 *                                             &rectsOfClassifier, 1);
 *     if (status == lumOk)
 *         status = lumiApplyHaarClassifier_32f_C1R(sums, columns * 4, norms, columns * 4, pMask, maskStep, places,
 *                                                  pCount, 0.5f, stage);
 *     free(stage);
 *     free(norms);
 *     free(squares);
 *     free(sums);
 *     return status;
 * }
 * @endcode
 *
 * **Rectangles** are relative to the window. Their corners are, as column and row in the table:
 *
 * | Corner | Upright | Tilted |
 * |---|---|---|
 * | tl | (x, y) | (x, y) |
 * | tr | (x + width, y) | (x + width, y + width) |
 * | bl | (x, y + height) | (x - height, y + height) |
 * | br | (x + width, y + height) | (x + width - height, y + width + height) |
 *
 * `lumiHaarClassifierInit` takes all rectangles of a stage as upright and `lumiTiltedHaarClassifierInit` as tilted;
 * `lumiTiltHaarFeatures` turns chosen classifiers of an upright stage into tilted ones, by these corners:
 *
 * | Corner | `flag` not zero | `flag` zero |
 * |---|---|---|
 * | tl | (x, y) | (x + width - height, y - width) |
 * | tr | (x + width, y + width) | (x + width, y + height - width) |
 * | bl | (x - height, y + height) | (x - height, y) |
 * | br | (x + width - height, y + width + height) | (x, y + height) |
 *
 * A plain apply reads the one table it is given, whatever the rectangles are. A mixed one takes two, and reads the
 * tilted one for tilted classifiers: those that lumiTiltHaarFeatures_32f() turned and all of a tilted Init. It reads
 * `pTilt` one row and one column further than `pSrc`: window (i, j) is at row j + 1 and column i + 1, for a tilted
 * table has its extra rows and columns ahead of the source. So both pointers are those of the window's entry (0, 0).
 *
 * **Order.** Init sorts: classifiers of two rectangles come first, then those of three, then all others, each group in
 * the caller's order. Votes are added in this stored order, into one running sum that begins at 0, and the rectangles
 * of a classifier in the order given.
 *
 * **A classifier**, of a window with the norm n: the feature is the sum of `weight * rectangle sum`. If
 * `threshold * n > feature`, it votes `val1`, otherwise `val2`: also if the two are equal, or if one is not-a-number.
 * Every product and every sum is rounded by itself.
 *
 * - `lumiApplyHaarClassifier_32f`: single precision. A rectangle's sum is `((br - bl) - tr) + tl` in groups and
 *   `(br - (bl + tr)) + tl` in the tail; see below.
 * - `lumiApplyMixedHaarClassifier_32f`: single precision. A rectangle's sum is `((br - bl) - tr) + tl`.
 * - Both `_32s32f`: a rectangle's sum is an integer modulo 2 to the 32, then converted to single precision; all else is
 *   single precision.
 * - Both `_32s_C1RSfs`: a rectangle's sum is `br - (bl + tr)` modulo 2 to the 32, widened to 64 bits, plus `tl`. The
 *   feature has 64 bits, and `feature * 2^-scaleFactor < threshold * n` in 64 bits votes `val1`. Votes are added in 32
 *   bits.
 *
 * All integers wrap around. The count of places by which the feature is shifted to the left, `-scaleFactor`, is taken
 * modulo 64.
 *
 * **The stage.** A candidate whose sum of votes s has `stage threshold > s` is cleared: its mask byte becomes 0.
 * Otherwise it is counted, and its byte keeps its value. `*pPositive` becomes the count. Bytes that were 0 stay 0 and
 * are not counted.
 *
 * lumiApplyHaarClassifier_32f_C1R() deviates from this in groups of windows. It takes `*pPositive` as the caller's
 * estimate of the candidates, and chooses by it how it goes through a row. With N the number of windows in the ROI:
 *
 * | The first that holds | Windows of a row are taken |
 * |---|---|
 * | `*pPositive >= N / 4` | in groups of 16, all of them |
 * | `*pPositive >= N / 8` | in groups of 4 that have a candidate |
 * | `*pPositive >= N / 16` | in groups of 8, of which each half of 4 that has a candidate |
 * | otherwise | in groups of 16, of which each quarter of 4 that has a candidate |
 *
 * Quotients are rounded down. What is left at the end of a row, beyond its last whole group of 16, 4, 8 or 16, is the
 * tail. In groups a candidate is kept only if `stage threshold < s`, and its byte becomes 255; so a sum of exactly the
 * threshold is cleared in a group and kept in the tail, and a sum that is not-a-number likewise. Groups and tail differ
 * in the order of a rectangle's sum too, see above. So the estimate decides the result only for sums that meet the
 * threshold, or in which rounding takes part.
 *
 * **Three steps.** lumiHaarClassifierGetSize() tells the size of the record, Init lays it in the caller's block, and
 * any number of apply calls use it, for ROIs not above the one queried; `lumiTiltHaarFeatures` may come once in
 * between. The block may stand at any address and the record must not be moved. The caller's arrays are not needed
 * after Init. If Init fails, the block is as it was. Plain apply calls write into the record: one thread at a time may
 * use it; the mixed ones only read it. A record of an Init for 32f serves the apply functions of 32f and 32s32f, one of
 * an Init for 32s those of 32s.
 *
 * **Memory.** The tables' rows are not known to the functions: the caller sees to it that each rectangle lies in the
 * table for each window of the ROI, candidate or not. lumiGetHaarClassifierSize_32f() tells how far they reach. The
 * mask must overlap neither the tables nor the norms.
 *
 * **Checks of apply**, in this order; the first that fails decides the status, and neither mask nor count has been
 * written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pTilt`, `pNorm`, `pMask`, `pPositive` or `pState` is null.
 * 2. #lumErrSize: the width or the height of the ROI is below 1.
 * 3. #lumErrStep: a stride is smaller than a row of the ROI: four bytes for each window in tables and norms, one in the
 *    mask.
 * 4. #lumErrStepAlignment: the stride of a table or of the norms is not a multiple of 4.
 * 5. #lumErrArgument: `scaleFactor` is above 0 (`Sfs`).
 * 6. #lumErrNullPointer: the block is all zeros and no Init has laid a record in it (plain apply).
 *
 * @see @ref integral, @ref rect_std_dev
 *
 * @{
 */

/**
 * Size of the record of a stage.
 *
 * With `base = 32 * length + 36 * total + 64`, `total` the sum of `pNum` and W the ROI's width, it is
 * `base + 16 * total + 64` bytes for #lumType32s, and `base + 16 * total + ((8 * W + 30) & ~31) + 80` for #lumType32f.
 *
 * The checks come in the order of the statuses below.
 *
 * @param dataType #lumType32s for stages of Lum32s weights, #lumType32f for those of Lum32f
 * @param roiSize  size of the largest ROI, in windows
 * @param pNum     the number of rectangles of each classifier
 * @param length   the number of classifiers
 * @param pSize    where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pNum` or `pSize` is null
 * @retval lumErrSize         `length`, the width, the height or an entry of `pNum` is below 1
 * @retval lumErrDataType     `dataType` is neither of the two
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiHaarClassifierGetSize(LumDataType dataType, LumiSize roiSize, const Lum32s* pNum, Lum32s length,
                                              Lum32s* pSize);

/**
 * Lays the record of a stage of upright rectangles, for tables of floats or integers with float weights.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pState     where the record goes: a block of the queried size
 * @param pFeature   the rectangles of all classifiers, one classifier after the other
 * @param pWeight    the weight of each rectangle
 * @param pThreshold the threshold of each classifier, in units of the window's norm
 * @param pVal1      the vote of each classifier if the feature is below the threshold
 * @param pVal2      its vote otherwise
 * @param pNum       the number of rectangles of each classifier
 * @param length     the number of classifiers
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        `length` or an entry of `pNum` is below 1
 * @retval lumErrArgument    a rectangle has a negative `x` or `y`, or a `width` or `height` below 1
 */
LUMCV_API LumStatus lumiHaarClassifierInit_32f(LumiHaarStageRecord* pState, const LumiRect* pFeature,
                                               const Lum32f* pWeight, const Lum32f* pThreshold, const Lum32f* pVal1,
                                               const Lum32f* pVal2, const Lum32s* pNum, Lum32s length);

/**
 * Lays the record of a stage of upright rectangles, for tables of integers with integer weights.
 * @copydetails lumiHaarClassifierInit_32f
 */
LUMCV_API LumStatus lumiHaarClassifierInit_32s(LumiHaarStageRecord* pState, const LumiRect* pFeature,
                                               const Lum32s* pWeight, const Lum32s* pThreshold, const Lum32s* pVal1,
                                               const Lum32s* pVal2, const Lum32s* pNum, Lum32s length);

/**
 * Lays the record of a stage of tilted rectangles, for tables of floats or integers with float weights.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pState     where the record goes: a block of the queried size
 * @param pFeature   the rectangles of all classifiers, one classifier after the other
 * @param pWeight    the weight of each rectangle
 * @param pThreshold the threshold of each classifier, in units of the window's norm
 * @param pVal1      the vote of each classifier if the feature is below the threshold
 * @param pVal2      its vote otherwise
 * @param pNum       the number of rectangles of each classifier
 * @param length     the number of classifiers
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        `length` or an entry of `pNum` is below 1
 * @retval lumErrArgument    a rectangle has a negative `x` or `y`, a `width` or `height` below 1, or a `height` above
 *                           `x + 1`
 */
LUMCV_API LumStatus lumiTiltedHaarClassifierInit_32f(LumiHaarStageRecord* pState, const LumiRect* pFeature,
                                                     const Lum32f* pWeight, const Lum32f* pThreshold,
                                                     const Lum32f* pVal1, const Lum32f* pVal2, const Lum32s* pNum,
                                                     Lum32s length);

/**
 * Lays the record of a stage of tilted rectangles, for tables of integers with integer weights.
 * @copydetails lumiTiltedHaarClassifierInit_32f
 */
LUMCV_API LumStatus lumiTiltedHaarClassifierInit_32s(LumiHaarStageRecord* pState, const LumiRect* pFeature,
                                                     const Lum32s* pWeight, const Lum32s* pThreshold,
                                                     const Lum32s* pVal1, const Lum32s* pVal2, const Lum32s* pNum,
                                                     Lum32s length);

/**
 * Tells the size of a stage's window: the largest column of a top right corner (tr) and the largest row of a bottom
 * right corner (br), 0 if there are none.
 *
 * @param pState record of an Init for 32f; only read
 * @param pSize  where the size goes
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer a pointer is null
 */
LUMCV_API LumStatus lumiGetHaarClassifierSize_32f(const LumiHaarStageRecord* pState, LumiSize* pSize);

/** @copydoc lumiGetHaarClassifierSize_32f */
LUMCV_API LumStatus lumiGetHaarClassifierSize_32s(const LumiHaarStageRecord* pState, LumiSize* pSize);

/**
 * Turns classifiers of an upright stage into tilted ones.
 *
 * It can be done once: the positions of classifiers in the caller's list are not kept for those that have been turned.
 * If no byte of the mask is set, the record stays as it was and the call can be repeated. Corners may come to lie at
 * negative columns and rows, which is not tested.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pMask  one byte for each classifier, in the caller's order: what is not zero is turned
 * @param flag   which point of the rectangle stays: see the table of corners
 * @param pState record of an Init for 32f; rewritten
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrArgument    the record holds tilted classifiers already
 */
LUMCV_API LumStatus lumiTiltHaarFeatures_32f(const Lum8u* pMask, Lum32s flag, LumiHaarStageRecord* pState);

/** Turns classifiers of an upright stage of 32s into tilted ones. @copydetails lumiTiltHaarFeatures_32f */
LUMCV_API LumStatus lumiTiltHaarFeatures_32s(const Lum8u* pMask, Lum32s flag, LumiHaarStageRecord* pState);

/**
 * Applies a stage to a table of floats.
 *
 * @param pSrc      table of sums: the entry of the ROI's first window
 * @param srcStep   stride of the table, in bytes; a multiple of 4
 * @param pNorm     norm of the ROI's first window
 * @param normStep  stride of the norms, in bytes; a multiple of 4
 * @param pMask     first byte of the mask; read and rewritten
 * @param maskStep  stride of the mask, in bytes
 * @param roiSize   size of the ROI in windows, not above the one queried
 * @param pPositive on entry an estimate of the number of candidates, on return the number of those kept
 * @param threshold the stage's threshold
 * @param pState    record of an Init for 32f; written to
 * @retval lumOk               mask and count have been written
 * @retval lumErrNullPointer   a pointer is null, or no record has been laid in the block
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment the stride of the table or of the norms is not a multiple of 4
 */
LUMCV_API LumStatus lumiApplyHaarClassifier_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum32f* pNorm,
                                                    Lum32s normStep, Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                    Lum32s* pPositive, Lum32f threshold, LumiHaarStageRecord* pState);

/**
 * Applies a stage of float weights to a table of integers.
 *
 * @param pSrc      table of sums: the entry of the ROI's first window
 * @param srcStep   stride of the table, in bytes; a multiple of 4
 * @param pNorm     norm of the ROI's first window
 * @param normStep  stride of the norms, in bytes; a multiple of 4
 * @param pMask     first byte of the mask; read and rewritten
 * @param maskStep  stride of the mask, in bytes
 * @param roiSize   size of the ROI in windows, not above the one queried
 * @param pPositive on return the number of candidates kept; its value on entry does not matter
 * @param threshold the stage's threshold
 * @param pState    record of an Init for 32f; written to
 * @retval lumOk               mask and count have been written
 * @retval lumErrNullPointer   a pointer is null, or no record has been laid in the block
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment the stride of the table or of the norms is not a multiple of 4
 */
LUMCV_API LumStatus lumiApplyHaarClassifier_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum32f* pNorm,
                                                       Lum32s normStep, Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                       Lum32s* pPositive, Lum32f threshold,
                                                       LumiHaarStageRecord* pState);

/**
 * Applies a stage of integer weights to a table of integers.
 *
 * @param pSrc        table of sums: the entry of the ROI's first window
 * @param srcStep     stride of the table, in bytes; a multiple of 4
 * @param pNorm       norm of the ROI's first window
 * @param normStep    stride of the norms, in bytes; a multiple of 4
 * @param pMask       first byte of the mask; read and rewritten
 * @param maskStep    stride of the mask, in bytes
 * @param roiSize     size of the ROI in windows, not above the one queried
 * @param pPositive   on return the number of candidates kept; its value on entry does not matter
 * @param threshold   the stage's threshold
 * @param pState      record of an Init for 32s; written to
 * @param scaleFactor features are multiplied by 2 to the power of minus this before they are compared; not above 0
 * @retval lumOk               mask and count have been written
 * @retval lumErrNullPointer   a pointer is null, or no record has been laid in the block
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment the stride of the table or of the norms is not a multiple of 4
 * @retval lumErrArgument      `scaleFactor` is above 0
 */
LUMCV_API LumStatus lumiApplyHaarClassifier_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pNorm,
                                                       Lum32s normStep, Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                       Lum32s* pPositive, Lum32s threshold, LumiHaarStageRecord* pState,
                                                       Lum32s scaleFactor);

/**
 * Applies a stage of upright and tilted classifiers to tables of floats.
 *
 * @param pSrc      table of sums: the entry of the ROI's first window
 * @param srcStep   stride of the table of sums, in bytes; a multiple of 4
 * @param pTilt     table of tilted sums: the entry of the ROI's first window
 * @param tiltStep  stride of the table of tilted sums, in bytes; a multiple of 4
 * @param pNorm     norm of the ROI's first window
 * @param normStep  stride of the norms, in bytes; a multiple of 4
 * @param pMask     first byte of the mask; read and rewritten
 * @param maskStep  stride of the mask, in bytes
 * @param roiSize   size of the ROI in windows
 * @param pPositive on return the number of candidates kept; its value on entry does not matter
 * @param threshold the stage's threshold
 * @param pState    record of an Init for 32f; only read
 * @retval lumOk               mask and count have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment the stride of a table or of the norms is not a multiple of 4
 */
LUMCV_API LumStatus lumiApplyMixedHaarClassifier_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, const Lum32f* pTilt,
                                                         Lum32s tiltStep, const Lum32f* pNorm, Lum32s normStep,
                                                         Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                         Lum32s* pPositive, Lum32f threshold,
                                                         const LumiHaarStageRecord* pState);

/**
 * Applies a stage of upright and tilted classifiers with float weights to tables of integers.
 * @copydetails lumiApplyMixedHaarClassifier_32f_C1R
 */
LUMCV_API LumStatus lumiApplyMixedHaarClassifier_32s32f_C1R(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pTilt,
                                                            Lum32s tiltStep, const Lum32f* pNorm, Lum32s normStep,
                                                            Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                            Lum32s* pPositive, Lum32f threshold,
                                                            const LumiHaarStageRecord* pState);

/**
 * Applies a stage of upright and tilted classifiers with integer weights to tables of integers.
 *
 * @param pSrc        table of sums: the entry of the ROI's first window
 * @param srcStep     stride of the table of sums, in bytes; a multiple of 4
 * @param pTilt       table of tilted sums: the entry of the ROI's first window
 * @param tiltStep    stride of the table of tilted sums, in bytes; a multiple of 4
 * @param pNorm       norm of the ROI's first window
 * @param normStep    stride of the norms, in bytes; a multiple of 4
 * @param pMask       first byte of the mask; read and rewritten
 * @param maskStep    stride of the mask, in bytes
 * @param roiSize     size of the ROI in windows
 * @param pPositive   on return the number of candidates kept; its value on entry does not matter
 * @param threshold   the stage's threshold
 * @param pState      record of an Init for 32s; only read
 * @param scaleFactor features are multiplied by 2 to the power of minus this before they are compared; not above 0
 * @retval lumOk               mask and count have been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment the stride of a table or of the norms is not a multiple of 4
 * @retval lumErrArgument      `scaleFactor` is above 0
 */
LUMCV_API LumStatus lumiApplyMixedHaarClassifier_32s_C1RSfs(const Lum32s* pSrc, Lum32s srcStep, const Lum32s* pTilt,
                                                            Lum32s tiltStep, const Lum32s* pNorm, Lum32s normStep,
                                                            Lum8u* pMask, Lum32s maskStep, LumiSize roiSize,
                                                            Lum32s* pPositive, Lum32s threshold,
                                                            const LumiHaarStageRecord* pState, Lum32s scaleFactor);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
