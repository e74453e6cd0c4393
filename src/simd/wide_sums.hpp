// Sums in 32 bits for the lanes of words, and what is done with them whatever their order.
#pragma once

#include "simd/sums.hpp"

namespace lumcv::simd {

// Which sums each of the two registers of a register of words holds.

/// Those of the lower and those of the upper words of each 16-byte group.
struct ByHalves;

/// Those of even and those of odd places.
struct ByParity;

template <class Order, int N, Kind kind = kindOf<Lum16s, N>>
struct WideSums;

template <class Order>
struct WideSums<Order, 1, Kind::scalar>
{
    Vec<Lum32s, 1> sum;
};

template <class Order, int N>
struct WideSums<Order, N, Kind::native>
{
    Vec<Lum32s, N / 2> first, second;
};

template <class Order, int N>
struct WideSums<Order, N, Kind::pair>
{
    WideSums<Order, N / 2> lo, hi;
};

/// Applies an operation of 32-bit lanes.
template <class Order, int N, class Operation, class... Rest>
[[gnu::always_inline]] inline WideSums<Order, N> eachSum(Operation operation, WideSums<Order, N> a, Rest... rest)
{
    if constexpr (kindOf<Lum16s, N> == Kind::pair)
        return {eachSum(operation, a.lo, rest.lo...), eachSum(operation, a.hi, rest.hi...)};
    else if constexpr (N == 1)
        return {operation(a.sum, rest.sum...)};
    else
        return {operation(a.first, rest.first...), operation(a.second, rest.second...)};
}

template <class Order, int N>
[[gnu::always_inline]] inline WideSums<Order, N> operator+(WideSums<Order, N> a, WideSums<Order, N> b)
{
    return eachSum([](auto x, auto y) { return x + y; }, a, b);
}

/// The sums modulo 2^32, each plus a value.
template <class Order, int N>
[[gnu::always_inline]] inline WideSums<Order, N> operator+(WideSums<Order, N> a, Lum32s value)
{
    return eachSum([value]<int M>(Vec<Lum32s, M> x) { return x + broadcast<M>(value); }, a);
}

/// The product modulo 2^32.
template <class Order, int N>
[[gnu::always_inline]] inline WideSums<Order, N> operator*(WideSums<Order, N> a, Lum32s scale)
{
    return eachSum([scale]<int M>(Vec<Lum32s, M> x) { return x * broadcast<M>(scale); }, a);
}

template <class Order, int N>
[[gnu::always_inline]] inline WideSums<Order, N> operator>>(WideSums<Order, N> a, int places)
{
    return eachSum([places](auto x) { return x >> places; }, a);
}

/// Two factors in turn, for the words that neighbourProducts multiplies.
template <int N>
[[gnu::always_inline]] inline Vec<Lum16s, N> inTurn(Lum16s first, Lum16s second)
{
    const auto both = static_cast<Lum16u>(first) | static_cast<Lum32u>(static_cast<Lum16u>(second)) << 16;
    return reinterpreted<Lum16s>(broadcast<N / 2>(static_cast<Lum32s>(both)));
}

}  // namespace lumcv::simd
