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
 * @{
 */

/** @} */

/**
 * @defgroup subpixel Subpixel copy
 * @brief Rectangles at a fractional offset.
 *
 * @{
 */

/** @} */

/**
 * @defgroup sample_line Line sampling
 * @brief The pixels of a straight line.
 *
 * @{
 */

/** @} */

/**
 * @defgroup gray_gradient Gray gradient
 * @brief A gradient of three channels, folded into one by a norm.
 *
 * @{
 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif
