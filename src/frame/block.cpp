// Block primitives: three ways of moving memory, chosen by length.
#include "frame/block.hpp"

#include <x86intrin.h>

#include <cstddef>
#include <cstdint>

#include "lumcore.h"
#include "simd/simd.hpp"

namespace lumcv {
namespace {

using Wide = simd::Vec<Lum32f, simd::registerLanes<Lum32f>>;
constexpr size_t wideBytes = sizeof(Wide);
static_assert(wideBytes <= 64);

/// From this length on the bulk of a block is moved with the destination aligned.
constexpr size_t shortestBulk = 256;

/// Above this length string instructions are the fastest; a copy passes it one byte earlier than a store.
constexpr size_t longestVectorZero = 32768;
constexpr size_t longestVectorCopy = 32767;

/// A copy from a misaligned source runs from the end to the start while at least this much is left.
constexpr size_t shortestDescendingCopy = 16384;

/// What one call of the byte kernel takes from a block whose byte count exceeds a signed 32-bit number.
constexpr size_t chunkBytes = 0x7fffffe0;

Wide loadWide(const Lum8u* p)
{
    return simd::load<simd::registerLanes<Lum32f>>(reinterpret_cast<const Lum32f*>(p));
}

void storeWide(Lum8u* p, Wide v)
{
    simd::store(reinterpret_cast<Lum32f*>(p), v);
}

/// Bytes from p to the next multiple of `alignment`, a power of two.
size_t misalignment(const void* p, size_t alignment)
{
    return -reinterpret_cast<uintptr_t>(p) & (alignment - 1);
}

/// String instructions run upwards while the direction flag is clear. Whoever calls the library with the flag set finds
/// it set again.
class AscendingStrings
{
  public:
    AscendingStrings() : wasSet_(__readeflags() & directionFlag)
    {
        if (wasSet_)
            asm volatile("cld" ::: "cc", "memory");
    }

    ~AscendingStrings()
    {
        if (wasSet_)
            asm volatile("std" ::: "cc", "memory");
    }

    AscendingStrings(const AscendingStrings&) = delete;
    AscendingStrings& operator=(const AscendingStrings&) = delete;

  private:
    static constexpr unsigned long long directionFlag = 0x400;
    bool wasSet_;
};

// Filling.

/// A value repeated over 64 bytes. A fill stays in step with it as long as it starts at a whole element and moves by
/// whole elements.
struct Pattern
{
    alignas(64) Lum32u words[16];

    explicit Pattern(Lum32u word)
    {
        for (Lum32u& w : words)
            w = word;
    }

