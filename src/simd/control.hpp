// The processor's floating-point control register.
#pragma once

#include <immintrin.h>

namespace lumcv::simd {

/// While it lives, denormal operands do not trap. Then the register is as it was, flags included.
class DenormalsMasked
{
  public:
    DenormalsMasked() : saved_(_mm_getcsr())
    {
        _mm_setcsr(saved_ | _MM_MASK_DENORM);
    }

    ~DenormalsMasked()
    {
        _mm_setcsr(saved_);
    }

    DenormalsMasked(const DenormalsMasked&) = delete;
    DenormalsMasked& operator=(const DenormalsMasked&) = delete;

  private:
    unsigned saved_;
};

/// While it lives, sums, products and quotients of floats are rounded towards zero. Then the register is as it was.
/// What it is meant for must stand in a function of its own that is not inlined: compilers move arithmetic past it.
class RoundedTowardsZero
{
  public:
    RoundedTowardsZero() : saved_(_mm_getcsr())
    {
        _mm_setcsr(saved_ | _MM_ROUND_TOWARD_ZERO);
    }

    ~RoundedTowardsZero()
    {
        _mm_setcsr(saved_);
    }

    RoundedTowardsZero(const RoundedTowardsZero&) = delete;
    RoundedTowardsZero& operator=(const RoundedTowardsZero&) = delete;

  private:
    unsigned saved_;
};

}  // namespace lumcv::simd
