// Sums over lanes against sums of plain loops.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <class T, int N>
std::array<T, N> filledWith(T value)
{
    std::array<T, N> lanes;
    lanes.fill(value);
    return lanes;
}

template <class Check>
void forByteCounts(Check check)
{
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<64>{});
    check(simd::Lanes<128>{});
}

/// The sum of unsigned 32-bit lanes.
template <int N>
uint64_t totalOf(simd::Vec<Lum32s, N> v)
{
    std::array<Lum32s, N> lanes;
    simd::store(lanes.data(), v);
    uint64_t sum = 0;
    for (const Lum32s lane : lanes)
        sum += static_cast<Lum32u>(lane);
    return sum;
}

TEST(SimdSums, OfBytesAndOfTheirSquares)
{
    forByteCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed <= draws; ++seed) {
            const auto lanes = seed == draws ? filledWith<Lum8u, N>(255) : drawn<Lum8u, N>(seed);
            uint64_t sum = 0, squares = 0;
            for (const uint64_t lane : lanes) {
                sum += lane;
                squares += lane * lane;
            }
            const auto v = simd::load<N>(lanes.data());
            EXPECT_EQ(simd::total(simd::sumsOf(v)), sum);
            EXPECT_EQ(totalOf(simd::squareSumsOf(v)), squares);
        }
    });
}

TEST(SimdSums, OfDifferencesOfBytes)
{
    forByteCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed <= draws; ++seed) {
            const auto a = seed == draws ? filledWith<Lum8u, N>(255) : drawn<Lum8u, N>(seed);
            const auto b = seed == draws ? filledWith<Lum8u, N>(0) : drawn<Lum8u, N>(seed + 1000);
            uint64_t sum = 0;
            for (std::size_t i = 0; i < N; ++i)
                sum += static_cast<uint64_t>(a[i] > b[i] ? a[i] - b[i] : b[i] - a[i]);
            EXPECT_EQ(simd::total(simd::sumsOfDifferences(simd::load<N>(a.data()), simd::load<N>(b.data()))), sum);
            EXPECT_EQ(simd::total(simd::sumsOfDifferences(simd::load<N>(b.data()), simd::load<N>(a.data()))), sum);
        }
    });
}

TEST(SimdSums, OfWordsAndOfTheirSquares)
{
    forByteCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed <= draws + 1; ++seed) {
            const auto lanes = seed == draws       ? filledWith<Lum16s, N>(-32768)
                               : seed == draws + 1 ? filledWith<Lum16s, N>(32767)
                                                   : drawn<Lum16s, N>(seed);
            int64_t sum = 0, squares = 0;
            for (const int64_t lane : lanes) {
                sum += lane;
                squares += lane * lane;
            }
            const auto v = simd::load<N>(lanes.data());
            EXPECT_EQ(static_cast<int64_t>(simd::total(simd::widenedSigned(simd::sumsOf(v)))), sum);
            EXPECT_EQ(static_cast<int64_t>(simd::total(simd::squareSumsOf(v))), squares);
        }
    });
}

TEST(SimdSums, NeighboursAreAddedWithAndWithoutSigns)
{
    constexpr int N = simd::registerLanes<Lum32s>;
    for (unsigned seed = 0; seed < draws; ++seed) {
        const auto lanes = drawn<Lum32s, N>(seed);
        std::array<uint64_t, N / 2> withSigns, without;
        simd::store(withSigns.data(), simd::widenedSigned(simd::load<N>(lanes.data())));
        simd::store(without.data(), simd::widenedUnsigned(simd::load<N>(lanes.data())));
        for (std::size_t i = 0; i < N / 2; ++i) {
            EXPECT_EQ(static_cast<int64_t>(withSigns[i]), int64_t{lanes[2 * i]} + lanes[2 * i + 1]);
            EXPECT_EQ(without[i], uint64_t{static_cast<Lum32u>(lanes[2 * i])} + static_cast<Lum32u>(lanes[2 * i + 1]));
        }
    }
}

TEST(SimdSums, MaskBytesAreCounted)
{
    forByteCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            Random random(seed + 1);
            GuardedBlock mask(N, seed % 2 ? Guard::After : Guard::Before);
            uint64_t count = 0;
            for (std::size_t i = 0; i < N; ++i) {
                mask.data()[i] = random.oneIn(2) ? 0 : static_cast<Lum8u>(random.between(1, 255));
                count += mask.data()[i] != 0;
            }
            EXPECT_EQ(simd::total(simd::countsOf<N>(mask.as<const Lum8u>())), count);
        }
    });
}

TEST(SimdSums, TotalsFoldHalves)
{
    for (unsigned seed = 0; seed < draws; ++seed) {
        auto lanes = drawn<Lum64f, 16>(seed, Values::Ordinary);
        const Lum64f got = simd::total(simd::load<16>(lanes.data()));
        const auto folded = [&lanes](std::size_t i) {
            return (lanes[i] + lanes[i + 8]) + (lanes[i + 4] + lanes[i + 12]);
        };
        EXPECT_EQ(got, (folded(0) + folded(2)) + (folded(1) + folded(3)));
    }
}

TEST(SimdSums, FloatsComeInHalves)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        const auto lanes = drawn<Lum32f, N>(N, Values::NonFinite);
        std::array<Lum32f, N> halves;
        simd::store(halves.data(), simd::lowerHalf(simd::load<N>(lanes.data())));
        simd::store(halves.data() + N / 2, simd::upperHalf(simd::load<N>(lanes.data())));
        EXPECT_EQ(std::memcmp(halves.data(), lanes.data(), sizeof lanes), 0) << N << " lanes";
    };
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
}

TEST(SimdSums, FloatsBecomeDoublesAndTheirSquaresAreExact)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto lanes = drawn<Lum32f, N>(seed, Values::Extreme);
            const auto before = drawn<Lum64f, N>(seed + 1000, Values::Ordinary);
            std::array<Lum32f, 3 * N> spread{};
            for (std::size_t i = 0; i < N; ++i)
                spread[3 * i] = lanes[i];
            std::array<Lum64f, N> wide, loaded, third, squares;
            const auto v = simd::toDouble(simd::load<N>(lanes.data()));
            simd::store(wide.data(), v);
            simd::store(loaded.data(), simd::loadDoubles<N, 1>(lanes.data()));
            simd::store(third.data(), simd::loadDoubles<N, 3>(spread.data()));
            simd::store(squares.data(), simd::addExactSquare(simd::load<N>(before.data()), v));
            for (std::size_t i = 0; i < N; ++i) {
                const Lum64f lane = lanes[i];
                EXPECT_EQ(wide[i], lane);
                EXPECT_EQ(loaded[i], lane);
                EXPECT_EQ(third[i], lane);
                const Lum64f square = lane * lane;
                EXPECT_EQ(squares[i], before[i] + square);
            }
        }
    };
    check(simd::Lanes<4>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
}

}  // namespace
}  // namespace lumcv::test
