// The scratch sizes of Canny edges and the order of the argument checks.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "feature/canny_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::canny {
namespace {

constexpr Lum32s kIntMax = std::numeric_limits<Lum32s>::max();
constexpr Lum32s kIntMin = std::numeric_limits<Lum32s>::min();
constexpr Lum64s kTooLong = Lum64s{kIntMax} + 1;
constexpr Lum64s kLongMax = std::numeric_limits<Lum64s>::max();

constexpr Lum32s kLengths[] = {1,   2,    3,     4,     5,     15,    16,    31,    32,      33,
                               640, 1920, 65531, 65532, 65533, 65534, 65535, 65536, 1000000, kIntMax};

TEST(CannySizeQuick, PlaneFormula)
{
    for (const Lum32s width : kLengths) {
        for (const Lum32s height : kLengths) {
            const std::uint64_t expected =
                planeBytes(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height));
            Lum32s bytes = -1;
            EXPECT_EQ(lumiCannyGetSize({width, height}, &bytes), lumOk);
            EXPECT_EQ(static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(expected))
                << width << " x " << height;
            Lum64s longBytes = -1;
            EXPECT_EQ(lumiCannyGetSize_L({width, height}, &longBytes), lumOk);
            EXPECT_EQ(static_cast<std::uint64_t>(longBytes), expected) << width << " x " << height;
        }
    }
}

TEST(CannySizeQuick, BorderFormula)
{
    for (const LumiMaskSize mask : {lumMask3x3, lumMask5x5}) {
        for (const Lum32s width : kLengths) {
            for (const Lum32s height : kLengths) {
                const std::uint64_t expected =
                    imageBytes(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), mask);
                // the filter takes no part, not even one that no other export knows
                for (const LumiFilterType filter :
                     {LumiFilterType{lumFilterSobel}, LumiFilterType{lumFilterScharr}, 0, -7}) {
                    Lum32s bytes = -1;
                    EXPECT_EQ(lumiCannyBorderGetSize({width, height}, filter, mask, &bytes), lumOk);
                    EXPECT_EQ(static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(expected))
                        << width << " x " << height << ", mask " << mask;
                }
            }
        }
    }
}

// Some sizes worked out by hand.
TEST(CannySizeQuick, KnownSizes)
{
    const auto planes = [](Lum32s width, Lum32s height) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiCannyGetSize({width, height}, &bytes), lumOk);
        return bytes;
    };
    EXPECT_EQ(planes(1, 1), 16 + 5 * 9 + 160);
    EXPECT_EQ(planes(640, 480), 10240 + 5 * 642 * 482 + 160);
    EXPECT_EQ(planes(65532, 1), 1048512 + 5 * 65534 * 3 + 160);
    EXPECT_EQ(planes(65533, 1), 1048528 + 9 * 65535 * 3 + 160);
    EXPECT_EQ(planes(1, 65533), 16 + 9 * 65535 * 3 + 160);
    EXPECT_EQ(planes(65533, 65533), 1048528 + 9 * -131071 + 160) << "the low 32 bits";
    Lum64s longBytes = -1;
    EXPECT_EQ(lumiCannyGetSize_L({65533, 65533}, &longBytes), lumOk);
    EXPECT_EQ(longBytes, Lum64s{1048528} + Lum64s{9} * 65535 * 65535 + 160);

    const auto image = [](Lum32s width, Lum32s height, LumiMaskSize mask) {
        Lum32s bytes = -1;
        EXPECT_EQ(lumiCannyBorderGetSize({width, height}, lumFilterSobel, mask, &bytes), lumOk);
        return bytes;
    };
    EXPECT_EQ(image(1, 1, lumMask3x3), 64 + 32 + 64 + 64 + 32);
    EXPECT_EQ(image(3, 3, lumMask3x3), 96 + 32 + 128 + 64);
    EXPECT_EQ(image(4, 4, lumMask5x5), 128 + 64 + 256 + 64 + 64);
    EXPECT_EQ(image(5, 5, lumMask5x5), 160 + 96 + 352 + 64);
    EXPECT_EQ(image(640, 480, lumMask3x3), 10272 + 309472 + 1237792 + 64);
}

