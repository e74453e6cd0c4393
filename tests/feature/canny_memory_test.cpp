// What Canny edges may touch: the promised pixels of each row, scratch of the queried size at any address, and of the
// caller's images nothing but the destination's ROI; one image for several threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "feature/canny_image_fixture.hpp"
#include "support/isolated_rows.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::canny {
namespace {

constexpr LumiSize kSizes[] = {{1, 1}, {2, 5}, {5, 2}, {7, 4}, {16, 3}, {17, 6}, {33, 4}, {64, 5}, {70, 9}, {131, 4}};

Layout isolated(LumiSize size, Guard guard, Margins margins = {})
{
    Layout layout;
    layout.width = size.width;
    layout.height = size.height;
    layout.guard = guard;
    layout.margins = margins;
    return layout;
}

testing::AssertionResult holds(const IsolatedRows<Lum8u>& image, const std::vector<Lum8u>& expected, LumiSize size)
{
    for (int y = 0; y < size.height; ++y) {
        const auto index = static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width);
        if (const auto same = sameElements(expected.data() + index, image.row(y), static_cast<std::size_t>(size.width));
            !same) {
            return testing::AssertionFailure() << "row " << y << ": " << same.message();
        }
    }
    return image.slackIntact();
}

TYPE_SUITE(CannyMemory, PlaneTypes, PlaneName);

// Behind, or before, each row of each image lies an unreadable page, and the planes cannot be written.
TYPE_TEST(CannyMemory, RowsOfPlanes)
{
    using Exports = PlaneExports<TypeParam>;
    Random random(3);
    for (const LumiSize size : kSizes) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            IsolatedRows<TypeParam> dx(isolated(size, guard));
            IsolatedRows<TypeParam> dy(isolated(size, guard));
            dx.forEach([&](TypeParam& element, int, int, int) {
                element = static_cast<TypeParam>(random.between(-200, 200));
            });
            dy.forEach([&](TypeParam& element, int, int, int) {
                element = static_cast<TypeParam>(random.between(-200, 200));
            });
            dx.makeReadOnly();
            dy.makeReadOnly();
            const PlacedBlock scratch(
                planeBytes(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.height)), guard);
            for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
                IsolatedRows<Lum8u> dst(isolated(size, guard));
                EXPECT_EQ(Exports::wideEdges(dx.pixels(), dx.step(), dy.pixels(), dy.step(), dst.pixels(), dst.step(),
                                             wide(size), 20, 150, norm, scratch.data()),
                          lumOk);
                EXPECT_TRUE(holds(dst, planeEdges<TypeParam>(dx, dy, size, 20, 150, norm), size))
                    << size.width << " x " << size.height;
                EXPECT_TRUE(scratch.intact());
            }
        }
    }
}

TYPE_TEST(CannyMemory, ScratchAtAnyAddress)
{
    Random random(4);
    for (std::size_t distance = 0; distance < 64; ++distance) {
        Placement place;
        place.distance = distance;
        place.guard = distance % 2 == 0 ? Guard::After : Guard::Before;
        Planes<TypeParam> planes({static_cast<int>(1 + distance % 23), 5}, place);
        const auto draw = [&](TypeParam& element, int, int, int) {
            element = static_cast<TypeParam>(random.between(-9, 9));
        };
        planes.dx.forEach(Area::Roi, draw);
        planes.dy.forEach(Area::Roi, draw);
        expectPlaneEdges(planes, 2, 7);
    }
}

