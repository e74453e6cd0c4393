// The segmentations by type of image and method: heights and markers to try them on, calls in blocks of exactly the
// queried size, and what the plain simulations give.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <span>
#include <type_traits>

#include "segment/cost_sweep_reference.hpp"
#include "segment/queue_flood_reference.hpp"
#include "support/compare.hpp"
#include "support/placed_block.hpp"
#include "support/placement.hpp"
#include "support/sweep.hpp"

namespace lumcv::test::watershed {

constexpr int kByLevel = 1;
constexpr int kByCost = 2;

enum class Terrain
{
    Noise,      ///< all heights
    Coarse,     ///< three heights: ties everywhere
    Flat,       ///< one height
    Slope,      ///< a plane
    Waves,      ///< valleys and ridges
    Steps,      ///< wide plateaus
    Blocks,     ///< squares of drawn heights
    Labyrinth,  ///< low corridors between walls that leave a gap at alternate ends
    Extremes,   ///< the lowest and the highest height
    Count
};

enum class Seeding
{
    None,
    One,
    Few,
    Sparse,
    Dense,
    Everywhere,      ///< no pixel is free
    Edges,           ///< along the left and the right edge
    Pairs,           ///< seeds of two labels side by side
    SparseBarriers,  ///< a few seeds among scattered barriers
    BarrierWalls,    ///< rows of barriers with a gap
    OnlyBarriers,
    HighestLabels,  ///< 253 and 254, and the like of 16 bits
    OneLabel,       ///< all seeds have the same label
    Count
};

inline int heightAt(Terrain terrain, int x, int y, int c, Random& random, int shift)
{
    const int drawn = static_cast<int>(random.between(0, 255));
    switch (terrain) {
        case Terrain::Coarse:
            return 100 + drawn % 3;
        case Terrain::Flat:
            return 17 + 3 * c;
        case Terrain::Slope:
            return (2 * x + 3 * y + 7 * c + shift) & 255;
        case Terrain::Waves:
            return static_cast<int>(127.5 + 127.4 * std::sin(0.31 * (x + shift)) * std::cos(0.23 * y + c));
        case Terrain::Steps:
            return ((x + shift) / 7 * 40 + y / 5 * 70 + 30 * c) & 255;
        case Terrain::Blocks:
            return static_cast<int>(Random(static_cast<std::uint64_t>((x / 4) * 1000 + y / 3 * 7 + c + shift)).bits() &
                                    255);
        case Terrain::Labyrinth:
            return y % 2 == 1 && x % 16 != (y % 4 == 1 ? 15 : 0) ? 200 : 10 + drawn % 2;
        case Terrain::Extremes:
            return drawn % 2 == 0 ? 0 : 255;
        default:
            return drawn;
    }
}

/// Heights of bytes or floats. Floats lie on both sides of zero, with fractions; the extreme ones reach the ends.
template <class Height>
void draw(Image<Height>& heights, Terrain terrain, std::uint64_t seed)
{
    Random random(seed);
    const int shift = static_cast<int>(random.between(0, 40));
    const Lum32f fraction = random.unit<Lum32f>();
    heights.forEach(Area::Roi, [&](Height& height, int x, int y, int c) {
        const int level = heightAt(terrain, x, y, c, random, shift);
        if constexpr (std::is_same_v<Height, Lum32f>) {
            constexpr Lum32f largest = std::numeric_limits<Lum32f>::max();
            height = static_cast<Lum32f>(level - 120) + fraction;
            if (terrain == Terrain::Extremes) {
                const Lum32f choices[] = {-largest, 0.0f,    -0.0f, std::numeric_limits<Lum32f>::denorm_min(),
                                          1e-30f,   -1e-30f, 1e30f, largest / 2};
                height = choices[random.between(0, 7)];
            }
        } else {
            height = static_cast<Height>(level);
        }
    });
}

template <class Label>
Label labelAt(Seeding seeding, int x, int y, int width, int height, Random& random, int place)
{
    constexpr Label barrier = std::numeric_limits<Label>::max();
    const auto drawn = static_cast<Label>(random.between(1, 60) * (sizeof(Label) == 1 ? 4 : 1090) + 11);
    const int dice = static_cast<int>(random.between(0, 99));
    switch (seeding) {
        case Seeding::One:
            return x == place % width && y == place / width % height ? drawn : Label{0};
        case Seeding::Few:
            return dice == 0 || (x == width / 2 && y == height / 2) ? drawn : Label{0};
        case Seeding::Sparse:
            return dice < 5 ? drawn : Label{0};
        case Seeding::Dense:
            return dice < 60 ? drawn : Label{0};
        case Seeding::Everywhere:
            return drawn;
        case Seeding::Edges:
            return x == 0 || x == 1 ? Label{1} : x == width - 1 || x == width - 2 ? Label{2} : Label{0};
        case Seeding::Pairs:
            return x % 9 == 3 && y % 4 == 1 ? Label{5} : x % 9 == 4 && y % 4 == 1 ? Label{200} : Label{0};
        case Seeding::SparseBarriers:
            return dice < 25 ? barrier : dice < 31 ? drawn : Label{0};
        case Seeding::BarrierWalls:
            return y % 3 == 2 && x % 13 != place % 13 ? barrier : dice < 2 ? drawn : Label{0};
        case Seeding::OnlyBarriers:
            return dice < 50 ? barrier : Label{0};
        case Seeding::HighestLabels:
            return dice < 4 ? static_cast<Label>(barrier - 1) : dice < 8 ? static_cast<Label>(barrier - 2) : Label{0};
        case Seeding::OneLabel:
            return dice < 4 ? Label{77} : Label{0};
        default:
            return 0;
    }
}

template <class Label>
void draw(Image<Label>& marker, Seeding seeding, std::uint64_t seed)
{
    Random random(seed);
    const int place = static_cast<int>(random.between(0, 1 << 20));
    marker.forEach(Area::Roi, [&](Label& label, int x, int y, int) {
        label = labelAt<Label>(seeding, x, y, marker.width(), marker.height(), random, place);
    });
}

constexpr int kTerrains = static_cast<int>(Terrain::Count);
constexpr int kSeedings = static_cast<int>(Seeding::Count);

/// Rounded up to whole 32 bytes, or elements.
constexpr std::int64_t paddedTo32(std::int64_t n)
{
    return (n + 31) / 32 * 32;
}

struct Gradient8uC1
{
    using Height = Lum8u;
    using Label = Lum8u;
    static constexpr int channels = 1;
    static constexpr auto segment = lumiSegmentGradient_8u_C1IR;
    static constexpr auto query = lumiSegmentGradientGetBufferSize_8u_C1R;

