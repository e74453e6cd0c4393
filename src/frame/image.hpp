// Operands of an image operation: a pointer to the first pixel of the ROI and a stride in bytes.
#pragma once

#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

/// Steps a pointer by whole rows.
template <class T>
[[gnu::always_inline]] inline T* rowAt(T* first, int64_t rowStep, int64_t y)
{
    return reinterpret_cast<T*>(reinterpret_cast<intptr_t>(first) + rowStep * y);
}

/// An image whose pixels are T (const T where it is only read).
template <class T>
struct Plane
{
    T* pixels;
    int64_t step;

    T* row(int64_t y) const
    {
        return rowAt(pixels, step, y);
    }
};

template <class T>
Plane<const T> source(const T* pixels, int64_t step)
{
    return {pixels, step};
}

template <class T>
Plane<T> destination(T* pixels, int64_t step)
{
    return {pixels, step};
}

/// The size of a 32-bit entry point, widened for the driver that it shares with its 64-bit twin.
inline LumiSizeL widened(LumiSize size)
{
    return {size.width, size.height};
}

}  // namespace lumcv
