// The flow compared with the reference, bit for bit: sizes, windows, levels, and points everywhere.
#include "pyramid/flow_fixture.hpp"

namespace lumcv::test::flow {
namespace {

/// Points on pixels and between them, at the edges, beyond them, and where no number is.
std::vector<Point> drawPoints(LumiSize size, int winSize, int count, Random& random)
{
    const auto coordinate = [&](int side) {
        const auto reach = static_cast<double>(winSize);
        switch (random.between(0, 9)) {
            case 0:
                return static_cast<Lum32f>(random.between(0, side - 1));
            case 1:
                return static_cast<Lum32f>(random.between(0, side - 1)) + 0.5f;
            case 2:
                return random.oneIn(2) ? 0.0f : static_cast<Lum32f>(side - 1);
            case 3:
                return static_cast<Lum32f>(random.between(-winSize, side + winSize)) * 0.5f;
            case 4:
                return static_cast<Lum32f>(random.unit<double>() * (side + 2 * reach) - reach);
            default:
                return static_cast<Lum32f>(random.unit<double>() * side);
        }
    };
    constexpr Lum32f odd[] = {std::numeric_limits<Lum32f>::quiet_NaN(),
                              std::numeric_limits<Lum32f>::infinity(),
                              -std::numeric_limits<Lum32f>::infinity(),
                              std::numeric_limits<Lum32f>::max(),
                              -2147483648.0f,
                              4294967296.0f,
                              -0.0f,
                              1e-9f,
                              -1e-9f,
                              -std::numeric_limits<Lum32f>::denorm_min()};
    std::vector<Point> points;
    for (int i = 0; i < count; ++i) {
        points.push_back({coordinate(size.width), coordinate(size.height)});
        if (random.oneIn(25)) {
            (random.oneIn(2) ? points.back().x : points.back().y) = odd[random.between(0, 9)];
        }
    }
    return points;
}

struct Case
{
    LumiSize size;
    int winSize;
    int maxLev = 0;
    double rate = 2.0;
};

template <class T>
void compare(const Case& c, int seed, int count, Ways& ways)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", " << c.size.width << " x " << c.size.height << ", window "
                                    << c.winSize << ", levels to " << c.maxLev << ", rate " << c.rate);
    constexpr int iterations[] = {1, 2, 3, 5, 10, 30};
    constexpr Lum32f thresholds[] = {0.0f, 0.0f, 0.001f, 0.01f, 0.3f};
    Random random(static_cast<std::uint64_t>(seed));
    const Settings settings = {c.winSize, c.maxLev, iterations[random.between(0, 5)], thresholds[random.between(0, 4)]};
    Pyramid<T> first(c.size, c.maxLev + (seed & 1), c.rate, seed), second(c.size, c.maxLev, c.rate, seed / 2);
    switch (seed % 4) {
        case 0:
        case 1: {
            // the same picture, hardly moved, a little, or not so little
            const double reach = seed % 16 == 1 ? 0.0005 : seed % 8 < 2 ? 0.4 : 3.0 * std::pow(c.rate, c.maxLev);
            const double dx = (random.unit<double>() - 0.5) * reach, dy = (random.unit<double>() - 0.5) * reach;
            first.draw(waves());
            second.draw(waves(dx, dy));
            break;
        }
        case 2:
            first.noise(random, Values::Ordinary);
            second.noise(random, Values::Ordinary);
            break;
        default:
            first.noise(random, Values::Extreme);
            second.noise(random, Values::Extreme);
            break;
    }
    const std::vector<Point> points = drawPoints(c.size, c.winSize, count, random);
    const Operands operands = follow(first, second, points, settings);
    expectReference<T>(first.record(), second.record(), operands, settings, ways);
}

/// Sizes that are smaller than a vector, a window, or a pixel's neighbourhood, and ordinary ones.
std::vector<Case> cases()
{
    std::vector<Case> result = {
        {{1, 1}, 1},        {{2, 1}, 1},           {{1, 2}, 2},
        {{3, 3}, 1},        {{5, 4}, 3},           {{40, 1}, 5},
        {{1, 40}, 5},       {{40, 2}, 4},          {{2, 40}, 4},
        {{7, 9}, 21},       {{33, 29}, 3, 1},      {{64, 48}, 5, 2},
        {{65, 50}, 9, 3},   {{50, 70}, 8, 3},      {{97, 83}, 15, 2, 1.5},
        {{120, 90}, 21, 3}, {{128, 31}, 10, 1, 3}, {{61, 67}, 7, 9},
        {{200, 20}, 31, 1}, {{300, 90}, 63, 1},    {{90, 300}, 45, 2, 2.5},
    };
    // every number of lanes and what is left of them
    for (int winSize = 1; winSize <= 36; ++winSize) {
        result.push_back({{45 + winSize, 80 - winSize}, winSize, winSize % 3});
    }
    return result;
}

