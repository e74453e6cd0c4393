/**
 * @file
 * @brief Background models and the history of motion in video.
 */
#ifndef LUMCV_MOTION_H
#define LUMCV_MOTION_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup background Gaussian-mixture background
 * @brief Foreground, background and shadow of each pixel of a stream of frames.
 *
 * Each pixel of 8u video of three channels has a few *modes*: colours that it takes again and again, each with the
 * variance of what was counted to it and with a weight, the share of time that it was seen. A frame updates the modes
 * and tells for each pixel whether it shows a part of the background, something in front of it, or the shadow of such a
 * thing. The background itself can be rendered at any time.
 *
 * lumiFGMMGetBufferSize_8u_C3R() tells the size of the state, lumiFGMMInit_8u_C3R() lays it in the caller's block,
 * lumiFGMMForeground_8u_C3R() takes one frame after the other, and lumiFGMMBackground_8u_C3R() renders. The block may
 * stand at any address, and must not be moved afterwards. A frame writes into the state: one thread at a time may use
 * it. The ROI of a call may be smaller than that of Init; it is then the upper left part of the model's.
 *
 * **Parameters.** LumFGMMModel is filled by the caller, for Init and again for any frame. No field of it is tested but
 * `maxNGauss`. Usual values: `numFrames` 200, `maxNGauss` 5, `varInit` 15, `varMin` 4, `varMax` 75, `varWBRatio` 16,
 * `bckgRatio` 0.9, `varWGen` 9, `CT` 0.05, `shadowValue` 127, `shadowFlag` 1, `shadowRatio` 0.5.
 *
 * **Arithmetic** is single precision, each operation rounded by itself, unless told otherwise. A product of vectors
 * `u.v` is `(u0 * v0 + u1 * v1) + u2 * v2`, in the order of the channels in memory; `min(a, b)` is `a < b ? a : b`,
 * and `max(a, b)` is `a > b ? a : b`.
 *
 * **The rate** of a frame, in double precision: with t = 1 for the first frame after Init, `a` is `learningRate` if
 * t > 1 and `learningRate >= 0`, otherwise `1 / min(2 * t, numFrames)`. The products `a * CT` and the difference
 * `1 - a` are formed in double precision. Below, `a`, `1 - a` and `a * CT` are these numbers, rounded.
 *
 * **The modes** of a pixel stand in slots 0 to n - 1, the heaviest first. A pixel that has more than `maxNGauss` of
 * them, because that has been lowered, loses the lightest first. `p` is the pixel, `m` the mean of a mode and `var` its
 * variance; `total` begins at 0. For each slot from the first to the last of those that were there before the frame:
 *
 * 1. `w = (1 - a) * weight - a * CT`.
 * 2. If no slot before this one has matched, with `d = m - p` and `dist2 = d.d`:
 *    - the pixel is background if `total < bckgRatio` and `varWBRatio * var > dist2`;
 *    - the mode matches if `varWGen * var > dist2`. Then `w` grows by `a`, and, unless it is 0 then, with `k = a / w`
 *      the mean becomes `m - k * d` and the variance `min(max(var + k * (dist2 - var), varMin), varMax)`. The mode
 *      changes places with the one above it as long as its `w` is not less than the weight there.
 * 3. If `a * CT > w`, the mode dies: its weight becomes 0, and the pixel has one mode less, the last one. Otherwise its
 *    weight becomes `w`.
 * 4. The mode's new weight is added to `total`.
 *
 * Then the weights of the remaining modes are multiplied by the quotient `1 / total`.
 *
 * If none matched, the pixel becomes a mode with the variance `varInit`: in a slot behind the others, or, if there are
 * `maxNGauss` of them, in the last slot. Its weight is 1 if it is the only one, otherwise `a`, and all others are
 * multiplied by `1 - a`. It changes places with the mode above it as long as the weight there is not greater than `a`.
 *
 * **The class** of a pixel is what is written, the first that applies:
 *
 * 1. 0 if it is background.
 * 2. 255 if `shadowFlag` is 0, or if the pixel had no mode before the frame.
 * 3. The modes, as they are now, are looked at from the heaviest, with `mm = m.m`, `mp = m.p` and `sum` beginning at 0.
 *    If `mm` is 0, the class is 255. If `mm >= mp`, `mp >= shadowRatio * mm` and, with `r = mp / mm` and
 *    `e = r * m - p`, `((r * r) * varWBRatio) * var > e.e`, it is `shadowValue`. Otherwise the weight is added to
 *    `sum`, and if that is greater than `bckgRatio`, the class is 255.
 * 4. 255.
 *
 * A mode that the frame itself has made takes part in the third step, so a pixel of which the background has not yet
 * gathered more than `bckgRatio` can be called a shadow by its own colour.
 *
 * **The background** of a pixel, for each channel: `w * m` is added to a sum and `w` to `total`, from the heaviest mode
 * to the one that makes `total` greater than `bckgRatio`, or to the last. The quotient of sum and `total` is rounded to
 * nearest, ties to even, and limited to 0..255. A pixel without modes is 0.
 *
 * **Checks** come in the order told with each function; the first that fails decides the status. After a failure
 * nothing has been written and the state is as it was: the call does not count as a frame.
 *
 * This separates what moves from what stands, frame by frame.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 * #include <stdlib.h>
 *
 * LumStatus watch(const Lum8u* const* pFrames, Lum8u* const* pMasks, int count, LumiSize roiSize, Lum8u* pBackground)
 * {
 *     LumFGMMModel model = {200, 5, 15.0f, 4.0f, 75.0f, 16.0f, 0.9f, 9.0f, 0.05f, 127, 1, 0.5f};
 *     Lum32s stateBytes = 0;
 *     LumStatus status = lumiFGMMGetBufferSize_8u_C3R(roiSize, 5, &stateBytes);
 *     if (status != lumOk)
 *         return status;
 *     LumFGMMState* state = malloc((size_t)stateBytes);
 *     if (state == NULL)
 *         return lumErrNullPointer;
 *
 *     status = lumiFGMMInit_8u_C3R(roiSize, 5, &model, state);
 *     for (int i = 0; i < count && status == lumOk; ++i)
 *         status = lumiFGMMForeground_8u_C3R(pFrames[i], 3 * roiSize.width, pMasks[i], roiSize.width, roiSize, state,
 *                                            NULL, -1.0);
 *     if (status == lumOk)
 *         status = lumiFGMMBackground_8u_C3R(pBackground, 3 * roiSize.width, roiSize, state);
 *     free(state);
 *     return status;
 * }
 * @endcode
 *
 * @see @ref motion_history
 *
 * @{
 */

/** The parameters of a background model. */
typedef struct LumFGMMModel
{
    Lum32u numFrames;   /**< length of the history: the automatic rate does not drop below `1 / numFrames` */
    Lum32u maxNGauss;   /**< modes that a pixel may have at present; not above the number given to Init, 0 acts as 1 */
    Lum32f varInit;     /**< variance of a new mode */
    Lum32f varMin;      /**< least variance of a mode */
    Lum32f varMax;      /**< greatest variance of a mode */
    Lum32f varWBRatio;  /**< squared distance up to which a pixel is background, in variances */
    Lum32f bckgRatio;   /**< share of the weights that is background */
    Lum32f varWGen;     /**< squared distance up to which a pixel belongs to a mode, in variances */
    Lum32f CT;          /**< what a mode loses at each frame, in units of the rate: modes of little support die */
    Lum8u shadowValue;  /**< class of a shadow */
    Lum8u shadowFlag;   /**< whether shadows are looked for: not 0 */
    Lum32f shadowRatio; /**< least brightness of a shadow, as a part of the background's */
} LumFGMMModel;

/** The state of a background model, laid in the caller's block by Init. */
typedef struct LumFGMMState LumFGMMState;

/**
 * Size of the state of a background model.
 *
 * With `K = maxNGauss`, `P = K * width * height` and `A()` rounding up to a multiple of 32, it is
 *
 *     ((width * height + 3 * A(8 * K) + ((8 * P + 62) & ~63) + 191) & ~31) + A(16 * P) + 256
 *
 * of which the low 32 bits are written, so that sizes from 2 to the 31 on look negative. Init refuses models that need
 * 2 to the 32 bytes or more.
 *
 * The checks come in the order of the statuses below.
 *
 * @param roiSize    size of the ROI, in pixels
 * @param maxNGauss  the most modes that a pixel can ever have; 1 at least
 * @param pStateSize where the size in bytes goes
 * @retval lumOk             the size has been written
 * @retval lumErrNullPointer `pStateSize` is null
 * @retval lumErrSize        the width or the height is below 1
 * @retval lumErrArgument    `maxNGauss` is below 1
 */
LUMCV_API LumStatus lumiFGMMGetBufferSize_8u_C3R(LumiSize roiSize, Lum32s maxNGauss, Lum32s* pStateSize);

/**
 * Lays a background model without any frames in the caller's block.
 *
 * At first `maxNGauss` modes are allowed, whatever the field of `pModel` says.
 *
 * The checks come in the order of the statuses below.
 *
 * @param roiSize   size of the ROI, in pixels
 * @param maxNGauss the most modes that a pixel can ever have, as in lumiFGMMGetBufferSize_8u_C3R()
 * @param pModel    the parameters; they are copied
 * @param pState    block of the queried size, at any address
 * @retval lumOk              the state is ready
 * @retval lumErrNullPointer  a pointer is null
 * @retval lumErrSize         the width or the height is below 1
 * @retval lumErrArgument     `maxNGauss` is below 1
 * @retval lumErrSizeTooLarge the state needs 2 to the 32 bytes or more
 */
LUMCV_API LumStatus lumiFGMMInit_8u_C3R(LumiSize roiSize, Lum32s maxNGauss, const LumFGMMModel* pModel,
                                        LumFGMMState* pState);

/**
 * Takes a frame: updates the model and classifies each pixel.
 *
 * Frame and classes must not overlap. Strides are not tested against the width.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pSrc         first pixel of the frame
 * @param srcStep      stride of the frame, in bytes
 * @param pDst         where the classes go: 0 for background, `shadowValue` for shadow, 255 for foreground
 * @param dstStep      stride of the classes, in bytes
 * @param roiSize      size of the ROI, in pixels: not above that of Init
 * @param pState       the state
 * @param pModel       parameters that replace the earlier ones from this frame on, or null to keep them
 * @param learningRate weight of this frame, 0 to 1; negative, or not a number, for the automatic rate
 * @retval lumOk             the classes have been written
 * @retval lumErrNullPointer a pointer other than `pModel` is null
 * @retval lumErrStep        a stride is below 1
 * @retval lumErrSize        the width or the height is below 1, or above that of Init
 * @retval lumErrArgument    `maxNGauss` of `pModel` is above the number given to Init
 */
LUMCV_API LumStatus lumiFGMMForeground_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep,
                                              LumiSize roiSize, LumFGMMState* pState, const LumFGMMModel* pModel,
                                              Lum64f learningRate);

