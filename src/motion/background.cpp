// A background model: a few weighted Gaussian modes for each pixel of colour video, which every frame updates and which
// tell what belongs to the background, what is in front of it and what is a shadow.
#include <cstring>

#include "frame/block.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/room.hpp"
#include "motion/background_modes.hpp"

namespace lumcv {
namespace {

/// Pixels of a row whose modes are kept together, lane by lane. What is left of a row is kept pixel by pixel.
constexpr int groupPixels = 8;

constexpr int64_t blockAlignment = 32;

}  // namespace
}  // namespace lumcv

using namespace lumcv;

/// Stands at the first address in the caller's block that has its alignment. The planes follow.
struct alignas(blockAlignment) LumFGMMState
{
    LumiSizeL size;
    int64_t capacity;  // modes for which each pixel has room
    int64_t frames;    // taken so far
    LumFGMMModel model;
    Lum32f* counts;   // of each pixel's modes
    Lum32f* weights;  // of each pixel's slots
    Lum32f* groups;   // of four for each slot: the means and the variance
};

namespace lumcv {
namespace {

/// Calls body(x, y, lanes, slots) for whole groups of pixels and for the single pixels that are left.
template <class Body>
[[gnu::always_inline]] inline void eachGroup(const LumFGMMState& state, LumiSize roiSize, Body body)
{
    const int64_t grouped = state.size.width / groupPixels * groupPixels;
    for (int64_t y = 0; y < roiSize.height; ++y) {
        const auto slots = [&state, y](int64_t first, int64_t lane, int64_t together) {
            const int64_t at = y * state.size.width + first;
            return Slots{state.weights + at + lane, state.groups + 4 * at + lane, state.size.width * state.size.height,
                         together};
        };
        int64_t x = 0;
        for (; x + groupPixels <= roiSize.width; x += groupPixels)
            body(x, y, simd::Lanes<groupPixels>{}, slots(x, 0, groupPixels));
        for (; x < roiSize.width; ++x) {
            const int64_t lane = x % groupPixels;
            if (x < grouped)  // of a group that the ROI cuts
                body(x, y, simd::Lanes<1>{}, slots(x - lane, lane, groupPixels));
            else
                body(x, y, simd::Lanes<1>{}, slots(x, 0, 1));
        }
    }
}

Bytes stateBytes(LumiSize roiSize, Lum32s maxNGauss)
{
    const Bytes pixels = Bytes{roiSize.width} * roiSize.height, modes = pixels * maxNGauss;
    const Bytes tables = 3 * roundedUp(Bytes{maxNGauss} * 8, blockAlignment);
    return (pixels + tables + (modes * 8 + 62) / 64 * 64 + 191) / 32 * 32 + roundedUp(modes * 16, blockAlignment) + 256;
}

Checks modelChecks(const void* pointer, LumiSize roiSize, Lum32s maxNGauss)
{
    return Checks{}.notNull(pointer).size(roiSize).require(maxNGauss >= 1, lumErrArgument);
}

/// A model may stand at any byte address.
LumFGMMModel modelAt(const LumFGMMModel* pModel)
{
    LumFGMMModel model;
    std::memcpy(&model, pModel, sizeof model);
    return model;
}

void zeroBlock(Lum8u* block, Bytes bytes)
{
    constexpr Lum32s most = 1 << 30;
    for (; bytes > 0; bytes -= most, block += most)
        lumBlockZero_8u(block, bytes < most ? static_cast<Lum32s>(bytes) : most);
}

LumStatus layState(LumiSize roiSize, Lum32s maxNGauss, const LumFGMMModel* pModel, void* block)
{
    const Bytes bytes = pModel ? stateBytes(roiSize, maxNGauss) : 0;
    auto checks = modelChecks(pModel && block ? block : nullptr, roiSize, maxNGauss);
    if (checks.require(fits<Lum32u>(bytes), lumErrSizeTooLarge).failed())
        return checks.status();
    zeroBlock(static_cast<Lum8u*>(block), bytes);

    auto& state = *alignedIn<LumFGMMState>(block);
    const int64_t pixels = int64_t{roiSize.width} * roiSize.height;
    state.size = widened(roiSize);
    state.capacity = maxNGauss;
    state.model = modelAt(pModel);
    state.model.maxNGauss = static_cast<Lum32u>(maxNGauss);
    // counts and weights take no more than the 8 bytes that a mode has beside its group
    Room room(&state + 1, blockAlignment);
    state.counts = room.take<Lum32f>(pixels);
    state.weights = room.take<Lum32f>(pixels * maxNGauss);
    state.groups = room.take<Lum32f>(pixels * maxNGauss * 4);
    return lumOk;
}

/// The ROI of a call is not above that of the state.
Checks& roiFits(Checks& checks, LumiSize roiSize, const LumFGMMState* block)
{
    if (checks.size(roiSize).failed())
        return checks;
    const LumiSizeL size = alignedIn<LumFGMMState>(block)->size;
    return checks.require(roiSize.width <= size.width && roiSize.height <= size.height, lumErrSize);
}

FrameRules rulesOf(const LumFGMMState& state, Lum64f learningRate)
{
    const auto automatic = [&state] {
        const int64_t doubled = 2 * state.frames, history = state.model.numFrames;
        return 1.0 / static_cast<Lum64f>(doubled < history ? doubled : history);
    };
    const Lum64f rate = state.frames > 1 && learningRate >= 0 ? learningRate : automatic();
    FrameRules rules{};
    rules.model = state.model;
    rules.rate = static_cast<Lum32f>(rate);
    rules.kept = static_cast<Lum32f>(1 - rate);
    rules.loss = static_cast<Lum32f>(rate * static_cast<Lum64f>(state.model.CT));
    rules.mostModes = static_cast<Lum32f>(state.model.maxNGauss > 1 ? state.model.maxNGauss : 1);
    return rules;
}

[[gnu::flatten]] LumStatus foreground(Plane<const Lum8u> src, Plane<Lum8u> dst, LumiSize roiSize, LumFGMMState* block,
                                      const LumFGMMModel* pModel, Lum64f learningRate)
{
    auto checks = Checks{}.notNull(src.pixels, dst.pixels, block).require(src.step >= 1 && dst.step >= 1, lumErrStep);
    if (roiFits(checks, roiSize, block).failed())
        return checks.status();
    LumFGMMState& state = *alignedIn<LumFGMMState>(block);
    if (pModel) {
        const LumFGMMModel model = modelAt(pModel);
        if (model.maxNGauss > state.capacity)
            return lumErrArgument;
        state.model = model;
    }
    ++state.frames;
    const FrameRules rules = rulesOf(state, learningRate);
    eachGroup(state, roiSize, [&](int64_t x, int64_t y, auto lanes, const Slots& slots) {
        ModesOf<lanes> modes(slots, rules, src.row(y) + 3 * x);
        simd::storeBytes(dst.row(y) + x, modes.takeFrame(state.counts + y * state.size.width + x));
    });
    return lumOk;
}

[[gnu::flatten]] LumStatus background(Plane<Lum8u> dst, LumiSize roiSize, const LumFGMMState* block)
{
    auto checks = Checks{}.notNull(dst.pixels, block).require(dst.step >= 1, lumErrStep);
    if (roiFits(checks, roiSize, block).failed())
        return checks.status();
    const LumFGMMState& state = *alignedIn<LumFGMMState>(block);
    eachGroup(state, roiSize, [&](int64_t x, int64_t y, auto lanes, const Slots& slots) {
        renderBackground<lanes>(slots, state.counts + y * state.size.width + x, state.model.bckgRatio,
                                dst.row(y) + 3 * x);
    });
    return lumOk;
}

}  // namespace
}  // namespace lumcv

LumStatus lumiFGMMGetBufferSize_8u_C3R(LumiSize roiSize, Lum32s maxNGauss, Lum32s* pStateSize)
{
    const auto checks = modelChecks(pStateSize, roiSize, maxNGauss);
    if (!checks.failed())
        *pStateSize = static_cast<Lum32s>(stateBytes(roiSize, maxNGauss));
    return checks.status();
}

LumStatus lumiFGMMInit_8u_C3R(LumiSize roiSize, Lum32s maxNGauss, const LumFGMMModel* pModel, LumFGMMState* pState)
{
    return layState(roiSize, maxNGauss, pModel, pState);
}

LumStatus lumiFGMMForeground_8u_C3R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize,
                                    LumFGMMState* pState, const LumFGMMModel* pModel, Lum64f learningRate)
{
    return foreground(source(pSrc, srcStep), destination(pDst, dstStep), roiSize, pState, pModel, learningRate);
}

LumStatus lumiFGMMBackground_8u_C3R(Lum8u* pDst, Lum32s dstStep, LumiSize roiSize, const LumFGMMState* pState)
{
    return background(destination(pDst, dstStep), roiSize, pState);
}
