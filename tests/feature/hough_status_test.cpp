// Hough lines: the sizes of the blocks and the order of the argument checks.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "feature/hough_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::hough {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();
constexpr Lum32f kNaN = std::numeric_limits<Lum32f>::quiet_NaN();

constexpr LumiSize kSizes[] = {{1, 1},         {7, 5},         {8, 8},         {640, 480},
                               {1920, 1080},   {65535, 100},   {16000, 16000}, {23169, 23169},
                               {23170, 23200}, {40000, 30000}, {65536, 65536}, {100000, 100000}};
constexpr LumiPointPolar kSteps[] = {{1, kDegree}, {0.5f, 0.01f},  {2, kAngleLimit}, {1, 3.2f},
                                     {100, 0.3f},  {1e-3f, 1e-4f}, {5000, 0.5f}};

TEST(HoughSizeQuick, Standard)
{
    for (const LumiSize size : kSizes) {
        for (const LumiPointPolar delta : kSteps) {
            for (const int maxLineCount : {1, 10, 100000, kIntMax}) {
                Lum32s bytes = -1;
                EXPECT_EQ(lumiHoughLineGetSize_8u_C1R(size, delta, maxLineCount, &bytes),
                          standardBytesExceed(size, delta, maxLineCount) ? lumWrnBufferTooLarge : lumOk)
                    << size.width << " x " << size.height << ", " << delta.rho << ", " << delta.theta;
                EXPECT_EQ(static_cast<std::uint32_t>(bytes), standardBytes(size, delta, maxLineCount))
                    << size.width << " x " << size.height << ", " << delta.rho << ", " << delta.theta;
            }
        }
    }
    Lum32s bytes = -1;
    EXPECT_EQ(lumiHoughLineGetSize_8u_C1R({100, 50}, {1, kDegree}, 10, &bytes), lumOk);
    EXPECT_EQ(bytes, 464 * 50 + 160 + 8 * 179 + 8 + 16 * 305 + 224);
}

// The last height without a warning and the first with one; the size is stored all the same.
TEST(HoughSizeQuick, WarningOfTheStandardForm)
{
    const LumiPointPolar delta = {1, kDegree};
    int height = 1;
    while (!standardBytesExceed({30000, height + 1}, delta, 10)) {
        ++height;
    }
    ASSERT_GT(height, 10000);
    Lum32s bytes = -1;
    EXPECT_EQ(lumiHoughLineGetSize_8u_C1R({30000, height}, delta, 10, &bytes), lumOk);
    EXPECT_EQ(static_cast<std::uint32_t>(bytes), standardBytes({30000, height}, delta, 10));
    EXPECT_EQ(lumiHoughLineGetSize_8u_C1R({30000, height + 1}, delta, 10, &bytes), lumWrnBufferTooLarge);
    EXPECT_EQ(static_cast<std::uint32_t>(bytes), standardBytes({30000, height + 1}, delta, 10));
}

TEST(HoughSizeQuick, Progressive)
{
    for (const LumiSize size : kSizes) {
        for (const LumiPointPolar delta : kSteps) {
            Lum32s specSize = -1;
            Lum32s bytes = -1;
            EXPECT_EQ(lumiHoughProbLineGetSize_8u_C1R(size, delta, &specSize, &bytes), lumOk);
            EXPECT_EQ(static_cast<std::uint32_t>(specSize), progressiveSpecBytes(delta));
            EXPECT_EQ(static_cast<std::uint32_t>(bytes), progressiveBytes(size, delta))
                << size.width << " x " << size.height << ", " << delta.rho << ", " << delta.theta;
        }
    }
    Lum32s specSize = -1;
    Lum32s bytes = -1;
    EXPECT_EQ(lumiHoughProbLineGetSize_8u_C1R({100, 50}, {1, kDegree}, &specSize, &bytes), lumOk);
    EXPECT_EQ(specSize, 8 * 179 + 20);
    EXPECT_EQ(bytes, 13 * 50 + 4 * (100 * 50 + 301 * 180));
    EXPECT_EQ(lumiHoughProbLineGetSize_8u_C1R({104, 50}, {1, kAngleLimit}, &specSize, &bytes), lumOk);
    EXPECT_EQ(specSize, 28);
    EXPECT_EQ(bytes, 14 * 50 + 4 * (104 * 50 + 309 * 2));
}

