// Gallery: straight lines among the edges, by both Hough transforms.
#include <cmath>

#include "section.hpp"
#include "shapes.hpp"

namespace gallery {
namespace {

// cells of the plane of lines: one pixel, one degree
constexpr LumiPointPolar cell = {1.0f, 0.0174532925f};

Picture strongEdges(const Picture& gray, Shot& shot)
{
    Picture edges(gray.width(), gray.height(), 1);
    Lum32s bufferSize = 0;
    shot.prepare(GALLERY_CALL(lumiCannyBorderGetSize(gray.size(), lumFilterSobel, lumMask3x3, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    shot.prepare(GALLERY_CALL(lumiCannyBorder_8u_C1R(gray.pixels(), gray.step(), edges.pixels(), edges.step(),
                                                     edges.size(), lumFilterSobel, lumMask3x3, lumBorderReplicate, 0,
                                                     100.0f, 250.0f, lumNormL2, buffer.data())));
    return edges;
}

Picture dimmed(const Picture& picture)
{
    return mapped<Lum8u>(picture, [](Lum8u value) { return static_cast<Lum8u>(value / 2); });
}

Picture linesOnPicture(const Source& source, Shot& shot)
{
    constexpr Colour colour = {255, 150, 40};
    constexpr Lum32s room = 40, votes = 60;
    const Picture edges = strongEdges(source.gray, shot);
    Lum32s bufferSize = 0, count = 0;
    shot.prepare(GALLERY_CALL(lumiHoughLineGetSize_8u_C1R(edges.size(), cell, room, &bufferSize)));
    Block buffer(static_cast<std::size_t>(bufferSize));
    std::vector<LumiPointPolar> found(room);
    shot.time(GALLERY_CALL(lumiHoughLine_8u32f_C1R(edges.pixels(), edges.step(), edges.size(), cell, votes,
                                                   found.data(), room, &count, buffer.data())));
    found.resize(static_cast<std::size_t>(count));
    Picture result = dimmed(source.colour);
    for (const LumiPointPolar& line : found) {
        drawLine(result, std::cos(line.theta), std::sin(line.theta), line.rho, 1.2f, colour);
    }
    return result;
}

Picture segmentsOnPicture(const Source& source, Shot& shot)
{
    constexpr Colour ofSegment = {255, 150, 40};
    constexpr Colour ofEnd = {255, 255, 255};
    constexpr Lum32s votes = 40, length = 30, gap = 5;
    const Picture edges = strongEdges(source.gray, shot);
    Lum32s specSize = 0, bufferSize = 0, count = 0;
    shot.prepare(GALLERY_CALL(lumiHoughProbLineGetSize_8u_C1R(edges.size(), cell, &specSize, &bufferSize)));
    Block block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* const spec = reinterpret_cast<LumHoughProbSpec*>(block.data());
    shot.prepare(GALLERY_CALL(lumiHoughProbLineInit_8u32f_C1R(edges.size(), cell, 0, spec)));
    // each segment takes five edge pixels or more with it, so the list does not become full
    const auto room = static_cast<Lum32s>(edges.elements().size() / 5 + 1);
    std::vector<Lum32s> ends(4 * static_cast<std::size_t>(room));
    shot.time(GALLERY_CALL(lumiHoughProbLine_8u32f_C1R(edges.pixels(), edges.step(), edges.size(), votes, length, gap,
                                                       ends.data(), room, &count, buffer.data(), spec)));
    Picture result = dimmed(source.colour);
    for (std::size_t i = 0; i < 4 * static_cast<std::size_t>(count); i += 4) {
        const auto x0 = static_cast<float>(ends[i]), y0 = static_cast<float>(ends[i + 1]);
        const auto x1 = static_cast<float>(ends[i + 2]), y1 = static_cast<float>(ends[i + 3]);
        drawStroke(result, x0, y0, x1, y1, 2.0f, ofSegment);
        drawRing(result, x0, y0, 0.0f, 1.6f, ofEnd);
        drawRing(result, x1, y1, 0.0f, 1.6f, ofEnd);
    }
    return result;
}

const Section lines{
    58,
    "Hough lines",
    "Straight lines through the pixels of Canny edges.",
    {{"hough-lines", "Lines of most edge pixels",
      "Every edge pixel votes for the lines through it, of each degree and each pixel of distance. Up to 40 lines that "
      "are ahead of their neighbours are drawn.",
      linesOnPicture},
     {"hough-segments", "Segments",
      "Edge pixels vote in random order; a line that has 20 votes is followed in the picture at once, across gaps of "
      "up "
      "to 5 pixels, and is taken out of it.",
      segmentsOnPicture}},
};

}  // namespace
}  // namespace gallery
