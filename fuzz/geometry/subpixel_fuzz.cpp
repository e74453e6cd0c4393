// Fuzzes subpixel copies: offsets and points of any size, numbers that are none among them.
#include <limits>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f notANumber = std::numeric_limits<Lum32f>::quiet_NaN();

Lum32f chooseOffset(Choices& choices)
{
    const Lum32f special[] = {0,     -0.0f,   1,     0.5f,  -0.25f, 1e-10f,   -1e-10f,   1e-6f,
                              1e-9f, -1e-40f, 1e20f, -3e9f, 8e6f,   infinity, -infinity, notANumber};
    if (choices.oneIn(3))
        return choices.oneOf(special);
    return Lum32f(choices.between(-70000, 70000)) / 16384;
}

Lum32s chooseScaleFactor(Choices& choices)
{
    const Lum32s special[] = {INT32_MIN, -1000, -31, -30, -29, 16, 17, 18, 1000, INT32_MAX};
    return choices.oneIn(4) ? choices.oneOf(special) : choices.between(-30, 17);
}

// Parameters: nothing, or the scale factor.
template <typename S, typename D, typename... Parameters>
Run plain(LumStatus (*copy)(const S*, Lum32s, D*, Lum32s, LumiSize, Lum32f, Lum32f, Parameters...))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        ImageOperand source{Role::Read, elementOf<S>()};
        source.extra = {1, 1};
        call.images = {source, {Role::Written, elementOf<D>()}};
        const Lum32f dx = chooseOffset(choices), dy = chooseOffset(choices);
        const Lum32s scaleFactor = chooseScaleFactor(choices);
        call.call = [=](const Arguments& a) {
            return copy(a.image<S>(0), a.step(0), a.image<D>(1), a.step(1), a.size(), dx, dy,
                        Parameters{scaleFactor}...);
        };
        tryCall(choices, std::move(call));
    };
}

// The source is larger than the destination by what is chosen here; points lie anywhere around it. Of the columns and
// rows that are reported, every bit is written.
template <typename S, typename D, typename... Parameters>
Run around(LumStatus (*copy)(const S*, Lum32s, LumiSize, D*, Lum32s, LumiSize, LumiPoint32f, LumiPoint*, LumiPoint*,
                             Parameters...))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        ImageOperand source{Role::Read, elementOf<S>()};
        const LumiSize extra = {choices.between(0, 40), choices.between(0, 20)};
        source.extra = extra;
        source.leastExtra = extra.width;
        call.images = {source, {Role::Written, elementOf<D>()}};
        call.blocks = {{Role::Written, sizeof(LumiPoint), Element::S32},
                       {Role::Written, sizeof(LumiPoint), Element::S32}};
        const auto coordinate = [&](Lum64s size) {
            const int reach = int(size) + 3;
            return choices.oneIn(6) ? chooseOffset(choices) * 1000
                                    : Lum32f(choices.between(-reach * 64, 2 * reach * 64)) / 64;
        };
        const LumiPoint32f point = {coordinate(call.arguments.width + extra.width),
                                    coordinate(call.arguments.height + extra.height)};
        const Lum32s scaleFactor = chooseScaleFactor(choices);
        call.call = [=](const Arguments& a) {
            const auto grown = [](Lum64s size, Lum32s by) { return Lum32s(size < 1 ? size : size + by); };
            const LumiSize srcSize = {grown(a.width, extra.width), grown(a.height, extra.height)};
            return copy(a.image<S>(0), a.step(0), srcSize, a.image<D>(1), a.step(1), a.size(), point,
                        a.block<LumiPoint>(0), a.block<LumiPoint>(1), Parameters{scaleFactor}...);
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiCopySubpix_8u_C1R", plain(lumiCopySubpix_8u_C1R)},
    {"lumiCopySubpix_16u_C1R", plain(lumiCopySubpix_16u_C1R)},
    {"lumiCopySubpix_32f_C1R", plain(lumiCopySubpix_32f_C1R)},
    {"lumiCopySubpix_8u16u_C1R_Sfs", plain(lumiCopySubpix_8u16u_C1R_Sfs)},
    {"lumiCopySubpix_8u32f_C1R", plain(lumiCopySubpix_8u32f_C1R)},
    {"lumiCopySubpix_16u32f_C1R", plain(lumiCopySubpix_16u32f_C1R)},
    {"lumiCopySubpixIntersect_8u_C1R", around(lumiCopySubpixIntersect_8u_C1R)},
    {"lumiCopySubpixIntersect_16u_C1R", around(lumiCopySubpixIntersect_16u_C1R)},
    {"lumiCopySubpixIntersect_32f_C1R", around(lumiCopySubpixIntersect_32f_C1R)},
    {"lumiCopySubpixIntersect_8u16u_C1R_Sfs", around(lumiCopySubpixIntersect_8u16u_C1R_Sfs)},
    {"lumiCopySubpixIntersect_8u32f_C1R", around(lumiCopySubpixIntersect_8u32f_C1R)},
    {"lumiCopySubpixIntersect_16u32f_C1R", around(lumiCopySubpixIntersect_16u32f_C1R)},
}};

}  // namespace
