// What a kernel of dilation or erosion works on: an area of the image and everything under the element, all in memory.
//
// Kernels take the pixels under an element in the order of its rows from the top, and in a row from the left, and the
// later one of two equals stays: that is how zeros of both signs come out the same from every kernel.
#pragma once

#include "filter/bands.hpp"
#include "frame/image.hpp"
#include "morph/element_record.hpp"
#include "simd/simd.hpp"

namespace lumcv {

struct Maximum
{
    template <class V>
    [[gnu::always_inline]] V operator()(V earlier, V later) const
    {
        return simd::max(earlier, later);
    }
};

struct Minimum
{
    template <class V>
    [[gnu::always_inline]] V operator()(V earlier, V later) const
    {
        return simd::min(earlier, later);
    }
};

/// How differences of signed and float images come out where they are negative.
enum class Negative
{
    kept,
    zero
};

/// minuend - subtrahend, by the rule of the type.
template <class T>
struct Difference
{
    Negative negative;

    template <int N>
    [[gnu::always_inline]] simd::Vec<T, N> operator()(simd::Vec<T, N> minuend, simd::Vec<T, N> subtrahend) const
    {
        simd::Vec<T, N> difference;
        if constexpr (std::is_same_v<T, Lum32f>)
            difference = minuend - subtrahend;
        else
            difference = simd::subtractSaturated(minuend, subtrahend);
        if constexpr (std::is_signed_v<T>)
            if (negative == Negative::zero)
                difference = simd::max(simd::broadcast<N>(T{0}), difference);
        return difference;
    }
};

/// Pixels to be computed. Kernels count in elements: a pixel is `channels` of them.
template <class T>
struct Area
{
    Plane<const T> src;  ///< the pixel under the anchor for the first pixel of dst
    Plane<T> dst;
    int64_t elements;  ///< in a row
    int64_t height;
    int64_t channels;
};

/// The width of bands of columns, whole cache lines if possible, and not wider than the area.
inline int64_t bandElements(int64_t elements, int64_t widest)
{
    return elements <= widest ? elements : evenBands(elements, widest, 64);
}

/// Memory for rows, aligned to 32 bytes.
struct Scratch
{
    Lum8u* begin;
    int64_t bytes;
};

/// As eachAtLeastOnce, for what is computed where its operands lie: result(x, lanes) reads at x and behind it and
/// store(x, result) overwrites at x. What the last vector shares with the one before it is read before either is
/// stored.
template <int N, class Result, class Store>
[[gnu::always_inline]] inline void eachInPlace(int64_t n, Result result, Store store)
{
    if (n >= N) {
        const auto last = result(n - N, simd::Lanes<N>{});
        int64_t x = 0;
        for (; x + N <= n; x += N)
            store(x, result(x, simd::Lanes<N>{}));
        if (x < n)
            store(n - N, last);
    } else if constexpr (N > simd::restLanes)
        eachInPlace<simd::shorterLanes<N>>(n, result, store);
    else
        for (int64_t x = 0; x < n; ++x)
            store(x, result(x, simd::Lanes<1>{}));
}

/// Lanes in so many registers, but not fewer than any level has in one.
template <class T, int registers>
inline constexpr int lanesIn =
    registers* simd::registerLanes<T> > simd::restLanes ? registers* simd::registerLanes<T> : simd::restLanes;

template <class Operation, class T>
void rectangle(Area<T> area, int64_t width, int64_t height, Scratch scratch);

/// The gradient of a square of 3x3 or 5x5: the difference of both operations, from one look at each row. False, and
/// nothing done, if the area is too narrow.
template <class T>
bool squareGradient(Area<T> area, int64_t size, Difference<T> difference, Scratch scratch);

/// Grows windows along a line: with from[x] the extreme of `length` pixels from x on, `unit` elements apart, to[x]
/// becomes that of `longer` pixels, for n elements. In `line` there is room for n + (longer - 1) * unit elements; from,
/// line and to may be the same. What lies `ahead` bytes behind `from` is asked for on the way, if that is not 0.
template <class Operation, class T>
void growWindows(const T* from, int64_t length, T* line, T* to, int64_t longer, int64_t unit, int64_t n,
                 int64_t ahead = 0);

/// The cross, or disc, of 3x3.
template <class Operation, class T>
void smallCross(Area<T> area);

/// An element whose rows are a run each. False, and nothing done, if the scratch has no room for their windows.
template <class Operation, class T>
bool rowRuns(Area<T> area, const Element& element, Scratch scratch);

/// The same for an area of one row, in a block whose rows are `pitch` elements long and lie behind one another: windows
/// along all of it serve every row of the element.
template <class Operation, class T>
bool rowRunsAlong(Area<T> area, int64_t pitch, const Element& element, Scratch scratch);

/// An element of any shape.
template <class Operation, class T>
void anyShape(Area<T> area, const Element& element);

}  // namespace lumcv
