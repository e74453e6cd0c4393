// Objects are counted and measured as they were drawn.
#include <gtest/gtest.h>

#include <cstddef>

#include "count_objects.hpp"
#include "shapes.hpp"

namespace {

using count::Count;
using count::Options;
using gallery::Picture;

// Rectangles of three sizes and a single pixel, in the order of their first pixels.
Picture rectangles()
{
    Picture picture(90, 60, 1, 30);
    gallery::drawRectangle(picture, 5, 4, 20, 10, {200, 200, 200});
    gallery::drawRectangle(picture, 40, 6, 7, 30, {220, 220, 220});
    gallery::drawRectangle(picture, 70, 20, 1, 1, {250, 250, 250});
    gallery::drawRectangle(picture, 60, 40, 30, 20, {180, 180, 180});
    return picture;
}

void expectObject(const Count& count, std::size_t index, int area, LumiRect box)
{
    ASSERT_LT(index, count.objects.size());
    const count::Object& object = count.objects[index];
    EXPECT_EQ(object.label, static_cast<Lum32s>(index + 1));
    EXPECT_EQ(object.area, area) << "object " << object.label;
    EXPECT_EQ(object.box.x, box.x) << "object " << object.label;
    EXPECT_EQ(object.box.y, box.y) << "object " << object.label;
    EXPECT_EQ(object.box.width, box.width) << "object " << object.label;
    EXPECT_EQ(object.box.height, box.height) << "object " << object.label;
}

TEST(Objects, AreMeasured)
{
    Options options;
    options.leastArea = 2;
    const Count count = count::measured(count::objectMask(rectangles(), options), true);
    ASSERT_EQ(count.objects.size(), 3u);
    expectObject(count, 0, 200, {5, 4, 20, 10});
    expectObject(count, 1, 210, {40, 6, 7, 30});
    expectObject(count, 2, 600, {60, 40, 30, 20});
    EXPECT_EQ(count::table(count),
              "label,area,x,y,width,height\n1,200,5,4,20,10\n2,210,40,6,7,30\n3,600,60,40,30,20\n");
}

TEST(Objects, OfTheLeastAreaStay)
{
    Options options;
    options.leastArea = 1;
    EXPECT_EQ(count::measured(count::objectMask(rectangles(), options), true).objects.size(), 4u);
    options.leastArea = 210;
    EXPECT_EQ(count::measured(count::objectMask(rectangles(), options), true).objects.size(), 2u);
    options.leastArea = 601;
    const Picture nothing = count::objectMask(rectangles(), options);
    EXPECT_EQ(nothing.elements(), Picture(90, 60, 1).elements());
    EXPECT_TRUE(count::measured(nothing, true).objects.empty());
}

// The threshold itself is dark.
TEST(Objects, AreBrighterThanTheThreshold)
{
    Options options;
    options.threshold = 200;
    options.leastArea = 2;
    EXPECT_EQ(count::measured(count::objectMask(rectangles(), options), true).objects.size(), 1u);
    options.threshold = 199;
    EXPECT_EQ(count::measured(count::objectMask(rectangles(), options), true).objects.size(), 2u);
    options.dark = true;
    options.threshold = 30;
    const Count dark = count::measured(count::objectMask(rectangles(), options), true);
    ASSERT_EQ(dark.objects.size(), 1u);
    expectObject(dark, 0, 90 * 60 - 200 - 210 - 1 - 600, {0, 0, 90, 60});
}

TEST(Objects, TouchAtCorners)
{
    Picture mask(8, 6, 1);
    gallery::drawRectangle(mask, 4, 0, 4, 3, {255, 255, 255});
    gallery::drawRectangle(mask, 0, 3, 4, 3, {255, 255, 255});
    const Count joined = count::measured(mask, true);
    ASSERT_EQ(joined.objects.size(), 1u);
    // the first pixel is not the leftmost one
    expectObject(joined, 0, 24, {0, 0, 8, 6});
    const Count apart = count::measured(mask, false);
    ASSERT_EQ(apart.objects.size(), 2u);
    expectObject(apart, 0, 12, {4, 0, 4, 3});
    expectObject(apart, 1, 12, {0, 3, 4, 3});
}

TEST(Objects, AreColouredApart)
{
    Options options;
    options.leastArea = 2;
    const Picture gray = rectangles();
    const Count count = count::measured(count::objectMask(gray, options), true);
    const Picture coloured = count::coloured(gray, count);
    ASSERT_EQ(coloured.channels(), 3);
    EXPECT_EQ(coloured.at(0, 0, 0), 15);
    EXPECT_EQ(coloured.at(0, 0, 1), 15);
    EXPECT_EQ(coloured.at(5, 4, 0), 255) << "a box is white";
    const auto isSame = [&](LumiPoint a, LumiPoint b) {
        bool same = true;
        for (int c = 0; c < 3; ++c) {
            same = same && coloured.at(a.x, a.y, c) == coloured.at(b.x, b.y, c);
        }
        return same;
    };
    EXPECT_TRUE(isSame({6, 5}, {20, 10}));
    EXPECT_FALSE(isSame({6, 5}, {42, 10}));
    EXPECT_FALSE(isSame({42, 10}, {70, 50}));
}

TEST(Smoothing, LeavesAPictureOfOneLevelAndOfOneTap)
{
    const Picture flat(30, 20, 1, 77);
    EXPECT_EQ(count::smoothed(flat, 9).elements(), flat.elements());
    EXPECT_EQ(count::smoothed(rectangles(), 1).elements(), rectangles().elements());
    EXPECT_NE(count::smoothed(rectangles(), 3).elements(), rectangles().elements());
}

}  // namespace
