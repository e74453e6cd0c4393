// The list of the lines with the most votes, and the search for peaks in the votes of an angle.
#pragma once

#include <algorithm>

#include "feature/hough_plane.hpp"

namespace lumcv::hough {

struct Line
{
    Lum32s votes, angle, cell;
};

/// More votes; of as many, the one that is found first, since angles and cells are searched in order.
constexpr bool standsBefore(const Line& a, const Line& b)
{
    if (a.votes != b.votes)
        return a.votes > b.votes;
    return a.angle != b.angle ? a.angle < b.angle : a.cell < b.cell;
}

/// Keeps the first lines of the order: a heap whose top is the last of them, until it is sorted.
class BestLines
{
  public:
    BestLines(Line* lines, Lum32s room) : lines_(lines), room_(room) {}

    /// A line enters the list only if it has more votes.
    Lum32s leastVotes() const
    {
        return count_ == room_ ? lines_[0].votes : 0;
    }

    void add(const Line& line)
    {
        if (count_ == room_) {
            if (!standsBefore(line, lines_[0]))
                return;
            std::pop_heap(lines_, lines_ + count_, standsBefore);
            --count_;
        }
        lines_[count_++] = line;
        std::push_heap(lines_, lines_ + count_, standsBefore);
    }

    void sort()
    {
        std::sort_heap(lines_, lines_ + count_, standsBefore);
    }

    const Line* begin() const
    {
        return lines_;
    }

    const Line* end() const
    {
        return lines_ + count_;
    }

    Lum32s count() const
    {
        return count_;
    }

  private:
    Line* lines_;
    Lum32s room_;
    Lum32s count_ = 0;
};

/// The votes of an angle and of those before and behind it. There is a cell more at each end.
struct Neighbours
{
    const Lum32s* before;
    const Lum32s* votes;
    const Lum32s* behind;

    bool isPeak(int64_t cell) const
    {
        const Lum32s a = votes[cell];
        return a > votes[cell - 1] && a >= votes[cell + 1] && a > before[cell] && a >= behind[cell];
    }
};

/// Adds the peaks among the cells [begin, end) of an angle that have more than `threshold` votes.
[[gnu::flatten, gnu::noinline]] inline void addPeaks(const Neighbours& neighbours, Lum32s angle, int64_t begin,
                                                     int64_t end, Lum32s threshold, BestLines& lines)
{
    const Lum32s* const votes = neighbours.votes;
    const Lum32s least = std::max(threshold, lines.leastVotes());
    simd::eachOnce<simd::restLanes>(begin, end, [&, votes, least](int64_t x, auto lanes) {
        const auto above = simd::greater(simd::load<lanes>(votes + x), simd::broadcast<lanes>(least));
        if (!simd::any(above))
            return;
        for (uint64_t bits = simd::laneBits(above); bits; bits &= bits - 1) {
            const int64_t cell = x + __builtin_ctzll(bits);
            if (neighbours.isPeak(cell))
                lines.add({votes[cell], angle, static_cast<Lum32s>(cell)});
        }
    });
}

}  // namespace lumcv::hough
