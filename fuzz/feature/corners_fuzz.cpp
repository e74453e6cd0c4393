// Fuzzes the corner measures, the suppression of lines, and their size queries.
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;
using lumcv::test::Margins;

template <typename Number>
void addWrong(Call& call, const std::string& name, std::initializer_list<Number> numbers, LumStatus status,
              Number Arguments::*number)
{
    for (const Number wrong : numbers)
        call.violations.push_back(
            {name + " " + std::to_string(wrong), {status}, [=](Arguments& a) { a.*number = wrong; }});
}

Margins marginsOf(int borderType, int before, int after)
{
    return lumcv::test::promisedMargins(borderType, {before, after, before, after});
}

// Puts the size that the query reports into the call's first block: its scratch.
template <typename Query>
void addScratch(Call& call, Query query)
{
    Lum32s bytes = -1;
    if (query(&bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    call.blocks.push_back({Role::Scratch, std::size_t(bytes)});
}

template <typename S>
S borderValueOf(const Arguments& a)
{
    S value;
    std::memcpy(&value, a.block<S>(1), sizeof value);
    return value;
}

// A query whose result stands at any address.
template <typename Query>
void tryQuery(Choices& choices, Call call, Query query)
{
    call.blocks = {{Role::Written, sizeof(Lum32s)}};
    call.call = [=](const Arguments& a) {
        if (!a.blocks[0])
            return query(a, nullptr);
        Lum32s bytes = 0;
        std::memcpy(&bytes, a.blocks[0], sizeof bytes);
        const LumStatus status = query(a, &bytes);
        std::memcpy(a.blocks[0], &bytes, sizeof bytes);
        return status;
    };
    tryCall(choices, std::move(call));
}

// The eigenvalues: the type of the kernel stands in anchor, the aperture in kernelSize, the window in divisor.

using EigenQuery = LumStatus (*)(LumiSize, Lum32s, Lum32s, Lum32s*);

Call beginEigen(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.arguments.kernelSize = choices.oneIn(2) ? 3 : 5;
    call.arguments.divisor = choices.oneIn(2) ? 3 : 5;
    addWrong(call, "aperture", {0, 1, 2, 4, 6, 7, 33, -3, INT32_MAX, INT32_MIN}, lumErrSize, &Arguments::kernelSize);
    addWrong(call, "window", {0, 1, 2, 4, 6, 7, 33, -3, INT32_MAX, INT32_MIN}, lumErrSize, &Arguments::divisor);
    return call;
}

template <typename S, typename Measure>
Run eigen(Measure measure, EigenQuery query, int floats, bool hasBorder)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginEigen(choices, name);
        Arguments& a = call.arguments;
        a.anchor = choices.between(lumKernSobel, lumKernSobelNeg);
        if (a.anchor == lumKernScharr) {
            a.kernelSize = 3;
            addWrong(call, "aperture", {5}, lumErrSize, &Arguments::kernelSize);
        }
        addWrong(call, "kernel type", {-1, 3, 4, INT32_MAX, INT32_MIN}, lumErrArgument, &Arguments::anchor);
        a.borderType = hasBorder ? chooseBorder(choices) : lumBorderReplicate;
        if (hasBorder && choices.oneIn(8)) {
            const int modeless[] = {0xF0, 0xF2, 0xF4, 0xF7, 0xF8, 0xFF};
            a.borderType = choices.oneOf(modeless);
        }
        if (hasBorder)
            addWrong(call, "border",
                     {0, 2, 4, 5, 7, 0x10, 0x15, 0x72, 0xF5, 0x101, 0x1F0, 0xFFF, 0x1001, -1, INT32_MIN}, lumErrBorder,
                     &Arguments::borderType);
        const int reach = a.kernelSize / 2;
        call.images = {{Role::Read, elementOf<S>(), 1, marginsOf(a.borderType, reach, reach)},
                       {Role::Written, Element::F32, floats}};
        call.looseStep = floats > 1;  // the destination's stride is held against one float a pixel
        addScratch(call, [&](Lum32s* bytes) { return query(a.size(), a.kernelSize, a.divisor, bytes); });
        call.blocks.push_back({Role::Read, sizeof(S), elementOf<S>(), true});
        call.call = [=](const Arguments& b) {
            if constexpr (std::is_invocable_v<Measure, const S*, Lum32s, Lum32f*, Lum32s, LumiSize, LumiKernelType,
                                              Lum32s, Lum32s, Lum8u*>)
                return measure(b.image<S>(0), b.step(0), b.image<Lum32f>(1), b.step(1), b.size(), b.anchor,
                               b.kernelSize, b.divisor, b.block<Lum8u>(0));
            else
                return measure(b.image<S>(0), b.step(0), b.image<Lum32f>(1), b.step(1), b.size(), b.anchor,
                               b.kernelSize, b.divisor, b.borderType, b.block<S>(1) ? borderValueOf<S>(b) : S(0),
                               b.block<Lum8u>(0));
        };
        tryCall(choices, std::move(call));
    };
}

