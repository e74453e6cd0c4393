/**
 * @file
 * @brief placeholder
 */
#ifndef LUMCV_FRAME_H
#define LUMCV_FRAME_H
#include "types.h"
#endif
