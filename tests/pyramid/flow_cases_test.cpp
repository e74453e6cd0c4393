// Single cases of the flow by name: lost points, areas at the edges, the end of the iteration, the error.
#include "pyramid/flow_fixture.hpp"

namespace lumcv::test::flow {
namespace {

constexpr double kFlat = 77;

Followed followOne(auto& first, auto& second, Point point, const Settings& settings)
{
    return follow(first, second, {point}, settings)[0];
}

template <class T>
constexpr Lum32f unit = std::is_same_v<T, Lum16u> ? 200.0f : 1.0f;

TEST(FlowCasesQuick, AFollowedPointHasStatusZero)
{
    forEachType([]<class T>() {
        for (const int maxLev : {0, 1, 3}) {
            Pyramid<T> first({96, 96}, maxLev), second({96, 96}, maxLev);
            first.draw(waves());
            second.draw(waves(0.5, 0.5));
            EXPECT_EQ(followOne(first, second, {40, 41}, {9, maxLev}).status, 0);
        }
    });
}

TEST(FlowCasesQuick, AFlatWindowLosesThePointOnTheFirstLevel)
{
    forEachType([]<class T>() {
        for (const int maxLev : {0, 1, 3}) {
            Pyramid<T> first({96, 96}, maxLev), second({96, 96}, maxLev);
            first.draw([](double, double, double) { return kFlat; });
            second.draw(waves());
            const Followed lost = followOne(first, second, {40, 42}, {9, maxLev});
            EXPECT_EQ(lost.status, maxLev + 1);
            EXPECT_EQ(lost.x, 40.0f);
            EXPECT_EQ(lost.y, 42.0f);
            EXPECT_EQ(lost.error, 0.0f);
        }
    });
}

// A picture that changes in one direction only says nothing of the motion across it.
TEST(FlowCases, StraightEdgesLoseThePoint)
{
    forEachType([]<class T>() {
        for (const bool alongX : {false, true}) {
            Pyramid<T> first({60, 60}), second({60, 60});
            first.draw([=](double x, double y, double) { return alongX ? 4 * x : 4 * y; });
            second.draw([=](double x, double y, double) { return alongX ? 4 * x : 4 * y; });
            const Followed lost = followOne(first, second, {30, 31}, {9, 0});
            EXPECT_EQ(lost.status, 1);
            EXPECT_EQ(lost.x, 30.0f);
            EXPECT_EQ(lost.y, 31.0f);
        }
    });
}

// A flat second image loses no point by itself: the matrix is the first one's.
TEST(FlowCases, AFlatSecondImageIsNotFlatInTheFirst)
{
    forEachType([]<class T>() {
        Pyramid<T> first({60, 60}), second({60, 60});
        first.draw(waves());
        second.draw([](double, double, double) { return kFlat; });
        const Settings settings = {9, 0, 1, 0};
        EXPECT_EQ(followOne(first, second, {30, 31}, settings).status, 0);
        EXPECT_EQ(followOne(second, first, {30, 31}, settings).status, 1);
    });
}

// Lost on a level below the first: the status tells the level, the position is that of level 0, and the error that of
// the level before.
TEST(FlowCases, LostOnAFinerLevel)
{
    forEachType([]<class T>() {
        for (const int flatLevel : {0, 1, 2}) {
            Pyramid<T> first({128, 128}, 3), second({128, 128}, 3);
            first.draw(waves());
            second.draw(waves(3, 2));
            first.level(flatLevel).forEach(Area::Roi, [](T& element, int, int, int) { element = T{50}; });
            Ways ways;
            const Settings settings = {9, 3, 10, 0.01f};
            const Operands operands = follow(first, second, {{60, 61}, {61.5f, 59.25f}}, settings);
            expectReference<T>(first.record(), second.record(), operands, settings, ways);
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(operands[i].status, flatLevel + 1);
                EXPECT_NEAR(operands[i].x, operands.prev.at(2 * i, 0) + 3, 0.5);
                EXPECT_NEAR(operands[i].y, operands.prev.at(2 * i + 1, 0) + 2, 0.5);
                EXPECT_GT(operands[i].error, 0.0f);
            }
            // the levels above, followed for themselves, end with this error
            Pyramid<T> top({128, 128}, 3), topSecond({128, 128}, 3);
            top.draw(waves());
            topSecond.draw(waves(3, 2));
            for (int l = 0; l < flatLevel; ++l) {
                top.level(l).forEach(Area::Roi, [](T& element, int, int, int) { element = T{90}; });
            }
            top.level(flatLevel).forEach(Area::Roi, [](T& element, int, int, int) { element = T{3}; });
            const Operands again = follow(top, topSecond, {{60, 61}, {61.5f, 59.25f}}, settings);
            EXPECT_TRUE(sameFollowed(again[0], operands[0]));
            EXPECT_TRUE(sameFollowed(again[1], operands[1]));
        }
    });
}

TEST(FlowCases, PointsOutsideAreLostOnTheFirstLevel)
{
    forEachType([]<class T>() {
        Pyramid<T> first({64, 64}, 1), second({64, 64}, 1);
        first.draw(waves());
        second.draw(waves());
        // the window reaches 5 pixels of level 1 from its point
        const std::vector<Point> points = {{-11, 30},   {30, -11},   {73, 30},    {30, 73},
                                           {-1e6f, 30}, {30, 1e10f}, {30, 1e30f}, {-1e38f, -1e38f}};
        const Operands operands = follow(first, second, points, {9, 1});
        for (int i = 0; i < operands.count(); ++i) {
            const Point& point = points[static_cast<std::size_t>(i)];
            EXPECT_EQ(operands[i].status, 2) << "point " << i;
            EXPECT_EQ(operands[i].x, point.x);
            EXPECT_EQ(operands[i].y, point.y);
            EXPECT_EQ(operands[i].error, 0.0f);
        }
    });
}

TEST(FlowCases, PointsThatAreNoNumbersAreLost)
{
    forEachType([]<class T>() {
        constexpr Lum32f nan = std::numeric_limits<Lum32f>::quiet_NaN();
        constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
        Pyramid<T> first({64, 64}, 2), second({64, 64}, 2);
        first.draw(waves());
        second.draw(waves());
        const Operands operands =
            follow(first, second, {{nan, 30}, {30, nan}, {infinity, 30}, {30, -infinity}, {30, 30}}, {9, 2});
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(operands[i].status, 3);
        }
        EXPECT_TRUE(std::isnan(operands[0].x));
        EXPECT_EQ(operands[0].y, 30.0f);
        EXPECT_EQ(operands[2].x, infinity);
        EXPECT_EQ(operands[4].status, 0);
    });
}

