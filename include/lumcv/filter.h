/**
 * @file
 * @brief Linear filters: row and column pipelines, separable, Gaussian, Laplacian, lowpass, Sobel.
 */
#ifndef LUMCV_FILTER_H
#define LUMCV_FILTER_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup pipelines Row and column pipelines
 * @brief A separable filter as two one-dimensional passes over rows that the caller holds.
 *
 * The row pass (@ref row_pipeline) reads an image and writes rows; the column pass (@ref column_pipeline) combines rows
 * into an image. Both reach the rows through an array of row pointers, one pointer for each row, in the order of the
 * image. The rows stand free: each is a piece of memory of its own, of `width` times channels elements, aligned to its
 * element type. So a ring of rows can hand one band of the image after the other from the first pass to the second with
 * no intermediate image and no copy, and the vertical border is a matter of pointers: repeat the pointer of the edge
 * row, or point to the rows in mirrored order. No row may overlap another image or row of the same call, except that
 * the column pass may be given the same row several times. The pointer arrays are only read.
 *
 * This smooths an 8u image by the weights 1, 2, 1 in both directions; the divisor 4 of each pass makes the sum 1:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus smooth(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     const Lum16s kernel[3] = {1, 2, 1};
 *     Lum32s rowBytes = 0;
 *     Lum32s columnBytes = 0;
 *     LumStatus status = lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(roiSize, 3, &rowBytes);
 *     if (status == lumOk)
 *         status = lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(roiSize, 3, &columnBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     size_t width = (size_t)roiSize.width;
 *     size_t height = (size_t)roiSize.height;
 *     Lum16s* pixels = malloc(width * height * sizeof *pixels);
 *     Lum16s** rows = malloc((height + 2) * sizeof *rows);
 *     Lum8u* buffer = malloc((size_t)(rowBytes > columnBytes ? rowBytes : columnBytes));
 *     status = lumErrNullPointer;
 *     if (pixels != NULL && rows != NULL && buffer != NULL)
 *     {
 *         for (size_t y = 0; y < height; y++)
 *             rows[y + 1] = pixels + y * width;
 *         rows[0] = rows[1];  // the edge rows stand for what lies above and below
 *         rows[height + 1] = rows[height];
 *         status = lumiFilterRowBorderPipeline_8u16s_C1R(pSrc, srcStep, rows + 1, roiSize, kernel, 3, 1,
 *                                                        lumBorderReplicate, 0, 4, buffer);
 *         if (status == lumOk)
 *             status = lumiFilterColumnPipeline_16s8u_C1R(rows, pDst, dstStep, roiSize, kernel, 3, 4, buffer);
 *     }
 *     free(buffer);
 *     free(rows);
 *     free(pixels);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref gaussian
 */

/**
 * @defgroup row_pipeline Row pipeline
 * @ingroup pipelines
 * @brief The horizontal pass: filters each row of an image into a row of the caller's.
 *
 * With `k` the kernel:
 *
 *     dst[y][x] = sum over i = 0 .. kernelSize - 1 of k[i] * src[y][x - xAnchor + i]
 *
 * The kernel is applied in its given order and not reversed; `xAnchor` is the index of the coefficient that falls on
 * the output pixel. Three-channel rows are filtered channel by channel.
 *
 * **Arithmetic.**
 * - 32f: products and sums in single precision, in kernel order, each rounded by itself.
 * - 16s, 16u, 8u to 16s: the coefficient becomes the single-precision product `k[i] * (1.0f / divisor)`, once for the
 *   call. Its products with the pixels are summed in single precision in kernel order, each operation rounded by
 *   itself. The sum is rounded to the nearest integer, ties to even, and saturates to the type of the rows.
 * - `_Low`: integers only. The products are summed in 32 bits. If `divisor` is not 1, the sum is multiplied by the
 *   scale `16384.0f / divisor`, truncated to a 16-bit integer once for the call, and shifted right by 14 places, with
 *   no rounding. The result saturates to 16 bits. The caller keeps the sum and its product with the scale within 32
 *   bits; beyond, they wrap. The last bits may differ from the 16s pipeline's, and a divisor beyond 16384 in magnitude
 *   makes the scale 0.
 *
 * **Border.** A pixel needs the `xAnchor` pixels before and the `kernelSize - 1 - xAnchor` pixels behind it. What lies
 * outside the row follows `borderType` (see #LumiBorderType), each side by itself:
 * - A side flagged #lumBorderInMemLeft or #lumBorderInMemRight, and both with #lumBorderInMem: the pixels in memory
 *   next to the ROI, `xAnchor` of them on the left and `kernelSize - 1 - xAnchor` on the right, in every row. Nothing
 *   further is read.
 * - #lumBorderReplicate: the first or last pixel of the row.
 * - #lumBorderMirror: reflected at the first or last pixel, which is not repeated; when the kernel reaches further than
 *   the row, the reflection bounces back and forth between both ends, also next to a side that is in memory. A row of
 *   one pixel without an in-memory flag is replicated.
 * - #lumBorderConstant: `borderValue`.
 *
 * The flags of top and bottom mean nothing here.
 *
 * **Scratch**, in bytes, with `k` the kernel size; the query has the name of the function with `GetBufferSize` after
 * `Pipeline`:
 *
 * | Function | Bytes | | Function | Bytes |
 * |---|---|---|---|---|
 * | `32f_C1R` | `96 k + 96` | | `32f_C3R` | `288 k + 96` |
 * | `16s_C1R` | `48 k + 112` | | `16s_C3R` | `40 k + 96` |
 * | `16u_C1R` | `64 k + 96` | | `16u_C3R` | `128 k + 96` |
 * | `8u16s_C1R` | `36 k + 144` | | `8u16s_C3R` | `60 k + 144` |
 * | `Low_16s_C1R` | `24 k + 96` | | `Low_16s_C3R` | `208 k + 96` |
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `ppDst`, `pKernel` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrNullPointer: one of the `height` row pointers is null.
 * 4. #lumErrSize: `kernelSize` is below 1.
 * 5. #lumErrAnchor: `xAnchor` is negative or not below `kernelSize`.
 * 6. #lumErrStep: `srcStep` is smaller than a row in bytes.
 * 7. #lumErrStepAlignment: `srcStep` is not a multiple of the element size.
 * 8. #lumErrArgument: `divisor` is 0.
 * 9. #lumErrBorder: `borderType` is not allowed.
 *
 * 10. #lumErrNullPointer: `borderValue` of a three-channel function is null and the mode is #lumBorderConstant.
 *
 * The functions from 8u to 16s test the border before the divisor. The per-channel border values are read only with
 * #lumBorderConstant, and must then be three.
 *
 * **Queries** test `pBufferSize` (#lumErrNullPointer), then width, height and kernel size (#lumErrSize), and at last
 * that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * @see @ref column_pipeline
 *
 * @{
 */

/**
 * Scratch size of lumiFilterRowBorderPipeline_32f_C1R(): `96 * kernelSize + 96` bytes.
 *
 * @param roiSize     size of the ROI in pixels; it must be valid but does not change the result
 * @param kernelSize  number of coefficients
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pBufferSize` is null
 * @retval lumErrSize        the width, the height or the kernel size is below 1
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_32f_C3R(): `288 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_16s_C1R(): `48 * kernelSize + 112` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_16s_C3R(): `40 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_16u_C1R(): `64 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_16u_C3R(): `128 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                     Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_8u16s_C1R(): `36 * kernelSize + 144` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                       Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_8u16s_C3R(): `60 * kernelSize + 144` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                       Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_Low_16s_C1R(): `24 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                         Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterRowBorderPipeline_Low_16s_C3R(): `208 * kernelSize + 96` bytes.
 * @copydetails lumiFilterRowBorderPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                         Lum32s* pBufferSize);

/**
 * Filters the rows of a 32f image into 32f rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes; a multiple of 4
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `srcStep` is not a multiple of the element size
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                                        LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum32f borderValue,
                                                        Lum8u* pBuffer);

/**
 * Filters the rows of a 32f image of three channels into 32f rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes; a multiple of 4
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels of three
 *                    elements
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the three channel values outside; read only with #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `srcStep` is not a multiple of the element size
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* const* ppDst,
                                                        LumiSize roiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum32f borderValue[3], Lum8u* pBuffer);

/**
 * Filters the rows of a 16s image into 16s rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes; a multiple of 2
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param divisor     divides the sum; not 0
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `srcStep` is not a multiple of the element size
 * @retval lumErrArgument      `divisor` is 0
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum16s borderValue,
                                                        Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of a 16s image of three channels into 16s rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes; a multiple of 2
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels of three
 *                    elements
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the three channel values outside; read only with #lumBorderConstant
 * @param divisor     divides the sum; not 0
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `srcStep` is not a multiple of the element size
 * @retval lumErrArgument      `divisor` is 0
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum16s borderValue[3], Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of a 16u image into 16u rows; the coefficients are signed.
 * @copydetails lumiFilterRowBorderPipeline_16s_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType, Lum16u borderValue,
                                                        Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of a 16u image of three channels into 16u rows; the coefficients are signed.
 * @copydetails lumiFilterRowBorderPipeline_16s_C3R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* const* ppDst,
                                                        LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                        Lum32s xAnchor, LumiBorderType borderType,
                                                        const Lum16u borderValue[3], Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of an 8u image into 16s rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param divisor     divides the sum; not 0
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrArgument      `divisor` is 0
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                          LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                          Lum32s xAnchor, LumiBorderType borderType, Lum8u borderValue,
                                                          Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of an 8u image of three channels into 16s rows.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param ppDst       `roiSize.height` pointers to the rows to be written, each of `roiSize.width` pixels of three
 *                    elements
 * @param roiSize     size of the ROI in pixels
 * @param pKernel     `kernelSize` coefficients
 * @param kernelSize  number of coefficients
 * @param xAnchor     index of the coefficient that falls on the output pixel, 0 to `kernelSize - 1`
 * @param borderType  what lies left and right of the ROI
 * @param borderValue the three channel values outside; read only with #lumBorderConstant
 * @param divisor     divides the sum; not 0
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the rows have been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrAnchor        `xAnchor` is outside the kernel
 * @retval lumErrStep          `srcStep` is smaller than a row in bytes
 * @retval lumErrArgument      `divisor` is 0
 * @retval lumErrBorder        `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_8u16s_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                          LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                          Lum32s xAnchor, LumiBorderType borderType,
                                                          const Lum8u borderValue[3], Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of a 16s image into 16s rows in integer arithmetic.
 * @copydetails lumiFilterRowBorderPipeline_16s_C1R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                            LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                            Lum32s xAnchor, LumiBorderType borderType,
                                                            Lum16s borderValue, Lum32s divisor, Lum8u* pBuffer);

/**
 * Filters the rows of a 16s image of three channels into 16s rows in integer arithmetic.
 * @copydetails lumiFilterRowBorderPipeline_16s_C3R
 */
LUMCV_API LumStatus lumiFilterRowBorderPipeline_Low_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* const* ppDst,
                                                            LumiSize roiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                            Lum32s xAnchor, LumiBorderType borderType,
                                                            const Lum16s borderValue[3], Lum32s divisor,
                                                            Lum8u* pBuffer);

/** @} */

/**
 * @defgroup column_pipeline Column pipeline
 * @ingroup pipelines
 * @brief The vertical pass: combines rows of the caller's into an image.
 *
 * With `k` the kernel and `rows` the array `ppSrc` of `height + kernelSize - 1` row pointers:
 *
 *     dst[y][x] = sum over j = 0 .. kernelSize - 1 of k[j] * rows[y + j][x]
 *
 * The kernel is applied in its given order and not reversed. There is no border: the pointers say which row stands for
 * what lies above and below the image.
 *
 * **Arithmetic.**
 * - 32f: products and sums in single precision, in kernel order, each rounded by itself.
 * - 16s rows to 16s, 8u or 8s: the coefficient becomes `(k[j] * 2^-16) / divisor` in single precision, once for the
 *   call, and each element 65536 times its value. The products are summed in single precision in kernel order, each
 *   operation rounded by itself. The sum is clamped to -32768..32767, rounded to the nearest integer, ties to even, and
 *   saturates to the destination's type.
 * - 16u: the same with unsigned elements; the sum saturates to 0..65535.
 * - `_Low`: integers only, with the scale `16384.0f / divisor` truncated to a 16-bit integer once for the call. In the
 *   body of a row, which is its first `width - width mod 16` pixels, each product keeps its low 16 bits and the sum
 *   wraps at 16 bits; with `divisor` 1 it is stored as it is, otherwise it is taken as signed, multiplied by the scale
 *   in 32 bits, shifted right by 14 places and clamped to -32768..32767. The remaining pixels sum in 32 bits and store
 *   the low 16 bits of the sum (with `divisor` 1), or of its product with the scale shifted right by 14 places. The two
 *   parts of a row agree as long as the sum stays within 16 bits, and keeping it there is up to the caller.
 *
 * **Scratch**, in bytes, with `k` the kernel size, `w` the width, `W4` and `W8` the width rounded up to a multiple of 4
 * or 8, and `down32` rounding down to a multiple of 32; the query has the name of the function with `GetBufferSize`
 * after `Pipeline`:
 *
 * | Functions | One channel | Three channels |
 * |---|---|---|
 * | `32f` | `32 k + 32` | `32 k + 32` |
 * | `16s`, `16s8u`, `16s8s` | `12 W4 + 64` | `36 W4 + 64` |
 * | `16u` | `32 k + 64 + down32(8 w + 24)` | `32 k + 64 + down32(24 w + 24)` |
 * | `Low_16s` | `6 W8 + 64` | `18 W8 + 64` |
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `ppSrc`, `pDst` or `pKernel` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrNullPointer: one of the `height + kernelSize - 1` row pointers is null.
 * 4. #lumErrSize: `kernelSize` is below 1.
 * 5. #lumErrStep: `dstStep` is smaller than a row in bytes.
 * 6. #lumErrStepAlignment: `dstStep` is not a multiple of the element size.
 * 7. #lumErrNullPointer: `pBuffer` is null.
 * 8. #lumErrArgument: `divisor` is 0.
 *
 * **Queries** test `pBufferSize` (#lumErrNullPointer), then width, height and kernel size (#lumErrSize), and at last
 * that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * @see @ref row_pipeline
 *
 * @{
 */

/**
 * Scratch size of lumiFilterColumnPipeline_32f_C1R().
 *
 * @param roiSize     size of the destination's ROI in pixels
 * @param kernelSize  number of coefficients
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pBufferSize` is null
 * @retval lumErrSize        the width, the height or the kernel size is below 1
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_32f_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_32f_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s_C1R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s8u_C1R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s8u_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s8s_C1R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16s8s_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16s8s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                    Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16u_C1R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_16u_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_16u_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                  Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_Low_16s_C1R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R(LumiSize roiSize, Lum32s kernelSize,
                                                                      Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterColumnPipeline_Low_16s_C3R().
 * @copydetails lumiFilterColumnPipelineGetBufferSize_32f_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R(LumiSize roiSize, Lum32s kernelSize,
                                                                      Lum32s* pBufferSize);

/**
 * Combines 32f rows into a 32f image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels; the rows are
 *                   only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes; a multiple of 4
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `dstStep` is not a multiple of the element size
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_32f_C1R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                     Lum8u* pBuffer);

/**
 * Combines 32f rows of three channels into a 32f image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels of three
 *                   elements; the rows are only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes; a multiple of 4
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `dstStep` is not a multiple of the element size
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_32f_C3R(Lum32f* const* ppSrc, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum32f* pKernel, Lum32s kernelSize,
                                                     Lum8u* pBuffer);

/**
 * Combines 16s rows into a 16s image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels; the rows are
 *                   only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes; a multiple of 2
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param divisor    divides the sum; not 0
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `dstStep` is not a multiple of the element size
 * @retval lumErrArgument      `divisor` is 0
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows of three channels into a 16s image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels of three
 *                   elements; the rows are only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes; a multiple of 2
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param divisor    divides the sum; not 0
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrStepAlignment `dstStep` is not a multiple of the element size
 * @retval lumErrArgument      `divisor` is 0
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows into an 8u image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels; the rows are
 *                   only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param divisor    divides the sum; not 0
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrArgument      `divisor` is 0
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8u_C1R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows of three channels into an 8u image.
 *
 * @param ppSrc      `dstRoiSize.height + kernelSize - 1` pointers to rows of `dstRoiSize.width` pixels of three
 *                   elements; the rows are only read
 * @param pDst       first pixel of the destination's ROI
 * @param dstStep    stride of the destination, in bytes
 * @param dstRoiSize size of the destination's ROI in pixels
 * @param pKernel    `kernelSize` coefficients
 * @param kernelSize number of coefficients
 * @param divisor    divides the sum; not 0
 * @param pBuffer    scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer, or one of the row pointers, is null
 * @retval lumErrSize          the width, the height or the kernel size is below 1
 * @retval lumErrStep          `dstStep` is smaller than a row in bytes
 * @retval lumErrArgument      `divisor` is 0
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8u_C3R(Lum16s* const* ppSrc, Lum8u* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows into an 8s image.
 * @copydetails lumiFilterColumnPipeline_16s8u_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8s_C1R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows of three channels into an 8s image.
 * @copydetails lumiFilterColumnPipeline_16s8u_C3R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16s8s_C3R(Lum16s* const* ppSrc, Lum8s* pDst, Lum32s dstStep,
                                                       LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                       Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16u rows into a 16u image; the coefficients are signed.
 * @copydetails lumiFilterColumnPipeline_16s_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16u_C1R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16u rows of three channels into a 16u image; the coefficients are signed.
 * @copydetails lumiFilterColumnPipeline_16s_C3R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_16u_C3R(Lum16u* const* ppSrc, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                     Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows into a 16s image in integer arithmetic.
 * @copydetails lumiFilterColumnPipeline_16s_C1R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_Low_16s_C1R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                         LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                         Lum32s divisor, Lum8u* pBuffer);

/**
 * Combines 16s rows of three channels into a 16s image in integer arithmetic.
 * @copydetails lumiFilterColumnPipeline_16s_C3R
 */
LUMCV_API LumStatus lumiFilterColumnPipeline_Low_16s_C3R(Lum16s* const* ppSrc, Lum16s* pDst, Lum32s dstStep,
                                                         LumiSize dstRoiSize, const Lum16s* pKernel, Lum32s kernelSize,
                                                         Lum32s divisor, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup separable Separable filter
 * @brief Filters an image with the product of a kernel along the rows and a kernel across them, each of any size.
 *
 * With `kw` and `kh` the sizes of the kernels X and Y, `ax = (kw - 1) / 2` and `ay = (kh - 1) / 2`, the result at a
 * pixel is
 *
 *     sum over j < kh, i < kw of  Y[j] * X[i] * src[y + j - ay][x + i - ax]
 *
 * The kernels are applied in their given order, not reversed, and their centres cannot be moved. Kernels of 16s have a
 * divisor, by which the sum is divided; kernels of 32f have none.
 *
 * | Images | kernels of 16s | kernels of 32f |
 * |---|---|---|
 * | 8u, and 8u to 16s | yes | yes |
 * | 16s | yes | no |
 * | 16u, 32f | no | yes |
 *
 * A record whose kernels do not go with the images is the caller's mistake and is not found out by apply.
 *
 * **Arithmetic.** Everything is processed in single precision. With `s = 1.0f / divisor`, each row of the source gives
 * a row of sums `r`, and each destination row is a sum of `kh` of those, taken in the order of the kernel:
 *
 *     r[x]   = (X[0] * s) * src[x - ax];   then for i = 1 .. kw - 1:  r[x] = r[x] + (X[i] * s) * src[x + i - ax]
 *     sum[y] = Y[0] * r[y - ay];           then for j = 1 .. kh - 1:  sum[y] = sum[y] + Y[j] * r[y + j - ay]
 *
 * Kernels of 32f have no factor `s`. Each operation is rounded by itself, so that all builds give the same bits.
 * Nothing is rounded to the element type between the passes. On store, integers saturate to their range and round to
 * the nearest, ties to even; 32f is stored as it is.
 *
 * **Border** (see #LumiBorderType). A pixel needs `ax` pixels before and `kw - 1 - ax` behind it, `ay` rows above and
 * `kh - 1 - ay` below it. What lies outside the ROI follows the border type, each side by itself, as in the
 * @ref gaussian. Where a whole row lies beyond a constant border, its sums are not formed one by one: all of them are
 * `(X[0] + X[1] + ...) * borderValue * s`, multiplied from left to right, over the whole width, also where the left or
 * the right side lies in memory.
 *
 * **Three stages.** Queries tell sizes, Init lays a record in the caller's block, and any number of apply calls use it:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * // A relief under light from the right: positive where the image falls off to the right, 0 where it is flat.
 * LumStatus emboss(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize)
 * {
 *     const Lum16s along[3] = {1, 0, -1};
 *     const Lum16s across[3] = {1, 2, 1};
 *     const LumiSize kernelSize = {3, 3};
 *     Lum32s specBytes = 0;
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiFilterSeparableGetSpecSize(kernelSize, lumType16s, 1, &specBytes);
 *     if (status == lumOk)
 *         status = lumiFilterSeparableGetBufferSize(roiSize, kernelSize, lumType8u, lumType16s, 1, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     LumFilterSeparableSpec* spec = malloc((size_t)specBytes);
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     status = lumErrNullPointer;
 *     if (spec != NULL && buffer != NULL)
 *         status = lumiFilterSeparableInit_16s(along, across, kernelSize, 4, 0, lumType8u, 1, spec);
 *     if (status == lumOk)
 *         status = lumiFilterSeparable_8u16s_C1R(pSrc, srcStep, pDst, dstStep, roiSize, lumBorderReplicate, 0, spec,
 *                                                buffer);
 *     free(buffer);
 *     free(spec);
 *     return status;
 * }
 * @endcode
 *
 * Apply only reads the record, so several threads may share one, each with its own scratch. The record points into
 * itself, so it may not be moved or copied. Neither record nor scratch need any alignment. Source and destination must
 * not overlap. While a call runs, denormal operands do not trap; the floating-point control register is as before when
 * it returns, with whatever status.
 *
 * **Checks of apply**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `borderValue` where it is a pointer and the
 *    mode is #lumBorderConstant.
 * 2. #lumErrSizeTooLarge: the width, the height or a stride exceeds 2147483647 (`_L`).
 * 3. #lumErrSize: the width or the height is below 1.
 * 4. #lumErrStep: a stride is below a row of the ROI.
 * 5. #lumErrNullPointer: a kernel's address in the record is null, as in a block of zeros that no Init has seen.
 * 6. #lumErrBorder: the border is not allowed.
 * 7. #lumErrStepAlignment: a stride is no multiple of its element size.
 *
 * @see @ref pipelines, @ref gaussian
 *
 * @{
 */

/** A separable filter, laid in the caller's block by lumiFilterSeparableInit_16s() or lumiFilterSeparableInit_32f(). */
typedef struct LumFilterSeparableSpec LumFilterSeparableSpec;

/**
 * Size of the record: `(kw + kh) * e + 127` bytes, with `e` 2 for kernels of 16s and 4 for kernels of 32f.
 *
 * @param kernelSize  `kw` and `kh`, 1 or more each
 * @param dataType    element type of the kernels: #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pSpecSize   where the size of the record in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrSize         a side of `kernelSize` is below 1; tested before all else
 * @retval lumErrNullPointer  `pSpecSize` is null
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 * @retval lumErrSizeTooLarge the size exceeds 2147483647 (not with `_L`)
 */
LUMCV_API LumStatus lumiFilterSeparableGetSpecSize(LumiSize kernelSize, LumDataType dataType, Lum32s numChannels,
                                                   Lum32s* pSpecSize);

/**
 * Size of the record, in 64 bits.
 * @copydetails lumiFilterSeparableGetSpecSize
 */
LUMCV_API LumStatus lumiFilterSeparableGetSpecSize_L(LumiSize kernelSize, LumDataType dataType, Lum32s numChannels,
                                                     Lum64s* pSpecSize);

/**
 * Size of the scratch of apply, in bytes: `256 * kw + 8 * kh + 4 * c * (kw * e + (kw + w - 1) * kh)`, with `w` the
 * width of the ROI, `c` the channels, and `e` 2 for kernels of 16s and 4 for kernels of 32f. It does not grow with the
 * height.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  `kw` and `kh`, 1 or more each
 * @param dataType    element type of the source: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param kernelType  element type of the kernels: #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pBufferSize where the size of the scratch in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         a side of `roiSize` or of `kernelSize` is below 1
 * @retval lumErrDataType     `dataType` or `kernelType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterSeparableGetBufferSize(LumiSize roiSize, LumiSize kernelSize, LumDataType dataType,
                                                     LumDataType kernelType, Lum32s numChannels, Lum32s* pBufferSize);

/**
 * Size of the scratch of the `_L` apply functions, by the formula of lumiFilterSeparableGetBufferSize(), in 64 bits.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  `kw` and `kh`, 1 or more each
 * @param dataType    element type of the source: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param kernelType  element type of the kernels: #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pBufferSize where the size of the scratch in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         a side of `roiSize` or of `kernelSize` is below 1
 * @retval lumErrSizeTooLarge the width or the height exceeds 2147483647, or the size exceeds 64 bits
 * @retval lumErrDataType     `dataType` or `kernelType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiFilterSeparableGetBufferSize_L(LumiSizeL roiSize, LumiSize kernelSize, LumDataType dataType,
                                                       LumDataType kernelType, Lum32s numChannels, Lum64s* pBufferSize);

/**
 * Lays a record with kernels of 16s in the caller's block.
 *
 * @param pKernelX    `kw` coefficients along the rows; copied
 * @param pKernelY    `kh` coefficients across the rows; copied
 * @param kernelSize  `kw` and `kh`, 1 or more each
 * @param divisor     what the sum is divided by; not 0
 * @param scaleFactor kept in the record; results do not depend on it
 * @param dataType    element type of the source: #lumType8u or #lumType16s
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pSpec       where the record goes: a block of the size of lumiFilterSeparableGetSpecSize()
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        a side of `kernelSize` is below 1
 * @retval lumErrDataType    `dataType` is not among those listed
 * @retval lumErrValue       `numChannels` is not 1, 3 or 4
 * @retval lumErrDivisor     `divisor` is 0
 */
LUMCV_API LumStatus lumiFilterSeparableInit_16s(const Lum16s* pKernelX, const Lum16s* pKernelY, LumiSize kernelSize,
                                                Lum32s divisor, Lum32s scaleFactor, LumDataType dataType,
                                                Lum32s numChannels, LumFilterSeparableSpec* pSpec);

/**
 * The same as lumiFilterSeparableInit_16s(); a record of either serves all apply functions.
 * @copydetails lumiFilterSeparableInit_16s
 */
LUMCV_API LumStatus lumiFilterSeparableInit_16s_L(const Lum16s* pKernelX, const Lum16s* pKernelY, LumiSize kernelSize,
                                                  Lum32s divisor, Lum32s scaleFactor, LumDataType dataType,
                                                  Lum32s numChannels, LumFilterSeparableSpec* pSpec);

/**
 * Lays a record with kernels of 32f in the caller's block.
 *
 * @param pKernelX    `kw` coefficients along the rows; copied
 * @param pKernelY    `kh` coefficients across the rows; copied
 * @param kernelSize  `kw` and `kh`, 1 or more each
 * @param dataType    element type of the source: #lumType8u, #lumType16u or #lumType32f
 * @param numChannels channels of the images: 1, 3 or 4
 * @param pSpec       where the record goes: a block of the size of lumiFilterSeparableGetSpecSize()
 * @retval lumOk             the record is ready
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        a side of `kernelSize` is below 1
 * @retval lumErrDataType    `dataType` is not among those listed
 * @retval lumErrValue       `numChannels` is not 1, 3 or 4
 */
LUMCV_API LumStatus lumiFilterSeparableInit_32f(const Lum32f* pKernelX, const Lum32f* pKernelY, LumiSize kernelSize,
                                                LumDataType dataType, Lum32s numChannels,
                                                LumFilterSeparableSpec* pSpec);

/**
 * The same as lumiFilterSeparableInit_32f(); a record of either serves all apply functions.
 * @copydetails lumiFilterSeparableInit_32f
 */
LUMCV_API LumStatus lumiFilterSeparableInit_32f_L(const Lum32f* pKernelX, const Lum32f* pKernelY, LumiSize kernelSize,
                                                  LumDataType dataType, Lum32s numChannels,
                                                  LumFilterSeparableSpec* pSpec);

/**
 * Filters an 8u image.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels, not above the one queried
 * @param borderType  what lies outside the ROI
 * @param borderValue the value outside; counts if the mode is #lumBorderConstant
 * @param pSpec       record; only read
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null, or the record was never
 *                             initialised
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row of the ROI
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrStepAlignment a stride is no multiple of its element size (16u, 16s, 32f)
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                               const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image of three channels.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels, not above the one queried
 * @param borderType  what lies outside the ROI
 * @param borderValue the value outside for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec       record; only read
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `borderValue` where it is needed, or the
 * record was never initialised
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row of the ROI
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrStepAlignment a stride is no multiple of its element size (16u, 16s, 32f)
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[3],
                                               const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image of four channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum8u borderValue[4],
                                               const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image into a 16s image.
 * @copydetails lumiFilterSeparable_8u_C1R
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                  const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image of three channels into a 16s image.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType,
                                                  const Lum8u borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters an 8u image of four channels into a 16s image.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C4R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                  LumiSize roiSize, LumiBorderType borderType,
                                                  const Lum8u borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 16s image.
 * @copydetails lumiFilterSeparable_8u_C1R
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 16s image of three channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum16s borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters a 16s image of four channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C4R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum16s borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters a 16u image.
 * @copydetails lumiFilterSeparable_8u_C1R
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 16u image of three channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum16u borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters a 16u image of four channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C4R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum16u borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters a 32f image.
 * @copydetails lumiFilterSeparable_8u_C1R
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 32f image of three channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum32f borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters a 32f image of four channels.
 * @copydetails lumiFilterSeparable_8u_C3R
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C4R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                LumiSize roiSize, LumiBorderType borderType,
                                                const Lum32f borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                Lum8u* pBuffer);

/**
 * Filters an 8u image; 64-bit geometry.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels, not above the one queried
 * @param borderType  what lies outside the ROI
 * @param borderValue the value outside; counts if the mode is #lumBorderConstant
 * @param pSpec       record; only read
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null, or the record was never
 *                             initialised
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row of the ROI
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrStepAlignment a stride is no multiple of its element size (16u, 16s, 32f)
 * @retval lumErrSizeTooLarge  the width, the height or a stride exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                 const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image of three channels; 64-bit geometry.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels, not above the one queried
 * @param borderType  what lies outside the ROI
 * @param borderValue the value outside for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec       record; only read
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `borderValue` where it is needed, or the
 * record was never initialised
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is below a row of the ROI
 * @retval lumErrBorder        the border is not allowed
 * @retval lumErrStepAlignment a stride is no multiple of its element size (16u, 16s, 32f)
 * @retval lumErrSizeTooLarge  the width, the height or a stride exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum8u borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Filters an 8u image of four channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_8u_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum8u borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Filters an 8u image into a 16s image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                    LumiSizeL roiSize, LumiBorderType borderType, Lum8u borderValue,
                                                    const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters an 8u image of three channels into a 16s image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                    LumiSizeL roiSize, LumiBorderType borderType,
                                                    const Lum8u borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Filters an 8u image of four channels into a 16s image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_8u16s_C4R_L(const Lum8u* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                    LumiSizeL roiSize, LumiBorderType borderType,
                                                    const Lum8u borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                    Lum8u* pBuffer);

/**
 * Filters a 16s image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType, Lum16s borderValue,
                                                  const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 16s image of three channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C3R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum16s borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 16s image of four channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16s_C4R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum16s borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 16u image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType, Lum16u borderValue,
                                                  const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 16u image of three channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C3R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum16u borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 16u image of four channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_16u_C4R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum16u borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 32f image; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType, Lum32f borderValue,
                                                  const LumFilterSeparableSpec* pSpec, Lum8u* pBuffer);

/**
 * Filters a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum32f borderValue[3], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/**
 * Filters a 32f image of four channels; 64-bit geometry.
 * @copydetails lumiFilterSeparable_8u_C3R_L
 */
LUMCV_API LumStatus lumiFilterSeparable_32f_C4R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                  LumiSizeL roiSize, LumiBorderType borderType,
                                                  const Lum32f borderValue[4], const LumFilterSeparableSpec* pSpec,
                                                  Lum8u* pBuffer);

/** @} */

/**
 * @defgroup gaussian Gaussian filter
 * @brief Smooths an image with a square Gaussian kernel of any odd size.
 *
 * With `h = kernelSize / 2`, the weight at distance `d` from the centre is `exp(-d * d / (2 * sigma * sigma))` for
 * `d = 0 .. h`, divided by the sum of all `kernelSize` weights of a row: the taps sum to one up to rounding. The kernel
 * is applied along the rows and then along the columns.
 *
 * **Arithmetic.** Every element type is processed in single precision. Both passes fold the symmetric taps, `t(d)`
 * being the tap at distance `d`:
 *
 *     sum = t(0) * s[x];  then for d = 1 .. h:  sum = sum + t(d) * (s[x - d] + s[x + d])
 *
 * Each operation is rounded by itself, so that all builds give the same bits. Nothing is rounded to the element type
 * between the passes. On store, 8u, 16u and 16s saturate to their range and round to the nearest integer, ties to even;
 * 32f is stored as it is.
 *
 * **Border** (see #LumiBorderType). A pixel needs `h` pixels on each side. What lies outside the ROI follows the border
 * type, each side by itself:
 * - A side with its in-memory flag, and all four with #lumBorderInMem: the `h` rows or columns of pixels in memory next
 *   to the ROI. Nothing further is read.
 * - #lumBorderReplicate: the nearest row or pixel of the ROI.
 * - #lumBorderMirror: reflected at the edge row or pixel, which is not repeated, as often as it takes to lie inside the
 *   ROI. If only one of two opposite sides lies in memory, what is reflected past the other side is reflected on inside
 *   the ROI. A ROI of one row stands for all rows around it, a row of one pixel for all pixels around it.
 * - #lumBorderConstant: the border value, one for each channel.
 *
 * **Three stages.** A query tells sizes, Init lays a record in the caller's block, and any number of apply calls use
 * it:
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * // Blurs `count` images of one size, which lie one behind the other without gaps.
 * LumStatus blurFrames(const Lum8u* frames, Lum8u* blurred, int count, LumiSize roiSize)
 * {
 *     const Lum32s kernelSize = 5;
 *     Lum32s specBytes = 0;
 *     Lum32s bufferBytes = 0;
 *     LumStatus status = lumiFilterGaussianGetBufferSize(roiSize, kernelSize, lumType8u, 1, &specBytes, &bufferBytes);
 *     if (status != lumOk)
 *         return status;
 *
 *     LumFilterGaussianSpec* spec = malloc((size_t)specBytes);
 *     Lum8u* buffer = malloc((size_t)bufferBytes);
 *     status = lumErrNullPointer;
 *     if (spec != NULL && buffer != NULL)
 *         status = lumiFilterGaussianInit(roiSize, kernelSize, 1.2f, lumBorderReplicate, lumType8u, 1, spec, buffer);
 *     for (int i = 0; i < count && status == lumOk; i++)
 *     {
 *         size_t first = (size_t)i * (size_t)roiSize.width * (size_t)roiSize.height;
 *         status = lumiFilterGaussian_8u_C1R(frames + first, roiSize.width, blurred + first, roiSize.width, roiSize,
 *                                            lumBorderReplicate, NULL, spec, buffer);
 *     }
 *     free(buffer);
 *     free(spec);
 *     return status;
 * }
 * @endcode
 *
 * A record serves images of the element type and channel count, and ROIs up to the size, that it was made for. Apply
 * only reads it, so several threads may share one, each with its own scratch. It may not be moved or copied. Neither
 * record nor scratch need any alignment. Source and destination must not overlap.
 *
 * There are two sets of functions. Queries and Init of one set belong together, and so do the scratch query and apply;
 * a record of either Init serves every apply function:
 * - Ordinary: lumiFilterGaussianGetBufferSize() for both sizes, lumiFilterGaussianInit(), and the apply functions
 *   without `_L`.
 * - 64-bit geometry: lumiFilterGaussianGetSpecSize_L() (or lumiFilterGaussianGetSpecSize()) for the record and Init's
 *   scratch, lumiFilterGaussianGetBufferSize_L() for the scratch of apply, lumiFilterGaussianInit_L(), and the apply
 *   functions with `_L`.
 *
 * **Sizes**, in bytes, with `w` and `height` the ROI, `c` the channels and `k` the kernel size. The scratch of the
 * 64-bit set takes
 *
 *     (k + 1) * R + 12 * k + 64,  R = 4 * w * c + 63 rounded down to a multiple of 64
 *
 * Its record takes `2 * k + 130`, its Init 64. The record of the ordinary set takes `34 * k + 162` for 32f and
 * `18 * k + 166` for the other types. Its scratch takes the larger of the sum above and this one, with `m` the smaller
 * of `height` and `k`, `P` the number `(w + k) * c + 7` rounded down to a multiple of 8, and `rowPass` and `columnPass`
 * the scratch of the @ref pipelines of `k` coefficients and `w` columns (8u: the row pass from 8u to 16s and the 16s
 * column pass; otherwise those of the type):
 *
 *     32f:     (m + 2 * k) * P * 4 + (m + k) * P * 4 + (m + k) * 8 + rowPass + columnPass + 192
 *     others:  ((k - 1) + m + k) * P * 2 + (m + k) * P * 2 + (height + k) * 8 + rowPass + columnPass + 192
 *
 * **Checks of queries and Init**, in this order, each where there is such an argument; the first that fails decides the
 * status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrSizeTooLarge: the width or the height exceeds 2147483647 (`_L`).
 * 4. #lumErrArgument: `kernelSize` is below 3 or even.
 * 5. #lumErrDataType: `dataType` is not 8u, 16u, 16s or 32f.
 * 6. #lumErrValue: `numChannels` is not 1 or 3.
 * 7. #lumErrArgument: `sigma` is not above 0; so not-a-number fails.
 * 8. #lumErrBorder: `borderType` is not allowed. lumiFilterGaussianInit_L() takes any mode if all four in-memory flags
 *    are set.
 * 9. #lumErrSizeTooLarge: a queried size exceeds 2147483647.
 *
 * **Checks of apply**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst`, `pSpec` or `pBuffer` is null.
 * 2. #lumErrStep: a stride is not positive (ordinary functions). #lumErrSizeTooLarge: the width, the height or a stride
 *    exceeds 2147483647 (`_L` functions).
 * 3. #lumErrStep: a stride is smaller than the width in pixels. The test is loose: a stride between the width and a row
 *    in bytes is not found out, and the rows then overlap.
 * 4. #lumErrSize: the width or the height is below 1.
 * 5. #lumErrBorder: the border value is negative or above 255.
 * 6. #lumErrNullPointer: the mode is #lumBorderConstant, not all sides lie in memory, and `pBorderValue` is null.
 * 7. #lumErrBorder: the mode is none of #lumBorderReplicate, #lumBorderMirror, #lumBorderConstant, and not all four
 *    sides are flagged as in memory. If they are, any mode passes.
 * 8. #lumErrArgument: the record's kernel size is below 3 or even.
 *
 * Strides must be multiples of the element size; this is not tested.
 *
 * @see @ref pipelines
 *
 * @{
 */

/** A Gaussian filter, laid in the caller's block by lumiFilterGaussianInit() or lumiFilterGaussianInit_L(). */
typedef struct LumFilterGaussianSpec LumFilterGaussianSpec;

/**
 * Sizes of the record and of Init's scratch for lumiFilterGaussianInit_L(), in 32 bits: `2 * kernelSize + 130` and 64
 * bytes.
 *
 * @param kernelSize      number of taps: odd, 3 or more
 * @param dataType        element type of the images: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param numChannels     channels of the images: 1 or 3
 * @param pSpecSize       where the size of the record in bytes goes
 * @param pInitBufferSize where the size of Init's scratch in bytes goes
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrArgument     `kernelSize` is below 3 or even
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1 or 3
 * @retval lumErrSizeTooLarge a size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterGaussianGetSpecSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                                  Lum32s* pSpecSize, Lum32s* pInitBufferSize);

/**
 * Sizes of the record and of Init's scratch for lumiFilterGaussianInit_L(): `2 * kernelSize + 130` and 64 bytes.
 * @copydetails lumiFilterGaussianGetSpecSize
 */
LUMCV_API LumStatus lumiFilterGaussianGetSpecSize_L(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                                    Lum64s* pSpecSize, Lum64s* pInitBufferSize);

/**
 * Sizes of the record and of the scratch for lumiFilterGaussianInit() and the calls after it.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  number of taps: odd, 3 or more
 * @param dataType    element type of the images: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1 or 3
 * @param pSpecSize   where the size of the record in bytes goes
 * @param pBufferSize where the size of the scratch in bytes goes, for Init and for every apply call
 * @retval lumOk              both sizes have been written
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `kernelSize` is below 3 or even
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1 or 3
 * @retval lumErrSizeTooLarge a size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterGaussianGetBufferSize(LumiSize roiSize, Lum32s kernelSize, LumDataType dataType,
                                                    Lum32s numChannels, Lum32s* pSpecSize, Lum32s* pBufferSize);

/**
 * Size of the scratch of the `_L` apply functions.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  number of taps: odd, 3 or more
 * @param dataType    element type of the images: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param borderType  the border that the calls will have; it is tested but does not change the size
 * @param numChannels channels of the images: 1 or 3
 * @param pBufferSize where the size of the scratch in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `kernelSize` is below 3 or even
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1 or 3
 * @retval lumErrBorder       `borderType` is not allowed
 * @retval lumErrSizeTooLarge the width, the height or the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterGaussianGetBufferSize_L(LumiSizeL roiSize, Lum32s kernelSize, LumDataType dataType,
                                                      LumiBorderType borderType, Lum32s numChannels,
                                                      Lum64s* pBufferSize);

/**
 * Lays a record in the caller's block and computes its taps.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  number of taps: odd, 3 or more
 * @param sigma       standard deviation of the Gaussian in pixels, above 0
 * @param borderType  kept in the record for `lumiFilterGaussianBorder`
 * @param dataType    element type of the images: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1 or 3
 * @param pSpec       where the record goes: a block of the `pSpecSize` bytes of lumiFilterGaussianGetBufferSize()
 * @param pBuffer     scratch of the `pBufferSize` bytes of lumiFilterGaussianGetBufferSize(); free after the call
 * @retval lumOk              the record is ready
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `kernelSize` is below 3 or even, or `sigma` is not above 0 (or not-a-number)
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1 or 3
 * @retval lumErrBorder       `borderType` is not allowed
 */
LUMCV_API LumStatus lumiFilterGaussianInit(LumiSize roiSize, Lum32s kernelSize, Lum32f sigma, LumiBorderType borderType,
                                           LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* pSpec,
                                           Lum8u* pBuffer);

/**
 * Lays a record in the caller's block and computes its taps; 64-bit geometry.
 *
 * @param roiSize     size of the largest ROI to be filtered, in pixels
 * @param kernelSize  number of taps: odd, 3 or more
 * @param sigma       standard deviation of the Gaussian in pixels, above 0
 * @param borderType  kept in the record for `lumiFilterGaussianBorder`
 * @param dataType    element type of the images: #lumType8u, #lumType16u, #lumType16s or #lumType32f
 * @param numChannels channels of the images: 1 or 3
 * @param pSpec       where the record goes: a block of the `pSpecSize` bytes of lumiFilterGaussianGetSpecSize_L()
 * @param pBuffer     scratch of the `pInitBufferSize` bytes of lumiFilterGaussianGetSpecSize_L(); free after the call
 * @retval lumOk              the record is ready
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `kernelSize` is below 3 or even, or `sigma` is not above 0 (or not-a-number)
 * @retval lumErrDataType     `dataType` is not among those listed
 * @retval lumErrValue        `numChannels` is not 1 or 3
 * @retval lumErrBorder       `borderType` is not allowed
 * @retval lumErrSizeTooLarge the width or the height exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterGaussianInit_L(LumiSizeL roiSize, Lum32s kernelSize, Lum32f sigma,
                                             LumiBorderType borderType, LumDataType dataType, Lum32s numChannels,
                                             LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs an 8u image.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `pBorderValue` where it is needed
 * @retval lumErrStep        a stride is not positive, or below the width
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrBorder      the border is not allowed
 * @retval lumErrArgument    the record's kernel size is below 3 or even: it is no record
 */
LUMCV_API LumStatus lumiFilterGaussian_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                              const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs an 8u image of three channels.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                              const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16u image.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16u image of three channels.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16u* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16s image.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16s image of three channels.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum16s* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 32f image.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 32f image of three channels.
 * @copydetails lumiFilterGaussian_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussian_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                               LumiSize roiSize, LumiBorderType borderType, const Lum32f* pBorderValue,
                                               const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs an 8u image; 64-bit geometry.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param borderType   what lies outside the ROI
 * @param pBorderValue the value outside for each channel; may be null unless the mode is #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk              the destination has been written
 * @retval lumErrNullPointer  `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `pBorderValue` where it is needed
 * @retval lumErrStep         a stride is below the width
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrBorder       the border is not allowed
 * @retval lumErrArgument     the record's kernel size is below 3 or even: it is no record
 * @retval lumErrSizeTooLarge the width, the height or a stride exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterGaussian_8u_C1R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                                const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs an 8u image of three channels; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_8u_C3R_L(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep,
                                                LumiSizeL roiSize, LumiBorderType borderType, const Lum8u* pBorderValue,
                                                const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16u image; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_16u_C1R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16u* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs a 16u image of three channels; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_16u_C3R_L(const Lum16u* pSrc, Lum64s srcStep, Lum16u* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16u* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs a 16s image; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_16s_C1R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16s* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs a 16s image of three channels; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_16s_C3R_L(const Lum16s* pSrc, Lum64s srcStep, Lum16s* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum16s* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs a 32f image; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_32f_C1R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum32f* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs a 32f image of three channels; 64-bit geometry.
 * @copydetails lumiFilterGaussian_8u_C1R_L
 */
LUMCV_API LumStatus lumiFilterGaussian_32f_C3R_L(const Lum32f* pSrc, Lum64s srcStep, Lum32f* pDst, Lum64s dstStep,
                                                 LumiSizeL roiSize, LumiBorderType borderType,
                                                 const Lum32f* pBorderValue, const LumFilterGaussianSpec* pSpec,
                                                 Lum8u* pBuffer);

/**
 * Blurs an 8u image, with the border of the record.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels, not above the one queried
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pSpec       record; only read
 * @param pBuffer     scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer `pSrc`, `pDst`, `pSpec` or `pBuffer` is null
 * @retval lumErrStep        a stride is not positive, or below the width
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrBorder      the record's border is not allowed
 * @retval lumErrArgument    the record's kernel size is below 3 or even: it is no record
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, Lum8u borderValue,
                                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs an 8u image of three channels, with the border of the record.
 *
 * @param pSrc         first pixel of the source's ROI
 * @param srcStep      stride of the source, in bytes
 * @param pDst         first pixel of the destination's ROI
 * @param dstStep      stride of the destination, in bytes
 * @param roiSize      size of the ROI in pixels, not above the one queried
 * @param pBorderValue the three channel values outside; may be null unless the record has #lumBorderConstant
 * @param pSpec        record; only read
 * @param pBuffer      scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer `pSrc`, `pDst`, `pSpec` or `pBuffer` is null, or `pBorderValue` where it is needed
 * @retval lumErrStep        a stride is not positive, or below the width
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrBorder      the record's border is not allowed
 * @retval lumErrArgument    the record's kernel size is below 3 or even: it is no record
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, const Lum8u* pBorderValue,
                                                    const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16u image, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_16u_C1R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum16u borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16u image of three channels, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C3R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_16u_C3R(const Lum16u* pSrc, Lum32s srcStep, Lum16u* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum16u* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16s image, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_16s_C1R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum16s borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 16s image of three channels, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C3R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_16s_C3R(const Lum16s* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum16s* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 32f image, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C1R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, Lum32f borderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/**
 * Blurs a 32f image of three channels, with the border of the record.
 * @copydetails lumiFilterGaussianBorder_8u_C3R
 */
LUMCV_API LumStatus lumiFilterGaussianBorder_32f_C3R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                     LumiSize roiSize, const Lum32f* pBorderValue,
                                                     const LumFilterGaussianSpec* pSpec, Lum8u* pBuffer);

/** @} */

/**
 * @defgroup fixed_filters Derivative and smoothing filters
 * @brief Laplacian, lowpass and Sobel cross with masks of 3x3 and 5x5 pixels, and the coefficients of Sobel kernels.
 *
 * Each filter is a step along the row and a step across the rows. With `s` the pixels of a row, `r` the results of the
 * row step in the rows of the mask, and the index counted from the mask's centre:
 *
 * | Filter | Mask | Row step | Column step |
 * |---|---|---|---|
 * | Laplacian | 3x3 | `A = s[-1] + s[1]` and `B = 8 * s[0]` | `2 * (A[-1] + A[1]) - B[0]` |
 * | Laplacian, first pass | 5x5 | `s[-2] + s[2] + 6 * s[0] + 4 * (s[-1] + s[1])` | `r[-2] + r[2] - 2 * r[0]` |
 * | Laplacian, second pass | 5x5 | `s[-2] + s[2] - 2 * s[0]` | `r[-2] + r[2] + 6 * r[0] + 4 * (r[-1] + r[1])` |
 * | Lowpass | 3x3 | `s[-1] + s[0] + s[1]` | `r[-1] + r[0] + r[1]`, divided by 9 |
 * | Lowpass | 5x5 | `s[-2] + s[-1] + s[0] + s[1] + s[2]` | the same sum of `r`, divided by 25 |
 * | Sobel cross | 3x3 | `s[-1] - s[1]` | `r[-1] - r[1]` |
 * | Sobel cross | 5x5 | `s[-2] + 2 * s[-1] - 2 * s[1] - s[2]` | `r[-2] + 2 * r[-1] - 2 * r[1] - r[2]` |
 *
 * So the matrix of the 3x3 Laplacian is 2 0 2 / 0 -8 0 / 2 0 2, and that of the 3x3 Sobel cross, the mixed second
 * derivative, is 1 0 -1 / 0 0 0 / -1 0 1. The result of the 5x5 Laplacian is the first pass plus the second one: the
 * second derivative in both directions, each smoothed across. No filter but the lowpass scales its result.
 *
 * **Arithmetic.**
 * - 8u to 16s: exact; every result fits 16 bits.
 * - 8u lowpass, with `t` the sum of the mask's pixels: 3x3 `((t + 5) * 7280) >> 16`, 5x5 `(t * 2621) >> 16`. These
 *   stand for the divisions. The first rounds to the nearest integer; the second truncates and is a little too small:
 *   a constant image of 255 becomes 254.
 * - 32f: the steps are computed in single precision as they are written above, from left to right, each operation
 *   rounded by itself. The lowpass multiplies the sum of the row sums by `0.11111111f` or `0.04f`. The 5x5 Laplacian
 *   rounds both passes and adds the second to the first.
 *
 * **Border.** The mask reaches one pixel (3x3) or two (5x5) beyond the ROI. What lies there follows `borderType` (see
 * #LumiBorderType), each side by itself:
 * - A side flagged as lying in memory, and all four with #lumBorderInMem: the pixels that are there, one or two rows or
 *   columns of them and no more. A row above or below that is synthesised has its left and right sides in memory, if
 *   these are flagged, next to the row that it repeats.
 * - #lumBorderReplicate: the nearest pixel of the ROI.
 * - #lumBorderMirror: reflected about the edge pixel, which is not repeated; where the mask reaches further than the
 *   ROI is wide or high, the reflection goes on between both edges, also next to a side that is in memory. A single row
 *   or column is repeated.
 * - #lumBorderConstant: `borderValue`. A row above or below consists of it over its whole length, its ends included.
 *
 * **Large images** are written past the caches: those with at least half (8u; lowpass: more than half) or an eighth
 * (32f) as many pixels as the largest cache has bytes.
 *
 * **Scratch**, in bytes, with `w` the width, `k` 3 or 5, `h = 2 k + 15`, and `W4` the width rounded up to a multiple of
 * 4:
 *
 * | Query | Bytes |
 * |---|---|
 * | Lowpass 8u, Sobel cross 8u to 16s | `(2 w + 30) / 32 * 32 * h + 60 k + 512 + 12 * W4 + 64` |
 * | Lowpass 32f | `(4 w + 60) / 64 * 64 * h + 152 k + 432` |
 * | Sobel cross 32f | `(4 w + 60) / 64 * 64 * h + 152 k + 496` |
 * | Laplacian 8u to 16s | `(4 w + 60) / 64 * 64 * h + 84 k + 720 + 12 * W4 + 64` |
 * | Laplacian 32f | `(8 w + 120) / 128 * 128 * h + 176 k + 704` |
 *
 * The divisions truncate. **Queries** test `pBufferSize` (#lumErrNullPointer), then width and height (#lumErrSize),
 * then the mask (#lumErrMaskSize), and at last that the result fits 32 bits (#lumErrSizeTooLarge).
 *
 * **Checks** of the filters, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: `pSrc`, `pDst` or `pBuffer` is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: a stride is smaller than a row in bytes.
 * 4. #lumErrStepAlignment: the stride of a 16s or 32f image is not a multiple of the element size.
 * 5. #lumErrBorder: `borderType` is neither #lumBorderInMem nor at most 255 with one of the modes #lumBorderReplicate,
 *    #lumBorderMirror and #lumBorderConstant.
 * 6. #lumErrMaskSize: `mask` is neither #lumMask3x3 nor #lumMask5x5.
 *
 * Source and destination must not overlap.
 *
 * @see @ref pipelines, @ref gaussian
 *
 * @{
 */

/**
 * Scratch size of lumiFilterLaplacianBorder_8u16s_C1R().
 *
 * @param roiSize     size of the ROI in pixels
 * @param mask        #lumMask3x3 or #lumMask5x5
 * @param pBufferSize where the size in bytes goes
 * @retval lumOk              the size has been written
 * @retval lumErrNullPointer  `pBufferSize` is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrMaskSize     `mask` is not among those listed
 * @retval lumErrSizeTooLarge the size exceeds 2147483647
 */
LUMCV_API LumStatus lumiFilterLaplacianGetBufferSize_8u16s_C1R(LumiSize roiSize, LumiMaskSize mask,
                                                               Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterLaplacianBorder_32f_C1R().
 * @copydetails lumiFilterLaplacianGetBufferSize_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterLaplacianGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterLowpassBorder_8u_C1R().
 * @copydetails lumiFilterLaplacianGetBufferSize_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterLowpassGetBufferSize_8u_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterLowpassBorder_32f_C1R().
 * @copydetails lumiFilterLaplacianGetBufferSize_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterLowpassGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterSobelCrossBorder_8u16s_C1R().
 * @copydetails lumiFilterLaplacianGetBufferSize_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterSobelCrossGetBufferSize_8u16s_C1R(LumiSize roiSize, LumiMaskSize mask,
                                                                Lum32s* pBufferSize);

/**
 * Scratch size of lumiFilterSobelCrossBorder_32f_C1R().
 * @copydetails lumiFilterLaplacianGetBufferSize_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterSobelCrossGetBufferSize_32f_C1R(LumiSize roiSize, LumiMaskSize mask, Lum32s* pBufferSize);

/**
 * Applies the Laplacian to an 8u image, into a 16s image.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes; a multiple of 2
 * @param roiSize     size of the ROI in pixels
 * @param mask        #lumMask3x3 or #lumMask5x5
 * @param borderType  what lies outside the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment `dstStep` is not a multiple of 2
 * @retval lumErrBorder        `borderType` is not allowed
 * @retval lumErrMaskSize      `mask` is not among those listed
 */
LUMCV_API LumStatus lumiFilterLaplacianBorder_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep,
                                                        LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                                        Lum8u borderValue, Lum8u* pBuffer);

/**
 * Applies the Laplacian to a 32f image.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes; a multiple of 4
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes; a multiple of 4
 * @param roiSize     size of the ROI in pixels
 * @param mask        #lumMask3x3 or #lumMask5x5
 * @param borderType  what lies outside the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk               the destination has been written
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row in bytes
 * @retval lumErrStepAlignment a stride is not a multiple of 4
 * @retval lumErrBorder        `borderType` is not allowed
 * @retval lumErrMaskSize      `mask` is not among those listed
 */
LUMCV_API LumStatus lumiFilterLaplacianBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                      LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                                      Lum32f borderValue, Lum8u* pBuffer);

/**
 * Smooths an 8u image: each pixel becomes the mean of its mask.
 *
 * @param pSrc        first pixel of the source's ROI
 * @param srcStep     stride of the source, in bytes
 * @param pDst        first pixel of the destination's ROI
 * @param dstStep     stride of the destination, in bytes
 * @param roiSize     size of the ROI in pixels
 * @param mask        #lumMask3x3 or #lumMask5x5
 * @param borderType  what lies outside the ROI
 * @param borderValue the pixel value outside, for #lumBorderConstant
 * @param pBuffer     scratch of the queried size
 * @retval lumOk             the destination has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrStep        a stride is smaller than a row in bytes
 * @retval lumErrBorder      `borderType` is not allowed
 * @retval lumErrMaskSize    `mask` is not among those listed
 */
LUMCV_API LumStatus lumiFilterLowpassBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                                   LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                                   Lum8u borderValue, Lum8u* pBuffer);

/**
 * Smooths a 32f image: each pixel becomes the mean of its mask.
 * @copydetails lumiFilterLaplacianBorder_32f_C1R
 */
LUMCV_API LumStatus lumiFilterLowpassBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                    LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                                    Lum32f borderValue, Lum8u* pBuffer);

/**
 * Applies the Sobel cross, the mixed second derivative, to an 8u image, into a 16s image.
 * @copydetails lumiFilterLaplacianBorder_8u16s_C1R
 */
LUMCV_API LumStatus lumiFilterSobelCrossBorder_8u16s_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst,
                                                         Lum32s dstStep, LumiSize roiSize, LumiMaskSize mask,
                                                         LumiBorderType borderType, Lum8u borderValue, Lum8u* pBuffer);

/**
 * Applies the Sobel cross, the mixed second derivative, to a 32f image.
 * @copydetails lumiFilterLaplacianBorder_32f_C1R
 */
LUMCV_API LumStatus lumiFilterSobelCrossBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                                       LumiSize roiSize, LumiMaskSize mask, LumiBorderType borderType,
                                                       Lum32f borderValue, Lum8u* pBuffer);

/**
 * Writes the coefficients of a one-dimensional Sobel kernel.
 *
 * The kernel begins as zeros with a 1 at its end. `kernelSize - 1 - dx` times, each element from a place that begins
 * before the end and moves one to the left each time becomes the sum of itself and the next, from left to right: this
 * is binomial smoothing. Then `dx` times, the place moving on, each becomes itself minus the next: a derivative. A
 * negative `sign` negates the result. So a size of 3 gives 1, 2, 1 with `dx` 0; -1, 0, 1 with `dx` 1; and 1, -2, 1 with
 * `dx` 2. Large kernels wrap around at 16 bits.
 *
 * @param pDst       where the `kernelSize` coefficients go
 * @param kernelSize number of coefficients: odd
 * @param dx         order of the derivative, 0 to `kernelSize - 1`
 * @param sign       a negative value negates the kernel
 * @retval lumOk             the kernel has been written
 * @retval lumErrNullPointer `pDst` is null
 * @retval lumErrSize        `kernelSize` is below 1 or even, or `dx` is negative or not below `kernelSize`
 */
LUMCV_API LumStatus lumiGenSobelKernel_16s(Lum16s* pDst, Lum32s kernelSize, Lum32s dx, Lum32s sign);

/**
 * Writes the coefficients of a one-dimensional Sobel kernel as floats, each operation rounded by itself.
 *
 * @param pDst       where the `kernelSize` coefficients go
 * @param kernelSize number of coefficients: odd
 * @param dx         order of the derivative, 0 to `kernelSize - 1`
 * @param sign       a negative value negates the kernel
 * @retval lumOk             the kernel has been written
 * @retval lumErrNullPointer `pDst` is null
 * @retval lumErrSize        `kernelSize` is below 1 or even, or `dx` is negative or not below `kernelSize`
 *
 * @see lumiGenSobelKernel_16s() for the steps
 */
LUMCV_API LumStatus lumiGenSobelKernel_32f(Lum32f* pDst, Lum32s kernelSize, Lum32s dx, Lum32s sign);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