// Whatever the scratch holds when the call begins.
TYPE_TEST(CannyMemory, SameBytesWithAnyScratch)
{
    for (const LumiSize size : {LumiSize{5, 3}, {40, 4}, {77, 20}}) {
        Planes<TypeParam> planes(size, Placement{});
        Random random(9);
        const auto draw = [&](TypeParam& element, int, int, int) {
            element = static_cast<TypeParam>(random.between(-50, 50));
        };
        planes.dx.forEach(Area::Roi, draw);
        planes.dy.forEach(Area::Roi, draw);
        for (const PlaneForm form : kPlaneForms) {
            const std::vector<Lum8u> expected = planeEdges<TypeParam>(planes.dx, planes.dy, size, 5, 60, normOf(form));
            PlacedBlock scratch(
                planeBytes(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.height)));
            for (const int content : {-1, 0, 255, 127, -1}) {
                if (content >= 0) {
                    std::fill_n(scratch.data(), scratch.size(), static_cast<unsigned char>(content));
                }
                Image<Lum8u> dst(Placement{}.layout<Lum8u>(size));
                EXPECT_EQ(callPlanes(planes, form, 5, 60, dst.pixels(), dst.step(), scratch.data()), lumOk);
                EXPECT_TRUE(sameImage(asImage(expected, dst.layout()), dst)) << "scratch of " << content;
            }
        }
    }
}

// Flagged sides are read as far as the mask reaches, in every row, and the others not at all.
TEST(CannyImageMemory, RowsOfImages)
{
    int number = 0;
    for (const LumiSize size : kSizes) {
        for (int flags = 0; flags < 256; flags += 16) {
            for (const Operator& chosen : kOperators) {
                ImageCall call;
                call.size = size;
                call.filter = chosen.filter;
                call.mask = chosen.mask;
                call.border = flags | (number % 2 == 0 ? lumBorderReplicate : lumBorderConstant);
                call.borderValue = 90;
                call.norm = number % 4 < 2 ? lumNormL1 : lumNormL2;
                call.content = static_cast<Content>(number % static_cast<int>(Content::Count));
                call.low = 60;
                call.high = 400;
                call.seed = number;
                call.place.guard = number % 8 < 4 ? Guard::After : Guard::Before;
                ++number;
                IsolatedRows<Lum8u> source(isolated(size, call.place.guard, call.margins()));
                IsolatedRows<Lum8u> destination(isolated(size, call.place.guard));
                const PlacedBlock scratch(call.scratchBytes(), call.place.guard);
                drawImage(source, call);
                source.makeReadOnly();
                EXPECT_EQ(call.apply(source.pixels(), source.step(), destination.pixels(), destination.step(),
                                     scratch.data()),
                          lumOk);
                EXPECT_TRUE(holds(destination, call.expected(source), size)) << call;
                EXPECT_TRUE(scratch.intact()) << call;
                ASSERT_FALSE(testing::Test::HasFailure());
            }
        }
    }
}

TEST(CannyImageMemory, ScratchAtAnyAddress)
{
    for (int distance = 0; distance < 64; ++distance) {
        for (const int height : {2, 3, 4, 7}) {
            ImageCall call;
            call.size = {1 + distance * 5 % 37, height};
            call.mask = distance % 3 == 0 ? lumMask5x5 : lumMask3x3;
            call.content = Content::Noise;
            call.low = 100;
            call.high = 300;
            call.seed = distance;
            call.place.distance = static_cast<std::size_t>(distance);
            call.place.guard = distance % 2 == 0 ? Guard::After : Guard::Before;
            expectImageEdges(call);
        }
    }
}

TEST(CannyImageMemory, SameBytesWithAnyScratch)
{
    for (const Operator& chosen : kOperators) {
        for (const LumiSize size : {LumiSize{3, 3}, {40, 2}, {4, 30}, {77, 20}}) {
            ImageCall call;
            call.size = size;
            call.filter = chosen.filter;
            call.mask = chosen.mask;
            call.content = Content::Noise;
            call.low = 200;
            call.high = 500;
            ImageOperands operands(call);
            for (const int content : {-1, 0, 255, 127, -1}) {
                if (content >= 0) {
                    std::fill_n(operands.scratch.data(), operands.scratch.size(), static_cast<unsigned char>(content));
                }
                operands.run();
                EXPECT_TRUE(operands.matchesReference()) << call << ", scratch of " << content;
            }
        }
    }
}

