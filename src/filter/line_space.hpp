// A place for lines and rings: on the stack, unless the scratch has more room.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"

namespace lumcv {

template <class Element>
class LineSpace
{
  public:
    LineSpace(Lum8u* scratch, int64_t scratchBytes)
    {
        Lum8u* const aligned = alignedUp(scratch, alignment);
        const int64_t room = (scratchBytes - (aligned - scratch)) / static_cast<int64_t>(sizeof(Element));
        if (room > size_) {
            data_ = reinterpret_cast<Element*>(aligned);
            size_ = room;
        }
    }

    Element* data()
    {
        return data_;
    }

    int64_t size() const
    {
        return size_;
    }

    LineSpace(const LineSpace&) = delete;
    LineSpace& operator=(const LineSpace&) = delete;

  private:
    static constexpr uintptr_t alignment = 64;
    static constexpr int64_t stackBytes = 8192;
    alignas(64) Element stack_[stackBytes / sizeof(Element)];
    Element* data_ = stack_;
    int64_t size_ = stackBytes / sizeof(Element);
};

}  // namespace lumcv
