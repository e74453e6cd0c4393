// Cascades survive their text format, damaged ones are told by line, and a scan finds what the format says.
#include "cascade.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "scan.hpp"
#include "scene.hpp"

namespace {

using detect::Cascade;
using detect::Found;
using detect::ScanOptions;
using gallery::Picture;

constexpr const char* smallCascade = R"(# two stages
cascade 1
window 8 6   # wide
deviation 4
stage 0.5
weak 0.25 -1 1.5
rect 0 0 8 6 -1
rect 4 0 4 6 2

weak -0.125 0.75 -0.5
rect 0 0 8 6 -1
rect 0 0 4 3 2
rect 4 3 4 3 2
stage -0.25
weak 0 -1 1
rect 2 0 4 6 1
rect 3 0 2 6 -2
)";

TEST(CascadeText, IsReadAsItSays)
{
    const Cascade cascade = detect::parseCascade(smallCascade, "small");
    EXPECT_EQ(cascade.windowWidth, 8);
    EXPECT_EQ(cascade.windowHeight, 6);
    EXPECT_EQ(cascade.leastDeviation, 4.0f);
    ASSERT_EQ(cascade.stages.size(), 2u);
    EXPECT_EQ(cascade.stages[0].threshold, 0.5f);
    EXPECT_EQ(cascade.stages[1].threshold, -0.25f);
    ASSERT_EQ(cascade.stages[0].classifiers.size(), 2u);
    const detect::WeakClassifier& weak = cascade.stages[0].classifiers[1];
    EXPECT_EQ(weak.threshold, -0.125f);
    EXPECT_EQ(weak.voteBelow, 0.75f);
    EXPECT_EQ(weak.voteOtherwise, -0.5f);
    ASSERT_EQ(weak.rectangles.size(), 3u);
    const detect::WeightedRectangle& last = weak.rectangles[2];
    EXPECT_EQ(std::make_tuple(last.x, last.y, last.width, last.height), std::make_tuple(4, 3, 4, 3));
    EXPECT_EQ(last.weight, 2.0f);
}

TEST(CascadeText, KeepsEveryBit)
{
    Cascade cascade{24, 20, 0.1f, {}};
    cascade.stages.push_back({{{{{0, 1, 2, 3, -1.0f / 3.0f}, {4, 5, 20, 15, 1e-20f}}, 3.4e38f, -0.7f, 1e-7f}}, -1e10f});
    const std::string text = detect::cascadeText(cascade);
    const Cascade read = detect::parseCascade(text, "text");
    EXPECT_EQ(detect::cascadeText(read), text);
    EXPECT_EQ(read.leastDeviation, 0.1f);
    EXPECT_EQ(read.stages[0].threshold, -1e10f);
    const detect::WeakClassifier& weak = read.stages[0].classifiers[0];
    EXPECT_EQ(weak.threshold, 3.4e38f);
    EXPECT_EQ(weak.voteBelow, -0.7f);
    EXPECT_EQ(weak.voteOtherwise, 1e-7f);
    EXPECT_EQ(weak.rectangles[0].weight, -1.0f / 3.0f);
    EXPECT_EQ(weak.rectangles[1].weight, 1e-20f);
    EXPECT_EQ(weak.rectangles[1].height, 15);
}

TEST(CascadeText, MayHaveOtherEndsOfLines)
{
    std::string text = smallCascade;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
        text.replace(at, 1, "\r\n");
    }
    EXPECT_EQ(detect::cascadeText(detect::parseCascade(text, "text")),
              detect::cascadeText(detect::parseCascade(smallCascade, "small")));
}

