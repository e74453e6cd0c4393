// The list of records made of a FAST corner map.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "feature/fast_fixture.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::fast {
namespace {

// All nonzero bytes of the map in order.
template <class Map, class Scores>
std::vector<LumCornerFastN> recordsOf(const Map& corner, const Scores& score, LumiSize size, const Setting& setting)
{
    std::vector<LumCornerFastN> records;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int byte = corner.at(x, y);
            if (byte == 0) {
                continue;
            }
            LumCornerFastN record = {x, y, byte >> 7, -1, -1.0f, -1.0f};
            if (setting.has(lumFastNOrientation)) {
                record.orientation = byte & 63;
                record.angle = static_cast<Lum32f>(byte & 63) * (360.0f / static_cast<Lum32f>(setting.bins));
            }
            if (setting.has(lumFastNScore)) {
                record.score = static_cast<Lum32f>(score.at(x, y));
            }
            records.push_back(record);
        }
    }
    return records;
}

testing::AssertionResult sameRecord(const LumCornerFastN& expected, const LumCornerFastN& actual)
{
    if (expected.x != actual.x || expected.y != actual.y || expected.cornerType != actual.cornerType ||
        expected.orientation != actual.orientation || !sameElement(expected.angle, actual.angle) ||
        !sameElement(expected.score, actual.score)) {
        return testing::AssertionFailure()
               << "got " << actual.x << ", " << actual.y << ", type " << actual.cornerType << ", orientation "
               << actual.orientation << ", " << elementText(actual.angle) << ", score " << actual.score << "; expected "
               << expected.x << ", " << expected.y << ", type " << expected.cornerType << ", orientation "
               << expected.orientation << ", " << elementText(expected.angle) << ", score " << expected.score;
    }
    return testing::AssertionSuccess();
}

// Lists the corners into exactly `maxLen` records.
template <class Map>
void expectRecords(const Map& corner, const Map& score, LumiSize size, const Setting& setting, int maxLen,
                   const Placement& place = {})
{
    const std::vector<LumCornerFastN> expected = recordsOf(corner, score, size, setting);
    const Spec spec({100, 100}, setting, place);
    const PlacedBlock list(static_cast<std::size_t>(maxLen) * sizeof(LumCornerFastN), place.guard, 0);
    const std::vector<unsigned char> before(list.data(), list.data() + list.size());
    Lum32s count = -1;
    const bool hasScore = setting.has(lumFastNScore);
    EXPECT_EQ(lumiFastN2DToVec_8u(corner.pixels(), corner.step(), hasScore ? score.pixels() : nullptr,
                                  hasScore ? score.step() : 0, reinterpret_cast<LumCornerFastN*>(list.data()), size,
                                  maxLen, &count, spec.get()),
              lumOk);
    EXPECT_EQ(count, static_cast<Lum32s>(expected.size())) << setting;
    const std::size_t stored = std::min(expected.size(), static_cast<std::size_t>(maxLen));
    for (std::size_t i = 0; i < stored; ++i) {
        LumCornerFastN actual;
        std::memcpy(&actual, list.data() + i * sizeof actual, sizeof actual);
        ASSERT_TRUE(sameRecord(expected[i], actual))
            << "record " << i << " of " << size.width << " x " << size.height << ", " << setting;
    }
    for (std::size_t i = stored * sizeof(LumCornerFastN); i < list.size(); ++i) {
        ASSERT_EQ(list.data()[i], before[i]) << "a record beyond the count was written";
    }
    EXPECT_TRUE(list.intact());
}

static_assert(sizeof(LumCornerFastN) == 24);

// Any bytes, few or many of them nonzero.
void drawMap(Image<Lum8u>& map, Random& random, int oneIn)
{
    map.forEach(Area::Roi, [&](Lum8u& element, int, int, int) {
        element = random.oneIn(oneIn) ? static_cast<Lum8u>(random.between(1, 255)) : Lum8u{0};
    });
}

TEST(FastRecords, Widths)
{
    Random random(1);
    std::vector<int> widths = {79, 80, 95, 96, 97, 127, 128, 129, 255, 256, 257, 1100};
    for (int width = 1; width <= 70; ++width) {
        widths.push_back(width);
    }
    int number = 0;
    for (const int width : widths) {
        for (const int oneIn : {1, 3, 40, 100000}) {
            const Placement place = drawPlacement(random);
            const LumiSize size = {width, 1 + number % 4};
            Image<Lum8u> corner(place.layout(size));
            Image<Lum8u> score(place.withMoreGap(7).layout(size));
            drawMap(corner, random, oneIn);
            fill(score, random);
            const int bins[] = {1, 7, 36, 64, 31};
            const Setting setting = {.bins = bins[number % 5], .mode = kModes[number % 6]};
            expectRecords(corner, score, size, setting, size.width * size.height, place);
            expectRecords(corner, score, size, setting, static_cast<int>(random.between(0, size.width)), place);
            ASSERT_FALSE(HasFailure());
            ++number;
        }
    }
}