// In a first image that differs from the second in nothing but its right part, a point of the left edge reaches that
// part at the earliest with its derivatives.
TEST(FlowCases, APointOnTheEdgeSeesOnlyItsWindow)
{
    forEachType([]<class T>() {
        constexpr int winSize = 9;  // samples from -5 to 5; the derivative reaches one pixel further
        for (const int changed : {6, 7}) {
            Pyramid<T> first({40, 40}), other({40, 40}), second({40, 40});
            first.draw(waves());
            other.draw(waves());
            second.draw(waves(0.3, 0.2));
            other.level(0).forEach(Area::Roi, [=](T& element, int x, int, int) {
                element = x >= changed ? static_cast<T>(element / 2) : element;
            });
            const Settings settings = {winSize, 0, 5, 0.01f};
            const Followed before = followOne(first, second, {0, 20}, settings);
            const Followed after = followOne(other, second, {0, 20}, settings);
            EXPECT_EQ(before.status, 0);
            EXPECT_EQ(sameFollowed(before, after), changed == 7) << "changed from column " << changed;
        }
    });
}

// One pixel that another image has on the edge of the window decides; one beyond it does not.
TEST(FlowCases, TheWindowHasTwoSamplesMoreThanItsSize)
{
    forEachType([]<class T>() {
        for (const int winSize : {1, 2, 8, 9}) {
            // an even size has its corner between pixels
            const Lum32f middle = winSize % 2 == 0 ? 20.5f : 20.0f;
            const int first = static_cast<int>(middle - static_cast<Lum32f>(winSize + 1) * 0.5f);
            const int last = first + winSize + 1;
            for (const auto& [place, decides] : {std::pair{first - 1, false}, std::pair{first, true},
                                                 std::pair{last, true}, std::pair{last + 1, false}}) {
                for (const bool alongX : {false, true}) {
                    Pyramid<T> pyramid({41, 41}), same({41, 41}), changed({41, 41});
                    pyramid.draw(waves());
                    same.draw(waves());
                    changed.draw(waves());
                    const int x = alongX ? place : 20, y = alongX ? 20 : place;
                    changed.level(0).at(x, y) = static_cast<T>(changed.level(0).at(x, y) / 2);
                    const Settings settings = {winSize, 0, 1, 0};
                    const Followed before = followOne(pyramid, same, {middle, middle}, settings);
                    const Followed after = followOne(pyramid, changed, {middle, middle}, settings);
                    EXPECT_EQ(before.error, 0.0f);
                    EXPECT_EQ(after.error > 0, decides) << "window " << winSize << ", x " << x << ", y " << y;
                }
            }
        }
    });
}

