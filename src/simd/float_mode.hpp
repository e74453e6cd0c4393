// How this thread's floats are rounded.
#pragma once

#include <immintrin.h>

namespace lumcv::simd {

enum class Rounding : unsigned
{
    toNearest = _MM_ROUND_NEAREST,
    towardsZero = _MM_ROUND_TOWARD_ZERO
};

/// While it lives, floats are rounded in one way, denormal numbers are numbers and nothing traps, whatever the caller
/// has set. Then the control register is as it was, flags included. What it is meant for must stand in a function of
/// its own that is not inlined: compilers move arithmetic past it.
class OwnFloatMode
{
  public:
    explicit OwnFloatMode(Rounding rounding) : saved_(_mm_getcsr())
    {
        _mm_setcsr(_MM_MASK_MASK | static_cast<unsigned>(rounding));
    }

    ~OwnFloatMode()
    {
        _mm_setcsr(saved_);
    }

    OwnFloatMode(const OwnFloatMode&) = delete;
    OwnFloatMode& operator=(const OwnFloatMode&) = delete;

  private:
    unsigned saved_;
};

}  // namespace lumcv::simd