Run eigenQuery(EigenQuery query)
{
    return [=](Choices& choices, const std::string& name) {
        tryQuery(choices, beginEigen(choices, name),
                 [=](const Arguments& a, Lum32s* bytes) { return query(a.size(), a.kernelSize, a.divisor, bytes); });
    };
}

// Harris and lines: the filter stands in anchor, the mask in kernelSize, the window in divisor.

Call beginMeans(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    a.kernelSize = choices.oneIn(2) ? lumMask3x3 : lumMask5x5;
    a.divisor = choices.oneIn(4) ? choices.between(8, 40) : choices.between(1, 7);
    addWrong(call, "mask", {0, 3, 5, 13, 35, 77, -33, INT32_MAX, INT32_MIN}, lumErrMaskSize, &Arguments::kernelSize);
    addWrong(call, "window", {0, -1, INT32_MIN}, lumErrSize, &Arguments::divisor);
    return call;
}

void chooseMeans(Choices& choices, Call& call, LumDataType dataType)
{
    Arguments& a = call.arguments;
    const int filters[] = {lumFilterSobel, lumFilterScharr, lumFilterCentralDiff};
    a.anchor = a.kernelSize == lumMask5x5 ? int(lumFilterSobel) : choices.oneOf(filters);
    addWrong(call, "filter", {0, 1, 3, 4, 6, 7, 9, -2, INT32_MAX, INT32_MIN}, lumErrFilterType, &Arguments::anchor);
    if (a.anchor != lumFilterSobel)
        addWrong(call, "mask", {int(lumMask5x5)}, lumErrMaskSize, &Arguments::kernelSize);
    a.parameter = Lum32f(choices.between(-20, 200)) / 10;
    addScratch(call, [&](Lum32s* bytes) {
        return lumiHarrisCornerGetBufferSize(a.size(), a.kernelSize, a.divisor, dataType, 1, bytes);
    });
}

Margins meansMargins(const Arguments& a)
{
    const int reach = a.kernelSize == lumMask3x3 ? 1 : 2;
    return marginsOf(a.borderType, (a.divisor - 1) / 2 + reach, a.divisor / 2 + reach);
}

template <typename S, typename Measure>
Run harris(Measure measure)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginMeans(choices, name);
        Arguments& a = call.arguments;
        a.borderType = chooseBorder(choices);
        addWrong(call, "border", {chooseWrongBorder(choices)}, lumErrBorder, &Arguments::borderType);
        call.images = {{Role::Read, elementOf<S>(), 1, meansMargins(a)}, {Role::Written, Element::F32}};
        call.alignmentFirst = true;
        chooseMeans(choices, call, sizeof(S) == 1 ? lumType8u : lumType32f);
        call.blocks.push_back({Role::Read, sizeof(S), elementOf<S>(), true});
        if (sizeof(S) > 1)
            call.violations.push_back({"in place", {lumErrInPlace}, [](Arguments& b) { b.images[1] = b.images[0]; }});
        call.call = [=](const Arguments& b) {
            return measure(b.image<S>(0), b.step(0), b.image<Lum32f>(1), b.step(1), b.size(), b.anchor, b.kernelSize,
                           b.divisor, 0.05f, b.parameter, b.borderType, b.block<S>(1) ? borderValueOf<S>(b) : S(0),
                           b.block<Lum8u>(0));
        };
        tryCall(choices, std::move(call));
    };
}

void lines(Choices& choices, const std::string& name)
{
    Call call = beginMeans(choices, name);
    Arguments& a = call.arguments;
    do
        a.borderType = chooseBorder(choices);
    while (a.borderType != lumBorderInMem && (a.borderType & 15) == lumBorderMirror);
    addWrong(call, "border", {chooseWrongBorder(choices), lumBorderMirror | lumBorderInMem, int(lumBorderMirror)},
             lumErrBorder, &Arguments::borderType);
    call.images = {
        {Role::Read, Element::U8, 1, meansMargins(a)}, {Role::Read, Element::U8}, {Role::Written, Element::U8}};
    call.freeStep = true;
    chooseMeans(choices, call, lumType8u);
    call.blocks.push_back({Role::Read, 1, Element::U8, true});
    call.violations.push_back({"in place", {lumErrInPlace}, [](Arguments& b) { b.images[2] = b.images[1]; }});
    call.call = [=](const Arguments& b) {
        return lumiLineSuppression_8u_C1R(b.image<Lum8u>(0), b.step(0), b.image<Lum8u>(1), b.step(1), b.image<Lum8u>(2),
                                          b.step(2), b.size(), b.anchor, b.kernelSize, b.divisor, b.parameter,
                                          b.borderType, b.block<Lum8u>(1) ? *b.block<Lum8u>(1) : Lum8u(0),
                                          b.block<Lum8u>(0));
    };
    tryCall(choices, std::move(call));
}