// A single corner at every place of a row.
TEST(FastRecordsQuick, EveryColumn)
{
    for (const int width : {1, 15, 16, 17, 20, 35, 64, 77}) {
        for (int x = 0; x < width; ++x) {
            Image<Lum8u> corner(Placement{}.layout({width, 2}));
            Image<Lum8u> score(Placement{}.layout({width, 2}));
            corner.forEach(Area::Roi, [](Lum8u& element, int, int, int) { element = 0; });
            score.forEach(Area::Roi, [](Lum8u& element, int i, int y, int) { element = static_cast<Lum8u>(i + y); });
            corner.at(x, 1) = static_cast<Lum8u>(1 + x);
            expectRecords(corner, score, {width, 2}, {.bins = 33, .mode = kScores | kOrientation}, 2);
        }
    }
}

// Every byte, in every form: the upper bit is the type, the low six the direction, and of the byte 0x40 without them
// nothing is left but the type 0.
TEST(FastRecordsQuick, EveryByte)
{
    Image<Lum8u> corner(Placement{}.layout({64, 4}));
    Image<Lum8u> score(Placement{}.layout({64, 4}));
    corner.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) { element = static_cast<Lum8u>(64 * y + x); });
    score.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) { element = static_cast<Lum8u>(255 - 64 * y - x); });
    for (const int mode : kModes) {
        for (const int bins : {1, 2, 3, 7, 11, 36, 49, 63, 64}) {
            expectRecords(corner, score, {64, 4}, {.bins = bins, .mode = mode}, 255);
        }
    }
}

// The count goes on behind the last record that there is room for.
TEST(FastRecordsQuick, NoRoom)
{
    Image<Lum8u> corner(Placement{}.layout({50, 3}));
    Image<Lum8u> score(Placement{}.layout({50, 3}));
    Random random(2);
    drawMap(corner, random, 2);
    fill(score, random);
    for (const int mode : kModes) {
        const Setting setting = {.bins = 4, .mode = mode};
        const int count = static_cast<int>(recordsOf(corner, score, {50, 3}, setting).size());
        for (const int maxLen : {0, 1, 2, 15, 16, 17, count - 1, count, count + 1}) {
            expectRecords(corner, score, {50, 3}, setting, maxLen);
        }
    }
}

// Behind and before each row lies an unreadable page, and the maps cannot be written.
TEST(FastRecords, IsolatedRowsOfMaps)
{
    Random random(3);
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const int width : {1, 3, 4, 7, 15, 16, 17, 19, 31, 33, 50, 64, 70}) {
            Layout layout;
            layout.width = width;
            layout.height = 3;
            layout.guard = guard;
            IsolatedRows<Lum8u> corner(layout);
            IsolatedRows<Lum8u> score(layout);
            corner.forEach([&](Lum8u& element, int, int, int) {
                element = random.oneIn(5) ? static_cast<Lum8u>(random.between(1, 255)) : Lum8u{0};
            });
            score.forEach([&](Lum8u& element, int, int, int) { element = static_cast<Lum8u>(random.bits()); });
            corner.makeReadOnly();
            score.makeReadOnly();
            for (const int mode : kModes) {
                expectRecords(corner, score, {width, 3}, {.bins = 9, .mode = mode}, width);
            }
        }
    }
}

// From the image to the list: the records are where the maps have their corners.
TEST(FastRecordsQuick, OfDetectedCorners)
{
    Image<Lum8u> image(Placement{}.layout({80, 50}));
    Random random(5);
    draw(image, Content::Patches, 3, random);
    const PlacedBlock scratch(scratchBytes(80));
    for (const int mode : kModes) {
        for (const int arc : {9, 10}) {
            const Setting setting = {.arc = arc, .bins = 12, .mode = mode};
            const Spec spec({80, 50}, setting);
            Image<Lum8u> corner(Placement{}.layout({80, 50}));
            Image<Lum8u> score(Placement{}.layout({80, 50}));
            Lum32s count = 0;
            EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                       score.step(), &count, {0, 0}, {80, 50}, spec.get(), scratch.data()),
                      lumOk);
            EXPECT_GT(count, 5);
            EXPECT_EQ(recordsOf(corner, score, {80, 50}, setting).size(), static_cast<std::size_t>(count));
            expectRecords(corner, score, {80, 50}, setting, count);
        }
    }
}

}  // namespace
}  // namespace lumcv::test::fast
