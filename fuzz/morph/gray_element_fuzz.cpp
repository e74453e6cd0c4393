// Fuzzes gray-element dilation and erosion: the record's Init is a part of each call's preparation.

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename Height>
using Init = LumStatus (*)(LumiMorphGrayRecord*, LumiSize, const Height*, LumiSize, LumiPoint);

template <typename Height>
Height chooseHeight(Choices& choices)
{
    if (choices.oneIn(20)) {
        const double extremes[] = {-2147483648.0, 2147483647.0, 0, -0.0, 255, -256};
        return Height(choices.oneOf(extremes));
    }
    return Height(choices.between(-40, 60));
}

template <typename T, typename Height>
Run apply(LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, const LumiMorphGrayRecord*),
          Init<Height> init)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        const LumiSize size = call.arguments.size();
        a.borderType = lumBorderReplicate;
        const int longest = size.width > 1000 ? 4 : 20;
        const LumiSize maskSize{choices.between(1, choices.oneIn(10) ? 4 * longest : longest / 2),
                                choices.between(1, longest / 2)};
        const LumiPoint anchor{choices.between(0, maskSize.width - 1), choices.between(0, maskSize.height - 1)};
        std::vector<Height> mask;
        for (int i = 0; i < maskSize.width * maskSize.height; ++i)
            mask.push_back(chooseHeight<Height>(choices));
        const LumiSize largest{size.width + choices.between(0, 9), size.height + choices.between(0, 9)};
        call.images = {{Role::Read, elementOf<T>()}, {Role::Written, elementOf<T>()}};
        call.blocks = {{Role::Record, mask.size() * sizeof(Height) + 32}};
        call.prepare = [=](Arguments& b) {
            if (init(b.block<LumiMorphGrayRecord>(0), largest, mask.data(), maskSize, anchor) != lumOk)
                fail("Init failed");
        };
        const int borders[] = {0, 2, lumBorderMirror, lumBorderConstant, lumBorderInMem, 0xF1, 0x101, -1, INT32_MIN};
        const int wrong = choices.oneOf(borders);
        call.violations.push_back(
            {"border " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.borderType = wrong; }});
        call.violations.push_back(
            {"higher than the record allows", {lumErrSize}, [=](Arguments& b) { b.height = largest.height + 1; }});
        call.call = [=](const Arguments& b) {
            return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), b.borderType,
                     b.block<LumiMorphGrayRecord>(0));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiGrayDilateBorder_8u_C1R", apply(lumiGrayDilateBorder_8u_C1R, lumiMorphGrayInit_8u_C1R)},
    {"lumiGrayErodeBorder_8u_C1R", apply(lumiGrayErodeBorder_8u_C1R, lumiMorphGrayInit_8u_C1R)},
    {"lumiGrayDilateBorder_32f_C1R", apply(lumiGrayDilateBorder_32f_C1R, lumiMorphGrayInit_32f_C1R)},
    {"lumiGrayErodeBorder_32f_C1R", apply(lumiGrayErodeBorder_32f_C1R, lumiMorphGrayInit_32f_C1R)},
}};

}  // namespace
