// Kernels that take windows from what neighbouring ones have computed: both sides of the sizes from which they do, with
// images, lines and scratch of exactly what they need.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

#include "morph/area.hpp"
#include "morph/structuring_elements.hpp"
#include "support/compare.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::morph {
namespace {

/// Elements that end at an unreadable page.
template <class T>
class Elements
{
  public:
    explicit Elements(int64_t count) : count_(count), block_(static_cast<std::size_t>(count) * sizeof(T), Guard::After)
    {
    }
    T* begin() const
    {
        return block_.as<T>();
    }
    T& operator[](int64_t i) const
    {
        return begin()[i];
    }
    /// Mostly values in the middle, so that an extreme tells which windows saw it.
    void draw(Random& random) const
    {
        for (int64_t i = 0; i < count_; ++i)
            begin()[i] = random.oneIn(6) ? random.value<T>(Values::Extreme) : T(60 + random.between(0, 1));
    }
    testing::AssertionResult slackIntact() const
    {
        return block_.slackIntact();
    }

  private:
    int64_t count_;
    GuardedBlock block_;
};

/// The later one of two equals, and of anything and a not-a-number: as the library's extremes do.
template <class Operation, class T>
T extreme(T earlier, T later)
{
    const bool isGreater = std::is_same_v<Operation, Maximum>;
    return (isGreater ? earlier > later : earlier < later) ? earlier : later;
}

template <class Operation, class T>
void expectGrownWindows(int64_t length, int64_t unit, int64_t n, bool isInPlace)
{
    SCOPED_TRACE(testing::Message() << "windows of " << length << " pixels, unit " << unit << ", " << n
                                    << (isInPlace ? " elements in place" : " elements"));
    Random random(static_cast<std::uint64_t>(length * 1000 + unit * 100 + n));
    const int64_t reach = (length - 1) * unit;
    const Elements<T> from(n + reach), line(n + reach), to(n);
    from.draw(random);
    std::vector<T> expected;
    for (int64_t x = 0; x < n; ++x) {
        T value = from[x];
        for (int64_t i = 1; i < length; ++i)
            value = extreme<Operation>(value, from[x + i * unit]);
        expected.push_back(value);
    }
    T* const result = isInPlace ? from.begin() : to.begin();
    growWindows<Operation>(from.begin(), 1, isInPlace ? result : line.begin(), result, length, unit, n);
    for (int64_t x = 0; x < n; ++x)
        ASSERT_TRUE(sameElement(result[x], expected[std::size_t(x)])) << "element " << x;
    EXPECT_TRUE(from.slackIntact() && line.slackIntact() && to.slackIntact());
}

/// Counts on both sides of one, two and three registers of any level.
std::vector<int64_t> countsAroundRegisters(int elementBytes)
{
    std::vector<int64_t> counts = {1, 2, 7};
    for (int bytes : {16, 32, 64, 96, 128, 192, 256, 384})
        for (int64_t beside : {-1, 0, 1})
            counts.push_back(bytes / elementBytes + beside);
    return counts;
}

// Integers grow within registers up to windows of 16 pixels, where the pixels of an image are 1 element, or up to 8
// where they are, of bytes, 3 or 4. A unit of 2 is none of an image.
template <class T>
void expectWindows()
{
    for (const int64_t length : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 31, 32, 33, 64, 65})
        for (const int64_t unit : {1, 2, 3, 4})
            for (const int64_t n : countsAroundRegisters(sizeof(T))) {
                expectGrownWindows<Maximum, T>(length, unit, n, n % 2 == 0);
                expectGrownWindows<Minimum, T>(length, unit, n, n % 2 != 0);
                if (testing::Test::HasFailure())
                    return;
            }
}

TEST(SharedWindows, RowsOfEveryShortLengthAndSomeLongOnes)
{
    expectWindows<Lum8u>();
    expectWindows<Lum16u>();
    expectWindows<Lum16s>();
    expectWindows<Lum32f>();
}

