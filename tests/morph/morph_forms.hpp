// The pixel forms of morphology and the entry points of each.
#pragma once

#include <lumcv/lumcv.h>

#include <cstddef>
#include <string>
#include <tuple>
#include <utility>

#include "gtest/gtest.h"
#include "morph/morph_reference.hpp"

namespace lumcv::test::morph {

/// The type code of 1-bit images.
constexpr LumDataType kBits = 0;

/// A pointer to a record of whatever type the parameter has.
struct AnyRecord
{
    void* address = nullptr;

    template <class Record>
    operator Record*() const
    {
        return static_cast<Record*>(address);
    }
};

/// Calls the entry at a place of a table, in the order of Operation.
template <class Table, class Call>
LumStatus callEntry(const Table& table, Operation operation, Call call)
{
    LumStatus status = lumErrGeneric;
    [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        ((static_cast<std::size_t>(operation) == I ? void(status = call(std::get<I>(table))) : void()), ...);
    }
    (std::make_index_sequence<std::tuple_size_v<Table>>());
    return status;
}

struct Form8uC1
{
    using Element = Lum8u;
    static constexpr int channels = 1;
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u_C1R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C1R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_8u_C1R;
    static constexpr auto advInit = lumiMorphAdvInit_8u_C1R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_8u_C1R, lumiErodeBorder_8u_C1R, lumiMorphOpenBorder_8u_C1R, lumiMorphCloseBorder_8u_C1R,
        lumiMorphTophatBorder_8u_C1R, lumiMorphBlackhatBorder_8u_C1R, lumiMorphGradientBorder_8u_C1R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_8u_C1R_L, lumiErode_8u_C1R_L, lumiMorphOpen_8u_C1R_L, lumiMorphClose_8u_C1R_L,
                        lumiMorphTophat_8u_C1R_L, lumiMorphBlackhat_8u_C1R_L, lumiMorphGradient_8u_C1R_L);
};

struct Form8uC3
{
    using Element = Lum8u;
    static constexpr int channels = 3;
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u_C3R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C3R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_8u_C3R;
    static constexpr auto advInit = lumiMorphAdvInit_8u_C3R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_8u_C3R, lumiErodeBorder_8u_C3R, lumiMorphOpenBorder_8u_C3R, lumiMorphCloseBorder_8u_C3R,
        lumiMorphTophatBorder_8u_C3R, lumiMorphBlackhatBorder_8u_C3R, lumiMorphGradientBorder_8u_C3R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_8u_C3R_L, lumiErode_8u_C3R_L, lumiMorphOpen_8u_C3R_L, lumiMorphClose_8u_C3R_L,
                        lumiMorphTophat_8u_C3R_L, lumiMorphBlackhat_8u_C3R_L, lumiMorphGradient_8u_C3R_L);
};

struct Form8uC4
{
    using Element = Lum8u;
    static constexpr int channels = 4;
    static constexpr LumDataType dataType = lumType8u;
    static constexpr const char* name = "8u_C4R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_8u_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_8u_C4R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_8u_C4R;
    static constexpr auto advInit = lumiMorphAdvInit_8u_C4R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_8u_C4R, lumiErodeBorder_8u_C4R, lumiMorphOpenBorder_8u_C4R, lumiMorphCloseBorder_8u_C4R,
        lumiMorphTophatBorder_8u_C4R, lumiMorphBlackhatBorder_8u_C4R, lumiMorphGradientBorder_8u_C4R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_8u_C4R_L, lumiErode_8u_C4R_L, lumiMorphOpen_8u_C4R_L, lumiMorphClose_8u_C4R_L,
                        lumiMorphTophat_8u_C4R_L, lumiMorphBlackhat_8u_C4R_L, lumiMorphGradient_8u_C4R_L);
};

