// What FAST corners read and write: rows against unreadable pages, blocks at any address, any scratch, two threads.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "feature/fast_fixture.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::fast {
namespace {

// The pixel of a map that stands for the first one of a ROI that begins `before` pixels earlier; it need not exist.
Lum8u* earlier(Lum8u* pixels, int step, int beforeX, int beforeY)
{
    const std::intptr_t distance = static_cast<std::intptr_t>(beforeY) * step + beforeX;
    return reinterpret_cast<Lum8u*>(reinterpret_cast<std::intptr_t>(pixels) - distance);
}

// The maps have memory for the part of the ROI that lies in the image and not for the rest; behind, or before, each row
// of theirs and of the image lies an unreadable page.
void expectOnlyTheCutRoi(const Call& call)
{
    const auto layout = [&](int width, int height) {
        Layout result;
        result.width = width;
        result.height = height;
        result.guard = call.place.guard;
        return result;
    };
    IsolatedRows<Lum8u> image(layout(call.image.width, call.image.height));
    Random random(static_cast<std::uint64_t>(call.seed));
    draw([&](int x, int y) -> Lum8u& { return image.at(x, y); }, call.image, call.content, call.setting.radius, random);
    image.makeReadOnly();
    const Result expected = detect(image, call.image, call.offset, call.roi, call.setting);
    ASSERT_FALSE(expected.isEmpty);
    const int skippedX = std::max(-call.offset.x, 0);
    const int skippedY = std::max(-call.offset.y, 0);
    const int width = std::min(call.offset.x + call.roi.width, call.image.width) - std::max(call.offset.x, 0);
    const int height = std::min(call.offset.y + call.roi.height, call.image.height) - std::max(call.offset.y, 0);
    IsolatedRows<Lum8u> corner(layout(width, height));
    IsolatedRows<Lum8u> score(layout(width, height));
    const Spec spec(call.image, call.setting, call.place);
    const PlacedBlock scratch(scratchBytes(call.roi.width), call.place.guard, call.place.distance);
    Lum32s count = -1;
    const bool hasScore = call.setting.has(lumFastNScore);
    if (!hasScore) {
        score.makeReadOnly();
    }
    EXPECT_EQ(
        lumiFastN_8u_C1R(image.pixels(), image.step(), earlier(corner.pixels(), corner.step(), skippedX, skippedY),
                         corner.step(), earlier(score.pixels(), score.step(), skippedX, skippedY), score.step(), &count,
                         call.offset, call.roi, spec.get(), scratch.data()),
        expected.status)
        << call;
    EXPECT_EQ(count, expected.count) << call;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Found& found =
                expected.pixels[static_cast<std::size_t>((y + skippedY) * call.roi.width + x + skippedX)];
            ASSERT_EQ(corner.at(x, y), found.corner) << call << ", pixel " << x << ", " << y;
            if (hasScore) {
                ASSERT_EQ(score.at(x, y), found.score) << call << ", pixel " << x << ", " << y;
            }
        }
    }
    EXPECT_TRUE(corner.slackIntact()) << call;
    EXPECT_TRUE(score.slackIntact()) << call;
    EXPECT_TRUE(scratch.intact()) << call;
}

TEST(FastMemory, RowsOfImagesAndMaps)
{
    Random random(1);
    int number = 0;
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const int width : {1, 7, 8, 15, 17, 21, 22, 23, 31, 38, 39, 63, 64, 65, 70, 71, 72, 130, 134}) {
            for (int i = 0; i < 8; ++i) {
                const int radius = i < 4 ? 3 : kRadii[number % 6];
                Call call;
                call.setting = {radius, radius == 3 ? 9 : shortestArc(radius), 9, kModes[number % 6], 8};
                call.image = {width, 2 * radius + 1 + number % 4};
                call.roi = call.image;
                call.content = static_cast<Content>(number % static_cast<int>(Content::Count));
                call.seed = number;
                call.place.guard = guard;
                if (i % 2 == 1) {
                    call.offset = {static_cast<int>(random.between(-9, width - 1)),
                                   static_cast<int>(random.between(-3, call.image.height - 1))};
                    call.roi = {std::max(1, -call.offset.x + 1 + static_cast<int>(random.between(0, width))),
                                std::max(1, -call.offset.y + 1 + static_cast<int>(random.between(0, 15)))};
                }
                expectOnlyTheCutRoi(call);
                ASSERT_FALSE(HasFailure());
                ++number;
            }
        }
    }
}

