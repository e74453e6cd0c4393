// What the row and column pipelines ask of their scratch, in bytes. The constants are part of the library's interface.
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

}  // namespace lumcv
