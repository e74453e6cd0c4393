// Inpainting compared with the reference, and what it is said to do by name.
#include <gtest/gtest.h>

#include <vector>

#include "distance/inpaint_fixture.hpp"

namespace lumcv::test::distance {
namespace {

constexpr Lum32f kRadii[] = {1, 3, 1.5f, 5, 2, 1.25f, 3.5f, 2.75f, 9};
constexpr int kRadiusCount = 9;

/// The case of a number: all settings change, at different rates.
Repair caseOf(int number, LumiSize size)
{
    Repair repair;
    repair.size = size;
    repair.damage = static_cast<Damage>(number % static_cast<int>(Damage::Count));
    repair.distances = static_cast<Distances>(number / 3 % static_cast<int>(Distances::Count));
    repair.radius = kRadii[number / 2 % kRadiusCount];
    repair.method = number % 2 == 0 ? lumInpaintByFront : lumInpaintByIsophote;
    repair.channels = number / 2 % 2 == 0 ? 1 : 3;
    repair.seed = static_cast<std::uint64_t>(number);
    repair.gap = number % 5;
    repair.guard = number % 3 == 0 ? Guard::Before : Guard::After;
    repair.distance = static_cast<std::size_t>(number % 67);
    return repair;
}

void expectSizes(const std::vector<LumiSize>& sizes, int cases)
{
    int number = 0;
    for (const LumiSize size : sizes) {
        for (int i = 0; i < cases; ++i) {
            Prepared prepared(caseOf(number, size));
            prepared.expectRepaired(static_cast<Picture>(number / 5 % static_cast<int>(Picture::Count)));
            ++number;
            if (testing::Test::HasFailure()) {
                return;
            }
        }
    }
}

TEST(InpaintQuick, Sizes)
{
    expectSizes({{1, 1}, {1, 8}, {9, 1}, {3, 3}, {12, 7}, {33, 20}}, 24);
}

TEST(Inpaint, Sizes)
{
    std::vector<LumiSize> sizes;
    for (const int width : {2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 18, 31, 32, 33, 40, 63, 64, 65, 70}) {
        sizes.push_back({width, 6 + width % 9});
        sizes.push_back({3 + width / 2, 2 + width / 3});
    }
    expectSizes(sizes, 30);
}

// All that is there with all that is there.
TEST(Inpaint, EverySetting)
{
    int number = 0;
    for (int damage = 0; damage < static_cast<int>(Damage::Count); ++damage) {
        for (int distances = 0; distances < static_cast<int>(Distances::Count); ++distances) {
            for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
                for (const int channels : {1, 3}) {
                    Repair repair = caseOf(number, {29, 23});
                    repair.damage = static_cast<Damage>(damage);
                    repair.distances = static_cast<Distances>(distances);
                    repair.method = method;
                    repair.channels = channels;
                    repair.radius = kRadii[number % kRadiusCount];
                    ++number;
                    Prepared prepared(repair);
                    for (int picture = 0; picture < static_cast<int>(Picture::Count); ++picture) {
                        prepared.expectRepaired(static_cast<Picture>(picture), picture);
                    }
                    ASSERT_FALSE(testing::Test::HasFailure());
                }
            }
        }
    }
}

// Wide enough for what is done differently far from the edges.
TEST(Inpaint, LargerImages)
{
    for (int number = 0; number < 8; ++number) {
        Repair repair = caseOf(number, {150, 110});
        repair.damage = number % 4 < 2 ? Damage::Strokes : Damage::Blob;
        repair.distances = Distances::Marched;
        repair.radius = number < 4 ? 5.0f : 3.0f;
        Prepared(repair).expectRepaired(number % 2 == 0 ? Picture::Bands : Picture::Noise);
    }
}

/// The repair of a picture that is drawn by hand.
template <class Draw>
Image<Lum8u> repaired(const Repair& repair, Draw draw)
{
    Image<Lum8u> source(repair.layout(repair.channels));
    source.forEach(Area::Roi, draw);
    Image<Lum8u> result(repair.layout(repair.channels));
    const Prepared prepared(repair);
    EXPECT_EQ(inpaint(repair, source, result, prepared.state(), prepared.buffer()), lumOk);
    return result;
}

// Of a picture without contrast nothing can be seen of the damage.
TEST(InpaintQuick, FlatPicture)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        for (const Damage damage : {Damage::Strokes, Damage::Blob, Damage::Scattered, Damage::Frame, Damage::Half}) {
            Repair repair;
            repair.size = {41, 33};
            repair.damage = damage;
            repair.method = method;
            Image<Lum8u> result = repaired(repair, [](Lum8u& element, int, int, int) { element = 173; });
            result.forEach(Area::Roi, [](Lum8u& element, int x, int y, int) {
                EXPECT_EQ(int{element}, 173) << "x " << x << ", y " << y;
            });
        }
    }
}

