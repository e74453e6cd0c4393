// The caller's block of a layer record: the record itself, the taps and room for rows, one piece behind the other.
#pragma once

#include "frame/rounding.hpp"
#include "lumcv/types.h"

namespace lumcv {

inline constexpr uintptr_t recordAlignment = 64;
inline constexpr uintptr_t tapAlignment = 32;
inline constexpr uintptr_t rowAlignment = 16;

/// Takes arrays from a block, from its begin on.
class Room
{
  public:
    explicit Room(void* begin) : next_(static_cast<Lum8u*>(begin)) {}

    template <class T>
    T* take(int64_t count, uintptr_t alignment = rowAlignment)
    {
        next_ = alignedUp(next_, alignment);
        auto* const array = reinterpret_cast<T*>(next_);
        next_ += count * static_cast<int64_t>(sizeof(T));
        return array;
    }

    Lum8u* next() const
    {
        return next_;
    }

  private:
    Lum8u* next_;
};

/// The elements of a row, so many that the next row stands as well as the first.
template <class T>
constexpr int64_t rowPitch(int64_t elements)
{
    return roundedUp(elements, static_cast<int64_t>(rowAlignment / sizeof(T)));
}

}  // namespace lumcv
