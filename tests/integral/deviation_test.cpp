// The deviation under a rectangle: what is stored, over sizes, rectangles and values.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

#include "integral/deviation_fixture.hpp"
#include "integral/integral_reference.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::deviation {
namespace {

// Offsets of all kinds; those with more rows than columns of offset make tilted columns negative.
constexpr std::array<LumiRect, 9> kRects = {{{0, 0, 1, 1},
                                             {0, 0, 3, 2},
                                             {1, 0, 2, 5},
                                             {0, 1, 8, 1},
                                             {2, 1, 5, 7},
                                             {1, 3, 4, 4},
                                             {0, 9, 1, 12},
                                             {17, 2, 9, 3},
                                             {5, 5, 24, 20}}};

void sweepAgainstReference(Sweep sweep)
{
    forEachGeometry(sweep, [](const Geometry& geometry) {
        Random random(static_cast<std::uint64_t>(geometry.number) + 500);
        const LumiRect rect = kRects[static_cast<std::size_t>(geometry.number) % kRects.size()];
        const auto content = static_cast<Content>(random.between(0, 2));
        const int moreGap = static_cast<int>(random.between(0, 2));
        const Guard guard = random.oneIn(2) ? Guard::After : Guard::Before;
        forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
            const Extent extent = extentOf(form.isTilted, {geometry.width, geometry.height}, rect);
            TableImage<Sum> sums(extent, guard, moreGap);
            TableImage<Square> squares(extent, guard, 2 - moreGap);
            fillTables(content, random, sums.image(), squares.image());
            Image<Result> result(geometry.layout<Result>(2));
            EXPECT_TRUE(agrees(form, sums, squares, result, rect, static_cast<int>(random.between(-3, 3))))
                << "content " << static_cast<int>(content);
        });
    });
}

TEST(RectDeviation, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Full);
}

TEST(RectDeviationQuick, AgreesWithTheReference)
{
    sweepAgainstReference(Sweep::Quick);
}

TEST(RectDeviation, EveryRectangle)
{
    Random random(41);
    for (const LumiRect rect : kRects) {
        for (const Content content : {Content::Image, Content::Random, Content::Extreme}) {
            forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
                const Extent extent = extentOf(form.isTilted, {21, 5}, rect);
                TableImage<Sum> sums(extent, Guard::After);
                TableImage<Square> squares(extent, Guard::Before);
                fillTables(content, random, sums.image(), squares.image());
                Image<Result> result({.width = 21, .height = 5});
                EXPECT_TRUE(agrees(form, sums, squares, result, rect)) << "content " << static_cast<int>(content);
            });
        }
    }
}

// The deviation of the pixels themselves, taken from tables of the image.
TEST(RectDeviationQuick, IsTheDeviationOfThePixels)
{
    Random random(42);
    Image<Lum8u> source({.width = 30, .height = 16});
    fill(source, random);
    Image<Lum32f> sums({.width = 31, .height = 17});
    Image<Lum64f> squares({.width = 31, .height = 17});
    ASSERT_EQ(lumiSqrIntegral_8u32f64f_C1R(source.pixels(), source.step(), sums.pixels(), sums.step(), squares.pixels(),
                                           squares.step(), {30, 16}, 0, 0),
              lumOk);
    const LumiRect rect = {2, 1, 7, 5};
    Image<Lum32f> result({.width = 22, .height = 11});
    ASSERT_EQ(lumiRectStdDev_32f_C1R(sums.pixels(), sums.step(), squares.pixels(), squares.step(), result.pixels(),
                                     result.step(), {22, 11}, rect),
              lumOk);
    for (int j = 0; j < 11; ++j) {
        for (int i = 0; i < 22; ++i) {
            double mean = 0, variance = 0;
            for (int y = 0; y < rect.height; ++y) {
                for (int x = 0; x < rect.width; ++x) {
                    mean += source.at(i + rect.x + x, j + rect.y + y) / 35.0;
                }
            }
            for (int y = 0; y < rect.height; ++y) {
                for (int x = 0; x < rect.width; ++x) {
                    variance += std::pow(source.at(i + rect.x + x, j + rect.y + y) - mean, 2) / 35.0;
                }
            }
            EXPECT_NEAR(result.at(i, j), std::sqrt(variance), 1e-4) << "x " << i << ", y " << j;
        }
    }
}