// Beside a first channel with gradients, the correction of flat ones is without bounds; the level is limited before it
// becomes a byte.
TEST(InpaintQuick, LevelsAreLimited)
{
    Repair repair;
    repair.size = {40, 12};
    repair.damage = Damage::Blob;
    repair.channels = 3;
    const Image<Lum8u> result = repaired(repair, [](Lum8u& element, int x, int, int c) {
        element = c == 0 ? static_cast<Lum8u>(x < 20 ? 240 : 10) : static_cast<Lum8u>(c == 1 ? 100 : 200);
    });
    int limited = 0;
    for (int y = 3; y < 9; ++y) {
        for (int x = 17; x < 23; ++x) {
            for (const int c : {1, 2}) {
                limited += result.at(x, y, c) == 0 || result.at(x, y, c) == 255 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(limited, 0);
}

// With nothing known anywhere near, pixels become 0.
TEST(InpaintQuick, NothingKnown)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        Repair repair;
        repair.size = {9, 7};
        repair.damage = Damage::Everything;
        repair.method = method;
        Image<Lum8u> result = repaired(repair, [](Lum8u& element, int, int, int) { element = 200; });
        result.forEach(Area::Roi, [](Lum8u& element, int, int, int) { EXPECT_EQ(int{element}, 0); });
    }
}

// Without a normal the weights of the first method are too small: the mean of the edge neighbours, rounded.
TEST(InpaintQuick, FallbackToEdgeNeighbours)
{
    Repair repair;
    repair.size = {9, 9};
    repair.damage = Damage::OnePixel;  // (6, 3)
    repair.distances = Distances::Equal;
    for (const int extra : {0, 1, 2, 3}) {
        const Image<Lum8u> result = repaired(repair, [&](Lum8u& element, int x, int y, int) {
            element = x == 6 && y == 2   ? static_cast<Lum8u>(10 + extra)
                      : x == 6 && y == 4 ? Lum8u{20}
                      : x == 5 && y == 3 ? Lum8u{50}
                      : x == 7 && y == 3 ? Lum8u{100}
                                         : Lum8u{255};
        });
        // the distance falls on both sides alike, so the normal is 0
        EXPECT_EQ(int{result.at(6, 3)}, (180 + extra + 2) / 4);
    }
}

// Masked pixels of distance 0 keep the source's level and help no other.
TEST(InpaintQuick, DistanceZeroIsNotFilled)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        Repair repair;
        repair.size = {31, 25};
        repair.damage = Damage::Blob;
        repair.distances = Distances::PartlyZero;
        repair.method = method;
        const Image<Lum8u> mask = repair.mask();
        const Image<Lum32f> distance = repair.distanceImage(mask);
        const auto repairedOver = [&](Lum8u level) {
            return repaired(repair, [&](Lum8u& element, int x, int y, int) {
                element = mask.at(x, y) != 0 ? level : static_cast<Lum8u>(x + y);
            });
        };
        const Image<Lum8u> white = repairedOver(255);
        const Image<Lum8u> black = repairedOver(0);
        int kept = 0;
        for (int y = 0; y < 25; ++y) {
            for (int x = 0; x < 31; ++x) {
                if (mask.at(x, y) != 0 && distance.at(x, y) == 0) {
                    ++kept;
                    EXPECT_EQ(int{white.at(x, y)}, 255) << "x " << x << ", y " << y;
                    EXPECT_EQ(int{black.at(x, y)}, 0) << "x " << x << ", y " << y;
                } else {
                    EXPECT_EQ(int{white.at(x, y)}, int{black.at(x, y)}) << "x " << x << ", y " << y;
                }
            }
        }
        EXPECT_GT(kept, 3);
    }
}

// Equal distances are filled in row order: of a row, each pixel from the one filled before it.
TEST(InpaintQuick, EqualDistancesInRowOrder)
{
    Repair repair;
    repair.size = {8, 1};
    repair.damage = Damage::Half;
    repair.distances = Distances::Equal;
    repair.radius = 1;
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        repair.method = method;
        const Image<Lum8u> result =
            repaired(repair, [](Lum8u& element, int x, int, int) { element = static_cast<Lum8u>(20 * x); });
        for (int x = 4; x < 8; ++x) {
            // by front the slope of 20 takes 1 off the first pixel; the others stand where the normal is 0
            EXPECT_EQ(int{result.at(x, 0)}, method == lumInpaintByFront ? 59 : 60) << "x " << x;
        }
    }
}

// One state repairs any number of pictures, with any stride, and none shows in the next.
TEST(InpaintQuick, StateServesManyPictures)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        for (const int channels : {1, 3}) {
            Repair repair;
            repair.size = {37, 29};
            repair.method = method;
            repair.channels = channels;
            Prepared prepared(repair);
            for (const Picture picture :
                 {Picture::Noise, Picture::Flat, Picture::Noise, Picture::Bands, Picture::Noise}) {
                prepared.expectRepaired(picture, static_cast<int>(picture) * 7);
            }
        }
    }
}

// Fallbacks, and pixels filled for a second time, do occur in the sweeps above.
TEST(InpaintQuick, CasesReachTheFallback)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        Repair repair;
        repair.size = {29, 23};
        repair.damage = Damage::Scattered;
        repair.distances = Distances::Drawn;
        repair.radius = 1;
        repair.method = method;
        Prepared prepared(repair);
        prepared.expectRepaired(Picture::Flat);
        EXPECT_GT(prepared.reference().fallbacks(), 0);
    }
}

}  // namespace
}  // namespace lumcv::test::distance
