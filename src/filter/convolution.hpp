// Sums of products in the order of a kernel, beginning with the first product.
#pragma once

#include "filter/taps.hpp"

namespace lumcv {

/// element(i) loads what the tap i falls on.
template <int lanes, class Taps, class Element>
[[gnu::always_inline]] inline auto sumOfProducts(const Taps& taps, Element element)
{
    auto sum = element(0) * simd::broadcast<lanes>(taps.t[0]);
    for (int64_t i = 1; i < taps.count(); ++i)
        sum = sum + element(i) * simd::broadcast<lanes>(taps.t[i]);
    return sum;
}

/// Along a row of floats; line[0] lies under the first tap of x = 0.
template <class Taps, class Channels>
struct RowConvolution
{
    Taps taps;
    const Lum32f* line;
    Channels channels;  ///< floats of a pixel

    template <class Lanes>
    [[gnu::always_inline]] auto operator()(int64_t x, Lanes lanes) const
    {
        const Lum32f* const s = line + x;
        return sumOfProducts<lanes>(taps, [=, this](int64_t i) { return simd::load<lanes>(s + i * channels); });
    }
};

}  // namespace lumcv