struct Form16uC1
{
    using Element = Lum16u;
    static constexpr int channels = 1;
    static constexpr LumDataType dataType = lumType16u;
    static constexpr const char* name = "16u_C1R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16u_C1R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_16u_C1R;
    static constexpr auto advInit = lumiMorphAdvInit_16u_C1R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_16u_C1R, lumiErodeBorder_16u_C1R, lumiMorphOpenBorder_16u_C1R, lumiMorphCloseBorder_16u_C1R,
        lumiMorphTophatBorder_16u_C1R, lumiMorphBlackhatBorder_16u_C1R, lumiMorphGradientBorder_16u_C1R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_16u_C1R_L, lumiErode_16u_C1R_L, lumiMorphOpen_16u_C1R_L, lumiMorphClose_16u_C1R_L,
                        lumiMorphTophat_16u_C1R_L, lumiMorphBlackhat_16u_C1R_L, lumiMorphGradient_16u_C1R_L);
};

struct Form16sC1
{
    using Element = Lum16s;
    static constexpr int channels = 1;
    static constexpr LumDataType dataType = lumType16s;
    static constexpr const char* name = "16s_C1R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_16s_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_16s_C1R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_16s_C1R;
    static constexpr auto advInit = lumiMorphAdvInit_16s_C1R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_16s_C1R, lumiErodeBorder_16s_C1R, lumiMorphOpenBorder_16s_C1R, lumiMorphCloseBorder_16s_C1R,
        lumiMorphTophatBorder_16s_C1R, lumiMorphBlackhatBorder_16s_C1R, lumiMorphGradientBorder_16s_C1R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_16s_C1R_L, lumiErode_16s_C1R_L, lumiMorphOpen_16s_C1R_L, lumiMorphClose_16s_C1R_L,
                        lumiMorphTophat_16s_C1R_L, lumiMorphBlackhat_16s_C1R_L, lumiMorphGradient_16s_C1R_L);
};

struct Form32fC1
{
    using Element = Lum32f;
    static constexpr int channels = 1;
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f_C1R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C1R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_32f_C1R;
    static constexpr auto advInit = lumiMorphAdvInit_32f_C1R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_32f_C1R, lumiErodeBorder_32f_C1R, lumiMorphOpenBorder_32f_C1R, lumiMorphCloseBorder_32f_C1R,
        lumiMorphTophatBorder_32f_C1R, lumiMorphBlackhatBorder_32f_C1R, lumiMorphGradientBorder_32f_C1R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_32f_C1R_L, lumiErode_32f_C1R_L, lumiMorphOpen_32f_C1R_L, lumiMorphClose_32f_C1R_L,
                        lumiMorphTophat_32f_C1R_L, lumiMorphBlackhat_32f_C1R_L, lumiMorphGradient_32f_C1R_L);
};

struct Form32fC3
{
    using Element = Lum32f;
    static constexpr int channels = 3;
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f_C3R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C3R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C3R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_32f_C3R;
    static constexpr auto advInit = lumiMorphAdvInit_32f_C3R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_32f_C3R, lumiErodeBorder_32f_C3R, lumiMorphOpenBorder_32f_C3R, lumiMorphCloseBorder_32f_C3R,
        lumiMorphTophatBorder_32f_C3R, lumiMorphBlackhatBorder_32f_C3R, lumiMorphGradientBorder_32f_C3R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_32f_C3R_L, lumiErode_32f_C3R_L, lumiMorphOpen_32f_C3R_L, lumiMorphClose_32f_C3R_L,
                        lumiMorphTophat_32f_C3R_L, lumiMorphBlackhat_32f_C3R_L, lumiMorphGradient_32f_C3R_L);
};

