// The sizes of morphology's blocks, and what the size queries refuse.
#include <limits>
#include <vector>

#include "morph/morph_forms.hpp"
#include "morph/morph_sizes.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::morph {
namespace {

constexpr Wide kLargestInt = std::numeric_limits<Lum32s>::max();
constexpr Wide kLargestLong = std::numeric_limits<Lum64s>::max();

/// Sides around the multiples of the alignments, bands that exist and do not, and products around 2^31 and 2^63.
std::vector<Geometry2> geometries()
{
    std::vector<Geometry2> result;
    for (const int W : {1, 2, 3, 4, 5, 15, 16, 17, 31, 32, 33, 64, 100, 1920}) {
        for (const int H : {1, 2, 3, 4, 9, 16, 1080}) {
            for (const int w : {1, 2, 3, 4, 5, 7, 8, 15, 33, 100}) {
                for (const int h : {1, 2, 3, 4, 6, 9, 33}) {
                    result.push_back({W, H, w, h});
                }
            }
        }
    }
    for (const int W : {50000, 1 << 24, 715827882, 2147483615, 0x7fffffff}) {
        for (const int H : {1, 3, 40000, 0x7fffffff}) {
            for (const int w : {1, 2, 3, 46341, 0x7ffffffe, 0x7fffffff}) {
                for (const int h : {1, 3, 10000, 0x7fffffff}) {
                    result.push_back({W, H, w, h});
                }
            }
        }
    }
    return result;
}

std::string textOf(const Geometry2& g)
{
    const auto number = [](Wide value) { return std::to_string(static_cast<long>(value)); };
    return number(g.W) + " x " + number(g.H) + ", element " + number(g.w) + " x " + number(g.h);
}

LumiSize roiOf(const Geometry2& g)
{
    return {static_cast<Lum32s>(g.W), static_cast<Lum32s>(g.H)};
}

LumiSize maskOf(const Geometry2& g)
{
    return {static_cast<Lum32s>(g.w), static_cast<Lum32s>(g.h)};
}

LumiSizeL large(LumiSize size)
{
    return {size.width, size.height};
}

/// A query of two sizes: both fit, or neither is written.
template <class Query>
void expectSizes(Query query, const Geometry2& g, Wide recordSize, Wide bufferSize)
{
    const bool fits = recordSize <= kLargestInt && bufferSize <= kLargestInt;
    Lum32s record = -77;
    Lum32s buffer = -78;
    ASSERT_EQ(query(roiOf(g), maskOf(g), &record, &buffer), fits ? lumOk : lumErrSizeTooLarge) << textOf(g);
    ASSERT_EQ(record, fits ? recordSize : -77) << textOf(g);
    ASSERT_EQ(buffer, fits ? bufferSize : -78) << textOf(g);
}

/// A query of one size.
template <class Query>
void expectSize(Query query, const Geometry2& g, Wide size)
{
    Lum64s actual = -77;
    ASSERT_EQ(query(&actual), size <= kLargestLong ? lumOk : lumErrSizeTooLarge) << textOf(g);
    ASSERT_TRUE(actual == (size <= kLargestLong ? size : -77)) << textOf(g) << ": got " << actual;
}

TYPE_SUITE(MorphSizesQuick, AllForms, FormName);

TYPE_TEST(MorphSizesQuick, SinglePass)
{
    for (const Geometry2& g : geometries()) {
        expectSizes(TypeParam::getSize, g, byteRecordSize(g),
                    byteBufferSize(g, TypeParam::channels, sizeof(typename TypeParam::Element)));
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TYPE_TEST(MorphSizesQuick, Compound)
{
    for (const Geometry2& g : geometries()) {
        const Wide e = sizeof(typename TypeParam::Element);
        const Wide single = byteBufferSize(g, TypeParam::channels, e);
        expectSizes(TypeParam::advGetSize, g, compoundRecordSize(g, byteRecordSize(g)),
                    compoundBufferSize(g, TypeParam::channels, e, single));
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(MorphSizesQuick, BitsSinglePassAndCompound)
{
    for (const Geometry2& g : geometries()) {
        expectSizes(lumiMorphologyBorderGetSize_1u_C1R, g, bitRecordSize(g), bitBufferSize(g));
        expectSizes(lumiMorphAdvGetSize_1u_C1R, g, compoundRecordSize(g, bitRecordSize(g)),
                    compoundBufferSize(g, 1, 1, bitBufferSize(g)));
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(MorphSizesQuick, LargeRecords)
{
    for (const Geometry2& g : geometries()) {
        const LumiSizeL roi = large(roiOf(g));
        const LumiSizeL mask = large(maskOf(g));
        expectSize([&](Lum64s* p) { return lumiDilateGetSpecSize_L(roi, mask, p); }, g, largeRecordSize(g));
        expectSize([&](Lum64s* p) { return lumiErodeGetSpecSize_L(roi, mask, p); }, g, largeRecordSize(g));
        for (const LumDataType type : {0, 1, 5, 7, 13}) {
            for (const int channels : {1, 3, 4}) {
                expectSize([&](Lum64s* p) { return lumiMorphGetSpecSize_L(roi, mask, type, channels, p); }, g,
                           largeCompoundRecordSize(g));
            }
        }
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

// Type code 0 stands for bits and counts one byte a pixel.
TEST(MorphSizesQuick, LargeBuffers)
{
    for (const Geometry2& g : geometries()) {
        const LumiSizeL roi = large(roiOf(g));
        const LumiSizeL mask = large(maskOf(g));
        for (const LumDataType type : {0, 1, 5, 7, 13}) {
            for (const int ch : {1, 3, 4}) {
                SCOPED_TRACE("type " + std::to_string(type) + ", channels " + std::to_string(ch));
                const Wide size = largeBufferSize(g, ch, elementBytes(type));
                expectSize([&](Lum64s* p) { return lumiDilateGetBufferSize_L(roi, mask, type, ch, p); }, g, size);
                expectSize([&](Lum64s* p) { return lumiErodeGetBufferSize_L(roi, mask, type, ch, p); }, g, size);
                expectSize([&](Lum64s* p) { return lumiMorphGetBufferSize_L(roi, mask, type, ch, p); }, g,
                           largeCompoundBufferSize(g, ch, elementBytes(type)));
            }
        }
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

// A few sizes worked out by hand.
TEST(MorphSizesQuick, KnownSizes)
{
    Lum32s record = 0;
    Lum32s buffer = 0;
    // 3x3: (15 + 4) * 3 + 136; ring 16 + 32 + 3 * 128, the band above: 3 rows of 102 (2 + 1 of them, 2 + 100 columns)
    EXPECT_EQ(lumiMorphologyBorderGetSize_8u_C1R({100, 50}, {3, 3}, &record, &buffer), lumOk);
    EXPECT_EQ(record, 193);
    EXPECT_EQ(buffer, 432 + 320 + 64);
    // bits: 3 * 16 + 144; 2 * 3 * align16(412) + 16 = 2512 against 112 + 80 + 16 + (8 + 120 + 10 * 132 + 32)
    EXPECT_EQ(lumiMorphologyBorderGetSize_1u_C1R({100, 50}, {3, 3}, &record, &buffer), lumOk);
    EXPECT_EQ(record, 192);
    EXPECT_EQ(buffer, 2512);
    // the compound: 9 + 2 * 193 + 64; 52 * align32(102) + 2 * 816
    EXPECT_EQ(lumiMorphAdvGetSize_8u_C1R({100, 50}, {3, 3}, &record, &buffer), lumOk);
    EXPECT_EQ(record, 459);
    EXPECT_EQ(buffer, 52 * 128 + 1632);
    Lum64s size = 0;
    // 57 + 160 + 2512 + 16
    EXPECT_EQ(lumiErodeGetSpecSize_L({100, 50}, {3, 3}, &size), lumOk);
    EXPECT_EQ(size, 2745);
    EXPECT_EQ(lumiErodeGetBufferSize_L({100, 50}, {3, 3}, lumType8u, 1, &size), lumOk);
    EXPECT_EQ(size, 2512);
}

/// A query of the ordinary entries.
struct SizeArguments
{
    LumStatus (*query)(LumiSize, LumiSize, Lum32s*, Lum32s*);
    Lum32s* pSpecSize;
    Lum32s* pBufferSize;
    LumiSize roiSize = {20, 10};
    LumiSize maskSize = {5, 4};

    LumStatus call() const
    {
        return query(roiSize, maskSize, pSpecSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(pSpecSize, sizeof *pSpecSize), Output(pBufferSize, sizeof *pBufferSize)};
    }
};

void expectSizeOrder(LumStatus (*query)(LumiSize, LumiSize, Lum32s*, Lum32s*))
{
    Lum32s record = 0;
    Lum32s buffer = 0;
    using Args = SizeArguments;
    expectStatusOrder(Args{query, &record, &buffer},
                      {
                          {"pSpecSize null", lumErrNullPointer, [](Args& a) { a.pSpecSize = nullptr; }},
                          {"pBufferSize null", lumErrNullPointer, [](Args& a) { a.pBufferSize = nullptr; }},
                          {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
                          {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -5; }},
                          {"mask width 0", lumErrSize, [](Args& a) { a.maskSize.width = 0; }},
                          {"mask height 0", lumErrSize, [](Args& a) { a.maskSize.height = 0; }},
                          {"mask width negative", lumErrSize, [](Args& a) { a.maskSize.width = -3; }},
                          {"record too large", lumErrSizeTooLarge,
                           [](Args& a) {
                               a.maskSize = {46341, 46341};
                           }},
                          {"buffer too large", lumErrSizeTooLarge,
                           [](Args& a) {
                               a.roiSize = {0x7fffffff, 0x7fffffff};
                               a.maskSize = {3, 3};
                           }},
                      });
}

TYPE_TEST(MorphSizesQuick, ChecksInOrder)
{
    expectSizeOrder(TypeParam::getSize);
    expectSizeOrder(TypeParam::advGetSize);
}

TEST(MorphSizesQuick, BitsChecksInOrder)
{
    expectSizeOrder(lumiMorphologyBorderGetSize_1u_C1R);
    expectSizeOrder(lumiMorphAdvGetSize_1u_C1R);
}

/// A query of the large entries; the ones of a single pass's record ignore type and channels.
struct LargeSizeArguments
{
    LumStatus (*query)(const LargeSizeArguments&);
    Lum64s* pSize;
    LumiSizeL roiSize = {20, 10};
    LumiSizeL maskSize = {5, 4};
    LumDataType dataType = lumType8u;
    int channels = 1;

    LumStatus call() const
    {
        return query(*this);
    }
    std::vector<Output> outputs() const
    {
        return {Output(pSize, sizeof *pSize)};
    }
};

void expectLargeSizeOrder(LumStatus (*query)(const LargeSizeArguments&), bool hasType)
{
    using Args = LargeSizeArguments;
    Lum64s size = 0;
    const Lum64s tooLarge = Lum64s{1} << 31;
    std::vector<Violation<Args>> order = {
        {"pSize null", lumErrNullPointer, [](Args& a) { a.pSize = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"mask width 0", lumErrSize, [](Args& a) { a.maskSize.width = 0; }},
        {"mask height 0", lumErrSize, [](Args& a) { a.maskSize.height = 0; }},
        {"mask width of -2^32", lumErrSize, [](Args& a) { a.maskSize.width = -(Lum64s{1} << 32); }},
        {"width too large", lumErrSizeTooLarge, [=](Args& a) { a.roiSize.width = tooLarge; }},
        {"height too large", lumErrSizeTooLarge, [=](Args& a) { a.roiSize.height = tooLarge; }},
        {"width of 2^32 + 1", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = (Lum64s{1} << 32) + 1; }},
        {"mask width too large", lumErrSizeTooLarge, [=](Args& a) { a.maskSize.width = tooLarge; }},
        {"mask height of 2^40", lumErrSizeTooLarge, [](Args& a) { a.maskSize.height = Lum64s{1} << 40; }},
        {"largest height", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = std::numeric_limits<Lum64s>::max(); }},
    };
    if (hasType) {
        order.push_back({"data type 2", lumErrDataType, [](Args& a) { a.dataType = 2; }});
        order.push_back({"data type -1", lumErrDataType, [](Args& a) { a.dataType = -1; }});
        order.push_back({"data type 64f", lumErrDataType, [](Args& a) { a.dataType = lumType64f; }});
        order.push_back({"channels 0", lumErrValue, [](Args& a) { a.channels = 0; }});
        order.push_back({"channels 2", lumErrValue, [](Args& a) { a.channels = 2; }});
        order.push_back({"channels 5", lumErrValue, [](Args& a) { a.channels = 5; }});
    }
    expectStatusOrder(Args{query, &size}, order);
}

TEST(MorphSizesQuick, LargeChecksInOrder)
{
    using Args = LargeSizeArguments;
    const auto dilateSpec = [](const Args& a) { return lumiDilateGetSpecSize_L(a.roiSize, a.maskSize, a.pSize); };
    const auto erodeSpec = [](const Args& a) { return lumiErodeGetSpecSize_L(a.roiSize, a.maskSize, a.pSize); };
    expectLargeSizeOrder(dilateSpec, false);
    expectLargeSizeOrder(erodeSpec, false);
    expectLargeSizeOrder(
        [](const Args& a) { return lumiDilateGetBufferSize_L(a.roiSize, a.maskSize, a.dataType, a.channels, a.pSize); },
        true);
    expectLargeSizeOrder(
        [](const Args& a) { return lumiErodeGetBufferSize_L(a.roiSize, a.maskSize, a.dataType, a.channels, a.pSize); },
        true);
    expectLargeSizeOrder(
        [](const Args& a) { return lumiMorphGetSpecSize_L(a.roiSize, a.maskSize, a.dataType, a.channels, a.pSize); },
        true);
    expectLargeSizeOrder(
        [](const Args& a) { return lumiMorphGetBufferSize_L(a.roiSize, a.maskSize, a.dataType, a.channels, a.pSize); },
        true);
}

// The set of type codes is 0, 1, 5, 7 and 13, that of channels 1, 3 and 4.
TEST(MorphSizesQuick, EveryTypeAndChannelCount)
{
    for (LumDataType type = -3; type <= 24; ++type) {
        for (int channels = -2; channels <= 6; ++channels) {
            const bool typeKnown = type == 0 || type == 1 || type == 5 || type == 7 || type == 13;
            const bool channelsKnown = channels == 1 || channels == 3 || channels == 4;
            const LumStatus expected = !typeKnown ? lumErrDataType : channelsKnown ? lumOk : lumErrValue;
            Lum64s size = 0;
            EXPECT_EQ(lumiDilateGetBufferSize_L({9, 9}, {3, 3}, type, channels, &size), expected);
            EXPECT_EQ(lumiErodeGetBufferSize_L({9, 9}, {3, 3}, type, channels, &size), expected);
            EXPECT_EQ(lumiMorphGetSpecSize_L({9, 9}, {3, 3}, type, channels, &size), expected);
            EXPECT_EQ(lumiMorphGetBufferSize_L({9, 9}, {3, 3}, type, channels, &size), expected);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
