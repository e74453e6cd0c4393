// Fuzzes the fixed masks (Laplacian, lowpass, Sobel cross), their size queries, and the Sobel kernels.
#include <cstring>

#include "fuzz/filter/size_query.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename S, typename D>
using Filter = LumStatus (*)(const S*, Lum32s, D*, Lum32s, LumiSize, LumiMaskSize, LumiBorderType, S, Lum8u*);

// The mask stands in kernelSize.
Call begin(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.arguments.kernelSize = choices.oneIn(2) ? lumMask3x3 : lumMask5x5;
    const int masks[] = {0, 3, 5, 13, 35, 77, -33, INT32_MAX, INT32_MIN};
    const int wrong = choices.oneOf(masks);
    call.violations.push_back(
        {"mask " + std::to_string(wrong), {lumErrMaskSize}, [=](Arguments& a) { a.kernelSize = wrong; }});
    return call;
}

template <typename S, typename D>
Run fixedMask(Filter<S, D> filter, Query query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        a.borderType = chooseBorder(choices);
        const int reach = a.kernelSize == lumMask3x3 ? 1 : 2;
        const auto margins = lumcv::test::promisedMargins(a.borderType, lumcv::test::Margins::all(reach));
        call.images = {{Role::Read, elementOf<S>(), 1, margins}, {Role::Written, elementOf<D>()}};

        Lum32s bytes = -1;
        if (query(a.size(), a.kernelSize, &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        call.blocks = {{Role::Scratch, std::size_t(bytes)}, {Role::Read, sizeof(S), elementOf<S>(), true}};
        const int wrong = chooseWrongBorder(choices);
        call.violations.push_back(
            {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
        call.call = [=](const Arguments& b) {
            S borderValue;
            std::memcpy(&borderValue, b.block<S>(1), sizeof borderValue);
            return filter(b.image<S>(0), b.step(0), b.image<D>(1), b.step(1), b.size(), b.kernelSize, b.borderType,
                          borderValue, b.block<Lum8u>(0));
        };
        tryCall(choices, std::move(call));
    };
}

Run sizeQuery(Query query)
{
    return [=](Choices& choices, const std::string& name) { tryQuery(choices, begin(choices, name), query); };
}

// The order of the derivative stands in anchor, the sign in divisor.
template <typename T>
Run sobelKernel(LumStatus (*f)(T*, Lum32s, Lum32s, Lum32s))
{
    return [=](Choices& choices, const std::string& name) {
        Call call;
        call.function = name;
        call.ignoresSize = true;
        Arguments& a = call.arguments;
        a.kernelSize = 2 * choices.between(0, choices.oneIn(20) ? 60 : 6) + 1;
        a.anchor = choices.between(0, a.kernelSize - 1);
        a.divisor = choices.between(-2, 2);
        call.blocks = {{Role::Written, a.kernelSize * sizeof(T), elementOf<T>()}};
        for (const int wrong : {0, -1, 2, 4, INT32_MIN})
            call.violations.push_back(
                {"kernel size " + std::to_string(wrong), {lumErrSize}, [=](Arguments& b) { b.kernelSize = wrong; }});
        for (const int wrong : {-1, a.kernelSize, INT32_MIN, INT32_MAX})
            call.violations.push_back(
                {"derivative " + std::to_string(wrong), {lumErrSize}, [=](Arguments& b) { b.anchor = wrong; }});
        call.call = [=](const Arguments& b) { return f(b.block<T>(0), b.kernelSize, b.anchor, b.divisor); };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiFilterLaplacianBorder_8u16s_C1R",
     fixedMask(lumiFilterLaplacianBorder_8u16s_C1R, lumiFilterLaplacianGetBufferSize_8u16s_C1R)},
    {"lumiFilterLaplacianBorder_32f_C1R",
     fixedMask(lumiFilterLaplacianBorder_32f_C1R, lumiFilterLaplacianGetBufferSize_32f_C1R)},
    {"lumiFilterLowpassBorder_8u_C1R",
     fixedMask(lumiFilterLowpassBorder_8u_C1R, lumiFilterLowpassGetBufferSize_8u_C1R)},
    {"lumiFilterLowpassBorder_32f_C1R",
     fixedMask(lumiFilterLowpassBorder_32f_C1R, lumiFilterLowpassGetBufferSize_32f_C1R)},
    {"lumiFilterSobelCrossBorder_8u16s_C1R",
     fixedMask(lumiFilterSobelCrossBorder_8u16s_C1R, lumiFilterSobelCrossGetBufferSize_8u16s_C1R)},
    {"lumiFilterSobelCrossBorder_32f_C1R",
     fixedMask(lumiFilterSobelCrossBorder_32f_C1R, lumiFilterSobelCrossGetBufferSize_32f_C1R)},
    {"lumiFilterLaplacianGetBufferSize_8u16s_C1R", sizeQuery(lumiFilterLaplacianGetBufferSize_8u16s_C1R)},
    {"lumiFilterLaplacianGetBufferSize_32f_C1R", sizeQuery(lumiFilterLaplacianGetBufferSize_32f_C1R)},
    {"lumiFilterLowpassGetBufferSize_8u_C1R", sizeQuery(lumiFilterLowpassGetBufferSize_8u_C1R)},
    {"lumiFilterLowpassGetBufferSize_32f_C1R", sizeQuery(lumiFilterLowpassGetBufferSize_32f_C1R)},
    {"lumiFilterSobelCrossGetBufferSize_8u16s_C1R", sizeQuery(lumiFilterSobelCrossGetBufferSize_8u16s_C1R)},
    {"lumiFilterSobelCrossGetBufferSize_32f_C1R", sizeQuery(lumiFilterSobelCrossGetBufferSize_32f_C1R)},
    {"lumiGenSobelKernel_16s", sobelKernel(lumiGenSobelKernel_16s)},
    {"lumiGenSobelKernel_32f", sobelKernel(lumiGenSobelKernel_32f)},
}};

}  // namespace