// The same under a tilted rectangle. Its pixels are told by what it sums: tables of an image with one pixel.
TEST(RectDeviationQuick, IsTheDeviationOfTheTiltedPixels)
{
    constexpr int width = 34, height = 26, i = 12, j = 2;
    const LumiRect rect = {3, 1, 5, 4};
    const Corners<int> rows = {rect.x + rect.y + j, rect.x + rect.y + j + rect.height, rect.x + rect.y + j + rect.width,
                               rect.x + rect.y + j + rect.width + rect.height};
    const Corners<int> columns = {rect.x - rect.y + i, rect.x - rect.y + i - rect.height,
                                  rect.x - rect.y + i + rect.width, rect.x - rect.y + i + rect.width - rect.height};
    Random random(43);
    Image<Lum8u> source({.width = width, .height = height}), single({.width = width, .height = height});
    fill(source, random);
    Image<Lum64f> cone({.width = width + 2, .height = height + 2});
    double sum = 0, squareSum = 0;
    int pixels = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            single.forEach(Area::Roi, [&](Lum8u& pixel, int column, int row, int) { pixel = column == x && row == y; });
            integral::tilted(single, integral::Summand::Value, 0.0, cone);
            const double covered = cone.at(columns.first, rows.first) - cone.at(columns.second, rows.second) -
                                   cone.at(columns.third, rows.third) + cone.at(columns.fourth, rows.fourth);
            ASSERT_TRUE(covered == 0 || covered == 1);
            pixels += covered == 1;
            sum += covered * source.at(x, y);
            squareSum += covered * source.at(x, y) * source.at(x, y);
        }
    }
    ASSERT_EQ(pixels, 2 * rect.width * rect.height);
    Image<Lum32s> sums({.width = width + 2, .height = height + 2});
    Image<Lum64f> squares({.width = width + 2, .height = height + 2});
    Image<Lum32f> result({.width = 1, .height = 1});
    ASSERT_EQ(lumiTiltedSqrIntegral_8u32s64f_C1R(source.pixels(), source.step(), sums.pixels(), sums.step(),
                                                 squares.pixels(), squares.step(), {width, height}, 0, 0),
              lumOk);
    ASSERT_EQ(lumiTiltedRectStdDev_32s32f_C1R(&sums.at(i, j), sums.step(), &squares.at(i, j), squares.step(),
                                              result.pixels(), result.step(), {1, 1}, rect),
              lumOk);
    EXPECT_NEAR(result.at(0, 0), std::sqrt(squareSum / pixels - std::pow(sum / pixels, 2)), 1e-4);
}

// Counts the pixels at which the formula of one place gives another result than the formula of the other.
template <class Sum, class Square>
void expectBodyAndTailDiffer(const Form<Sum, Square, Lum32f>& form)
{
    SCOPED_TRACE(form.name);
    Random random(44);
    for (const int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 23, 24, 31, 40}) {
        const LumiRect rect = {1, 1, 3, 5};
        const int height = width < 24 ? 200 : 40;
        const LumiSize roiSize = {width, height};
        const Extent extent = extentOf(false, roiSize, rect);
        TableImage<Sum> sums(extent, Guard::After);
        TableImage<Square> squares(extent, Guard::After);
        fillTables(Content::Random, random, sums.image(), squares.image());
        Image<Lum32f> result({.width = width, .height = height});
        ASSERT_TRUE(agrees(form, sums, squares, result, rect)) << "width " << width;
        const auto all = [&](Place place) {
            return expectedResult(form, sums.table(), squares.table(), roiSize, rect, 0, [=](int) { return place; });
        };
        const Image<Lum32f> body = all(Place::Body), tail = all(Place::Tail);
        int inBody = 0, inTail = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                (x < width / 8 * 8 ? inBody : inTail) += body.at(x, y) != tail.at(x, y);
            }
        }
        if (width >= 8) {
            EXPECT_GT(inBody, 0) << "no pixel of a group tells the formulas apart at width " << width;
        }
        if (width % 8 != 0) {
            EXPECT_GT(inTail, 0) << "no pixel of a tail tells the formulas apart at width " << width;
        }
    }
}

TEST(RectDeviation, BodyAndTailOfARow32f)
{
    expectBodyAndTailDiffer(kUpright32f);
}

