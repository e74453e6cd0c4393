// The control words of the floating-point units, vector and x87: calls under those of a caller's choice.
#pragma once

#include <gtest/gtest.h>
#include <immintrin.h>

#include <cstdint>
#include <functional>

#include "lumcv/types.h"

namespace lumcv::test {

/// Of the vector unit's word, what is set and not what has happened.
constexpr unsigned kControlBits = 0xffc0;
/// The vector unit's word after a start: all exceptions masked, rounding to nearest.
constexpr unsigned kAllMasked = 0x1f80;
constexpr unsigned kDenormalMask = 0x0100;
constexpr unsigned kRoundDown = 0x2000;
constexpr unsigned kRoundUp = 0x4000;
constexpr unsigned kRoundToZero = 0x6000;

struct ControlWords
{
    unsigned vector;
    Lum16u x87;

    static ControlWords current()
    {
        ControlWords words{_mm_getcsr(), 0};
        asm volatile("fnstcw %0" : "=m"(words.x87));
        return words;
    }
    void set() const
    {
        asm volatile("fnclex\n\tfldcw %0" : : "m"(x87));
        _mm_setcsr(vector);
    }
};

struct Outcome
{
    LumStatus status;
    ControlWords before;
    ControlWords after;
};

/// Nothing but the call runs under the given words.
inline Outcome callUnder(const ControlWords& words, const std::function<LumStatus()>& call)
{
    const ControlWords usual = ControlWords::current();
    words.set();
    Outcome outcome{};
    outcome.before = ControlWords::current();
    outcome.status = call();
    outcome.after = ControlWords::current();
    usual.set();
    return outcome;
}

inline void expectWordsKept(const Outcome& outcome, const ControlWords& words)
{
    ASSERT_EQ(outcome.before.vector & kControlBits, words.vector & kControlBits) << "the word was not set";
    ASSERT_EQ(outcome.before.x87, words.x87) << "the x87 word was not set";
    EXPECT_EQ(outcome.after.vector & kControlBits, words.vector & kControlBits);
    EXPECT_EQ(outcome.after.x87, words.x87);
}

}  // namespace lumcv::test
