// Comparisons of all lanes and what is made of them, against plain loops.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

/// Few values, the ends of the type among them, so that many lanes are equal.
template <class T, int N>
std::array<T, N> drawnLanes(unsigned seed)
{
    using Limits = std::numeric_limits<T>;
    const T values[] = {Limits::lowest(), T{0},          T{1},
                        T{100},           Limits::max(), T(Limits::has_quiet_NaN ? Limits::quiet_NaN() : T{7})};
    Random random(seed + 1);
    std::array<T, N> lanes;
    for (T& lane : lanes)
        lane = values[random.between(0, 5)];
    return lanes;
}

/// Calls check(T{}, lanes, seed) for scalars, single registers of every width, and pairs.
template <class T, class Check>
void forVectors(Check check)
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        check(T{}, simd::Lanes<1>{}, seed);
        check(T{}, simd::Lanes<16 / sizeof(T)>{}, seed);
        check(T{}, simd::Lanes<32 / sizeof(T)>{}, seed);
        check(T{}, simd::Lanes<64 / sizeof(T)>{}, seed);
        if constexpr (sizeof(T) > 1)
            check(T{}, simd::Lanes<128 / sizeof(T)>{}, seed);
    }
}

/// Holds a mask against expected(i): by the lanes that it selects, its bits, and whether it holds anywhere.
template <class T, int N, class Expected>
void expectMask(simd::Mask<T, N> mask, Expected expected)
{
    std::array<T, N> first, second;
    first.fill(T{3});
    second.fill(T{5});
    uint64_t bits = 0;
    for (int i = 0; i < N; ++i)
        bits |= uint64_t{expected(i)} << i;
    expectEach<T, N>(simd::select(mask, simd::load<N>(first.data()), simd::load<N>(second.data())),
                     [&](int i) { return expected(i) ? 3 : 5; });
    EXPECT_EQ(simd::laneBits(mask), bits);
    EXPECT_EQ(simd::any(mask), bits != 0);
}

const auto greaterLanes = []<class T, int N>(T, simd::Lanes<N>, unsigned seed) {
    const auto a = drawnLanes<T, N>(seed), b = drawnLanes<T, N>(seed + 1000);
    const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data());
    const auto isGreater = [&](int i) { return a[std::size_t(i)] > b[std::size_t(i)]; };
    const auto isLess = [&](int i) { return b[std::size_t(i)] > a[std::size_t(i)]; };
    expectMask<T, N>(simd::greater(va, vb), isGreater);
    expectMask<T, N>(simd::greater(va, vb) & simd::greater(vb, va), [](int) { return false; });
    expectMask<T, N>(simd::greater(va, vb) | simd::greater(vb, va), [&](int i) { return isGreater(i) || isLess(i); });
};

TEST(SimdMasks, Greater)
{
    forVectors<Lum8s>(greaterLanes);
    forVectors<Lum16u>(greaterLanes);
    forVectors<Lum32s>(greaterLanes);
    forVectors<Lum32f>(greaterLanes);
}

TEST(SimdMasks, AtMost)
{
    forVectors<Lum32f>([]<int N>(Lum32f, simd::Lanes<N>, unsigned seed) {
        const auto a = drawnLanes<Lum32f, N>(seed), b = drawnLanes<Lum32f, N>(seed + 1000);
        expectMask<Lum32f, N>(simd::atMost(simd::load<N>(a.data()), simd::load<N>(b.data())),
                              [&](int i) { return a[std::size_t(i)] <= b[std::size_t(i)]; });
    });
}

TEST(SimdMasks, OneWithoutAnother)
{
    forVectors<Lum32f>([]<int N>(Lum32f, simd::Lanes<N>, unsigned seed) {
        const auto a = drawnLanes<Lum32f, N>(seed), b = drawnLanes<Lum32f, N>(seed + 1000);
        const auto va = simd::load<N>(a.data()), vb = simd::load<N>(b.data()), zero = simd::broadcast<N>(0.0f);
        expectMask<Lum32f, N>(without(simd::greater(va, zero), simd::greater(vb, zero)),
                              [&](int i) { return a[std::size_t(i)] > 0 && !(b[std::size_t(i)] > 0); });
    });
}

TEST(SimdMasks, AnyBitThatDiffers)
{
    forVectors<Lum32f>([]<int N>(Lum32f, simd::Lanes<N>, unsigned seed) {
        const auto a = drawnLanes<Lum32f, N>(seed);
        const auto va = simd::load<N>(a.data());
        EXPECT_FALSE(simd::anyBitDiffers(va, va));
        for (std::size_t i = 0; i < N; ++i) {
            auto b = a;
            b[i] = -b[i];  // of a zero and of what is not a number, too
            EXPECT_TRUE(simd::anyBitDiffers(va, simd::load<N>(b.data()))) << "lane " << i << " of " << N;
        }
    });
}

