// Rates and kernels of pyramids, and where a record stands.
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/support/call.hpp"

namespace lumcv::fuzz {

template <typename T>
using Tap = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum16s>;

inline Lum32f chooseRate(Choices& choices)
{
    const Lum32f rates[] = {2, 2, 2, 1.5f, 3, 10, 1.99999f, 2.00001f, 1.0000001f, 1.1f, 2.5f, 7.3f};
    return choices.oneOf(rates);
}

template <typename T>
std::vector<Tap<T>> chooseKernel(Choices& choices)
{
    std::vector<Tap<T>> taps;
    if (choices.oneIn(3))
        return {1, 4, 6, 4, 1};
    const int size = 2 * (choices.oneIn(4) ? choices.between(1, 20) : choices.between(1, 3)) + 1;
    for (int i = 0; i < size; ++i)
        taps.push_back(Tap<T>(choices.oneIn(5) ? choices.between(-32768, 32767) : choices.between(-3, 60)));
    return taps;
}

// The block holds the record at the first multiple of 64.
template <typename Record>
Record* recordIn(void* block)
{
    return reinterpret_cast<Record*>((reinterpret_cast<std::uintptr_t>(block) + 63) / 64 * 64);
}

inline bool isReady(LumStatus status)
{
    return status == lumOk || status == lumWrnKernelNotSymmetric;
}

}  // namespace lumcv::fuzz
