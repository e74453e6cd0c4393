// The gray gradients by the type of their elements.
#pragma once

#include <gtest/gtest.h>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::geometry {

using GrayElements = testing::Types<Lum8u, Lum16u, Lum32f>;

constexpr LumiDistanceNorm kGrayNorms[] = {lumGradNormInf, lumGradNormL1, lumGradNormL2};

template <class T>
struct GrayForm;

template <>
struct GrayForm<Lum8u>
{
    static constexpr auto call = lumiGradientColorToGray_8u_C3C1R;
};

template <>
struct GrayForm<Lum16u>
{
    static constexpr auto call = lumiGradientColorToGray_16u_C3C1R;
};

template <>
struct GrayForm<Lum32f>
{
    static constexpr auto call = lumiGradientColorToGray_32f_C3C1R;
};

template <class T>
LumiSize sizeOf(const Image<T>& image)
{
    return {image.width(), image.height()};
}

}  // namespace lumcv::test::geometry
