// The Gaussian filter's sizes and records.
#include "filter/gaussian_record.hpp"

#include <cstring>

#include "filter/pipeline_sizes.hpp"
#include "frame/block.hpp"
#include "frame/border.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"

namespace lumcv {
namespace {

constexpr int64_t largestSize = INT_MAX;
constexpr int64_t initBufferSize = 64;

// Sizes.

/// The second record: its header, taps in single precision, and room to put both at their alignment.
constexpr int64_t secondRecordSize(int64_t kernelSize)
{
    return 2 * kernelSize + 130;
}

constexpr int64_t firstRecordSize(int64_t kernelSize, LumDataType dataType)
{
    return dataType == lumType32f ? 32 * kernelSize + 32 : 16 * kernelSize + 36;
}

int64_t ringSize(LumiSizeL roiSize, int64_t kernelSize, int channels)
{
    const int64_t pitch = gaussianRingPitch(roiSize.width, channels);
    return pitch > largestSize ? pitch : gaussianScratch(roiSize.width, kernelSize, channels);
}

/// What a pair of row and column pipelines would need for the same filter.
int64_t pipelineSize(LumiSizeL roiSize, int64_t kernelSize, LumDataType dataType, int channels)
{
    const bool gray = channels == 1;
    const bool isFloat = dataType == lumType32f;
    const int64_t elementSize = isFloat ? 4 : 2;
    const int64_t rows = roiSize.height < kernelSize ? roiSize.height : kernelSize;
    const int64_t paddedRow = roundedUp((roiSize.width + kernelSize) * channels, 8);
    if (paddedRow * elementSize > largestSize)
        return paddedRow * elementSize;

    RowScratch row = gray ? rowScratch_8u16s_C1 : rowScratch_8u16s_C3;
    if (dataType == lumType32f)
        row = gray ? rowScratch_32f_C1 : rowScratch_32f_C3;
    else if (dataType == lumType16u)
        row = gray ? rowScratch_16u_C1 : rowScratch_16u_C3;
    else if (dataType == lumType16s)
        row = gray ? rowScratch_16s_C1 : rowScratch_16s_C3;
    const auto column = isFloat ? columnScratch_32f : dataType == lumType16u ? columnScratch_16u : columnScratch_16s;

    const int64_t image = isFloat ? rows + 2 * kernelSize : kernelSize / 2 * 2 + rows + kernelSize;
    const int64_t pointers = (isFloat ? rows : roiSize.height) + kernelSize;
    return image * paddedRow * elementSize + 96 + (rows + kernelSize) * paddedRow * elementSize +
           row.bytes(kernelSize) + 32 + column(roiSize.width, kernelSize, channels) + 32 + pointers * 8 + 32;
}

/// The kernel, its type and its channels, in the order in which all queries and Inits test them.
Checks& kernelChecks(Checks& checks, Lum32s kernelSize, LumDataType dataType, Lum32s numChannels)
{
    return checks.require(isGaussianKernelSize(kernelSize), lumErrArgument)
        .require(dataType == lumType8u || dataType == lumType16u || dataType == lumType16s || dataType == lumType32f,
                 lumErrDataType)
        .require(numChannels == 1 || numChannels == 3, lumErrValue);
}

template <class Count>
LumStatus specSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Count* pSpecSize,
                   Count* pInitBufferSize)
{
    auto checks = Checks{}.notNull(pSpecSize, pInitBufferSize);
    kernelChecks(checks, kernelSize, dataType, numChannels)
        .require(secondRecordSize(kernelSize) <= largestSize, lumErrSizeTooLarge);
    if (checks.failed())
        return checks.status();
    *pSpecSize = static_cast<Count>(secondRecordSize(kernelSize));
    *pInitBufferSize = initBufferSize;
    return lumOk;
}

// Taps.

/// e to the power of x, for x not above 0, correct to the last bit or next to it. Double precision and a fixed order of
/// operations make it the same on every processor level.
Lum32f exponential(Lum32f x)
{
    constexpr Lum32f vanishing = -104.0f;  // below the logarithm of half the smallest denormal
    if (x < vanishing)
        return 0.0f;
    constexpr double log2E = 1.4426950408889634;
    constexpr double ln2 = 0.6931471805599453;
    const double quotient = x * log2E;
    const auto power = static_cast<int>(quotient - 0.5);
    const double r = x - power * ln2;  // at most 0.35 in magnitude: the series' next term is below 2^-53
    double sum = 1.0;
    for (int n = 14; n > 0; --n)
        sum = 1.0 + sum * r / n;
    const uint64_t scaleBits = static_cast<uint64_t>(power + 1023) << 52;
    double scale;
    std::memcpy(&scale, &scaleBits, sizeof scale);
    return static_cast<Lum32f>(sum * scale);
}

/// The weight at distance d before normalisation, for s = 1 / sigma^2, which is infinite where the square of a tiny
/// sigma vanishes.
Lum32f weight(Lum32s d, Lum32f s)
{
    return d == 0 ? 1.0f : exponential(-0.5f * static_cast<Lum32f>(d) * static_cast<Lum32f>(d) * s);
}

/// One half of the kernel and its centre, in single precision, divided by the sum of the whole kernel.
void layHalf(const GaussianHeader& header, Lum32f s, Lum8u* record)
{
    std::memcpy(record, &header, sizeof header);
    const Lum32s h = header.kernelSize / 2;
    auto taps = reinterpret_cast<Lum32f*>(alignedUp(record + sizeof header, tableOffsetOfSecond));
    Lum32f sum = 0.0f;
    for (Lum32s d = h; d >= 1; --d) {
        taps[h - d] = weight(d, s);
        sum += 2 * taps[h - d];
    }
    taps[h] = 1.0f;
    sum += 1.0f;
    lumBlockDivC_32f(sum, taps, h + 1);
}

/// The whole kernel in the number format of its type: fixed point for integers, normalised floats otherwise.
void layWhole(const GaussianHeader& header, Lum32f s, Lum8u* record)
{
    constexpr uintptr_t tableAlignment = 16;
    std::memcpy(record, &header, sizeof header);
    const Lum32s h = header.kernelSize / 2;
    Lum32f sum = 0.0f;
    for (Lum32s i = -h; i <= h; ++i)
        sum += weight(i, s);
    const Lum32f reciprocal = 1.0f / sum;
    Lum8u* table = alignedUp(record + sizeof header, tableAlignment);
    for (Lum32s i = -h; i <= h; ++i) {
        if (header.dataType == lumType32f) {
            reinterpret_cast<Lum32f*>(table)[i + h] = weight(i, s) * reciprocal;
            continue;
        }
        const Lum32f scaled = weight(i, s) * static_cast<Lum32f>(1 << header.tapShift) * reciprocal;
        const auto rounded = static_cast<Lum32s>(static_cast<double>(scaled) + 0.5);
        reinterpret_cast<Lum16s*>(table)[i + h] = static_cast<Lum16s>(rounded > 32767 ? 32767 : rounded);
    }
}

Lum32s tapShiftOf(LumDataType dataType)
{
    return dataType == lumType32f ? 0 : dataType == lumType8u ? 12 : 15;
}

Lum8u* bytesOf(LumFilterGaussianSpec* pSpec)
{
    return reinterpret_cast<Lum8u*>(pSpec);
}

}  // namespace

