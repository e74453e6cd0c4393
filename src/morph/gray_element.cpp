// Gray-element morphology: at each position of the element, all pixels of a block are met by its height at once.
//
// 8u stays in bytes: a height beyond 255 either way decides a pixel as 255 does, and the sum with a byte saturates as
// the result does, so the maximum of the saturated sums is the saturated maximum.
#include <cstring>

#include "frame/border.hpp"
#include "frame/byte_counts.hpp"
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
    const auto checks = Checks{}.notNull(pMask, pSize).size(roiSize).size(maskSize);
    if (checks.failed())
        return checks.status();
    return storeSize(heightBytes * Bytes{maskSize.width} * maskSize.height + sizeof(LumiMorphGrayRecord), pSize);
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

/// The pixels plus a height, or minus it in erosion.
template <bool dilates, int N>
[[gnu::always_inline]] inline simd::Vec<Lum32f, N> met(simd::Vec<Lum32f, N> pixels, simd::Vec<Lum32f, N> height)
{
    return dilates ? pixels + height : pixels - height;
}

/// Bytes with the magnitude of a height that is not negative.
template <bool dilates, int N>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> met(simd::Vec<Lum8u, N> pixels, simd::Vec<Lum8u, N> magnitude)
{
    return dilates ? simd::addSaturated(pixels, magnitude) : simd::subtractSaturated(pixels, magnitude);
}

/// The better of two; the second of equal ones.
template <bool dilates, class V>
[[gnu::always_inline]] inline V better(V candidate, V best)
{
    return dilates ? simd::max(candidate, best) : simd::min(candidate, best);
}

/// A position of the element, and its height as the word that a broadcast puts into all lanes: four equal bytes for 8u.
template <class T>
struct Position
{
    using Word = std::conditional_t<sizeof(T) == 1, Lum32u, T>;
    Lum32s row, column;
    Word height;

    template <int N>
    [[gnu::always_inline]] auto heights() const
    {
        constexpr int words = N * static_cast<int>(sizeof(T)) / static_cast<int>(sizeof(Word));
        return simd::reinterpreted<T>(simd::broadcast<words>(height));
    }
};

/// Consecutive positions of the element, as many as the stack holds without regret. Of 8u, those with a negative height
/// stand behind the others, and all have magnitudes.
template <class T>
struct Positions
{
    static constexpr int64_t most = 256;
    int64_t first = 0, count = 0, notNegative = 0;
    Position<T> values[most];

