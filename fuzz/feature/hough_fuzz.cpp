// Fuzzes Hough transforms, their size queries and the Init of segments.
#include <algorithm>
#include <cfenv>
#include <cmath>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

constexpr Lum32f angleLimit = 3.14159f;

LumiPointPolar chooseDelta(Choices& choices, LumiSize size)
{
    const float rhos[] = {1, 1, 0.5f, 2, 3.7f, 0.04f, 100};
    const float thetas[] = {0.0174532925f, 0.05f, 0.3f, 1.5f, angleLimit};
    return {std::min(choices.oneOf(rhos), float(size.width + size.height)), choices.oneOf(thetas)};
}

// The threshold stands in kernelSize, the room of the list in divisor; rows may overlap, and strides of 1 and more are
// taken.
Call beginTransform(Choices& choices, const std::string& name)
{
    Call call;
    call.function = name;
    call.ignoresStep = true;
    call.arguments.width = choices.oneIn(10) ? choices.between(1, 5000) : choices.between(1, 150);
    call.arguments.height = choices.between(1, call.arguments.width > 150 ? 3 : 60);
    call.arguments.kernelSize = choices.between(1, 12);
    call.arguments.divisor = choices.between(1, 20);
    ImageOperand image{Role::Read, Element::U8};
    image.halfZero = choices.oneIn(2);
    call.images = {image};
    call.violations.push_back({"threshold", {lumErrArgument}, [](Arguments& a) { a.kernelSize = 0; }});
    return call;
}

