// Pictures with corners, edges and flat parts, and the comparison of a measure with its reference: images with exactly
// the promised margins and scratch of exactly the told size, against unreadable pages.
#pragma once

#include <type_traits>

#include "feature/corner_calls.hpp"
#include "filter/filter_setting.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/placed_block.hpp"

namespace lumcv::test::corners {

/// Draws by turns: values at random, noise of two levels, blocks with sharp edges, a slope with a little noise.
template <class S>
S pictureValue(const FilterSetting& setting, int x, int y, Random& random)
{
    constexpr bool floats = std::is_same_v<S, Lum32f>;
    const auto noise = [&] { return static_cast<int>(random.between(0, 1)); };
    switch (setting.seed % 4) {
        case 0:
            return random.value<S>(setting.values);
        case 1:
            return static_cast<S>(noise() * (floats ? 0.37f : 1.0f));
        case 2:
            return static_cast<S>((((x + 1000) / 7 + (y + 1000) / 5) % 2) * (floats ? 0.83f : 200.0f));
        default:
            return static_cast<S>(((3 * (x + 40) + 2 * (y + 40) + noise()) & 255) * (floats ? 0.013f : 1.0f));
    }
}

/// Floats are multiplied by the magnitude.
template <class SourceImage>
void draw(SourceImage& image, const FilterSetting& setting, [[maybe_unused]] Lum32f magnitude = 1)
{
    using S = typename SourceImage::Element;
    Random random(static_cast<std::uint64_t>(setting.seed));
    const auto drawElement = [&](S& element, int x, int y, int) {
        element = pictureValue<S>(setting, x, y, random);
        if constexpr (std::is_same_v<S, Lum32f>) {
            element = element * magnitude;
        }
    };
    if constexpr (std::is_same_v<SourceImage, IsolatedRows<S>>) {
        image.forEach(drawElement);
        image.makeReadOnly();
    } else {
        image.forEach(Area::WithMargins, drawElement);
    }
}

template <class S>
S drawBorderValue(const FilterSetting& setting)
{
    Random random(static_cast<std::uint64_t>(setting.seed) + 1000);
    return std::is_same_v<S, Lum32f> ? static_cast<S>(random.between(-20, 20) * 0.1f)
                                     : static_cast<S>(random.between(0, 255));
}

template <class SourceImage>
MeasureCall callOf(const FilterSetting& setting, const SourceImage& source, Image<Lum32f>& destination,
                   const PlacedBlock& scratch)
{
    return {source.pixels(),
            source.step(),
            destination.pixels(),
            destination.step(),
            setting.size,
            0,
            0,
            0,
            setting.border,
            0,
            scratch.data()};
}

inline PlacedBlock scratchOf(const FilterSetting& setting, Wide bytes)
{
    return PlacedBlock(static_cast<std::size_t>(bytes), setting.guard, setting.distance);
}

inline Image<Lum32f> destinationOf(FilterSetting setting, int channels = 1)
{
    setting.channels = channels;
    return Image<Lum32f>(setting.layout<Lum32f>());
}

inline void expectResult(Measure measure, const MeasureCall& call, const Image<Lum32f>& expected,
                         const Image<Lum32f>& destination, const PlacedBlock& scratch)
{
    EXPECT_EQ(measure(call), lumOk);
    EXPECT_TRUE(sameImage(expected, destination));
    EXPECT_TRUE(destination.gapsIntact());
    EXPECT_TRUE(scratch.intact());
}

/// Both eigenvalue measures; where the border is plainly replicated also their forms without a border.
template <class S, template <class> class SourceImage = Image>
void expectEigen(const FilterSetting& setting, EigenParameters p, Lum32f magnitude = 1)
{
    using E = Exports<S>;
    SCOPED_TRACE(setting);
    SCOPED_TRACE(testing::Message() << "kernType " << p.kernType << ", aperture " << p.aperture << ", window "
                                    << p.window);
    SourceImage<S> source(setting.layout<S>(promisedMargins(setting.border, Margins::all(p.aperture / 2))));
    draw(source, setting, magnitude);
    const S borderValue = drawBorderValue<S>(setting);
    const Planes means = eigenMeans<S>(source, setting.size, p, setting.border, borderValue);
    const PlacedBlock scratch = scratchOf(setting, eigenBytes(setting.size, p, E::type));
    const auto run = [&](Measure measure, const Image<Lum32f>& expected) {
        Image<Lum32f> destination(expected.layout());
        MeasureCall call = callOf(setting, source, destination, scratch);
        call.kernel = p.kernType;
        call.mask = p.aperture;
        call.window = p.window;
        call.borderValue = static_cast<Lum32f>(borderValue);
        expectResult(measure, call, expected, destination, scratch);
    };
    const bool plain = setting.border == lumBorderReplicate;

    Image<Lum32f> smaller = destinationOf(setting);
    Image<Lum32f> all = destinationOf(setting, 6);
    for (int y = 0; y < setting.size.height; ++y) {
        for (int x = 0; x < setting.size.width; ++x) {
            const auto row = static_cast<std::size_t>(y);
            const auto column = static_cast<std::size_t>(x);
            const Lum32f A = means.xx[row][column];
            const Lum32f B = means.xy[row][column];
            const Lum32f C = means.yy[row][column];
            smaller.at(x, y) = minEigenValue(A, B, C, p);
            const ValuesAndVectors six = eigenValuesAndVectors(A, B, C, p);
            for (int i = 0; i < 6; ++i) {
                all.at(x, y, i) = six.element[i];
            }
        }
    }
    {
        SCOPED_TRACE("smaller eigenvalue");
        run(E::minEigenValBorder, smaller);
        if (plain) {
            run(E::minEigenVal, smaller);
        }
    }
    SCOPED_TRACE("eigenvalues and vectors");
    run(E::eigenValsVecsBorder, all);
    if (plain) {
        run(E::eigenValsVecs, all);
    }
}

template <class S, template <class> class SourceImage = Image>
void expectHarris(const FilterSetting& setting, HarrisParameters p, Lum32f k = 0.04f, Lum32f scale = 1,
                  Lum32f magnitude = 1)
{
    SCOPED_TRACE(setting);
    SCOPED_TRACE(testing::Message() << "filter " << p.filter << ", mask " << p.mask << ", window " << p.window);
    SourceImage<S> source(setting.layout<S>(promisedMargins(setting.border, pixelReach(p))));
    draw(source, setting, magnitude);
    const S borderValue = drawBorderValue<S>(setting);
    const Planes means = harrisMeans<S>(source, setting.size, p, setting.border, borderValue);
    Image<Lum32f> expected = destinationOf(setting);
    expected.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
        const auto row = static_cast<std::size_t>(y);
        const auto column = static_cast<std::size_t>(x);
        element =
            harrisResponse(means.xx[row][column], means.xy[row][column], means.yy[row][column], p.window, k, scale);
    });
    const PlacedBlock scratch = scratchOf(setting, harrisBytes(setting.size, p, Exports<S>::type));
    Image<Lum32f> destination = destinationOf(setting);
    MeasureCall call = callOf(setting, source, destination, scratch);
    call.kernel = p.filter;
    call.mask = p.mask;
    call.window = p.window;
    call.borderValue = static_cast<Lum32f>(borderValue);
    call.k = k;
    call.scale = scale;
    expectResult(Exports<S>::harris, call, expected, destination, scratch);
}

