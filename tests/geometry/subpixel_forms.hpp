// The six pairs of types of subpixel copies.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/random.hpp"

namespace lumcv::test::geometry {

template <class S, class D, auto plain, auto around>
struct SubpixelForm
{
    using Source = S;
    using Destination = D;
    static constexpr bool isScaled = std::is_same_v<S, Lum8u> && std::is_same_v<D, Lum16u>;

    static LumStatus copy(const S* pSrc, Lum32s srcStep, D* pDst, Lum32s dstStep, LumiSize size, Lum32f dx, Lum32f dy,
                          Lum32s scaleFactor)
    {
        if constexpr (isScaled) {
            return plain(pSrc, srcStep, pDst, dstStep, size, dx, dy, scaleFactor);
        } else {
            return plain(pSrc, srcStep, pDst, dstStep, size, dx, dy);
        }
    }
    static LumStatus copyAround(const S* pSrc, Lum32s srcStep, LumiSize srcSize, D* pDst, Lum32s dstStep,
                                LumiSize dstSize, LumiPoint32f point, LumiPoint* pMin, LumiPoint* pMax,
                                Lum32s scaleFactor)
    {
        if constexpr (isScaled) {
            return around(pSrc, srcStep, srcSize, pDst, dstStep, dstSize, point, pMin, pMax, scaleFactor);
        } else {
            return around(pSrc, srcStep, srcSize, pDst, dstStep, dstSize, point, pMin, pMax);
        }
    }
};

using SubpixelForms =
    testing::Types<SubpixelForm<Lum8u, Lum8u, lumiCopySubpix_8u_C1R, lumiCopySubpixIntersect_8u_C1R>,
                   SubpixelForm<Lum16u, Lum16u, lumiCopySubpix_16u_C1R, lumiCopySubpixIntersect_16u_C1R>,
                   SubpixelForm<Lum32f, Lum32f, lumiCopySubpix_32f_C1R, lumiCopySubpixIntersect_32f_C1R>,
                   SubpixelForm<Lum8u, Lum16u, lumiCopySubpix_8u16u_C1R_Sfs, lumiCopySubpixIntersect_8u16u_C1R_Sfs>,
                   SubpixelForm<Lum8u, Lum32f, lumiCopySubpix_8u32f_C1R, lumiCopySubpixIntersect_8u32f_C1R>,
                   SubpixelForm<Lum16u, Lum32f, lumiCopySubpix_16u32f_C1R, lumiCopySubpixIntersect_16u32f_C1R>>;

struct SubpixelFormName
{
    template <class F>
    static std::string GetName(int)
    {
        const char* const types[] = {"", "8u", "16u", "", "32f"};
        const std::string source = types[sizeof(typename F::Source)];
        return sizeof(typename F::Source) == sizeof(typename F::Destination)
                   ? source
                   : source + types[sizeof(typename F::Destination)];
    }
};

/// Around all limits: of the range that is rounded, of the one that is not, and beyond both.
inline const std::vector<Lum32s> kScaleFactors = {0,
                                                  1,
                                                  -1,
                                                  2,
                                                  -2,
                                                  4,
                                                  -5,
                                                  7,
                                                  8,
                                                  9,
                                                  -8,
                                                  -12,
                                                  -13,
                                                  -14,
                                                  -15,
                                                  -16,
                                                  -20,
                                                  -22,
                                                  -23,
                                                  -30,
                                                  -31,
                                                  -32,
                                                  -33,
                                                  15,
                                                  16,
                                                  17,
                                                  18,
                                                  31,
                                                  32,
                                                  64,
                                                  -46,
                                                  -47,
                                                  -64,
                                                  std::numeric_limits<Lum32s>::max(),
                                                  std::numeric_limits<Lum32s>::min()};

template <class F>
Lum32s scaleFactorOf(int number)
{
    return F::isScaled ? kScaleFactors[static_cast<std::size_t>(number) % kScaleFactors.size()] : 0;
}

/// Offsets with fractions at every limit of their arithmetic, and any others.
inline Lum32f drawOffset(Random& random)
{
    constexpr Lum32f unit = 1.0f / 16384.0f;
    const Lum32f special[] = {0.0f,
                              -0.0f,
                              0.5f,
                              -0.5f,
                              0.25f,
                              -0.25f,
                              1e-6f,
                              1.1e-6f,
                              1e-9f,
                              1.1e-9f,
                              -1e-10f,
                              1e-40f,
                              -1e-40f,
                              unit / 2,
                              unit * 0.49999997f,
                              unit,
                              1 - unit / 2,
                              1 - unit,
                              0x1.fffffep-1f,
                              -0x1.fffffep-1f,
                              3.0f,
                              -7.0f,
                              1234.567f,
                              -1234.567f,
                              8388607.5f,
                              1e20f,
                              -3e38f,
                              std::numeric_limits<Lum32f>::infinity(),
                              -std::numeric_limits<Lum32f>::infinity(),
                              std::numeric_limits<Lum32f>::quiet_NaN()};
    switch (random.between(0, 3)) {
        case 0:
            return special[random.between(0, std::size(special) - 1)];
        case 1:
            return static_cast<Lum32f>(random.between(0, 16384)) * unit;
        default:
            return (random.unit<Lum32f>() - 0.5f) * (random.oneIn(3) ? 200.0f : 2.0f);
    }
}

}  // namespace lumcv::test::geometry