TEST(Flow, AgreesWithTheReference)
{
    forEachType([]<class T>() {
        Ways ways;
        int seed = 0;
        for (const Case& c : cases()) {
            for (int i = 0; i < 4 && !testing::Test::HasFailure(); ++i) {
                const long samples = static_cast<long>(c.winSize + 2) * (c.winSize + 2);
                compare<T>(c, seed++, samples > 600 ? 6 : 24, ways);
            }
        }
        // the sweep has been everywhere
        EXPECT_GT(ways.followed, 900);
        EXPECT_GT(ways.lostOutside, 400);
        EXPECT_GT(ways.lostFlat, 50);
        EXPECT_GT(ways.shortSteps, 500);
        EXPECT_GT(ways.swings, 200);
        EXPECT_GT(ways.firstSwings, 10);
        EXPECT_GT(ways.allIterations, 500);
        EXPECT_GT(ways.clipped, 900);
        EXPECT_GT(ways.areaChanges, 400);
    });
}

TEST(FlowQuick, AgreesWithTheReference)
{
    forEachType([]<class T>() {
        Ways ways;
        int seed = 100;
        for (const Case& c : {Case{{47, 39}, 9, 2}, Case{{30, 50}, 6}, Case{{1, 3}, 2}}) {
            for (int i = 0; i < 4; ++i) {
                compare<T>(c, seed++, 12, ways);
            }
        }
        EXPECT_GT(ways.followed, 20);
    });
}

// Pixels that are no numbers or infinite lose the points whose windows meet them, or send them there: in the same way
// in every lane.
TEST(Flow, AgreesWithTheReferenceOnPixelsThatAreNoNumbers)
{
    Ways ways;
    for (int seed = 0; seed < 24; ++seed) {
        Random random(static_cast<std::uint64_t>(seed) + 7000);
        const Settings settings = {1 + seed % 12, 1, 1 + seed % 3, 0.01f};
        Pyramid<Lum32f> first({40, 37}, 1, 2.0, seed), second({40, 37}, 1, 2.0, seed + 1);
        first.draw(waves());
        second.draw(waves(0.4, -0.3));
        constexpr Lum32f odd[] = {std::numeric_limits<Lum32f>::quiet_NaN(), std::numeric_limits<Lum32f>::infinity(),
                                  -std::numeric_limits<Lum32f>::infinity(), std::numeric_limits<Lum32f>::max()};
        for (int i = 0; i < 6; ++i) {
            Image<Lum32f>& image = (seed % 2 == 0 ? first : second).level(static_cast<int>(random.between(0, 1)));
            image.at(static_cast<int>(random.between(0, image.width() - 1)),
                     static_cast<int>(random.between(0, image.height() - 1))) = odd[random.between(0, 3)];
        }
        const std::vector<Point> points = drawPoints({40, 37}, settings.winSize, 40, random);
        const Operands operands = follow(first, second, points, settings);
        expectReference<Lum32f>(first.record(), second.record(), operands, settings, ways);
    }
    EXPECT_GT(ways.followed, 100);
    EXPECT_GT(ways.lostFlat, 100);
}

// The second pyramid has sizes of its own, larger or smaller than those of the first; the scales are the first one's.
TEST(Flow, PyramidsOfDifferentSizes)
{
    forEachType([]<class T>() {
        Ways ways;
        for (int seed = 0; seed < 6; ++seed) {
            Random random(static_cast<std::uint64_t>(seed) + 300);
            const LumiSize sizes[] = {{70, 40}, {30, 60}, {75, 75}, {9, 41}, {70, 39}, {130, 8}};
            Pyramid<T> first({70, 40}, 2, 2.0, seed), second(sizes[seed], 2, seed == 5 ? 1.3 : 2.0, seed + 1);
            first.draw(waves());
            second.draw(waves(1.5, -0.5));
            const Settings settings = {6 + seed, 2, 8, 0.01f};
            const std::vector<Point> points = drawPoints({70, 40}, settings.winSize, 30, random);
            const Operands operands = follow(first, second, points, settings);
            expectReference<T>(first.record(), second.record(), operands, settings, ways);
        }
        EXPECT_GT(ways.followed, 20);
    });
}

