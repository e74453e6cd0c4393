// Fuzzes the exact distance, fast marching and their size queries.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

Call distanceCall(Choices& choices, const std::string& name, RoiQuery query)
{
    Call call = beginCall(choices, name);
    const std::size_t bytes = bytesOf(query, call);
    call.images = {{Role::Mask, Element::U8}, {Role::Written, Element::F32}};
    call.blocks = {{Role::Scratch, bytes}};
    return call;
}

void exact(Choices& choices, const std::string& name)
{
    Call call = distanceCall(choices, name, lumiTrueDistanceTransformGetBufferSize_8u32f_C1R);
    call.call = [](const Arguments& a) {
        return lumiTrueDistanceTransform_8u32f_C1R(a.image<Lum8u>(0), a.step(0), a.image<Lum32f>(1), a.step(1),
                                                   a.size(), a.block<Lum8u>(0));
    };
    tryCall(choices, std::move(call));
}

void marching(Choices& choices, const std::string& name)
{
    Call call = distanceCall(choices, name, lumiFastMarchingGetBufferSize_8u32f_C1R);
    const Lum32f radii[] = {0, 0, -0.0f, 0.5f, 1, 2, 7.25f, 1000, 1e30f};
    call.arguments.parameter = choices.oneOf(radii);
    for (const Lum32f wrong : {-1e-30f, -1.0f, -1e30f})
        call.violations.push_back(
            {"radius " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& a) { a.parameter = wrong; }});
    call.call = [](const Arguments& a) {
        return lumiFastMarching_8u32f_C1R(a.image<Lum8u>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.size(),
                                          a.parameter, a.block<Lum8u>(0));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiTrueDistanceTransformGetBufferSize_8u32f_C1R", roiQuery(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R)},
    {"lumiTrueDistanceTransform_8u32f_C1R", exact},
    {"lumiFastMarchingGetBufferSize_8u32f_C1R", roiQuery(lumiFastMarchingGetBufferSize_8u32f_C1R)},
    {"lumiFastMarching_8u32f_C1R", marching},
}};

}  // namespace
