// Fuzzes FAST corners, what they need before they can be found, and the list of them.
#include <cmath>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

struct Detector
{
    LumiSize imageSize;
    Lum32s radius, arc, bins, mode;
    Lum32f threshold;

    Lum32s specBytes() const
    {
        Lum32s bytes = -1;
        if (lumiFastNGetSize(imageSize, radius, arc, bins, mode, lumType8u, 1, &bytes) != lumOk || bytes < 0)
            fail("the size query failed");
        return bytes;
    }

    void lay(LumFastNSpec* spec) const
    {
        if (lumiFastNInit(imageSize, radius, arc, bins, mode, threshold, lumType8u, 1, spec) != lumOk)
            fail("Init failed");
    }
};

Detector choose(Choices& choices, LumiSize imageSize)
{
    const int radii[] = {1, 2, 3, 3, 3, 5, 7, 9};
    const int points[] = {0, 8, 12, 16, 0, 28, 0, 40, 0, 52};
    const int thresholds[] = {0, 1, 5, 20, 60, 254, 255, 1000};
    const int scores[] = {0, lumFastNScore, lumFastNScore | lumFastNNonMaxSuppression};
    const int radius = choices.oneOf(radii);
    const int least = points[radius] / 2 | 1;
    const int arc = choices.oneIn(2) ? least : choices.between(least, points[radius]);
    int mode = lumFastNCorners | choices.oneOf(scores);
    if (choices.oneIn(2))
        mode |= lumFastNOrientation;
    return {imageSize, radius, arc, choices.between(1, 64), mode, float(choices.oneOf(thresholds))};
}

// The ROI lies in the image, which has more columns and rows, or beyond it on two sides.
void mark(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const LumiSize size = call.arguments.size();
    const LumiSize extra = {choices.between(0, 20), choices.between(0, 20)};
    const Detector detector = choose(choices, {size.width + extra.width, size.height + extra.height});
    const LumiPoint offset = {choices.between(-3, extra.width + 3), choices.between(-3, extra.height + 3)};
    const bool withScores = detector.mode & lumFastNScore;
    ImageOperand image{Role::Read, Element::U8};
    image.extra = extra;
    image.leastExtra = extra.width;
    call.images = {image, {Role::Updated, Element::U8}, {Role::Updated, Element::U8}};
    Lum32s bufferBytes = -1;
    {
        std::vector<Lum8u> block(std::size_t(detector.specBytes()));
        auto* const spec = reinterpret_cast<LumFastNSpec*>(block.data());
        detector.lay(spec);
        if (lumiFastNGetBufferSize(spec, size, &bufferBytes) != lumOk)
            fail("the query of the scratch failed");
    }
    call.blocks = {{Role::Record, std::size_t(detector.specBytes())},
                   {Role::Scratch, std::size_t(bufferBytes)},
                   {Role::Written, sizeof(Lum32s), Element::S32}};
    call.prepare = [=](Arguments& a) { detector.lay(a.block<LumFastNSpec>(0)); };
    call.call = [=](const Arguments& a) {
        auto* const score = a.image<Lum8u>(2);
        if (!withScores && (!score || a.step(2) < a.width))
            return LumStatus{score ? lumErrStep : lumErrNullPointer};  // which would not be noticed
        auto* const count = a.block<Lum32s>(2);
        const LumStatus status =
            lumiFastN_8u_C1R(a.image<Lum8u>(0), a.step(0), a.image<Lum8u>(1), a.step(1), score, a.step(2), count,
                             offset, a.size(), a.block<LumFastNSpec>(0), a.block<Lum8u>(1));
        if (status != lumWrnRoiClipped)
            return status;
        const bool isOutside = offset.x >= detector.imageSize.width || offset.y >= detector.imageSize.height ||
                               offset.x + a.width <= 0 || offset.y + a.height <= 0;
        if (isOutside)
            *count = 0;  // so that both runs can be compared: it was not written
        return LumStatus{lumOk};
    };
    tryCall(choices, std::move(call));
}

void list(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const Detector detector = choose(choices, call.arguments.size());
    const bool withScores = detector.mode & lumFastNScore;
    const int room = choices.between(0, 50);
    call.arguments.divisor = room;
    ImageOperand map{Role::Read, Element::U8};
    map.halfZero = true;
    call.images = {map, {Role::Read, Element::U8}};
    call.blocks = {{Role::Record, std::size_t(detector.specBytes())},
                   {Role::Written, std::size_t(room + 1) * sizeof(LumCornerFastN), Element::S32},
                   {Role::Written, sizeof(Lum32s), Element::S32}};
    call.prepare = [=](Arguments& a) { detector.lay(a.block<LumFastNSpec>(0)); };
    call.violations.push_back({"room", {lumErrSize}, [](Arguments& a) { a.divisor = -1; }});
    call.call = [=](const Arguments& a) {
        const auto* const score = a.image<Lum8u>(1);
        if (!withScores && (!score || a.step(1) < a.width))
            return LumStatus{score ? lumErrStep : lumErrNullPointer};
        auto* const found = a.block<LumCornerFastN>(1);
        auto* const count = a.block<Lum32s>(2);
        const LumStatus status = lumiFastN2DToVec_8u(a.image<Lum8u>(0), a.step(0), score, a.step(1), found, a.size(),
                                                     a.divisor, count, a.block<LumFastNSpec>(0));
        if (status == lumOk)  // so that both runs can be compared
            for (int i = *count; i <= room; ++i)
                found[i] = {};
        if (status == lumOk && *count >= room)
            found[room] = {};
        return status;
    };
    tryCall(choices, std::move(call));
}

