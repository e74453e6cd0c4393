// The magnitudes of a row of gradients, with the low threshold applied. What is no candidate has magnitude 0.
//
// A magnitude comes in one of two forms, both of which compare as integers:
//   Lum16u   how far it lies above the low threshold
//   Lum32s   the magnitude itself; that of a float, which is never negative, by its bits
#pragma once

#include <bit>
#include <cmath>

#include "feature/canny_directions.hpp"

namespace lumcv::canny {

/// The pixels of a block; those of a block without candidates get no direction.
template <class Magnitude>
inline constexpr int blockLanes =
    simd::registerLanes<Magnitude> > simd::restLanes ? simd::registerLanes<Magnitude> : simd::restLanes;

// Thresholds. They are not negative; one that is not a number is above every magnitude.

/// The part before the point, at most the greatest integer.
inline Lum32s integerThreshold(Lum32f threshold)
{
    return threshold < 0x1p31f ? static_cast<Lum32s>(threshold < 0 ? 0 : threshold) : INT32_MAX;
}

/// The form in which a float compares as an integer.
inline Lum32s thresholdBits(Lum32f threshold)
{
    return threshold <= 0 ? 0 : threshold > 0 ? std::bit_cast<Lum32s>(threshold) : INT32_MAX;
}

/// |dx| + |dy| of words, in words: at most 65536 - low, so low is at least 1 where a derivative may be -32768.
struct WordSum
{
    using Magnitude = Lum16u;
    Lum16u low;

    static constexpr Lum32s greatestLow = 0xffff;

    /// The high threshold as a magnitude; beyond 65536 there is none.
    Lum16u high(Lum32s threshold) const
    {
        const Lum32s above = (threshold < 0x10000 ? threshold : 0x10000) - low;
        return static_cast<Lum16u>(above < 0 ? 0 : above < 0xffff ? above : 0xffff);
    }

    /// Stores the magnitudes of N pixels and returns whether there are candidates among them.
    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum16s* dx, const Lum16s* dy, Lum16u* magnitudes, simd::Lanes<N>) const
    {
        const auto ax = simd::magnitude(simd::load<N>(dx));
        const auto ay = simd::magnitude(simd::load<N>(dy));
        const auto least = simd::broadcast<N>(low);
        // ax + (ay - low) or ax - (low - ay), whichever difference is positive, so that no sum exceeds 65535
        const auto above =
            simd::subtractSaturated(ax + simd::subtractSaturated(ay, least), simd::subtractSaturated(least, ay));
        simd::store(magnitudes, above);
        return simd::anyNonZero(above);
    }
};

/// Stores the magnitudes above the low threshold and zeros, and returns whether there are any.
template <class T, int N>
[[gnu::always_inline]] inline bool storeCandidates(simd::Vec<T, N> magnitude, T low, Lum32s* magnitudes)
{
    const auto isCandidate = simd::greater(magnitude, simd::broadcast<N>(low));
    const auto kept = simd::select(isCandidate, magnitude, simd::broadcast<N>(T{0}));
    static_assert(sizeof(T) == sizeof(Lum32s));
    simd::store(reinterpret_cast<T*>(magnitudes), kept);
    return simd::any(isCandidate);
}

/// |dx| + |dy| of words.
struct IntegerSum
{
    using Magnitude = Lum32s;
    Lum32s low;

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum16s* dx, const Lum16s* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        const auto absolute = [](auto v) { return simd::max(v, simd::broadcast<N>(Lum32s{0}) - v); };
        return storeCandidates(absolute(simd::loadWidened<N>(dx)) + absolute(simd::loadWidened<N>(dy)), low,
                               magnitudes);
    }
};

/// dx * dx + dy * dy of words, modulo 2^32: 2^31 itself is negative, and no candidate.
struct IntegerSquares
{
    using Magnitude = Lum32s;
    Lum32s low;

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum16s* dx, const Lum16s* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        return storeCandidates(simd::squareSums<N>(dx, dy), low, magnitudes);
    }
};

/// Where roots of sums of squares are wanted: the greatest sum whose root, in single precision, is not above the
/// threshold. Roots grow with the sums, or stay the same.
inline Lum32s squareThreshold(Lum32f threshold)
{
    Lum32s sum = 0;
    for (Lum32s bit = 1 << 30; bit; bit >>= 1)
        if (!(__builtin_sqrtf(static_cast<Lum32f>(sum | bit)) > threshold))
            sum |= bit;
    return sum;
}

/// Up to this sum all roots differ in single precision, so that the sums compare as their roots do.
inline constexpr Lum32s greatestSumForRoot = 1 << 21;

/// The root of IntegerSquares, which the derivatives of bytes leave exact.
struct RootOfSquares
{
    using Magnitude = Lum32s;
    Lum32s low;  ///< as a sum of squares

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum16s* dx, const Lum16s* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        using Roots = simd::Vec<Lum32f, N>;
        const auto sums = simd::squareSums<N>(dx, dy);
        const auto isCandidate = simd::greater(sums, simd::broadcast<N>(low));
        const auto zeros = simd::broadcast<N>(Lum32s{0});
        if (!simd::any(isCandidate)) {
            simd::store(magnitudes, zeros);
            return false;
        }
        const Roots roots = simd::root(simd::toFloat(simd::select(isCandidate, sums, zeros)));
        simd::store(reinterpret_cast<Lum32f*>(magnitudes), roots);
        return true;
    }
};

/// |dx| + |dy|.
struct FloatSum
{
    using Magnitude = Lum32s;
    Lum32f low;

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum32f* dx, const Lum32f* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        return storeCandidates(simd::magnitude(simd::load<N>(dx)) + simd::magnitude(simd::load<N>(dy)), low,
                               magnitudes);
    }
};

/// dx * dx + dy * dy.
struct FloatSquares
{
    using Magnitude = Lum32s;
    Lum32f low;

    template <int N, class S>
    [[gnu::always_inline]] static simd::Vec<Lum32f, N> sum(const S* pDx, const S* pDy)
    {
        const auto dx = simd::loadFloat<N>(pDx);
        const auto dy = simd::loadFloat<N>(pDy);
        return dx * dx + dy * dy;
    }

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum32f* dx, const Lum32f* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        return storeCandidates(sum<N>(dx, dy), low, magnitudes);
    }
};

/// The root of FloatSquares, for words.
struct RootOfFloatSquares
{
    using Magnitude = Lum32s;
    Lum32f low;

    template <int N>
    [[gnu::always_inline]] bool operator()(const Lum16s* dx, const Lum16s* dy, Lum32s* magnitudes, simd::Lanes<N>) const
    {
        return storeCandidates(simd::root(FloatSquares::sum<N>(dx, dy)), low, magnitudes);
    }
};

/// Measures n gradients: their magnitudes, and their directions where there are candidates.
template <class Measure, class Directions, class S>
[[gnu::flatten, gnu::noinline]] void measureGradients(Measure measure, Directions, const S* dx, const S* dy, int64_t n,
                                                      typename Measure::Magnitude* magnitudes, Lum8u* directions)
{
    constexpr int lanes = std::is_same_v<Directions, Angles> ? 1 : blockLanes<typename Measure::Magnitude>;
    simd::eachAtLeastOnce<lanes>(0, n, [=](int64_t x, auto count) {
        if (measure(dx + x, dy + x, magnitudes + x, count)) [[likely]]
            simd::store(directions + x, Directions::template of<count>(dx + x, dy + x));
    });
}

}  // namespace lumcv::canny