template <class Size, class Bytes>
struct PlaneQuery
{
    LumStatus (*query)(Size, Bytes*);
    Size size;
    Bytes* result;

    LumStatus call() const
    {
        return query(size, result);
    }
};

struct NarrowQueryArgs : PlaneQuery<LumiSize, Lum32s>
{
    Lum32s* stored;
    std::vector<Output> outputs() const
    {
        return {Output(stored, sizeof(Lum32s))};
    }
};

struct WideQueryArgs : PlaneQuery<LumiSizeL, Lum64s>
{
    Lum64s* stored;
    std::vector<Output> outputs() const
    {
        return {Output(stored, sizeof(Lum64s))};
    }
};

struct BorderQueryArgs
{
    LumiSize size;
    LumiFilterType filter;
    LumiMaskSize mask;
    Lum32s* result;
    Lum32s* stored;

    LumStatus call() const
    {
        return lumiCannyBorderGetSize(size, filter, mask, result);
    }
    std::vector<Output> outputs() const
    {
        return {Output(stored, sizeof(Lum32s))};
    }
};

TEST(CannyStatusQuick, GetSize)
{
    Lum32s bytes = -1;
    expectStatusOrder(NarrowQueryArgs{{lumiCannyGetSize, {7, 5}, &bytes}, &bytes},
                      {{"result null", lumErrNullPointer, [](auto& a) { a.result = nullptr; }},
                       {"width 0", lumErrSize, [](auto& a) { a.size.width = 0; }},
                       {"width least", lumErrSize, [](auto& a) { a.size.width = kIntMin; }},
                       {"height 0", lumErrSize, [](auto& a) { a.size.height = 0; }},
                       {"height negative", lumErrSize, [](auto& a) { a.size.height = -1; }}});
}

TEST(CannyStatusQuick, GetSizeWide)
{
    Lum64s bytes = -1;
    expectStatusOrder(WideQueryArgs{{lumiCannyGetSize_L, {7, 5}, &bytes}, &bytes},
                      {{"result null", lumErrNullPointer, [](auto& a) { a.result = nullptr; }},
                       {"width too long", lumErrSizeTooLarge, [](auto& a) { a.size.width = kTooLong; }},
                       {"width longest", lumErrSizeTooLarge, [](auto& a) { a.size.width = kLongMax; }},
                       {"height too long", lumErrSizeTooLarge, [](auto& a) { a.size.height = kTooLong; }},
                       {"width 0", lumErrSize, [](auto& a) { a.size.width = 0; }, {"width too long", "width longest"}},
                       {"width far below 0",
                        lumErrSize,
                        [](auto& a) { a.size.width = -kLongMax; },
                        {"width too long", "width longest"}},
                       {"height 0", lumErrSize, [](auto& a) { a.size.height = 0; }, {"height too long"}},
                       {"height far below 0",
                        lumErrSize,
                        [](auto& a) { a.size.height = 1 - (Lum64s{1} << 32); },
                        {"height too long"}}});
}

TEST(CannyStatusQuick, BorderGetSize)
{
    Lum32s bytes = -1;
    expectStatusOrder(BorderQueryArgs{{7, 5}, lumFilterSobel, lumMask3x3, &bytes, &bytes},
                      {{"result null", lumErrNullPointer, [](auto& a) { a.result = nullptr; }},
                       {"width 0", lumErrSize, [](auto& a) { a.size.width = 0; }},
                       {"height negative", lumErrSize, [](auto& a) { a.size.height = -3; }},
                       {"mask 3", lumErrMaskSize, [](auto& a) { a.mask = 3; }},
                       {"mask 0", lumErrMaskSize, [](auto& a) { a.mask = 0; }},
                       {"mask 77", lumErrMaskSize, [](auto& a) { a.mask = 77; }}});
    // the filter that knows no 5x5 mask is not refused by the query
    EXPECT_EQ(lumiCannyBorderGetSize({7, 5}, lumFilterScharr, lumMask5x5, &bytes), lumOk);
}

