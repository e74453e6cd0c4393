// What inpainting may touch: rows against unreadable pages, blocks of any content, one image for both, states at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "distance/inpaint_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/max_cache_size.hpp"

namespace lumcv::test::distance {
namespace {

/// The same pixels, each row before or behind an unreadable page, not to be written.
template <class T>
void copyAndProtect(const Image<T>& image, IsolatedRows<T>& rows)
{
    for (int y = 0; y < image.height(); ++y) {
        std::copy_n(image.row(y), image.width() * image.channels(), rows.row(y));
    }
    rows.makeReadOnly();
}

TEST(InpaintMemory, RowsAlone)
{
    int number = 0;
    for (const LumiSize size : {LumiSize{1, 1}, {2, 5}, {7, 3}, {16, 9}, {17, 9}, {33, 12}, {70, 21}}) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (int i = 0; i < 12; ++i) {
                Repair repair;
                repair.size = size;
                repair.guard = guard;
                repair.damage = static_cast<Damage>(number % static_cast<int>(Damage::Count));
                repair.distances = static_cast<Distances>(number % 3);
                repair.radius = number % 5 == 0 ? 1.5f : static_cast<Lum32f>(number % 5);
                repair.method = number % 2 == 0 ? lumInpaintByFront : lumInpaintByIsophote;
                repair.channels = number / 2 % 2 == 0 ? 1 : 3;
                repair.seed = static_cast<std::uint64_t>(number++);
                const Layout plain = repair.layout();
                const Layout colours = repair.layout(repair.channels);
                const Image<Lum8u> mask = repair.mask();
                const Image<Lum32f> distance = repair.distanceImage(mask);
                Image<Lum8u> source(colours);
                drawPicture(source, Picture::Noise, 1);
                IsolatedRows<Lum8u> maskRows(plain);
                IsolatedRows<Lum32f> distanceRows(plain);
                IsolatedRows<Lum8u> sourceRows(colours);
                IsolatedRows<Lum8u> destination(colours);
                copyAndProtect(mask, maskRows);
                copyAndProtect(distance, distanceRows);
                copyAndProtect(source, sourceRows);
                Lum32s specBytes = 0;
                Lum32s bufferBytes = 0;
                EXPECT_EQ(lumiInpaintGetSize(maskRows.pixels(), maskRows.step(), size, repair.radius, repair.method,
                                             repair.channels, &specBytes, &bufferBytes),
                          lumOk);
                const PlacedBlock spec(static_cast<std::size_t>(specBytes), guard);
                const PlacedBlock buffer(static_cast<std::size_t>(bufferBytes), guard);
                LumiInpaintState* state = nullptr;
                const auto init = repair.channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
                EXPECT_EQ(init(&state, distanceRows.pixels(), distanceRows.step(), maskRows.pixels(), maskRows.step(),
                               size, repair.radius, repair.method, spec.data(), buffer.data()),
                          lumOk);
                const auto apply = repair.channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
                ASSERT_EQ(apply(sourceRows.pixels(), sourceRows.step(), destination.pixels(), destination.step(), size,
                                state, buffer.data()),
                          lumOk);
                Inpainting reference(mask, distance, repair.radius, repair.method);
                const Image<Lum8u> expected = reference.repair(source, colours);
                for (int y = 0; y < size.height; ++y) {
                    ASSERT_TRUE(sameElements(expected.row(y), destination.row(y),
                                             static_cast<std::size_t>(size.width * repair.channels)))
                        << "row " << y << ", " << repair;
                }
                EXPECT_TRUE(destination.slackIntact());
            }
        }
    }
}

