// What is taken from vectors that follow one another, against their lanes in one row.
#include "simd/successive.hpp"

#include <gtest/gtest.h>

#include "simd/drawn_lanes.hpp"

namespace lumcv::test {
namespace {

template <int count, class T, int N>
void expectMovedIn()
{
    const auto row = drawn<T, 2 * N>(count + N, Values::Ordinary);
    const auto moved = simd::movedIn<count>(simd::load<N>(row.data()), simd::load<N>(row.data() + N));
    expectEach<T, N>(moved, [&](int i) { return row[std::size_t(N + i - count)]; });
}

/// Vectors of 16 to 128 bytes.
template <int count, class T>
void expectMovedInOfAllWidths()
{
    constexpr int least = 16 / int(sizeof(T));
    expectMovedIn<count, T, least>();
    expectMovedIn<count, T, 2 * least>();
    expectMovedIn<count, T, 4 * least>();
    expectMovedIn<count, T, 8 * least>();
}

TEST(Successive, LanesMoveIn)
{
    expectMovedInOfAllWidths<1, Lum8u>();
    expectMovedInOfAllWidths<2, Lum8u>();
    expectMovedInOfAllWidths<12, Lum8u>();
    expectMovedInOfAllWidths<16, Lum8u>();
    expectMovedInOfAllWidths<1, Lum16u>();
    expectMovedInOfAllWidths<4, Lum16s>();
    expectMovedInOfAllWidths<8, Lum16u>();
}

}  // namespace
}  // namespace lumcv::test
