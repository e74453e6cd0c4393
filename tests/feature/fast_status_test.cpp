// FAST corners: the sizes of the blocks, what the record holds, and the order of the argument checks.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "feature/fast_fixture.hpp"
#include "support/compare.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::fast {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();
constexpr Lum32f kNaN = std::numeric_limits<Lum32f>::quiet_NaN();

TEST(FastSizeQuick, Record)
{
    const std::pair<int, int> sizes[] = {{1, 132}, {2, 164}, {3, 196}, {5, 292}, {7, 388}, {9, 484}};
    for (const auto& [radius, bytes] : sizes) {
        for (const int mode : kModes) {
            for (int arc = shortestArc(radius); arc <= ringSize(radius); ++arc) {
                for (const LumiSize size : {LumiSize{1, 1}, {1920, 1080}, {kIntMax, kIntMax}}) {
                    Lum32s result = -1;
                    EXPECT_EQ(lumiFastNGetSize(size, radius, arc, 64, mode, lumType8u, 1, &result), lumOk);
                    EXPECT_EQ(result, bytes);
                    EXPECT_EQ(static_cast<std::uint64_t>(bytes), specBytes(radius));
                }
            }
        }
    }
}

TEST(FastSizeQuick, Scratch)
{
    const Spec spec({100, 100}, {});
    const Lum32s widest = (kIntMax - 636) / 6;
    for (const Lum32s width : {1, 2, 17, 640, 1920, 65536, 1000000, widest}) {
        for (const Lum32s height : {1, 1080, kIntMax}) {
            Lum32s result = -1;
            EXPECT_EQ(lumiFastNGetBufferSize(spec.get(), {width, height}, &result), lumOk);
            EXPECT_EQ(static_cast<std::uint64_t>(result), scratchBytes(width));
        }
    }
    Lum32s result = -1;
    EXPECT_EQ(lumiFastNGetBufferSize(spec.get(), {1920, 1}, &result), lumOk);
    EXPECT_EQ(result, 1920 * 6 + 12 + 624);
    result = -1;
    EXPECT_EQ(lumiFastNGetBufferSize(spec.get(), {widest + 1, 1}, &result), lumErrSizeTooLarge);
    EXPECT_EQ(lumiFastNGetBufferSize(spec.get(), {kIntMax, 1}, &result), lumErrSizeTooLarge);
    EXPECT_EQ(result, -1);
}

// What Init lays, at every alignment of the block.
TEST(FastRecordQuick, Fields)
{
    for (std::size_t distance = 0; distance < 9; ++distance) {
        for (const int radius : kRadii) {
            const Setting setting = {radius, shortestArc(radius) + 1, 5 + radius, kMaxima | kOrientation, 12.75f};
            const Spec spec({321, 45}, setting, {Guard::After, distance, 0, 0});
            const auto* const block = reinterpret_cast<const unsigned char*>(spec.get());
            ASSERT_EQ(block[0], 8 - reinterpret_cast<std::uintptr_t>(block) % 8);
            const unsigned char* const record = block + block[0];
            std::uint64_t identity = 0;
            std::memcpy(&identity, record, 8);
            EXPECT_EQ(identity, 0x14B617390u);
            Lum32s numbers[10];
            std::memcpy(numbers, record + 8, sizeof numbers);
            const Lum32s expected[] = {
                lumType8u, 1, 321, 45, radius, setting.arc, setting.bins, setting.mode, std::bit_cast<Lum32s>(12.75f),
                12};
            EXPECT_TRUE(sameElements(expected, numbers, 10)) << "radius " << radius;
            const auto size = static_cast<std::size_t>(ringSize(radius));
            std::vector<Lum32f> tables(2 * size + 1);
            std::memcpy(tables.data(), record + 56, tables.size() * sizeof(Lum32f));
            std::vector<Lum32f> wanted(2 * size + 1);
            for (std::size_t i = 0; i < size; ++i) {
                const double theta = ringAngle(i, size);
                wanted[i] = static_cast<Lum32f>(std::sin(theta));
                wanted[size + i] = static_cast<Lum32f>(std::cos(theta));
            }
            wanted[2 * size] = binScale(setting.bins);
            EXPECT_TRUE(sameElements(wanted.data(), tables.data(), tables.size())) << "radius " << radius;
        }
    }
}

struct InitArgs
{
    LumiSize size;
    Lum32s radius;
    Lum32s arc;
    Lum32s bins;
    Lum32s mode;
    Lum32f threshold;
    LumDataType type;
    Lum32s channels;
    Lum8u* result;
    bool isQuery;
    const PlacedBlock* block;