/// The derivatives and masks of Harris and of line suppression.
constexpr HarrisParameters kHarrisFilters[] = {{lumFilterSobel, lumMask3x3},
                                               {lumFilterSobel, lumMask5x5},
                                               {lumFilterScharr, lumMask3x3},
                                               {lumFilterCentralDiff, lumMask3x3}};

inline HarrisParameters withWindow(HarrisParameters p, int window)
{
    p.window = window;
    return p;
}

/// Sizes one pixel around those where tiles end: one or two tiles and the rim.
inline std::vector<LumiSize> tileSizes(HarrisParameters p, LumDataType type)
{
    const int n = p.window;
    const int t = n - 1;
    const int budget = type == lumType8u ? 8827 : 7111;
    const int u = (std::max((type == lumType8u ? 93 : 84) - t, 0) + 15) / 16 * 16;
    const int width = std::max(u, 8 * n);
    const int height = std::max(budget / (t + u) - t, 8 * n);
    const Margins reach = pixelReach(p);
    const int rim = reach.left + reach.right;
    return {{width, height},
            {width + rim - 1, height + rim + 1},
            {width + rim, height + rim},
            {width + rim + 1, height + rim - 1},
            {2 * width + rim + 1, height / 2},
            {width / 2, 2 * height + rim + 1}};
}

}  // namespace lumcv::test::corners
