/**
 * @file
 * @brief Flood fill, watershed and gradient segmentation, labels and speckles.
 */
#ifndef LUMCV_SEGMENT_H
#define LUMCV_SEGMENT_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup flood_fill Flood fill
 * @brief A connected region around a seed pixel, painted in place and measured.
 *
 * @{
 */

/** @} */

/**
 * @defgroup watershed Watershed and gradient segmentation
 * @brief Regions that grow from labelled seeds until they meet.
 *
 * @{
 */

/** @} */

/**
 * @defgroup labels Labels
 * @brief A label of its own for each connected set of non-zero pixels.
 *
 * @{
 */

/** @} */

/**
 * @defgroup speckles Speckles
 * @brief Small regions of nearly equal pixels, overwritten with one value.
 *
 * @{
 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif
