// Fuzzes stages of Haar classifiers: random lists of classifiers, laid by the call's preparation. Windows read their
// rectangles from tables that end right behind the furthest of them.
#include <algorithm>
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
