// Gallery: corner measures, peaks and edges.
#include <algorithm>
#include <cmath>
#include <string>

#include "section.hpp"
#include "shapes.hpp"

namespace gallery {
namespace {

Picture harrisResponse(const Source& source, Shot& shot)
{
    constexpr int window = 3;
    constexpr Lum32f k = 0.04f;
    // the derivative at a step from black to white is 4 * 255; so such a step counts as 1
    const Lum32f scale = 1.0f / std::pow(4.0f * 255.0f * window, 4.0f);
    const Picture& gray = source.gray;
    Image<Lum32f> response(gray.width(), gray.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(
        GALLERY_CALL(lumiHarrisCornerGetBufferSize(gray.size(), lumMask3x3, window, lumType8u, 1, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiHarrisCorner_8u32f_C1R(gray.pixels(), gray.step(), response.pixels(), response.step(),
                                                      response.size(), lumFilterSobel, lumMask3x3, window, k, scale,
                                                      lumBorderReplicate, 0, buffer.data())));
    return mapped<Lum8u>(response, [](Lum32f value) {
        return toByte(128.0f + std::copysign(260.0f * std::sqrt(std::sqrt(std::abs(value))), value));
    });
}

// `run` is Shot::time where the measure is what is shown, and Shot::prepare where it is only needed.
Image<Lum32f> smallerEigenvalue(const Picture& gray, Shot& shot, decltype(&Shot::time) run)
{
    Image<Lum32f> smaller(gray.width(), gray.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiMinEigenValGetBufferSize_8u32f_C1R(gray.size(), 3, 5, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    (shot.*run)(GALLERY_CALL(lumiMinEigenVal_8u32f_C1R(gray.pixels(), gray.step(), smaller.pixels(), smaller.step(),
                                                       smaller.size(), lumKernSobel, 3, 5, buffer.data())));
    return smaller;
}

Picture smallerEigenvalueShown(const Source& source, Shot& shot)
{
    return mapped<Lum8u>(smallerEigenvalue(source.gray, shot, &Shot::time),
                         [](Lum32f value) { return toByte(48.0f * std::sqrt(std::max(value, 0.0f))); });
}

// A stroke through the middle of a pixel: the longer the larger the eigenvalue is, but within the cell's size.
void drawAxis(Picture& picture, LumiPoint middle, float value, float alongX, float alongY, const Colour& colour)
{
    const float reach = std::min(6.0f, 0.9f * std::sqrt(std::max(value, 0.0f)));
    const auto x = static_cast<float>(middle.x), y = static_cast<float>(middle.y);
    if (reach >= 1.0f) {
        drawStroke(picture, x - reach * alongX, y - reach * alongY, x + reach * alongX, y + reach * alongY, 1.2f,
                   colour);
    }
}

Picture eigenvectors(const Source& source, Shot& shot)
{
    constexpr int cell = 12;
    constexpr Colour ofLarger = {255, 170, 60};
    constexpr Colour ofSmaller = {90, 190, 255};
    const Picture& gray = source.gray;
    Image<Lum32f> eigen(gray.width(), gray.height(), 6);  // both values, then the vector of the larger and the other's
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiEigenValsVecsGetBufferSize_8u32f_C1R(gray.size(), 3, 5, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.time(GALLERY_CALL(lumiEigenValsVecs_8u32f_C1R(gray.pixels(), gray.step(), eigen.pixels(), eigen.step(),
                                                       eigen.size(), lumKernSobel, 3, 5, buffer.data())));
    Picture result = mapped<Lum8u>(source.colour, [](Lum8u value) { return static_cast<Lum8u>(value / 3); });
    for (int top = 0; top < gray.height(); top += cell) {
        for (int left = 0; left < gray.width(); left += cell) {
            Lum32f largest = 0.0f;
            LumiPoint place{};
            for (int y = top; y < std::min(top + cell, gray.height()); ++y) {
                for (int x = left; x < std::min(left + cell, gray.width()); ++x) {
                    // the vectors (0, 1) and (1, 0) come in this order, whichever of them has the larger eigenvalue
                    const bool isOrdered = eigen.at(x, y, 2) != 0.0f;
                    if (isOrdered && eigen.at(x, y) > largest) {
                        largest = eigen.at(x, y);
                        place = {x, y};
                    }
                }
            }
            if (largest > 0.0f) {
                const Lum32f* const pixel = &eigen.at(place.x, place.y);
                drawAxis(result, place, pixel[0], pixel[2], pixel[3], ofLarger);
                drawAxis(result, place, pixel[1], pixel[4], pixel[5], ofSmaller);
            }
        }
    }
    return result;
}

Picture peaksOnPicture(const Source& source, Shot& shot)
{
    constexpr Colour colour = {255, 40, 30};
    constexpr Lum32f threshold = 5.0f;
    const Image<Lum32f> smaller = smallerEigenvalue(source.gray, shot, &Shot::prepare);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiFindPeaks3x3GetBufferSize_32f_C1R(smaller.width(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    std::vector<LumiPoint> peaks(smaller.elements().size());
    const auto room = static_cast<Lum32s>(peaks.size());
    Lum32s count = 0;
    shot.time(GALLERY_CALL(lumiFindPeaks3x3_32f_C1R(smaller.pixels(), smaller.step(), smaller.size(), threshold,
                                                    peaks.data(), room, &count, lumPeakNormInf, 1, buffer.data())));
    peaks.resize(static_cast<std::size_t>(count));
    Picture result = source.colour;
    for (const LumiPoint& peak : peaks) {
        drawRing(result, static_cast<float>(peak.x), static_cast<float>(peak.y), 3.0f, 4.5f, colour);
    }
    return result;
}

Picture fastCorners(const Source& source, Shot& shot)
{
    constexpr Colour ofBrightArc = {255, 190, 60};
    constexpr Colour ofDarkArc = {90, 190, 255};
    constexpr Lum32s radius = 3, arc = 9, bins = 36;
    constexpr Lum32s mode = lumFastNCorners | lumFastNScore | lumFastNNonMaxSuppression | lumFastNOrientation;
    constexpr Lum32f threshold = 30.0f;
    const Picture& gray = source.gray;
    Lum32s specSize = 0, bufferSize = 0, count = 0;
    shot.prepare(GALLERY_CALL(lumiFastNGetSize(gray.size(), radius, arc, bins, mode, lumType8u, 1, &specSize)));
    Block block(static_cast<std::size_t>(specSize));
    auto* const spec = reinterpret_cast<LumFastNSpec*>(block.data());
    shot.prepare(GALLERY_CALL(lumiFastNInit(gray.size(), radius, arc, bins, mode, threshold, lumType8u, 1, spec)));
    shot.prepare(GALLERY_CALL(lumiFastNGetBufferSize(spec, gray.size(), &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    Picture map(gray.width(), gray.height(), 1), scores(gray.width(), gray.height(), 1);
    const LumiPoint offset = {0, 0};
    shot.time(GALLERY_CALL(lumiFastN_8u_C1R(gray.pixels(), gray.step(), map.pixels(), map.step(), scores.pixels(),
                                            scores.step(), &count, offset, map.size(), spec, buffer.data())));
    Picture result = mapped<Lum8u>(source.colour, [](Lum8u value) { return static_cast<Lum8u>(value / 2); });
    for (int row = 0; row < map.height(); ++row) {
        for (int column = 0; column < map.width(); ++column) {
            const int corner = map.at(column, row);
            if (corner == 0) {
                continue;
            }
            const Colour& colour = corner & 0x40 ? ofBrightArc : ofDarkArc;
            const auto x = static_cast<float>(column), y = static_cast<float>(row);
            // the ring begins below the corner and goes on to the left; the angle is that of what is bright on it
            const float angle = static_cast<float>(corner & 0x3f) * (6.28318531f / bins);
            drawRing(result, x, y, 2.0f, 3.0f, colour);
            drawStroke(result, x, y, x - 8.0f * std::cos(angle), y + 8.0f * std::sin(angle), 1.2f, colour);
        }
    }
    return result;
}

Exhibit cannyEdges(int low, int high, const char* note)
{
    const std::string thresholds = std::to_string(low) + " and " + std::to_string(high);
    return {
        "canny-" + std::to_string(low) + "-" + std::to_string(high), "Canny edges, thresholds " + thresholds, note,
        [low, high](const Source& source, Shot& shot) {
            const Picture& gray = source.gray;
            const auto lowThreshold = static_cast<Lum32f>(low), highThreshold = static_cast<Lum32f>(high);
            Picture edges(gray.width(), gray.height(), 1);
            Lum32s bufferSize = 0;
            shot.prepare(GALLERY_CALL(lumiCannyBorderGetSize(gray.size(), lumFilterSobel, lumMask3x3, &bufferSize)));
            Block buffer(static_cast<std::size_t>(bufferSize));
            shot.time(GALLERY_CALL(lumiCannyBorder_8u_C1R(gray.pixels(), gray.step(), edges.pixels(), edges.step(),
                                                          edges.size(), lumFilterSobel, lumMask3x3, lumBorderReplicate,
                                                          0, lowThreshold, highThreshold, lumNormL2, buffer.data())));
            return edges;
        }};
}

const Section corners{
    54,
    "Corners",
    "How the picture changes around a pixel: in no direction, in one, or in all of them.",
    {{"harris", "Harris response",
      "Middle gray is 0; corners are brighter, straight edges darker. The fourth root is shown, which goes with the "
      "contrast.",
      harrisResponse},
     {"smaller-eigenvalue", "The smaller eigenvalue",
      "Of the derivatives' products around each pixel: large where the picture changes in every direction. The root is "
      "shown, which goes with the contrast.",
      smallerEigenvalueShown},
     {"eigenvectors", "Eigenvectors",
      "At one pixel of each cell of 12 x 12, the one of the largest eigenvalue: orange in the direction in which the "
      "picture changes most, blue in that in which it changes least, the longer the more it does.",
      eigenvectors},
     {"peaks", "Peaks of the smaller eigenvalue",
      "Pixels above the threshold that none of their eight neighbours exceeds: the corners.", peaksOnPicture},
     {"fast-corners", "FAST corners with their orientation",
      "Of the 16 pixels of a ring nine side by side are brighter than its middle (orange), or darker (blue). The "
      "stroke "
      "points to where the ring is bright.",
      fastCorners}},
};

const Section edges{
    56,
    "Canny edges",
    "Lines of one pixel where the gradient is largest across the edge. They begin above the high threshold and are "
    "followed as long as they stay above the low one.",
    {cannyEdges(40, 100, "Every clear edge."), cannyEdges(160, 400, "Only the strong ones.")},
};

}  // namespace
}  // namespace gallery
