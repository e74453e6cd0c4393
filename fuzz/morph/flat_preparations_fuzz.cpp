// Fuzzes what flat morphology needs before it can be applied: size queries, Inits and the choice of a mode.
#include <algorithm>
#include <cstdint>

#include "fuzz/morph/structuring_element.hpp"

namespace {

using namespace lumcv::fuzz;

using Sizes = LumStatus (*)(LumiSize, LumiSize, Lum32s*, Lum32s*);

template <typename Spec>
using Init = LumStatus (*)(LumiSize, const Lum8u*, LumiSize, Spec*, Lum8u*);

LumiSize maskOf(const Arguments& a)
{
    return {Lum32s(a.mask.width), Lum32s(a.mask.height)};
}

// Sizes of ROI and mask; those of 64-bit functions may exceed 31 bits.
Call begin(Choices& choices, const std::string& name, bool isLong)
{
    Call call = beginCall(choices, name);
    const int longest = choices.oneIn(8) ? 40 : 9;
    call.arguments.mask = {choices.between(1, longest), choices.between(1, longest)};
    for (const Lum64s wrong : {Lum64s{0}, Lum64s{-1}, Lum64s{INT32_MIN}}) {
        addViolation(call, "mask width " + std::to_string(wrong), lumErrSize,
                     [=](Arguments& a) { a.mask.width = wrong; });
        addViolation(call, "mask height " + std::to_string(wrong), lumErrSize,
                     [=](Arguments& a) { a.mask.height = wrong; });
    }
    if (isLong)
        for (const Lum64s wrong : {Lum64s{0x80000000}, Lum64s{INT64_MAX}}) {
            const std::string text = std::to_string(wrong);
            addViolation(call, "width " + text, lumErrSizeTooLarge, [=](Arguments& a) { a.width = wrong; });
            addViolation(call, "height " + text, lumErrSizeTooLarge, [=](Arguments& a) { a.height = wrong; });
            addViolation(call, "mask width " + text, lumErrSizeTooLarge, [=](Arguments& a) { a.mask.width = wrong; });
            addViolation(call, "mask height " + text, lumErrSizeTooLarge, [=](Arguments& a) { a.mask.height = wrong; });
        }
    return call;
}

void chooseType(Choices& choices, Call& call)
{
    const int types[] = {0, lumType8u, lumType16u, lumType16s, lumType32f};
    call.arguments.dataType = choices.oneOf(types);
    const int counts[] = {1, 3, 4};
    call.arguments.channels = choices.oneOf(counts);
    const int wrongTypes[] = {2, 6, lumType64f, -1, INT32_MIN};
    const int wrongType = choices.oneOf(wrongTypes);
    addViolation(call, "type " + std::to_string(wrongType), lumErrDataType,
                 [=](Arguments& a) { a.dataType = wrongType; });
    const int wrongCounts[] = {0, 2, 5, -1, INT32_MAX};
    const int wrongCount = choices.oneOf(wrongCounts);
    addViolation(call, "channels " + std::to_string(wrongCount), lumErrValue,
                 [=](Arguments& a) { a.channels = wrongCount; });
}

Run query(Sizes sizes)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, false);
        addViolation(call, "a wide image", lumErrSizeTooLarge, [](Arguments& a) { a.width = INT32_MAX; });
        addViolation(call, "a large mask", lumErrSizeTooLarge, [](Arguments& a) { a.mask = {INT32_MAX, INT32_MAX}; });
        call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}, {Role::Written, sizeof(Lum32s), Element::S32}};
        call.call = [=](const Arguments& a) {
            return sizes(a.size(), maskOf(a), a.block<Lum32s>(0), a.block<Lum32s>(1));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Query>
void tryQuery(Choices& choices, Call call, Query query)
{
    addViolation(call, "a size above 64 bits", lumErrSizeTooLarge, [](Arguments& a) {
        a.width = a.height = INT32_MAX;
        a.mask = {INT32_MAX, INT32_MAX};
    });
    call.blocks = {{Role::Written, sizeof(Lum64s), Element::F64}};
    call.call = query;
    tryCall(choices, std::move(call));
}

Run query(LumStatus (*f)(LumiSizeL, LumiSizeL, Lum64s*))
{
    return [=](Choices& choices, const std::string& name) {
        tryQuery(choices, begin(choices, name, true),
                 [=](const Arguments& a) { return f(a.sizeL(), a.mask, a.block<Lum64s>(0)); });
    };
}

Run query(LumStatus (*f)(LumiSizeL, LumiSizeL, LumDataType, Lum32s, Lum64s*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, true);
        chooseType(choices, call);
        tryQuery(choices, std::move(call),
                 [=](const Arguments& a) { return f(a.sizeL(), a.mask, a.dataType, a.channels, a.block<Lum64s>(0)); });
    };
}

