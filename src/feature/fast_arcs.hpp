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

/// Of pairs of opposite points, the least of the brighter ones and the greatest of the darker ones.
template <int N>
struct Opposites
{
    simd::Vec<Lum8u, N> brightest, darkest;

    /// An arc has one point of each pair.
    [[gnu::always_inline]] Candidates<N> candidates(const Limits<N>& limits) const
    {
        return {simd::subtractSaturated(brightest, limits.upper), simd::subtractSaturated(limits.lower, darkest)};
    }
};

/// Of two pairs, from point `first` on.
template <int N, class Ring>
[[gnu::always_inline]] inline Opposites<N> opposites(const Ring& ring, const Lum8u* p, int first)
{
    const int quarter = ring.points() / 4;
    const auto point = [&](int i) { return simd::load<N>(p + ring.offsets[first + i * quarter]); };
    const auto a = point(0), b = point(1), c = point(2), d = point(3);
    return {simd::min(simd::max(a, c), simd::max(b, d)), simd::max(simd::min(a, c), simd::min(b, d))};
}

/// Asks two pairs.
template <int N, class Ring>
[[gnu::always_inline]] inline Candidates<N> candidates(const Ring& ring, const Lum8u* p, const Limits<N>& limits)
{
    return opposites<N>(ring, p, 0).candidates(limits);
}

/// Asks the pairs that lie between those, too.
template <int N, class Ring>
[[gnu::always_inline]] inline Candidates<N> closeCandidates(const Ring& ring, const Lum8u* p, const Limits<N>& limits)
{
    const auto some = opposites<N>(ring, p, 0), others = opposites<N>(ring, p, ring.points() / 8);
    return Opposites<N>{simd::min(some.brightest, others.brightest), simd::max(some.darkest, others.darkest)}
        .candidates(limits);
}

/// The ring of radius 3 with arcs of nine points.
struct NineOfSixteen
{
    const int64_t* offsets;

    static constexpr int points()
    {
        return 16;
    }

    /// The greatest, over all arcs, of the smallest byte in the arc; byte(i) is that of point i.
    template <int N, class Byte>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> best(Byte byte) const
    {
        simd::Vec<Lum8u, N> e[16], pairs[16], fours[16];
        for (int i = 0; i < 16; ++i)
            e[i] = byte(i);
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

    template <int N, class Byte>
    [[gnu::always_inline]] simd::Vec<Lum8u, N> best(Byte byte) const
    {
        const int n = points_;
        simd::Vec<Lum8u, N> e[2 * mostPoints];
        for (int i = 0; i < n; ++i)
            e[i] = byte(i);
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

/// By how much the best arc of each of the N pixels at p exceeds the limit; 0 where there is none. Where `inverted` is
/// 255 and not 0, the arcs are dark ones: those are bright in the inverted image.
template <int N, class Ring>
[[gnu::always_inline]] inline simd::Vec<Lum8u, N> bestArcs(const Ring& ring, const Lum8u* p,
                                                           simd::Vec<Lum8u, N> inverted, Lum8u threshold)
{
    const auto byteAt = [=](int64_t offset) { return simd::load<N>(p + offset) ^ inverted; };
    // what is left of the least byte of an arc is the least excess of its points
    const auto best = ring.template best<N>([&](int i) { return byteAt(ring.offsets[i]); });
    return simd::subtractSaturated(best, simd::addSaturated(byteAt(0), simd::broadcast<N>(threshold)));
}

}  // namespace lumcv::fast
