// The sizes that inpainting asks for, and the order of its checks.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "distance/inpaint_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::distance {
namespace {

constexpr Lum32f kInfinity = std::numeric_limits<Lum32f>::infinity();
constexpr Lum32f kNotANumber = std::numeric_limits<Lum32f>::quiet_NaN();

constexpr std::int64_t up(std::int64_t value, std::int64_t multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

struct Bytes
{
    std::int64_t spec;
    std::int64_t buffer;
};

Bytes expectedBytes(const WorkRectangle& work, Lum32f radius, LumiInpaintMethod method, int channels)
{
    if (work.count == 0) {
        return {192, 0};
    }
    const int k = static_cast<int>(2 * radius + 1);
    const std::int64_t n = 2 * static_cast<std::int64_t>(radius) + 1;
    Lum32s wideSpec = 0;
    Lum32s wideBuffer = 0;
    Lum32s crossSpec = 0;
    Lum32s crossBuffer = 0;
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({work.width, work.height}, {k, k}, &wideSpec, &wideBuffer), lumOk);
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({work.width, work.height}, {3, 3}, &crossSpec, &crossBuffer), lumOk);
    const std::int64_t h = work.height;
    const std::int64_t w = work.width;
    const std::int64_t distances = up(4 * w, 64) * h;
    Bytes result = {0, 0};
    result.buffer = wideBuffer + std::int64_t{crossBuffer} + n * n;
    result.spec = up(std::int64_t{8} * work.count, 64) + up(n * n * 28, 64) + distances + 2 * h * up(w, 64) +
                  (method == lumInpaintByFront ? distances : 0) +
                  (up(wideSpec, 16) + up(crossSpec, 16) + 207) / 64 * 64 + up(channels * w * 4, 64) * h + 64;
    return result;
}

TEST(InpaintSizeQuick, Formula)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, {1, 30}, {30, 1}, {16, 16}, {15, 40}, {64, 48}, {200, 31}}) {
        for (int damage = 0; damage < static_cast<int>(Damage::Count); ++damage) {
            Repair repair;
            repair.size = size;
            repair.damage = static_cast<Damage>(damage);
            repair.gap = number % 7;
            repair.seed = static_cast<std::uint64_t>(number++);
            const Image<Lum8u> mask = repair.mask();
            for (const Lum32f radius : {1.0f, 1.25f, 1.5f, 1.75f, 2.0f, 3.0f, 5.0f, 7.5f, 20.0f, 100.0f}) {
                for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
                    for (const int channels : {1, 3}) {
                        repair.radius = radius;
                        repair.method = method;
                        repair.channels = channels;
                        Lum32s spec = -1;
                        Lum32s buffer = -1;
                        EXPECT_EQ(repair.sizes(mask, spec, buffer), lumOk);
                        const Bytes expected = expectedBytes(workRectangle(mask, radius), radius, method, channels);
                        EXPECT_EQ(spec, expected.spec) << repair;
                        EXPECT_EQ(buffer, expected.buffer) << repair;
                    }
                }
            }
        }
    }
}

TEST(InpaintSizeQuick, TooLarge)
{
    Repair repair;
    repair.size = {40, 30};
    const Image<Lum8u> mask = repair.mask();
    const Image<Lum32f> distance = repair.distanceImage(mask);
    // the table alone, then the element of the ring, then numbers that are no integers
    for (const Lum32f radius : {5000.0f, 20000.0f, 1e9f, 3e9f, 1e30f, kInfinity}) {
        repair.radius = radius;
        Lum32s spec = -1;
        Lum32s buffer = -1;
        EXPECT_EQ(repair.sizes(mask, spec, buffer), lumErrSizeTooLarge) << radius;
        EXPECT_EQ(spec, -1);
        EXPECT_EQ(buffer, -1);
        LumiInpaintState* state = nullptr;
        Lum8u block[256] = {};
        EXPECT_EQ(lumiInpaintInit_8u_C1R(&state, distance.pixels(), distance.step(), mask.pixels(), mask.step(),
                                         repair.size, radius, lumInpaintByFront, block, block),
                  lumErrSizeTooLarge)
            << radius;
        EXPECT_EQ(state, nullptr);
    }
}

struct SizeArgs
{
    Lum32s* specBytes;
    Lum32s* bufferBytes;
    const Lum8u* pMask;
    Lum32s maskStep;
    LumiSize roiSize;
    Lum32f radius;
    LumiInpaintMethod method;
    Lum32s channels;
    Lum32s* pSpecSize;
    Lum32s* pBufferSize;

