// The kernel of a layer: odd and symmetric, so that its first half says all; and what its normalisation makes of it.
#pragma once

#include <type_traits>

#include "frame/checks.hpp"
#include "lumcv/types.h"
#include "pyramid/level_sizes.hpp"

namespace lumcv {

/// The taps of an element type: fixed point with 13 fractional bits for integers.
template <class T>
using LayerTap = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum16s>;

template <class T>
inline constexpr LumDataType layerDataType = std::is_same_v<T, Lum8u>    ? lumType8u
                                             : std::is_same_v<T, Lum16u> ? lumType16u
                                                                         : lumType32f;

constexpr bool isLayerKernelSize(Lum32s kernelSize)
{
    return kernelSize >= 3 && kernelSize % 2 == 1;
}

inline constexpr Lum32s layerMode = 2;

/// Sums and differences of taps up to this are nothing.
inline constexpr Lum32f vanishingTap = 1.1754944e-38f;

/// The steps that all queries and Inits share.
template <class Size>
Checks& layerChecks(Checks& checks, Size srcRoi, Lum32f rate, Lum32s kernelSize)
{
    return checks.size(srcRoi)
        .within31Bits(srcRoi.width, srcRoi.height)
        .require(isRate(rate), lumErrArgument)
        .require(isLayerKernelSize(kernelSize), lumErrArgument);
}

/// What Init returns once the record stands.
template <class Tap>
LumStatus symmetryStatus(const Tap* pKernel, Lum32s kernelSize)
{
    for (Lum32s i = 0; i < kernelSize / 2; ++i) {
        const Tap left = pKernel[i];
        const Tap right = pKernel[kernelSize - 1 - i];
        if constexpr (std::is_floating_point_v<Tap>) {
            if (left - right > vanishingTap || right - left > vanishingTap)
                return lumWrnKernelNotSymmetric;
        } else if (left != right)
            return lumWrnKernelNotSymmetric;
    }
    return lumOk;
}

/// The kernel for which there are passes of its own: 1, 4, 6, 4, 1 with rate 2.
template <class Tap>
bool isBinomialOfRateTwo(const Tap* pKernel, Lum32s kernelSize, Lum32f rate)
{
    return isRateTwo(rate) && kernelSize == 5 && pKernel[0] == 1 && pKernel[1] == 4 && pKernel[2] == 6;
}

/// Stores a tap and its mirror image.
template <class Tap>
void storeTap(Tap* taps, Lum32s kernelSize, Lum32s i, Tap tap)
{
    taps[i] = tap;
    taps[kernelSize - 1 - i] = tap;
}

/// The taps of floats.
inline void normaliseKernel(const Lum32f* pKernel, Lum32s kernelSize, Lum32f* taps)
{
    const Lum32s centre = kernelSize / 2;
    Lum32f half = 0;
    for (Lum32s i = 0; i < centre; ++i)
        half = i == 0 ? pKernel[0] : half + pKernel[i];
    const Lum32f sum = pKernel[centre] + 2 * half;
    const bool isUsable = sum > vanishingTap || sum < -vanishingTap;
    const Lum32f factor = 1.0f / sum;
    for (Lum32s i = 0; i < centre; ++i)
        storeTap(taps, kernelSize, i, isUsable ? pKernel[i] * factor : pKernel[i]);
    taps[centre] = isUsable ? pKernel[centre] / sum : pKernel[centre];
}

/// The taps of integers on the way down: every step truncates.
inline void normaliseKernel(const Lum16s* pKernel, Lum32s kernelSize, Lum16s* taps)
{
    const Lum32s centre = kernelSize / 2;
    Lum32u half = 0;  // modulo 2^32
    for (Lum32s i = 0; i < centre; ++i)
        half += static_cast<Lum32u>(pKernel[i]);
    const auto sum = static_cast<Lum32s>(static_cast<Lum32u>(pKernel[centre]) + 2 * half);
    for (Lum32s i = 0; i <= centre; ++i)
        storeTap(taps, kernelSize, i,
                 sum == 0 ? pKernel[i] : static_cast<Lum16s>((static_cast<Lum32s>(pKernel[i]) * (1 << 14) / sum) >> 1));
}

/// The taps of integers on the way up: rounded.
inline void normaliseKernelRounded(const Lum16s* pKernel, Lum32s kernelSize, Lum16s* taps)
{
    const Lum32s centre = kernelSize / 2;
    Lum32f half = 0;
    for (Lum32s i = 0; i < centre; ++i)
        half += static_cast<Lum32f>(pKernel[i]);
    const Lum32f sum = static_cast<Lum32f>(pKernel[centre]) + 2 * half;
    for (Lum32s i = 0; i <= centre; ++i)
        storeTap(taps, kernelSize, i,
                 sum == 0 ? pKernel[i]
                          : static_cast<Lum16s>(
                                static_cast<Lum32s>(static_cast<Lum32f>(pKernel[i]) * 16384.0f / sum + 0.5f) >> 1));
}

}  // namespace lumcv
