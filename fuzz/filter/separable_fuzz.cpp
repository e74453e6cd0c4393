// Fuzzes the separable filter: size queries, the Inits, and all ways to apply it.
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

// Numbers of a call: the kernels' width stands in kernelSize, their height in anchor.
LumiSize kernelSizeOf(const Arguments& a)
{
    return {a.kernelSize, a.anchor};
}

int chooseLength(Choices& choices, bool isLargeImage)
{
    const int classes[] = {1, 3, 5};
    if (choices.oneIn(2))
        return choices.oneOf(classes);
    return choices.between(1, isLargeImage ? 6 : choices.oneIn(10) ? 60 : 12);
}

void chooseKernelSize(Choices& choices, Arguments& a)
{
    const bool isLargeImage = a.width > 1000;
    a.kernelSize = chooseLength(choices, isLargeImage);
    a.anchor = choices.oneIn(2) ? a.kernelSize : chooseLength(choices, isLargeImage);
}

void addKernelSizeViolations(Call& call)
{
    for (const int wrong : {0, -1, INT32_MIN}) {
        addViolation(call, "kernel width " + std::to_string(wrong), lumErrSize,
                     [=](Arguments& a) { a.kernelSize = wrong; });
        addViolation(call, "kernel height " + std::to_string(wrong), lumErrSize,
                     [=](Arguments& a) { a.anchor = wrong; });
    }
}

void addChannelViolation(Choices& choices, Call& call)
{
    const int counts[] = {0, 2, 5, -1, INT32_MIN};
    const int wrong = choices.oneOf(counts);
    addViolation(call, "channels " + std::to_string(wrong), lumErrValue, [=](Arguments& a) { a.channels = wrong; });
}

int chooseChannels(Choices& choices)
{
    const int counts[] = {1, 3, 4};
    return choices.oneOf(counts);
}

template <typename K>
constexpr LumDataType kernelType = std::is_same_v<K, Lum16s> ? lumType16s : lumType32f;

// The kernels' values; of a float's a few are no ordinary numbers.
template <typename K>
std::vector<K> chooseKernel(Choices& choices, int length)
{
    lumcv::test::Random random(choices.seed());
    const bool isWild = choices.oneIn(8);
    std::vector<K> kernel;
    for (int i = 0; i < length; ++i) {
        if (isWild)
            kernel.push_back(random.value<K>(lumcv::test::Values::NonFinite));
        else
            kernel.push_back(K(K(random.between(-40, 60)) / (std::is_same_v<K, Lum32f> ? 64 : 1)));
    }
    return kernel;
}

template <typename K>
LumStatus init(const K* x, const K* y, const Arguments& a, bool isLong, LumDataType type, void* block)
{
    auto* const spec = static_cast<LumFilterSeparableSpec*>(block);
    const LumiSize size = kernelSizeOf(a);
    if constexpr (std::is_same_v<K, Lum16s>) {
        const auto f = isLong ? lumiFilterSeparableInit_16s_L : lumiFilterSeparableInit_16s;
        return f(x, y, size, a.divisor, int(a.parameter), type, a.channels, spec);
    } else {
        const auto f = isLong ? lumiFilterSeparableInit_32f_L : lumiFilterSeparableInit_32f;
        return f(x, y, size, type, a.channels, spec);
    }
}

std::size_t specBytes(Choices& choices, const Arguments& a, LumDataType type)
{
    if (choices.oneIn(2)) {
        Lum32s bytes = -1;
        if (lumiFilterSeparableGetSpecSize(kernelSizeOf(a), type, a.channels, &bytes) != lumOk || bytes < 0)
            fail("the query of the record's size failed");
        return std::size_t(bytes);
    }
    Lum64s bytes = -1;
    if (lumiFilterSeparableGetSpecSize_L(kernelSizeOf(a), type, a.channels, &bytes) != lumOk || bytes < 0)
        fail("the query of the record's size failed");
    return std::size_t(bytes);
}

std::size_t bufferBytes(Choices& choices, const Arguments& a, LumDataType type, LumDataType kernel)
{
    // the size of a larger ROI will do as well
    const bool isExact = choices.oneIn(2);
    const LumiSize size{a.size().width + (isExact ? 0 : 7), a.size().height + (isExact ? 0 : 3)};
    if (choices.oneIn(2)) {
        Lum32s bytes = -1;
        if (lumiFilterSeparableGetBufferSize(size, kernelSizeOf(a), type, kernel, a.channels, &bytes) != lumOk ||
            bytes < 0)
            fail("the query of the scratch's size failed");
        return std::size_t(bytes);
    }
    Lum64s bytes = -1;
    if (lumiFilterSeparableGetBufferSize_L({size.width, size.height}, kernelSizeOf(a), type, kernel, a.channels,
                                           &bytes) != lumOk ||
        bytes < 0)
        fail("the query of the scratch's size failed");
    return std::size_t(bytes);
}

