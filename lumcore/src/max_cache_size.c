/* The size of the largest cache, from the processor's own description of its caches. */
#include "lumcore.h"

#include <cpuid.h>
#include <limits.h>
#include <stdatomic.h>

enum
{
    statusOk = 0,
    statusGeneric = -2,
    statusNullPointer = -8
};

/* Both leaves describe one cache a subleaf in the same words; the second is the one of processors that leave leaf 4
 * empty. */
static const unsigned cacheLeaves[] = {0x00000004u, 0x8000001Du};

static unsigned long long largestCacheOfLeaf(unsigned leaf)
{
    enum
    {
        noMoreCaches = 0,
        instructionCache = 2,
        mostSubleaves = 32
    };
    unsigned long long largest = 0;
    /* asked for once: a hypervisor takes microseconds to answer each question */
    if (__get_cpuid_max(leaf & 0x80000000u, 0) < leaf)
        return 0;
    for (unsigned subleaf = 0; subleaf < mostSubleaves; ++subleaf) {
        unsigned eax, ebx, ecx, edx;
        __cpuid_count(leaf, subleaf, eax, ebx, ecx, edx);
        const unsigned type = eax & 31u;
        if (type == noMoreCaches)
            break;
        if (type == instructionCache)
            continue;
        const unsigned long long ways = (ebx >> 22) + 1ull;
        const unsigned long long partitions = ((ebx >> 12) & 1023u) + 1ull;
        const unsigned long long lineSize = (ebx & 4095u) + 1ull;
        const unsigned long long sets = ecx + 1ull;
        const unsigned long long size = ways * partitions * lineSize * sets;
        if (size > largest)
            largest = size;
    }
    return largest;
}

/* In bytes; 0 if the processor does not describe its caches. */
static int largestCache(void)
{
    unsigned long long largest = 0;
    for (unsigned i = 0; i < sizeof cacheLeaves / sizeof *cacheLeaves && largest == 0; ++i)
        largest = largestCacheOfLeaf(cacheLeaves[i]);
    return largest > INT_MAX ? INT_MAX : (int)largest;
}

int lumGetMaxCacheSizeB(int* pSizeByte)
{
    enum
    {
        unknown = -1
    };
    /* A hypervisor takes tens of microseconds for all questions together, as long as filtering a small image. Threads
     * that come here first at the same time find out the same. */
    static _Atomic int kept = unknown;
    if (!pSizeByte)
        return statusNullPointer;
    int size = atomic_load_explicit(&kept, memory_order_relaxed);
    if (size == unknown) {
        size = largestCache();
        atomic_store_explicit(&kept, size, memory_order_relaxed);
    }
    if (size == 0)
        return statusGeneric;
    *pSizeByte = size;
    return statusOk;
}
