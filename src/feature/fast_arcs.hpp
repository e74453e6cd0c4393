// Arcs of a ring: by how much the points of the best one differ from the middle by more than the threshold.
#pragma once

#include "feature/fast_record.hpp"
#include "simd/simd.hpp"

namespace lumcv::fast {

/// For N pixels side by side. 0 where there is no arc.
template <int N>
struct Arcs
{
    simd::Vec<Lum8u, N> bright, dark;
};

/// The pixels of the middle and the limits for those of the ring.
template <int N>
struct Middle
{
    simd::Vec<Lum8u, N> upper, lower;

    [[gnu::always_inline]] Middle(const Lum8u* p, simd::Vec<Lum8u, N> threshold)
        : upper(simd::addSaturated(simd::load<N>(p), threshold)),
          lower(simd::subtractSaturated(simd::load<N>(p), threshold))
    {
    }
};

/// What an arc cannot do without: it has one point of each pair of opposite ones.
template <class Ring, int N>
[[gnu::always_inline]] inline Arcs<N> candidates(const Ring& ring, const Lum8u* p, const Middle<N>& middle)
{
    const int quarter = ring.points() / 4;
    const auto point = [&](int i) { return simd::load<N>(p + ring.offsets[i * quarter]); };
    const auto below = point(0), left = point(1), above = point(2), right = point(3);
    const auto brightest = simd::min(simd::max(below, above), simd::max(left, right));
    const auto darkest = simd::max(simd::min(below, above), simd::min(left, right));
    return {simd::subtractSaturated(brightest, middle.upper), simd::subtractSaturated(middle.lower, darkest)};
}

/// The ring of radius 3 with arcs of nine points.
struct NineOfSixteen
{
    const int64_t* offsets;

    static constexpr int points()
    {
        return 16;
    }

    /// The greatest, over all arcs, of the smallest excess in the arc; excess(i) is that of point i.
    template <int N, class Excess>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> best(Excess excess) const
    {
        simd::Vec<Lum8u, N> e[16], pairs[16], fours[16];
        for (int i = 0; i < 16; ++i)
            e[i] = excess(i);
        // the eight points from each odd one on belong to two arcs, which differ in their ninth point
        for (int i = 1; i < 16; i += 2)
            pairs[i] = simd::min(e[i], e[(i + 1) % 16]);
        for (int i = 1; i < 16; i += 2)
            fours[i] = simd::min(pairs[i], pairs[(i + 2) % 16]);
        auto greatest = simd::broadcast<N>(Lum8u{0});
        for (int i = 1; i < 16; i += 2) {
            const auto eight = simd::min(fours[i], fours[(i + 4) % 16]);
            greatest = simd::max(greatest, simd::min(eight, simd::max(e[i - 1], e[(i + 8) % 16])));
        }
        return greatest;
    }
};

/// Any ring with arcs of any length.
struct AnyRing
{
    const int64_t* offsets;
    int points_, arc;

    int points() const
    {
        return points_;
    }

    template <int N, class Excess>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> best(Excess excess) const
    {
        const int n = points_;
        simd::Vec<Lum8u, N> e[2 * mostPoints];
        for (int i = 0; i < n; ++i)
            e[i] = excess(i);
        // e[i] becomes the smallest of the `reach` points from i on
        const auto widen = [&](int by) {
            for (int i = 0; i < by; ++i)
                e[n + i] = e[i];
            for (int i = 0; i < n; ++i)
                e[i] = simd::min(e[i], e[i + by]);
        };
        int reach = 1;
        for (; 2 * reach <= arc; reach *= 2)
            widen(reach);
        widen(arc - reach);
        auto greatest = simd::broadcast<N>(Lum8u{0});
        for (int i = 0; i < n; ++i)
            greatest = simd::max(greatest, e[i]);
        return greatest;
    }
};

/// The arcs of N pixels from p on.
template <int N, class Ring>
[[gnu::always_inline]] inline Arcs<N> arcsAt(const Ring& ring, const Lum8u* p, simd::Vec<Lum8u, N> threshold)
{
    const Middle<N> middle(p, threshold);
    Arcs<N> arcs = candidates(ring, p, middle);
    if (simd::anyNonZero(arcs.bright))
        arcs.bright = ring.template best<N>(
            [&](int i) { return simd::subtractSaturated(simd::load<N>(p + ring.offsets[i]), middle.upper); });
    if (simd::anyNonZero(arcs.dark))
        arcs.dark = ring.template best<N>(
            [&](int i) { return simd::subtractSaturated(middle.lower, simd::load<N>(p + ring.offsets[i])); });
    return arcs;
}

}  // namespace lumcv::fast