enum class Query
{
    Standard,
    Progressive,
    Init
};

struct QueryArgs
{
    Query query;
    const PlacedBlock* block;
    LumiSize size;
    LumiPointPolar delta;
    Lum8u* first;
    Lum8u* second;

    LumStatus call() const
    {
        switch (query) {
            case Query::Standard:
                return lumiHoughLineGetSize_8u_C1R(size, delta, 10, reinterpret_cast<Lum32s*>(first));
            case Query::Progressive:
                return lumiHoughProbLineGetSize_8u_C1R(size, delta, reinterpret_cast<Lum32s*>(first),
                                                       reinterpret_cast<Lum32s*>(second));
            default:
                return lumiHoughProbLineInit_8u32f_C1R(size, delta, 7, reinterpret_cast<LumHoughProbSpec*>(first));
        }
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

TEST(HoughStatusQuick, QueriesAndInit)
{
    using Args = QueryArgs;
    const LumiPointPolar delta = {1, 0.5f};
    for (const Query query : {Query::Standard, Query::Progressive, Query::Init}) {
        std::vector<Violation<Args>> table = {{"first null", lumErrNullPointer, [](Args& a) { a.first = nullptr; }}};
        if (query == Query::Progressive) {
            table.emplace_back("second null", lumErrNullPointer, [](Args& a) { a.second = nullptr; });
        }
        table.emplace_back("width 0", lumErrSize, [](Args& a) { a.size.width = 0; });
        table.emplace_back("width negative", lumErrSize, [](Args& a) { a.size.width = kIntMin; });
        table.emplace_back("height 0", lumErrSize, [](Args& a) { a.size.height = 0; });
        table.emplace_back("height negative", lumErrSize, [](Args& a) { a.size.height = -4; });
        for (const Lum32f wrong : {0.0f, -0.0f, -1.0f, kNaN}) {
            table.emplace_back("rho " + std::to_string(wrong), lumErrArgument,
                               [wrong](Args& a) { a.delta.rho = wrong; });
            table.emplace_back("theta " + std::to_string(wrong), lumErrArgument,
                               [wrong](Args& a) { a.delta.theta = wrong; });
        }
        const PlacedBlock block(progressiveSpecBytes(delta));
        expectStatusOrder(Args{query, &block, {20, 10}, delta, block.data(), block.data() + 4}, table);
    }
}

struct PolarArgs
{
    const GuardedBlock* output;  // of the list, and behind it the count
    LumiPointPolar* region;      // null for the standard form
    const Lum8u* src;
    Lum32s step;
    LumiSize size;
    LumiPointPolar delta;
    Lum32s threshold;
    LumiPointPolar* lines;
    Lum32s maxLineCount;
    Lum32s* count;
    Lum8u* buffer;
    bool isRegion;

    LumStatus call() const
    {
        return isRegion
                   ? lumiHoughLine_Region_8u32f_C1R(src, step, size, lines, region, maxLineCount, count, delta,
                                                    threshold, buffer)
                   : lumiHoughLine_8u32f_C1R(src, step, size, delta, threshold, lines, maxLineCount, count, buffer);
    }
    std::vector<Output> outputs() const
    {
        std::vector<Output> all = {Output(*output)};
        if (isRegion && region != nullptr) {
            all.emplace_back(region, 2 * sizeof(LumiPointPolar));
        }
        return all;
    }
};

TEST(HoughStatusQuick, Polar)
{
    using Args = PolarArgs;
    const Image<Lum8u> image = drawn({20, 10}, Content::Grid, 1);
    const PlacedBlock scratch(standardBytes({20, 10}, {1, 0.1f}, 6));
    const GuardedBlock output(6 * sizeof(LumiPointPolar) + sizeof(Lum32s), Guard::After);
    auto* const count = reinterpret_cast<Lum32s*>(output.data() + 6 * sizeof(LumiPointPolar));
    for (const bool isRegion : {false, true}) {
        LumiPointPolar region[2] = {{-30, -1}, {30, 4}};
        std::vector<Violation<Args>> table = {{"src null", lumErrNullPointer, [](Args& a) { a.src = nullptr; }},
                                              {"lines null", lumErrNullPointer, [](Args& a) { a.lines = nullptr; }},
                                              {"count null", lumErrNullPointer, [](Args& a) { a.count = nullptr; }},
                                              {"buffer null", lumErrNullPointer, [](Args& a) { a.buffer = nullptr; }},
                                              {"stride 0", lumErrStep, [](Args& a) { a.step = 0; }},
                                              {"stride negative", lumErrStep, [](Args& a) { a.step = -20; }},
                                              {"width 0", lumErrSize, [](Args& a) { a.size.width = 0; }},
                                              {"width negative", lumErrSize, [](Args& a) { a.size.width = kIntMin; }},
                                              {"height 0", lumErrSize, [](Args& a) { a.size.height = 0; }},
                                              {"height negative", lumErrSize, [](Args& a) { a.size.height = -10; }},
                                              {"no room", lumErrSize, [](Args& a) { a.maxLineCount = 0; }},
                                              {"room negative", lumErrSize, [](Args& a) { a.maxLineCount = -6; }}};
        if (isRegion) {
            table.insert(table.begin() + 3,
                         Violation<Args>("region null", lumErrNullPointer, [](Args& a) { a.region = nullptr; }));
        }
        for (const Lum32f rho : {0.0f, -1.0f, kNaN, std::nextafter(30.0f, 31.0f), 1e30f}) {
            table.emplace_back("rho " + std::to_string(rho), lumErrArgument, [rho](Args& a) { a.delta.rho = rho; });
        }
        for (const Lum32f theta : {0.0f, -0.1f, kNaN, std::nextafter(kAngleLimit, 4.0f), 3.1415927f}) {
            table.emplace_back("theta " + std::to_string(theta), lumErrArgument,
                               [theta](Args& a) { a.delta.theta = theta; });
        }
        table.emplace_back("threshold 0", lumErrArgument, [](Args& a) { a.threshold = 0; });
        table.emplace_back("threshold negative", lumErrArgument, [](Args& a) { a.threshold = kIntMin; });
        expectStatusOrder(Args{&output,
                               region,
                               image.pixels(),
                               image.step(),
                               {20, 10},
                               {1, 0.1f},
                               2,
                               output.as<LumiPointPolar>(),
                               6,
                               count,
                               scratch.data(),
                               isRegion},
                          table);
    }
}

// An unusable region is found out last.
TEST(HoughStatusQuick, RegionComesLast)
{
    const Image<Lum8u> image = drawn({20, 10}, Content::Grid, 1);
    const PlacedBlock scratch(standardBytes({20, 10}, {1, 0.1f}, 6));
    LumiPointPolar region[2] = {{1, 2}, {1, 1}};
    LumiPointPolar lines[6] = {};
    Lum32s count = 77;
    const auto call = [&](Lum32s threshold, LumiPointPolar delta) {
        return lumiHoughLine_Region_8u32f_C1R(image.pixels(), image.step(), {20, 10}, lines, region, 6, &count, delta,
                                              threshold, scratch.data());
    };
    EXPECT_EQ(call(0, {1, 0.1f}), lumErrArgument);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(call(1, {1, 4}), lumErrArgument);
    EXPECT_EQ(count, 77);
    EXPECT_EQ(call(1, {1, 0.1f}), lumErrHoughRegion);
    EXPECT_EQ(count, 0);
}

// The largest steps that pass: width plus height, and 3.14159.
TEST(HoughStatusQuick, LargestSteps)
{
    const Image<Lum8u> image = drawn({20, 10}, Content::Grid, 1);
    EXPECT_EQ(cellsOf({20, 10}, {30, kAngleLimit}).lastAngle, 1);
    EXPECT_EQ(cellsOf({20, 10}, {30, kAngleLimit}).rhoCells, 2);
    expectLines(image, {{30, kAngleLimit}, 1, 5});
    const LumiPointPolar region[2] = {{-30, 0}, {30, 4}};
    expectLines(image, {{30, kAngleLimit}, 1, 5, region});
}

struct ProgressiveArgs
{
    const GuardedBlock* output;  // of the list, and behind it the count
    const Lum8u* src;
    LumiSize size;
    Lum32s threshold;
    Lum32s lineLength;
    Lum32s lineGap;
    Lum32s* lines;
    Lum32s* count;
    Lum8u* buffer;
    const LumHoughProbSpec* spec;

    LumStatus call() const
    {
        return lumiHoughProbLine_8u32f_C1R(src, 20, size, threshold, lineLength, lineGap, lines, 6, count, buffer,
                                           spec);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*output)};
    }
};

