// Vectors as values: Vec<T, N> holds N lanes of T and reads like the scalar formula.
//
// The processor level decides what a register is; a kernel picks the lane count that its arithmetic needs:
//   N * sizeof(T) up to a register   one register (16 bytes at least)
//   more                             a pair of halves, recursively
//   N == 1                           the scalar, so that a kernel serves the tail of a row as well
#pragma once

#include <immintrin.h>

#include <cstdint>
#include <type_traits>

#include "lumcv/types.h"

namespace lumcv::simd {

#if defined(__AVX512BW__)
inline constexpr int floatRegisterBytes = 64;
inline constexpr int integerRegisterBytes = 64;
#elif defined(__AVX2__)
inline constexpr int floatRegisterBytes = 32;
inline constexpr int integerRegisterBytes = 32;
#else
inline constexpr int floatRegisterBytes = 32;
inline constexpr int integerRegisterBytes = 16;
#endif

template <class T>
inline constexpr int registerBytes = std::is_floating_point_v<T> ? floatRegisterBytes : integerRegisterBytes;

/// Lanes of T in one register of this level.
template <class T>
inline constexpr int registerLanes = registerBytes<T> / static_cast<int>(sizeof(T));

enum class Kind
{
    scalar,
    native,
    pair
};

template <class T, int N>
inline constexpr Kind kindOf = N == 1                                               ? Kind::scalar
                               : N* static_cast<int>(sizeof(T)) <= registerBytes<T> ? Kind::native
                                                                                    : Kind::pair;

template <class T, int N, Kind kind = kindOf<T, N>>
struct Vec;

template <class T>
struct Vec<T, 1, Kind::scalar>
{
    T raw;
};

template <class T, int N>
struct Vec<T, N, Kind::native>
{
    static_assert(N * sizeof(T) >= 16, "a native vector fills at least a 16-byte register");
    typedef T Raw __attribute__((vector_size(N * sizeof(T))));
    Raw raw;
};

template <class T, int N>
struct Vec<T, N, Kind::pair>
{
    Vec<T, N / 2> lo, hi;
};

// Arithmetic: lane by lane, modulo 2^n for integers.

/// The form in which integers wrap around without being undefined.
template <class T, int N>
[[gnu::always_inline]] inline auto wrapping(Vec<T, N> v)
{
    if constexpr (std::is_floating_point_v<T>)
        return v.raw;
    else if constexpr (N == 1)
        return static_cast<std::conditional_t<(sizeof(T) > 4), uint64_t, uint32_t>>(v.raw);
    else {
        typedef std::make_unsigned_t<T> Unsigned __attribute__((vector_size(N * sizeof(T))));
        return (Unsigned)v.raw;
    }
}

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator+(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo + b.lo, a.hi + b.hi};
    else
        return {(decltype(a.raw))(wrapping(a) + wrapping(b))};
}

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator-(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo - b.lo, a.hi - b.hi};
    else
        return {(decltype(a.raw))(wrapping(a) - wrapping(b))};
}

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator*(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo * b.lo, a.hi * b.hi};
    else
        return {(decltype(a.raw))(wrapping(a) * wrapping(b))};
}

/// The quotient, of floats.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator/(Vec<T, N> a, Vec<T, N> b)
{
    static_assert(std::is_floating_point_v<T>);
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo / b.lo, a.hi / b.hi};
    else
        return {a.raw / b.raw};
}

template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator|(Vec<T, N> a, Vec<T, N> b)
{
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo | b.lo, a.hi | b.hi};
    else
        return {(decltype(a.raw))(a.raw | b.raw)};
}

/// Shifts signed lanes to the right; the sign comes in.
template <class T, int N>
[[gnu::always_inline]] inline Vec<T, N> operator>>(Vec<T, N> a, int places)
{
    static_assert(std::is_signed_v<T>);
    if constexpr (kindOf<T, N> == Kind::pair)
        return {a.lo >> places, a.hi >> places};
    else
        return {(decltype(a.raw))(a.raw >> places)};
}

/// The same value in every lane.
template <int N, class T>
[[gnu::always_inline]] inline Vec<T, N> broadcast(T value)
{
    if constexpr (kindOf<T, N> == Kind::pair) {
        const auto half = broadcast<N / 2>(value);
        return {half, half};
    } else if constexpr (kindOf<T, N> == Kind::scalar)
        return {value};
    else
        return {value - typename Vec<T, N>::Raw{}};  // a difference, for 0 + -0.0 would lose the sign
}

/// Loads N elements from any address.
template <int N, class T>
[[gnu::always_inline]] inline Vec<T, N> load(const T* p)
{
    Vec<T, N> v;
    if constexpr (kindOf<T, N> == Kind::pair)
        v = {load<N / 2>(p), load<N / 2>(p + N / 2)};
    else
        __builtin_memcpy(&v.raw, p, sizeof v.raw);
    return v;
}

/// Stores N elements to any address.
template <class T, int N>
[[gnu::always_inline]] inline void store(T* p, Vec<T, N> v)
{
    if constexpr (kindOf<T, N> == Kind::pair) {
        store(p, v.lo);
        store(p + N / 2, v.hi);
    } else
        __builtin_memcpy(p, &v.raw, sizeof v.raw);
}

/// Stores past the caches; p is aligned to the vector, or to a register where the vector is wider. A fence() must
/// follow the last one.
template <class T, int N>
[[gnu::always_inline]] inline void stream(T* p, Vec<T, N> v)
{
    if constexpr (kindOf<T, N> == Kind::pair) {
        stream(p, v.lo);
        stream(p + N / 2, v.hi);
    } else if constexpr (sizeof v.raw == 16)
        _mm_stream_ps(reinterpret_cast<float*>(p), (__m128)v.raw);
    else if constexpr (sizeof v.raw == 32)
        _mm256_stream_ps(reinterpret_cast<float*>(p), (__m256)v.raw);
#if defined(__AVX512BW__)
    else if constexpr (sizeof v.raw == 64)
        _mm512_stream_ps(reinterpret_cast<float*>(p), (__m512)v.raw);
#endif
    else
        static_assert(sizeof v.raw == 0, "no scalar goes past the caches");
}

/// Asks for the cache lines of N elements that will be wanted soon. It is a hint; p lies in an image all the same.
template <int N, class T>
[[gnu::always_inline]] inline void prefetch(const T* p)
{
    constexpr int line = 64 / static_cast<int>(sizeof(T));
    for (int i = 0; i < N; i += line)
        _mm_prefetch(reinterpret_cast<const char*>(p + i), _MM_HINT_T0);
}

/// Makes streamed stores visible in order.
inline void fence()
{
    _mm_sfence();
}

}  // namespace lumcv::simd