/// An image with everything under an element, and what a kernel makes of it.
template <class T>
struct Picture
{
    Picture(int64_t itsWidth, int64_t itsHeight, int64_t itsChannels, const StructuringElement& element)
        : width(itsWidth),
          height(itsHeight),
          channels(itsChannels),
          pitch((width + element.width - 1) * channels),
          from(pitch * (height + element.height - 1)),
          to(width * channels * height)
    {
        Random random(static_cast<std::uint64_t>(width * 50 + height));
        from.draw(random);
        std::memset(to.begin(), 0x77, std::size_t(width * channels * height) * sizeof(T));
        anchor = from.begin() + (element.height - 1) / 2 * pitch + (element.width - 1) / 2 * channels;
    }
    lumcv::Area<T> area() const
    {
        constexpr auto bytes = static_cast<int64_t>(sizeof(T));
        return {{anchor, pitch * bytes}, {to.begin(), width * channels * bytes}, width * channels, height, channels};
    }
    template <class Operation>
    T expected(int64_t x, int64_t y, const Offsets& offsets) const
    {
        const auto at = [&](const Offset& offset) { return anchor[(y + offset.y) * pitch + x + offset.x * channels]; };
        T value = at(offsets.list[0]);
        for (const Offset& offset : offsets.list)
            value = extreme<Operation>(value, at(offset));
        return value;
    }
    template <class Expected>
    void expectEach(Expected expectedAt) const
    {
        for (int64_t y = 0; y < height; ++y)
            for (int64_t x = 0; x < width * channels; ++x)
                ASSERT_TRUE(sameElement(to[y * width * channels + x], expectedAt(x, y)))
                    << "element " << x << " of row " << y << " of " << width << " x " << height << " x " << channels;
        EXPECT_TRUE(from.slackIntact() && to.slackIntact());
    }

    int64_t width, height, channels, pitch;
    Elements<T> from, to;
    T* anchor;
};

/// Scratch at an aligned place, of which so many bytes may be written.
class RingScratch
{
  public:
    explicit RingScratch(int64_t bytes)
        : bytes_(bytes), block_(static_cast<std::size_t>(roundedUp(bytes, 32)), Guard::After)
    {
    }
    Scratch get() const
    {
        return {block_.data(), bytes_};
    }
    testing::AssertionResult intact() const
    {
        for (auto i = static_cast<std::size_t>(bytes_); i < block_.size(); ++i)
            if (block_.data()[i] != block_.original(i))
                return testing::AssertionFailure() << "byte " << i << " of " << bytes_ << " was written";
        return block_.slackIntact();
    }

  private:
    int64_t bytes_;
    GuardedBlock block_;
};

template <class Operation, class T>
void expectSquare(int side, int64_t width, int64_t height, int64_t channels, int64_t scratchBytes)
{
    const StructuringElement element = test::morph::rectangle(side, side);
    const Picture<T> picture(width, height, channels, element);
    const RingScratch scratch(scratchBytes);
    lumcv::rectangle<Operation>(picture.area(), side, side, scratch.get());
    const Offsets offsets = element.offsets();
    picture.expectEach([&](int64_t x, int64_t y) { return picture.template expected<Operation>(x, y, offsets); });
    EXPECT_TRUE(scratch.intact());
}

// Squares carry rows from step to step where an image has 128 elements and the scratch has room for what they carry,
// and elsewhere they go through a ring. The last step has fewer rows, and the last vector overlaps the one before it.
template <class T>
void expectSquaresOnBothSides()
{
    int number = 0;
    for (const int side : {3, 5})
        for (const int64_t width : {126, 127, 128, 129, 191, 192, 193, 256, 257, 384, 385, 700})
            for (int64_t height = 1; height <= 10; ++height, ++number) {
                const int64_t channels = number % 3 == 0 ? 3 : 1;
                // what is carried takes whole vectors of 128 elements; a ring is content with less
                const int64_t carried = roundedUp(width * channels, 128) * (side - 1) * int64_t{sizeof(T)};
                const int64_t room = std::max<int64_t>(carried, 8192 * int64_t{sizeof(T)});
                const int64_t scratchBytes = number % 4 == 0 ? carried - 32 : number % 4 == 1 ? carried : room;
                if (number % 2 == 0)
                    expectSquare<Maximum, T>(side, width, height, channels, scratchBytes);
                else
                    expectSquare<Minimum, T>(side, width, height, channels, scratchBytes);
                if (testing::Test::HasFailure())
                    return;
            }
}

