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

}  // namespace lumcv::simd
