// Gallery: distances to scattered points, the front that marches from a region's edge, and the repair of a picture.
#include <algorithm>
#include <cmath>
#include <string>

#include "repair.hpp"
#include "section.hpp"

namespace gallery {
namespace {

// Zero at the darkest pixel of each cell, 255 elsewhere.
Picture darkestPoints(const Picture& gray)
{
    constexpr int cell = 180;
    Picture points(gray.width(), gray.height(), 1, 255);
    for (int top = 0; top < gray.height(); top += cell) {
        for (int left = 0; left < gray.width(); left += cell) {
            LumiPoint darkest = {left, top};
            for (int y = top; y < std::min(top + cell, gray.height()); ++y) {
                for (int x = left; x < std::min(left + cell, gray.width()); ++x) {
                    darkest = gray.at(x, y) < gray.at(darkest.x, darkest.y) ? LumiPoint{x, y} : darkest;
                }
            }
            points.at(darkest.x, darkest.y) = 0;
        }
    }
    return points;
}

// Bands of eight pixels, darker with the distance.
Picture levels(const Image<Lum32f>& distances)
{
    return mapped<Lum8u>(distances, [](Lum32f distance) {
        const bool isOdd = std::fmod(distance, 16.0f) >= 8.0f;
        return toByte((isOdd ? 180.0f : 250.0f) - 1.4f * std::min(distance, 110.0f));
    });
}

Picture chamfer3x3(const Source& source, Shot& shot)
{
    const Picture points = darkestPoints(source.gray);
    Image<Lum32f> distances(points.width(), points.height(), 1);
    Lum32f metrics[2];
    shot.prepare(GALLERY_CALL(lumiGetDistanceTransformMask_32f(3, lumDistanceNormL2, metrics)));
    shot.time(GALLERY_CALL(lumiDistanceTransform_3x3_8u32f_C1R(points.pixels(), points.step(), distances.pixels(),
                                                               distances.step(), distances.size(), metrics)));
    return levels(distances);
}

Picture chamfer5x5(const Source& source, Shot& shot)
{
    const Picture points = darkestPoints(source.gray);
    Image<Lum32f> distances(points.width(), points.height(), 1);
    Lum32f metrics[3];
    shot.prepare(GALLERY_CALL(lumiGetDistanceTransformMask_32f(5, lumDistanceNormL2, metrics)));
    shot.time(GALLERY_CALL(lumiDistanceTransform_5x5_8u32f_C1R(points.pixels(), points.step(), distances.pixels(),
                                                               distances.step(), distances.size(), metrics)));
    return levels(distances);
}

Picture exactDistance(const Source& source, Shot& shot)
{
    const Picture points = darkestPoints(source.gray);
    Image<Lum32f> distances(points.width(), points.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(distances.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiTrueDistanceTransform_8u32f_C1R(points.pixels(), points.step(), distances.pixels(),
                                                               distances.step(), distances.size(), buffer.data())));
    return levels(distances);
}

// 255 where a blurred picture is brighter than its mean.
Picture brightRegion(const Picture& gray, Shot& shot)
{
    constexpr Lum32s kernelSize = 15;
    constexpr Lum32f sigma = 3.0f;
    Lum32s specSize = 0;
    Lum32s bufferSize = 0;
    shot.prepare(
        GALLERY_CALL(lumiFilterGaussianGetBufferSize(gray.size(), kernelSize, lumType8u, 1, &specSize, &bufferSize)));
    Block spec(static_cast<std::size_t>(specSize));
    Block buffer(static_cast<std::size_t>(bufferSize));
    auto* const pSpec = reinterpret_cast<LumFilterGaussianSpec*>(spec.data());
    shot.prepare(GALLERY_CALL(lumiFilterGaussianInit(gray.size(), kernelSize, sigma, lumBorderReplicate, lumType8u, 1,
                                                     pSpec, buffer.data())));
    Picture blurred(gray.width(), gray.height(), 1);
    shot.prepare(GALLERY_CALL(lumiFilterGaussianBorder_8u_C1R(gray.pixels(), gray.step(), blurred.pixels(),
                                                              blurred.step(), gray.size(), 0, pSpec, buffer.data())));
    double mean = 0.0;
    for (const Lum8u level : blurred.elements()) {
        mean += level;
    }
    mean /= static_cast<double>(blurred.elements().size());
    return mapped<Lum8u>(blurred, [mean](Lum8u level) { return level > mean ? Lum8u{255} : Lum8u{0}; });
}

Picture marchingFront(const Source& source, Shot& shot)
{
    constexpr Lum32f radius = 16.0f;
    const Picture region = brightRegion(source.gray, shot);
    Image<Lum32f> distances(region.width(), region.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFastMarchingGetBufferSize_8u32f_C1R(region.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiFastMarching_8u32f_C1R(region.pixels(), region.step(), distances.pixels(),
                                                      distances.step(), region.size(), radius, buffer.data())));
    Picture result(region.width(), region.height(), 3);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const Lum32f distance = distances.at(x, y);
            const bool isFront = distance < 0.0f && distance > -0.5f;
            const float tone = std::fmod(std::abs(distance), 8.0f) < 4.0f ? 1.0f : 0.8f;
            const float gray = static_cast<float>(source.gray.at(x, y)) * 0.4f;
            const float inside[3] = {255.0f, 210.0f - 4.0f * std::min(distance, 45.0f), 120.0f};
            const float band[3] = {60.0f, 130.0f + 6.0f * distance, 255.0f + 6.0f * distance};
            for (int c = 0; c < 3; ++c) {
                result.at(x, y, c) = isFront           ? Lum8u{255}
                                     : distance > 0.0f ? toByte(inside[c] * tone)
                                     : distance < 0.0f ? toByte(band[c] * tone)
                                                       : toByte(gray);
            }
        }
    }
    return result;
}

