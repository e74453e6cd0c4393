// Watershed, sweep by cost: paths from the seeds, lengthened row by row, to and fro, until nothing changes. After two
// sweeps over everything only pixels are visited of which a neighbour has changed.
#include <algorithm>
#include <cstring>
#include <limits>

#include "frame/room.hpp"
#include "frame/rounding.hpp"
#include "segment/sweep_costs.hpp"
#include "segment/watershed.hpp"

namespace lumcv {
namespace {

/// Who must visit a pixel; bits of its pending byte.
enum Pending : Lum8u
{
    downRightward = 1,
    downLeftward = 2,
    upRightward = 4,
    upLeftward = 8,
    changed = 16,  ///< during the visits of its row
    closed = 128   ///< a seed or a barrier, which no path enters
};

/// The same byte eight times.
constexpr uint64_t eightTimes(Lum8u byte)
{
    return 0x0101010101010101 * byte;
}

/// Up to eight pending bytes, the first one lowest.
inline uint64_t loadBytes(const Lum8u* p, int64_t count)
{
    uint64_t bytes = 0;
    if (count >= 8)
        std::memcpy(&bytes, p, 8);
    else
        for (int64_t i = 0; i < count; ++i)
            bytes |= static_cast<uint64_t>(p[i]) << 8 * i;
    return bytes;
}

inline void storeBytes(Lum8u* p, int64_t count, uint64_t bytes)
{
    if (count >= 8)
        std::memcpy(p, &bytes, 8);
    else
        for (int64_t i = 0; i < count; ++i)
            p[i] = static_cast<Lum8u>(bytes >> 8 * i);
}

template <class Costs, class Label, int norm>
class Sweep
{
  public:
    using Cost = typename Costs::Cost;
    using Height = typename Costs::Height;

    static constexpr bool isEight = norm == 0 || norm == 2;
    static constexpr bool isPaired = norm == 3;
    static constexpr Cost edgeStep = norm == 2 ? 11 : 1;
    static constexpr Cost diagonalStep = norm == 2 ? 15 : 1;

    Sweep(Relief<Height, Label> relief, Lum8u* pBuffer)
        : relief_(relief),
          width_(relief.size.width),
          height_(relief.size.height),
          room_(pBuffer),
          costs_(room_.take<Cost>(width_ * height_)),
          pending_(room_.take<Lum8u>(width_ * height_)),
          isDirty_(room_.take<Lum8u>(height_))
    {
        for (int64_t y = 0; y < height_; ++y) {
            const Row row = rowAt(y);
            for (int64_t x = 0; x < width_; ++x) {
                const Label label = row.labels[x];
                const bool isSource = label != 0 && label != std::numeric_limits<Label>::max();
                row.costs[x] = isSource ? Costs::ofSeed(row.heights[x]) : Costs::unlabelled;
                row.pending[x] = label != 0 ? closed : 0;
            }
        }
    }

    void run()
    {
        sweep<true, Visits::allUnmarked>();
        if (!sweep<false, Visits::all>())
            return;
        while (sweep<true, Visits::pending>() && sweep<false, Visits::pending>()) {
        }
    }

  private:
    enum class Visits
    {
        allUnmarked,  ///< the first sweep: the second one visits all that it would mark
        all,
        pending
    };

    struct Row
    {
        const Height* heights;
        Label* labels;
        Cost* costs;
        Lum8u* pending;
    };

    Row rowAt(int64_t y) const
    {
        return {relief_.height.row(y), relief_.marker.row(y), costs_ + y * width_, pending_ + y * width_};
    }

    template <bool isDown, Visits visits>
    bool sweep()
    {
        bool isChanged = false;
        for (int64_t i = 0; i < height_; ++i) {
            const int64_t y = isDown ? i : height_ - 1 - i;
            if (visits == Visits::pending && !isDirty_[y])
                continue;
            const Row row = rowAt(y);
            const bool isRowChanged = i == 0 ? visitRow<isDown, visits, false>(row, row)
                                             : visitRow<isDown, visits, true>(row, rowAt(isDown ? y - 1 : y + 1));
            isDirty_[y] = isRowChanged;
            if (!isRowChanged)
                continue;
            isChanged = true;
            isDirty_[std::max<int64_t>(y - 1, 0)] = 1;
            isDirty_[std::min(y + 1, height_ - 1)] = 1;
            if (visits != Visits::allUnmarked)
                markNeighbours<isDown>(y);
        }
        return isChanged;
    }

    template <bool isDown, Visits visits, bool hasBefore>
    bool visitRow(Row row, Row before)
    {
        const bool isChanged = visitRightward < visits, hasBefore,
                   isDown ? downRightward : upRightward > (row, before, width_);
        return visitLeftward < visits, hasBefore,
               isDown ? downLeftward : upLeftward > (row, before, width_) || isChanged;
    }

    template <Visits visits, bool hasBefore, Pending bit>
    [[gnu::flatten]] static bool visitRightward(Row row, Row before, int64_t width)
    {
        bool isChanged = false, follows = false;
        for (int64_t x = 0; x < width; ++x) {
            if (visits == Visits::pending && !follows) {
                const uint64_t due = loadBytes(row.pending + x, width - x) & eightTimes(bit);
                if (due == 0) {
                    x += 7;
                    continue;
                }
                x += __builtin_ctzll(due) / 8;
            }
            follows = visit<visits, bit, hasBefore>(row, before, x, x > 0, x - 1, width);
            isChanged |= follows;
        }
        return isChanged;
    }