GaussianKernel gaussianKernel(const LumFilterGaussianSpec* pSpec)
{
    auto record = reinterpret_cast<const Lum8u*>(pSpec);
    GaussianHeader header;
    std::memcpy(&header, record, sizeof header);
    if (header.tableOffset == tableOffsetOfFirst && isGaussianKernelSize(header.kernelSize)) {
        record += firstRecordSize(header.kernelSize, header.dataType);
        std::memcpy(&header, record, sizeof header);
    }
    return {header, reinterpret_cast<const Lum32f*>(alignedUp(record + sizeof header, tableOffsetOfSecond))};
}

}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFilterGaussianGetSpecSize(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels, Lum32s* pSpecSize,
                                        Lum32s* pInitBufferSize)
{
    return specSize(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
}

LumStatus lumiFilterGaussianGetSpecSize_L(Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                          Lum64s* pSpecSize, Lum64s* pInitBufferSize)
{
    return specSize(kernelSize, dataType, numChannels, pSpecSize, pInitBufferSize);
}

LumStatus lumiFilterGaussianGetBufferSize(LumiSize roiSize, Lum32s kernelSize, LumDataType dataType, Lum32s numChannels,
                                          Lum32s* pSpecSize, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pSpecSize, pBufferSize).size(roiSize);
    if (kernelChecks(checks, kernelSize, dataType, numChannels).failed())
        return checks.status();
    const LumiSizeL size = widened(roiSize);
    const int64_t spec = firstRecordSize(kernelSize, dataType) + secondRecordSize(kernelSize);
    if (spec > largestSize)
        return lumErrSizeTooLarge;  // which bounds the kernel, and with it the products below
    int64_t buffer = ringSize(size, kernelSize, numChannels);
    if (const int64_t pipelines = pipelineSize(size, kernelSize, dataType, numChannels); pipelines > buffer)
        buffer = pipelines;
    return storeSizes(spec, pSpecSize, buffer, pBufferSize);
}

