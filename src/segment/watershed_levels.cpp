// Watershed, flood by level: labels flood the image in the order of its heights.
#include <limits>

#include "frame/room.hpp"
#include "segment/level_queues.hpp"
#include "segment/watershed.hpp"

namespace lumcv {
namespace {

template <class Label>
class LevelFlood
{
  public:
    static constexpr Label barrier = std::numeric_limits<Label>::max();

    LevelFlood(Relief<Lum8u, Label> relief, int neighbours, int boundaries, Lum8u* pBuffer)
        : relief_(relief),
          width_(relief.size.width),
          height_(relief.size.height),
          neighbours_(neighbours),
          boundaries_(boundaries),
          room_(pBuffer),
          work_(room_.take<Label>((width_ + 2) * (height_ + 2))),
          queues_(room_.take<Lum32u>((width_ + 2) * (height_ + 2)))
    {
    }

    void run()
    {
        const int64_t w = width_ + 2;
        std::fill_n(work_, w * (height_ + 2), barrier);
        for (int64_t y = 0; y < height_; ++y)
            std::copy_n(relief_.marker.row(y), width_, work_ + (y + 1) * w + 1);
        const int64_t deltas[8] = {-1, 1, -w, w, -w - 1, -w + 1, w - 1, w + 1};
        const auto given = [this](int64_t y, int64_t x) {
            return x < 0 || y < 0 || x >= width_ || y >= height_ ? barrier : relief_.marker.row(y)[x];
        };
        const int dx[8] = {-1, 1, 0, 0, -1, 1, -1, 1}, dy[8] = {0, 0, -1, 1, -1, -1, 1, 1};
        for (int64_t y = 0; y < height_; ++y)
            for (int64_t x = 0; x < width_; ++x) {
                const int64_t p = (y + 1) * w + x + 1;
                const Label own = given(y, x);
                if (own == 0) {
                    Label label = 0;
                    for (int i = 0; i < neighbours_; ++i)
                        label = joined(label, given(y + dy[i], x + dx[i]));
                    if (label == 0)
                        continue;
                    work_[p] = label;
                    if (label != barrier)
                        queues_.push(height(p), static_cast<Lum32u>(p));
                } else if (own != barrier) {
                    for (int i = 0; i < boundaries_; ++i)
                        if (isOther(own, given(y + dy[i], x + dx[i])))
                            work_[p] = barrier;
                }
            }
        int level = queues_.nextLevel(0);
        if (level == LevelQueues::levels)
            return;
        while ((level = queues_.nextLevel(level)) < LevelQueues::levels) {
            const int64_t p = queues_.pop(level);
            bool isBoundary = false;
            for (int i = 0; i < boundaries_; ++i)
                isBoundary |= isOther(work_[p], work_[p + deltas[i]]);
            if (isBoundary) {
                work_[p] = barrier;
                continue;
            }
            for (int i = 0; i < neighbours_; ++i) {
                const int64_t q = p + deltas[i];
                if (work_[q] != 0)
                    continue;
                Label label = 0;
                for (int k = 0; k < neighbours_; ++k)
                    label = joined(label, work_[q + deltas[k]]);
                work_[q] = label;
                if (label != barrier)
                    queues_.push(std::max(level, height(q)), static_cast<Lum32u>(q));
            }
        }
        for (int64_t y = 0; y < height_; ++y)
            std::copy_n(work_ + (y + 1) * w + 1, width_, relief_.marker.row(y));
    }

  private:
    static bool isOther(Label own, Label other)
    {
        return other != 0 && other != barrier && other != own;
    }

    static Label joined(Label label, Label other)
    {
        return other == 0 || other == barrier || other == label ? label : label == 0 ? other : barrier;
    }

    int height(int64_t p) const
    {
        return relief_.height.row(p / (width_ + 2) - 1)[p % (width_ + 2) - 1];
    }

    Relief<Lum8u, Label> relief_;
    int64_t width_, height_;
    int neighbours_, boundaries_;
    Room room_;
    Label* work_;
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
