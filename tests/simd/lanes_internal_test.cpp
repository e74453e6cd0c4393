// Operations in which lanes meet, and rows of bits, against plain loops.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <class T, int N>
std::array<T, N> drawnLanes(unsigned seed)
{
    Random random(seed + 1);
    std::array<T, N> lanes;
    for (T& lane : lanes)
        lane = static_cast<T>(random.between(0, 255));
    return lanes;
}

/// Calls check(T{}, lanes) for vectors of 16 to 64 bytes.
template <class T, class Check>
void forWidths(Check check)
{
    check(T{}, simd::Lanes<16 / sizeof(T)>{});
    check(T{}, simd::Lanes<32 / sizeof(T)>{});
    check(T{}, simd::Lanes<64 / sizeof(T)>{});
    check(T{}, simd::Lanes<128 / sizeof(T)>{});
}

template <class Check>
void forLaneTypes(Check check)
{
    forWidths<Lum8u>(check);
    forWidths<Lum16u>(check);
    forWidths<Lum32f>(check);
    forWidths<Lum64f>(check);
}

template <int d, class T, int N>
void expectMoves()
{
    constexpr int group = simd::groupLanes<T>;
    const auto lanes = drawnLanes<T, N>(N);
    const auto v = simd::load<N>(lanes.data());
    const T fill = 77;
    const auto fills = simd::broadcast<N>(fill);
    expectEach<T, N>(simd::movedUp<d>(v, fills),
                     [&](int i) { return i % group < d ? fill : lanes[std::size_t(i - d)]; });
    expectEach<T, N>(simd::movedDown<d>(v, fills),
                     [&](int i) { return i % group >= group - d ? fill : lanes[std::size_t(i + d)]; });
}

TEST(SimdLanes, MoveWithinGroupsOfSixteenBytes)
{
    forLaneTypes([]<class T, int N>(T, simd::Lanes<N>) {
        expectMoves<1, T, N>();
        if constexpr (simd::groupLanes < T >> 2)
            expectMoves<2, T, N>();
        if constexpr (simd::groupLanes < T >> 4)
            expectMoves<4, T, N>();
        if constexpr (simd::groupLanes < T >> 8)
            expectMoves<8, T, N>();
    });
}

template <class T>
void expectEverywhere()
{
    constexpr int n = simd::groupLanes<T>;
    const auto lanes = drawnLanes<T, n>(3);
    const auto v = simd::load<n>(lanes.data());
    expectEach<T, n>(simd::lastEverywhere(v), [&](int) { return lanes[n - 1]; });
    expectEach<T, n>(simd::firstEverywhere(v), [&](int) { return lanes[0]; });
}

TEST(SimdLanes, OneLaneOfAGroupGoesEverywhere)
{
    expectEverywhere<Lum8u>();
    expectEverywhere<Lum16u>();
    expectEverywhere<Lum32f>();
    expectEverywhere<Lum64f>();
}

TEST(SimdLanes, AnyLessSeesEachLaneAndNoEquals)
{
    forLaneTypes([]<class T, int N>(T, simd::Lanes<N>) {
        const auto lanes = drawnLanes<T, N>(N + 1);
        const auto v = simd::load<N>(lanes.data());
        EXPECT_FALSE(simd::anyLess(v, v));
        for (std::size_t i = 0; i < N; ++i) {
            auto other = lanes;
            other[i] = static_cast<T>(other[i] == 0 ? 1 : other[i] - 1);
            const bool above = other[i] > lanes[i];
            EXPECT_EQ(simd::anyLess(v, simd::load<N>(other.data())), above) << "lane " << i << " of " << N;
            EXPECT_EQ(simd::anyLess(simd::load<N>(other.data()), v), !above) << "lane " << i << " of " << N;
        }
        if constexpr (std::is_floating_point_v<T>) {
            const auto nan = simd::broadcast<N>(std::numeric_limits<T>::quiet_NaN());
            EXPECT_FALSE(simd::anyLess(v, nan));
            EXPECT_FALSE(simd::anyLess(nan, v));
            EXPECT_FALSE(simd::anyLess(simd::broadcast<N>(T(-0.0)), simd::broadcast<N>(T(0.0))));
        } else
            EXPECT_TRUE(simd::anyLess(v, simd::broadcast<N>(static_cast<T>(-1))));
    });
}

