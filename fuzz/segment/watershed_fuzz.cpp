// Fuzzes watershed and gradient segmentation, boundaries and the size queries.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename Height, typename Label>
using Segment = LumStatus (*)(const Height*, Lum32s, Label*, Lum32s, LumiSize, Lum32u, LumiSegmentFlag, Lum8u*);

// Wrong values of the norm and the flag go into the arguments of the call: kernelSize is the norm, anchor the flag.
void addNorms(Call& call, std::initializer_list<int> wrong)
{
    for (const int norm : wrong)
        call.violations.push_back(
            {"norm " + std::to_string(norm), {lumErrArgument}, [=](Arguments& a) { a.kernelSize = norm; }});
}

template <typename Height, typename Label>
Call segmentCall(Choices& choices, const std::string& name, RoiQuery query, int channels)
{
    Call call = beginCall(choices, name);
    const std::size_t bytes = bytesOf(query, call);
    call.images = {{Role::Read, elementOf<Height>(), channels}, {Role::Updated, elementOf<Label>()}};
    call.images[1].halfZero = !choices.oneIn(4);
    call.blocks = {{Role::Scratch, bytes}};
    const int boundaries[] = {0, 0, lumSegmentBound4, lumSegmentBound8, lumSegmentBound4 | lumSegmentBound8, 8 | 32};
    call.arguments.anchor = choices.oneOf(boundaries);
    return call;
}

template <typename Height, typename Label>
void segment(Choices& choices, Call call, Segment<Height, Label> f)
{
    call.call = [=](const Arguments& a) {
        return f(a.image<Height>(0), a.step(0), a.image<Label>(1), a.step(1), a.size(), Lum32u(a.kernelSize), a.anchor,
                 a.block<Lum8u>(0));
    };
    tryCall(choices, std::move(call));
}

Run gradient(RoiQuery query, Segment<Lum8u, Lum8u> f, int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = segmentCall<Lum8u, Lum8u>(choices, name, query, channels);
        call.arguments.kernelSize = choices.between(0, 1);
        addNorms(call, {2, 3, -1, INT32_MIN});
        segment(choices, std::move(call), f);
    };
}

template <typename Height, typename Label>
Run watershed(RoiQuery query, Segment<Height, Label> f)
{
    return [=](Choices& choices, const std::string& name) {
        constexpr bool canFlood = sizeof(Height) == 1;
        Call call = segmentCall<Height, Label>(choices, name, query, 1);
        const bool isFlood = canFlood && choices.oneIn(2);
        call.arguments.anchor |= isFlood ? lumSegmentByLevel : lumSegmentByCost;
        call.arguments.kernelSize = choices.between(0, isFlood ? 1 : 3);
        addNorms(call, {4, -1, INT32_MIN});
        if (isFlood)
            addNorms(call, {2, 3});
        call.violations.push_back({"no algorithm", {lumErrArgument}, [](Arguments& a) {
                                       a.anchor &= ~(lumSegmentByLevel | lumSegmentByCost);
                                   }});
        if (!canFlood)
            call.violations.push_back(
                {"flood by level", {lumErrMode}, [](Arguments& a) { a.anchor |= lumSegmentByLevel; }});
        segment(choices, std::move(call), f);
    };
}

template <typename Label>
Run bound(LumStatus (*f)(Label*, Lum32s, LumiSize, Label, Lum32u))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.images = {{Role::Updated, elementOf<Label>()}};
        call.images[0].halfZero = choices.oneIn(2);
        const Label values[] = {0, 1, 2, 200, Label(~Label{0})};
        const Label val = choices.oneOf(values);
        call.arguments.kernelSize = choices.between(0, 1);
        addNorms(call, {2, 3, -1, INT32_MIN});
        call.call = [=](const Arguments& a) {
            return f(a.image<Label>(0), a.step(0), a.size(), val, Lum32u(a.kernelSize));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiSegmentGradientGetBufferSize_8u_C1R", roiQuery(lumiSegmentGradientGetBufferSize_8u_C1R)},
    {"lumiSegmentGradientGetBufferSize_8u_C3R", roiQuery(lumiSegmentGradientGetBufferSize_8u_C3R)},
    {"lumiSegmentGradient_8u_C1IR", gradient(lumiSegmentGradientGetBufferSize_8u_C1R, lumiSegmentGradient_8u_C1IR, 1)},
    {"lumiSegmentGradient_8u_C3IR", gradient(lumiSegmentGradientGetBufferSize_8u_C3R, lumiSegmentGradient_8u_C3IR, 3)},
    {"lumiSegmentWatershedGetBufferSize_8u_C1R", roiQuery(lumiSegmentWatershedGetBufferSize_8u_C1R)},
    {"lumiSegmentWatershedGetBufferSize_8u16u_C1R", roiQuery(lumiSegmentWatershedGetBufferSize_8u16u_C1R)},
    {"lumiSegmentWatershedGetBufferSize_32f16u_C1R", roiQuery(lumiSegmentWatershedGetBufferSize_32f16u_C1R)},
    {"lumiSegmentWatershed_8u_C1IR",
     watershed<Lum8u, Lum8u>(lumiSegmentWatershedGetBufferSize_8u_C1R, lumiSegmentWatershed_8u_C1IR)},
    {"lumiSegmentWatershed_8u16u_C1IR",
     watershed<Lum8u, Lum16u>(lumiSegmentWatershedGetBufferSize_8u16u_C1R, lumiSegmentWatershed_8u16u_C1IR)},
    {"lumiSegmentWatershed_32f16u_C1IR",
     watershed<Lum32f, Lum16u>(lumiSegmentWatershedGetBufferSize_32f16u_C1R, lumiSegmentWatershed_32f16u_C1IR)},
    {"lumiBoundSegments_8u_C1IR", bound(lumiBoundSegments_8u_C1IR)},
    {"lumiBoundSegments_16u_C1IR", bound(lumiBoundSegments_16u_C1IR)},
}};

}  // namespace