    LumStatus call() const
    {
        return lumiInpaintGetSize(pMask, maskStep, roiSize, radius, method, channels, pSpecSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(specBytes, sizeof *specBytes), Output(bufferBytes, sizeof *bufferBytes)};
    }
};

// The stride comes before the size here.
TEST(InpaintStatusQuick, SizeChecksInOrder)
{
    using A = SizeArgs;
    Repair repair;
    repair.size = {9, 6};
    repair.gap = 3;
    for (const Damage damage : {Damage::Strokes, Damage::Nothing}) {
        repair.damage = damage;
        const Image<Lum8u> mask = repair.mask();
        Lum32s spec = -1;
        Lum32s buffer = -1;
        const A valid = {&spec, &buffer, mask.pixels(), mask.step(), {9, 6}, 2, lumInpaintByFront, 1, &spec, &buffer};
        expectStatusOrder(
            valid, {
                       {"pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; }},
                       {"maskStep -16", lumErrStep, [](A& a) { a.maskStep = -16; }},
                       {"maskStep below the width", lumErrStep, [](A& a) { a.maskStep = 8; }, {"width 0", "width -7"}},
                       {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                       {"width -7", lumErrSize, [](A& a) { a.roiSize.width = -7; }},
                       {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                       {"height -1", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
                       {"pSpecSize null", lumErrNullPointer, [](A& a) { a.pSpecSize = nullptr; }},
                       {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
                       {"radius below 1", lumErrArgument, [](A& a) { a.radius = 0.99999994f; }},
                       {"radius 0", lumErrArgument, [](A& a) { a.radius = 0; }},
                       {"radius -3", lumErrArgument, [](A& a) { a.radius = -3; }},
                       {"radius -inf", lumErrArgument, [](A& a) { a.radius = -kInfinity; }},
                       {"radius not a number", lumErrArgument, [](A& a) { a.radius = kNotANumber; }},
                       {"method 2", lumErrArgument, [](A& a) { a.method = 2; }},
                       {"method -1", lumErrArgument, [](A& a) { a.method = static_cast<LumiInpaintMethod>(-1); }},
                       {"channels 0", lumErrValue, [](A& a) { a.channels = 0; }},
                       {"channels 2", lumErrValue, [](A& a) { a.channels = 2; }},
                       {"channels 4", lumErrValue, [](A& a) { a.channels = 4; }},
                       {"channels -1", lumErrValue, [](A& a) { a.channels = -1; }},
                   });
    }
}

struct InitArgs
{
    LumStatus (*init)(LumiInpaintState**, const Lum32f*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32f,
                      LumiInpaintMethod, Lum8u*, Lum8u*);
    LumiInpaintState** written;
    const PlacedBlock* block;
    LumiInpaintState** ppState;
    const Lum32f* pDist;
    Lum32s distStep;
    const Lum8u* pMask;
    Lum32s maskStep;
    LumiSize roiSize;
    Lum32f radius;
    LumiInpaintMethod method;
    Lum8u* pSpec;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return init(ppState, pDist, distStep, pMask, maskStep, roiSize, radius, method, pSpec, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written), Output(block->data(), block->size())};
    }
};

TEST(InpaintStatusQuick, InitChecksInOrder)
{
    using A = InitArgs;
    for (const int channels : {1, 3}) {
        for (const Damage damage : {Damage::Strokes, Damage::Nothing}) {
            Repair repair;
            repair.size = {9, 6};
            repair.gap = 3;
            repair.damage = damage;
            repair.channels = channels;
            const Image<Lum8u> mask = repair.mask();
            const Image<Lum32f> distance = repair.distanceImage(mask);
            Lum32s specBytes = 0;
            Lum32s bufferBytes = 0;
            ASSERT_EQ(repair.sizes(mask, specBytes, bufferBytes), lumOk);
            const PlacedBlock spec(static_cast<std::size_t>(specBytes));
            const PlacedBlock buffer(static_cast<std::size_t>(bufferBytes));
            LumiInpaintState* state = nullptr;
            std::vector<Violation<A>> table = {
                {"pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; }},
                {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                {"width -7", lumErrSize, [](A& a) { a.roiSize.width = -7; }},
                {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                {"height -1", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
                {"maskStep below the width", lumErrStep, [](A& a) { a.maskStep = 8; }},
                {"maskStep -16", lumErrStep, [](A& a) { a.maskStep = -16; }},
                {"pDist null", lumErrNullPointer, [](A& a) { a.pDist = nullptr; }},
                {"ppState null", lumErrNullPointer, [](A& a) { a.ppState = nullptr; }},
                {"distStep below a row", lumErrStep, [](A& a) { a.distStep = 32; }},
                {"distStep below a row and odd", lumErrStep, [](A& a) { a.distStep = 35; }},
                {"distStep -48", lumErrStep, [](A& a) { a.distStep = -48; }},
                {"distStep misaligned by 1", lumErrStepAlignment, [](A& a) { a.distStep = 41; }},
                {"distStep misaligned by 2", lumErrStepAlignment, [](A& a) { a.distStep = 42; }},
                {"pSpec null", lumErrNullPointer, [](A& a) { a.pSpec = nullptr; }},
                {"radius below 1", lumErrArgument, [](A& a) { a.radius = 0.99999994f; }},
                {"radius -inf", lumErrArgument, [](A& a) { a.radius = -kInfinity; }},
                {"radius not a number", lumErrArgument, [](A& a) { a.radius = kNotANumber; }},
                {"method 2", lumErrArgument, [](A& a) { a.method = 2; }},
                {"method -1", lumErrArgument, [](A& a) { a.method = static_cast<LumiInpaintMethod>(-1); }},
            };
            if (damage != Damage::Nothing) {
                table.insert(table.begin() + 15,
                             Violation<A>("pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }));
            }
            A valid = {channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R,
                       &state,
                       &spec,
                       &state,
                       distance.pixels(),
                       distance.step(),
                       mask.pixels(),
                       mask.step(),
                       {9, 6},
                       repair.radius,
                       repair.method,
                       spec.data(),
                       damage == Damage::Nothing ? nullptr : buffer.data()};
            expectStatusOrder(valid, table);
        }
    }
}

struct Args
{
    LumStatus (*function)(const Lum8u*, Lum32s, Lum8u*, Lum32s, LumiSize, LumiInpaintState*, Lum8u*);
    const Image<Lum8u>* destination;
    const Lum8u* pSrc;
    Lum32s srcStep;
    Lum8u* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    LumiInpaintState* pState;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return function(pSrc, srcStep, pDst, dstStep, roiSize, pState, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

// The state knows its ROI also where nothing is masked; the scratch may be null then.
TEST(InpaintStatusQuick, ChecksInOrder)
{
    using A = Args;
    for (const int channels : {1, 3}) {
        for (const Damage damage : {Damage::Strokes, Damage::Nothing}) {
            Repair repair;
            repair.size = {9, 6};
            repair.damage = damage;
            repair.channels = channels;
            const Prepared prepared(repair);
            Layout layout = repair.layout(channels);
            layout.gap = 8;
            Image<Lum8u> source(layout);
            drawPicture(source, Picture::Noise, 2);
            Image<Lum8u> destination(layout);
            std::vector<Violation<A>> table = {
                {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
                {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
                {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                {"height -1", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
                {"width less than Init's", lumErrSize, [](A& a) { a.roiSize.width = 8; }},
                {"width more than Init's", lumErrSize, [](A& a) { a.roiSize.width = 10; }},
                {"height less than Init's", lumErrSize, [](A& a) { a.roiSize.height = 5; }},
                {"height more than Init's", lumErrSize, [](A& a) { a.roiSize.height = 7; }},
                {"srcStep below a row", lumErrStep, [=](A& a) { a.srcStep = 9 * channels - 1; }},
                {"srcStep negative", lumErrStep, [=](A& a) { a.srcStep = -a.srcStep; }},
                {"dstStep below a row", lumErrStep, [=](A& a) { a.dstStep = 9 * channels - 1; }},
                {"dstStep negative", lumErrStep, [=](A& a) { a.dstStep = -a.dstStep; }},
            };
            if (damage != Damage::Nothing) {
                table.emplace_back("pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; });
            }
            A valid = {channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R,
                       &destination,
                       source.pixels(),
                       source.step(),
                       destination.pixels(),
                       destination.step(),
                       {9, 6},
                       prepared.state(),
                       damage == Damage::Nothing ? nullptr : prepared.buffer()};
            expectStatusOrder(valid, table);
        }
    }
}

// Nothing masked: 192 bytes, no scratch, and repairs copy.
TEST(InpaintStatusQuick, NothingMasked)
{
    Repair repair;
    repair.size = {33, 9};
    repair.damage = Damage::Nothing;
    for (const int channels : {1, 3}) {
        repair.channels = channels;
        const Image<Lum8u> mask = repair.mask();
        const Image<Lum32f> distance = repair.distanceImage(mask);
        Lum32s spec = -1;
        Lum32s buffer = -1;
        EXPECT_EQ(repair.sizes(mask, spec, buffer), lumOk);
        EXPECT_EQ(spec, 192);
        EXPECT_EQ(buffer, 0);
        Prepared(repair).expectRepaired(Picture::Noise, 5);
    }
}

}  // namespace
}  // namespace lumcv::test::distance
