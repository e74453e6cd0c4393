// What reconstruction touches: rows that stand alone, scratch of exactly its size anywhere, strides.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "morph/reconstruct_fixture.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::reconstruct {
namespace {

TYPE_SUITE(ReconstructMemory, Cases, CaseName);

// The last byte of every row, and the first, stands at an unreadable page; the mask cannot be written.
TYPE_TEST(ReconstructMemory, RowsStandAlone)
{
    using T = typename TypeParam::T;
    Random random(71);
    for (const int width : {1, 2, 4, 7, 11, 15, 16, 17, 31, 33, 65}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const LumiDistanceNorm norm : kNorms) {
                const Pattern maskLevels = noise(width, 6, 7, random);
                const Pattern markerLevels = drawMarker(maskLevels, random);
                const Image<T> maskImage = imageOf<T>(TypeParam::form, Palette::Wide, maskLevels);
                Image<T> expected = imageOf<T>(TypeParam::form, Palette::Wide, markerLevels);
                IsolatedRows<T> mask({.width = width, .height = 6, .guard = guard});
                IsolatedRows<T> marker({.width = width, .height = 6, .guard = guard});
                mask.forEach([&](T& pixel, int x, int y, int) { pixel = maskImage.at(x, y); });
                marker.forEach([&](T& pixel, int x, int y, int) { pixel = expected.at(x, y); });
                mask.makeReadOnly();
                const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(width, 6)), guard);
                ASSERT_EQ(TypeParam::apply(mask.pixels(), mask.step(), marker.pixels(), marker.step(), {width, 6},
                                           scratch.data(), norm),
                          lumOk);
                byQueue(TypeParam::form, norm, maskImage, expected);
                for (int y = 0; y < 6; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), marker.row(y), static_cast<std::size_t>(width)))
                        << "row " << y << " of width " << width << ", " << normText(norm);
                }
                EXPECT_TRUE(marker.slackIntact());
            }
        }
    }
}

// Scratch of exactly the queried size at any byte address, at both ends of a page.
TYPE_TEST(ReconstructMemory, ScratchAtAnyAddress)
{
    using T = typename TypeParam::T;
    Random random(72);
    for (const LumiSize size : {LumiSize{33, 7}, LumiSize{1, 1}, LumiSize{4, 50}}) {
        const Pattern levels = noise(size.width, size.height, 9, random);
        const Pattern markerLevels = drawMarker(levels, random);
        const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
        const Image<T> marker = imageOf<T>(TypeParam::form, Palette::Wide, markerLevels);
        Image<T> expected[] = {marker, marker};
        byQueue(TypeParam::form, kNorms[0], mask, expected[0]);
        byQueue(TypeParam::form, kNorms[1], mask, expected[1]);
        for (std::size_t distance = 0; distance < 64; ++distance) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                const std::size_t n = (distance / 2 + static_cast<std::size_t>(guard)) % 2;
                Image<T> actual = marker;
                ASSERT_TRUE(reconstructed<TypeParam>(mask, actual, kNorms[n], guard, distance))
                    << "distance to the page " << distance;
                ASSERT_TRUE(sameImage(expected[n], actual)) << "distance to the page " << distance;
            }
        }
    }
}

// Every width and height around the lanes: the scratch of the formula does for all of them.
TYPE_TEST(ReconstructMemory, ScratchOfEverySize)
{
    using T = typename TypeParam::T;
    Random random(73);
    for (int width = 1; width <= 70; ++width) {
        const Pattern levels = noise(width, 1 + width % 4, 5, random);
        const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
        Image<T> expected = imageOf<T>(TypeParam::form, Palette::Wide, drawMarker(levels, random));
        Image<T> after = expected, before = expected;
        const LumiDistanceNorm norm = kNorms[width % 2];
        byQueue(TypeParam::form, norm, mask, expected);
        ASSERT_TRUE(reconstructed<TypeParam>(mask, after, norm, Guard::After)) << "width " << width;
        ASSERT_TRUE(reconstructed<TypeParam>(mask, before, norm, Guard::Before)) << "width " << width;
        EXPECT_TRUE(sameImage(expected, after)) << "width " << width;
        EXPECT_TRUE(sameImage(expected, before)) << "width " << width;
    }
}