// The destination may be the source where no side lies in memory.
TEST(CannyImageMemory, InPlace)
{
    int number = 0;
    for (const LumiSize size : kSizes) {
        for (const Operator& chosen : kOperators) {
            for (const LumiBorderType border : {lumBorderReplicate, lumBorderConstant}) {
                for (const LumiNorm norm : {lumNormL1, lumNormL2}) {
                    ImageCall call;
                    call.size = size;
                    call.filter = chosen.filter;
                    call.mask = chosen.mask;
                    call.norm = norm;
                    call.border = border;
                    call.borderValue = 200;
                    call.content = static_cast<Content>(number % static_cast<int>(Content::Count));
                    call.low = 50;
                    call.high = 300;
                    call.seed = number;
                    call.bottomUp = number % 3 == 0;
                    call.place.gap = number % 7;
                    ++number;
                    ImageOperands operands(call);
                    Image<Lum8u>& image = operands.source;
                    const std::vector<Lum8u> expected = call.expected(image);
                    EXPECT_EQ(
                        call.apply(image.pixels(), image.step(), image.pixels(), image.step(), operands.scratch.data()),
                        lumOk);
                    EXPECT_TRUE(sameImage(asImage(expected, image.layout()), image)) << call;
                    EXPECT_TRUE(image.gapsIntact()) << call;
                }
            }
        }
    }
}

constexpr int kThreads = 2;
constexpr int kRounds = 4;

// Threads with their sources in common, each with its own destination and scratch.
TYPE_TEST(CannyMemory, ThreadsSharePlanes)
{
    const LumiSize size = {93, 31};
    Planes<TypeParam> planes(size, Placement{});
    Random random(12);
    const auto draw = [&](TypeParam& element, int, int, int) {
        element = static_cast<TypeParam>(random.between(-50, 50));
    };
    planes.dx.forEach(Area::Roi, draw);
    planes.dy.forEach(Area::Roi, draw);
    const std::vector<Lum8u> expected = planeEdges<TypeParam>(planes.dx, planes.dy, size, 5, 60, lumNormL2);
    std::vector<Image<Lum8u>> results(kThreads * kRounds, Image<Lum8u>(Placement{}.layout<Lum8u>(size)));
    std::vector<LumStatus> statuses(results.size(), lumErrGeneric);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            std::vector<Lum8u> scratch(planeBytes(93, 31));
            for (std::size_t i = thread; i < results.size(); i += kThreads) {
                statuses[i] = callPlanes(planes, PlaneForm::WideL2, 5, 60, results[i].pixels(), results[i].step(),
                                         scratch.data());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
        EXPECT_EQ(statuses[i], lumOk);
        EXPECT_TRUE(sameImage(asImage(expected, results[i].layout()), results[i])) << "call " << i;
    }
}

TEST(CannyImageMemory, ThreadsShareAnImage)
{
    for (const int height : {3, 31}) {
        ImageCall call;
        call.size = {93, height};
        call.content = Content::Noise;
        call.low = 100;
        call.high = 500;
        const ImageOperands operands(call);
        std::vector<Image<Lum8u>> results(kThreads * kRounds, Image<Lum8u>(call.destinationLayout()));
        std::vector<LumStatus> statuses(results.size(), lumErrGeneric);
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&, thread] {
                std::vector<Lum8u> scratch(call.scratchBytes());
                for (std::size_t i = thread; i < results.size(); i += kThreads) {
                    statuses[i] = call.apply(operands.source.pixels(), operands.source.step(), results[i].pixels(),
                                             results[i].step(), scratch.data());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        const std::vector<Lum8u> expected = call.expected(operands.source);
        for (std::size_t i = 0; i < results.size(); ++i) {
            EXPECT_EQ(statuses[i], lumOk);
            EXPECT_TRUE(sameImage(asImage(expected, results[i].layout()), results[i])) << "call " << i;
        }
    }
}

}  // namespace
}  // namespace lumcv::test::canny
