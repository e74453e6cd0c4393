// Arcs of a ring: by how much the points of the best one differ from the middle by more than the threshold.
#pragma once

#include "feature/fast_record.hpp"
#include "simd/simd.hpp"

namespace lumcv::fast {

/// For N pixels side by side, the limits beyond which their rings are brighter or darker.
template <int N>
struct Limits
{
    simd::Vec<Lum8u, N> upper, lower;

    [[gnu::always_inline]] Limits(const Lum8u* p, Lum8u threshold)
        : upper(simd::addSaturated(simd::load<N>(p), simd::broadcast<N>(threshold))),
          lower(simd::subtractSaturated(simd::load<N>(p), simd::broadcast<N>(threshold)))
    {
    }
};

/// Not 0 where there may be an arc.
template <int N>
struct Candidates
{
    simd::Vec<Lum8u, N> bright, dark;
};

/// An arc has one point of each pair of opposite ones: asks two of those pairs, from point `first` on.
template <int N, class Ring>
[[gnu::always_inline]] inline Candidates<N> candidates(const Ring& ring, const Lum8u* p, const Limits<N>& limits,
                                                       int first)
{
    const int quarter = ring.points() / 4;
    const auto point = [&](int i) { return simd::load<N>(p + ring.offsets[first + i * quarter]); };
    const auto a = point(0), b = point(1), c = point(2), d = point(3);
    const auto brightest = simd::min(simd::max(a, c), simd::max(b, d));
    const auto darkest = simd::max(simd::min(a, c), simd::min(b, d));
    return {simd::subtractSaturated(brightest, limits.upper), simd::subtractSaturated(limits.lower, darkest)};
}

/// Asks the pairs that lie between those of the other test, too.
template <int N, class Ring>
[[gnu::always_inline]] inline Candidates<N> closeCandidates(const Ring& ring, const Lum8u* p, const Limits<N>& limits)
{
    const auto some = candidates(ring, p, limits, 0);
    const auto others = candidates(ring, p, limits, ring.points() / 8);
    return {simd::min(some.bright, others.bright), simd::min(some.dark, others.dark)};
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

/// By how much the best arc of each of the N pixels at p exceeds the limit; 0 where there is none.
template <bool isBright, int N, class Ring>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> bestArcs(const Ring& ring, const Lum8u* p, const Limits<N>& limits)
{
    return ring.template best<N>([&](int i) {
        const auto point = simd::load<N>(p + ring.offsets[i]);
        return isBright ? simd::subtractSaturated(point, limits.upper) : simd::subtractSaturated(limits.lower, point);
    });
}

}  // namespace lumcv::fast
