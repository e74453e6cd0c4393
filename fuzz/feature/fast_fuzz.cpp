// Fuzzes FAST corners and the list of them.
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

const Targets targets{{
    {"lumiFastN_8u_C1R", mark},
    {"lumiFastN2DToVec_8u", list},
}};

}  // namespace