    const Lum8u* bytes() const
    {
        return reinterpret_cast<const Lum8u*>(words);
    }
};

/// Stores the rest of a block in descending powers of two, one store for each bit of the count.
template <size_t size = shortestBulk / 2>
void fillTail(Lum8u* p, size_t n, const Pattern& pattern)
{
    if (n == 0)
        return;
    if (n & size) {
        constexpr size_t unit = size < sizeof pattern.words ? size : sizeof pattern.words;
        for (size_t i = 0; i < size; i += unit)
            __builtin_memcpy(p + i, pattern.bytes(), unit);
        p += size;
    }
    if constexpr (size > 1)
        fillTail<size / 2>(p, n % size, pattern);
}

void fillVector(Lum8u* p, size_t n, const Pattern& pattern)
{
    if (n >= shortestBulk) {
        const Wide wide = loadWide(pattern.bytes());
        storeWide(p, wide);
        const size_t head = misalignment(p, wideBytes);
        p += head;
        n -= head;
        for (; n >= shortestBulk; p += shortestBulk, n -= shortestBulk)
            for (size_t i = 0; i < shortestBulk; i += wideBytes)
                storeWide(p + i, wide);
    }
    fillTail(p, n, pattern);
}

/// Fills a block of at least 64 bytes past the caches if it is larger than the largest of them.
void fillCacheAware(Lum8u* p, size_t n, const Pattern& pattern)
{
    constexpr size_t line = 64;
    constexpr size_t round = 512;
    int cacheBytes = 0;
    if (lumGetMaxCacheSizeB(&cacheBytes) != 0 || cacheBytes <= 0 || n <= static_cast<size_t>(cacheBytes)) {
        fillVector(p, n, pattern);
        return;
    }
    const Wide wide = loadWide(pattern.bytes());
    const auto streamBytes = [&](size_t count) {
        for (size_t i = 0; i < count; i += wideBytes)
            simd::stream(reinterpret_cast<Lum32f*>(p + i), wide);
        p += count;
        n -= count;
    };
    __builtin_memcpy(p, pattern.bytes(), line);
    const size_t head = misalignment(p, line);
    p += head;
    n -= head;
    while (n >= round)
        streamBytes(round);
    while (n >= line)
        streamBytes(line);
    simd::fence();
    fillTail(p, n, pattern);
}

void zeroString(Lum8u* p, size_t n)
{
    const AscendingStrings ascending;
    asm volatile("rep stosb" : "+D"(p), "+c"(n) : "a"(0) : "memory");
}

/// At most `longestVector` elements are cleared by vector code. Beyond, the string store takes over, if the block is
/// long enough for it in bytes too.
template <class T>
LumStatus zero(T* pDst, Lum32s len, Lum32s longestVector)
{
    if (!pDst)
        return lumErrNullPointer;
    if (len < 1)
        return lumErrSize;
    const auto p = reinterpret_cast<Lum8u*>(pDst);
    const size_t n = static_cast<size_t>(len) * sizeof(T);
    if (len > longestVector && n > longestVectorZero)
        zeroString(p, n);
    else
        fillVector(p, n, Pattern(0));
    return lumOk;
}

/// Above `longestCached` elements the fill asks for the size of the cache.
template <class T>
LumStatus set(T value, T* pDst, Lum32s len, Lum32s longestCached)
{
    if (!pDst)
        return lumErrNullPointer;
    if (len < 1)
        return lumErrSize;
    const auto p = reinterpret_cast<Lum8u*>(pDst);
    const size_t n = static_cast<size_t>(len) * sizeof(T);
    if (misalignment(p, sizeof(T)) != 0) {
        for (size_t i = 0; i < n; i += sizeof(T))
            __builtin_memcpy(p + i, &value, sizeof(T));
        return lumOk;
    }
    Lum32u word = 0;
    for (size_t i = 0; i < sizeof word; i += sizeof(T))
        __builtin_memcpy(reinterpret_cast<Lum8u*>(&word) + i, &value, sizeof(T));
    if (len > longestCached)
        fillCacheAware(p, n, Pattern(word));
    else
        fillVector(p, n, Pattern(word));
    return lumOk;
}

// Copying.

template <size_t size = shortestBulk / 2>
void copyTail(const Lum8u* s, Lum8u* d, size_t n)
{
    if (n == 0)
        return;
    if (n & size) {
        __builtin_memcpy(d, s, size);
        s += size;
        d += size;
    }
    if constexpr (size > 1)
        copyTail<size / 2>(s, d, n % size);
}

void copyVector(const Lum8u* s, Lum8u* d, size_t n)
{
    constexpr size_t step = 64;
    const auto copyStep = [&](size_t at) {
        for (size_t i = 0; i < step; i += wideBytes)
            storeWide(d + at + i, loadWide(s + at + i));
    };
    if (n >= shortestBulk) {
        storeWide(d, loadWide(s));
        const size_t head = misalignment(d, wideBytes);
        s += head;
        d += head;
        n -= head;
        if (misalignment(s, wideBytes) != 0 && n >= shortestDescendingCopy) {
            const size_t odd = n % step;
            n -= odd;
            copyTail(s + n, d + n, odd);
            while (n > 0)
                copyStep(n -= step);
            return;
        }
        const size_t bulk = n - n % step;
        for (size_t at = 0; at < bulk; at += step)
            copyStep(at);
        s += bulk;
        d += bulk;
        n -= bulk;
    }
    copyTail(s, d, n);
}

/// The widest unit in which source and destination can both be aligned.
void copyString(const Lum8u* s, Lum8u* d, size_t n)
{
    const AscendingStrings ascending;
    const auto moveBytes = [&](size_t count) { asm volatile("rep movsb" : "+S"(s), "+D"(d), "+c"(count)::"memory"); };
    const auto relative = reinterpret_cast<uintptr_t>(s) - reinterpret_cast<uintptr_t>(d);
    const size_t unit = relative % 8 == 0 ? 8 : relative % 4 == 0 ? 4 : relative % 2 == 0 ? 2 : 1;
    const size_t head = misalignment(d, unit);
    moveBytes(head);
    n -= head;
    size_t units = n / unit;
    switch (unit) {
        case 8:
            asm volatile("rep movsq" : "+S"(s), "+D"(d), "+c"(units)::"memory");
            break;
        case 4:
            asm volatile("rep movsl" : "+S"(s), "+D"(d), "+c"(units)::"memory");
            break;
        case 2:
            asm volatile("rep movsw" : "+S"(s), "+D"(d), "+c"(units)::"memory");
            break;
        default:
            moveBytes(units);
    }
    copyTail<4>(s, d, n % unit);
    _mm256_zeroupper();
}

void copyBytes(const Lum8u* s, Lum8u* d, size_t n)
{
    if (n > longestVectorCopy)
        copyString(s, d, n);
    else
        copyVector(s, d, n);
}

template <class T>
LumStatus copy(const T* pSrc, T* pDst, Lum32s len)
{
    if (!pSrc || !pDst)
        return lumErrNullPointer;
    if (len < 1)
        return lumErrSize;
    auto s = reinterpret_cast<const Lum8u*>(pSrc);
    auto d = reinterpret_cast<Lum8u*>(pDst);
    size_t n = static_cast<size_t>(len) * sizeof(T);
    if (n > INT32_MAX)
        for (; n > chunkBytes; s += chunkBytes, d += chunkBytes, n -= chunkBytes)
            copyBytes(s, d, chunkBytes);
    copyBytes(s, d, n);
    return lumOk;
}

}  // namespace

LumStatus lumBlockZero_8u(Lum8u* pDst, Lum32s len)
{
    return zero(pDst, len, longestVectorZero);
}

LumStatus lumBlockZero_16s(Lum16s* pDst, Lum32s len)
{
    return zero(pDst, len, 1048576);
}

LumStatus lumBlockZero_32f(Lum32f* pDst, Lum32s len)
{
    return zero(pDst, len, 524288);
}

LumStatus lumBlockCopy_8u(const Lum8u* pSrc, Lum8u* pDst, Lum32s len)
{
    return copy(pSrc, pDst, len);
}

LumStatus lumBlockCopy_16s(const Lum16s* pSrc, Lum16s* pDst, Lum32s len)
{
    return copy(pSrc, pDst, len);
}

LumStatus lumBlockCopy_32f(const Lum32f* pSrc, Lum32f* pDst, Lum32s len)
{
    return copy(pSrc, pDst, len);
}

void* lumBlockCopyRaw(const void* pSrc, void* pDst, Lum32s len)
{
    copyBytes(static_cast<const Lum8u*>(pSrc), static_cast<Lum8u*>(pDst), static_cast<size_t>(len));
    return pDst;
}

LumStatus lumBlockSet_8u(Lum8u value, Lum8u* pDst, Lum32s len)
{
    return set(value, pDst, len, 0x200000);
}

LumStatus lumBlockSet_16s(Lum16s value, Lum16s* pDst, Lum32s len)
{
    constexpr Lum32s always = INT32_MAX;
    return set(value, pDst, len, always);
}

LumStatus lumBlockSet_32f(Lum32f value, Lum32f* pDst, Lum32s len)
{
    return set(value, pDst, len, 0x80000);
}

LumStatus lumBlockDivC_32f(Lum32f value, Lum32f* pSrcDst, Lum32s len)
{
    if (!pSrcDst)
        return lumErrNullPointer;
    if (len < 1)
        return lumErrSize;
    if (value == 0.0f)
        return lumErrDivideByZero;
    const Lum32f reciprocal = 1.0f / value;
    simd::eachOnce<16>(0, len, [=](int64_t x, auto lanes) {
        simd::store(pSrcDst + x, simd::load<lanes>(pSrcDst + x) * simd::broadcast<lanes>(reciprocal));
    });
    return lumOk;
}

}  // namespace lumcv