template <class T, int N>
void expectAnyEqual()
{
    std::array<T, N> lanes{};
    for (std::size_t i = 0; i < N; ++i)
        lanes[i] = static_cast<T>(i + 1);
    const auto equalsSome = [&](T value) {
        return simd::anyEqual(simd::load<N>(lanes.data()), simd::broadcast<N>(value));
    };
    EXPECT_FALSE(equalsSome(T{0}));
    EXPECT_FALSE(equalsSome(static_cast<T>(N + 1)));
    for (int i = 0; i < N; ++i)
        EXPECT_TRUE(equalsSome(static_cast<T>(i + 1))) << "lane " << i << " of " << N;
    if constexpr (std::is_floating_point_v<T>) {
        EXPECT_FALSE(equalsSome(NAN));
        lanes[N / 2] = NAN;
        EXPECT_FALSE(equalsSome(NAN));
        lanes[N - 1] = -0.0f;
        EXPECT_TRUE(equalsSome(0.0f));
    }
}

TEST(SimdLanes, AnyEqualSeesEachLane)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) { expectAnyEqual<T, N>(); };
    forWidths<Lum8u>(check);
    forWidths<Lum16u>(check);
    forWidths<Lum32f>(check);
}

TEST(SimdLanes, ExtremesOfDoublesKeepTheSecondOfEquals)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto check = [=]<int N>(simd::Lanes<N>) {
        const auto a = drawnLanes<Lum64f, N>(1), b = drawnLanes<Lum64f, N>(2);
        const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
        expectEach<Lum64f, N>(simd::min(va, vb), [&](int i) { return std::min(a[std::size_t(i)], b[std::size_t(i)]); });
        expectEach<Lum64f, N>(simd::max(va, vb), [&](int i) { return std::max(a[std::size_t(i)], b[std::size_t(i)]); });
        const auto none = simd::broadcast<N>(nan);
        expectEach<Lum64f, N>(simd::max(none, vb), [&](int i) { return b[std::size_t(i)]; });
        expectEach<Lum64f, N>(simd::min(none, vb), [&](int i) { return b[std::size_t(i)]; });
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<2>{});
    check(simd::Lanes<4>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
}

TEST(SimdLanes, UnsignedSumsSaturate)
{
    const auto check = []<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const T scale = sizeof(T) == 1 ? 1 : 257;
            auto a = drawnLanes<T, N>(seed), b = drawnLanes<T, N>(seed + 1000);
            for (std::size_t i = 0; i < N; ++i) {
                a[i] = static_cast<T>(a[i] * scale);
                b[i] = static_cast<T>(b[i] * scale);
            }
            const int greatest = std::numeric_limits<T>::max();
            expectEach<T, N>(simd::addSaturated(simd::load<N>(a.data()), simd::load<N>(b.data())), [&](int i) {
                const int sum = a[std::size_t(i)] + b[std::size_t(i)];
                return sum > greatest ? greatest : sum;
            });
        }
    };
    forWidths<Lum8u>(check);
    forWidths<Lum16u>(check);
    check(Lum8u{}, simd::Lanes<1>{});
    check(Lum16u{}, simd::Lanes<1>{});
}

/// Floats of every magnitude, not-a-numbers among them.
template <int N>
std::array<Lum32f, N> drawnFloats(unsigned seed)
{
    Random random(seed + 1);
    std::array<Lum32f, N> lanes;
    for (Lum32f& lane : lanes)
        lane = random.value<Lum32f>(Values::NonFinite);
    return lanes;
}

template <int N>
void expectFloats(simd::Vec<Lum32f, N> got, const std::array<Lum32f, N>& want)
{
    std::array<Lum32f, N> lanes;
    simd::store(lanes.data(), got);
    for (std::size_t i = 0; i < N; ++i)
        ASSERT_TRUE(std::memcmp(&lanes[i], &want[i], sizeof want[i]) == 0 ||
                    (std::isnan(lanes[i]) && std::isnan(want[i])))
            << "lane " << i << " of " << N << ": got " << lanes[i] << ", expected " << want[i];
}

