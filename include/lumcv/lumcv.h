/**
 * @file
 * @brief lumcv: image processing and computer vision on regions of interest in the caller's memory.
 *
 * Includes the header of every family.
 */
#ifndef LUMCV_H
#define LUMCV_H

#include "distance.h"
#include "feature.h"
#include "filter.h"
#include "frame.h"
#include "integral.h"
#include "morph.h"
#include "pyramid.h"
#include "stats.h"
#include "types.h"

#endif
