// Sizes of the records of gray elements, and the order of the argument checks of queries, Init and apply.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "morph/gray_element_fixture.hpp"
#include "support/compare.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::gray {
namespace {

using Pixels = testing::Types<Lum8u, Lum32f>;
struct PixelName
{
    template <class T>
    static std::string GetName(int)
    {
        return sizeof(T) == 1 ? "8u" : "32f";
    }
};
TYPE_SUITE(GrayElementRecordQuick, Pixels, PixelName);

TYPE_SUITE(GrayElementStatusQuick, Cases, CaseName);

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();

template <class T>
LumStatus query(LumiSize roiSize, LumiSize maskSize, Lum32s* pSize)
{
    const Entry<T> notRead = 0;
    return Exports<T>::getSize(roiSize, &notRead, maskSize, pSize);
}

TYPE_TEST(GrayElementRecordQuick, SizeFormula)
{
    struct Size
    {
        LumiSize mask;
        Lum32s bytes;
    };
    const Size sizes[] = {
        {{1, 1}, 36},      {{2, 1}, 40},      {{1, 2}, 40},         {{3, 3}, 68},       {{5, 7}, 172},
        {{64, 64}, 16416}, {{1000, 1}, 4032}, {{255, 255}, 260132}, {{1, 4096}, 16416}, {{20000, 26843}, 2147440032}};
    for (const Size& size : sizes) {
        for (const LumiSize roiSize : {LumiSize{1, 1}, LumiSize{640, 480}, LumiSize{kIntMax, kIntMax}}) {
            Lum32s bytes = -1;
            EXPECT_EQ(query<TypeParam>(roiSize, size.mask, &bytes), lumOk);
            EXPECT_EQ(bytes, size.bytes) << size.mask.width << " x " << size.mask.height;
        }
    }
}

// 4 * 536870903 + 32 = 2147483644 is the largest size that 32 bits hold.
TYPE_TEST(GrayElementRecordQuick, SizeTooLarge)
{
    Lum32s bytes = -1;
    EXPECT_EQ(query<TypeParam>({5, 5}, {536870903, 1}, &bytes), lumOk);
    EXPECT_EQ(bytes, 2147483644);
    EXPECT_EQ(query<TypeParam>({5, 5}, {1, 536870903}, &bytes), lumOk);
    EXPECT_EQ(bytes, 2147483644);
    bytes = -1;
    for (const LumiSize mask :
         {LumiSize{536870904, 1}, LumiSize{1, 536870904}, LumiSize{kIntMax, 1}, LumiSize{kIntMax, kIntMax},
          LumiSize{65536, 65536}, LumiSize{1 << 30, 4}, LumiSize{32768, 32768}}) {
        EXPECT_EQ(query<TypeParam>({5, 5}, mask, &bytes), lumErrSizeTooLarge) << mask.width << " x " << mask.height;
        EXPECT_EQ(bytes, -1);
    }
}

// The element is asked for and not read.
TYPE_TEST(GrayElementRecordQuick, QueryDoesNotReadTheElement)
{
    const GuardedBlock block(64, Guard::After);
    Lum32s bytes = -1;
    EXPECT_EQ(Exports<TypeParam>::getSize({9, 9}, reinterpret_cast<const Entry<TypeParam>*>(block.data() + 64), {3, 3},
                                          &bytes),
              lumOk);
    EXPECT_EQ(bytes, 68);
}

template <class T>
struct QueryArgs
{
    LumiSize roiSize = {20, 10};
    const Entry<T>* pMask;
    LumiSize maskSize = {3, 3};
    Lum32s* pSize;
    Lum32s* result;

