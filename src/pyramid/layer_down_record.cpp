// Sizes and Init of the records of layers on the way down.
#include "pyramid/layer_down_record.hpp"

#include <algorithm>
#include <new>

#include "frame/byte_counts.hpp"
#include "pyramid/layer_kernel.hpp"
#include "pyramid/layer_room.hpp"

namespace lumcv {
namespace {

/// More than the kernel on both sides; others go without the scratch of Init.
template <class Size>
bool isLarge(Size srcRoi, Lum32s kernelSize)
{
    return srcRoi.width > kernelSize && srcRoi.height > kernelSize;
}

/// Bytes of a sample of the smoothed image.
template <class T>
inline constexpr int smoothedBytes = sizeof(T) == 1 ? 2 : 4;

template <class T, int channels>
Bytes smallRecordSize(LumiSizeL roi, Bytes k)
{
    constexpr int tapBytes = sizeof(LayerTap<T>);
    const Bytes paddedRow = roundedUp(Bytes{roi.width} * channels, 8);
    return ((3 * k / 2 * 2) * (tapBytes / 2) + 4 * paddedRow + 72) * k + k * tapBytes +
           (std::max(paddedRow, Bytes{roi.height}) + (paddedRow + k * channels) * (roi.height + k)) * 4 + 272;
}

template <class T, int channels>
Bytes largeRecordSize(LumiSizeL roi, Bytes k, int64_t levels)
{
    const Bytes row = std::max(2 * k, Bytes{roi.width}) * channels;
    const Bytes rows = std::max(2 * k, Bytes{roi.height});
    return k / 2 * 96 + ((k + k / 2) * sizeof(LayerTap<T>) + (row + 3) / 4 * 16 + 176) * k +
           (row + 7) / 8 * rows * 8 * smoothedBytes<T> + std::max((row + 3) / 4 * 4, rows) * 4 + 408 + 8 * levels;
}

template <class T, int channels, class Size, class Count>
LumStatus layerDownSizes(Size srcRoi, Lum32f rate, Lum32s kernelSize, Count* pStateSize, Count* pBufSize)
{
    auto checks = Checks{};
    if (layerChecks(checks, srcRoi, rate, kernelSize).notNull(pStateSize, pBufSize).failed())
        return checks.status();
    const LumiSizeL roi{srcRoi.width, srcRoi.height};
    if (!isLarge(roi, kernelSize))
        return storeSize(smallRecordSize<T, channels>(roi, kernelSize), pStateSize);
    return storeSizes(largeRecordSize<T, channels>(roi, kernelSize, levelsBelow(roi, rate)), pStateSize,
                      Bytes{8} * std::max(roi.width, roi.height), pBufSize);
}

template <class T, int channels, class Size>
LumStatus layLayerDown(LumiPyramidLayerDownRecord** ppState, Size srcRoi, Lum32f rate, const LayerTap<T>* pKernel,
                       Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem, const Lum8u* pBuffer)
{
    auto checks = Checks{}
                      .require(mode == layerMode, lumErrArgument)
                      .notNull(ppState, pKernel, pStateMem)
                      .require(pBuffer || !isLarge(srcRoi, kernelSize), lumErrNullPointer);
    if (layerChecks(checks, srcRoi, rate, kernelSize).failed())
        return checks.status();

    Room room(pStateMem, rowAlignment);
    auto* const record = room.take<LumiPyramidLayerDownRecord>(1, recordAlignment);
    auto* const taps = room.take<LayerTap<T>>(kernelSize, tapAlignment);
    normaliseKernel(pKernel, kernelSize, taps);
    bool isBinomial = false;
    if constexpr (std::is_integral_v<T>)
        isBinomial = isBinomialOfRateTwo(pKernel, kernelSize, rate);
    new (record) LumiPyramidLayerDownRecord{taps,
                                            room.next(),
                                            layerDataType<T>,
                                            channels,
                                            kernelSize,
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

LumStatus lumiPyramidLayerDownGetSize_8u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                             Lum32s* pBufSize)
{
    return layerDownSizes<Lum8u, 1>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_8u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                             Lum32s* pBufSize)
{
    return layerDownSizes<Lum8u, 3>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_16u_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                              Lum32s* pBufSize)
{
    return layerDownSizes<Lum16u, 1>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_16u_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                              Lum32s* pBufSize)
{
    return layerDownSizes<Lum16u, 3>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_32f_C1R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                              Lum32s* pBufSize)
{
    return layerDownSizes<Lum32f, 1>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_32f_C3R(LumiSize srcRoi, Lum32f rate, Lum32s kernelSize, Lum32s* pStateSize,
                                              Lum32s* pBufSize)
{
    return layerDownSizes<Lum32f, 3>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownGetSize_32f_C1R_L(LumiSizeL srcRoi, Lum32f rate, Lum32s kernelSize, Lum64s* pStateSize,
                                                Lum64s* pBufSize)
{
    return layerDownSizes<Lum32f, 1>(srcRoi, rate, kernelSize, pStateSize, pBufSize);
}

LumStatus lumiPyramidLayerDownInit_8u_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                          const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                          Lum8u* pBuffer)
{
    return layLayerDown<Lum8u, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_8u_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                          const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                          Lum8u* pBuffer)
{
    return layLayerDown<Lum8u, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_16u_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                           Lum8u* pBuffer)
{
    return layLayerDown<Lum16u, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_16u_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                           const Lum16s* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                           Lum8u* pBuffer)
{
    return layLayerDown<Lum16u, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_32f_C1R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                           const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                           Lum8u* pBuffer)
{
    return layLayerDown<Lum32f, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_32f_C3R(LumiPyramidLayerDownRecord** ppState, LumiSize srcRoi, Lum32f rate,
                                           const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                           Lum8u* pBuffer)
{
    return layLayerDown<Lum32f, 3>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}

LumStatus lumiPyramidLayerDownInit_32f_C1R_L(LumiPyramidLayerDownRecord** ppState, LumiSizeL srcRoi, Lum32f rate,
                                             const Lum32f* pKernel, Lum32s kernelSize, Lum32s mode, Lum8u* pStateMem,
                                             Lum8u* pBuffer)
{
    return layLayerDown<Lum32f, 1>(ppState, srcRoi, rate, pKernel, kernelSize, mode, pStateMem, pBuffer);
}
