// The checks of the background model in order, and the size of its state.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "motion/background_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::motion {
namespace {

TEST(BackgroundSizeQuick, Formula)
{
    for (const Lum32s width : {1, 2, 3, 5, 16, 31, 32, 33, 64, 100, 640, 1920}) {
        for (const Lum32s height : {1, 2, 7, 32, 33, 480, 1080}) {
            for (const Lum32s modes : {1, 2, 3, 4, 5, 8, 9, 40}) {
                Lum32s bytes = -1;
                EXPECT_EQ(lumiFGMMGetBufferSize_8u_C3R({width, height}, modes, &bytes), lumOk);
                const auto expected = stateBytes(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height),
                                                 static_cast<std::uint64_t>(modes));
                EXPECT_EQ(static_cast<Lum32u>(bytes), static_cast<Lum32u>(expected))
                    << width << " x " << height << ", " << modes;
            }
        }
    }
    Lum32s bytes = -1;
    EXPECT_EQ(lumiFGMMGetBufferSize_8u_C3R({1, 1}, 1, &bytes), lumOk);
    // one pixel, three tables of 32 bytes, 64 bytes of weight and index: 1 + 96 + 64 + 191, down to 32; a mean; 256
    EXPECT_EQ(bytes, 352 + 32 + 256);
}

// The arithmetic is that of 32 bits without a sign, step by step, and never fails.
TEST(BackgroundSizeQuick, WrapsAround)
{
    const auto inWords = [](Lum32u width, Lum32u height, Lum32u modes) {
        const Lum32u area = width * height;
        const Lum32u p = modes * area;
        const Lum32u table = (8 * modes + 31) & ~31u;
        const Lum32u tables = table + (((8 * modes + 31) >> 5) << 6);
        return ((area + tables + ((8 * p + 62) & ~63u) + 191) & ~31u) + ((16 * p + 31) & ~31u) + 256;
    };
    for (const Lum32s width : {1, 4096, 20000, 65536, 0x7fffffff}) {
        for (const Lum32s height : {1, 4097, 30000, 65536, 0x7fffffff}) {
            for (const Lum32s modes : {1, 3, 5, 1000, 0x10000000, 0x7fffffff}) {
                Lum32s bytes = 77;
                EXPECT_EQ(lumiFGMMGetBufferSize_8u_C3R({width, height}, modes, &bytes), lumOk);
                EXPECT_EQ(static_cast<Lum32u>(bytes),
                          inWords(static_cast<Lum32u>(width), static_cast<Lum32u>(height), static_cast<Lum32u>(modes)))
                    << width << " x " << height << ", " << modes;
            }
        }
    }
}

struct QueryArgs
{
    Lum32s* written;
    Lum32s* pStateSize;
    LumiSize roiSize = {20, 10};
    Lum32s maxNGauss = 3;

    LumStatus call() const
    {
        return lumiFGMMGetBufferSize_8u_C3R(roiSize, maxNGauss, pStateSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written)};
    }
};

TEST(BackgroundStatusQuick, QueryChecksInOrder)
{
    using A = QueryArgs;
    Lum32s bytes = -1;
    expectStatusOrder(A{&bytes, &bytes},
                      {
                          {"pStateSize null", lumErrNullPointer, [](A& a) { a.pStateSize = nullptr; }},
                          {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -20; }},
                          {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -10; }},
                          {"no modes", lumErrArgument, [](A& a) { a.maxNGauss = 0; }},
                          {"negative modes", lumErrArgument, [](A& a) { a.maxNGauss = -1; }},
                      });
}

struct InitArgs
{
    const PlacedBlock* block;
    LumFGMMState* pState;
    const LumFGMMModel* pModel = &kUsualModel;
    LumiSize roiSize = {20, 10};
    Lum32s maxNGauss = 3;

    LumStatus call() const
    {
        return lumiFGMMInit_8u_C3R(roiSize, maxNGauss, pModel, pState);
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

TEST(BackgroundStatusQuick, InitChecksInOrder)
{
    using A = InitArgs;
    const PlacedBlock block(stateBytes(20, 10, 3), Guard::After, 5);
    expectStatusOrder(A{&block, reinterpret_cast<LumFGMMState*>(block.data())},
                      {
                          {"pModel null", lumErrNullPointer, [](A& a) { a.pModel = nullptr; }},
                          {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
                          {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -20; }},
                          {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -10; }},
                          {"no modes", lumErrArgument, [](A& a) { a.maxNGauss = 0; }},
                          {"negative modes", lumErrArgument, [](A& a) { a.maxNGauss = -1; }},
                          {"too large", lumErrSizeTooLarge,
                           [](A& a) {
                               a.roiSize = {0x7fffffff, 0x7fffffff};
                           }},
                      });
    EXPECT_TRUE(block.intact());
}

/// A model that has seen some frames, and the images of one more.
struct Seen
{
    Watched watched = Watched({9, 4}, 3, kUsualModel);
    Image<Lum8u> source = Image<Lum8u>(layout(3));
    Image<Lum8u> classes = Image<Lum8u>(layout(1));
    Image<Lum8u> rendered = Image<Lum8u>(layout(3));

