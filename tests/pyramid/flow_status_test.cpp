// The sizes of flow states, and the order of the argument checks.
#include "pyramid/flow_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::flow {
namespace {

constexpr int kIntMax = std::numeric_limits<int>::max();
constexpr int kIntMin = std::numeric_limits<int>::min();

LumStatus query(int winSize, LumiSize size, LumDataType type, Lum32s& bytes)
{
    return lumiOpticalFlowPyrLKGetSize(winSize, size, type, 0, &bytes);
}

TEST(FlowSizesQuick, FollowTheFormula)
{
    for (const LumDataType type : {lumType8u, lumType16u, lumType32f}) {
        for (const int winSize : {1, 2, 5, 21, 100, 1000}) {
            for (const LumiSize size :
                 {LumiSize{1, 1}, LumiSize{8, 8}, LumiSize{9, 7}, LumiSize{640, 480}, LumiSize{1, 3000},
                  LumiSize{3000, 1}, LumiSize{29, 30}, LumiSize{30, 29}, LumiSize{1920, 1080}, LumiSize{5000, 5001}}) {
                Lum32s bytes = -1;
                EXPECT_EQ(query(winSize, size, type, bytes), lumOk);
                EXPECT_EQ(bytes, stateBytes(winSize, size, type))
                    << size.width << " x " << size.height << ", window " << winSize << ", type " << type;
            }
        }
    }
}

// Worked out by hand.
TEST(FlowSizesQuick, SomeNumbers)
{
    Lum32s bytes = -1;
    // 4 * 36 + 40 * 16 + 2 * (32 + 32) + 130
    EXPECT_EQ(query(1, {1, 1}, lumType8u, bytes), lumOk);
    EXPECT_EQ(bytes, 1042);
    // s = A(36) + 2 * A(4) + A(16) + 32 = 64 + 64 + 32 + 32; 48 * 16 + 4 * (3 * 36 + 192) + 124
    EXPECT_EQ(query(1, {1, 1}, lumType16u, bytes), lumOk);
    EXPECT_EQ(bytes, 2092);
    // 48 * 16 + 8 * 36 + 4 * 192 + 124
    EXPECT_EQ(query(1, {1, 1}, lumType32f, bytes), lumOk);
    EXPECT_EQ(bytes, 1948);
    // 4 * 645 * 485 + 40 * 576 + 2 * (1952 + 32) + 130
    EXPECT_EQ(query(21, {640, 480}, lumType8u, bytes), lumOk);
    EXPECT_EQ(bytes, 1278438);
}

TEST(FlowSizesQuick, TheHintChangesNothing)
{
    for (const Lum32s hint : {0, 1, -1, 7, kIntMax, kIntMin}) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiOpticalFlowPyrLKGetSize(5, {50, 40}, lumType8u, hint, &bytes), lumOk);
        EXPECT_EQ(bytes, stateBytes(5, {50, 40}, lumType8u));
    }
    Pyramid<Lum8u> first({40, 40}), second({40, 40});
    first.draw(waves());
    second.draw(waves(0.5, 0.5));
    const Operands expected = follow(first, second, {{20, 20}}, {5, 0});
    for (const Lum32s hint : {1, -1, kIntMax}) {
        const PlacedBlock block(static_cast<std::size_t>(stateBytes(5, {40, 40}, lumType8u)));
        LumOptFlowPyrLKState* state = nullptr;
        EXPECT_EQ(lumiOpticalFlowPyrLKInit_8u_C1R(&state, {40, 40}, 5, hint, block.data()), lumOk);
        Operands operands({{20, 20}});
        EXPECT_EQ(applyFlow<Lum8u>(first.record(), second.record(), operands, {5, 0}, state), lumOk);
        EXPECT_TRUE(sameFollowed(operands[0], expected[0]));
    }
}