    LumStatus call() const
    {
        return isQuery
                   ? lumiFastNGetSize(size, radius, arc, bins, mode, type, channels, reinterpret_cast<Lum32s*>(result))
                   : lumiFastNInit(size, radius, arc, bins, mode, threshold, type, channels,
                                   reinterpret_cast<LumFastNSpec*>(result));
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

TEST(FastStatusQuick, GetSizeAndInit)
{
    using Args = InitArgs;
    for (const bool isQuery : {true, false}) {
        std::vector<Violation<Args>> table = {{"result null", lumErrNullPointer, [](Args& a) { a.result = nullptr; }},
                                              {"width 0", lumErrSize, [](Args& a) { a.size.width = 0; }},
                                              {"width negative", lumErrSize, [](Args& a) { a.size.width = kIntMin; }},
                                              {"height 0", lumErrSize, [](Args& a) { a.size.height = 0; }},
                                              {"height negative", lumErrSize, [](Args& a) { a.size.height = -5; }}};
        if (!isQuery) {
            for (const Lum32f threshold : {-0.5f, -1.0f, -1e-40f, -std::numeric_limits<Lum32f>::infinity(), kNaN}) {
                table.emplace_back("threshold " + std::to_string(threshold), lumErrThreshold,
                                   [threshold](Args& a) { a.threshold = threshold; });
            }
        }
        for (const LumDataType type : {0, 2, 5, 13, -1}) {
            table.emplace_back("type " + std::to_string(type), lumErrDataType, [type](Args& a) { a.type = type; });
        }
        for (const Lum32s channels : {0, 3, -1}) {
            table.emplace_back("channels " + std::to_string(channels), lumErrChannels,
                               [channels](Args& a) { a.channels = channels; });
        }
        // without corners; unknown bits; suppression without scores
        for (const Lum32s mode : {0, 1, 0x20, 0x23, 0x0D, 0x15, 0x45, 0x85, 0x105, 0x06, 0x07, 0x08, kIntMin | 5, -1}) {
            table.emplace_back("mode " + std::to_string(mode), lumErrArgument, [mode](Args& a) { a.mode = mode; });
        }
        for (const Lum32s bins : {0, 65, -1, kIntMin, kIntMax}) {
            table.emplace_back("bins " + std::to_string(bins), lumErrOutOfRange, [bins](Args& a) { a.bins = bins; });
        }
        for (const Lum32s radius :
             {0, 4, 6, 8, 10, 33, 34, 35, 37, 65, -1, -3, -31, -29, kIntMin, kIntMin + 3, kIntMax}) {
            table.emplace_back("radius " + std::to_string(radius), lumErrArgument,
                               [radius](Args& a) { a.radius = radius; });
        }
        for (const Lum32s arc : {8, 17, 0, -9, kIntMin, kIntMax}) {
            table.emplace_back("arc " + std::to_string(arc), lumErrOutOfRange, [arc](Args& a) { a.arc = arc; });
        }
        const PlacedBlock block(specBytes(3));
        expectStatusOrder(
            Args{{20, 10}, 3, 9, 8, kMaxima | kOrientation, 20, lumType8u, 1, block.data(), isQuery, &block}, table);
    }
}

// The limits of the arc for every radius; bins do not matter without the direction.
TEST(FastStatusQuick, ArcsAndBins)
{
    const std::pair<int, int> shortest[] = {{1, 5}, {2, 7}, {3, 9}, {5, 15}, {7, 21}, {9, 27}};
    for (const auto& shape : shortest) {
        const auto radius = shape.first, arc = shape.second;  // which a lambda can capture
        Lum32s bytes = 0;
        const auto query = [&](int n, int bins, int mode) {
            return lumiFastNGetSize({5, 5}, radius, n, bins, mode, lumType8u, 1, &bytes);
        };
        EXPECT_EQ(query(arc - 1, 1, kCorners), lumErrOutOfRange) << radius;
        EXPECT_EQ(query(arc, 1, kCorners), lumOk) << radius;
        EXPECT_EQ(query(ringSize(radius), 1, kCorners), lumOk) << radius;
        EXPECT_EQ(query(ringSize(radius) + 1, 1, kCorners), lumErrOutOfRange) << radius;
        for (const int bins : {0, -1, 65, kIntMin, kIntMax}) {
            EXPECT_EQ(query(arc, bins, kMaxima), lumOk) << bins;
            EXPECT_EQ(query(arc, bins, kMaxima | kOrientation), lumErrOutOfRange) << bins;
        }
        EXPECT_EQ(query(arc, 1, kCorners | kOrientation), lumOk);
        EXPECT_EQ(query(arc, 64, kCorners | kOrientation), lumOk);
    }
}

// A record that can be spoilt field by field for the length of a call.
class Record
{
  public:
    Record() : block_(specBytes(3))
    {
        EXPECT_EQ(lumiFastNInit({12, 9}, 3, 9, 8, kMaxima | kOrientation, 20, lumType8u, 1, get()), lumOk);
    }
    LumFastNSpec* get() const
    {
        return reinterpret_cast<LumFastNSpec*>(block_.data());
    }
    // Fields are numbered by their offset in the record.
    Lum32s exchange(int field, Lum32s value) const
    {
        unsigned char* const place = block_.data() + block_.data()[0] + field;
        Lum32s before = 0;
        std::memcpy(&before, place, 4);
        std::memcpy(place, &value, 4);
        return before;
    }

  private:
    PlacedBlock block_;
};

constexpr int kIdentity = 0;
constexpr int kType = 8;
constexpr int kChannels = 12;
constexpr int kWidth = 16;
constexpr int kHeight = 20;
constexpr int kRadius = 24;
constexpr int kArc = 28;
constexpr int kBins = 32;
constexpr int kMode = 36;

using Spoilt = std::vector<std::pair<int, Lum32s>>;

// Calls f while fields of the record are spoilt.
template <class F>
LumStatus withSpoilt(const Record* record, const Spoilt& fields, F f)
{
    Spoilt before;
    for (const auto& [field, value] : fields) {
        before.emplace_back(field, record->exchange(field, value));
    }
    const LumStatus status = f();
    for (std::size_t i = before.size(); i-- > 0;) {
        record->exchange(before[i].first, before[i].second);
    }
    return status;
}

template <class Args>
Violation<Args> spoiling(std::string name, LumStatus status, int field, Lum32s value)
{
    return {std::move(name), status, [field, value](Args& a) { a.spoilt.emplace_back(field, value); }};
}

struct BufferArgs
{
    const Record* record;
    const LumFastNSpec* spec;
    LumiSize size;
    Lum32s* result;
    Lum32s* output;
    Spoilt spoilt = {};

    LumStatus call() const
    {
        return withSpoilt(record, spoilt, [&] { return lumiFastNGetBufferSize(spec, size, result); });
    }
    std::vector<Output> outputs() const
    {
        return {Output(output, sizeof *output)};
    }
};

TEST(FastStatusQuick, GetBufferSize)
{
    using Args = BufferArgs;
    const Record record;
    Lum32s bytes = -1;
    expectStatusOrder(Args{&record, record.get(), {7, 5}, &bytes, &bytes},
                      {{"spec null", lumErrNullPointer, [](Args& a) { a.spec = nullptr; }},
                       {"result null", lumErrNullPointer, [](Args& a) { a.result = nullptr; }},
                       spoiling<Args>("identity", lumErrContext, kIdentity, 0x4B617391),
                       {"width 0", lumErrSize, [](Args& a) { a.size.width = 0; }},
                       {"height 0", lumErrSize, [](Args& a) { a.size.height = 0; }},
                       {"width negative", lumErrSize, [](Args& a) { a.size.width = kIntMin; }},
                       {"height negative", lumErrSize, [](Args& a) { a.size.height = -1; }},
                       {"too wide", lumErrSizeTooLarge, [](Args& a) { a.size.width = kIntMax; }}});
}

// The record's image has 12 x 9 pixels, the ROI 10 x 7.
struct CallArgs
{
    const Record* record;
    const Image<Lum8u>* corner;
    const Image<Lum8u>* score;
    Lum32s* countOutput;
    const Lum8u* src;
    Lum32s srcStep;
    Lum8u* dstCorner;
    Lum32s cornerStep;
    Lum8u* dstScore;
    Lum32s scoreStep;
    Lum32s* count;
    LumiSize roi;
    const LumFastNSpec* spec;
    Lum8u* buffer;
    LumiPoint offset = {1, 1};
    Spoilt spoilt = {};

    LumStatus call() const
    {
        return withSpoilt(record, spoilt, [&] {
            return lumiFastN_8u_C1R(src, srcStep, dstCorner, cornerStep, dstScore, scoreStep, count, offset, roi, spec,
                                    buffer);
        });
    }
    std::vector<Output> outputs() const
    {
        return {Output(*corner), Output(*score), Output(countOutput, sizeof *countOutput)};
    }
};

struct CallOperands
{
    CallArgs valid()
    {
        return {&record, &corner,        &score, &count, image.pixels(), 12,           corner.pixels(),
                10,      score.pixels(), 10,     &count, {10, 7},        record.get(), scratch.data()};
    }

    Record record;
    Image<Lum8u> image = [] {
        Image<Lum8u> drawn(Placement{}.layout({12, 9}));
        Random random(1);
        draw(drawn, Content::Noise, 3, random);
        return drawn;
    }();
    Image<Lum8u> corner = Image<Lum8u>(Placement{}.layout({10, 7}));
    Image<Lum8u> score = Image<Lum8u>(Placement{}.layout({10, 7}));
    PlacedBlock scratch = PlacedBlock(scratchBytes(10));
    Lum32s count = -1;
};

template <class Args>
void addRecordHead(std::vector<Violation<Args>>& table)
{
    table.push_back(spoiling<Args>("identity", lumErrContext, kIdentity, 0x4B617391));
    table.push_back(spoiling<Args>("identity 0", lumErrContext, kIdentity, 0));
    table.push_back(spoiling<Args>("type 5", lumErrDataType, kType, lumType16u));
    table.push_back(spoiling<Args>("channels 3", lumErrChannels, kChannels, 3));
}

template <class Args>
void addModeAndBins(std::vector<Violation<Args>>& table)
{
    table.push_back(spoiling<Args>("mode without corners", lumErrArgument, kMode, 0x23));
    table.push_back(spoiling<Args>("mode unknown", lumErrArgument, kMode, 0x2D));
    table.push_back(spoiling<Args>("mode of maxima alone", lumErrArgument, kMode, 0x07));
    table.push_back(spoiling<Args>("bins 0", lumErrOutOfRange, kBins, 0));
    table.push_back(spoiling<Args>("bins 65", lumErrOutOfRange, kBins, 65));
}

TEST(FastStatusQuick, Corners)
{
    using Args = CallArgs;
    CallOperands operands;
    std::vector<Violation<Args>> table = {{"src null", lumErrNullPointer, [](Args& a) { a.src = nullptr; }},
                                          {"corner null", lumErrNullPointer, [](Args& a) { a.dstCorner = nullptr; }},
                                          {"spec null", lumErrNullPointer, [](Args& a) { a.spec = nullptr; }},
                                          {"buffer null", lumErrNullPointer, [](Args& a) { a.buffer = nullptr; }},
                                          {"count null", lumErrNullPointer, [](Args& a) { a.count = nullptr; }},
                                          {"width 0", lumErrSize, [](Args& a) { a.roi.width = 0; }},
                                          {"width negative", lumErrSize, [](Args& a) { a.roi.width = -10; }},
                                          {"height 0", lumErrSize, [](Args& a) { a.roi.height = 0; }},
                                          {"height negative", lumErrSize, [](Args& a) { a.roi.height = kIntMin; }}};
    addRecordHead(table);
    table.push_back(spoiling<Args>("image width 0", lumErrSize, kWidth, 0));
    table.push_back(spoiling<Args>("image height negative", lumErrSize, kHeight, -9));
    table.emplace_back("src stride", lumErrStep, [](Args& a) { a.srcStep = 11; });
    table.emplace_back("src stride 0", lumErrStep, [](Args& a) { a.srcStep = 0; });
    table.emplace_back("src stride negative", lumErrStep, [](Args& a) { a.srcStep = -12; });
    table.emplace_back("corner stride", lumErrStep, [](Args& a) { a.cornerStep = 9; });
    table.emplace_back("corner stride negative", lumErrStep, [](Args& a) { a.cornerStep = -10; });
    table.emplace_back("score stride", lumErrStep, [](Args& a) { a.scoreStep = 9; });
    table.emplace_back("score stride negative", lumErrStep, [](Args& a) { a.scoreStep = kIntMin; });
    addModeAndBins(table);
    // an unusable mode may know no scores
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].name == "mode of maxima alone") {
            table[i].notWith = {"score stride", "score stride negative"};
        }
    }
    table.emplace_back("score null", lumErrNullPointer, [](Args& a) { a.dstScore = nullptr; });
    table.push_back(spoiling<Args>("radius 4", lumErrArgument, kRadius, 4));
    table.push_back(spoiling<Args>("radius 35", lumErrArgument, kRadius, 35));
    table.push_back(spoiling<Args>("arc 8", lumErrOutOfRange, kArc, 8));
    table.push_back(spoiling<Args>("arc 17", lumErrOutOfRange, kArc, 17));
    expectStatusOrder(operands.valid(), table);
    // the ROI's place is judged after everything else
    CallArgs outside = operands.valid();
    outside.offset = {12, 0};
    EXPECT_EQ(outside.call(), lumWrnRoiClipped);
    outside.spoilt = {{kArc, 17}};
    EXPECT_EQ(outside.call(), lumErrOutOfRange);
    EXPECT_EQ(operands.count, -1);
}

