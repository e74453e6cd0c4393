// Rounding of sizes.
#pragma once

#include <cstdint>

namespace lumcv {

/// The first multiple not below n, which is not negative.
template <class Number>
constexpr Number roundedUp(Number n, int64_t multiple)
{
    return (n + multiple - 1) / multiple * multiple;
}

}  // namespace lumcv
