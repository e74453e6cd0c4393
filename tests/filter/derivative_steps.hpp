// The steps of the derivatives that the fixed filters do not have, as they are written, from left to right; they take a
// pointer to the middle one of 3 or 5 numbers.
#pragma once

namespace lumcv::test::derivatives {

template <class Work>
Work negatedDerivative3(const Work* t)
{
    return t[1] - t[-1];
}

template <class Work>
Work negatedDerivative5(const Work* t)
{
    const Work a = t[2];
    const Work b = a + 2 * t[1];
    const Work c = b - 2 * t[-1];
    return c - t[-2];
}

template <class Work>
Work sobelSmoothing3(const Work* t)
{
    const Work pair = t[-1] + t[1];
    return pair + 2 * t[0];
}

template <class Work>
Work scharrSmoothing3(const Work* t)
{
    const Work pair = t[-1] + t[1];
    return 3 * pair + 10 * t[0];
}

}  // namespace lumcv::test::derivatives