// Weights whose rounding is a tie, or leaves nothing or less than nothing for the fourth of them.
TEST(Flow, FractionsAtTheEndsOfTheirRange)
{
    forEachType([]<class T>() {
        Ways ways;
        std::vector<Point> points;
        for (const Lum32f x : {0x1p-15f, 0x1.8p-15f, 0x1p-14f, 1 - 0x1p-24f, 1 - 0x1p-15f, 0x1p-20f, 0.0f, 0.5f}) {
            for (const Lum32f y : {0x1.000002p-15f, 0x1p-25f, 1 - 0x1p-16f, 0.0f, 0x1.4p-14f}) {
                points.push_back({20 + x, 1 + y});  // near 0 all fractions can be told
                points.push_back({x, 20 + y});
            }
        }
        Random random(5);
        Pyramid<T> first({41, 39}), second({41, 39});
        first.noise(random, Values::Extreme);
        second.noise(random, Values::Extreme);
        for (const int winSize : {1, 4}) {
            const Settings settings = {winSize, 0, 1, 0};
            const Operands operands = follow(first, second, points, settings);
            expectReference<T>(first.record(), second.record(), operands, settings, ways);
        }
        EXPECT_GT(ways.followed, 30);
    });
}

// A contrast so low that the determinant comes near the limit, from one side and from the other.
TEST(Flow, DeterminantsNearTheLimit)
{
    Ways ways;
    Pyramid<Lum32f> first({30, 30}), second({30, 30});
    for (double contrast = 4e-7; contrast < 2e-4; contrast *= 1.03) {
        const auto faint = [=](double shift) {
            return [=](double x, double y, double pixel) { return contrast * (waves(shift, 0)(x, y, pixel) - 128); };
        };
        first.draw(faint(0));
        second.draw(faint(0.2));
        const Settings settings = {3, 0, 2, 0};
        const Operands operands = follow(first, second, {{11, 12}, {15.5f, 16.25f}, {18.7f, 9}}, settings);
        expectReference<Lum32f>(first.record(), second.record(), operands, settings, ways);
    }
    EXPECT_GT(ways.followed, 50);
    EXPECT_GT(ways.lostFlat, 50);
}

// Windows of hundreds of rows or columns, in images that hold a strip of them.
TEST(Flow, LongStrips)
{
    forEachType([]<class T>() {
        Ways ways;
        for (const LumiSize size : {LumiSize{6, 1100}, LumiSize{1100, 6}}) {
            Pyramid<T> first(size), second(size);
            const Values values = std::floating_point<T> ? Values::Ordinary : Values::Extreme;
            Random random(9);
            first.noise(random, values);
            second.noise(random, values);
            for (const int winSize : {510, 511, 1060}) {
                const Settings settings = {winSize, 0, 2, 0};
                const auto x = static_cast<Lum32f>(size.width), y = static_cast<Lum32f>(size.height);
                const Operands operands = follow(first, second, {{x * 0.5f, y * 0.5f + 0.3f}}, settings);
                expectReference<T>(first.record(), second.record(), operands, settings, ways);
            }
        }
        EXPECT_GT(ways.allIterations, 2);
    });
}

// Two large differences cancel where the first picture repeats itself; what is left of the small ones tells the order
// of the additions.
TEST(Flow, TheOrderOfTheSums)
{
    Ways ways;
    constexpr Lum32f large = 0x1p70f;
    for (int period = 3; period <= 7; ++period) {
        for (const bool alongX : {false, true}) {
            Pyramid<Lum32f> first({40, 40}), second({40, 40});
            Random random(static_cast<std::uint64_t>(period));
            fill(first.level(0), random);
            first.level(0).forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
                element = alongX && x >= period    ? first.level(0).at(x - period, y)
                          : !alongX && y >= period ? first.level(0).at(x, y - period)
                                                   : element;
            });
            fill(second.level(0), random);
            for (int place = 14; place < 19; ++place) {
                second.level(0).at(place, place) = large;
                second.level(0).at(place + (alongX ? period : 0), place + (alongX ? 0 : period)) = -large;
            }
            const Settings settings = {14, 0, 1, 0};
            const Operands operands = follow(first, second, {{20.5f, 20.5f}, {19.5f, 18.5f}, {17.5f, 20.5f}}, settings);
            expectReference<Lum32f>(first.record(), second.record(), operands, settings, ways);
        }
    }
    EXPECT_EQ(ways.followed, 30);
}

}  // namespace
}  // namespace lumcv::test::flow