    static std::int64_t bytes(std::int64_t width, std::int64_t height)
    {
        return 17 * width * height + 115;
    }
    static void simulate(const Image<Lum8u>& source, Image<Lum8u>& marker, unsigned norm, int flag)
    {
        GradientFlood(source, marker, norm, flag);
    }
};

struct Gradient8uC3 : Gradient8uC1
{
    static constexpr int channels = 3;
    static constexpr auto segment = lumiSegmentGradient_8u_C3IR;
    static constexpr auto query = lumiSegmentGradientGetBufferSize_8u_C3R;
};

struct Watershed8u
{
    using Height = Lum8u;
    using Label = Lum8u;
    static constexpr int channels = 1;
    static constexpr auto segment = lumiSegmentWatershed_8u_C1IR;
    static constexpr auto query = lumiSegmentWatershedGetBufferSize_8u_C1R;

    static std::int64_t bytes(std::int64_t width, std::int64_t height)
    {
        const std::int64_t byCost = height + (6 * height + 2) * paddedTo32(width) + 66;
        const std::int64_t byLevel = (width + 2) * (height + 2) + 16 * width * height + 48;
        return std::max(byCost, byLevel);
    }
    static void simulate(const Image<Lum8u>& source, Image<Lum8u>& marker, unsigned norm, int flag)
    {
        if ((flag & kByLevel) != 0) {
            LevelFlood<Lum8u>(source, marker, norm, flag);
        } else {
            marker = CostSweep<PackedCost, Lum8u>(source, marker, norm, flag).labels();
        }
    }
};

struct Watershed8u16u
{
    using Height = Lum8u;
    using Label = Lum16u;
    static constexpr int channels = 1;
    static constexpr auto segment = lumiSegmentWatershed_8u16u_C1IR;
    static constexpr auto query = lumiSegmentWatershedGetBufferSize_8u16u_C1R;

    static std::int64_t bytes(std::int64_t width, std::int64_t height)
    {
        const std::int64_t byCost = height + (6 * height + 2) * paddedTo32(2 * width) + 66;
        const std::int64_t byLevel = (2 * width + 4) * (height + 2) + 16 * width * height + 48;
        return std::max(byCost, byLevel);
    }
    static void simulate(const Image<Lum8u>& source, Image<Lum16u>& marker, unsigned norm, int flag)
    {
        if ((flag & kByLevel) != 0) {
            LevelFlood<Lum16u>(source, marker, norm, flag);
        } else {
            marker = CostSweep<PackedCost, Lum16u>(source, marker, norm, flag).labels();
        }
    }
};

struct Watershed32f16u
{
    using Height = Lum32f;
    using Label = Lum16u;
    static constexpr int channels = 1;
    static constexpr auto segment = lumiSegmentWatershed_32f16u_C1IR;
    static constexpr auto query = lumiSegmentWatershedGetBufferSize_32f16u_C1R;