using MeansQuery = LumStatus (*)(LumiSize, LumiMaskSize, Lum32s, LumDataType, Lum32s, Lum32s*);

Run meansQuery(MeansQuery query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginMeans(choices, name);
        call.arguments.dataType = choices.oneIn(2) ? lumType8u : lumType32f;
        call.arguments.channels = 1;
        addWrong(call, "data type", {0, 5, 7, 19, -1, INT32_MAX}, lumErrDataType, &Arguments::dataType);
        addWrong(call, "channels", {0, 2, 3, 4, -1, INT32_MIN}, lumErrChannels, &Arguments::channels);
        tryQuery(choices, std::move(call), [=](const Arguments& a, Lum32s* bytes) {
            return query(a.size(), a.kernelSize, a.divisor, a.dataType, a.channels, bytes);
        });
    };
}

const Targets targets{{
    {"lumiMinEigenValGetBufferSize_32f_C1R", eigenQuery(lumiMinEigenValGetBufferSize_32f_C1R)},
    {"lumiMinEigenValGetBufferSize_8u32f_C1R", eigenQuery(lumiMinEigenValGetBufferSize_8u32f_C1R)},
    {"lumiEigenValsVecsGetBufferSize_32f_C1R", eigenQuery(lumiEigenValsVecsGetBufferSize_32f_C1R)},
    {"lumiEigenValsVecsGetBufferSize_8u32f_C1R", eigenQuery(lumiEigenValsVecsGetBufferSize_8u32f_C1R)},
    {"lumiMinEigenVal_32f_C1R", eigen<Lum32f>(lumiMinEigenVal_32f_C1R, lumiMinEigenValGetBufferSize_32f_C1R, 1, false)},
    {"lumiMinEigenVal_8u32f_C1R",
     eigen<Lum8u>(lumiMinEigenVal_8u32f_C1R, lumiMinEigenValGetBufferSize_8u32f_C1R, 1, false)},
    {"lumiMinEigenValBorder_32f_C1R",
     eigen<Lum32f>(lumiMinEigenValBorder_32f_C1R, lumiMinEigenValGetBufferSize_32f_C1R, 1, true)},
    {"lumiMinEigenValBorder_8u32f_C1R",
     eigen<Lum8u>(lumiMinEigenValBorder_8u32f_C1R, lumiMinEigenValGetBufferSize_8u32f_C1R, 1, true)},
    {"lumiEigenValsVecs_32f_C1R",
     eigen<Lum32f>(lumiEigenValsVecs_32f_C1R, lumiEigenValsVecsGetBufferSize_32f_C1R, 6, false)},
    {"lumiEigenValsVecs_8u32f_C1R",
     eigen<Lum8u>(lumiEigenValsVecs_8u32f_C1R, lumiEigenValsVecsGetBufferSize_8u32f_C1R, 6, false)},
    {"lumiEigenValsVecsBorder_32f_C1R",
     eigen<Lum32f>(lumiEigenValsVecsBorder_32f_C1R, lumiEigenValsVecsGetBufferSize_32f_C1R, 6, true)},
    {"lumiEigenValsVecsBorder_8u32f_C1R",
     eigen<Lum8u>(lumiEigenValsVecsBorder_8u32f_C1R, lumiEigenValsVecsGetBufferSize_8u32f_C1R, 6, true)},
    {"lumiHarrisCornerGetBufferSize", meansQuery(lumiHarrisCornerGetBufferSize)},
    {"lumiHarrisCorner_32f_C1R", harris<Lum32f>(lumiHarrisCorner_32f_C1R)},
    {"lumiHarrisCorner_8u32f_C1R", harris<Lum8u>(lumiHarrisCorner_8u32f_C1R)},
    {"lumiLineSuppressionGetBufferSize", meansQuery(lumiLineSuppressionGetBufferSize)},
    {"lumiLineSuppression_8u_C1R", lines},
}};

}  // namespace