TEST(SharedWindows, SquaresOfAboutTheWidthThatCarriesRows)
{
    expectSquaresOnBothSides<Lum8u>();
    expectSquaresOnBothSides<Lum16u>();
    expectSquaresOnBothSides<Lum16s>();
    expectSquaresOnBothSides<Lum32f>();
}

/// The kernel's look at an element.
class Laid
{
  public:
    explicit Laid(const StructuringElement& element)
    {
        layElement(CallerMask{element.bytes.data(), element.width, element.height}, record());
    }
    Element element() const
    {
        return Element(*record());
    }

  private:
    ElementRecord<Lum32s>* record() const
    {
        return reinterpret_cast<ElementRecord<Lum32s>*>(block_.data());
    }

    GuardedBlock block_{4096, Guard::After};
};

/// Scratch in which a ring of the rows' windows has room for a band of so many elements and no more.
template <class T>
int64_t ringOf(const StructuringElement& element, int64_t rows, int64_t band, int64_t channels)
{
    std::set<int64_t> lengths;
    for (int y = 0; y < element.height; ++y)
        lengths.insert(std::count_if(element.bytes.begin() + y * element.width,
                                     element.bytes.begin() + (y + 1) * element.width,
                                     [](Lum8u byte) { return byte != 0; }));
    lengths.erase(0);
    lengths.erase(1);
    const auto lines = static_cast<int64_t>(lengths.size());
    return int64_t{sizeof(T)} * lines * (element.height - 1 + rows) * (band + (element.width - 1) * channels);
}

// Elements of which two neighbouring output rows share windows are joined two rows at a time where the scratch has room
// for bands of 256 elements, one by one where it has room for 64, and else not from a ring.
template <class T>
void expectRowRunsOnBothSides(const StructuringElement& element)
{
    const Laid laid(element);
    const Offsets offsets = element.offsets();
    for (const int64_t channels : {1, 3})
        for (const int64_t height : {1, 2, 7, 12}) {
            const int64_t room = ringOf<T>(element, 2, 256, channels), little = ringOf<T>(element, 1, 64, channels);
            for (const int64_t bytes : {room + 64, room, room - 1, little, little - 1}) {
                SCOPED_TRACE(testing::Message()
                             << element << ", " << bytes << " bytes of " << room << " and " << little);
                const Picture<T> picture(300, height, channels, element);
                const RingScratch scratch(bytes);
                ASSERT_EQ(lumcv::rowRuns<Maximum>(picture.area(), laid.element(), scratch.get()), bytes >= little);
                picture.expectEach([&](int64_t x, int64_t y) {
                    T untouched;
                    std::memset(&untouched, 0x77, sizeof untouched);
                    return bytes < little ? untouched : picture.template expected<Maximum>(x, y, offsets);
                });
                EXPECT_TRUE(scratch.intact());
                if (testing::Test::HasFailure())
                    return;
            }
        }
}

TEST(SharedWindows, RowRunsWithRoomForTwoRowsForOneAndForNone)
{
    for (const StructuringElement& element : {ellipse(9, 9), ellipse(13, 13), ellipse(5, 11)}) {
        expectRowRunsOnBothSides<Lum8u>(element);
        expectRowRunsOnBothSides<Lum16u>(element);
        expectRowRunsOnBothSides<Lum16s>(element);
        expectRowRunsOnBothSides<Lum32f>(element);
    }
}

}  // namespace
}  // namespace lumcv::test::morph
