// The memory that the flow may touch: states of exactly their size at any address, images against unreadable pages, and
// nothing that outlives a call.
#include <cstring>
#include <memory>

#include "pyramid/flow_fixture.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::flow {
namespace {

std::vector<Point> somePoints(LumiSize size, int count)
{
    Random random(static_cast<std::uint64_t>(size.width * 31 + size.height));
    std::vector<Point> points = {{0, 0}, {static_cast<Lum32f>(size.width - 1), static_cast<Lum32f>(size.height - 1)}};
    while (static_cast<int>(points.size()) < count) {
        points.push_back({static_cast<Lum32f>(random.unit<double>() * size.width),
                          static_cast<Lum32f>(random.unit<double>() * size.height)});
    }
    return points;
}

// Sizes for which the formula leaves the scratch little room; each block at some address of every alignment, with the
// unreadable page behind it and in front of it.
TEST(FlowMemory, AStateOfItsSizeDoesAtAnyAddress)
{
    forEachType([]<class T>() {
        struct Case
        {
            LumiSize size;
            int winSize;
            int maxLev;
        };
        Ways ways;
        std::size_t number = 0;
        for (const Case& c :
             {Case{{1, 1}, 1, 0}, Case{{2, 2}, 1, 1}, Case{{3, 1}, 2, 0}, Case{{1, 3}, 3, 1}, Case{{500, 1}, 1, 3},
              Case{{1, 500}, 1, 3}, Case{{1, 1}, 60, 0}, Case{{9, 8}, 40, 2}, Case{{64, 33}, 1, 6},
              Case{{63, 65}, 2, 1}, Case{{47, 30}, 9, 2}, Case{{33, 64}, 5, 6}, Case{{61, 59}, 13, 1},
              Case{{16, 16}, 2, 0}, Case{{31, 32}, 4, 5}, Case{{200, 3}, 7, 7}, Case{{3, 200}, 6, 30}}) {
            SCOPED_TRACE(testing::Message() << c.size.width << " x " << c.size.height << ", window " << c.winSize);
            Pyramid<T> first(c.size, c.maxLev), second(c.size, c.maxLev);
            first.draw(waves());
            second.draw(waves(0.3, -0.2));
            const Settings settings = {c.winSize, c.maxLev, 3, 0};
            const std::vector<Point> points = somePoints(c.size, 5);
            for (int i = 0; i < 12; ++i, ++number) {
                const State<T> state(c.size, c.winSize, i % 2 == 0 ? Guard::After : Guard::Before,
                                     i == 0 || i == 1 ? 0 : (number * 29) % 64);
                Operands operands(points);
                ASSERT_EQ(applyFlow<T>(first.record(), second.record(), operands, settings, state.get()), lumOk);
                ASSERT_TRUE(state.intact());
                if (i % 4 == 0) {
                    expectReference<T>(first.record(), second.record(), operands, settings, ways);
                }
            }
        }
        EXPECT_GT(ways.followed, 20);
    });
}

// Each row of each level stands alone between unreadable pages, behind its end or in front of its begin; all of it
// cannot be written.
TEST(FlowMemory, NothingOutsideTheRowsIsTouched)
{
    forEachType([]<class T>() {
        Ways ways;
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const LumiSize size : {LumiSize{61, 37}, LumiSize{32, 40}, LumiSize{19, 5}, LumiSize{2, 7}}) {
                std::vector<std::unique_ptr<IsolatedRows<T>>> images;
                std::vector<void*> layers[2];
                std::vector<Lum32s> steps[2];
                std::vector<LumiSize> sizes = {size, {(size.width + 1) / 2, (size.height + 1) / 2}};
                std::vector<Lum64f> scales = {1.0, 0.5};
                Pyramid<T> pictures[2] = {{sizes[0]}, {sizes[1]}};
                for (int i = 0; i < 2; ++i) {
                    for (std::size_t l = 0; l < 2; ++l) {
                        const double pixel = l == 0 ? 1 : 2;
                        pictures[l].draw([&](double x, double y, double) {
                            return waves(i * 0.7, i * -0.4)(x * pixel, y * pixel, pixel);
                        });
                        Layout layout;
                        layout.width = sizes[l].width;
                        layout.height = sizes[l].height;
                        layout.guard = guard;
                        images.push_back(std::make_unique<IsolatedRows<T>>(layout));
                        images.back()->forEach(
                            [&](T& element, int x, int y, int) { element = pictures[l].level(0).at(x, y); });
                        images.back()->makeReadOnly();
                        layers[i].push_back(images.back()->pixels());
                        steps[i].push_back(images.back()->step());
                    }
                }
                const LumiPyramidRecord first = {layers[0].data(), sizes.data(), scales.data(),
                                                 steps[0].data(),  nullptr,      1};
                const LumiPyramidRecord second = {layers[1].data(), sizes.data(), scales.data(),
                                                  steps[1].data(),  nullptr,      1};
                std::vector<Point> points = somePoints(size, 20);
                for (Point& point : points) {
                    // every second one on a pixel, where no neighbour is needed
                    if (points.size() % 2 == 0 && (&point - points.data()) % 2 == 0) {
                        point = {std::floor(point.x), std::floor(point.y)};
                    }
                }
                for (const int winSize : {1, 5, 14}) {
                    const Settings settings = {winSize, 1, 6, 0};
                    const State<T> state(size, winSize);
                    Operands operands(points);
                    ASSERT_EQ(applyFlow<T>(first, second, operands, settings, state.get()), lumOk);
                    expectReference<T>(first, second, operands, settings, ways);
                }
            }
        }
        EXPECT_GT(ways.followed, 50);
        EXPECT_GT(ways.clipped, 50);
    });
}