    /// Costs of the row before have been looked at in the scan to the right; only pairs have to be again.
    template <Visits visits, bool hasBefore, Pending bit>
    [[gnu::flatten]] static bool visitLeftward(Row row, Row before, int64_t width)
    {
        constexpr bool looksBefore = hasBefore && isPaired;
        bool isChanged = false, follows = false;
        for (int64_t x = width - 2; x >= 0; --x) {
            if (visits == Visits::pending && !follows) {
                const int64_t count = std::min<int64_t>(x + 1, 8);
                const uint64_t due = loadBytes(row.pending + x + 1 - count, count) & eightTimes(bit);
                if (due == 0) {
                    x -= 7;
                    continue;
                }
                x -= count - 8 + __builtin_clzll(due) / 8;
            }
            follows = visit<visits, bit, looksBefore>(row, before, x, true, x + 1, width);
            isChanged |= follows;
        }
        return isChanged;
    }

    /// Whether the pixel has changed.
    template <Visits visits, Pending bit, bool hasBefore>
    static bool visit(Row row, Row before, int64_t x, bool hasAlong, int64_t along, int64_t width)
    {
        const Lum8u pending = row.pending[x] & static_cast<Lum8u>(~bit);
        if (pending & closed) {
            row.pending[x] = pending;
            return false;
        }
        const Cost own = Costs::of(row.heights[x]);
        const Cost former = row.costs[x];
        Cost cost = former;
        Label label = row.labels[x];
        const auto offer = [&](Cost candidate, Label from) {
            candidate = std::max(own, candidate);
            if (candidate < cost) {
                cost = candidate;
                label = from;
            }
        };
        if constexpr (isPaired) {
            const Cost a = hasBefore ? before.costs[x] : Costs::unlabelled;
            const Cost b = hasAlong ? row.costs[along] : Costs::unlabelled;
            const Cost lesser = std::min(a, b), greater = std::max(a, b);
            if (lesser < former)
                offer(greater == Costs::unlabelled ? Costs::afterPixel(lesser) : Costs::afterBoth(lesser, greater),
                      a < b ? before.labels[x] : row.labels[along]);
        } else {
            if (hasBefore) {
                if (isEight && x > 0)
                    offer(before.costs[x - 1] + diagonalStep, before.labels[x - 1]);
                offer(before.costs[x] + edgeStep, before.labels[x]);
                if (isEight && x + 1 < width)
                    offer(before.costs[x + 1] + diagonalStep, before.labels[x + 1]);
            }
            if (hasAlong)
                offer(row.costs[along] + edgeStep, row.labels[along]);
        }
        if (cost == former) {
            row.pending[x] = pending;
            return false;
        }
        row.costs[x] = cost;
        row.labels[x] = label;
        row.pending[x] = visits == Visits::allUnmarked ? pending : pending | changed;
        return true;
    }

    /// What the pixels of a row that have changed ask of those beside them: left and right of them in the other
    /// direction, above and below in the one that comes from here.
    template <bool isDown>
    void markNeighbours(int64_t y)
    {
        constexpr int toRightward = isDown ? 2 : 4;  // places from the bit of a change to that of a visit
        constexpr int toLeftward = isDown ? 1 : 3;
        static_assert(changed >> (isDown ? 2 : 4) == (isDown ? upRightward : downRightward));
        static_assert(changed >> (isDown ? 1 : 3) == (isDown ? upLeftward : downLeftward));
        Lum8u* const row = pending_ + y * width_;
        uint64_t carried = 0;
        for (int64_t x = 0; x < width_; x += 8) {
            const int64_t count = std::min<int64_t>(width_ - x, 8);
            const uint64_t bytes = loadBytes(row + x, count);
            const uint64_t here = bytes & eightTimes(changed);
            const uint64_t next = x + 8 < width_ ? row[x + 8] & changed : 0;
            if ((here | carried | next) == 0)
                continue;
            const uint64_t leftOf = here << 8 | carried, rightOf = here >> 8 | next << 56;
            carried = here >> 56;
            storeBytes(row + x, count, (bytes ^ here) | leftOf >> toRightward | rightOf >> toLeftward);
            const uint64_t near = isEight ? here | leftOf | rightOf : here;
            const auto add = [x, count](Lum8u* p, uint64_t marks) {
                storeBytes(p + x, count, loadBytes(p + x, count) | marks);
            };
            if (y > 0)
                add(row - width_, near >> 2 | near >> 1);
            if (y + 1 < height_)
                add(row + width_, near >> 4 | near >> 3);
        }
    }

    Relief<Height, Label> relief_;
    int64_t width_, height_;
    Room room_;
    Cost* costs_;
    Lum8u* pending_;
    Lum8u* isDirty_;
};

template <class Costs, class Label>
void sweepIn(Relief<typename Costs::Height, Label> relief, Lum32u norm, Lum8u* pBuffer)
{
    if (norm == 0)
        Sweep<Costs, Label, 0>(relief, pBuffer).run();
    else if (norm == 1)
        Sweep<Costs, Label, 1>(relief, pBuffer).run();
    else if (norm == 2)
        Sweep<Costs, Label, 2>(relief, pBuffer).run();
    else
        Sweep<Costs, Label, 3>(relief, pBuffer).run();
}

}  // namespace

template <class Height, class Label>
void sweepByCost(Relief<Height, Label> relief, Lum32u norm, Lum8u* pBuffer)
{
    if constexpr (sizeof(Height) == 1)
        sweepIn<ByteHeightCosts>(relief, norm, pBuffer);
    else
        sweepIn<FloatHeightCosts>(relief, norm, pBuffer);
}

template void sweepByCost(Relief<Lum8u, Lum8u>, Lum32u, Lum8u*);
template void sweepByCost(Relief<Lum8u, Lum16u>, Lum32u, Lum8u*);
template void sweepByCost(Relief<Lum32f, Lum16u>, Lum32u, Lum8u*);

}  // namespace lumcv
