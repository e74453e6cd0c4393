// Gray-element morphology: at each position of the element, all pixels of a block are met by its height at once.
//
// 8u stays in bytes: a height beyond 255 either way decides a pixel as 255 does, and the sum with a byte saturates as
// the result does, so the maximum of the saturated sums is the saturated maximum.
#include <cstring>

#include "frame/checks.hpp"
#include "lumcv/morph.h"
#include "simd/simd.hpp"

/// What Init lays. It stands at any byte address, so it is copied in and out; the heights follow it, 4 bytes each.
struct LumiMorphGrayRecord
{
    const Lum8u* pMask;  ///< the heights
    Lum32s maskWidth, maskHeight;
    Lum32s anchorX, anchorY;
    Lum32s maxWidth, maxHeight;  ///< of the ROI
};

namespace lumcv {
namespace {

constexpr int64_t heightBytes = 4;
static_assert(sizeof(LumiMorphGrayRecord) == 32);

template <class Height>
LumStatus querySize(LumiSize roiSize, const Height* pMask, LumiSize maskSize, Lum32s* pSize)
{
    constexpr int64_t most = (INT_MAX - int64_t{sizeof(LumiMorphGrayRecord)}) / heightBytes;
    const int64_t count = static_cast<int64_t>(maskSize.width) * maskSize.height;
    const auto status =
        Checks{}.notNull(pMask, pSize).size(roiSize).size(maskSize).require(count <= most, lumErrSizeTooLarge).status();
    if (status == lumOk)
        *pSize = static_cast<Lum32s>(heightBytes * count + int64_t{sizeof(LumiMorphGrayRecord)});
    return status;
}

template <class Height>
LumStatus layRecord(LumiMorphGrayRecord* pState, LumiSize roiSize, const Height* pMask, LumiSize maskSize,
                    LumiPoint anchor)
{
    const auto status = Checks{}
                            .notNull(pMask, pState)
                            .size(roiSize)
                            .size(maskSize)
                            .require(anchor.x >= 0 && anchor.x < maskSize.width, lumErrAnchor)
                            .require(anchor.y >= 0 && anchor.y < maskSize.height, lumErrAnchor)
                            .status();
    if (status != lumOk)
        return status;
    auto const block = reinterpret_cast<Lum8u*>(pState);
    const LumiMorphGrayRecord record{block + sizeof record, maskSize.width, maskSize.height, anchor.x, anchor.y,
                                     roiSize.width,         roiSize.height};
    std::memcpy(block, &record, sizeof record);
    const int64_t count = static_cast<int64_t>(maskSize.width) * maskSize.height;
    std::memcpy(block + sizeof record, pMask, static_cast<size_t>(count * heightBytes));
    return lumOk;
}

LumiMorphGrayRecord recordAt(const LumiMorphGrayRecord* pState)
{
    LumiMorphGrayRecord record;
    std::memcpy(&record, reinterpret_cast<const Lum8u*>(pState), sizeof record);
    return record;
}

/// Pixels plus a height, or minus it in erosion.
template <bool dilates, class Lanes>
[[gnu::always_inline]] inline auto met(const Lum32f* pixels, const Lum8u* height, Lanes lanes)
{
    Lum32f h;
    std::memcpy(&h, height, sizeof h);
    if constexpr (dilates)
        return simd::load<lanes>(pixels) + simd::broadcast<lanes>(h);
    else
        return simd::load<lanes>(pixels) - simd::broadcast<lanes>(h);
}

template <bool dilates, class Lanes>
[[gnu::always_inline]] inline auto met(const Lum8u* pixels, const Lum8u* height, Lanes lanes)
{
    Lum32s h;
    std::memcpy(&h, height, sizeof h);
    h = h < -255 ? -255 : h > 255 ? 255 : h;
    const auto up = simd::broadcast<lanes>(static_cast<Lum8u>(h > 0 ? h : 0));
    const auto down = simd::broadcast<lanes>(static_cast<Lum8u>(h < 0 ? -h : 0));
    if constexpr (dilates)
        return simd::subtractSaturated(simd::addSaturated(simd::load<lanes>(pixels), up), down);
    else
        return simd::addSaturated(simd::subtractSaturated(simd::load<lanes>(pixels), up), down);
}

/// The better of two; the second of equal ones.
template <bool dilates, class V>
[[gnu::always_inline]] inline V better(V candidate, V best)
{
    if constexpr (dilates)
        return simd::max(candidate, best);
    else
        return simd::min(candidate, best);
}

constexpr int64_t clamped(int64_t i, int64_t n)
{
    return i < 0 ? 0 : i >= n ? n - 1 : i;
}

/// Calls body(x, lanes) for blocks that cover [begin, end), which holds restLanes at least: as wide ones as possible,
/// and at the end one that overlaps.
template <int N, class Body>
[[gnu::always_inline]] inline void eachBlock(int64_t begin, int64_t end, Body body)
{
    int64_t x = begin;
    for (; x + N <= end; x += N)
        body(x, simd::Lanes<N>{});
    if constexpr (N > simd::restLanes)
        eachBlock<N / 2>(x, end, body);
    else if (x < end)
        body(end - N, simd::Lanes<N>{});
}

template <bool dilates, class T>
class GrayElement
{
  public:
    GrayElement(const LumiMorphGrayRecord& record, Plane<const T> src, LumiSize roiSize)
        : record_(record), src_(src), size_(widened(roiSize)), rowHeights_(heightBytes * record.maskWidth)
    {
    }

