// The record of a pyramid's geometry: its size, its layout and what Init fills.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "pyramid/layer_geometry.hpp"
#include "support/compare.hpp"
#include "support/placed_block.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::pyramid {
namespace {

constexpr Lum64s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum64s kTooLarge = kIntMax + 1;

/// Both entry points of the query and of Init.
struct SizeCall
{
    bool isWide;
    LumiSizeL roiSize;
    Lum32s level = 3;
    Lum32f rate = 2;
    bool sizeIsNull = false, bufferSizeIsNull = false;
    Lum64s* counts;  ///< of the record and of the scratch

    LumStatus call() const
    {
        Lum64s* const pSize = sizeIsNull ? nullptr : counts;
        Lum64s* const pBuffer = bufferSizeIsNull ? nullptr : counts + 1;
        if (isWide) {
            return lumiPyramidGetSize_L(pSize, pBuffer, level, roiSize, rate);
        }
        Lum32s size = static_cast<Lum32s>(counts[0]), bufferSize = static_cast<Lum32s>(counts[1]);
        const LumStatus status =
            lumiPyramidGetSize(pSize ? &size : nullptr, pBuffer ? &bufferSize : nullptr, level,
                               {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)}, rate);
        counts[0] = size;
        counts[1] = bufferSize;
        return status;
    }
    std::vector<Output> outputs() const
    {
        return {Output(counts, 2 * sizeof *counts)};
    }
};

