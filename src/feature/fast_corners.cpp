// FAST corners: marks the pixels whose ring has an arc that is all brighter or all darker, with or without their
// scores, all of them or those with the highest scores.
#include "feature/fast_arcs.hpp"
#include "feature/fast_orientation.hpp"

namespace lumcv::fast {
namespace {

constexpr int cornerLanes = simd::registerLanes<Lum8u>;

constexpr Lum8u brightCorner = 0x40;
constexpr Lum8u darkCorner = 0x80;

/// What is marked, in the maps or in rows of scratch.
struct Marks
{
    Lum8u* corners;
    Lum8u* scores;  // null if they are not wanted
};

/// N pixels of a row, or its last N: the first `known` of those belong to the block before as well.
template <int N>
struct Block
{
    int64_t x;
    int known;

    /// That of the row of n pixels, at least N, whose new pixels begin at `begin`.
    [[gnu::always_inline]] Block(int64_t begin, int64_t n)
        : x(begin + N <= n ? begin : n - N), known(static_cast<int>(begin - x))
    {
    }
};

/// Calls body(lanes) with the widest vector that n pixels fill.
template <int N, class Body>
[[gnu::always_inline]] inline Lum32s withLanes(int64_t n, Body body)
{
    if (n >= N)
        return body(simd::Lanes<N>{});
    if constexpr (N > simd::restLanes)
        return withLanes<simd::restLanes>(n, body);
    else
        return body(simd::Lanes<1>{});
}

/// Gives orientations to those of the pixels at p that have a score, and counts those that are new.
template <int N, class Orientations>
[[gnu::always_inline]] inline Lum32s count(simd::Vec<Lum8u, N> scores, int known, const Lum8u* p, Lum8u* corners,
                                           Orientations& orientations)
{
    const uint64_t found = simd::nonZeroBits(scores) >> known;
    if constexpr (!std::is_same_v<Orientations, NoOrientation>)
        for (uint64_t rest = found; rest; rest &= rest - 1) {
            const int lane = known + __builtin_ctzll(rest);
            orientations.add(p + lane, corners + lane);
        }
    return __builtin_popcountll(found);
}

/// Adds to what is stored.
template <int N>
[[gnu::always_inline]] inline void merge(Lum8u* p, simd::Vec<Lum8u, N> v)
{
    simd::store(p, simd::load<N>(p) | v);
}

/// Where a row is likely to have something, in order. Entered without a branch, which would often be mispredicted.
template <int room>
class Places
{
  public:
    [[gnu::always_inline]] void add(int64_t x, bool isOne)
    {
        places_[count_] = x;
        count_ += isOne;
    }

    const int64_t* begin() const
    {
        return places_;
    }

    const int64_t* end() const
    {
        return places_ + count_;
    }

  private:
    int count_ = 0;
    int64_t places_[room];
};

/// Blocks that may have arcs, and which arcs are asked for: see bestArcs().
template <int room, int N>
struct ArcPlaces
{
    int count = 0;
    int64_t begins[room];
    Lum8u inverted[room][N];

