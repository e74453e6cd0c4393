// Fuzzes chamfer distances with weights of all kinds, and the queries of weights.
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T, typename Weight>
using Transform = LumStatus (*)(const Lum8u*, Lum32s, T*, Lum32s, LumiSize, const Weight*);

template <typename Weight>
Weight chooseWeight(Choices& choices)
{
    if constexpr (std::is_same_v<Weight, Lum32s>) {
        const Lum32s weights[] = {1, 1, 1, 2, 2, 3, 3, 5, 7, 11, 100, 255, 256, 40000, 65535, INT32_MAX};
        return choices.oneOf(weights);
    } else {
        const Lum32f weights[] = {1, 1, 1,    0.5f,   1.4f,  2.1969f, 0.955f,  1.3693f,
                                  2, 3, 7.5f, 1e-30f, 1e20f, 3e38f,   100.25f, 1.5f};
        return choices.oneOf(weights);
    }
}

template <typename Weight>
const Weight* weightsOf(const Arguments& a)
{
    static const Weight wrong[3] = {1, 0, 0};
    return a.parameter == 0 ? a.block<Weight>(0) : wrong;
}

// What calls on two images and in place have in common. The weights are the first block.
template <typename Weight>
Call transformCall(Choices& choices, const std::string& name, int count)
{
    Call call = beginCall(choices, name);
    call.blocks = {{Role::Read, count * sizeof(Weight), elementOf<Weight>()}};
    std::vector<Weight> weights;
    for (int i = 0; i < count; ++i)
        weights.push_back(chooseWeight<Weight>(choices));
    call.prepare = [=](Arguments& a) { std::copy(weights.begin(), weights.end(), a.block<Weight>(0)); };
    call.violations.push_back({"weight", {lumErrMetric}, [](Arguments& a) {
                                   if (a.blocks[0])
                                       a.parameter = 1;
                               }});
    return call;
}

template <typename T, typename Weight>
Run distances(Transform<T, Weight> transform, int count)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = transformCall<Weight>(choices, name, count);
        call.images = {{Role::Mask, Element::U8}, {Role::Written, elementOf<T>()}};
        call.call = [=](const Arguments& a) {
            return transform(a.image<Lum8u>(0), a.step(0), a.image<T>(1), a.step(1), a.size(), weightsOf<Weight>(a));
        };
        tryCall(choices, std::move(call));
    };
}

Run inPlace(LumStatus (*transform)(Lum8u*, Lum32s, LumiSize, const Lum32s*), int count)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = transformCall<Lum32s>(choices, name, count);
        ImageOperand image{Role::Updated, Element::U8};
        image.halfZero = true;
        call.images = {image};
        call.call = [=](const Arguments& a) {
            return transform(a.image<Lum8u>(0), a.step(0), a.size(), weightsOf<Lum32s>(a));
        };
        tryCall(choices, std::move(call));
    };
}

// The kernel size stands in kernelSize, the norm in anchor.
template <typename Weight>
Run weights(std::function<LumStatus(Lum32s, Lum32s, Weight*)> query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call;
        call.function = name;
        call.ignoresSize = true;
        Arguments& a = call.arguments;
        a.kernelSize = choices.oneIn(2) ? 3 : 5;
        a.anchor = choices.between(0, 2);
        call.blocks = {{Role::Written, (a.kernelSize == 3 ? 2 : 3) * sizeof(Weight), elementOf<Weight>()}};
        for (const int wrong : {0, 1, 2, 4, 6, 7, 13})
            call.violations.push_back(
                {"size " + std::to_string(wrong), {lumErrSize}, [=](Arguments& b) { b.kernelSize = wrong; }});
        for (const int wrong : {3, 4, 9})
            call.violations.push_back(
                {"norm " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.anchor = wrong; }});
        call.call = [=](const Arguments& b) { return query(b.kernelSize, b.anchor, b.block<Weight>(0)); };
        tryCall(choices, std::move(call));
    };
}

LumStatus byMaskType(Lum32s kernelSize, Lum32s norm, Lum32f* pMetrics)
{
    return lumiGetDistanceTransformMask(10 * kernelSize + norm, pMetrics);
}

const Targets targets{{
    {"lumiDistanceTransform_3x3_8u_C1R", distances(lumiDistanceTransform_3x3_8u_C1R, 2)},
    {"lumiDistanceTransform_3x3_8u16u_C1R", distances(lumiDistanceTransform_3x3_8u16u_C1R, 2)},
    {"lumiDistanceTransform_3x3_8u32f_C1R", distances(lumiDistanceTransform_3x3_8u32f_C1R, 2)},
    {"lumiDistanceTransform_3x3_8u_C1IR", inPlace(lumiDistanceTransform_3x3_8u_C1IR, 2)},
    {"lumiDistanceTransform_5x5_8u_C1R", distances(lumiDistanceTransform_5x5_8u_C1R, 3)},
    {"lumiDistanceTransform_5x5_8u16u_C1R", distances(lumiDistanceTransform_5x5_8u16u_C1R, 3)},
    {"lumiDistanceTransform_5x5_8u32f_C1R", distances(lumiDistanceTransform_5x5_8u32f_C1R, 3)},
    {"lumiDistanceTransform_5x5_8u_C1IR", inPlace(lumiDistanceTransform_5x5_8u_C1IR, 3)},
    {"lumiGetDistanceTransformMask_32s", weights<Lum32s>(lumiGetDistanceTransformMask_32s)},
    {"lumiGetDistanceTransformMask_32f", weights<Lum32f>(lumiGetDistanceTransformMask_32f)},
    {"lumiGetDistanceTransformMask", weights<Lum32f>(byMaskType)},
}};

}  // namespace
