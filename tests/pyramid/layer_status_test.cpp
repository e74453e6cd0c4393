// The order of the checks of layers; nothing is written on an error.
#include <gtest/gtest.h>

#include <deque>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "pyramid/layer_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::pyramid {
namespace {

constexpr Lum64s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum64s kTooLarge = kIntMax + 1;

class LayerStatusQuick : public testing::TestWithParam<LayerForm>
{
};
INSTANTIATE_TEST_SUITE_P(Forms, LayerStatusQuick, testing::ValuesIn(kForms), formName);

template <class Args>
using Table = std::vector<Violation<Args>>;

template <class Args>
void append(Table<Args>& table, const std::type_identity_t<Table<Args>>& more)
{
    table.insert(table.end(), more.begin(), more.end());
}

template <class Args>
Table<Args> wrongSizes()
{
    return {{"width 0", lumErrSize, [](Args& a) { a.srcRoi.width = 0; }},
            {"height 0", lumErrSize, [](Args& a) { a.srcRoi.height = 0; }},
            {"width negative", lumErrSize, [](Args& a) { a.srcRoi.width = -1; }},
            {"height negative", lumErrSize, [](Args& a) { a.srcRoi.height = -1; }}};
}

/// Sides beyond 31 bits, which only the 64-bit entry points can be given.
template <class Args>
Table<Args> sizesTooLarge(const LayerForm& form)
{
    if (!form.isWide) {
        return {};
    }
    return {{"width too large", lumErrSizeTooLarge, [](Args& a) { a.srcRoi.width = kTooLarge; }},
            {"height too large", lumErrSizeTooLarge, [](Args& a) { a.srcRoi.height = kTooLarge; }}};
}

template <class Args>
Table<Args> wrongRates()
{
    Table<Args> table;
    for (const Lum32f rate : {1.0f, 0.5f, -2.0f, 10.000001f, std::numeric_limits<Lum32f>::infinity(),
                              std::numeric_limits<Lum32f>::quiet_NaN()}) {
        table.push_back({"rate " + std::to_string(rate), lumErrArgument, [=](Args& a) { a.rate = rate; }});
    }
    return table;
}

template <class Args>
Table<Args> wrongKernelSizes()
{
    Table<Args> table;
    for (const int size : {4, 2, 1, 0, -1, -5, 6}) {
        table.push_back({"kernel size " + std::to_string(size), lumErrArgument, [=](Args& a) { a.kernelSize = size; }});
    }
    return table;
}

struct QueryArgs : QueryCall
{
    const LayerFunctions* functions;
    Lum64s* counts;

    LumStatus call() const
    {
        return functions->query(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(counts, 2 * sizeof *counts)};
    }
};

// The pointers come last.
TEST_P(LayerStatusQuick, QueriesCheckInOrder)
{
    for (const Way way : {Way::Down, Way::Up}) {
        SCOPED_TRACE(way == Way::Down ? "down" : "up");
        Table<QueryArgs> table = wrongSizes<QueryArgs>();
        append(table, sizesTooLarge<QueryArgs>(GetParam()));
        append(table, wrongRates<QueryArgs>());
        append(table, wrongKernelSizes<QueryArgs>());
        append(table, {{"pStateSize null", lumErrNullPointer, [](QueryArgs& a) { a.pStateSize = nullptr; }}});
        if (way == Way::Down) {
            append(table, {{"pBufSize null", lumErrNullPointer, [](QueryArgs& a) { a.pBufSize = nullptr; }}});
        }
        if (!GetParam().isWide) {
            append(table, {{"record too large", lumErrSizeTooLarge, [](QueryArgs& a) {
                                a.srcRoi = {kIntMax, kIntMax};
                            }}});
        }
        Lum64s counts[2] = {-3, -4};
        expectStatusOrder(QueryArgs{{.srcRoi = {30, 20}, .pStateSize = &counts[0], .pBufSize = &counts[1]},
                                    &functionsOf(GetParam(), way),
                                    counts},
                          table);
    }
}

// Also where the count of the buffer is left alone.
TEST_P(LayerStatusQuick, TheQueryOfASmallRoiNeedsBothPointers)
{
    Lum64s counts[2] = {-3, -4};
    QueryCall call = {.srcRoi = {5, 20}, .pStateSize = &counts[0], .pBufSize = nullptr};
    EXPECT_EQ(GetParam().down.query(call), lumErrNullPointer);
    EXPECT_EQ(counts[0], -3);
    call.pBufSize = &counts[1];
    EXPECT_EQ(GetParam().down.query(call), lumOk);
    EXPECT_GT(counts[0], 0);
    EXPECT_EQ(counts[1], -4);
}

struct InitArgs : InitCall
{
    const LayerFunctions* functions;
    void** state;
    const PlacedBlock* block;

