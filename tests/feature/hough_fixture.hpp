// Calls of the Hough exports with operands at chosen places, compared with the reference.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <ostream>
#include <vector>

#include "feature/hough_reference.hpp"
#include "support/compare.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/placement.hpp"
#include "support/random.hpp"

namespace lumcv::test::hough {

constexpr Lum32f kDegree = 0.0174532925f;

// What an image holds.
enum class Content
{
    Dust,     // a few points by chance
    Lines,    // through all of the image, and some dust
    Grid,     // equal lines along both sides
    Dense,    // every other point by chance
    Strokes,  // short lines with gaps
    Count
};

inline void draw(Image<Lum8u>& image, Content content, Random& random)
{
    const LumiSize size = {image.width(), image.height()};
    const auto point = [&] { return static_cast<Lum8u>(random.between(1, 255)); };
    const int share = content == Content::Dense  ? 2
                      : content == Content::Dust ? 12
                      : content == Content::Grid ? 500
                                                 : 40;
    const int column = static_cast<int>(random.between(2, 9));
    const int row = static_cast<int>(random.between(2, 9));
    image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
        const bool isOnGrid = content == Content::Grid && (x % column == 1 || y % row == 1);
        element = isOnGrid || random.oneIn(share) ? point() : Lum8u{0};
    });
    if (content != Content::Lines && content != Content::Strokes) {
        return;
    }
    const int count = 2 + size.width * size.height / 400;
    for (int i = 0; i < count; ++i) {
        const double angle = random.oneIn(4) ? static_cast<double>(random.between(0, 3)) * 0.7853981633974483
                                             : random.unit<double>() * 6.283185307179586;
        double x = random.unit<double>() * size.width;
        double y = random.unit<double>() * size.height;
        const int length =
            content == Content::Lines ? 2 * (size.width + size.height) : static_cast<int>(random.between(3, 25));
        if (content == Content::Lines) {
            x -= std::cos(angle) * length / 2;
            y -= std::sin(angle) * length / 2;
        }
        const int gap = static_cast<int>(random.between(2, 30));
        for (int step = 0; step < length; ++step) {
            const double atX = std::floor(x + std::cos(angle) * step);
            const double atY = std::floor(y + std::sin(angle) * step);
            const bool isInside = atX >= 0 && atY >= 0 && atX < size.width && atY < size.height;
            if (isInside && (content == Content::Lines || step % gap != 0)) {
                image.at(static_cast<int>(atX), static_cast<int>(atY)) = point();
            }
        }
    }
}

inline Image<Lum8u> drawn(LumiSize size, Content content, int seed, const Placement& place = {})
{
    Image<Lum8u> image(place.layout(size));
    Random random(static_cast<std::uint64_t>(seed) * 7919 + 17);
    draw(image, content, random);
    return image;
}

inline testing::AssertionResult sameLines(const std::vector<LumiPointPolar>& expected, const PlacedBlock& list,
                                          const std::vector<unsigned char>& before, Lum32s count)
{
    if (count != static_cast<Lum32s>(expected.size())) {
        return testing::AssertionFailure() << "got " << count << " lines, expected " << expected.size();
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        LumiPointPolar actual;
        std::memcpy(&actual, list.data() + i * sizeof actual, sizeof actual);
        // a rho of zero has no sign that matters
        if (!(actual.rho == expected[i].rho) || !sameElement(actual.theta, expected[i].theta)) {
            return testing::AssertionFailure()
                   << "line " << i << " of " << count << ": got rho " << elementText(actual.rho) << ", theta "
                   << elementText(actual.theta) << "; expected " << elementText(expected[i].rho) << ", "
                   << elementText(expected[i].theta);
        }
    }
    for (std::size_t i = expected.size() * sizeof(LumiPointPolar); i < list.size(); ++i) {
        if (list.data()[i] != before[i]) {
            return testing::AssertionFailure() << "a line beyond the count was written";
        }
    }
    return testing::AssertionSuccess();
}

// A call of the standard form, or of the region form with a region.
struct PolarCall
{
    LumiPointPolar delta = {1, kDegree};
    int threshold = 3;
    int maxLineCount = 20;
    const LumiPointPolar* region = nullptr;
};

inline std::ostream& operator<<(std::ostream& stream, const PolarCall& call)
{
    stream << "delta " << call.delta.rho << ", " << call.delta.theta << ", threshold " << call.threshold << ", at most "
           << call.maxLineCount;
    if (call.region != nullptr) {
        stream << ", region " << call.region[0].rho << ", " << call.region[0].theta << " to " << call.region[1].rho
               << ", " << call.region[1].theta;
    }
    return stream;
}