// Rows that end in the middle of a page, gaps with a pattern: neither images nor records nor points are written.
TEST(FlowMemoryQuick, OperandsAreOnlyRead)
{
    forEachType([]<class T>() {
        Pyramid<T> first({50, 40}, 2, 2.0, 1), second({50, 40}, 2, 2.0, 2);
        first.draw(waves());
        second.draw(waves(1, 0.5));
        std::vector<Image<T>> images;
        for (int l = 0; l < 3; ++l) {
            images.push_back(first.level(l));
            images.push_back(second.level(l));
        }
        const LumiPyramidRecord records[] = {first.record(), second.record()};
        LumiPyramidRecord before[2];  // byte for byte, also between the members
        std::memcpy(before, records, sizeof records);
        const std::vector<Point> points = somePoints({50, 40}, 9);
        Operands operands(points);
        const State<T> state({50, 40}, 7);
        EXPECT_EQ(applyFlow<T>(records[0], records[1], operands, {7, 2}, state.get()), lumOk);
        EXPECT_TRUE(first.gapsIntact());
        EXPECT_TRUE(second.gapsIntact());
        for (int l = 0; l < 3; ++l) {
            EXPECT_TRUE(sameBytes(images[static_cast<std::size_t>(2 * l)], first.level(l)));
            EXPECT_TRUE(sameBytes(images[static_cast<std::size_t>(2 * l + 1)], second.level(l)));
        }
        EXPECT_EQ(std::memcmp(records, before, sizeof records), 0);
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_EQ(operands.prev.at(static_cast<int>(2 * i), 0), points[i].x);
            EXPECT_EQ(operands.prev.at(static_cast<int>(2 * i + 1), 0), points[i].y);
        }
        EXPECT_TRUE(operands.gapsIntact());
    });
}

// A state serves calls one after the other, on its size and smaller ones, with whatever its block held at first.
TEST(FlowMemory, AStateServesManyCalls)
{
    forEachType([]<class T>() {
        const State<T> state({80, 60}, 8);
        for (int i = 0; i < 8; ++i) {
            const LumiSize size = i % 2 == 0 ? LumiSize{80, 60} : LumiSize{80 - 9 * i, 3 + 7 * i};
            Pyramid<T> first(size, i % 3), second(size, 2, 2.0, i);
            first.draw(waves(i, 0));
            second.draw(waves(i + 0.5, 0.5));
            const Settings settings = {8, i % 3, 1 + i, 0.01f};
            const std::vector<Point> points = somePoints(size, 12);
            Operands operands(points);
            ASSERT_EQ(applyFlow<T>(first.record(), second.record(), operands, settings, state.get()), lumOk);
            const Operands fresh = follow(first, second, points, settings);
            for (int k = 0; k < operands.count(); ++k) {
                EXPECT_TRUE(sameFollowed(operands[k], fresh[k])) << "call " << i << ", point " << k;
            }
        }
        EXPECT_TRUE(state.intact());
    });
}

// The two pyramids may be one, and so may their images.
TEST(FlowMemory, BothPyramidsMayBeOne)
{
    forEachType([]<class T>() {
        Pyramid<T> pyramid({50, 40}, 1);
        pyramid.draw(waves());
        const LumiPyramidRecord record = pyramid.record();
        const State<T> state({50, 40}, 7);
        Operands operands({{20, 20}, {31.5f, 11.25f}});
        EXPECT_EQ(applyFlow<T>(record, record, operands, {7, 1, 10, 0.01f}, state.get()), lumOk);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(operands[i].status, 0);
            EXPECT_EQ(operands[i].x, operands.prev.at(2 * i, 0));
            EXPECT_EQ(operands[i].y, operands.prev.at(2 * i + 1, 0));
            EXPECT_EQ(operands[i].error, 0.0f);
        }
    });
}

// pNext may be pPrev: a point is read before its result is written.
TEST(FlowMemory, TheNextPyramidMayLieBottomUp)
{
    forEachType([]<class T>() {
        Pyramid<T> first({50, 40}), second({50, 40}), turned({50, 40});
        first.draw(waves());
        second.draw(waves(0.5, 0.5));
        turned.level(0).forEach(Area::Roi, [&](T& e, int x, int y, int) { e = second.level(0).at(x, 39 - y); });
        turned.layers()[0] = turned.level(0).row(39);
        turned.steps()[0] = -turned.steps()[0];
        const std::vector<Point> points = somePoints({50, 40}, 12);
        const Operands expected = follow(first, second, points, {9, 0});
        const Operands operands = follow(first, turned, points, {9, 0});
        for (int i = 0; i < operands.count(); ++i) {
            EXPECT_TRUE(sameFollowed(expected[i], operands[i])) << "point " << i;
        }
    });
}

}  // namespace
}  // namespace lumcv::test::flow