template <class Check>
void forFloatCounts(Check check)
{
    check(simd::Lanes<1>{});
    check(simd::Lanes<4>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
}

TEST(SimdChoice, QuotientsAndRootsAreRoundedOnce)
{
    forFloatCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            const auto a = drawnFloats<N>(seed), b = drawnFloats<N>(seed + 1000);
            std::array<Lum32f, N> quotients, roots;
            for (std::size_t i = 0; i < N; ++i) {
                quotients[i] = a[i] / b[i];
                roots[i] = std::sqrt(a[i]);
            }
            expectFloats<N>(simd::load<N>(a.data()) / simd::load<N>(b.data()), quotients);
            expectFloats<N>(simd::root(simd::load<N>(a.data())), roots);
        }
    });
}

TEST(SimdChoice, TheLesserLanesChoose)
{
    forFloatCounts([]<int N>(simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            auto a = drawnFloats<N>(seed);
            const auto b = drawnFloats<N>(seed + 1000), x = drawnFloats<N>(seed + 2000),
                       y = drawnFloats<N>(seed + 3000);
            a[seed % N] = b[seed % N];
            std::array<Lum32f, N> chosen;
            Lum32u bits = 0;
            for (std::size_t i = 0; i < N; ++i) {
                chosen[i] = a[i] < b[i] ? x[i] : y[i];
                bits |= Lum32u(a[i] < b[i]) << i;
            }
            const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
            expectFloats<N>(simd::select(simd::less(va, vb), simd::load<N>(x.data()), simd::load<N>(y.data())), chosen);
            EXPECT_EQ(simd::laneBits(simd::less(va, vb)), bits) << N << " lanes";
        }
    });
}

TEST(SimdChoice, IntegersAreComparedWithTheirSign)
{
    forFloatCounts([]<int N>(simd::Lanes<N>) {
        Random random(N);
        for (unsigned draw = 0; draw < draws; ++draw) {
            std::array<Lum32s, N> a, b;
            for (std::size_t i = 0; i < N; ++i) {
                a[i] = random.value<Lum32s>(Values::Extreme);
                b[i] = draw % 3 == 0 && i % 2 == 0 ? a[i] : random.value<Lum32s>(Values::Extreme);
            }
            Lum32u bits = 0;
            for (std::size_t i = 0; i < N; ++i)
                bits |= Lum32u(a[i] < b[i]) << i;
            const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
            EXPECT_EQ(simd::laneBits(simd::less(va, vb)), bits) << N << " lanes";
            expectEach<Lum32s, N>(simd::min(va, vb),
                                  [&](int i) { return std::min(a[std::size_t(i)], b[std::size_t(i)]); });
            expectEach<Lum32s, N>(simd::max(va, vb),
                                  [&](int i) { return std::max(a[std::size_t(i)], b[std::size_t(i)]); });
        }
    });
}

