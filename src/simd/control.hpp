// The processor's floating-point control register: how this thread's floats are rounded, and what traps.
#pragma once

#include <immintrin.h>

namespace lumcv::simd {

enum class Rounding : unsigned
{
    toNearest = _MM_ROUND_NEAREST,
    towardsZero = _MM_ROUND_TOWARD_ZERO
};

/// Ends with the register as it was at the beginning, flags included. What a guard is meant for must stand in a
/// function of its own that is not inlined: compilers move arithmetic past it.
class SavedControl
{
  public:
    SavedControl(const SavedControl&) = delete;
    SavedControl& operator=(const SavedControl&) = delete;

  protected:
    SavedControl() : saved_(_mm_getcsr()) {}

    ~SavedControl()
    {
        _mm_setcsr(saved_);
    }

    const unsigned saved_;
};

/// While it lives, denormal operands do not trap.
struct DenormalsMasked : SavedControl
{
    DenormalsMasked()
    {
        _mm_setcsr(saved_ | _MM_MASK_DENORM);
    }
};

/// While it lives, sums, products and quotients of floats are rounded towards zero.
struct RoundedTowardsZero : SavedControl
{
    RoundedTowardsZero()
    {
        _mm_setcsr(saved_ | _MM_ROUND_TOWARD_ZERO);
    }
};

/// While it lives, floats are rounded in one way, denormal numbers are numbers and nothing traps, whatever the caller
/// has set.
struct OwnFloatMode : SavedControl
{
    explicit OwnFloatMode(Rounding rounding)
    {
        _mm_setcsr(_MM_MASK_MASK | static_cast<unsigned>(rounding));
    }
};

}  // namespace lumcv::simd