    Seen()
    {
        Scene scene(4);
        Image<Lum8u> frame(watched.layout(3));
        for (int i = 0; i < 4; ++i) {
            scene.draw(frame, 4);
            EXPECT_TRUE(watched.frame(frame, nullptr, -1));
        }
        scene.draw(source, 4);
    }
    static Layout layout(int channels)
    {
        Layout layout = layoutOf({9, 4}, channels);
        layout.gap = 5;
        return layout;
    }
    static LumFGMMModel threeModes()
    {
        LumFGMMModel model = kUsualModel;
        model.maxNGauss = 3;
        return model;
    }
};

struct ForegroundArgs
{
    const Seen* seen;
    const Lum8u* pSrc;
    Lum32s srcStep;
    Lum8u* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    LumFGMMState* pState;
    LumFGMMModel model = Seen::threeModes();
    bool hasModel = true;

    LumStatus call() const
    {
        return lumiFGMMForeground_8u_C3R(pSrc, srcStep, pDst, dstStep, roiSize, pState, hasModel ? &model : nullptr,
                                         0.1);
    }
    std::vector<Output> outputs() const
    {
        return {Output(seen->classes), Output(seen->watched.block().data(), seen->watched.block().size())};
    }
};

// The state is among what a failed call must not write.
TEST(BackgroundStatusQuick, ForegroundChecksInOrder)
{
    using A = ForegroundArgs;
    Seen seen;
    const A valid = {&seen,  seen.source.pixels(), seen.source.step(), seen.classes.pixels(), seen.classes.step(),
                     {9, 4}, seen.watched.state()};
    expectStatusOrder(valid, {
                                 {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                                 {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
                                 {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
                                 {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
                                 {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -32; }},
                                 {"dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
                                 {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -14; }},
                                 {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                                 {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
                                 {"width above Init's", lumErrSize, [](A& a) { a.roiSize.width = 10; }},
                                 {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                                 {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -4; }},
                                 {"height above Init's", lumErrSize, [](A& a) { a.roiSize.height = 5; }},
                                 {"more modes than Init's", lumErrArgument, [](A& a) { a.model.maxNGauss = 4; }},
                                 {"far more modes", lumErrArgument, [](A& a) { a.model.maxNGauss = 0xFFFFFFFFu; }},
                             });
    A withoutModel = valid;
    withoutModel.hasModel = false;
    expectStatusOrder(withoutModel, {{"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
                                     {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
                                     {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }}});
}

// A failed call is no frame: the rate of the next one is that of the frame it is.
TEST(BackgroundStatusQuick, FailuresAreNoFrames)
{
    Watched watched({9, 4}, 3, kUsualModel);
    Scene scene(9);
    Image<Lum8u> source(watched.layout(3));
    LumFGMMModel tooMany = kUsualModel;
    tooMany.maxNGauss = 4;
    tooMany.varInit = 1;
    for (int i = 0; i < 8; ++i) {
        scene.draw(source, 4);
        Image<Lum8u> classes(watched.layout(1));
        EXPECT_EQ(lumiFGMMForeground_8u_C3R(source.pixels(), source.step(), classes.pixels(), classes.step(), {9, 4},
                                            watched.state(), &tooMany, -1),
                  lumErrArgument);
        EXPECT_TRUE(watched.frame(source, nullptr, -1)) << i;
        EXPECT_TRUE(watched.background()) << i;
    }
}

// Strides are not tested against the width: a single row can have any.
TEST(BackgroundStatusQuick, StridesBelowARow)
{
    Watched watched({9, 1}, 3, kUsualModel);
    Image<Lum8u> source(watched.layout(3));
    Scene(3).draw(source, 4);
    Image<Lum8u> classes(watched.layout(1));
    Image<Lum8u> rendered(watched.layout(3));
    EXPECT_EQ(lumiFGMMForeground_8u_C3R(source.pixels(), 1, classes.pixels(), 1, {9, 1}, watched.state(), nullptr, -1),
              lumOk);
    classes.forEach(Area::Roi, [](Lum8u& element, int, int, int) { EXPECT_EQ(element, 255); });
    EXPECT_EQ(lumiFGMMBackground_8u_C3R(rendered.pixels(), 1, {9, 1}, watched.state()), lumOk);
    EXPECT_TRUE(sameImage(source, rendered));
}

struct BackgroundArgs
{
    const Seen* seen;
    Lum8u* pDst;
    Lum32s dstStep;
    LumiSize roiSize;
    const LumFGMMState* pState;

    LumStatus call() const
    {
        return lumiFGMMBackground_8u_C3R(pDst, dstStep, roiSize, pState);
    }
    std::vector<Output> outputs() const
    {
        return {Output(seen->rendered)};
    }
};

TEST(BackgroundStatusQuick, BackgroundChecksInOrder)
{
    using A = BackgroundArgs;
    Seen seen;
    expectStatusOrder(A{&seen, seen.rendered.pixels(), seen.rendered.step(), {9, 4}, seen.watched.state()},
                      {
                          {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
                          {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
                          {"dstStep 0", lumErrStep, [](A& a) { a.dstStep = 0; }},
                          {"dstStep negative", lumErrStep, [](A& a) { a.dstStep = -32; }},
                          {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"width above Init's", lumErrSize, [](A& a) { a.roiSize.width = 10; }},
                          {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -4; }},
                          {"height above Init's", lumErrSize, [](A& a) { a.roiSize.height = 5; }},
                      });
}

}  // namespace
}  // namespace lumcv::test::motion
