// Hough lines in polar form, of all of the plane or of a rectangle in it. The votes of three angles are held at a time:
// those of the angle whose peaks are searched, and of its neighbours.
#include <cmath>

#include "feature/hough_peaks.hpp"
#include "feature/sine.hpp"
#include "frame/byte_counts.hpp"
#include "frame/checks.hpp"
#include "frame/rounding.hpp"

namespace lumcv::hough {
namespace {

/// What the exports hand on.
struct Call
{
    lumcv::Plane<const Lum8u> src;
    LumiSize roiSize;
    LumiPointPolar delta;
    Lum32s threshold;
    LumiPointPolar* lines;
    Lum32s room;
    Lum32s* count;
    Lum8u* buffer;
};

/// A cosine and a sine in cells, with 10 fractional bits.
struct Normal
{
    Lum32s cosine, sine;
};

class Normals
{
  public:
    explicit Normals(LumiPointPolar delta) : step_(delta.theta), scale_(static_cast<Lum64f>(1.0f / delta.rho) * 1024) {}

    /// That of the next angle, from 0 on.
    Normal next()
    {
        const SineCosine of = sineCosine(static_cast<Lum64f>(angle_));
        angle_ += step_;
        return {truncated(scale_ * of.cosine), truncated(scale_ * of.sine)};
    }

  private:
    Lum32f angle_ = 0;
    Lum32f step_;
    Lum64f scale_;
};

/// Points as couples of words; their votes are exact whole numbers, and none falls outside the cells.
class CloseList
{
  public:
    /// Whether that is so.
    static bool serves(const Call& call, const Plane& plane)
    {
        const auto width = static_cast<Lum64f>(call.roiSize.width);
        const auto height = static_cast<Lum64f>(call.roiSize.height);
        const auto scale = static_cast<Lum64f>(1.0f / call.delta.rho) * 1024;
        // the truncation of a sine and a cosine moves a vote by less than width + height of 1024 parts
        const Lum64f reach = (std::sqrt(width * width + height * height) * scale + width + height) / 1024 + 2;
        const int cellsBehind = plane.cells - 1 - plane.centre;
        return width <= 32768 && height <= 32768 && scale <= 32767 && (width + height) * scale < 1 << 24 &&
               plane.centre < 1 << 20 && reach <= plane.centre && reach <= cellsBehind;
    }

    CloseList(const Call& call, Lum32s* scratch) : points_(reinterpret_cast<Lum16s*>(scratch))
    {
        Lum16s* p = points_;
        for (int64_t y = 0; y < call.roiSize.height; ++y)
            eachPoint(call.src.row(y), call.roiSize.width, [&p, y](Lum32s x) {
                p[0] = static_cast<Lum16s>(x);
                p[1] = static_cast<Lum16s>(y);
                p += 2;
            });
        count_ = (p - points_) / 2;
    }

    [[gnu::flatten, gnu::noinline]] void vote(Normal normal, const Plane& plane, Lum32s* cells) const
    {
        const Lum32s addend = (plane.centre << 10) + 512;
        const auto couple = static_cast<Lum32u>(normal.cosine & 0xffff) | static_cast<Lum32u>(normal.sine) << 16;
        const Lum16s* const points = points_;
        const int64_t part = count_ / parts / lanes * lanes;
        for (int64_t i = 0; i < part; i += lanes) {
            alignas(64) Lum32s voted[parts][lanes];
            for (int k = 0; k < parts; ++k) {
                const auto factors = simd::reinterpreted<Lum16s>(simd::broadcast<lanes>(static_cast<Lum32s>(couple)));
                const auto couples = simd::load<2 * lanes>(points + 2 * (k * part + i));
                simd::store(voted[k],
                            (simd::neighbourProducts(couples, factors) + simd::broadcast<lanes>(addend)) >> 10);
            }
            for (int j = 0; j < lanes; j += 2) {
                uint64_t twoVotes[parts];
                for (int k = 0; k < parts; ++k)
                    __builtin_memcpy(twoVotes + k, voted[k] + j, sizeof *twoVotes);
                for (const uint64_t votes : twoVotes)
                    ++cells[static_cast<Lum32u>(votes)];
                for (const uint64_t votes : twoVotes)
                    ++cells[votes >> 32];
            }
        }
        for (int64_t i = parts * part; i < count_; ++i)
            ++cells[(points[2 * i] * normal.cosine + points[2 * i + 1] * normal.sine + addend) >> 10];
    }

  private:
    /// Of 16 bytes at all levels, which votes leave two at a time.
    static constexpr int lanes = 4;
    /// Points that follow each other often vote for the same cell, and a counter waits for its last increment; so the
    /// votes of distant parts of the list take turns.
    static constexpr int parts = 8;

