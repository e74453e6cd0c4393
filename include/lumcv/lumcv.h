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
#include "geometry.h"
#include "integral.h"
#include "morph.h"
#include "motion.h"
#include "pyramid.h"
#include "segment.h"
#include "stats.h"
#include "types.h"

#endif