template <bool isRegion>
void lines(Choices& choices, const std::string& name)
{
    Call call = beginTransform(choices, name);
    const LumiSize size = call.arguments.size();
    const LumiPointPolar delta = chooseDelta(choices, size);
    const int room = call.arguments.divisor;
    Lum32s bytes = -1;
    if (lumiHoughLineGetSize_8u_C1R(size, delta, room, &bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    const float rho = float(choices.between(-200, 200)), theta = choices.between(-10, 40) * 0.1f;
    const LumiPointPolar low{rho, theta};
    const LumiPointPolar high{rho + choices.between(0, 400), theta + choices.between(0, 40) * 0.1f};
    call.blocks = {{Role::Scratch, std::size_t(bytes)},
                   {Role::Written, std::size_t(room) * sizeof(LumiPointPolar), Element::F32},
                   {Role::Written, sizeof(Lum32s), Element::S32}};
    call.violations.push_back({"room", {lumErrSize}, [](Arguments& a) { a.divisor = 0; }});
    call.call = [=](const Arguments& a) {
        auto* const list = a.block<LumiPointPolar>(1);
        auto* const count = a.block<Lum32s>(2);
        LumiPointPolar region[2] = {low, high};
        const LumStatus status =
            isRegion ? lumiHoughLine_Region_8u32f_C1R(a.image<Lum8u>(0), a.step(0), a.size(), list, region, a.divisor,
                                                      count, delta, a.kernelSize, a.block<Lum8u>(0))
                     : lumiHoughLine_8u32f_C1R(a.image<Lum8u>(0), a.step(0), a.size(), delta, a.kernelSize, list,
                                               a.divisor, count, a.block<Lum8u>(0));
        if (status != lumOk)
            return status;
        if (*count < 0 || *count > room)
            fail("the count is " + std::to_string(*count));
        std::fill(list + *count, list + room, LumiPointPolar{});  // so that both runs can be compared
        return status;
    };
    tryCall(choices, std::move(call));
}

void segments(Choices& choices, const std::string& name)
{
    Call call = beginTransform(choices, name);
    const LumiSize size = call.arguments.size();
    const LumiPointPolar delta = chooseDelta(choices, size);
    const int room = call.arguments.divisor;
    const int length = choices.between(0, 30), gap = choices.between(0, 4);
    Lum32s specBytes = -1, bytes = -1;
    if (lumiHoughProbLineGetSize_8u_C1R(size, delta, &specBytes, &bytes) != lumOk || specBytes < 0 || bytes < 0)
        fail("the size query failed");
    call.blocks = {{Role::Record, std::size_t(specBytes)},
                   {Role::Scratch, std::size_t(bytes)},
                   {Role::Written, std::size_t(room) * 4 * sizeof(Lum32s), Element::S32},
                   {Role::Written, sizeof(Lum32s), Element::S32}};
    call.prepare = [=](Arguments& a) {
        if (lumiHoughProbLineInit_8u32f_C1R(size, delta, 0, a.block<LumHoughProbSpec>(0)) != lumOk)
            fail("Init failed");
    };
    call.call = [=](const Arguments& a) {
        auto* const list = a.block<Lum32s>(2);
        auto* const count = a.block<Lum32s>(3);
        const LumStatus status =
            lumiHoughProbLine_8u32f_C1R(a.image<Lum8u>(0), a.step(0), a.size(), a.kernelSize, length, gap, list, room,
                                        count, a.block<Lum8u>(1), a.block<LumHoughProbSpec>(0));
        if (std::fegetround() != FE_TONEAREST)
            fail("the rounding mode was not restored");
        if (status < 0)
            return status;
        if (*count < 0 || *count > room)
            fail("the count is " + std::to_string(*count));
        for (int i = 0; i < 4 * *count; ++i)
            if (list[i] < 0 || list[i] >= (i % 2 ? size.height : size.width))
                fail("segment " + std::to_string(i / 4) + " leaves the image");
        std::fill(list + 4 * *count, list + 4 * room, 0);
        return LumStatus{lumOk};  // also where the list is full
    };
    tryCall(choices, std::move(call));
}

// Whether a component of delta is wrong stands in parameter, and which value it has then.
Call beginPreparation(Choices& choices, const std::string& name)
{
    Call call;
    call.function = name;
    call.arguments.width = choices.between(1, 2000);
    call.arguments.height = choices.between(1, 2000);
    const Lum32f deltas[] = {-0.0f, -1, -INFINITY, NAN};
    for (const Lum32f wrong : {choices.oneOf(deltas)})
        for (const bool isAngle : {false, true})
            addViolation(call, std::string(isAngle ? "theta " : "rho ") + std::to_string(wrong), lumErrArgument,
                         [=](Arguments& a) {
                             a.parameter = wrong;
                             a.divisor = isAngle ? 2 : 3;
                         });
    return call;
}

LumiPointPolar deltaOf(const Arguments& a, LumiPointPolar delta)
{
    if (a.divisor != 1)
        (a.divisor == 2 ? delta.theta : delta.rho) = a.parameter;
    return delta;
}

void queryLines(Choices& choices, const std::string& name)
{
    Call call = beginPreparation(choices, name);
    const LumiPointPolar delta = chooseDelta(choices, call.arguments.size());
    const int room = choices.between(0, 100000);
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [=](const Arguments& a) {
        return lumiHoughLineGetSize_8u_C1R(a.size(), deltaOf(a, delta), room, a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

void querySegments(Choices& choices, const std::string& name)
{
    Call call = beginPreparation(choices, name);
    const LumiPointPolar delta = chooseDelta(choices, call.arguments.size());
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}, {Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [=](const Arguments& a) {
        return lumiHoughProbLineGetSize_8u_C1R(a.size(), deltaOf(a, delta), a.block<Lum32s>(0), a.block<Lum32s>(1));
    };
    tryCall(choices, std::move(call));
}

void initSegments(Choices& choices, const std::string& name)
{
    Call call = beginPreparation(choices, name);
    const LumiPointPolar delta = chooseDelta(choices, call.arguments.size());
    const int hint = choices.between(-1, 2);
    Lum32s specBytes = -1, bytes = -1;
    if (lumiHoughProbLineGetSize_8u_C1R(call.arguments.size(), delta, &specBytes, &bytes) != lumOk || specBytes < 0)
        fail("the size query failed");
    call.blocks = {{Role::Laid, std::size_t(specBytes)}};
    call.call = [=](const Arguments& a) {
        return lumiHoughProbLineInit_8u32f_C1R(a.size(), deltaOf(a, delta), hint, a.block<LumHoughProbSpec>(0));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiHoughLineGetSize_8u_C1R", queryLines},
    {"lumiHoughProbLineGetSize_8u_C1R", querySegments},
    {"lumiHoughProbLineInit_8u32f_C1R", initSegments},
    {"lumiHoughLine_8u32f_C1R", lines<false>},
    {"lumiHoughLine_Region_8u32f_C1R", lines<true>},
    {"lumiHoughProbLine_8u32f_C1R", segments},
}};

}  // namespace
