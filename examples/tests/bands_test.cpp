// The example bands: how pictures are cut, and that bands on any number of threads give the bytes of the whole picture.
#include "bands.hpp"

#include <gtest/gtest.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/task_arena.h>

#include <string>

#include "scene.hpp"

namespace {

using bands::Band;
using bands::Chain;
using gallery::Picture;

TEST(Cut, CoversThePictureAndKeepsTheMarginInMemory)
{
    for (const int height : {1, 2, 3, 7, 8, 64, 65, 100}) {
        for (const int rows : {1, 2, 5, 8, 64, 1000}) {
            for (const int margin : {0, 1, 3, 4}) {
                SCOPED_TRACE(std::to_string(height) + " rows in bands of " + std::to_string(rows) + ", margin " +
                             std::to_string(margin));
                int top = 0;
                for (const Band& band : bands::cut(height, rows, margin)) {
                    const int bottom = band.top + band.height;
                    EXPECT_EQ(band.top, top);
                    EXPECT_GE(band.height, 1);
                    EXPECT_EQ(band.border & 0xF, lumBorderReplicate);
                    EXPECT_EQ((band.border & lumBorderInMemTop) != 0, top > 0);
                    EXPECT_EQ((band.border & lumBorderInMemBottom) != 0, bottom < height);
                    EXPECT_TRUE(top == 0 || top >= margin);
                    EXPECT_TRUE(bottom == height || height - bottom >= margin);
                    // only at the edges of the picture may a band be higher, and only the last one lower
                    EXPECT_TRUE(band.height <= rows || top == 0 || bottom == height);
                    EXPECT_TRUE(band.height >= rows || bottom == height);
                    top = bottom;
                }
                EXPECT_EQ(top, height);
            }
        }
    }
}

// A part of a drawn picture in which neighbouring pixels differ everywhere.
Picture drawnPart(int width, int height)
{
    Picture part(width, height, 1);
    gallery::Random random(static_cast<std::uint32_t>(width * 1000 + height));
    for (Lum8u& pixel : part.elements()) {
        pixel = static_cast<Lum8u>(random.below(256));
    }
    return part;
}

TEST(Bands, GiveTheBytesOfTheWholePictureOnAnyNumberOfThreads)
{
    for (const int threads : {1, 2, 8}) {
        const oneapi::tbb::global_control limit(oneapi::tbb::global_control::max_allowed_parallelism,
                                                static_cast<std::size_t>(threads));
        oneapi::tbb::task_arena arena(threads);
        for (const LumiSize size : {LumiSize{1, 1}, {40, 1}, {1, 40}, {33, 2}, {70, 7}, {129, 100}, {640, 131}}) {
            const Picture picture = drawnPart(size.width, size.height);
            const Chain chain(size);
            const Picture whole = chain.whole(picture);
            for (const int rows : {1, 2, 3, 4, 7, 16, 50, 1000}) {
                SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + " in bands of " +
                             std::to_string(rows) + " on " + std::to_string(threads) + " threads");
                Picture result(size.width, size.height, 1);
                arena.execute([&] { result = chain.inBands(picture, rows); });
                EXPECT_EQ(result.elements(), whole.elements());
            }
        }
    }
}

TEST(Bands, FindEdgesAndNothingElse)
{
    Picture step(40, 30, 1);
    for (int y = 0; y < 30; ++y) {
        for (int x = 20; x < 40; ++x) {
            step.at(x, y) = 200;
        }
    }
    const Picture edges = Chain(step.size()).inBands(step, 4);
    for (int y = 0; y < 30; ++y) {
        EXPECT_EQ(edges.at(5, y), 0);
        EXPECT_EQ(edges.at(35, y), 0);
        EXPECT_GT(edges.at(20, y), 50);
    }
}

TEST(Bands, TellWhatIsWrong)
{
    const Chain chain({20, 20});
    EXPECT_THROW(chain.inBands(Picture(20, 20, 3), 4), gallery::Failure);
}

}  // namespace
