// Weak pixels that long chains connect with one strong pixel, and images with as many strong pixels as there can be.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "feature/canny_image_fixture.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::canny {
namespace {

struct Place
{
    int x;
    int y;
};

TYPE_SUITE(CannyHysteresis, PlaneTypes, PlaneName);

// A path through the whole image: along row 0, down at its end, back along row 2, down, and so on; transposed, along
// columns. Each pixel's gradient points away from the path, so that all of them survive.
template <class T>
struct Serpentine
{
    Serpentine(LumiSize size, bool isTransposed)
        : transposed(isTransposed), planes(isTransposed ? LumiSize{size.height, size.width} : size, Placement{})
    {
        planes.dx.forEach(Area::Roi, [](T& element, int, int, int) { element = 0; });
        planes.dy.forEach(Area::Roi, [](T& element, int, int, int) { element = 0; });
        for (int y = 0; y < size.height; ++y) {
            const bool backwards = y / 2 % 2 != 0;
            if (y % 2 != 0) {
                add({backwards ? 0 : size.width - 1, y}, 40, 0);
                continue;
            }
            for (int i = 0; i < size.width; ++i) {
                const int x = backwards ? size.width - 1 - i : i;
                const bool right = x == size.width - 1;
                const bool turn = right || x == 0;
                add({x, y}, turn ? 20 : 0, turn ? (right ? 20 : -20) : 40);
            }
        }
    }
    void add(Place place, int dx, int dy)
    {
        path.push_back(transposed ? Place{place.y, place.x} : place);
        planes.dx.at(path.back().x, path.back().y) = static_cast<T>(transposed ? dy : dx);
        planes.dy.at(path.back().x, path.back().y) = static_cast<T>(transposed ? dx : dy);
    }
    void scale(std::size_t step, int factor)
    {
        T& dx = planes.dx.at(path[step].x, path[step].y);
        T& dy = planes.dy.at(path[step].x, path[step].y);
        dx = static_cast<T>(dx * factor);
        dy = static_cast<T>(dy * factor);
    }
    // Whether exactly the given stretch of the path is edges.
    void expectEdges(std::size_t first, std::size_t count) const
    {
        std::vector<Lum8u> expected(static_cast<std::size_t>(planes.size.width) *
                                    static_cast<std::size_t>(planes.size.height));
        for (std::size_t i = first; i < first + count; ++i) {
            expected[static_cast<std::size_t>(path[i].y) * static_cast<std::size_t>(planes.size.width) +
                     static_cast<std::size_t>(path[i].x)] = 255;
        }
        for (const PlaneForm form : kPlaneForms) {
            const Image<Lum8u> actual = runPlanes(planes, form, 10, 100);
            EXPECT_TRUE(sameImage(asImage(expected, actual.layout()), actual))
                << planes.size.width << " x " << planes.size.height << ", form " << static_cast<int>(form) << ", from "
                << first << ", " << count << " of " << path.size();
        }
    }

