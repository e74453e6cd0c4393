// Fuzzes lens undistortion: lenses of every kind, numbers that are none among them, with and without scratch.
#include <array>
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

struct Lens
{
    Lum32f fx, fy, cx, cy, k1, k2, p1, p2;
};

Lum32f chooseNumber(Choices& choices)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    constexpr Lum32f notANumber = std::numeric_limits<Lum32f>::quiet_NaN();
    const Lum32f numbers[] = {0,      -0.0f,   0.1f,  -0.05f, 1,        -1,        0.5f,
                              1e-40f, -1e-20f, 1e20f, -3e38f, infinity, -infinity, notANumber};
    return choices.oneOf(numbers);
}

// Most lenses are ordinary ones, whose places lie in the image; any number of any other may be anything.
Lens chooseLens(Choices& choices, const Arguments& a)
{
    const auto thousandths = [&](int most) { return Lum32f(choices.between(-most, most)) / 1000; };
    const auto width = Lum32f(a.width), height = Lum32f(a.height);
    const Lum32f focal = width * (0.5f + Lum32f(choices.between(0, 1000)) / 500);
    Lens lens{focal, focal, width * 0.5f, height * 0.5f, thousandths(400), thousandths(200), 0, 0};
    if (choices.oneIn(2)) {
        lens.p1 = thousandths(20);
        lens.p2 = thousandths(20);
    }
    if (choices.oneIn(4)) {
        const std::array<Lum32f*, 8> numbers = {&lens.fx, &lens.fy, &lens.cx, &lens.cy,
                                                &lens.k1, &lens.k2, &lens.p1, &lens.p2};
        *numbers[std::size_t(choices.between(0, 7))] = chooseNumber(choices);
        if (lens.fx == 0)
            lens.fx = 1e-40f;
        if (lens.fy == 0)
            lens.fy = -1e20f;
    }
    return lens;
}

// The lens and the scratch that both calls share. A focal length of 0 is made by the call's parameter.
Call lensCall(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Lum32s bytes = -1;
    if (lumiUndistortGetSize(call.arguments.size(), &bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    call.blocks = {{Role::Scratch, std::size_t(bytes), Element::U8, true}};
    for (const Lum32f wrong : {1.0f, 2.0f})
        call.violations.push_back({"focal length " + std::to_string(int(wrong)) + " is 0",
                                   {lumErrArgument},
                                   [wrong](Arguments& a) { a.parameter = wrong; }});
    return call;
}

Lens lensOf(Lens lens, const Arguments& a)
{
    if (a.parameter == 1)
        lens.fx = 0;
    if (a.parameter == 2)
        lens.fy = -0.0f;
    return lens;
}

template <typename T>
using Radial = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, Lum32f, Lum32f, Lum32f, Lum32f, Lum32f, Lum32f,
                             Lum8u*);

template <typename T>
Run radial(Radial<T> f, int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = lensCall(choices, name);
        const Lens chosen = chooseLens(choices, call.arguments);
        const bool withBuffer = choices.oneIn(2);
        call.images = {{Role::Read, elementOf<T>(), channels}, {Role::Updated, elementOf<T>(), channels}};
        call.call = [=](const Arguments& a) {
            const Lens lens = lensOf(chosen, a);
            return f(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.size(), lens.fx, lens.fy, lens.cx, lens.cy,
                     lens.k1, lens.k2, withBuffer ? a.block<Lum8u>(0) : nullptr);
        };
        tryCall(choices, std::move(call));
    };
}

void map(Choices& choices, const std::string& name)
{
    Call call = lensCall(choices, name);
    const Lens chosen = chooseLens(choices, call.arguments);
    const bool withBuffer = choices.oneIn(2);
    call.images = {{Role::Written, Element::F32}, {Role::Written, Element::F32}};
    call.call = [=](const Arguments& a) {
        const Lens lens = lensOf(chosen, a);
        return lumiCreateMapCameraUndistort_32f_C1R(a.image<Lum32f>(0), a.step(0), a.image<Lum32f>(1), a.step(1),
                                                    a.size(), lens.fx, lens.fy, lens.cx, lens.cy, lens.k1, lens.k2,
                                                    lens.p1, lens.p2, withBuffer ? a.block<Lum8u>(0) : nullptr);
    };
    tryCall(choices, std::move(call));
}

void sizeQuery(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.violations.push_back({"many columns", {lumErrSizeTooLarge}, [](Arguments& a) { a.width = INT32_MAX; }});
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [](const Arguments& a) { return lumiUndistortGetSize(a.size(), a.block<Lum32s>(0)); };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiUndistortGetSize", sizeQuery},
    {"lumiUndistortRadial_8u_C1R", radial(lumiUndistortRadial_8u_C1R, 1)},
    {"lumiUndistortRadial_8u_C3R", radial(lumiUndistortRadial_8u_C3R, 3)},
    {"lumiUndistortRadial_16u_C1R", radial(lumiUndistortRadial_16u_C1R, 1)},
    {"lumiUndistortRadial_16u_C3R", radial(lumiUndistortRadial_16u_C3R, 3)},
    {"lumiUndistortRadial_32f_C1R", radial(lumiUndistortRadial_32f_C1R, 1)},
    {"lumiUndistortRadial_32f_C3R", radial(lumiUndistortRadial_32f_C3R, 3)},
    {"lumiCreateMapCameraUndistort_32f_C1R", map},
}};

}  // namespace