constexpr std::uint32_t scratchSeed = 5;

Picture scratched(const Source& source, Shot& shot)
{
    const Picture mask = repair::drawScratches(source.colour.size(), scratchSeed);
    Image<Lum32f> distances(mask.width(), mask.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiFastMarching_8u32f_C1R(mask.pixels(), mask.step(), distances.pixels(), distances.step(),
                                                      mask.size(), 0.0f, buffer.data())));
    return repair::painted(source.colour, mask, 255);
}

Exhibit repairBy(const char* file, const char* title, const char* note, LumiInpaintMethod method)
{
    return {file, title, note, [method](const Source& source, Shot& shot) {
                constexpr Lum32f radius = 5.0f;
                const Picture mask = repair::drawScratches(source.colour.size(), scratchSeed);
                const Picture before = repair::painted(source.colour, mask, 255);
                const Image<Lum32f> depths = repair::depths(mask);
                Lum32s specSize = 0;
                Lum32s bufferSize = 0;
                shot.prepare(GALLERY_CALL(lumiInpaintGetSize(mask.pixels(), mask.step(), mask.size(), radius, method, 3,
                                                             &specSize, &bufferSize)));
                Block spec(static_cast<std::size_t>(specSize));
                Block buffer(static_cast<std::size_t>(bufferSize));
                LumiInpaintState* state = nullptr;
                shot.prepare(GALLERY_CALL(lumiInpaintInit_8u_C3R(&state, depths.pixels(), depths.step(), mask.pixels(),
                                                                 mask.step(), mask.size(), radius, method, spec.data(),
                                                                 buffer.data())));
                Picture after(before.width(), before.height(), 3);
                shot.time(GALLERY_CALL(lumiInpaint_8u_C3R(before.pixels(), before.step(), after.pixels(), after.step(),
                                                          after.size(), state, buffer.data())));
                return after;
            }};
}

const Section distances{
    60,
    "Distances",
    "How far each pixel is from the nearest of some points, in bands of eight pixels: the closer to circles, the "
    "better "
    "the distance. The points are the darkest of their surroundings.",
    {{"chamfer-3x3", "Chamfer distance, 3x3", "Sums of straight and diagonal steps: the bands have eight corners.",
      chamfer3x3},
     {"chamfer-5x5", "Chamfer distance, 5x5", "Knight's steps as well: sixteen corners.", chamfer5x5},
     {"exact-distance", "Exact distance", "Circles.", exactDistance}},
};

const Section repairs{
    62,
    "Fast marching and repair",
    "A front that begins at the edge of a region and moves at unit speed; and pixels that are filled in the order in "
    "which such a front arrives.",
    {{"marching-front", "A marching front and its band",
      "The bright part of the picture in bands of its distance to the edge, from orange to red; around it the band of "
      "16 pixels in which the distance is negative, blue; between them the front, white.",
      marchingFront},
     {"scratched", "Scratches", "What is white is lost. The time is that of the distances, which give the order.",
      scratched},
     repairBy("repaired-by-front", "Repaired by front",
              "Each pixel from the known ones around it, most from those in the direction in which the front comes.",
              lumInpaintByFront),
     repairBy("repaired-by-isophote", "Repaired by isophote",
              "Each pixel from the known ones around it, most from those on the same line of equal level.",
              lumInpaintByIsophote)},
};

}  // namespace
}  // namespace gallery