TEST(RectDeviation, BodyAndTailOfARow32s32f)
{
    expectBodyAndTailDiffer(kUpright32s32f);
}

// Tables of a constant image: the entries count pixels.
template <class Sum, class Square>
void fillConstant(int value, bool isTilted, Image<Sum>& sums, Image<Square>& squares)
{
    const auto count = [=](int x, int y) { return isTilted ? y * y : x * y; };
    sums.forEach(Area::Roi, [&](Sum& entry, int x, int y, int) { entry = static_cast<Sum>(value * count(x, y)); });
    squares.forEach(
        Area::Roi, [&](Square& entry, int x, int y, int) { entry = static_cast<Square>(value * value * count(x, y)); });
}

// A constant image deviates nowhere. The area is a power of two, so that no mean is rounded.
TEST(RectDeviationQuick, ConstantImage)
{
    const LumiRect rect = {1, 2, 8, 4};
    for (const int value : {0, 1, 3, 100, 173, 255}) {
        forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
            const Extent extent = extentOf(form.isTilted, {19, 3}, rect);
            TableImage<Sum> sums(extent, Guard::After);
            TableImage<Square> squares(extent, Guard::After);
            fillConstant(value, form.isTilted, sums.image(), squares.image());
            Image<Result> result({.width = 19, .height = 3});
            ASSERT_TRUE(agrees(form, sums, squares, result, rect));
            for (int x = 0; x < 19; ++x) {
                EXPECT_TRUE(sameElement(result.at(x, 1), Result{0})) << "value " << value << ", x " << x;
            }
        });
    }
}

// Areas whose reciprocal is rounded: where that makes the variance of a constant image negative, it counts as zero.
TEST(RectDeviationQuick, VarianceRoundedBelowZero)
{
    int negative = 0;
    for (const LumiRect rect : {LumiRect{0, 0, 7, 3}, LumiRect{1, 2, 11, 13}, LumiRect{0, 1, 7, 7}}) {
        for (int value = 1; value < 256; value += 6) {
            const int area = rect.width * rect.height;
            const double inverse = 1.0 / area, mean = value * area * inverse;
            const bool belowZero = value * value * area * inverse - mean * mean < 0;
            negative += belowZero;
            forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
                const Extent extent = extentOf(form.isTilted, {11, 2}, rect);
                TableImage<Sum> sums(extent, Guard::After);
                TableImage<Square> squares(extent, Guard::After);
                fillConstant(value, form.isTilted, sums.image(), squares.image());
                Image<Result> result({.width = 11, .height = 2});
                ASSERT_TRUE(agrees(form, sums, squares, result, rect)) << "value " << value;
                if (belowZero && std::is_same_v<Sum, Lum32f> && !form.isTilted) {
                    EXPECT_TRUE(sameElement(result.at(0, 0), Result{0})) << "value " << value;
                    EXPECT_TRUE(sameElement(result.at(10, 1), Result{0})) << "value " << value;
                }
            });
        }
    }
    EXPECT_GT(negative, 5) << "no variance was negative";
}

// A variance that is not-a-number is none in the 32f form and in both tilted ones, but stays one in the upright form
// with integer sums.
TEST(RectDeviationQuick, VarianceThatIsNotANumber)
{
    constexpr Lum64f notANumber = std::numeric_limits<Lum64f>::quiet_NaN();
    constexpr Lum64f infinity = std::numeric_limits<Lum64f>::infinity();
    for (const Lum64f square : {notANumber, infinity, -infinity}) {
        forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
            if constexpr (std::is_same_v<Square, Lum64f>) {
                const LumiRect rect = {0, 0, 2, 2};
                const Extent extent = extentOf(form.isTilted, {13, 2}, rect);
                TableImage<Sum> sums(extent, Guard::After);
                TableImage<Square> squares(extent, Guard::After);
                sums.image().forEach(Area::Roi, [](Sum& entry, int, int, int) { entry = 0; });
                // infinities everywhere: their differences are not-a-number
                squares.image().forEach(Area::Roi, [&](Square& entry, int, int, int) { entry = square; });
                Image<Result> result({.width = 13, .height = 2});
                ASSERT_TRUE(agrees(form, sums, squares, result, rect));
                const bool stays = std::is_integral_v<Sum> && !form.isTilted;
                for (int x = 0; x < 13; ++x) {
                    EXPECT_EQ(std::isnan(result.at(x, 1)), stays) << "x " << x;
                    if (!stays) {
                        EXPECT_TRUE(sameElement(result.at(x, 1), Result{0})) << "x " << x;
                    }
                }
            }
        });
    }
}

