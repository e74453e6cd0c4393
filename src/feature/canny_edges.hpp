// From magnitudes and directions to edges: suppression row by row, then hysteresis.
//
// Three rows of magnitudes and two of directions are kept. Each row of suppression goes into the map of the whole
// image, where a frame of zeros around the pixels spares the search for neighbours all tests of the image's edge. As
// soon as the row below is in the map too, the weak pixels beside a strong one are made strong, in vectors; only from
// these, which are few, a search goes on from pixel to pixel.
#pragma once

#include "feature/canny_magnitudes.hpp"
#include "frame/image.hpp"
#include "frame/rounding.hpp"

namespace lumcv::canny {

/// What the map says of a pixel. A weak one is found by its lowest bit.
enum PixelClass : Lum8u
{
    none = 0,
    weak = 1,
    strong = 2
};

/// The map and the stack of pixels whose neighbours are still to be looked at. Each pixel is put there once at most.
template <class Index>
class EdgeMap
{
  public:
    EdgeMap(LumiSizeL size, Lum8u* map, Lum8u* stack)
        : size_(size), pitch_(size.width + 2), map_(map), stack_(reinterpret_cast<Index*>(stack)), top_(stack_)
    {
        __builtin_memset(row(-1) - 1, none, static_cast<size_t>(pitch_));
        for (int64_t y = 0; y < size.height; ++y)
            row(y)[-1] = row(y)[size.width] = none;
        __builtin_memset(row(size.height) - 1, none, static_cast<size_t>(pitch_));
    }

    Lum8u* row(int64_t y) const
    {
        return map_ + (y + 1) * pitch_ + 1;
    }

    /// Makes the weak pixels of a row strong that have a strong neighbour. The rows above and below are in the map.
    [[gnu::flatten]] void promoteRow(int64_t y)
    {
        const int64_t pitch = pitch_;
        Lum8u* const pixels = row(y);
        simd::eachAtLeastOnce<simd::registerLanes<Lum8u>>(0, size_.width, [=, this](int64_t x, auto lanes) {
            constexpr int n = lanes;
            const auto isWeak = simd::equal(simd::load<n>(pixels + x), simd::broadcast<n>(Lum8u{weak}));
            if (!simd::any(isWeak)) [[likely]]
                return;
            const auto beside = [](const Lum8u* p) { return simd::load<n>(p - 1) | simd::load<n>(p + 1); };
            const auto three = [=](const Lum8u* p) { return beside(p) | simd::load<n>(p); };
            const Lum8u* const p = pixels + x;
            const auto around = beside(p) | three(p - pitch) | three(p + pitch);
            const auto bit = simd::broadcast<n>(Lum8u{strong});
            for (uint64_t found = simd::laneBits(isWeak & simd::equal(around & bit, bit)); found; found &= found - 1)
                promote(pixels + x + __builtin_ctzll(found));
        });
    }

    /// Makes all weak pixels strong that a chain of weak ones connects with those promoted so far.
    void promoteChains()
    {
        while (top_ != stack_) {
            Lum8u* const p = map_ + *--top_;
            // three bytes of each row around, their lowest bits gathered: row r, column c at bit 8 * c + r
            for (Lum32u found = weakOf(p - pitch_) | weakOf(p) << 1 | weakOf(p + pitch_) << 2; found;
                 found &= found - 1) {
                const int at = __builtin_ctz(found);
                promote(p + ((at & 7) - 1) * pitch_ + (at >> 3) - 1);
            }
        }
    }

    /// Writes the edges.
    [[gnu::flatten]] void write(Plane<Lum8u> dst) const
    {
        for (int64_t y = 0; y < size_.height; ++y) {
            const Lum8u* const from = row(y);
            Lum8u* const to = dst.row(y);
            simd::eachAtLeastOnce<simd::registerLanes<Lum8u>>(0, size_.width, [=](int64_t x, auto lanes) {
                constexpr int n = lanes;
                const auto isEdge = simd::equal(simd::load<n>(from + x), simd::broadcast<n>(Lum8u{strong}));
                simd::store(to + x, simd::select(isEdge, simd::broadcast<n>(Lum8u{255}), simd::broadcast<n>(Lum8u{0})));
            });
        }
    }

  private:
    [[gnu::always_inline]] void promote(Lum8u* pixel)
    {
        *pixel = strong;
        *top_++ = static_cast<Index>(pixel - map_);
    }

    /// The lowest bits of the pixel at p and of those beside it. The fourth byte is that of the frame or of what lies
    /// behind the map.
    [[gnu::always_inline]] static Lum32u weakOf(const Lum8u* p)
    {
        Lum32u bytes;
        __builtin_memcpy(&bytes, p - 1, sizeof bytes);
        return bytes & 0x010101;
    }

