// Calls at once, each with scratch of its own, on the same image.
#include <thread>
#include <vector>

#include "feature/corner_fixture.hpp"

namespace lumcv::test::corners {
namespace {

std::vector<Lum32f> allMeasures(const Image<Lum8u>& image)
{
    const LumiSize size = {image.width(), image.height()};
    std::vector<Lum32f> results;
    for (const Measure measure : {Exports<Lum8u>::harris, Exports<Lum8u>::minEigenVal, Exports<Lum8u>::eigenValsVecs}) {
        const bool harris = measure == Exports<Lum8u>::harris;
        const std::size_t bytes =
            static_cast<std::size_t>(harris ? harrisBytes(size, {}, lumType8u) : eigenBytes(size, {}, lumType8u));
        const PlacedBlock scratch(bytes);
        std::vector<Lum32f> result(static_cast<std::size_t>(size.width * size.height) * 6);
        const MeasureCall call = {image.pixels(),
                                  image.step(),
                                  result.data(),
                                  size.width * 24,
                                  size,
                                  harris ? Lum32s{lumFilterSobel} : Lum32s{lumKernSobel},
                                  harris ? Lum32s{lumMask3x3} : 3,
                                  3,
                                  lumBorderReplicate,
                                  0,
                                  scratch.data()};
        EXPECT_EQ(measure(call), lumOk);
        results.insert(results.end(), result.begin(), result.end());
    }
    std::vector<Lum8u> suppressed(static_cast<std::size_t>(size.width * size.height));
    const PlacedBlock scratch(static_cast<std::size_t>(harrisBytes(size, {}, lumType8u)));
    EXPECT_EQ(lumiLineSuppression_8u_C1R(image.pixels(), image.step(), image.pixels(), image.step(), suppressed.data(),
                                         size.width, size, lumFilterSobel, lumMask3x3, 3, 12, lumBorderReplicate, 0,
                                         scratch.data()),
              lumOk);
    results.insert(results.end(), suppressed.begin(), suppressed.end());
    return results;
}

TEST(CornersQuickThreads, CallsAtOnceGiveTheSameBytes)
{
    Image<Lum8u> image({113, 97});
    Random random(4);
    fill(image, random);
    const std::vector<Lum32f> alone = allMeasures(image);
    std::vector<Lum32f> together[2];
    std::vector<std::thread> threads;
    for (std::vector<Lum32f>& results : together) {
        threads.emplace_back([&] { results = allMeasures(image); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(together[0] == alone);
    EXPECT_TRUE(together[1] == alone);
}

}  // namespace
}  // namespace lumcv::test::corners