// The second image's window leaves the image on its way; then the area is what both have.
TEST(FlowCases, AWindowThatLeavesTheSecondImageIsLost)
{
    forEachType([]<class T>() {
        Pyramid<T> first({60, 60}), second({30, 60});
        first.draw(waves());
        second.draw(waves());
        const Operands operands = follow(first, second, {{50, 30}, {36, 30}, {34, 30}, {20, 30}}, {9, 0, 1, 0});
        const int expected[] = {1, 1, 0, 0};
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(operands[i].status, expected[i]) << "point " << i;
        }
    });
}

TEST(FlowCases, LostPointsDoNotDisturbTheOthers)
{
    forEachType([]<class T>() {
        Pyramid<T> first({90, 80}, 2), second({90, 80}, 2);
        first.draw(waves());
        second.draw(waves(1.7, -2.3));
        const Settings settings = {9, 2};
        std::vector<Point> points, mixed;
        for (int i = 0; i < 12; ++i) {
            const auto number = static_cast<Lum32f>(i);
            points.push_back({20 + 4.3f * number, 60 - 3.1f * number});
            mixed.push_back({-500 - number, 20});
            mixed.push_back(points.back());
            mixed.push_back({std::numeric_limits<Lum32f>::quiet_NaN(), number});
        }
        const Operands alone = follow(first, second, points, settings);
        const Operands together = follow(first, second, mixed, settings);
        for (int i = 0; i < alone.count(); ++i) {
            EXPECT_EQ(alone[i].status, 0);
            EXPECT_TRUE(sameFollowed(alone[i], together[3 * i + 1])) << "point " << i;
        }
    });
}

TEST(FlowCases, WhatTheResultsHoldBeforeIsNotUsed)
{
    forEachType([]<class T>() {
        Pyramid<T> first({80, 80}, 1), second({80, 80}, 1);
        first.draw(waves());
        second.draw(waves(1, 1));
        const Settings settings = {9, 1};
        const State<T> state({80, 80}, 9);
        std::vector<Followed> found;
        for (const Lum32f before : {0.0f, -1e9f, std::numeric_limits<Lum32f>::quiet_NaN(), 60.0f}) {
            Operands operands({{40, 40}, {-99, 3}});
            for (int i = 0; i < 4; ++i) {
                operands.next.at(i, 0) = before;
            }
            for (int i = 0; i < 2; ++i) {
                operands.status.at(i, 0) = static_cast<Lum8s>(before == 60.0f ? -1 : 0);
                operands.error.at(i, 0) = before;
            }
            EXPECT_EQ(applyFlow<T>(first.record(), second.record(), operands, settings, state.get()), lumOk);
            found.push_back(operands[0]);
            found.push_back(operands[1]);
        }
        EXPECT_EQ(found[0].status, 0);
        EXPECT_EQ(found[1].status, 2);
        EXPECT_EQ(found[1].error, 0.0f);
        for (std::size_t i = 2; i < found.size(); ++i) {
            EXPECT_TRUE(sameFollowed(found[i], found[i % 2]));
        }
    });
}