constexpr LumiSize kSize = {12, 6};

template <class T>
struct PlaneArgs
{
    const T* dx;
    Lum64s dxStep;
    const T* dy;
    Lum64s dyStep;
    Image<Lum8u>* destination;
    Lum8u* dst;
    Lum64s dstStep;
    LumiSizeL size;
    Lum32f low;
    Lum32f high;
    LumiNorm norm;
    Lum8u* buffer;
    PlacedBlock* scratch;
    bool isWide;

    LumStatus call() const
    {
        if (isWide) {
            return PlaneExports<T>::wideEdges(dx, dxStep, dy, dyStep, dst, dstStep, size, low, high, norm, buffer);
        }
        const LumiSize narrow = {static_cast<Lum32s>(size.width), static_cast<Lum32s>(size.height)};
        return PlaneExports<T>::edges(dx, static_cast<Lum32s>(dxStep), dy, static_cast<Lum32s>(dyStep), dst,
                                      static_cast<Lum32s>(dstStep), narrow, low, high, buffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination), Output(scratch->data(), scratch->size())};
    }
};

template <class T>
class CannyPlaneStatusQuick : public testing::Test
{
  protected:
    static constexpr int kElement = sizeof(T);
    static constexpr int kRow = 12 * kElement;

    CannyPlaneStatusQuick()
        : planes_(kSize, Placement{}), destination_(Placement{}.layout<Lum8u>(kSize)), scratch_(planeBytes(12, 6))
    {
        planes_.dx.forEach(Area::Roi, [](T& element, int x, int y, int) { element = static_cast<T>(x * 5 + y); });
        planes_.dy.forEach(Area::Roi, [](T& element, int x, int y, int) { element = static_cast<T>(y * 9 - x); });
    }
    PlaneArgs<T> valid(bool isWide)
    {
        return {planes_.dx.pixels(),
                kRow,
                planes_.dy.pixels(),
                kRow,
                &destination_,
                destination_.pixels(),
                12,
                wide(kSize),
                3,
                8,
                lumNormL1,
                scratch_.data(),
                &scratch_,
                isWide};
    }
    using Table = std::vector<Violation<PlaneArgs<T>>>;

