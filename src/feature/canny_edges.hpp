// From magnitudes and directions to edges: suppression row by row, then hysteresis.
#pragma once

#include "feature/canny_hysteresis.hpp"
#include "feature/canny_magnitudes.hpp"
#include "frame/image.hpp"
#include "frame/rounding.hpp"

namespace lumcv::canny {

/// Three rows around the one that is suppressed.
template <class Magnitude>
struct MagnitudeRows
{
    const Magnitude *up, *middle, *down;
};

/// The next smaller magnitude, or any below all others.
template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum16u, N> decremented(simd::Vec<Lum16u, N> magnitude)
{
    return simd::subtractSaturated(magnitude, simd::broadcast<N>(Lum16u{1}));
}

template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum32s, N> decremented(simd::Vec<Lum32s, N> magnitude)
{
    return magnitude - simd::broadcast<N>(Lum32s{1});
}

/// Directions in lanes of magnitudes.
template <class Magnitude, int N>
[[gnu::always_inline]] inline simd::Vec<Magnitude, N> loadDirections(const Lum8u* p)
{
    if constexpr (std::is_same_v<Magnitude, Lum32s>)
        return simd::loadWidened<N>(p);
    else if constexpr (N == 1)
        return {*p};
    else
        return simd::reinterpreted<Lum16u>(simd::loadWords<N>(p));
}

/// Bits of pixels, the first one lowest.
struct Survivors
{
    uint64_t all, strong;
};

/// Which of N pixels survive. A vector wider than a register is worked on in halves, one after the other, for its many
/// operands to stay in registers.
template <int N, class Magnitude>
[[gnu::always_inline]] inline Survivors survivors(MagnitudeRows<Magnitude> rows, const Lum8u* directions,
                                                  Magnitude high, int64_t x)
{
    using V = simd::Vec<Magnitude, N>;
    if constexpr (simd::kindOf<Magnitude, N> == simd::Kind::pair) {
        const Survivors lower = survivors<N / 2>(rows, directions, high, x);
        const Survivors upper = survivors<N / 2>(rows, directions, high, x + N / 2);
        return {lower.all | upper.all << (N / 2), lower.strong | upper.strong << (N / 2)};
    } else {
        const auto at = [x](const Magnitude* row, int64_t d) { return simd::load<N>(row + x + d); };
        const V m = at(rows.middle, 0);
        // A pixel survives if it is above the greater one of its neighbours; but of an even pair of neighbours the
        // second one may be as great as the pixel.
        const V row = simd::max(at(rows.middle, -1), decremented(at(rows.middle, 1)));
        const V column = simd::max(at(rows.up, 0), decremented(at(rows.down, 0)));
        const V anti = simd::max(at(rows.up, 1), at(rows.down, -1));
        const V main = simd::max(at(rows.up, -1), at(rows.down, 1));
        const V codes = loadDirections<Magnitude, N>(directions + x);
        const auto points = [=](Direction d) {
            return simd::equal(codes, simd::broadcast<N>(static_cast<Magnitude>(d)));
        };
        const V greatest =
            simd::select(points(horizontal), row,
                         simd::select(points(vertical), column, simd::select(points(antiDiagonal), anti, main)));
        const auto survives = simd::greater(m, greatest);
        const auto isStrong = simd::greater(m, simd::broadcast<N>(high));
        return {simd::laneBits(survives), simd::laneBits(survives & isStrong)};
    }
}

/// Puts the survivors among n pixels into the maps, which hold none yet.
template <class Magnitude>
[[gnu::flatten, gnu::noinline]] void suppressRow(MagnitudeRows<Magnitude> rows, const Lum8u* directions, Magnitude high,
                                                 int64_t n, Lum8u* weak, Lum8u* strong)
{
    simd::eachOnce<blockLanes<Magnitude>>(0, n, [=](int64_t x, auto lanes) {
        constexpr int count = lanes;
        if (!simd::anyNonZero(simd::load<count>(rows.middle + x)))
            return;
        const Survivors found = survivors<count>(rows, directions, high, x);
        const uint64_t weakOnes = found.all ^ found.strong;
        if constexpr (count == 1) {
            weak[x >> 3] = static_cast<Lum8u>(weak[x >> 3] | weakOnes << (x & 7));
            strong[x >> 3] = static_cast<Lum8u>(strong[x >> 3] | found.strong << (x & 7));
        } else {
            // little-endian, as the processor is
            __builtin_memcpy(weak + x / 8, &weakOnes, count / 8);
            __builtin_memcpy(strong + x / 8, &found.strong, count / 8);
        }
    });
}

/// A buffer carved into the maps, the rows and the stack:
///   31 + roundedUp((width + 2) * (height + 2), 32) + 3 * sizeof(Magnitude) * (width + 2) + 2 * width
///      + sizeof(Index) - 1 + sizeof(Index) * width * height
template <class Word, class Index, class Magnitude, class Gradient>
void drawEdgesInWords(const Gradient& gradient, Magnitude high, LumiSizeL size, Lum8u* buffer, Plane<Lum8u> dst)
{
    constexpr uintptr_t alignment = 32;
    Lum8u* const maps = alignedUp(buffer, alignment);
    const int64_t pitch = size.width + 2;
    auto* const lines = reinterpret_cast<Magnitude*>(maps + roundedUp(pitch * (size.height + 2), alignment));
    auto* const directions = reinterpret_cast<Lum8u*>(lines + 3 * pitch);
    EdgeBits<Word, Index> edges(size, maps, alignedIn<Index>(directions + 2 * size.width));

    // three rows of magnitudes, with a zero at both ends of each, and two of directions
    __builtin_memset(lines, 0, static_cast<size_t>(3 * pitch) * sizeof(Magnitude));
    Magnitude *up = lines + 1, *middle = up + pitch, *down = middle + pitch;
    const auto directionsOf = [=](int64_t y) { return directions + (y & 1) * size.width; };
    gradient(0, down, directionsOf(0));
    for (int64_t y = 0; y < size.height; ++y) {
        Magnitude* const next = up;
        up = middle;
        middle = down;
        down = next;
        if (y + 1 < size.height)
            gradient(y + 1, down, directionsOf(y + 1));
        else
            __builtin_memset(down, 0, static_cast<size_t>(size.width) * sizeof(Magnitude));
        suppressRow(MagnitudeRows<Magnitude>{up, middle, down}, directionsOf(y), high, size.width, edges.weakRow(y),
                    edges.strongRow(y));
        edges.sweepDown(y);
    }
    edges.sweepUp();
    edges.write(dst);
}

/// Draws the edges of an image. gradient(y, magnitudes, directions) measures its row y.
template <class Index, class Magnitude, class Gradient>
void drawEdges(const Gradient& gradient, Magnitude high, LumiSizeL size, Lum8u* buffer, Plane<Lum8u> dst)
{
    if (size.width >= leastWideRow)
        drawEdgesInWords<uint64_t, Index>(gradient, high, size, buffer, dst);
    else
        drawEdgesInWords<Lum8u, Index>(gradient, high, size, buffer, dst);
}

}  // namespace lumcv::canny
