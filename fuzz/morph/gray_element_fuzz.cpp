// Fuzzes gray-element morphology: size queries, Inits, dilation and erosion.

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

// The anchor stands in kernelSize and anchor.
Call beginPreparation(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    a.mask = {choices.between(1, 20), choices.between(1, 12)};
    a.kernelSize = choices.between(0, int(a.mask.width) - 1);
    a.anchor = choices.between(0, int(a.mask.height) - 1);
    for (const int wrong : {0, -1, INT32_MIN}) {
        const std::string text = std::to_string(wrong);
        call.violations.push_back({"mask width " + text, {lumErrSize}, [=](Arguments& b) { b.mask.width = wrong; }});
        call.violations.push_back({"mask height " + text, {lumErrSize}, [=](Arguments& b) { b.mask.height = wrong; }});
    }
    return call;
}

LumiSize maskOf(const Arguments& a)
{
    return {Lum32s(a.mask.width), Lum32s(a.mask.height)};
}

template <typename Height>
Run query(LumStatus (*f)(LumiSize, const Height*, LumiSize, Lum32s*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginPreparation(choices, name);
        call.violations.push_back({"a large mask", {lumErrSizeTooLarge}, [](Arguments& a) {
                                       a.mask = {INT32_MAX, INT32_MAX};
                                   }});
        // the element is not read
        call.blocks = {{Role::Read, sizeof(Height), elementOf<Height>()},
                       {Role::Written, sizeof(Lum32s), Element::S32}};
        call.call = [=](const Arguments& a) { return f(a.size(), a.block<Height>(0), maskOf(a), a.block<Lum32s>(1)); };
        tryCall(choices, std::move(call));
    };
}

template <typename Height>
Run prepare(Init<Height> f, LumStatus (*sizes)(LumiSize, const Height*, LumiSize, Lum32s*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginPreparation(choices, name);
        const Arguments& a = call.arguments;
        for (const int wrong : {-1, int(a.mask.width), INT32_MIN, INT32_MAX})
            call.violations.push_back({"anchor column " + std::to_string(wrong), {lumErrAnchor}, [=](Arguments& b) {
                                           b.kernelSize = wrong;
                                       }});
        for (const int wrong : {-1, int(a.mask.height), INT32_MIN, INT32_MAX})
            call.violations.push_back(
                {"anchor row " + std::to_string(wrong), {lumErrAnchor}, [=](Arguments& b) { b.anchor = wrong; }});
        const Height height{};
        Lum32s bytes = -1;
        if (sizes(a.size(), &height, maskOf(a), &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        const auto positions = std::size_t(a.mask.width * a.mask.height);
        call.blocks = {{Role::Laid, std::size_t(bytes)}, {Role::Read, positions * sizeof(Height), elementOf<Height>()}};
        call.call = [=](const Arguments& b) {
            return f(b.block<LumiMorphGrayRecord>(0), b.size(), b.block<Height>(1), maskOf(b),
                     {b.kernelSize, b.anchor});
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiMorphGrayGetSize_8u_C1R", query(lumiMorphGrayGetSize_8u_C1R)},
    {"lumiMorphGrayGetSize_32f_C1R", query(lumiMorphGrayGetSize_32f_C1R)},
    {"lumiMorphGrayInit_8u_C1R", prepare(lumiMorphGrayInit_8u_C1R, lumiMorphGrayGetSize_8u_C1R)},
    {"lumiMorphGrayInit_32f_C1R", prepare(lumiMorphGrayInit_32f_C1R, lumiMorphGrayGetSize_32f_C1R)},
    {"lumiGrayDilateBorder_8u_C1R", apply(lumiGrayDilateBorder_8u_C1R, lumiMorphGrayInit_8u_C1R)},
    {"lumiGrayErodeBorder_8u_C1R", apply(lumiGrayErodeBorder_8u_C1R, lumiMorphGrayInit_8u_C1R)},
    {"lumiGrayDilateBorder_32f_C1R", apply(lumiGrayDilateBorder_32f_C1R, lumiMorphGrayInit_32f_C1R)},
    {"lumiGrayErodeBorder_32f_C1R", apply(lumiGrayErodeBorder_32f_C1R, lumiMorphGrayInit_32f_C1R)},
}};

}  // namespace
