// The record of a layer on the way up.
#pragma once

#include "lumcv/pyramid.h"

/// Laid at a multiple of 64 in the caller's block; the tables and the room for rows stand behind it.
struct LumiPyramidLayerUpRecord
{
    const Lum32s* firsts;   ///< of each destination coordinate: its first source coordinate, which may be negative
    const Lum32s* counts;   ///< how many source coordinates it has, at most `mostWeights`
    const Lum32f* weights;  ///< mostWeights of each destination coordinate
    Lum8u* room;            ///< for the rows of an apply call
    int64_t mostWeights;
    LumDataType dataType;
    Lum32s channels;
    Lum32s width, height;  ///< of the largest ROI
    Lum32f rate;
    Lum8u isReady;     ///< 1 once Init has come to its end
    Lum8u isBinomial;  ///< the rate is 2 and the kernel 1, 4, 6, 4, 1
};