    void applyRow(T* dst, int64_t y) const
    {
        const int64_t begin = record_.anchorX;
        const int64_t end = size_.width - (record_.maskWidth - 1 - record_.anchorX);
        if (end - begin < simd::restLanes) {
            applyAtEdge(dst, y, 0, size_.width);
            return;
        }
        applyAtEdge(dst, y, 0, begin);
        applyInside(dst, y, begin, end);
        applyAtEdge(dst, y, end, size_.width);
    }

  private:
    /// Eight registers of results.
    static constexpr int wideLanes = 8 * simd::registerLanes<T>;

    const T* row(int64_t y) const
    {
        return src_.row(clamped(y, size_.height));
    }

    /// Pixels whose neighbours all lie within the row.
    [[gnu::flatten, gnu::noinline]] void applyInside(T* dst, int64_t y, int64_t begin, int64_t end) const
    {
        const int64_t firstRow = y - record_.anchorY;
        eachBlock<wideLanes>(begin, end, [=, this](int64_t x, auto lanes) {
            const int64_t left = x - record_.anchorX;
            const Lum8u* height = record_.pMask;
            auto best = met<dilates>(row(firstRow) + left, height, lanes);
            for (int64_t j = 0; j < record_.maskHeight; ++j) {
                const T* const pixels = row(firstRow + j) + left;
                for (int64_t i = 0; i < record_.maskWidth; ++i, height += heightBytes)
                    best = better<dilates>(met<dilates>(pixels + i, height, lanes), best);
            }
            simd::store(dst + x, best);
        });
    }