TEST(CascadeText, TellsWhatIsWrongInWhichLine)
{
    const std::string head = "cascade 1\nwindow 8 8\n";
    const std::string weak = head + "stage 0\nweak 0 1 2\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "it is empty"},
        {"# nothing\n\n", "it is empty"},
        {"cascade 2\n", "line 1: it is not a cascade of version 1"},
        {"window 8 8\n", "line 1: it is not a cascade of version 1"},
        {head, "it has no stage"},
        {head + "window 8 8\n", "line 3: a second window"},
        {"cascade 1\nwindow 0 8\n", "line 2: a side of 0"},
        {"cascade 1\nwindow 8 1025\n", "line 2: a side of 1025"},
        {"cascade 1\nwindow 8 8 8\n", "line 2: 'window' takes 2 numbers"},
        {"cascade 1\nwindow 8 8.5\n", "line 2: '8.5' is not a number"},
        {"cascade 1\nstage 0\nweak 0 1 2\nrect 0 0 1 1 1\n", "line 4: the rectangle does not lie in the window"},
        {head + "stage nan\n", "line 3: 'nan' is not a number"},
        {head + "stage 1e99\n", "line 3: '1e99' is not a number"},
        {head + "stage\n", "line 3: 'stage' takes 1 numbers"},
        {head + "weak 0 1 2\n", "line 3: a classifier before the first stage"},
        {head + "rect 0 0 1 1 1\n", "line 3: a rectangle before the first classifier"},
        {head + "stage 0\nstage 1\n", "line 4: the stage before has no classifier"},
        {head + "stage 0\n", "line 3: the stage before has no classifier"},
        {weak + "weak 0 1 2\n", "line 5: the classifier before has no rectangle"},
        {weak + "stage 0\n", "line 5: the classifier before has no rectangle"},
        {weak, "line 4: the classifier before has no rectangle"},
        {weak + "rect 0 0 9 8 1\n", "line 5: the rectangle does not lie in the window"},
        {weak + "rect 1 0 8 8 1\n", "line 5: the rectangle does not lie in the window"},
        {weak + "rect 0 -1 8 8 1\n", "line 5: the rectangle does not lie in the window"},
        {weak + "rect 0 8 1 1 1\n", "line 5: the rectangle does not lie in the window"},
        {weak + "rect 2147483647 0 1 1 1\n", "line 5: the rectangle does not lie in the window"},
        {weak + "rect 0 0 8 0 1\n", "line 5: a side of 0"},
        {weak + "rect 0 0 8 8\n", "line 5: 'rect' takes 5 numbers"},
        {weak + "rect 0 0 8 8 1\ntilt 1\n", "line 6: 'tilt' is no word of a cascade"},
    };
    for (const auto& [text, words] : cases) {
        try {
            detect::parseCascade(text, "file");
            ADD_FAILURE() << "accepted: " << text;
        } catch (const gallery::Failure& failure) {
            const std::string message = failure.what();
            EXPECT_TRUE(message.starts_with("cannot read the cascade 'file': ")) << message;
            EXPECT_NE(message.find(words), std::string::npos) << message << " instead of " << words;
        }
    }
}

// What the format says about one window, pixel by pixel.
bool isObject(const Picture& gray, const Cascade& cascade, int left, int top, int scale)
{
    const int width = cascade.windowWidth * scale;
    const int height = cascade.windowHeight * scale;
    const auto sumOver = [&](int x, int y, int w, int h, auto value) {
        double sum = 0.0;
        for (int v = y; v < y + h; ++v) {
            for (int u = x; u < x + w; ++u) {
                sum += value(gray.at(u, v));
            }
        }
        return sum;
    };
    const double area = width * height;
    const double mean = sumOver(left, top, width, height, [](double v) { return v; }) / area;
    const double variance = sumOver(left, top, width, height, [=](double v) { return (v - mean) * (v - mean); }) / area;
    const double deviation = std::sqrt(variance);
    if (deviation < cascade.leastDeviation) {
        return false;
    }
    for (const detect::Stage& stage : cascade.stages) {
        double votes = 0.0;
        for (const detect::WeakClassifier& weak : stage.classifiers) {
            double feature = 0.0;
            for (const detect::WeightedRectangle& r : weak.rectangles) {
                feature += r.weight / area *
                           sumOver(left + r.x * scale, top + r.y * scale, r.width * scale, r.height * scale,
                                   [](double v) { return v; });
            }
            votes += feature < weak.threshold * deviation ? weak.voteBelow : weak.voteOtherwise;
        }
        if (votes <= stage.threshold) {
            return false;
        }
    }
    return true;
}

