// Rounding of sizes and addresses.
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

/// The first multiple not below n, which is not negative.
template <class Number>
constexpr Number roundedUp(Number n, int64_t multiple)
{
    return (n + multiple - 1) / multiple * multiple;
}

/// The first address not below `block` that is a multiple of `multiple`, a power of two.
template <class Byte>
Byte* alignedUp(Byte* block, uintptr_t multiple)
{
    static_assert(sizeof(Byte) == 1);
    return block + (-reinterpret_cast<uintptr_t>(block) & (multiple - 1));
}

/// A block stands at any byte address; what is laid in it does not.
template <class T>
T* alignedIn(void* block)
{
    return reinterpret_cast<T*>(alignedUp(static_cast<Lum8u*>(block), alignof(T)));
}

template <class T>
const T* alignedIn(const void* block)
{
    return alignedIn<T>(const_cast<void*>(block));
}

}  // namespace lumcv
