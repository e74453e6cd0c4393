// A pass of a chamfer distance.
//
// A pixel needs the one before it in its row, so a row by itself is a chain. A pass therefore goes through many rows at
// once, a row in each lane, and each row is a few columns behind the one before it: then what a pixel needs from there
// is known in time. Lane i of the row before moves on to lane i + 1 as the front passes.
#pragma once

#include <utility>

#include "distance/chamfer_steps.hpp"
#include "frame/image.hpp"

namespace lumcv::chamfer {

template <class T>
inline constexpr int waveLanes = sizeof(T) == 1 ? 16 : 8;

template <class T>
using Wave = simd::Vec<T, waveLanes<T>>;

/// Columns by which a row is behind the one before it: a few more than the mask looks ahead, which gives each value
/// time to get from lane to lane.
template <Mask mask>
inline constexpr int lag = mask == Mask::cityBlock                           ? 2
                           : mask == Mask::square || mask == Mask::heavyEdge ? 3
                                                                             : 4;

/// The rows of the forward pass, in its order. Columns count in the order of the pass too.
template <class T>
struct Forward
{
    static constexpr int direction = 1;
    Plane<const Lum8u> src;
    Plane<T> dst;
    LumiSize size;

    const Lum8u* in(int64_t row) const
    {
        return src.row(row);
    }

    T* out(int64_t row) const
    {
        return dst.row(row);
    }

    static Wave<T> load(const Lum8u* p)
    {
        return simd::keepWhere(p, simd::broadcast<waveLanes<T>>(saturation<T>));
    }

    int64_t firstRow() const
    {
        return 0;
    }

    bool isLastRowOfImage(int64_t row) const
    {
        return row == size.height - 1;
    }
};

/// The rows of the backward pass.
template <class T>
struct Backward
{
    static constexpr int direction = -1;
    Plane<T> dst;
    LumiSize size;
    int64_t settledRows;  ///< of the bottom; the pass begins above them

    const T* in(int64_t row) const
    {
        return out(row);
    }

    T* out(int64_t row) const
    {
        return dst.row(size.height - 1 - row);
    }

    static Wave<T> load(const T* p)
    {
        return simd::load<waveLanes<T>>(p);
    }

    int64_t firstRow() const
    {
        return settledRows;
    }

    bool isLastRowOfImage(int64_t row) const
    {
        return row == 0;
    }
};

template <class T>
struct StepWaves
{
    Wave<T> edge, diagonal, knight, straight, slant;
};

/// The values around the front. A lane of `up[i]` is a pixel of the row before, `lag - 1 - i` columns ahead of the
/// lane's own column; one of `upper[i]` is two rows before, 2 - i columns ahead.
template <class T, Mask mask>
struct Front
{
    using V = Wave<T>;
    static constexpr bool is5x5 = mask == Mask::regular || mask == Mask::extended;
    static constexpr int columnsUp = is5x5 ? 6 : lag<mask> + 1;

    V before, beforeThat;
    V up[columnsUp];
    V upper[5];

    explicit Front(V nothing) : before(nothing), beforeThat(nothing)
    {
        for (V& v : up)
            v = nothing;
        for (V& v : upper)
            v = nothing;
    }

    /// Takes the pixels' own values and, for the first lane, the ones that come into sight in the rows before.
    [[gnu::always_inline]] V next(V own, const T* above, const T* aboveThat, const StepWaves<T>& step)
    {
        if constexpr (is5x5) {
            for (int i = 4; i > 0; --i)
                upper[i] = upper[i - 1];
            upper[0] = simd::movedOn(up[4], aboveThat);  // up[5] in a moment
        }
        for (int i = columnsUp - 1; i > 0; --i)
            up[i] = up[i - 1];
        up[0] = simd::movedOn(before, above);

        // a candidate that is not a number stands first, so that it gives way
        V least = simd::min(plus(up[lag<mask> - 1], step.edge), own);
        if constexpr (mask == Mask::square || mask == Mask::heavyEdge)
            least = simd::min(plus(simd::min(up[1], up[3]), step.diagonal), least);
        if constexpr (mask == Mask::heavyEdge)
            least = simd::min(plus(beforeThat, step.straight), least);
        if constexpr (is5x5) {
            least = simd::min(plus(simd::min(up[2], up[4]), step.diagonal), least);
            const V knights = simd::min(simd::min(upper[1], upper[3]), simd::min(up[1], up[5]));
            least = simd::min(plus(knights, step.knight), least);
        }
        if constexpr (mask == Mask::extended) {
            least = simd::min(plus(simd::min(upper[0], upper[4]), step.slant), least);
            least = simd::min(plus(simd::min(upper[2], beforeThat), step.straight), least);
        }
        least = simd::min(plus(before, step.edge), least);
        beforeThat = before;
        before = least;
        return least;
    }
};

/// As many rows as a wave has lanes, or those that are left.
template <Mask mask, class T, class Rows>
class Band
{
  public:
    Band(const Steps<T>& steps, const Rows& rows, int64_t firstRow) : width_(rows.size.width)
    {
        const int64_t left = rows.size.height - firstRow;
        count_ = static_cast<int>(left < lanes ? left : lanes);
        for (int i = 0; i < lanes; ++i) {
            // lanes beyond the last row repeat it; nothing looks at them, and they are stored before it
            const int row = i < count_ ? i : count_ - 1;
            in_[i] = rows.in(firstRow + row);
            out_[i] = rows.out(firstRow + row);
            firstColumn_[i] = direction > 0 ? -lag<mask> * row : width_ - lanes + lag<mask> * row;
        }
        above_ = firstRow > 0 ? rows.out(firstRow - 1) : nullptr;
        aboveThat_ = firstRow > 1 ? rows.out(firstRow - 2) : nullptr;
        T straight[lanes];
        for (int i = 0; i < lanes; ++i)
            straight[i] = mask != Mask::heavyEdge || rows.isLastRowOfImage(firstRow + i) ? steps.straight : outside<T>;
        step_ = {simd::broadcast<lanes>(steps.edge), simd::broadcast<lanes>(steps.diagonal),
                 simd::broadcast<lanes>(steps.knight), simd::load<lanes>(straight),
                 simd::broadcast<lanes>(steps.slant)};
    }

    [[gnu::flatten]] void run()
    {
        Front<T, mask> front(simd::broadcast<lanes>(outside<T>));
        prime(front);
        const int64_t lastEntry = lag<mask> * (count_ - 1), steps = width_ + lastEntry;
        for (int64_t s = 0; s < steps; s += lanes) {
            if (s >= lastEntry && s + lanes + lag<mask> - 2 < width_)
                inner(front, s);
            else
                outer(front, s);
        }
    }

  private:
    using V = Wave<T>;
    using In = std::remove_reference_t<decltype(*std::declval<Rows>().in(0))>;
    using Block = simd::Square<T, waveLanes<T>>;
    static constexpr int lanes = waveLanes<T>;
    static constexpr int direction = Rows::direction;
    static constexpr T nothing_ = outside<T>;

    /// Where a lane's block lies in its row, counted from the left of the image.
    int64_t columnOf(int lane, int64_t s) const
    {
        return firstColumn_[lane] + direction * s;
    }

    /// The place in a block of what the front meets after `step` steps.
    static constexpr int placeOf(int step)
    {
        return direction > 0 ? step : lanes - 1 - step;
    }

    struct Feed
    {
        const T* at;
        int64_t step;
    };

    /// What the first lane sees of a row before it, from column c on.
    Feed feed(const T* row, int64_t c) const
    {
        if (!row)
            return {&nothing_, 0};
        return {row + (direction > 0 ? c : width_ - 1 - c), direction};
    }

    /// The first columns of the rows before, which the first lane has in sight when it sets out.
    void prime(Front<T, mask>& front) const
    {
        const V empty = simd::broadcast<lanes>(nothing_);
        const auto seen = [&](const T* row, int64_t c) {
            const bool exists = row && c >= 0 && c < width_;
            return simd::movedOn(empty, exists ? feed(row, c).at : &nothing_);
        };
        for (int i = 0; i < Front<T, mask>::columnsUp; ++i)
            front.up[i] = seen(above_, lag<mask> - 2 - i);
        for (int i = 0; i < 5; ++i)
            front.upper[i] = seen(aboveThat_, 1 - i);
    }

