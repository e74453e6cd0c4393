// The derivative services written out plainly, and their entries by element type.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "filter/derivative.hpp"
#include "filter/derivative_steps.hpp"
#include "filter/filter_setting.hpp"
#include "filter/fixed_filters_reference.hpp"
#include "support/placed_block.hpp"

namespace lumcv::test::derivatives {
using fixed_filters::acrossRows;
using fixed_filters::alongRows;
using fixed_filters::extendedRows;
using fixed_filters::firstDerivative3;
using fixed_filters::firstDerivative5;
using fixed_filters::maskReach;
using fixed_filters::maskSide;
using fixed_filters::Rows;
using fixed_filters::smoothing5;

constexpr LumDerivCode kCodes[] = {lumDerivSobelX, lumDerivSobelY, lumDerivScharrX, lumDerivScharrY, lumDerivSobelXNeg};

inline bool isScharr(LumDerivCode code)
{
    return code == lumDerivScharrX || code == lumDerivScharrY;
}

inline std::vector<LumiMaskSize> masksOf(LumDerivCode code)
{
    return isScharr(code) ? std::vector<LumiMaskSize>{lumMask3x3} : std::vector<LumiMaskSize>{lumMask3x3, lumMask5x5};
}

template <class Work>
Rows<Work> derivative(const Rows<Work>& rows, LumDerivCode code, LumiMaskSize mask)
{
    const bool small = mask == lumMask3x3;
    const int side = maskSide(mask);
    const auto steps = [&](auto along, auto across) { return acrossRows(alongRows(rows, side, along), side, across); };
    switch (code) {
        case lumDerivSobelX:
            return small ? steps(firstDerivative3<Work>, sobelSmoothing3<Work>)
                         : steps(firstDerivative5<Work>, smoothing5<Work>);
        case lumDerivSobelY:
            return small ? steps(sobelSmoothing3<Work>, negatedDerivative3<Work>)
                         : steps(smoothing5<Work>, negatedDerivative5<Work>);
        case lumDerivScharrX:
            return steps(negatedDerivative3<Work>, scharrSmoothing3<Work>);
        case lumDerivScharrY:
            return steps(scharrSmoothing3<Work>, negatedDerivative3<Work>);
        default:
            return small ? steps(negatedDerivative3<Work>, sobelSmoothing3<Work>)
                         : steps(negatedDerivative5<Work>, smoothing5<Work>);
    }
}

inline Lum64s upTo32(Lum64s bytes)
{
    return (bytes + 31) / 32 * 32;
}

inline Lum64s scratchBytes(LumiSize size, LumiMaskSize mask, LumDataType sourceType)
{
    const bool small = mask == lumMask3x3;
    const Lum64s r = small ? 0 : 2;
    const Lum64s m = small ? 3 : 7;
    const Lum64s t = m * (Lum64s{std::max(size.width, size.height)} + r + 2);
    if (sourceType == lumType8u) {
        return upTo32(t) + 32;
    }
    const Lum64s e = sourceType == lumType16s ? 2 : 4;
    const Lum64s s = small ? 1 : 2;
    const Lum64s v =
        upTo32(t * e) + upTo32(4 * Lum64s{size.width}) * 2 * s + upTo32((Lum64s{size.width} + size.height) * 2 * s * e);
    return upTo32(v) + 32;
}

template <class SourceElement>
struct Services;

template <>
struct Services<Lum8u>
{
    using Destination = Lum16s;
    using Work = int;
    static constexpr const char* name = "8u16s";
    static constexpr LumDataType sourceType = lumType8u;
    static constexpr auto filter = lumDerivFilter_8u16s;

    static auto entry(LumDerivCode code)
    {
        switch (code) {
            case lumDerivSobelX:
                return lumDerivSobelX_8u16s;
            case lumDerivSobelY:
                return lumDerivSobelY_8u16s;
            case lumDerivScharrX:
                return lumDerivScharrX_8u16s;
            case lumDerivScharrY:
                return lumDerivScharrY_8u16s;
            default:
                return lumDerivSobelXNeg_8u16s;
        }
    }
};

template <>
struct Services<Lum32f>
{
    using Destination = Lum32f;
    using Work = Lum32f;
    static constexpr const char* name = "32f";
    static constexpr LumDataType sourceType = lumType32f;
    static constexpr auto filter = lumDerivFilter_32f;

    static auto entry(LumDerivCode code)
    {
        switch (code) {
            case lumDerivSobelX:
                return lumDerivSobelX_32f;
            case lumDerivSobelY:
                return lumDerivSobelY_32f;
            case lumDerivScharrX:
                return lumDerivScharrX_32f;
            case lumDerivScharrY:
                return lumDerivScharrY_32f;
            default:
                return lumDerivSobelXNeg_32f;
        }
    }
};

struct ServiceName
{
    template <typename S>
    static std::string GetName(int)
    {
        return Services<S>::name;
    }
};

using SourceTypes = testing::Types<Lum8u, Lum32f>;

template <class S>
PlacedBlock makeScratch(const FilterSetting& setting, LumiMaskSize mask)
{
    const Lum64s bytes = scratchBytes(setting.size, mask, Services<S>::sourceType);
    return PlacedBlock(static_cast<std::size_t>(bytes), setting.guard, setting.distance);
}

}  // namespace lumcv::test::derivatives
