// Samples of straight lines: in all directions, of all types, and with nothing read or written beside them.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "geometry/sample_line_reference.hpp"
#include "lumcv/lumcv.h"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

template <class T, int channelCount, auto function>
struct Form
{
    using Element = T;
    static constexpr int channels = channelCount;
    static constexpr int pixelBytes = channelCount * static_cast<int>(sizeof(T));

    static LumStatus call(const T* pSrc, Lum32s srcStep, LumiSize roiSize, T* pDst, LumiPoint pt1, LumiPoint pt2)
    {
        return function(pSrc, srcStep, roiSize, pDst, pt1, pt2);
    }
};

using Forms = testing::Types<Form<Lum8u, 1, lumiSampleLine_8u_C1R>, Form<Lum8u, 3, lumiSampleLine_8u_C3R>,
                             Form<Lum16u, 1, lumiSampleLine_16u_C1R>, Form<Lum16u, 3, lumiSampleLine_16u_C3R>,
                             Form<Lum32f, 1, lumiSampleLine_32f_C1R>, Form<Lum32f, 3, lumiSampleLine_32f_C3R>>;

struct FormName
{
    template <class F>
    static std::string GetName(int)
    {
        const char* const type = sizeof(typename F::Element) == 1   ? "8u"
                                 : sizeof(typename F::Element) == 2 ? "16u"
                                                                    : "32f";
        return std::string(type) + "_C" + std::to_string(F::channels);
    }
};

std::string lineText(LumiPoint from, LumiPoint to)
{
    return "(" + std::to_string(from.x) + ", " + std::to_string(from.y) + ") to (" + std::to_string(to.x) + ", " +
           std::to_string(to.y) + ")";
}

/// Any bits: samples are copies, whatever number they stand for.
template <class Source>
void fillWithBits(Source& source, LumiSize size, int channels, Random& random)
{
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const std::uint64_t bits = random.bits();
                std::memcpy(&source.at(x, y, c), &bits, sizeof source.at(x, y, c));
            }
        }
    }
}

/// Samples into a block that holds the line and no byte more.
template <class F, class Source>
void expectLine(const Source& source, LumiSize size, LumiPoint from, LumiPoint to, Guard guard, std::size_t distance)
{
    using T = typename F::Element;
    const std::vector<LumiPoint> line = lineOf(from, to);
    const PlacedBlock samples(line.size() * F::pixelBytes, guard, distance * sizeof(T));
    ASSERT_EQ(F::call(source.pixels(), source.step(), size, reinterpret_cast<T*>(samples.data()), from, to), lumOk);
    for (std::size_t i = 0; i < line.size(); ++i) {
        ASSERT_EQ(std::memcmp(samples.data() + i * F::pixelBytes, &source.at(line[i].x, line[i].y), F::pixelBytes), 0)
            << "sample " << i << " of " << line.size() << " from " << lineText(from, to) << " is not the pixel at "
            << line[i].x << ", " << line[i].y;
    }
    EXPECT_TRUE(samples.intact()) << lineText(from, to);
}

TYPE_SUITE(SampleLineQuick, Forms, FormName);

TYPE_SUITE(SampleLine, Forms, FormName);