    LumStatus call() const
    {
        return functions->init(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(state, sizeof *state), Output(block->data(), block->size())};
    }
};

/// Calls f(valid arguments) with a kernel that is symmetric in each type.
template <class F>
void withInit(const LayerForm& form, Way way, F f)
{
    const LayerSetting setting = {.size = {30, 20}, .number = 4};
    const QueriedSizes sizes = queriedSizes(form, way, setting);
    const PlacedBlock block = setting.block(sizes.state, 0);
    const PlacedBlock buffer = setting.block(240, 1);
    void* state = nullptr;
    withElement(form, [&]<class T>() {
        const std::vector<Tap<T>> taps = tapsOf<T>(setting);
        f(InitArgs{{.ppState = &state,
                    .srcRoi = {30, 20},
                    .pKernel = taps.data(),
                    .pStateMem = block.data(),
                    .pBuffer = buffer.data()},
                   &functionsOf(form, way),
                   &state,
                   &block});
    });
}

template <class Args>
Table<Args> wrongModes()
{
    return {{"mode 1", lumErrArgument, [](Args& a) { a.mode = 1; }},
            {"mode 0", lumErrArgument, [](Args& a) { a.mode = 0; }},
            {"mode negative", lumErrArgument, [](Args& a) { a.mode = -2; }},
            {"mode 258", lumErrArgument, [](Args& a) { a.mode = 258; }}};
}

Table<InitArgs> nullsOfInit()
{
    return {{"ppState null", lumErrNullPointer, [](InitArgs& a) { a.ppState = nullptr; }},
            {"pKernel null", lumErrNullPointer, [](InitArgs& a) { a.pKernel = nullptr; }},
            {"pStateMem null", lumErrNullPointer, [](InitArgs& a) { a.pStateMem = nullptr; }}};
}

/// The violations whose names begin so are not made together with the other one.
void exclude(Table<InitArgs>& table, const char* what, const char* prefix)
{
    for (Violation<InitArgs>& violation : table) {
        if (violation.name.starts_with(prefix)) {
            violation.notWith.push_back(what);
        }
    }
}

// The mode comes first, before the pointers.
TEST_P(LayerStatusQuick, DownInitChecksInOrder)
{
    withInit(GetParam(), Way::Down, [&](const InitArgs& valid) {
        Table<InitArgs> table = wrongModes<InitArgs>();
        append(table, nullsOfInit());
        append(table, {{"pBuffer null", lumErrNullPointer, [](InitArgs& a) { a.pBuffer = nullptr; }}});
        append(table, wrongSizes<InitArgs>());
        // a ROI that is not larger than the kernel needs no buffer
        exclude(table, "pBuffer null", "width");
        exclude(table, "pBuffer null", "height");
        append(table, sizesTooLarge<InitArgs>(GetParam()));
        append(table, wrongRates<InitArgs>());
        append(table, wrongKernelSizes<InitArgs>());
        expectStatusOrder(valid, table);
    });
}

// A ROI of the kernel's width or height needs no buffer, one that is larger by a pixel on both sides does.
TEST_P(LayerStatusQuick, DownInitNeedsABufferForALargeRoiOnly)
{
    withInit(GetParam(), Way::Down, [](InitArgs call) {
        call.pBuffer = nullptr;
        for (const LumiSizeL small : {LumiSizeL{5, 20}, LumiSizeL{30, 5}, LumiSizeL{5, 5}, LumiSizeL{1, 1}}) {
            call.srcRoi = small;
            EXPECT_EQ(call.call(), lumOk) << small.width << " x " << small.height;
        }
        call.srcRoi = {6, 6};
        EXPECT_EQ(call.call(), lumErrNullPointer);
        call.srcRoi = {0, 20};
        EXPECT_EQ(call.call(), lumErrSize);
    });
}

// The mode comes last, and the pointers just before it.
TEST_P(LayerStatusQuick, UpInitChecksInOrder)
{
    withInit(GetParam(), Way::Up, [&](const InitArgs& valid) {
        Table<InitArgs> table = wrongSizes<InitArgs>();
        append(table, sizesTooLarge<InitArgs>(GetParam()));
        append(table, wrongRates<InitArgs>());
        append(table, wrongKernelSizes<InitArgs>());
        append(table, nullsOfInit());
        append(table, wrongModes<InitArgs>());
        expectStatusOrder(valid, table);
    });
}

struct ApplyArgs : ApplyCall
{
    const LayerFunctions* functions;
    std::vector<Output> written;

