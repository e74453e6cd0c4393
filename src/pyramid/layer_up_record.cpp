// Sizes and Init of the records of layers on the way up.
#include "pyramid/layer_up_record.hpp"

#include <algorithm>
#include <cmath>
#include <new>

#include "frame/byte_counts.hpp"
#include "pyramid/layer_kernel.hpp"
#include "pyramid/layer_room.hpp"

namespace lumcv {
namespace {

/// How far the kernel reaches, in source pixels.
int64_t sourceReach(Lum32s kernelSize, Lum32f rate)
{
    return static_cast<int64_t>(kernelSize / 2 / static_cast<Lum64f>(rate) + 0.5);
}

int64_t mostWeightsOf(Lum32s kernelSize, Lum32f rate)
{
    return 2 * sourceReach(kernelSize, rate) + 2;
}

/// The longest side of a destination.
int64_t longestSide(LumiSizeL roi, Lum32f rate)
{
    return std::max(sidesAbove(roi.width, rate).max, sidesAbove(roi.height, rate).max);
}

template <class Size, class Count>
LumStatus layerUpSize(int channels, Size srcRoi, Lum32f rate, Lum32s kernelSize, Count* pStateSize)
{
    auto checks = Checks{};
    if (layerChecks(checks, srcRoi, rate, kernelSize).notNull(pStateSize).failed())
        return checks.status();
    const LumiSizeL roi{srcRoi.width, srcRoi.height};
    const Bytes weights = mostWeightsOf(kernelSize, rate);
    return storeSize(512 + Bytes{4} * kernelSize + longestSide(roi, rate) * (4 * weights + 8) +
                         (weights + 1) * (Bytes{4} * channels * sidesAbove(roi.width, rate).max + 32) +
                         4 * channels * (roi.width + 2 * weights),
                     pStateSize);
}

/// The source coordinates under the kernel around destination coordinate d, and their weights.
template <class Tap>
void layWeights(const Tap* taps, Lum32s kernelSize, Lum32f rate, int64_t d, Lum32s* first, Lum32s* count,
                Lum32f* weights)
{
    const auto step = static_cast<Lum64f>(rate);
    const auto place = static_cast<Lum64f>(d);
    const auto nearest = static_cast<int64_t>(place / step);
    const int64_t reach = sourceReach(kernelSize, rate);
    Lum32f sum = 0;
    *count = 0;
    for (int64_t j = nearest - reach; j <= nearest + reach + 1; ++j) {
        const int64_t tap =
            static_cast<int64_t>(std::floor(static_cast<Lum64f>(j) * step - place + 0.5)) + kernelSize / 2;
        if (tap < 0 || tap >= kernelSize)
            continue;
        const auto weight = static_cast<Lum32f>(taps[tap]);
        if (*count == 0)
            *first = static_cast<Lum32s>(j);
        sum = *count == 0 ? weight : sum + weight;
        weights[(*count)++] = weight;
    }
    if (*count == 0 || sum == 0) {
        *first = static_cast<Lum32s>(nearest);
        *count = 1;
        weights[0] = 1;
    } else
        for (Lum32s i = 0; i < *count; ++i)
            weights[i] /= sum;
    for (int64_t i = *count; i < 2 * reach + 2; ++i)
        weights[i] = 0;  // read, of no effect
}

template <class T, int channels, class Size>
LumStatus layLayerUp(LumiPyramidLayerUpRecord** ppState, Size srcRoi, Lum32f rate, const LayerTap<T>* pKernel,
                     Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    auto checks = Checks{};
    if (layerChecks(checks, srcRoi, rate, kernelSize)
            .notNull(ppState, pKernel, pStateMem)
            .require(mode == layerMode, lumErrArgument)
            .failed())
        return checks.status();

    const int64_t mostWeights = mostWeightsOf(kernelSize, rate);
    const int64_t side = longestSide({srcRoi.width, srcRoi.height}, rate);
    Room room(pStateMem, rowAlignment);
    auto* const record = room.take<LumiPyramidLayerUpRecord>(1, recordAlignment);
    auto* const taps = room.take<LayerTap<T>>(kernelSize, tapAlignment);
    auto* const firsts = room.take<Lum32s>(side);
    auto* const counts = room.take<Lum32s>(side);
    auto* const weights = room.take<Lum32f>(side * mostWeights);
    bool isBinomial = false;
    if constexpr (std::is_integral_v<T>) {
        normaliseKernelRounded(pKernel, kernelSize, taps);
        isBinomial = isBinomialOfRateTwo(pKernel, kernelSize, rate);
    } else
        normaliseKernel(pKernel, kernelSize, taps);
    for (int64_t d = 0; d < side; ++d)
        layWeights(taps, kernelSize, rate, d, firsts + d, counts + d, weights + d * mostWeights);
    new (record) LumiPyramidLayerUpRecord{firsts,
                                          counts,
                                          weights,
                                          room.next(),
                                          mostWeights,
                                          layerDataType<T>,
                                          channels,
                                          static_cast<Lum32s>(srcRoi.width),
                                          static_cast<Lum32s>(srcRoi.height),
                                          rate,
                                          1,
                                          isBinomial};
    *ppState = record;
    return symmetryStatus(pKernel, kernelSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiPyramidLayerUpGetSize_8u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(1, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_8u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(3, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_16u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(1, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_16u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(3, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_32f_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(1, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_32f_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize)
{
    return layerUpSize(3, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpGetSize_32f_C1R_L(LumiSizeL srcRoi, Lum32f rate, Lum32s kernelSize, Lum64s* pStateSize)
{
    return layerUpSize(1, srcRoi, rate, kernelSize, pStateSize);
}

LumStatus lumiPyramidLayerUpInit_8u_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                        const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum8u, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_8u_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                        const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum8u, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_16u_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                         const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum16u, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_16u_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                         const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum16u, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_32f_C1R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                         const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum32f, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_32f_C3R(LumiPyramidLayerUpRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                         const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum32f, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}

LumStatus lumiPyramidLayerUpInit_32f_C1R_L(LumiPyramidLayerUpRecord** ppState, LumiSizeL srcRoi, Lum32f rate,
                                           const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem)
{
    return layLayerUp<Lum32f, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem);
}
