// Fuzzes the Gaussian filter: size queries, both ways to lay the record, and all ways to apply it.
#include <cmath>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

// What the query of a valid geometry returns, or a failure.
struct Sizes
{
    std::size_t spec, buffer;
};

Sizes queriedSizes(LumiSize size, int kernelSize, LumDataType type, int channels)
{
    Lum32s spec = -1, buffer = -1;
    if (lumiFilterGaussianGetBufferSize(size, kernelSize, type, channels, &spec, &buffer) != lumOk)
        fail("the size query failed");
    return {std::size_t(spec), std::size_t(buffer)};
}

Sizes queriedSizesL(LumiSize size, int kernelSize, LumDataType type, int border, int channels)
{
    Lum64s spec = -1, initBuffer = -1, buffer = -1;
    if (lumiFilterGaussianGetSpecSize_L(kernelSize, type, channels, &spec, &initBuffer) != lumOk ||
        lumiFilterGaussianGetBufferSize_L({size.width, size.height}, kernelSize, type, border, channels, &buffer) !=
            lumOk)
        fail("a size query failed");
    return {std::size_t(spec), std::size_t(buffer)};
}

void addKernelViolations(Choices& choices, Call& call)
{
    const auto add = [&](const char* name, LumStatus status, std::function<void(Arguments&)> apply) {
        call.violations.push_back({name, {status}, std::move(apply)});
    };
    const int sizes[] = {-3, 0, 1, 2, 4, 16, INT32_MIN};
    const int types[] = {0, 2, 6, 9, 19, -1, INT32_MAX};
    const int counts[] = {0, 2, 4, -1, INT32_MIN};
    const int size = choices.oneOf(sizes), type = choices.oneOf(types), count = choices.oneOf(counts);
    add("wrong kernel size", lumErrArgument, [=](Arguments& a) { a.kernelSize = size; });
    add("wrong type", lumErrDataType, [=](Arguments& a) { a.dataType = type; });
    add("wrong channels", lumErrValue, [=](Arguments& a) { a.channels = count; });
}

Call begin(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    const LumiSize size = call.arguments.size();
    const int classes[] = {3, 5, 7};
    a.kernelSize = choices.oneIn(2) ? choices.oneOf(classes) : 2 * choices.between(1, size.width > 1000 ? 8 : 25) + 1;
    const Lum32f sigmas[] = {1e-30f, 0.1f, 0.8f, 1, 2.5f, 10, 1e10f, INFINITY};
    a.parameter = choices.oneOf(sigmas);
    a.borderType = chooseBorder(choices);
    const int types[] = {lumType8u, lumType16u, lumType16s, lumType32f};
    a.dataType = choices.oneOf(types);
    a.channels = choices.oneIn(2) ? 1 : 3;
    return call;
}

// The 64-bit Init and query pass whatever has all sides in memory.
int chooseBorderWithoutMode(Choices& choices)
{
    const int wrong = chooseWrongBorder(choices);
    return (wrong & lumBorderInMem) == lumBorderInMem ? int{lumBorderNeutral} : wrong;
}

// Both ends of what an application may do: the record and scratch of its own size, or those of a larger one.
LumiSize chooseQueriedSize(Choices& choices, const Arguments& a)
{
    if (choices.oneIn(2))
        return a.size();
    return {a.size().width + choices.between(0, 20), a.size().height + choices.between(0, 5)};
}

lumcv::test::Margins marginsOf(int border, int kernelSize)
{
    return lumcv::test::promisedMargins(border, lumcv::test::Margins::all(kernelSize / 2));
}

enum Block
{
    spec,
    buffer,
    borderValue
};

// Operands, blocks and violations of all applications; `border` is the one that the call will use.
template <typename T>
void describeApply(Call& call, Sizes sizes, int border, int channels)
{
    const Arguments& a = call.arguments;
    call.looseStep = true;
    call.images = {{Role::Read, elementOf<T>(), channels, marginsOf(border, a.kernelSize)},
                   {Role::Written, elementOf<T>(), channels}};
    call.blocks = {{Role::Record, sizes.spec},
                   {Role::Scratch, sizes.buffer},
                   {Role::Read, channels * sizeof(T), elementOf<T>(), true}};
}

bool isConstant(int border)
{
    return (border & 15) == lumBorderConstant && (border & lumBorderInMem) != lumBorderInMem;
}

