// Calls of the FAST exports with operands at chosen places, compared with the reference.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <vector>

#include "feature/fast_reference.hpp"
#include "support/image.hpp"
#include "support/placed_block.hpp"
#include "support/placement.hpp"
#include "support/random.hpp"

namespace lumcv::test::fast {

constexpr int kOrientation = lumFastNOrientation;
constexpr int kCorners = lumFastNCorners;
constexpr int kScores = lumFastNCorners | lumFastNScore;
constexpr int kMaxima = kScores | lumFastNNonMaxSuppression;
constexpr int kModes[] = {
    kCorners, kScores, kMaxima, kCorners | kOrientation, kScores | kOrientation, kMaxima | kOrientation};

inline std::ostream& operator<<(std::ostream& stream, const Setting& setting)
{
    return stream << "radius " << setting.radius << ", arc " << setting.arc << ", bins " << setting.bins << ", mode "
                  << setting.mode << ", threshold " << setting.threshold;
}

// A record in a block of exactly its size that nobody can write any more.
class Spec
{
  public:
    Spec(LumiSize imageSize, const Setting& setting, const Placement& place = {})
        : block_(specBytes(setting.radius), place.guard, place.distance)
    {
        EXPECT_EQ(lumiFastNInit(imageSize, setting.radius, setting.arc, setting.bins, setting.mode, setting.threshold,
                                lumType8u, 1, get()),
                  lumOk)
            << setting;
        EXPECT_TRUE(block_.intact()) << setting;
        block_.makeReadOnly();
    }
    LumFastNSpec* get() const
    {
        return reinterpret_cast<LumFastNSpec*>(block_.data());
    }

  private:
    PlacedBlock block_;
};

// What an image holds.
enum class Content
{
    Noise,
    Binary,   // a few levels by chance
    Spots,    // on a ground that is nearly flat
    Patches,  // rectangles upon each other
    Count
};

// `pixel(x, y)` gives a reference to a pixel of the whole image.
template <class Pixel>
void draw(Pixel pixel, LumiSize size, Content content, int radius, Random& random)
{
    const auto byte = [&](std::int64_t first, std::int64_t last) {
        return static_cast<Lum8u>(random.between(first, last));
    };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            switch (content) {
                case Content::Noise:
                    pixel(x, y) = byte(0, 255);
                    break;
                case Content::Binary:
                    pixel(x, y) =
                        static_cast<Lum8u>(random.oneIn(4) ? 120 + 5 * byte(0, 3) : random.between(0, 1) * 255);
                    break;
                default:
                    pixel(x, y) = byte(124, 131);
                    break;
            }
        }
    }
    if (content != Content::Spots && content != Content::Patches) {
        return;
    }
    const int largest = content == Content::Spots ? std::max(1, radius / 2) : 3 * radius;
    const int share = content == Content::Spots ? std::max(4, 3 * radius * radius) : 4 * radius * radius;
    for (int i = 0; i <= size.width * size.height / share; ++i) {
        const auto left = static_cast<int>(random.between(-largest, size.width));
        const auto top = static_cast<int>(random.between(-largest, size.height));
        const auto right = left + static_cast<int>(random.between(1, largest));
        const auto bottom = top + static_cast<int>(random.between(1, largest));
        const Lum8u value = random.oneIn(4) ? Lum8u{255} : random.oneIn(3) ? Lum8u{0} : byte(0, 255);
        for (int y = std::max(top, 0); y < std::min(bottom, size.height); ++y) {
            for (int x = std::max(left, 0); x < std::min(right, size.width); ++x) {
                pixel(x, y) = value;
            }
        }
    }
}

inline void draw(Image<Lum8u>& image, Content content, int radius, Random& random)
{
    draw([&](int x, int y) -> Lum8u& { return image.at(x, y); }, {image.width(), image.height()}, content, radius,
         random);
}

