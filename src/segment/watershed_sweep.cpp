// Watershed, sweep by cost: paths from the seeds, lengthened row by row, to and fro, until nothing changes. After two
// sweeps over everything only pixels are visited of which a neighbour has changed.
#include <algorithm>

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
            const Height* const height = relief_.height.row(y);
            const Label* const labels = relief_.marker.row(y);
            for (int64_t x = 0; x < width_; ++x) {
                const bool isSource = labels[x] != 0 && labels[x] != std::numeric_limits<Label>::max();
                costs(y)[x] = isSource ? Costs::ofSeed(height[x]) : Costs::unlabelled;
                pending(y)[x] = labels[x] != 0 ? closed : 0;
            }
        }
    }

    void run()
    {
        sweep<true, true>();
        if (!sweep<false, true>())
            return;
        while (sweep<true, false>() && sweep<false, false>()) {
        }
    }

  private:
    Cost* costs(int64_t y) const
    {
        return costs_ + y * width_;
    }

    Lum8u* pending(int64_t y) const
    {
        return pending_ + y * width_;
    }

    template <bool isDown, bool isWhole>
    bool sweep()
    {
        bool isChanged = false;
        for (int64_t i = 0; i < height_; ++i) {
            const int64_t y = isDown ? i : height_ - 1 - i;
            if (!isWhole && !isDirty_[y])
                continue;
            const bool isRowChanged = visitRow<isDown, isWhole>(y);
            isDirty_[y] = isRowChanged;
            if (isRowChanged) {
                isChanged = true;
                isDirty_[std::max<int64_t>(y - 1, 0)] = 1;
                isDirty_[std::min(y + 1, height_ - 1)] = 1;
            }
        }
        return isChanged;
    }

    template <bool isDown, bool isWhole>
    bool visitRow(int64_t y)
    {
        const int64_t before = isDown ? y - 1 : y + 1;
        const bool hasBefore = before >= 0 && before < height_;
        Lum8u* const bits = pending(y);
        bool isChanged = false, follows = false;
        const auto visitIfDue = [&](int64_t x, int64_t along, Pending bit) {
            if (!isWhole && !follows && !(bits[x] & bit))
                return;
            bits[x] &= static_cast<Lum8u>(~bit);
            follows = visit(x, y, before, hasBefore, along);
            isChanged |= follows;
            if (follows)
                mark<isDown>(x, y);
        };
        for (int64_t x = 0; x < width_; ++x)
            visitIfDue(x, x - 1, isDown ? downRightward : upRightward);
        follows = false;
        for (int64_t x = width_ - 2; x >= 0; --x)
            visitIfDue(x, x + 1, isDown ? downLeftward : upLeftward);
        return isChanged;
    }

    bool visit(int64_t x, int64_t y, int64_t before, bool hasBefore, int64_t along)
    {
        if (pending(y)[x] & closed)
            return false;
        Cost& cost = costs(y)[x];
        Label& label = relief_.marker.row(y)[x];
        const Cost own = Costs::of(relief_.height.row(y)[x]);
        bool isChanged = false;
        const auto offer = [&](Cost candidate, Label from) {
            candidate = std::max(own, candidate);
            if (candidate < cost) {
                cost = candidate;
                label = from;
                isChanged = true;
            }
        };
        const Cost a = hasBefore ? costs(before)[x] : Costs::unlabelled;
        const Cost b = along >= 0 ? costs(y)[along] : Costs::unlabelled;
        if constexpr (isPaired) {
            const Cost lesser = std::min(a, b), greater = std::max(a, b);
            if (lesser == Costs::unlabelled)
                return false;
            const Cost candidate =
                greater == Costs::unlabelled ? Costs::afterPixel(lesser) : Costs::afterBoth(lesser, greater);
            offer(candidate, a < b ? relief_.marker.row(before)[x] : relief_.marker.row(y)[along]);
        } else {
            if (hasBefore) {
                const Cost* const c = costs(before);
                const Label* const labels = relief_.marker.row(before);
                if (isEight && x > 0)
                    offer(c[x - 1] + diagonalStep, labels[x - 1]);
                offer(c[x] + edgeStep, labels[x]);
                if (isEight && x + 1 < width_)
                    offer(c[x + 1] + diagonalStep, labels[x + 1]);
            }
            if (along >= 0)
                offer(b + edgeStep, relief_.marker.row(y)[along]);
        }
        return isChanged;
    }

    template <bool isDown>
    void mark(int64_t x, int64_t y)
    {
        if (x > 0)
            pending(y)[x - 1] |= isDown ? upLeftward : downLeftward;
        if (x + 1 < width_)
            pending(y)[x + 1] |= isDown ? upRightward : downRightward;
        const int64_t first = isEight ? std::max<int64_t>(x - 1, 0) : x;
        const int64_t last = isEight ? std::min(x + 1, width_ - 1) : x;
        for (int64_t i = first; i <= last; ++i) {
            if (y > 0)
                pending(y - 1)[i] |= upRightward | upLeftward;
            if (y + 1 < height_)
                pending(y + 1)[i] |= downRightward | downLeftward;
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