    /// Asks each pixel for a dark arc if it cannot have a bright one; a pixel that may have either is asked twice.
    [[gnu::always_inline]] void add(int64_t begin, const Candidates<N>& found)
    {
        const auto none = simd::broadcast<N>(Lum8u{0}), all = simd::broadcast<N>(Lum8u{255});
        const auto isNotBright = simd::equal(found.bright, none);
        begins[count] = begin;
        simd::store(inverted[count], simd::select(isNotBright, all, none));
        count += simd::anyNonZero(found.bright | found.dark);
        begins[count] = begin;
        simd::store(inverted[count], simd::select(isNotBright, none, all));
        count += simd::anyNonZero(simd::min(found.bright, found.dark));
    }
};

/// Marks the corners with the arcs that are asked for at these places of a row of n pixels.
template <bool withScores, int N, class Places, class Ring, class Orientations>
[[gnu::always_inline]] inline Lum32s markBlocks(const Places& places, const Ring& ring, const Lum8u* row, int64_t n,
                                                Lum8u threshold, Marks marks, Orientations& orientations)
{
    const auto zero = simd::broadcast<N>(Lum8u{0});
    const auto bright = simd::broadcast<N>(brightCorner), dark = simd::broadcast<N>(darkCorner);
    Lum32s total = 0;
    for (int i = 0; i < places.count; ++i) {
        const Block<N> block(places.begins[i], n);
        const Lum8u* const p = row + block.x;
        const auto inverted = simd::load<N>(places.inverted[i]);
        const auto best = bestArcs(ring, p, inverted, threshold);
        const auto isNone = simd::equal(best, zero);
        const auto kind = simd::select(simd::equal(inverted, zero), bright, dark);
        merge(marks.corners + block.x, simd::select(isNone, zero, kind));
        if constexpr (withScores)
            merge(marks.scores + block.x, simd::select(isNone, zero, best + simd::broadcast<N>(threshold)));
        total += count(best, block.known, p, marks.corners + block.x, orientations);
    }
    return total;
}

/// Marks the corners among n pixels of a row, where nothing is marked yet, and returns how many they are.
template <bool withScores, class Ring, class Orientations>
[[gnu::flatten, gnu::noinline]] Lum32s markRow(const Ring ring, const Lum8u* row, int64_t n, Lum8u threshold,
                                               Marks marks, Orientations& orientations)
{
    return withLanes<cornerLanes>(n, [&, row, n, threshold, marks](auto lanes) {
        constexpr int blocks = 64;
        Lum32s total = 0;
        for (int64_t begin = 0; begin < n; begin += blocks * lanes) {
            const int64_t end = begin + blocks * lanes < n ? begin + blocks * lanes : n;
            Places<blocks> likely;
            for (int64_t x = begin; x < end; x += lanes) {
                const Lum8u* const p = row + Block<lanes>(x, n).x;
                const auto found = candidates(ring, p, Limits<lanes>(p, threshold));
                likely.add(x, simd::anyNonZero(found.bright | found.dark));
            }
            ArcPlaces<2 * blocks, lanes> places;
            for (const int64_t x : likely) {
                const Lum8u* const p = row + Block<lanes>(x, n).x;
                places.add(x, closeCandidates(ring, p, Limits<lanes>(p, threshold)));
            }
            total += markBlocks<withScores, lanes>(places, ring, row, n, threshold, marks, orientations);
        }
        return total;
    });
}

/// Three rows of marks in scratch, each with a zero at both ends.
class MarkedRows
{
  public:
    MarkedRows(Lum8u* buffer, int64_t width) : first_(buffer), rowBytes_(width + 2)
    {
        __builtin_memset(buffer, 0, static_cast<size_t>(6 * rowBytes_));
    }

    Marks row(int64_t y) const
    {
        const int64_t i = (y % 3 + 3) % 3;
        return {first_ + i * rowBytes_ + 1, first_ + (3 + i) * rowBytes_ + 1};
    }

    void clear(int64_t y) const
    {
        const Marks marks = row(y);
        __builtin_memset(marks.corners, 0, static_cast<size_t>(rowBytes_ - 2));
        __builtin_memset(marks.scores, 0, static_cast<size_t>(rowBytes_ - 2));
    }

