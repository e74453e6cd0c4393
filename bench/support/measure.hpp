// Times a call and a memory copy in turn, so that what disturbs the machine disturbs both.
#pragma once

#include <cstddef>

#include "bench/support/row.hpp"

namespace lumcv::bench {

struct Measurement
{
    LumStatus status = lumOk;  // anything else: the call failed and nothing was measured
    double callSeconds = 0;    // median
    double copySeconds = 0;    // median
    double multiple = 0;       // of the medians
    double spread = 0;  // half the distance between the quartiles of the pairs' ratios, as a part of their median
    int pairs = 0;
};

// Measures for about the given time, and at least a few pairs.
Measurement measure(const Call& call, std::size_t copyBytes, double seconds);

// Keeps the process on the processor it runs on.
void pinToProcessor();

}  // namespace lumcv::bench
