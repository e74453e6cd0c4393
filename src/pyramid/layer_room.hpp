// Where a layer record and its rows stand in the caller's block.
#pragma once

#include "frame/room.hpp"

namespace lumcv {

inline constexpr uintptr_t recordAlignment = 64;
inline constexpr uintptr_t tapAlignment = 32;
inline constexpr uintptr_t rowAlignment = 16;

/// The elements of a row, so many that the next row stands as well as the first.
template <class T>
constexpr int64_t rowPitch(int64_t elements)
{
    return roundedUp(elements, static_cast<int64_t>(rowAlignment / sizeof(T)));
}

}  // namespace lumcv