// The blocks of an Init: the caller's mask, the record, and scratch if it takes any.
void addBlocks(Choices& choices, Call& call, Lum64s specBytes, Lum64s bufferBytes, bool takesScratch)
{
    if (specBytes < 0 || bufferBytes < 0)
        fail("the size query failed");
    const StructuringElement element = chooseElement(choices, call.arguments.size());
    const auto maskBytes = std::size_t(call.arguments.mask.width * call.arguments.mask.height);
    call.blocks = {{Role::Read, maskBytes}, {Role::Laid, std::size_t(specBytes)}};
    if (takesScratch)
        call.blocks.push_back({Role::Scratch, std::size_t(bufferBytes)});
    // a pattern that is larger or smaller than the mask
    call.prepare = [=](Arguments& a) {
        for (std::size_t i = 0; i < maskBytes; ++i)
            a.block<Lum8u>(0)[i] = element.bytes[i % element.bytes.size()];
    };
}

template <typename Spec>
Run init(Init<Spec> f, Sizes sizes)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, false);
        Lum32s specBytes = -1, bufferBytes = -1;
        if (sizes(call.arguments.size(), maskOf(call.arguments), &specBytes, &bufferBytes) != lumOk)
            fail("the size query failed");
        addBlocks(choices, call, specBytes, bufferBytes, true);
        call.call = [=](const Arguments& a) {
            return f(a.size(), a.block<Lum8u>(0), maskOf(a), a.block<Spec>(1), a.block<Lum8u>(2));
        };
        tryCall(choices, std::move(call));
    };
}

Run init(LumStatus (*f)(LumiSizeL, const Lum8u*, LumiSizeL, LumiDilateErodeSpec*),
         LumStatus (*query)(LumiSizeL, LumiSizeL, Lum64s*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, true);
        Lum64s specBytes = -1;
        if (query(call.arguments.sizeL(), call.arguments.mask, &specBytes) != lumOk)
            fail("the size query failed");
        addBlocks(choices, call, specBytes, 0, false);
        call.call = [=](const Arguments& a) {
            return f(a.sizeL(), a.block<Lum8u>(0), a.mask, a.block<LumiDilateErodeSpec>(1));
        };
        tryCall(choices, std::move(call));
    };
}

void initL(Choices& choices, const std::string& name)
{
    Call call = begin(choices, name, true);
    chooseType(choices, call);
    const Arguments& a = call.arguments;
    Lum64s specBytes = -1;
    if (lumiMorphGetSpecSize_L(a.sizeL(), a.mask, a.dataType, a.channels, &specBytes) != lumOk)
        fail("the size query failed");
    addBlocks(choices, call, specBytes, 0, false);
    call.call = [=](const Arguments& b) {
        return lumiMorphInit_L(b.sizeL(), b.block<Lum8u>(0), b.mask, b.dataType, b.channels,
                               b.block<LumiMorphCompoundSpecL>(1));
    };
    tryCall(choices, std::move(call));
}

// The mode stands in divisor.
template <typename Spec, typename Lay>
Run setMode(LumStatus (*f)(Lum32s, Spec*), Lay lay)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.ignoresSize = true;
        const StructuringElement element = chooseElement(choices, call.arguments.size());
        const int modes[] = {0, 1, 4, 5};
        call.arguments.divisor = choices.oneOf(modes);
        const int wrongModes[] = {2, 3, 6, 8, -1, INT32_MIN};
        const int wrong = choices.oneOf(wrongModes);
        addViolation(call, "mode " + std::to_string(wrong), lumErrMode, [=](Arguments& a) { a.divisor = wrong; });
        lay(call, element);
        call.call = [=](const Arguments& a) { return f(a.divisor, a.block<Spec>(0)); };
        tryCall(choices, std::move(call));
    };
}

void layOrdinary(Call& call, const StructuringElement& element)
{
    const LumiSize roi = call.arguments.size();
    Lum32s specBytes = -1, bufferBytes = -1;
    if (lumiMorphAdvGetSize_8u_C1R(roi, element.size, &specBytes, &bufferBytes) != lumOk)
        fail("the size query failed");
    call.blocks = {{Role::Laid, std::size_t(specBytes)}, {Role::Scratch, std::size_t(bufferBytes), Element::U8, true}};
    call.prepare = [=](Arguments& a) {
        if (lumiMorphAdvInit_8u_C1R(roi, element.bytes.data(), element.size, a.block<LumiMorphCompoundSpec>(0),
                                    a.block<Lum8u>(1)) != lumOk)
            fail("Init failed");
    };
}

void layLong(Call& call, const StructuringElement& element)
{
    const LumiSizeL roi = call.arguments.sizeL();
    Lum64s specBytes = -1;
    if (lumiMorphGetSpecSize_L(roi, element.sizeL(), lumType8u, 1, &specBytes) != lumOk)
        fail("the size query failed");
    call.blocks = {{Role::Laid, std::size_t(specBytes)}};
    call.prepare = [=](Arguments& a) {
        if (lumiMorphInit_L(roi, element.bytes.data(), element.sizeL(), lumType8u, 1,
                            a.block<LumiMorphCompoundSpecL>(0)) != lumOk)
            fail("Init failed");
    };
}

const Targets queries{{
    {"lumiMorphologyBorderGetSize_8u_C1R", query(lumiMorphologyBorderGetSize_8u_C1R)},
    {"lumiMorphologyBorderGetSize_8u_C3R", query(lumiMorphologyBorderGetSize_8u_C3R)},
    {"lumiMorphologyBorderGetSize_8u_C4R", query(lumiMorphologyBorderGetSize_8u_C4R)},
    {"lumiMorphologyBorderGetSize_16u_C1R", query(lumiMorphologyBorderGetSize_16u_C1R)},
    {"lumiMorphologyBorderGetSize_16s_C1R", query(lumiMorphologyBorderGetSize_16s_C1R)},
    {"lumiMorphologyBorderGetSize_32f_C1R", query(lumiMorphologyBorderGetSize_32f_C1R)},
    {"lumiMorphologyBorderGetSize_32f_C3R", query(lumiMorphologyBorderGetSize_32f_C3R)},
    {"lumiMorphologyBorderGetSize_32f_C4R", query(lumiMorphologyBorderGetSize_32f_C4R)},
    {"lumiMorphologyBorderGetSize_1u_C1R", query(lumiMorphologyBorderGetSize_1u_C1R)},
    {"lumiMorphAdvGetSize_8u_C1R", query(lumiMorphAdvGetSize_8u_C1R)},
    {"lumiMorphAdvGetSize_8u_C3R", query(lumiMorphAdvGetSize_8u_C3R)},
    {"lumiMorphAdvGetSize_8u_C4R", query(lumiMorphAdvGetSize_8u_C4R)},
    {"lumiMorphAdvGetSize_16u_C1R", query(lumiMorphAdvGetSize_16u_C1R)},
    {"lumiMorphAdvGetSize_16s_C1R", query(lumiMorphAdvGetSize_16s_C1R)},
    {"lumiMorphAdvGetSize_32f_C1R", query(lumiMorphAdvGetSize_32f_C1R)},
    {"lumiMorphAdvGetSize_32f_C3R", query(lumiMorphAdvGetSize_32f_C3R)},
    {"lumiMorphAdvGetSize_32f_C4R", query(lumiMorphAdvGetSize_32f_C4R)},
    {"lumiMorphAdvGetSize_1u_C1R", query(lumiMorphAdvGetSize_1u_C1R)},
    {"lumiDilateGetSpecSize_L", query(lumiDilateGetSpecSize_L)},
    {"lumiDilateGetBufferSize_L", query(lumiDilateGetBufferSize_L)},
    {"lumiErodeGetSpecSize_L", query(lumiErodeGetSpecSize_L)},
    {"lumiErodeGetBufferSize_L", query(lumiErodeGetBufferSize_L)},
    {"lumiMorphGetSpecSize_L", query(lumiMorphGetSpecSize_L)},
    {"lumiMorphGetBufferSize_L", query(lumiMorphGetBufferSize_L)},
}};

