#include "find_lines.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "smooth.hpp"

namespace lines {
namespace {

using gallery::Picture;
using lumcv::Block;
using lumcv::call;

// cells of the plane of lines: one pixel, one degree
constexpr LumiPointPolar cell = {1.0f, 0.0174532925f};

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
    Block scratch;
    call<lumiCannyBorderGetSize>(smooth.size(), lumFilterSobel, lumMask3x3, scratch).throwIfError();
    Picture edges(gray.width(), gray.height(), 1);
    call<lumiCannyBorder_8u_C1R>(smooth.view(), edges.view(), edges.size(), lumFilterSobel, lumMask3x3,
                                 lumBorderReplicate, 0, static_cast<Lum32f>(options.low),
                                 static_cast<Lum32f>(options.high), lumNormL2, scratch)
        .throwIfError();
    return edges;
}

std::vector<Segment> findSegments(const Picture& edges, const SegmentOptions& options)
{
    checkSize(edges);
    lumcv::Record<LumHoughProbSpec> spec;
    Block scratch;
    call<lumiHoughProbLineGetSize_8u_C1R>(edges.size(), cell, spec, scratch).throwIfError();
    call<lumiHoughProbLineInit_8u32f_C1R>(edges.size(), cell, 0, spec).throwIfError();

    // the same call finds the same segments again, so a list that has become full is simply made longer
    for (Lum32s room = 256;; room *= 2) {
        std::vector<Lum32s> ends(4 * static_cast<std::size_t>(room));
        Lum32s count = 0;
        const lumcv::Status status = call<lumiHoughProbLine_8u32f_C1R>(
            edges.view(), edges.size(), options.votes, options.length, options.gap, ends, room, &count, scratch, spec);
        status.throwIfError();
        if (status.code() == lumWrnLineListFull) {
            continue;
        }
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
    Block scratch;
    const lumcv::Status status = call<lumiHoughLineGetSize_8u_C1R>(edges.size(), cell, room, scratch);
    status.throwIfError();
    if (status.code() == lumWrnBufferTooLarge) {
        throw gallery::Failure("the picture is too large");
    }
    std::vector<LumiPointPolar> listed(static_cast<std::size_t>(room));
    Lum32s found = 0;
    call<lumiHoughLine_8u32f_C1R>(edges.view(), edges.size(), cell, votes, listed, room, &found, scratch)
        .throwIfError();
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
