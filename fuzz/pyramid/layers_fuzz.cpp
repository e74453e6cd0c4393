// Fuzzes the layers of pyramids in both directions.
#include <algorithm>

#include "fuzz/pyramid/pyramid_choices.hpp"

namespace {

using namespace lumcv::fuzz;

// A pair of images of which one is larger by `more`, and a record for both.
template <typename T>
Call beginLayer(const std::string& name, LumiSize smaller, LumiSize more, int channels, bool isDown, Lum32s bytes)
{
    Call call;
    call.function = name;
    call.arguments.width = smaller.width;
    call.arguments.height = smaller.height;
    ImageOperand small{Role::Read, elementOf<T>(), channels};
    ImageOperand large{Role::Read, elementOf<T>(), channels};
    large.extra = more;
    large.leastExtra = more.width;
    (isDown ? small : large).role = Role::Written;
    call.images = isDown ? std::vector{large, small} : std::vector{small, large};
    call.blocks = {{Role::Scratch, std::size_t(bytes)}};
    // strides come before sizes: a negative width makes a negative stride a good one
    call.ignoresSize = true;
    for (const Lum64s wrong : {Lum64s{0}, Lum64s{-1}, Lum64s{INT32_MIN}})
        call.violations.push_back(
            {"height " + std::to_string(wrong), {lumErrSize}, [wrong](Arguments& a) { a.height = wrong; }});
    return call;
}

template <typename Size>
Size as(LumiSizeL size)
{
    return {decltype(Size::width)(size.width), decltype(Size::height)(size.height)};
}

template <typename Size>
Size as(LumiSize size)
{
    return {size.width, size.height};
}

LumiSizeL plus(LumiSizeL size, LumiSize more)
{
    return {size.width + more.width, size.height + more.height};
}

template <typename Step>
void addLimits(Call& call)
{
    if constexpr (sizeof(Step) == 8) {
        call.longStep = true;
        addViolation(call, "width above 31 bits", lumErrSizeTooLarge, [](Arguments& a) { a.width = 0x80000000; });
        addViolation(call, "height above 31 bits", lumErrSizeTooLarge, [](Arguments& a) { a.height = 0x80000000; });
    }
}

template <typename T, typename Step, typename Size, typename Record>
using Layer = LumStatus (*)(const T*, Step, Size, T*, Step, Size, Record*);

template <typename T, typename Step, typename Size>
Run down(int channels, LumStatus (*query)(Size, Lum32f, Lum32s, Step*, Step*),
         LumStatus (*init)(LumiPyramidLayerDownRecord**, Size, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*, Lum8u*),
         Layer<T, Step, Size, LumiPyramidLayerDownRecord> apply)
{
    return [=](Choices& choices, const std::string& name) {
        const LumiSize source = chooseSize(choices);
        const Lum32f rate = chooseRate(choices);
        const auto kernel = chooseKernel<T>(choices);
        const auto taps = Lum32s(kernel.size());
        LumiSize smaller;
        Step bytes = -1, bufferBytes = 1;
        if (lumiGetPyramidDownROI(source, &smaller, rate) != lumOk ||
            query(as<Size>(source), rate, taps, &bytes, &bufferBytes) != lumOk || bytes < 0)
            fail("a query failed");
        const LumiSize more{source.width - smaller.width, source.height - smaller.height};
        Call call = beginLayer<T>(name, smaller, more, channels, true, Lum32s(bytes));
        addLimits<Step>(call);
        call.prepare = [=](Arguments& a) {
            std::vector<Lum8u> buffer(std::size_t(bufferBytes) + 1);
            LumiPyramidLayerDownRecord* record = nullptr;
            if (!isReady(
                    init(&record, as<Size>(source), rate, kernel.data(), taps, 2, a.block<Lum8u>(0), buffer.data())) ||
                record != recordIn<LumiPyramidLayerDownRecord>(a.blocks[0]))
                fail("Init failed");
        };
        call.call = [=](const Arguments& a) {
            return apply(a.image<T>(0), Step(a.steps[0]), as<Size>(plus(a.sizeL(), more)), a.image<T>(1),
                         Step(a.steps[1]), a.sizeAs<Size>(), recordIn<LumiPyramidLayerDownRecord>(a.blocks[0]));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename Step, typename Size>
Run up(int channels, LumStatus (*query)(Size, Lum32f, Lum32s, Step*),
       LumStatus (*init)(LumiPyramidLayerUpRecord**, Size, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*),
       Layer<T, Step, Size, LumiPyramidLayerUpRecord> apply)
{
    return [=](Choices& choices, const std::string& name) {
        LumiSize source = chooseSize(choices);
        source = {std::min(source.width, 600), std::min(source.height, 100)};
        const Lum32f rate = chooseRate(choices);
        const auto kernel = chooseKernel<T>(choices);
        const auto taps = Lum32s(kernel.size());
        LumiSize least, most;
        Step bytes = -1;
        if (lumiGetPyramidUpROI(source, &least, &most, rate) != lumOk ||
            query(as<Size>(source), rate, taps, &bytes) != lumOk || bytes < 0)
            fail("a query failed");
        const LumiSize more{choices.between(least.width, most.width) - source.width,
                            choices.between(least.height, most.height) - source.height};
        Call call = beginLayer<T>(name, source, more, channels, false, Lum32s(bytes));
        addLimits<Step>(call);
        call.prepare = [=](Arguments& a) {
            LumiPyramidLayerUpRecord* record = nullptr;
            if (!isReady(init(&record, as<Size>(source), rate, kernel.data(), taps, 2, a.block<Lum8u>(0))) ||
                record != recordIn<LumiPyramidLayerUpRecord>(a.blocks[0]))
                fail("Init failed");
        };
        call.call = [=](const Arguments& a) {
            return apply(a.image<T>(0), Step(a.steps[0]), a.sizeAs<Size>(), a.image<T>(1), Step(a.steps[1]),
                         as<Size>(plus(a.sizeL(), more)), recordIn<LumiPyramidLayerUpRecord>(a.blocks[0]));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiPyramidLayerDown_8u_C1R",
     down<Lum8u>(1, lumiPyramidLayerDownGetSize_8u_C1R, lumiPyramidLayerDownInit_8u_C1R, lumiPyramidLayerDown_8u_C1R)},
    {"lumiPyramidLayerDown_8u_C3R",
     down<Lum8u>(3, lumiPyramidLayerDownGetSize_8u_C3R, lumiPyramidLayerDownInit_8u_C3R, lumiPyramidLayerDown_8u_C3R)},
    {"lumiPyramidLayerDown_16u_C1R", down<Lum16u>(1, lumiPyramidLayerDownGetSize_16u_C1R,
                                                  lumiPyramidLayerDownInit_16u_C1R, lumiPyramidLayerDown_16u_C1R)},
    {"lumiPyramidLayerDown_16u_C3R", down<Lum16u>(3, lumiPyramidLayerDownGetSize_16u_C3R,
                                                  lumiPyramidLayerDownInit_16u_C3R, lumiPyramidLayerDown_16u_C3R)},
    {"lumiPyramidLayerDown_32f_C1R", down<Lum32f>(1, lumiPyramidLayerDownGetSize_32f_C1R,
                                                  lumiPyramidLayerDownInit_32f_C1R, lumiPyramidLayerDown_32f_C1R)},
    {"lumiPyramidLayerDown_32f_C3R", down<Lum32f>(3, lumiPyramidLayerDownGetSize_32f_C3R,
                                                  lumiPyramidLayerDownInit_32f_C3R, lumiPyramidLayerDown_32f_C3R)},
    {"lumiPyramidLayerDown_32f_C1R_L",
     down<Lum32f>(1, lumiPyramidLayerDownGetSize_32f_C1R_L, lumiPyramidLayerDownInit_32f_C1R_L,
                  lumiPyramidLayerDown_32f_C1R_L)},
    {"lumiPyramidLayerUp_8u_C1R",
     up<Lum8u>(1, lumiPyramidLayerUpGetSize_8u_C1R, lumiPyramidLayerUpInit_8u_C1R, lumiPyramidLayerUp_8u_C1R)},
    {"lumiPyramidLayerUp_8u_C3R",
     up<Lum8u>(3, lumiPyramidLayerUpGetSize_8u_C3R, lumiPyramidLayerUpInit_8u_C3R, lumiPyramidLayerUp_8u_C3R)},
    {"lumiPyramidLayerUp_16u_C1R",
     up<Lum16u>(1, lumiPyramidLayerUpGetSize_16u_C1R, lumiPyramidLayerUpInit_16u_C1R, lumiPyramidLayerUp_16u_C1R)},
    {"lumiPyramidLayerUp_16u_C3R",
     up<Lum16u>(3, lumiPyramidLayerUpGetSize_16u_C3R, lumiPyramidLayerUpInit_16u_C3R, lumiPyramidLayerUp_16u_C3R)},
    {"lumiPyramidLayerUp_32f_C1R",
     up<Lum32f>(1, lumiPyramidLayerUpGetSize_32f_C1R, lumiPyramidLayerUpInit_32f_C1R, lumiPyramidLayerUp_32f_C1R)},
    {"lumiPyramidLayerUp_32f_C3R",
     up<Lum32f>(3, lumiPyramidLayerUpGetSize_32f_C3R, lumiPyramidLayerUpInit_32f_C3R, lumiPyramidLayerUp_32f_C3R)},
    {"lumiPyramidLayerUp_32f_C1R_L", up<Lum32f>(1, lumiPyramidLayerUpGetSize_32f_C1R_L,
                                                lumiPyramidLayerUpInit_32f_C1R_L, lumiPyramidLayerUp_32f_C1R_L)},
}};

}  // namespace