void addBorderViolations(Choices& choices, Call& call)
{
    const int wrong = chooseWrongBorder(choices);
    call.violations.push_back(
        {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& a) { a.borderType = wrong; }});
    call.violations.push_back({"constant border without value", {lumErrNullPointer}, [](Arguments& a) {
                                   a.borderType = lumBorderConstant;
                                   a.blocks[borderValue] = nullptr;
                               }});
}

// Init may use the scratch of the application that follows it.
template <typename Init>
void layRecord(const Arguments& a, Init init)
{
    const LumStatus status = init(a.block<LumFilterGaussianSpec>(spec), a.block<Lum8u>(buffer));
    if (status != lumOk)
        fail("Init returned " + std::to_string(status));
}

template <typename T>
Run apply(LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, const T*, const LumFilterGaussianSpec*,
                         Lum8u*),
          int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        const LumiSize queried = chooseQueriedSize(choices, a);
        describeApply<T>(call, queriedSizes(queried, a.kernelSize, typeCode(elementOf<T>()), channels), a.borderType,
                         channels);
        const int initBorder = chooseBorder(choices);  // apply has its own
        call.prepare = [=](Arguments& b) {
            layRecord(b, [&](auto* s, Lum8u* scratch) {
                return lumiFilterGaussianInit(queried, b.kernelSize, b.parameter, initBorder, typeCode(elementOf<T>()),
                                              channels, s, scratch);
            });
        };
        addBorderViolations(choices, call);
        const bool withoutValue = !isConstant(a.borderType) && choices.oneIn(2);
        call.call = [=](const Arguments& b) {
            const T* const value = withoutValue ? nullptr : b.block<T>(borderValue);
            return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), b.borderType, value,
                     b.block<LumFilterGaussianSpec>(spec), b.block<Lum8u>(buffer));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run applyL(LumStatus (*f)(const T*, Lum64s, T*, Lum64s, LumiSizeL, LumiBorderType, const T*,
                          const LumFilterGaussianSpec*, Lum8u*),
           int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        const LumiSize queried = chooseQueriedSize(choices, a);
        describeApply<T>(call, queriedSizesL(queried, a.kernelSize, typeCode(elementOf<T>()), a.borderType, channels),
                         a.borderType, channels);
        call.longStep = true;
        const int initBorder = chooseBorder(choices);
        call.prepare = [=](Arguments& b) {
            layRecord(b, [&](auto* s, Lum8u* scratch) {
                return lumiFilterGaussianInit_L({queried.width, queried.height}, b.kernelSize, b.parameter, initBorder,
                                                typeCode(elementOf<T>()), channels, s, scratch);
            });
        };
        addBorderViolations(choices, call);
        for (const bool wide : {true, false})
            call.violations.push_back({wide ? "width above 31 bits" : "height above 31 bits",
                                       {lumErrSizeTooLarge, lumErrStep},
                                       [=](Arguments& b) { (wide ? b.width : b.height) = 0x80000000; }});
        const bool withoutValue = !isConstant(a.borderType) && choices.oneIn(2);
        call.call = [=](const Arguments& b) {
            const T* const value = withoutValue ? nullptr : b.block<T>(borderValue);
            return f(b.image<T>(0), b.steps[0], b.image<T>(1), b.steps[1], b.sizeL(), b.borderType, value,
                     b.block<LumFilterGaussianSpec>(spec), b.block<Lum8u>(buffer));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename Border>
Run applyBorder(LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, Border, const LumFilterGaussianSpec*, Lum8u*))
{
    return [=](Choices& choices, const std::string& name) {
        constexpr int channels = std::is_pointer_v<Border> ? 3 : 1;
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        const LumiSize queried = chooseQueriedSize(choices, a);
        describeApply<T>(call, queriedSizes(queried, a.kernelSize, typeCode(elementOf<T>()), channels), a.borderType,
                         channels);
        call.prepare = [=](Arguments& b) {
            layRecord(b, [&](auto* s, Lum8u* scratch) {
                return lumiFilterGaussianInit(queried, b.kernelSize, b.parameter, b.borderType,
                                              typeCode(elementOf<T>()), channels, s, scratch);
            });
        };
        if (channels == 3 && isConstant(a.borderType))
            call.violations.push_back({"constant border without value", {lumErrNullPointer}, [](Arguments& b) {
                                           b.blocks[borderValue] = nullptr;
                                       }});
        call.call = [=](const Arguments& b) {
            Border border{};
            if constexpr (channels == 3)
                border = b.block<T>(borderValue);
            else
                border = *b.block<T>(borderValue);
            return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), border,
                     b.block<LumFilterGaussianSpec>(spec), b.block<Lum8u>(buffer));
        };
        tryCall(choices, std::move(call));
    };
}

