// Fuzzes the background model: the size, Init, and frames with any parameters and rates. A state's bytes depend on its
// address, so what a call has left in it is seen by what the next one tells.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

LumFGMMModel chooseModel(Choices& choices, int maxNGauss)
{
    const Lum32f variances[] = {0, 1, 4, 15, 75, 1000}, shares[] = {0, 0.3f, 0.7f, 0.9f, 1, 2};
    const Lum32f losses[] = {0, 0, 0.05f, 0.05f, 0.2f, 1, 3, -1};
    LumFGMMModel model;
    model.numFrames = Lum32u(choices.oneIn(8) ? 0 : choices.between(1, 300));
    model.maxNGauss = Lum32u(choices.between(0, maxNGauss));
    model.varInit = choices.oneOf(variances);
    model.varMin = choices.oneOf(variances);
    model.varMax = choices.oneOf(variances);
    model.varWBRatio = choices.oneOf(variances);
    model.bckgRatio = choices.oneOf(shares);
    model.varWGen = choices.oneOf(variances);
    model.CT = choices.oneOf(losses);
    model.shadowValue = Lum8u(choices.between(0, 255));
    model.shadowFlag = Lum8u(choices.between(0, 2));
    model.shadowRatio = choices.oneOf(shares);
    return model;
}

Lum64f chooseRate(Choices& choices)
{
    const Lum64f rates[] = {-1, -1, -1, 0, 0.01, 0.3, 1, 2, 1e300};
    return choices.oneOf(rates);
}

Lum32s sizeOfState(LumiSize size, Lum32s maxNGauss)
{
    Lum32s bytes = 0;
    if (lumiFGMMGetBufferSize_8u_C3R(size, maxNGauss, &bytes) != lumOk)
        fail("the size query failed");
    return bytes;
}

void addWrongCounts(Call& call)
{
    for (const int wrong : {0, -1, INT32_MIN})
        call.violations.push_back(
            {"maxNGauss " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& a) { a.kernelSize = wrong; }});
}