  private:
    Lum8u* first_;
    int64_t rowBytes_;
};

/// Copies those marks of row y whose score no neighbour exceeds, and returns how many they are.
template <class Orientations>
[[gnu::flatten, gnu::noinline]] Lum32s copyMaxima(const MarkedRows& rows, int64_t y, const Lum8u* row, int64_t n,
                                                  Marks dst, Orientations& orientations)
{
    const Lum8u* const above = rows.row(y - 1).scores;
    const Lum8u* const below = rows.row(y + 1).scores;
    const Marks marks = rows.row(y);
    return withLanes<cornerLanes>(n, [&, marks, above, below, row, n, dst](auto lanes) {
        const auto zero = simd::broadcast<lanes>(Lum8u{0});
        Lum32s total = 0;
        for (int64_t begin = 0; begin < n; begin += lanes) {
            const Block<lanes> block(begin, n);
            const int64_t x = block.x;
            const auto score = simd::load<lanes>(marks.scores + x);
            if (!simd::anyNonZero(score))
                continue;
            const auto sides = [x, lanes](const Lum8u* scores) {
                return simd::max(simd::load<lanes>(scores + x - 1), simd::load<lanes>(scores + x + 1));
            };
            const auto middles = simd::max(simd::load<lanes>(above + x), simd::load<lanes>(below + x));
            const auto around =
                simd::max(simd::max(sides(above), sides(below)), simd::max(sides(marks.scores), middles));
            const auto isMaximum = simd::equal(simd::max(score, around), score);
            const auto kept = simd::select(isMaximum, score, zero);
            merge(dst.scores + x, kept);
            merge(dst.corners + x, simd::select(isMaximum, simd::load<lanes>(marks.corners + x), zero));
            total += count(kept, block.known, row + x, dst.corners + x, orientations);
        }
        return total;
    });
}

/// What the export hands on.
struct Call
{
    Plane<const Lum8u> src;
    Plane<Lum8u> corners, scores;
    Lum32s* count;
    LumiPoint offset;
    LumiSize roiSize;
    const LumFastNSpec* spec;
    Lum8u* buffer;
};

/// Pixels [begin, end) of a side of the ROI.
struct Range
{
    int64_t begin, end;

    int64_t length() const
    {
        return end - begin;
    }
};

/// Of a ROI's side of this length, which begins at `offset`, what lies at least `margin` inside an image's side.
Range insidePart(Lum32s length, Lum32s offset, Lum32s imageLength, int64_t margin)
{
    const int64_t begin = margin - offset;
    const int64_t end = int64_t{imageLength} - margin - offset;
    return {begin < 0 ? 0 : begin, end < length ? end : length};
}

/// The ROI as it is walked.
struct Area
{
    /// What is cleared, and what of it is tested for corners.
    Range clearedX, clearedY, testedX, testedY;