    LumStatus call() const
    {
        return Exports<T>::getSize(roiSize, pMask, maskSize, pSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(result, sizeof *result)};
    }
};

TYPE_TEST(GrayElementRecordQuick, QueryChecksInDocumentedOrder)
{
    using A = QueryArgs<TypeParam>;
    const Entry<TypeParam> entries[9] = {};
    Lum32s bytes = -1;
    expectStatusOrder(A{.pMask = entries, .pSize = &bytes, .result = &bytes},
                      {
                          {"pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; }},
                          {"pSize null", lumErrNullPointer, [](A& a) { a.pSize = nullptr; }},
                          {"ROI width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"ROI height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                          {"ROI width negative", lumErrSize, [](A& a) { a.roiSize.width = kIntMin; }},
                          {"ROI height negative", lumErrSize, [](A& a) { a.roiSize.height = -1; }},
                          {"element width 0", lumErrSize, [](A& a) { a.maskSize.width = 0; }},
                          {"element height 0", lumErrSize, [](A& a) { a.maskSize.height = 0; }},
                          {"element width negative", lumErrSize, [](A& a) { a.maskSize.width = -3; }},
                          {"element height negative", lumErrSize, [](A& a) { a.maskSize.height = kIntMin; }},
                          {"element negative twice", lumErrSize,
                           [](A& a) {
                               a.maskSize = {-3, -3};
                           }},
                          {"element too large",
                           lumErrSizeTooLarge,
                           [](A& a) {
                               a.maskSize = {kIntMax, kIntMax};
                           },
                           {"element width 0", "element height 0", "element width negative", "element height negative",
                            "element negative twice"}},
                      });
    // the size of the ROI comes before that of the result, and each side of the element too
    for (const LumiSize mask : {LumiSize{0, kIntMax}, LumiSize{kIntMax, 0}, LumiSize{-1, kIntMax}}) {
        EXPECT_EQ(query<TypeParam>({5, 5}, mask, &bytes), lumErrSize);
    }
    EXPECT_EQ(bytes, -1);
}

template <class T>
struct InitArgs
{
    LumiMorphGrayRecord* pState;
    LumiSize roiSize = {20, 10};
    const Entry<T>* pMask;
    LumiSize maskSize = {4, 3};
    LumiPoint anchor = {3, 2};
    const PlacedBlock* block;

    LumStatus call() const
    {
        return Exports<T>::init(pState, roiSize, pMask, maskSize, anchor);
    }
    std::vector<Output> outputs() const
    {
        return {Output(block->data(), block->size())};
    }
};

TYPE_TEST(GrayElementRecordQuick, InitChecksInDocumentedOrder)
{
    using A = InitArgs<TypeParam>;
    const Entry<TypeParam> entries[12] = {};
    const PlacedBlock block(recordBytes({4, 3}));
    // an anchor is outside an empty element as well, so that both violations hold at once
    expectStatusOrder(
        A{.pState = reinterpret_cast<LumiMorphGrayRecord*>(block.data()), .pMask = entries, .block = &block},
        {
            {"pMask null", lumErrNullPointer, [](A& a) { a.pMask = nullptr; }},
            {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
            {"ROI width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
            {"ROI height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
            {"ROI width negative", lumErrSize, [](A& a) { a.roiSize.width = -5; }},
            {"ROI height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
            {"element width 0", lumErrSize, [](A& a) { a.maskSize.width = 0; }},
            {"element height 0", lumErrSize, [](A& a) { a.maskSize.height = 0; }},
            {"element width negative", lumErrSize, [](A& a) { a.maskSize.width = kIntMin; }},
            {"element height negative", lumErrSize, [](A& a) { a.maskSize.height = -1; }},
            {"anchor x negative", lumErrAnchor, [](A& a) { a.anchor.x = -1; }},
            {"anchor y negative", lumErrAnchor, [](A& a) { a.anchor.y = -1; }},
            {"anchor x equal to the width", lumErrAnchor, [](A& a) { a.anchor.x = 4; }},
            {"anchor y equal to the height", lumErrAnchor, [](A& a) { a.anchor.y = 3; }},
            {"anchor x least", lumErrAnchor, [](A& a) { a.anchor.x = kIntMin; }},
            {"anchor y greatest", lumErrAnchor, [](A& a) { a.anchor.y = kIntMax; }},
        });
    EXPECT_TRUE(block.intact());
}

template <class C>
struct ApplyArgs
{
    using T = typename C::T;

    const T* pSrc;
    int srcStep;
    T* pDst;
    int dstStep;
    LumiSize roiSize = {20, 10};
    LumiBorderType border = lumBorderReplicate;
    const LumiMorphGrayRecord* pState;
    const Image<T>* destination;
    const PlacedBlock* record;

    LumStatus call() const
    {
        return C::apply(pSrc, srcStep, pDst, dstStep, roiSize, border, pState);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination), Output(record->data(), record->size())};
    }
};

template <class C>
std::vector<Violation<ApplyArgs<C>>> applyOrder()
{
    using A = ApplyArgs<C>;
    using Order = std::vector<Violation<A>>;
    constexpr int size = sizeof(typename C::T);
    constexpr int row = 20 * size;
    // a stride of one row's bytes or less is below a wider row too, and a multiple of the element
    Order order = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"pState null", lumErrNullPointer, [](A& a) { a.pState = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -3; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = kIntMin; }},
        {"srcStep one element short", lumErrStep, [=](A& a) { a.srcStep = row - size; }},
        {"srcStep one byte short", lumErrStep, [=](A& a) { a.srcStep = row - 1; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [=](A& a) { a.srcStep = -row; }},
        {"dstStep one element short", lumErrStep, [=](A& a) { a.dstStep = row - size; }},
        {"dstStep one byte short", lumErrStep, [=](A& a) { a.dstStep = row - 1; }},
        {"dstStep negative", lumErrStep, [=](A& a) { a.dstStep = -row; }},
    };
    if (size == 4) {
        const Order alignments = {
            {"srcStep off by one", lumErrStepAlignment, [=](A& a) { a.srcStep = row + 5; }},
            {"srcStep off by two", lumErrStepAlignment, [=](A& a) { a.srcStep = row + 6; }},
            {"dstStep off by two", lumErrStepAlignment, [=](A& a) { a.dstStep = row + 6; }},
            {"dstStep off by three", lumErrStepAlignment, [=](A& a) { a.dstStep = row + 7; }},
        };
        order.insert(order.end(), alignments.begin(), alignments.end());
    }
    for (const LumiBorderType border :
         {0, 2, lumBorderMirror + 0, lumBorderNeutral + 0, lumBorderConstant + 0, lumBorderInMem + 0,
          lumBorderReplicate | lumBorderInMemTop, lumBorderReplicate | lumBorderInMem,
          lumBorderReplicate | lumBorderStageInMemLeft, lumBorderReplicate | 0x1000, -1, lumBorderReplicate | kIntMin,
          kIntMax}) {
        order.push_back({"border " + std::to_string(border), lumErrArgument, [=](A& a) { a.border = border; }});
    }
    const Order records = {
        {"wider than the record's ROI", lumErrSize, [](A& a) { a.roiSize.width = 21; }},
        {"higher than the record's ROI", lumErrSize, [](A& a) { a.roiSize.height = 11; }},
        {"highest", lumErrSize, [](A& a) { a.roiSize.height = kIntMax; }},
    };
    order.insert(order.end(), records.begin(), records.end());
    return order;
}

TYPE_TEST(GrayElementStatusQuick, ApplyChecksInDocumentedOrder)
{
    using T = typename TypeParam::T;
    Random random(31);
    // rows two pixels wider than the record's ROI, so that the strides do for a ROI that is too wide
    Image<T> source({.width = 20, .height = 11, .gap = 2 * sizeof(T)});
    Image<T> destination({.width = 20, .height = 11, .gap = 3 * sizeof(T)});
    fill(source, random);
    const Record<T> record(drawElement<T>({3, 3}, Entries::Small, random), {20, 10});
    const ApplyArgs<TypeParam> valid{.pSrc = source.pixels(),
                                     .srcStep = source.step(),
                                     .pDst = destination.pixels(),
                                     .dstStep = destination.step(),
                                     .pState = record.state(),
                                     .destination = &destination,
                                     .record = &record.block()};
    expectStatusOrder(valid, applyOrder<TypeParam>());
}

// A record's width and height are compared each by itself: a ROI of fewer pixels is refused too.
TYPE_TEST(GrayElementStatusQuick, RoiLargerThanAtInit)
{
    using T = typename TypeParam::T;
    Random random(32);
    Image<T> source({.width = 12, .height = 12}), destination({.width = 12, .height = 12});
    fill(source, random);
    const Image<T> before = destination;
    const Record<T> record(drawElement<T>({3, 3}, Entries::Small, random), {10, 10});
    const auto status = [&](LumiSize roiSize) {
        return TypeParam::apply(source.pixels(), source.step(), destination.pixels(), destination.step(), roiSize,
                                lumBorderReplicate, record.state());
    };
    EXPECT_EQ(status({11, 1}), lumErrSize);
    EXPECT_EQ(status({1, 11}), lumErrSize);
    EXPECT_EQ(status({11, 11}), lumErrSize);
    EXPECT_TRUE(sameBytes(before, destination));
    EXPECT_EQ(status({10, 10}), lumOk);
    EXPECT_EQ(status({9, 10}), lumOk);
}

// A byte row has any stride that is not below it.
TEST(GrayElementStatusQuickBytes, StridesNeedNoAlignment)
{
    Random random(33);
    Image<Lum8u> source({.width = 13, .height = 4, .gap = 3}), destination({.width = 13, .height = 4, .gap = 6});
    fill(source, random);
    expectReference<Case<Lum8u, Form::Dilate>>(drawElement<Lum8u>({3, 3}, Entries::Small, random), source, destination);
    expectReference<Case<Lum8u, Form::Erode>>(drawElement<Lum8u>({3, 3}, Entries::Small, random), source, destination);
}

}  // namespace
}  // namespace lumcv::test::gray