// Every line of a small image, its rows alone between unreadable pages.
TYPE_TEST(SampleLineQuick, EveryLine)
{
    constexpr LumiSize size = {10, 11};
    for (const Guard guard : {Guard::After, Guard::Before}) {
        Layout layout;
        layout.width = size.width;
        layout.height = size.height;
        layout.channels = TypeParam::channels;
        layout.guard = guard;
        IsolatedRows<typename TypeParam::Element> source(layout);
        Random random(7);
        fillWithBits(source, size, TypeParam::channels, random);
        source.makeReadOnly();
        constexpr int pixels = size.width * size.height;
        for (int line = 0; line < pixels * pixels; line += 3) {
            const int first = line / pixels;
            const int second = line % pixels;
            expectLine<TypeParam>(source, size, {first % size.width, first / size.width},
                                  {second % size.width, second / size.width}, guard,
                                  static_cast<std::size_t>(line % 5));
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

// Lengths around every number of samples that may be taken at once, in all directions from the middle.
TYPE_TEST(SampleLine, AllDirectionsAndLengths)
{
    constexpr int reach = 140;
    constexpr LumiSize size = {2 * reach + 1, 2 * reach + 1};
    Image<typename TypeParam::Element> source({.width = size.width,
                                               .height = size.height,
                                               .channels = TypeParam::channels,
                                               .gap = 5 * static_cast<int>(sizeof(typename TypeParam::Element))});
    Random random(11);
    fillWithBits(source, size, TypeParam::channels, random);
    std::vector<int> lengths = {0,  1,  2,  3,  5,  6,  7,  8,  9,  14,  15,  16,
                                17, 23, 24, 31, 32, 33, 63, 64, 65, 127, 128, 140};
    int number = 0;
    for (const int major : lengths) {
        for (const int minor : {0, 1, 2, major / 3, major / 2, (major + 1) / 2, major - 1, major}) {
            for (int octant = 0; octant < 8; ++octant) {
                const int dx = (octant & 1 ? major : minor) * (octant & 2 ? 1 : -1);
                const int dy = (octant & 1 ? minor : major) * (octant & 4 ? 1 : -1);
                if (minor < 0 || minor > major) {
                    continue;
                }
                expectLine<TypeParam>(source, size, {reach, reach}, {reach + dx, reach + dy},
                                      number % 2 == 0 ? Guard::After : Guard::Before,
                                      static_cast<std::size_t>(number % 7));
                ++number;
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TYPE_TEST(SampleLine, LongLines)
{
    for (const LumiSize size : {LumiSize{3000, 9}, {9, 3000}, {700, 500}, {70000, 2}, {1, 70000}}) {
        Image<typename TypeParam::Element> source(
            {.width = size.width, .height = size.height, .channels = TypeParam::channels});
        Random random(static_cast<std::uint64_t>(size.width));
        fillWithBits(source, size, TypeParam::channels, random);
        const auto corner = [&](int i) {
            return LumiPoint{i % 2 == 0 ? 0 : size.width - 1, i / 2 == 0 ? 0 : size.height - 1};
        };
        for (int first = 0; first < 4; ++first) {
            for (int second = 0; second < 4; ++second) {
                expectLine<TypeParam>(source, size, corner(first), corner(second), Guard::After, 0);
            }
            const LumiPoint any = {static_cast<int>(random.between(0, size.width - 1)),
                                   static_cast<int>(random.between(0, size.height - 1))};
            expectLine<TypeParam>(source, size, corner(first), any, Guard::Before, 0);
            expectLine<TypeParam>(source, size, any, corner(first), Guard::After, 1);
            ASSERT_FALSE(testing::Test::HasFailure());
        }
        EXPECT_TRUE(source.gapsIntact());
    }
}

// There is no test of the stride's alignment: rows of wider elements may begin at any byte address.
TYPE_TEST(SampleLineQuick, RowsAtAnyAddress)
{
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {9, 6};
    for (int more = 0; more < 4; ++more) {
        for (std::size_t begin = 0; begin < sizeof(T); ++begin) {
            const int step = size.width * TypeParam::pixelBytes + more;
            const PlacedBlock source(
                static_cast<std::size_t>((size.height - 1) * step + size.width * TypeParam::pixelBytes), Guard::After,
                begin);
            const LumiPoint from = {8, 1};
            const LumiPoint to = {1, 5};
            const std::vector<LumiPoint> line = lineOf(from, to);
            const PlacedBlock samples(line.size() * TypeParam::pixelBytes, Guard::After, (begin + 1) % sizeof(T));
            ASSERT_EQ(TypeParam::call(reinterpret_cast<const T*>(source.data()), step, size,
                                      reinterpret_cast<T*>(samples.data()), from, to),
                      lumOk);
            for (std::size_t i = 0; i < line.size(); ++i) {
                EXPECT_EQ(std::memcmp(samples.data() + i * TypeParam::pixelBytes,
                                      source.data() + line[i].y * step + line[i].x * TypeParam::pixelBytes,
                                      TypeParam::pixelBytes),
                          0)
                    << "sample " << i << ", step " << step << ", address off by " << begin;
            }
            EXPECT_TRUE(samples.intact());
        }
    }
}

/// The places that lumiSampleLine_16u_C1R visits in an image that holds 100 * y + x.
std::vector<int> visited(LumiPoint from, LumiPoint to)
{
    Image<Lum16u> source({.width = 20, .height = 20});
    source.forEach(Area::Roi, [](Lum16u& pixel, int x, int y, int) { pixel = static_cast<Lum16u>(100 * y + x); });
    const int count = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) + 1;
    Image<Lum16u> samples({.width = count});
    EXPECT_EQ(lumiSampleLine_16u_C1R(source.pixels(), source.step(), {20, 20}, samples.pixels(), from, to), lumOk);
    return {samples.pixels(), samples.pixels() + count};
}

TEST(SampleLinePlacesQuick, OnePoint)
{
    EXPECT_EQ(visited({7, 3}, {7, 3}), std::vector<int>({307}));
}

TEST(SampleLinePlacesQuick, HorizontalAndVertical)
{
    EXPECT_EQ(visited({2, 3}, {6, 3}), std::vector<int>({302, 303, 304, 305, 306}));
    EXPECT_EQ(visited({6, 3}, {2, 3}), std::vector<int>({306, 305, 304, 303, 302}));
    EXPECT_EQ(visited({2, 3}, {2, 6}), std::vector<int>({302, 402, 502, 602}));
    EXPECT_EQ(visited({2, 6}, {2, 3}), std::vector<int>({602, 502, 402, 302}));
}

TEST(SampleLinePlacesQuick, DiagonalStepsBothAxesEachTime)
{
    EXPECT_EQ(visited({2, 3}, {5, 6}), std::vector<int>({302, 403, 504, 605}));
    EXPECT_EQ(visited({5, 3}, {2, 6}), std::vector<int>({305, 404, 503, 602}));
}

// The minor step comes when e falls below 0, and not when it reaches 0: where the line passes halfway between two
// pixels it stays behind, and the way back is not the way there.
TEST(SampleLinePlacesQuick, HalfwayTheMinorStepWaits)
{
    EXPECT_EQ(visited({0, 0}, {4, 2}), std::vector<int>({0, 1, 102, 103, 204}));
    EXPECT_EQ(visited({4, 2}, {0, 0}), std::vector<int>({204, 203, 102, 101, 0}));
    EXPECT_EQ(visited({0, 0}, {2, 4}), std::vector<int>({0, 100, 201, 301, 402}));
    EXPECT_EQ(visited({2, 4}, {0, 0}), std::vector<int>({402, 302, 201, 101, 0}));
    EXPECT_EQ(visited({0, 0}, {2, 1}), std::vector<int>({0, 1, 102}));
}

TYPE_TEST(SampleLineQuick, ThreadsShareAnImage)
{
    constexpr LumiSize size = {300, 200};
    Image<typename TypeParam::Element> source(
        {.width = size.width, .height = size.height, .channels = TypeParam::channels});
    Random random(5);
    fillWithBits(source, size, TypeParam::channels, random);
    std::thread other([&] { expectLine<TypeParam>(source, size, {299, 7}, {0, 180}, Guard::After, 0); });
    expectLine<TypeParam>(source, size, {299, 7}, {0, 180}, Guard::After, 0);
    other.join();
}

template <class F>
struct LineArgs
{
    using T = typename F::Element;

    const GuardedBlock* written;
    const T* pSrc;
    Lum32s srcStep;
    LumiSize roiSize;
    T* pDst;
    LumiPoint pt1;
    LumiPoint pt2;

    LumStatus call() const
    {
        return F::call(pSrc, srcStep, roiSize, pDst, pt1, pt2);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*written)};
    }
};

TYPE_TEST(SampleLineQuick, ChecksInOrder)
{
    using A = LineArgs<TypeParam>;
    using T = typename TypeParam::Element;
    constexpr LumiSize size = {9, 6};
    constexpr int row = size.width * TypeParam::pixelBytes;
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    Image<T> source({.width = size.width, .height = size.height, .channels = TypeParam::channels});
    Random random(5);
    fillWithBits(source, size, TypeParam::channels, random);
    const GuardedBlock samples(9 * TypeParam::pixelBytes, Guard::After);
    const std::vector<Violation<A>> table = {
        {"pSrc null", lumErrNullPointer, [](A& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](A& a) { a.pDst = nullptr; }},
        {"width 0", lumErrSize, [](A& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](A& a) { a.roiSize.width = -9; }},
        {"height 0", lumErrSize, [](A& a) { a.roiSize.height = 0; }},
        {"height least", lumErrSize, [](A& a) { a.roiSize.height = least; }},
        {"srcStep one byte below a row", lumErrStep, [](A& a) { a.srcStep = row - 1; }},
        {"srcStep one pixel below a row", lumErrStep, [](A& a) { a.srcStep = row - TypeParam::pixelBytes; }},
        {"srcStep 0", lumErrStep, [](A& a) { a.srcStep = 0; }},
        {"srcStep negative", lumErrStep, [](A& a) { a.srcStep = -row; }},
        {"pt1.x negative", lumErrOutOfRange, [](A& a) { a.pt1.x = -1; }},
        {"pt1.y negative", lumErrOutOfRange, [](A& a) { a.pt1.y = -1; }},
        {"pt1.x at the width", lumErrOutOfRange, [](A& a) { a.pt1.x = 9; }},
        {"pt1.y at the height", lumErrOutOfRange, [](A& a) { a.pt1.y = 6; }},
        {"pt1.x most", lumErrOutOfRange, [](A& a) { a.pt1.x = most; }},
        {"pt1.y least", lumErrOutOfRange, [](A& a) { a.pt1.y = least; }},
        {"pt2.x negative", lumErrOutOfRange, [](A& a) { a.pt2.x = -1; }},
        {"pt2.y negative", lumErrOutOfRange, [](A& a) { a.pt2.y = -1; }},
        {"pt2.x at the width", lumErrOutOfRange, [](A& a) { a.pt2.x = 9; }},
        {"pt2.y at the height", lumErrOutOfRange, [](A& a) { a.pt2.y = 6; }},
        {"pt2.x least", lumErrOutOfRange, [](A& a) { a.pt2.x = least; }},
        {"pt2.y most", lumErrOutOfRange, [](A& a) { a.pt2.y = most; }},
    };
    expectStatusOrder(A{&samples, source.pixels(), source.step(), size, samples.as<T>(), {8, 5}, {0, 0}}, table);
}

}  // namespace
}  // namespace lumcv::test::geometry