    bool transposed;
    Planes<T> planes;
    std::vector<Place> path;
};

TYPE_TEST(CannyHysteresis, SerpentineOfWeakPixels)
{
    for (const bool transposed : {false, true}) {
        for (const LumiSize size : {LumiSize{4, 5}, {17, 9}, {31, 33}, {64, 31}, {65, 65}, {129, 35}, {300, 21}}) {
            const Serpentine<TypeParam> weak(size, transposed);
            weak.expectEdges(0, 0);
            const std::size_t length = weak.path.size();
            for (const std::size_t strong : {std::size_t{0}, length / 2, length - 1}) {
                Serpentine<TypeParam> drawing(size, transposed);
                drawing.scale(strong, 10);
                drawing.expectEdges(0, length);
            }
        }
    }
}

// One pixel missing ends the chain.
TYPE_TEST(CannyHysteresis, BrokenSerpentine)
{
    for (const bool transposed : {false, true}) {
        for (const LumiSize size : {LumiSize{17, 9}, {65, 33}, {129, 35}}) {
            const auto rows = static_cast<std::size_t>(size.height / 2 / 2 * 2);  // whole rows before the gap
            const std::size_t gap =
                rows / 2 * static_cast<std::size_t>(size.width + 1) + static_cast<std::size_t>(size.width / 2);
            for (const bool fromTheEnd : {false, true}) {
                Serpentine<TypeParam> drawing(size, transposed);
                drawing.scale(gap, 0);
                const std::size_t length = drawing.path.size();
                drawing.scale(fromTheEnd ? length - 1 : 0, 10);
                drawing.expectEdges(fromTheEnd ? gap + 1 : 0, fromTheEnd ? length - 1 - gap : gap);
            }
        }
    }
}

// Noise with a rare strong pixel: chains in all directions, and many that nothing reaches.
TYPE_TEST(CannyHysteresis, FewStrongPixels)
{
    for (const int rarity : {20, 200, 5000}) {
        Planes<TypeParam> planes({211, 97}, Placement{});
        Random random(static_cast<std::uint64_t>(rarity));
        const auto draw = [&](TypeParam& element, int, int, int) {
            element = static_cast<TypeParam>(random.between(-100, 100) * (random.oneIn(rarity) ? 10 : 1));
        };
        planes.dx.forEach(Area::Roi, draw);
        planes.dy.forEach(Area::Roi, draw);
        expectPlaneEdges(planes, 0, 300);
        expectPlaneEdges(planes, 40, 300);
    }
}

// Three pixels in four survive, and all of them are strong.
TYPE_TEST(CannyHysteresis, ThreeStrongPixelsInFour)
{
    for (const LumiSize size : {LumiSize{2, 2}, {7, 5}, {16, 16}, {33, 9}, {64, 64}, {131, 40}}) {
        Planes<TypeParam> planes(size, Placement{});
        std::vector<Lum8u> expected;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool high = x % 2 == y % 2;
                const bool middle = y % 2 != 0;
                planes.dx.at(x, y) = static_cast<TypeParam>(high ? 300 : middle ? 100 : 10);
                planes.dy.at(x, y) = static_cast<TypeParam>(high ? 0 : middle ? 100 : 0);
                expected.push_back(high || middle ? Lum8u{255} : Lum8u{0});
            }
        }
        for (const PlaneForm form : kPlaneForms) {
            const Image<Lum8u> actual = runPlanes(planes, form, 0, 0);
            EXPECT_TRUE(sameImage(asImage(expected, actual.layout()), actual))
                << size.width << " x " << size.height << ", form " << static_cast<int>(form);
        }
    }
}

// A single row or column whose gradients all point out of it: every pixel is strong.
TYPE_TEST(CannyHysteresis, EveryPixelStrong)
{
    for (const int length : {1, 2, 5, 16, 63, 64, 65, 1000}) {
        for (const bool column : {false, true}) {
            const LumiSize size = column ? LumiSize{1, length} : LumiSize{length, 1};
            Planes<TypeParam> planes(size, Placement{});
            planes.dx.forEach(Area::Roi, [&](TypeParam& element, int, int, int) { element = column ? 7 : 0; });
            planes.dy.forEach(Area::Roi, [&](TypeParam& element, int, int, int) { element = column ? 0 : -7; });
            const std::vector<Lum8u> expected(static_cast<std::size_t>(length), 255);
            for (const PlaneForm form : kPlaneForms) {
                const Image<Lum8u> actual = runPlanes(planes, form, 1, 2);
                EXPECT_TRUE(sameImage(asImage(expected, actual.layout()), actual)) << length;
            }
        }
    }
}

