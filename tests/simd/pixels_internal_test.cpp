// Loads of one channel, lanes that a mask keeps, and copies of a few bytes, against plain loops.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "simd/drawn_lanes.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

/// Calls check(T{}, lanes) for vectors of one register, two and four at each level.
template <class Check>
void forPixels(Check check)
{
    const auto forLanes = [check](auto type) {
        check(type, simd::Lanes<16>{});
        check(type, simd::Lanes<32>{});
        check(type, simd::Lanes<64>{});
        check(type, simd::Lanes<128>{});
    };
    forLanes(Lum8u{});
    forLanes(Lum16u{});
    forLanes(Lum32f{});
}

TEST(SimdPixels, EveryThirdElementAndNothingBehindTheLast)
{
    forPixels([]<class T, int N>(T, simd::Lanes<N>) {
        const std::size_t elements = 3 * (N - 1) + 1;
        for (const Guard guard : {Guard::After, Guard::Before}) {
            GuardedBlock block(elements * sizeof(T), guard);
            Random random(N);
            std::vector<T> values(elements);
            for (T& value : values)
                value = random.value<T>(Values::Ordinary);
            std::memcpy(block.data(), values.data(), elements * sizeof(T));
            const auto lanes = lanesOf(simd::loadEveryThird<N>(block.as<const T>()));
            const auto same = lanesOf(simd::loadPixels<N, 3>(block.as<const T>()));
            const auto packed = lanesOf(simd::loadPixels<N, 1>(block.as<const T>()));
            for (std::size_t i = 0; i < N; ++i) {
                ASSERT_EQ(lanes[i], values[3 * i]) << "lane " << i << " of " << N;
                ASSERT_EQ(same[i], values[3 * i]) << "lane " << i << " of " << N;
                ASSERT_EQ(packed[i], values[i]) << "lane " << i << " of " << N;
            }
        }
    });
}

TEST(SimdPixels, MaskBytesKeepClearOrFill)
{
    forPixels([]<class T, int N>(T, simd::Lanes<N>) {
        for (unsigned seed = 0; seed < draws; ++seed) {
            Random random(seed + 1);
            GuardedBlock mask(N, seed % 2 ? Guard::After : Guard::Before);
            std::array<T, N> values;
            for (std::size_t i = 0; i < N; ++i) {
                mask.data()[i] = random.oneIn(2) ? 0 : static_cast<Lum8u>(random.between(1, 255));
                values[i] = random.value<T>(Values::NonFinite);
            }
            const auto v = simd::load<N>(values.data());
            const auto kept = lanesOf(simd::keepWhere(mask.as<const Lum8u>(), v));
            const auto filled = lanesOf(simd::fillWhereZero(mask.as<const Lum8u>(), v));
            for (std::size_t i = 0; i < N; ++i) {
                T zero{}, ones;
                std::memset(&ones, 0xFF, sizeof ones);
                const bool keeps = mask.data()[i] != 0;
                ASSERT_EQ(std::memcmp(&kept[i], keeps ? &values[i] : &zero, sizeof zero), 0) << "lane " << i;
                ASSERT_EQ(std::memcmp(&filled[i], keeps ? &values[i] : &ones, sizeof ones), 0) << "lane " << i;
            }
        }
    });
}

TEST(SimdPixels, FewBytesAreCopiedAndNoOthers)
{
    for (std::size_t bytes = 0; bytes <= 100; ++bytes)
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const GuardedBlock from(bytes, guard);
            std::array<Lum8u, 102> to{};
            simd::copyFew(to.data() + 1, from.data(), static_cast<int64_t>(bytes));
            ASSERT_EQ(to[0], 0);
            ASSERT_EQ(to[bytes + 1], 0);
            for (std::size_t i = 0; i < bytes; ++i)
                ASSERT_EQ(to[i + 1], from.data()[i]) << "byte " << i << " of " << bytes;
        }
}

}  // namespace
}  // namespace lumcv::test
