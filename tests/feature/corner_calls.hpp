// One way to call all corner measures: plain forms and forms with a border, of 8u and of 32f images.
#pragma once

#include <lumcv/lumcv.h>

#include <string>

#include "feature/corner_reference.hpp"

namespace lumcv::test::corners {

/// The arguments of any measure; those that a measure does not have are not used.
struct MeasureCall
{
    const void* pSrc;
    Lum32s srcStep;
    Lum32f* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    Lum32s kernel;  ///< kernType or filterType
    Lum32s mask;    ///< apertureSize or filterMask
    Lum32s window;
    LumiBorderType border;
    Lum32f borderValue;
    Lum8u* pBuffer;
    Lum32f k = 0.04f;
    Lum32f scale = 1;
};

using Measure = LumStatus (*)(const MeasureCall&);

template <class S, auto Export>
LumStatus plainForm(const MeasureCall& c)
{
    return Export(static_cast<const S*>(c.pSrc), c.srcStep, c.pDst, c.dstStep, c.roiSize, c.kernel, c.mask, c.window,
                  c.pBuffer);
}

template <class S, auto Export>
LumStatus borderForm(const MeasureCall& c)
{
    return Export(static_cast<const S*>(c.pSrc), c.srcStep, c.pDst, c.dstStep, c.roiSize, c.kernel, c.mask, c.window,
                  c.border, static_cast<S>(c.borderValue), c.pBuffer);
}

template <class S, auto Export>
LumStatus harrisForm(const MeasureCall& c)
{
    return Export(static_cast<const S*>(c.pSrc), c.srcStep, c.pDst, c.dstStep, c.roiSize, c.kernel, c.mask, c.window,
                  c.k, c.scale, c.border, static_cast<S>(c.borderValue), c.pBuffer);
}

template <class S>
struct Exports;

template <>
struct Exports<Lum8u>
{
    static constexpr const char* name = "8u32f";
    static constexpr LumDataType type = lumType8u;
    static constexpr Measure minEigenVal = plainForm<Lum8u, lumiMinEigenVal_8u32f_C1R>;
    static constexpr Measure minEigenValBorder = borderForm<Lum8u, lumiMinEigenValBorder_8u32f_C1R>;
    static constexpr Measure eigenValsVecs = plainForm<Lum8u, lumiEigenValsVecs_8u32f_C1R>;
    static constexpr Measure eigenValsVecsBorder = borderForm<Lum8u, lumiEigenValsVecsBorder_8u32f_C1R>;
    static constexpr Measure harris = harrisForm<Lum8u, lumiHarrisCorner_8u32f_C1R>;
    static constexpr auto minEigenValBytes = lumiMinEigenValGetBufferSize_8u32f_C1R;
    static constexpr auto eigenValsVecsBytes = lumiEigenValsVecsGetBufferSize_8u32f_C1R;
};

template <>
struct Exports<Lum32f>
{
    static constexpr const char* name = "32f";
    static constexpr LumDataType type = lumType32f;
    static constexpr Measure minEigenVal = plainForm<Lum32f, lumiMinEigenVal_32f_C1R>;
    static constexpr Measure minEigenValBorder = borderForm<Lum32f, lumiMinEigenValBorder_32f_C1R>;
    static constexpr Measure eigenValsVecs = plainForm<Lum32f, lumiEigenValsVecs_32f_C1R>;
    static constexpr Measure eigenValsVecsBorder = borderForm<Lum32f, lumiEigenValsVecsBorder_32f_C1R>;
    static constexpr Measure harris = harrisForm<Lum32f, lumiHarrisCorner_32f_C1R>;
    static constexpr auto minEigenValBytes = lumiMinEigenValGetBufferSize_32f_C1R;
    static constexpr auto eigenValsVecsBytes = lumiEigenValsVecsGetBufferSize_32f_C1R;
};

struct SourceName
{
    template <typename S>
    static std::string GetName(int)
    {
        return Exports<S>::name;
    }
};

using SourceTypes = testing::Types<Lum8u, Lum32f>;

}  // namespace lumcv::test::corners
