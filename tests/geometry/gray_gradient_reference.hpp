// Three channels folded into one by a norm, pixel by pixel and row by row.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "lumcv/lumcv.h"

namespace lumcv::test::geometry {

/// The second one where they are not ordered.
inline Lum32f larger(Lum32f x, Lum32f y)
{
    return x > y ? x : y;
}

template <class T>
T grayNorm(T a, T b, T c, LumiDistanceNorm norm)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        if (norm == lumGradNormInf) {
            return larger(larger(std::fabs(a), std::fabs(b)), std::fabs(c));
        }
        if (norm == lumGradNormL1) {
            return std::fabs(a) + std::fabs(b) + std::fabs(c);
        }
        return std::sqrt((a * a + b * b + c * c) * 0.33333334f);
    } else {
        if (norm == lumGradNormInf) {
            return std::max({a, b, c});
        }
        if (norm == lumGradNormL1) {
            const std::int64_t sum = std::int64_t{a} + b + c;
            return static_cast<T>(sizeof(T) == 1 ? (sum * 1365 + 2048) >> 12 : (sum * 5461 + 8192) >> 14);
        }
        const std::int64_t squares = std::int64_t{a} * a + std::int64_t{b} * b + std::int64_t{c} * c;
        const Lum32f root = std::sqrt(static_cast<Lum32f>(squares) * 0.33333334f);
        const Lum32f most = sizeof(T) == 1 ? 255.0f : 65535.0f;
        return static_cast<T>(std::min(std::nearbyint(root), most));
    }
}

/// Row by row from the left: what a pixel writes, later pixels read.
template <class T>
void grayGradient(const T* pSrc, std::ptrdiff_t srcStep, T* pDst, std::ptrdiff_t dstStep, LumiSize size,
                  LumiDistanceNorm norm)
{
    for (int y = 0; y < size.height; ++y) {
        const T* const source = reinterpret_cast<const T*>(reinterpret_cast<const unsigned char*>(pSrc) + y * srcStep);
        T* const destination = reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(pDst) + y * dstStep);
        for (int x = 0; x < size.width; ++x) {
            destination[x] = grayNorm(source[3 * x], source[3 * x + 1], source[3 * x + 2], norm);
        }
    }
}

}  // namespace lumcv::test::geometry
