// The vertical half of a separable filter: a ring that holds as many filtered rows as the column kernel has taps.
#pragma once

#include "frame/border.hpp"

namespace lumcv {

/// Rows in scratch. Row r of the extended image, counted from the topmost one that is needed, lies in slot r mod
/// `slots`.
template <class Element>
struct RingOf
{
    Element* rows;
    int64_t pitch;  ///< elements from one slot to the next
    int64_t slots;

    Element* slot(int64_t index) const
    {
        return rows + index * pitch;
    }

    /// The row j behind the one in slot `first`, in the order of the image; both below `slots`.
    Element* rowBehind(int64_t first, int64_t j) const
    {
        return slot(first + j < slots ? first + j : first + j - slots);
    }
};

using RowRing = RingOf<Lum32f>;

/// The rows of a ring of `count` slots in the order of the image; their addresses stay in registers.
template <int count>
struct RingRows
{
    Lum32f* rows[count];

    RingRows(const RowRing& ring, int64_t first)
    {
        for (int64_t j = 0; j < count; ++j)
            rows[j] = ring.rowBehind(first, j);
    }

    [[gnu::always_inline]] Lum32f* operator[](int64_t j) const
    {
        return rows[j];
    }
};

/// One move of the ring: which row comes in, and which output row it completes.
struct RingStep
{
    SourceRow row;
    int64_t slot;       ///< where it goes
    int64_t output;     ///< the output row for which the ring now holds every tap, or negative while it fills
    int64_t firstSlot;  ///< the slot of that output row's first tap
};

/// Moves a ring of `slots` rows down the image, calling advance(RingStep) for each row that comes in. `before` is the
/// number of taps above the one that falls on the output row.
template <class Advance>
inline void walkRows(int64_t slots, int64_t height, int64_t before, Border border, Advance advance)
{
    const int64_t after = slots - 1 - before;
    int64_t slot = 0;
    for (int64_t r = -before; r < height + after; ++r) {
        const int64_t next = slot + 1 == slots ? 0 : slot + 1;
        advance(RingStep{sourceRow(r, height, border), slot, r - after, next});
        slot = next;
    }
}

}  // namespace lumcv