// Only the low half of the identity is compared.
TEST(FastStatusQuick, HighHalfOfTheIdentity)
{
    CallOperands operands;
    CallArgs args = operands.valid();
    args.spoilt = {{kIdentity + 4, 0x77}};
    EXPECT_EQ(args.call(), lumOk);
    EXPECT_GE(operands.count, 0);
}

// Without the score bit neither the pointer nor the stride of the score map matters.
TEST(FastStatusQuick, NoScoreMap)
{
    CallOperands operands;
    CallArgs args = operands.valid();
    args.spoilt = {{kMode, kCorners | kOrientation}};
    args.dstScore = nullptr;
    args.scoreStep = -7;
    EXPECT_EQ(args.call(), lumOk);
    EXPECT_GE(operands.count, 0);
    EXPECT_EQ(lumiFastN2DToVec_8u(operands.corner.pixels(), 10, nullptr, 0, nullptr, {10, 7}, 0, &operands.count,
                                  operands.record.get()),
              lumErrNullPointer);
}

struct ListArgs
{
    const Record* record;
    const GuardedBlock* list;
    Lum32s* countOutput;
    const Lum8u* corner;
    Lum32s cornerStep;
    const Lum8u* score;
    Lum32s scoreStep;
    LumCornerFastN* dst;
    LumiSize roi;
    Lum32s maxLen;
    Lum32s* count;
    const LumFastNSpec* spec;
    Spoilt spoilt = {};

