// Dilation and erosion by a rectangle: windows along each row, then across the rows.
//
// Rectangles of 3x3 and 5x5 advance by as many rows as two windows share; what those rows have in common is carried
// from step to step. For others a ring holds rows of windows, from which a block of output rows is combined: the rows
// that all of them see are taken together once, and what each sees above and below is added step by step.
#include "morph/area.hpp"

namespace lumcv {
namespace {

/// Columns are worked through in bands of this many bytes, so that carried rows and rings stay in the first-level
/// cache.
constexpr int64_t cacheBytes = 24 * 1024;

int64_t bandElements(int64_t elements, int64_t widest)
{
    if (elements <= widest)
        return elements;
    const int64_t bands = (elements + widest - 1) / widest;
    const int64_t even = (elements + bands - 1) / bands;
    constexpr int64_t line = 64;
    const int64_t whole = (even + line - 1) / line * line;
    return whole < widest ? whole : even;
}

/// `count` windows at the given distances.
template <int count, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void joinWindows(const T* from, const int64_t (&distances)[4], T* to, int64_t n)
{
    const int64_t d1 = distances[1], d2 = distances[2], d3 = distances[3];
    eachInPlace<lanesIn<T, 2>>(
        n,
        [=](int64_t x, auto lanes) {
            auto extreme = Operation{}(simd::load<lanes>(from + x), simd::load<lanes>(from + x + d1));
            if constexpr (count > 2)
                extreme = Operation{}(extreme, simd::load<lanes>(from + x + d2));
            if constexpr (count > 3)
                extreme = Operation{}(extreme, simd::load<lanes>(from + x + d3));
            return extreme;
        },
        [=](int64_t x, auto extreme) { simd::store(to + x, extreme); });
}

template <int size, class Operation, class T, class Lanes>
[[gnu::always_inline]] inline auto window(const T* first, int64_t channels, Lanes lanes)
{
    auto extreme = simd::load<lanes>(first);
    for (int i = 1; i < size; ++i)
        extreme = Operation{}(extreme, simd::load<lanes>(first + i * channels));
    return extreme;
}

template <class V, int n>
struct Several
{
    V of[n];
};

/// Rows that a square of `size` carries along: entry i holds the extreme of the last size - 1 - i rows of windows.
template <class T, int size>
struct Carried
{
    T* rows;
    int64_t pitch;

