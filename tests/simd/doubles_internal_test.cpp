// Double precision and running totals against plain loops.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <class Check>
void forLaneCounts(Check check)
{
    for (unsigned seed = 0; seed < draws; ++seed) {
        check(simd::Lanes<1>{}, seed);
        check(simd::Lanes<4>{}, seed);
        check(simd::Lanes<8>{}, seed);
        check(simd::Lanes<16>{}, seed);
    }
}

/// The bits, or that both are not numbers.
template <class T>
bool isSame(T a, T b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

TEST(SimdDoubles, ToAndFromTheOtherTypes)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        const auto integers = drawn<Lum32s, N>(seed);
        const auto singles = drawn<Lum32f, N>(seed, Values::NonFinite);
        const auto doubles = drawn<Lum64f, N>(seed, Values::NonFinite);
        const auto ofIntegers = lanesOf(simd::toDouble(simd::load<N>(integers.data())));
        const auto ofSingles = lanesOf(simd::toDouble(simd::load<N>(singles.data())));
        const auto nearest = lanesOf(simd::toSingle(simd::load<N>(doubles.data())));
        for (int i = 0; i < N; ++i) {
            EXPECT_EQ(ofIntegers[i], static_cast<Lum64f>(integers[i]));
            EXPECT_TRUE(isSame(ofSingles[i], static_cast<Lum64f>(singles[i]))) << singles[i];
            EXPECT_TRUE(isSame(nearest[i], static_cast<Lum32f>(doubles[i]))) << doubles[i];
        }
    });
}

TEST(SimdDoubles, TruncationAndWhatLiesBeyondIntegers)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        auto doubles = drawn<Lum64f, N>(seed, Values::NonFinite);
        doubles[0] = seed % 2 ? 2147483647.99 : -2147483648.99;
        const auto integers = lanesOf(simd::truncated(simd::load<N>(doubles.data())));
        for (int i = 0; i < N; ++i) {
            const bool fits = doubles[i] > -2147483649.0 && doubles[i] < 2147483648.0;
            EXPECT_EQ(integers[i], fits ? static_cast<Lum32s>(doubles[i]) : INT32_MIN) << doubles[i];
        }
    });
}

TEST(SimdDoubles, TruncationOfSingles)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        auto singles = drawn<Lum32f, N>(seed, Values::NonFinite);
        singles[0] = seed % 2 ? 2147483520.0f : -2147483648.0f;
        const auto integers = lanesOf(simd::truncated(simd::load<N>(singles.data())));
        for (int i = 0; i < N; ++i) {
            const bool fits = singles[i] >= -2147483648.0f && singles[i] < 2147483648.0f;
            EXPECT_EQ(integers[i], fits ? static_cast<Lum32s>(singles[i]) : INT32_MIN) << singles[i];
        }
    });
}

TEST(SimdDoubles, TheLesserLanesChoose)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        if constexpr (N <= 4) {
            const auto a = drawn<Lum64f, N>(seed, Values::NonFinite), b = drawn<Lum64f, N>(seed + 1, Values::NonFinite);
            const auto x = drawn<Lum64f, N>(seed + 2, Values::NonFinite);
            const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data()), vx = simd::load<N>(x.data());
            const auto chosen = lanesOf(simd::select(simd::less(va, vb), vx, va));
            for (int i = 0; i < N; ++i)
                EXPECT_TRUE(isSame(chosen[i], a[i] < b[i] ? x[i] : a[i])) << a[i] << " and " << b[i];
        }
    });
}

TEST(SimdControl, RoundsTowardsZeroForAWhile)
{
    const unsigned before = _mm_getcsr();
    // what the compiler does not know, it cannot divide beforehand
    volatile Lum32f one = 1, minusOne = -1, ten = 10, three = 3;
    {
        const simd::RoundedTowardsZero rounding;
        EXPECT_EQ(one / ten, 0x1.999998p-4f);
        EXPECT_EQ(minusOne / ten, -0x1.999998p-4f);
        EXPECT_EQ(one / three, 0x1.555554p-2f);
    }
    EXPECT_EQ(_mm_getcsr(), before);
    EXPECT_EQ(one / ten, 0x1.99999ap-4f);
}