TEST(SimdMasks, SignBitsThatDiffer)
{
    forVectors<Lum32f>([]<int N>(Lum32f, simd::Lanes<N>, unsigned seed) {
        auto a = drawnLanes<Lum32f, N>(seed), b = drawnLanes<Lum32f, N>(seed + 1000);
        for (int i = 0; i < N; ++i) {
            a[std::size_t(i)] = (seed + unsigned(i)) % 3 ? a[std::size_t(i)] : -a[std::size_t(i)];
            b[std::size_t(i)] = (seed + unsigned(i)) % 5 ? b[std::size_t(i)] : -b[std::size_t(i)];
        }
        expectMask<Lum32f, N>(simd::differInSign(simd::load<N>(a.data()), simd::load<N>(b.data())), [&](int i) {
            return std::signbit(a[std::size_t(i)]) != std::signbit(b[std::size_t(i)]);
        });
    });
}

const auto equalLanes = []<class T, int N>(T, simd::Lanes<N>, unsigned seed) {
    const auto a = drawnLanes<T, N>(seed), b = drawnLanes<T, N>(seed + 1000);
    expectMask<T, N>(simd::equal(simd::load<N>(a.data()), simd::load<N>(b.data())),
                     [&](int i) { return a[std::size_t(i)] == b[std::size_t(i)]; });
};

TEST(SimdMasks, Equal)
{
    forVectors<Lum8u>(equalLanes);
    forVectors<Lum16u>(equalLanes);
    forVectors<Lum32s>(equalLanes);
    forVectors<Lum32f>(equalLanes);
}

const auto loneLanes = []<class T, int N>(T, simd::Lanes<N>, unsigned) {
    std::array<T, N> lanes{};
    EXPECT_FALSE(simd::anyNonZero(simd::load<N>(lanes.data())));
    EXPECT_EQ(simd::nonZeroBits(simd::load<N>(lanes.data())), 0u);
    for (std::size_t i = 0; i < N; ++i) {
        lanes[i] = std::numeric_limits<T>::min() ? std::numeric_limits<T>::min() : T{1};
        EXPECT_TRUE(simd::anyNonZero(simd::load<N>(lanes.data()))) << "lane " << i << " of " << N;
        EXPECT_EQ(simd::nonZeroBits(simd::load<N>(lanes.data())), std::uint64_t{1} << i) << "of " << N;
        lanes[i] = 0;
    }
};

TEST(SimdMasks, AnyLaneThatIsNotZero)
{
    forVectors<Lum8u>(loneLanes);
    forVectors<Lum16u>(loneLanes);
    forVectors<Lum32s>(loneLanes);
}

TEST(SimdMasks, MagnitudesOfWords)
{
    forVectors<Lum16s>([]<class T, int N>(T, simd::Lanes<N>, unsigned seed) {
        const auto a = drawnLanes<T, N>(seed);
        expectEach<Lum16u, N>(simd::magnitude(simd::load<N>(a.data())),
                              [&](int i) { return std::abs(int(a[std::size_t(i)])); });
    });
}

TEST(SimdMasks, SumsOfSquaresWrap)
{
    forVectors<Lum32s>([]<class T, int N>(T, simd::Lanes<N>, unsigned seed) {
        const auto a = drawnLanes<Lum16s, N>(seed), b = drawnLanes<Lum16s, N>(seed + 1000);
        expectEach<Lum32s, N>(simd::squareSums<N>(a.data(), b.data()), [&](int i) {
            const int64_t x = a[std::size_t(i)], y = b[std::size_t(i)];
            return x * x + y * y;
        });
    });
}

TEST(SimdMasks, BitsSpreadIntoBytes)
{
    const auto check = []<int N>(simd::Lanes<N>) {
        // right before a page that cannot be read
        const GuardedBlock block(N / 8, Guard::After);
        Lum8u* const bytes = block.as<Lum8u>();
        Random random(N);
        for (int i = 0; i < N / 8; ++i)
            bytes[i] = static_cast<Lum8u>(random.between(0, 255));
        expectEach<Lum8u, N>(simd::spreadBits<N>(bytes), [&](int i) { return bytes[i / 8] >> (i % 8) & 1 ? 255 : 0; });
    };
    check(simd::Lanes<16>{});
    check(simd::Lanes<32>{});
    check(simd::Lanes<64>{});
    check(simd::Lanes<128>{});
}

}  // namespace
}  // namespace lumcv::test
