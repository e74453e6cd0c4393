// Fuzzes labels, speckles and their size queries.
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

// The norm stands in kernelSize, the labels in anchor and divisor; the number is the first block.
Call labelCall(Choices& choices, const std::string& name, RoiQuery query, Lum32s limit)
{
    Call call = beginCall(choices, name);
    const std::size_t bytes = bytesOf(query, call);
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}, {Role::Scratch, bytes}};
    Arguments& a = call.arguments;
    a.kernelSize = choices.between(0, 1);
    const Lum32s first[] = {1, 1, 2, 100, limit - 1};
    a.anchor = choices.oneOf(first);
    a.divisor = choices.oneIn(2) ? limit - 1 : choices.oneIn(2) ? a.anchor : choices.between(a.anchor, limit - 1);
    const auto add = [&](std::string what, std::function<void(Arguments&)> apply) {
        call.violations.push_back({std::move(what), {lumErrArgument}, std::move(apply)});
    };
    for (const Lum32s wrong : {0, -1, INT32_MIN})
        add("first label " + std::to_string(wrong), [=](Arguments& b) { b.anchor = wrong; });
    add("last label too large", [=](Arguments& b) { b.divisor = limit; });
    add("no labels", [](Arguments& b) { b.divisor = b.anchor - 1; });
    for (const Lum32s wrong : {2, 3, -1, INT32_MIN})
        add("norm " + std::to_string(wrong), [=](Arguments& b) { b.kernelSize = wrong; });
    return call;
}

template <typename T>
Run labelsInPlace(LumStatus (*label)(T*, Lum32s, LumiSize, Lum32s, Lum32s, LumiDistanceNorm, Lum32s*, Lum8u*),
                  RoiQuery query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = labelCall(choices, name, query, std::numeric_limits<T>::max());
        ImageOperand image{Role::Updated, elementOf<T>()};
        image.halfZero = true;
        call.images = {image};
        call.call = [=](const Arguments& a) {
            return label(a.image<T>(0), a.step(0), a.size(), a.anchor, a.divisor, a.kernelSize, a.block<Lum32s>(0),
                         a.block<Lum8u>(1));
        };
        tryCall(choices, std::move(call));
    };
}

void labels(Choices& choices, const std::string& name)
{
    Call call = labelCall(choices, name, lumiLabelMarkersGetBufferSize_8u32s_C1R, INT32_MAX);
    call.images = {{Role::Mask, Element::U8}, {Role::Written, Element::S32}};
    call.call = [](const Arguments& a) {
        return lumiLabelMarkers_8u32s_C1R(a.image<Lum8u>(0), a.step(0), a.image<Lum32s>(1), a.step(1), a.size(),
                                          a.anchor, a.divisor, a.kernelSize, a.block<Lum32s>(0), a.block<Lum8u>(1));
    };
    tryCall(choices, std::move(call));
}

// The norm stands in kernelSize, the largest speckle in anchor.
template <typename T>
Run speckles(LumStatus (*mark)(T*, Lum32s, LumiSize, T, Lum32s, T, LumiNorm, Lum8u*), LumDataType type)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.ignoresStep = true;
        Lum32s bytes = -1;
        if (lumiMarkSpecklesGetBufferSize(call.arguments.size(), type, 1, &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        call.blocks = {{Role::Scratch, std::size_t(bytes)}};
        call.arguments.kernelSize = lumNormInf;
        const Lum32s sizes[] = {0, 1, 2, 3, 10, 100, INT32_MAX, -1};
        call.arguments.anchor = choices.oneOf(sizes);
        const T differences[] = {T(0), T(1), T(20), T(100), T(127), std::numeric_limits<T>::max(), T(-1)};
        const T maxPixDiff = choices.oneOf(differences);
        const T values[] = {T(0), T(1), T(-1), std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::max()};
        const T speckleVal = choices.oneOf(values);
        ImageOperand image{Role::Updated, elementOf<T>()};
        image.halfZero = choices.oneIn(2);
        call.images = {image};
        for (const Lum32s wrong : {0, 2, 4, 3, -1})
            call.violations.push_back(
                {"norm " + std::to_string(wrong), {lumErrNorm}, [=](Arguments& a) { a.kernelSize = wrong; }});
        call.call = [=](const Arguments& a) {
            return mark(a.image<T>(0), a.step(0), a.size(), speckleVal, a.anchor, maxPixDiff, a.kernelSize,
                        a.block<Lum8u>(0));
        };
        tryCall(choices, std::move(call));
    };
}

void specklesQuery(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const LumDataType types[] = {lumType8u, lumType16u, lumType16s, lumType32f};
    call.arguments.dataType = choices.oneOf(types);
    call.arguments.channels = 1;
    for (const LumDataType wrong : {0, 2, 11, 19, -1})
        call.violations.push_back(
            {"type " + std::to_string(wrong), {lumErrDataType}, [=](Arguments& a) { a.dataType = wrong; }});
    for (const Lum32s wrong : {0, 3, 4, -1})
        call.violations.push_back(
            {"channels " + std::to_string(wrong), {lumErrChannels}, [=](Arguments& a) { a.channels = wrong; }});
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [](const Arguments& a) {
        return lumiMarkSpecklesGetBufferSize(a.size(), a.dataType, a.channels, a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiLabelMarkersGetBufferSize_8u_C1R", roiQuery(lumiLabelMarkersGetBufferSize_8u_C1R)},
    {"lumiLabelMarkersGetBufferSize_16u_C1R", roiQuery(lumiLabelMarkersGetBufferSize_16u_C1R)},
    {"lumiLabelMarkersGetBufferSize_8u32s_C1R", roiQuery(lumiLabelMarkersGetBufferSize_8u32s_C1R)},
    {"lumiLabelMarkers_8u_C1IR", labelsInPlace<Lum8u>(lumiLabelMarkers_8u_C1IR, lumiLabelMarkersGetBufferSize_8u_C1R)},
    {"lumiLabelMarkers_16u_C1IR",
     labelsInPlace<Lum16u>(lumiLabelMarkers_16u_C1IR, lumiLabelMarkersGetBufferSize_16u_C1R)},
    {"lumiLabelMarkers_8u32s_C1R", labels},
    {"lumiMarkSpecklesGetBufferSize", specklesQuery},
    {"lumiMarkSpeckles_8u_C1IR", speckles<Lum8u>(lumiMarkSpeckles_8u_C1IR, lumType8u)},
    {"lumiMarkSpeckles_16u_C1IR", speckles<Lum16u>(lumiMarkSpeckles_16u_C1IR, lumType16u)},
    {"lumiMarkSpeckles_16s_C1IR", speckles<Lum16s>(lumiMarkSpeckles_16s_C1IR, lumType16s)},
    {"lumiMarkSpeckles_32f_C1IR", speckles<Lum32f>(lumiMarkSpeckles_32f_C1IR, lumType32f)},
}};

}  // namespace
