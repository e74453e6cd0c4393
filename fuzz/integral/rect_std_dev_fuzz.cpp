// Fuzzes the rectangle deviation. Tables hold numbers that no image has made; what matters is where they are read.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
ImageOperand table(LumiSize reach)
{
    ImageOperand operand{Role::Read, elementOf<T>()};
    operand.extra = reach;
    operand.leastExtra = reach.width;
    return operand;
}

template <typename P, typename Q, typename D, typename... Scale>
Run deviation(LumStatus (*f)(const P*, Lum32s, const Q*, Lum32s, D*, Lum32s, LumiSize, LumiRect, Scale...),
              bool isTilted)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        LumiRect rect{choices.between(0, 5), choices.between(0, 5), choices.between(1, 9), choices.between(1, 9)};
        LumiSize reach{rect.x + rect.width, rect.y + rect.height};
        if (isTilted) {
            rect.x += rect.y + rect.height;  // no column is negative
            reach.width = rect.x + rect.y + rect.width + rect.height - 1;
            reach.height = reach.width + 1;
        }
        call.images = {table<P>(reach), table<Q>(reach), {Role::Written, elementOf<D>()}};
        call.arguments.divisor = choices.between(-40, 40);
        call.call = [=](const Arguments& a) {
            return f(a.image<P>(0), a.step(0), a.image<Q>(1), a.step(1), a.image<D>(2), a.step(2), a.size(), rect,
                     Scale(a.divisor)...);
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiRectStdDev_32f_C1R", deviation(lumiRectStdDev_32f_C1R, false)},
    {"lumiRectStdDev_32s32f_C1R", deviation(lumiRectStdDev_32s32f_C1R, false)},
    {"lumiRectStdDev_32s_C1RSfs", deviation(lumiRectStdDev_32s_C1RSfs, false)},
    {"lumiTiltedRectStdDev_32f_C1R", deviation(lumiTiltedRectStdDev_32f_C1R, true)},
    {"lumiTiltedRectStdDev_32s32f_C1R", deviation(lumiTiltedRectStdDev_32s32f_C1R, true)},
    {"lumiTiltedRectStdDev_32s_C1RSfs", deviation(lumiTiltedRectStdDev_32s_C1RSfs, true)},
}};

}  // namespace
