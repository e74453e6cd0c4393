// Squares of lanes against plain loops, and lanes that move on.
#include <gtest/gtest.h>

#include <cstring>

#include "simd/simd.hpp"
#include "support/guarded_block.hpp"

namespace lumcv::test {
namespace {

using simd::Vec;

/// Every lane of a square has a value of its own.
template <class T>
T valueAt(int row, int column, int lanes)
{
    return static_cast<T>(row * lanes + column);
}

template <class T, int N>
void expectTurned()
{
    Vec<T, N> square[N];
    for (int row = 0; row < N; ++row) {
        T lanes[N];
        for (int column = 0; column < N; ++column)
            lanes[column] = valueAt<T>(row, column, N);
        square[row] = simd::load<N>(lanes);
    }
    simd::transpose(square);
    for (int row = 0; row < N; ++row) {
        T lanes[N];
        simd::store(lanes, square[row]);
        for (int column = 0; column < N; ++column)
            ASSERT_EQ(lanes[column], valueAt<T>(column, row, N)) << "row " << row << ", column " << column;
    }
}

TEST(SimdTranspose, LanesChangePlacesWithVectors)
{
    expectTurned<Lum8u, 16>();
    expectTurned<Lum16u, 8>();
    expectTurned<Lum32f, 8>();
}

template <class T, int N>
void expectMovedOn()
{
    T lanes[N];
    for (int i = 0; i < N; ++i)
        lanes[i] = static_cast<T>(100 + i);
    // nothing but the one element is read
    for (const Guard guard : {Guard::Before, Guard::After}) {
        GuardedBlock block(sizeof(T), guard);
        const T first = static_cast<T>(7);
        std::memcpy(block.data(), &first, sizeof first);
        T moved[N];
        simd::store(moved, simd::movedOn(simd::load<N>(lanes), reinterpret_cast<const T*>(block.data())));
        ASSERT_EQ(moved[0], first);
        for (int i = 1; i < N; ++i)
            ASSERT_EQ(moved[i], lanes[i - 1]) << "lane " << i;
    }
}

TEST(SimdTranspose, LanesMoveOnByOne)
{
    expectMovedOn<Lum8u, 16>();
    expectMovedOn<Lum16u, 8>();
    expectMovedOn<Lum32f, 8>();
}

}  // namespace
}  // namespace lumcv::test
