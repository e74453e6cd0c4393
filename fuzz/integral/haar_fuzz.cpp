// Fuzzes stages of Haar classifiers, from the size query to apply: random lists of classifiers, laid by the call's
// preparation. Windows read their rectangles from tables that end right behind the furthest of them.
#include <algorithm>
#include <cstring>
#include <memory>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename W>
using Init = LumStatus (*)(LumiHaarStageRecord*, const LumiRect*, const W*, const W*, const W*, const W*, const Lum32s*,
                           Lum32s);

template <typename W>
struct Stage
{
    std::vector<LumiRect> rects;
    std::vector<W> weights, thresholds, ifBelow, otherwise;
    std::vector<Lum32s> counts;
    Lum32s recordBytes = 0;
    LumiSize reach{0, 0};

    Stage(Choices& choices, LumiSize size, bool isTilted)
    {
        const int length = choices.between(1, 6);
        for (int c = 0; c < length; ++c) {
            counts.push_back(choices.oneIn(6) ? 4 : choices.between(1, 3));
            for (int r = 0; r < counts.back(); ++r) {
                LumiRect rect{choices.between(0, 6), choices.between(0, 6), choices.between(1, 6),
                              choices.between(1, 6)};
                if (isTilted)
                    rect.x += rect.height;  // no column is negative
                rects.push_back(rect);
                weights.push_back(W(choices.between(-4, 4)));
                reach.width = std::max(reach.width, rect.x + rect.width + 1);
                reach.height = std::max(reach.height, rect.y + rect.height + (isTilted ? rect.width : 0) + 1);
            }
            thresholds.push_back(W(choices.between(-50, 50)));
            ifBelow.push_back(W(choices.between(-3, 3)));
            otherwise.push_back(W(choices.between(-3, 3)));
        }
        const LumDataType type = std::is_same_v<W, Lum32s> ? lumType32s : lumType32f;
        if (lumiHaarClassifierGetSize(type, size, counts.data(), length, &recordBytes) != lumOk)
            fail("the size query failed");
    }

    void lay(Init<W> init, LumiHaarStageRecord* to) const
    {
        if (init(to, rects.data(), weights.data(), thresholds.data(), ifBelow.data(), otherwise.data(), counts.data(),
                 Lum32s(counts.size())) != lumOk)
            fail("Init failed");
    }
};

template <typename T>
ImageOperand table(LumiSize reach)
{
    ImageOperand operand{Role::Read, elementOf<T>()};
    operand.extra = reach;
    return operand;
}

ImageOperand candidates()
{
    ImageOperand operand{Role::Updated, Element::U8};
    operand.halfZero = true;
    return operand;
}

// What plain and mixed calls have in common. The record is the first block and the count the second.
template <typename W>
Call stageCall(Choices& choices, const std::string& name, const Stage<W>& stage, LumiSize size, Init<W> init,
               Role recordRole)
{
    Call call;
    call.function = name;
    call.arguments.width = size.width;
    call.arguments.height = size.height;
    call.blocks = {{recordRole, std::size_t(stage.recordBytes)}, {Role::Written, sizeof(Lum32s), Element::S32}};
    const Lum32s estimate = choices.between(-1, size.width * size.height / 2);
    call.prepare = [=](Arguments& a) {
        stage.lay(init, a.block<LumiHaarStageRecord>(0));
        *a.block<Lum32s>(1) = estimate;
    };
    call.arguments.parameter = Lum32f(choices.between(-4, 4));
    call.arguments.divisor = -choices.between(0, 70);
    return call;
}

