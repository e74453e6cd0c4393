// The vector types against plain loops over their lanes, for every lane count that a kernel uses and every kind of
// vector: scalars, single registers and pairs.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "simd/simd.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

using simd::Vec;

template <class T, int N>
using Lanes = std::array<T, N>;

template <int N, class T>
Vec<T, N> vectorOf(const Lanes<T, N>& lanes)
{
    return simd::load<N>(lanes.data());
}

template <class T, int N>
Lanes<T, N> lanesOf(Vec<T, N> v)
{
    Lanes<T, N> lanes;
    simd::store(lanes.data(), v);
    return lanes;
}

/// Values of every magnitude, the ends of the type among them; floats that are not finite, too.
template <class T, int N>
Lanes<T, N> drawn(unsigned seed)
{
    Random random(seed + 1);
    Lanes<T, N> lanes;
    for (T& lane : lanes)
        lane = random.value<T>(std::is_floating_point_v<T> ? Values::NonFinite : Values::Extreme);
    return lanes;
}

template <class T>
bool same(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a) && std::isnan(b))
            return true;
    }
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Holds each lane of `got` against expected(i).
template <class T, int N, class Expected>
void expectLanes(Vec<T, N> got, Expected expected)
{
    const auto lanes = lanesOf<T, N>(got);
    for (int i = 0; i < N; ++i) {
        const T want = expected(i);
        ASSERT_TRUE(same(lanes[i], want))
            << "lane " << i << " of " << N << ": got " << +lanes[i] << ", expected " << +want;
    }
}

constexpr unsigned draws = 50;

/// Calls check(T{}, Lanes<N>) for the lane counts of kernels: 1, 16 and whole multiples of it.
template <class T, class Check>
void forLaneCounts(Check check)
{
    check(T{}, simd::Lanes<1>{});
    check(T{}, simd::Lanes<16>{});
    check(T{}, simd::Lanes<32>{});
    check(T{}, simd::Lanes<64>{});
    if constexpr (sizeof(T) == 4) {
        check(T{}, simd::Lanes<4>{});
        check(T{}, simd::Lanes<8>{});
    }
}

template <class Check>
void forIntegers(Check check)
{
    forLaneCounts<Lum8u>(check);
    forLaneCounts<Lum16u>(check);
    forLaneCounts<Lum16s>(check);
    forLaneCounts<Lum32s>(check);
}

TEST(Simd, IntegersWrapAround)
{
    forIntegers([]<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed), b = drawn<T, N>(seed + 1000);
            const auto va = vectorOf<N>(a), vb = vectorOf<N>(b);
            const auto wide = [](T x) { return static_cast<Lum32u>(x); };
            expectLanes<T, N>(va + vb, [&](int i) { return static_cast<T>(wide(a[i]) + wide(b[i])); });
            expectLanes<T, N>(va - vb, [&](int i) { return static_cast<T>(wide(a[i]) - wide(b[i])); });
            expectLanes<T, N>(va * vb, [&](int i) { return static_cast<T>(wide(a[i]) * wide(b[i])); });
            expectLanes<T, N>(va | vb, [&](int i) { return static_cast<T>(wide(a[i]) | wide(b[i])); });
        }
    });
}

TEST(Simd, SignedShiftsKeepTheSign)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) {
        for (int places = 0; places < 8 * static_cast<int>(sizeof(T)); ++places) {
            const auto a = drawn<T, N>(places);
            expectLanes<T, N>(vectorOf<N>(a) >> places, [&](int i) {
                return static_cast<T>(std::floor(static_cast<double>(a[i]) / std::ldexp(1.0, places)));
            });
        }
    };
    forLaneCounts<Lum16s>(check);
    forLaneCounts<Lum32s>(check);
}