    LumStatus call() const
    {
        return withSpoilt(record, spoilt, [&] {
            return lumiFastN2DToVec_8u(corner, cornerStep, score, scoreStep, dst, roi, maxLen, count, spec);
        });
    }
    std::vector<Output> outputs() const
    {
        return {Output(*list), Output(countOutput, sizeof *countOutput)};
    }
};

TEST(FastStatusQuick, List)
{
    using Args = ListArgs;
    const Record record;
    Image<Lum8u> corner(Placement{}.layout({10, 7}));
    Image<Lum8u> score(Placement{}.layout({10, 7}));
    const GuardedBlock list(70 * sizeof(LumCornerFastN), Guard::After);
    Lum32s count = -1;
    std::vector<Violation<Args>> table = {{"corner null", lumErrNullPointer, [](Args& a) { a.corner = nullptr; }},
                                          {"dst null", lumErrNullPointer, [](Args& a) { a.dst = nullptr; }},
                                          {"count null", lumErrNullPointer, [](Args& a) { a.count = nullptr; }},
                                          {"spec null", lumErrNullPointer, [](Args& a) { a.spec = nullptr; }},
                                          {"width 0", lumErrSize, [](Args& a) { a.roi.width = 0; }},
                                          {"width negative", lumErrSize, [](Args& a) { a.roi.width = -10; }},
                                          {"height 0", lumErrSize, [](Args& a) { a.roi.height = 0; }},
                                          {"height negative", lumErrSize, [](Args& a) { a.roi.height = kIntMin; }},
                                          {"room negative", lumErrSize, [](Args& a) { a.maxLen = -1; }}};
    addRecordHead(table);
    table.emplace_back("corner stride", lumErrStep, [](Args& a) { a.cornerStep = 9; });
    table.emplace_back("corner stride negative", lumErrStep, [](Args& a) { a.cornerStep = -10; });
    table.emplace_back("score stride", lumErrStep, [](Args& a) { a.scoreStep = 9; });
    addModeAndBins(table);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].name == "mode of maxima alone") {
            table[i].notWith = {"score stride"};
        }
    }
    table.emplace_back("score null", lumErrNullPointer, [](Args& a) { a.score = nullptr; });
    expectStatusOrder(Args{&record,
                           &list,
                           &count,
                           corner.pixels(),
                           10,
                           score.pixels(),
                           10,
                           list.as<LumCornerFastN>(),
                           {10, 7},
                           70,
                           &count,
                           record.get()},
                      table);
    // what it does not use of the record may be anything
    Args args{&record, &list, &count, corner.pixels(), 10, score.pixels(), 10, list.as<LumCornerFastN>(),
              {10, 7}, 70,    &count, record.get()};
    args.spoilt = {{kRadius, 4}, {kArc, 1}, {kIdentity + 4, 0}, {kWidth, 0}, {kHeight, -1}};
    EXPECT_EQ(args.call(), lumOk);
    EXPECT_GT(count, 0);
}

}  // namespace
}  // namespace lumcv::test::fast
