// Fuzzes Canny edges and their size queries.
#include <cmath>
#include <cstring>
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

struct Thresholds
{
    Lum32f low, high;
};

Thresholds chooseThresholds(Choices& choices)
{
    const float lows[] = {0, 0.5f, 1, 20, 100, 1000, 65535, 1e9f, std::numeric_limits<float>::quiet_NaN()};
    const float distances[] = {0, 0.5f, 1, 50, 500, 5000, 1e5f, 1e10f, std::numeric_limits<float>::infinity()};
    const float low = choices.oneOf(lows);
    return {low, low + choices.oneOf(distances)};
}

// The border value of a call stands in its block `index`, as do thresholds, for the second call to see the same.
template <typename T>
T valueIn(const Arguments& a, std::size_t index)
{
    T value;
    std::memcpy(&value, a.block<T>(index), sizeof value);
    return value;
}

// The norm stands in divisor.
template <typename S, typename Edges>
Run ofPlanes(Edges edges, bool isLong)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.longStep = isLong;
        Arguments& a = call.arguments;
        a.divisor = isLong && choices.oneIn(2) ? lumNormL2 : lumNormL1;
        const Thresholds chosen = chooseThresholds(choices);
        call.images = {{Role::Read, elementOf<S>()}, {Role::Read, elementOf<S>()}, {Role::Written, elementOf<Lum8u>()}};
        Lum64s bytes = -1;
        if (lumiCannyGetSize_L(a.sizeL(), &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        call.blocks = {{Role::Scratch, std::size_t(bytes)}};
        // a threshold that is wrong as it is, and squared
        call.violations.push_back({"high threshold", {lumErrArgument}, [](Arguments& b) { b.parameter = 1; }});
        if (isLong)
            for (const int wrong : {0, 1, 3, 8, -4})
                call.violations.push_back(
                    {"norm " + std::to_string(wrong), {lumErrNorm}, [=](Arguments& b) { b.divisor = wrong; }});
        call.call = [=](const Arguments& b) {
            const bool isWrong = b.parameter != 0;
            return edges(b, isWrong ? 2.0f : chosen.low, isWrong ? 1.0f : chosen.high);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename S, auto function>
LumStatus shortForm(const Arguments& a, Lum32f low, Lum32f high)
{
    return function(a.image<S>(0), a.step(0), a.image<S>(1), a.step(1), a.image<Lum8u>(2), a.step(2), a.size(), low,
                    high, a.block<Lum8u>(0));
}

template <typename S, auto function>
LumStatus longForm(const Arguments& a, Lum32f low, Lum32f high)
{
    return function(a.image<S>(0), a.steps[0], a.image<S>(1), a.steps[1], a.image<Lum8u>(2), a.steps[2], a.sizeL(), low,
                    high, a.divisor, a.block<Lum8u>(0));
}

// The mask stands in kernelSize, the filter in anchor, the norm in divisor.
void ofImage(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    const LumiSize size = call.arguments.size();
    a.kernelSize = choices.oneIn(3) ? lumMask5x5 : lumMask3x3;
    a.anchor = a.kernelSize == lumMask3x3 && choices.oneIn(2) ? lumFilterScharr : lumFilterSobel;
    a.divisor = choices.oneIn(2) ? lumNormL2 : lumNormL1;
    const int modes[] = {lumBorderReplicate, lumBorderConstant};
    a.borderType = choices.oneIn(6) ? int(lumBorderInMem) : choices.oneOf(modes);
    if (a.borderType != lumBorderInMem)
        a.borderType |= choices.between(0, 15) << 4;
    const Thresholds chosen = chooseThresholds(choices);
    const int reach = a.kernelSize == lumMask3x3 ? 1 : 2;
    const auto margins = lumcv::test::promisedMargins(a.borderType, lumcv::test::Margins::all(reach));
    call.images = {{Role::Read, elementOf<Lum8u>(), 1, margins}, {Role::Written, elementOf<Lum8u>()}};
    Lum32s bytes = -1;
    if (lumiCannyBorderGetSize(size, a.anchor, a.kernelSize, &bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    call.blocks = {{Role::Scratch, std::size_t(bytes)}, {Role::Read, 1, elementOf<Lum8u>(), true}};
    call.ignoresStep = true;
    for (const int wrong : {0, 3, 5, 13, 35, -33})
        call.violations.push_back(
            {"mask " + std::to_string(wrong), {lumErrMaskSize}, [=](Arguments& b) { b.kernelSize = wrong; }});
    for (const int wrong : {0, 1, 3, 8})
        call.violations.push_back(
            {"filter " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.anchor = wrong; }});
    for (const int wrong : {0, 1, 3, 8, -4})
        call.violations.push_back(
            {"norm " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.divisor = wrong; }});
    for (const int wrong : {0, 2, 3, 5, 7, 256, lumBorderMirror | lumBorderInMem, -1})
        call.violations.push_back(
            {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
    call.violations.push_back({"high threshold", {lumErrArgument}, [](Arguments& b) { b.parameter = 1; }});
    call.call = [=](const Arguments& b) {
        const bool isWrong = b.parameter != 0;
        return lumiCannyBorder_8u_C1R(b.image<Lum8u>(0), b.step(0), b.image<Lum8u>(1), b.step(1), b.size(), b.anchor,
                                      b.kernelSize, b.borderType, valueIn<Lum8u>(b, 1), isWrong ? 2.0f : chosen.low,
                                      isWrong ? 1.0f : chosen.high, b.divisor, b.block<Lum8u>(0));
    };
    tryCall(choices, std::move(call));
}

template <typename Size, typename Bytes>
Run querySize(LumStatus (*f)(Size, Bytes*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        if constexpr (std::is_same_v<Size, LumiSizeL>)
            for (const Lum64s size : {Lum64s{0x80000000}, Lum64s{INT64_MAX}}) {
                addViolation(call, "width " + std::to_string(size), lumErrSizeTooLarge,
                             [=](Arguments& a) { a.width = size; });
                addViolation(call, "height " + std::to_string(size), lumErrSizeTooLarge,
                             [=](Arguments& a) { a.height = size; });
            }
        call.blocks = {{Role::Written, sizeof(Bytes), numberElement<Bytes>}};
        call.call = [=](const Arguments& a) { return f(a.sizeAs<Size>(), a.block<Bytes>(0)); };
        tryCall(choices, std::move(call));
    };
}

void querySizeOfImage(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.arguments.kernelSize = choices.oneIn(2) ? lumMask5x5 : lumMask3x3;
    call.arguments.anchor = choices.between(-1, 10);  // any filter will do
    const int masks[] = {0, 3, 5, 13, 35, -33, INT32_MIN};
    const int wrong = choices.oneOf(masks);
    addViolation(call, "mask " + std::to_string(wrong), lumErrMaskSize, [=](Arguments& a) { a.kernelSize = wrong; });
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [](const Arguments& a) {
        return lumiCannyBorderGetSize(a.size(), a.anchor, a.kernelSize, a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiCannyGetSize", querySize(lumiCannyGetSize)},
    {"lumiCannyGetSize_L", querySize(lumiCannyGetSize_L)},
    {"lumiCannyBorderGetSize", querySizeOfImage},
    {"lumiCanny_16s8u_C1R", ofPlanes<Lum16s>(shortForm<Lum16s, lumiCanny_16s8u_C1R>, false)},
    {"lumiCanny_32f8u_C1R", ofPlanes<Lum32f>(shortForm<Lum32f, lumiCanny_32f8u_C1R>, false)},
    {"lumiCanny_16s8u_C1R_L", ofPlanes<Lum16s>(longForm<Lum16s, lumiCanny_16s8u_C1R_L>, true)},
    {"lumiCanny_32f8u_C1R_L", ofPlanes<Lum32f>(longForm<Lum32f, lumiCanny_32f8u_C1R_L>, true)},
    {"lumiCannyBorder_8u_C1R", ofImage},
}};

}  // namespace