    static std::int64_t bytes(std::int64_t width, std::int64_t height)
    {
        return height + 9 * (height * ((width + 3) / 4 * 4)) + 66;
    }
    static void simulate(const Image<Lum32f>& source, Image<Lum16u>& marker, unsigned norm, int flag)
    {
        marker = CostSweep<PairCost, Lum16u>(source, marker, norm, flag).labels();
    }
};

/// How a call is made beside its images.
struct Call
{
    unsigned norm = 0;
    int flag = 0;
    Guard guard = Guard::After;
    std::size_t distance = 0;  ///< of the block from the unreadable page

    friend std::ostream& operator<<(std::ostream& stream, const Call& call)
    {
        return stream << "norm " << call.norm << ", flag " << call.flag << ", block at distance " << call.distance;
    }
};

/// The marker segmented in place, in a block of exactly the queried size.
template <class Form>
void segment(const Image<typename Form::Height>& source, Image<typename Form::Label>& marker, const Call& call)
{
    const PlacedBlock block(static_cast<std::size_t>(Form::bytes(source.width(), source.height())), call.guard,
                            call.distance);
    EXPECT_EQ(Form::segment(source.pixels(), source.step(), marker.pixels(), marker.step(),
                            {source.width(), source.height()}, call.norm, call.flag, block.data()),
              lumOk);
    EXPECT_TRUE(block.intact());
}

/// Segments a copy of the marker and compares it with the simulation.
template <class Form>
void expectSegments(const Image<typename Form::Height>& source, const Image<typename Form::Label>& marker,
                    const Call& call)
{
    Image<typename Form::Label> expected = marker;
    Form::simulate(source, expected, call.norm, call.flag);
    Image<typename Form::Label> result = marker;
    segment<Form>(source, result, call);
    EXPECT_TRUE(sameImage(expected, result)) << call << ", " << source.width() << " x " << source.height();
    EXPECT_TRUE(result.gapsIntact());
    EXPECT_TRUE(source.gapsIntact());
}

/// Terrains and seedings in turn, in as many calls as `contents` says, with each of the norms below `norms` and each of
/// the flags.
template <class Form>
void expectGeometry(const Geometry& geometry, int contents, int norms, std::span<const int> flags)
{
    Image<typename Form::Height> source(geometry.layout<typename Form::Height>(0, Form::channels));
    Image<typename Form::Label> marker(geometry.layout<typename Form::Label>(1));
    for (int i = 0; i < contents; ++i) {
        const int number = geometry.number * contents + i;
        draw(source, static_cast<Terrain>(number % kTerrains), static_cast<std::uint64_t>(number));
        draw(marker, static_cast<Seeding>(number % kSeedings), static_cast<std::uint64_t>(number));
        Call call;
        call.norm = static_cast<unsigned>(number % norms);
        call.flag = flags[static_cast<std::size_t>(number / norms) % flags.size()];
        call.guard = marker.layout().guard;
        call.distance = static_cast<std::size_t>(number % 67);
        expectSegments<Form>(source, marker, call);
    }
}

/// The same for images of many rows.
template <class Form>
void expectHigherImages(int norms, std::span<const int> flags)
{
    Geometry geometry;
    for (const int height : {4, 6, 9, 17, 40}) {
        for (const int width : {1, 2, 3, 4, 5, 8, 15, 16, 17, 18, 33, 34, 65, 70}) {
            geometry.width = width;
            geometry.height = height;
            geometry.placement = geometry.number % 3;
            SCOPED_TRACE(geometry);
            expectGeometry<Form>(geometry, 9, norms, flags);
            ASSERT_FALSE(testing::Test::HasFailure());
            ++geometry.number;
        }
    }
}

/// An image from the values of its pixels, row by row.
template <class T>
Image<T> imageOf(int width, std::initializer_list<int> values)
{
    Layout layout;
    layout.width = width;
    layout.height = static_cast<int>(values.size()) / width;
    Image<T> image(layout);
    const int* value = values.begin();
    image.forEach(Area::Roi, [&](T& element, int, int, int) { element = static_cast<T>(*value++); });
    return image;
}

inline Layout layoutOf(int width, int height, int channels = 1)
{
    Layout layout;
    layout.width = width;
    layout.height = height;
    layout.channels = channels;
    return layout;
}

}  // namespace lumcv::test::watershed
