// Gradient segmentation: labels flood the image in the order of the differences between adjacent pixels.
#include <algorithm>

#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "lumcv/segment.h"
#include "segment/labelled_words.hpp"
#include "segment/level_queues.hpp"

namespace lumcv {
namespace {

constexpr Lum8u barrier = 255;  ///< a pixel that takes no part, or that waits in a queue
constexpr Lum8u boundary = 254;

/// What a pixel sees around it, with the neighbours' order in the lanes.
struct Surroundings
{
    simd::Vec<Lum16u, 8> costs, labels;
    simd::Mask<Lum16u, 8> isFree, isBarred;

    template <class Word>
    Surroundings(const Word* p, int64_t stride)
    {
        const auto steps = simd::neighbourSteps(p, stride);
        costs = steps.differences;
        labels = steps.labels;
        isFree = equal(labels, simd::broadcast<8>(Lum16u{0}));
        isBarred = equal(labels, simd::broadcast<8>(Lum16u{barrier}));
    }
};

template <int channels>
class GradientFlood
{
  public:
    using Word = LabelledWord<channels, Lum8u>;

    GradientFlood(Plane<const Lum8u> src, Plane<Lum8u> marker, LumiSize size, Lum32u norm, LumiSegmentFlag flag,
                  Lum8u* pBuffer)
        : src_(src),
          marker_(marker),
          size_(size),
          width_(size.width),
          height_(size.height),
          neighbours_(norm == 0 ? 0xff : 0x0f),
          looks_(flag & lumSegmentBound8   ? 0xff
                 : flag & lumSegmentBound4 ? 0x0f
                                           : 0),
          preference_(simd::load<8>(norm == 0 ? ofEight : ofFour)),
          offsets_{-1, 1, -width_, width_, -width_ - 1, -width_ + 1, width_ - 1, width_ + 1},
          room_(pBuffer),
          words_(room_.take<Word>(width_ * height_)),
          queues_(room_.take<Lum8u>(LevelQueues::bytesFor((width_ - 2) * (height_ - 2)), LevelQueues::alignment))
    {
    }

    void run()
    {
        for (int64_t y = 0; y < height_; ++y)
            layRow(y);
        for (int64_t y = 1; y < height_ - 1; ++y)
            besideMarkers(marker_, size_, y, 1, width_ - 1, [this, y](int64_t x) { queueBesideSeeds(y * width_ + x); });
        int level = queues_.nextLevel(0);
        if (level == LevelQueues::levels)
            return;
        while (level < LevelQueues::levels)
            level = queues_.nextLevel(flood(level));
        for (int64_t y = 0; y < height_; ++y)
            storeLabels<channels>(marker_.row(y), words_ + y * width_, width_);
    }

  private:
    /// Below the cost in the key of a neighbour that may lend its label: the later one wins, 254 loses.
    static constexpr Lum16u none = 0xffff;
    static constexpr Lum16u ofEight[8] = {7, 6, 5, 4, 3, 2, 1, 0};
    static constexpr Lum16u ofFour[8] = {7, 6, 5, 4, none, none, none, none};

    static void setLabel(Word& word, Lum32u label)
    {
        lumcv::setLabel<channels, Lum8u>(word, label);
    }

    void layRow(int64_t y)
    {
        Word* const words = words_ + y * width_;
        layWords<channels>(words, src_.row(y), marker_.row(y), width_);
        if (y == 0 || y == height_ - 1)
            for (int64_t x = 0; x < width_; ++x)
                setLabel(words[x], barrier);
        setLabel(words[0], barrier);
        setLabel(words[width_ - 1], barrier);
    }

    void queueBesideSeeds(int64_t place)
    {
        Word& word = words_[place];
        if (word >> labelPlace<channels, Lum8u> != 0)
            return;
        const auto best = leastLane(keys(Surroundings(&word, width_)));
        if (best.value == none)
            return;
        queues_.push(static_cast<int>(best.value >> 4), static_cast<Lum32u>(place));
        setLabel(word, barrier);
    }