/**
 * Renders the background.
 *
 * The stride is not tested against the width.
 *
 * The checks come in the order of the statuses below.
 *
 * @param pDst    first pixel of the background
 * @param dstStep stride of the background, in bytes
 * @param roiSize size of the ROI, in pixels: not above that of Init
 * @param pState  the state
 * @retval lumOk             the background has been written
 * @retval lumErrNullPointer a pointer is null
 * @retval lumErrStep        `dstStep` is below 1
 * @retval lumErrSize        the width or the height is below 1, or above that of Init
 */
LUMCV_API LumStatus lumiFGMMBackground_8u_C3R(Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                              const LumFGMMState* pState);

/** @} */

/**
 * @defgroup motion_history Motion history
 * @brief When each pixel moved last.
 *
 * A motion history is a float image of time stamps. A *silhouette*, for example the foreground of a frame, says which
 * pixels move now: those get the present time. Of the others, stamps that are too old become 0; the rest stay. With
 * `limit = timestamp - mhiDuration`, in single precision:
 *
 *     history = silhouette != 0 ? timestamp : history < limit ? 0 : history
 *
 * A stamp equal to `limit` survives, and so does one that is not a number. Silhouettes of 32f are set where they are
 * not equal to 0.0: not-a-numbers are set, minus zero is not.
 *
 * `pMHI` may stand at any byte address. Silhouette and history must not overlap.
 *
 * **Checks**, in this order; the first that fails decides the status, and nothing has been written:
 *
 * 1. #lumErrNullPointer: a pointer is null.
 * 2. #lumErrSize: the width or the height is below 1.
 * 3. #lumErrStep: `silhouetteStep` is smaller than a row of the silhouette in bytes, or `mhiStep` smaller than four
 *    bytes for each pixel.
 * 4. #lumErrStepAlignment: `mhiStep` is not a multiple of 4, or `silhouetteStep` not a multiple of the size of an
 *    element.
 * 5. #lumErrOutOfRange: `mhiDuration` is negative.
 *
 * This stamps what moves, and forgets after two seconds.
 *
 * @code{.c}
 * #include <lumcv/lumcv.h>
 *
 * LumStatus remember(const Lum8u* pMask, Lum32s maskStep, Lum32f* pHistory, Lum32s historyStep, LumiSize roiSize,
 *                    Lum32f seconds)
 * {
 *     return lumiUpdateMotionHistory_8u32f_C1IR(pMask, maskStep, pHistory, historyStep, roiSize, seconds, 2.0f);
 * }
 * @endcode
 *
 * @see @ref background
 *
 * @{
 */