    Lum16s* points_;
    int64_t count_;
};

/// Votes of single precision.
struct RoundedVotes
{
    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum32s, N> of(simd::Vec<Lum32s, N> x, Lum32s y, Normal normal)
    {
        const auto factor = [](Lum32s n) { return simd::broadcast<N>(static_cast<Lum32f>(n)); };
        return simd::toNearest(simd::toFloat(x) * factor(normal.cosine) + factor(y) * factor(normal.sine));
    }
};

/// Votes of integers, which wrap.
struct WrappingVotes
{
    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum32s, N> of(simd::Vec<Lum32s, N> x, Lum32s y, Normal normal)
    {
        const auto all = [](Lum32s n) { return simd::broadcast<N>(n); };
        return x * all(normal.cosine) + all(y) * all(normal.sine);
    }
};

/// Points of images of any size: for each row their number and where they are.
template <class Votes>
class RowLists
{
  public:
    RowLists(const Call& call, Lum32s* scratch) : numbers_(scratch), height_(call.roiSize.height)
    {
        Lum32s* p = numbers_;
        for (int64_t y = 0; y < height_; ++y) {
            Lum32s* const first = p + 1;
            Lum32s* next = first;
            eachPoint(call.src.row(y), call.roiSize.width, [&next](Lum32s x) { *next++ = x; });
            *p = static_cast<Lum32s>(next - first);
            p = next;
        }
    }

    [[gnu::flatten, gnu::noinline]] void vote(Normal normal, const Plane& plane, Lum32s* cells) const
    {
        const Lum32s* row = numbers_;
        for (Lum32s y = 0; y < height_; ++y) {
            const Lum32s* const points = row + 1;
            const Lum32s count = *row;
            simd::eachOnce<simd::restLanes>(0, count, [=](int64_t i, auto lanes) {
                const auto sums = Votes::of(simd::load<lanes>(points + i), y, normal);
                const auto voted = ((sums + simd::broadcast<lanes>(512)) >> 10) + simd::broadcast<lanes>(plane.centre);
                Lum32s cell[lanes];
                simd::store(cell, voted);
                for (int j = 0; j < lanes; ++j)
                    if (static_cast<Lum32u>(cell[j]) < static_cast<Lum32u>(plane.cells))
                        ++cells[cell[j]];
            });
            row = points + count;
        }
    }

  private:
    Lum32s* numbers_;
    Lum32s height_;
};

/// Part of the plane: cells [begin, end) of the angles that take part.
struct WholePlane
{
    Lum32s begin, end;

    bool takes(Lum32f) const
    {
        return true;
    }
};

struct Region
{
    Lum32s begin, end;
    Lum32f lowest, highest;

