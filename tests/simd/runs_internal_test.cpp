// Words of bits and what is spread over the runs in them, and the operations of words that go with them, against plain
// loops.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <int N>
void expectBitWords(const GuardedBlock& block, int count)
{
    const auto* const bytes = reinterpret_cast<const Lum8u*>(block.data());
    for (int x = 0; x <= count + 64; x += 64) {
        const uint64_t word = simd::bitWord<N>(
            x, count, [bytes](int64_t at, auto lanes) { return simd::nonZeroBits(simd::load<lanes>(bytes + at)); });
        for (int i = 0; i < 64; ++i)
            ASSERT_EQ(word >> i & 1, x + i < count && bytes[x + i] != 0) << "place " << x + i << " of " << count;
    }
}

TEST(SimdRuns, WordsOfBitsReadNothingButTheirPlaces)
{
    Random random(1);
    for (int count = 1; count < 200; ++count)
        for (const Guard guard : {Guard::Before, Guard::After}) {
            GuardedBlock block(std::size_t(count), guard);
            for (int i = 0; i < count; ++i)
                block.data()[i] = random.oneIn(2) ? static_cast<unsigned char>(random.between(1, 255)) : 0;
            expectBitWords<16>(block, count);
            expectBitWords<32>(block, count);
            expectBitWords<64>(block, count);
        }
}

template <class T>
void expectLaneMasks()
{
    constexpr int N = simd::groupLanes<T>;
    const auto yes = simd::broadcast<N>(T{3}), no = simd::broadcast<N>(T{5});
    for (Lum32u set = 0; set < 1u << N; ++set) {
        const auto mask = simd::laneMask<T, N>(set);
        ASSERT_EQ(simd::laneBits(mask), set);
        expectEach<T, N>(simd::select(mask, yes, no), [=](int i) { return set >> i & 1 ? 3 : 5; });
    }
}

TEST(SimdRuns, BitsBecomeMasks)
{
    expectLaneMasks<Lum8u>();
    expectLaneMasks<Lum16u>();
    expectLaneMasks<Lum16s>();
    expectLaneMasks<Lum32s>();
    expectLaneMasks<Lum32f>();
}

template <class T>
void expectSpread(unsigned seed)
{
    constexpr int N = simd::spreadLanes<T>;
    Random random(seed);
    const auto values = drawn<T, N>(seed);
    // a run may reach in from the left, and starts where a pixel inside follows one outside
    const auto inside = static_cast<Lum32u>(random.between(0, (1 << N) - 1));
    const Lum32u starts = inside & ~(inside << 1) & ~static_cast<Lum32u>(random.between(0, 1));
    int place = 0;
    std::array<T, N> expected;
    for (int i = 0; i < N; ++i) {
        place += starts >> i & 1;
        expected[std::size_t(i)] = inside >> i & 1 ? values[std::size_t(place)] : T{0};
    }
    expectEach<T, N>(simd::spreadOverRuns(values.data(), starts, inside),
                     [&](int i) { return expected[std::size_t(i)]; });
}

TEST(SimdRuns, ValuesAreSpreadOverRuns)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        expectSpread<Lum8u>(seed);
        expectSpread<Lum16u>(seed);
        expectSpread<Lum32s>(seed);
    }
}

TEST(SimdRuns, FloatsAreComparedWithNoNumberAtMostAnother)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        const Lum32f values[] = {0.0f,
                                 -0.0f,
                                 1.0f,
                                 -1.0f,
                                 std::numeric_limits<Lum32f>::infinity(),
                                 std::numeric_limits<Lum32f>::quiet_NaN()};
        Random random(N);
        for (int repeat = 0; repeat < 50; ++repeat) {
            std::array<Lum32f, N> a, b;
            for (std::size_t i = 0; i < N; ++i) {
                a[i] = values[random.between(0, 5)];
                b[i] = values[random.between(0, 5)];
            }
            const uint64_t bits = simd::laneBits(simd::atMost(simd::load<N>(a.data()), simd::load<N>(b.data())));
            for (std::size_t i = 0; i < N; ++i)
                ASSERT_EQ(bits >> i & 1, a[i] <= b[i]) << a[i] << " and " << b[i];
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<4>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
}

TEST(SimdRuns, UnsignedWordsAreMultipliedAndWidened)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<Lum16u, N>(seed), b = drawn<Lum16u, N>(seed + 100);
            const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
            expectEach<Lum16u, N>(simd::highProduct(va, vb),
                                  [&](int i) { return uint32_t{a[std::size_t(i)]} * b[std::size_t(i)] >> 16; });
            expectEach<Lum32s, N>(simd::inOrder(simd::widened(va)), [&](int i) { return a[std::size_t(i)]; });
            expectEach<Lum16u, N>(simd::decentred(simd::centred(va)), [&](int i) { return a[std::size_t(i)]; });
            const auto pairs = simd::pairs(simd::centred(va), simd::centred(vb));
            expectEach<Lum32s, N>(simd::inOrder(simd::squares(pairs)), [&](int i) {
                const int64_t x = a[std::size_t(i)] - 32768, y = b[std::size_t(i)] - 32768;
                return static_cast<Lum32s>(static_cast<uint32_t>(x * x + y * y));
            });
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<simd::registerLanes<Lum16u>>{});
}

TEST(SimdRuns, BytesBecomeWordsOfEvenAndOddPlaces)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        const auto bytes = drawn<Lum8u, N>(N);
        expectEach<Lum16s, N>(simd::inOrder(simd::evenOddWords(simd::load<N>(bytes.data()))),
                              [&](int i) { return bytes[std::size_t(i)]; });
    };
    check(simd::Lanes<simd::registerLanes<Lum8u>>{});
    check(simd::Lanes<2 * simd::registerLanes<Lum8u>>{});
}

}  // namespace
}  // namespace lumcv::test