// What the scratch holds at first means nothing.
TYPE_TEST(ReconstructMemory, ScratchHoldsNothing)
{
    using T = typename TypeParam::T;
    Random random(74);
    const Pattern levels = transposed(serpentine(13, 41));
    const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
    for (const LumiDistanceNorm norm : kNorms) {
        Image<T> expected = imageOf<T>(TypeParam::form, Palette::Wide, seedAt(levels, 0, 0));
        const Image<T> marker = expected;
        byQueue(TypeParam::form, norm, mask, expected);
        const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(mask.width(), mask.height())));
        for (const int byte : {0x00, 0x01, 0x7f, 0x80, 0xff, -1}) {
            for (std::size_t i = 0; i < scratch.size() && byte >= 0; ++i) {
                scratch.data()[i] = static_cast<unsigned char>(byte);
            }
            Image<T> actual = marker;  // and at last with the scratch of the call before
            ASSERT_EQ(TypeParam::apply(mask.pixels(), mask.step(), actual.pixels(), actual.step(),
                                       {mask.width(), mask.height()}, scratch.data(), norm),
                      lumOk);
            EXPECT_TRUE(sameImage(expected, actual)) << "scratch of bytes " << byte;
        }
    }
}

// Scratch for a larger ROI serves a smaller one.
TYPE_TEST(ReconstructMemory, ScratchServesSmallerRois)
{
    using T = typename TypeParam::T;
    Random random(75);
    const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(50, 20)));
    for (const LumiSize size : {LumiSize{50, 20}, LumiSize{49, 20}, LumiSize{1, 20}, LumiSize{50, 1}, LumiSize{7, 7}}) {
        const Pattern levels = noise(size.width, size.height, 4, random);
        const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
        Image<T> expected = imageOf<T>(TypeParam::form, Palette::Wide, drawMarker(levels, random));
        Image<T> actual = expected;
        byQueue(TypeParam::form, lumDistanceNormL1, mask, expected);
        ASSERT_EQ(TypeParam::apply(mask.pixels(), mask.step(), actual.pixels(), actual.step(), size, scratch.data(),
                                   lumDistanceNormL1),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, actual)) << size.width << " x " << size.height;
        EXPECT_TRUE(scratch.intact());
    }
}

// The stride of a single row leads nowhere.
TYPE_TEST(ReconstructMemory, StrideOfASingleRow)
{
    using T = typename TypeParam::T;
    constexpr int size = sizeof(T);
    Random random(76);
    const Pattern levels = noise(40, 1, 9, random);
    const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Wide, levels);
    const Image<T> marker = imageOf<T>(TypeParam::form, Palette::Wide, seedAt(levels, 17, 0));
    Image<T> expected = marker;
    byQueue(TypeParam::form, lumDistanceNormInf, mask, expected);
    for (const int step : {40 * size, 41 * size, std::numeric_limits<int>::max() / size * size}) {
        Image<T> actual = marker;
        const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(40, 1)));
        ASSERT_EQ(
            TypeParam::apply(mask.pixels(), step, actual.pixels(), step, {40, 1}, scratch.data(), lumDistanceNormInf),
            lumOk);
        EXPECT_TRUE(sameImage(expected, actual)) << "stride " << step;
    }
}

// Threads with a mask in common, each with its own marker and scratch; each call gives the same bytes.
TYPE_TEST(ReconstructMemory, ThreadsShareAMask)
{
    using T = typename TypeParam::T;
    Random random(77);
    const Pattern levels = uneven(maze(41, 31, random), random);
    const Image<T> mask = imageOf<T>(TypeParam::form, Palette::Zero, levels);
    const Image<T> marker = imageOf<T>(TypeParam::form, Palette::Zero, seedAt(levels, 20, 16));
    constexpr std::size_t threadCount = 3;
    std::array<LumStatus, threadCount> statuses{};
    std::vector<Image<T>> results(threadCount, marker);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            const PlacedBlock scratch(static_cast<std::size_t>(scratchBytes<T>(41, 31)), Guard::Before, i);
            for (int repetition = 0; repetition < 3; ++repetition) {
                std::memcpy(results[i].bytes(), marker.bytes(), marker.byteCount());
                statuses[i] = TypeParam::apply(mask.pixels(), mask.step(), results[i].pixels(), results[i].step(),
                                               {41, 31}, scratch.data(), lumDistanceNormL1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Image<T> expected = marker;
    byQueue(TypeParam::form, lumDistanceNormL1, mask, expected);
    for (std::size_t i = 0; i < threadCount; ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameUpToZeroSign(expected, results[i]));
        EXPECT_TRUE(sameBytes(results[0], results[i]));
    }
}

}  // namespace
}  // namespace lumcv::test::reconstruct