LumStatus lumiFilterGaussianGetBufferSize_L(LumiSizeL roiSize, Lum32s kernelSize, LumDataType dataType,
                                            LumiBorderType borderType, Lum32s numChannels, Lum64s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).size(roiSize).within31Bits(roiSize.width, roiSize.height);
    if (kernelChecks(checks, kernelSize, dataType, numChannels)
            .require(isFilterBorder(borderType), lumErrBorder)
            .failed())
        return checks.status();
    const int64_t buffer = ringSize(roiSize, kernelSize, numChannels);
    if (buffer > largestSize)
        return lumErrSizeTooLarge;
    *pBufferSize = buffer;
    return lumOk;
}

LumStatus lumiFilterGaussianInit(LumiSize roiSize, Lum32s kernelSize, Lum32f sigma, LumiBorderType borderType,
                                 LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* pSpec, Lum8u* pBuffer)
{
    auto checks = Checks{}.notNull(pSpec, pBuffer).size(roiSize);
    kernelChecks(checks, kernelSize, dataType, numChannels)
        .require(sigma > 0.0f, lumErrArgument)
        .require(isFilterBorder(borderType), lumErrBorder);
    if (checks.failed())
        return checks.status();
    const Lum32f s = 1.0f / (sigma * sigma);
    layWhole({kernelSize, tableOffsetOfFirst, dataType, borderType, tapShiftOf(dataType)}, s, bytesOf(pSpec));
    layHalf({kernelSize, tableOffsetOfSecond, dataType, borderType, 0}, s,
            bytesOf(pSpec) + firstRecordSize(kernelSize, dataType));
    return lumOk;
}

LumStatus lumiFilterGaussianInit_L(LumiSizeL roiSize, Lum32s kernelSize, Lum32f sigma, LumiBorderType borderType,
                                   LumDataType dataType, Lum32s numChannels, LumFilterGaussianSpec* pSpec,
                                   Lum8u* pBuffer)
{
    auto checks = Checks{}.notNull(pSpec, pBuffer).size(roiSize).within31Bits(roiSize.width, roiSize.height);
    kernelChecks(checks, kernelSize, dataType, numChannels)
        .require(sigma > 0.0f, lumErrArgument)
        .require(isFilterBorder(borderType) ||
                     (static_cast<Lum32u>(borderType) <= largestFilterBorder && hasAllSidesInMemory(borderType)),
                 lumErrBorder);
    if (checks.failed())
        return checks.status();
    const Lum32f s = 1.0f / (sigma * sigma);
    layHalf({kernelSize, tableOffsetOfSecond, dataType, borderType, 0}, s, bytesOf(pSpec));
    return lumOk;
}
