// What an element sees of a row of bits: windows of neighbouring bits, for all bits of a vector at once.
#pragma once

#include <bit>
#include <cstring>

#include "morph/bit_pass.hpp"
#include "simd/simd.hpp"

namespace lumcv {

template <BitOperation operation, class V>
[[gnu::always_inline]] inline V combined(V a, V b)
{
    if constexpr (operation == BitOperation::dilation)
        return a | b;
    else
        return a & b;
}

/// The bit that decides a pixel whatever the others are.
constexpr bool decisive(BitOperation operation)
{
    return operation == BitOperation::dilation;
}

/// Some bits of a row.
struct BitSpan
{
    int64_t begin, end;

    int64_t bytes() const
    {
        return (end + 7) >> 3;
    }

    /// Those of a byte.
    Lum8u mask(int64_t byte) const
    {
        const int64_t before = begin - 8 * byte, behind = 8 * byte + 8 - end;
        const int low = before < 0 ? 0 : before > 8 ? 8 : static_cast<int>(before);
        const int high = behind < 0 ? 0 : behind > 8 ? 8 : static_cast<int>(behind);
        return static_cast<Lum8u>((0xFF << low) & (0xFF >> high));
    }

    /// Those of N bytes at an end of the span, all of whose bits are in it but for the first two and the last two
    /// bytes.
    template <int N>
    simd::Vec<Lum8u, N> masks(int64_t byte) const
    {
        Lum8u all[N];
        std::memset(all, 0xFF, N);
        for (const int i : {0, 1, N - 2, N - 1})
            all[i] = mask(byte + i);
        return simd::load<N>(all);
    }
};

/// Bits in the longest window that BitWindows serves.
inline constexpr int longestWindow = 26;
static_assert(2 * (longestWindow - 1) + 7 + 7 <= 64, "each window lies in one of two lanes as a whole");

/// The windows of `length` bits that begin at `bit` and at each of the 63 bits behind it lie in two 64-bit lanes: one
/// begins with the byte in which the first window begins, one ends with the byte in which the last window ends.
struct BitWindows
{
    int64_t lower, upper;  ///< the bytes at which the two lanes begin
    int down, up;          ///< how far what is combined in the lanes then lies from its place in the result

    BitWindows() = default;
    constexpr BitWindows(int64_t bit, int length)
        : lower(bit >> 3),
          upper((bit + length + 6) >> 3),
          down(static_cast<int>(bit & 7)),
          up(static_cast<int>(8 * upper - (bit + length - 1)))
    {
    }
};

/// Combines the bits of each window, given the lanes.
template <BitOperation operation, class Longs>
[[gnu::always_inline]] inline Longs seenThrough(const BitWindows& windows, int length, Longs low, Longs high)
{
    const auto grow = [&](int bits) __attribute__((always_inline))
    {
        // zeros come in: what is not a whole window does not become set under an erosion, nor wrongly under a dilation
        low = combined<operation>(low, low >> bits);
        high = combined<operation>(high, high << bits);
    };
    if (length >= 2)
        grow(1);
    if (length >= 4)
        grow(2);
    if (length >= 8)
        grow(4);
    if (length >= 16)
        grow(8);
    const int rest = length - static_cast<int>(std::bit_floor(static_cast<unsigned>(length)));
    if (rest > 0)
        grow(rest);
    return simd::joined(low, windows.down, high, windows.up);
}

}  // namespace lumcv