// The picture is larger than the tiles that a scan takes it in, so seams are crossed in both directions.
TEST(Scan, FindsTheWindowsThatTheFormatDescribes)
{
    const Cascade cascade = detect::parseCascade(smallCascade, "small");
    const Picture scene = gallery::grayOf(gallery::drawScene());
    Picture gray(530, 290, 1);
    for (int y = 0; y < gray.height(); ++y) {
        for (int x = 0; x < gray.width(); ++x) {
            gray.at(x, y) = scene.at(x + 300, y + 10);
        }
    }

    std::vector<std::tuple<int, int, int, int>> expected;
    for (const int scale : {1, 2, 4, 8, 16, 32}) {
        for (int y = 0; y + 6 * scale <= gray.height(); y += scale) {
            for (int x = 0; x + 8 * scale <= gray.width(); x += scale) {
                if (isObject(gray, cascade, x, y, scale)) {
                    expected.emplace_back(x, y, 8 * scale, 6 * scale);
                }
            }
        }
    }
    ASSERT_GT(expected.size(), 1000u);

    ScanOptions options;
    options.growth = 2.0;
    std::vector<std::tuple<int, int, int, int>> found;
    for (const LumiRect& r : detect::passingWindows(gray, cascade, options)) {
        found.emplace_back(r.x, r.y, r.width, r.height);
    }
    const auto bySizeAndPlace = [](const auto& a, const auto& b) {
        return std::make_tuple(std::get<2>(a), std::get<1>(a), std::get<0>(a)) <
               std::make_tuple(std::get<2>(b), std::get<1>(b), std::get<0>(b));
    };
    std::sort(found.begin(), found.end(), bySizeAndPlace);
    EXPECT_EQ(found.size(), expected.size());
    EXPECT_EQ(found, expected);
}

TEST(Scan, FindsNothingInWhatIsEvenOrSmall)
{
    const Cascade cascade = detect::parseCascade(smallCascade, "small");
    EXPECT_TRUE(detect::passingWindows(Picture(300, 40, 1, 77), cascade, {}).empty());
    EXPECT_TRUE(detect::passingWindows(Picture(7, 100, 1, 77), cascade, {}).empty());
    EXPECT_TRUE(detect::passingWindows(Picture(100, 5, 1, 77), cascade, {}).empty());
}

TEST(Merge, MakesOneObjectOfWindowsThatOverlap)
{
    const std::vector<LumiRect> windows = {{10, 10, 20, 20}, {100, 10, 20, 20}, {12, 10, 20, 20},
                                           {14, 13, 20, 20}, {102, 12, 22, 22}, {200, 200, 20, 20}};
    ScanOptions options;
    options.fewestWindows = 2;
    const std::vector<Found> objects = detect::mergeOverlapping(windows, options);
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[0].windows, 3);
    EXPECT_EQ(objects[0].place.x, 12);
    EXPECT_EQ(objects[0].place.y, 11);
    EXPECT_EQ(objects[0].place.width, 20);
    EXPECT_EQ(objects[1].windows, 2);
    EXPECT_EQ(objects[1].place.x, 101);
    EXPECT_EQ(objects[1].place.height, 21);
}

TEST(Merge, DropsWhatLiesInALargerObject)
{
    const std::vector<LumiRect> windows = {
        {0, 0, 90, 90}, {1, 0, 90, 90}, {2, 0, 90, 90}, {30, 30, 20, 20}, {31, 30, 20, 20}};
    ScanOptions options;
    options.fewestWindows = 1;
    const std::vector<Found> objects = detect::mergeOverlapping(windows, options);
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(objects[0].place.width, 90);
}

TEST(Frame, StaysInThePicture)
{
    Picture picture(6, 5, 1, 0);
    const Lum8u white = 255;
    detect::drawFrame(picture, {-3, -3, 20, 6}, &white);
    for (int x = 0; x < picture.width(); ++x) {
        EXPECT_EQ(int{picture.at(x, 0)}, 0);
        EXPECT_EQ(int{picture.at(x, 1)}, 255);
        EXPECT_EQ(int{picture.at(x, 2)}, 255);
        EXPECT_EQ(int{picture.at(x, 3)}, 0);
    }
}

}  // namespace
