// The checks with which every operation begins that makes distances of a mask.
#pragma once

#include "frame/checks.hpp"
#include "frame/image.hpp"

namespace lumcv {

/// `operand` is what the operation takes besides both images.
template <class T>
Checks transformChecks(Plane<const Lum8u> src, Plane<T> dst, LumiSize size, const void* operand)
{
    return Checks{}
        .notNull(src.pixels, dst.pixels, operand)
        .size(size)
        .step(src, size.width)
        .step(dst, size.width)
        .alignment(dst);
}

}  // namespace lumcv