template <typename P, typename W, typename... Scale>
Run plain(LumStatus (*f)(const P*, Lum32s, const W*, Lum32s, Lum8u*, Lum32s, LumiSize, Lum32s*, W, LumiHaarStageRecord*,
                         Scale...),
          Init<W> init, Init<W> tiltedInit)
{
    return [=](Choices& choices, const std::string& name) {
        const LumiSize size = chooseSize(choices);
        const bool isTilted = choices.oneIn(2);
        const Stage<W> stage(choices, size, isTilted);
        Call call = stageCall(choices, name, stage, size, isTilted ? tiltedInit : init, Role::Laid);
        call.images = {table<P>(stage.reach), table<W>({0, 0}), candidates()};
        call.call = [=](const Arguments& a) {
            return f(a.image<P>(0), a.step(0), a.image<W>(1), a.step(1), a.image<Lum8u>(2), a.step(2), a.size(),
                     a.block<Lum32s>(1), W(a.parameter), a.block<LumiHaarStageRecord>(0), Scale(a.divisor)...);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename P, typename W, typename... Scale>
Run mixed(LumStatus (*f)(const P*, Lum32s, const P*, Lum32s, const W*, Lum32s, Lum8u*, Lum32s, LumiSize, Lum32s*, W,
                         const LumiHaarStageRecord*, Scale...),
          Init<W> init, Init<W> tiltedInit)
{
    return [=](Choices& choices, const std::string& name) {
        const LumiSize size = chooseSize(choices);
        const bool isTilted = choices.oneIn(2);
        const Stage<W> stage(choices, size, isTilted);
        Call call = stageCall(choices, name, stage, size, isTilted ? tiltedInit : init, Role::Record);
        const LumiSize further{stage.reach.width + 1, stage.reach.height + 1};
        call.images = {table<P>(stage.reach), table<P>(further), table<W>({0, 0}), candidates()};
        call.call = [=](const Arguments& a) {
            return f(a.image<P>(0), a.step(0), a.image<P>(1), a.step(1), a.image<W>(2), a.step(2), a.image<Lum8u>(3),
                     a.step(3), a.size(), a.block<Lum32s>(1), W(a.parameter), a.block<LumiHaarStageRecord>(0),
                     Scale(a.divisor)...);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename V>
BlockOperand listOf(const std::vector<V>& values)
{
    return {Role::Read, values.size() * sizeof(V), sizeof(V) == sizeof(LumiRect) ? Element::S32 : numberElement<V>};
}

template <typename V>
void copyTo(const Arguments& a, std::size_t block, const std::vector<V>& values)
{
    std::memcpy(a.blocks[block], values.data(), values.size() * sizeof(V));
}

// A list of which one entry is another, in the place of a call's block.
template <typename V>
void addWrongEntry(Call& call, std::string name, LumStatus status, std::size_t block, std::vector<V> list,
                   std::size_t index, V entry)
{
    list[index] = entry;
    addViolation(call, std::move(name), status,
                 [=, wrong = std::make_shared<std::vector<V>>(std::move(list))](Arguments& a) {
                     a.blocks[block] = wrong->data();
                 });
}

// The number of classifiers stands in anchor.
template <typename W>
void addLengthViolations(Choices& choices, Call& call, const Stage<W>& stage, std::size_t countsBlock)
{
    call.arguments.anchor = Lum32s(stage.counts.size());
    for (const int wrong : {0, -1, INT32_MIN})
        addViolation(call, "length " + std::to_string(wrong), lumErrSize, [=](Arguments& a) { a.anchor = wrong; });
    const auto index = std::size_t(choices.between(0, int(stage.counts.size()) - 1));
    addWrongEntry<Lum32s>(call, "no rectangles", lumErrSize, countsBlock, stage.counts, index, 0);
}

void querySize(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const Stage<Lum32f> stage(choices, call.arguments.size(), false);
    addLengthViolations(choices, call, stage, 0);
    call.arguments.dataType = choices.oneIn(2) ? lumType32s : lumType32f;
    const int types[] = {0, lumType8u, lumType16s, lumType64f, -1, INT32_MIN};
    const int wrong = choices.oneOf(types);
    addViolation(call, "type " + std::to_string(wrong), lumErrDataType, [=](Arguments& a) { a.dataType = wrong; });
    if (call.arguments.dataType == lumType32f)
        addViolation(call, "a wide image", lumErrSizeTooLarge, [](Arguments& a) { a.width = INT32_MAX; });
    call.blocks = {listOf(stage.counts), {Role::Written, sizeof(Lum32s), Element::S32}};
    call.prepare = [=](Arguments& a) { copyTo(a, 0, stage.counts); };
    call.call = [](const Arguments& a) {
        return lumiHaarClassifierGetSize(a.dataType, a.size(), a.block<Lum32s>(0), a.anchor, a.block<Lum32s>(1));
    };
    tryCall(choices, std::move(call));
}

template <typename W>
Run prepare(Init<W> init, bool isTilted)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.ignoresSize = true;
        const Stage<W> stage(choices, call.arguments.size(), isTilted);
        addLengthViolations(choices, call, stage, 6);
        const auto index = std::size_t(choices.between(0, int(stage.rects.size()) - 1));
        LumiRect rect = stage.rects[index];
        Lum32s* const sides[] = {&rect.x, &rect.y, &rect.width, &rect.height};
        const int side = choices.between(0, 3);
        *sides[side] = side < 2 ? -1 : choices.between(-1, 0);
        addWrongEntry(call, "wrong rectangle", lumErrArgument, 1, stage.rects, index, rect);
        if (isTilted) {
            rect = stage.rects[index];
            rect.height = rect.x + 2;
            addWrongEntry(call, "rectangle beyond the left edge", lumErrArgument, 1, stage.rects, index, rect);
        }
        call.blocks = {{Role::Laid, std::size_t(stage.recordBytes)},
                       listOf(stage.rects),
                       listOf(stage.weights),
                       listOf(stage.thresholds),
                       listOf(stage.ifBelow),
                       listOf(stage.otherwise),
                       listOf(stage.counts)};
        call.prepare = [=](Arguments& a) {
            copyTo(a, 1, stage.rects);
            copyTo(a, 2, stage.weights);
            copyTo(a, 3, stage.thresholds);
            copyTo(a, 4, stage.ifBelow);
            copyTo(a, 5, stage.otherwise);
            copyTo(a, 6, stage.counts);
        };
        call.call = [=](const Arguments& a) {
            return init(a.block<LumiHaarStageRecord>(0), a.block<LumiRect>(1), a.block<W>(2), a.block<W>(3),
                        a.block<W>(4), a.block<W>(5), a.block<Lum32s>(6), a.anchor);
        };
        tryCall(choices, std::move(call));
    };
}

using WindowSize = LumStatus (*)(const LumiHaarStageRecord*, LumiSize*);

template <typename W>
Run windowSize(WindowSize f, Init<W> init, Init<W> tiltedInit)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.ignoresSize = true;
        const bool isTilted = choices.oneIn(2);
        const Stage<W> stage(choices, call.arguments.size(), isTilted);
        call.blocks = {{Role::Record, std::size_t(stage.recordBytes)}, {Role::Written, sizeof(LumiSize), Element::S32}};
        call.prepare = [=](Arguments& a) { stage.lay(isTilted ? tiltedInit : init, a.block<LumiHaarStageRecord>(0)); };
        call.call = [=](const Arguments& a) { return f(a.block<LumiHaarStageRecord>(0), a.block<LumiSize>(1)); };
        tryCall(choices, std::move(call));
    };
}

// The window of the turned stage is what can be told from outside. The point that stays stands in divisor.
template <typename W>
Run tilt(LumStatus (*f)(const Lum8u*, Lum32s, LumiHaarStageRecord*), WindowSize window, Init<W> init,
         Init<W> tiltedInit)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.ignoresSize = true;
        const Stage<W> stage(choices, call.arguments.size(), true);
        call.arguments.divisor = choices.between(-1, 5);
        std::vector<Lum8u> mask;
        for (std::size_t i = 0; i < stage.counts.size(); ++i)
            mask.push_back(Lum8u(choices.oneIn(2) ? choices.between(1, 255) : 0));
        call.blocks = {{Role::Read, mask.size()},
                       {Role::Laid, std::size_t(stage.recordBytes)},
                       {Role::Written, sizeof(LumiSize), Element::S32, true}};
        call.prepare = [=](Arguments& a) {
            copyTo(a, 0, mask);
            stage.lay(init, a.block<LumiHaarStageRecord>(1));
        };
        addViolation(
            call, "tilted already", lumErrArgument,
            [=, other = std::make_shared<std::vector<Lum64s>>(std::size_t(stage.recordBytes) / 8 + 1)](Arguments& a) {
                a.blocks[1] = other->data();
                stage.lay(tiltedInit, a.block<LumiHaarStageRecord>(1));
            });
        call.call = [=](const Arguments& a) {
            const LumStatus status = f(a.block<Lum8u>(0), a.divisor, a.block<LumiHaarStageRecord>(1));
            if (status == lumOk && window(a.block<LumiHaarStageRecord>(1), a.block<LumiSize>(2)) != lumOk)
                fail("the record is not one any more");
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

const Targets preparations{{
    {"lumiHaarClassifierGetSize", querySize},
    {"lumiHaarClassifierInit_32f", prepare(lumiHaarClassifierInit_32f, false)},
    {"lumiHaarClassifierInit_32s", prepare(lumiHaarClassifierInit_32s, false)},
    {"lumiTiltedHaarClassifierInit_32f", prepare(lumiTiltedHaarClassifierInit_32f, true)},
    {"lumiTiltedHaarClassifierInit_32s", prepare(lumiTiltedHaarClassifierInit_32s, true)},
    {"lumiGetHaarClassifierSize_32f",
     windowSize<Lum32f>(lumiGetHaarClassifierSize_32f, lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiGetHaarClassifierSize_32s",
     windowSize<Lum32s>(lumiGetHaarClassifierSize_32s, lumiHaarClassifierInit_32s, lumiTiltedHaarClassifierInit_32s)},
    {"lumiTiltHaarFeatures_32f", tilt<Lum32f>(lumiTiltHaarFeatures_32f, lumiGetHaarClassifierSize_32f,
                                              lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiTiltHaarFeatures_32s", tilt<Lum32s>(lumiTiltHaarFeatures_32s, lumiGetHaarClassifierSize_32s,
                                              lumiHaarClassifierInit_32s, lumiTiltedHaarClassifierInit_32s)},
}};

const Targets targets{{
    {"lumiApplyHaarClassifier_32f_C1R",
     plain(lumiApplyHaarClassifier_32f_C1R, lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiApplyHaarClassifier_32s32f_C1R",
     plain(lumiApplyHaarClassifier_32s32f_C1R, lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiApplyHaarClassifier_32s_C1RSfs",
     plain(lumiApplyHaarClassifier_32s_C1RSfs, lumiHaarClassifierInit_32s, lumiTiltedHaarClassifierInit_32s)},
    {"lumiApplyMixedHaarClassifier_32f_C1R",
     mixed(lumiApplyMixedHaarClassifier_32f_C1R, lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiApplyMixedHaarClassifier_32s32f_C1R",
     mixed(lumiApplyMixedHaarClassifier_32s32f_C1R, lumiHaarClassifierInit_32f, lumiTiltedHaarClassifierInit_32f)},
    {"lumiApplyMixedHaarClassifier_32s_C1RSfs",
     mixed(lumiApplyMixedHaarClassifier_32s_C1RSfs, lumiHaarClassifierInit_32s, lumiTiltedHaarClassifierInit_32s)},
}};

}  // namespace