// maxNGauss stands in kernelSize.
void size(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    call.arguments.kernelSize = choices.between(1, 300);
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    addWrongCounts(call);
    call.call = [](const Arguments& a) {
        return lumiFGMMGetBufferSize_8u_C3R(a.size(), a.kernelSize, a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

void init(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    a.width = choices.between(1, 60);
    a.height = choices.between(1, 20);
    a.kernelSize = choices.between(1, 6);
    const LumFGMMModel model = chooseModel(choices, 300);
    call.blocks = {{Role::Read, sizeof(LumFGMMModel)}, {Role::Laid, std::size_t(sizeOfState(a.size(), a.kernelSize))}};
    call.prepare = [=](Arguments& b) { *b.block<LumFGMMModel>(0) = model; };
    addWrongCounts(call);
    call.call = [](const Arguments& b) {
        return lumiFGMMInit_8u_C3R(b.size(), b.kernelSize, b.block<LumFGMMModel>(0), b.block<LumFGMMState>(1));
    };
    tryCall(choices, std::move(call));
}

// A model that has seen some frames, the same each time it is made.
struct Past
{
    LumiSize size;
    Lum32s maxNGauss;
    LumFGMMModel model;
    std::vector<std::vector<Lum8u>> frames;
    std::vector<Lum64f> rates;

    explicit Past(Choices& choices)
        : size{choices.between(1, 60), choices.between(1, 12)},
          maxNGauss(choices.between(1, 6)),
          model(chooseModel(choices, maxNGauss))
    {
        const int colours = choices.between(1, 5), noise = choices.between(1, 9);
        for (int i = choices.between(0, 20); i > 0; --i) {
            auto& frame = frames.emplace_back(3 * std::size_t(size.width) * std::size_t(size.height));
            std::uint64_t bits = 0;
            for (Lum8u& value : frame) {
                bits = bits ? bits / 64 : choices.seed();
                value = Lum8u(53 * int(bits % 64 % unsigned(colours)) + int(bits / 8 % unsigned(noise)));
            }
            rates.push_back(chooseRate(choices));
        }
    }

    void lay(LumFGMMState* state) const
    {
        if (lumiFGMMInit_8u_C3R(size, maxNGauss, &model, state) != lumOk)
            fail("Init failed");
        std::vector<Lum8u> classes(std::size_t(size.width) * std::size_t(size.height));
        for (std::size_t i = 0; i < frames.size(); ++i)
            if (lumiFGMMForeground_8u_C3R(frames[i].data(), 3 * size.width, classes.data(), size.width, size, state,
                                          nullptr, rates[i]) != lumOk)
                fail("a frame failed");
    }
};

// What frames and rendering share. The ROI of the call may be smaller than the model's.
Call callWith(Choices& choices, const std::string& name, const Past& past)
{
    Call call;
    call.function = name;
    call.arguments.width = choices.oneIn(3) ? choices.between(1, past.size.width) : past.size.width;
    call.arguments.height = choices.oneIn(3) ? choices.between(1, past.size.height) : past.size.height;
    call.ignoresStep = true;  // strides are tested for their sign only
    const Lum32s width = past.size.width, height = past.size.height;
    for (const int more : {1, 1000}) {
        call.violations.push_back(
            {"width and " + std::to_string(more), {lumErrSize}, [=](Arguments& a) { a.width = width + more; }});
        call.violations.push_back(
            {"height and " + std::to_string(more), {lumErrSize}, [=](Arguments& a) { a.height = height + more; }});
    }
    return call;
}

void addWrongSteps(Call& call)
{
    for (std::size_t image = 0; image < call.images.size(); ++image)
        for (const Lum32s step : {0, -1, INT32_MIN})
            call.violations.push_back({"image " + std::to_string(image) + " step " + std::to_string(step),
                                       {lumErrStep},
                                       [=](Arguments& a) { a.steps[image] = step; }});
}

void frame(Choices& choices, const std::string& name)
{
    const Past past(choices);
    Call call = callWith(choices, name, past);
    call.images = {{Role::Read, Element::U8, 3}, {Role::Written, Element::U8}};
    call.blocks = {{Role::Laid, std::size_t(sizeOfState(past.size, past.maxNGauss))},
                   {Role::Read, sizeof(LumFGMMModel), Element::U8, true},
                   {Role::Written, std::size_t(3 * call.arguments.width * call.arguments.height), Element::U8, true}};
    const LumFGMMModel model = chooseModel(choices, past.maxNGauss);
    const bool isNew = choices.oneIn(3);
    const Lum64f rate = chooseRate(choices);
    call.prepare = [=](Arguments& a) {
        past.lay(a.block<LumFGMMState>(0));
        if (a.blocks[1])
            *a.block<LumFGMMModel>(1) = model;
    };
    addWrongSteps(call);
    call.violations.push_back({"maxNGauss of the model", {lumErrArgument}, [](Arguments& a) { a.parameter = 1; }});
    call.call = [=](const Arguments& a) {
        auto* const state = a.block<LumFGMMState>(0);
        LumFGMMModel tooMany = model;
        tooMany.maxNGauss = Lum32u(past.maxNGauss) + 1;
        const LumFGMMModel* const given = a.parameter != 0 ? &tooMany : isNew ? a.block<LumFGMMModel>(1) : nullptr;
        const LumStatus status = lumiFGMMForeground_8u_C3R(a.image<Lum8u>(0), a.step(0), a.image<Lum8u>(1), a.step(1),
                                                           a.size(), state, given, rate);
        // the last block shows what the frame has left in the state
        if (status == lumOk && a.blocks[2] &&
            lumiFGMMBackground_8u_C3R(a.block<Lum8u>(2), 3 * a.size().width, a.size(), state) != lumOk)
            fail("rendering failed");
        return status;
    };
    tryCall(choices, std::move(call));
}

void render(Choices& choices, const std::string& name)
{
    const Past past(choices);
    Call call = callWith(choices, name, past);
    call.images = {{Role::Written, Element::U8, 3}};
    call.blocks = {{Role::Laid, std::size_t(sizeOfState(past.size, past.maxNGauss))}};
    call.prepare = [=](Arguments& a) { past.lay(a.block<LumFGMMState>(0)); };
    addWrongSteps(call);
    call.call = [](const Arguments& a) {
        return lumiFGMMBackground_8u_C3R(a.image<Lum8u>(0), a.step(0), a.size(), a.block<LumFGMMState>(0));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiFGMMGetBufferSize_8u_C3R", size},
    {"lumiFGMMInit_8u_C3R", init},
    {"lumiFGMMForeground_8u_C3R", frame},
    {"lumiFGMMBackground_8u_C3R", render},
}};

}  // namespace
