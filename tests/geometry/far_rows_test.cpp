// Rows so far apart that the last one lies beyond 2 GiB: places in an image need more than 32 bits.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "geometry/gray_gradient_forms.hpp"
#include "geometry/gray_gradient_reference.hpp"
#include "geometry/sample_line_reference.hpp"
#include "geometry/subpixel_reference.hpp"
#include "geometry/undistort_forms.hpp"
#include "support/compare.hpp"
#include "support/random.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::geometry {
namespace {

/// Of the memory between its rows only the addresses are taken.
template <class T>
class FarRows
{
  public:
    FarRows(int width, int height, int channels = 1) : channels_(channels), bytes_(rowBytes * height)
    {
        void* const mapping = mmap(nullptr, bytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        require(mapping != MAP_FAILED);
        first_ = static_cast<unsigned char*>(mapping);
        Random random(static_cast<std::uint64_t>(width));
        for (int y = 0; y < height; ++y) {
            const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
            require(mprotect(first_ + y * rowBytes, page, PROT_READ | PROT_WRITE) == 0);
            for (int i = 0; i < width * channels; ++i) {
                row(y)[i] = random.value<T>(Values::Ordinary);
            }
        }
    }
    ~FarRows()
    {
        munmap(first_, bytes_);
    }
    FarRows(const FarRows&) = delete;
    FarRows& operator=(const FarRows&) = delete;

    int step() const
    {
        return rowBytes;
    }
    T* row(int y) const
    {
        return reinterpret_cast<T*>(first_ + y * rowBytes);
    }
    T& at(int x, int y, int channel = 0) const
    {
        return row(y)[x * channels_ + channel];
    }
    Image<T> copy(int width, int height) const
    {
        Image<T> result({.width = width, .height = height, .channels = channels_});
        result.forEach(Area::Roi, [this](T& element, int x, int y, int c) { element = at(x, y, c); });
        return result;
    }

  private:
    static constexpr std::ptrdiff_t rowBytes = 0x30000000;

    static void require(bool condition)
    {
        if (!condition) {
            std::fprintf(stderr, "far rows: no memory\n");
            std::abort();
        }
    }

    int channels_;
    std::size_t bytes_;
    unsigned char* first_ = nullptr;
};

constexpr LumiSize kSize = {45, 9};

TYPE_SUITE(UndistortFarRows, UndistortForms, UndistortFormName);

TYPE_TEST(UndistortFarRows, AsTheReference)
{
    using T = typename TypeParam::Element;
    const FarRows<T> source(kSize.width, kSize.height, TypeParam::channels);
    const FarRows<T> destination(kSize.width, kSize.height, TypeParam::channels);
    Random random(2);
    const Lens lens = ordinaryLens(kSize, random);
    Image<T> expected = destination.copy(kSize.width, kSize.height);
    undistort(source, expected, lens);
    EXPECT_EQ(
        TypeParam::call(source.row(0), source.step(), destination.row(0), destination.step(), kSize, lens, nullptr),
        lumOk);
    EXPECT_TRUE(sameImage(expected, destination.copy(kSize.width, kSize.height)));
}

TEST(FarRows, Maps)
{
    const FarRows<Lum32f> columns(kSize.width, kSize.height), rows(kSize.width, kSize.height);
    Random random(2);
    const Lens lens = ordinaryLens(kSize, random);
    Image<Lum32f> expectedColumns({.width = kSize.width, .height = kSize.height});
    Image<Lum32f> expectedRows({.width = kSize.width, .height = kSize.height});
    createMaps(expectedColumns, expectedRows, lens);
    EXPECT_EQ(createMaps(columns.row(0), columns.step(), rows.row(0), rows.step(), kSize, lens, nullptr), lumOk);
    EXPECT_TRUE(sameImage(expectedColumns, columns.copy(kSize.width, kSize.height)));
    EXPECT_TRUE(sameImage(expectedRows, rows.copy(kSize.width, kSize.height)));
}

TEST(FarRows, SubpixelCopies)
{
    const FarRows<Lum16u> source(kSize.width + 1, kSize.height + 1), destination(kSize.width, kSize.height);
    Image<Lum16u> expected({.width = kSize.width, .height = kSize.height});
    copySubpixel<Lum16u>(source, expected, 0.3f, 0.6f, 0);
    EXPECT_EQ(
        lumiCopySubpix_16u_C1R(source.row(0), source.step(), destination.row(0), destination.step(), kSize, 0.3f, 0.6f),
        lumOk);
    EXPECT_TRUE(sameImage(expected, destination.copy(kSize.width, kSize.height)));
    LumiPoint pMin, pMax;
    for (const LumiPoint32f point : {LumiPoint32f{20.3f, 4.4f}, {5.5f, 8.2f}, {40.1f, -1.7f}, {99.0f, 99.0f}}) {
        copyAround<Lum16u>(source, kSize, expected, point, 0);
        EXPECT_EQ(lumiCopySubpixIntersect_16u_C1R(source.row(0), source.step(), kSize, destination.row(0),
                                                  destination.step(), kSize, point, &pMin, &pMax),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, destination.copy(kSize.width, kSize.height))) << point.x << ", " << point.y;
    }
}

TEST(FarRows, LineSamples)
{
    const FarRows<Lum16u> source(kSize.width, kSize.height);
    for (const bool isBack : {false, true}) {
        const LumiPoint ends[2] = {{3, 0}, {6, 8}};
        const std::vector<LumiPoint> line = lineOf(ends[isBack ? 1 : 0], ends[isBack ? 0 : 1]);
        std::vector<Lum16u> samples(line.size());
        EXPECT_EQ(
            lumiSampleLine_16u_C1R(source.row(0), source.step(), kSize, samples.data(), line.front(), line.back()),
            lumOk);
        for (std::size_t i = 0; i < line.size(); ++i) {
            EXPECT_EQ(samples[i], source.at(line[i].x, line[i].y)) << "sample " << i;
        }
    }
}

TEST(FarRows, GrayGradient)
{
    const FarRows<Lum8u> source(kSize.width, kSize.height, 3), destination(kSize.width, kSize.height);
    for (const LumiDistanceNorm norm : kGrayNorms) {
        Image<Lum8u> expected({.width = kSize.width, .height = kSize.height});
        grayGradient(source.row(0), source.step(), expected.pixels(), expected.step(), kSize, norm);
        EXPECT_EQ(lumiGradientColorToGray_8u_C3C1R(source.row(0), source.step(), destination.row(0), destination.step(),
                                                   kSize, norm),
                  lumOk);
        EXPECT_TRUE(sameImage(expected, destination.copy(kSize.width, kSize.height))) << "norm " << norm;
    }
}

}  // namespace
}  // namespace lumcv::test::geometry