// Each level's limit of iterations is its own, and a large threshold ends a level with its first step.
TEST(FlowCases, ThresholdAndNumberOfIterationsEndALevel)
{
    forEachType([]<class T>() {
        Pyramid<T> first({90, 80}, 1), second({90, 80}, 1);
        first.draw(waves());
        second.draw(waves(2.7, -2.3));
        const auto at = [&](int maxIter, Lum32f threshold) {
            return followOne(first, second, {40, 41}, {11, 1, maxIter, threshold});
        };
        EXPECT_TRUE(sameFollowed(at(1, 0), at(50, 1e9f)));
        EXPECT_FALSE(sameFollowed(at(1, 0), at(2, 0)));
        EXPECT_FALSE(sameFollowed(at(2, 0), at(3, 0)));
        EXPECT_TRUE(sameFollowed(at(100, 0.5f), at(2147483647, 0.5f)));
        EXPECT_FALSE(sameFollowed(at(100, 0.5f), at(100, 0.0005f)));
    });
}

// The threshold is compared with the length of the step, not with its parts.
TEST(FlowCases, TheThresholdIsOnTheLengthOfTheStep)
{
    Pyramid<Lum32f> first({64, 64}), second({64, 64});
    first.draw(waves());
    second.draw(waves(1.0, 1.0));
    const Followed one = followOne(first, second, {30, 31}, {11, 0, 1, 0});
    const double length = std::hypot(static_cast<double>(one.x) - 30, static_cast<double>(one.y) - 31);
    const auto ended = [&](double threshold) {
        return sameFollowed(one, followOne(first, second, {30, 31}, {11, 0, 2, static_cast<Lum32f>(threshold)}));
    };
    EXPECT_TRUE(ended(length * 1.001));
    EXPECT_FALSE(ended(length * 0.999));
}

// A step of exactly half a pixel: in a bowl whose second picture differs by half its slope.
TEST(FlowCases, AStepOfTheThresholdIsNotBelowIt)
{
    Pyramid<Lum32f> first({41, 41}), second({41, 41});
    first.draw([](double x, double y, double) { return (x - 20) * (x - 20) + (y - 20) * (y - 20); });
    second.draw([](double x, double y, double) { return (x - 20) * (x - 20) + (y - 20) * (y - 20) - (x - 20); });
    const Followed one = followOne(first, second, {20, 20}, {9, 0, 1, 0});
    EXPECT_EQ(one.x, 20.5f);
    EXPECT_EQ(one.y, 20.0f);
    const auto ended = [&](Lum32f threshold) {
        return sameFollowed(one, followOne(first, second, {20, 20}, {9, 0, 2, threshold}));
    };
    EXPECT_FALSE(ended(0.5f));
    EXPECT_TRUE(ended(std::nextafter(0.5f, 1.0f)));
}

// A motion shorter than the root of the single-precision epsilon: the first step goes half back, unless the threshold
// has ended the level before.
TEST(FlowCases, AShortFirstStepGoesHalfBack)
{
    constexpr double motion = 0.0002;
    Pyramid<Lum32f> first({32, 32}), second({32, 32});
    const auto picture = [](double dx) {
        return [=](double x, double y, double) {
            return 1000 * std::sin((x - 16 - dx) * 0.2) + 700 * std::cos((y - 16) * 0.3 + 0.4);
        };
    };
    first.draw(picture(0));
    second.draw(picture(motion));
    const Settings half = {9, 0, 10, 0}, whole = {9, 0, 10, 0.001f};
    const double swung = followOne(first, second, {16, 16}, half).x - 16.0;
    const double stepped = followOne(first, second, {16, 16}, whole).x - 16.0;
    EXPECT_NEAR(stepped, motion, 0.1 * motion);
    EXPECT_NEAR(swung, motion / 2, 0.1 * motion);
}

