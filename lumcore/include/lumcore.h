/**
 * @file
 * @brief lumcore: what lumcv needs to know about the machine.
 */
#ifndef LUMCORE_H
#define LUMCORE_H

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reports the size in bytes of the largest data or unified cache of this processor.
 *
 * The answer is read with the cpuid instruction (leaf 4, or the leaf of the same layout where the vendor has moved
 * it) on the processor that runs the first call, and is kept for all others: what that instruction costs under a
 * hypervisor is paid once. Any number of threads may ask at the same time. A cache of 2 GiB or more is reported as
 * 2147483647 bytes.
 *
 * @param pSizeByte where the size goes; written only on success
 * @return 0 if the number is valid, -8 for a null pointer, -2 if the processor does not describe its caches
 */
__attribute__((visibility("default"))) int lumGetMaxCacheSizeB(int* pSizeByte);

#ifdef __cplusplus
}
#endif

#endif
