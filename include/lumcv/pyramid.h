/**
 * @file
 * @brief Image pyramids and the optical flow between two of them.
 */
#ifndef LUMCV_PYRAMID_H
#define LUMCV_PYRAMID_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
