/**
 * @file
 * @brief Distances to the nearest zero pixel, fast marching, and the repair of masked pixels.
 */
#ifndef LUMCV_DISTANCE_H
#define LUMCV_DISTANCE_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif
