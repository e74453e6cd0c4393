// Fuzzes dilation, erosion and the compound operations with flat elements, of all types and of 1-bit images; Init is a
// part of each call's preparation.
#include <cstdint>

#include "fuzz/morph/structuring_element.hpp"

namespace {

using namespace lumcv::fuzz;
using lumcv::test::Margins;

enum class Work
{
    Dilate,
    Erode,
    Open,
    Close,
    Tophat,
    Blackhat,
    Gradient
};

bool isSinglePass(Work work)
{
    return work == Work::Dilate || work == Work::Erode;
}

bool canWorkInPlace(Work work)
{
    return work == Work::Open || work == Work::Close;
}

// The pixels of a form, and which functions take them.
struct Form
{
    Element element;
    int channels;
    bool isBits, isLong;

    LumDataType type() const
    {
        return isBits ? 0 : typeCode(element);
    }
};

// The size query and the Init of the functions with `Border`.
template <typename Spec>
struct Protocol
{
    LumStatus (*sizes)(LumiSize, LumiSize, Lum32s*, Lum32s*);
    LumStatus (*init)(LumiSize, const Lum8u*, LumiSize, Spec*, Lum8u*);
    int channels = 1;
};

// The blocks of a call and how its record is laid.
struct Laying
{
    std::size_t specBytes, bufferBytes;
    std::function<LumStatus(void*, Lum8u*)> init;
};

void expectOk(LumStatus status)
{
    if (status != lumOk)
        fail("the size query failed");
}

template <typename Spec>
Laying laying(Protocol<Spec> protocol, const Form&, Choices&, LumiSize queried, const StructuringElement& element)
{
    Lum32s specBytes = -1, bufferBytes = -1;
    expectOk(protocol.sizes(queried, element.size, &specBytes, &bufferBytes));
    return {std::size_t(specBytes), std::size_t(bufferBytes), [=](void* spec, Lum8u* buffer) {
                return protocol.init(queried, element.bytes.data(), element.size, static_cast<Spec*>(spec), buffer);
            }};
}

// Dilation and erosion may use the queries and the record of each other.
Laying laying(LumiDilateErodeSpec*, const Form& form, Choices& choices, LumiSize queried,
              const StructuringElement& element)
{
    const LumiSizeL size{queried.width, queried.height};
    Lum64s specBytes = -1, bufferBytes = -1;
    const auto querySpec = choices.oneIn(2) ? lumiDilateGetSpecSize_L : lumiErodeGetSpecSize_L;
    const auto queryBuffer = choices.oneIn(2) ? lumiDilateGetBufferSize_L : lumiErodeGetBufferSize_L;
    const auto init = choices.oneIn(2) ? lumiDilateInit_L : lumiErodeInit_L;
    expectOk(querySpec(size, element.sizeL(), &specBytes));
    expectOk(queryBuffer(size, element.sizeL(), form.type(), form.channels, &bufferBytes));
    return {std::size_t(specBytes), std::size_t(bufferBytes), [=](void* spec, Lum8u*) {
                return init(size, element.bytes.data(), element.sizeL(), static_cast<LumiDilateErodeSpec*>(spec));
            }};
}

Laying laying(LumiMorphCompoundSpecL*, const Form& form, Choices&, LumiSize queried, const StructuringElement& element)
{
    const LumiSizeL size{queried.width, queried.height};
    Lum64s specBytes = -1, bufferBytes = -1;
    expectOk(lumiMorphGetSpecSize_L(size, element.sizeL(), form.type(), form.channels, &specBytes));
    expectOk(lumiMorphGetBufferSize_L(size, element.sizeL(), form.type(), form.channels, &bufferBytes));
    return {std::size_t(specBytes), std::size_t(bufferBytes), [=](void* spec, Lum8u*) {
                return lumiMorphInit_L(size, element.bytes.data(), element.sizeL(), form.type(), form.channels,
                                       static_cast<LumiMorphCompoundSpecL*>(spec));
            }};
}

// Of the single passes, which count the flags of the first stage.
bool heedsStageFlags(Work work, const Form& form)
{
    return form.isLong || (work == Work::Dilate && form.element == Element::U8 && form.channels == 1 && !form.isBits);
}

int chooseBorder(Choices& choices, Work work, const Form& form)
{
    const bool isStrict = work == Work::Gradient && !form.isLong;  // neither neutral nor stage flags
    if (choices.oneIn(10)) {
        if (isSinglePass(work) || isStrict)
            return lumBorderInMem;
        const int nothing[] = {0, 2, 4, 7, 15};
        const int low = choices.oneOf(nothing);
        return lumBorderInMem | low | (choices.oneIn(3) ? choices.between(0, 15) << 8 : 0);
    }
    int mode = lumBorderReplicate;
    switch (choices.between(0, 3)) {
        case 0:
            mode = form.isBits ? lumBorderReplicate : lumBorderMirror;
            break;
        case 1:
            mode = lumBorderConstant;
            break;
        case 2:
            mode = isStrict ? lumBorderConstant : lumBorderNeutral;
            break;
        default:
            break;
    }
    const int sides = choices.oneIn(2) ? choices.between(0, 15) << 4 : 0;
    const int stageSides = !isStrict && choices.oneIn(3) ? choices.between(0, 15) << 8 : 0;
    return mode | sides | stageSides;
}

int chooseWrongBorder(Choices& choices, Work work, const Form& form)
{
    std::vector<int> wrong = {0, 2, 4, 7, 15, 0x70, 0xE2, 0x1001, -1, INT32_MIN};
    if (form.isBits)
        wrong.insert(wrong.end(), {lumBorderMirror, 0xF3, 0x13});
    if (isSinglePass(work))
        wrong.insert(wrong.end(), {0xF2, 0xFF});
    if (work == Work::Gradient && !form.isLong)
        wrong.insert(wrong.end(), {lumBorderNeutral, 0x15, 0x101, 0xF2, 0x1F0});
    return wrong[std::size_t(choices.between(0, int(wrong.size()) - 1))];
}

// The pixels around the ROI that the call may read: what the flags promise, once or twice the element's radius.
Margins marginsOf(int border, Work work, const Form& form, const StructuringElement& element)
{
    if (element.copies())
        return {};
    const Margins radius{element.size.height / 2, element.size.height / 2, element.size.width / 2,
                         element.size.width / 2};
    const bool isTwice = form.isLong && !isSinglePass(work) && work != Work::Gradient;
    const bool heedsStage = isSinglePass(work) ? heedsStageFlags(work, form) : form.isLong || work != Work::Gradient;
    const Margins one = promisedMargins(border | (heedsStage ? border >> 4 & lumBorderInMem : 0), radius);
    if (!isTwice)
        return one;
    const Margins more = promisedMargins(border, radius);
    return {one.top + more.top, one.bottom + more.bottom, one.left + more.left, one.right + more.right};
}

// The status of the `_L` functions for a size or a stride above their own limit, which differs between the passes.
bool tellsLimitsApart(bool isDilation, const Form& form)
{
    if (form.isBits)
        return false;
    return isDilation ? form.channels == 1 : form.element == Element::U8 && form.channels < 4;
}

void addLimitViolations(Call& call, Work work, const Form& form)
{
    const auto add = [&](std::string name, LumStatus status, std::function<void(Arguments&)> apply) {
        call.violations.push_back({std::move(name), {status}, std::move(apply)});
    };
    const bool isSourceDilated = work != Work::Erode && work != Work::Open && work != Work::Tophat;
    const bool isDestinationDilated = work != Work::Erode && work != Work::Close && work != Work::Blackhat;
    const auto stepStatus = [&](bool isDilation) {
        return tellsLimitsApart(isDilation, form) ? lumErrStep : lumErrSizeTooLarge;
    };
    for (const Lum64s step : {Lum64s{0x80000000}, Lum64s{0x7fffffffffffff00}}) {
        const std::string text = std::to_string(step);
        add("source step " + text, stepStatus(isSourceDilated), [=](Arguments& a) { a.steps[0] = step; });
        if (call.images.size() == 2)
            add("destination step " + text, stepStatus(isDestinationDilated), [=](Arguments& a) { a.steps[1] = step; });
    }
    add("height 0x7fffffff", tellsLimitsApart(isSourceDilated, form) ? lumErrSize : lumErrSizeTooLarge,
        [](Arguments& a) { a.height = INT32_MAX; });
    for (const Lum64s size : {Lum64s{0x80000000}, Lum64s{INT64_MAX}}) {
        add("width " + std::to_string(size), lumErrSizeTooLarge, [=](Arguments& a) { a.width = size; });
        add("height " + std::to_string(size), lumErrSizeTooLarge, [=](Arguments& a) { a.height = size; });
    }
}

bool refusesInPlace(Work work, const Form& form)
{
    if (canWorkInPlace(work) || work == Work::Tophat || work == Work::Blackhat)
        return false;
    return form.isBits || form.element == Element::S16 || (work == Work::Erode && form.element == Element::U16);
}

// The bytes of a 1-bit image of which a row begins at a bit of 0 to 7, as an image of bytes.
ImageOperand bitOperand(Role role, int width, int firstBit, const Margins& margins = {})
{
    ImageOperand operand{role, Element::U8};
    const int lastByte = (firstBit + width - 1) / 8;
    operand.margins = margins;
    operand.margins.left = margins.left > firstBit ? (margins.left - firstBit + 7) / 8 : 0;
    operand.margins.right = (firstBit + width - 1 + margins.right) / 8 - lastByte;
    operand.extra.width = lastByte + 1 - width;
    operand.leastExtra = (width + 7) / 8 - width;  // whatever the offset
    operand.firstBit = firstBit;
    operand.bitCount = width;
    return operand;
}

enum Block
{
    spec,
    buffer,
    borderValue
};

// The bit offsets stand in kernelSize and anchor. `call.call` is left to the caller.
Call describe(Choices& choices, const std::string& name, Work work, const Form& form, bool takesValuePointer,
              const std::function<Laying(LumiSize, const StructuringElement&)>& lay)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    const StructuringElement element = chooseElement(choices, a.size());
    a.mask = element.sizeL();
    a.borderType = chooseBorder(choices, work, form);
    const Margins margins = marginsOf(a.borderType, work, form, element);
    const bool isInPlace = canWorkInPlace(work) && choices.oneIn(8);
    const int width = a.size().width;
    if (form.isBits) {
        a.kernelSize = choices.oneIn(4) ? choices.between(0, 70) : choices.between(0, 7);
        a.anchor = isInPlace ? a.kernelSize : choices.oneIn(4) ? choices.between(0, 70) : choices.between(0, 7);
        const Role role = isInPlace ? Role::Updated : choices.oneIn(2) ? Role::Read : Role::Mask;
        call.images = {bitOperand(role, width, a.kernelSize % 8, margins)};
        if (!isInPlace)
            call.images.push_back(bitOperand(Role::Updated, width, a.anchor % 8));
        for (const bool isSource : {true, false})
            call.violations.push_back({isSource ? "negative source offset" : "negative destination offset",
                                       {lumErrSize},
                                       [=](Arguments& b) { (isSource ? b.kernelSize : b.anchor) = -1; }});
    } else {
        call.images = {{isInPlace ? Role::Updated : Role::Read, form.element, form.channels, margins}};
        if (!isInPlace)
            call.images.push_back({Role::Written, form.element, form.channels});
    }

    const LumiSize queried{width + (choices.oneIn(2) ? choices.between(0, 9) : 0),
                           a.size().height + (choices.oneIn(2) ? choices.between(0, 9) : 0)};
    const Laying laid = lay(queried, element);
    const bool isConstant = (a.borderType & 15) == lumBorderConstant;
    const std::size_t elementBytes = form.element == Element::U8 ? 1 : form.element == Element::F32 ? 4 : 2;
    call.blocks = {{Role::Record, laid.specBytes},
                   {Role::Scratch, laid.bufferBytes},
                   {Role::Read, form.channels * elementBytes, form.element, !(takesValuePointer && isConstant)}};
    const int modes[] = {0, 1, 4, 5};
    const int mode = choices.oneIn(3) ? choices.oneOf(modes) : 0;
    call.prepare = [=](Arguments& b) {
        if (laid.init(b.blocks[spec], b.block<Lum8u>(buffer)) != lumOk)
            fail("Init failed");
        if (isSinglePass(work) || mode == 0)
            return;
        if ((form.isLong ? lumiMorphSetMode_L(mode, b.block<LumiMorphCompoundSpecL>(spec))
                         : lumiMorphSetMode(mode, b.block<LumiMorphCompoundSpec>(spec))) != lumOk)
            fail("the mode cannot be set");
    };

    const int wrong = chooseWrongBorder(choices, work, form);
    call.violations.push_back(
        {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
    if (takesValuePointer)
        call.violations.push_back({"constant border without value", {lumErrNullPointer}, [](Arguments& b) {
                                       b.borderType = lumBorderConstant;
                                       b.blocks[borderValue] = nullptr;
                                   }});
    if (form.isLong)
        addLimitViolations(call, work, form);
    return call;
}

template <typename T>
constexpr bool isPointer = std::is_pointer_v<T>;

template <typename T, typename BorderValue>
BorderValue valueOf(const Arguments& a, bool withoutValue)
{
    if constexpr (isPointer<BorderValue>)
        return withoutValue ? nullptr : a.block<T>(borderValue);
    else
        return *a.block<T>(borderValue);
}

// What a call without constant border may pass.
bool chooseWithoutValue(Choices& choices, const Call& call)
{
    return (call.arguments.borderType & 15) != lumBorderConstant && choices.oneIn(2);
}

template <typename T, typename Step, typename Size, typename BorderValue, typename Spec>
using Apply = LumStatus (*)(const T*, Step, T*, Step, Size, LumiBorderType, BorderValue, const Spec*, Lum8u*);

template <typename T, typename Step, typename Size, typename BorderValue, typename Spec, typename Steps>
Run run(Work work, Apply<T, Step, Size, BorderValue, Spec> f, Form form, Steps steps)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = describe(choices, name, work, form, isPointer<BorderValue>,
                             [&](LumiSize queried, const StructuringElement& element) {
                                 return laying(steps, form, choices, queried, element);
                             });
        const bool withoutValue = chooseWithoutValue(choices, call);
        const std::size_t dst = call.images.size() - 1;
        if (refusesInPlace(work, form))
            call.violations.push_back({"in place", {lumErrInPlace}, [](Arguments& a) { a.images[1] = a.images[0]; }});
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), Step(a.steps[0]), a.image<T>(dst), Step(a.steps[dst]), a.sizeAs<Size>(),
                     a.borderType, valueOf<T, BorderValue>(a, withoutValue), a.block<Spec>(spec),
                     a.block<Lum8u>(buffer));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename BorderValue, typename Spec>
Run apply(Work work, Apply<T, Lum32s, LumiSize, BorderValue, Spec> f, Protocol<Spec> protocol)
{
    return run(work, f, Form{elementOf<T>(), protocol.channels, false, false}, protocol);
}

template <typename T, typename Spec>
Run apply(Work work, Apply<T, Lum64s, LumiSizeL, const T*, Spec> f, int channels)
{
    return run(work, f, Form{elementOf<T>(), channels, false, true}, static_cast<Spec*>(nullptr));
}

template <typename Step, typename Size, typename BorderValue, typename Spec>
using ApplyBits = LumStatus (*)(const Lum8u*, Step, Lum32s, Lum8u*, Step, Lum32s, Size, LumiBorderType, BorderValue,
                                const Spec*, Lum8u*);

template <typename Step, typename Size, typename BorderValue, typename Spec, typename Steps>
Run runBits(Work work, ApplyBits<Step, Size, BorderValue, Spec> f, Form form, Steps steps)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = describe(choices, name, work, form, isPointer<BorderValue>,
                             [&](LumiSize queried, const StructuringElement& element) {
                                 return laying(steps, form, choices, queried, element);
                             });
        const bool withoutValue = chooseWithoutValue(choices, call);
        const std::size_t dst = call.images.size() - 1;
        // the caller's pointers stand whole bytes before the images
        const int srcBytes = call.arguments.kernelSize / 8, dstBytes = call.arguments.anchor / 8;
        if (refusesInPlace(work, form))
            call.violations.push_back({"in place", {lumErrInPlace}, [=](Arguments& a) {
                                           if (a.images[0])
                                               a.images[1] = a.image<Lum8u>(0) - srcBytes + dstBytes;
                                       }});
        call.call = [=](const Arguments& a) {
            const Lum8u* const pSrc = a.images[0] ? a.image<Lum8u>(0) - srcBytes : nullptr;
            Lum8u* const pDst = a.images[dst] ? a.image<Lum8u>(dst) - dstBytes : nullptr;
            return f(pSrc, Step(a.steps[0]), a.kernelSize, pDst, Step(a.steps[dst]), a.anchor, a.sizeAs<Size>(),
                     a.borderType, valueOf<Lum8u, BorderValue>(a, withoutValue), a.block<Spec>(spec),
                     a.block<Lum8u>(buffer));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Spec>
Run bits(Work work, ApplyBits<Lum32s, LumiSize, Lum8u, Spec> f, Protocol<Spec> protocol)
{
    return runBits(work, f, Form{Element::U8, 1, true, false}, protocol);
}

template <typename Spec>
Run bits(Work work, ApplyBits<Lum64s, LumiSizeL, const Lum8u*, Spec> f)
{
    return runBits(work, f, Form{Element::U8, 1, true, true}, static_cast<Spec*>(nullptr));
}

const Protocol<LumiMorphMaskRecord> pass_8u_C1{lumiMorphologyBorderGetSize_8u_C1R, lumiMorphologyBorderInit_8u_C1R};
const Protocol<LumiMorphMaskRecord> pass_8u_C3{lumiMorphologyBorderGetSize_8u_C3R, lumiMorphologyBorderInit_8u_C3R, 3};
const Protocol<LumiMorphMaskRecord> pass_8u_C4{lumiMorphologyBorderGetSize_8u_C4R, lumiMorphologyBorderInit_8u_C4R, 4};
const Protocol<LumiMorphMaskRecord> pass_16u_C1{lumiMorphologyBorderGetSize_16u_C1R, lumiMorphologyBorderInit_16u_C1R};
const Protocol<LumiMorphMaskRecord> pass_16s_C1{lumiMorphologyBorderGetSize_16s_C1R, lumiMorphologyBorderInit_16s_C1R};
const Protocol<LumiMorphMaskRecord> pass_32f_C1{lumiMorphologyBorderGetSize_32f_C1R, lumiMorphologyBorderInit_32f_C1R};
const Protocol<LumiMorphMaskRecord> pass_32f_C3{lumiMorphologyBorderGetSize_32f_C3R, lumiMorphologyBorderInit_32f_C3R,
                                                3};
const Protocol<LumiMorphMaskRecord> pass_32f_C4{lumiMorphologyBorderGetSize_32f_C4R, lumiMorphologyBorderInit_32f_C4R,
                                                4};
const Protocol<LumiMorphBitRecord> pass_1u_C1{lumiMorphologyBorderGetSize_1u_C1R, lumiMorphologyBorderInit_1u_C1R};

const Protocol<LumiMorphCompoundSpec> compound_8u_C1{lumiMorphAdvGetSize_8u_C1R, lumiMorphAdvInit_8u_C1R};
const Protocol<LumiMorphCompoundSpec> compound_8u_C3{lumiMorphAdvGetSize_8u_C3R, lumiMorphAdvInit_8u_C3R, 3};
const Protocol<LumiMorphCompoundSpec> compound_8u_C4{lumiMorphAdvGetSize_8u_C4R, lumiMorphAdvInit_8u_C4R, 4};
const Protocol<LumiMorphCompoundSpec> compound_16u_C1{lumiMorphAdvGetSize_16u_C1R, lumiMorphAdvInit_16u_C1R};
const Protocol<LumiMorphCompoundSpec> compound_16s_C1{lumiMorphAdvGetSize_16s_C1R, lumiMorphAdvInit_16s_C1R};
const Protocol<LumiMorphCompoundSpec> compound_32f_C1{lumiMorphAdvGetSize_32f_C1R, lumiMorphAdvInit_32f_C1R};
const Protocol<LumiMorphCompoundSpec> compound_32f_C3{lumiMorphAdvGetSize_32f_C3R, lumiMorphAdvInit_32f_C3R, 3};
const Protocol<LumiMorphCompoundSpec> compound_32f_C4{lumiMorphAdvGetSize_32f_C4R, lumiMorphAdvInit_32f_C4R, 4};
const Protocol<LumiMorphCompoundSpec> compound_1u_C1{lumiMorphAdvGetSize_1u_C1R, lumiMorphAdvInit_1u_C1R};

const Targets dilations{{
    {"lumiDilateBorder_8u_C1R", apply(Work::Dilate, lumiDilateBorder_8u_C1R, pass_8u_C1)},
    {"lumiDilateBorder_8u_C3R", apply(Work::Dilate, lumiDilateBorder_8u_C3R, pass_8u_C3)},
    {"lumiDilateBorder_8u_C4R", apply(Work::Dilate, lumiDilateBorder_8u_C4R, pass_8u_C4)},
    {"lumiDilateBorder_16u_C1R", apply(Work::Dilate, lumiDilateBorder_16u_C1R, pass_16u_C1)},
    {"lumiDilateBorder_16s_C1R", apply(Work::Dilate, lumiDilateBorder_16s_C1R, pass_16s_C1)},
    {"lumiDilateBorder_32f_C1R", apply(Work::Dilate, lumiDilateBorder_32f_C1R, pass_32f_C1)},
    {"lumiDilateBorder_32f_C3R", apply(Work::Dilate, lumiDilateBorder_32f_C3R, pass_32f_C3)},
    {"lumiDilateBorder_32f_C4R", apply(Work::Dilate, lumiDilateBorder_32f_C4R, pass_32f_C4)},
    {"lumiDilateBorder_1u_C1R", bits(Work::Dilate, lumiDilateBorder_1u_C1R, pass_1u_C1)},
    {"lumiDilate_8u_C1R_L", apply(Work::Dilate, lumiDilate_8u_C1R_L, 1)},
    {"lumiDilate_8u_C3R_L", apply(Work::Dilate, lumiDilate_8u_C3R_L, 3)},
    {"lumiDilate_8u_C4R_L", apply(Work::Dilate, lumiDilate_8u_C4R_L, 4)},
    {"lumiDilate_16u_C1R_L", apply(Work::Dilate, lumiDilate_16u_C1R_L, 1)},
    {"lumiDilate_16s_C1R_L", apply(Work::Dilate, lumiDilate_16s_C1R_L, 1)},
    {"lumiDilate_32f_C1R_L", apply(Work::Dilate, lumiDilate_32f_C1R_L, 1)},
    {"lumiDilate_32f_C3R_L", apply(Work::Dilate, lumiDilate_32f_C3R_L, 3)},
    {"lumiDilate_32f_C4R_L", apply(Work::Dilate, lumiDilate_32f_C4R_L, 4)},
    {"lumiDilate_1u_C1R_L", bits(Work::Dilate, lumiDilate_1u_C1R_L)},
}};

const Targets erosions{{
    {"lumiErodeBorder_8u_C1R", apply(Work::Erode, lumiErodeBorder_8u_C1R, pass_8u_C1)},
    {"lumiErodeBorder_8u_C3R", apply(Work::Erode, lumiErodeBorder_8u_C3R, pass_8u_C3)},
    {"lumiErodeBorder_8u_C4R", apply(Work::Erode, lumiErodeBorder_8u_C4R, pass_8u_C4)},
    {"lumiErodeBorder_16u_C1R", apply(Work::Erode, lumiErodeBorder_16u_C1R, pass_16u_C1)},
    {"lumiErodeBorder_16s_C1R", apply(Work::Erode, lumiErodeBorder_16s_C1R, pass_16s_C1)},
    {"lumiErodeBorder_32f_C1R", apply(Work::Erode, lumiErodeBorder_32f_C1R, pass_32f_C1)},
    {"lumiErodeBorder_32f_C3R", apply(Work::Erode, lumiErodeBorder_32f_C3R, pass_32f_C3)},
    {"lumiErodeBorder_32f_C4R", apply(Work::Erode, lumiErodeBorder_32f_C4R, pass_32f_C4)},
    {"lumiErodeBorder_1u_C1R", bits(Work::Erode, lumiErodeBorder_1u_C1R, pass_1u_C1)},
    {"lumiErode_8u_C1R_L", apply(Work::Erode, lumiErode_8u_C1R_L, 1)},
    {"lumiErode_8u_C3R_L", apply(Work::Erode, lumiErode_8u_C3R_L, 3)},
    {"lumiErode_8u_C4R_L", apply(Work::Erode, lumiErode_8u_C4R_L, 4)},
    {"lumiErode_16u_C1R_L", apply(Work::Erode, lumiErode_16u_C1R_L, 1)},
    {"lumiErode_16s_C1R_L", apply(Work::Erode, lumiErode_16s_C1R_L, 1)},
    {"lumiErode_32f_C1R_L", apply(Work::Erode, lumiErode_32f_C1R_L, 1)},
    {"lumiErode_32f_C3R_L", apply(Work::Erode, lumiErode_32f_C3R_L, 3)},
    {"lumiErode_32f_C4R_L", apply(Work::Erode, lumiErode_32f_C4R_L, 4)},
    {"lumiErode_1u_C1R_L", bits(Work::Erode, lumiErode_1u_C1R_L)},
}};

const Targets openings{{
    {"lumiMorphOpenBorder_8u_C1R", apply(Work::Open, lumiMorphOpenBorder_8u_C1R, compound_8u_C1)},
    {"lumiMorphOpenBorder_8u_C3R", apply(Work::Open, lumiMorphOpenBorder_8u_C3R, compound_8u_C3)},
    {"lumiMorphOpenBorder_8u_C4R", apply(Work::Open, lumiMorphOpenBorder_8u_C4R, compound_8u_C4)},
    {"lumiMorphOpenBorder_16u_C1R", apply(Work::Open, lumiMorphOpenBorder_16u_C1R, compound_16u_C1)},
    {"lumiMorphOpenBorder_16s_C1R", apply(Work::Open, lumiMorphOpenBorder_16s_C1R, compound_16s_C1)},
    {"lumiMorphOpenBorder_32f_C1R", apply(Work::Open, lumiMorphOpenBorder_32f_C1R, compound_32f_C1)},
    {"lumiMorphOpenBorder_32f_C3R", apply(Work::Open, lumiMorphOpenBorder_32f_C3R, compound_32f_C3)},
    {"lumiMorphOpenBorder_32f_C4R", apply(Work::Open, lumiMorphOpenBorder_32f_C4R, compound_32f_C4)},
    {"lumiMorphOpenBorder_1u_C1R", bits(Work::Open, lumiMorphOpenBorder_1u_C1R, compound_1u_C1)},
    {"lumiMorphOpen_8u_C1R_L", apply(Work::Open, lumiMorphOpen_8u_C1R_L, 1)},
    {"lumiMorphOpen_8u_C3R_L", apply(Work::Open, lumiMorphOpen_8u_C3R_L, 3)},
    {"lumiMorphOpen_8u_C4R_L", apply(Work::Open, lumiMorphOpen_8u_C4R_L, 4)},
    {"lumiMorphOpen_16u_C1R_L", apply(Work::Open, lumiMorphOpen_16u_C1R_L, 1)},
    {"lumiMorphOpen_16s_C1R_L", apply(Work::Open, lumiMorphOpen_16s_C1R_L, 1)},
    {"lumiMorphOpen_32f_C1R_L", apply(Work::Open, lumiMorphOpen_32f_C1R_L, 1)},
    {"lumiMorphOpen_32f_C3R_L", apply(Work::Open, lumiMorphOpen_32f_C3R_L, 3)},
    {"lumiMorphOpen_32f_C4R_L", apply(Work::Open, lumiMorphOpen_32f_C4R_L, 4)},
    {"lumiMorphOpen_1u_C1R_L", bits(Work::Open, lumiMorphOpen_1u_C1R_L)},
}};

const Targets closings{{
    {"lumiMorphCloseBorder_8u_C1R", apply(Work::Close, lumiMorphCloseBorder_8u_C1R, compound_8u_C1)},
    {"lumiMorphCloseBorder_8u_C3R", apply(Work::Close, lumiMorphCloseBorder_8u_C3R, compound_8u_C3)},
    {"lumiMorphCloseBorder_8u_C4R", apply(Work::Close, lumiMorphCloseBorder_8u_C4R, compound_8u_C4)},
    {"lumiMorphCloseBorder_16u_C1R", apply(Work::Close, lumiMorphCloseBorder_16u_C1R, compound_16u_C1)},
    {"lumiMorphCloseBorder_16s_C1R", apply(Work::Close, lumiMorphCloseBorder_16s_C1R, compound_16s_C1)},
    {"lumiMorphCloseBorder_32f_C1R", apply(Work::Close, lumiMorphCloseBorder_32f_C1R, compound_32f_C1)},
    {"lumiMorphCloseBorder_32f_C3R", apply(Work::Close, lumiMorphCloseBorder_32f_C3R, compound_32f_C3)},
    {"lumiMorphCloseBorder_32f_C4R", apply(Work::Close, lumiMorphCloseBorder_32f_C4R, compound_32f_C4)},
    {"lumiMorphCloseBorder_1u_C1R", bits(Work::Close, lumiMorphCloseBorder_1u_C1R, compound_1u_C1)},
    {"lumiMorphClose_8u_C1R_L", apply(Work::Close, lumiMorphClose_8u_C1R_L, 1)},
    {"lumiMorphClose_8u_C3R_L", apply(Work::Close, lumiMorphClose_8u_C3R_L, 3)},
    {"lumiMorphClose_8u_C4R_L", apply(Work::Close, lumiMorphClose_8u_C4R_L, 4)},
    {"lumiMorphClose_16u_C1R_L", apply(Work::Close, lumiMorphClose_16u_C1R_L, 1)},
    {"lumiMorphClose_16s_C1R_L", apply(Work::Close, lumiMorphClose_16s_C1R_L, 1)},
    {"lumiMorphClose_32f_C1R_L", apply(Work::Close, lumiMorphClose_32f_C1R_L, 1)},
    {"lumiMorphClose_32f_C3R_L", apply(Work::Close, lumiMorphClose_32f_C3R_L, 3)},
    {"lumiMorphClose_32f_C4R_L", apply(Work::Close, lumiMorphClose_32f_C4R_L, 4)},
    {"lumiMorphClose_1u_C1R_L", bits(Work::Close, lumiMorphClose_1u_C1R_L)},
}};

const Targets tophats{{
    {"lumiMorphTophatBorder_8u_C1R", apply(Work::Tophat, lumiMorphTophatBorder_8u_C1R, compound_8u_C1)},
    {"lumiMorphTophatBorder_8u_C3R", apply(Work::Tophat, lumiMorphTophatBorder_8u_C3R, compound_8u_C3)},
    {"lumiMorphTophatBorder_8u_C4R", apply(Work::Tophat, lumiMorphTophatBorder_8u_C4R, compound_8u_C4)},
    {"lumiMorphTophatBorder_16u_C1R", apply(Work::Tophat, lumiMorphTophatBorder_16u_C1R, compound_16u_C1)},
    {"lumiMorphTophatBorder_16s_C1R", apply(Work::Tophat, lumiMorphTophatBorder_16s_C1R, compound_16s_C1)},
    {"lumiMorphTophatBorder_32f_C1R", apply(Work::Tophat, lumiMorphTophatBorder_32f_C1R, compound_32f_C1)},
    {"lumiMorphTophatBorder_32f_C3R", apply(Work::Tophat, lumiMorphTophatBorder_32f_C3R, compound_32f_C3)},
    {"lumiMorphTophatBorder_32f_C4R", apply(Work::Tophat, lumiMorphTophatBorder_32f_C4R, compound_32f_C4)},
    {"lumiMorphTophatBorder_1u_C1R", bits(Work::Tophat, lumiMorphTophatBorder_1u_C1R, compound_1u_C1)},
    {"lumiMorphTophat_8u_C1R_L", apply(Work::Tophat, lumiMorphTophat_8u_C1R_L, 1)},
    {"lumiMorphTophat_8u_C3R_L", apply(Work::Tophat, lumiMorphTophat_8u_C3R_L, 3)},
    {"lumiMorphTophat_8u_C4R_L", apply(Work::Tophat, lumiMorphTophat_8u_C4R_L, 4)},
    {"lumiMorphTophat_16u_C1R_L", apply(Work::Tophat, lumiMorphTophat_16u_C1R_L, 1)},
    {"lumiMorphTophat_16s_C1R_L", apply(Work::Tophat, lumiMorphTophat_16s_C1R_L, 1)},
    {"lumiMorphTophat_32f_C1R_L", apply(Work::Tophat, lumiMorphTophat_32f_C1R_L, 1)},
    {"lumiMorphTophat_32f_C3R_L", apply(Work::Tophat, lumiMorphTophat_32f_C3R_L, 3)},
    {"lumiMorphTophat_32f_C4R_L", apply(Work::Tophat, lumiMorphTophat_32f_C4R_L, 4)},
    {"lumiMorphTophat_1u_C1R_L", bits(Work::Tophat, lumiMorphTophat_1u_C1R_L)},
}};

const Targets blackhats{{
    {"lumiMorphBlackhatBorder_8u_C1R", apply(Work::Blackhat, lumiMorphBlackhatBorder_8u_C1R, compound_8u_C1)},
    {"lumiMorphBlackhatBorder_8u_C3R", apply(Work::Blackhat, lumiMorphBlackhatBorder_8u_C3R, compound_8u_C3)},
    {"lumiMorphBlackhatBorder_8u_C4R", apply(Work::Blackhat, lumiMorphBlackhatBorder_8u_C4R, compound_8u_C4)},
    {"lumiMorphBlackhatBorder_16u_C1R", apply(Work::Blackhat, lumiMorphBlackhatBorder_16u_C1R, compound_16u_C1)},
    {"lumiMorphBlackhatBorder_16s_C1R", apply(Work::Blackhat, lumiMorphBlackhatBorder_16s_C1R, compound_16s_C1)},
    {"lumiMorphBlackhatBorder_32f_C1R", apply(Work::Blackhat, lumiMorphBlackhatBorder_32f_C1R, compound_32f_C1)},
    {"lumiMorphBlackhatBorder_32f_C3R", apply(Work::Blackhat, lumiMorphBlackhatBorder_32f_C3R, compound_32f_C3)},
    {"lumiMorphBlackhatBorder_32f_C4R", apply(Work::Blackhat, lumiMorphBlackhatBorder_32f_C4R, compound_32f_C4)},
    {"lumiMorphBlackhatBorder_1u_C1R", bits(Work::Blackhat, lumiMorphBlackhatBorder_1u_C1R, compound_1u_C1)},
    {"lumiMorphBlackhat_8u_C1R_L", apply(Work::Blackhat, lumiMorphBlackhat_8u_C1R_L, 1)},
    {"lumiMorphBlackhat_8u_C3R_L", apply(Work::Blackhat, lumiMorphBlackhat_8u_C3R_L, 3)},
    {"lumiMorphBlackhat_8u_C4R_L", apply(Work::Blackhat, lumiMorphBlackhat_8u_C4R_L, 4)},
    {"lumiMorphBlackhat_16u_C1R_L", apply(Work::Blackhat, lumiMorphBlackhat_16u_C1R_L, 1)},
    {"lumiMorphBlackhat_16s_C1R_L", apply(Work::Blackhat, lumiMorphBlackhat_16s_C1R_L, 1)},
    {"lumiMorphBlackhat_32f_C1R_L", apply(Work::Blackhat, lumiMorphBlackhat_32f_C1R_L, 1)},
    {"lumiMorphBlackhat_32f_C3R_L", apply(Work::Blackhat, lumiMorphBlackhat_32f_C3R_L, 3)},
    {"lumiMorphBlackhat_32f_C4R_L", apply(Work::Blackhat, lumiMorphBlackhat_32f_C4R_L, 4)},
    {"lumiMorphBlackhat_1u_C1R_L", bits(Work::Blackhat, lumiMorphBlackhat_1u_C1R_L)},
}};

const Targets gradients{{
    {"lumiMorphGradientBorder_8u_C1R", apply(Work::Gradient, lumiMorphGradientBorder_8u_C1R, compound_8u_C1)},
    {"lumiMorphGradientBorder_8u_C3R", apply(Work::Gradient, lumiMorphGradientBorder_8u_C3R, compound_8u_C3)},
    {"lumiMorphGradientBorder_8u_C4R", apply(Work::Gradient, lumiMorphGradientBorder_8u_C4R, compound_8u_C4)},
    {"lumiMorphGradientBorder_16u_C1R", apply(Work::Gradient, lumiMorphGradientBorder_16u_C1R, compound_16u_C1)},
    {"lumiMorphGradientBorder_16s_C1R", apply(Work::Gradient, lumiMorphGradientBorder_16s_C1R, compound_16s_C1)},
    {"lumiMorphGradientBorder_32f_C1R", apply(Work::Gradient, lumiMorphGradientBorder_32f_C1R, compound_32f_C1)},
    {"lumiMorphGradientBorder_32f_C3R", apply(Work::Gradient, lumiMorphGradientBorder_32f_C3R, compound_32f_C3)},
    {"lumiMorphGradientBorder_32f_C4R", apply(Work::Gradient, lumiMorphGradientBorder_32f_C4R, compound_32f_C4)},
    {"lumiMorphGradientBorder_1u_C1R", bits(Work::Gradient, lumiMorphGradientBorder_1u_C1R, compound_1u_C1)},
    {"lumiMorphGradient_8u_C1R_L", apply(Work::Gradient, lumiMorphGradient_8u_C1R_L, 1)},
    {"lumiMorphGradient_8u_C3R_L", apply(Work::Gradient, lumiMorphGradient_8u_C3R_L, 3)},
    {"lumiMorphGradient_8u_C4R_L", apply(Work::Gradient, lumiMorphGradient_8u_C4R_L, 4)},
    {"lumiMorphGradient_16u_C1R_L", apply(Work::Gradient, lumiMorphGradient_16u_C1R_L, 1)},
    {"lumiMorphGradient_16s_C1R_L", apply(Work::Gradient, lumiMorphGradient_16s_C1R_L, 1)},
    {"lumiMorphGradient_32f_C1R_L", apply(Work::Gradient, lumiMorphGradient_32f_C1R_L, 1)},
    {"lumiMorphGradient_32f_C3R_L", apply(Work::Gradient, lumiMorphGradient_32f_C3R_L, 3)},
    {"lumiMorphGradient_32f_C4R_L", apply(Work::Gradient, lumiMorphGradient_32f_C4R_L, 4)},
    {"lumiMorphGradient_1u_C1R_L", bits(Work::Gradient, lumiMorphGradient_1u_C1R_L)},
}};

}  // namespace