TEST(Simd, FloatsRoundEachOperation)
{
    forLaneCounts<Lum32f>([]<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed), b = drawn<T, N>(seed + 1000), c = drawn<T, N>(seed + 2000);
            const auto va = vectorOf<N>(a), vb = vectorOf<N>(b), vc = vectorOf<N>(c);
            expectLanes<T, N>(va * vb + vc, [&](int i) {
                volatile T product = a[i] * b[i];
                return product + c[i];
            });
            expectLanes<T, N>(va - vb, [&](int i) { return a[i] - b[i]; });
            expectLanes<T, N>(simd::min(va, vb), [&](int i) { return a[i] < b[i] ? a[i] : b[i]; });
            expectLanes<T, N>(simd::max(va, vb), [&](int i) { return a[i] > b[i] ? a[i] : b[i]; });
            expectLanes<T, N>(simd::absoluteDifference(va, vb), [&](int i) { return std::fabs(a[i] - b[i]); });
            const auto signs = lanesOf<T, N>(simd::magnitude(va));
            for (int i = 0; i < N; ++i)
                ASSERT_FALSE(std::signbit(signs[i])) << "lane " << i;
        }
    });
}

TEST(Simd, BroadcastFillsEveryLaneAndKeepsNegativeZero)
{
    forIntegers([]<class T, int N>(T, simd::Lanes<N>) {
        for (const T value : {T(0), T(7), T(-1)})
            expectLanes<T, N>(simd::broadcast<N>(value), [&](int) { return value; });
    });
    forLaneCounts<Lum32f>([]<class T, int N>(T, simd::Lanes<N>) {
        for (const T value : {0.0f, -0.0f, 3.25f, std::numeric_limits<T>::infinity()})
            expectLanes<T, N>(simd::broadcast<N>(value), [&](int) { return value; });
    });
}

TEST(Simd, LoadsAndStoresStayWithinTheirElementsAtAnyAddress)
{
    forIntegers([]<class T, int N>(T, simd::Lanes<N>) {
        const auto a = drawn<T, N>(N);
        for (const Guard guard : {Guard::After, Guard::Before}) {
            GuardedBlock block(N * sizeof(T), guard);
            auto* const p = reinterpret_cast<T*>(block.data());
            std::memcpy(block.data(), a.data(), N * sizeof(T));
            expectLanes<T, N>(simd::load<N>(p), [&](int i) { return a[i]; });
            std::memset(block.data(), 0, N * sizeof(T));
            simd::store(p, vectorOf<N>(a));
            EXPECT_EQ(std::memcmp(block.data(), a.data(), N * sizeof(T)), 0);
        }
        std::vector<Lum8u> bytes(N * sizeof(T) + 64);
        for (std::size_t offset = 0; offset < 64; ++offset) {
            simd::store(reinterpret_cast<T*>(bytes.data() + offset), vectorOf<N>(a));
            EXPECT_EQ(std::memcmp(bytes.data() + offset, a.data(), N * sizeof(T)), 0) << "offset " << offset;
        }
    });
}

TEST(Simd, StreamedStoresArriveAfterTheFence)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) {
        if constexpr (N > 1) {
            alignas(64) std::array<T, N> to{};
            const auto a = drawn<T, N>(N);
            simd::stream(to.data(), vectorOf<N>(a));
            simd::fence();
            EXPECT_EQ(std::memcmp(to.data(), a.data(), sizeof a), 0);
        }
    };
    forIntegers(check);
    forLaneCounts<Lum32f>(check);
}

TEST(Simd, ExtremesOfIntegersFollowTheSign)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed), b = drawn<T, N>(seed + 1000);
            const auto va = vectorOf<N>(a), vb = vectorOf<N>(b);
            expectLanes<T, N>(simd::min(va, vb), [&](int i) { return a[i] < b[i] ? a[i] : b[i]; });
            expectLanes<T, N>(simd::max(va, vb), [&](int i) { return a[i] > b[i] ? a[i] : b[i]; });
        }
    };
    forLaneCounts<Lum8u>(check);
    forLaneCounts<Lum16u>(check);
    forLaneCounts<Lum16s>(check);
}