// Blocks hold anything before Init; the scratch holds nothing from one call to the next.
TEST(InpaintMemory, SameBytesWithAnyBlocks)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        for (const int channels : {1, 3}) {
            Repair repair;
            repair.size = {31, 22};
            repair.method = method;
            repair.channels = channels;
            repair.radius = 2.5f;
            const Image<Lum8u> mask = repair.mask();
            const Image<Lum32f> distance = repair.distanceImage(mask);
            Image<Lum8u> source(repair.layout(channels));
            drawPicture(source, Picture::Bands, 1);
            const Image<Lum8u> expected =
                Inpainting(mask, distance, repair.radius, method).repair(source, source.layout());
            Lum32s specBytes = 0;
            Lum32s bufferBytes = 0;
            EXPECT_EQ(repair.sizes(mask, specBytes, bufferBytes), lumOk);
            for (const Lum8u content : {Lum8u{0}, Lum8u{255}, Lum8u{127}}) {
                std::vector<Lum8u> spec(static_cast<std::size_t>(specBytes), content);
                std::vector<Lum8u> initBuffer(static_cast<std::size_t>(bufferBytes), content);
                LumiInpaintState* state = nullptr;
                const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
                ASSERT_EQ(init(&state, distance.pixels(), distance.step(), mask.pixels(), mask.step(), repair.size,
                               repair.radius, method, spec.data(), initBuffer.data()),
                          lumOk);
                for (const Lum8u scratchContent : {Lum8u{255}, Lum8u{0}}) {
                    std::vector<Lum8u> buffer(static_cast<std::size_t>(bufferBytes), scratchContent);
                    Image<Lum8u> result(source.layout());
                    EXPECT_EQ(inpaint(repair, source, result, state, buffer.data()), lumOk);
                    EXPECT_TRUE(sameImage(expected, result)) << "blocks of " << int{content};
                }
            }
        }
    }
}

TEST(InpaintMemory, InPlace)
{
    for (const LumiInpaintMethod method : {lumInpaintByFront, lumInpaintByIsophote}) {
        for (const int channels : {1, 3}) {
            Repair repair;
            repair.size = {31, 22};
            repair.method = method;
            repair.channels = channels;
            Prepared prepared(repair);
            Image<Lum8u> image(repair.layout(channels));
            drawPicture(image, Picture::Noise, 1);
            const Image<Lum8u> expected = prepared.reference().repair(image, image.layout());
            EXPECT_EQ(inpaint(repair, image, image, prepared.state(), prepared.buffer()), lumOk);
            EXPECT_TRUE(sameImage(expected, image)) << repair;
        }
    }
}

TEST(InpaintMemory, BlocksAtAnyAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        Repair repair;
        repair.size = {1 + distance % 23, 9};
        repair.damage = distance % 3 == 0 ? Damage::Scattered : Damage::Strokes;
        repair.distance = static_cast<std::size_t>(distance);
        repair.guard = distance % 2 == 0 ? Guard::After : Guard::Before;
        repair.radius = distance % 4 == 0 ? 1.75f : 2.0f;
        repair.method = distance % 5 < 2 ? lumInpaintByFront : lumInpaintByIsophote;
        repair.channels = distance % 7 < 3 ? 1 : 3;
        Prepared(repair).expectRepaired(Picture::Noise);
    }
}

TEST(InpaintMemory, LargerThanTheCache)
{
    for (const int cacheBytes : {0, 1024}) {
        const ReportedCacheSize reported(0, cacheBytes);
        Repair repair;
        repair.size = {301, 40};
        repair.damage = Damage::Corner;
        repair.channels = 3;
        Prepared(repair).expectRepaired(Picture::Noise);
    }
}

// Two states of one mask, each in a thread.
TEST(InpaintMemory, ThreadsWithAStateEach)
{
    Repair repair;
    repair.size = {61, 47};
    repair.channels = 3;
    Image<Lum8u> source(repair.layout(3));
    drawPicture(source, Picture::Noise, 1);
    Prepared prepared[2] = {Prepared(repair), Prepared(repair)};
    const Image<Lum8u> expected = prepared[0].reference().repair(source, source.layout());
    Image<Lum8u> results[2] = {Image<Lum8u>(source.layout()), Image<Lum8u>(source.layout())};
    LumStatus statuses[2] = {lumErrGeneric, lumErrGeneric};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 3; ++round) {
                statuses[i] = inpaint(repair, source, results[i], prepared[i].state(), prepared[i].buffer());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameImage(expected, results[i]));
    }
}

}  // namespace
}  // namespace lumcv::test::distance
