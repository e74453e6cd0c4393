/**
 * @file
 * @brief placeholder
 */
#ifndef LUMCV_FILTER_H
#define LUMCV_FILTER_H
#include "types.h"
#endif
