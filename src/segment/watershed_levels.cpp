// Watershed, flood by level: labels flood the image in the order of its heights.
#include <algorithm>
#include <limits>

#include "frame/room.hpp"
#include "segment/labelled_words.hpp"
#include "segment/level_queues.hpp"
#include "segment/watershed.hpp"

namespace lumcv {
namespace {

/// The words have a frame of barriers around the image.
template <class Label>
class LevelFlood
{
  public:
    using Word = LabelledWord<1, Label>;
    static constexpr Label barrier = std::numeric_limits<Label>::max();

    LevelFlood(Relief<Lum8u, Label> relief, int neighbours, int boundaries, Lum8u* pBuffer)
        : relief_(relief),
          width_(relief.size.width),
          height_(relief.size.height),
          stride_(width_ + 2),
          neighbours_(lanes(neighbours)),
          looks_(lanes(boundaries)),
          offsets_{-1, 1, -stride_, stride_, -stride_ - 1, -stride_ + 1, stride_ - 1, stride_ + 1},
          room_(pBuffer),
          words_(room_.take<Word>(stride_ * (height_ + 2))),
          queues_(room_.take<Lum8u>(LevelQueues::bytesFor(width_ * height_), LevelQueues::alignment))
    {
    }

    void run()
    {
        constexpr Word framing = static_cast<Word>(Lum32u{barrier} << labelPlace<1, Label>);
        std::fill_n(row(-1) - 1, stride_, framing);
        for (int64_t y = 0; y < height_; ++y) {
            Word* const words = row(y);
            words[-1] = words[width_] = framing;
            layWords<1>(words, relief_.height.row(y), relief_.marker.row(y), width_);
        }
        std::fill_n(row(height_) - 1, stride_, framing);
        for (int64_t y = 0; y < height_; ++y)
            besideMarkers(relief_.marker, relief_.size, y, 0, width_, [this, y](int64_t x) { lookAround(x, y); });
        int level = queues_.nextLevel(0);
        if (level == LevelQueues::levels)
            return;
        for (; level < LevelQueues::levels; level = queues_.nextLevel(level + 1))
            while (!queues_.isEmpty(level))
                flood(level);
        for (int64_t y = 0; y < height_; ++y)
            storeLabels<1>(relief_.marker.row(y), row(y), width_);
    }

  private:
    static uint64_t lanes(int neighbours)
    {
        return (uint64_t{1} << neighbours) - 1;
    }

    Word* row(int64_t y) const
    {
        return words_ + (y + 1) * stride_ + 1;
    }

    static void setLabel(Word& word, Lum32u label)
    {
        lumcv::setLabel<1, Label>(word, label);
    }

    static int heightOf(Word word)
    {
        return word & 0xff;
    }

    Label given(int64_t x, int64_t y) const
    {
        return x < 0 || y < 0 || x >= width_ || y >= height_ ? barrier : relief_.marker.row(y)[x];
    }

    /// The first scan: what the caller's markers mean for a pixel.
    void lookAround(int64_t x, int64_t y)
    {
        constexpr int dx[8] = {-1, 1, 0, 0, -1, 1, -1, 1}, dy[8] = {0, 0, -1, 1, -1, -1, 1, 1};
        const Label own = given(x, y);
        if (own == barrier)
            return;
        Label label = own;
        const uint64_t lookedAt = own == 0 ? neighbours_ : looks_;
        for (int i = 0; i < 8 && lookedAt >> i != 0; ++i) {
            const Label other = given(x + dx[i], y + dy[i]);
            if (other != 0 && other != barrier && other != label)
                label = label == 0 ? other : barrier;
        }
        if (label == own)
            return;
        Word& word = row(y)[x];
        setLabel(word, label);
        if (own == 0 && label != barrier)
            queues_.push(heightOf(word), static_cast<Lum32u>(&word - words_));
    }

    /// The lanes of labels other than this one; free pixels and barriers have none.
    static uint64_t others(simd::Vec<Lum16u, 8> labels, Lum32u label)
    {
        return ~laneBits(equal(labels, simd::broadcast<8>(Lum16u{0})) |
                         equal(labels, simd::broadcast<8>(Lum16u{barrier})) |
                         equal(labels, simd::broadcast<8>(static_cast<Lum16u>(label))));
    }

    /// Takes a pixel of the level and labels what is unlabelled beside it.
    [[gnu::flatten]] void flood(int level)
    {
        const Lum32u place = queues_.pop(level);
        prefetchAround(std::min(queues_.guess(level), static_cast<Lum32u>(stride_ * (height_ + 1))));
        Word* const p = words_ + place;
        const Lum32u label = *p >> labelPlace<1, Label>;
        const auto labels = simd::neighbourLabels(p, stride_);
        if (others(labels, label) & looks_) {
            setLabel(*p, barrier);
            return;
        }
        const auto isFree = equal(labels, simd::broadcast<8>(Lum16u{0}));
        for (uint64_t left = laneBits(isFree) & neighbours_; left != 0; left &= left - 1) {
            const int64_t q = place + offsets_[__builtin_ctzll(left)];
            Word& word = words_[q];
            if (others(simd::neighbourLabels(&word, stride_), label) & neighbours_) {
                setLabel(word, barrier);
                continue;
            }
            queues_.push(std::max(level, heightOf(word)), static_cast<Lum32u>(q));
            setLabel(word, label);
        }
    }

    void prefetchAround(int64_t place) const
    {
        simd::prefetch<1>(words_ + std::max<int64_t>(place - stride_, 0));
        simd::prefetch<1>(words_ + place);
        simd::prefetch<1>(words_ + place + stride_ - 1);
    }

    Relief<Lum8u, Label> relief_;
    int64_t width_, height_, stride_;
    uint64_t neighbours_, looks_;  ///< lanes
    int64_t offsets_[8];
    Room room_;
    Word* words_;
    LevelQueues queues_;
};

}  // namespace

template <class Label>
void floodByLevel(Relief<Lum8u, Label> relief, int neighbours, int boundaries, Lum8u* pBuffer)
{
    LevelFlood<Label>(relief, neighbours, boundaries, pBuffer).run();
}

template void floodByLevel(Relief<Lum8u, Lum8u>, int, int, Lum8u*);
template void floodByLevel(Relief<Lum8u, Lum16u>, int, int, Lum8u*);

}  // namespace lumcv
