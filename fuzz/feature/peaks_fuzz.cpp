// Fuzzes the search for peaks and its size queries.
#include <algorithm>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

using Query = LumStatus (*)(Lum32s, Lum32s*);

template <typename T>
using Find = LumStatus (*)(const T*, Lum32s, LumiSize, T, LumiPoint*, Lum32s, Lum32s*, LumiPeakNorm, Lum32s, Lum8u*);

// The norm stands in kernelSize, the border in anchor, the largest count in divisor.
template <typename T>
Run peaks(Find<T> find, Query query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call;
        call.function = name;
        Arguments& a = call.arguments;
        const LumiSize size = chooseSize(choices);
        a.width = std::max(size.width, 2);
        a.height = std::max(size.height, 2);
        a.kernelSize = choices.between(lumPeakNormInf, lumPeakNormL1);
        a.anchor = choices.oneIn(2) ? 1 : choices.between(1, int(std::min(a.width, a.height)) / 2);
        a.divisor = choices.oneIn(3) ? choices.between(1, 20) : int(a.width * a.height);
        const T threshold = T(choices.between(-1, 200));
        call.images = {{Role::Read, Element::F32}};  // an integer is as good as any other 32 bits

        Lum32s bytes = -1;
        if (query(Lum32s(a.width), &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        const int room = a.divisor;
        call.blocks = {{Role::Scratch, std::size_t(bytes)},
                       {Role::Written, room * sizeof(LumiPoint), Element::F32},
                       {Role::Written, sizeof(Lum32s), Element::F32}};
        const auto add = [&](const std::string& what, LumStatus status, std::initializer_list<Lum32s> numbers,
                             Lum32s Arguments::*number) {
            for (const Lum32s wrong : numbers)
                call.violations.push_back(
                    {what + " " + std::to_string(wrong), {status}, [=](Arguments& b) { b.*number = wrong; }});
        };
        add("norm", lumErrArgument, {-1, 2, 4, INT32_MAX, INT32_MIN}, &Arguments::kernelSize);
        add("border", lumErrSize, {0, -1, int(a.width) / 2 + 1, int(a.height) / 2 + 1, INT32_MAX, INT32_MIN},
            &Arguments::anchor);
        add("count", lumErrSize, {0, -1, INT32_MIN}, &Arguments::divisor);
        call.call = [=](const Arguments& b) {
            auto* const list = b.block<LumiPoint>(1);
            auto* const count = b.block<Lum32s>(2);
            const LumStatus status = find(b.image<T>(0), b.step(0), b.size(), threshold, list, b.divisor, count,
                                          b.kernelSize, b.anchor, b.block<Lum8u>(0));
            if (status != lumOk)
                return status;
            if (*count < 0 || *count > room)
                fail("the count is " + std::to_string(*count));
            for (int i = 0; i < *count; ++i)
                if (list[i].x < b.anchor || list[i].x >= b.width - b.anchor || list[i].y < b.anchor ||
                    list[i].y >= b.height - b.anchor)
                    fail("peak " + std::to_string(i) + " lies outside");
            std::fill(list + *count, list + room, LumiPoint{-1, -1});  // so that both runs can be compared
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

Run sizeQuery(Query query)
{
    return [=](Choices& choices, const std::string& name) {
        Call call;
        call.function = name;
        call.ignoresSize = true;
        call.arguments.width = choices.between(1, 5000);
        for (const Lum64s wrong : {Lum64s{0}, Lum64s{-1}, Lum64s{INT32_MIN}})
            call.violations.push_back(
                {"width " + std::to_string(wrong), {lumErrSize}, [wrong](Arguments& a) { a.width = wrong; }});
        for (const Lum64s wrong : {Lum64s{INT32_MAX}, Lum64s{INT32_MAX / 32 + 1}})
            call.violations.push_back(
                {"width " + std::to_string(wrong), {lumErrSizeTooLarge}, [wrong](Arguments& a) { a.width = wrong; }});
        call.blocks = {{Role::Written, sizeof(Lum32s), Element::F32}};
        call.call = [=](const Arguments& a) { return query(Lum32s(a.width), a.block<Lum32s>(0)); };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiFindPeaks3x3GetBufferSize_32f_C1R", sizeQuery(lumiFindPeaks3x3GetBufferSize_32f_C1R)},
    {"lumiFindPeaks3x3GetBufferSize_32s_C1R", sizeQuery(lumiFindPeaks3x3GetBufferSize_32s_C1R)},
    {"lumiFindPeaks3x3_32f_C1R", peaks<Lum32f>(lumiFindPeaks3x3_32f_C1R, lumiFindPeaks3x3GetBufferSize_32f_C1R)},
    {"lumiFindPeaks3x3_32s_C1R", peaks<Lum32s>(lumiFindPeaks3x3_32s_C1R, lumiFindPeaks3x3GetBufferSize_32s_C1R)},
}};

}  // namespace
