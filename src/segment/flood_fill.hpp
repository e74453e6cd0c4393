// The plain flood fill: all pixels of the seed's value that are connected with it.
#pragma once

#include "segment/flood_painted.hpp"
#include "segment/flood_tests.hpp"

namespace lumcv::flood {

// The scratch has 6 * width * height + 32 bytes. A span is a run of pixels of the seed's value that ends at other
// pixels or at the image's edge. Runs of a row have a pixel between them, so it has (width + 1) / 2 of them at most,
// and each one is found once, for it is painted at once with another value. So height * (width + 1) / 2 entries have
// room for all runs there are, which is more than there can ever be on the stack:
//
// - entries of 8 bytes: 4 * height * (width + 1) <= 6 * width * height from a width of 2 on. In an image of one column
//   there are never more than two, one for each side of the first span; they have room in the 32 bytes.
// - entries of 11 bytes: 5.5 * height * (width + 1) <= 6 * width * height from a width of 11 on.

/// One number, so that it is loaded as it was stored.
class ShortRowEntry
{
  public:
    static constexpr int64_t widest = 65536;

    ShortRowEntry() = default;

    explicit ShortRowEntry(const Span& s)
        : bits_(static_cast<uint64_t>(s.y << 33 | int64_t{s.direction > 0} << 32 | s.right << 16 | s.left))
    {
    }

    Span span() const
    {
        return {static_cast<int64_t>(bits_ >> 33), static_cast<Lum16u>(bits_), static_cast<Lum16u>(bits_ >> 16), 0, 0,
                bits_ >> 32 & 1 ? 1 : -1};
    }

  private:
    uint64_t bits_;
};
static_assert(sizeof(ShortRowEntry) == 8);

/// Rows are so long here that 2 to the 23 of them do not exist in any memory.
struct [[gnu::packed]] LongRowEntry
{
    Lum32u left, right;
    Lum16u place;
    Lum8u placeAbove;

    LongRowEntry() = default;

    explicit LongRowEntry(const Span& s) : left(static_cast<Lum32u>(s.left)), right(static_cast<Lum32u>(s.right))
    {
        const int64_t both = 2 * s.y + (s.direction > 0);
        place = static_cast<Lum16u>(both);
        placeAbove = static_cast<Lum8u>(both >> 16);
    }

    Span span() const
    {
        const int64_t both = int64_t{placeAbove} << 16 | place;
        return {both / 2, left, right, 0, 0, both % 2 ? 1 : -1};
    }
};
static_assert(sizeof(LongRowEntry) == 11);

template <class Entry, Neighbours neighbours, int channels, class T>
[[gnu::flatten, gnu::noinline]] Region fillWith(Plane<T> image, LumiSize size, LumiPoint seed, const T* value,
                                                const T* newValue, Lum8u* buffer)
{
    PaintedRows<T, channels, Equal<T, channels>> rows(image, size.width, Equal<T, channels>(value), newValue);
    OrphanStack<neighbours, Entry> stack(buffer);
    Region region;
    const auto [left, right] = rows.takeSeed(seed.y, seed.x);
    if (size.height == 1)
        region = {0, left, right, 0, 0};
    else
        explore<neighbours>(firstSpan(seed.y, left, right, size), size, rows, stack, region);
    region.area = rows.area();
    return region;
}

/// Paints the pixels of the value of the seed, which lies in the image, with a new value, which differs. The seed
/// itself is painted whatever it is. `buffer` has 6 * width * height + 32 bytes at any address.
template <Neighbours neighbours, int channels, class T>
Region fillConnected(Plane<T> image, LumiSize size, LumiPoint seed, const T* value, const T* newValue, Lum8u* buffer)
{
    if (size.width <= ShortRowEntry::widest)
        return fillWith<ShortRowEntry, neighbours, channels>(image, size, seed, value, newValue, buffer);
    return fillWith<LongRowEntry, neighbours, channels>(image, size, seed, value, newValue, buffer);
}

}  // namespace lumcv::flood