// A size that 32 bits cannot hold is told, and the largest one that they hold is given.
TEST(FlowSizesQuick, SizesBeyond32Bits)
{
    for (const LumDataType type : {lumType8u, lumType16u, lumType32f}) {
        const auto tooLarge = [&](int winSize, LumiSize size) {
            Lum32s bytes = -1;
            EXPECT_EQ(query(winSize, size, type, bytes), lumErrSizeTooLarge);
            EXPECT_EQ(bytes, -1);
        };
        tooLarge(1, {kIntMax, kIntMax});
        tooLarge(kIntMax, {1, 1});
        tooLarge(kIntMax, {kIntMax, kIntMax});
        tooLarge(1, {kIntMax, 1});
        tooLarge(1, {1, kIntMax});
        tooLarge(65536, {100, 100});
        tooLarge(1 << 20, {1 << 20, 1 << 20});
        // the last window that fits
        int fits = 1, doesNot = 65536;
        while (doesNot - fits > 1) {
            const int middle = (fits + doesNot) / 2;
            (stateBytes(middle, {100, 100}, type) <= kIntMax ? fits : doesNot) = middle;
        }
        Lum32s bytes = -1;
        EXPECT_EQ(query(fits, {100, 100}, type, bytes), lumOk);
        EXPECT_EQ(bytes, stateBytes(fits, {100, 100}, type));
        tooLarge(doesNot, {100, 100});
        // and the last width
        fits = 1, doesNot = kIntMax;
        while (doesNot - fits > 1) {
            const int middle = fits + (doesNot - fits) / 2;
            (stateBytes(5, {middle, 200}, type) <= kIntMax ? fits : doesNot) = middle;
        }
        EXPECT_EQ(query(5, {fits, 200}, type, bytes), lumOk);
        EXPECT_EQ(bytes, stateBytes(5, {fits, 200}, type));
        tooLarge(5, {doesNot, 200});
    }
}

struct QueryArgs
{
    Lum32s winSize = 5;
    LumiSize roiSize = {40, 30};
    LumDataType dataType = lumType8u;
    Lum32s* pSize;
    Lum32s* result;

    LumStatus call() const
    {
        return lumiOpticalFlowPyrLKGetSize(winSize, roiSize, dataType, 0, pSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof *result)};
    }
};

// The null test comes after the sizes and the type.
TEST(FlowStatusQuick, QueryChecksInDocumentedOrder)
{
    using A = QueryArgs;
    Lum32s bytes = -1;
    std::vector<Violation<A>> order = {
        {"window 0", lumErrSize, [](A& a) { a.winSize = 0; }},
        {"window negative", lumErrSize, [](A& a) { a.winSize = kIntMin; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -40; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
    };
    for (const LumDataType type : {0, 2, 3, 7, 11, 19, -1, 1 + 256, 13 + 65536, kIntMax, kIntMin}) {
        order.push_back({"type " + std::to_string(type), lumErrDataType, [=](A& a) { a.dataType = type; }});
    }
    order.push_back({"pStateSize null", lumErrNullPointer, [](A& a) { a.pSize = nullptr; }});
    order.push_back({"too large",
                     lumErrSizeTooLarge,
                     [](A& a) {
                         a.roiSize = {kIntMax, 3};
                     },
                     {"width 0", "width negative", "height 0", "height negative"}});
    for (const LumDataType type : {lumType8u, lumType16u, lumType32f}) {
        expectStatusOrder(A{.dataType = type, .pSize = &bytes, .result = &bytes}, order);
    }
}

template <class T>
struct InitArgs
{
    LumiSize roiSize = {40, 30};
    Lum32s winSize = 5;
    LumOptFlowPyrLKState** ppState;
    Lum8u* pBlock;
    LumOptFlowPyrLKState** result;
    const PlacedBlock* block;

    LumStatus call() const
    {
        return Exports<T>::init(ppState, roiSize, winSize, 3, pBlock);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof *result), Output(block->data(), block->size())};
    }
};

TEST(FlowStatusQuick, InitChecksInDocumentedOrder)
{
    forEachType([]<class T>() {
        using A = InitArgs<T>;
        const PlacedBlock block(static_cast<std::size_t>(stateBytes(5, {40, 30}, Exports<T>::dataType)));
        LumOptFlowPyrLKState* state = nullptr;
        const std::vector<Violation<A>> order = {
            {"window 0", lumErrSize, [](A& a) { a.winSize = 0; }},
            {"window negative", lumErrSize, [](A& a) { a.winSize = -5; }},
            {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
            {"width negative", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; }},
            {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
            {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
            {"ppState null", lumErrNullPointer, [](A& a) { a.ppState = nullptr; }},
            {"pStateBuf null", lumErrNullPointer, [](A& a) { a.pBlock = nullptr; }},
        };
        expectStatusOrder(A{.ppState = &state, .pBlock = block.data(), .result = &state, .block = &block}, order);
    });
}

template <class T>
struct ApplyArgs
{
    const LumiPyramidRecord* pPyr1;
    const LumiPyramidRecord* pPyr2;
    const Lum32f* pPrev;
    Lum32f* pNext;
    Lum8s* pStatus;
    Lum32f* pError;
    LumOptFlowPyrLKState* pState;
    Operands* operands;
    const LumiPyramidRecord* pLarger;
    Lum32s numFeat = 3;
    Lum32s winSize = 5;
    Lum32s maxLev = 1;
    Lum32s maxIter = 4;
    Lum32f threshold = 0.01f;

    LumStatus call() const
    {
        return Exports<T>::apply(pPyr1, pPyr2, pPrev, pNext, pStatus, pError, numFeat, winSize, maxLev, maxIter,
                                 threshold, pState);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->next), Output(operands->status), Output(operands->error)};
    }
};

