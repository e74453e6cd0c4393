// Fuzzes pyramids: sizes of levels, records and layers in both directions.
#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
using Tap = std::conditional_t<std::is_same_v<T, Lum32f>, Lum32f, Lum16s>;

Lum32f chooseRate(Choices& choices)
{
    const Lum32f rates[] = {2, 2, 2, 1.5f, 3, 10, 1.99999f, 2.00001f, 1.0000001f, 1.1f, 2.5f, 7.3f};
    return choices.oneOf(rates);
}

template <typename T>
std::vector<Tap<T>> chooseKernel(Choices& choices)
{
    std::vector<Tap<T>> taps;
    if (choices.oneIn(3))
        return {1, 4, 6, 4, 1};
    const int size = 2 * (choices.oneIn(4) ? choices.between(1, 20) : choices.between(1, 3)) + 1;
    for (int i = 0; i < size; ++i)
        taps.push_back(Tap<T>(choices.oneIn(5) ? choices.between(-32768, 32767) : choices.between(-3, 60)));
    return taps;
}

// The block holds the record at the first multiple of 64.
template <typename Record>
Record* recordIn(void* block)
{
    return reinterpret_cast<Record*>((reinterpret_cast<std::uintptr_t>(block) + 63) / 64 * 64);
}

bool isReady(LumStatus status)
{
    return status == lumOk || status == lumWrnKernelNotSymmetric;
}

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

template <typename T, typename Size, typename Init, typename Apply>
Run down(int channels, Size query, Init init, Apply apply)
{
    return [=](Choices& choices, const std::string& name) {
        const LumiSize source = chooseSize(choices);
        const Lum32f rate = chooseRate(choices);
        const auto kernel = chooseKernel<T>(choices);
        const auto taps = Lum32s(kernel.size());
        LumiSize smaller;
        Lum32s bytes = -1, bufferBytes = 1;
        if (lumiGetPyramidDownROI(source, &smaller, rate) != lumOk ||
            query(source, rate, taps, &bytes, &bufferBytes) != lumOk || bytes < 0)
            fail("a query failed");
        const LumiSize more{source.width - smaller.width, source.height - smaller.height};
        Call call = beginLayer<T>(name, smaller, more, channels, true, bytes);
        call.prepare = [=](Arguments& a) {
            std::vector<Lum8u> buffer(std::size_t(bufferBytes) + 1);
            LumiPyramidLayerDownRecord* record = nullptr;
            if (!isReady(init(&record, source, rate, kernel.data(), taps, 2, a.block<Lum8u>(0), buffer.data())) ||
                record != recordIn<LumiPyramidLayerDownRecord>(a.blocks[0]))
                fail("Init failed");
        };
        call.call = [=](const Arguments& a) {
            const LumiSize dst = a.size();
            const LumiSize src{Lum32s(a.width + more.width), Lum32s(a.height + more.height)};
            return apply(a.image<T>(0), a.step(0), src, a.image<T>(1), a.step(1), dst,
                         recordIn<LumiPyramidLayerDownRecord>(a.blocks[0]));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename Size, typename Init, typename Apply>
Run up(int channels, Size query, Init init, Apply apply)
{
    return [=](Choices& choices, const std::string& name) {
        LumiSize source = chooseSize(choices);
        source = {std::min(source.width, 600), std::min(source.height, 100)};
        const Lum32f rate = chooseRate(choices);
        const auto kernel = chooseKernel<T>(choices);
        const auto taps = Lum32s(kernel.size());
        LumiSize least, most;
        Lum32s bytes = -1;
        if (lumiGetPyramidUpROI(source, &least, &most, rate) != lumOk || query(source, rate, taps, &bytes) != lumOk ||
            bytes < 0)
            fail("a query failed");
        const LumiSize more{choices.between(least.width, most.width) - source.width,
                            choices.between(least.height, most.height) - source.height};
        Call call = beginLayer<T>(name, source, more, channels, false, bytes);
        call.prepare = [=](Arguments& a) {
            LumiPyramidLayerUpRecord* record = nullptr;
            if (!isReady(init(&record, source, rate, kernel.data(), taps, 2, a.block<Lum8u>(0))) ||
                record != recordIn<LumiPyramidLayerUpRecord>(a.blocks[0]))
                fail("Init failed");
        };
        call.call = [=](const Arguments& a) {
            const LumiSize src = a.size();
            const LumiSize dst{Lum32s(a.width + more.width), Lum32s(a.height + more.height)};
            return apply(a.image<T>(0), a.step(0), src, a.image<T>(1), a.step(1), dst,
                         recordIn<LumiPyramidLayerUpRecord>(a.blocks[0]));
        };
        tryCall(choices, std::move(call));
    };
}

void levelSizes(Choices& choices, const std::string&)
{
    const LumiSize size{choices.between(1, 1 << 24), choices.between(1, 3000)};
    const Lum32f rate = chooseRate(choices);
    LumiSize smaller, least, most;
    if (lumiGetPyramidDownROI(size, &smaller, rate) != lumOk)
        fail("no smaller level");
    if (lumiGetPyramidUpROI(smaller, &least, &most, rate) != lumOk)
        fail("no larger level");
    if (size.width < least.width || size.width > most.width || size.height < least.height || size.height > most.height)
        fail("no way back up");
}

void record(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const Lum32f rate = chooseRate(choices);
    const int level = choices.between(1, 12);
    Lum32s bytes = -1, bufferBytes = -1;
    if (lumiPyramidGetSize(&bytes, &bufferBytes, level, call.arguments.size(), rate) != lumOk)
        fail("the query failed");
    call.blocks = {{Role::Laid, std::size_t(bytes)}, {Role::Scratch, std::size_t(bufferBytes)}};
    call.violations.push_back({"rate 1", {lumErrArgument}, [](Arguments& a) { a.parameter = 1; }});
    call.arguments.parameter = rate;
    call.call = [=](const Arguments& a) {
        LumiPyramidRecord* laid = nullptr;
        return lumiPyramidInit(&laid, level, a.size(), a.parameter, a.block<Lum8u>(0), a.block<Lum8u>(1));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiGetPyramidDownROI", levelSizes},
    {"lumiPyramidInit", record},
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
}};

}  // namespace
