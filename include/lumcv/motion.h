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
 * @{
 */

/** @} */

/**
 * @defgroup motion_history Motion history
 * @brief When each pixel moved last.
 *
 * @{
 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif
