// Dilation and erosion by a rectangle: windows along each row, then across the rows.
//
// Rectangles of 3x3 and 5x5 advance by as many rows as two windows share; what those rows have in common is carried
// from step to step. For others a ring holds rows of windows, from which a block of output rows is combined: the rows
// that all of them see are taken together once, and what each sees above and below is added step by step.
#include <algorithm>

#include "morph/area.hpp"
#include "morph/morph_sizes.hpp"
#include "simd/successive.hpp"

namespace lumcv {
namespace {

/// Columns are worked through in bands of this many bytes, so that carried rows and rings stay in the first-level
/// cache.
constexpr int64_t cacheBytes = 24 * 1024;

/// A ring that would leave bands narrower than this may be larger: what a row costs beside its pixels, and what
/// processors fetch ahead in vain, is more than a ring in the second-level cache.
constexpr int64_t leastBandBytes = 1024;

/// Rows of the image are asked for so early: a ring is not to be driven out of the first-level cache by more of them.
constexpr int64_t imageRowsAhead = 2;

/// The elements of a cache line.
template <class T>
inline constexpr int lineLanes = 64 / static_cast<int>(sizeof(T));

/// `count` windows at the given distances. What lies `ahead` bytes from them is asked for, if anything does.
template <int count, bool asksAhead, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinWindows(const T* from, const int64_t (&distances)[4], T* to, int64_t n,
                                                 int64_t ahead)
{
    const int64_t d1 = distances[1], d2 = distances[2], d3 = distances[3];
    eachInPlace<lanesIn<T, 4>>(
        n,
        [=](int64_t x, auto lanes) {
            if constexpr (asksAhead && lanes > 1)
                simd::prefetch<lanes>(rowAt(from + x, ahead, 1));
            auto extreme = Operation{}(simd::load<lanes>(from + x), simd::load<lanes>(from + x + d1));
            if constexpr (count > 2)
                extreme = Operation{}(extreme, simd::load<lanes>(from + x + d2));
            if constexpr (count > 3)
                extreme = Operation{}(extreme, simd::load<lanes>(from + x + d3));
            return extreme;
        },
        [=](int64_t x, auto extreme) { simd::store(to + x, extreme); });
}

/// Windows of 5 to 16 pixels, `unit` elements apart, of integers: their last pairs are loaded, and grow by what the
/// vector before them has of the pairs, fours and eights that they follow.
template <int length, int unit, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void windowsInOnePass(const T* from, T* to, int64_t n, int64_t ahead)
{
    static_assert(std::is_integral_v<T> && 4 < length && length <= 16);
    // what comes before the first whole vector and behind the last one costs as much as several of them
    constexpr int N = std::min(lanesIn<T, 2>, lineLanes<T>);
    constexpr bool hasEight = length > 8;
    constexpr int64_t lastPair = (length - 2) * unit;
    const auto pairAt = [=](int64_t x, auto lanes) {
        return Operation{}(simd::load<lanes>(from + x), simd::load<lanes>(from + x + unit));
    };
    const auto fourAt = [=](int64_t x, auto lanes) {
        return Operation{}(pairAt(x, lanes), pairAt(x + 2 * unit, lanes));
    };
    const auto eightAt = [=](int64_t x, auto lanes) {
        return Operation{}(fourAt(x, lanes), fourAt(x + 4 * unit, lanes));
    };
    const auto result = [=](int64_t x, auto lanes) {
        if constexpr (hasEight)
            return Operation{}(eightAt(x, lanes), eightAt(x + (length - 8) * unit, lanes));
        else
            return Operation{}(fourAt(x, lanes), fourAt(x + (length - 4) * unit, lanes));
    };
    if (n < N)
        return eachInPlace<N>(n, result, [=](int64_t x, auto extreme) { simd::store(to + x, extreme); });

    constexpr simd::Lanes<N> lanes;
    const auto first = result(0, lanes), last = result(n - N, lanes);
    auto pair = pairAt(lastPair, lanes), four = Operation{}(pairAt(lastPair - 2 * unit, lanes), pair), eight = four;
    if constexpr (hasEight)
        eight = Operation{}(fourAt(lastPair - 6 * unit, lanes), four);
    simd::store(to, first);
    for (int64_t x = N; x + N <= n; x += N) {
        simd::prefetch<N>(rowAt(from + x, ahead, 1));
        const auto nextPair = pairAt(x + lastPair, lanes);
        const auto nextFour = Operation{}(simd::movedIn<2 * unit>(pair, nextPair), nextPair);
        if constexpr (hasEight) {
            const auto nextEight = Operation{}(simd::movedIn<4 * unit>(four, nextFour), nextFour);
            simd::store(to + x, Operation{}(simd::movedIn<(length - 8) * unit>(eight, nextEight), nextEight));
            eight = nextEight;
        } else
            simd::store(to + x, Operation{}(simd::movedIn<(length - 4) * unit>(four, nextFour), nextFour));
        pair = nextPair;
        four = nextFour;
    }
    simd::store(to + n - N, last);
}

/// The longest windows, of at most `longest` pixels, that one pass makes; 1 if there are none of such units, and for
/// floats, of which a not-a-number comes out by the order of operations.
template <class T>
int64_t lengthInOnePass(int64_t longest, int64_t unit)
{
    const int64_t most = unit == 1 ? 16 : sizeof(T) == 1 && (unit == 3 || unit == 4) ? 8 : 1;
    if (!std::is_integral_v<T> || most == 1 || longest < 5)
        return 1;
    return longest >= most ? most : longest - (longest % 2 == 0);
}

template <class Operation, int unit, int... lengths, class T>
void windowsOfOneOf(int64_t length, const T* from, T* to, int64_t n, int64_t ahead)
{
    ((length == lengths ? windowsInOnePass<lengths, unit, Operation>(from, to, n, ahead) : void()), ...);
}

/// Windows of a length that lengthInOnePass() gives.
template <class Operation, class T>
void windowsInOnePass(int64_t length, int64_t unit, const T* from, T* to, int64_t n, int64_t ahead)
{
    if constexpr (std::is_integral_v<T>)
        if (unit == 1)
            windowsOfOneOf<Operation, 1, 5, 7, 9, 11, 13, 15, 16>(length, from, to, n, ahead);
    if constexpr (sizeof(T) == 1) {
        if (unit == 3)
            windowsOfOneOf<Operation, 3, 5, 7, 8>(length, from, to, n, ahead);
        if (unit == 4)
            windowsOfOneOf<Operation, 4, 5, 7, 8>(length, from, to, n, ahead);
    }
}

// Squares of 3x3 and 5x5, in terms of what is kept of the pixels under them: an extreme, or both for a gradient.

template <class T>
inline constexpr int squareLanes = lanesIn<T, 2>;

/// For each pixel of a vector the extreme by an operation.
template <class T, class Operation>
struct Extreme
{
    static constexpr int N = squareLanes<T>;
    static constexpr int vectors = 1;
    simd::Vec<T, N> value;