/**
 * Updates a motion history by a silhouette of bytes.
 *
 * @param pSilhouette    first pixel of the silhouette: what is not 0 moves
 * @param silhouetteStep stride of the silhouette, in bytes
 * @param pMHI           first pixel of the history, at any address
 * @param mhiStep        stride of the history, in bytes; a multiple of 4
 * @param roiSize        size of the ROI, in pixels
 * @param timestamp      the present time
 * @param mhiDuration    how long a stamp is kept; not negative
 * @retval lumOk               the history has been updated
 * @retval lumErrNullPointer   a pointer is null
 * @retval lumErrSize          the width or the height is below 1
 * @retval lumErrStep          a stride is smaller than a row
 * @retval lumErrStepAlignment a stride is not a multiple of the size of an element
 * @retval lumErrOutOfRange    `mhiDuration` is negative
 */
LUMCV_API LumStatus lumiUpdateMotionHistory_8u32f_C1IR(const Lum8u* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                                       Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp,
                                                       Lum32f mhiDuration);

/**
 * Updates a motion history by a silhouette of words.
 * @copydetails lumiUpdateMotionHistory_8u32f_C1IR
 */
LUMCV_API LumStatus lumiUpdateMotionHistory_16u32f_C1IR(const Lum16u* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                                        Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp,
                                                        Lum32f mhiDuration);

/**
 * Updates a motion history by a silhouette of floats.
 * @copydetails lumiUpdateMotionHistory_8u32f_C1IR
 */
LUMCV_API LumStatus lumiUpdateMotionHistory_32f_C1IR(const Lum32f* pSilhouette, Lum32s silhouetteStep, Lum32f* pMHI,
                                                     Lum32s mhiStep, LumiSize roiSize, Lum32f timestamp,
                                                     Lum32f mhiDuration);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