// Sides in memory make the same of a row, and of a column, of an image.
TEST(CannyImageHysteresis, EveryPixelStrong)
{
    for (const Operator& chosen : kOperators) {
        for (const int length : {1, 2, 3, 4, 5, 16, 65, 1000}) {
            for (const bool column : {false, true}) {
                ImageCall call;
                call.size = column ? LumiSize{1, length} : LumiSize{length, 1};
                call.filter = chosen.filter;
                call.mask = chosen.mask;
                call.norm = length % 2 == 0 ? lumNormL2 : lumNormL1;
                call.border = lumBorderReplicate | (column ? lumBorderInMemLeft | lumBorderInMemRight
                                                           : lumBorderInMemTop | lumBorderInMemBottom);
                call.low = 10;
                call.high = 20;
                ImageOperands operands(call);
                operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int y, int) {
                    element = static_cast<Lum8u>(100 + 30 * (column ? x : y));
                });
                EXPECT_EQ(edgePixels(operands.run()).size(), static_cast<std::size_t>(length))
                    << (column ? "a column, " : "a row, ") << call;
            }
        }
    }
}

// The derivative that a slope of one in each step has.
Lum32f derivativeOfSlope(const Operator& chosen)
{
    return chosen.mask == lumMask5x5 ? 128 : chosen.filter == lumFilterScharr ? 32 : 8;
}

// A wave that winds from the middle outwards, steep in a few places: some weak pixels belong to edges, some do not.
TEST(CannyImageHysteresis, Spiral)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
            const Lum32f slope = derivativeOfSlope(chosen);
            const auto countEdges = [&](Lum32f low, Lum32f high) {
                ImageCall call;
                call.size = {131, 127};
                call.filter = chosen.filter;
                call.mask = chosen.mask;
                call.norm = norm;
                call.low = low * slope;
                call.high = high * slope;
                ImageOperands operands(call);
                operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int y, int) {
                    const double radius = std::hypot(x - 65.3, y - 63.1);
                    const double angle = std::atan2(y - 63.1, x - 65.3);
                    const double amplitude = std::fabs(angle) < 0.2 ? 120 : 25;
                    element = static_cast<Lum8u>(127.5 + amplitude * std::sin(radius * 0.5 + angle));
                });
                const std::size_t count = edgePixels(operands.run()).size();
                EXPECT_TRUE(operands.matchesReference()) << call;
                return count;
            };
            const std::size_t edges = countEdges(4, 25);
            EXPECT_GT(edges, countEdges(25, 25)) << "no chain was followed";
            EXPECT_LT(edges, countEdges(4, 4)) << "every pixel was taken";
        }
    }
}

// A long step, high at one end only, has one edge pixel in each column, and across, in each row.
TEST(CannyImageHysteresis, LongStep)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
            for (const bool strongAtTheEnd : {false, true}) {
                for (const bool down : {false, true}) {
                    constexpr int kLength = 700;
                    const Lum32f half = derivativeOfSlope(chosen) / 2;
                    ImageCall call;
                    call.size = down ? LumiSize{9, kLength} : LumiSize{kLength, 9};
                    call.filter = chosen.filter;
                    call.mask = chosen.mask;
                    call.norm = norm;
                    call.low = 6 * half;
                    call.high = 120 * half;
                    ImageOperands operands(call);
                    operands.source.forEach(Area::WithMargins, [&](Lum8u& element, int x, int y, int) {
                        const int along = down ? y : x;
                        const int fromStrong = strongAtTheEnd ? kLength - 1 - along : along;
                        const int height = std::max(20, 200 - fromStrong);
                        element = static_cast<Lum8u>((down ? x : y) < 4 ? 20 : 20 + height);
                    });
                    std::vector<int> found(kLength);
                    for (const auto& [x, y] : edgePixels(operands.run())) {
                        ++found[static_cast<std::size_t>(down ? y : x)];
                    }
                    EXPECT_EQ(found, std::vector<int>(kLength, 1)) << call;
                    EXPECT_TRUE(operands.matchesReference()) << call;
                }
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::canny