    [[gnu::always_inline]] static Extreme ofPixels(const T* pixels)
    {
        return {simd::load<N>(pixels)};
    }

    [[gnu::always_inline]] static Extreme carriedAt(const T* place)
    {
        return {simd::load<N>(place)};
    }

    [[gnu::always_inline]] void carry(T* place) const
    {
        simd::store(place, value);
    }

    [[gnu::always_inline]] friend Extreme joined(Extreme earlier, Extreme later)
    {
        return {Operation{}(earlier.value, later.value)};
    }
};

/// The largest and the smallest.
template <class T>
struct Extremes
{
    static constexpr int N = squareLanes<T>;
    static constexpr int vectors = 2;
    simd::Vec<T, N> largest, smallest;

    [[gnu::always_inline]] static Extremes ofPixels(const T* pixels)
    {
        return {simd::load<N>(pixels), simd::load<N>(pixels)};
    }

    [[gnu::always_inline]] static Extremes carriedAt(const T* place)
    {
        return {simd::load<N>(place), simd::load<N>(place + N)};
    }

    [[gnu::always_inline]] void carry(T* place) const
    {
        simd::store(place, largest);
        simd::store(place + N, smallest);
    }

    [[gnu::always_inline]] friend Extremes joined(Extremes earlier, Extremes later)
    {
        return {Maximum{}(earlier.largest, later.largest), Minimum{}(earlier.smallest, later.smallest)};
    }
};

/// Of pixels that are `channels` elements apart.
template <class Kept, int size, class T>
[[gnu::always_inline]] inline Kept window(const T* first, int64_t channels)
{
    Kept kept = Kept::ofPixels(first);
    for (int i = 1; i < size; ++i)
        kept = joined(kept, Kept::ofPixels(first + i * channels));
    return kept;
}

/// Calls body(x, place) for the vectors of a row of n elements, N at least, with a place for what each vector carries
/// from row to row. The last one may overlap the one before it, but what they carry does not.
template <int N, int carriedVectors, class T, class Body>
[[gnu::always_inline]] inline void eachCarrying(int64_t n, T* carried, Body body)
{
    int64_t x = 0;
    for (; x + N <= n; x += N, carried += carriedVectors * N)
        body(x, carried);
    if (x < n)
        body(n - N, carried);
}

/// Whether rows of windows are joined in pairs, each of which serves four output rows of a square: where they are not,
/// a not-a-number comes out by the order of operations.
template <class T, int size>
inline constexpr bool joinsPairs = size == 5 && std::is_integral_v<T>;

/// What a square of `size` carries for each vector: these are the first of them. Place i holds what is kept of the last
/// size - 1 - i rows of windows or, where rows are joined in pairs, of row i alone, but of rows 1 and 2 in place 1.
template <class Kept, int size, class T>
[[gnu::flatten, gnu::noinline]] void beginCarrying(Plane<const T> src, int64_t channels, T* carried, int64_t n)
{
    constexpr int place = Kept::vectors * Kept::N;
    const int64_t step = src.step;
    const T* const first = src.pixels;
    eachCarrying<Kept::N, Kept::vectors*(size - 1)>(n, carried, [=](int64_t x, T* places) {
        Kept below = window<Kept, size>(rowAt(first + x, step, size - 2), channels);
        below.carry(places + (size - 2) * place);
        for (int i = size - 3; i >= 0; --i) {
            const Kept row = window<Kept, size>(rowAt(first + x, step, i), channels);
            const Kept both = joined(row, below);
            (joinsPairs<T, size> && i != 1 ? row : both).carry(places + i * place);
            below = joinsPairs<T, size> ? row : both;
        }
    });
}

/// Computes `rows` output rows from as many new rows, of which `src` is the first window, and what is carried; replaces
/// that by the new rows if these are enough. The rows that many further on are asked for.
template <class Kept, int size, int rows, class Result, class T>
[[gnu::flatten, gnu::noinline]] void advance(Result result, Plane<const T> src, int64_t channels, Plane<T> dst,
                                             T* carried, int64_t n, int64_t rowsAhead)
{
    constexpr int N = Kept::N;
    constexpr int place = Kept::vectors * N;
    constexpr bool replaces = rows == size - 1;
    const int64_t srcStep = src.step, dstStep = dst.step;
    const int64_t srcAhead = srcStep * rowsAhead, dstAhead = dstStep * rowsAhead;
    const T* const srcFirst = src.pixels;
    T* const dstFirst = dst.pixels;
    eachCarrying<N, Kept::vectors*(size - 1)>(n, carried, [=](int64_t x, T* places) {
        const auto fresh = [=](int i) {
            const T* const first = rowAt(srcFirst + x, srcStep, i);
            simd::prefetch<N>(rowAt(first, srcAhead, 1));
            return window<Kept, size>(first, channels);
        };
        const auto put = [=](int i, Kept kept) {
            T* const to = rowAt(dstFirst + x, dstStep, i);
            simd::prefetch<N>(static_cast<const T*>(rowAt(to, dstAhead, 1)));
            simd::store(to, result(kept));
        };
        if constexpr (joinsPairs<T, size>) {
            Kept last = Kept::carriedAt(places + 3 * place), pair = Kept::carriedAt(places + place);
            for (int i = 0; i < rows; i += 2) {
                const Kept next = fresh(i), both = joined(last, next);
                const Kept common = joined(pair, both);
                put(i, joined(Kept::carriedAt(places + i * place), common));
                pair = both;
                if constexpr (replaces)
                    next.carry(places + i * place);
                if (i + 1 < rows) {
                    last = fresh(i + 1);
                    put(i + 1, joined(common, last));
                }
            }
            if constexpr (replaces) {
                pair.carry(places + place);
                last.carry(places + 3 * place);
            }
        } else {
            Kept all[rows];
            Kept below;
            for (int i = 0; i < rows; ++i) {
                all[i] = fresh(i);
                below = i == 0 ? all[0] : joined(below, all[i]);
                put(i, joined(Kept::carriedAt(places + i * place), below));
            }
            if constexpr (replaces) {
                Kept above = all[rows - 1];
                above.carry(places + (size - 2) * place);
                for (int i = size - 3; i >= 0; --i) {
                    above = joined(all[i], above);
                    above.carry(places + i * place);
                }
            }
        }
    });
}

/// The columns that are worked through at a time, or 0 if there are too few or what they carry does not fit into the
/// scratch. Which it is does not depend on the processor level: a not-a-number comes out by the order of operations.
template <class T>
int64_t squareBand(int64_t elements, int64_t carriedVectors, Scratch scratch)
{
    constexpr int widestVector = 128;
    static_assert(squareLanes<T> <= widestVector);
    const int64_t band = bandElements(elements, cacheBytes / 3 / carriedVectors / static_cast<int64_t>(sizeof(T)));
    const int64_t carriedBytes = roundedUp(band, widestVector) * carriedVectors * static_cast<int64_t>(sizeof(T));
    return band >= widestVector && carriedBytes <= scratch.bytes ? band : 0;
}

template <class Kept, int size, class Result, class T>
void square(Result result, Area<T> area, int64_t band, Scratch scratch)
{
    constexpr int radius = size / 2;
    constexpr int step = size - 1;
    const int64_t channels = area.channels;
    T* const carried = reinterpret_cast<T*>(scratch.begin);
    for (int64_t end = 0; end < area.elements;) {
        const int64_t begin = end + band <= area.elements ? end : area.elements - band;
        end = begin + band;
        const Plane<const T> src{area.src.row(-radius) + begin - radius * channels, area.src.step};
        const Plane<T> dst{area.dst.pixels + begin, area.dst.step};
        const auto srcFrom = [&](int64_t y) { return Plane<const T>{src.row(y), src.step}; };
        const auto dstFrom = [&](int64_t y) { return Plane<T>{dst.row(y), dst.step}; };
        beginCarrying<Kept, size>(src, channels, carried, band);
        int64_t y = 0;
        for (; y + step <= area.height; y += step) {
            const int64_t ahead = y + 2 * step <= area.height ? step : 0;
            advance<Kept, size, step>(result, srcFrom(y + step), channels, dstFrom(y), carried, band, ahead);
        }
        const auto rest = [&]<int rows>(simd::Lanes<rows>) {
            if (area.height - y == rows)
                advance<Kept, size, rows>(result, srcFrom(y + step), channels, dstFrom(y), carried, band, 0);
        };
        rest(simd::Lanes<1>{});
        if constexpr (step > 2) {
            rest(simd::Lanes<2>{});
            rest(simd::Lanes<3>{});
        }
    }
}

/// A square of 3x3 or 5x5, result(kept) being its output; false if the area is too narrow.
template <class Kept, int size, class Result, class T>
bool smallSquare(Result result, Area<T> area, Scratch scratch)
{
    const int64_t band = squareBand<T>(area.elements, Kept::vectors * (size - 1), scratch);
    if (band == 0)
        return false;
    square<Kept, size>(result, area, band, scratch);
    return true;
}

/// Rows of windows: those of a ring, or those of the image itself where a window is one pixel wide.
template <class T>
struct WindowRows
{
    const T* rows;
    int64_t step;   ///< bytes from one row to the next
    int64_t slots;  ///< rows until the ring begins again
    int64_t first;  ///< the slot of the first row

