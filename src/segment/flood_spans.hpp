// How a flood fill goes through an image: spans of rows on a stack, each of which looks for others above and below it.
#pragma once

#include <algorithm>

#include "lumcv/types.h"

namespace lumcv::flood {

enum class Neighbours
{
    four,
    eight
};

/// Columns [left, right] of row y, all of which have been taken. The span's parent is in the row y + direction; an
/// empty parent begins one behind its end.
struct Span
{
    int64_t y, left, right, parentLeft, parentRight;
    int direction;
};

/// What has been taken.
struct Region
{
    int64_t area, left, right, top, bottom;
};

/// Columns of a row that have been taken. None, if the last one is before the first.
struct Ends
{
    int64_t left, right;

    static constexpr Ends none()
    {
        return {0, -1};
    }

    bool areNone() const
    {
        return right < left;
    }
};

/// Takes what is connected with the first span. `Rows` looks for pixels and takes spans:
/// - find(span, y, x, end, isFirst): takes the span of the first pixel of [x, end) in row y, beside the span, that
///   passes; unless isFirst, the pixel before x is known not to pass beside the one behind it
/// - finish(span): all around the span has been looked at
/// `Stack` holds the spans that have not been dealt with:
/// - push(span)
/// - pop(span): the next one in place of the one that has been dealt with; false if that was the last one
template <Neighbours neighbours, class Rows, class Stack>
[[gnu::always_inline]] inline void explore(Span span, LumiSize size, Rows& rows, Stack& stack, Region& region)
{
    constexpr int64_t widening = neighbours == Neighbours::eight;
    const auto scan = [&](int64_t y, int64_t first, int64_t last, int direction) {
        const int64_t begin = std::max<int64_t>(first, 0);
        const int64_t end = std::min<int64_t>(last, size.width - 1) + 1;
        for (int64_t x = begin; x < end;) {
            const Ends ends = rows.find(span, y, x, end, x == begin);
            if (ends.areNone())
                break;
            stack.push({y, ends.left, ends.right, span.left, span.right, direction});
            x = ends.right + 2;  // the pixel behind the span does not pass
        }
    };
    region.left = span.left;
    region.right = span.right;
    region.top = region.bottom = span.y;
    do {
        region.left = std::min(region.left, span.left);
        region.right = std::max(region.right, span.right);
        region.top = std::min(region.top, span.y);
        region.bottom = std::max(region.bottom, span.y);
        const int64_t left = span.left - widening, right = span.right + widening;
        if (const int64_t y = span.y - span.direction; y >= 0 && y < size.height)
            scan(y, left, right, span.direction);
        scan(span.y + span.direction, left, span.parentLeft - 1, -span.direction);
        scan(span.y + span.direction, span.parentRight + 1, right, -span.direction);
        rows.finish(span);
    } while (stack.pop(span));
}

/// The first span, whose parent is nothing: the row y + direction, which exists if there are two, is scanned whole.
inline Span firstSpan(int64_t y, int64_t left, int64_t right, LumiSize size)
{
    return {y, left, right, right + 1, right, y == size.height - 1 ? -1 : 1};
}

/// Entries of a stack at any byte address.
template <class Entry>
class Entries
{
  public:
    explicit Entries(Lum8u* buffer) : first_(buffer) {}

    void set(int64_t i, Entry entry)
    {
        __builtin_memcpy(first_ + i * int64_t{sizeof entry}, &entry, sizeof entry);
    }

    Entry get(int64_t i) const
    {
        Entry entry;
        __builtin_memcpy(&entry, first_ + i * int64_t{sizeof entry}, sizeof entry);
        return entry;
    }

  private:
    Lum8u* first_;
};

/// A stack of spans without their parents, for fills that take no pixel twice: where the parent is not known, its
/// columns are scanned too, and nothing is found there. Of the span that was put there last it is known.
template <Neighbours neighbours, class Entry>
class OrphanStack
{
  public:
    explicit OrphanStack(Lum8u* buffer) : entries_(buffer) {}

    void push(const Span& span)
    {
        entries_.set(count_++, Entry(span));
        isNew_ = true;
    }

    bool pop(Span& span)
    {
        if (count_ == 0)
            return false;
        Span next = entries_.get(--count_).span();
        next.parentLeft = isNew_ ? span.left : next.right + 1 + widening;
        next.parentRight = isNew_ ? span.right : next.right + widening;
        span = next;
        isNew_ = false;
        return true;
    }

  private:
    static constexpr int64_t widening = neighbours == Neighbours::eight;

    Entries<Entry> entries_;
    int64_t count_ = 0;
    bool isNew_ = false;
};

}  // namespace lumcv::flood
