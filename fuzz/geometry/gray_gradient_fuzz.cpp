// Fuzzes the gray gradient and line sampling.
#include <algorithm>
#include <cstdlib>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
Run gradient(LumStatus (*fold)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiDistanceNorm))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.arguments.anchor = choices.between(0, 2);
        call.images = {{Role::Read, elementOf<T>(), 3}, {Role::Written, elementOf<T>()}};
        for (const Lum32s wrong : {3, 4, -1, INT32_MIN})
            call.violations.push_back(
                {"norm " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& a) { a.anchor = wrong; }});
        call.call = [=](const Arguments& a) {
            return fold(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.size(), a.anchor);
        };
        tryCall(choices, std::move(call));
    };
}

// The first point stands in kernelSize and anchor, the second one in divisor and borderType.
template <typename T>
Run line(LumStatus (*sample)(const T*, Lum32s, LumiSize, T*, LumiPoint, LumiPoint), int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        const auto [width, height] = a.size();
        a.kernelSize = choices.between(0, width - 1);
        a.anchor = choices.between(0, height - 1);
        a.divisor = choices.between(0, width - 1);
        a.borderType = choices.between(0, height - 1);
        const int samples = std::max(std::abs(a.divisor - a.kernelSize), std::abs(a.borderType - a.anchor)) + 1;
        call.images = {{Role::Read, elementOf<T>(), channels}};
        call.ignoresStep = sizeof(T) > 1;  // any number of bytes will do that is not below a row's
        call.blocks = {{Role::Written, std::size_t(samples) * std::size_t(channels) * sizeof(T), elementOf<T>()}};
        const auto add = [&](std::string what, std::function<void(Arguments&)> apply) {
            call.violations.push_back({std::move(what), {lumErrOutOfRange}, std::move(apply)});
        };
        for (const Lum32s wrong : {-1, INT32_MIN, INT32_MAX}) {
            add("first column " + std::to_string(wrong), [=](Arguments& b) { b.kernelSize = wrong; });
            add("first row " + std::to_string(wrong), [=](Arguments& b) { b.anchor = wrong; });
            add("last column " + std::to_string(wrong), [=](Arguments& b) { b.divisor = wrong; });
            add("last row " + std::to_string(wrong), [=](Arguments& b) { b.borderType = wrong; });
        }
        add("column behind the last", [](Arguments& b) { b.divisor = Lum32s(b.width); });
        add("row behind the last", [](Arguments& b) { b.anchor = Lum32s(b.height); });
        call.call = [=](const Arguments& b) {
            return sample(b.image<T>(0), b.step(0), b.size(), b.block<T>(0), {b.kernelSize, b.anchor},
                          {b.divisor, b.borderType});
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiGradientColorToGray_8u_C3C1R", gradient<Lum8u>(lumiGradientColorToGray_8u_C3C1R)},
    {"lumiGradientColorToGray_16u_C3C1R", gradient<Lum16u>(lumiGradientColorToGray_16u_C3C1R)},
    {"lumiGradientColorToGray_32f_C3C1R", gradient<Lum32f>(lumiGradientColorToGray_32f_C3C1R)},
    {"lumiSampleLine_8u_C1R", line<Lum8u>(lumiSampleLine_8u_C1R, 1)},
    {"lumiSampleLine_8u_C3R", line<Lum8u>(lumiSampleLine_8u_C3R, 3)},
    {"lumiSampleLine_16u_C1R", line<Lum16u>(lumiSampleLine_16u_C1R, 1)},
    {"lumiSampleLine_16u_C3R", line<Lum16u>(lumiSampleLine_16u_C3R, 3)},
    {"lumiSampleLine_32f_C1R", line<Lum32f>(lumiSampleLine_32f_C1R, 1)},
    {"lumiSampleLine_32f_C3R", line<Lum32f>(lumiSampleLine_32f_C3R, 3)},
}};

}  // namespace