    T* row(int i) const
    {
        return rows + i * pitch;
    }
};

/// Computes `rows` output rows from as many new rows, of which `src` is the first window, and what is carried; replaces
/// that by the new rows if these are enough.
template <int size, int rows, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void advance(Plane<const T> src, Plane<T> dst, Carried<T, size> carried, int64_t n,
                                             int64_t channels, int64_t rowsAhead)
{
    constexpr bool carries = rows == size - 1;
    constexpr int N = lanesIn < T, size == 3 ? 2 : 1 > ;
    const T* s[rows];
    T* d[rows];
    T* c[size - 1];
    for (int i = 0; i < rows; ++i) {
        s[i] = src.row(i);
        d[i] = dst.row(i);
    }
    for (int i = 0; i < size - 1; ++i)
        c[i] = carried.row(i);
    const int64_t srcAhead = src.step * rowsAhead, dstAhead = dst.step * rowsAhead;
    eachInPlace<N>(
        n,
        [=](int64_t x, auto lanes) {
            using V = simd::Vec<T, lanes>;
            Several<V, rows> fresh;
            for (int i = 0; i < rows; ++i) {
                fresh.of[i] = window<size, Operation>(s[i] + x, channels, lanes);
                if constexpr (lanes > 1)
                    simd::prefetch<lanes>(rowAt(s[i] + x, srcAhead, 1));
            }
            Several<V, rows + size - 1> results;
            V below = fresh.of[0];
            for (int i = 0; i < rows; ++i) {
                if (i > 0)
                    below = Operation{}(below, fresh.of[i]);
                results.of[i] = Operation{}(simd::load<lanes>(c[i] + x), below);
                if constexpr (lanes > 1)
                    simd::prefetch<lanes>(rowAt(static_cast<const T*>(d[i] + x), dstAhead, 1));
            }
            if constexpr (carries) {
                V above = fresh.of[rows - 1];
                results.of[rows + size - 2] = above;
                for (int i = size - 3; i >= 0; --i) {
                    above = Operation{}(fresh.of[i], above);
                    results.of[rows + i] = above;
                }
            }
            return results;
        },
        [=](int64_t x, auto results) {
            for (int i = 0; i < rows; ++i)
                simd::store(d[i] + x, results.of[i]);
            if constexpr (carries)
                for (int i = 0; i < size - 1; ++i)
                    simd::store(c[i] + x, results.of[rows + i]);
        });
}

/// Fills what is carried from the first size - 1 rows.
template <int size, class Operation, class T>
[[gnu::flatten, gnu::noinline]] void beginCarrying(Plane<const T> src, Carried<T, size> carried, int64_t n,
                                                   int64_t channels)
{
    simd::eachAtLeastOnce<lanesIn<T, 1>>(0, n, [=](int64_t x, auto lanes) {
        auto above = window<size, Operation>(src.row(size - 2) + x, channels, lanes);
        simd::store(carried.row(size - 2) + x, above);
        for (int i = size - 3; i >= 0; --i) {
            above = Operation{}(window<size, Operation>(src.row(i) + x, channels, lanes), above);
            simd::store(carried.row(i) + x, above);
        }
    });
}

template <int size, class Operation, class T>
void smallSquare(Area<T> area, Scratch scratch)
{
    constexpr int radius = size / 2;
    constexpr int step = size - 1;
    const int64_t widest = cacheBytes / 2 / (step * static_cast<int64_t>(sizeof(T)));
    const int64_t band = bandElements(area.elements, widest);
    const Carried<T, size> carried{reinterpret_cast<T*>(scratch.begin), band};
    for (int64_t begin = 0; begin < area.elements; begin += band) {
        const int64_t n = begin + band < area.elements ? band : area.elements - begin;
        const Plane<const T> src{area.src.row(-radius) + begin - radius * area.channels, area.src.step};
        const Plane<T> dst{area.dst.pixels + begin, area.dst.step};
        const auto srcFrom = [&](int64_t y) { return Plane<const T>{src.row(y), src.step}; };
        const auto dstFrom = [&](int64_t y) { return Plane<T>{dst.row(y), dst.step}; };
        beginCarrying<size, Operation>(src, carried, n, area.channels);
        int64_t y = 0;
        for (; y + step <= area.height; y += step) {
            const int64_t ahead = y + 2 * step <= area.height ? step : 0;
            advance<size, step, Operation>(srcFrom(y + step), dstFrom(y), carried, n, area.channels, ahead);
        }
        const auto rest = [&]<int rows>(simd::Lanes<rows>) {
            if (area.height - y == rows)
                advance<size, rows, Operation>(srcFrom(y + step), dstFrom(y), carried, n, area.channels, 0);
        };
        rest(simd::Lanes<1>{});
        if constexpr (step > 2) {
            rest(simd::Lanes<2>{});
            rest(simd::Lanes<3>{});
        }
    }
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
[[gnu::flatten, gnu::noinline]] void joinRows(WindowRows<T> windows, int64_t height, Plane<T> dst, int64_t n)
{
    const T* above[rows];
    const T* below[rows];
    T* d[rows];
    for (int i = 0; i < rows; ++i) {
        above[i] = windows.row(i);  // the last one begins what all rows see
        below[i] = windows.row(i == 0 ? rows - 1 : height - 1 + i);
        d[i] = dst.row(i);
    }
    // what all rows see, [rows, height), in two pieces where the ring begins again
    const int64_t firstSlot = windows.first + rows, endSlot = windows.first + height;
    const auto piece = [&](int64_t from, int64_t to) { return to > from ? to - from : 0; };
    const int64_t straight = piece(firstSlot, endSlot < windows.slots ? endSlot : windows.slots);
    const int64_t again = height - rows - straight;
    const T* const straightRow = rowAt(windows.rows, windows.step, firstSlot);
    const T* const againRow =
        rowAt(windows.rows, windows.step, firstSlot > windows.slots ? firstSlot - windows.slots : 0);
    const int64_t step = windows.step;
    simd::eachAtLeastOnce<lanesIn<T, 1>>(0, n, [=](int64_t x, auto lanes) {
        using V = simd::Vec<T, lanes>;
        V common = simd::load<lanes>(above[rows - 1] + x);
        const T* row = straightRow + x;
        for (int64_t i = straight; i > 0; --i, row = rowAt(row, step, 1))
            common = Operation{}(common, simd::load<lanes>(row));
        row = againRow + x;
        for (int64_t i = again; i > 0; --i, row = rowAt(row, step, 1))
            common = Operation{}(common, simd::load<lanes>(row));
        V seen[rows];  // by each output row, down to the last common one
        seen[rows - 1] = common;
        for (int i = rows - 2; i >= 0; --i)
            seen[i] = Operation{}(simd::load<lanes>(above[i] + x), seen[i + 1]);
        simd::store(d[0] + x, seen[0]);
        if constexpr (rows > 1) {
            V rest = simd::load<lanes>(below[1] + x);
            simd::store(d[1] + x, Operation{}(seen[1], rest));
            for (int i = 2; i < rows; ++i) {
                rest = Operation{}(rest, simd::load<lanes>(below[i] + x));
                simd::store(d[i] + x, Operation{}(seen[i], rest));
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
void joinBlock(int64_t rows, WindowRows<T> windows, int64_t height, Plane<T> dst, int64_t n)
{
    switch (rows) {
        case 8:
            return joinRows<8, Operation>(windows, height, dst, n);
        case 4:
            return joinRows<4, Operation>(windows, height, dst, n);
        case 2:
            return joinRows<2, Operation>(windows, height, dst, n);
        default:
            return joinRows<1, Operation>(windows, height, dst, n);
    }
}

}  // namespace

template <class Operation, class T>
void growWindows(const T* from, int64_t length, T* line, T* to, int64_t longer, int64_t unit, int64_t n)
{
    for (; longer > 4 * length; length *= 4, from = line)
        joinWindows<4, Operation>(from, {0, length * unit, 2 * length * unit, 3 * length * unit}, line,
                                  n + (longer - 4 * length) * unit);
    const int64_t last = (longer - length) * unit;
    if (longer <= 2 * length)
        joinWindows<2, Operation>(from, {0, last, 0, 0}, to, n);
    else if (longer <= 3 * length)
        joinWindows<3, Operation>(from, {0, length * unit, last, 0}, to, n);
    else
        joinWindows<4, Operation>(from, {0, length * unit, 2 * length * unit, last}, to, n);
}

template <class Operation, class T>
void rectangle(Area<T> area, int64_t width, int64_t height, Scratch scratch)
{
    if (width == 3 && height == 3)
        return smallSquare<3, Operation>(area, scratch);
    if (width == 5 && height == 5)
        return smallSquare<5, Operation>(area, scratch);

    const int64_t channels = area.channels;
    const int64_t left = width / 2 * channels, top = height / 2;
    const auto srcRow = [&](int64_t y) { return area.src.row(y - top) - left; };
    if (width == 1) {
        for (int64_t y = 0; y < area.height;) {
            const int64_t rows = blockRows(height, area.height - y);
            joinBlock<Operation>(rows, WindowRows<T>{srcRow(y), area.src.step, INT64_MAX, 0}, height,
                                 {area.dst.row(y), area.dst.step}, area.elements);
            y += rows;
        }
        return;
    }

    T* const line = reinterpret_cast<T*>(scratch.begin);
    if (height == 1) {
        for (int64_t y = 0; y < area.height; ++y)
            growWindows<Operation>(srcRow(y), 1, line, area.dst.row(y), width, channels, area.elements);
        return;
    }

    // a ring for the rows that a block of output rows sees, and a line with room for shorter windows
    constexpr int64_t elementBytes = sizeof(T);
    const int64_t slots = height - 1 + (height < mostRows ? height : mostRows);
    const int64_t excess = (width - 1) * channels;
    const int64_t room = scratch.bytes / elementBytes - excess, cached = cacheBytes / elementBytes;
    const int64_t available = (room < cached ? room : cached) / (slots + 1);
    const int64_t least = 64 * channels;
    const int64_t possible = room / (slots + 1);
    const int64_t widest = available > least ? available : possible < least ? possible : least;
    const int64_t band = bandElements(area.elements, widest);
    T* const ring = line + band + excess;
    for (int64_t begin = 0; begin < area.elements; begin += band) {
        const int64_t n = begin + band < area.elements ? band : area.elements - begin;
        int64_t filled = 0, slot = 0, firstSlot = 0;
        for (int64_t y = 0; y < area.height;) {
            const int64_t rows = blockRows(height, area.height - y);
            for (; filled < y + rows + height - 1; ++filled) {
                T* const to = ring + slot * band;
                growWindows<Operation>(srcRow(filled) + begin, 1, line, to, width, channels, n);
                slot = slot + 1 == slots ? 0 : slot + 1;
            }
            joinBlock<Operation>(rows, WindowRows<T>{ring, band * elementBytes, slots, firstSlot}, height,
                                 {area.dst.row(y) + begin, area.dst.step}, n);
            firstSlot = (firstSlot + rows) % slots;
            y += rows;
        }
    }
}

template void rectangle<Maximum>(Area<Lum8u>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum16u>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum16s>, int64_t, int64_t, Scratch);
template void rectangle<Maximum>(Area<Lum32f>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum8u>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum16u>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum16s>, int64_t, int64_t, Scratch);
template void rectangle<Minimum>(Area<Lum32f>, int64_t, int64_t, Scratch);
template void growWindows<Maximum>(const Lum8u*, int64_t, Lum8u*, Lum8u*, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum16u*, int64_t, Lum16u*, Lum16u*, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum16s*, int64_t, Lum16s*, Lum16s*, int64_t, int64_t, int64_t);
template void growWindows<Maximum>(const Lum32f*, int64_t, Lum32f*, Lum32f*, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum8u*, int64_t, Lum8u*, Lum8u*, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum16u*, int64_t, Lum16u*, Lum16u*, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum16s*, int64_t, Lum16s*, Lum16s*, int64_t, int64_t, int64_t);
template void growWindows<Minimum>(const Lum32f*, int64_t, Lum32f*, Lum32f*, int64_t, int64_t, int64_t);

}  // namespace lumcv
