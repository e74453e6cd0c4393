// Rows of bits, the lowest bit of a byte first, worked on in bytes: bit operations, and loads from between two bytes.
#pragma once

#include "simd/lanes.hpp"

namespace lumcv::simd {

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator&(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo & b.lo, a.hi & b.hi};
    else
        return {(decltype(a.raw))(a.raw & b.raw)};
}

/// The bits in which a and b differ.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator^(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo ^ b.lo, a.hi ^ b.hi};
    else
        return {(decltype(a.raw))(a.raw ^ b.raw)};
}

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator~(Vec<T, N> a)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {~a.lo, ~a.hi};
    else
        return {(decltype(a.raw))(~a.raw)};
}

/// Moves the bits of two registers against each other: a's down, b's up, both by less than 64.
template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N> joined(Vec<uint64_t, N> a, int down, Vec<uint64_t, N> b, int up)
{
    if constexpr (kindOf<uint64_t, N> == Kind::pair)
        return {joined(a.lo, down, b.lo, up), joined(a.hi, down, b.hi, up)};
    else
        // more of the processor's ports add than shift
        return {(a.raw >> down) | (__builtin_constant_p(up) && up == 1 ? b.raw + b.raw : b.raw << up)};
}

/// Eight bits for each byte of `lower`, from `shift` bits (0 to 7) behind its start on; `upper` starts a byte later.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> betweenBytes(Vec<Lum8u, N> lower, Vec<Lum8u, N> upper, int shift)
{
    if constexpr (N == 1)
        return {static_cast<Lum8u>((lower.raw | upper.raw << 8) >> shift)};
    else  // a 64-bit lane lacks its upper bits; the lane that starts a byte later has them, and agrees on all others
        return reinterpreted<Lum8u>(
            joined(reinterpreted<uint64_t>(lower), shift, reinterpreted<uint64_t>(upper), 8 - shift));
}

/// Eight bits for each of N bytes, from `shift` bits (0 to 7) behind the start of p on. Reads N + 1 bytes.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> loadBits(const Lum8u* p, int shift)
{
    return betweenBytes(load<N>(p), load<N>(p + 1), shift);
}

}  // namespace lumcv::simd
