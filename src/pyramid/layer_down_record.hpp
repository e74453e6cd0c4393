// The record of a layer on the way down.
#pragma once

#include "lumcv/pyramid.h"

/// Laid at a multiple of 64 in the caller's block; the taps and the room for rows stand behind it.
struct LumiPyramidLayerDownRecord
{
    const void* taps;  ///< normalised: LayerTap of the element type
    Lum8u* room;       ///< for the rows of an apply call
    LumDataType dataType;
    Lum32s channels;
    Lum32s kernelSize;
    Lum32s width, height;  ///< of the largest ROI
    Lum32f rate;
    Lum8u isReady;     ///< 1 once Init has come to its end
    Lum8u isBinomial;  ///< the rate is 2 and the kernel 1, 4, 6, 4, 1
};