    static void addNulls(Table& table)
    {
        using Args = PlaneArgs<T>;
        table.emplace_back("dx null", lumErrNullPointer, [](Args& a) { a.dx = nullptr; });
        table.emplace_back("dy null", lumErrNullPointer, [](Args& a) { a.dy = nullptr; });
        table.emplace_back("dst null", lumErrNullPointer, [](Args& a) { a.dst = nullptr; });
        table.emplace_back("buffer null", lumErrNullPointer, [](Args& a) { a.buffer = nullptr; });
    }
    // What follows the nulls and, in the 64-bit form, the lengths that are too large.
    static void addRest(Table& table, const std::vector<std::string>& widthTaken,
                        const std::vector<std::string>& heightTaken)
    {
        using Args = PlaneArgs<T>;
        table.emplace_back(
            "width 0", lumErrSize, [](Args& a) { a.size.width = 0; }, widthTaken);
        table.emplace_back(
            "width negative", lumErrSize, [](Args& a) { a.size.width = -12; }, widthTaken);
        table.emplace_back(
            "height 0", lumErrSize, [](Args& a) { a.size.height = 0; }, heightTaken);
        table.emplace_back(
            "height negative", lumErrSize, [](Args& a) { a.size.height = kIntMin; }, heightTaken);
        table.emplace_back("dx stride", lumErrStep, [](Args& a) { a.dxStep = kRow - kElement; });
        table.emplace_back("dx stride odd and short", lumErrStep, [](Args& a) { a.dxStep = kRow - 1; });
        table.emplace_back("dx stride negative", lumErrStep, [](Args& a) { a.dxStep = -kRow; });
        table.emplace_back("dy stride", lumErrStep, [](Args& a) { a.dyStep = kRow - kElement; });
        table.emplace_back("dy stride 0", lumErrStep, [](Args& a) { a.dyStep = 0; });
        table.emplace_back("dst stride", lumErrStep, [](Args& a) { a.dstStep = 11; });
        table.emplace_back("dst stride negative", lumErrStep, [](Args& a) { a.dstStep = -12; });
        table.emplace_back(
            "dx alignment", lumErrStepAlignment, [](Args& a) { a.dxStep = kRow + kElement / 2; },
            std::vector<std::string>{"dx stride", "dx stride odd and short", "dx stride negative"});
        table.emplace_back(
            "dy alignment", lumErrStepAlignment, [](Args& a) { a.dyStep = kRow + kElement - 1; },
            std::vector<std::string>{"dy stride", "dy stride 0"});
        table.emplace_back("low negative", lumErrArgument, [](Args& a) { a.low = -0.001f; });
        table.emplace_back(
            "low above high", lumErrArgument, [](Args& a) { a.low = 8.001f; },
            std::vector<std::string>{"low negative"});
        table.emplace_back("high negative", lumErrArgument, [](Args& a) { a.high = -1; });
    }

    Planes<T> planes_;
    Image<Lum8u> destination_;
    PlacedBlock scratch_;
};
TYPED_TEST_SUITE(CannyPlaneStatusQuick, PlaneTypes, PlaneName);

TYPED_TEST(CannyPlaneStatusQuick, Narrow)
{
    typename TestFixture::Table table;
    this->addNulls(table);
    this->addRest(table, {}, {});
    expectStatusOrder(this->valid(false), table);
}

TYPED_TEST(CannyPlaneStatusQuick, Wide)
{
    using Args = PlaneArgs<TypeParam>;
    const std::vector<std::string> tooLong = {"width too long", "height too long", "dx stride too long",
                                              "dy stride too long", "dst stride too long"};
    typename TestFixture::Table table;
    this->addNulls(table);
    table.emplace_back(tooLong[0], lumErrSizeTooLarge, [](Args& a) { a.size.width = kTooLong; });
    table.emplace_back(tooLong[1], lumErrSizeTooLarge, [](Args& a) { a.size.height = kTooLong; });
    table.emplace_back(tooLong[2], lumErrSizeTooLarge, [](Args& a) { a.dxStep = kTooLong; });
    table.emplace_back(tooLong[3], lumErrSizeTooLarge, [](Args& a) { a.dyStep = kLongMax; });
    table.emplace_back(tooLong[4], lumErrSizeTooLarge, [](Args& a) { a.dstStep = kTooLong; });
    this->addRest(table, {}, {});
    table.emplace_back("norm 1", lumErrNorm, [](Args& a) { a.norm = lumNormInf; });
    table.emplace_back("norm 6", lumErrNorm, [](Args& a) { a.norm = lumNormL1 | lumNormL2; });
    table.emplace_back("norm 0", lumErrNorm, [](Args& a) { a.norm = 0; });
    expectStatusOrder(this->valid(true), table);
}

