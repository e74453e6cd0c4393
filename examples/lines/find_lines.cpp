#include "find_lines.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "smooth.hpp"

namespace lines {
namespace {

using gallery::check;
using gallery::Picture;
using Block = std::vector<Lum8u>;

// cells of the plane of lines: one pixel, one degree
constexpr LumiPointPolar cell = {1.0f, 0.0174532925f};

Block blockOf(Lum32s bytes)
{
    return Block(static_cast<std::size_t>(bytes));
}

// The query of the progressive transform stores the low 32 bits of a size that needs more.
void checkSize(const Picture& edges)
{
    const std::int64_t width = edges.width(), height = edges.height();
    const std::int64_t cells = (2 * (width + height) + 1) * 181;
    if ((width / 8 + 1) * height + 4 * (width * height + cells) > std::numeric_limits<Lum32s>::max()) {
        throw gallery::Failure("the picture is too large");
    }
}

// Whether two lines are the same but for a few pixels and degrees. Angles go round: a line turned by half a circle is
// the line again, seen from the other side.
bool isNear(const LumiPointPolar& a, const LumiPointPolar& b)
{
    constexpr float pixels = 8.0f, angle = 6 * cell.theta, half = 3.14159265f;
    const float apart = std::abs(a.theta - b.theta);
    return (apart <= angle && std::abs(a.rho - b.rho) <= pixels) ||
           (half - apart <= angle && std::abs(a.rho + b.rho) <= pixels);
}

}  // namespace

Picture findEdges(const Picture& gray, const EdgeOptions& options)
{
    const Picture smooth = gallery::smoothed(gray, 5, 1.0f);
    Lum32s bufferSize = 0;
    check(lumiCannyBorderGetSize(smooth.size(), lumFilterSobel, lumMask3x3, &bufferSize), "lumiCannyBorderGetSize");
    Block buffer = blockOf(bufferSize);
    Picture edges(gray.width(), gray.height(), 1);
    check(lumiCannyBorder_8u_C1R(smooth.pixels(), smooth.step(), edges.pixels(), edges.step(), edges.size(),
                                 lumFilterSobel, lumMask3x3, lumBorderReplicate, 0, static_cast<Lum32f>(options.low),
                                 static_cast<Lum32f>(options.high), lumNormL2, buffer.data()),
          "lumiCannyBorder_8u_C1R");
    return edges;
}

std::vector<Segment> findSegments(const Picture& edges, const SegmentOptions& options)
{
    checkSize(edges);
    Lum32s specSize = 0, bufferSize = 0;
    check(lumiHoughProbLineGetSize_8u_C1R(edges.size(), cell, &specSize, &bufferSize),
          "lumiHoughProbLineGetSize_8u_C1R");
    Block block = blockOf(specSize), buffer = blockOf(bufferSize);
    auto* const spec = reinterpret_cast<LumHoughProbSpec*>(block.data());
    check(lumiHoughProbLineInit_8u32f_C1R(edges.size(), cell, 0, spec), "lumiHoughProbLineInit_8u32f_C1R");

    // the same call finds the same segments again, so a list that has become full is simply made longer
    for (Lum32s room = 256;; room *= 2) {
        std::vector<Lum32s> ends(4 * static_cast<std::size_t>(room));
        Lum32s count = 0;
        const LumStatus status =
            lumiHoughProbLine_8u32f_C1R(edges.pixels(), edges.step(), edges.size(), options.votes, options.length,
                                        options.gap, ends.data(), room, &count, buffer.data(), spec);
        if (status == lumWrnLineListFull) {
            continue;
        }
        check(status, "lumiHoughProbLine_8u32f_C1R");
        std::vector<Segment> segments;
        for (std::size_t i = 0; i < 4 * static_cast<std::size_t>(count); i += 4) {
            segments.push_back({{ends[i], ends[i + 1]}, {ends[i + 2], ends[i + 3]}});
        }
        return segments;
    }
}

std::vector<LumiPointPolar> findStrongest(const Picture& edges, int count, int votes)
{
    if (count == 0) {
        return {};
    }
    // a line leaves high counts in the cells around its own as well; so more lines are listed than are wanted
    const Lum32s room = 16 * count;
    Lum32s bufferSize = 0;
    const LumStatus status = lumiHoughLineGetSize_8u_C1R(edges.size(), cell, room, &bufferSize);
    if (status == lumWrnBufferTooLarge) {
        throw gallery::Failure("the picture is too large");
    }
    check(status, "lumiHoughLineGetSize_8u_C1R");
    Block buffer = blockOf(bufferSize);
    std::vector<LumiPointPolar> listed(static_cast<std::size_t>(room));
    Lum32s found = 0;
    check(lumiHoughLine_8u32f_C1R(edges.pixels(), edges.step(), edges.size(), cell, votes, listed.data(), room, &found,
                                  buffer.data()),
          "lumiHoughLine_8u32f_C1R");
    listed.resize(static_cast<std::size_t>(found));

    std::vector<LumiPointPolar> strongest;
    for (const LumiPointPolar& line : listed) {
        const bool isNew = std::none_of(strongest.begin(), strongest.end(),
                                        [&](const LumiPointPolar& stronger) { return isNear(line, stronger); });
        if (isNew && strongest.size() < static_cast<std::size_t>(count)) {
            strongest.push_back(line);
        }
    }
    return strongest;
}

}  // namespace lines
