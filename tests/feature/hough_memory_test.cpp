// What the Hough exports read and write: rows against unreadable pages, blocks at any address, any scratch, two
// threads.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "feature/hough_fixture.hpp"
#include "support/isolated_rows.hpp"

namespace lumcv::test::hough {
namespace {

constexpr LumiPointPolar kDelta = {1, 0.1f};
constexpr LumiPointPolar kRegion[2] = {{-20, 0.3f}, {60, 2.5f}};

// What all three forms find, one after the other, as bytes.
struct AllLines
{
    std::vector<LumiPointPolar> standard;
    std::vector<LumiPointPolar> region;
    std::vector<Segment> segments;

    bool operator==(const AllLines& other) const
    {
        const auto same = [](const auto& a, const auto& b) {
            return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
        };
        return same(standard, other.standard) && same(region, other.region) && same(segments, other.segments);
    }
};

constexpr int kRoom = 40;
constexpr int kThreshold = 3;
constexpr Search kSearch = {4, 3, 2, kRoom};

template <class ImageOfBytes>
AllLines expectedLines(const ImageOfBytes& image, LumiSize size)
{
    return {standardLines(image, size, kDelta, kThreshold, kRoom),
            regionLines(image, size, kRegion, kDelta, kThreshold, kRoom),
            progressiveLines(image, size, kDelta, kSearch).lines};
}

template <class ImageOfBytes>
AllLines foundLines(const ImageOfBytes& image, LumiSize size, const LumHoughProbSpec* spec, unsigned char* polarScratch,
                    unsigned char* scratch)
{
    AllLines found = {std::vector<LumiPointPolar>(kRoom), std::vector<LumiPointPolar>(kRoom),
                      std::vector<Segment>(kRoom)};
    Lum32s count = 0;
    EXPECT_EQ(lumiHoughLine_8u32f_C1R(image.pixels(), image.step(), size, kDelta, kThreshold, found.standard.data(),
                                      kRoom, &count, polarScratch),
              lumOk);
    found.standard.resize(static_cast<std::size_t>(count));
    LumiPointPolar region[2] = {kRegion[0], kRegion[1]};
    EXPECT_EQ(lumiHoughLine_Region_8u32f_C1R(image.pixels(), image.step(), size, found.region.data(), region, kRoom,
                                             &count, kDelta, kThreshold, polarScratch),
              lumOk);
    found.region.resize(static_cast<std::size_t>(count));
    EXPECT_GE(lumiHoughProbLine_8u32f_C1R(image.pixels(), image.step(), size, kSearch.threshold, kSearch.lineLength,
                                          kSearch.lineGap, &found.segments[0].startX, kRoom, &count, scratch, spec),
              lumOk);
    found.segments.resize(static_cast<std::size_t>(count));
    return found;
}

// Behind, or before, each row of the image lies an unreadable page, and it cannot be written.
TEST(HoughMemory, RowsOfImages)
{
    long lines = 0;
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const int width : {1, 2, 7, 8, 9, 15, 16, 17, 23, 31, 32, 33, 47, 48, 50, 63, 64, 65, 70, 127, 130}) {
            const LumiSize size = {width, 5};
            Layout layout;
            layout.width = size.width;
            layout.height = size.height;
            layout.guard = guard;
            IsolatedRows<Lum8u> image(layout);
            Random random(static_cast<std::uint64_t>(width));
            image.forEach([&](Lum8u& element, int, int, int) {
                element = random.oneIn(3) ? static_cast<Lum8u>(random.between(1, 255)) : Lum8u{0};
            });
            image.makeReadOnly();
            const ProgressiveSpec spec(size, kDelta);
            const PlacedBlock polar(standardBytes(size, kDelta, kRoom), guard);
            const PlacedBlock progressive(progressiveBytes(size, kDelta), guard);
            const AllLines expected = expectedLines(image, size);
            const AllLines found = foundLines(image, size, spec.get(), polar.data(), progressive.data());
            EXPECT_TRUE(found == expected) << "width " << width;
            lines += static_cast<long>(expected.standard.size() + expected.region.size() + expected.segments.size());
        }
    }
    EXPECT_GT(lines, 500);
}

TEST(HoughMemory, BlocksAtAnyAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            const Placement place = {guard, static_cast<std::size_t>(distance), distance % 7, distance % 5};
            const Image<Lum8u> image = drawn({9 + distance % 29, 2 + distance % 13}, Content::Lines, distance, place);
            expectLines(image, {{1, 0.1f}, 2, 1 + distance}, place);
            expectLines(image, {{0.7f, 0.2f}, 2, 1 + distance, kRegion}, place);
            expectSegments(image, {1, 0.1f}, {3, 2, 1, 100}, place);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// Scratch of exactly the queried size is enough for a list with room for one line or for many.
TEST(HoughMemory, AnyRoom)
{
    for (const int room : {1, 2, 3, 5, 8, 100, 5000}) {
        for (const LumiSize size : {LumiSize{1, 1}, {3, 40}, {40, 3}, {33, 33}}) {
            for (const Lum32f theta : {kAngleLimit, 0.5f, 0.02f}) {
                const Image<Lum8u> image = drawn(size, Content::Dense, room);
                expectLines(image, {{1, theta}, 1, room});
                expectLines(image, {{1, theta}, 1, room, kRegion});
            }
        }
    }
}

TEST(HoughMemory, SameBytesWithAnyScratch)
{
    const LumiSize size = {60, 40};
    const Image<Lum8u> image = drawn(size, Content::Lines, 4);
    const ProgressiveSpec spec(size, kDelta);
    const PlacedBlock polar(standardBytes(size, kDelta, kRoom));
    const PlacedBlock progressive(progressiveBytes(size, kDelta));
    const AllLines expected = expectedLines(image, size);
    EXPECT_GT(expected.standard.size(), 10u);
    EXPECT_GT(expected.region.size(), 10u);
    EXPECT_GT(expected.segments.size(), 3u);
    for (const int content : {-1, 0, 255, 127, -1}) {
        if (content >= 0) {
            std::memset(polar.data(), content, polar.size());
            std::memset(progressive.data(), content, progressive.size());
        }
        EXPECT_TRUE(foundLines(image, size, spec.get(), polar.data(), progressive.data()) == expected)
            << "scratch of " << content;
    }
}

// Two threads with one image and one record in common.
TEST(HoughMemoryThreads, ShareARecord)
{
    const LumiSize size = {60, 40};
    const Image<Lum8u> image = drawn(size, Content::Strokes, 6);
    const ProgressiveSpec spec(size, kDelta);
    const AllLines expected = expectedLines(image, size);
    std::vector<AllLines> found(6);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&, thread] {
            std::vector<unsigned char> polar(standardBytes(size, kDelta, kRoom));
            std::vector<unsigned char> progressive(progressiveBytes(size, kDelta));
            for (std::size_t i = thread; i < found.size(); i += 2) {
                found[i] = foundLines(image, size, spec.get(), polar.data(), progressive.data());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_TRUE(found[i] == expected) << "call " << i;
    }
}

}  // namespace
}  // namespace lumcv::test::hough