    void read(const LumiMorphGrayRecord& record, int64_t firstPosition)
    {
        const int64_t left = static_cast<int64_t>(record.maskWidth) * record.maskHeight - firstPosition;
        first = firstPosition;
        count = left < most ? left : most;
        notNegative = 0;
        int64_t end = count;
        auto row = static_cast<Lum32s>(first / record.maskWidth);
        auto column = static_cast<Lum32s>(first % record.maskWidth);
        for (int64_t i = 0; i < count; ++i) {
            const Lum8u* const height = record.pMask + (first + i) * heightBytes;
            if constexpr (sizeof(T) == 1) {
                Lum32s value;
                std::memcpy(&value, height, sizeof value);
                const int magnitude = value < -255 || value > 255 ? 255 : value < 0 ? -value : value;
                values[value < 0 ? --end : notNegative++] = {row, column, 0x01010101u * static_cast<Lum32u>(magnitude)};
            } else {
                values[i] = {row, column, 0};
                std::memcpy(&values[i].height, height, sizeof values[i].height);
                ++notNegative;
            }
            if (++column == record.maskWidth) {
                column = 0;
                ++row;
            }
        }
    }
};

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
        : record_(record),
          src_(src),
          size_(widened(roiSize)),
          begin_(record.anchorX),
          end_(size_.width - (record.maskWidth - 1 - record.anchorX))
    {
        if (end_ - begin_ < simd::restLanes)
            begin_ = end_ = size_.width;
    }

    bool hasInside() const
    {
        return begin_ < end_;
    }

    /// Lets a part of the element meet the pixels of a row whose neighbours all lie within the row. After the first
    /// part the destination holds the best so far.
    void applyInside(T* dst, int64_t y, const Positions<T>& positions) const
    {
        const T* neighbours[Positions<T>::most];
        for (int64_t i = 0; i < positions.count; ++i) {
            const Position<T>& position = positions.values[i];
            neighbours[i] = row(y + position.row) + position.column - record_.anchorX;
        }
        meetInside(dst, neighbours, positions);
    }

    /// Lets the whole element meet the other pixels of a row.
    void applyAtEdges(T* dst, int64_t y) const
    {
        meetAtEdge(dst, y, 0, begin_);
        meetAtEdge(dst, y, end_, size_.width);
    }

  private:
    /// The row of the source that a row of the element falls on.
    const T* row(int64_t y) const
    {
        return src_.row(borderIndex(y - record_.anchorY, size_.height, lumBorderReplicate));
    }

    [[gnu::flatten, gnu::noinline]] void meetInside(T* dst, const T* const* neighbours,
                                                    const Positions<T>& positions) const
    {
        constexpr int eightRegisters = 8 * simd::registerLanes<T>;
        eachBlock<eightRegisters>(begin_, end_, [=, &positions](int64_t x, auto lanes) {
            const auto candidate = [&](int64_t i, auto raises) {
                return met<raises>(simd::load<lanes>(neighbours[i] + x), positions.values[i].template heights<lanes>());
            };
            constexpr auto raises = std::bool_constant<dilates>{};
            constexpr auto lowers = std::bool_constant<!dilates>{};
            auto best = positions.first > 0         ? simd::load<lanes>(dst + x)
                        : positions.notNegative > 0 ? candidate(0, raises)
                                                    : candidate(0, lowers);
            for (int64_t i = 0; i < positions.notNegative; ++i)
                best = better<dilates>(candidate(i, raises), best);
            for (int64_t i = positions.notNegative; i < positions.count; ++i)
                best = better<dilates>(candidate(i, lowers), best);
            simd::store(dst + x, best);
        });
    }

    [[gnu::flatten, gnu::noinline]] void meetAtEdge(T* dst, int64_t y, int64_t begin, int64_t end) const
    {
        constexpr int n = simd::restLanes;
        constexpr int64_t columns = 33;
        for (int64_t x = begin; x < end; x += n) {
            auto best = simd::broadcast<n>(T{0});
            bool isFirst = true;
            for (int64_t j = 0; j < record_.maskHeight; ++j)
                for (int64_t i = 0; i < record_.maskWidth; i += columns) {
                    const int64_t count = record_.maskWidth - i < columns ? record_.maskWidth - i : columns;
                    T line[columns - 1 + 2 * n];
                    readLine(row(y + j), x - record_.anchorX + i, count - 1 + n, line);
                    const Lum8u* height = record_.pMask + (j * record_.maskWidth + i) * heightBytes;
                    for (int64_t k = 0; k < count; ++k, height += heightBytes) {
                        const auto candidate = candidateAt(line + k, height);
                        best = isFirst ? candidate : better<dilates>(candidate, best);
                        isFirst = false;
                    }
                }
            T results[n];
            simd::store(results, best);
            std::memcpy(dst + x, results, static_cast<size_t>(end - x < n ? end - x : n) * sizeof(T));
        }
    }

    /// Pixels of a row from any place on, those at its ends repeated. The line has room for restLanes more.
    [[gnu::always_inline]] void readLine(const T* pixels, int64_t first, int64_t count, T* line) const
    {
        constexpr int n = simd::restLanes;
        const int64_t begin = first >= 0 ? 0 : -first < count ? -first : count;
        const int64_t right = size_.width - first;
        const int64_t end = right <= begin ? begin : right < count ? right : count;
        for (int64_t i = 0; i < begin; i += n)
            simd::store(line + i, simd::broadcast<n>(pixels[0]));
        simd::eachAtLeastOnce<n>(
            begin, end, [=](int64_t i, auto lanes) { simd::store(line + i, simd::load<lanes>(pixels + first + i)); });
        for (int64_t i = end; i < count; i += n)
            simd::store(line + i, simd::broadcast<n>(pixels[size_.width - 1]));
    }

    /// A height of either sign, as the record holds it, with a vector of pixels.
    [[gnu::always_inline]] static auto candidateAt(const T* pixels, const Lum8u* height)
    {
        constexpr int n = simd::restLanes;
        if constexpr (sizeof(T) == 1) {
            Lum32s value;
            std::memcpy(&value, height, sizeof value);
            const auto up = static_cast<Lum8u>(value < 0 ? 0 : value > 255 ? 255 : value);
            const auto down = static_cast<Lum8u>(value > 0 ? 0 : value < -255 ? 255 : -value);
            const auto raised = met<dilates>(simd::load<n>(pixels), simd::broadcast<n>(up));
            return met<!dilates>(raised, simd::broadcast<n>(down));
        } else {
            T value;
            std::memcpy(&value, height, sizeof value);
            return met<dilates>(simd::load<n>(pixels), simd::broadcast<n>(value));
        }
    }

    LumiMorphGrayRecord record_;
    Plane<const T> src_;
    LumiSizeL size_;
    int64_t begin_, end_;  ///< the columns whose neighbours all lie within a row; none if they are few
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
        element.applyAtEdges(dst.row(y), y);
    const int64_t positionCount = element.hasInside() ? static_cast<int64_t>(record.maskWidth) * record.maskHeight : 0;
    Positions<T> positions;
    for (int64_t first = 0; first < positionCount; first += positions.count) {
        positions.read(record, first);
        for (int64_t y = 0; y < roiSize.height; ++y)
            element.applyInside(dst.row(y), y, positions);
    }
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