// The error is that of the last window looked at, which is where the point was before its last step.
TEST(FlowCases, TheErrorIsTheRootMeanSquareBeforeTheLastStep)
{
    forEachType([]<class T>() {
        Pyramid<T> first({40, 40}), second({40, 40});
        first.draw(waves());
        second.draw([](double x, double y, double pixel) { return waves()(x, y, pixel) + 3; });
        // three gray levels everywhere, give or take the rounding of the pictures
        EXPECT_NEAR(followOne(first, second, {20, 20}, {9, 0, 1, 0}).error, 3.0f * unit<T>, 1e-3f * unit<T>);
        EXPECT_EQ(followOne(first, first, {20, 20}, {9, 0, 1, 0}).error, 0.0f);

        // one sample of 121 that differs by 11
        Pyramid<T> spot({40, 40}), plain({40, 40});
        plain.draw(waves());
        spot.draw(waves());
        spot.level(0).at(18, 23) = static_cast<T>(spot.level(0).at(18, 23) + T{11});
        EXPECT_EQ(followOne(plain, spot, {20, 20}, {9, 0, 1, 0}).error, 1.0f);
    });
}

// The mean is over the area that is left, not over the window: a corner of 6 x 6 samples that differ by 2.
TEST(FlowCases, TheErrorOfAClippedWindow)
{
    forEachType([]<class T>() {
        Pyramid<T> first({40, 40}), second({40, 40});
        first.draw(waves());
        second.draw(waves());
        second.level(0).forEach(Area::Roi, [](T& element, int, int, int) { element = static_cast<T>(element + T{2}); });
        EXPECT_EQ(followOne(first, second, {0, 0}, {9, 0, 1, 0}).error, 2.0f);
        EXPECT_EQ(followOne(first, second, {39, 39}, {9, 0, 1, 0}).error, 2.0f);
    });
}

// The scales of the first pyramid decide where a level's pixels lie; those of the second are not looked at.
TEST(FlowCases, TheScalesAreThoseOfTheFirstPyramid)
{
    forEachType([]<class T>() {
        Pyramid<T> first({90, 80}, 1), second({90, 80}, 1);
        first.draw(waves());
        second.draw(waves(1.2, 0.7));
        const Settings settings = {9, 1};
        const Followed expected = followOne(first, second, {40, 41}, settings);
        Lum64f other[] = {0.125, 77};
        LumiPyramidRecord changed = second.record();
        changed.pLayerScales = other;
        const State<T> state({90, 80}, 9);
        Operands operands({{40, 41}});
        EXPECT_EQ(applyFlow<T>(first.record(), changed, operands, settings, state.get()), lumOk);
        EXPECT_EQ(expected.status, 0);
        EXPECT_TRUE(sameFollowed(expected, operands[0]));
    });
}

// Sums of large numbers: 255 against 0 in every pixel of a large window fits.
TEST(FlowCases, LargeWindowsOfExtremesDoNotOverflow)
{
    forEachType([]<class T>() {
        Pyramid<T> first({150, 140}), second({150, 140});
        const T top = std::is_same_v<T, Lum32f> ? T{255} : std::numeric_limits<T>::max();
        first.level(0).forEach(Area::Roi, [=](T& e, int x, int y, int) { e = (x / 3 + y / 5) % 2 == 0 ? top : T{0}; });
        second.level(0).forEach(Area::Roi, [=](T& e, int x, int y, int) { e = (x / 3 + y / 5) % 2 == 0 ? T{0} : top; });
        Ways ways;
        for (const int winSize : {99, 130}) {
            const Settings settings = {winSize, 0, 2, 0};
            const Operands operands = follow(first, second, {{75, 70}, {60.3f, 75.6f}}, settings);
            expectReference<T>(first.record(), second.record(), operands, settings, ways);
        }
        EXPECT_GT(ways.followed, 0);
    });
}

}  // namespace
}  // namespace lumcv::test::flow