    /// `none` for those that have no label to lend.
    simd::Vec<Lum16u, 8> keys(const Surroundings& around) const
    {
        const auto isBoundary = equal(around.labels, simd::broadcast<8>(Lum16u{boundary}));
        const auto keys = around.costs * simd::broadcast<8>(Lum16u{16}) | preference_ |
                          select(isBoundary, simd::broadcast<8>(Lum16u{8}), simd::broadcast<8>(Lum16u{0}));
        return select(around.isFree | around.isBarred, simd::broadcast<8>(none), keys);
    }

    /// Labels pixels of the level until its queue is empty or one of a lower level has been pushed. Returns the level
    /// to go on from.
    [[gnu::flatten]] int flood(const int current)
    {
        int level = current;
        do {
            const Lum32u place = queues_.pop(current);
            prefetchAround(std::min(queues_.guess(current), static_cast<Lum32u>(width_ * height_ - 1)));
            Word* const p = words_ + place;
            const Surroundings around(p, width_);
            Lum16u costs[8], labels[8];
            store(costs, around.costs);
            store(labels, around.labels);
            Lum32u label = labels[leastLane(keys(around)).lane];
            if (looks_ != 0) {
                const auto isNoOther = around.isFree | around.isBarred |
                                       equal(around.labels, simd::broadcast<8>(Lum16u{boundary})) |
                                       equal(around.labels, simd::broadcast<8>(static_cast<Lum16u>(label)));
                if (~laneBits(isNoOther) & looks_)
                    label = boundary;
            }
            setLabel(*p, label);
            for (uint64_t left = laneBits(around.isFree) & neighbours_; left != 0; left &= left - 1) {
                const int lane = __builtin_ctzll(left);
                const int64_t q = place + offsets_[lane];
                const int cost = costs[lane];
                queues_.push(cost, static_cast<Lum32u>(q));
                setLabel(words_[q], barrier);
                if (cost < level)
                    level = cost;
            }
        } while (level == current && !queues_.isEmpty(current));
        return level;
    }

    void prefetchAround(int64_t place) const
    {
        simd::prefetch<1>(words_ + std::max<int64_t>(place - width_, 0));
        simd::prefetch<1>(words_ + place);
        simd::prefetch<1>(words_ + std::min(place + width_, width_ * height_ - 1));
    }

    Plane<const Lum8u> src_;
    Plane<Lum8u> marker_;
    LumiSize size_;
    int64_t width_, height_;
    uint64_t neighbours_, looks_;  ///< lanes
    simd::Vec<Lum16u, 8> preference_;
    int64_t offsets_[8];
    Room room_;
    Word* words_;
    LevelQueues queues_;
};

template <int channels>
LumStatus gradient(Plane<const Lum8u> src, Plane<Lum8u> marker, LumiSize size, Lum32u norm, LumiSegmentFlag flag,
                   Lum8u* pBuffer)
{
    const auto checks = Checks{}
                            .notNull(src.pixels, marker.pixels, pBuffer)
                            .size(size)
                            .step(src, rowElements(size.width, channels))
                            .step(marker, size.width)
                            .require(norm <= 1, lumErrArgument);
    if (checks.failed())
        return checks.status();
    if (size.width >= 3 && size.height >= 3)
        GradientFlood<channels>(src, marker, size, norm, flag, pBuffer).run();
    return lumOk;
}

LumStatus bufferSize(LumiSize size, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(size);
    if (checks.failed())
        return checks.status();
    return storeSize(17 * (Bytes{size.width} * size.height) + 115, pBufferSize);
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiSegmentGradientGetBufferSize_8u_C1R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiSegmentGradientGetBufferSize_8u_C3R(LumiSize roiSize, Lum32s* pBufferSize)
{
    return bufferSize(roiSize, pBufferSize);
}

LumStatus lumiSegmentGradient_8u_C1IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                      LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return gradient<1>(source(pSrc, srcStep), destination(pMarker, markerStep), roiSize, norm, flag, pBuffer);
}

LumStatus lumiSegmentGradient_8u_C3IR(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pMarker, Lum32s markerStep,
                                      LumiSize roiSize, Lum32u norm, LumiSegmentFlag flag, Lum8u* pBuffer)
{
    return gradient<3>(source(pSrc, srcStep), destination(pMarker, markerStep), roiSize, norm, flag, pBuffer);
}