// Calls query(size...) with aligned results that are taken from the blocks before and put back after.
template <typename Size, typename F>
LumStatus query(const Arguments& a, F f)
{
    Size results[2] = {};
    for (std::size_t i = 0; i < a.blocks.size(); ++i)
        if (a.blocks[i])
            std::memcpy(&results[i], a.blocks[i], sizeof(Size));
    const auto at = [&](std::size_t i) { return a.blocks[i] ? &results[i] : nullptr; };
    const LumStatus status = f(at);
    for (std::size_t i = 0; i < a.blocks.size(); ++i)
        if (a.blocks[i])
            std::memcpy(a.blocks[i], &results[i], sizeof(Size));
    return status;
}

template <typename Size>
Run querySpec(LumStatus (*f)(Lum32s, LumDataType, Lum32s, Size*, Size*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name);
        call.ignoresSize = true;
        call.blocks = {{Role::Written, sizeof(Size)}, {Role::Written, sizeof(Size)}};
        addKernelViolations(choices, call);
        call.call = [=](const Arguments& a) {
            return query<Size>(a, [&](auto at) { return f(a.kernelSize, a.dataType, a.channels, at(0), at(1)); });
        };
        tryCall(choices, std::move(call));
    };
}

Violation hugeImage()
{
    return {"an image beyond any block", {lumErrSizeTooLarge}, [](Arguments& a) { a.width = 0x7ffffff0; }};
}

void queryBuffer(Choices& choices, const std::string& name)
{
    Call call = begin(choices, name);
    call.blocks = {{Role::Written, sizeof(Lum32s)}, {Role::Written, sizeof(Lum32s)}};
    addKernelViolations(choices, call);
    call.violations.push_back(hugeImage());
    call.call = [](const Arguments& a) {
        return query<Lum32s>(a, [&](auto at) {
            return lumiFilterGaussianGetBufferSize(a.size(), a.kernelSize, a.dataType, a.channels, at(0), at(1));
        });
    };
    tryCall(choices, std::move(call));
}

void queryBufferL(Choices& choices, const std::string& name)
{
    Call call = begin(choices, name);
    call.blocks = {{Role::Written, sizeof(Lum64s)}};
    addKernelViolations(choices, call);
    call.violations.push_back(hugeImage());
    const int wrong = chooseBorderWithoutMode(choices);
    call.violations.push_back(
        {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& a) { a.borderType = wrong; }});
    call.call = [](const Arguments& a) {
        return query<Lum64s>(a, [&](auto at) {
            return lumiFilterGaussianGetBufferSize_L(a.sizeL(), a.kernelSize, a.dataType, a.borderType, a.channels,
                                                     at(0));
        });
    };
    tryCall(choices, std::move(call));
}

