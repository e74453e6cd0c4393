// What the Init functions of morphology and SetMode refuse.
#include <limits>
#include <vector>

#include "morph/morph_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

constexpr Lum64s kTooLarge = Lum64s{1} << 31;

/// All arguments of an Init; those that an entry does not have are not used.
struct InitArguments
{
    LumStatus (*init)(const InitArguments&);
    const PlacedBlock* record;
    const PlacedBlock* scratch;
    const Lum8u* pMask;
    AnyRecord pSpec = {record->data()};
    Lum8u* pBuffer = scratch->data();
    LumiSizeL roiSize = {20, 10};
    LumiSizeL maskSize = {3, 3};
    LumDataType dataType = lumType8u;
    int channels = 1;

    LumiSize roi() const
    {
        return {static_cast<Lum32s>(roiSize.width), static_cast<Lum32s>(roiSize.height)};
    }
    LumiSize mask() const
    {
        return {static_cast<Lum32s>(maskSize.width), static_cast<Lum32s>(maskSize.height)};
    }
    LumStatus call() const
    {
        return init(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(record->data(), record->size()), Output(scratch->data(), scratch->size())};
    }
};

enum class InitKind
{
    Ordinary,
    LargeSinglePass,
    LargeCompound
};

void expectInitOrder(InitKind kind, LumStatus (*init)(const InitArguments&))
{
    using Args = InitArguments;
    constexpr Geometry2 g = {20, 10, 3, 3};
    const StructuringElement element = disc(3);
    const GuardedBlock mask = maskBlock(element);
    const PlacedBlock record(static_cast<std::size_t>(largeCompoundRecordSize(g)));
    const PlacedBlock scratch(static_cast<std::size_t>(largeCompoundBufferSize(g, 4, 4)));

    std::vector<Violation<Args>> order = {
        {"pMask null", lumErrNullPointer, [](Args& a) { a.pMask = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = {}; }},
    };
    if (kind == InitKind::Ordinary) {
        order.push_back({"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }});
    }
    const std::vector<Violation<Args>> sizes = {
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"mask width 0", lumErrSize, [](Args& a) { a.maskSize.width = 0; }},
        {"mask height 0", lumErrSize, [](Args& a) { a.maskSize.height = 0; }},
        {"mask height negative", lumErrSize, [](Args& a) { a.maskSize.height = -1; }},
    };
    const std::vector<Violation<Args>> tooLarge = {
        {"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }},
        {"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge; }},
        {"mask width too large", lumErrSizeTooLarge, [](Args& a) { a.maskSize.width = kTooLarge; }},
        {"mask height too large", lumErrSizeTooLarge, [](Args& a) { a.maskSize.height = kTooLarge; }},
        {"height of 2^32 + 1", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = (Lum64s{1} << 32) + 1; }},
    };
    const auto append = [&](const std::vector<Violation<Args>>& more) {
        order.insert(order.end(), more.begin(), more.end());
    };
    switch (kind) {
        case InitKind::Ordinary:
            append(sizes);
            break;
        case InitKind::LargeSinglePass:
            append(sizes);
            append(tooLarge);
            break;
        case InitKind::LargeCompound:
            append(tooLarge);
            append(sizes);
            order.push_back({"data type 2", lumErrDataType, [](Args& a) { a.dataType = 2; }});
            order.push_back({"data type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }});
            order.push_back({"channels 0", lumErrValue, [](Args& a) { a.channels = 0; }});
            order.push_back({"channels 2", lumErrValue, [](Args& a) { a.channels = 2; }});
            break;
    }
    expectStatusOrder(Args{init, &record, &scratch, mask.data()}, order);
}

TYPE_SUITE(MorphInitStatusQuick, AllForms, FormName);

TYPE_TEST(MorphInitStatusQuick, ChecksInOrder)
{
    using Args = InitArguments;
    expectInitOrder(InitKind::Ordinary,
                    [](const Args& a) { return TypeParam::init(a.roi(), a.pMask, a.mask(), a.pSpec, a.pBuffer); });
    expectInitOrder(InitKind::Ordinary,
                    [](const Args& a) { return TypeParam::advInit(a.roi(), a.pMask, a.mask(), a.pSpec, a.pBuffer); });
}

TEST(MorphInitStatusQuick, LargeChecksInOrder)
{
    using Args = InitArguments;
    expectInitOrder(InitKind::LargeSinglePass,
                    [](const Args& a) { return lumiDilateInit_L(a.roiSize, a.pMask, a.maskSize, a.pSpec); });
    expectInitOrder(InitKind::LargeSinglePass,
                    [](const Args& a) { return lumiErodeInit_L(a.roiSize, a.pMask, a.maskSize, a.pSpec); });
    // here the sizes that are too large come before those that are too small
    expectInitOrder(InitKind::LargeCompound, [](const Args& a) {
        return lumiMorphInit_L(a.roiSize, a.pMask, a.maskSize, a.dataType, a.channels, a.pSpec);
    });
}

TEST(MorphInitStatusQuick, SetModeTakesFourModes)
{
    Setting s;
    s.operation = Operation::Open;
    s.width = 9;
    s.height = 9;
    const PlacedBlock ordinary = makeRecord<Form8uC1>(s);
    s.generation = Generation::Large;
    const PlacedBlock large = makeRecord<Form8uC1>(s);
    const AnyRecord ordinaryRecord{ordinary.data()};
    const AnyRecord largeRecord{large.data()};
    for (const int mode : {std::numeric_limits<int>::min(), -4, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 16, 0x7fffffff}) {
        const LumStatus expected = mode == 0 || mode == 1 || mode == 4 || mode == 5 ? lumOk : lumErrMode;
        EXPECT_EQ(lumiMorphSetMode(mode, ordinaryRecord), expected) << "mode " << mode;
        EXPECT_EQ(lumiMorphSetMode_L(mode, largeRecord), expected) << "mode " << mode;
        // the record comes first
        EXPECT_EQ(lumiMorphSetMode(mode, nullptr), lumErrNullPointer) << "mode " << mode;
        EXPECT_EQ(lumiMorphSetMode_L(mode, nullptr), lumErrNullPointer) << "mode " << mode;
    }
    EXPECT_TRUE(ordinary.intact());
    EXPECT_TRUE(large.intact());
}

// A mode that is refused leaves the record as it was.
TEST(MorphInitStatusQuick, RefusedModeChangesNothing)
{
    for (const Generation generation : kGenerations) {
        Setting s;
        s.operation = Operation::Open;
        s.generation = generation;
        s.width = 9;
        s.height = 9;
        const PlacedBlock record = makeRecord<Form8uC1>(s);
        const std::vector<Lum8u> before(record.data(), record.data() + record.size());
        const AnyRecord any{record.data()};
        for (const int mode : {-1, 2, 3, 6, 7}) {
            EXPECT_EQ(generation == Generation::Large ? lumiMorphSetMode_L(mode, any) : lumiMorphSetMode(mode, any),
                      lumErrMode);
        }
        EXPECT_TRUE(std::equal(before.begin(), before.end(), record.data()));
    }
}

}  // namespace
}  // namespace lumcv::test::morph
