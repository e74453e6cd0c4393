// Rows of bits, the lowest bit of a byte first, worked on in bytes: bit operations, and loads from between two bytes.
#pragma once

#include "simd/lanes.hpp"
#include "simd/row.hpp"

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

/// Shifts unsigned 64-bit lanes by less than 64, towards the lowest bit and away from it; zeros come in.
template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N> operator>>(Vec<uint64_t, N> a, int places)
{
    if constexpr (kindOf<uint64_t, N> == Kind::pair)
        return {a.lo >> places, a.hi >> places};
    else
        return {a.raw >> places};
}

template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N> operator<<(Vec<uint64_t, N> a, int places)
{
    if constexpr (kindOf<uint64_t, N> == Kind::pair)
        return {a.lo << places, a.hi << places};
    else  // more of the processor's ports add than shift
        return {__builtin_constant_p(places) && places == 1 ? a.raw + a.raw : a.raw << places};
}

/// Moves the bits of two registers against each other: a's down, b's up, both by less than 64.
template <int N>
[[gnu::always_inline]] inline Vec<uint64_t, N> joined(Vec<uint64_t, N> a, int down, Vec<uint64_t, N> b, int up)
{
    return (a >> down) | (b << up);
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

/// Loads N bytes of which the first is not read; `fill` stands for it.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> loadBehind(const Lum8u* p, Lum8u fill)
{
    if constexpr (N == 16)
        return movedUp<1>(load<16>(p + 1), broadcast<16>(fill));
#if defined(__AVX512BW__)
    else if constexpr (N == 64)
        return {(typename Vec<Lum8u, N>::Raw)_mm512_mask_loadu_epi8(bits(broadcast<64>(fill).raw), ~uint64_t{1}, p)};
#endif
#if defined(__AVX2__)
    else {
        static_assert(N == 32);
        const __m256i v = bits(load<32>(p + 1).raw);
        const __m256i before = _mm256_permute2x128_si256(bits(broadcast<32>(fill).raw), v, 0x20);
        return {(typename Vec<Lum8u, N>::Raw)_mm256_alignr_epi8(v, before, 15)};
    }
#endif
}

/// Loads N bytes of which the last is not read; `fill` stands for it.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> loadAhead(const Lum8u* p, Lum8u fill)
{
    if constexpr (N == 16)
        return movedDown<1>(load<16>(p - 1), broadcast<16>(fill));
#if defined(__AVX512BW__)
    else if constexpr (N == 64)
        return {
            (typename Vec<Lum8u, N>::Raw)_mm512_mask_loadu_epi8(bits(broadcast<64>(fill).raw), ~uint64_t{0} >> 1, p)};
#endif
#if defined(__AVX2__)
    else {
        static_assert(N == 32);
        const __m256i v = bits(load<32>(p - 1).raw);
        const __m256i behind = _mm256_permute2x128_si256(v, bits(broadcast<32>(fill).raw), 0x21);
        return {(typename Vec<Lum8u, N>::Raw)_mm256_alignr_epi8(behind, v, 1)};
    }
#endif
}

/// N bytes of bits: a vector, or a word of 8 bytes, or one.
template <int N>
using Piece = std::conditional_t<N == 8, Vec<uint64_t, 1>, Vec<Lum8u, N>>;

template <int N>
[[gnu::always_inline]] inline Piece<N> loadPiece(const Lum8u* p)
{
    if constexpr (N == 8) {
        Piece<N> word;
        __builtin_memcpy(&word.raw, p, N);
        return word;
    } else
        return load<N>(p);
}

template <int N>
[[gnu::always_inline]] inline void storePiece(Lum8u* p, Piece<N> piece)
{
    if constexpr (N == 8)
        __builtin_memcpy(p, &piece.raw, N);
    else
        store(p, piece);
}

/// Calls body(k, lanes) so that every byte of [begin, end) belongs to some piece.
template <int N, class Body>
[[gnu::always_inline]] inline void eachPiece(int64_t begin, int64_t end, Body body)
{
    if (end - begin >= restLanes || end - begin < 8)
        eachAtLeastOnce<N>(begin, end, body);
    else {
        body(begin, Lanes<8>{});
        body(end - 8, Lanes<8>{});
    }
}

/// A byte for each of N bits: 255 where it is set, 0 elsewhere.
template <int N>
[[gnu::always_inline]] inline Vec<Lum8u, N> spreadBits(const Lum8u* p)
{
    using V = Vec<Lum8u, N>;
    if constexpr (kindOf<Lum8u, N> == Kind::pair)
        return {spreadBits<N / 2>(p), spreadBits<N / 2>(p + N / 16)};
    else if constexpr (N == 16) {
        const __m128i each = _mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201));
        const __m128i bytes = _mm_shuffle_epi8(_mm_loadu_si16(p), _mm_set_epi64x(0x0101010101010101, 0));
        return {(typename V::Raw)_mm_cmpeq_epi8(_mm_and_si128(bytes, each), each)};
    }
#if defined(__AVX512BW__)
    else if constexpr (N == 64) {
        uint64_t mask;
        __builtin_memcpy(&mask, p, sizeof mask);
        return {(typename V::Raw)_mm512_movm_epi8(mask)};
    }
#endif
#if defined(__AVX2__)
    else {
        static_assert(N == 32);
        const __m256i each = _mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201));
        const __m256i places = _mm256_set_epi64x(0x0303030303030303, 0x0202020202020202, 0x0101010101010101, 0);
        const __m256i bytes = _mm256_shuffle_epi8(_mm256_broadcastd_epi32(_mm_loadu_si32(p)), places);
        return {(typename V::Raw)_mm256_cmpeq_epi8(_mm256_and_si256(bytes, each), each)};
    }
#endif
}

}  // namespace lumcv::simd