enum Block
{
    spec,
    buffer,
    borderValue
};

template <typename S, typename D, typename K, typename Step, typename Size, typename BorderValue>
void tryApply(LumStatus (*f)(const S*, Step, D*, Step, Size, LumiBorderType, BorderValue, const LumFilterSeparableSpec*,
                             Lum8u*),
              int channels, Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    chooseKernelSize(choices, a);
    a.channels = channels;
    a.divisor = chooseDivisor(choices);
    a.borderType = chooseBorder(choices);
    const bool isConstant = (a.borderType & 15) == lumBorderConstant;
    const auto x = chooseKernel<K>(choices, a.kernelSize);
    const auto y = chooseKernel<K>(choices, a.anchor);

    const int left = (a.kernelSize - 1) / 2, top = (a.anchor - 1) / 2;
    const lumcv::test::Margins reach{top, a.anchor - 1 - top, left, a.kernelSize - 1 - left};
    call.images = {{Role::Read, elementOf<S>(), channels, lumcv::test::promisedMargins(a.borderType, reach)},
                   {Role::Written, elementOf<D>(), channels}};
    const std::size_t recordBytes = specBytes(choices, a, kernelType<K>);
    const std::size_t scratchBytes = bufferBytes(choices, a, typeCode(elementOf<S>()), kernelType<K>);
    constexpr bool isPointer = std::is_pointer_v<BorderValue>;
    call.blocks = {{Role::Record, recordBytes},
                   {Role::Scratch, scratchBytes},
                   {Role::Read, channels * sizeof(S), elementOf<S>(), !(isPointer && isConstant)}};
    const bool isLongInit = choices.oneIn(2);
    call.prepare = [=](Arguments& b) {
        if (init(x.data(), y.data(), b, isLongInit, typeCode(elementOf<S>()), b.blocks[spec]) != lumOk)
            fail("Init failed");
    };

    const int wrong = chooseWrongBorder(choices);
    // whatever has the mode for constants asks for a border value first
    call.violations.push_back(
        {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
    addViolation(call, "a record that no Init has seen", lumErrNullPointer, [](Arguments& b) {
        static Lum8u zeros[1024] = {};
        if (b.blocks[spec])
            b.blocks[spec] = zeros;
    });
    if constexpr (std::is_same_v<Step, Lum64s>) {
        call.longStep = true;
        for (const bool isWidth : {true, false})
            addViolation(call, isWidth ? "width above 31 bits" : "height above 31 bits", lumErrSizeTooLarge,
                         [=](Arguments& b) { (isWidth ? b.width : b.height) = 0x80000000; });
    }
    const bool withoutValue = isPointer && !isConstant && choices.oneIn(2);
    call.call = [=](const Arguments& b) {
        const S* const values = withoutValue ? nullptr : b.block<S>(borderValue);
        BorderValue value;
        if constexpr (isPointer)
            value = values;
        else
            value = *values;
        return f(b.image<S>(0), Step(b.steps[0]), b.image<D>(1), Step(b.steps[1]), b.sizeAs<Size>(), b.borderType,
                 value, b.block<LumFilterSeparableSpec>(spec), b.block<Lum8u>(buffer));
    };
    tryCall(choices, std::move(call));
}

template <typename S, typename D, typename Step, typename Size, typename BorderValue>
Run apply(LumStatus (*f)(const S*, Step, D*, Step, Size, LumiBorderType, BorderValue, const LumFilterSeparableSpec*,
                         Lum8u*),
          int channels)
{
    return [=](Choices& choices, const std::string& name) {
        constexpr bool takesWords = elementOf<S>() == Element::U8 || elementOf<S>() == Element::S16;
        constexpr bool takesFloats = elementOf<S>() != Element::S16;
        const bool isOfWords = takesWords && (!takesFloats || choices.oneIn(2));
        if constexpr (takesWords) {
            if (isOfWords)
                return tryApply<S, D, Lum16s>(f, channels, choices, name);
        }
        if constexpr (takesFloats)
            tryApply<S, D, Lum32f>(f, channels, choices, name);
    };
}

// Queries of the record have no ROI.
template <typename Result>
Run querySpec(LumStatus (*f)(LumiSize, LumDataType, Lum32s, Result*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call;
        call.function = name;
        call.ignoresSize = true;
        Arguments& a = call.arguments;
        chooseKernelSize(choices, a);
        a.channels = chooseChannels(choices);
        a.dataType = choices.oneIn(2) ? lumType16s : lumType32f;
        addKernelSizeViolations(call);
        addChannelViolation(choices, call);
        const int types[] = {0, lumType8u, lumType16u, lumType64f, -1, INT32_MAX};
        const int wrong = choices.oneOf(types);
        addViolation(call, "type " + std::to_string(wrong), lumErrDataType, [=](Arguments& b) { b.dataType = wrong; });
        if (sizeof(Result) == 4)
            addViolation(call, "long kernels", lumErrSizeTooLarge, [](Arguments& b) { b.kernelSize = INT32_MAX - 8; });
        call.blocks = {{Role::Written, sizeof(Result), numberElement<Result>}};
        call.call = [=](const Arguments& b) { return f(kernelSizeOf(b), b.dataType, b.channels, b.block<Result>(0)); };
        tryCall(choices, std::move(call));
    };
}

template <typename Size, typename Result>
Run queryBuffer(LumStatus (*f)(Size, LumiSize, LumDataType, LumDataType, Lum32s, Result*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        chooseKernelSize(choices, a);
        a.channels = chooseChannels(choices);
        const int types[] = {lumType8u, lumType16u, lumType16s, lumType32f};
        a.dataType = choices.oneOf(types);
        a.divisor = choices.oneIn(2) ? lumType16s : lumType32f;  // the type of the kernels
        addKernelSizeViolations(call);
        addChannelViolation(choices, call);
        const int wrongTypes[] = {0, 2, lumType64f, -1, INT32_MAX};
        const int wrong = choices.oneOf(wrongTypes);
        addViolation(call, "type " + std::to_string(wrong), lumErrDataType, [=](Arguments& b) { b.dataType = wrong; });
        addViolation(call, "kernel type " + std::to_string(wrong), lumErrDataType,
                     [=](Arguments& b) { b.divisor = wrong; });
        addViolation(call, "kernel type 8u", lumErrDataType, [=](Arguments& b) { b.divisor = lumType8u; });
        if constexpr (std::is_same_v<Size, LumiSize>) {
            addViolation(call, "a wide image", lumErrSizeTooLarge, [](Arguments& b) { b.width = INT32_MAX; });
        } else {
            addViolation(call, "a width above 31 bits", lumErrSizeTooLarge, [](Arguments& b) { b.width = 0x80000000; });
            addViolation(call, "a height above 31 bits", lumErrSizeTooLarge,
                         [](Arguments& b) { b.height = INT64_MAX; });
        }
        call.blocks = {{Role::Written, sizeof(Result), numberElement<Result>}};
        call.call = [=](const Arguments& b) {
            return f(b.sizeAs<Size>(), kernelSizeOf(b), b.dataType, b.divisor, b.channels, b.block<Result>(0));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename K>
void tryInit(Choices& choices, const std::string& name, bool isLong)
{
    Call call;
    call.function = name;
    call.ignoresSize = true;
    Arguments& a = call.arguments;
    chooseKernelSize(choices, a);
    a.channels = chooseChannels(choices);
    a.divisor = chooseDivisor(choices);
    a.parameter = Lum32f(choices.between(-100, 100));  // the scale factor
    const int typesOfWords[] = {lumType8u, lumType16s};
    const int typesOfFloats[] = {lumType8u, lumType16u, lumType32f};
    constexpr bool isOfWords = std::is_same_v<K, Lum16s>;
    a.dataType = isOfWords ? choices.oneOf(typesOfWords) : choices.oneOf(typesOfFloats);
    addKernelSizeViolations(call);
    addChannelViolation(choices, call);
    const int types[] = {0, isOfWords ? lumType16u : lumType16s, lumType64f, -1, INT32_MIN};
    const int wrong = choices.oneOf(types);
    addViolation(call, "type " + std::to_string(wrong), lumErrDataType, [=](Arguments& b) { b.dataType = wrong; });
    if (isOfWords)
        addViolation(call, "divisor 0", lumErrDivisor, [](Arguments& b) { b.divisor = 0; });
    call.blocks = {{Role::Read, a.kernelSize * sizeof(K), elementOf<K>()},
                   {Role::Read, a.anchor * sizeof(K), elementOf<K>()},
                   {Role::Laid, specBytes(choices, a, kernelType<K>)}};
    call.call = [=](const Arguments& b) {
        return init(b.block<K>(0), b.block<K>(1), b, isLong, b.dataType, b.blocks[2]);
    };
    tryCall(choices, std::move(call));
}

template <typename K>
Run init(bool isLong)
{
    return [=](Choices& choices, const std::string& name) { tryInit<K>(choices, name, isLong); };
}

const Targets preparations{{
    {"lumiFilterSeparableGetSpecSize", querySpec(lumiFilterSeparableGetSpecSize)},
    {"lumiFilterSeparableGetSpecSize_L", querySpec(lumiFilterSeparableGetSpecSize_L)},
    {"lumiFilterSeparableGetBufferSize", queryBuffer(lumiFilterSeparableGetBufferSize)},
    {"lumiFilterSeparableGetBufferSize_L", queryBuffer(lumiFilterSeparableGetBufferSize_L)},
    {"lumiFilterSeparableInit_16s", init<Lum16s>(false)},
    {"lumiFilterSeparableInit_16s_L", init<Lum16s>(true)},
    {"lumiFilterSeparableInit_32f", init<Lum32f>(false)},
    {"lumiFilterSeparableInit_32f_L", init<Lum32f>(true)},
}};

const Targets applications{{
    {"lumiFilterSeparable_8u_C1R", apply(lumiFilterSeparable_8u_C1R, 1)},
    {"lumiFilterSeparable_8u_C3R", apply(lumiFilterSeparable_8u_C3R, 3)},
    {"lumiFilterSeparable_8u_C4R", apply(lumiFilterSeparable_8u_C4R, 4)},
    {"lumiFilterSeparable_8u16s_C1R", apply(lumiFilterSeparable_8u16s_C1R, 1)},
    {"lumiFilterSeparable_8u16s_C3R", apply(lumiFilterSeparable_8u16s_C3R, 3)},
    {"lumiFilterSeparable_8u16s_C4R", apply(lumiFilterSeparable_8u16s_C4R, 4)},
    {"lumiFilterSeparable_16s_C1R", apply(lumiFilterSeparable_16s_C1R, 1)},
    {"lumiFilterSeparable_16s_C3R", apply(lumiFilterSeparable_16s_C3R, 3)},
    {"lumiFilterSeparable_16s_C4R", apply(lumiFilterSeparable_16s_C4R, 4)},
    {"lumiFilterSeparable_16u_C1R", apply(lumiFilterSeparable_16u_C1R, 1)},
    {"lumiFilterSeparable_16u_C3R", apply(lumiFilterSeparable_16u_C3R, 3)},
    {"lumiFilterSeparable_16u_C4R", apply(lumiFilterSeparable_16u_C4R, 4)},
    {"lumiFilterSeparable_32f_C1R", apply(lumiFilterSeparable_32f_C1R, 1)},
    {"lumiFilterSeparable_32f_C3R", apply(lumiFilterSeparable_32f_C3R, 3)},
    {"lumiFilterSeparable_32f_C4R", apply(lumiFilterSeparable_32f_C4R, 4)},
}};

const Targets applicationsL{{
    {"lumiFilterSeparable_8u_C1R_L", apply(lumiFilterSeparable_8u_C1R_L, 1)},
    {"lumiFilterSeparable_8u_C3R_L", apply(lumiFilterSeparable_8u_C3R_L, 3)},
    {"lumiFilterSeparable_8u_C4R_L", apply(lumiFilterSeparable_8u_C4R_L, 4)},
    {"lumiFilterSeparable_8u16s_C1R_L", apply(lumiFilterSeparable_8u16s_C1R_L, 1)},
    {"lumiFilterSeparable_8u16s_C3R_L", apply(lumiFilterSeparable_8u16s_C3R_L, 3)},
    {"lumiFilterSeparable_8u16s_C4R_L", apply(lumiFilterSeparable_8u16s_C4R_L, 4)},
    {"lumiFilterSeparable_16s_C1R_L", apply(lumiFilterSeparable_16s_C1R_L, 1)},
    {"lumiFilterSeparable_16s_C3R_L", apply(lumiFilterSeparable_16s_C3R_L, 3)},
    {"lumiFilterSeparable_16s_C4R_L", apply(lumiFilterSeparable_16s_C4R_L, 4)},
    {"lumiFilterSeparable_16u_C1R_L", apply(lumiFilterSeparable_16u_C1R_L, 1)},
    {"lumiFilterSeparable_16u_C3R_L", apply(lumiFilterSeparable_16u_C3R_L, 3)},
    {"lumiFilterSeparable_16u_C4R_L", apply(lumiFilterSeparable_16u_C4R_L, 4)},
    {"lumiFilterSeparable_32f_C1R_L", apply(lumiFilterSeparable_32f_C1R_L, 1)},
    {"lumiFilterSeparable_32f_C3R_L", apply(lumiFilterSeparable_32f_C3R_L, 3)},
    {"lumiFilterSeparable_32f_C4R_L", apply(lumiFilterSeparable_32f_C4R_L, 4)},
}};

}  // namespace