const Targets inits{{
    {"lumiMorphologyBorderInit_8u_C1R", init(lumiMorphologyBorderInit_8u_C1R, lumiMorphologyBorderGetSize_8u_C1R)},
    {"lumiMorphologyBorderInit_8u_C3R", init(lumiMorphologyBorderInit_8u_C3R, lumiMorphologyBorderGetSize_8u_C3R)},
    {"lumiMorphologyBorderInit_8u_C4R", init(lumiMorphologyBorderInit_8u_C4R, lumiMorphologyBorderGetSize_8u_C4R)},
    {"lumiMorphologyBorderInit_16u_C1R", init(lumiMorphologyBorderInit_16u_C1R, lumiMorphologyBorderGetSize_16u_C1R)},
    {"lumiMorphologyBorderInit_16s_C1R", init(lumiMorphologyBorderInit_16s_C1R, lumiMorphologyBorderGetSize_16s_C1R)},
    {"lumiMorphologyBorderInit_32f_C1R", init(lumiMorphologyBorderInit_32f_C1R, lumiMorphologyBorderGetSize_32f_C1R)},
    {"lumiMorphologyBorderInit_32f_C3R", init(lumiMorphologyBorderInit_32f_C3R, lumiMorphologyBorderGetSize_32f_C3R)},
    {"lumiMorphologyBorderInit_32f_C4R", init(lumiMorphologyBorderInit_32f_C4R, lumiMorphologyBorderGetSize_32f_C4R)},
    {"lumiMorphologyBorderInit_1u_C1R", init(lumiMorphologyBorderInit_1u_C1R, lumiMorphologyBorderGetSize_1u_C1R)},
    {"lumiMorphAdvInit_8u_C1R", init(lumiMorphAdvInit_8u_C1R, lumiMorphAdvGetSize_8u_C1R)},
    {"lumiMorphAdvInit_8u_C3R", init(lumiMorphAdvInit_8u_C3R, lumiMorphAdvGetSize_8u_C3R)},
    {"lumiMorphAdvInit_8u_C4R", init(lumiMorphAdvInit_8u_C4R, lumiMorphAdvGetSize_8u_C4R)},
    {"lumiMorphAdvInit_16u_C1R", init(lumiMorphAdvInit_16u_C1R, lumiMorphAdvGetSize_16u_C1R)},
    {"lumiMorphAdvInit_16s_C1R", init(lumiMorphAdvInit_16s_C1R, lumiMorphAdvGetSize_16s_C1R)},
    {"lumiMorphAdvInit_32f_C1R", init(lumiMorphAdvInit_32f_C1R, lumiMorphAdvGetSize_32f_C1R)},
    {"lumiMorphAdvInit_32f_C3R", init(lumiMorphAdvInit_32f_C3R, lumiMorphAdvGetSize_32f_C3R)},
    {"lumiMorphAdvInit_32f_C4R", init(lumiMorphAdvInit_32f_C4R, lumiMorphAdvGetSize_32f_C4R)},
    {"lumiMorphAdvInit_1u_C1R", init(lumiMorphAdvInit_1u_C1R, lumiMorphAdvGetSize_1u_C1R)},
    {"lumiDilateInit_L", init(lumiDilateInit_L, lumiDilateGetSpecSize_L)},
    {"lumiErodeInit_L", init(lumiErodeInit_L, lumiErodeGetSpecSize_L)},
    {"lumiMorphInit_L", initL},
    {"lumiMorphSetMode", setMode(lumiMorphSetMode, layOrdinary)},
    {"lumiMorphSetMode_L", setMode(lumiMorphSetMode_L, layLong)},
}};

}  // namespace