TEST(SimdDoubles, Roots)
{
    forLaneCounts([]<int N>(simd::Lanes<N>, unsigned seed) {
        const auto singles = drawn<Lum32f, N>(seed, Values::NonFinite);
        const auto doubles = drawn<Lum64f, N>(seed, Values::NonFinite);
        const auto ofSingles = lanesOf(simd::root(simd::load<N>(singles.data())));
        const auto ofDoubles = lanesOf(simd::root(simd::load<N>(doubles.data())));
        for (int i = 0; i < N; ++i) {
            EXPECT_TRUE(isSame(ofSingles[i], std::sqrt(singles[i]))) << singles[i];
            EXPECT_TRUE(isSame(ofDoubles[i], std::sqrt(doubles[i]))) << doubles[i];
        }
    });
}

/// Totals that go on through several steps, of bytes that end at an unreadable page.
template <class Term, int N>
void expectRunningTotals(Lum32u start, unsigned (*term)(unsigned))
{
    const GuardedBlock bytes(64, Guard::After);
    Random random(N);
    for (std::size_t i = 0; i < 64; ++i)
        bytes.data()[i] = random.oneIn(3) ? 255 : random.value<Lum8u>(Values::Ordinary);
    simd::Total<N> total = simd::broadcast<simd::totalLanes<N>>(static_cast<Lum32s>(start));
    Lum32u expected = start;
    for (int x = 0; x < 64; x += N) {
        const auto totals = lanesOf(simd::runningTotals<Term, N>(bytes.data() + x, total));
        for (int i = 0; i < N; ++i) {
            expected += term(bytes.data()[x + i]);
            ASSERT_EQ(static_cast<Lum32u>(totals[i]), expected) << "pixel " << x + i;
        }
        ASSERT_EQ(static_cast<Lum32u>(simd::valueOf(total)), expected);
    }
}

TEST(SimdPrefix, TotalsOfBytesAndOfTheirSquares)
{
    for (const Lum32u start : {0u, 1000000u, 0xFFFFFF00u}) {
        const auto itself = [](unsigned byte) { return byte; };
        const auto square = [](unsigned byte) { return byte * byte; };
        expectRunningTotals<simd::ByteSum, 1>(start, itself);
        expectRunningTotals<simd::ByteSum, 4>(start, itself);
        expectRunningTotals<simd::ByteSum, 16>(start, itself);
        expectRunningTotals<simd::ByteSquareSum, 1>(start, square);
        expectRunningTotals<simd::ByteSquareSum, 4>(start, square);
        expectRunningTotals<simd::ByteSquareSum, 16>(start, square);
    }
}

TEST(SimdPrefix, SumsOfFloatsInTheirOrder)
{
    for (unsigned seed = 0; seed < draws; ++seed) {
        const auto p = drawn<Lum32f, 4>(seed, Values::Ordinary);
        const Lum32f before = 12.34f * static_cast<Lum32f>(seed);
        auto total = simd::broadcast<4>(before);
        const auto sums = lanesOf(simd::runningSums(simd::load<4>(p.data()), total));
        const std::array<Lum32f, 4> pairs = {p[0] + 0.0f, p[1] + p[0], p[2] + p[1], p[3] + p[2]};
        const std::array<Lum32f, 4> expected = {pairs[0] + 0.0f + before, pairs[1] + 0.0f + before,
                                                pairs[2] + pairs[0] + before, pairs[3] + pairs[1] + before};
        EXPECT_EQ(sums, expected);
        EXPECT_EQ(lanesOf(total)[0], expected[3]);
        EXPECT_EQ(lanesOf(total)[3], expected[3]);
    }
}

}  // namespace
}  // namespace lumcv::test
