// Fuzzes the optical flow, its size query and its Inits: two pyramids of one level or two, whose images are operands of
// the call; points inside, outside and on the border of the image; windows of any size.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

using Init = LumStatus (*)(LumOptFlowPyrLKState**, LumiSize, Lum32s, Lum32s, Lum8u*);
using Apply = LumStatus (*)(const LumiPyramidRecord*, const LumiPyramidRecord*, const Lum32f*, Lum32f*, Lum8s*, Lum32f*,
                            Lum32s, Lum32s, Lum32s, Lum32s, Lum32f, LumOptFlowPyrLKState*);

// A pyramid whose levels are one image: the upper level is its upper left corner.
struct Pyramid
{
    void* images[2];
    LumiSize sizes[2];
    Lum64f scales[2];
    Lum32s steps[2];
    LumiPyramidRecord record;

    Pyramid(void* image, Lum32s step, LumiSize size)
        : images{image, image},
          sizes{size, {(size.width + 1) / 2, (size.height + 1) / 2}},
          scales{1, 0.5},
          steps{step, step},
          record{images, sizes, scales, steps, nullptr, 1}
    {
    }
};

// The blocks are the points, where they go, their statuses, their errors and the state. The window stands in
// kernelSize, the number of points in channels, the last level in anchor, the iterations in divisor, the threshold in
// parameter.
template <typename T>
Run flow(LumDataType type, Init init, Apply apply)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        const LumiSize size = a.size();
        a.kernelSize = choices.oneIn(4) ? choices.between(1, 80) : choices.between(1, 24);
        a.channels = choices.between(1, 6);
        a.anchor = choices.between(0, 1);
        a.divisor = choices.between(1, 6);
        a.parameter = choices.oneIn(2) ? 0.0f : 0.03f;
        std::vector<Lum32f> points;
        for (int i = 0; i < 2 * a.channels; ++i) {
            const int extent = i % 2 ? size.height : size.width;
            const int reach = choices.oneIn(4) ? a.kernelSize + 4 : 0;
            const Lum32f whole = Lum32f(choices.between(-reach, extent - 1 + reach));
            points.push_back(choices.oneIn(2) ? whole : whole + Lum32f(choices.between(0, 15)) / 16);
        }
        Lum32s stateBytes = 0;
        if (lumiOpticalFlowPyrLKGetSize(a.kernelSize, size, type, 0, &stateBytes) != lumOk)
            fail("the size query failed");
        const std::size_t count = std::size_t(a.channels);
        call.images = {{Role::Read, elementOf<T>()}, {Role::Read, elementOf<T>()}};
        call.blocks = {{Role::Written, 2 * count * sizeof(Lum32f), elementOf<Lum32f>()},
                       {Role::Written, count, elementOf<Lum8s>()},
                       {Role::Written, count * sizeof(Lum32f), elementOf<Lum32f>()},
                       {Role::Scratch, std::size_t(stateBytes)}};
        call.ignoresSize = true;
        call.ignoresStep = true;
        call.violations = {
            {"no point", {lumErrSize}, [](Arguments& b) { b.channels = 0; }},
            {"another window", {lumErrSize}, [other = a.kernelSize + 1](Arguments& b) { b.kernelSize = other; }},
            {"no window", {lumErrSize}, [](Arguments& b) { b.kernelSize = 0; }},
            {"negative level", {lumErrArgument}, [](Arguments& b) { b.anchor = -1; }},
            {"level beyond the last", {lumErrArgument}, [](Arguments& b) { b.anchor = 2; }},
            {"no iteration", {lumErrArgument}, [](Arguments& b) { b.divisor = 0; }},
            {"negative threshold", {lumErrArgument}, [](Arguments& b) { b.parameter = -1; }},
        };
        const Lum32s window = a.kernelSize;
        call.call = [=](const Arguments& b) {
            // where a pointer is null on purpose, no record can be laid or filled
            Pyramid first(b.images[0], b.step(0), size), second(b.images[1], b.step(1), size);
            LumOptFlowPyrLKState* state = nullptr;
            if (b.blocks[3] && init(&state, size, window, 0, b.block<Lum8u>(3)) != lumOk)
                fail("Init failed");
            return apply(b.images[0] ? &first.record : nullptr, b.images[1] ? &second.record : nullptr, points.data(),
                         b.block<Lum32f>(0), b.block<Lum8s>(1), b.block<Lum32f>(2), b.channels, b.kernelSize, b.anchor,
                         b.divisor, b.parameter, state);
        };
        tryCall(choices, std::move(call));
    };
}

// The window stands in kernelSize.
Call beginState(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.arguments.kernelSize = choices.between(1, 80);
    for (const int wrong : {0, -1, INT32_MIN})
        addViolation(call, "window " + std::to_string(wrong), lumErrSize, [=](Arguments& a) { a.kernelSize = wrong; });
    return call;
}

void query(Choices& choices, const std::string& name)
{
    Call call = beginState(choices, name);
    const int types[] = {lumType8u, lumType16u, lumType32f};
    call.arguments.dataType = choices.oneOf(types);
    const int wrongTypes[] = {0, 2, lumType16s, lumType64f, -1, INT32_MIN};
    const int wrong = choices.oneOf(wrongTypes);
    addViolation(call, "type " + std::to_string(wrong), lumErrDataType, [=](Arguments& a) { a.dataType = wrong; });
    addViolation(call, "a huge image", lumErrSizeTooLarge, [](Arguments& a) {
        a.width = INT32_MAX;
        a.height = INT32_MAX;
    });
    const int hint = choices.between(-1, 2);
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [=](const Arguments& a) {
        return lumiOpticalFlowPyrLKGetSize(a.kernelSize, a.size(), a.dataType, hint, a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

Run prepare(LumDataType type, Init init)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginState(choices, name);
        Lum32s bytes = -1;
        if (lumiOpticalFlowPyrLKGetSize(call.arguments.kernelSize, call.arguments.size(), type, 0, &bytes) != lumOk)
            fail("the size query failed");
        const int hint = choices.between(-1, 2);
        call.blocks = {{Role::Laid, std::size_t(bytes)}};
        call.call = [=](const Arguments& a) {
            LumOptFlowPyrLKState* state = nullptr;
            const LumStatus status = init(&state, a.size(), a.kernelSize, hint, a.block<Lum8u>(0));
            if (state != (status == lumOk ? a.blocks[0] : nullptr))
                fail("the state's address is wrong");
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiOpticalFlowPyrLKGetSize", query},
    {"lumiOpticalFlowPyrLKInit_8u_C1R", prepare(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R)},
    {"lumiOpticalFlowPyrLKInit_16u_C1R", prepare(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R)},
    {"lumiOpticalFlowPyrLKInit_32f_C1R", prepare(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R)},
    {"lumiOpticalFlowPyrLK_8u_C1R",
     flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R)},
    {"lumiOpticalFlowPyrLK_16u_C1R",
     flow<Lum16u>(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R, lumiOpticalFlowPyrLK_16u_C1R)},
    {"lumiOpticalFlowPyrLK_32f_C1R",
     flow<Lum32f>(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R, lumiOpticalFlowPyrLK_32f_C1R)},
}};

}  // namespace