TEST(FastMemory, BlocksAtAnyAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const int radius = distance % 3 == 0 ? kRadii[distance % 6] : 3;
            const int arc = radius == 3 ? 9 : shortestArc(radius);
            Call call = Call::whole({30 + distance % 17, 24}, {radius, arc, 64, kModes[distance % 6], 9},
                                    Content::Patches, distance);
            call.place.distance = static_cast<std::size_t>(distance);
            call.place.guard = guard;
            expectCorners(call);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// Whatever the scratch and the maps hold when the call begins, and however often it is made.
TEST(FastMemory, SameBytesWithAnyScratch)
{
    const LumiSize size = {85, 40};
    Image<Lum8u> image(Placement{}.layout(size));
    Random random(2);
    draw(image, Content::Patches, 3, random);
    for (const int mode : kModes) {
        for (const int arc : {9, 10}) {
            const Setting setting = {3, arc, 20, mode, 10};
            const Result expected = detect(image, size, {0, 0}, size, setting);
            const Spec spec(size, setting);
            const PlacedBlock scratch(scratchBytes(size.width));
            Image<Lum8u> corner(Placement{}.layout(size));
            Image<Lum8u> score(Placement{}.layout(size));
            for (const int content : {-1, 0, 255, 127, -1}) {
                if (content >= 0) {
                    std::memset(scratch.data(), content, scratch.size());
                    corner.forEach(Area::Roi,
                                   [&](Lum8u& element, int, int, int) { element = static_cast<Lum8u>(content); });
                }
                Lum32s count = -1;
                EXPECT_EQ(lumiFastN_8u_C1R(image.pixels(), image.step(), corner.pixels(), corner.step(), score.pixels(),
                                           score.step(), &count, {0, 0}, size, spec.get(), scratch.data()),
                          lumOk);
                EXPECT_EQ(count, expected.count);
                const auto cornerAt = [&](int x, int y) { return int{corner.at(x, y)}; };
                const auto scoreAt = [&](int x, int y) { return int{score.at(x, y)}; };
                EXPECT_TRUE(sameMap("corners", expected, size, &Found::corner, cornerAt, cornerAt)) << setting;
                if (setting.has(lumFastNScore)) {
                    EXPECT_TRUE(sameMap("scores", expected, size, &Found::score, scoreAt, scoreAt)) << setting;
                }
            }
        }
    }
}

// A record made for a large image serves smaller ROIs of it with the scratch of these.
TEST(FastMemory, SmallRoisOfALargeImage)
{
    long corners = 0;
    for (int number = 0; number < 30; ++number) {
        Call call;
        call.image = {300, 90};
        call.setting = {3, number % 2 == 0 ? 9 : 11, 30, kModes[number % 6], 10};
        call.content = Content::Patches;
        call.seed = 5;
        call.offset = {number * 9, number * 2};
        call.roi = {1 + number, 30 - number};
        corners += expectCorners(call);
    }
    EXPECT_GT(corners, 100);
}

// Two threads with one record and one image in common.
TEST(FastMemoryThreads, ShareARecord)
{
    const LumiSize size = {93, 31};
    Image<Lum8u> image(Placement{}.layout(size));
    Random random(3);
    draw(image, Content::Patches, 3, random);
    for (const int arc : {9, 10}) {
        const Setting setting = {3, arc, 16, kMaxima | kOrientation, 10};
        const Spec spec(size, setting);
        const Result expected = detect(image, size, {0, 0}, size, setting);
        std::vector<Image<Lum8u>> maps(8, Image<Lum8u>(Placement{}.layout(size)));
        std::vector<Lum32s> counts(8, -1);
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < 2; ++thread) {
            threads.emplace_back([&, thread] {
                std::vector<Lum8u> scratch(scratchBytes(size.width));
                std::vector<Lum8u> score(static_cast<std::size_t>(size.width * size.height));
                for (std::size_t i = thread; i < maps.size(); i += 2) {
                    lumiFastN_8u_C1R(image.pixels(), image.step(), maps[i].pixels(), maps[i].step(), score.data(),
                                     size.width, &counts[i], {0, 0}, size, spec.get(), scratch.data());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t i = 0; i < maps.size(); ++i) {
            EXPECT_EQ(counts[i], expected.count);
            const auto read = [&](int x, int y) { return int{maps[i].at(x, y)}; };
            EXPECT_TRUE(sameMap("corners", expected, size, &Found::corner, read, read)) << "call " << i;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::fast
