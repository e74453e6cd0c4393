// What the row and column pipelines, and what is built on them, ask of their scratch, in bytes. The constants are part
// of the library's interface.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"
#include "lumcv/types.h"

namespace lumcv {

/// scale * kernelSize + offset: what a row pipeline asks for.
struct RowScratch
{
    int64_t scale, offset;

    constexpr int64_t bytes(int64_t kernelSize) const
    {
        return scale * kernelSize + offset;
    }
};

inline constexpr RowScratch rowScratch_32f_C1{96, 96}, rowScratch_32f_C3{288, 96};
inline constexpr RowScratch rowScratch_16s_C1{48, 112}, rowScratch_16s_C3{40, 96};
inline constexpr RowScratch rowScratch_16u_C1{64, 96}, rowScratch_16u_C3{128, 96};
inline constexpr RowScratch rowScratch_8u16s_C1{36, 144}, rowScratch_8u16s_C3{60, 144};
inline constexpr RowScratch rowScratch_Low_16s_C1{24, 96}, rowScratch_Low_16s_C3{208, 96};

constexpr int64_t columnScratch_32f(int64_t, int64_t kernelSize, int)
{
    return 32 * kernelSize + 32;
}

constexpr int64_t columnScratch_16s(int64_t width, int64_t, int channels)
{
    return 12 * channels * roundedUp(width, 4) + 64;
}

constexpr int64_t columnScratch_16u(int64_t width, int64_t kernelSize, int channels)
{
    return 32 * kernelSize + 64 + (8 * channels * width + 24) / 32 * 32;
}

constexpr int64_t columnScratch_Low_16s(int64_t width, int64_t, int channels)
{
    return 6 * channels * roundedUp(width, 8) + 64;
}

// The fixed masks: k is the mask's width, the rows are those of a ring, whose pitch is rounded up.

constexpr int64_t maskRingRows(int64_t k)
{
    return 2 * k + 15;
}

constexpr int64_t pipelines_32f(int64_t width, int64_t k)
{
    return rowScratch_32f_C1.bytes(k) + columnScratch_32f(width, k, 1);
}

constexpr int64_t lowpassScratch_32f(int64_t width, int64_t k)
{
    return (4 * width + 60) / 64 * 64 * maskRingRows(k) + 24 * k + 304 + pipelines_32f(width, k);
}

}  // namespace lumcv