    bool takes(Lum32f angle) const
    {
        return angle >= lowest && angle <= highest;
    }
};

/// Puts the lines of the part into the list.
template <class Points, class Part>
void findLines(const Call& call, const Plane& plane, const Part& part)
{
    const int64_t rowLength = int64_t{plane.cells} + 2;
    auto* const rows = alignedIn<Lum32s>(call.buffer);
    const auto cellsOf = [=](Lum32s angle) { return rows + (angle + 3) % 3 * rowLength + 1; };
    const auto clear = [=](Lum32s angle) {
        __builtin_memset(cellsOf(angle) - 1, 0, static_cast<size_t>(rowLength) * sizeof(Lum32s));
    };
    auto* const list = reinterpret_cast<Line*>(rows + 3 * rowLength);
    BestLines lines(list, call.room);
    const Points points(call, reinterpret_cast<Lum32s*>(list + call.room));
    Normals normals(call.delta);

    const auto search = [&](Lum32s angle) {
        addPeaks({cellsOf(angle - 1), cellsOf(angle), cellsOf(angle + 1)}, angle, part.begin, part.end, call.threshold,
                 lines);
    };
    clear(-1);
    for (Lum32s angle = 0; angle <= plane.lastAngle; ++angle) {
        clear(angle);
        const Normal normal = normals.next();
        if (part.takes(call.delta.theta * static_cast<Lum32f>(angle)))
            points.vote(normal, plane, cellsOf(angle));
        if (angle > 0)
            search(angle - 1);
    }
    clear(plane.lastAngle + 1);
    search(plane.lastAngle);

    lines.sort();
    LumiPointPolar* line = call.lines;
    for (const Line& found : lines)
        *line++ = {call.delta.rho * static_cast<Lum32f>(found.cell - plane.centre),
                   call.delta.theta * static_cast<Lum32f>(found.angle)};
    *call.count = lines.count();
}

Checks& checkCall(Checks& checks, const Call& call)
{
    const auto both = static_cast<Lum32f>(int64_t{call.roiSize.width} + call.roiSize.height);
    return checks.require(call.src.step >= 1, lumErrStep)
        .size(call.roiSize)
        .require(call.room >= 1, lumErrSize)
        .require(isPositive(call.delta), lumErrArgument)
        .require(call.delta.rho <= both && call.delta.theta <= angleLimit, lumErrArgument)
        .require(call.threshold >= 1, lumErrArgument);
}

LumStatus linesOfPlane(const Call& call)
{
    Checks checks;
    checks.notNull(call.src.pixels, call.lines, call.count, call.buffer);
    if (checkCall(checks, call).failed())
        return checks.status();
    const Plane plane(call.roiSize, call.delta);
    const WholePlane part{0, plane.cells};
    if (CloseList::serves(call, plane))
        findLines<CloseList>(call, plane, part);
    else
        findLines<RowLists<RoundedVotes>>(call, plane, part);
    return lumOk;
}

LumStatus linesOfRegion(const Call& call, LumiPointPolar* corners)
{
    Checks checks;
    checks.notNull(call.src.pixels, call.lines, call.count, call.buffer, corners);
    if (checkCall(checks, call).failed())
        return checks.status();
    if (!(corners[1].theta >= corners[0].theta && corners[1].rho >= corners[0].rho)) {
        *call.count = 0;
        return lumErrHoughRegion;
    }
    for (int i = 0; i < 2; ++i) {
        Lum32f& theta = corners[i].theta;
        theta = theta < angleLimit ? (theta > 0 ? theta : 0) : angleLimit;
    }
    const Plane plane(call.roiSize, call.delta);
    const auto cellOf = [&](Lum32f rho) {
        return truncated(1.0f / call.delta.rho * rho + static_cast<Lum32f>(plane.centre));
    };
    const Lum32s first = cellOf(corners[0].rho), last = cellOf(corners[1].rho);
    const Region part{first < 0 ? 0 : first, last < plane.cells ? last + 1 : plane.cells, corners[0].theta,
                      corners[1].theta};
    if (CloseList::serves(call, plane))
        findLines<CloseList>(call, plane, part);
    else
        findLines<RowLists<WrappingVotes>>(call, plane, part);
    return lumOk;
}

LumStatus querySize(LumiSize roiSize, LumiPointPolar delta, Lum32s room, Lum32s* pBufferSize)
{
    auto checks = Checks{}.notNull(pBufferSize).size(roiSize).require(isPositive(delta), lumErrArgument);
    if (checks.failed())
        return checks.status();
    const Plane plane(roiSize, delta);
    const Bytes width = roiSize.width, height = roiSize.height;
    const Bytes list = Bytes{16} * room + 224, rows = Bytes{16} * (Bytes{plane.cells} + 4);
    const Bytes bytes = (4 * width + 64) * height + list + rows + Bytes{8} * plane.lastAngle + 8;
    const Bytes estimate = ((width + 12) * 4 + 16) * height + list + rows + 4 * (Bytes{2} * plane.lastAngle + 2);
    *pBufferSize = static_cast<Lum32s>(static_cast<Lum32u>(bytes));
    return fits<Lum32s>(estimate) ? lumOk : lumWrnBufferTooLarge;
}

}  // namespace
}  // namespace lumcv::hough

using namespace lumcv;

LumStatus lumiHoughLineGetSize_8u_C1R(LumiSize roiSize, LumiPointPolar delta, Lum32s maxLineCount, Lum32s* pBufferSize)
{
    return hough::querySize(roiSize, delta, maxLineCount, pBufferSize);
}

LumStatus lumiHoughLine_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, LumiPointPolar delta,
                                  Lum32s threshold, LumiPointPolar* pLine, Lum32s maxLineCount, Lum32s* pLineCount,
                                  Lum8u* pBuffer)
{
    return hough::linesOfPlane(
        {source(pSrc, srcStep), roiSize, delta, threshold, pLine, maxLineCount, pLineCount, pBuffer});
}

LumStatus lumiHoughLine_Region_8u32f_C1R(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, LumiPointPolar* pLine,
                                         LumiPointPolar dstRoi[2], Lum32s maxLineCount, Lum32s* pLineCount,
                                         LumiPointPolar delta, Lum32s threshold, Lum8u* pBuffer)
{
    return hough::linesOfRegion(
        {source(pSrc, srcStep), roiSize, delta, threshold, pLine, maxLineCount, pLineCount, pBuffer}, dstRoi);
}
