// Rows of Hough transforms of the edges of a scene.
#include "bench/feature/scene.hpp"

namespace {

using namespace lumcv::bench;

constexpr LumiPointPolar delta{1.0f, 0.0174532925f};  // one pixel, one degree
constexpr Lum32s room = 1000;

View<const Lum8u> drawEdges(Job& job)
{
    const LumiSize size = job.size();
    Job drawing(size);
    const auto image = draw(drawing, discs);
    const auto edges = job.source<Lum8u>();
    Lum32s bufferSize = 0;
    lumiCannyBorderGetSize(size, lumFilterSobel, lumMask3x3, &bufferSize);
    lumiCannyBorder_8u_C1R(image.pixels, image.step, const_cast<Lum8u*>(edges.pixels), edges.step, size, lumFilterSobel,
                           lumMask3x3, lumBorderReplicate, 0, 50, 120, lumNormL2,
                           drawing.block<Lum8u>(std::size_t(bufferSize)));
    return edges;
}

// What both forms of the standard transform take.
struct Operands
{
    LumiSize size;
    View<const Lum8u> edges;
    Lum8u* buffer;
    LumiPointPolar* list;
    Lum32s* count;

    explicit Operands(Job& job) : size(job.size()), edges(drawEdges(job))
    {
        Lum32s bufferSize = 0;
        lumiHoughLineGetSize_8u_C1R(size, delta, room, &bufferSize);
        buffer = job.block<Lum8u>(std::size_t(bufferSize));
        list = job.block<LumiPointPolar>(room);
        count = job.block<Lum32s>(1);
    }
};

auto lines()
{
    return [](Job& job) -> Call {
        return [o = Operands(job)] {
            return lumiHoughLine_8u32f_C1R(o.edges.pixels, o.edges.step, o.size, delta, 50, o.list, room, o.count,
                                           o.buffer);
        };
    };
}

// A quarter of the angles.
auto linesOfRegion()
{
    return [](Job& job) -> Call {
        return [o = Operands(job)] {
            LumiPointPolar region[2] = {{0, 0.4f}, {500, 1.2f}};
            return lumiHoughLine_Region_8u32f_C1R(o.edges.pixels, o.edges.step, o.size, o.list, region, room, o.count,
                                                  delta, 50, o.buffer);
        };
    };
}

auto segments()
{
    return [](Job& job) -> Call {
        const LumiSize size = job.size();
        const auto s = drawEdges(job);
        Lum32s specSize = 0, bufferSize = 0;
        lumiHoughProbLineGetSize_8u_C1R(size, delta, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumHoughProbSpec*>(job.block<Lum8u>(std::size_t(specSize)));
        lumiHoughProbLineInit_8u32f_C1R(size, delta, 0, spec);
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        auto* const list = job.block<Lum32s>(4 * 100 * room);
        auto* const count = job.block<Lum32s>(1);
        return [=] {
            return lumiHoughProbLine_8u32f_C1R(s.pixels, s.step, size, 50, 30, 3, list, 100 * room, count, buffer,
                                               spec);
        };
    };
}

const Rows rows{{
    {"lumiHoughLine_8u32f_C1R", "", {387, 120}, lines()},
    {"lumiHoughLine_Region_8u32f_C1R", "", {}, linesOfRegion()},
    {"lumiHoughProbLine_8u32f_C1R", "", {490, 200}, segments()},
}};

}  // namespace