    /// A block in which all lanes are within the image.
    [[gnu::always_inline]] void inner(Front<T, mask>& front, int64_t s)
    {
        Block block;
        for (int i = 0; i < lanes; ++i)
            block[i] = Rows::load(in_[i] + columnOf(i, s));
        simd::transpose(block);
        Feed above = feed(above_, s + lag<mask> - 1), aboveThat = feed(aboveThat_, s + 2);
        const auto step = [&](int j) {
            V& v = block[placeOf(j)];
            v = front.next(v, above.at + j * above.step, aboveThat.at + j * aboveThat.step, step_);
        };
        [&]<int... j>(std::integer_sequence<int, j...>)
        {
            (step(j), ...);
        }
        (std::make_integer_sequence<int, lanes>{});
        simd::transpose(block);
        for (int i = lanes - 1; i >= 0; --i)
            simd::store(out_[i] + columnOf(i, s), block[i]);
    }

    /// The columns of a lane's block that lie in the image.
    struct Part
    {
        int64_t column;
        int begin, end;

        bool isWhole() const
        {
            return begin == 0 && end == lanes;
        }

        bool isEmpty() const
        {
            return begin >= end;
        }

        int64_t length() const
        {
            return end - begin;
        }
    };

    Part partOf(int lane, int64_t s) const
    {
        const int64_t column = columnOf(lane, s);
        const int64_t end = width_ - column;
        return {column, static_cast<int>(column < 0 ? -column : 0), static_cast<int>(end < lanes ? end : lanes)};
    }

    /// The same for one row before the band.
    void clippedFeed(const T* row, int64_t c, T* values) const
    {
        for (int j = 0; j < lanes; ++j)
            values[j] = row && c + j >= 0 && c + j < width_ ? *feed(row, c + j).at : nothing_;
    }

    /// For each lane 0, or what stands outside where it has not yet come to the image or has left it.
    V away(int64_t s) const
    {
        static constexpr auto table = [] {
            std::array<T, 3 * lanes> values{};
            for (int i = 0; i < lanes; ++i)
                values[i] = values[2 * lanes + i] = outside<T>;
            return values;
        }();
        const auto lanesThat = [](int64_t steps) {
            const int64_t count = steps < 0 ? 0 : steps / lag<mask> + 1;
            return count < lanes ? count : int64_t{lanes};
        };
        return simd::max(simd::load<lanes>(table.data() + 2 * lanes - lanesThat(s)),
                         simd::load<lanes>(table.data() + lanes - lanesThat(s - width_)));
    }

    /// A block in which some lanes have not yet come to the image, or have left it.
    [[gnu::noinline, gnu::flatten]] void outer(Front<T, mask>& front, int64_t s)
    {
        Block block;
        for (int i = 0; i < lanes; ++i) {
            const Part part = partOf(i, s);
            const In* const from = in_[i] + part.column;
            if (part.isWhole())
                block[i] = Rows::load(from);
            else {
                std::remove_const_t<In> clipped[16] = {};  // as long as the longest copy of a few bytes
                if (!part.isEmpty())
                    simd::copyFew(clipped + part.begin, from + part.begin, part.length() * int64_t{sizeof(In)});
                block[i] = Rows::load(clipped);
            }
        }
        simd::transpose(block);
        T above[lanes], aboveThat[lanes];
        clippedFeed(above_, s + lag<mask> - 1, above);
        clippedFeed(aboveThat_, s + 2, aboveThat);
        for (int j = 0; j < lanes; ++j) {
            V& v = block[placeOf(j)];
            v = simd::max(front.next(v, above + j, aboveThat + j, step_), away(s + j));
            front.before = v;
        }
        simd::transpose(block);
        for (int i = count_ - 1; i >= 0; --i) {
            const Part part = partOf(i, s);
            T* const to = out_[i] + part.column;
            if (part.isWhole())
                simd::store(to, block[i]);
            else if (!part.isEmpty()) {
                T clipped[16];
                simd::store(clipped, block[i]);
                simd::copyFew(to + part.begin, clipped + part.begin, part.length() * int64_t{sizeof(T)});
            }
        }
    }

    int64_t width_;
    int count_;
    const In* in_[lanes];
    T* out_[lanes];
    int64_t firstColumn_[lanes];
    const T* above_;
    const T* aboveThat_;
    StepWaves<T> step_;
};

template <Mask mask, class T, class Rows>
void pass(const Steps<T>& steps, const Rows& rows)
{
    for (int64_t row = rows.firstRow(); row < rows.size.height; row += waveLanes<T>)
        Band<mask, T, Rows>(steps, rows, row).run();
}

}  // namespace lumcv::chamfer