// Init alone, with wrong arguments: the record's block stays as it was.
template <typename F>
void init(Choices& choices, const std::string& name, bool longSizes, F f)
{
    Call call = begin(choices, name);
    const Arguments& a = call.arguments;
    const Sizes sizes = longSizes ? queriedSizesL(a.size(), a.kernelSize, a.dataType, a.borderType, a.channels)
                                  : queriedSizes(a.size(), a.kernelSize, a.dataType, a.channels);
    call.blocks = {{Role::Laid, sizes.spec}, {Role::Scratch, longSizes ? std::size_t{64} : sizes.buffer}};
    addKernelViolations(choices, call);
    const Lum32f sigmas[] = {0, -0.0f, -1, NAN, -INFINITY};
    const Lum32f sigma = choices.oneOf(sigmas);
    call.violations.push_back(
        {"sigma " + std::to_string(sigma), {lumErrArgument}, [=](Arguments& b) { b.parameter = sigma; }});
    const int wrong = longSizes ? chooseBorderWithoutMode(choices) : chooseWrongBorder(choices);
    call.violations.push_back(
        {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
    call.call = f;
    tryCall(choices, std::move(call));
}

void initOrdinary(Choices& choices, const std::string& name)
{
    init(choices, name, false, [](const Arguments& a) {
        return lumiFilterGaussianInit(a.size(), a.kernelSize, a.parameter, a.borderType, a.dataType, a.channels,
                                      a.block<LumFilterGaussianSpec>(spec), a.block<Lum8u>(buffer));
    });
}

void initL(Choices& choices, const std::string& name)
{
    init(choices, name, true, [](const Arguments& a) {
        return lumiFilterGaussianInit_L(a.sizeL(), a.kernelSize, a.parameter, a.borderType, a.dataType, a.channels,
                                        a.block<LumFilterGaussianSpec>(spec), a.block<Lum8u>(buffer));
    });
}

const Targets targets{{
    {"lumiFilterGaussianGetSpecSize", querySpec(lumiFilterGaussianGetSpecSize)},
    {"lumiFilterGaussianGetSpecSize_L", querySpec(lumiFilterGaussianGetSpecSize_L)},
    {"lumiFilterGaussianGetBufferSize", queryBuffer},
    {"lumiFilterGaussianGetBufferSize_L", queryBufferL},
    {"lumiFilterGaussianInit", initOrdinary},
    {"lumiFilterGaussianInit_L", initL},
    {"lumiFilterGaussian_8u_C1R", apply(lumiFilterGaussian_8u_C1R, 1)},
    {"lumiFilterGaussian_8u_C3R", apply(lumiFilterGaussian_8u_C3R, 3)},
    {"lumiFilterGaussian_16u_C1R", apply(lumiFilterGaussian_16u_C1R, 1)},
    {"lumiFilterGaussian_16u_C3R", apply(lumiFilterGaussian_16u_C3R, 3)},
    {"lumiFilterGaussian_16s_C1R", apply(lumiFilterGaussian_16s_C1R, 1)},
    {"lumiFilterGaussian_16s_C3R", apply(lumiFilterGaussian_16s_C3R, 3)},
    {"lumiFilterGaussian_32f_C1R", apply(lumiFilterGaussian_32f_C1R, 1)},
    {"lumiFilterGaussian_32f_C3R", apply(lumiFilterGaussian_32f_C3R, 3)},
    {"lumiFilterGaussian_8u_C1R_L", applyL(lumiFilterGaussian_8u_C1R_L, 1)},
    {"lumiFilterGaussian_8u_C3R_L", applyL(lumiFilterGaussian_8u_C3R_L, 3)},
    {"lumiFilterGaussian_16u_C1R_L", applyL(lumiFilterGaussian_16u_C1R_L, 1)},
    {"lumiFilterGaussian_16u_C3R_L", applyL(lumiFilterGaussian_16u_C3R_L, 3)},
    {"lumiFilterGaussian_16s_C1R_L", applyL(lumiFilterGaussian_16s_C1R_L, 1)},
    {"lumiFilterGaussian_16s_C3R_L", applyL(lumiFilterGaussian_16s_C3R_L, 3)},
    {"lumiFilterGaussian_32f_C1R_L", applyL(lumiFilterGaussian_32f_C1R_L, 1)},
    {"lumiFilterGaussian_32f_C3R_L", applyL(lumiFilterGaussian_32f_C3R_L, 3)},
    {"lumiFilterGaussianBorder_8u_C1R", applyBorder(lumiFilterGaussianBorder_8u_C1R)},
    {"lumiFilterGaussianBorder_8u_C3R", applyBorder(lumiFilterGaussianBorder_8u_C3R)},
    {"lumiFilterGaussianBorder_16u_C1R", applyBorder(lumiFilterGaussianBorder_16u_C1R)},
    {"lumiFilterGaussianBorder_16u_C3R", applyBorder(lumiFilterGaussianBorder_16u_C3R)},
    {"lumiFilterGaussianBorder_16s_C1R", applyBorder(lumiFilterGaussianBorder_16s_C1R)},
    {"lumiFilterGaussianBorder_16s_C3R", applyBorder(lumiFilterGaussianBorder_16s_C3R)},
    {"lumiFilterGaussianBorder_32f_C1R", applyBorder(lumiFilterGaussianBorder_32f_C1R)},
    {"lumiFilterGaussianBorder_32f_C3R", applyBorder(lumiFilterGaussianBorder_32f_C3R)},
}};

}  // namespace