    bool isTested(int64_t y) const
    {
        return testedX.length() > 0 && y >= testedY.begin && y < testedY.end;
    }
};

/// Marks the corners of the area with all that the mode wants; returns how many they are.
template <class Ring, class Orientations>
Lum32s markArea(const Call& call, const Area& area, Ring ring, Lum8u threshold, Orientations orientations)
{
    const Record& record = recordIn(call.spec);
    const bool withScores = record.mode & lumFastNScore;
    const bool suppresses = record.mode & lumFastNNonMaxSuppression;
    const int64_t n = area.testedX.length();
    const auto source = [&](int64_t y) {
        return call.src.row(y + call.offset.y) + (area.testedX.begin + call.offset.x);
    };
    const auto marks = [&](int64_t y) {
        return Marks{call.corners.row(y) + area.testedX.begin,
                     withScores ? call.scores.row(y) + area.testedX.begin : nullptr};
    };
    const auto clear = [&](int64_t y) {
        const auto bytes = static_cast<size_t>(area.clearedX.length());
        __builtin_memset(call.corners.row(y) + area.clearedX.begin, 0, bytes);
        if (withScores)
            __builtin_memset(call.scores.row(y) + area.clearedX.begin, 0, bytes);
    };

    Lum32s count = 0;
    if (!suppresses) {
        for (int64_t y = area.clearedY.begin; y < area.clearedY.end; ++y) {
            clear(y);
            if (!area.isTested(y))
                continue;
            count += withScores ? markRow<true>(ring, source(y), n, threshold, marks(y), orientations)
                                : markRow<false>(ring, source(y), n, threshold, marks(y), orientations);
        }
    } else {
        const MarkedRows rows(call.buffer, n > 0 ? n : 0);
        NoOrientation later;
        for (int64_t y = area.clearedY.begin; y <= area.clearedY.end; ++y) {
            if (y < area.clearedY.end)
                clear(y);
            if (n <= 0)
                continue;
            rows.clear(y);
            if (area.isTested(y))
                markRow<true>(ring, source(y), n, threshold, rows.row(y), later);
            if (area.isTested(y - 1))
                count += copyMaxima(rows, y - 1, source(y - 1), n, marks(y - 1), orientations);
        }
    }
    orientations.finish();
    return count;
}

template <class Ring, class Directions>
Lum32s markRing(const Call& call, const Area& area, Ring ring, Directions directions)
{
    const Record& record = recordIn(call.spec);
    const auto threshold = static_cast<Lum8u>(record.integerThreshold);
    if (record.mode & lumFastNOrientation)
        return markArea(call, area, ring, threshold, Orientation(directions, record.bins, record.binsPerRadian()));
    return markArea(call, area, ring, threshold, NoOrientation{});
}

LumStatus mark(const Call& call)
{
    const Record& record = recordIn(call.spec);
    Area area{insidePart(call.roiSize.width, call.offset.x, record.imageSize.width, 0),
              insidePart(call.roiSize.height, call.offset.y, record.imageSize.height, 0),
              insidePart(call.roiSize.width, call.offset.x, record.imageSize.width, record.radius),
              insidePart(call.roiSize.height, call.offset.y, record.imageSize.height, record.radius)};
    if (area.clearedX.length() <= 0 || area.clearedY.length() <= 0)
        return lumWrnRoiClipped;
    // no byte differs by more than this
    constexpr Lum32s greatest = 254;
    if (record.integerThreshold > greatest)
        area.testedX = {0, 0};

    int64_t offsets[mostPoints];
    const int points = record.points();
    for (int i = 0; i < points; ++i)
        offsets[i] = record.ring[i].dy * call.src.step + record.ring[i].dx;
    *call.count = record.radius == 3 && record.arc == 9
                      ? markRing(call, area, NineOfSixteen{offsets}, OppositePoints{offsets})
                      : markRing(call, area, AnyRing{offsets, points, record.arc},
                                 AllPoints{offsets, points, record.sines(), record.cosines()});
    const bool isWhole = area.clearedX.length() == call.roiSize.width && area.clearedY.length() == call.roiSize.height;
    return isWhole ? lumOk : lumWrnRoiClipped;
}

LumStatus checkedMark(const Call& call)
{
    Checks checks;
    checks.notNull(call.src.pixels, call.corners.pixels, call.spec, call.buffer, call.count).size(call.roiSize);
    if (!checks.failed())
        checks.require(holdsRecord(call.spec), lumErrContext);
    if (checks.failed())
        return checks.status();
    const Record& record = recordIn(call.spec);
    const bool withScores = record.mode & lumFastNScore;
    checks.require(record.dataType == lumType8u, lumErrDataType)
        .require(record.numChannels == 1, lumErrChannels)
        .size(record.imageSize)
        .step(call.src, record.imageSize.width)
        .step(call.corners, call.roiSize.width)
        .require(!withScores || call.scores.step >= call.roiSize.width, lumErrStep)
        .require(isMode(record.mode), lumErrArgument)
        .require(areBins(record.bins, record.mode), lumErrOutOfRange)
        .require(!withScores || call.scores.pixels, lumErrNullPointer)
        .require(pointsOfRing(record.radius) != 0, lumErrArgument)
        .require(isArc(record.arc, record.radius), lumErrOutOfRange);
    return checks.failed() ? checks.status() : mark(call);
}

}  // namespace
}  // namespace lumcv::fast

using namespace lumcv;

LumStatus lumiFastN_8u_C1R(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDstCorner, Lum32s dstCornerStep, Lum8u* pDstScore,
                           Lum32s dstScoreStep, Lum32s* pNumCorner, LumiPoint srcRoiOffset, LumiSize dstRoiSize,
                           const LumFastNSpec* pSpec, Lum8u* pBuffer)
{
    return fast::checkedMark({source(pSrc, srcStep), destination(pDstCorner, dstCornerStep),
                              destination(pDstScore, dstScoreStep), pNumCorner, srcRoiOffset, dstRoiSize, pSpec,
                              pBuffer});
}