TEST(Simd, SignedDifferencesSaturateAtBothEnds)
{
    forLaneCounts<Lum16s>([]<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed), b = drawn<T, N>(seed + 1000);
            expectLanes<T, N>(simd::subtractSaturated(vectorOf<N>(a), vectorOf<N>(b)),
                              [&](int i) { return static_cast<T>(std::clamp(a[i] - b[i], -32768, 32767)); });
        }
    });
}

TEST(Simd, UnsignedDifferencesSaturateAndAreExact)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed), b = drawn<T, N>(seed + 1000);
            const auto va = vectorOf<N>(a), vb = vectorOf<N>(b);
            expectLanes<T, N>(simd::subtractSaturated(va, vb),
                              [&](int i) { return static_cast<T>(a[i] > b[i] ? a[i] - b[i] : 0); });
            expectLanes<T, N>(simd::absoluteDifference(va, vb),
                              [&](int i) { return static_cast<T>(std::abs(a[i] - b[i])); });
        }
    };
    forLaneCounts<Lum8u>(check);
    forLaneCounts<Lum16u>(check);
}

TEST(Simd, MaskBytesKeepOrClear)
{
    forLaneCounts<Lum32f>([]<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            auto mask = drawn<Lum8u, N>(seed);
            for (int i = 0; i < N; ++i)
                mask[i] = (mask[i] & 3) == 0 ? 0 : mask[i];
            GuardedBlock block(N, Guard::After);  // no mask byte beyond the last lane may be read
            std::memcpy(block.data(), mask.data(), N);
            const auto v = drawn<T, N>(seed + 1000);
            expectLanes<T, N>(simd::keepWhere(block.data(), vectorOf<N>(v)),
                              [&](int i) { return mask[i] ? v[i] : 0.0f; });
        }
    });
}

template <class T>
void expectConversions()
{
    forLaneCounts<Lum32f>([]<int N>(Lum32f, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<T, N>(seed);
            GuardedBlock block(sizeof a, Guard::After);
            std::memcpy(block.data(), a.data(), sizeof a);
            expectLanes<Lum32f, N>(simd::loadFloat<N>(reinterpret_cast<const T*>(block.data())),
                                   [&](int i) { return static_cast<Lum32f>(a[i]); });
        }
    });
}

TEST(Simd, IntegersBecomeFloatsExactly)
{
    expectConversions<Lum8u>();
    expectConversions<Lum16u>();
    expectConversions<Lum16s>();
}

/// Nearest integer, ties to even, within T.
template <class T>
T rounded(Lum32f value)
{
    const double nearest = std::nearbyint(static_cast<double>(value));
    constexpr auto lowest = static_cast<double>(std::numeric_limits<T>::min());
    constexpr auto highest = static_cast<double>(std::numeric_limits<T>::max());
    return static_cast<T>(nearest < lowest ? lowest : nearest > highest ? highest : nearest);
}

template <class T>
void expectRounding()
{
    const auto check = []<int N>(Lum32f, simd::Lanes<N>) {
        if constexpr (N == 1 || N * sizeof(T) >= 16) {
            for (int base = -140000; base < 140000; base += 3 * N + 1) {
                Lanes<Lum32f, N> a;
                for (int i = 0; i < N; ++i)
                    a[i] = static_cast<Lum32f>(base + i) * 0.5f + (i % 5 == 0 ? 0.25f : 0.0f);
                expectLanes<T, N>(simd::roundTo<T>(vectorOf<N>(a)), [&](int i) { return rounded<T>(a[i]); });
            }
            for (const Lum32f value : {2147483520.0f, -2147483648.0f, 1e9f, -1e9f, 255.5f, 254.5f, -0.5f, 0.5f, 1.5f})
                expectLanes<T, N>(simd::roundTo<T>(simd::broadcast<N>(value)), [&](int) { return rounded<T>(value); });
        }
    };
    forLaneCounts<Lum32f>(check);
}

