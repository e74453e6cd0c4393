// Fuzzes inpainting: the sizes for a random mask, the Init that uses them, and repairs with a state laid before.
#include <cstring>
#include <memory>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

using Init = LumStatus (*)(LumiInpaintState**, const Lum32f*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32f,
                           LumiInpaintMethod, Lum8u*, Lum8u*);
using Apply = LumStatus (*)(const Lum8u*, Lum32s, Lum8u*, Lum32s, LumiSize, LumiInpaintState*, Lum8u*);

// A mask with its distances, and the sizes for it.
struct Damage
{
    LumiSize size;
    Lum32f radius;
    LumiInpaintMethod method;
    std::vector<Lum8u> mask;
    std::vector<Lum32f> distances;
    Lum32s specBytes = -1, bufferBytes = -1;

    Damage(Choices& choices, int channels)
        : size{choices.between(1, 60), choices.between(1, 40)},
          radius(Lum32f(choices.between(4, 22)) / 4),
          method(choices.oneIn(2) ? lumInpaintByFront : lumInpaintByIsophote),
          mask(std::size_t(size.width) * std::size_t(size.height)),
          distances(mask.size())
    {
        const int spots = choices.between(0, 4);
        for (int spot = 0; spot < spots; ++spot) {
            const int x0 = choices.between(0, size.width - 1), y0 = choices.between(0, size.height - 1);
            const int x1 = x0 + choices.between(0, 9), y1 = y0 + choices.between(0, 9);
            for (int y = y0; y <= y1 && y < size.height; ++y)
                for (int x = x0; x <= x1 && x < size.width; ++x)
                    mask[at(x, y)] = Lum8u(1 + (x + y) % 255);
        }
        march();
        if (choices.oneIn(4))  // distances that do not belong to the mask
            for (Lum32f& distance : distances)
                distance = Lum32f(choices.between(-2, 9)) / 2;
        if (lumiInpaintGetSize(mask.data(), size.width, size, radius, method, channels, &specBytes, &bufferBytes) !=
            lumOk)
            fail("the size query failed");
    }

    std::size_t at(int x, int y) const
    {
        return std::size_t(y) * std::size_t(size.width) + std::size_t(x);
    }

    void march()
    {
        Lum32s bytes = 0;
        lumiFastMarchingGetBufferSize_8u32f_C1R(size, &bytes);
        std::vector<Lum8u> buffer(static_cast<std::size_t>(bytes));
        if (lumiFastMarching_8u32f_C1R(mask.data(), size.width, distances.data(), size.width * Lum32s(sizeof(Lum32f)),
                                       size, 0, buffer.data()) != lumOk)
            fail("fast marching failed");
    }
};

template <typename T>
void copyRows(const std::vector<T>& from, LumiSize size, T* to, Lum32s step)
{
    for (int y = 0; y < size.height; ++y)
        std::memcpy(reinterpret_cast<Lum8u*>(to) + std::ptrdiff_t{y} * step,
                    &from[std::size_t(y) * std::size_t(size.width)], std::size_t(size.width) * sizeof(T));
}

// The channels stand in channels, the method in divisor.
void sizes(Choices& choices, const std::string& name)
{
    const int channels = choices.oneIn(2) ? 1 : 3;
    const auto damage = std::make_shared<const Damage>(choices, channels);
    Call call;
    call.function = name;
    Arguments& a = call.arguments;
    a.width = damage->size.width;
    a.height = damage->size.height;
    a.channels = channels;
    a.divisor = Lum32s(damage->method);
    a.parameter = damage->radius;
    call.images = {{Role::Read, Element::U8}};
    call.prepare = [=](Arguments& b) { copyRows(damage->mask, damage->size, b.image<Lum8u>(0), b.step(0)); };
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}, {Role::Written, sizeof(Lum32s), Element::S32}};
    for (const Lum32f wrong : {0.0f, 0.99f, -1.0f, -1e30f})
        call.violations.push_back(
            {"radius " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.parameter = wrong; }});
    for (const int wrong : {2, 3, -1, INT32_MIN})
        call.violations.push_back(
            {"method " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.divisor = wrong; }});
    for (const int wrong : {0, 2, 4, -1, INT32_MIN})
        call.violations.push_back(
            {"channels " + std::to_string(wrong), {lumErrValue}, [=](Arguments& b) { b.channels = wrong; }});
    call.call = [=](const Arguments& b) {
        const LumStatus status =
            lumiInpaintGetSize(b.image<Lum8u>(0), b.step(0), b.size(), b.parameter, LumiInpaintMethod(b.divisor),
                               b.channels, b.block<Lum32s>(0), b.block<Lum32s>(1));
        if (status == lumOk && (*b.block<Lum32s>(0) != damage->specBytes || *b.block<Lum32s>(1) != damage->bufferBytes))
            fail("the sizes depend on the mask's stride");
        return status;
    };
    tryCall(choices, std::move(call));
}

