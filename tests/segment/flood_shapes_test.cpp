// Plain and Grad fills of tangled regions are complete, whatever their stack needs, in scratch of exactly its size.
#include <gtest/gtest.h>

#include <vector>

#include "segment/flood_fixture.hpp"
#include "segment/flood_shapes.hpp"

namespace lumcv::test::flood {
namespace {

// A Grad fill without deltas takes what the plain rule takes.
template <class T, int channels>
void expectComplete(const Pattern& pattern, LumiPoint seed, bool eight, Scratch place)
{
    SCOPED_TRACE(testing::Message() << pattern);
    const Image<T> image = imageOf<T, channels>(Palette::Low, pattern);
    Order<T, channels> order;
    order.eight = eight;
    order.seed = seed;
    order.newVal = same<T, channels>(99);
    expectFill<T, channels>(image, order, place);
    Image<T> plain = image;
    Image<T> grad = image;
    const auto plainOutcome = fillPlain<T, channels>(plain, order);
    order.rule = Rule::Grad;
    expectFill<T, channels>(image, order, place);
    EXPECT_EQ((fillGrad<T, channels>(grad, order).area), plainOutcome->area);
    EXPECT_TRUE(sameImage(plain, grad));
}

void expectComplete(const std::vector<Pattern>& patterns, int seeds, Random& random)
{
    for (const Pattern& shape : patterns) {
        for (const Pattern& pattern : everyWay(shape)) {
            for (const LumiPoint& seed : seedsOn(pattern, seeds, random)) {
                const Scratch place = {random.oneIn(2) ? Guard::After : Guard::Before,
                                       static_cast<std::size_t>(random.oneIn(2) ? 0 : random.between(1, 31))};
                for (const bool eight : {false, true}) {
                    expectComplete<Lum8u, 1>(pattern, seed, eight, place);
                    if (random.oneIn(6)) {
                        expectComplete<Lum32f, 3>(pattern, seed, eight, place);
                    }
                    if (testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TEST(FloodShapesQuick, SmallOnes)
{
    Random random(1);
    for (const LumiSize size : {LumiSize{1, 1}, {2, 1}, {3, 2}, {5, 3}, {7, 5}, {6, 4}}) {
        expectComplete(tangledShapes(size.width, size.height, random), 3, random);
    }
}

TEST(FloodShapes, RowsAndColumns)
{
    Random random(2);
    for (const int length : {1, 2, 3, 4, 5, 8, 16, 17, 33, 64, 65, 130, 261}) {
        std::vector<Pattern> patterns = {checkerboard(length, 1)};
        for (const int percent : {50, 80, 95, 100}) {
            patterns.push_back(percolation(length, 1, percent, random));
            patterns.push_back(percolation(length, 2, percent, random));
        }
        expectComplete(patterns, 4, random);
    }
}

TEST(FloodShapes, MiddlingOnes)
{
    Random random(3);
    for (const LumiSize size : {LumiSize{11, 3}, {21, 13}, {33, 29}, {65, 7}}) {
        expectComplete(tangledShapes(size.width, size.height, random), 4, random);
    }
}

TEST(FloodShapes, LargeOnes)
{
    Random random(4);
    expectComplete(tangledShapes(161, 81, random), 1, random);
}

// Combs of all lengths and heights: each tooth is a span that waits.
TEST(FloodShapes, Combs)
{
    Random random(5);
    for (int width = 1; width < 34; width += width < 12 ? 1 : 3) {
        for (int height = 1; height < 8; ++height) {
            expectComplete({comb(width, height), doubleComb(width, height), combs(width, height)}, 3, random);
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

// The comb of 11 x 3 with both rows of teeth has 12 spans waiting at once, where 11 x 3 / 4 is 8.
TEST(FloodShapesQuick, CombOfElevenByThree)
{
    Random random(6);
    std::size_t deepest = 0;
    for (const Pattern& pattern : {doubleComb(11, 3), turned(doubleComb(11, 3))}) {
        for (int x = 0; x < 11; ++x) {
            for (int y = 0; y < 3; ++y) {
                if (pattern.at(x, y) == 0) {
                    continue;
                }
                Order<Lum8u, 1> order;
                order.rule = Rule::Grad;
                order.seed = {x, y};
                order.newVal = {1};
                Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, pattern);
                deepest = std::max(deepest, (fillGrad<Lum8u, 1>(image, order).deepest));
                expectComplete<Lum8u, 1>(pattern, {x, y}, false, {});
                expectComplete<Lum8u, 1>(pattern, {x, y}, true, {});
            }
        }
    }
    EXPECT_GE(deepest, 12u);
}

Pattern patternOfBits(int width, int height, unsigned bits)
{
    Pattern p{"bits " + std::to_string(bits), width, height};
    for (int& level : p.levels) {
        level = (bits & 1) != 0 ? kWay : 0;
        bits >>= 1;
    }
    return p;
}

// Rows whose columns need more than 16 bits, and columns as long. Teeth are longer than the pixel that is found first.
TEST(FloodShapes, LongRowsAndColumns)
{
    for (const int length : {65536, 65537}) {
        for (const Pattern& pattern : {doubleComb(length, 5), transposed(doubleComb(length, 5))}) {
            Order<Lum8u, 1> order;
            order.eight = length % 2 == 0;
            order.seed = {pattern.width / 2, pattern.height / 2};
            order.newVal = {1};
            const Image<Lum8u> image = imageOf<Lum8u, 1>(Palette::Low, pattern);
            expectFill<Lum8u, 1>(image, order, {Guard::After, 1});
            order.rule = Rule::Grad;
            expectFill<Lum8u, 1>(image, order, {Guard::Before, 3});
        }
    }
}

// Each and every pattern of a few small sizes, from its first, last and middle pixel.
TEST(FloodShapes, EveryPatternOfSmallSizes)
{
    for (const LumiSize size : {LumiSize{13, 1}, {1, 13}, {6, 2}, {2, 6}, {4, 3}, {3, 4}}) {
        const int places = size.width * size.height;
        const auto bytes = [&](Rule rule) {
            return static_cast<std::size_t>(scratchBytes(rule, size.width, size.height));
        };
        const PlacedBlock plainScratch(bytes(Rule::Plain), Guard::After, 1);
        const PlacedBlock gradScratch(bytes(Rule::Grad), Guard::After, 3);
        Image<Lum8u> actual({.width = size.width, .height = size.height});
        LumiConnectedComp region;
        for (unsigned bits = 1; bits < 1u << places; ++bits) {
            const Pattern pattern = patternOfBits(size.width, size.height, bits);
            const Image<Lum8u>& image = actual;
            int first = 0, last = places - 1;
            while (pattern.levels[static_cast<std::size_t>(first)] == 0) {
                ++first;
            }
            while (pattern.levels[static_cast<std::size_t>(last)] == 0) {
                --last;
            }
            const int place = bits % 2 == 0 ? first : last;
            Order<Lum8u, 1> order;
            order.seed = {place % size.width, place / size.width};
            order.newVal = {99};
            for (const bool eight : {false, true}) {
                order.eight = eight;
                for (const Rule rule : {Rule::Plain, Rule::Grad}) {
                    actual.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
                        element = static_cast<Lum8u>(pattern.at(x, y));
                    });
                    ASSERT_EQ((call<Lum8u, 1>(rule, eight, actual.pixels(), actual.step(), size, order.seed, 99, 0, 0,
                                              &region, (rule == Rule::Plain ? plainScratch : gradScratch).data())),
                              lumOk);
                    // the component by repeated growth, as bits
                    unsigned grown = 1u << place;
                    for (unsigned before = 0; before != grown;) {
                        before = grown;
                        for (int i = 0; i < places; ++i) {
                            if ((before >> i & 1) == 0) {
                                continue;
                            }
                            const int x = i % size.width, y = i / size.width;
                            for (int dy = -1; dy <= 1; ++dy) {
                                for (int dx = -1; dx <= 1; ++dx) {
                                    if (pattern.has(x + dx, y + dy) && (eight || dx == 0 || dy == 0)) {
                                        grown |= bits & (1u << ((y + dy) * size.width + x + dx));
                                    }
                                }
                            }
                        }
                    }
                    for (int i = 0; i < places; ++i) {
                        const int expected = (grown >> i & 1) != 0 ? 99 : pattern.levels[static_cast<std::size_t>(i)];
                        ASSERT_EQ(image.at(i % size.width, i / size.width), expected)
                            << pattern << ", " << order << ", " << nameOf(rule) << ": place " << i;
                    }
                    ASSERT_EQ(region.area, __builtin_popcount(grown))
                        << pattern << ", " << order << ", " << nameOf(rule);
                }
            }
        }
        EXPECT_TRUE(plainScratch.intact());
        EXPECT_TRUE(gradScratch.intact());
    }
}

}  // namespace
}  // namespace lumcv::test::flood
