// The pixels at which labels meet.
#pragma once

#include "frame/image.hpp"

namespace lumcv {

/// In raster order, each pixel becomes `val` that differs from a neighbour before it which is not `val`.
template <class Label>
void markBoundaries(Plane<Label> marker, LumiSize size, Label val, bool eightNeighbours);

}  // namespace lumcv