    LumiSizeL size_;
    int64_t pitch_;
    Lum8u* map_;
    Index* stack_;
    Index* top_;
};

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

/// The classes of N pixels, in lanes of magnitudes. A vector wider than a register is worked on in halves, one after
/// the other, for its many operands to stay in registers.
template <int N, class Magnitude>
[[gnu::always_inline]] inline simd::Vec<Magnitude, N> classesOf(MagnitudeRows<Magnitude> rows, const Lum8u* directions,
                                                                Magnitude high, int64_t x)
{
    using V = simd::Vec<Magnitude, N>;
    if constexpr (simd::kindOf<Magnitude, N> == simd::Kind::pair)
        return {classesOf<N / 2>(rows, directions, high, x), classesOf<N / 2>(rows, directions, high, x + N / 2)};
    else {
        const auto at = [x](const Magnitude* row, int64_t d) { return simd::load<N>(row + x + d); };
        const V m = at(rows.middle, 0);
        // A pixel survives if it is above the greater one of its neighbours; but of an even pair of neighbours the
        // second one may be as great as the pixel.
        const V row = simd::max(at(rows.middle, -1), decremented(at(rows.middle, 1)));
        const V column = simd::max(at(rows.up, 0), decremented(at(rows.down, 0)));
        const V anti = simd::max(at(rows.up, 1), at(rows.down, -1));
        const V main = simd::max(at(rows.up, -1), at(rows.down, 1));
        const V directionsHere = loadDirections<Magnitude, N>(directions + x);
        const auto points = [=](Direction d) {
            return simd::equal(directionsHere, simd::broadcast<N>(static_cast<Magnitude>(d)));
        };
        const V greatest =
            simd::select(points(horizontal), row,
                         simd::select(points(vertical), column, simd::select(points(antiDiagonal), anti, main)));
        const auto classes = [](PixelClass c) { return simd::broadcast<N>(static_cast<Magnitude>(c)); };
        const V classOfSurvivors =
            simd::select(simd::greater(m, simd::broadcast<N>(high)), classes(strong), classes(weak));
        return simd::select(simd::greater(m, greatest), classOfSurvivors, classes(none));
    }
}

template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> classBytes(simd::Vec<Lum16u, N> classes)
{
    if constexpr (N == 1)
        return {static_cast<Lum8u>(classes.raw)};
    else
        return simd::narrowOnce<Lum8u>(simd::reinterpreted<Lum16s>(classes));
}

template <int N>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> classBytes(simd::Vec<Lum32s, N> classes)
{
    return simd::narrow<Lum8u>(classes);
}

/// Puts the classes of n pixels into the map.
template <class Magnitude>
[[gnu::flatten, gnu::noinline]] void suppressRow(MagnitudeRows<Magnitude> rows, const Lum8u* directions, Magnitude high,
                                                 int64_t n, Lum8u* map)
{
    simd::eachAtLeastOnce<blockLanes<Magnitude>>(0, n, [=](int64_t x, auto lanes) {
        constexpr int count = lanes;
        if (simd::anyNonZero(simd::load<count>(rows.middle + x)))
            simd::store(map + x, classBytes(classesOf<count>(rows, directions, high, x)));
        else
            simd::store(map + x, simd::broadcast<count>(Lum8u{none}));
    });
}

/// Draws the edges of an image. gradient(y, magnitudes, directions) measures its row y. The buffer has room for the
/// map, the rows and an Index for each pixel:
///   31 + roundedUp((width + 2) * (height + 2), 32) + 3 * sizeof(Magnitude) * (width + 2) + 2 * width
///      + sizeof(Index) - 1 + sizeof(Index) * width * height
template <class Index, class Magnitude, class Gradient>
void drawEdges(const Gradient& gradient, Magnitude high, LumiSizeL size, Lum8u* buffer, Plane<Lum8u> dst)
{
    constexpr uintptr_t alignment = 32;
    Lum8u* const map = alignedUp(buffer, alignment);
    const int64_t pitch = size.width + 2;
    auto* const lines = reinterpret_cast<Magnitude*>(map + roundedUp(pitch * (size.height + 2), alignment));
    auto* const directions = reinterpret_cast<Lum8u*>(lines + 3 * pitch);
    EdgeMap<Index> edges(size, map, alignedUp(directions + 2 * size.width, sizeof(Index)));

    __builtin_memset(lines, 0, static_cast<size_t>(3 * pitch) * sizeof(Magnitude));
    MagnitudeRows<Magnitude> rows{lines + 1, lines + pitch + 1, lines + 2 * pitch + 1};
    const auto measure = [&](int64_t y) {
        gradient(y, const_cast<Magnitude*>(rows.down), directions + (y & 1) * size.width);
    };
    measure(0);
    for (int64_t y = 0; y < size.height; ++y) {
        rows = {rows.middle, rows.down, rows.up};
        if (y + 1 < size.height)
            measure(y + 1);
        else
            __builtin_memset(const_cast<Magnitude*>(rows.down), 0, static_cast<size_t>(size.width) * sizeof(Magnitude));
        suppressRow(rows, directions + (y & 1) * size.width, high, size.width, edges.row(y));
        if (y > 0)
            edges.promoteRow(y - 1);
    }
    edges.promoteRow(size.height - 1);
    edges.promoteChains();
    edges.write(dst);
}

}  // namespace lumcv::canny