TEST(HoughStatusQuick, Progressive)
{
    using Args = ProgressiveArgs;
    const Image<Lum8u> image = drawn({20, 10}, Content::Grid, 1);
    const LumiPointPolar delta = {1, 0.1f};
    const ProgressiveSpec spec({20, 10}, delta);
    const PlacedBlock scratch(progressiveBytes({20, 10}, delta));
    const GuardedBlock output(6 * sizeof(Segment) + sizeof(Lum32s), Guard::After);
    auto* const count = reinterpret_cast<Lum32s*>(output.data() + 6 * sizeof(Segment));
    expectStatusOrder(
        Args{&output, image.pixels(), {20, 10}, 5, 3, 0, output.as<Lum32s>(), count, scratch.data(), spec.get()},
        {{"src null", lumErrNullPointer, [](Args& a) { a.src = nullptr; }},
         {"lines null", lumErrNullPointer, [](Args& a) { a.lines = nullptr; }},
         {"count null", lumErrNullPointer, [](Args& a) { a.count = nullptr; }},
         {"buffer null", lumErrNullPointer, [](Args& a) { a.buffer = nullptr; }},
         {"spec null", lumErrNullPointer, [](Args& a) { a.spec = nullptr; }},
         {"width 0", lumErrSize, [](Args& a) { a.size.width = 0; }},
         {"width negative", lumErrSize, [](Args& a) { a.size.width = -20; }},
         {"height 0", lumErrSize, [](Args& a) { a.size.height = 0; }},
         {"height negative", lumErrSize, [](Args& a) { a.size.height = kIntMin; }},
         {"too wide", lumErrSize, [](Args& a) { a.size.width = 65537; }},
         {"too high", lumErrSize, [](Args& a) { a.size.height = kIntMax; }},
         {"threshold 0", lumErrArgument, [](Args& a) { a.threshold = 0; }},
         {"threshold negative", lumErrArgument, [](Args& a) { a.threshold = -5; }},
         {"length negative", lumErrArgument, [](Args& a) { a.lineLength = -1; }},
         {"gap negative", lumErrArgument, [](Args& a) { a.lineGap = kIntMin; }}});
}

// Largest and smallest values of what is not limited.
TEST(HoughStatusQuick, LargeArguments)
{
    const Image<Lum8u> image = drawn({20, 10}, Content::Grid, 1);
    expectSegments(image, {1, 0.1f}, {1, 0, kIntMax, 200});
    expectSegments(image, {1, 0.1f}, {1, kIntMax, 0, 200});
    expectSegments(image, {1, 0.1f}, {kIntMax, 0, 0, 200});
    expectSegments(image, {1, 0.1f}, {1, 0, kIntMax - 1, 200});
    expectLines(image, {{1, 0.1f}, kIntMax, 5});
}

}  // namespace
}  // namespace lumcv::test::hough
