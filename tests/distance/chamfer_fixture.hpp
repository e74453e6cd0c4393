// The exports of chamfer distance by type of output, and calls of them compared with the reference.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <vector>

#include "distance/chamfer_reference.hpp"
#include "distance/contents.hpp"
#include "support/compare.hpp"

namespace lumcv::test::distance {

template <class T>
struct Forms;

template <>
struct Forms<Lum8u>
{
    using Metric = Lum32s;
    using Sum = std::int64_t;
    static constexpr Sum sat = 255;
    static constexpr auto transform3x3 = lumiDistanceTransform_3x3_8u_C1R;
    static constexpr auto transform5x5 = lumiDistanceTransform_5x5_8u_C1R;
};

template <>
struct Forms<Lum16u>
{
    using Metric = Lum32s;
    using Sum = std::int64_t;
    static constexpr Sum sat = 65535;
    static constexpr auto transform3x3 = lumiDistanceTransform_3x3_8u16u_C1R;
    static constexpr auto transform5x5 = lumiDistanceTransform_5x5_8u16u_C1R;
};

template <>
struct Forms<Lum32f>
{
    using Metric = Lum32f;
    using Sum = Lum32f;
    static constexpr Sum sat = std::numeric_limits<Lum32f>::max();
    static constexpr auto transform3x3 = lumiDistanceTransform_3x3_8u32f_C1R;
    static constexpr auto transform5x5 = lumiDistanceTransform_5x5_8u32f_C1R;
};

/// The weights of a call: two or three.
template <class Metric>
struct Weights
{
    int maskSize;
    Metric m[3];