// Finds lines with a list and scratch of exactly the right size, and gives their number.
inline int expectLines(const Image<Lum8u>& image, const PolarCall& call, const Placement& place = {})
{
    const LumiSize size = {image.width(), image.height()};
    const PlacedBlock scratch(standardBytes(size, call.delta, call.maxLineCount), place.guard, place.distance);
    // a list at an address that suits its floats
    const PlacedBlock list(static_cast<std::size_t>(call.maxLineCount) * sizeof(LumiPointPolar), Guard::After, 0);
    const std::vector<unsigned char> before(list.data(), list.data() + list.size());
    const GuardedBlock count(sizeof(Lum32s), Guard::After);
    *count.as<Lum32s>() = -77;
    auto* const lines = reinterpret_cast<LumiPointPolar*>(list.data());
    std::vector<LumiPointPolar> expected;
    LumStatus status = lumOk;
    if (call.region == nullptr) {
        expected = standardLines(image, size, call.delta, call.threshold, call.maxLineCount);
        status = lumiHoughLine_8u32f_C1R(image.pixels(), image.step(), size, call.delta, call.threshold, lines,
                                         call.maxLineCount, count.as<Lum32s>(), scratch.data());
    } else {
        LumiPointPolar clamped[2] = {{call.region[0].rho, clampedAngle(call.region[0].theta)},
                                     {call.region[1].rho, clampedAngle(call.region[1].theta)}};
        const GuardedBlock region(sizeof clamped, Guard::After);
        std::memcpy(region.data(), call.region, sizeof clamped);
        expected = regionLines(image, size, clamped, call.delta, call.threshold, call.maxLineCount);
        status = lumiHoughLine_Region_8u32f_C1R(image.pixels(), image.step(), size, lines, region.as<LumiPointPolar>(),
                                                call.maxLineCount, count.as<Lum32s>(), call.delta, call.threshold,
                                                scratch.data());
        for (int i = 0; i < 2; ++i) {
            EXPECT_TRUE(sameElement(region.as<LumiPointPolar>()[i].rho, call.region[i].rho)) << call;
            EXPECT_EQ(region.as<LumiPointPolar>()[i].theta, clamped[i].theta) << call;
        }
    }
    EXPECT_EQ(status, lumOk) << call;
    EXPECT_TRUE(sameLines(expected, list, before, *count.as<Lum32s>()))
        << size.width << " x " << size.height << ", " << call;
    EXPECT_TRUE(list.intact());
    EXPECT_TRUE(scratch.intact()) << size.width << " x " << size.height << ", " << call;
    EXPECT_TRUE(image.gapsIntact());
    return static_cast<int>(expected.size());
}

// A record of the progressive form in a block of exactly its size that nobody can write any more.
class ProgressiveSpec
{
  public:
    ProgressiveSpec(LumiSize size, LumiPointPolar delta, const Placement& place = {}, int hint = 0)
        : block_(progressiveSpecBytes(delta), place.guard, place.distance)
    {
        EXPECT_EQ(lumiHoughProbLineInit_8u32f_C1R(size, delta, hint, get()), lumOk);
        EXPECT_TRUE(block_.intact());
        block_.makeReadOnly();
    }
    LumHoughProbSpec* get() const
    {
        return reinterpret_cast<LumHoughProbSpec*>(block_.data());
    }

  private:
    PlacedBlock block_;
};

inline std::ostream& operator<<(std::ostream& stream, const Search& search)
{
    return stream << "threshold " << search.threshold << ", length " << search.lineLength << ", gap " << search.lineGap
                  << ", at most " << search.maxLineCount;
}

inline testing::AssertionResult sameSegments(const std::vector<Segment>& expected, const PlacedBlock& list,
                                             const std::vector<unsigned char>& before, Lum32s count)
{
    if (count != static_cast<Lum32s>(expected.size())) {
        return testing::AssertionFailure() << "got " << count << " segments, expected " << expected.size();
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Segment actual;
        std::memcpy(&actual, list.data() + i * sizeof actual, sizeof actual);
        const Segment& wanted = expected[i];
        if (std::memcmp(&actual, &wanted, sizeof actual) != 0) {
            return testing::AssertionFailure()
                   << "segment " << i << " of " << count << ": got " << actual.startX << ", " << actual.startY << " to "
                   << actual.endX << ", " << actual.endY << "; expected " << wanted.startX << ", " << wanted.startY
                   << " to " << wanted.endX << ", " << wanted.endY;
        }
    }
    for (std::size_t i = expected.size() * sizeof(Segment); i < list.size(); ++i) {
        if (list.data()[i] != before[i]) {
            return testing::AssertionFailure() << "a segment beyond the count was written";
        }
    }
    return testing::AssertionSuccess();
}

// Finds segments with a list and scratch of exactly the right size, and gives their number.
inline int expectSegments(const Image<Lum8u>& image, LumiPointPolar delta, const Search& search,
                          const Placement& place = {})
{
    const LumiSize size = {image.width(), image.height()};
    const Segments expected = progressiveLines(image, size, delta, search);
    const ProgressiveSpec spec(size, delta, place);
    const PlacedBlock scratch(progressiveBytes(size, delta), place.guard, place.distance);
    const PlacedBlock list(static_cast<std::size_t>(std::max(search.maxLineCount, 1)) * sizeof(Segment), Guard::After,
                           0);
    const std::vector<unsigned char> before(list.data(), list.data() + list.size());
    const GuardedBlock count(sizeof(Lum32s), Guard::After);
    *count.as<Lum32s>() = -77;
    EXPECT_EQ(lumiHoughProbLine_8u32f_C1R(image.pixels(), image.step(), size, search.threshold, search.lineLength,
                                          search.lineGap, reinterpret_cast<Lum32s*>(list.data()), search.maxLineCount,
                                          count.as<Lum32s>(), scratch.data(), spec.get()),
              expected.status)
        << size.width << " x " << size.height << ", " << search;
    EXPECT_TRUE(sameSegments(expected.lines, list, before, *count.as<Lum32s>()))
        << size.width << " x " << size.height << ", delta " << delta.rho << ", " << delta.theta << ", " << search;
    EXPECT_TRUE(list.intact());
    EXPECT_TRUE(scratch.intact()) << size.width << " x " << size.height << ", " << search;
    EXPECT_TRUE(image.gapsIntact());
    return static_cast<int>(expected.lines.size());
}

}  // namespace lumcv::test::hough