    LumStatus call() const
    {
        return functions->apply(*this);
    }
    std::vector<Output> outputs() const
    {
        return written;
    }
};

/// Zeros at a multiple of 64, which is where records stand.
class PlacedZeros
{
  public:
    void* data() const
    {
        return const_cast<unsigned char*>(bytes_);
    }

  private:
    alignas(64) unsigned char bytes_[16384] = {};
};

/// A block of zeros, and the records of all other types and channel counts.
class WrongRecords
{
  public:
    WrongRecords(const LayerForm& form, Way way)
    {
        for (const LayerForm& other : kForms) {
            if (other.type != form.type || other.channels != form.channels) {
                names_.push_back(other.name);
                records_.emplace_back(other, way, LayerSetting{.size = {20, 14}});
            }
        }
    }
    Table<ApplyArgs> table() const
    {
        Table<ApplyArgs> table = {
            {"record of zeros", lumErrArgument, [this](ApplyArgs& a) { a.pState = zeros_.data(); }}};
        for (std::size_t i = 0; i < records_.size(); ++i) {
            table.push_back({std::string("record of ") + names_[i], lumErrArgument,
                             [state = records_[i].state()](ApplyArgs& a) { a.pState = state; }});
        }
        return table;
    }

  private:
    std::vector<const char*> names_;
    std::deque<LayerRecord> records_;
    PlacedZeros zeros_;
};

/// ROIs that are larger than the record's on one side; the rows are long enough for them.
Table<ApplyArgs> sizesAboveTheRecord()
{
    return {{"wider than the record", lumErrSize, [](ApplyArgs& a) { a.srcRoi.width = 21; }},
            {"higher than the record", lumErrSize, [](ApplyArgs& a) { a.srcRoi.height = 15; }}};
}

Violation<ApplyArgs> wrongStep(const char* name, LumStatus status, Lum64s ApplyCall::*step, Lum64s value)
{
    return {std::string(name) + " " + std::to_string(value), status, [=](ApplyArgs& a) { a.*step = value; }};
}

Violation<ApplyArgs> wrongDestination(LumiSizeL size)
{
    return {"destination " + std::to_string(size.width) + " x " + std::to_string(size.height), lumErrSize,
            [=](ApplyArgs& a) { a.dstRoi = size; }};
}

/// Checks null, stride, alignment, and then what the table says. The rows are long enough for all destinations in it.
void expectApplyOrder(const LayerForm& form, Way way, const Table<ApplyArgs>& further)
{
    const LayerSetting setting = {.size = {20, 14}, .number = 4};
    const LayerRecord record(form, way, setting);
    const LumiSize to = setting.destinationSize(way);
    const int bytes = form.elementBytes();
    withElement(form, [&]<class T>() {
        Image<T> source({.width = 20, .height = 14, .channels = form.channels, .gap = 12 * bytes});
        Random random(5);
        fill(source, random);
        Image<T> destination(
            {.width = to.width + 3, .height = to.height + 3, .channels = form.channels, .gap = 12 * bytes});
        const ApplyArgs valid = {{.pSrc = source.pixels(),
                                  .srcStep = source.step(),
                                  .srcRoi = {20, 14},
                                  .pDst = destination.pixels(),
                                  .dstStep = destination.step(),
                                  .dstRoi = {to.width, to.height},
                                  .pState = record.state()},
                                 &functionsOf(form, way),
                                 {Output(destination)}};
        Table<ApplyArgs> table = {{"pSrc null", lumErrNullPointer, [](ApplyArgs& a) { a.pSrc = nullptr; }},
                                  {"pDst null", lumErrNullPointer, [](ApplyArgs& a) { a.pDst = nullptr; }},
                                  {"pState null", lumErrNullPointer, [](ApplyArgs& a) { a.pState = nullptr; }}};
        if (form.isWide) {
            append(table, sizesTooLarge<ApplyArgs>(form));
            append(table,
                   {{"destination too wide", lumErrSizeTooLarge, [](ApplyArgs& a) { a.dstRoi.width = kTooLarge; }},
                    {"destination too high", lumErrSizeTooLarge, [](ApplyArgs& a) { a.dstRoi.height = kTooLarge; }},
                    wrongStep("srcStep", lumErrSizeTooLarge, &ApplyCall::srcStep, kTooLarge),
                    wrongStep("dstStep", lumErrSizeTooLarge, &ApplyCall::dstStep, kTooLarge)});
        }
        // these are too short for a width of 0 as well
        table.push_back(wrongStep("srcStep", lumErrStep, &ApplyCall::srcStep, -source.step()));
        table.push_back(wrongStep("dstStep", lumErrStep, &ApplyCall::dstStep, -destination.step()));
        if (bytes > 1) {
            table.push_back(wrongStep("srcStep", lumErrStepAlignment, &ApplyCall::srcStep, source.step() - 1));
            table.push_back(wrongStep("dstStep", lumErrStepAlignment, &ApplyCall::dstStep, destination.step() - 1));
        }
        append(table, further);
        expectStatusOrder(valid, table);

        // strides of one element less than a row; with this stride the row needs the documented size
        const auto statusOf = [&](Lum64s ApplyCall::*step, Lum64s value) {
            ApplyArgs call = valid;
            call.*step = value;
            return call.call();
        };
        const Lum64s sourceRow = Lum64s{20} * form.pixelBytes();
        const Lum64s destinationRow = Lum64s{to.width} * form.pixelBytes();
        for (const Lum64s tooShort : {Lum64s{1}, Lum64s{bytes}, sourceRow}) {
            EXPECT_EQ(statusOf(&ApplyCall::srcStep, sourceRow - tooShort), lumErrStep) << tooShort;
        }
        for (const Lum64s tooShort : {Lum64s{1}, Lum64s{bytes}, destinationRow}) {
            EXPECT_EQ(statusOf(&ApplyCall::dstStep, destinationRow - tooShort), lumErrStep) << tooShort;
        }
        EXPECT_EQ(statusOf(&ApplyCall::srcStep, sourceRow), lumOk);
        EXPECT_EQ(statusOf(&ApplyCall::dstStep, destinationRow), lumOk);
        if (bytes == 4) {
            EXPECT_EQ(statusOf(&ApplyCall::srcStep, sourceRow + 2), lumErrStepAlignment);
            EXPECT_EQ(statusOf(&ApplyCall::dstStep, destinationRow + 2), lumErrStepAlignment);
        }
    });
}

// The record is judged before the sizes: what no Init has laid, and what is made for other pixels.
TEST_P(LayerStatusQuick, DownChecksInOrder)
{
    const WrongRecords records(GetParam(), Way::Down);
    Table<ApplyArgs> table = records.table();
    append(table, wrongSizes<ApplyArgs>());
    append(table, sizesAboveTheRecord());
    for (const LumiSizeL size :
         {LumiSizeL{11, 7}, LumiSizeL{9, 7}, LumiSizeL{10, 8}, LumiSizeL{10, 6}, LumiSizeL{0, 7}, LumiSizeL{10, -7}}) {
        table.push_back(wrongDestination(size));
    }
    expectApplyOrder(GetParam(), Way::Down, table);
}

TEST_P(LayerStatusQuick, UpChecksInOrder)
{
    const WrongRecords records(GetParam(), Way::Up);
    Table<ApplyArgs> table = records.table();
    append(table, wrongSizes<ApplyArgs>());
    append(table, sizesAboveTheRecord());
    for (const LumiSizeL size : {LumiSizeL{41, 28}, LumiSizeL{38, 28}, LumiSizeL{40, 29}, LumiSizeL{40, 26},
                                 LumiSizeL{0, 28}, LumiSizeL{40, -28}}) {
        table.push_back(wrongDestination(size));
    }
    expectApplyOrder(GetParam(), Way::Up, table);
}

// The entry points with 64 bits and those without share their records.
TEST(LayerStatusOfWideFormsQuick, RecordsAreShared)
{
    const LayerForm& plain = kForms[4];
    const LayerForm& wide = kForms[6];
    for (const Way way : {Way::Down, Way::Up}) {
        for (const Lum32f rate : {2.0f, 1.5f}) {
            const LayerSetting setting = {.size = {20, 14}, .rate = rate, .number = 3};
            expectLayer(plain, way, setting, LayerRecord(wide, way, setting));
            expectLayer(wide, way, setting, LayerRecord(plain, way, setting));
        }
    }
}

// Widths whose rows have few bytes modulo 2 to the 32: the stride passes, and the size does not.
TEST_P(LayerStatusQuick, TheRowOfAWidthMayWrap)
{
    const LayerForm& form = GetParam();
    if (form.pixelBytes() == 1) {
        return;  // no width of 31 bits wraps
    }
    const Lum64s width = std::min((Lum64s{1} << 32) / form.pixelBytes() + 1, kIntMax);
    for (const Way way : {Way::Down, Way::Up}) {
        const LayerRecord record(form, way, {.size = {20, 14}});
        std::vector<Lum64s> source(100), destination(100);
        const ApplyCall call = {.pSrc = source.data(),
                                .srcStep = 64,
                                .srcRoi = {width, 1},
                                .pDst = destination.data(),
                                .dstStep = 64,
                                .dstRoi = {1, 1},
                                .pState = record.state()};
        EXPECT_EQ(functionsOf(form, way).apply(call), form.isWide ? lumErrStep : lumErrSize) << "width " << width;
    }
}

// A record stands at a multiple of 64 within its block.
TEST_P(LayerStatusQuick, InitTellsWhereTheRecordStands)
{
    for (const Way way : {Way::Down, Way::Up}) {
        for (int number = 0; number < 67; ++number) {
            const LayerRecord record(GetParam(), way, {.size = {9, 8}, .number = number});
            const auto place = reinterpret_cast<std::uintptr_t>(record.state());
            const auto begin = reinterpret_cast<std::uintptr_t>(record.block().data());
            EXPECT_EQ(place, (begin + 63) / 64 * 64);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::pyramid
