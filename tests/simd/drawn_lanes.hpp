// What tests of the vector operations share: lanes drawn at random, and lanes held against what is expected of each.
#pragma once

#include <gtest/gtest.h>

#include <array>

#include "simd/simd.hpp"
#include "support/random.hpp"

namespace lumcv::test {

inline constexpr unsigned draws = 50;

template <class T, int N>
std::array<T, N> drawn(unsigned seed, Values values = Values::Extreme)
{
    Random random(seed + 1);
    std::array<T, N> lanes;
    for (T& lane : lanes)
        lane = random.value<T>(values);
    return lanes;
}

template <class T, int N>
std::array<T, N> lanesOf(simd::Vec<T, N> v)
{
    std::array<T, N> lanes;
    simd::store(lanes.data(), v);
    return lanes;
}

template <class T, int N, class Expected>
void expectEach(simd::Vec<T, N> got, Expected expected)
{
    const auto lanes = lanesOf(got);
    for (int i = 0; i < N; ++i)
        ASSERT_EQ(lanes[std::size_t(i)], T(expected(i))) << "lane " << i << " of " << N;
}

}  // namespace lumcv::test
