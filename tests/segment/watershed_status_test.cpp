// The checks of the segmentations and of their size queries, in order; the sizes.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "segment/watershed_fixture.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::watershed {
namespace {

using Forms = testing::Types<Gradient8uC1, Gradient8uC3, Watershed8u, Watershed8u16u, Watershed32f16u>;
TYPE_SUITE(SegmentationStatusQuick, Forms);

template <class Form>
struct Args
{
    const Image<typename Form::Label>* marker;
    const typename Form::Height* pSrc;
    Lum32s srcStep;
    typename Form::Label* pMarker;
    Lum32s markerStep;
    LumiSize roiSize;
    Lum32u norm;
    Lum32s flag;
    Lum8u* pBuffer;

    LumStatus call() const
    {
        return Form::segment(pSrc, srcStep, pMarker, markerStep, roiSize, norm, flag, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*marker)};
    }
};

TYPE_TEST(SegmentationStatusQuick, ChecksInOrder)
{
    using A = Args<TypeParam>;
    using Height = typename TypeParam::Height;
    using Label = typename TypeParam::Label;
    constexpr bool isGradient = std::is_base_of_v<Gradient8uC1, TypeParam>;
    constexpr bool isFloat = std::is_same_v<Height, Lum32f>;
    constexpr int srcPixel = static_cast<int>(sizeof(Height)) * TypeParam::channels;
    constexpr int markerPixel = static_cast<int>(sizeof(Label));
    Layout layout = layoutOf(10, 6, TypeParam::channels);
    layout.gap = 8;
    Image<Height> source(layout);
    draw(source, Terrain::Noise, 3);
    layout.channels = 1;
    Image<Label> marker(layout);
    draw(marker, Seeding::Sparse, 3);
    marker.at(4, 3) = 7;
    const PlacedBlock block(static_cast<std::size_t>(TypeParam::bytes(10, 6)));
    std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pMarker null", lumErrNullPointer, [](A& a) { a.pMarker = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](A& a) { a.pBuffer = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -10; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -6; }},
        {"srcStep below a row", lumErrStep, [](A& a) { a.srcStep = 10 * srcPixel - 1; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -a.srcStep; }, {"srcStep 0", "srcStep below a row"}},
        {"markerStep below a row", lumErrStep, [](A& a) { a.markerStep = 10 * markerPixel - 1; }},
        {"markerStep negative", lumErrStep, [](A& a) { a.markerStep = -10 * markerPixel - 8; }},
    };
    const auto add = [&](const char* name, LumStatus status, void (*apply)(A&)) {
        table.emplace_back(name, status, apply);
    };
    if (isFloat) {
        add("srcStep misaligned by 1", lumErrStepAlignment, [](A& a) { a.srcStep = 41; });
        add("srcStep misaligned by 2", lumErrStepAlignment, [](A& a) { a.srcStep = 42; });
        add("srcStep misaligned by 3", lumErrStepAlignment, [](A& a) { a.srcStep = 43; });
    }
    if (markerPixel == 2) {
        add("markerStep odd", lumErrStepAlignment, [](A& a) { a.markerStep = 21; });
    }
    if (isGradient) {
        add("norm 2", lumErrArgument, [](A& a) { a.norm = 2; });
        add("norm 0x80000000", lumErrArgument, [](A& a) { a.norm = 0x80000000u; });
        expectStatusOrder(
            A{&marker, source.pixels(), source.step(), marker.pixels(), marker.step(), {10, 6}, 1, 0, block.data()},
            table);
        return;
    }
    const A byCost = {&marker, source.pixels(), source.step(), marker.pixels(), marker.step(), {10, 6},
                      3,       kByCost,         block.data()};
    std::vector<Violation<A>> tableByCost = table;
    if (isFloat) {
        tableByCost.emplace_back("bits 1 and 2", lumErrMode, [](A& a) { a.flag = kByLevel | kByCost; });
        tableByCost.emplace_back("bit 1 alone", lumErrMode, [](A& a) { a.flag = kByLevel; });
    }
    tableByCost.emplace_back("norm 4", lumErrArgument, [](A& a) { a.norm = 4; });
    tableByCost.emplace_back("norm 0xFFFFFFFF", lumErrArgument, [](A& a) { a.norm = 0xFFFFFFFFu; });
    tableByCost.emplace_back("flag 0", lumErrArgument, [](A& a) { a.flag = 0; });
    tableByCost.emplace_back("flag with boundary bits alone", lumErrArgument, [](A& a) { a.flag = 192; });
    if (!isFloat) {
        tableByCost.emplace_back("norm 3 by level", lumErrArgument, [](A& a) { a.flag = kByLevel; });
        tableByCost.emplace_back("norm 3 by both", lumErrArgument, [](A& a) { a.flag = kByLevel | kByCost; });
    }
    expectStatusOrder(byCost, tableByCost);
    if (!isFloat) {
        A byLevel = byCost;
        byLevel.norm = 1;
        byLevel.flag = kByLevel;
        add("norm 2 by level", lumErrArgument, [](A& a) { a.norm = 2; });
        add("norm 3 by level", lumErrArgument, [](A& a) { a.norm = 3; });
        add("norm 0xFFFFFFFF by level", lumErrArgument, [](A& a) { a.norm = 0xFFFFFFFFu; });
        add("flag 0", lumErrArgument, [](A& a) { a.flag = 0; });
        expectStatusOrder(byLevel, table);
        byLevel.flag = kByLevel | kByCost;
        expectStatusOrder(byLevel, table);
    }
}

