// Neighbouring elements for interpolation, and the way floats are rounded, against plain loops.
#include "simd/neighbours.hpp"

#include <gtest/gtest.h>
#include <immintrin.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "simd/control.hpp"
#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

/// Elements right against an unreadable page, so that one element too many ends the test.
template <class T, int count>
GuardedBlock elements(unsigned seed)
{
    const auto values = drawn<T, count>(seed, std::is_floating_point_v<T> ? Values::Ordinary : Values::Extreme);
    GuardedBlock block(sizeof values, Guard::After);
    std::memcpy(block.data(), values.data(), sizeof values);
    return block;
}

template <class Check>
void forLaneCounts(Check check)
{
    for (unsigned seed = 0; seed < draws; ++seed) {
        check(simd::Lanes<16>{}, seed);
        check(simd::Lanes<32>{}, seed);
        check(simd::Lanes<64>{}, seed);
    }
}

template <class T>
void expectPairs()
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        const GuardedBlock block = elements<T, 2 * N>(seed);
        const T* const p = block.as<T>();
        const auto pairs = simd::loadNeighbours<N>(p);
        expectEach(pairs.first, [p](int i) { return Lum32f(p[2 * i]); });
        expectEach(pairs.second, [p](int i) { return Lum32f(p[2 * i + 1]); });
    });
}

TEST(SimdNeighbours, PairsAsFloats)
{
    expectPairs<Lum8u>();
    expectPairs<Lum16u>();
    expectPairs<Lum32f>();
}

template <class T>
void expectFourStored(unsigned seed)
{
    auto lanes = drawn<Lum32s, 4>(seed);
    if (seed % 2)
        for (Lum32s& lane : lanes)
            lane %= 300;
    T stored[5] = {7, 7, 7, 7, 7};
    simd::storeFour(stored, simd::load<4>(lanes.data()));
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(stored[i], T(std::clamp<Lum32s>(lanes[i], 0, std::numeric_limits<T>::max()))) << lanes[i];
    EXPECT_EQ(stored[4], 7);
}

TEST(SimdNeighbours, FourLanesSaturated)
{
    for (unsigned seed = 0; seed < draws; ++seed) {
        expectFourStored<Lum8u>(seed);
        expectFourStored<Lum16u>(seed);
    }
}

/// Sums of words, from any bit on; `centre` is what has been taken from the elements.
template <int lowest, class T, int N>
void expectSums(unsigned seed, Lum32s centre)
{
    const GuardedBlock block = elements<T, N + 1>(seed);
    const T* const p = block.as<T>();
    Random random(seed);
    const auto first = Lum16s(random.between(0, 16384)), second = Lum16s(random.between(-16384, 16384));
    const auto sums = simd::neighbourProducts(simd::loadNeighbourWords<N>(p), first, second);
    expectEach(simd::wordsOf<lowest>(sums + sums), [=](int i) {
        const Lum32s sum = (p[i] - centre) * first + (p[i + 1] - centre) * second;
        return Lum16u((int64_t{2} * sum) >> lowest);
    });
}

template <class T>
void expectSums(Lum32s centre)
{
    for (unsigned seed = 0; seed < draws; ++seed)
        expectSums<14, T, 1>(seed, centre);
    forLaneCounts([centre]<int N>(simd::Lanes<N>, unsigned seed) {
        expectSums<0, T, N>(seed, centre);
        expectSums<7, T, N>(seed, centre);
        expectSums<14, T, N>(seed, centre);
        expectSums<16, T, N>(seed, centre);
    });
}

TEST(SimdNeighbours, WeightedSumsOfWords)
{
    expectSums<Lum8u>(0);
    expectSums<Lum16u>(0x8000);
}

TEST(SimdNeighbours, WeightedSumsOfBytes)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        const GuardedBlock block = elements<Lum8u, N + 1>(seed);
        const auto* const p = block.as<Lum8u>();
        Random random(seed);
        const auto first = int(random.between(-64, 64)), second = int(random.between(-64, 64));
        const auto factors = simd::broadcast<N / 2>(Lum16s((first & 0xff) | (second & 0xff) << 8));
        expectEach(simd::pairProducts(simd::load<N>(p), factors),
                   [=](int i) { return p[2 * i] * first + p[2 * i + 1] * second; });
    });
}

TEST(SimdNeighbours, BytesOfEvenAndOddPlaces)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        const GuardedBlock block = elements<Lum8u, 2 * N>(seed);
        const auto* const p = block.as<Lum8u>();
        const auto even = simd::loadWords<N>(p), odd = simd::loadWords<N>(p + N);
        expectEach(simd::merged(even, odd), [=](int i) { return p[i / 2 + i % 2 * N]; });
    });
}

TEST(SimdFloatMode, IsItsOwnForAWhile)
{
    const unsigned before = _mm_getcsr();
    // what the compiler does not know, it cannot compute beforehand
    volatile Lum32f one = 1, ten = 10, tiny = std::numeric_limits<Lum32f>::denorm_min();
    constexpr unsigned callers = _MM_ROUND_UP | _MM_FLUSH_ZERO_ON | 0x0040 | (_MM_MASK_MASK & ~_MM_MASK_INEXACT);
    _mm_setcsr(callers);
    Lum32f truncated = 0, nearest = 0, kept = 0;
    {
        const simd::OwnFloatMode mode(simd::Rounding::towardsZero);
        truncated = one / ten;
    }
    const unsigned between = _mm_getcsr();
    {
        const simd::OwnFloatMode mode(simd::Rounding::toNearest);
        nearest = one / ten;
        kept = tiny * one;
    }
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(truncated, 0x1.999998p-4f);
    EXPECT_EQ(nearest, 0x1.99999ap-4f);
    EXPECT_EQ(kept, tiny);
    EXPECT_EQ(between, callers);
    EXPECT_EQ(after, callers);
}

}  // namespace
}  // namespace lumcv::test