TEST(Simd, RoundingTiesToEvenAndSaturates)
{
    ASSERT_EQ(std::fegetround(), FE_TONEAREST);
    expectRounding<Lum8u>();
    expectRounding<Lum8s>();
    expectRounding<Lum16u>();
    expectRounding<Lum16s>();
}

TEST(Simd, SumsOfWordsWrapAndComeBackInOrder)
{
    const auto check = []<int N>(Lum16s, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawn<Lum16s, N>(seed), b = drawn<Lum16s, N>(seed + 1000), c = drawn<Lum16s, N>(seed + 2000);
            const auto taps = drawn<Lum16s, 4>(seed + 3000);
            const auto sums = simd::products(vectorOf<N>(a), taps[0], vectorOf<N>(b), taps[1]) +
                              simd::product(vectorOf<N>(c), taps[2]);
            const auto expected = [&](int i) {
                const Lum64s sum = Lum64s{a[i]} * taps[0] + Lum64s{b[i]} * taps[1] + Lum64s{c[i]} * taps[2];
                return static_cast<Lum32s>(static_cast<Lum32u>(sum));
            };
            const auto clamped = [](Lum64s v) {
                return static_cast<Lum16s>(v < -32768 ? -32768 : v > 32767 ? 32767 : v);
            };
            expectLanes<Lum16s, N>(simd::saturated(sums), [&](int i) { return clamped(expected(i)); });
            expectLanes<Lum16s, N>(simd::saturated(sums >> 14), [&](int i) {
                return clamped(static_cast<Lum64s>(std::floor(expected(i) / 16384.0)));
            });
            expectLanes<Lum16s, N>(simd::saturated(sums * taps[3] >> 14), [&](int i) {
                const auto product = static_cast<Lum32s>(static_cast<Lum32u>(Lum64s{expected(i)} * taps[3]));
                return clamped(static_cast<Lum64s>(std::floor(product / 16384.0)));
            });
        }
    };
    forLaneCounts<Lum16s>(check);
}

template <int N>
void expectWalks()
{
    for (int begin = 0; begin < 3; ++begin) {
        for (int end = begin; end < begin + 4 * N + 40; ++end) {
            std::vector<int> once(end), atLeastOnce(end);
            const auto into = [&](std::vector<int>& counts) {
                return [&counts, begin, end](int64_t x, auto lanes) {
                    ASSERT_GE(x, begin);
                    ASSERT_LE(x + lanes, end);
                    for (int i = 0; i < lanes; ++i)
                        ++counts[x + i];
                };
            };
            simd::eachOnce<N>(begin, end, into(once));
            simd::eachAtLeastOnce<N>(begin, end, into(atLeastOnce));
            for (int x = begin; x < end; ++x) {
                ASSERT_EQ(once[x], 1) << x << " of " << begin << ".." << end;
                ASSERT_GE(atLeastOnce[x], 1) << x << " of " << begin << ".." << end;
            }
        }
    }
}

constexpr std::array<int, 3> threeWeights{-3, 10, 7};
constexpr std::array<int, 5> fiveWeights{1, -4, 6, -100, 2};

/// Words that stand apart by the parity of their places, put together again.
template <int N>
Lanes<Lum16s, N> lanesOf(simd::SplitWords<N> split)
{
    const auto even = lanesOf<Lum16s, N / 2>(split.even), odd = lanesOf<Lum16s, N / 2>(split.odd);
    Lanes<Lum16s, N> lanes;
    for (int i = 0; i < N; ++i)
        lanes[i] = (i % 2 ? odd : even)[i / 2];
    return lanes;
}

