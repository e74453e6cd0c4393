// Repairs change what is masked and nothing else, come near to what was there, and are the same each time.
#include "repair.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

#include "scene.hpp"

namespace {

using gallery::Image;
using gallery::Picture;
using repair::Repairer;

constexpr LumiInpaintMethod methods[] = {lumInpaintByFront, lumInpaintByIsophote};

// A slope, brighter to the right, darker downwards.
Picture slope(int width, int height, int channels)
{
    Picture picture(width, height, channels);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                picture.at(x, y, c) = static_cast<Lum8u>(100 + x - y / 2 + 20 * c);
            }
        }
    }
    return picture;
}

TEST(Scratches, AreFewAndTheSameEachTime)
{
    for (const LumiSize size : {LumiSize{300, 200}, {40, 90}, {1, 1}}) {
        const Picture mask = repair::drawScratches(size, 9);
        EXPECT_EQ(mask.width(), size.width);
        EXPECT_EQ(mask.height(), size.height);
        EXPECT_EQ(mask.elements(), repair::drawScratches(size, 9).elements());
        for (const Lum8u level : mask.elements()) {
            EXPECT_TRUE(level == 0 || level == 255);
        }
        EXPECT_GT(repair::countMasked(mask), 0);
    }
    const Picture mask = repair::drawScratches({300, 200}, 9);
    EXPECT_LT(repair::countMasked(mask), 300 * 200 / 5);
    EXPECT_NE(mask.elements(), repair::drawScratches({300, 200}, 10).elements());
}

TEST(Depths, ArePositiveWhereMasked)
{
    const Picture mask = repair::drawScratches({120, 80}, 3);
    const Image<Lum32f> depths = repair::depths(mask);
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 120; ++x) {
            EXPECT_EQ(depths.at(x, y) > 0.0f, mask.at(x, y) != 0) << "x " << x << ", y " << y;
            EXPECT_GE(depths.at(x, y), 0.0f);
        }
    }
}

TEST(Repairer, LeavesKnownPixelsAndComesNearToTheOthers)
{
    for (const int channels : {1, 3}) {
        const Picture original = slope(120, 80, channels);
        const Picture mask = repair::drawScratches(original.size(), 3);
        const Picture before = repair::painted(original, mask, 255);
        const Image<Lum32f> depths = repair::depths(mask);
        for (const LumiInpaintMethod method : methods) {
            const Picture after = Repairer(mask, depths, 5.0f, method, channels).repaired(before);
            for (int y = 0; y < 80; ++y) {
                for (int x = 0; x < 120; ++x) {
                    for (int c = 0; c < channels; ++c) {
                        const int error = std::abs(after.at(x, y, c) - original.at(x, y, c));
                        EXPECT_LE(error, mask.at(x, y) == 0 ? 0 : 20)
                            << "x " << x << ", y " << y << ", method " << method;
                    }
                }
            }
            EXPECT_LT(repair::meanWhereMasked(repair::difference(original, after), mask), 4.0);
        }
    }
}

// What stands under the mask does not show, and one repairer serves any number of pictures.
TEST(Repairer, DoesNotSeeWhatIsMasked)
{
    const Picture original = gallery::drawScene();
    const Picture mask = repair::drawScratches(original.size(), 3);
    const Image<Lum32f> depths = repair::depths(mask);
    for (const LumiInpaintMethod method : methods) {
        Repairer repairer(mask, depths, 3.5f, method, 3);
        const Picture ofWhite = repairer.repaired(repair::painted(original, mask, 255));
        EXPECT_EQ(ofWhite.elements(), repairer.repaired(original).elements());
        EXPECT_EQ(ofWhite.elements(), repairer.repaired(repair::painted(original, mask, 0)).elements());
    }
}

TEST(Repairer, CopiesWhereNothingIsMasked)
{
    const Picture original = slope(33, 20, 3);
    const Picture mask(33, 20, 1, 0);
    for (const LumiInpaintMethod method : methods) {
        EXPECT_EQ(Repairer(mask, repair::depths(mask), 5.0f, method, 3).repaired(original).elements(),
                  original.elements());
    }
    EXPECT_EQ(repair::meanWhereMasked(original, mask), 0.0);
}

TEST(Repairer, RefusesWhatTheLibraryRefuses)
{
    const Picture mask(9, 9, 1, 1);
    EXPECT_THROW(Repairer(mask, repair::depths(mask), 0.5f, lumInpaintByFront, 3), lumcv::Error);
    Repairer repairer(mask, repair::depths(mask), 2.0f, lumInpaintByFront, 1);
    EXPECT_THROW(repairer.repaired(Picture(8, 9, 1)), lumcv::Error);
}

TEST(Difference, IsThatOfEachChannel)
{
    Picture a(5, 4, 3, 10);
    Picture b(5, 4, 3, 10);
    a.at(2, 1, 0) = 0;
    b.at(4, 3, 2) = 255;
    Picture expected(5, 4, 3, 0);
    expected.at(2, 1, 0) = 10;
    expected.at(4, 3, 2) = 245;
    EXPECT_EQ(repair::difference(a, b).elements(), expected.elements());
    Picture mask(5, 4, 1, 0);
    mask.at(4, 3) = 1;
    EXPECT_DOUBLE_EQ(repair::meanWhereMasked(expected, mask), 245.0 / 3);
}

}  // namespace
