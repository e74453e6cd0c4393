// The two ways to a watershed, without checks.
#pragma once

#include "frame/image.hpp"

namespace lumcv {

/// What a watershed works on.
template <class Height, class Label>
struct Relief
{
    Plane<const Height> height;
    Plane<Label> marker;
    LumiSize size;
};

/// Neighbours that a boundary flag looks at; 0 if there is none.
constexpr int boundaryNeighbours(Lum32s flag)
{
    return flag & 128 ? 8 : flag & 64 ? 4 : 0;
}

template <class Label>
void floodByLevel(Relief<Lum8u, Label> relief, int neighbours, int boundaries, Lum8u* pBuffer);

template <class Height, class Label>
void sweepByCost(Relief<Height, Label> relief, Lum32u norm, Lum8u* pBuffer);

}  // namespace lumcv
