// The arrays that a record or a driver lays in the caller's block.
#pragma once

#include <algorithm>

#include "frame/rounding.hpp"
#include "lumcv/types.h"

namespace lumcv {

/// Takes arrays from a block, one behind the other.
class Room
{
  public:
    /// Arrays begin at multiples of `alignment`, a power of two, and of what their type asks for.
    explicit Room(void* begin, uintptr_t alignment = 1) : next_(static_cast<Lum8u*>(begin)), alignment_(alignment) {}

    template <class T>
    T* take(int64_t count)
    {
        return take<T>(count, std::max<uintptr_t>(alignment_, alignof(T)));
    }

    template <class T>
    T* take(int64_t count, uintptr_t alignment)
    {
        next_ = alignedUp(next_, alignment);
        auto* const array = reinterpret_cast<T*>(next_);
        next_ += count * static_cast<int64_t>(sizeof(T));
        return array;
    }

    /// The first byte that has not been taken.
    Lum8u* next() const
    {
        return next_;
    }

  private:
    Lum8u* next_;
    uintptr_t alignment_;
};

}  // namespace lumcv