// The radius stands in kernelSize, the points of an arc in anchor, the bins in borderType, the mode in divisor, the
// threshold in parameter.
Call beginRecord(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    const Detector detector = choose(choices, a.size());
    a.kernelSize = detector.radius;
    a.anchor = detector.arc;
    a.borderType = detector.bins;
    a.divisor = detector.mode;
    a.parameter = detector.threshold;
    a.dataType = lumType8u;
    a.channels = 1;
    const int radii[] = {0, 4, 6, 8, 10, -1, INT32_MIN};
    const int radius = choices.oneOf(radii);
    addViolation(call, "radius " + std::to_string(radius), lumErrArgument,
                 [=](Arguments& b) { b.kernelSize = radius; });
    const int arcs[] = {0, 1, 53, -9, INT32_MIN, INT32_MAX};
    const int arc = choices.oneOf(arcs);
    addViolation(call, "arc " + std::to_string(arc), lumErrOutOfRange, [=](Arguments& b) { b.anchor = arc; });
    const int modes[] = {0, lumFastNScore, lumFastNCorners | lumFastNNonMaxSuppression, -1, INT32_MIN};
    const int mode = choices.oneOf(modes);
    addViolation(call, "mode " + std::to_string(mode), lumErrArgument, [=](Arguments& b) { b.divisor = mode; });
    const int counts[] = {0, 65, -1, INT32_MAX};
    const int bins = choices.oneOf(counts);
    addViolation(call, "bins " + std::to_string(bins), lumErrOutOfRange, [=](Arguments& b) {
        b.borderType = bins;
        b.divisor |= lumFastNOrientation;
    });
    const int types[] = {0, lumType16u, lumType32f, -1, INT32_MIN};
    const int type = choices.oneOf(types);
    addViolation(call, "type " + std::to_string(type), lumErrDataType, [=](Arguments& b) { b.dataType = type; });
    const int channels[] = {0, 2, 3, -1, INT32_MAX};
    const int count = choices.oneOf(channels);
    addViolation(call, "channels " + std::to_string(count), lumErrChannels, [=](Arguments& b) { b.channels = count; });
    return call;
}

void querySize(Choices& choices, const std::string& name)
{
    Call call = beginRecord(choices, name);
    call.blocks = {{Role::Written, sizeof(Lum32s), Element::S32}};
    call.call = [](const Arguments& a) {
        return lumiFastNGetSize(a.size(), a.kernelSize, a.anchor, a.borderType, a.divisor, a.dataType, a.channels,
                                a.block<Lum32s>(0));
    };
    tryCall(choices, std::move(call));
}

void init(Choices& choices, const std::string& name)
{
    Call call = beginRecord(choices, name);
    const Arguments& a = call.arguments;
    const Detector detector{a.size(), a.kernelSize, a.anchor, a.borderType, a.divisor, a.parameter};
    const Lum32f thresholds[] = {-1, -1e-30f, -INFINITY, NAN};
    const Lum32f wrong = choices.oneOf(thresholds);
    addViolation(call, "threshold " + std::to_string(wrong), lumErrThreshold,
                 [=](Arguments& b) { b.parameter = wrong; });
    call.blocks = {{Role::Laid, std::size_t(detector.specBytes())}};
    call.call = [](const Arguments& b) {
        return lumiFastNInit(b.size(), b.kernelSize, b.anchor, b.borderType, b.divisor, b.parameter, b.dataType,
                             b.channels, b.block<LumFastNSpec>(0));
    };
    tryCall(choices, std::move(call));
}

void queryScratch(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const Detector detector = choose(choices, call.arguments.size());
    addViolation(call, "a wide image", lumErrSizeTooLarge, [](Arguments& a) { a.width = INT32_MAX; });
    addViolation(call, "a record that no Init has seen", lumErrContext, [](Arguments& a) {
        static Lum64s zeros[32] = {};
        if (a.blocks[0])
            a.blocks[0] = zeros;
    });
    call.blocks = {{Role::Record, std::size_t(detector.specBytes())}, {Role::Written, sizeof(Lum32s), Element::S32}};
    call.prepare = [=](Arguments& a) { detector.lay(a.block<LumFastNSpec>(0)); };
    call.call = [](const Arguments& a) {
        return lumiFastNGetBufferSize(a.block<LumFastNSpec>(0), a.size(), a.block<Lum32s>(1));
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiFastNGetSize", querySize},
    {"lumiFastNInit", init},
    {"lumiFastNGetBufferSize", queryScratch},
    {"lumiFastN_8u_C1R", mark},
    {"lumiFastN2DToVec_8u", list},
}};

}  // namespace