TEST(Simd, SumsOfNeighbouringBytesComeBackInOrder)
{
    const auto check = []<int N, size_t count>(simd::Lanes<N>, const std::array<int, count>& weights, auto sum) {
        constexpr int reach = count / 2;
        for (unsigned seed = 0; seed < draws; ++seed) {
            // no byte beyond the outermost taps is read
            GuardedBlock block(N + 2 * reach, seed % 2 ? Guard::Before : Guard::After);
            const auto bytes = drawn<Lum8u, N + 2 * reach>(seed);
            std::memcpy(block.data(), bytes.data(), bytes.size());
            const simd::SplitWords<N> sums = sum(block.as<Lum8u>() + reach);
            const auto expected = [&](int i) {
                int total = 0;
                for (int j = 0; j < static_cast<int>(count); ++j)
                    total += weights[j] * bytes[i + j];
                return static_cast<Lum16s>(total);
            };
            expectLanes<Lum16s, N>(simd::inOrder(sums), expected);
        }
    };
    const auto checkBoth = [&]<int N>(simd::Lanes<N> lanes) {
        check(lanes, threeWeights, [](const Lum8u* s) { return simd::tapSums<threeWeights, N>(s); });
        check(lanes, fiveWeights, [](const Lum8u* s) { return simd::tapSums<fiveWeights, N>(s); });
    };
    checkBoth(simd::Lanes<simd::registerLanes<Lum8u>>{});
    checkBoth(simd::Lanes<2 * simd::registerLanes<Lum8u>>{});
    checkBoth(simd::Lanes<4 * simd::registerLanes<Lum8u>>{});
}

/// The place that lane i of phases belongs to.
constexpr int placeOf(int i)
{
    constexpr int ofPhase = simd::phasedLanes / 4;
    return i % ofPhase * 4 + i / ofPhase;
}

TEST(Simd, PhasesAreBytesOfEveryFourthPlace)
{
    constexpr int N = simd::phasedLanes;
    for (unsigned seed = 0; seed < draws; ++seed) {
        GuardedBlock block(N + 3, seed % 2 ? Guard::Before : Guard::After);
        const auto bytes = drawn<Lum8u, N + 3>(seed);
        std::memcpy(block.data(), bytes.data(), bytes.size());
        expectLanes<Lum32f, N>(simd::loadPhases<N>(block.as<Lum8u>()),
                               [&](int i) { return static_cast<Lum32f>(bytes[placeOf(i)]); });
    }
}

TEST(Simd, PhasesComeBackInOrderRoundedAndSaturated)
{
    constexpr int N = simd::phasedLanes;
    const auto check = [](Lum32f step, Lum32f offset, auto to) {
        using T = decltype(to);
        Lanes<Lum32f, N> phases;
        const auto number = [=](int place) { return static_cast<Lum32f>(place) * step + offset; };
        for (int i = 0; i < N; ++i)
            phases[i] = number(placeOf(i));
        constexpr auto lowest = static_cast<Lum32f>(std::numeric_limits<T>::min());
        constexpr auto highest = static_cast<Lum32f>(std::numeric_limits<T>::max());
        expectLanes<T, N>(simd::roundPhasesTo<T>(vectorOf<N>(phases)), [=](int i) {
            return static_cast<T>(std::nearbyint(std::clamp(number(i), lowest, highest)));
        });
    };
    for (const Lum32f offset : {-40.0f, -0.5f, 0.0f, 0.25f, 100.0f, 230.5f})
        for (const Lum32f step : {0.5f, 1.0f, 3.25f, -1.0f}) {
            check(step, offset, Lum8u{});
            check(1000 * step, 100 * offset, Lum16s{});
        }
}