TYPE_TEST(SegmentationStatusQuick, SizeFormula)
{
    for (const Lum32s width : {1, 2, 3, 4, 5, 15, 16, 17, 31, 32, 33, 47, 48, 49, 64, 65, 640, 1920, 5000}) {
        for (const Lum32s height : {1, 2, 3, 31, 32, 33, 480, 1080, 5003}) {
            Lum32s bytes = -1;
            EXPECT_EQ(TypeParam::query({width, height}, &bytes), lumOk);
            EXPECT_EQ(bytes, TypeParam::bytes(width, height)) << width << " x " << height;
        }
    }
    // rows or columns alone, as long as they can be
    for (const Lum32s length : {1000000, 10000000}) {
        for (const LumiSize size : {LumiSize{length, 1}, LumiSize{1, length}, {length, 2}, {3, length}}) {
            Lum32s bytes = -1;
            EXPECT_EQ(TypeParam::query(size, &bytes), lumOk);
            EXPECT_EQ(bytes, TypeParam::bytes(size.width, size.height)) << size.width << " x " << size.height;
        }
    }
}

// Up to 2147483647 bytes, and not one pixel more; also where the low 32 bits of the size are a small number.
TYPE_TEST(SegmentationStatusQuick, SizesTooLarge)
{
    constexpr std::int64_t limit = std::numeric_limits<Lum32s>::max();
    for (const Lum32s width : {1, 7, 32, 1000, 20000}) {
        Lum32s height = 1;
        for (Lum32s step = 1 << 30; step > 0; step /= 2) {
            if (std::int64_t{height} + step <= limit && TypeParam::bytes(width, height + step) <= limit) {
                height += step;
            }
        }
        Lum32s bytes = -1;
        EXPECT_EQ(TypeParam::query({width, height}, &bytes), lumOk) << width << " x " << height;
        EXPECT_EQ(bytes, TypeParam::bytes(width, height)) << width << " x " << height;
        bytes = -1;
        EXPECT_EQ(TypeParam::query({width, height + 1}, &bytes), lumErrSizeTooLarge) << width << " x " << height + 1;
        EXPECT_EQ(bytes, -1);
    }
    for (const LumiSize size : {LumiSize{65536, 65536},
                                {0x7fffffff, 0x7fffffff},
                                {0x7fffffff, 1},
                                {1, 0x7fffffff},
                                {0x40000000, 4},
                                {0x10000000, 16}}) {
        Lum32s bytes = -1;
        EXPECT_EQ(TypeParam::query(size, &bytes), lumErrSizeTooLarge) << size.width << " x " << size.height;
        EXPECT_EQ(bytes, -1);
    }
}

template <class Form>
struct QueryArgs
{
    Lum32s* written;
    Lum32s* pBufferSize;
    LumiSize roiSize;

    LumStatus call() const
    {
        return Form::query(roiSize, pBufferSize);
    }
    std::vector<Output> outputs() const
    {
        return {Output(written, sizeof *written)};
    }
};

TYPE_TEST(SegmentationStatusQuick, QueryChecksInOrder)
{
    using A = QueryArgs<TypeParam>;
    Lum32s bytes = -1;
    expectStatusOrder(A{&bytes, &bytes, {20, 10}},
                      {
                          {"pBufferSize null", lumErrNullPointer, [](A& a) { a.pBufferSize = nullptr; }},
                          {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
                          {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
                          {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
                          {"height negative", lumErrSize, [](A& a) { a.roiSize.height = -0x7fffffff; }},
                          {"too large", lumErrSizeTooLarge,
                           [](A& a) {
                               a.roiSize = {0x7fffffff, 0x7fffffff};
                           }},
                      });
}

}  // namespace
}  // namespace lumcv::test::watershed