template <class Args>
std::vector<Violation<Args>> wrongGeometry(bool isWide)
{
    std::vector<Violation<Args>> table = {{"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
                                          {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
                                          {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -7; }},
                                          {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }}};
    if (isWide) {
        table.push_back({"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }});
        table.push_back({"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge; }});
    }
    for (const Lum32f rate : {1.0f, 0.9f, 0.0f, -3.0f, 10.000001f, std::numeric_limits<Lum32f>::quiet_NaN()}) {
        table.push_back({"rate " + std::to_string(rate), lumErrArgument, [=](Args& a) { a.rate = rate; }});
    }
    for (const int level : {0, -1, -100}) {
        table.push_back({"level " + std::to_string(level), lumErrArgument, [=](Args& a) { a.level = level; }});
    }
    return table;
}

TEST(PyramidRecordQuick, QueryChecksInOrder)
{
    using A = SizeCall;
    Lum64s counts[2] = {-3, -4};
    for (const bool isWide : {false, true}) {
        std::vector<Violation<A>> table = {
            {"pPyrSize null", lumErrNullPointer, [](A& a) { a.sizeIsNull = true; }},
            {"pBufSize null", lumErrNullPointer, [](A& a) { a.bufferSizeIsNull = true; }}};
        for (const Violation<A>& violation : wrongGeometry<A>(isWide)) {
            table.push_back(violation);
        }
        if (!isWide) {
            // the scratch has 8 bytes for each pixel of a side
            table.push_back(
                {"scratch too large", lumErrSizeTooLarge, [](A& a) { a.roiSize.width = 1 << 28; }, {"width 0"}});
            table.back().notWith.push_back("width negative");
        }
        expectStatusOrder(A{.isWide = isWide, .roiSize = {40, 30}, .counts = counts}, table);
    }
}

TEST(PyramidRecordQuick, SizesOfRecordAndScratch)
{
    for (const bool isWide : {false, true}) {
        for (const Lum32f rate : {1.001f, 1.5f, 2.0f, 3.7f, 10.0f}) {
            for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 1}, LumiSize{1, 3}, LumiSize{640, 480},
                                        LumiSize{17, 999}, LumiSize{1000, 1}}) {
                for (const int level : {1, 2, 5, 12, 2147483647}) {
                    Lum64s counts[2] = {-3, -4};
                    ASSERT_EQ((SizeCall{.isWide = isWide,
                                        .roiSize = {size.width, size.height},
                                        .level = level,
                                        .rate = rate,
                                        .counts = counts}
                                   .call()),
                              lumOk);
                    EXPECT_EQ(counts[0], 52 * std::min(levelCount(size, rate), level) + 152)
                        << size.width << " x " << size.height << ", level " << level << ", rate " << rate;
                    EXPECT_EQ(counts[1], std::max(size.width, size.height) * 8);
                }
            }
        }
    }
}

// A single pixel has no level below it.
TEST(PyramidRecordQuick, ARoiOfOnePixel)
{
    Lum32s size = -1, bufferSize = -1;
    EXPECT_EQ(lumiPyramidGetSize(&size, &bufferSize, 7, {1, 1}, 2), lumOk);
    EXPECT_EQ(size, 152);
    EXPECT_EQ(bufferSize, 8);
}

TEST(PyramidRecordQuick, LargestScratch)
{
    Lum64s counts[2] = {};
    EXPECT_EQ((SizeCall{.isWide = false, .roiSize = {1, (1 << 28) - 1}, .counts = counts}.call()), lumOk);
    EXPECT_EQ(counts[1], kIntMax - 7);
    EXPECT_EQ((SizeCall{.isWide = true, .roiSize = {kIntMax, 1}, .counts = counts}.call()), lumOk);
    EXPECT_EQ(counts[0], 52 * 3 + 152);
    EXPECT_EQ(counts[1], kIntMax * 8);
}

struct InitCall
{
    bool isWide;
    LumiSizeL roiSize;
    Lum32s level = 3;
    Lum32f rate = 2;
    LumiPyramidRecord** ppPyr;
    Lum8u* pPyrMem;
    Lum8u* pBuffer;
    std::vector<Output> written = {};

    LumStatus call() const
    {
        return isWide ? lumiPyramidInit_L(ppPyr, level, roiSize, rate, pPyrMem, pBuffer)
                      : lumiPyramidInit(ppPyr, level,
                                        {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)}, rate,
                                        pPyrMem, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

TEST(PyramidRecordQuick, InitChecksInOrder)
{
    using A = InitCall;
    const PlacedBlock block(52 * 3 + 152), buffer(320);
    LumiPyramidRecord* record = nullptr;
    for (const bool isWide : {false, true}) {
        std::vector<Violation<A>> table = {{"ppPyr null", lumErrNullPointer, [](A& a) { a.ppPyr = nullptr; }},
                                           {"pPyrMem null", lumErrNullPointer, [](A& a) { a.pPyrMem = nullptr; }},
                                           {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }}};
        for (const Violation<A>& violation : wrongGeometry<A>(isWide)) {
            table.push_back(violation);
        }
        expectStatusOrder(A{.isWide = isWide,
                            .roiSize = {40, 30},
                            .ppPyr = &record,
                            .pPyrMem = block.data(),
                            .pBuffer = buffer.data(),
                            .written = {Output(block.data(), block.size()), Output(&record, sizeof record)}},
                          table);
    }
}

std::uintptr_t address(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

/// The record may stand at any address, and so is read byte by byte.
void expectRecord(bool isWide, LumiSize size, int level, Lum32f rate, Guard guard, std::size_t distance)
{
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", level " << level << ", rate " << rate
                                    << ", distance " << distance);
    const int last = std::min(levelCount(size, rate), level);
    const PlacedBlock block(static_cast<std::size_t>(52 * last + 152), guard, distance);
    LumiPyramidRecord* at = nullptr;
    {
        const PlacedBlock buffer(static_cast<std::size_t>(std::max(size.width, size.height)) * 8, guard, distance + 3);
        ASSERT_EQ((InitCall{.isWide = isWide,
                            .roiSize = {size.width, size.height},
                            .level = level,
                            .rate = rate,
                            .ppPyr = &at,
                            .pPyrMem = block.data(),
                            .pBuffer = buffer.data()}
                       .call()),
                  lumOk);
        EXPECT_TRUE(buffer.intact());
    }
    EXPECT_TRUE(block.intact());
    ASSERT_EQ(address(at), address(block.data()));
    LumiPyramidRecord record;
    std::memcpy(&record, block.data(), sizeof record);
    EXPECT_EQ(record.level, last);
    EXPECT_EQ(record.pLayerRecord, nullptr);

    const auto entries = static_cast<std::size_t>(last) + 1;
    const auto upToEight = [](std::uintptr_t place) { return (place + 7) / 8 * 8; };
    ASSERT_EQ(address(record.pLayerSizes), upToEight(address(block.data()) + sizeof record));
    ASSERT_EQ(address(record.ppLayers), address(record.pLayerSizes + entries));
    ASSERT_EQ(address(record.pLayerScales), address(record.ppLayers + entries));
    ASSERT_EQ(address(record.pLayerSteps), address(record.pLayerScales + entries));
    ASSERT_LE(address(record.pLayerSteps + entries), address(block.data()) + block.size());

    const std::vector<LumiSize> sizes = levelSizes(size, rate);
    Lum64f scale = 1;
    for (std::size_t i = 0; i < entries; ++i) {
        EXPECT_EQ(record.pLayerSizes[i].width, sizes[i].width) << "level " << i;
        EXPECT_EQ(record.pLayerSizes[i].height, sizes[i].height) << "level " << i;
        EXPECT_TRUE(sameElements(&scale, &record.pLayerScales[i], 1)) << "level " << i;
        scale = scale * (1.0 / static_cast<Lum64f>(rate));
        EXPECT_EQ(record.ppLayers[i], nullptr) << "level " << i;
        EXPECT_EQ(record.pLayerSteps[i], 0) << "level " << i;
    }
}

TEST(PyramidRecordQuick, InitLaysSizesAndScales)
{
    for (const bool isWide : {false, true}) {
        for (const Lum32f rate : {1.05f, 1.5f, 2.0f, 3.7f, 10.0f}) {
            for (const LumiSize size :
                 {LumiSize{1, 1}, LumiSize{2, 1}, LumiSize{1, 3}, LumiSize{640, 480}, LumiSize{17, 999}}) {
                for (const int level : {1, 3, 2147483647}) {
                    expectRecord(isWide, size, level, rate, Guard::After, 0);
                    ASSERT_FALSE(HasFailure());
                }
            }
        }
    }
}

// The header stays at the address given, and the arrays are aligned behind it.
TEST(PyramidRecordQuick, InitAtEveryAddress)
{
    for (std::size_t distance = 0; distance < 20; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            expectRecord(distance % 2 == 0, {50, 30}, 5, 2, guard, distance);
            expectRecord(distance % 2 == 1, {1, 1}, 5, 2, guard, distance);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// A record is laid over what the block held.
TEST(PyramidRecordQuick, InitTwiceGivesTheSameBytes)
{
    const PlacedBlock block(52 * 2 + 152);
    std::vector<Lum8u> buffer(80);
    LumiPyramidRecord* at = nullptr;
    std::vector<Lum8u> first;
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(lumiPyramidInit(&at, 2, {9, 10}, 2, block.data(), buffer.data()), lumOk);
        if (i == 0) {
            first.assign(block.data(), block.data() + block.size());
            at->level = 77;
            at->ppLayers[1] = buffer.data();
            at->pLayerSteps[2] = 5;
            at->pLayerRecord = buffer.data();
        }
    }
    EXPECT_TRUE(sameElements(first.data(), block.data(), first.size()));
}

}  // namespace
}  // namespace lumcv::test::pyramid
