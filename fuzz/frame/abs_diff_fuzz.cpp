// Fuzzes the absolute differences, exactly in place among other cases where that is allowed.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
Run difference(LumStatus (*f)(const T*, Lum32s, const T*, Lum32s, T*, Lum32s, LumiSize), int channels = 1)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        const bool inPlace = elementOf<T>() != Element::F32 && choices.oneIn(4);
        call.images = {{Role::Read, elementOf<T>(), channels},
                       {inPlace ? Role::Updated : Role::Read, elementOf<T>(), channels}};
        if (!inPlace)
            call.images.push_back({Role::Written, elementOf<T>(), channels});
        const std::size_t d = inPlace ? 1 : 2;
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.image<T>(d), a.step(d), a.size());
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename V>
Run differenceFromConstant(LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, V))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        const V value = V(choices.oneIn(2) ? choices.between(-300, 70000) : choices.between(INT32_MIN, INT32_MAX));
        call.arguments.parameter = Lum32f(value);
        call.images = {{Role::Read, elementOf<T>()}, {Role::Written, elementOf<T>()}};
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.size(), value);
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiAbsDiff_8u_C1R", difference(lumiAbsDiff_8u_C1R)},
    {"lumiAbsDiff_8u_C3R", difference(lumiAbsDiff_8u_C3R, 3)},
    {"lumiAbsDiff_16u_C1R", difference(lumiAbsDiff_16u_C1R)},
    {"lumiAbsDiff_32f_C1R", difference(lumiAbsDiff_32f_C1R)},
    {"lumiAbsDiffC_8u_C1R", differenceFromConstant(lumiAbsDiffC_8u_C1R)},
    {"lumiAbsDiffC_16u_C1R", differenceFromConstant(lumiAbsDiffC_16u_C1R)},
    {"lumiAbsDiffC_32f_C1R", differenceFromConstant(lumiAbsDiffC_32f_C1R)},
}};

}  // namespace
