// The exports of reconstruction by type and form, called with scratch of exactly its size, and the comparison with a
// reference.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>

#include "lumcv/lumcv.h"
#include "morph/reconstruct_reference.hpp"
#include "morph/reconstruct_shapes.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"

namespace lumcv::test::reconstruct {

template <class T>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr auto dilate = lumiMorphReconstructDilate_8u_C1IR;
    static constexpr auto erode = lumiMorphReconstructErode_8u_C1IR;
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u";
};

template <>
struct Exports<Lum16u>
{
    static constexpr auto dilate = lumiMorphReconstructDilate_16u_C1IR;
    static constexpr auto erode = lumiMorphReconstructErode_16u_C1IR;
    static constexpr LumDataType dataType = lumType16u;
    static constexpr const char* name = "16u";
};

template <>
struct Exports<Lum32f>
{
    static constexpr auto dilate = lumiMorphReconstructDilate_32f_C1IR;
    static constexpr auto erode = lumiMorphReconstructErode_32f_C1IR;
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f";
};

template <>
struct Exports<Lum64f>
{
    static constexpr auto dilate = lumiMorphReconstructDilate_64f_C1IR;
    static constexpr auto erode = lumiMorphReconstructErode_64f_C1IR;
    static constexpr LumDataType dataType = lumType64f;
    static constexpr const char* name = "64f";
};

/// The bytes of the scratch. Those of 16u follow no rule of the others.
template <class T>
Lum64s scratchBytes(Lum64s width, Lum64s height)
{
    if constexpr (std::is_same_v<T, Lum8u>) {
        return width * 4 + height + 161;
    } else if constexpr (std::is_same_v<T, Lum16u>) {
        return width * 8 + height * 2 + 322;
    } else if constexpr (std::is_same_v<T, Lum32f>) {
        return width * 16 + height + 164;
    } else {
        return width * 32 + height + 168;
    }
}

/// A pixel type and one of the two forms, for typed tests.
template <class Pixel, Form f>
struct Case
{
    using T = Pixel;
    static constexpr Form form = f;

    static LumStatus apply(const T* pSrc, int srcStep, T* pSrcDst, int srcDstStep, LumiSize roiSize, Lum8u* pBuffer,
                           LumiDistanceNorm norm)
    {
        if constexpr (f == Form::Dilate) {
            return Exports<T>::dilate(pSrc, srcStep, pSrcDst, srcDstStep, roiSize, pBuffer, norm);
        } else {
            return Exports<T>::erode(pSrc, srcStep, pSrcDst, srcDstStep, roiSize, pBuffer, norm);
        }
    }
};

using Cases = testing::Types<Case<Lum8u, Form::Dilate>, Case<Lum8u, Form::Erode>, Case<Lum16u, Form::Dilate>,
                             Case<Lum16u, Form::Erode>, Case<Lum32f, Form::Dilate>, Case<Lum32f, Form::Erode>,
                             Case<Lum64f, Form::Dilate>, Case<Lum64f, Form::Erode>>;

struct CaseName
{
    template <class C>
    static std::string GetName(int)
    {
        return std::string(C::form == Form::Dilate ? "Dilate" : "Erode") + Exports<typename C::T>::name;
    }
};

constexpr LumiDistanceNorm kNorms[] = {lumDistanceNormInf, lumDistanceNormL1};

inline std::string normText(LumiDistanceNorm norm)
{
    return norm == lumDistanceNormInf ? "eight neighbours" : "four neighbours";
}

/// Reconstructs in place, with scratch of exactly its size, and looks at all that must not be written.
template <class C>
testing::AssertionResult reconstructed(const Image<typename C::T>& mask, Image<typename C::T>& marker,
                                       LumiDistanceNorm norm, Guard guard = Guard::After, std::size_t distance = 0)
{
    using T = typename C::T;
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(mask.width(), mask.height())), guard, distance);
    const Image<T> maskBefore = mask;
    const LumStatus status = C::apply(mask.pixels(), mask.step(), marker.pixels(), marker.step(),
                                      {mask.width(), mask.height()}, scratch.data(), norm);
    if (status != lumOk) {
        return testing::AssertionFailure() << "status " << status;
    }
    if (const testing::AssertionResult intact = scratch.intact(); !intact) {
        return testing::AssertionFailure() << "beside the scratch: " << intact.message();
    }
    if (const testing::AssertionResult intact = marker.gapsIntact(); !intact) {
        return testing::AssertionFailure() << "marker: " << intact.message();
    }
    if (const testing::AssertionResult same = sameBytes(maskBefore, mask); !same) {
        return testing::AssertionFailure() << "the mask was written: " << same.message();
    }
    return testing::AssertionSuccess();
}

/// Compares images, but takes zeros of both signs for the same: which of two equal values stays is not fixed.
template <class T>
testing::AssertionResult sameUpToZeroSign(const Image<T>& expectedImage, const Image<T>& actualImage)
{
    if (const testing::AssertionResult same = sameImage(expectedImage, actualImage); same) {
        return same;
    }
    Image<T> expected = expectedImage, actual = actualImage;
    const auto dropSign = [](T& pixel, int, int, int) { pixel = pixel == 0 ? T{0} : pixel; };
    expected.forEach(Area::Roi, dropSign);
    actual.forEach(Area::Roi, dropSign);
    return sameImage(expected, actual);
}

/// Reconstructs the marker and compares with the reference that uses a queue.
template <class C>
void expectReference(const Image<typename C::T>& mask, const Image<typename C::T>& marker, LumiDistanceNorm norm)
{
    Image<typename C::T> expected = marker;
    byQueue(C::form, norm, mask, expected);
    Image<typename C::T> actual = marker;
    ASSERT_TRUE(reconstructed<C>(mask, actual, norm)) << normText(norm);
    EXPECT_TRUE(sameUpToZeroSign(expected, actual)) << normText(norm);
}

/// The same for patterns, with four and with eight neighbours.
template <class C>
void expectReference(Palette palette, const Pattern& mask, const Pattern& marker)
{
    using T = typename C::T;
    SCOPED_TRACE(testing::Message() << "mask " << mask << "; marker " << marker << "; palette "
                                    << static_cast<int>(palette));
    const Image<T> maskImage = imageOf<T>(C::form, palette, mask);
    const Image<T> markerImage = imageOf<T>(C::form, palette, marker);
    for (const LumiDistanceNorm norm : kNorms) {
        expectReference<C>(maskImage, markerImage, norm);
    }
}

}  // namespace lumcv::test::reconstruct