TEST(FlowStatusQuick, ApplyChecksInDocumentedOrder)
{
    forEachType([]<class T>() {
        using A = ApplyArgs<T>;
        Pyramid<T> first({40, 30}, 2), second({40, 30}, 1), larger({41, 30}, 2);
        first.draw(waves());
        second.draw(waves(0.5, 0.5));
        larger.draw(waves());
        const LumiPyramidRecord records[] = {first.record(), second.record(), larger.record()};
        const State<T> state({40, 30}, 5);
        Operands operands({{20, 20}, {10, 15}, {-90, 3}});
        const A valid = {&records[0],
                         &records[1],
                         operands.prev.pixels(),
                         operands.next.pixels(),
                         operands.status.pixels(),
                         operands.error.pixels(),
                         state.get(),
                         &operands,
                         &records[2]};
        expectStatusOrder(
            valid, {
                       {"pPyr1 null", lumErrNullPointer, [](A& a) { a.pPyr1 = nullptr; }},
                       {"pPyr2 null", lumErrNullPointer, [](A& a) { a.pPyr2 = nullptr; }},
                       {"pPrev null", lumErrNullPointer, [](A& a) { a.pPrev = nullptr; }},
                       {"pNext null", lumErrNullPointer, [](A& a) { a.pNext = nullptr; }},
                       {"pStatus null", lumErrNullPointer, [](A& a) { a.pStatus = nullptr; }},
                       {"pError null", lumErrNullPointer, [](A& a) { a.pError = nullptr; }},
                       {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
                       {"numFeat 0", lumErrSize, [](A& a) { a.numFeat = 0; }},
                       {"numFeat negative", lumErrSize, [](A& a) { a.numFeat = kIntMin; }},
                       {"window 0", lumErrSize, [](A& a) { a.winSize = 0; }},
                       {"window negative", lumErrSize, [](A& a) { a.winSize = -5; }},
                       {"window smaller", lumErrSize, [](A& a) { a.winSize = 4; }},
                       {"window larger", lumErrSize, [](A& a) { a.winSize = 6; }},
                       {"maxLev -1", lumErrArgument, [](A& a) { a.maxLev = -1; }},
                       {"maxLev smallest", lumErrArgument, [](A& a) { a.maxLev = kIntMin; }},
                       {"maxLev beyond the second pyramid", lumErrArgument, [](A& a) { a.maxLev = 2; }},
                       {"maxLev beyond both", lumErrArgument, [](A& a) { a.maxLev = 3; }},
                       {"maxLev largest", lumErrArgument, [](A& a) { a.maxLev = kIntMax; }},
                       {"maxIter 0", lumErrArgument, [](A& a) { a.maxIter = 0; }},
                       {"maxIter negative", lumErrArgument, [](A& a) { a.maxIter = -4; }},
                       {"threshold negative", lumErrArgument, [](A& a) { a.threshold = -0.01f; }},
                       {"threshold hardly negative", lumErrArgument,
                        [](A& a) { a.threshold = -std::numeric_limits<Lum32f>::denorm_min(); }},
                       {"a level larger than the state", lumErrSize, [](A& a) { a.pPyr1 = a.pLarger; }, {"pPyr1 null"}},
                   });
    });
}

// A level of the first pyramid may not be larger than the state, whichever level it is; one of the second may.
TEST(FlowStatusQuick, LevelsLargerThanTheState)
{
    forEachType([]<class T>() {
        Pyramid<T> small({40, 30}, 1), large({60, 50}, 1);
        small.draw(waves());
        large.draw(waves(0.5, 0.5));
        const State<T> state({40, 30}, 5);
        const auto run = [&](const LumiPyramidRecord& first, const LumiPyramidRecord& second, int maxLev) {
            Operands operands({{20, 20}});
            return applyFlow<T>(first, second, operands, {5, maxLev}, state.get());
        };
        EXPECT_EQ(run(small.record(), large.record(), 1), lumOk);
        EXPECT_EQ(run(large.record(), small.record(), 1), lumErrSize);
        LumiSize sizes[] = {{40, 30}, {30, 25}};  // those of the coarse level, which alone is in use then
        LumiPyramidRecord record = large.record();
        record.pLayerSizes = sizes;
        EXPECT_EQ(run(record, small.record(), 1), lumOk);
        for (const LumiSize size : {LumiSize{41, 25}, LumiSize{30, 31}}) {
            Pyramid<T> coarse(size);
            coarse.draw(waves());
            void* layers[] = {small.layers()[0], coarse.layers()[0]};
            Lum32s steps[] = {small.steps()[0], coarse.steps()[0]};
            LumiSize both[] = {{40, 30}, size};
            LumiPyramidRecord odd = small.record();
            odd.ppLayers = layers;
            odd.pLayerSteps = steps;
            odd.pLayerSizes = both;
            EXPECT_EQ(run(odd, small.record(), 1), lumErrSize);
            EXPECT_EQ(run(odd, small.record(), 0), lumOk);  // a level that is not in use
        }
    });
}

TEST(FlowStatusQuick, WhatIsNotNegativeIsAccepted)
{
    forEachType([]<class T>() {
        Pyramid<T> first({40, 30}), second({40, 30});
        first.draw(waves());
        second.draw(waves(0.5, 0.5));
        const State<T> state({40, 30}, 5);
        Operands operands({{20, 20}});
        for (const Lum32f threshold : {-0.0f, 0.0f, std::numeric_limits<Lum32f>::infinity(), 1e30f}) {
            EXPECT_EQ(applyFlow<T>(first.record(), second.record(), operands, {5, 0, 3, threshold}, state.get()),
                      lumOk);
        }
    });
}

// A level beyond the last that a status byte can tell.
TEST(FlowStatusQuick, LevelsBeyondAByte)
{
    constexpr std::size_t levels = 140;
    Pyramid<Lum8u> image({8, 8});
    image.draw(waves());
    std::vector<void*> layers(levels, image.layers()[0]);
    std::vector<Lum32s> steps(levels, image.steps()[0]);
    std::vector<LumiSize> sizes(levels, image.size());
    std::vector<Lum64f> scales(levels, 1.0);
    const LumiPyramidRecord record = {layers.data(), sizes.data(), scales.data(), steps.data(), nullptr, levels - 1};
    const State<Lum8u> state({8, 8}, 3);
    Operands operands({{-99, 4}});
    EXPECT_EQ(applyFlow<Lum8u>(record, record, operands, {3, 126}, state.get()), lumOk);
    EXPECT_EQ(operands[0].status, 127);
    EXPECT_EQ(applyFlow<Lum8u>(record, record, operands, {3, 127}, state.get()), lumErrArgument);
}

// What the derivatives refuse is passed on.
TEST(FlowStatusQuick, LevelsThatTheDerivativesRefuse)
{
    forEachType([]<class T>() {
        Pyramid<T> first({40, 30}, 1), second({40, 30}, 1);
        first.draw(waves());
        second.draw(waves(0.5, 0.5));
        const State<T> state({40, 30}, 5);
        const auto run = [&](int maxLev) {
            Operands operands({{20, 20}});
            return applyFlow<T>(first.record(), second.record(), operands, {5, maxLev}, state.get());
        };
        for (const std::size_t l : {std::size_t{0}, std::size_t{1}}) {
            void* const image = first.layers()[l];
            first.layers()[l] = nullptr;
            EXPECT_EQ(run(1), lumErrNullPointer);
            EXPECT_EQ(run(0), l == 0 ? lumErrNullPointer : lumOk);
            first.layers()[l] = image;
        }
        if constexpr (sizeof(T) > 1) {
            const Lum32s step = first.steps()[1];
            first.steps()[1] = step - 1;
            EXPECT_EQ(run(1), lumErrStepAlignment);
            EXPECT_EQ(run(0), lumOk);
            first.steps()[1] = step;
            EXPECT_EQ(run(1), lumOk);
        }
    });
}

}  // namespace
}  // namespace lumcv::test::flow
