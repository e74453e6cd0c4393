// What the flow is for: motions that are known are found.
#include "pyramid/flow_fixture.hpp"

namespace lumcv::test::flow {
namespace {

std::vector<Point> grid(LumiSize size, int margin, double step)
{
    std::vector<Point> points;
    for (double y = margin; y <= size.height - 1 - margin; y += step) {
        for (double x = margin; x <= size.width - 1 - margin; x += step) {
            points.push_back({static_cast<Lum32f>(x), static_cast<Lum32f>(y)});
        }
    }
    return points;
}

/// How far the points are from where they are expected.
struct Distance
{
    double largest = 0;
    double rootMeanSquare = 0;
};

/// All points must have been followed.
Distance distance(const Operands& operands, double dx, double dy)
{
    Distance result;
    double squares = 0;
    for (int i = 0; i < operands.count(); ++i) {
        EXPECT_EQ(operands[i].status, 0) << "point " << i;
        const double here = std::hypot(operands[i].x - operands.prev.at(2 * i, 0) - dx,
                                       operands[i].y - operands.prev.at(2 * i + 1, 0) - dy);
        result.largest = std::max(result.largest, here);
        squares += here * here;
    }
    result.rootMeanSquare = std::sqrt(squares / operands.count());
    return result;
}

// Between pixels a window is smoothed by its interpolation, by how much is a matter of the fraction: what differs moves
// single points by some hundredths.
void expectWithinAHundredth(const Operands& operands, double dx, double dy)
{
    const bool isWhole = dx == std::round(dx) && dy == std::round(dy);
    const Distance found = distance(operands, dx, dy);
    EXPECT_LT(found.rootMeanSquare, 0.01);
    EXPECT_LT(found.largest, isWhole ? 0.01 : 0.04);
}

// To a hundredth of a pixel, without a pyramid.
TEST(FlowMotionQuick, ShortMotionsAreFoundToAHundredth)
{
    forEachType([]<class T>() {
        constexpr LumiSize size = {96, 80};
        Pyramid<T> first(size);
        first.draw(waves());
        constexpr double motions[][2] = {{0, 0}, {1, 0}, {0, 1}, {-1, -1}, {0.5, 0.25}, {-0.37, 1.8}, {2.2, -2.1}};
        for (const auto& [dx, dy] : motions) {
            SCOPED_TRACE(testing::Message() << "motion " << dx << ", " << dy);
            Pyramid<T> second(size);
            second.draw(waves(dx, dy));
            const Operands operands = follow(first, second, grid(size, 16, 7.3), {21, 0, 20, 0.001f});
            expectWithinAHundredth(operands, dx, dy);
        }
    });
}

// A step is a whole one: the first alone brings a point most of the way, and three bring it there.
TEST(FlowMotion, AWholePixelIsFoundInTheFirstSteps)
{
    forEachType([]<class T>() {
        constexpr LumiSize size = {96, 80};
        Pyramid<T> first(size);
        first.draw(waves());
        for (const auto& [dx, dy] : {Point{1, 0}, Point{0, -1}, Point{1, 1}}) {
            Pyramid<T> second(size);
            second.draw(waves(dx, dy));
            const std::vector<Point> points = grid(size, 16, 6.0);
            EXPECT_LT(distance(follow(first, second, points, {21, 0, 1, 0}), dx, dy).largest, 0.3);
            EXPECT_LT(distance(follow(first, second, points, {21, 0, 2, 0}), dx, dy).largest, 0.04);
            EXPECT_LT(distance(follow(first, second, points, {21, 0, 3, 0}), dx, dy).largest, 0.01);
        }
    });
}

// The coarsest level sees a motion of many pixels as a short one.
TEST(FlowMotion, LongMotionsAreFoundByThePyramid)
{
    forEachType([]<class T>() {
        constexpr LumiSize size = {200, 180};
        for (const double rate : {2.0, 1.5, 3.0}) {
            const int last = rate == 2.0 ? 3 : rate == 1.5 ? 4 : 2;
            Pyramid<T> first(size, last, rate), second(size, last, rate);
            const double dx = 11.3, dy = -8.6;
            first.draw(waves());
            second.draw(waves(dx, dy));
            const std::vector<Point> points = grid(size, 50, 8.7);
            SCOPED_TRACE(testing::Message() << "rate " << rate);
            expectWithinAHundredth(follow(first, second, points, {21, last, 20, 0.002f}), dx, dy);
            const Operands without = follow(first, second, points, {17, 0, 20, 0.002f});
            int astray = 0;
            for (int i = 0; i < without.count(); ++i) {
                astray += std::hypot(without[i].x - without.prev.at(2 * i, 0) - dx,
                                     without[i].y - without.prev.at(2 * i + 1, 0) - dy) > 1;
            }
            EXPECT_GT(astray, without.count() / 2);
        }
    });
}

// The three element types see the same picture, so they find the same motion.
TEST(FlowMotion, TypesAgree)
{
    constexpr LumiSize size = {90, 90};
    const std::vector<Point> points = grid(size, 20, 9.1);
    const Settings settings = {21, 1, 20, 0.001f};
    std::vector<Followed> found[3];
    int type = 0;
    forEachType([&]<class T>() {
        Pyramid<T> first(size, 1), second(size, 1);
        first.draw(waves());
        second.draw(waves(2.4, 1.3));
        const Operands operands = follow(first, second, points, settings);
        for (int i = 0; i < operands.count(); ++i) {
            found[type].push_back(operands[i]);
        }
        ++type;
    });
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(found[0][i].x, found[2][i].x, 0.01);
        EXPECT_NEAR(found[0][i].y, found[2][i].y, 0.01);
        EXPECT_NEAR(found[1][i].x, found[2][i].x, 0.001);
        EXPECT_NEAR(found[1][i].y, found[2][i].y, 0.001);
        // errors are in units of a pixel's value, which are 200 times as large in the 16u picture; what the rounding of
        // the pixels adds is below half a unit
        EXPECT_LT(found[2][i].error, 0.3f);
        EXPECT_NEAR(found[1][i].error, 200 * found[2][i].error, 0.5);
        EXPECT_NEAR(found[0][i].error, found[2][i].error, 0.5);
    }
}

// A sign or an axis that is taken for the other shows where the picture changes faster along the one than the other.
TEST(FlowMotion, AxesAreNotMixedUp)
{
    forEachType([]<class T>() {
        constexpr LumiSize size = {64, 64};
        const auto picture = [](double shiftX, double shiftY) {
            return [=](double x, double y, double) {
                return 128 + 70 * std::sin((x - shiftX) * 0.5) + 40 * std::sin((y - shiftY) * 0.11 + 1);
            };
        };
        for (const auto& [dx, dy] : {Point{0.8f, 0}, Point{-0.8f, 0}, Point{0, 0.8f}, Point{0, -0.8f}}) {
            Pyramid<T> first(size), second(size);
            first.draw(picture(0, 0));
            second.draw(picture(dx, dy));
            const Operands operands = follow(first, second, grid(size, 20, 4.9), {21, 0, 20, 0.0005f});
            EXPECT_LT(distance(operands, dx, dy).largest, 0.05);
        }
    });
}

// At the edges a part of the window is left, and it is enough.
TEST(FlowMotion, PointsAtTheEdgesAreFollowed)
{
    forEachType([]<class T>() {
        constexpr LumiSize size = {90, 70};
        Pyramid<T> first(size), second(size);
        first.draw(waves());
        second.draw(waves(0.6, -0.4));
        std::vector<Point> points = {{0, 0}, {89, 0}, {0, 69}, {89, 69}};
        for (Lum32f x = 5; x < 89; x += 7) {
            points.push_back({x, 0});
            points.push_back({x, 69});
        }
        for (Lum32f y = 5; y < 69; y += 7) {
            points.push_back({0, y});
            points.push_back({89, y});
        }
        // the derivative of the outermost pixels is made of the replicated border and too small
        EXPECT_LT(distance(follow(first, second, points, {21, 0, 30, 0.001f}), 0.6, -0.4).largest, 0.05);
    });
}

}  // namespace
}  // namespace lumcv::test::flow