// Compares what was written with what is expected. The functions take coordinates of the ROI; `before` gives the
// destination as it was.
template <class Read, class ReadBefore>
testing::AssertionResult sameMap(const char* name, const Result& expected, LumiSize roi, Lum8u Found::*byte,
                                 Read actual, ReadBefore before)
{
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            const Found& found = expected.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(roi.width) +
                                                 static_cast<std::size_t>(x)];
            const int wanted = found.isInside ? int{found.*byte} : before(x, y);
            const int got = actual(x, y);
            if (got != wanted) {
                return testing::AssertionFailure()
                       << name << ", pixel x " << x << ", y " << y << ": got " << got << ", expected " << wanted
                       << (found.isInside ? "" : " (not to be written)") << ", direction in bins "
                       << found.direction.bins;
            }
        }
    }
    return testing::AssertionSuccess();
}

struct Call
{
    LumiSize image = {24, 24};
    LumiPoint offset = {0, 0};
    LumiSize roi = {24, 24};
    Setting setting = {};
    Content content = Content::Patches;
    int seed = 0;
    Placement place = {};

    static Call whole(LumiSize size, const Setting& setting, Content content, int seed)
    {
        Call call;
        call.image = size;
        call.roi = size;
        call.setting = setting;
        call.content = content;
        call.seed = seed;
        return call;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Call& call)
{
    return stream << "image " << call.image.width << " x " << call.image.height << ", ROI " << call.roi.width << " x "
                  << call.roi.height << " at " << call.offset.x << ", " << call.offset.y << ", " << call.setting
                  << ", content " << static_cast<int>(call.content) << ", seed " << call.seed << ", " << call.place;
}

// Runs a call with this image and blocks of exactly the right size, and gives the number of corners.
inline int expectCorners(const Call& call, const Image<Lum8u>& image)
{
    const Setting& setting = call.setting;
    const Result expected = detect(image, call.image, call.offset, call.roi, setting);
    const Spec spec(call.image, setting, call.place);
    const PlacedBlock scratch(scratchBytes(call.roi.width), call.place.guard, call.place.distance);
    Image<Lum8u> corner(call.place.withMoreGap(3).layout(call.roi));
    Image<Lum8u> score(call.place.withMoreGap(5).layout(call.roi));
    const Image<Lum8u> cornerBefore = corner;
    const Image<Lum8u> scoreBefore = score;
    const GuardedBlock count(sizeof(Lum32s), Guard::After);
    *count.as<Lum32s>() = -77;
    const bool hasScore = setting.has(lumFastNScore);
    EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(),
                               hasScore ? score.pixels() : nullptr, hasScore ? score.step() : 0, count.as<Lum32s>(),
                               call.offset, call.roi, spec.get(), scratch.data()),
              expected.status)
        << call;
    EXPECT_EQ(*count.as<Lum32s>(), expected.isEmpty ? -77 : expected.count) << call;
    const auto reading = [](const Image<Lum8u>& from) { return [&from](int x, int y) { return int{from.at(x, y)}; }; };
    EXPECT_TRUE(sameMap("corners", expected, call.roi, &Found::corner, reading(corner), reading(cornerBefore))) << call;
    if (hasScore) {
        EXPECT_TRUE(sameMap("scores", expected, call.roi, &Found::score, reading(score), reading(scoreBefore))) << call;
    }
    for (const Found& found : expected.pixels) {
        EXPECT_TRUE(isPlausible(found.direction, setting.bins)) << found.direction.bins << ", " << call;
    }
    EXPECT_TRUE(corner.gapsIntact()) << call;
    EXPECT_TRUE(score.gapsIntact()) << call;
    EXPECT_TRUE(scratch.intact()) << call;
    return expected.count;
}

inline int expectCorners(const Call& call)
{
    Image<Lum8u> image(call.place.layout(call.image));
    Random random(static_cast<std::uint64_t>(call.seed));
    draw(image, call.content, call.setting.radius, random);
    return expectCorners(call, image);
}

}  // namespace lumcv::test::fast