// With squares the raw thresholds are tested for floats and the squared ones for words.
TEST(CannyStatusQuick, ThresholdsOfSquares)
{
    Planes<Lum16s> words({5, 5}, Placement{});
    Planes<Lum32f> floats({5, 5}, Placement{});
    words.dx.forEach(Area::Roi, [](Lum16s& element, int, int, int) { element = 0; });
    words.dy.forEach(Area::Roi, [](Lum16s& element, int, int, int) { element = 0; });
    floats.dx.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = 0; });
    floats.dy.forEach(Area::Roi, [](Lum32f& element, int, int, int) { element = 0; });
    const PlacedBlock scratch(planeBytes(5, 5));
    struct Case
    {
        Lum32f low;
        Lum32f high;
        LumStatus ofWords;
        LumStatus ofFloats;
    };
    for (const Case c : {Case{-3, 4, lumOk, lumErrArgument}, Case{-4, 4, lumOk, lumErrArgument},
                         Case{-5, 4, lumErrArgument, lumErrArgument}, Case{-3, -4, lumOk, lumErrArgument},
                         Case{3, -4, lumOk, lumErrArgument}, Case{5, -4, lumErrArgument, lumErrArgument},
                         Case{3, 4, lumOk, lumOk}, Case{5, 4, lumErrArgument, lumErrArgument},
                         Case{-0.0f, 0, lumOk, lumOk}, Case{4.0000005f, 4, lumErrArgument, lumErrArgument},
                         // both squares are infinite, or both zero
                         Case{3e30f, 2e30f, lumOk, lumErrArgument}, Case{2e-30f, 1e-30f, lumOk, lumErrArgument}}) {
        Image<Lum8u> dst(Placement{}.layout<Lum8u>({5, 5}));
        EXPECT_EQ(callPlanes(words, PlaneForm::WideL2, c.low, c.high, dst.pixels(), dst.step(), scratch.data()),
                  c.ofWords)
            << c.low << ", " << c.high;
        EXPECT_EQ(callPlanes(floats, PlaneForm::WideL2, c.low, c.high, dst.pixels(), dst.step(), scratch.data()),
                  c.ofFloats)
            << c.low << ", " << c.high;
    }
    // the threshold test comes before that of the norm, and without squares it is one of the raw values
    Image<Lum8u> dst(Placement{}.layout<Lum8u>({5, 5}));
    for (const LumiNorm norm : {LumiNorm{lumNormInf}, 3, 0}) {
        const auto call = [&](Lum32f low) {
            return lumiCanny_16s8u_C1R_L(words.dx.pixels(), words.dx.step(), words.dy.pixels(), words.dy.step(),
                                         dst.pixels(), dst.step(), {5, 5}, low, 4, norm, scratch.data());
        };
        EXPECT_EQ(call(-3), lumErrArgument);
        EXPECT_EQ(call(3), lumErrNorm);
    }
}

struct ImageArgs
{
    const Lum8u* src;
    Lum32s srcStep;
    Image<Lum8u>* destination;
    Lum8u* dst;
    Lum32s dstStep;
    LumiSize size;
    LumiFilterType filter;
    LumiMaskSize mask;
    LumiBorderType border;
    Lum32f low;
    Lum32f high;
    LumiNorm norm;
    Lum8u* buffer;
    PlacedBlock* scratch;

    LumStatus call() const
    {
        return lumiCannyBorder_8u_C1R(src, srcStep, dst, dstStep, size, filter, mask, border, 7, low, high, norm,
                                      buffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination), Output(scratch->data(), scratch->size())};
    }
};

struct ImageArgsOperands
{
    ImageArgsOperands()
        : source(Placement{}.layout<Lum8u>(kSize, Margins::all(2))),
          destination(Placement{}.layout<Lum8u>(kSize)),
          scratch(imageBytes(12, 6, lumMask5x5))
    {
        source.forEach(Area::WithMargins,
                       [](Lum8u& element, int x, int y, int) { element = static_cast<Lum8u>(100 + x * x + 3 * y); });
    }
    ImageArgs valid()
    {
        return {source.pixels(),
                source.step(),
                &destination,
                destination.pixels(),
                destination.step(),
                kSize,
                lumFilterSobel,
                lumMask3x3,
                lumBorderReplicate,
                3,
                8,
                lumNormL1,
                scratch.data(),
                &scratch};
    }

