// Gallery: what a flood reaches, components and their labels, watersheds, and speckles.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "count_objects.hpp"
#include "scene.hpp"
#include "section.hpp"

namespace gallery {
namespace {

Picture rangeFill(const Source& source, Shot& shot)
{
    Picture picture = source.colour;
    const LumiPoint seed = {picture.width() / 2, picture.height() / 8};
    constexpr Lum8u paint[3] = {255, 60, 170}, delta[3] = {24, 24, 24};
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFloodFillGetSize(picture.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    LumiConnectedComp region;
    shot.timeOnce(GALLERY_CALL(lumiFloodFill_Range8Con_8u_C3IR(picture.pixels(), picture.step(), picture.size(), seed,
                                                               paint, delta, delta, &region, buffer.data())));
    return picture;
}

Picture gradFill(const Source& source, Shot& shot)
{
    Picture picture = source.colour;
    const LumiPoint seed = {picture.width() / 2, picture.height() / 8};
    constexpr Lum8u paint[3] = {255, 60, 170}, delta[3] = {4, 4, 4};
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFloodFillGetSize_Grad(picture.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    LumiConnectedComp region;
    shot.timeOnce(GALLERY_CALL(lumiFloodFill_Grad8Con_8u_C3IR(picture.pixels(), picture.step(), picture.size(), seed,
                                                              paint, delta, delta, &region, buffer.data())));
    return picture;
}

// What is brighter than the mean once it has been smoothed.
Picture brightObjects(const Picture& gray)
{
    const Picture smooth = count::smoothed(gray, 9);
    double mean = 0.0;
    for (const Lum8u level : smooth.elements()) {
        mean += level;
    }
    count::Options options;
    options.threshold = static_cast<int>(mean / static_cast<double>(smooth.elements().size()));
    options.leastArea = 30;
    return count::objectMask(smooth, options);
}

Picture components(const Source& source, Shot& shot)
{
    const Picture objects = brightObjects(source.gray);
    Image<Lum32s> labels(objects.width(), objects.height(), 1);
    Lum32s bufferSize = 0, number = 0;
    shot.prepare(GALLERY_CALL(lumiLabelMarkersGetBufferSize_8u32s_C1R(objects.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiLabelMarkers_8u32s_C1R(objects.pixels(), objects.step(), labels.pixels(), labels.step(),
                                                      labels.size(), 1, 0x7FFFFFFE, lumDistanceNormInf, &number,
                                                      buffer.data())));
    return count::coloured(source.gray, count::measured(objects, true));
}

// How much a pixel differs from those to its left and above: low within objects, high at their edges.
Picture slopes(const Picture& gray)
{
    Picture result(gray.width(), gray.height(), 1);
    for (int y = 1; y < gray.height(); ++y) {
        for (int x = 1; x < gray.width(); ++x) {
            const int across = gray.at(x, y) - gray.at(x - 1, y), down = gray.at(x, y) - gray.at(x, y - 1);
            result.at(x, y) = static_cast<Lum8u>(std::min(255, std::abs(across) + std::abs(down)));
        }
    }
    return result;
}

// A grid of seeds, each with a label of its own. 65535 is none.
Image<Lum16u> seedGrid(LumiSize size, int distance)
{
    Image<Lum16u> markers(size.width, size.height, 1);
    int label = 0;
    for (int y = distance / 2; y < size.height; y += distance) {
        for (int x = distance / 2; x < size.width; x += distance) {
            markers.at(x, y) = static_cast<Lum16u>(1 + label++ % 65534);
        }
    }
    return markers;
}

// Each region in its mean colour; between them, what the labels do not reach is dark.
Picture inMeanColours(const Picture& colour, const Image<Lum16u>& labels)
{
    std::vector<std::array<int, 4>> sums(65536);
    for (int y = 0; y < colour.height(); ++y) {
        for (int x = 0; x < colour.width(); ++x) {
            auto& sum = sums[labels.at(x, y)];
            for (int channel = 0; channel < 3; ++channel) {
                sum[static_cast<std::size_t>(channel)] += colour.at(x, y, channel);
            }
            ++sum[3];
        }
    }
    sums[65535] = {30, 20, 40, 1};
    Picture result(colour.width(), colour.height(), 3);
    for (int y = 0; y < colour.height(); ++y) {
        for (int x = 0; x < colour.width(); ++x) {
            const auto& sum = sums[labels.at(x, y)];
            for (int channel = 0; channel < 3; ++channel) {
                result.at(x, y, channel) = static_cast<Lum8u>(sum[static_cast<std::size_t>(channel)] / sum[3]);
            }
        }
    }
    return result;
}

Picture watershed(const Source& source, Shot& shot)
{
    const Picture heights = slopes(count::smoothed(source.gray, 5));
    Image<Lum16u> markers = seedGrid(heights.size(), 24);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiSegmentWatershedGetBufferSize_8u16u_C1R(heights.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.timeOnce(GALLERY_CALL(lumiSegmentWatershed_8u16u_C1IR(heights.pixels(), heights.step(), markers.pixels(),
                                                               markers.step(), markers.size(), 0,
                                                               lumSegmentByCost | lumSegmentBound4, buffer.data())));
    return inMeanColours(source.colour, markers);
}

// Five levels, with noise that makes the edges between them ragged.
Picture fewLevels(const Picture& gray)
{
    Random random(3);
    return mapped<Lum8u>(gray, [&](Lum8u level) {
        const int noisy = std::clamp(level + random.below(25) - 12, 0, 255);
        return static_cast<Lum8u>(40 + noisy / 52 * 50);
    });
}

Picture speckled(const Source& source, Shot&)
{
    return fewLevels(source.gray);
}

Picture withoutSpeckles(const Source& source, Shot& shot)
{
    Picture picture = fewLevels(source.gray);
    constexpr Lum8u black = 0, difference = 0;
    constexpr Lum32s largest = 40;
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiMarkSpecklesGetBufferSize(picture.size(), lumType8u, 1, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.timeOnce(GALLERY_CALL(lumiMarkSpeckles_8u_C1IR(picture.pixels(), picture.step(), picture.size(), black,
                                                        largest, difference, lumNormInf, buffer.data())));
    return picture;
}

const Section segmentation{
    70,
    "Segmentation",
    "Pixels that belong together: reached from a seed, joined to components, grown together, or too few to be "
    "anything.",
    {{"flood-range", "Flood fill within a range",
      "From one pixel above the middle to all that are joined with it and differ from it by 24 levels at most, pink.",
      rangeFill},
     {"flood-grad", "Flood fill along slopes",
      "From the same pixel to all that are reached by steps of 4 levels at most: slopes are followed however far they "
      "go, edges are not crossed.",
      gradFill},
     {"components", "Components",
      "What is brighter than the mean, labelled: a colour and a box for each component of 30 pixels and more.",
      components},
     {"watershed", "Watershed from a grid of seeds",
      "Regions that grow from seeds 24 pixels apart, over slopes as heights, each in its mean colour. They meet at the "
      "edges of objects, where boundaries are marked.",
      watershed},
     {"speckled", "Before: speckles", "The picture in five levels, after some noise.", speckled},
     {"speckles-marked", "After: speckles marked", "Regions of one level with 40 pixels or fewer are black.",
      withoutSpeckles}},
};

}  // namespace
}  // namespace gallery