TEST(Simd, SplitWordsAreWords)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto draw = [&](unsigned offset) {
                return simd::SplitWords<N>{vectorOf<N / 2>(drawn<Lum16s, N / 2>(seed + offset)),
                                           vectorOf<N / 2>(drawn<Lum16s, N / 2>(seed + offset + 100))};
            };
            const auto a = draw(1000), b = draw(2000);
            const auto la = lanesOf(a), lb = lanesOf(b);
            expectLanes<Lum16s, N>(simd::inOrder(a + b), [&](int i) { return static_cast<Lum16s>(la[i] + lb[i]); });
            expectLanes<Lum16s, N>(simd::inOrder(a - b), [&](int i) { return static_cast<Lum16s>(la[i] - lb[i]); });
            expectLanes<Lum16s, N>(simd::inOrder(a * Lum16s{-7}),
                                   [&](int i) { return static_cast<Lum16s>(-7 * la[i]); });
            expectLanes<Lum16s, N>(simd::inOrder(simd::highProduct(a, 7280)),
                                   [&](int i) { return static_cast<Lum16s>(la[i] * 7280 >> 16); });
            // bytes in words
            const auto bytes = drawn<Lum8u, N>(seed);
            Lanes<Lum16s, N / 2> even, odd;
            for (int i = 0; i < N; ++i)
                (i % 2 ? odd : even)[i / 2] = bytes[i];
            expectLanes<Lum8u, N>(simd::bytesInOrder(simd::SplitWords<N>{vectorOf<N / 2>(even), vectorOf<N / 2>(odd)}),
                                  [&](int i) { return bytes[i]; });
        }
    };
    check(simd::Lanes<simd::registerLanes<Lum8u>>{});
    check(simd::Lanes<2 * simd::registerLanes<Lum8u>>{});
    check(simd::Lanes<4 * simd::registerLanes<Lum8u>>{});
}

TEST(Simd, PairsAreSeparatedAndJoined)
{
    const auto check = [](auto n) {
        constexpr int N = n;
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto words = drawn<Lum16u, 2 * N>(seed);
            const auto floats = drawn<Lum32f, 2 * N>(seed);
            const auto bytes = drawn<Lum8u, 2 * N>(seed);
            const auto ofWords = simd::loadEvenOdd<N>(words.data());
            const auto ofFloats = simd::loadEvenOdd<N>(floats.data());
            const auto ofBytes = simd::loadEvenOdd<N>(bytes.data());
            expectLanes<Lum16u, N>(ofWords.even, [&](int i) { return words[2 * i]; });
            expectLanes<Lum16u, N>(ofWords.odd, [&](int i) { return words[2 * i + 1]; });
            expectLanes<Lum32f, N>(ofFloats.even, [&](int i) { return floats[2 * i]; });
            expectLanes<Lum32f, N>(ofFloats.odd, [&](int i) { return floats[2 * i + 1]; });
            expectLanes<Lum16s, N>(ofBytes.even, [&](int i) { return static_cast<Lum16s>(bytes[2 * i]); });
            expectLanes<Lum16s, N>(ofBytes.odd, [&](int i) { return static_cast<Lum16s>(bytes[2 * i + 1]); });
            expectLanes<Lum16s, N>(simd::centred(ofWords.even),
                                   [&](int i) { return static_cast<Lum16s>(words[2 * i] - 32768); });
            if constexpr (N == simd::registerLanes<Lum16s>) {
                Lanes<Lum16u, 2 * N> joinedWords;
                simd::storePairs(joinedWords.data(), ofWords.even, ofWords.odd);
                EXPECT_EQ(joinedWords, words);
                Lanes<Lum8u, 2 * N> joinedBytes;
                simd::storePairs(joinedBytes.data(), ofBytes.even, ofBytes.odd);
                EXPECT_EQ(joinedBytes, bytes);
            }
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<simd::registerLanes<Lum16s>>{});
}