template <class Check>
void forPixelCounts(Check check)
{
    check(simd::Lanes<1>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
}

TEST(SimdPlanes, SixFloatsOfAPixelStandSideBySide)
{
    forPixelCounts([]<int N>(simd::Lanes<N>) {
        std::array<std::array<Lum32f, N>, 6> planes;
        for (unsigned i = 0; i < 6; ++i)
            planes[i] = drawnLanes<Lum32f, N>(i);
        std::array<Lum32f, 6 * N + 2> pixels{};
        const auto plane = [&](std::size_t i) { return simd::load<N>(planes[i].data()); };
        simd::storeSixes(pixels.data() + 1, plane(0), plane(1), plane(2), plane(3), plane(4), plane(5));
        EXPECT_EQ(pixels.front(), 0.0f);
        EXPECT_EQ(pixels.back(), 0.0f);
        for (std::size_t x = 0; x < N; ++x)
            for (std::size_t i = 0; i < 6; ++i)
                ASSERT_EQ(pixels[1 + 6 * x + i], planes[i][x]) << "float " << i << " of pixel " << x << " of " << N;
    });
}

TEST(SimdPlanes, ThreeFloatsOfAPixelGoIntoFourAndComeBack)
{
    forPixelCounts([]<int N>(simd::Lanes<N>) {
        const auto a = drawnLanes<Lum32f, N>(1), b = drawnLanes<Lum32f, N>(2), c = drawnLanes<Lum32f, N>(3);
        std::array<Lum32f, 4 * N + 2> pixels;
        pixels.fill(-1.0f);
        simd::storeQuads(pixels.data() + 1, simd::load<N>(a.data()), simd::load<N>(b.data()), simd::load<N>(c.data()));
        EXPECT_EQ(pixels.front(), -1.0f);
        EXPECT_EQ(pixels.back(), -1.0f);
        for (std::size_t x = 0; x < N; ++x) {
            const Lum32f want[] = {a[x], b[x], c[x], 0.0f};
            for (std::size_t i = 0; i < 4; ++i)
                ASSERT_EQ(pixels[1 + 4 * x + i], want[i]) << "float " << i << " of pixel " << x << " of " << N;
            pixels[4 + 4 * x] = 99.0f;  // the fourth one takes no part
        }
        const auto back = simd::loadQuads<N>(pixels.data() + 1);
        expectEach<Lum32f, N>(back.a, [&](int i) { return a[std::size_t(i)]; });
        expectEach<Lum32f, N>(back.b, [&](int i) { return b[std::size_t(i)]; });
        expectEach<Lum32f, N>(back.c, [&](int i) { return c[std::size_t(i)]; });
    });
}

TEST(SimdPlanes, ThreeBytesOfAPixelComeApartAndGoBack)
{
    forPixelCounts([]<int N>(simd::Lanes<N>) {
        for (const Guard guard : {Guard::Before, Guard::After}) {
            GuardedBlock bytes(3 * N, guard), back(3 * N, guard);
            auto* const from = reinterpret_cast<Lum8u*>(bytes.data());
            for (int i = 0; i < 3 * N; ++i)
                from[i] = static_cast<Lum8u>(255 - 5 * i);
            const auto pixels = simd::loadTriples<N>(from);
            expectEach<Lum32f, N>(pixels.a, [&](int i) { return Lum32f(from[3 * i]); });
            expectEach<Lum32f, N>(pixels.b, [&](int i) { return Lum32f(from[3 * i + 1]); });
            expectEach<Lum32f, N>(pixels.c, [&](int i) { return Lum32f(from[3 * i + 2]); });
            auto* const to = reinterpret_cast<Lum8u*>(back.data());
            const auto half = simd::broadcast<N>(0.25f);
            simd::storeTriples(to, pixels.a + half, pixels.b - half, pixels.c);
            for (int i = 0; i < 3 * N; ++i)
                ASSERT_EQ(to[i], from[i]) << "byte " << i << " of " << N << " pixels";
        }
    });
}

TEST(SimdPlanes, FloatsAreStoredAsRoundedBytes)
{
    forPixelCounts([]<int N>(simd::Lanes<N>) {
        const Lum32f floats[] = {-7.0f, 0.5f, 1.5f, 2.5f, 254.5f, 254.6f, 255.5f, 1e6f, 99.0f};
        const Lum8u rounded[] = {0, 0, 2, 2, 254, 255, 255, 255, 99};
        for (std::size_t first = 0; first < std::size(floats); ++first) {
            std::array<Lum32f, N> lanes;
            for (std::size_t i = 0; i < N; ++i)
                lanes[i] = floats[(first + i) % std::size(floats)];
            GuardedBlock bytes(N, Guard::After);
            auto* const to = reinterpret_cast<Lum8u*>(bytes.data());
            simd::storeBytes(to, simd::load<N>(lanes.data()));
            for (std::size_t i = 0; i < N; ++i)
                ASSERT_EQ(to[i], rounded[(first + i) % std::size(floats)]) << "lane " << i << " of " << N;
        }
    });
}

TEST(SimdPlanes, TwoFloatsOfAPixelComeApart)
{
    forPixelCounts([]<int N>(simd::Lanes<N>) {
        const auto floats = drawnLanes<Lum32f, 2 * N + 1>(4);
        const auto couples = simd::loadCouples<N>(floats.data() + 1);
        expectEach<Lum32f, N>(couples.a, [&](int i) { return floats[std::size_t(1 + 2 * i)]; });
        expectEach<Lum32f, N>(couples.b, [&](int i) { return floats[std::size_t(2 + 2 * i)]; });
    });
}

TEST(SimdWords, BytesBecomeWordsAndWordsFloats)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        for (int first = 0; first < 256; first += 5) {
            std::array<Lum8u, N> bytes;
            std::array<Lum16s, N> words;
            for (std::size_t i = 0; i < N; ++i) {
                bytes[i] = static_cast<Lum8u>(first + 7 * int(i));
                words[i] = static_cast<Lum16s>(257 * first + 4099 * int(i));
            }
            expectEach<Lum16s, N>(simd::loadWords<N>(bytes.data()), [&](int i) { return bytes[std::size_t(i)]; });
            expectEach<Lum32f, N>(simd::toFloat(simd::load<N>(words.data())),
                                  [&](int i) { return Lum32f(words[std::size_t(i)]); });
        }
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<8>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<64>{});
}