Run state(Init init, int channels)
{
    return [=](Choices& choices, const std::string& name) {
        const auto damage = std::make_shared<const Damage>(choices, channels);
        Call call;
        call.function = name;
        call.arguments.width = damage->size.width;
        call.arguments.height = damage->size.height;
        call.arguments.parameter = damage->radius;
        call.arguments.divisor = Lum32s(damage->method);
        call.images = {{Role::Read, Element::F32}, {Role::Read, Element::U8}};
        call.prepare = [=](Arguments& a) {
            copyRows(damage->distances, damage->size, a.image<Lum32f>(0), a.step(0));
            copyRows(damage->mask, damage->size, a.image<Lum8u>(1), a.step(1));
        };
        call.blocks = {{Role::Laid, std::size_t(damage->specBytes)},
                       {Role::Scratch, std::size_t(damage->bufferBytes), Element::U8, damage->bufferBytes == 0},
                       {Role::Written, sizeof(LumiInpaintState*), Element::F64}};
        for (const Lum32f wrong : {0.0f, 0.99f, -1.0f, -1e30f})
            call.violations.push_back(
                {"radius " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& a) { a.parameter = wrong; }});
        for (const int wrong : {2, 3, -1, INT32_MIN})
            call.violations.push_back(
                {"method " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& a) { a.divisor = wrong; }});
        call.call = [=](const Arguments& a) {
            auto** const ppState = a.block<LumiInpaintState*>(2);
            const LumStatus status =
                init(ppState, a.image<Lum32f>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.parameter,
                     LumiInpaintMethod(a.divisor), a.block<Lum8u>(0), a.block<Lum8u>(1));
            if (status != lumOk)
                return status;
            if (static_cast<void*>(*ppState) != a.blocks[0])
                fail("the state does not lie in its block");
            *ppState = nullptr;  // so that both runs can be compared
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

Run repair(Init init, Apply apply, int channels)
{
    return [=](Choices& choices, const std::string& name) {
        const auto damage = std::make_shared<const Damage>(choices, channels);
        Call call;
        call.function = name;
        call.arguments.width = damage->size.width;
        call.arguments.height = damage->size.height;
        call.images = {{Role::Read, Element::U8, channels}, {Role::Written, Element::U8, channels}};
        call.blocks = {{Role::Laid, std::size_t(damage->specBytes)},
                       {Role::Scratch, std::size_t(damage->bufferBytes), Element::U8, damage->bufferBytes == 0}};
        call.prepare = [=](Arguments& a) {
            LumiInpaintState* pState = nullptr;
            const Lum32s width = damage->size.width;
            if (init(&pState, damage->distances.data(), width * Lum32s(sizeof(Lum32f)), damage->mask.data(), width,
                     damage->size, damage->radius, damage->method, a.block<Lum8u>(0), a.block<Lum8u>(1)) != lumOk)
                fail("Init failed");
        };
        call.ignoresStep = true;  // a width above the strides is a wrong size first
        const Lum32s rowBytes = damage->size.width * channels;
        for (const std::size_t image : {std::size_t{0}, std::size_t{1}})
            for (const Lum32s step : {0, -rowBytes, rowBytes - 1})
                call.violations.push_back({"image " + std::to_string(image) + " step " + std::to_string(step),
                                           {lumErrStep},
                                           [=](Arguments& a) { a.steps[image] = step; }});
        for (const int more : {-1, 1, 1000})
            call.violations.push_back({"width and " + std::to_string(more), {lumErrSize}, [=](Arguments& a) {
                                           a.width = damage->size.width + more;
                                       }});
        call.call = [=](const Arguments& a) {
            return apply(a.image<Lum8u>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(),
                         a.block<LumiInpaintState>(0), a.block<Lum8u>(1));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiInpaintGetSize", sizes},
    {"lumiInpaintInit_8u_C1R", state(lumiInpaintInit_8u_C1R, 1)},
    {"lumiInpaintInit_8u_C3R", state(lumiInpaintInit_8u_C3R, 3)},
    {"lumiInpaint_8u_C1R", repair(lumiInpaintInit_8u_C1R, lumiInpaint_8u_C1R, 1)},
    {"lumiInpaint_8u_C3R", repair(lumiInpaintInit_8u_C3R, lumiInpaint_8u_C3R, 3)},
}};

}  // namespace
