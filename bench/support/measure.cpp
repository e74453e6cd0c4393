// Medians of a call and a memory copy that alternate.
#include "bench/support/measure.hpp"

#include <sched.h>
#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace lumcv::bench {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Time that this thread has spent on a processor. On a machine of its own it is the time of the clock on the wall; on a
// busy one it leaves out the time that others took.
double threadSeconds()
{
    timespec time;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

double quantile(std::vector<double> values, double part)
{
    const auto at = values.begin() + std::ptrdiff_t(part * double(values.size() - 1) + 0.5);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

// How often an action of the given length is repeated between two looks at the clock: long enough that the clock's own
// cost does not count, short enough to fit between two interruptions.
int repetitions(double seconds)
{
    constexpr double shortest = 100e-6;
    return seconds >= shortest ? 1 : int(shortest / std::max(seconds, 1e-9)) + 1;
}

// Called through a pointer that the compiler must read each time, so that no copy is removed or merged.
void* (*volatile copyMemory)(void*, const void*, std::size_t) = std::memcpy;

}  // namespace

Measurement measure(const Call& call, std::size_t copyBytes, double seconds)
{
    Measurement result;
    Job copy({1, 1});
    std::byte* const from = copy.allocate(copyBytes);
    std::byte* const to = copy.allocate(copyBytes);

    const auto timeCall = [&](int times) {
        const double start = threadSeconds();
        const LumStatus status = call.repeat(times);
        if (status != lumOk)
            result.status = status;
        return (threadSeconds() - start) / times;
    };
    const auto timeCopy = [&](int times) {
        const double start = threadSeconds();
        for (int i = 0; i < times; ++i)
            copyMemory(to, from, copyBytes);
        return (threadSeconds() - start) / times;
    };

    const double first = timeCall(1);
    timeCopy(1);
    // a long call is soon seen well enough: what the first one costs besides, and chance, count little in it
    constexpr double longCall = 0.1, veryLongCall = 1;
    const int calls = first > longCall ? 1 : repetitions(timeCall(1));
    const int copies = repetitions(timeCopy(1));

    const std::size_t leastPairs = first > veryLongCall ? 1 : first > longCall ? 3 : 5;
    constexpr std::size_t mostPairs = 2001;
    std::vector<double> callTimes, copyTimes, ratios;
    const auto start = Clock::now();
    while (result.status == lumOk && callTimes.size() < mostPairs &&
           (callTimes.size() < leastPairs || secondsSince(start) < seconds)) {
        callTimes.push_back(timeCall(calls));
        copyTimes.push_back(timeCopy(copies));
        ratios.push_back(callTimes.back() / copyTimes.back());
    }
    if (result.status != lumOk)
        return result;

    result.callSeconds = quantile(callTimes, 0.5);
    result.copySeconds = quantile(copyTimes, 0.5);
    result.multiple = result.callSeconds / result.copySeconds;
    result.spread = (quantile(ratios, 0.75) - quantile(ratios, 0.25)) / 2 / quantile(ratios, 0.5);
    result.pairs = int(ratios.size());
    return result;
}

void pinToProcessor()
{
    cpu_set_t processors;
    CPU_ZERO(&processors);
    CPU_SET(unsigned(std::max(sched_getcpu(), 0)), &processors);
    // a refusal costs precision and nothing else
    static_cast<void>(sched_setaffinity(0, sizeof processors, &processors));
}

}  // namespace lumcv::bench