struct Form32fC4
{
    using Element = Lum32f;
    static constexpr int channels = 4;
    static constexpr LumDataType dataType = lumType32f;
    static constexpr const char* name = "32f_C4R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_32f_C4R;
    static constexpr auto init = lumiMorphologyBorderInit_32f_C4R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_32f_C4R;
    static constexpr auto advInit = lumiMorphAdvInit_32f_C4R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_32f_C4R, lumiErodeBorder_32f_C4R, lumiMorphOpenBorder_32f_C4R, lumiMorphCloseBorder_32f_C4R,
        lumiMorphTophatBorder_32f_C4R, lumiMorphBlackhatBorder_32f_C4R, lumiMorphGradientBorder_32f_C4R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_32f_C4R_L, lumiErode_32f_C4R_L, lumiMorphOpen_32f_C4R_L, lumiMorphClose_32f_C4R_L,
                        lumiMorphTophat_32f_C4R_L, lumiMorphBlackhat_32f_C4R_L, lumiMorphGradient_32f_C4R_L);
};

struct Form1u
{
    using Element = Lum8u;
    static constexpr int channels = 1;
    static constexpr LumDataType dataType = kBits;
    static constexpr const char* name = "1u_C1R";
    static constexpr auto getSize = lumiMorphologyBorderGetSize_1u_C1R;
    static constexpr auto init = lumiMorphologyBorderInit_1u_C1R;
    static constexpr auto advGetSize = lumiMorphAdvGetSize_1u_C1R;
    static constexpr auto advInit = lumiMorphAdvInit_1u_C1R;
    static constexpr auto ordinary = std::make_tuple(
        lumiDilateBorder_1u_C1R, lumiErodeBorder_1u_C1R, lumiMorphOpenBorder_1u_C1R, lumiMorphCloseBorder_1u_C1R,
        lumiMorphTophatBorder_1u_C1R, lumiMorphBlackhatBorder_1u_C1R, lumiMorphGradientBorder_1u_C1R);
    static constexpr auto large =
        std::make_tuple(lumiDilate_1u_C1R_L, lumiErode_1u_C1R_L, lumiMorphOpen_1u_C1R_L, lumiMorphClose_1u_C1R_L,
                        lumiMorphTophat_1u_C1R_L, lumiMorphBlackhat_1u_C1R_L, lumiMorphGradient_1u_C1R_L);
};

/// The forms of whole elements.
using AllForms = ::testing::Types<Form8uC1, Form8uC3, Form8uC4, Form16uC1, Form16sC1, Form32fC1, Form32fC3, Form32fC4>;

/// What a typed test calls a form.
struct FormName
{
    template <class Form>
    static std::string GetName(int)
    {
        return Form::name;
    }
};

/// All arguments of an apply call; the ordinary entries get them narrowed.
template <class Form>
struct ApplyArguments
{
    using T = typename Form::Element;

    const T* pSrc = nullptr;
    Lum64s srcStep = 0;
    T* pDst = nullptr;
    Lum64s dstStep = 0;
    LumiSizeL roiSize = {1, 1};
    LumiBorderType border = lumBorderReplicate;
    const T* pBorderValue = nullptr;  ///< the ordinary entries of one channel get the value itself, or 0
    AnyRecord pSpec;
    Lum8u* pBuffer = nullptr;

    LumStatus call(Operation operation, Generation generation) const
    {
        if (generation == Generation::Large) {
            return callEntry(Form::large, operation, [&](auto entry) {
                return entry(pSrc, srcStep, pDst, dstStep, roiSize, border, pBorderValue, pSpec, pBuffer);
            });
        }
        const auto srcStep32 = static_cast<Lum32s>(srcStep);
        const auto dstStep32 = static_cast<Lum32s>(dstStep);
        const LumiSize size = {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
        return callEntry(Form::ordinary, operation, [&](auto entry) {
            if constexpr (Form::channels == 1) {
                const T value = pBorderValue == nullptr ? T{0} : *pBorderValue;
                return entry(pSrc, srcStep32, pDst, dstStep32, size, border, value, pSpec, pBuffer);
            } else {
                return entry(pSrc, srcStep32, pDst, dstStep32, size, border, pBorderValue, pSpec, pBuffer);
            }
        });
    }
};

}  // namespace lumcv::test::morph