    /// Pixels some of whose neighbours lie outside the row: what a few columns of the element meet is put together in a
    /// line first, with the pixels at the ends repeated.
    [[gnu::flatten, gnu::noinline]] void applyAtEdge(T* dst, int64_t y, int64_t begin, int64_t end) const
    {
        constexpr int n = simd::restLanes;
        constexpr int64_t columns = 33;
        using Lanes = simd::Lanes<n>;
        for (int64_t x = begin; x < end; x += n) {
            simd::Vec<T, n> best{};
            bool isFirst = true;
            for (int64_t j = 0; j < record_.maskHeight; ++j) {
                const T* const pixels = row(y - record_.anchorY + j);
                const Lum8u* const heights = record_.pMask + j * rowHeights_;
                for (int64_t first = 0; first < record_.maskWidth; first += columns) {
                    const int64_t count =
                        record_.maskWidth - first < columns ? record_.maskWidth - first : int64_t{columns};
                    T line[columns - 1 + n];
                    const int64_t left = x - record_.anchorX + first;
                    for (int64_t i = 0; i < count - 1 + n; ++i)
                        line[i] = pixels[clamped(left + i, size_.width)];
                    for (int64_t i = 0; i < count; ++i) {
                        const auto candidate = met<dilates>(line + i, heights + (first + i) * heightBytes, Lanes{});
                        best = isFirst ? candidate : better<dilates>(candidate, best);
                        isFirst = false;
                    }
                }
            }
            T results[n];
            simd::store(results, best);
            const int64_t count = end - x < n ? end - x : n;
            std::memcpy(dst + x, results, static_cast<size_t>(count) * sizeof(T));
        }
    }

    LumiMorphGrayRecord record_;
    Plane<const T> src_;
    LumiSizeL size_;
    int64_t rowHeights_;  ///< bytes
};

template <bool dilates, class T>
LumStatus applyGrayElement(Plane<const T> src, Plane<T> dst, LumiSize roiSize, LumiBorderType borderType,
                           const LumiMorphGrayRecord* pState)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, dst.pixels, pState)
                            .size(roiSize)
                            .step(src, roiSize.width)
                            .step(dst, roiSize.width)
                            .alignment(src)
                            .alignment(dst)
                            .require(borderType == lumBorderReplicate, lumErrArgument);
    if (checks.failed())
        return checks.status();
    const LumiMorphGrayRecord record = recordAt(pState);
    if (roiSize.width > record.maxWidth || roiSize.height > record.maxHeight)
        return lumErrSize;
    const GrayElement<dilates, T> element(record, src, roiSize);
    for (int64_t y = 0; y < roiSize.height; ++y)
        element.applyRow(dst.row(y), y);
    return lumOk;
}

constexpr bool dilation = true;
constexpr bool erosion = false;

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiMorphGrayGetSize_8u_C1R(LumiSize roiSize, const Lum32s* pMask, LumiSize maskSize, Lum32s* pSize)
{
    return querySize(roiSize, pMask, maskSize, pSize);
}

LumStatus lumiMorphGrayGetSize_32f_C1R(LumiSize roiSize, const Lum32f* pMask, LumiSize maskSize, Lum32s* pSize)
{
    return querySize(roiSize, pMask, maskSize, pSize);
}

LumStatus lumiMorphGrayInit_8u_C1R(LumiMorphGrayRecord* pState, LumiSize roiSize, const Lum32s* pMask,
                                   LumiSize maskSize, LumiPoint anchor)
{
    return layRecord(pState, roiSize, pMask, maskSize, anchor);
}

LumStatus lumiMorphGrayInit_32f_C1R(LumiMorphGrayRecord* pState, LumiSize roiSize, const Lum32f* pMask,
                                    LumiSize maskSize, LumiPoint anchor)
{
    return layRecord(pState, roiSize, pMask, maskSize, anchor);
}

LumStatus lumiGrayDilateBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                      LumiBorderType borderType, const LumiMorphGrayRecord* pState)
{
    return applyGrayElement<dilation>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pState);
}

LumStatus lumiGrayDilateBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                       LumiSize roiSize, LumiBorderType borderType, const LumiMorphGrayRecord* pState)
{
    return applyGrayElement<dilation>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pState);
}

LumStatus lumiGrayErodeBorder_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                     LumiBorderType borderType, const LumiMorphGrayRecord* pState)
{
    return applyGrayElement<erosion>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pState);
}

LumStatus lumiGrayErodeBorder_32f_C1R(const Lum32f* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep,
                                      LumiSize roiSize, LumiBorderType borderType, const LumiMorphGrayRecord* pState)
{
    return applyGrayElement<erosion>(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, borderType, pState);
}
