// Peaks: the pixels beyond a threshold that are extremes of their neighbourhood.
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "lumcv/feature.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

inline constexpr int peakLanes = simd::restLanes;

// What pixels are asked, as bits of an integer, one for each lane.

template <int N>
[[gnu::always_inline]] inline uint64_t exceeds(simd::Vec<Lum32f, N> v, Lum32f threshold)
{
    return simd::laneBits(simd::less(simd::broadcast<N>(threshold), simd::magnitude(v)));
}

template <int N>
[[gnu::always_inline]] inline uint64_t exceeds(simd::Vec<Lum32s, N> v, Lum32s threshold)
{
    if (threshold < 0)
        return ~uint64_t{0};
    return simd::laneBits(simd::less(simd::broadcast<N>(threshold), v) | simd::less(v, simd::broadcast<N>(-threshold)));
}

template <int N>
[[gnu::always_inline]] inline uint64_t equals(simd::Vec<Lum32f, N> v, simd::Vec<Lum32f, N> extreme)
{
    constexpr Lum32f aboveSmallestNormal = 0x1.000002p-126f;
    return simd::laneBits(simd::less(simd::magnitude(v - extreme), simd::broadcast<N>(aboveSmallestNormal)));
}

template <int N>
[[gnu::always_inline]] inline uint64_t equals(simd::Vec<Lum32s, N> v, simd::Vec<Lum32s, N> extreme)
{
    return simd::laneBits(simd::equal(v, extreme));
}

/// Calls use(neighbour) for each neighbour of the pixels at p.
template <bool isFull, int N, class T, class Use>
[[gnu::always_inline]] inline void eachNeighbour(const T* above, const T* p, const T* below, Use use)
{
    use(simd::load<N>(p - 1));
    use(simd::load<N>(p + 1));
    use(simd::load<N>(above));
    use(simd::load<N>(below));
    if constexpr (isFull) {
        use(simd::load<N>(above - 1));
        use(simd::load<N>(above + 1));
        use(simd::load<N>(below - 1));
        use(simd::load<N>(below + 1));
    }
}

/// Which of the N pixels are peaks.
template <bool isFull, int N, class T>
[[gnu::always_inline]] inline uint64_t peaksAt(const T* above, const T* p, const T* below, T threshold)
{
    const auto v = simd::load<N>(p);
    const uint64_t candidates = exceeds(v, threshold) & ((uint64_t{1} << N) - 1);
    if (!candidates)
        return 0;
    // a neighbour that is not a number stands first, so that it gives way
    auto greatest = v, smallest = v;
    eachNeighbour<isFull, N>(above, p, below, [&](auto neighbour) {
        greatest = simd::max(neighbour, greatest);
        smallest = simd::min(neighbour, smallest);
    });
    const uint64_t positive = simd::laneBits(simd::less(simd::broadcast<N>(T{0}), v));
    return candidates & ((positive & equals(v, greatest)) | (~positive & equals(v, smallest)));
}

template <class T>
struct PeakCall
{
    Plane<const T> src;
    LumiSize roiSize;
    T threshold;
    LumiPoint* peaks;
    Lum32s maxCount;
    Lum32s* count;
    LumiPeakNorm norm;
    Lum32s border;
};

template <bool isFull, class T>
[[gnu::flatten]] void findPeaks(const PeakCall<T>& call)
{
    Lum32s count = 0;
    const int64_t endRow = int64_t{call.roiSize.height} - call.border;
    const int64_t endColumn = int64_t{call.roiSize.width} - call.border;
    const T threshold = call.threshold;
    for (int64_t y = call.border; y < endRow; ++y) {
        const T* const above = call.src.row(y - 1);
        const T* const row = call.src.row(y);
        const T* const below = call.src.row(y + 1);
        bool isFilled = false;
        simd::eachOnce<peakLanes>(call.border, endColumn, [&](int64_t x, auto lanes) {
            uint64_t peaks = peaksAt<isFull, lanes>(above + x, row + x, below + x, threshold);
            for (; peaks && !isFilled; peaks &= peaks - 1) {
                call.peaks[count] = {static_cast<Lum32s>(x) + __builtin_ctzll(peaks), static_cast<Lum32s>(y)};
                isFilled = ++count == call.maxCount;
            }
        });
        if (isFilled)
            break;
    }
    *call.count = count;
}

template <class T>
LumStatus findPeaks(const PeakCall<T>& call, const Lum8u* buffer)
{
    const auto half = [](Lum32s length) { return 0.5f * static_cast<Lum32f>(length); };
    const auto border = static_cast<Lum32f>(call.border);
    const LumStatus status = Checks{}
                                 .notNull(call.src.pixels, call.peaks, call.count, buffer)
                                 .size(call.roiSize)
                                 .require(call.maxCount >= 1 && call.border >= 1, lumErrSize)
                                 .require(border <= half(call.roiSize.width), lumErrSize)
                                 .require(border <= half(call.roiSize.height), lumErrSize)
                                 .rowFits(call.src, call.roiSize.width, 1)
                                 .alignment(call.src)
                                 .require(call.norm == lumPeakNormInf || call.norm == lumPeakNormL1, lumErrArgument)
                                 .status();
    if (status != lumOk)
        return status;
    if (call.norm == lumPeakNormInf)
        findPeaks<true>(call);
    else
        findPeaks<false>(call);
    return lumOk;
}

LumStatus peaksSize(Lum32s roiWidth, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).require(roiWidth >= 1, lumErrSize);
    if (checks.failed())
        return checks.status();
    return storeSize((int64_t{roiWidth} * 32 + 160) / 128 * 128 + 32, pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiFindPeaks3x3GetBufferSize_32f_C1R(Lum32s roiWidth, Lum32s* pBufferSize)
{
    return peaksSize(roiWidth, pBufferSize);
}

LumStatus lumiFindPeaks3x3GetBufferSize_32s_C1R(Lum32s roiWidth, Lum32s* pBufferSize)
{
    return peaksSize(roiWidth, pBufferSize);
}

LumStatus lumiFindPeaks3x3_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f threshold,
                                   LumiPoint* pPeak, Lum32s maxPeakCount, Lum32s* pPeakCount, LumiPeakNorm norm,
                                   Lum32s border, Lum8u* pBuffer)
{
    return findPeaks(
        PeakCall<Lum32f>{source(pSrc, srcStep), roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border},
        pBuffer);
}

LumStatus lumiFindPeaks3x3_32s_C1R(const Lum32s* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32s threshold,
                                   LumiPoint* pPeak, Lum32s maxPeakCount, Lum32s* pPeakCount, LumiPeakNorm norm,
                                   Lum32s border, Lum8u* pBuffer)
{
    return findPeaks(
        PeakCall<Lum32s>{source(pSrc, srcStep), roiSize, threshold, pPeak, maxPeakCount, pPeakCount, norm, border},
        pBuffer);
}
