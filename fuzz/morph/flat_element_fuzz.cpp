// Fuzzes dilation, erosion and the compound operations; Init is a part of each call's preparation.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

struct Mask
{
    LumiSize size;
    std::vector<Lum8u> bytes;
};

/// Rectangles, crosses, runs and what is none of these.
Mask chooseMask(Choices& choices, LumiSize roi)
{
    const int longest = roi.width > 1000 ? 7 : choices.oneIn(6) ? 40 : 9;
    Mask mask{{choices.between(1, longest), choices.between(1, longest)}, {}};
    if (choices.oneIn(3))
        mask.size.height = mask.size.width;
    const int shape = choices.between(0, 3);
    for (int y = 0; y < mask.size.height; ++y)
        for (int x = 0; x < mask.size.width; ++x) {
            const bool isOnCross = x == mask.size.width / 2 || y == mask.size.height / 2;
            const bool isInTriangle = x <= y;
            const bool isSet = shape == 0 || (shape == 1 && isOnCross) || (shape == 2 && isInTriangle) ||
                               (shape == 3 && choices.oneIn(2));
            mask.bytes.push_back(Lum8u(isSet ? choices.between(1, 255) : 0));
        }
    return mask;
}

using Sizes = LumStatus (*)(LumiSize, LumiSize, Lum32s*, Lum32s*);

template <typename Spec>
using Init = LumStatus (*)(LumiSize, const Lum8u*, LumiSize, Spec*, Lum8u*);

/// One channel takes the border value, several a pointer to it.
template <typename T, typename BorderValue, typename Spec>
using Apply = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, BorderValue, const Spec*, Lum8u*);

template <typename T, typename BorderValue, typename Spec>
Run apply(Apply<T, BorderValue, Spec> f, Sizes sizes, Init<Spec> init, int channels = 1)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        const LumiSize size = call.arguments.size();
        const Mask mask = chooseMask(choices, size);
        const int modes[] = {lumBorderReplicate, lumBorderMirror, lumBorderConstant};
        a.borderType = choices.oneOf(modes);
        if (choices.oneIn(2))
            a.borderType |= choices.between(0, 15) << 4;
        const auto margin = [&](int flag, int length) { return a.borderType & flag ? length / 2 : 0; };
        const lumcv::test::Margins margins{
            margin(lumBorderInMemTop, mask.size.height), margin(lumBorderInMemBottom, mask.size.height),
            margin(lumBorderInMemLeft, mask.size.width), margin(lumBorderInMemRight, mask.size.width)};

        const LumiSize queried{size.width + choices.between(0, 9), size.height + choices.between(0, 9)};
        Lum32s specBytes = 0, bufferBytes = 0;
        if (sizes(queried, mask.size, &specBytes, &bufferBytes) != lumOk)
            fail("the size query failed");
        call.images = {{Role::Read, elementOf<T>(), channels, margins}, {Role::Written, elementOf<T>(), channels}};
        call.blocks = {{Role::Record, std::size_t(specBytes)}, {Role::Scratch, std::size_t(bufferBytes)}};
        call.prepare = [=](Arguments& b) {
            if (init(queried, mask.bytes.data(), mask.size, b.block<Spec>(0), b.block<Lum8u>(1)) != lumOk)
                fail("Init failed");
        };
        const int borders[] = {0, 2, 4, 0x70, 0x1001, -1, INT32_MIN};
        const int wrong = choices.oneOf(borders);
        call.violations.push_back(
            {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
        const int value = choices.between(-300, 300);
        call.call = [=](const Arguments& b) {
            const T values[4] = {T(value), T(value / 2), T(value + 7), T(3)};
            if constexpr (std::is_pointer_v<BorderValue>)
                return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), b.borderType, values,
                         b.block<Spec>(0), b.block<Lum8u>(1));
            else
                return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), b.borderType, values[0],
                         b.block<Spec>(0), b.block<Lum8u>(1));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets passes{{
    {"lumiDilateBorder_8u_C1R",
     apply(lumiDilateBorder_8u_C1R, lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R)},
    {"lumiErodeBorder_8u_C3R",
     apply(lumiErodeBorder_8u_C3R, lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R, 3)},
    {"lumiDilateBorder_8u_C4R",
     apply(lumiDilateBorder_8u_C4R, lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R, 4)},
    {"lumiErodeBorder_16u_C1R",
     apply(lumiErodeBorder_16u_C1R, lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R)},
    {"lumiDilateBorder_16s_C1R",
     apply(lumiDilateBorder_16s_C1R, lumiMorphologyBorderGetSize_16s_C1R, lumiMorphologyBorderInit_16s_C1R)},
    {"lumiErodeBorder_32f_C1R",
     apply(lumiErodeBorder_32f_C1R, lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R)},
    {"lumiDilateBorder_32f_C3R",
     apply(lumiDilateBorder_32f_C3R, lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R, 3)},
}};

const Targets compounds{{
    {"lumiMorphOpenBorder_8u_C1R",
     apply(lumiMorphOpenBorder_8u_C1R, lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R)},
    {"lumiMorphCloseBorder_32f_C4R",
     apply(lumiMorphCloseBorder_32f_C4R, lumiMorphAdvGetSize_32f_C4R, lumiMorphAdvInit_32f_C4R, 4)},
    {"lumiMorphTophatBorder_16s_C1R",
     apply(lumiMorphTophatBorder_16s_C1R, lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R)},
    {"lumiMorphBlackhatBorder_16u_C1R",
     apply(lumiMorphBlackhatBorder_16u_C1R, lumiMorphAdvGetSize_16u_C1R, lumiMorphAdvInit_16u_C1R)},
    {"lumiMorphGradientBorder_8u_C3R",
     apply(lumiMorphGradientBorder_8u_C3R, lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R, 3)},
}};

}  // namespace