TEST(Simd, FloatsAreTruncated)
{
    const auto check = [](auto n) {
        constexpr int N = n;
        for (unsigned seed = 0; seed < 50; ++seed) {
            const auto lanes = drawn<Lum32f, N>(seed);
            expectLanes<Lum32s, N>(simd::truncated(vectorOf<N>(lanes)), [&](int i) {
                const bool fits = lanes[i] >= -2147483648.0f && lanes[i] < 2147483648.0f;
                return fits ? static_cast<Lum32s>(lanes[i]) : std::numeric_limits<Lum32s>::min();
            });
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<4>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
}

TEST(Simd, WordSumsKeepTheOrderOfTheirWords)
{
    const auto check = [](auto n) {
        constexpr int N = n;
        for (unsigned seed = 0; seed < 20; ++seed) {
            const auto a = drawn<Lum16s, N>(seed), b = drawn<Lum16s, N>(seed + 100);
            const auto sums = simd::products(vectorOf<N>(a), Lum16s{-3}, vectorOf<N>(b), Lum16s{7});
            expectLanes<Lum32s, N>(simd::inOrder(sums + 11), [&](int i) { return -3 * a[i] + 7 * b[i] + 11; });
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<simd::registerLanes<Lum16s>>{});
}

template <class T, int N>
void expectNeighbours(unsigned seed)
{
    using Lane = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum32s>;
    const auto elements = drawn<T, 64>(seed);
    Lanes<Lum32s, N> places;
    Random random(seed);
    for (Lum32s& place : places)
        place = static_cast<Lum32s>(random.between(0, 62));
    const auto found = simd::gatherNeighbours<N>(elements.data(), places.data());
    const auto at = [&](Lum32s i) { return static_cast<Lane>(elements[static_cast<std::size_t>(i)]); };
    expectLanes<Lane, N>(found.first, [&](int i) { return at(places[i]); });
    expectLanes<Lane, N>(found.second, [&](int i) { return at(places[i] + 1); });
}

TEST(Simd, NeighboursAreGathered)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        expectNeighbours<Lum16s, 1>(seed);
        expectNeighbours<Lum16s, 16>(seed);
        expectNeighbours<Lum32s, 1>(seed);
        expectNeighbours<Lum32s, 16>(seed);
        expectNeighbours<Lum32f, 4>(seed);
        expectNeighbours<Lum32f, 16>(seed);
    }
}

TEST(Simd, LanesAreSummedInTheirOrder)
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        const auto a = drawn<Lum32f, 4>(seed), b = drawn<Lum32f, 4>(seed + 100), c = drawn<Lum32f, 4>(seed + 200),
                   d = drawn<Lum32f, 4>(seed + 300);
        const Lanes<Lum32f, 4>* const all[] = {&a, &b, &c, &d};
        expectLanes<Lum32f, 4>(simd::sumsOfLanes(vectorOf<4>(a), vectorOf<4>(b), vectorOf<4>(c), vectorOf<4>(d)),
                               [&](int i) {
                                   const auto& v = *all[i];
                                   return v[0] + v[1] + v[2] + v[3];
                               });
        for (int count = 0; count <= 4; ++count)
            expectLanes<Lum32f, 4>(simd::firstLanes(vectorOf<4>(a), count),
                                   [&](int i) { return i < count ? a[i] : -0.0f; });
    }
}

TEST(Simd, FourPixelsOfThreeBytesAreSeparated)
{
    const auto bytes = drawn<Lum8u, 16>(3);
    Lanes<Lum16s, 8> even, odd;
    simd::separateTriples(bytes.data(), even.data(), odd.data());
    for (std::size_t i = 0; i < 6; ++i) {
        const std::size_t from = i / 3 * 6 + i % 3;
        EXPECT_EQ(even[i], bytes[from]) << i;
        EXPECT_EQ(odd[i], bytes[from + 3]) << i;
    }
    Lanes<Lum16s, 4> words;
    simd::storeWords(words.data(), vectorOf<4>(Lanes<Lum32s, 4>{-40000, 40000, -7, 32767}));
    EXPECT_EQ(words, (Lanes<Lum16s, 4>{-32768, 32767, -7, 32767}));
}

TEST(Simd, RowsAreWalkedToTheirLastElement)
{
    expectWalks<1>();
    expectWalks<16>();
    expectWalks<32>();
    expectWalks<64>();
}

}  // namespace
}  // namespace lumcv::test