    const T* row(int64_t i) const
    {
        return rowAt(rows, step, first + i < slots ? first + i : first + i - slots);
    }
};

/// Combines `height` rows each into `rows` output rows; rows <= height.
template <int rows, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinRows(WindowRows<T> windows, int64_t height, Plane<T> dst, int64_t n,
                                              int64_t dstAhead)
{
    // where it lies in the ring
    constexpr int64_t tableRows = 64;
    struct
    {
        const T* above[rows];       // what rows see above; the last one begins what all of them see
        const T* table[tableRows];  // most of the rest of that
        const T* below[rows];       // what they see below, from the second one on
    } seenAt;
    for (int i = 0; i < rows; ++i) {
        seenAt.above[i] = windows.row(i);
        seenAt.below[i] = windows.row(i == 0 ? rows - 1 : height - 1 + i);
    }
    const int64_t tabled = height - rows < tableRows ? height - rows : tableRows;
    for (int64_t i = 0; i < tabled; ++i)
        seenAt.table[i] = windows.row(rows + i);
    const int64_t dstStep = dst.step;
    T* const d = dst.pixels;
    // a cache line at a time: there is enough to do while the maximum of what all rows see waits for its next row
    simd::eachAtLeastOnce<lineLanes<T>>(0, n, [=, &seenAt](int64_t x, auto lanes) {
        // two registers for each row that is looked up
        constexpr int N = lanes < 2 * simd::registerLanes<T> ? int{lanes} : 2 * simd::registerLanes<T>;
        constexpr int parts = lanes / N;
        using V = simd::Vec<T, N>;
        V common[parts];
        const auto see = [&](const T* row) {
            for (int i = 0; i < parts; ++i)
                common[i] = Operation{}(common[i], simd::load<N>(row + x + i * N));
        };
        for (int i = 0; i < parts; ++i)
            common[i] = simd::load<N>(seenAt.above[rows - 1] + x + i * N);
        for (int64_t i = 0; i < tabled; ++i)
            see(seenAt.table[i]);
        for (int64_t i = rows + tabled; i < height; ++i)
            see(windows.row(i));
        if constexpr (lanes > 1)
            for (int i = 0; i < rows; ++i)
                simd::prefetch<lanes>(static_cast<const T*>(rowAt(d + x, dstStep * i + dstAhead, 1)));
        for (int part = 0; part < parts; ++part) {
            const int64_t at = x + part * N;
            V seen[rows];  // by each output row, down to the last common one
            seen[rows - 1] = common[part];
            for (int i = rows - 2; i >= 0; --i)
                seen[i] = Operation{}(simd::load<N>(seenAt.above[i] + at), seen[i + 1]);
            simd::store(d + at, seen[0]);
            if constexpr (rows > 1) {
                V rest = simd::load<N>(seenAt.below[1] + at);
                simd::store(rowAt(d + at, dstStep, 1), Operation{}(seen[1], rest));
                for (int i = 2; i < rows; ++i) {
                    rest = Operation{}(rest, simd::load<N>(seenAt.below[i] + at));
                    simd::store(rowAt(d + at, dstStep, i), Operation{}(seen[i], rest));
                }
            }
        }
    });
}

constexpr int mostRows = 8;

/// The next block of output rows: 8, 4, 2 or 1.
int64_t blockRows(int64_t windowRows, int64_t remaining)
{
    int64_t rows = mostRows;
    while (rows > windowRows || rows > remaining)
        rows /= 2;
    return rows;
}

template <class Operation, class T>
void joinBlock(int64_t rows, WindowRows<T> windows, int64_t height, Plane<T> dst, int64_t n, int64_t dstAhead)
{
    switch (rows) {
        case 8:
            return joinRows<8, Operation>(windows, height, dst, n, dstAhead);
        case 4:
            return joinRows<4, Operation>(windows, height, dst, n, dstAhead);
        case 2:
            return joinRows<2, Operation>(windows, height, dst, n, dstAhead);
        default:
            return joinRows<1, Operation>(windows, height, dst, n, dstAhead);
    }
}

}  // namespace

template <class Operation, class T>
void growWindows(const T* from, int64_t length, T* line, T* to, int64_t longer, int64_t unit, int64_t n, int64_t ahead)
{
    const auto join = [&]<int count>(simd::Lanes<count>, const int64_t(&distances)[4], T* result, int64_t elements) {
        if (ahead != 0)
            joinWindows<count, true, Operation>(from, distances, result, elements, ahead);
        else
            joinWindows<count, false, Operation>(from, distances, result, elements, 0);
        ahead = 0;
    };
    if (const int64_t start = length == 1 ? lengthInOnePass<T>(longer, unit) : 1; start > 1) {
        windowsInOnePass<Operation>(start, unit, from, longer == start ? to : line, n + (longer - start) * unit, ahead);
        if (longer == start)
            return;
        from = line;
        length = start;
        ahead = 0;
    }
    for (; longer > 4 * length; length *= 4, from = line)
        join(simd::Lanes<4>{}, {0, length * unit, 2 * length * unit, 3 * length * unit}, line,
             n + (longer - 4 * length) * unit);
    const int64_t last = (longer - length) * unit;
    if (longer <= 2 * length)
        join(simd::Lanes<2>{}, {0, last, 0, 0}, to, n);
    else if (longer <= 3 * length)
        join(simd::Lanes<3>{}, {0, length * unit, last, 0}, to, n);
    else
        join(simd::Lanes<4>{}, {0, length * unit, 2 * length * unit, last}, to, n);
}

template <class Operation, class T>
void rectangle(Area<T> area, int64_t width, int64_t height, Scratch scratch)
{
    using Kept = Extreme<T, Operation>;
    const auto value = [](Kept kept) { return kept.value; };
    if (width == 3 && height == 3 && smallSquare<Kept, 3>(value, area, scratch))
        return;
    if (width == 5 && height == 5 && smallSquare<Kept, 5>(value, area, scratch))
        return;

    const int64_t channels = area.channels;
    const int64_t left = width / 2 * channels, top = height / 2;
    const auto srcRow = [&](int64_t y) { return area.src.row(y - top) - left; };
    const auto ahead = [&](int64_t y, int64_t rows) { return y + 2 * rows <= area.height ? rows * area.dst.step : 0; };
    if (width == 1) {
        for (int64_t y = 0; y < area.height;) {
            const int64_t rows = blockRows(height, area.height - y);
            joinBlock<Operation>(rows, WindowRows<T>{srcRow(y), area.src.step, INT64_MAX, 0}, height,
                                 {area.dst.row(y), area.dst.step}, area.elements, ahead(y, rows));
            y += rows;
        }
        return;
    }

    T* const line = reinterpret_cast<T*>(scratch.begin);
    if (height == 1) {
        for (int64_t y = 0; y < area.height; ++y)
            growWindows<Operation>(srcRow(y), 1, line, area.dst.row(y), width, channels, area.elements,
                                   y + 1 < area.height ? area.src.step : 0);
        return;
    }

    // a ring for the rows that a block of output rows sees, and a line with room for shorter windows
    constexpr int64_t elementBytes = sizeof(T), aligned = 32 / elementBytes;
    const int64_t slots = height - 1 + (height < mostRows ? height : mostRows);
    const int64_t excess = roundedUp((width - 1) * channels, aligned);
    const int64_t possible = (scratch.bytes / elementBytes - excess) / (slots + 1);
    const int64_t wanted = std::max(cacheBytes / (slots + 1), leastBandBytes);
    const int64_t widest = std::min(wanted / elementBytes, possible);
    const int64_t band = bandElements(area.elements, widest);
    const int64_t pitch = roundedUp(band, aligned) <= possible ? roundedUp(band, aligned) : band;
    T* const ring = line + pitch + excess;
    for (int64_t begin = 0; begin < area.elements; begin += band) {
        const int64_t n = begin + band < area.elements ? band : area.elements - begin;
        int64_t filled = 0, slot = 0, firstSlot = 0;
        for (int64_t y = 0; y < area.height;) {
            const int64_t rows = blockRows(height, area.height - y);
            for (; filled < y + rows + height - 1; ++filled) {
                T* const to = ring + slot * pitch;
                growWindows<Operation>(
                    srcRow(filled) + begin, 1, line, to, width, channels, n,
                    filled + imageRowsAhead < area.height + height - 1 ? imageRowsAhead * area.src.step : 0);
                slot = slot + 1 == slots ? 0 : slot + 1;
            }
            joinBlock<Operation>(rows, WindowRows<T>{ring, pitch * elementBytes, slots, firstSlot}, height,
                                 {area.dst.row(y) + begin, area.dst.step}, n, ahead(y, rows));
            firstSlot = (firstSlot + rows) % slots;
            y += rows;
        }
    }
}

template <class T>
bool squareGradient(Area<T> area, int64_t size, Difference<T> difference, Scratch scratch)
{
    const auto range = [=](Extremes<T> kept) { return difference(kept.largest, kept.smallest); };
    return size == 3 ? smallSquare<Extremes<T>, 3>(range, area, scratch)
                     : smallSquare<Extremes<T>, 5>(range, area, scratch);
}

template void rectangle<Maximum>(Area<Lum8u>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum16u>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum16s>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum32f>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum8u>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum16u>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum16s>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum32f>, int64_t, int64_t, Scratch);
template bool squareGradient(Area<Lum8u>, int64_t, Difference<Lum8u>, Scratch);
template bool squareGradient(Area<Lum16u>, int64_t, Difference<Lum16u>, Scratch);
template bool squareGradient(Area<Lum16s>, int64_t, Difference<Lum16s>, Scratch);
template bool squareGradient(Area<Lum32f>, int64_t, Difference<Lum32f>, Scratch);
template void growWindows<Maximum>(const Lum8u*, int64_t, Lum8u*, Lum8u*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum16u*, int64_t, Lum16u*, Lum16u*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum16s*, int64_t, Lum16s*, Lum16s*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum32f*, int64_t, Lum32f*, Lum32f*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum8u*, int64_t, Lum8u*, Lum8u*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum16u*, int64_t, Lum16u*, Lum16u*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum16s*, int64_t, Lum16s*, Lum16s*, int64_t, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum32f*, int64_t, Lum32f*, Lum32f*, int64_t, int64_t, int64_t, int64_t);

}  // namespace lumcv