// Integer sums wrap: tables that have overflown give the same as those that have not.
TEST(RectDeviationQuick, OverflownTables)
{
    Random random(45);
    const LumiRect rect = {2, 3, 6, 4};
    forEachForm([&]<class Sum, class Square, class Result>(const Form<Sum, Square, Result>& form) {
        if constexpr (std::is_integral_v<Sum>) {
            const Extent extent = extentOf(form.isTilted, {17, 4}, rect);
            TableImage<Sum> sums(extent, Guard::After);
            TableImage<Square> squares(extent, Guard::After);
            fillTables(Content::Image, random, sums.image(), squares.image());
            Image<Result> plain({.width = 17, .height = 4}), overflown({.width = 17, .height = 4});
            ASSERT_TRUE(agrees(form, sums, squares, plain, rect));
            const auto wrap = [](auto& entry, int, int, int) {
                if constexpr (std::is_integral_v<std::remove_reference_t<decltype(entry)>>) {
                    entry = wrapping(Lum64s{entry} + 0x7fffff00);
                }
            };
            sums.image().forEach(Area::Roi, wrap);
            squares.image().forEach(Area::Roi, wrap);
            ASSERT_TRUE(agrees(form, sums, squares, overflown, rect));
            EXPECT_TRUE(sameImage(plain, overflown));
        }
    });
}

// Rows that are far apart in an address space of which next to nothing is used.
template <class T>
class SparseTable
{
  public:
    SparseTable(int rows, int columns) : columns_(columns), bytes_(static_cast<std::size_t>(rows * step()))
    {
        void* const mapping =
            mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapping == MAP_FAILED) {
            std::abort();
        }
        entries_ = static_cast<T*>(mapping);
    }
    ~SparseTable()
    {
        munmap(entries_, bytes_);
    }
    SparseTable(const SparseTable&) = delete;
    SparseTable& operator=(const SparseTable&) = delete;

    int step() const
    {
        return columns_ * int{sizeof(T)};
    }
    Table<T> table() const
    {
        return {entries_, step()};
    }
    void fillRow(int row, T factor, Random& random)
    {
        for (int x = 0; x < columns_; ++x) {
            entries_[static_cast<std::ptrdiff_t>(row) * columns_ + x] =
                static_cast<T>(random.between(-1000000, 1000000)) * factor;
        }
    }

  private:
    int columns_;
    std::size_t bytes_;
    T* entries_;
};

// An area above 2^24 is rounded where the documentation says so: 2^24 + 1 counts as 2^24.
TEST(RectDeviation, AreaAbove24Bits)
{
    const LumiRect rect = {0, 0, 257, 65281};
    ASSERT_EQ(rect.width * rect.height, (1 << 24) + 1);
    const LumiSize roiSize = {13, 1};
    Random random(46);
    SparseTable<Lum32f> floats(rect.height + 1, rect.width + 13);
    SparseTable<Lum32s> integers(rect.height + 1, rect.width + 13);
    SparseTable<Lum64f> squares(rect.height + 1, rect.width + 13);
    for (const int row : {0, rect.height}) {
        floats.fillRow(row, 1000, random);
        integers.fillRow(row, 1, random);
        squares.fillRow(row, 1.0e10, random);
    }
    const auto expectAgreement = [&](const auto& form, const auto& sums) {
        Image<Lum32f> result({.width = 13, .height = 1});
        ASSERT_EQ(form.call(sums.table().origin, sums.step(), squares.table().origin, squares.step(), result.pixels(),
                            result.step(), roiSize, rect, 0),
                  lumOk);
        EXPECT_TRUE(sameImage(expectedResult(form, sums.table(), squares.table(), roiSize, rect), result)) << form.name;
    };
    expectAgreement(kUpright32f, floats);
    expectAgreement(kUpright32s32f, integers);
}

}  // namespace
}  // namespace lumcv::test::deviation