    std::size_t count() const
    {
        return maskSize == 3 ? 2 : 3;
    }
    /// A copy that ends where memory ends.
    GuardedBlock block() const
    {
        GuardedBlock result(count() * sizeof(Metric), Guard::After);
        std::copy_n(m, count(), result.as<Metric>());
        return result;
    }
};

template <class Metric>
std::ostream& operator<<(std::ostream& stream, const Weights<Metric>& weights)
{
    stream << weights.maskSize << "x" << weights.maskSize << " of";
    for (std::size_t i = 0; i < weights.count(); ++i) {
        stream << " " << elementText(weights.m[i]);
    }
    return stream;
}

template <class T>
Image<T> expectedDistances(const Image<Lum8u>& source, const Weights<typename Forms<T>::Metric>& weights,
                           const Layout& layout)
{
    using Sum = typename Forms<T>::Sum;
    const Sum m0 = weights.m[0];
    const Sum m1 = weights.m[1];
    const Sum m2 = weights.m[2];
    const std::vector<Sum> d = weights.maskSize == 3 ? chamfer3x3<Sum>(source, m0, m1, Forms<T>::sat)
                                                     : chamfer5x5<Sum>(source, m0, m1, m2, Forms<T>::sat);
    Image<T> result(layout);
    std::size_t i = 0;
    result.forEach(Area::Roi, [&](T& element, int, int, int) { element = static_cast<T>(d[i++]); });
    return result;
}

template <class T>
LumStatus transform(const Lum8u* pSrc, Lum32s srcStep, T* pDst, Lum32s dstStep, LumiSize size,
                    const Weights<typename Forms<T>::Metric>& weights)
{
    const GuardedBlock metrics = weights.block();
    const auto function = weights.maskSize == 3 ? Forms<T>::transform3x3 : Forms<T>::transform5x5;
    return function(pSrc, srcStep, pDst, dstStep, size, metrics.as<typename Forms<T>::Metric>());
}

template <class T>
void expectDistances(const Image<Lum8u>& source, const Weights<typename Forms<T>::Metric>& weights,
                     const Layout& layout)
{
    Image<T> destination(layout);
    EXPECT_EQ(transform<T>(source.pixels(), source.step(), destination.pixels(), destination.step(),
                           {source.width(), source.height()}, weights),
              lumOk);
    EXPECT_TRUE(sameImage(expectedDistances<T>(source, weights, layout), destination))
        << weights << ", " << source.width() << " x " << source.height() << ", " << 8 * sizeof(T) << " bits";
    EXPECT_TRUE(destination.gapsIntact()) << weights;
}

/// Weights that take every branch: usual ones, heavy edges, diagonals that never win, regular and extended masks, hand
/// overs, saturation after one step and the largest weights. None makes the diagonal longer than two knight's steps.
inline const std::vector<Weights<Lum32s>>& integerWeights()
{
    constexpr Lum32s most = std::numeric_limits<Lum32s>::max();
    static const std::vector<Weights<Lum32s>> weights = {
        {3, {1, 1, 0}},
        {3, {1, 2, 0}},
        {3, {2, 3, 0}},
        {3, {3, 4, 0}},
        {3, {5, 7, 0}},
        {3, {1, 3, 0}},
        {3, {3, 2, 0}},
        {3, {2, 1, 0}},
        {3, {7, 1, 0}},
        {3, {40, 60, 0}},
        {3, {127, 130, 0}},
        {3, {254, 255, 0}},
        {3, {400, 300, 0}},
        {3, {30000, 32768, 0}},
        {3, {65534, 65536, 0}},
        {3, {1500000000, 1600000000, 0}},
        {3, {1200000000, most, 0}},
        {3, {most, most, 0}},
        {3, {most, 1, 0}},
        {3, {1, most, 0}},
        {5, {1, 1, 2}},
        {5, {1, 2, 3}},
        {5, {5, 7, 11}},
        {5, {5, 7, 12}},
        {5, {5, 11, 15}},
        {5, {10, 14, 22}},
        {5, {3, 7, 2}},
        {5, {2, 2, 3}},
        {5, {3, 2, 4}},
        {5, {2, 3, 4}},
        {5, {4, 7, 10}},
        {5, {3, 5, 7}},
        {5, {1, 1, 1}},
        {5, {5, 1, 2}},
        {5, {7, 2, 1}},
        {5, {10, 2, 1}},
        {5, {9, 9, 10}},
        {5, {50, 70, 110}},
        {5, {200, 250, 300}},
        {5, {255, 300, 520}},
        {5, {20000, 28000, 44000}},
        {5, {65535, 65535, 65535}},
        {5, {most, 7, 6}},
        {5, {1500000000, 2000000000, most}},
        {5, {2000000000, 1500000000, 1600000000}},
        {5, {most, most, most}},
    };
    return weights;
}

inline const std::vector<Weights<Lum32f>>& floatWeights()
{
    static const std::vector<Weights<Lum32f>> weights = {
        {3, {0.955f, 1.3693f, 0}},
        {3, {1, 1, 0}},
        {3, {0.3f, 0.3f, 0}},
        {3, {1, 2, 0}},
        {3, {0.1f, 0.2f, 0}},
        {3, {0.1f, 0.19999999f, 0}},
        {3, {0.1f, 7, 0}},
        {3, {0.7f, 0.9f, 0}},
        {3, {1.3f, 0.7f, 0}},
        {3, {5, 0.1f, 0}},
        {3, {1e-40f, 1.3e-40f, 0}},
        {3, {1e38f, 1.7e38f, 0}},
        {3, {3e38f, 3.3e38f, 0}},
        {3, {3e38f, 2e38f, 0}},
        {3, {16777216, 20000002, 0}},
        {5, {1, 1, 2}},
        {5, {1, 2, 3}},
        {5, {1, 1.4f, 2.1969f}},
        {5, {0.1f, 0.14f, 0.22f}},
        {5, {0.1f, 0.14f, 0.3f}},
        {5, {0.1f, 0.5f, 0.4f}},
        {5, {0.1f, 0.5f, 0.29f}},
        {5, {0.7f, 0.6f, 1.1f}},
        {5, {1.1f, 1.5f, 2}},
        {5, {1, 1.45f, 2.1f}},
        {5, {0.3f, 0.3f, 0.3f}},
        {5, {5.1f, 1.2f, 0.7f}},
        // a diagonal step of length two that is an edge and a knight's step
        {5, {0.7f, 1.3f, 0.9f}},
        {5, {0.1f, 0.19f, 0.13f}},
        {5, {1e38f, 1.4e38f, 2.2e38f}},
        {5, {2e38f, 2.1e38f, 3e38f}},
        {5, {1e-40f, 1.3e-40f, 2.1e-40f}},
        // one unit in the last place from the bounds of the rules
        {5, {1, 1.4f, 2.3999998f}},
        {5, {1.9f, 1.90000010f, 3.75f}},
        {5, {1.9f, 2.6f, 3.8000002f}},
        {5, {1.3f, 1.8f, 2.7000001f}},
    };
    return weights;
}

template <class T>
const std::vector<Weights<typename Forms<T>::Metric>>& weightsOf()
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        return floatWeights();
    } else {
        return integerWeights();
    }
}

}  // namespace lumcv::test::distance