    Image<Lum8u> source;
    Image<Lum8u> destination;
    PlacedBlock scratch;
};

TEST(CannyStatusQuick, Border)
{
    ImageArgsOperands operands;
    using Args = ImageArgs;
    std::vector<Violation<Args>> table = {
        {"mask 77", lumErrMaskSize, [](Args& a) { a.mask = 77; }},
        {"mask 0", lumErrMaskSize, [](Args& a) { a.mask = 0; }},
        {"mask 5", lumErrMaskSize, [](Args& a) { a.mask = 5; }},
        {"Scharr 5x5", lumErrMaskSize,
         [](Args& a) {
             a.mask = lumMask5x5;
             a.filter = lumFilterScharr;
         }},
        {"src null", lumErrNullPointer, [](Args& a) { a.src = nullptr; }},
        {"dst null", lumErrNullPointer, [](Args& a) { a.dst = nullptr; }},
        {"buffer null", lumErrNullPointer, [](Args& a) { a.buffer = nullptr; }},
        {"width 0", lumErrSize, [](Args& a) { a.size.width = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.size.height = -1; }},
        {"filter 0", lumErrArgument, [](Args& a) { a.filter = 0; }, {"Scharr 5x5"}},
        {"filter of Harris only", lumErrArgument, [](Args& a) { a.filter = lumFilterCentralDiff; }, {"Scharr 5x5"}},
        {"norm 1", lumErrArgument, [](Args& a) { a.norm = lumNormInf; }},
        {"norm 6", lumErrArgument, [](Args& a) { a.norm = 6; }},
        {"low negative", lumErrArgument, [](Args& a) { a.low = -0.001f; }},
        {"low above high", lumErrArgument, [](Args& a) { a.low = 8.001f; }, {"low negative"}},
        {"high negative", lumErrArgument, [](Args& a) { a.high = -1; }}};
    // mirror; modes 0, 2, 4 and 5; 15; flags without a mode; all flags with a wrong one; beyond the range
    for (const LumiBorderType border : {3,    0,    2,   4,   5,     7,     15,    0x10,    0x70,        0xE0, 0xF3,
                                        0xF5, 0x33, 256, 257, 0x1F0, 0x101, 0xFF6, kIntMin, kIntMin | 1, -15}) {
        table.emplace_back("border " + std::to_string(border), lumErrBorder, [border](Args& a) { a.border = border; });
    }
    expectStatusOrder(operands.valid(), table);
}

TEST(CannyStatusQuick, BordersThatPass)
{
    ImageArgsOperands operands;
    for (const LumiMaskSize mask : {lumMask3x3, lumMask5x5}) {
        ImageArgs args = operands.valid();
        args.mask = mask;
        args.border = lumBorderInMem;
        EXPECT_EQ(args.call(), lumOk);
        for (LumiBorderType flags = 0; flags < 256; flags += 16) {
            args.border = flags | lumBorderReplicate;
            EXPECT_EQ(args.call(), lumOk) << args.border;
            args.border = flags | lumBorderConstant;
            EXPECT_EQ(args.call(), lumOk) << args.border;
        }
    }
}

// Neither stride is tested: one of 0 makes all rows the same.
TEST(CannyStatusQuick, BorderTestsNoStride)
{
    ImageArgsOperands operands;
    ImageArgs args = operands.valid();
    args.srcStep = 0;
    args.low = 1;
    args.high = 1;
    EXPECT_EQ(args.call(), lumOk);
    for (int y = 1; y < kSize.height; ++y) {
        for (int x = 0; x < kSize.width; ++x) {
            EXPECT_EQ(operands.destination.at(x, y), operands.destination.at(x, 0)) << x << ", " << y;
        }
    }
    args.size.height = 1;
    args.dstStep = -3;
    EXPECT_EQ(args.call(), lumOk);
}

}  // namespace
}  // namespace lumcv::test::canny