TEST(SimdBitRow, OperationsOfBits)
{
    forWidths<Lum8u>([]<class T, int N>(T, simd::Lanes<N>) {
        const auto a = drawnLanes<T, N>(5), b = drawnLanes<T, N>(6);
        const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
        expectEach<T, N>(va & vb, [&](int i) { return a[std::size_t(i)] & b[std::size_t(i)]; });
        expectEach<T, N>(~va, [&](int i) { return ~a[std::size_t(i)]; });
        expectEach<Lum8u, N>(simd::reinterpreted<Lum8u>(simd::reinterpreted<uint64_t>(va)),
                             [&](int i) { return a[std::size_t(i)]; });
    });
}

TEST(SimdBitRow, LoadsFromBetweenTwoBytes)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        // one byte more than the vector, right before a page that cannot be read
        const GuardedBlock block(N + 1, Guard::After);
        Lum8u* const bytes = block.as<Lum8u>();
        Random random(N);
        for (int i = 0; i <= N; ++i)
            bytes[i] = static_cast<Lum8u>(random.between(0, 255));
        for (int shift = 0; shift < 8; ++shift)
            expectEach<Lum8u, N>(simd::loadBits<N>(bytes, shift),
                                 [&](int i) { return (bytes[i] | bytes[i + 1] << 8) >> shift; });
    };
    check(simd::Lanes<1>{});
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<64>{});
    check(simd::Lanes<128>{});
}

TEST(SimdBitRow, ShiftsOfWords)
{
    forWidths<uint64_t>([]<class T, int N>(T, simd::Lanes<N>) {
        const auto a = drawnLanes<T, N>(7), b = drawnLanes<T, N>(8);
        const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
        for (int places = 0; places < 64; ++places) {
            expectEach<T, N>(va >> places, [&](int i) { return a[std::size_t(i)] >> places; });
            expectEach<T, N>(va << places, [&](int i) { return a[std::size_t(i)] << places; });
            expectEach<T, N>(simd::joined(va, places, vb, 63 - places),
                             [&](int i) { return a[std::size_t(i)] >> places | b[std::size_t(i)] << (63 - places); });
        }
    });
}

// The byte that is not read lies behind a page border.
TEST(SimdBitRow, LoadsWithoutAnEnd)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        for (const bool isBehind : {true, false}) {
            const GuardedBlock block(N - 1, isBehind ? Guard::Before : Guard::After);
            Lum8u* const bytes = block.as<Lum8u>();
            for (int i = 0; i < N - 1; ++i)
                bytes[i] = static_cast<Lum8u>(3 * i + 1);
            if (isBehind)
                expectEach<Lum8u, N>(simd::loadBehind<N>(bytes - 1, Lum8u{77}),
                                     [&](int i) { return i == 0 ? 77 : bytes[i - 1]; });
            else
                expectEach<Lum8u, N>(simd::loadAhead<N>(bytes, Lum8u{78}),
                                     [&](int i) { return i == N - 1 ? 78 : bytes[i]; });
        }
    };
    check(simd::Lanes<16>{});
    if constexpr (16 < simd::registerLanes<Lum8u>)
        check(simd::Lanes<simd::registerLanes<Lum8u>>{});
}

TEST(SimdBitRow, PiecesCoverARow)
{
    for (int count = 1; count <= 200; ++count) {
        const GuardedBlock from(std::size_t(count), Guard::After), to(std::size_t(count), Guard::Before);
        Lum8u* const source = from.as<Lum8u>();
        Lum8u* const target = to.as<Lum8u>();
        for (int i = 0; i < count; ++i) {
            source[i] = static_cast<Lum8u>(5 * i + 2);
            target[i] = 0;
        }
        simd::eachPiece<64>(0, count, [&](int64_t k, auto lanes) {
            simd::storePiece<lanes>(target + k, simd::loadPiece<lanes>(source + k));
        });
        EXPECT_TRUE(std::equal(source, source + count, target)) << count << " bytes";
    }
}

}  // namespace
}  // namespace lumcv::test
