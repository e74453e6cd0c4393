// The usual weights of chamfer distances.
#include <array>

#include "frame/checks.hpp"
#include "lumcv/distance.h"

namespace lumcv {
namespace {

/// By norm: two weights for 3x3 masks, three for 5x5 masks.
template <class T>
struct Masks
{
    std::array<std::array<T, 2>, 3> of3x3;
    std::array<std::array<T, 3>, 3> of5x5;
};

constexpr Masks<Lum32s> integers{{{{1, 1}, {1, 2}, {2, 3}}}, {{{1, 1, 2}, {1, 2, 3}, {5, 7, 11}}}};
constexpr Masks<Lum32f> floats{{{{1, 1}, {1, 2}, {0.955f, 1.3693f}}}, {{{1, 1, 2}, {1, 2, 3}, {1, 1.4f, 2.1969f}}}};

bool isDistanceNorm(Lum32s norm)
{
    return norm >= lumDistanceNormInf && norm <= lumDistanceNormL2;
}

template <class T>
LumStatus weights(const Masks<T>& masks, Lum32s kernelSize, LumiDistanceNorm norm, T* pMetrics)
{
    const LumStatus status = Checks{}
                                 .notNull(pMetrics)
                                 .require(kernelSize == 3 || kernelSize == 5, lumErrSize)
                                 .require(isDistanceNorm(norm), lumErrArgument)
                                 .status();
    if (status != lumOk)
        return status;
    const auto copy = [pMetrics](const auto& chosen) { __builtin_memcpy(pMetrics, chosen.data(), sizeof chosen); };
    const auto at = static_cast<Lum32u>(norm);
    if (kernelSize == 3)
        copy(masks.of3x3[at]);
    else
        copy(masks.of5x5[at]);
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiGetDistanceTransformMask_32s(Lum32s kernelSize, LumiDistanceNorm norm, Lum32s* pMetrics)
{
    return weights(integers, kernelSize, norm, pMetrics);
}

LumStatus lumiGetDistanceTransformMask_32f(Lum32s kernelSize, LumiDistanceNorm norm, Lum32f* pMetrics)
{
    return weights(floats, kernelSize, norm, pMetrics);
}

LumStatus lumiGetDistanceTransformMask(Lum32s maskType, Lum32f* pMetrics)
{
    const Lum32s kernelSize = maskType / 10;
    const LumiDistanceNorm norm = maskType % 10;
    return isDistanceNorm(norm) ? weights(floats, kernelSize, norm, pMetrics) : lumErrArgument;
}
