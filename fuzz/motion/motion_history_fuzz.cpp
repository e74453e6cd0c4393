// Fuzzes the motion history with times and durations of all kinds.
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
using Update = LumStatus (*)(const T*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f, Lum32f);

// The duration stands in parameter.
template <typename T>
auto history(Update<T> update)
{
    return [=](Choices& choices, const std::string& name) {
        constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
        const Lum32f times[] = {0, 1, 100, 1e6f, -1, -100, 1e30f, infinity, std::numeric_limits<Lum32f>::quiet_NaN()};
        const Lum32f durations[] = {0, -0.0f, 1, 50, 1e6f, 3e38f, infinity};
        Call call = beginCall(choices, name);
        ImageOperand silhouette{Role::Mask, elementOf<T>()};
        silhouette.halfZero = true;
        const Lum32f time = choices.oneOf(times);
        call.arguments.parameter = choices.oneOf(durations);
        ImageOperand stamps{Role::Updated, Element::F32};
        stamps.often = time - call.arguments.parameter;  // what is just not too old
        call.images = {silhouette, stamps};
        for (const Lum32f wrong : {-1e-30f, -1.0f, -infinity})
            call.violations.push_back(
                {"duration " + std::to_string(wrong), {lumErrOutOfRange}, [=](Arguments& a) { a.parameter = wrong; }});
        call.call = [=](const Arguments& a) {
            return update(a.image<T>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.size(), time, a.parameter);
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiUpdateMotionHistory_8u32f_C1IR", history(lumiUpdateMotionHistory_8u32f_C1IR)},
    {"lumiUpdateMotionHistory_16u32f_C1IR", history(lumiUpdateMotionHistory_16u32f_C1IR)},
    {"lumiUpdateMotionHistory_32f_C1IR", history(lumiUpdateMotionHistory_32f_C1IR)},
}};

}  // namespace
